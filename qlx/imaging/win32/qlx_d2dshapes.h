// Outlines for Direct2D: as geometries, and as pictures of what they cover for implementations that
// leave edges rough.
#pragma once

#include <list>
#include <string>
#include <unordered_map>

#include "qlx/imaging/win32/qlx_d2dmanager.h"
#include "qlx/imaging/win32/qlx_wincanvas.h"

/// Null when it cannot be made.
[[nodiscard]] QLX_ComPtr<ID2D1PathGeometry> QLX_MakeD2DGeometry(const QLX_WinShape& shape);
/// How a geometry of QLX_MakeD2DGeometry is stroked; square ends are in the geometry.
[[nodiscard]] QLX_ComPtr<ID2D1StrokeStyle> QLX_MakeD2DStrokeStyle(const QLX_WinShape& shape);

/// A bitmap of premultiplied pixels on a target; null when it cannot be made.
[[nodiscard]] QLX_ComPtr<ID2D1Bitmap> QLX_MakeD2DBitmap(ID2D1RenderTarget& target,
                                                        const std::uint32_t* pixels, int rowPixels,
                                                        int width, int height, bool opaque);

/// Shapes as bitmaps in their colour. Small ones are kept, whatever whole pixel they lie at: the
/// knobs and meters of a window are the same in the next frame. One for each target;
/// user-interface thread.
class QLX_API QLX_D2DShapePictures {
  public:
    struct Piece {
        ID2D1Bitmap* bitmap; ///< not owned
        Cmn_Rect<int> place; ///< canvas pixels
    };
    /// The pieces that show the shape within an area, valid until the next call; false when they
    /// cannot be made. None is a shape that covers nothing.
    [[nodiscard]] bool Get(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                           const Cmn_Rect<int>& area, std::uint32_t color, unsigned alpha,
                           std::vector<Piece>& pieces);
    void Clear() noexcept;

    /// Shapes asked for and shapes rendered since the start of the process, for tests.
    [[nodiscard]] static unsigned GetAskedCount() noexcept;
    [[nodiscard]] static unsigned GetRenderedCount() noexcept;

  private:
    struct Kept {
        std::string key;
        QLX_ComPtr<ID2D1Bitmap> bitmap; // null: nothing is covered
        Cmn_Rect<int> place;            // from the corner of the shape's bounds
    };
    [[nodiscard]] bool GetKept(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                               std::uint32_t color, unsigned alpha, std::vector<Piece>& pieces);
    [[nodiscard]] bool GetPassing(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                                  const Cmn_Rect<int>& area, std::uint32_t color, unsigned alpha,
                                  std::vector<Piece>& pieces);

    std::list<Kept> mKept; // the last used first
    std::unordered_map<std::string_view, std::list<Kept>::iterator> mByKey;
    std::vector<QLX_ComPtr<ID2D1Bitmap>> mPassing;
    std::vector<std::uint32_t> mPixels; // scratch
    std::string mKey;                   // scratch
};

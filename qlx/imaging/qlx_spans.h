// Pixels of a 32-bit surface: fills, masks and copies in every pen mode. Everything here works on
// rectangles that lie wholly within the surface; clipping is the caller's.
#pragma once

#include "newfilelibs/cmn/cmn_rect.h"
#include "qlx/imaging/qlx_maskrows.h"
#include "qlx/imaging/qlx_painter.h"

/// Premultiplied 0xAARRGGBB pixels. Without alpha the top byte is written as 255 and read as 255.
struct QLX_Surface {
    std::uint32_t* pixels = nullptr; ///< not owned
    int width = 0;
    int height = 0;
    int rowPixels = 0; ///< distance of rows
    bool hasAlpha = false;

    [[nodiscard]] std::uint32_t* At(int x, int y) const noexcept {
        return pixels + std::ptrdiff_t(y) * rowPixels + x;
    }
};

/// An 8 by 8 pattern; bit 7 of a row is its leftmost square.
struct QLX_PatternCell {
    std::uint8_t rows[8];
};
/// Null for solid.
[[nodiscard]] QLX_API const QLX_PatternCell* QLX_GetPatternCell(EPenPattern pattern) noexcept;

/// What is laid down.
struct QLX_SpanPaint {
    std::uint32_t color = 0xFF000000; ///< opaque 0xFFRRGGBB
    std::uint32_t background =
        0xFFFFFFFF;       ///< of the pattern's unset squares, and what Transparent leaves out
    unsigned alpha = 255; ///< of color, 0 to 255
    unsigned backgroundAlpha = 255;
    EPenMode mode = kPenMode_Copy;
    const QLX_PatternCell* pattern = nullptr; ///< null: solid
    int cell = 1;                             ///< pixels a square of the pattern
    int phaseX = 0; ///< the window's pixel that the surface's first pixel is, for the pattern
    int phaseY = 0;
};

/// Whether masks are laid down with the widest instructions that the processor has (as from the
/// start, where it has any) or with those that every processor has. The pixels are the same; this
/// is for tests that prove it. Returns what it was.
QLX_API bool QLX_UseWideSpans(bool use) noexcept;

/// Stores one colour in rows of count pixels, 1 or more, that begin rowPixels apart.
QLX_API void QLX_FillOpaque(std::uint32_t* row, std::ptrdiff_t rowPixels, int count, int rows,
                            std::uint32_t color) noexcept;

/// Fills a rectangle.
QLX_API void QLX_FillSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                           const QLX_SpanPaint& paint) noexcept;

/// Lays paint down through a mask of 8-bit coverage: mask points at the byte for the rectangle's
/// first pixel. With paddedMask set a row's bytes are read past its end, up to the next multiple of
/// 4 bytes, where they are 0: that is faster.
QLX_API void QLX_MaskSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                           const std::uint8_t* mask, int maskRow, const QLX_SpanPaint& paint,
                           bool paddedMask) noexcept;

/// Lays many small padded masks down with one paint, as for the glyphs of a line: what they have in
/// common is worked out once. Refers to the surface and the paint while it lives.
class QLX_API QLX_MaskLayer {
  public:
    QLX_MaskLayer(const QLX_Surface& surface, const QLX_SpanPaint& paint) noexcept;
    /// As QLX_MaskSpans with paddedMask.
    void Lay(const Cmn_Rect<int>& rect, const std::uint8_t* mask, int maskRow) noexcept {
        const int columns = (rect.right - rect.left + 3) & ~3;
        if (!mLayRows || rect.left + columns > mSurface.width) {
            QLX_MaskSpans(mSurface, rect, mask, maskRow, mPaint, /*paddedMask*/ true);
            return;
        }
        mRows.pixels = mSurface.At(rect.left, rect.top);
        mRows.mask = mask;
        mRows.maskRow = maskRow;
        mRows.columns = columns;
        mRows.rows = rect.bottom - rect.top;
        mLayRows(mRows);
    }

  private:
    const QLX_Surface& mSurface;
    const QLX_SpanPaint& mPaint;
    QLX_MaskRows mRows;
    void (*mLayRows)(const QLX_MaskRows&) noexcept = nullptr; // null: the general way
};

/// Lays premultiplied pixels down; source points at the one for the rectangle's first pixel. alpha
/// weighs all of them; sourceOpaque says that every source alpha is 255. background matters to
/// Transparent only. The source must not lie within the rectangle's rows unless it is at the same
/// place.
QLX_API void QLX_CopySpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                           const std::uint32_t* source, int sourceRow, EPenMode mode,
                           unsigned alpha, bool sourceOpaque, std::uint32_t background) noexcept;

QLX_API void QLX_InvertSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect) noexcept;
/// Exchanges two colours (0xRRGGBB), alpha left alone.
QLX_API void QLX_ExchangeSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                               std::uint32_t a, std::uint32_t b) noexcept;
QLX_API void QLX_BlendSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                            std::uint32_t color, unsigned alpha,
                            QLX_Painter::EBlendMode mode) noexcept;

/// Columns i at x + i * columnWidth, rows tops[i] up to, not including, bottoms[i]; all within the
/// rectangle and filled row by row, without pattern. scratch has room for 4 * ((count + 31) / 32)
/// ints.
QLX_API void QLX_FillColumns(const QLX_Surface& surface, const Cmn_Rect<int>& rect, int x,
                             int count, const int* tops, const int* bottoms, int columnWidth,
                             const QLX_SpanPaint& paint, int* scratch) noexcept;

/// Samples a premultiplied picture's part (within its size) into pixels for one part of where it is
/// stretched to: bilinear where it grows, the mean of what a pixel covers where it shrinks; nothing
/// beyond the part is looked at. wanted lies within destination; out has rows of outRow pixels from
/// wanted's corner.
QLX_API void QLX_ScalePixels(const std::uint32_t* picture, int pictureRow,
                             const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                             const Cmn_Rect<int>& wanted, std::uint32_t* out, int outRow) noexcept;

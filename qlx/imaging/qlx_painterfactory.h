// Who makes painters: named makers, chosen at run time, so that windows and pictures need not know
// which drawing library stands behind them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_painter.h"

/// 32-bit pixels in memory that somebody else keeps, as a window's surface: 0xAARRGGBB as numbers,
/// premultiplied, rows from the top. Alpha is written but means nothing unless hasAlpha is set.
struct QLX_PixelBuffer {
    std::uint32_t* pixels = nullptr; ///< not owned
    int width = 0;                   ///< pixels
    int height = 0;
    int rowPixels = 0; ///< distance of rows, at least width
    bool hasAlpha = false;
};

/// One way of making painters. Registered for the life of the process; user-interface thread.
class QLX_API QLX_PainterMaker {
  public:
    virtual ~QLX_PainterMaker();
    [[nodiscard]] virtual const char* GetName() const noexcept = 0;
    /// A painter on a canvas of its own, with the logical size at a scale. Null when it cannot be
    /// had.
    [[nodiscard]] virtual QLX_Painter::Ptr MakeOffscreen(int width, int height,
                                                         QLX_DeviceScale scale, bool withAlpha) = 0;
    /// A painter on somebody's pixels, which must stay until the painter and its clones are gone or
    /// QLX_PainterFactory::Detach was called. Null where there is none for memory.
    [[nodiscard]] virtual QLX_Painter::Ptr MakeForBuffer(const QLX_PixelBuffer& buffer,
                                                         QLX_DeviceScale scale) = 0;
    /// A painter for a native window; the default answers null.
    [[nodiscard]] virtual QLX_Painter::Ptr MakeForWindow(void* nativeWindow, QLX_DeviceScale scale);
    /// Makes every painter on the canvas of this one invalid, because its target goes away.
    virtual void Detach(QLX_Painter& painter) = 0;
};

/// The makers of the process. "recording" is always there; the platform sides add theirs.
class QLX_API QLX_PainterFactory {
  public:
    /// Not owned. A second maker of one name replaces the first. At most 16 (more are ignored).
    static void Register(QLX_PainterMaker* maker) noexcept;
    /// In the order they were registered.
    [[nodiscard]] static std::vector<std::string> GetNames();
    /// Null for an unknown name.
    [[nodiscard]] static QLX_PainterMaker* Find(std::string_view name) noexcept;

    /// The maker used from now on; false, and nothing changes, for an unknown name.
    static bool Choose(std::string_view name) noexcept;
    /// The one chosen, else the last registered platform maker, else "recording". Never null.
    [[nodiscard]] static QLX_PainterMaker& Get() noexcept;
};

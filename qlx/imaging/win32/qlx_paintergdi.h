// The painter over GDI device contexts: bitmaps, windows, contexts of others.
#pragma once

#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/win32/qlx_painterwindows.h"

/// A painter on GDI. It needs nothing but what every Windows has, so it is also what stands in when
/// Direct2D is not to be had.
class QLX_API QLX_PainterGDI final : public QLX_PainterWindows {
  public:
    /// Logical size on a bitmap of its own, opaque white or transparent. Null, with a line of the
    /// trace, when it cannot be had.
    [[nodiscard]] static Ptr New(int width, int height, QLX_DeviceScale scale = QLX_DeviceScale(),
                                 bool withAlpha = false);
    /// On a window's contents, shown by Flush. Null for a window without size.
    [[nodiscard]] static Ptr NewForWindow(HWND window, QLX_DeviceScale scale);
    /// Straight onto a device context of this many pixels, which stays the caller's and must stay
    /// until the painter and its clones are gone or the maker's Detach was called.
    [[nodiscard]] static Ptr NewForContext(HDC context, int width, int height,
                                           QLX_DeviceScale scale);
    /// On somebody's pixels.
    [[nodiscard]] static Ptr NewForBuffer(const QLX_PixelBuffer& buffer, QLX_DeviceScale scale);
    ~QLX_PainterGDI() override;

    Ptr Clone() override;
    ePainterKind GetPainterKind() override;

  protected:
    QLX_PainterWindows* MakeOffscreen(int width, int height, bool withAlpha,
                                      const Cmn_Rect<int>& windowArea) override;

  private:
    QLX_PainterGDI(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas, const Cmn_Rect<int>& windowBounds,
                   QLX_DeviceScale scale);
    QLX_PainterGDI(const QLX_PainterGDI& other);
    QLX_PainterGDI(const QLX_PainterGDI& parent, const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                   const Cmn_Rect<int>& windowArea);
    [[nodiscard]] static Ptr On(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                QLX_DeviceScale scale);
};

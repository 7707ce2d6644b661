// The painter over Direct2D render targets, with DirectWrite for text.
#pragma once

#include "qlx/imaging/win32/qlx_painterwindows.h"

/// A painter on Direct2D. Where the libraries are missing or refuse, every New answers null and the
/// maker "windows" takes GDI instead. Drawing shows with Flush.
class QLX_API QLX_PainterDirect2D final : public QLX_PainterWindows {
  public:
    /// Logical size on a bitmap of its own, opaque white or transparent.
    [[nodiscard]] static Ptr New(int width, int height, QLX_DeviceScale scale = QLX_DeviceScale(),
                                 bool withAlpha = false);
    /// On a window's contents. Null also for a window without size.
    [[nodiscard]] static Ptr NewForWindow(HWND window, QLX_DeviceScale scale);
    ~QLX_PainterDirect2D() override;

    Ptr Clone() override;
    ePainterKind GetPainterKind() override;

  protected:
    QLX_PainterWindows* MakeOffscreen(int width, int height, bool withAlpha,
                                      const Cmn_Rect<int>& windowArea) override;

  private:
    QLX_PainterDirect2D(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                        const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale);
    QLX_PainterDirect2D(const QLX_PainterDirect2D& other);
    QLX_PainterDirect2D(const QLX_PainterDirect2D& parent,
                        const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                        const Cmn_Rect<int>& windowArea);
};

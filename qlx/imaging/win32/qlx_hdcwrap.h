// A device context that somebody borrowed from a painter, given back when nobody holds it any more.
#pragma once

#include "basekit/cmn/cmn_refcount.h"
#include "qlx/imaging/win32/qlx_windows.h"

/// A device context on a painter's canvas. While it is held nothing else may draw on the canvas.
/// User-interface thread.
class QLX_API QLX_HDCWrap : public Cmn_RefCountObject {
  public:
    /// What QLX_PainterWindows::GetHDC is asked for.
    enum EFlags : unsigned {
        kClipped = 1,    ///< with the painter's clip selected
        kNoContents = 2, ///< everything will be drawn over: what is there need not be fetched
    };
    ~QLX_HDCWrap() override;
    /// Never null. Canvas pixels, from the canvas's first.
    [[nodiscard]] HDC Get() const noexcept { return mContext; }

  protected:
    explicit QLX_HDCWrap(HDC context) noexcept : mContext(context) {}

  private:
    HDC mContext; // whoever derives gives it back
};

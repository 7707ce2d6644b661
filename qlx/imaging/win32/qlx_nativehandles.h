// Owners of GDI handles and COM references that count what they hold. A leak shows as a number that
// grows from repaint to repaint, without asking the system, whose own numbers take in everybody's.
#pragma once

#include <utility>

#include "basekit/cmn/cmn_types.h"
#include "qlx/imaging/win32/qlx_windows.h"

enum EQLX_NativeKind : int {
    kNative_Font = 0,
    kNative_Bitmap,
    kNative_Region,
    kNative_Brush,
    kNative_Pen,
    kNative_MemoryDC,  ///< from CreateCompatibleDC
    kNative_WindowDC,  ///< from GetDC
    kNative_Interface, ///< a COM reference
    kNative_KindCount
};

/// What the library's owners hold now, by kind. User-interface thread.
class QLX_API QLX_NativeHandles {
  public:
    [[nodiscard]] static int GetCount(EQLX_NativeKind kind) noexcept;
    /// Of all kinds.
    [[nodiscard]] static int GetTotal() noexcept;
    [[nodiscard]] static const char* GetKindName(EQLX_NativeKind kind) noexcept;

    /// For tests: makes every creation of a GDI object fail after this many have succeeded, as when
    /// the process has used up its handles; negative brings back the system's own answers.
    static void FailCreationsAfter(int successes) noexcept;
    /// Asked before every creation; false when it is to fail.
    [[nodiscard]] static bool MayCreate() noexcept;

    static void Count(EQLX_NativeKind kind, int change) noexcept;
    /// Writes one line of the trace about a creation that failed; the same kind again is silent
    /// until one of it succeeds.
    static void ReportFailure(EQLX_NativeKind kind, const char* what) noexcept;
};

/// Owns one GDI object and deletes it.
template <class Handle, EQLX_NativeKind kKind>
class QLX_GDIObject {
  public:
    QLX_GDIObject() noexcept = default;
    /// Takes over; null is none.
    explicit QLX_GDIObject(Handle handle) noexcept : mHandle(handle) {
        if (mHandle)
            QLX_NativeHandles::Count(kKind, 1);
    }
    QLX_GDIObject(QLX_GDIObject&& other) noexcept
        : mHandle(std::exchange(other.mHandle, nullptr)) {}
    QLX_GDIObject& operator=(QLX_GDIObject&& other) noexcept {
        std::swap(mHandle, other.mHandle);
        return *this;
    }
    ~QLX_GDIObject() { Reset(); }

    /// Calls make() unless creations are to fail, and reports a failure under a name.
    template <class Make>
    [[nodiscard]] static QLX_GDIObject New(const char* what, Make make) {
        QLX_GDIObject made(QLX_NativeHandles::MayCreate() ? make() : nullptr);
        if (!made)
            QLX_NativeHandles::ReportFailure(kKind, what);
        return made;
    }

    void Reset() noexcept {
        if (!mHandle)
            return;
        if constexpr (kKind == kNative_MemoryDC)
            DeleteDC(mHandle);
        else
            DeleteObject(mHandle);
        mHandle = nullptr;
        QLX_NativeHandles::Count(kKind, -1);
    }
    [[nodiscard]] Handle Get() const noexcept { return mHandle; }
    explicit operator bool() const noexcept { return mHandle != nullptr; }

  private:
    Handle mHandle = nullptr; // owned
};

using QLX_FontHandle = QLX_GDIObject<HFONT, kNative_Font>;
using QLX_BitmapHandle = QLX_GDIObject<HBITMAP, kNative_Bitmap>;
using QLX_RegionHandle = QLX_GDIObject<HRGN, kNative_Region>;
using QLX_BrushHandle = QLX_GDIObject<HBRUSH, kNative_Brush>;
using QLX_PenHandle = QLX_GDIObject<HPEN, kNative_Pen>;
using QLX_MemoryDC = QLX_GDIObject<HDC, kNative_MemoryDC>;

/// Puts a GDI object into a device context for a scope.
class QLX_StSelect {
  public:
    QLX_StSelect(HDC context, HGDIOBJ object) noexcept
        : mContext(context), mBefore(SelectObject(context, object)) {}
    QLX_StSelect(const QLX_StSelect&) = delete;
    QLX_StSelect& operator=(const QLX_StSelect&) = delete;
    ~QLX_StSelect() {
        if (mBefore)
            SelectObject(mContext, mBefore);
    }

  private:
    HDC mContext;
    HGDIOBJ mBefore;
};

/// A counted COM reference.
template <class Interface>
class QLX_ComPtr {
  public:
    QLX_ComPtr() noexcept = default;
    QLX_ComPtr(const QLX_ComPtr& other) noexcept : mPointer(other.mPointer) {
        if (mPointer) {
            mPointer->AddRef();
            QLX_NativeHandles::Count(kNative_Interface, 1);
        }
    }
    QLX_ComPtr(QLX_ComPtr&& other) noexcept : mPointer(std::exchange(other.mPointer, nullptr)) {}
    QLX_ComPtr& operator=(QLX_ComPtr other) noexcept {
        std::swap(mPointer, other.mPointer);
        return *this;
    }
    ~QLX_ComPtr() { Reset(); }

    /// Takes over a reference that a call has handed out.
    void Adopt(Interface* pointer) noexcept {
        Reset();
        mPointer = pointer;
        if (mPointer)
            QLX_NativeHandles::Count(kNative_Interface, 1);
    }
    void Reset() noexcept {
        if (Interface* pointer = std::exchange(mPointer, nullptr)) {
            pointer->Release();
            QLX_NativeHandles::Count(kNative_Interface, -1);
        }
    }
    /// Null, in other, when the object does not speak that interface.
    template <class Other>
    [[nodiscard]] QLX_ComPtr<Other> As() const noexcept {
        QLX_ComPtr<Other> other;
        void* pointer = nullptr;
        if (mPointer && SUCCEEDED(mPointer->QueryInterface(__uuidof(Other), &pointer)))
            other.Adopt(static_cast<Other*>(pointer));
        return other;
    }

    [[nodiscard]] Interface* Get() const noexcept { return mPointer; }
    Interface* operator->() const noexcept { return mPointer; }
    explicit operator bool() const noexcept { return mPointer != nullptr; }

  private:
    Interface* mPointer = nullptr; // counted
};

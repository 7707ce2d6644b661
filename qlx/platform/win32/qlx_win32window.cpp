#include "qlx/platform/win32/qlx_win32window.h"

#include <algorithm>
#include <array>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/win32/qlx_painterwindows.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

#include <imm.h>

namespace {

constexpr wchar_t kClassName[] = L"QLX_Window";

// The system's pictures are named by small numbers in the form of pointers to text.
LPCWSTR Named(const void* number) { return static_cast<LPCWSTR>(number); }

DWORD StyleFor(const QLX_WindowSettings& settings) {
    if (settings.mPopup || !settings.mFrame)
        return WS_POPUP | WS_CLIPCHILDREN;
    DWORD style = WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
    if (!settings.mDialog)
        style |= WS_MINIMIZEBOX;
    if (settings.mResizable)
        style |= WS_THICKFRAME | (settings.mDialog ? 0 : WS_MAXIMIZEBOX);
    return style;
}

DWORD ExtendedStyleFor(const QLX_WindowSettings& settings) {
    if (settings.mPopup)
        return WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE;
    return settings.mDialog ? WS_EX_DLGMODALFRAME : 0;
}

} // namespace

bool QLX_Win32Window::RegisterClasses() {
    WNDCLASSEXW wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.style = CS_DBLCLKS;
    wanted.lpfnWndProc = Procedure;
    wanted.hInstance = GetModuleHandleW(nullptr);
    wanted.hIcon = LoadIconW(nullptr, Named(IDI_APPLICATION));
    wanted.lpszClassName = kClassName;
    return RegisterClassExW(&wanted) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

QLX_Win32Window::QLX_Win32Window(QLX_Win32Platform::State& platform,
                                 const QLX_WindowSettings& settings, QLX_WindowPortClient* client)
    : mPlatform(platform), mClient(client), mStyle(StyleFor(settings)),
      mExtendedStyle(ExtendedStyleFor(settings)), mNeverActive(settings.mPopup),
      mScale(QLX_PainterWindows::GetWindowScale(nullptr)) {
    POINT corner{};
    const SIZE size = OuterSize(ToDevice(settings.mSize), &corner);
    const Cmn_Point<int> place = ToDevice(settings.mPlace);
    const HWND owner = settings.mDialog || settings.mPopup ? GetActiveWindow() : nullptr;
    const bool placed = settings.mPlaced || settings.mPopup;
    mWindow = CreateWindowExW(mExtendedStyle, kClassName, QLX_ToWide(settings.mTitle).c_str(),
                              mStyle, placed ? place.x + corner.x : int(CW_USEDEFAULT),
                              placed ? place.y + corner.y : int(CW_USEDEFAULT), size.cx, size.cy,
                              owner, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (!mWindow) {
        Cmn_TraceWrite("CreateWindow: error %lu", GetLastError());
        return;
    }
    platform.windows.push_back(this);
    SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    // The monitor is known only now.
    const QLX_DeviceScale scale = QLX_PainterWindows::GetWindowScale(mWindow);
    if (!(scale == mScale)) {
        mScale = scale;
        SetSize(settings.mSize);
    }
}

QLX_Win32Window::~QLX_Win32Window() {
    if (!mWindow)
        return;
    // Messages that closing sends find nobody any more.
    SetWindowLongPtrW(mWindow, GWLP_USERDATA, 0);
    std::erase(mPlatform.windows, this);
    if (mCaptured)
        ReleaseCapture();
    if (mPainter)
        QLX_PainterFactory::Get().Detach(*mPainter);
    mPainter.Reset();
    DestroyWindow(mWindow);
}

// Sizes and places

Cmn_Point<int> QLX_Win32Window::ToDevice(Cmn_Point<int> point) const {
    return {mScale.EdgeToDevice(point.x), mScale.EdgeToDevice(point.y)};
}

Cmn_Point<int> QLX_Win32Window::ToLogical(int x, int y) const {
    const auto map = [this](int value) {
        const std::int64_t scaled = std::int64_t{value} * QLX_DeviceScale::kUnit;
        const int unit = mScale.Get120ths();
        return int(scaled >= 0 ? scaled / unit : -((-scaled + unit - 1) / unit));
    };
    return {map(x), map(y)};
}

SIZE QLX_Win32Window::OuterSize(Cmn_Point<int> contents, POINT* corner) const {
    RECT rect{0, 0, std::max(0, contents.x), std::max(0, contents.y)};
    AdjustWindowRectEx(&rect, mStyle, FALSE, mExtendedStyle);
    if (corner)
        *corner = {rect.left, rect.top};
    return {rect.right - rect.left, rect.bottom - rect.top};
}

Cmn_Point<int> QLX_Win32Window::GetSize() const {
    RECT client{};
    GetClientRect(mWindow, &client);
    const Cmn_Rect<int> covered = mScale.RectToLogical({0, 0, client.right, client.bottom});
    return {covered.right, covered.bottom};
}

void QLX_Win32Window::SetSize(Cmn_Point<int> size) {
    const SIZE outer = OuterSize(ToDevice(size), nullptr);
    SetWindowPos(mWindow, nullptr, 0, 0, outer.cx, outer.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void QLX_Win32Window::SetMinimumSize(Cmn_Point<int> size) { mMinimum = size; }

Cmn_Point<int> QLX_Win32Window::GetPlace() const {
    POINT corner{};
    ClientToScreen(mWindow, &corner);
    return ToLogical(corner.x, corner.y);
}

void QLX_Win32Window::SetPlace(Cmn_Point<int> place) {
    POINT corner{};
    (void)OuterSize({}, &corner);
    const Cmn_Point<int> device = ToDevice(place);
    SetWindowPos(mWindow, nullptr, device.x + corner.x, device.y + corner.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void QLX_Win32Window::SetTitle(const std::string& title) {
    SetWindowTextW(mWindow, QLX_ToWide(title).c_str());
}

void QLX_Win32Window::Show(bool shown) {
    ShowWindow(mWindow, !shown ? SW_HIDE : mNeverActive ? SW_SHOWNOACTIVATE : SW_SHOW);
}

void QLX_Win32Window::Activate() {
    if (IsIconic(mWindow))
        ShowWindow(mWindow, SW_RESTORE);
    SetForegroundWindow(mWindow);
}

// Painting

// Of a stale painter the canvas is kept and follows the window, since a render target is expensive
// to make; the painter itself is another one.
const QLX_WindowPort::PainterPtr& QLX_Win32Window::GetPainter() {
    if (!mSurfaceIsStale && mPainter)
        return mPainter;
    RECT client{};
    GetClientRect(mWindow, &client);
    auto* before = mPainter ? dynamic_cast<QLX_PainterWindows*>(mPainter.Get()) : nullptr;
    const bool empty = client.right < 1 || client.bottom < 1;
    if (before && !empty && before->IsValid() && before->GetHWnd() == mWindow &&
        before->GetCanvas().Restore()) {
        before->CheckScaleFactor();
        if (before->GetCanvas().GetWidth() == client.right &&
            before->GetCanvas().GetHeight() == client.bottom && before->GetScale() == mScale) {
            mPainter = before->Clone();
            mSurfaceIsStale = false;
            return mPainter;
        }
    }
    if (mPainter)
        QLX_PainterFactory::Get().Detach(*mPainter);
    mPainter.Reset();
    if (empty)
        return mPainter;
    QLX_PainterMaker& maker = QLX_PainterFactory::Get();
    mPainter = maker.MakeForWindow(mWindow, mScale);
    if (!mPainter) { // a painter that records, or one for pictures only
        const Cmn_Point<int> size = GetSize();
        mPainter = maker.MakeOffscreen(size.x, size.y, mScale, false);
    }
    mSurfaceIsStale = !mPainter;
    return mPainter;
}

void QLX_Win32Window::Present(const std::vector<Cmn_Rect<int>>& rects) {
    auto* painter = mPainter ? dynamic_cast<QLX_PainterWindows*>(mPainter.Get()) : nullptr;
    if (!painter)
        return;
    for (const Cmn_Rect<int>& rect : rects)
        painter->AddDirtyRgn(RECT{rect.left, rect.top, rect.right, rect.bottom});
    painter->Flush();
    if (painter->GetCanvas().TakeLoss()) {
        // All of it is drawn again, from the loop: whoever presents is in the middle of drawing.
        mSurfaceIsStale = true;
        InvalidateRect(mWindow, nullptr, FALSE);
    }
}

// Pointer and text

void QLX_Win32Window::SetCursor(ECursor cursor) {
    static const std::array<const void*, kCursor_Count> kShapes = {
        IDC_ARROW,  IDC_IBEAM,   IDC_CROSS,    IDC_HAND,     IDC_WAIT, IDC_SIZEWE,
        IDC_SIZENS, IDC_SIZEALL, IDC_SIZENWSE, IDC_SIZENESW, IDC_NO,   nullptr};
    if (cursor < 0 || cursor >= kCursor_Count)
        return;
    mCursor = cursor;
    const void* shape = kShapes[std::size_t(cursor)];
    ::SetCursor(shape ? LoadCursorW(nullptr, Named(shape)) : nullptr); // the system keeps its own
}

void QLX_Win32Window::SetCapture(bool capture) {
    if (capture == mCaptured)
        return;
    mCaptured = capture; // first: letting go sends a message
    if (capture)
        ::SetCapture(mWindow);
    else
        ReleaseCapture();
}

void QLX_Win32Window::SetTextInput(const Cmn_Rect<int>* caret) {
    if (!caret) {
        ImmAssociateContextEx(mWindow, nullptr, 0);
        return;
    }
    ImmAssociateContextEx(mWindow, nullptr, IACE_DEFAULT);
    const HIMC context = ImmGetContext(mWindow);
    if (!context)
        return;
    const Cmn_Rect<int> device = mScale.RectToDevice(*caret);
    COMPOSITIONFORM composition{};
    composition.dwStyle = CFS_POINT;
    composition.ptCurrentPos = {device.left, device.top};
    ImmSetCompositionWindow(context, &composition);
    CANDIDATEFORM candidates{};
    candidates.dwStyle = CFS_EXCLUDE; // the list of candidates leaves the line being typed free
    candidates.ptCurrentPos = {device.left, device.bottom};
    candidates.rcArea = {device.left, device.top, device.right, device.bottom};
    ImmSetCandidateWindow(context, &candidates);
    ImmReleaseContext(mWindow, context);
}

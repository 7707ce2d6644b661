#include "qlx/platform/win32/qlx_win32.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_painterwindows.h"
#include "qlx/imaging/win32/qlx_winfonts.h"
#include "qlx/platform/win32/qlx_win32keys.h"
#include "qlx/platform/win32/qlx_win32state.h"
#include "qlx/platform/win32/qlx_win32window.h"

namespace {

// Windows of this thread follow their monitor's scale themselves. Asked for at run time: systems
// before Windows 10 1607 do not know it. Only this thread is changed, not the host's process.
void FollowMonitors() {
    using SetContext = HANDLE(WINAPI*)(HANDLE);
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    const auto set = reinterpret_cast<SetContext>(reinterpret_cast<void*>(
        user ? GetProcAddress(user, "SetThreadDpiAwarenessContext") : nullptr));
    if (set)
        set(reinterpret_cast<HANDLE>(INT_PTR{-4})); // per monitor, version 2
}

} // namespace

// The platform

QLX_Win32Platform::State::State()
    : loop(*this), factory(*this), clipboard(*this), fileDialogs(*this) {}

QLX_Win32Platform::State::~State() {
    if (waker)
        DestroyWindow(waker);
}

void QLX_Win32Platform::State::KeepException() noexcept {
    if (!thrown)
        thrown = std::current_exception();
    if (waker)
        PostMessageW(waker, WM_NULL, 0, 0); // so that the loop comes by
}

void QLX_Win32Platform::State::ThrowKept() {
    if (const std::exception_ptr kept = std::exchange(thrown, nullptr))
        std::rethrow_exception(kept);
}

QLX_Win32Platform::QLX_Win32Platform() : mState(std::make_unique<State>()) {
    FollowMonitors();
    mState->thread = GetCurrentThreadId();
    if (!QLX_Win32Window::RegisterClasses())
        throw std::runtime_error("no windows: RegisterClass failed with error " +
                                 std::to_string(GetLastError()));
    mState->waker = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    GetModuleHandleW(nullptr), nullptr);
    if (!mState->waker)
        throw std::runtime_error("no windows: CreateWindow failed with error " +
                                 std::to_string(GetLastError()));
    QLX_WinFonts::InstallMeasure();
}

QLX_Win32Platform::~QLX_Win32Platform() { Uninstall(); }

QLX_EventLoop& QLX_Win32Platform::GetEventLoop() { return mState->loop; }

QLX_WindowPortFactory& QLX_Win32Platform::GetWindowFactory() { return mState->factory; }

QLX_KeyboardSource& QLX_Win32Platform::GetKeyboard() { return mState->keyboard; }

QLX_Clipboard& QLX_Win32Platform::GetClipboard() { return mState->clipboard; }

QLX_FileDialogs* QLX_Win32Platform::GetFileDialogs() { return &mState->fileDialogs; }

int QLX_Win32Platform::GetDisplayScale() const {
    return QLX_PainterWindows::GetWindowScale(nullptr).Get120ths();
}

std::unique_ptr<QLX_Platform> QLX_Platform::MakeNative() {
    if (std::unique_ptr<QLX_Platform> asked = FromEnvironment())
        return asked;
    return std::make_unique<QLX_Win32Platform>();
}

// The loop

QLX_Win32Loop::~QLX_Win32Loop() = default;

bool QLX_Win32Loop::DispatchNative() {
    mPlatform.ThrowKept();
    if (mInside)
        return false;
    bool any = false;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        any = true;
        if (message.message == WM_QUIT) {
            Quit(int(message.wParam));
            break;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
        mPlatform.ThrowKept();
    }
    return any;
}

void QLX_Win32Loop::TurnInside() {
    if (mInside)
        return;
    mInside = true;
    try {
        RunOnce(0);
    } catch (...) {
        mPlatform.KeepException();
    }
    mInside = false;
}

bool QLX_Win32Loop::WaitNative(double seconds) {
    // Rounded up: a timer that is woken for too early would spin until its time.
    const double milliseconds = std::ceil(std::max(0.0, seconds) * 1000);
    MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds >= 1e9 ? INFINITE : DWORD(milliseconds),
                                QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    return true;
}

void QLX_Win32Loop::WakeNative() { PostMessageW(mPlatform.waker, WM_NULL, 0, 0); }

QLX_Win32Factory::~QLX_Win32Factory() = default;

std::unique_ptr<QLX_WindowPort> QLX_Win32Factory::MakePort(const QLX_WindowSettings& settings,
                                                           QLX_WindowPortClient* client) {
    auto window = std::make_unique<QLX_Win32Window>(mPlatform, settings, client);
    if (!window->IsMade())
        return nullptr;
    return window;
}

// The keyboard

QLX_Win32Keyboard::~QLX_Win32Keyboard() = default;

std::uint32_t QLX_Win32Keyboard::GetModifierBits() const { return QLX_Win32Modifiers(); }

bool QLX_Win32Keyboard::IsKeyDown(DAW_EKeyCode key) const {
    const int virtualKey = QLX_Win32VirtualKey(key);
    return virtualKey != 0 && (GetKeyState(virtualKey) & 0x8000) != 0;
}

std::uint32_t QLX_Win32Keyboard::GetMouseButtons() const {
    const auto held = [](int key) { return (GetKeyState(key) & 0x8000) != 0; };
    return (held(VK_LBUTTON) ? kQLX_MouseButton_Left : 0U) |
           (held(VK_MBUTTON) ? kQLX_MouseButton_Middle : 0U) |
           (held(VK_RBUTTON) ? kQLX_MouseButton_Right : 0U);
}

// The clipboard

QLX_Win32Clipboard::~QLX_Win32Clipboard() = default;

// Another process may hold it for a moment.
bool QLX_Win32Clipboard::Open() const {
    for (int attempt = 0; attempt < 10; ++attempt) {
        if (OpenClipboard(mPlatform.waker))
            return true;
        Sleep(5);
    }
    Cmn_TraceWrite("the clipboard cannot be opened (error %lu)", GetLastError());
    return false;
}

bool QLX_Win32Clipboard::GetText(std::string& text) {
    if (!IsClipboardFormatAvailable(CF_UNICODETEXT) || !Open())
        return false;
    bool found = false;
    if (const HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
        if (const auto* wide = static_cast<const wchar_t*>(GlobalLock(data))) {
            // The block may lack its ending zero; its size says where it ends at the latest.
            const std::size_t most = GlobalSize(data) / sizeof(wchar_t);
            const wchar_t* end = std::find(wide, wide + most, L'\0');
            text = QLX_FromWide({wide, std::size_t(end - wide)});
            text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
            GlobalUnlock(data);
            found = true;
        }
    }
    CloseClipboard();
    return found;
}

void QLX_Win32Clipboard::SetText(const std::string& text) {
    std::wstring wide;
    for (const wchar_t unit : QLX_ToWide(text)) {
        if (unit == L'\n')
            wide += L'\r';
        wide += unit;
    }
    if (!Open())
        return;
    EmptyClipboard();
    const std::size_t size = (wide.size() + 1) * sizeof(wchar_t);
    if (const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size)) {
        if (void* memory = GlobalLock(block)) {
            std::memcpy(memory, wide.c_str(), size);
            GlobalUnlock(block);
            if (!SetClipboardData(CF_UNICODETEXT, block)) // else it is the clipboard's
                GlobalFree(block);
        }
    }
    CloseClipboard();
}

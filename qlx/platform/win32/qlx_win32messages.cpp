// Window messages in the framework's form.

#include <cmath>
#include <cstdlib>
#include <string>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_clock.h"
#include "qlx/imaging/win32/qlx_painterwindows.h"
#include "qlx/imaging/win32/qlx_winfonts.h"
#include "qlx/platform/win32/qlx_win32keys.h"
#include "qlx/platform/win32/qlx_win32window.h"
#include "qlx/views/qlx_windowevents.h"

#include <imm.h>
#include <windowsx.h>

#ifndef WM_DPICHANGED
#define WM_DPICHANGED 0x02E0
#endif

// The message record goes along with every event as it is.
static_assert(sizeof(MSG) == 48);

namespace {

// While the system runs a loop of its own, a timer gives ours a turn.
constexpr UINT_PTR kInsideTimer = 1;
constexpr UINT kInsideMilliseconds = 10;

constexpr UINT kNoCharacter = 0;

[[nodiscard]] bool IsHigh(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
[[nodiscard]] bool IsLow(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

[[nodiscard]] std::uint32_t Joined(wchar_t high, wchar_t low) {
    return 0x10000 + ((std::uint32_t(high) - 0xD800) << 10) + (std::uint32_t(low) - 0xDC00);
}

// Letters as key codes are capitals.
[[nodiscard]] std::uint32_t KeyCodeOfCharacter(std::uint32_t character) {
    return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
}

class SystemComposition final : public QLX_CompositionSource {
  public:
    bool GetText(HWND window, DWORD part, std::wstring& text, int& caret) override {
        const HIMC context = ImmGetContext(window);
        if (!context)
            return false;
        const LONG bytes = ImmGetCompositionStringW(context, part, nullptr, 0);
        if (bytes >= 0) {
            text.resize(std::size_t(bytes) / sizeof(wchar_t));
            if (bytes > 0)
                ImmGetCompositionStringW(context, part, text.data(), DWORD(bytes));
            caret = int(ImmGetCompositionStringW(context, GCS_CURSORPOS, nullptr, 0));
        }
        ImmReleaseContext(window, context);
        return bytes >= 0;
    }
};

constinit QLX_CompositionSource* sComposition = nullptr; // not owned; null: the system's

// Characters of the first so many units.
[[nodiscard]] int CountCharacters(const std::wstring& text, int units) {
    int count = 0;
    for (int i = 0; i < units && i < int(text.size()); ++i)
        count += !IsLow(text[std::size_t(i)]);
    return count;
}

} // namespace

QLX_CompositionSource::~QLX_CompositionSource() = default;

QLX_CompositionSource& QLX_CompositionSource::Get() {
    static SystemComposition system;
    return sComposition ? *sComposition : system;
}

void QLX_CompositionSource::Install(QLX_CompositionSource* source) { sComposition = source; }

// The procedure: whatever is thrown inside is kept for the loop, since it cannot pass through the
// system's frames between here and there.
LRESULT CALLBACK QLX_Win32Window::Procedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam) {
    auto* self = reinterpret_cast<QLX_Win32Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    LRESULT result = 0;
    if (self) {
        QLX_Win32Platform::State& platform = self->mPlatform;
        try {
            if (self->Answer({message, wParam, lParam}, result))
                return result;
        } catch (...) {
            platform.KeepException();
            return 0;
        }
    }
    return IsWindow(window) ? DefWindowProcW(window, message, wParam, lParam) : 0;
}

void QLX_Win32Window::Deliver(const QLX_EventRef& event, const Message& message) {
    const DWORD place = GetMessagePos();
    const MSG record{
        mWindow,        message.message,         message.wParam,
        message.lParam, DWORD(GetMessageTime()), {GET_X_LPARAM(place), GET_Y_LPARAM(place)}};
    (void)event.SetProperty(kQLX_EventProperty_NativeMessage, &record, sizeof record);
    mClient->PortEvent(event);
}

bool QLX_Win32Window::Answer(const Message& message, LRESULT& result) {
    return AnswerMouse(message, result) || AnswerKey(message, result) ||
           AnswerComposition(message, result) || AnswerWindow(message, result);
}

// Keys. A key's character comes as a message of its own, which TranslateMessage has queued by the
// time the key is dispatched: it is taken from the queue, so that one event tells both.

void QLX_Win32Window::KeyDown(const Message& message) {
    const bool extended = (HIWORD(message.lParam) & KF_EXTENDED) != 0;
    const bool repeated = (HIWORD(message.lParam) & KF_REPEAT) != 0;
    const std::uint32_t code = QLX_Win32KeyCode(message.wParam, extended);
    std::uint32_t character = QLX_Win32KeyCharacter(code);
    const bool suppressed = QLX_Win32SuppressesText();
    std::wstring further;
    MSG typed;
    bool dead = false;
    while (PeekMessageW(&typed, mWindow, WM_CHAR, WM_DEADCHAR, PM_NOREMOVE) &&
           typed.lParam == message.lParam &&
           PeekMessageW(&typed, mWindow, typed.message, typed.message, PM_REMOVE)) {
        if (typed.message == WM_DEADCHAR) {
            dead = true;
            continue;
        }
        further += wchar_t(typed.wParam);
    }
    if (suppressed) {
        further.clear();
    } else if (!further.empty() && code != '.') { // the keypad's point stays a point
        std::size_t taken = 1;
        std::uint32_t typedCharacter = further[0];
        if (further.size() > 1 && IsHigh(further[0]) && IsLow(further[1])) {
            typedCharacter = Joined(further[0], further[1]);
            taken = 2;
        }
        if (typedCharacter >= 32 && typedCharacter != 127)
            character = typedCharacter;
        further.erase(0, taken);
    } else if (code == '.') {
        further.clear();
    } else if (dead) {
        character = kNoCharacter; // its text comes with the next key
    }
    const HWND window = mWindow;
    const std::uint32_t kind = repeated ? kQLX_EventKind_AutoKey : kQLX_EventKind_KeyDown;
    Deliver(QLX_MakeKeyEvent(kind, code, character, QLX_Win32Modifiers()), message);
    // A key may type several characters; the window may be gone by now.
    if (!further.empty() && further[0] >= 32 && IsWindow(window) &&
        GetWindowLongPtrW(window, GWLP_USERDATA))
        Deliver(QLX_MakeTextEvent(QLX_FromWide(further)), message);
}

// A character that no key of this queue brought: another program's, an input method's, a test's.
void QLX_Win32Window::Character(const Message& message) {
    const auto unit = wchar_t(message.wParam);
    std::uint32_t character = std::uint16_t(unit);
    if (message.message == WM_UNICHAR) {
        character = std::uint32_t(message.wParam);
    } else if (IsHigh(unit)) {
        mHighSurrogate = unit;
        return;
    } else if (IsLow(unit)) {
        if (!mHighSurrogate)
            return;
        character = Joined(mHighSurrogate, unit);
    }
    mHighSurrogate = 0;
    if (character == 0 || character > 0x10FFFF || QLX_Win32SuppressesText())
        return;
    Deliver(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, KeyCodeOfCharacter(character), character,
                             QLX_Win32Modifiers()),
            message);
}

bool QLX_Win32Window::AnswerKey(const Message& message, LRESULT& result) {
    result = 0;
    switch (message.message) {
    case WM_KEYDOWN:
        if (message.wParam != VK_PROCESSKEY) // the input method's
            KeyDown(message);
        return true;
    case WM_SYSKEYDOWN:
        // Alt+F4 and the window's own menu stay the system's; Alt alone and F10 do not begin a menu
        // that is not there.
        if (message.wParam == VK_F4 || message.wParam == VK_SPACE)
            return false;
        KeyDown(message);
        return true;
    case WM_KEYUP:
    case WM_SYSKEYUP: {
        const bool extended = (HIWORD(message.lParam) & KF_EXTENDED) != 0;
        const std::uint32_t code = QLX_Win32KeyCode(message.wParam, extended);
        Deliver(QLX_MakeKeyEvent(kQLX_EventKind_KeyUp, code, QLX_Win32KeyCharacter(code),
                                 QLX_Win32Modifiers()),
                message);
        return true;
    }
    case WM_UNICHAR:
        if (message.wParam == UNICODE_NOCHAR) {
            result = TRUE;
            return true;
        }
        [[fallthrough]];
    case WM_CHAR:
        Character(message);
        return true;
    case WM_SYSCHAR:
        return message.wParam != VK_SPACE; // no beep for Alt and a letter
    case WM_DEADCHAR:
    case WM_SYSDEADCHAR:
        return true;
    default:
        return false;
    }
}

// Input methods: the text being composed is drawn by the view that takes it.

bool QLX_Win32Window::AnswerComposition(const Message& message, LRESULT& result) {
    result = 0;
    switch (message.message) {
    case WM_IME_SETCONTEXT:
        result = DefWindowProcW(mWindow, message.message, message.wParam,
                                message.lParam & ~LPARAM(ISC_SHOWUICOMPOSITIONWINDOW));
        return true;
    case WM_IME_STARTCOMPOSITION:
        return true;
    case WM_IME_CHAR:
        Character({WM_CHAR, message.wParam, message.lParam});
        return true;
    case WM_IME_ENDCOMPOSITION:
        Deliver(QLX_MakeCompositionEvent("", 0, 0), message);
        return true;
    case WM_IME_COMPOSITION: {
        const HWND window = mWindow;
        std::wstring text;
        int caret = 0;
        bool ours = false;
        if ((message.lParam & GCS_RESULTSTR) != 0 &&
            QLX_CompositionSource::Get().GetText(mWindow, GCS_RESULTSTR, text, caret)) {
            ours = true;
            Deliver(QLX_MakeCompositionEvent("", 0, 0), message);
            if (!text.empty() && IsWindow(window) && GetWindowLongPtrW(window, GWLP_USERDATA))
                Deliver(QLX_MakeTextEvent(QLX_FromWide(text)), message);
        }
        if ((message.lParam & GCS_COMPSTR) != 0 && IsWindow(window) &&
            GetWindowLongPtrW(window, GWLP_USERDATA) &&
            QLX_CompositionSource::Get().GetText(mWindow, GCS_COMPSTR, text, caret)) {
            ours = true;
            Deliver(QLX_MakeCompositionEvent(QLX_FromWide(text), CountCharacters(text, caret), 0),
                    message);
        }
        return ours;
    }
    default:
        return false;
    }
}

// The mouse

void QLX_Win32Window::Button(const Message& message, std::uint32_t kind, int button) {
    const Cmn_Point<int> where =
        ToLogical(GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam));
    Deliver(QLX_MakeMouseEvent(kind, where, QLX_Win32Modifiers(), EMouseButton(button)), message);
}

void QLX_Win32Window::Wheel(const Message& message, bool sideways) {
    POINT place{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ScreenToClient(mWindow, &place);
    const int distance = GET_WHEEL_DELTA_WPARAM(message.wParam);
    static_assert(WHEEL_DELTA == kWheel_Notch);
    const Cmn_Point<int> delta =
        sideways ? Cmn_Point<int>(distance, 0) : Cmn_Point<int>(0, distance);
    Deliver(QLX_MakeWheelEvent(ToLogical(place.x, place.y), delta, QLX_Win32Modifiers()), message);
}

// A press on the frame ends what an open menu or a field is doing, as a press elsewhere in the
// window does. The system then runs its own loop and swallows the release.
void QLX_Win32Window::PressOutside(const Message& message) {
    POINT place{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
    ScreenToClient(mWindow, &place);
    const Cmn_Point<int> where = ToLogical(place.x, place.y);
    const HWND window = mWindow;
    const std::uint32_t modifiers = QLX_Win32Modifiers();
    const auto isThere = [window] {
        return IsWindow(window) && GetWindowLongPtrW(window, GWLP_USERDATA);
    };
    Deliver(QLX_MakeMouseEvent(kQLX_EventKind_MouseDown, where, modifiers), message);
    if (!isThere())
        return;
    Deliver(QLX_MakeMouseEvent(kQLX_EventKind_MouseUp, where, modifiers), message);
    if (isThere())
        DefWindowProcW(window, message.message, message.wParam, message.lParam);
}

bool QLX_Win32Window::AnswerMouse(const Message& message, LRESULT& result) {
    result = 0;
    switch (message.message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        Button(message, kQLX_EventKind_MouseDown, kMouse_Left);
        return true;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
        Button(message, kQLX_EventKind_MouseDown, kMouse_Middle);
        return true;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
        Button(message, kQLX_EventKind_MouseDown, kMouse_Right);
        return true;
    case WM_LBUTTONUP:
        Button(message, kQLX_EventKind_MouseUp, kMouse_Left);
        return true;
    case WM_MBUTTONUP:
        Button(message, kQLX_EventKind_MouseUp, kMouse_Middle);
        return true;
    case WM_RBUTTONUP:
        Button(message, kQLX_EventKind_MouseUp, kMouse_Right);
        return true;
    case WM_NCLBUTTONDOWN:
        PressOutside(message);
        return true;
    case WM_MOUSEMOVE: {
        if (!mTracksLeave) {
            TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, mWindow, 0};
            mTracksLeave = TrackMouseEvent(&track) != 0;
        }
        Button(message, kQLX_EventKind_MouseMoved, kMouse_Left);
        return true;
    }
    case WM_MOUSELEAVE:
        mTracksLeave = false;
        Deliver(QLX_MakeMouseEvent(kQLX_EventKind_MouseLeft, {0, 0}, 0), message);
        return true;
    case WM_MOUSEWHEEL:
        Wheel(message, /*sideways*/ false);
        return true;
    case WM_MOUSEHWHEEL:
        Wheel(message, /*sideways*/ true);
        return true;
    case WM_CAPTURECHANGED:
        if (mCaptured && reinterpret_cast<HWND>(message.lParam) != mWindow) {
            mCaptured = false;
            Deliver(QLX_MakeMouseEvent(kQLX_EventKind_CaptureLost, {0, 0}, 0), message);
        }
        return true;
    case WM_SETCURSOR:
        if (LOWORD(message.lParam) != HTCLIENT)
            return false;
        SetCursor(mCursor);
        result = TRUE;
        return true;
    case WM_MOUSEACTIVATE:
        result = MA_NOACTIVATE;
        return mNeverActive;
    default:
        return false;
    }
}

// The window

void QLX_Win32Window::StartInsideTurns() {
    if (mInsideLevel++ == 0)
        SetTimer(mWindow, kInsideTimer, kInsideMilliseconds, nullptr);
}

void QLX_Win32Window::StopInsideTurns() {
    if (mInsideLevel > 0 && --mInsideLevel == 0)
        KillTimer(mWindow, kInsideTimer);
}

void QLX_Win32Window::Paint() {
    PAINTSTRUCT paint;
    if (BeginPaint(mWindow, &paint)) // only to say that it is being seen to
        EndPaint(mWindow, &paint);
}

void QLX_Win32Window::ScaleChanged(const Message& message) {
    // The message names the new scale before the system's own answer has it.
    const QLX_DeviceScale told(double(LOWORD(message.wParam)) / 96);
    mScale = std::getenv("QLX_SCALE") ? QLX_PainterWindows::GetWindowScale(mWindow) : told;
    mSurfaceIsStale = true;
    if (const auto* suggested = reinterpret_cast<const RECT*>(message.lParam))
        SetWindowPos(mWindow, nullptr, suggested->left, suggested->top,
                     suggested->right - suggested->left, suggested->bottom - suggested->top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    Deliver(QLX_MakeWindowEvent(kQLX_EventKind_ScaleChanged), message);
}

bool QLX_Win32Window::AnswerWindow(const Message& message, LRESULT& result) {
    result = 0;
    switch (message.message) {
    case WM_ERASEBKGND:
        result = 1; // everything is drawn
        return true;
    case WM_PAINT:
        Paint();
        Deliver(QLX_MakeWindowEvent(kQLX_EventKind_Exposed), message);
        return true;
    case WM_SIZE: {
        const bool inside = mInsideLevel > 0;
        QLX_Win32Loop& loop = mPlatform.loop;
        mSurfaceIsStale = true;
        Deliver(QLX_MakeWindowEvent(kQLX_EventKind_Resized), message);
        if (inside)
            loop.TurnInside(); // the new size is seen while the mouse still drags the frame
        return true;
    }
    case WM_MOVE:
        Deliver(QLX_MakeWindowEvent(kQLX_EventKind_Moved), message);
        return true;
    case WM_DPICHANGED:
        ScaleChanged(message);
        return true;
    case WM_GETMINMAXINFO:
        if (mMinimum.x > 0 && mMinimum.y > 0) {
            const SIZE least = OuterSize(ToDevice(mMinimum), nullptr);
            reinterpret_cast<MINMAXINFO*>(message.lParam)->ptMinTrackSize = {least.cx, least.cy};
        }
        return true;
    case WM_ACTIVATE:
        Deliver(QLX_MakeWindowEvent(LOWORD(message.wParam) == WA_INACTIVE
                                        ? kQLX_EventKind_Deactivated
                                        : kQLX_EventKind_Activated),
                message);
        return false; // the system gives the window the keyboard
    case WM_ACTIVATEAPP:
        // Every window hears of it; the application once.
        if ((message.wParam != 0) != mPlatform.active) {
            mPlatform.active = message.wParam != 0;
            Deliver(QLX_EventRef::New({kQLX_EventClass_Application, kQLX_EventKind_Activation},
                                      Sys_Clock_Seconds()),
                    message);
        }
        return true;
    case WM_CLOSE:
    case WM_QUERYENDSESSION:
        result = TRUE;
        Deliver(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested), message);
        return true;
    case WM_ENTERSIZEMOVE:
    case WM_ENTERMENULOOP:
        StartInsideTurns();
        return true;
    case WM_EXITSIZEMOVE:
    case WM_EXITMENULOOP:
        StopInsideTurns();
        return true;
    case WM_TIMER:
        if (message.wParam != kInsideTimer)
            return false;
        mPlatform.loop.TurnInside();
        return true;
    case WM_ENTERIDLE:
        mPlatform.loop.TurnInside();
        return true;
    default:
        return false;
    }
}

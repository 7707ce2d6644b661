#include "qlx/platform/sdl/qlx_sdl.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "qlx/platform/sdl/qlx_sdlapi.h"
#include "qlx/platform/sdl/qlx_sdlkeys.h"
#include "qlx/platform/sdl/qlx_sdlstate.h"
#include "qlx/views/qlx_windowevents.h"

namespace {

void SetHints() {
    // Straight to the window: through SDL's texture a small update costs as much as a whole window.
    QLX_SDL().SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    QLX_SDL().SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    QLX_SDL().SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    QLX_SDL().SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    QLX_SDL().SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    QLX_SDL().SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
}

} // namespace

// The platform

QLX_SDLPlatform::State::State() : loop(*this), factory(*this) {}

QLX_SDLPlatform::State::~State() {
    for (SDL_Cursor* cursor : cursors) {
        if (cursor)
            QLX_SDL().FreeCursor(cursor);
    }
}

QLX_SDLPlatform::QLX_SDLPlatform() : mState(std::make_unique<State>()) {
    QLX_LoadSDL();
    SetHints();
    mState->xErrors = std::make_unique<QLX_SDLXErrors>();
    if (QLX_SDL().InitSubSystem(SDL_INIT_VIDEO) != 0)
        throw std::runtime_error(std::string("no display: ") + QLX_SDL().GetError());
    // Without a display SDL takes a driver that shows nothing, and the program would seem to hang.
    const char* driver = QLX_SDL().GetCurrentVideoDriver();
    const bool shows =
        driver && std::strcmp(driver, "dummy") != 0 && std::strcmp(driver, "offscreen") != 0;
    if (!shows && !std::getenv("SDL_VIDEODRIVER")) {
        QLX_SDL().QuitSubSystem(SDL_INIT_VIDEO);
        throw std::runtime_error("no display: neither X11 nor Wayland can be reached");
    }
    mState->wakeEvent = QLX_SDL().RegisterEvents(1);
    mState->displayScale = ScaleFromEnvironment(120);
    QLX_SDL().StartTextInput();
}

QLX_SDLPlatform::~QLX_SDLPlatform() {
    Uninstall();
    const std::unique_ptr<QLX_SDLXErrors> xErrors = std::move(mState->xErrors); // to the very end
    mState.reset();
    QLX_SDL().QuitSubSystem(SDL_INIT_VIDEO);
}

QLX_EventLoop& QLX_SDLPlatform::GetEventLoop() { return mState->loop; }

QLX_WindowPortFactory& QLX_SDLPlatform::GetWindowFactory() { return mState->factory; }

QLX_KeyboardSource& QLX_SDLPlatform::GetKeyboard() { return mState->keyboard; }

QLX_Clipboard& QLX_SDLPlatform::GetClipboard() { return mState->clipboard; }

int QLX_SDLPlatform::GetDisplayScale() const { return mState->displayScale; }

std::unique_ptr<QLX_Platform> QLX_Platform::MakeNative() {
    if (std::unique_ptr<QLX_Platform> asked = FromEnvironment())
        return asked;
    return std::make_unique<QLX_SDLPlatform>();
}

// The loop

QLX_SDLLoop::~QLX_SDLLoop() = default;

bool QLX_SDLLoop::DispatchNative() {
    bool any = false;
    SDL_Event event;
    while (QLX_SDL().PollEvent(&event)) {
        if (event.type == mPlatform.wakeEvent)
            continue;
        any = true;
        // Of a run of movements the last one counts.
        SDL_Event next;
        while (event.type == SDL_MOUSEMOTION &&
               QLX_SDL().PeepEvents(&next, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1 &&
               next.type == SDL_MOUSEMOTION && next.motion.windowID == event.motion.windowID)
            QLX_SDL().PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT);
        mPlatform.Deliver(event);
    }
    return any;
}

bool QLX_SDLLoop::WaitNative(double seconds) {
    // Rounded up: a timer that is woken for too early would spin until its time.
    const double milliseconds = std::ceil(seconds * 1000);
    if (milliseconds >= 1e9)
        QLX_SDL().WaitEvent(nullptr);
    else
        QLX_SDL().WaitEventTimeout(nullptr, static_cast<int>(milliseconds));
    return true;
}

void QLX_SDLLoop::WakeNative() {
    SDL_Event event;
    std::memset(&event, 0, sizeof event);
    event.type = mPlatform.wakeEvent;
    QLX_SDL().PushEvent(&event);
}

// Windows

QLX_SDLFactory::~QLX_SDLFactory() = default;

std::unique_ptr<QLX_WindowPort> QLX_SDLFactory::MakePort(const QLX_WindowSettings& settings,
                                                         QLX_WindowPortClient* client) {
    auto window = std::make_unique<QLX_SDLWindow>(mPlatform, settings, client);
    if (!window->IsMade())
        return nullptr;
    return window;
}

QLX_SDLWindow* QLX_SDLPlatform::State::FindWindow(Uint32 id) const {
    for (QLX_SDLWindow* window : windows) {
        if (window->GetID() == id)
            return window;
    }
    return nullptr;
}

void QLX_SDLPlatform::State::ShowCursor(ECursor cursor) {
    static constexpr std::array<SDL_SystemCursor, kCursor_Count> kShapes = {
        SDL_SYSTEM_CURSOR_ARROW,    SDL_SYSTEM_CURSOR_IBEAM,   SDL_SYSTEM_CURSOR_CROSSHAIR,
        SDL_SYSTEM_CURSOR_HAND,     SDL_SYSTEM_CURSOR_WAIT,    SDL_SYSTEM_CURSOR_SIZEWE,
        SDL_SYSTEM_CURSOR_SIZENS,   SDL_SYSTEM_CURSOR_SIZEALL, SDL_SYSTEM_CURSOR_SIZENWSE,
        SDL_SYSTEM_CURSOR_SIZENESW, SDL_SYSTEM_CURSOR_NO,      SDL_SYSTEM_CURSOR_ARROW};
    if (cursor < 0 || cursor >= kCursor_Count)
        return;
    QLX_SDL().ShowCursor(cursor == kCursor_Hidden ? SDL_DISABLE : SDL_ENABLE);
    const auto index = static_cast<std::size_t>(cursor);
    if (!cursors[index])
        cursors[index] = QLX_SDL().CreateSystemCursor(kShapes[index]);
    if (cursors[index])
        QLX_SDL().SetCursor(cursors[index]);
}

// The keyboard

QLX_SDLKeyboard::~QLX_SDLKeyboard() = default;

std::uint32_t QLX_SDLKeyboard::GetModifierBits() const {
    return QLX_SDLModifiers(static_cast<std::uint16_t>(QLX_SDL().GetModState()));
}

bool QLX_SDLKeyboard::IsKeyDown(DAW_EKeyCode key) const {
    int count = 0;
    const Uint8* keys = QLX_SDL().GetKeyboardState(&count);
    const SDL_Scancode scan = QLX_SDLScanCode(key);
    return scan > SDL_SCANCODE_UNKNOWN && scan < count && keys[scan] != 0;
}

std::uint32_t QLX_SDLKeyboard::GetMouseButtons() const {
    const Uint32 state = QLX_SDL().GetMouseState(nullptr, nullptr);
    std::uint32_t bits = 0;
    if (state & SDL_BUTTON_LMASK)
        bits |= kQLX_MouseButton_Left;
    if (state & SDL_BUTTON_MMASK)
        bits |= kQLX_MouseButton_Middle;
    if (state & SDL_BUTTON_RMASK)
        bits |= kQLX_MouseButton_Right;
    return bits;
}

// The clipboard

QLX_SDLClipboard::~QLX_SDLClipboard() = default;

bool QLX_SDLClipboard::GetText(std::string& text) {
    if (!QLX_SDL().HasClipboardText())
        return false;
    char* copy = QLX_SDL().GetClipboardText();
    if (!copy)
        return false;
    text = copy;
    QLX_SDL().free(copy);
    return true;
}

void QLX_SDLClipboard::SetText(const std::string& text) {
    QLX_SDL().SetClipboardText(text.c_str());
}

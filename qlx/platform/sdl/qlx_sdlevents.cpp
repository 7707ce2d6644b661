// SDL's events in the framework's form.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "basekit/cmn/cmn_string.h"
#include "qlx/platform/sdl/qlx_sdlapi.h"
#include "qlx/platform/sdl/qlx_sdlkeys.h"
#include "qlx/platform/sdl/qlx_sdlstate.h"
#include "qlx/views/qlx_windowevents.h"

namespace {

std::uint32_t Modifiers() {
    return QLX_SDLModifiers(static_cast<std::uint16_t>(QLX_SDL().GetModState()));
}

/// Whether what a key types while these are held is a command and no text. Alt Gr types.
bool SuppressesText(Uint16 modifiers) {
    if (modifiers & KMOD_MODE)
        return false;
    return (modifiers & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0;
}

/// Takes the text that a key typed from the queue, when it is the next event there.
bool TakeText(Uint32 windowID, std::string& text) {
    QLX_SDL().PumpEvents();
    SDL_Event next;
    if (QLX_SDL().PeepEvents(&next, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) != 1 ||
        next.type != SDL_TEXTINPUT || next.text.windowID != windowID)
        return false;
    QLX_SDL().PeepEvents(&next, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT);
    text = next.text.text;
    return true;
}

} // namespace

void QLX_SDLPlatform::State::Deliver(const SDL_Event& event) {
    switch (event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        DeliverKey(event.key);
        break;
    case SDL_TEXTINPUT:
        // Not a key's: those were taken with it.
        if (QLX_SDLWindow* window = FindWindow(event.text.windowID))
            if (!SuppressesText(static_cast<Uint16>(QLX_SDL().GetModState())))
                DeliverText(*window, event.text.text);
        break;
    case SDL_TEXTEDITING:
        if (QLX_SDLWindow* window = FindWindow(event.edit.windowID))
            window->GetClient()->PortEvent(QLX_MakeCompositionEvent(
                event.edit.text, event.edit.start + event.edit.length, event.edit.length));
        break;
    case SDL_TEXTEDITING_EXT:
        if (QLX_SDLWindow* window = FindWindow(event.editExt.windowID))
            window->GetClient()->PortEvent(QLX_MakeCompositionEvent(
                event.editExt.text, event.editExt.start + event.editExt.length,
                event.editExt.length));
        QLX_SDL().free(event.editExt.text);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        DeliverButton(event.button);
        break;
    case SDL_MOUSEMOTION:
        DeliverMotion(event.motion);
        break;
    case SDL_MOUSEWHEEL:
        DeliverWheel(event.wheel);
        break;
    case SDL_WINDOWEVENT:
        DeliverWindow(event.window);
        break;
    case SDL_QUIT:
        // The last window's closing says so too; a session's end asks every window.
        for (QLX_SDLWindow* window : std::vector<QLX_SDLWindow*>(windows)) {
            if (std::find(windows.begin(), windows.end(), window) != windows.end())
                window->GetClient()->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested));
        }
        break;
    default:
        break;
    }
}

void QLX_SDLPlatform::State::DeliverKey(const SDL_KeyboardEvent& key) {
    QLX_SDLWindow* window = FindWindow(key.windowID);
    if (!window)
        return;
    const std::uint32_t code = QLX_SDLKeyCode(key.keysym);
    const std::uint32_t modifiers = QLX_SDLModifiers(key.keysym.mod);
    std::uint32_t character = QLX_SDLKeyCharacter(key.keysym);
    if (key.type == SDL_KEYUP) {
        window->GetClient()->PortEvent(
            QLX_MakeKeyEvent(kQLX_EventKind_KeyUp, code, character, modifiers));
        return;
    }
    std::string text;
    if (QLX_SDLTypesText(key.keysym) && TakeText(key.windowID, text) &&
        !SuppressesText(key.keysym.mod)) {
        // The keypad's point stays a point where the language has a comma there.
        std::size_t position = 0;
        const std::uint32_t typed = Cmn_DecodeUTF8(text, position);
        if (key.keysym.scancode != SDL_SCANCODE_KP_PERIOD)
            character = typed;
        text.erase(0, position);
    } else if (QLX_SDLTypesText(key.keysym) && !SuppressesText(key.keysym.mod) &&
               QLX_SDL().IsTextInputActive() && character >= 128) {
        character = 0; // a dead key: its text comes with the next one
    }
    window->GetClient()->PortEvent(QLX_MakeKeyEvent(
        key.repeat ? kQLX_EventKind_AutoKey : kQLX_EventKind_KeyDown, code, character, modifiers));
    // A key may type several characters; the window may be gone by now.
    if (!text.empty()) {
        if (QLX_SDLWindow* still = FindWindow(key.windowID))
            DeliverText(*still, text.c_str());
    }
}

void QLX_SDLPlatform::State::DeliverText(QLX_SDLWindow& window, const char* text) {
    if (*text)
        window.GetClient()->PortEvent(QLX_MakeTextEvent(text));
}

void QLX_SDLPlatform::State::DeliverButton(const SDL_MouseButtonEvent& button) {
    QLX_SDLWindow* window = FindWindow(button.windowID);
    if (!window || button.button > SDL_BUTTON_RIGHT)
        return;
    const EMouseButton which = button.button == SDL_BUTTON_LEFT     ? kMouse_Left
                               : button.button == SDL_BUTTON_MIDDLE ? kMouse_Middle
                                                                    : kMouse_Right;
    const std::uint32_t kind =
        button.type == SDL_MOUSEBUTTONDOWN ? kQLX_EventKind_MouseDown : kQLX_EventKind_MouseUp;
    window->GetClient()->PortEvent(
        QLX_MakeMouseEvent(kind, window->ToLogical(button.x, button.y), Modifiers(), which));
}

void QLX_SDLPlatform::State::DeliverMotion(const SDL_MouseMotionEvent& motion) {
    if (QLX_SDLWindow* window = FindWindow(motion.windowID))
        window->GetClient()->PortEvent(QLX_MakeMouseEvent(
            kQLX_EventKind_MouseMoved, window->ToLogical(motion.x, motion.y), Modifiers()));
}

void QLX_SDLPlatform::State::DeliverWheel(const SDL_MouseWheelEvent& wheel) {
    QLX_SDLWindow* window = FindWindow(wheel.windowID);
    if (!window)
        return;
    int x = 0;
    int y = 0;
    QLX_SDL().GetMouseState(&x, &y);
    const Cmn_Point<int> delta{static_cast<int>(std::lround(wheel.preciseX * kWheel_Notch)),
                               static_cast<int>(std::lround(wheel.preciseY * kWheel_Notch))};
    window->GetClient()->PortEvent(QLX_MakeWheelEvent(window->ToLogical(x, y), delta, Modifiers()));
}

void QLX_SDLPlatform::State::DeliverWindow(const SDL_WindowEvent& event) {
    QLX_SDLWindow* window = FindWindow(event.windowID);
    if (!window)
        return;
    QLX_WindowPortClient* client = window->GetClient();
    switch (event.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        window->SurfaceChanged();
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_Resized));
        break;
    case SDL_WINDOWEVENT_MOVED:
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_Moved));
        break;
    case SDL_WINDOWEVENT_EXPOSED:
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_Exposed));
        break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        focusedID = event.windowID;
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_Activated));
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        focusedID = 0;
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_Deactivated));
        break;
    case SDL_WINDOWEVENT_LEAVE:
        client->PortEvent(QLX_MakeMouseEvent(kQLX_EventKind_MouseLeft, {0, 0}, 0));
        break;
    case SDL_WINDOWEVENT_CLOSE:
        client->PortEvent(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested));
        break;
    default:
        break;
    }
}

// What the SDL platform's parts share. For the SDL platform's own source files.
#pragma once

#include <SDL.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "qlx/platform/sdl/qlx_sdl.h"
#include "qlx/platform/sdl/qlx_sdlwindow.h"
#include "qlx/platform/sdl/qlx_sdlxerrors.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uview.h"

class QLX_SDLLoop : public QLX_EventLoop {
  public:
    explicit QLX_SDLLoop(QLX_SDLPlatform::State& platform) : mPlatform(platform) {}
    ~QLX_SDLLoop() override;

  protected:
    bool DispatchNative() override;
    bool WaitNative(double seconds) override;
    void WakeNative() override;

  private:
    QLX_SDLPlatform::State& mPlatform;
};

class QLX_SDLFactory : public QLX_WindowPortFactory {
  public:
    explicit QLX_SDLFactory(QLX_SDLPlatform::State& platform) : mPlatform(platform) {}
    ~QLX_SDLFactory() override;
    std::unique_ptr<QLX_WindowPort> MakePort(const QLX_WindowSettings& settings,
                                             QLX_WindowPortClient* client) override;

  private:
    QLX_SDLPlatform::State& mPlatform;
};

class QLX_SDLKeyboard : public QLX_KeyboardSource {
  public:
    ~QLX_SDLKeyboard() override;
    std::uint32_t GetModifierBits() const override;
    bool IsKeyDown(DAW_EKeyCode key) const override;
    std::uint32_t GetMouseButtons() const override;
};

class QLX_SDLClipboard : public QLX_Clipboard {
  public:
    ~QLX_SDLClipboard() override;
    bool GetText(std::string& text) override;
    void SetText(const std::string& text) override;
};

struct QLX_SDLPlatform::State {
    State();
    ~State();
    [[nodiscard]] QLX_SDLWindow* FindWindow(Uint32 id) const;
    void ShowCursor(ECursor cursor);
    /// Translates an event and delivers it. Text events that belong to the key are taken from SDL's
    /// queue with it.
    void Deliver(const SDL_Event& event);

    std::unique_ptr<QLX_SDLXErrors> xErrors;
    QLX_SDLLoop loop;
    QLX_SDLFactory factory;
    QLX_SDLKeyboard keyboard;
    QLX_SDLClipboard clipboard;
    std::vector<QLX_SDLWindow*> windows; // not owned
    std::vector<SDL_Rect> presentRects;
    std::array<SDL_Cursor*, kCursor_Count> cursors{}; // owned; made when first shown
    Uint32 wakeEvent = 0;
    Uint32 focusedID = 0;
    int displayScale = 120;

  private:
    void DeliverKey(const SDL_KeyboardEvent& key);
    void DeliverText(QLX_SDLWindow& window, const char* text);
    void DeliverButton(const SDL_MouseButtonEvent& button);
    void DeliverWheel(const SDL_MouseWheelEvent& wheel);
    void DeliverMotion(const SDL_MouseMotionEvent& motion);
    void DeliverWindow(const SDL_WindowEvent& event);
};

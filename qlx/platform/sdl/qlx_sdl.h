// The platform over SDL2: X11 and Wayland. The window's surface is drawn into directly and its
// damaged rectangles are put on the screen without a renderer; nothing is drawn, and no time used,
// while nothing happens.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qlx/platform/qlx_platform.h"

/// One a process at a time. Scale factors come from QLX_SCALE (X11 knows none, and SDL reports
/// physical densities that users do not mean); 1 without it.
class QLX_API QLX_SDLPlatform : public QLX_Platform {
  public:
    /// Throws std::runtime_error with SDL's reason when there is no display. A driver without a
    /// screen is taken only when SDL_VIDEODRIVER asks for it.
    QLX_SDLPlatform();
    ~QLX_SDLPlatform() override;

    const char* GetName() const override { return "sdl"; }
    QLX_EventLoop& GetEventLoop() override;
    QLX_WindowPortFactory& GetWindowFactory() override;
    QLX_KeyboardSource& GetKeyboard() override;
    QLX_Clipboard& GetClipboard() override;
    int GetDisplayScale() const override;

    struct State;

  private:
    std::unique_ptr<State> mState;
};

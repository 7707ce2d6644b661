// One object that holds all sides of a platform: event loop, windows, keyboard, clipboard, display
// scale. A program makes one, installs it for as long as it runs, and uses the walls from then on.
#pragma once

#include <memory>
#include <string>

#include "basekit/cmn/cmn_types.h"

class QLX_Clipboard;
class QLX_EventLoop;
class QLX_FileDialogs;
class QLX_KeyboardSource;
class QLX_WindowPortFactory;

/// A platform. User-interface thread.
class QLX_API QLX_Platform {
  public:
    QLX_Platform();
    QLX_Platform(const QLX_Platform&) = delete;
    QLX_Platform& operator=(const QLX_Platform&) = delete;
    virtual ~QLX_Platform();

    /// "headless", "sdl", "win32".
    [[nodiscard]] virtual const char* GetName() const = 0;
    [[nodiscard]] virtual QLX_EventLoop& GetEventLoop() = 0;
    [[nodiscard]] virtual QLX_WindowPortFactory& GetWindowFactory() = 0;
    [[nodiscard]] virtual QLX_KeyboardSource& GetKeyboard() = 0;
    [[nodiscard]] virtual QLX_Clipboard& GetClipboard() = 0;
    /// Device pixels for 120 logical ones on the main display; kWindow_ScaleUnit is none.
    [[nodiscard]] virtual int GetDisplayScale() const = 0;

    /// The system's own file dialogs; null, as here, for the ones that the framework draws.
    [[nodiscard]] virtual QLX_FileDialogs* GetFileDialogs();

    /// Puts every side of this platform in place, and attaches gApplication, when there is one, to
    /// the loop. Uninstall, or the end of the platform, puts back what was there before.
    void Install();
    void Uninstall();
    /// The platform installed last; null for none.
    [[nodiscard]] static QLX_Platform* Get();

    /// The platform that the operating system is: SDL2 on Linux, Win32 on Windows; with
    /// QLX_PLATFORM=headless in the environment the one without a display, whose loop ends when
    /// nothing is left to do, so that a build server can start any program. Throws
    /// std::runtime_error with the reason when there is no display.
    [[nodiscard]] static std::unique_ptr<QLX_Platform> MakeNative();
    /// The scale that QLX_SCALE in the environment asks for ("1", "1.25", "2"), in 120ths;
    /// otherwise the fallback. Out of range (1 to 3) or no number: the fallback, with a line of the
    /// trace.
    [[nodiscard]] static int ScaleFromEnvironment(int fallback);
    /// The platform that QLX_PLATFORM asks for ("headless"); null for any other text and for none.
    [[nodiscard]] static std::unique_ptr<QLX_Platform> FromEnvironment();

  private:
    struct Installed;
    std::unique_ptr<Installed> mInstalled; // what was there before; null while not installed
};

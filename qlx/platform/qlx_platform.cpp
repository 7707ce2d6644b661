#include "qlx/platform/qlx_platform.h"

#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/platform/headless/qlx_headless.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_filedialog.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowport.h"
#include "qlx/views/uapplication.h"

namespace {
QLX_Platform* sPlatform = nullptr;
}

struct QLX_Platform::Installed {
    QLX_Platform* platform;
    QLX_EventLoop* loop;
    QLX_WindowPortFactory* factory;
    QLX_KeyboardSource* keyboard;
    QLX_Clipboard* clipboard;
    QLX_FileDialogs* fileDialogs;
};

QLX_Platform::QLX_Platform() = default;

QLX_Platform::~QLX_Platform() {
    // A side of this platform may be gone already; each takes itself out where it is still in
    // place.
    if (sPlatform == this)
        sPlatform = mInstalled ? mInstalled->platform : nullptr;
}

QLX_Platform* QLX_Platform::Get() { return sPlatform; }

QLX_FileDialogs* QLX_Platform::GetFileDialogs() { return nullptr; }

void QLX_Platform::Install() {
    if (mInstalled)
        return;
    mInstalled = std::make_unique<Installed>();
    mInstalled->platform = std::exchange(sPlatform, this);
    mInstalled->loop = QLX_EventLoop::Install(&GetEventLoop());
    mInstalled->factory = QLX_WindowPortFactory::Install(&GetWindowFactory());
    mInstalled->keyboard = QLX_Keyboard::SetSource(&GetKeyboard());
    mInstalled->clipboard = QLX_Clipboard::Install(&GetClipboard());
    mInstalled->fileDialogs = QLX_FileDialogs::Install(GetFileDialogs());
    if (gApplication)
        gApplication->AttachToLoop(&GetEventLoop());
}

void QLX_Platform::Uninstall() {
    if (!mInstalled)
        return;
    if (gApplication)
        gApplication->AttachToLoop(mInstalled->loop);
    QLX_FileDialogs::Install(mInstalled->fileDialogs);
    QLX_Clipboard::Install(mInstalled->clipboard);
    QLX_Keyboard::SetSource(mInstalled->keyboard);
    QLX_WindowPortFactory::Install(mInstalled->factory);
    QLX_EventLoop::Install(mInstalled->loop);
    sPlatform = mInstalled->platform;
    mInstalled.reset();
}

int QLX_Platform::ScaleFromEnvironment(int fallback) {
    const char* text = std::getenv("QLX_SCALE");
    if (!text || !*text)
        return fallback;
    char* end = nullptr;
    const double factor = std::strtod(text, &end);
    if (*end != '\0' || !(factor >= 1.0 && factor <= 3.0)) {
        Cmn_TraceWrite("QLX_SCALE=%s is not a number from 1 to 3 and is not used", text);
        return fallback;
    }
    return static_cast<int>(std::lround(factor * kWindow_ScaleUnit));
}

std::unique_ptr<QLX_Platform> QLX_Platform::FromEnvironment() {
    const char* name = std::getenv("QLX_PLATFORM");
    if (!name || std::string_view(name) != "headless")
        return nullptr;
    auto platform = std::make_unique<QLX_HeadlessPlatform>();
    platform->SetDisplayScale(ScaleFromEnvironment(platform->GetDisplayScale()));
    return platform;
}

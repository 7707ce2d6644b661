// The gallery in a real window on an X server of its own, gone through by keys from outside.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>

#include "app/misc/qlx_init.h"
#include "qlx/platform/sdl/qlx_sdl.h"
#include "qlx/views/qlx_event.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uwindow.h"
#include "tests/support/gallery.h"
#include "tests/support/x_server.h"

namespace {

/// Counts the key releases that have arrived, so that a key from outside is known to be through.
class KeyCounter : public TWindow::EventListener {
  public:
    void WindowEvent(TWindow*, const QLX_EventRef& event) override {
        mReleased += event.GetID().mClass == kQLX_EventClass_Keyboard &&
                     event.GetID().mKind == kQLX_EventKind_KeyUp;
    }
    int mReleased = 0;
};

} // namespace

TEST(GalleryOnScreen, KeysAloneReachAndChangeEveryControl) {
    const XServer server;
    if (server.GetDisplay().empty() || Output("command -v xdotool").empty())
        GTEST_SKIP() << "Xvfb or xdotool is not installed";
    QLX_Init::Init();
    setenv("DISPLAY", server.GetDisplay().c_str(), 1);
    setenv("SDL_VIDEODRIVER", "x11", 1);
    auto* application = new TApplication;
    {
        QLX_SDLPlatform platform;
        platform.Install();
        const auto runUntil = [&](const std::function<bool()>& condition) {
            using Clock = std::chrono::steady_clock;
            const auto end = Clock::now() + std::chrono::seconds(20);
            while (!condition() && Clock::now() < end)
                platform.GetEventLoop().RunOnce(0.01);
            return condition();
        };
        SetGalleryMenus();
        TWindow* window = MakeGallery(QLX_SOURCE_DIR "/examples/gallery");
        EXPECT_TRUE(window->Open());
        EXPECT_TRUE(runUntil([&] { return !window->NeedsDrawing(); }));
        const std::string id = Output("xdotool search --sync --name '" + window->GetTitle() + "'");
        Output("xdotool windowfocus " + id);
        EXPECT_TRUE(runUntil([&] { return window->IsActive(); }));

        KeyCounter counter;
        TWindow::EventListener* const before = TWindow::SetEventListener(&counter);
        const GalleryWalk walk = WalkGallery(*window, [&](const std::string& key) {
            const int released = counter.mReleased;
            Output("xdotool key " + (key == "Space" ? "space" : key));
            EXPECT_TRUE(runUntil([&] { return counter.mReleased > released; })) << key;
        });
        TWindow::SetEventListener(before);
        EXPECT_EQ(walk.mProblems, std::vector<std::string>{});
        EXPECT_GE(walk.mVisited, 50);
        window->Free();
        TMenuManager::RemoveAllMenus();
        platform.Uninstall();
    }
    application->Free();
    unsetenv("SDL_VIDEODRIVER");
}

// A real window on an X server of its own, driven by xdotool, beside the same description driven
// headless: the pictures are the same, pixel for pixel.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "basekit/cmn/cmn_types.h"
#include "qlx/platform/sdl/qlx_sdl.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"
#include "tests/support/probe_view.h"
#include "tests/support/x_server.h"

namespace {

/// A program that runs beside the test, ended by its process id.
class Companion {
  public:
    explicit Companion(const char* program) {
        mProcess = fork();
        if (mProcess == 0) {
            (void)!freopen("/dev/null", "w", stdout);
            (void)!freopen("/dev/null", "w", stderr);
            execlp(program, program, static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ~Companion() {
        if (mProcess > 0) {
            kill(mProcess, SIGTERM);
            waitpid(mProcess, nullptr, 0);
        }
    }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

  private:
    pid_t mProcess;
};

class SDLWindow : public testing::Test {
  protected:
    void SetUp() override {
        ClassDesc::InitUClassDesc();
        if (mServer.GetDisplay().empty() || Output("command -v xdotool").empty() ||
            Output("command -v import").empty())
            GTEST_SKIP() << "Xvfb, xdotool or import is not installed";
        setenv("DISPLAY", mServer.GetDisplay().c_str(), 1);
        setenv("SDL_VIDEODRIVER", "x11", 1);
        mApplication = new TApplication;
        mPlatform = std::make_unique<QLX_SDLPlatform>();
        mPlatform->Install();
        mWindow = TViewServer::Get()->NewWindow(ReadDescription("windows/probe.xml"));
        (void)TViewServer::Get()->TakeProblems();
        ASSERT_TRUE(mWindow->Open());
        ASSERT_TRUE(RunUntil([this] { return !mWindow->NeedsDrawing(); }));
        mID = Output("xdotool search --sync --name 'QLX probe'");
        Do("windowfocus " + mID);
        ASSERT_TRUE(RunUntil([this] { return mWindow->IsActive(); }));
    }

    void TearDown() override {
        if (mWindow)
            mWindow->Free();
        if (mPlatform)
            mPlatform->Uninstall();
        mPlatform.reset();
        if (mApplication)
            mApplication->Free();
        unsetenv("SDL_VIDEODRIVER");
        unsetenv("QLX_SCALE");
    }

    bool RunUntil(const std::function<bool()>& condition, double seconds = 20) {
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        while (!condition()) {
            if (Clock::now() >= end)
                return false;
            mPlatform->GetEventLoop().RunOnce(0.02);
        }
        return true;
    }

    /// Does it again when it was lost, as a user does whose window manager is still busy.
    bool Insist(const std::function<void()>& action, const std::function<bool()>& condition) {
        for (int attempt = 0; attempt < 8; ++attempt) {
            action();
            if (RunUntil(condition, 2.5))
                return true;
        }
        return false;
    }

    void RunFor(double seconds) {
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        while (Clock::now() < end)
            mPlatform->GetEventLoop().RunOnce(0.02);
    }

    void Do(const std::string& command) { Output("xdotool " + command); }
    /// Moves the pointer to a place in the window.
    void Point(int x, int y) {
        Do("mousemove --window " + mID + " " + std::to_string(x) + " " + std::to_string(y));
    }
    TProbeView* Probe(const char (&id)[5]) {
        return QLX_ObjectCast<TProbeView>(mWindow->FindSubView(Cmn_FourChar(id), true));
    }
    QLX_Image::Ptr Screenshot(const std::string& name) {
        const std::string path = std::string(QLX_TEST_OUTPUT) + "/" + name;
        std::filesystem::create_directories(QLX_TEST_OUTPUT);
        Output("import -window " + mID + " " + path);
        return QLX_Image::FromPNGFile(path);
    }

    XServer mServer;
    std::unique_ptr<QLX_SDLPlatform> mPlatform;
    TApplication* mApplication = nullptr;
    TWindow* mWindow = nullptr;
    std::string mID;
};

TEST_F(SDLWindow, DrivenByAUserItShowsWhatTheHeadlessOneShows) {
    Point(60, 60);
    Do("click 1");
    ASSERT_TRUE(RunUntil([this] { return Probe("prob")->IsTarget(); }));
    Do("type --window " + mID + " 'aB1+'");
    ASSERT_TRUE(RunUntil([this] { return Probe("prob")->GetText() == "aB1+"; }))
        << Probe("prob")->GetText();
    Do("key KP_Decimal");
    ASSERT_TRUE(RunUntil([this] { return Probe("prob")->GetText() == "aB1+."; }))
        << Probe("prob")->GetText();
    Do("mousedown 1");
    Point(75, 85);
    ASSERT_TRUE(RunUntil([this] { return Probe("prob")->GetDragged() == VPoint(15, 25); }));
    Do("mouseup 1");
    Do("click 5"); // wheel, one notch towards the user
    ASSERT_TRUE(RunUntil([this] { return mWindow->GetTracker() == nullptr; }));
    Do("key Tab");
    ASSERT_TRUE(RunUntil([this] { return Probe("two ")->IsTarget(); }));
    RunFor(0.2);
    const QLX_Image::Ptr shown = Screenshot("sdl_window.png");

    mPlatform->Uninstall();
    mWindow->Free();
    mWindow = nullptr;
    QLX_TestDriver driver;
    driver.OpenWindow(ReadDescription("windows/probe.xml"));
    driver.Click(Cmn_Point<int>{60, 60});
    driver.Type("aB1+.");
    driver.Drag({60, 60}, {75, 85});
    driver.Wheel(Cmn_Point<int>{75, 85}, -1);
    driver.Key(kDAW_Key_Tab);
    driver.SavePicture(std::string(QLX_TEST_OUTPUT) + "/headless_window.png");
    EXPECT_TRUE(QLX_TestDriver::IsSamePicture(shown, driver.GetPicture()))
        << "see sdl_window.png and headless_window.png in " << QLX_TEST_OUTPUT;
    (void)TViewServer::Get()->TakeProblems();
}

TEST_F(SDLWindow, AnIdleWindowSleepsAndAResizedOneIsDrawnAnew) {
    RunFor(0.3);
    const std::uint64_t turns = mPlatform->GetEventLoop().GetTurnCount();
    const std::clock_t used = std::clock();
    RunFor(0.5);
    EXPECT_EQ(mPlatform->GetEventLoop().GetTurnCount(), turns);
    EXPECT_LT(std::clock() - used, CLOCKS_PER_SEC / 4);
    Do("windowsize " + mID + " 400 200");
    ASSERT_TRUE(RunUntil([this] { return mWindow->GetSize() == VPoint(400, 200); }));
    RunFor(0.2);
    const QLX_Image::Ptr shown = Screenshot("sdl_resized.png");
    EXPECT_EQ(shown->GetWidth(), 400);
    EXPECT_NE(shown->GetPixel(395, 195), 0xFF000000U);
    QLX_Clipboard::Get().SetText("copied é");
    std::string text;
    EXPECT_TRUE(QLX_Clipboard::Get().GetText(text));
    EXPECT_EQ(text, "copied é");
}

TEST_F(SDLWindow, AWindowManagerClosesIt) {
    if (Output("command -v openbox").empty())
        GTEST_SKIP() << "openbox is not installed";
    // The window is there first: showing one while a manager begins may wait for each other.
    const Companion manager("openbox");
    const std::string state =
        "xprop -root _NET_SUPPORTED | grep -F _NET_ACTIVE_WINDOW && xprop -id " + mID +
        " WM_STATE | grep -F window";
    ASSERT_TRUE(RunUntil([&] { return !Output(state).empty(); })) << "taken over";
    ASSERT_TRUE(
        Insist([this] { Do("windowactivate " + mID); }, [this] { return mWindow->IsActive(); }));
    const auto typed = [this] { return Probe("prob")->GetText() == "q"; };
    const auto type = [this] {
        Point(60, 60);
        Do("click 1");
        Do("key BackSpace Return Escape KP_Enter"); // the first empties, the others type nothing
        Do("type q");
    };
    ASSERT_TRUE(Insist(type, typed)) << Probe("prob")->GetText();
    const auto close = [this, again = false]() mutable {
        // A manager that was beginning may have lost the window: shown anew, it is taken over.
        if (std::exchange(again, true)) {
            mWindow->ShowWindow(false);
            RunFor(0.2);
            mWindow->ShowWindow(true);
            RunFor(0.2);
            Do("windowactivate " + mID);
        }
        Do("key alt+F4");
    };
    ASSERT_TRUE(Insist(close, [this] { return !mWindow->IsOpen(); }));
    EXPECT_EQ(Probe("prob")->GetText(), "q") << "the views live on";
    RunFor(0.1);
}

TEST(SDLPlatform, WithoutADisplayItSaysSo) {
    const char* display = std::getenv("DISPLAY");
    const std::string old = display ? display : "";
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    EXPECT_THROW(QLX_SDLPlatform(), std::runtime_error);
    if (display)
        setenv("DISPLAY", old.c_str(), 1);
}

} // namespace

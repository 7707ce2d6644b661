// The session host in a real window, driven by xdotool: what was recorded there, played without a
// display, ends in the same picture.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qlx/imaging/qlx_image.h"
#include "tests/support/run_program.h"

namespace {

std::string Output(const std::string& command) {
    std::string text;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (std::fgets(buffer, sizeof buffer, pipe))
            text += buffer;
        pclose(pipe);
    }
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

void Pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

class SessionWindow : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::getenv("DISPLAY") || Output("command -v xdotool").empty() ||
            Output("command -v import").empty())
            GTEST_SKIP() << "there is no display, or xdotool or import is not installed";
        mFolder = FreshFolder("session_window");
        const std::string program = QLX_TEST_OUTPUT "/../bin/session_host";
        const std::string recording = mFolder + "/user.play";
        mHost = fork();
        if (mHost == 0) {
            setenv("SDL_VIDEODRIVER", "x11", 1);
            setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // SDL leaves its connection to D-Bus
            execl(program.c_str(), program.c_str(), "--record", recording.c_str(),
                  static_cast<char*>(nullptr));
            _exit(127);
        }
        mID = Output("timeout 30 xdotool search --sync --onlyvisible --name 'Veltra Session'");
        ASSERT_FALSE(mID.empty());
        Do("windowfocus --sync " + mID);
        Pause(500);
    }

    void TearDown() override {
        if (mHost <= 0)
            return;
        for (int i = 0; i < 100 && mHost > 0; ++i) {
            if (waitpid(mHost, &mStatus, WNOHANG) == mHost)
                mHost = -1;
            Pause(50);
        }
        if (mHost > 0) {
            kill(mHost, SIGKILL);
            waitpid(mHost, &mStatus, 0);
            ADD_FAILURE() << "the host did not end when it was told to quit";
        }
        EXPECT_TRUE(WIFEXITED(mStatus) && WEXITSTATUS(mStatus) == 0);
    }

    void Do(const std::string& command) { Output("xdotool " + command); }
    void Click(int x, int y) {
        Do("mousemove --sync --window " + mID + " " + std::to_string(x) + " " + std::to_string(y));
        Do("click 1");
        Pause(600); // no double click with the next one
    }

    std::string mFolder;
    std::string mID;
    pid_t mHost = -1;
    int mStatus = 0;
};

TEST_F(SessionWindow, AUserTypesSelectsZoomsAndUndoes) {
    Click(79, 181); // start
    Do("type --delay 30 1000");
    Do("key Return");
    Click(327, 181); // length
    Do("type --delay 30 1500");
    Do("key Return");
    Click(451, 181); // nudge
    Do("type --delay 30 200");
    Do("key Return");
    Click(100, 600); // the list of what was done
    Do("key period");
    Do("key ctrl+z");
    Do("key ctrl+z");
    Do("key t");
    Click(700, 181); // tempo
    Do("type --delay 30 96");
    Do("key Tab");
    Pause(500);
    const std::string screenshot = mFolder + "/window.png";
    Output("import -window " + mID + " " + screenshot);
    Do("key ctrl+q");
    TearDown();
    mHost = -1;
    const std::string script = mFolder + "/user.play";
    WriteText(script, "expect 'star' \"00:00:00:00\"\n" + ReadText(script));
    std::string text = ReadText(script);
    const std::size_t quit = text.rfind("chord Ctrl+Q");
    ASSERT_NE(quit, std::string::npos) << text;
    text.resize(quit);
    text += "expect 'star' \"00:00:12:00\"\nexpect 'endt' \"00:00:27:00\"\n"
            "expect 'temp' \"96\"\npicture \"played.png\"\n";
    WriteText(script, text);
    const ProgramRun run = RunProgram("session_host", "--play " + script);
    EXPECT_EQ(run.mStatus, 0) << run.mErr << text;
    const QLX_Image::Ptr window = QLX_Image::FromPNGFile(screenshot);
    const QLX_Image::Ptr played = QLX_Image::FromPNGFile(mFolder + "/played.png");
    ASSERT_TRUE(window && played);
    EXPECT_TRUE(window->IsEqual(*played)) << mFolder;
}

} // namespace

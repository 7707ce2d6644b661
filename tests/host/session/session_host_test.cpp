// The session host from the command line: scripts, pictures, and what it says of bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <vector>

#include "host/session_model.h"
#include "tests/support/run_program.h"

namespace {

ProgramRun RunHost(const std::string& arguments) { return RunProgram("session_host", arguments); }

TEST(SessionHost, TheScriptsHold) {
    for (const char* script : {"demo", "nudge"}) {
        const ProgramRun run = RunHost(std::string("--play host/data/") + script + ".play");
        EXPECT_EQ(run.mStatus, 0) << run.mErr;
        EXPECT_NE(run.mOut.find(" 0 failed"), std::string::npos) << run.mOut;
    }
}

TEST(SessionHost, WhatAScriptDoesCanBeRecordedAndPlayedAgain) {
    const std::string folder = FreshFolder("session_record");
    const std::string play = folder + "/a.play";
    WriteText(play,
              "click 'star'\ntype \"1234\"\nchord Return\ndrag 300,400 500,400\nwheel 'wave' 2\n"
              "doubleclick 'trkn'\ntype \"Lead \\\"vox\\\"\"\nchord Return\n");
    const ProgramRun first = RunHost("--play " + play + " --record " + folder +
                                     "/b.play --headless " + folder + "/a.png");
    ASSERT_EQ(first.mStatus, 0) << first.mErr;
    const ProgramRun second =
        RunHost("--play " + folder + "/b.play --headless " + folder + "/b.png");
    ASSERT_EQ(second.mStatus, 0) << second.mErr << ReadText(folder + "/b.play");
    EXPECT_EQ(ReadText(folder + "/a.png"), ReadText(folder + "/b.png"));
}

TEST(SessionHost, BadInputIsNamedAndNothingIsOverwritten) {
    const std::string folder = FreshFolder("session_bad");
    WriteText(folder + "/text.wav", "not audio at all");
    WriteText(folder + "/cut.wav", ReadText("host/data/pluck.wav").substr(0, 30));
    WriteText(folder + "/wrong.play", "click 'star'\nclick 'nope'\n");
    WriteText(folder + "/mistake.play", "click 'star'\nwigle 'star'\nexpect 'star'\n");
    WriteText(folder + "/failed.play", "expect 'star' \"00:00:09:00\"\n");
    const std::string broken = FreshFolder("session_bad/broken");
    WriteText(broken + "/session.xml", "<container name=\"a\">\n<viewhierarchy>\n</container>");
    WriteText(folder + "/kept.png", "kept");
    const struct {
        std::string mArguments;
        std::vector<std::string> mSays;
    } rows[] = {
        {"nowhere.wav --headless x.png", {"nowhere.wav: "}},
        {folder + "/text.wav --headless " + folder + "/kept.png", {"text.wav: "}},
        {folder + "/cut.wav --headless " + folder + "/kept.png", {"cut.wav: "}},
        {"--play " + folder + "/nowhere.play", {"nowhere.play: "}},
        {"--play " + folder + "/wrong.play", {"wrong.play:2: ", "'nope'"}},
        {"--play " + folder + "/mistake.play",
         {"mistake.play:2:1: ", "wigle", "mistake.play:3:12: "}},
        {"--play " + folder + "/failed.play",
         {"failed.play:1: star is \"00:00:00:00\", expected \"00:00:09:00\""}},
        {"--data " + folder + "/broken --headless " + folder + "/kept.png", {"session.xml", ":3:"}},
        {"--data " + folder + "/nowhere --headless x.png", {"nowhere/session.xml"}},
        {"--headless " + folder + "/missing/x.png", {"missing/x.png"}},
        {"--layout Huge --headless x.png", {"--layout", "Huge", "Compact"}},
        {"--language XYZ --headless x.png", {"--language", "XYZ", "JPN"}},
        {"--theme pink --headless x.png", {"--theme", "pink", "dark-contrast"}},
        {"--scale 9 --headless x.png", {"--scale", "9"}},
        {"--unknown", {"--unknown"}},
    };
    for (const auto& row : rows) {
        const ProgramRun run = RunHost(row.mArguments);
        EXPECT_NE(run.mStatus, 0) << row.mArguments;
        for (const std::string& text : row.mSays)
            EXPECT_NE((run.mErr + run.mOut).find(text), std::string::npos)
                << row.mArguments << "\nsays: " << run.mErr << run.mOut;
    }
    EXPECT_EQ(ReadText(folder + "/kept.png"), "kept");
}

TEST(SessionHost, EveryLayoutLanguageAndThemeDraws) {
    const std::string folder = FreshFolder("session_looks");
    for (const char* look : {"--layout Compact --language JPN --theme light",
                             "--layout Large --language DEU --scale 2",
                             "--layout Default --language FRA --theme dark-contrast --scale 1.25",
                             "--theme light-contrast host/data/pluck.wav"}) {
        const ProgramRun run = RunHost(std::string(look) + " --headless " + folder + "/look.png");
        EXPECT_EQ(run.mStatus, 0) << look << run.mErr;
        EXPECT_EQ(run.mErr, "") << look;
    }
}

// Editors' rules for coupled fields.
TEST(SessionModel, StartMovesTheWholeEndAndLengthTheEnd) {
    SessionModel model;
    model.SetFrameCount(1000);
    SessionState state;
    state.mStart = 100;
    state.mEnd = 300;
    model.SetState(state, kSession_Selection);
    const struct {
        SessionState mState;
        std::int64_t mStart, mEnd;
    } rows[] = {
        {model.WithStart(500), 500, 700},  {model.WithStart(900), 900, 1000},
        {model.WithStart(-5), 0, 200},     {model.WithEnd(50), 50, 50},
        {model.WithEnd(5000), 100, 1000},  {model.WithLength(10), 100, 110},
        {model.WithLength(-10), 100, 100}, {model.WithSelection(400, 20), 20, 400},
        {model.Moved(-500), 0, 200},       {model.Moved(10000), 800, 1000},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.mState.mStart, row.mStart);
        EXPECT_EQ(row.mState.mEnd, row.mEnd);
    }
    model.SetGrid(100);
    EXPECT_EQ(model.Snap(149), 149);
    model.SetSnapsToGrid(true);
    EXPECT_EQ(model.Snap(149), 100);
    EXPECT_EQ(model.Snap(150), 200);
}

} // namespace

// The session host's description, as the tool sees it with the host's classes loaded.
#include <gtest/gtest.h>

#include <sstream>

#include "run_tool.h"

namespace {
#ifndef _WIN32
constexpr const char* kLoad = "--load " QLX_TEST_OUTPUT "/../bin/libsession_views.so ";
constexpr const char* kFile = " host/data/session.xml";

TEST(HostData, TheDescriptionIsWellFormattedAndFindsItsTexts) {
    const ToolRun check = RunTool(std::string(kLoad) + "check" + kFile);
    EXPECT_EQ(check.mStatus, 0) << check.mOut;
    // Menus are made by code, so their keys are in no view; everything else is a finding.
    std::string line;
    std::istringstream lines(check.mOut);
    while (std::getline(lines, line))
        EXPECT_NE(line.find("[string-unused]"), std::string::npos) << line;
    const ToolRun format = RunTool(std::string("format --check") + kFile);
    EXPECT_EQ(format.mStatus, 0) << format.mOut;
}

TEST(HostData, EveryTextFitsInEveryLayoutLanguageAndScale) {
    const ToolRun fit = RunTool(std::string(kLoad) + "fit --strict --scale 1,1.5" + kFile);
    EXPECT_EQ(fit.mOut + fit.mErr, "");
    EXPECT_EQ(fit.mStatus, 0);
}

TEST(HostData, TheSameScriptHoldsWithTheTool) {
    const ToolRun play = RunTool(std::string(kLoad) + "play" + kFile + " host/data/demo.play");
    EXPECT_EQ(play.mStatus, 0) << play.mErr;
}
#endif
} // namespace

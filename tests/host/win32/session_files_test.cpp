// Audio files that the Windows build of the session host is given.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/run_program.h"

namespace {

// 64 samples, written by libFLAC 1.4.2.
std::string SmallFLAC() {
    static constexpr unsigned char kBytes[] = {
        0x66, 0x4c, 0x61, 0x43, 0x00, 0x00, 0x00, 0x22, 0x10, 0x00, 0x10, 0x00, 0x00, 0x00,
        0x15, 0x00, 0x00, 0x15, 0x0b, 0xb8, 0x00, 0xf0, 0x00, 0x00, 0x00, 0x40, 0x08, 0x7e,
        0x2e, 0xb5, 0xb1, 0x6f, 0x77, 0xe6, 0xd0, 0x55, 0xc3, 0xc9, 0x2f, 0x47, 0xff, 0x93,
        0x84, 0x00, 0x00, 0x28, 0x20, 0x00, 0x00, 0x00, 0x72, 0x65, 0x66, 0x65, 0x72, 0x65,
        0x6e, 0x63, 0x65, 0x20, 0x6c, 0x69, 0x62, 0x46, 0x4c, 0x41, 0x43, 0x20, 0x31, 0x2e,
        0x34, 0x2e, 0x32, 0x20, 0x32, 0x30, 0x32, 0x32, 0x31, 0x30, 0x32, 0x32, 0x00, 0x00,
        0x00, 0x00, 0xff, 0xf8, 0x6a, 0x08, 0x00, 0x3f, 0x9a, 0x10, 0x00, 0x08, 0x40, 0xff,
        0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xfc, 0x1a, 0xac};
    return {reinterpret_cast<const char*>(kBytes), sizeof kBytes};
}

// The cross-built libsndfile has no FLAC library behind it: the host says so and ends, also for a
// file that breaks off.
TEST(SessionFiles, FLACIsReportedAsUnsupported) {
    const std::string folder = FreshFolder("session_flac");
    const std::string whole = SmallFLAC();
    for (const std::size_t length : {whole.size(), std::size_t{50}, std::size_t{5}}) {
        const std::string file = folder + "/take.flac";
        WriteText(file, whole.substr(0, length));
        const ProgramRun run =
            RunProgram("session_host", file + " --headless " + folder + "/none.png");
        EXPECT_EQ(run.mStatus, 1) << length;
        EXPECT_NE(run.mErr.find("take.flac: FLAC is not supported by this build"),
                  std::string::npos)
            << length << ": " << run.mErr;
        EXPECT_FALSE(std::filesystem::exists(folder + "/none.png"));
    }
    const ProgramRun wave =
        RunProgram("session_host", "host/data/pluck.wav --headless " + folder + "/wave.png");
    EXPECT_EQ(wave.mStatus, 0) << wave.mErr;
    EXPECT_TRUE(std::filesystem::exists(folder + "/wave.png"));
}

// Names that the machine's code page has no characters for reach the program and its files.
TEST(SessionFiles, NamesMayHaveAnyCharacters) {
    const std::string folder = FreshFolder("session_names");
    const std::string name = "Pr\xC3\xBC"
                             "fung \xE6\x9D\xB1\xE4\xBA\xAC";
    WriteText(folder + "/" + name + ".wav", ReadText("host/data/pluck.wav"));
    WriteText(folder + "/name.play", "expect 'trkn' \"" + name + "\"\n");
    const std::filesystem::path wide(
        std::u8string(reinterpret_cast<const char8_t*>(folder.c_str())));
    std::wstring program = std::filesystem::path(QLX_TEST_OUTPUT "/../bin/session_host").wstring();
    std::replace(program.begin(), program.end(), L'/', L'\\');
    const std::wstring command = program + L" --play " + wide.wstring() + L"/name.play \"" +
                                 wide.wstring() + L"/Pr\u00FCfung \u6771\u4EAC.wav\" >" +
                                 wide.wstring() + L"/out.txt 2>&1";
    EXPECT_EQ(_wsystem(command.c_str()), 0) << ReadText(folder + "/out.txt");
}

} // namespace

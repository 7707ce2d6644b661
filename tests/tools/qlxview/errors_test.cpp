// What a stranger gets wrong: every command says what it could not do and with which file, and its
// exit status tells that from what it found.
#include <gtest/gtest.h>

#include <filesystem>

#include "run_tool.h"

namespace {
constexpr int kFound = 1;
constexpr int kFailed = 2;

TEST(QlxViewErrors, NameTheFileAndTheReason) {
    const std::string folder = FreshFolder("errors");
    std::filesystem::create_directory(folder + "/dir");
    for (const char* name : {"Transport.xml", "Transport.ENU.str"})
        WriteText(folder + "/" + name, ReadText(std::string(QLX_TEST_DATA "/views/") + name));
    WriteText(folder + "/bad.play", "click 'toolong'\njump\n");
    // '%' is the folder; the message stands behind it.
    const struct {
        const char* mArguments;
        int mStatus;
        const char* mMessage;
    } rows[] = {
        {"check %/none.xml", kFound, "%/none.xml: error: No such file or directory [unreadable]"},
        {"check %/dir", kFound, "%/dir: error: Is a directory [unreadable]"},
        {"check %/Transport.ENU.str", kFound, "%/Transport.ENU.str:1:1: error: "},
        {"format %/none.xml", kFailed, "%/none.xml: No such file or directory"},
        {"format %/dir", kFailed, "%/dir: Is a directory"},
        {"tree %/none.xml", kFailed, "%/none.xml: No such file or directory"},
        {"tree --bogus %/Transport.xml", kFailed, "--bogus"},
        {"tree --layout Nope %/Transport.xml", kFailed,
         "%/Transport.xml: there is no layout \"Nope\"; there are: Default Compact Wide"},
        {"tree --language XYZ %/Transport.xml", kFailed,
         "%/Transport.xml: there is no language \"XYZ\"; there are: ENU JPN "},
        {"get %/Transport.xml @none X --layout all", kFailed,
         "%/Transport.xml: there is no layout \"all\""},
        {"check --used-keys %/none.txt %/Transport.xml", kFailed,
         "%/none.txt: No such file or directory"},
        {"get %/Transport.xml", kFailed, "ELEMENT is required"},
        {"get %/Transport.xml @none X", kFound, "%/Transport.xml: there is no element @none"},
        {"diff %/Transport.xml %/none.xml", kFailed, "%/none.xml: No such file or directory"},
        {"merge %/none.xml %/Transport.xml %/Transport.xml", kFailed,
         "%/none.xml: No such file or directory"},
        {"strings extract %/dir", kFailed, "%/dir: Is a directory"},
        {"strings export -l XYZ -o - %/Transport.xml", kFailed, "there is no language \"XYZ\""},
        {"strings import -l DEU -i %/none.po %/Transport.xml", kFailed,
         "%/none.po: No such file or directory"},
        {"pack -o %/none/views.qlxpack %/Transport.xml", kFailed,
         "%/none/views.qlxpack: not written: No such file or directory"},
        {"pack -o %/dir %/Transport.xml", kFailed, "%/dir: not written: is a folder"},
        {"unpack %/Transport.xml", kFailed, "%/Transport.xml: this is no document"},
        {"list %/dir", kFailed, "%/dir: Is a directory"},
        {"schema -o %/dir", kFailed, "%/dir: not written: is a folder"},
        {"render %/Transport.xml -o %/none/a.png", kFailed,
         "%/none/a.png: not written: No such file or directory"},
        {"render %/Transport.xml -o %/dir", kFailed, "%/dir: is there already"},
        {"render %/Transport.xml -o %/a.png --theme purple", kFailed, "there is no theme"},
        {"render %/Transport.xml -o %/a.png --scale 99", kFailed, "99 not in range"},
        {"play %/Transport.xml %/none.play", kFailed, "%/none.play: No such file or directory"},
        {"play %/Transport.xml %/dir", kFailed, "%/dir: Is a directory"},
        {"play %/Transport.xml %/bad.play", kFound, "%/bad.play:1:7: "},
        {"--load %/none.so check %/Transport.xml", kFailed, "%/none.so: "},
    };
    const auto inFolder = [&](std::string text) {
        for (std::size_t at; (at = text.find('%')) != std::string::npos;)
            text.replace(at, 1, folder);
        return text;
    };
    for (const auto& row : rows) {
        const ToolRun run = RunTool(inFolder(row.mArguments));
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mArguments;
#ifndef _WIN32 // whose reasons are in its own words
        EXPECT_NE((run.mOut + run.mErr).find(inFolder(row.mMessage)), std::string::npos)
            << row.mArguments << ": " << run.mOut << run.mErr;
#endif
    }
    EXPECT_FALSE(std::filesystem::exists(folder + "/a.png"));
}
} // namespace

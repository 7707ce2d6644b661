// Every command that writes a file, on a disk that is full and when it is killed in the middle: the
// old file stays whole, nothing is left beside it, and the message names the file and the reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include <sys/wait.h>

#include "tests/support/run_program.h"

namespace {
namespace fs = std::filesystem;

/// What the shell does before the tool starts. Its limit counts in blocks, of at most 1 KB.
constexpr const char* kFull = "trap '' XFSZ; ulimit -f 0; ";
constexpr const char* kKilled = "ulimit -c 0; ulimit -f 0; ";

struct LimitedRun {
    int mStatus;
    std::string mSaid;
};

/// The tool's words go through a pipe, which the limit does not concern.
LimitedRun RunLimited(const std::string& limit, const std::string& arguments) {
    const std::string said = QLX_TEST_OUTPUT "/writers.said";
    const std::string status = QLX_TEST_OUTPUT "/writers.status";
    const std::string command = "exec 3>" + status + "; ( ( " + limit +
                                QLX_TEST_OUTPUT "/../bin/qlxview " + arguments +
                                " 2>&1 ) ; echo \\$? >&3 ) | cat >" + said;
    EXPECT_EQ(std::system(("bash -c \"" + command + "\"").c_str()), 0);
    return {std::atoi(ReadText(status).c_str()), ReadText(said)};
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

const struct Writer {
    const char* mName;
    const char* mArguments; // '%' is the folder
    const char* mOutput;    // what it writes there
} kWriters[] = {
    {"format", "format %/Mix.xml", "Mix.xml"},
    {"extract", "strings extract %/Theirs.xml", "Theirs.ENU.str"},
    {"export", "strings export -l DEU -o %/Mix.po %/Mix.xml", "Mix.po"},
    {"import", "strings import -l DEU -i %/German.po %/Mix.xml", "Mix.DEU.str"},
    {"pack", "pack -o %/views.qlxpack %/Mix.xml", "views.qlxpack"},
    {"unpack", "unpack %/there.qlxpack -C %", "Mix.ENU.str"}, // the tables first, then the source
    {"schema", "schema -o %/qlx.rng", "qlx.rng"},
    {"merge", "merge %/Base.xml %/Mix.xml %/Theirs.xml -o %/Merged.xml", "Merged.xml"},
    {"render", "render %/Mix.xml --force -o %/Mix.png", "Mix.png"},
};

void PrintTo(const Writer& writer, std::ostream* out) { *out << writer.mName; }

std::string Description(const std::string& title) {
    return "<container><viewhierarchy name='Mix'>"
           "<view class='TStaticText' Identifier='text'>"
           "<property name='Frame' type='rect' value='0 0 40 100'/>"
           "<property name='Text' type='stringidx' value='" +
           title + "'/></view></viewhierarchy></container>";
}

class ToolWriter : public testing::TestWithParam<Writer> {
  protected:
    void SetUp() override {
        mFolder = FreshFolder("writers");
        WriteText(mFolder + "/Mix.xml", Description("TITLE"));
        WriteText(mFolder + "/Base.xml", Description("TITLE"));
        WriteText(mFolder + "/Theirs.xml", Description("OTHER"));
        WriteText(mFolder + "/Theirs.ENU.str", "{\n\tOLD\t\"Old\"\n}\n");
        WriteText(mFolder + "/Mix.ENU.str", "{\n\tTITLE\t\"Title\"\n}\n");
        WriteText(mFolder + "/Mix.DEU.str", "{\n\tTITLE\t\"Title\"\t\"Titel\"\n}\n");
        WriteText(mFolder + "/German.po", "msgid \"\"\nmsgstr \"Language: de\\n\"\n\n"
                                          "msgctxt \"Mix|TITLE\"\nmsgid \"Title\"\n"
                                          "msgstr \"\xC3\x9C"
                                          "berschrift\"\n");
        EXPECT_EQ(
            RunProgram("qlxview", "pack -o " + mFolder + "/there.qlxpack " + mFolder + "/Mix.xml")
                .mStatus,
            0);
        mOutput = mFolder + "/" + GetParam().mOutput;
        if (!fs::exists(mOutput))
            WriteText(mOutput, "what was there");
        mOld = ReadText(mOutput);
        mNames = NamesIn(mFolder);
    }

    [[nodiscard]] std::string Arguments() const {
        std::string arguments = GetParam().mArguments;
        for (std::size_t at; (at = arguments.find('%')) != std::string::npos;)
            arguments.replace(at, 1, mFolder);
        return arguments;
    }

    std::string mFolder;
    std::string mOutput;
    std::string mOld;
    std::vector<std::string> mNames;
};

TEST_P(ToolWriter, LeavesTheOldFileWhenTheDiskIsFull) {
    const LimitedRun run = RunLimited(kFull, Arguments());
    EXPECT_EQ(run.mStatus, 2) << run.mSaid;
    EXPECT_NE(run.mSaid.find(mOutput + ": not written: File too large"), std::string::npos)
        << run.mSaid;
    EXPECT_EQ(ReadText(mOutput), mOld);
    EXPECT_EQ(NamesIn(mFolder), mNames);
    // And without the limit it is written.
    EXPECT_LT(RunProgram("qlxview", Arguments()).mStatus, 2);
    EXPECT_NE(ReadText(mOutput), mOld);
}

TEST_P(ToolWriter, LeavesTheOldFileWhenItIsKilled) {
    const LimitedRun run = RunLimited(kKilled, Arguments());
    EXPECT_GT(run.mStatus, 128) << run.mSaid; // by the signal
    EXPECT_EQ(ReadText(mOutput), mOld);
}

TEST(ToolOutput, IsMissedWhenItCannotBeWritten) {
    const std::string file = " " QLX_TEST_DATA "/views/Transport.xml";
    for (const char* command : {"tree", "format --stdout", "schema"}) {
        const std::string said = QLX_TEST_OUTPUT "/writers.said";
        const std::string arguments =
            std::string(command) + (std::string(command).rfind("schema", 0) == 0 ? "" : file);
        const int status = std::system(
            (QLX_TEST_OUTPUT "/../bin/qlxview " + arguments + " >/dev/full 2>" + said).c_str());
        EXPECT_EQ(WEXITSTATUS(status), 2) << command;
        EXPECT_NE(ReadText(said).find("not written: No space left on device"), std::string::npos)
            << command << ": " << ReadText(said);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, ToolWriter, testing::ValuesIn(kWriters),
                         [](const auto& info) { return std::string(info.param.mName); });
} // namespace

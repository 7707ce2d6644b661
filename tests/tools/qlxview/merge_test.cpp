// qlxview diff, merge and the git drivers: descriptions compared and merged by element.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "run_tool.h"

namespace {
std::string Property(const std::string& name, int value, const std::string& filter = {}) {
    return "\t\t\t<property name=\"" + name + "\" type=\"int32\" value=\"" + std::to_string(value) +
           "\"" + filter + "/>\n";
}

std::string View(const std::string& id, const std::string& inside = {}) {
    return "\t\t<view class=\"TView\" Identifier=\"" + id + "\">\n" + inside +
           "\t\t</view> <!-- -->\n";
}

std::string File(const std::string& inside) {
    return "<container name=\"W\">\n\t<viewhierarchy name=\"W\">\n" + inside +
           "\t</viewhierarchy> <!--W -->\n</container>";
}

const std::string kOld = File(View("left", Property("A", 1) + Property("B", 1)) +
                              View("midd", Property("A", 1)) + View("rght", Property("A", 1)));

TEST(QlxViewDiff, TellsElementsAndPropertiesNotLines) {
    const std::string folder = FreshFolder("qlxview-diff");
    const std::string before = folder + "/old.xml", after = folder + "/new.xml";
    WriteText(before, kOld);
    WriteText(after, File(View("rght", Property("A", 1)) +
                          View("left", Property("A", 2) + Property("A", 1, " Layout=\"C\"") +
                                           Property("B", 1)) +
                          View("top ", Property("A", 7))));
    const ToolRun run = RunTool("diff " + before + " " + after);
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mOut, "--- " + before + "\n+++ " + after +
                            "\n  viewhierarchy\n"
                            "~     order: view 'rght', view 'left'\n"
                            "- viewhierarchy/view 'midd'\n"
                            "-     A (int32): 1\n"
                            "-     Identifier (idtype): midd\n"
                            "-     class (string): \"TView\"\n"
                            "  viewhierarchy/view 'left'\n"
                            "-     A (int32): 1\n"
                            "+     A (int32): 2\n"
                            "+     A (int32) [Layout C]: 1\n"
                            "+ viewhierarchy/view 'top '\n"
                            "+     A (int32): 7\n"
                            "+     Identifier (idtype): top \n"
                            "+     class (string): \"TView\"\n");
    // Another form is no difference.
    std::string loose = kOld;
    for (std::size_t at; (at = loose.find('\t')) != std::string::npos;)
        loose.erase(at, 1);
    WriteText(after, "<!-- new -->" + loose);
    const ToolRun same = RunTool("diff " + before + " " + after);
    EXPECT_EQ(same.mOut, "");
    EXPECT_EQ(same.mStatus, 0);
    // String tables count where both have some.
    WriteText(folder + "/old.DEU.str", "{\n\tK\t\"alt\"\n}\n");
    WriteText(folder + "/new.DEU.str", "{\n\tK\t\"neu\"\n}\n");
    EXPECT_NE(RunTool("diff " + before + " " + after)
                  .mOut.find("  string table DEU\n-     K: \"alt\"\n+     K: \"neu\"\n"),
              std::string::npos);
    EXPECT_EQ(RunTool("diff --no-strings " + before + " " + after).mStatus, 0);
}

TEST(QlxViewMerge, TakesWhatOneSideChanged) {
    const std::string folder = FreshFolder("qlxview-merge");
    const std::string base = folder + "/b.xml", ours = folder + "/o.xml",
                      theirs = folder + "/t.xml";
    const struct {
        const char* mWhy;
        std::string mOurs, mTheirs, mResult;
    } rows[] = {
        {"each another property",
         File(View("left", Property("A", 2) + Property("B", 1)) + View("midd", Property("A", 1)) +
              View("rght", Property("A", 1))),
         File(View("left", Property("A", 1)) + View("midd", Property("A", 1)) +
              View("rght", Property("A", 1) + Property("C", 3))),
         File(View("left", Property("A", 2)) + View("midd", Property("A", 1)) +
              View("rght", Property("A", 1) + Property("C", 3)))},
        {"one removes a view, the other adds one behind it",
         File(View("left", Property("A", 1) + Property("B", 1)) + View("rght", Property("A", 1))),
         File(View("left", Property("A", 1) + Property("B", 1)) + View("midd", Property("A", 1)) +
              View("new ", Property("A", 9)) + View("rght", Property("A", 1))),
         File(View("left", Property("A", 1) + Property("B", 1)) + View("new ", Property("A", 9)) +
              View("rght", Property("A", 1)))},
        {"one reorders, the other changes",
         File(View("left", Property("A", 5) + Property("B", 1)) + View("midd", Property("A", 1)) +
              View("rght", Property("A", 1))),
         File(View("rght", Property("A", 1)) + View("midd", Property("A", 1)) +
              View("left", Property("A", 1) + Property("B", 1))),
         File(View("rght", Property("A", 1)) + View("midd", Property("A", 1)) +
              View("left", Property("A", 5) + Property("B", 1)))},
        {"both the same", kOld, kOld, kOld},
        {"comments of both",
         File("\t\t<!-- ours -->\n" + View("left", Property("A", 1) + Property("B", 1)) +
              View("midd", Property("A", 1)) + View("rght", Property("A", 1))),
         File(View("left", Property("A", 1) + Property("B", 1)) + View("midd", Property("A", 1)) +
              "\t\t<!-- theirs -->\n" + View("rght", Property("A", 1))),
         File("\t\t<!-- ours -->\n" + View("left", Property("A", 1) + Property("B", 1)) +
              View("midd", Property("A", 1)) + "\t\t<!-- theirs -->\n" +
              View("rght", Property("A", 1)))},
    };
    for (const auto& row : rows) {
        WriteText(base, kOld);
        WriteText(ours, row.mOurs);
        WriteText(theirs, row.mTheirs);
        const ToolRun run = RunTool("merge " + base + " " + ours + " " + theirs);
        EXPECT_EQ(run.mStatus, 0) << row.mWhy << "\n" << run.mErr;
        EXPECT_EQ(ReadText(ours), row.mResult) << row.mWhy;
        // The other way round gives the same description.
        WriteText(ours, row.mOurs);
        EXPECT_EQ(RunTool("merge " + base + " " + theirs + " " + ours + " -o " + folder + "/r.xml")
                      .mStatus,
                  0);
        EXPECT_EQ(RunTool("diff " + folder + "/r.xml " + folder + "/r.xml").mStatus, 0);
        EXPECT_EQ(ReadText(folder + "/r.xml"), row.mResult) << row.mWhy;
    }
}

TEST(QlxViewMerge, ConflictsKeepBothAndStayWellFormed) {
    const std::string folder = FreshFolder("qlxview-conflict");
    const std::string base = folder + "/b.xml", ours = folder + "/o.xml",
                      theirs = folder + "/t.xml";
    WriteText(base, kOld);
    WriteText(ours, File(View("left", Property("A", 2) + Property("B", 1)) +
                         View("rght", Property("A", -7))));
    WriteText(theirs, File(View("left", Property("A", 3) + Property("B", 1)) +
                           View("midd", Property("A", 4))));
    const ToolRun run = RunTool("merge " + base + " " + ours + " " + theirs + " --path W.xml");
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(run.mErr,
              "W.xml: conflict: viewhierarchy/view 'left': A (int32) is 2 here, was 1, and is 3 "
              "there\n"
              "W.xml: conflict: viewhierarchy/view 'rght': changed here, removed there\n"
              "W.xml: conflict: viewhierarchy/view 'midd': removed here, changed there\n");
    EXPECT_EQ(ReadText(ours),
              File(View("left", "\t\t\t<!-- merge conflict: A (int32) is 2 here, was 1, and is 3 "
                                "there -->\n" +
                                    Property("A", 2) + Property("B", 1)) +
                   "\t\t<!-- merge conflict: removed here, changed there -->\n" +
                   View("midd", Property("A", 4)) +
                   "\t\t<!-- merge conflict: changed here, removed there -->\n" +
                   View("rght", Property("A", -7))));
}

TEST(QlxViewMerge, GitUsesTheDrivers) {
    const std::string folder =
        std::filesystem::absolute(FreshFolder("qlxview-git")).generic_string();
    const std::string tool =
        std::filesystem::absolute(QLX_TEST_OUTPUT "/../bin/qlxview").generic_string();
    const std::string log = folder + ".log";
    const auto git = [&](const std::string& arguments) {
        return std::system(("git -C " + folder +
                            " -c user.name=a -c user.email=a@b -c core.autocrlf=false " +
                            arguments + " >>" + log + " 2>&1")
                               .c_str());
    };
    WriteText(log, "");
    if (git("init -q -b main .") != 0)
        GTEST_SKIP() << "no git here";
    ASSERT_EQ(RunTool("install-git-drivers " + folder + " --program " + tool).mStatus, 0);
    ASSERT_EQ(RunTool("install-git-drivers " + folder + " --program " + tool).mStatus, 0);
    EXPECT_EQ(ReadText(folder + "/.gitattributes"), "*.xml diff=qlxview merge=qlxview\n");
    const auto commit = [&](const std::string& text) {
        WriteText(folder + "/W.xml", text);
        return git("add -A") == 0 && git("commit -q -m x") == 0;
    };
    ASSERT_TRUE(commit(kOld));
    ASSERT_EQ(git("checkout -q -b other"), 0);
    // Two changes in neighbouring lines, which lines alone could not merge.
    ASSERT_TRUE(commit(File(View("left", Property("A", 1) + Property("B", 2)) +
                            View("midd", Property("A", 1)) + View("rght", Property("A", 1)))));
    ASSERT_EQ(git("checkout -q main"), 0);
    ASSERT_TRUE(commit(File(View("left", Property("A", 2) + Property("B", 1)) +
                            View("midd", Property("A", 1)) + View("rght", Property("A", 1)))));
    EXPECT_EQ(git("merge -q --no-edit other"), 0) << ReadText(log);
    EXPECT_EQ(ReadText(folder + "/W.xml"),
              File(View("left", Property("A", 2) + Property("B", 2)) +
                   View("midd", Property("A", 1)) + View("rght", Property("A", 1))));
    WriteText(log, "");
    EXPECT_EQ(git("--no-pager diff HEAD~1 HEAD -- W.xml"), 0);
    EXPECT_NE(
        ReadText(log).find("  viewhierarchy/view 'left'\n-     B (int32): 1\n+     B (int32): 2\n"),
        std::string::npos)
        << ReadText(log);
}

TEST(QlxViewSchema, SaysWhatEachClassReads) {
    const ToolRun json =
        RunTool("--load " QLX_TEST_OUTPUT "/../bin/qlx_test_host_classes.module schema --json");
    EXPECT_EQ(json.mStatus, 0);
    const std::size_t gauge = json.mOut.find("\"THostGauge\": {\"base\": \"TView\"");
    ASSERT_NE(gauge, std::string::npos);
    const std::string own = json.mOut.substr(gauge, json.mOut.find("\n  ]}", gauge) - gauge);
    for (const char* line : {"{\"name\": \"Ticks\", \"type\": \"int32\", \"default\": \"12\", "
                             "\"reader\": \"THostGauge\"}",
                             "{\"name\": \"Shown\", \"type\": \"bool\", \"default\": \"true\", "
                             "\"reader\": \"TView\"}"})
        EXPECT_NE(own.find(line), std::string::npos) << line << "\n" << own;
    const ToolRun grammar = RunTool("schema");
    EXPECT_NE(grammar.mOut.find("<ref name=\"class.TButton\"/>"), std::string::npos);
    // An editor would know the corpus to be right, where a validator is at hand.
    WriteText(QLX_TEST_OUTPUT "/views.rng", grammar.mOut);
    if (std::system("xmllint --version >" QLX_TEST_OUTPUT "/xmllint.log 2>&1") == 0) {
        EXPECT_EQ(std::system("xmllint --noout --relaxng " QLX_TEST_OUTPUT
                              "/views.rng " QLX_TEST_DATA "/views/*.xml >" QLX_TEST_OUTPUT
                              "/xmllint.log 2>&1"),
                  0)
            << ReadText(QLX_TEST_OUTPUT "/xmllint.log").substr(0, 3000);
    }
}
} // namespace

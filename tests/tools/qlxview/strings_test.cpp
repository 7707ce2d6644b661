// qlxview strings: tables follow their description and go to translators and back.
#include <gtest/gtest.h>

#include "run_tool.h"

namespace {
constexpr const char* kSource =
    "<container name=\"M\">\n\t<viewhierarchy name=\"M\">\n"
    "\t\t<view class=\"TButton\" Identifier=\"mute\">\n"
    "\t\t\t<property name=\"Title\" type=\"stringidx\" value=\"MUTE\"/>\n"
    "\t\t\t<property name=\"ToolTip\" type=\"stringidx\" value=\"HELP\"/>\n"
    "\t\t</view> <!-- -->\n\t</viewhierarchy> <!--M -->\n</container>";

TEST(QlxViewStrings, TablesFollowTheDescription) {
    const std::string folder = FreshFolder("qlxview-strings");
    WriteText(folder + "/M.xml", kSource);
    WriteText(folder + "/M.ENU.str", "// String table for M\r\n{\r\n\t// A "
                                     "verb.\r\n\tMUTE\t\"Mute\"\r\n\tOLD\t\"Old\"\r\n}\r\n");
    WriteText(folder + "/M.DEU.str", "// String table for M\n{\n\tMUTE\t\"Quiet\"\t\"Still\"\n}\n");
    EXPECT_EQ(RunTool("strings extract --check " + folder + "/M.xml").mStatus, 1);
    EXPECT_EQ(RunTool("strings extract --prune " + folder + "/M.xml").mStatus, 0);
    EXPECT_EQ(
        ReadText(folder + "/M.ENU.str"),
        "// String table for M\r\n{\r\n\tHELP\t\"\"\r\n\t// A verb.\r\n\tMUTE\t\"Mute\"\r\n}\r\n");
    EXPECT_EQ(RunTool("strings merge -l DEU -l ITA " + folder + "/M.xml").mStatus, 0);
    // The German text is of an older English one, which stays to be seen.
    EXPECT_EQ(ReadText(folder + "/M.DEU.str"),
              "// String table for M\n{\n\tHELP\t\"\"\n\tMUTE\t\"Quiet\"\t\"Still\"\n}\n");
    EXPECT_EQ(ReadText(folder + "/M.ITA.str"),
              "// String table for M\n{\n\tHELP\t\"\"\n\tMUTE\t\"Mute\"\t\"\"\n}\n");
    EXPECT_EQ(RunTool("strings merge --check " + folder + "/M.xml").mStatus, 0);
}

TEST(QlxViewStrings, PortableObjectsGoOutAndComeBack) {
    const std::string folder = FreshFolder("qlxview-po");
    const std::string file = folder + "/M.xml", po = folder + "/de.po";
    WriteText(file, kSource);
    WriteText(folder + "/M.ENU.str",
              "// String table for M\n{\n\tHELP\t\"Line one\nline \\\"two\\\"\\\\\"\n"
              "\t// A verb.\n\tMUTE\t\"Mute\"\n}\n");
    WriteText(folder + "/M.DEU.str", "// String table for M\n{\n\tMUTE\t\"Quiet\"\t\"Still\"\n}\n");
    EXPECT_EQ(RunTool("strings export -l DEU -o " + po + " " + file).mStatus, 0);
    EXPECT_EQ(ReadText(po),
              "msgid \"\"\nmsgstr \"\"\n\"Project-Id-Version: view descriptions\\n\"\n"
              "\"Language: de\\n\"\n\"MIME-Version: 1.0\\n\"\n"
              "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
              "\"Content-Transfer-Encoding: 8bit\\n\"\n\n"
              "#: M.xml:5\nmsgctxt \"M|HELP\"\nmsgid \"\"\n\"Line one\\n\"\n"
              "\"line \\\"two\\\"\\\\\"\nmsgstr \"\"\n\n"
              "#. A verb.\n#: M.xml:4\n#, fuzzy\n#| msgid \"Quiet\"\nmsgctxt \"M|MUTE\"\n"
              "msgid \"Mute\"\nmsgstr \"Still\"\n");
    // What is fuzzy or empty is no translation: nothing comes in.
    EXPECT_EQ(RunTool("strings import -l DEU -i " + po + " " + file).mOut, "");
    WriteText(po, "msgctxt \"M|MUTE\"\nmsgid \"Mute\"\nmsgstr \"Stu\"\n\"mm\\t\\344\\\\\"\n"
                  "#~ msgid \"gone\"\n#~ msgstr \"weg\"\n"
                  "msgctxt \"M|NONE\"\nmsgid \"x\"\nmsgstr \"y\"\n");
    const ToolRun unknown = RunTool("strings import -l DEU -i " + po + " " + file);
    EXPECT_NE(unknown.mStatus, 0); // \344 alone is no UTF-8
    WriteText(po, "msgctxt \"M|MUTE\"\nmsgid \"Mute\"\nmsgstr \"Stu\"\n\"mm\\t\\303\\244\\\\\"\n\n"
                  "msgctxt \"M|NONE\"\nmsgid \"x\"\nmsgstr \"y\"\n");
    const ToolRun run = RunTool("strings import -l DEU -i " + po + " " + file);
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_NE(run.mErr.find("de.po:6: \"M|NONE\" is no text of these descriptions"),
              std::string::npos)
        << run.mErr;
    EXPECT_EQ(ReadText(folder + "/M.DEU.str"),
              "// String table for M\n{\n\tMUTE\t\"Mute\"\t\"Stumm\t\xC3\xA4\\\\\"\n}\n");
}

TEST(QlxViewStrings, TheCorpusComesBackFromTranslatorsAsItWent) {
    const std::string folder = FreshFolder("qlxview-po-corpus");
    for (const char* name : {"SaveAlert", "Transport"})
        for (const char* end : {".xml", ".ENU.str", ".JPN.str", ".DEU.str"})
            WriteText(folder + "/" + name + end,
                      ReadText(std::string(QLX_TEST_DATA "/views/") + name + end));
    const std::string files = folder + "/SaveAlert.xml " + folder + "/Transport.xml";
    const std::string before = ReadText(folder + "/Transport.JPN.str");
    EXPECT_EQ(RunTool("strings export -l JPN -o " + folder + "/ja.po " + files).mStatus, 0);
    WriteText(folder + "/Transport.JPN.str", "{\n}\n");
    EXPECT_EQ(RunTool("strings import -l JPN -i " + folder + "/ja.po " + files).mStatus, 0);
    EXPECT_EQ(ReadText(folder + "/Transport.JPN.str"), before);
}

TEST(QlxViewStrings, BrokenPortableObjectsAreRefusedByLine) {
    const std::string folder = FreshFolder("qlxview-po-bad");
    WriteText(folder + "/M.xml", kSource);
    WriteText(folder + "/M.ENU.str", "{\n\tMUTE\t\"Mute\"\n}\n");
    const struct {
        const char* mText;
        const char* mReason;
    } rows[] = {
        {"msgid \"a\nmsgstr \"b\"\n", "bad.po:1: expected a text in double quotes"},
        {"msgid \"a\"\n", "bad.po:1: the entry that begins in line 1 has no msgstr"},
        {"msgid \"a\"\nmsgid \"b\"\n", "bad.po:2: the same keyword stands twice"},
        {"msgstr \"a\"\n", "bad.po:1: msgstr without msgid"},
        {"\n\"a\"\n", "bad.po:2: a text that belongs to no keyword"},
        {"msgid \"a\\q\"\n", "bad.po:1: the unknown escape \\q"},
        {"msgid \"a\"\nmsgid_plural \"b\"\n", "bad.po:2: string tables have no plural forms"},
        {"hello\n", "bad.po:1: expected msgctxt"},
    };
    for (const auto& row : rows) {
        WriteText(folder + "/bad.po", row.mText);
        const ToolRun run =
            RunTool("strings import -l DEU -i " + folder + "/bad.po " + folder + "/M.xml");
        EXPECT_EQ(run.mStatus, 2) << row.mText;
        EXPECT_NE(run.mErr.find(row.mReason), std::string::npos) << row.mText << run.mErr;
    }
}
} // namespace

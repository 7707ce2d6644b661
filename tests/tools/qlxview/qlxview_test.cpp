// qlxview from the command line: what it says, with which exit status, and what it leaves in files.
#include <gtest/gtest.h>

#include <filesystem>

#include "run_tool.h"

namespace {
/// The sources of the corpus, named one by one: not every shell expands patterns.
std::string Corpus() {
    std::string files;
    for (const auto& entry : std::filesystem::directory_iterator(QLX_TEST_DATA "/views"))
        if (entry.path().extension() == ".xml")
            files += " " + entry.path().generic_string();
    return files;
}

std::string Wrap(const std::string& inside) {
    return "<container name=\"W\">\n\t<viewhierarchy name=\"W\">\n" + inside +
           "\t</viewhierarchy> <!--W -->\n</container>";
}

/// Replaces the folder's name, which differs from build to build.
std::string Shorten(std::string text, const std::string& folder) {
    for (std::size_t at; (at = text.find(folder + "/")) != std::string::npos;)
        text.erase(at, folder.size() + 1);
    return text;
}

TEST(QlxView, EveryCommandsHelpHasAnExample) {
    const ToolRun help = RunTool("--help");
    EXPECT_EQ(help.mStatus, 0);
    std::size_t at = help.mOut.find("Subcommands:");
    ASSERT_NE(at, std::string::npos);
    int commands = 0;
    while ((at = help.mOut.find("\n  ", at)) != std::string::npos) {
        at += 3;
        const std::string command = help.mOut.substr(at, help.mOut.find(' ', at) - at);
        if (command.empty())
            continue;
        ++commands;
        // A command of commands has its examples in theirs or in its own.
        EXPECT_NE(RunTool(command + " --help").mOut.find("Example: qlxview"), std::string::npos)
            << command;
    }
    EXPECT_GE(commands, 13);
}

TEST(QlxView, ExitStatusesTellFoundFromFailed) {
    const struct {
        const char* mArguments;
        int mStatus;
    } rows[] = {{"", 2},
                {"nonsense", 2},
                {"check", 2},
                {"--load ./nowhere.so check x.xml", 2},
                {"tree " QLX_TEST_DATA "/views/nowhere.xml", 2},
                {"check " QLX_TEST_DATA "/views/nowhere.xml", 1},
                {"list " QLX_TEST_DATA "/views/Transport.xml", 2},
                {"tree --language XYZ " QLX_TEST_DATA "/views/Transport.xml", 2},
                {"check --help", 0}};
    for (const auto& row : rows) {
        const ToolRun run = RunTool(row.mArguments);
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mArguments;
        EXPECT_FALSE((run.mOut + run.mErr).empty()) << row.mArguments;
    }
}

TEST(QlxView, TheCorpusIsWellAndInCanonicalForm) {
    const ToolRun check = RunTool("check --strict" + Corpus());
    EXPECT_EQ(check.mOut + check.mErr, "");
    EXPECT_EQ(check.mStatus, 0);
    const ToolRun format = RunTool("format --check" + Corpus());
    EXPECT_EQ(format.mOut + format.mErr, "");
    EXPECT_EQ(format.mStatus, 0);
}

TEST(QlxView, CheckTellsEachFaultWhereItStands) {
    const std::string folder = FreshFolder("qlxview-check");
    WriteText(
        folder + "/Bad.xml",
        Wrap("\t\t<view class=\"TButton\" Identifier=\"toolong\">\n"
             "\t\t\t<property name=\"Enabled\" type=\"bool\" value=\"TRUE\"/>\n"
             "\t\t\t<property name=\"Frame\" type=\"rect\" value=\"1 2 3\"/>\n"
             "\t\t\t<property name=\"Frame\" type=\"string\" value=\"1 2 3 4\"/>\n"
             "\t\t\t<property name=\"Colour\" type=\"int32\" value=\"7\"/>\n"
             "\t\t\t<property name=\"Title\" type=\"stringidx\" value=\"OK\"/>\n"
             "\t\t\t<property name=\"ToolTip\" type=\"stringidx\" value=\"HELP\"/>\n"
             "\t\t\t<property name=\"Value\" type=\"int\" value=\"1\"/>\n"
             "\t\t\t<property name=\"Value\" type=\"int32\"/>\n"
             "\t\t\t<property name=\"Value\" type=\"int32\" value=\"1\" Layout=\"Default\"/>\n"
             "\t\t\t<property name=\"Value\" type=\"int32\" value=\"1\" Language=\"GER\"/>\n"
             "\t\t\t<property name=\"class\" type=\"string\" value=\"TKnob\" Layout=\"L\"/>\n"
             "\t\t</view> <!-- -->\n"
             "\t\t<view class=\"THostGauge\" Identifier=\"\">\n"
             "\t\t</view> <!-- -->\n"));
    WriteText(folder + "/Bad.ENU.str", "{\n\tOK\t\"OK\"\n\tHELP\t\"Help\"\n}\n");
    WriteText(folder + "/Bad.DEU.str", "{\n\tOK\t\"Okay\"\t\"In Ordnung\"\n\n\tOLD\t\"Alt\"\n}\n");
    const ToolRun run = RunTool("check " + folder + "/Bad.xml");
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(
        Shorten(run.mOut, folder),
        "Bad.DEU.str:2:2: warning: the English text of the key \"OK\" changed since it was "
        "translated [string-stale]\n"
        "Bad.DEU.str:4:2: warning: the key \"OLD\" is not used [string-unused]\n"
        "Bad.xml:3:3: error: an attribute of the same name keeps this from being written: "
        "viewhierarchy/view[1]: class (string, Layout=L Language=) [hidden]\n"
        "Bad.xml:3:3: warning: the identifier \"toolong\": read as \"tool\": neither four "
        "characters nor 0x and eight digits [value]\n"
        "Bad.xml:4:4: warning: the property \"Enabled\", \"TRUE\": read as false: neither true "
        "nor false [value]\n"
        "Bad.xml:5:4: warning: the property \"Frame\", \"1 2 3\": 3 of 4 numbers could be read, "
        "the others are taken as 0 [value]\n"
        "Bad.xml:6:4: warning: TButton reads the property \"Frame\" as rect, not as string "
        "[unread]\n"
        "Bad.xml:7:4: warning: TButton reads no property \"Colour\" [unread]\n"
        "Bad.xml:9:4: error: the key \"HELP\" has no text in the table DEU [string-missing]\n"
        "Bad.xml:10:4: warning: the property \"Value\" has the unknown type \"int\" and is not "
        "kept [source]\n"
        "Bad.xml:11:4: warning: a property without \"value\" is not kept: Value [source]\n"
        "Bad.xml:12:4: error: the layout \"Default\" means the common layout when it is selected, "
        "so no look-up sees what is stored under that name [filter]\n"
        "Bad.xml:13:4: error: there is no language \"GER\"; it counts as English [filter]\n"
        "Bad.xml:16:3: error: path: \"viewhierarchy/view[2]\": required property \"Identifier\" "
        "missing or no value. "
        "[well-known]\n"
        "Bad.xml:16:3: warning: the class THostGauge is not known here; load its library with "
        "--load [class]\n");
}

TEST(QlxView, KeysThatCodeUsesAreNotCalledUnused) {
    const std::string folder = FreshFolder("qlxview-keys");
    WriteText(folder + "/W.xml", Wrap(""));
    WriteText(folder + "/W.ENU.str", "{\n\tASKED\t\"Asked\"\n\tOLD\t\"Old\"\n}\n");
    WriteText(folder + "/keys.txt", "// of the alerts\r\n\r\n  ASKED\r\nGONE");
    const ToolRun run = RunTool("check --used-keys " + folder + "/keys.txt " + folder + "/W.xml");
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(Shorten(run.mOut + run.mErr, folder),
              "W.ENU.str:3:2: warning: the key \"OLD\" is not used [string-unused]\n"
              "keys.txt:4:1: warning: the key \"GONE\" stands in no string table "
              "[string-missing]\n");
}

TEST(QlxView, CheckSaysWhereAFileBreaksOff) {
    const std::string folder = FreshFolder("qlxview-broken");
    WriteText(folder + "/Cut.xml", "<container>\n\t<viewhierarchy>\n\t\t<view\n");
    WriteText(folder + "/Table.xml", Wrap(""));
    WriteText(folder + "/Table.DEU.str", "{\n\tKEY\t\"text\n}\n");
    const ToolRun run = RunTool("check " + folder + "/Cut.xml " + folder + "/Table.xml");
    EXPECT_EQ(run.mStatus, 1);
    EXPECT_EQ(Shorten(run.mOut, folder),
              "Cut.xml:3:3: error: unclosed token [unreadable]\n"
              "Table.DEU.str:2:6: error: this text is not closed by a double quote "
              "[unreadable]\n");
}

TEST(QlxView, CheckSpeaksJSONAndSARIF) {
    const std::string folder = FreshFolder("qlxview-sarif");
    WriteText(folder + "/A B.xml",
              Wrap("\t\t<view class=\"TButton\" Identifier=\"butt\">\n"
                   "\t\t\t<property name=\"&quot;\\\" type=\"int32\" value=\"1\"/>\n"
                   "\t\t</view> <!-- -->\n"));
    const ToolRun json = RunTool("check --json \"" + folder + "/A B.xml\"");
    EXPECT_EQ(json.mStatus, 0); // warnings alone
    EXPECT_EQ(Shorten(json.mOut, folder),
              "[\n  {\"file\": \"A B.xml\", \"line\": 4, \"column\": 4, \"level\": \"warning\", "
              "\"rule\": \"unread\", \"text\": \"TButton reads no property "
              "\\\"\\\"\\\\\\\"\"}\n]\n");
    const ToolRun sarif = RunTool("check --sarif --strict \"" + folder + "/A B.xml\"");
    EXPECT_EQ(sarif.mStatus, 1);
    for (const char* part :
         {"\"version\": \"2.1.0\"", "{\"id\": \"unread\"",
          "A%20B.xml\"}, \"region\": {\"startLine\": 4, \"startColumn\": 4}",
          "\"message\": {\"text\": \"TButton reads no property \\\"\\\"\\\\\\\"\"}"})
        EXPECT_NE(sarif.mOut.find(part), std::string::npos) << part << "\n" << sarif.mOut;
}

TEST(QlxView, LoadedLibrariesBringTheirClasses) {
    const std::string folder = FreshFolder("qlxview-load");
    WriteText(folder + "/Host.xml",
              Wrap("\t\t<view class=\"THostGauge\" Identifier=\"gaug\">\n"
                   "\t\t\t<property name=\"Shown\" type=\"bool\" value=\"true\"/>\n"
                   "\t\t\t<property name=\"Ticks\" type=\"int32\" value=\"10\"/>\n"
                   "\t\t\t<property name=\"Tocks\" type=\"int32\" value=\"10\"/>\n"
                   "\t\t</view> <!-- -->\n"));
    const ToolRun run = RunTool("--load " QLX_TEST_OUTPUT "/../bin/qlx_test_host_classes.module "
                                "check " +
                                folder + "/Host.xml");
    EXPECT_EQ(Shorten(run.mOut, folder),
              "Host.xml:6:4: warning: THostGauge reads no property \"Tocks\" [unread]\n");
    EXPECT_EQ(run.mErr, "");
    EXPECT_EQ(run.mStatus, 0);
}

TEST(QlxView, FormatKeepsCommentsWhereTheyStood) {
    const std::string folder = FreshFolder("qlxview-format");
    const std::string file = folder + "/F.xml";
    WriteText(file, "<?xml version='1.0'?><!-- of the file -->\r\n"
                    "<container><viewhierarchy resid='7' name=\"F\"><!-- root -->\r\n"
                    "<!-- two\r\nlines -->\r\n"
                    "<view Identifier='main' class='TView'>\r\n"
                    "<property value='1 2' name='Size' type='point'/> <!-- behind -->\r\n"
                    "<!-- above -->\r\n<property name='Frame' type='rect' value='1 2 3 4'/>\r\n"
                    "<!-- last -->\r\n"
                    "</view><!-- --><!-- done -->\r\n"
                    "</viewhierarchy> <!--Old name -->\r\n"
                    "</container><!-- the end -->\r\n");
    const ToolRun check = RunTool("format --check " + file);
    EXPECT_EQ(check.mStatus, 1);
    EXPECT_EQ(Shorten(check.mOut, folder), "F.xml: not in canonical form\n");
    EXPECT_EQ(RunTool("format " + file).mStatus, 0);
    const std::string expected = "<!-- of the file -->\r\n"
                                 "<container name=\"F\">\r\n"
                                 "\t<viewhierarchy name=\"F\" resid=\"7\"> <!-- root -->\r\n"
                                 "\t\t<!-- two\r\nlines -->\r\n"
                                 "\t\t<view class=\"TView\" Identifier=\"main\">\r\n"
                                 "\t\t\t<!-- above -->\r\n"
                                 "\t\t\t<property name=\"Frame\" type=\"rect\" value=\"1 2 3 4\"/>"
                                 "\r\n"
                                 "\t\t\t<property name=\"Size\" type=\"point\" value=\"1 2\"/>"
                                 " <!-- behind -->\r\n"
                                 "\t\t\t<!-- last -->\r\n"
                                 "\t\t</view> <!-- --> <!-- done -->\r\n"
                                 "\t</viewhierarchy> <!--F --> <!--Old name -->\r\n"
                                 "</container>\r\n<!-- the end -->";
    EXPECT_EQ(ReadText(file), expected);
    EXPECT_EQ(RunTool("format --check " + file).mStatus, 0);
}

TEST(QlxView, FormatRefusesToLoseAnything) {
    const std::string folder = FreshFolder("qlxview-loss");
    const struct {
        const char* mWhy;
        std::string mText;
    } rows[] = {
        {"an unknown type", Wrap("<property name='a' type='colour' value='1'/>")},
        {"no value", Wrap("<property name='a' type='int32'/>")},
        {"stands twice", Wrap("<property name='a' type='int32' value='1'/>"
                              "<property name='a' type='int32' value='2'/>")},
        {"hidden by the attribute",
         Wrap("<view class='T' Identifier='a'>"
              "<property name='class' type='string' value='U' Layout='L'/></view>")},
        {"text", Wrap("some text")},
        {"more in the wrapper", "<container><viewhierarchy/><other/></container>"},
        {"an attribute of the wrapper", "<container x='1'><viewhierarchy/></container>"},
    };
    for (const auto& row : rows) {
        WriteText(folder + "/L.xml", row.mText);
        const ToolRun run = RunTool("format " + folder + "/L.xml");
        EXPECT_EQ(run.mStatus, 2) << row.mWhy;
        EXPECT_NE(run.mErr.find("not formatted, because something would be lost"),
                  std::string::npos)
            << row.mWhy;
        EXPECT_EQ(ReadText(folder + "/L.xml"), row.mText) << row.mWhy;
    }
}

TEST(QlxView, TreeAndGetShowWhatAWindowSees) {
    const std::string folder = FreshFolder("qlxview-tree");
    const std::string file = folder + "/T.xml";
    WriteText(file, Wrap("<view class='TButton' Identifier='mute'>"
                         "<property name='Title' type='stringidx' value='MUTE'/>"
                         "<property name='Size' type='point' value='10 20'/>"
                         "<property name='Size' type='point' value='8 16' Layout='Compact'/>"
                         "<property name='Title' type='string' value='x' Language='FRA'/>"
                         "</view>"));
    WriteText(folder + "/T.DEU.str", "{\n\tMUTE\t\"Stumm\"\n}\n");
    EXPECT_EQ(RunTool("tree " + file).mOut, "viewhierarchy \"W\"\n"
                                            "    name (string): \"W\"\n"
                                            "  view TButton 'mute'\n"
                                            "      Identifier (idtype): mute\n"
                                            "      Size (point): 10 20\n"
                                            "      Title (stringidx): \"MUTE\"\n"
                                            "      class (string): \"TButton\"\n"
                                            "      Size (point): 8 16 [Layout Compact]\n"
                                            "      Title (string): \"x\" [Language FRA]\n");
    EXPECT_EQ(RunTool("tree --layout Compact --language DEU " + file).mOut,
              "viewhierarchy \"W\"\n"
              "    Filter (string): \"Filter\"\n"
              "    name (string): \"W\"\n"
              "  view TButton 'mute'\n"
              "      Identifier (idtype): mute\n"
              "      Size (point): 8 16\n"
              "      Title (stringidx): \"MUTE\" = \"Stumm\"\n"
              "      class (string): \"TButton\"\n");
    EXPECT_EQ(RunTool("tree --elements " + file).mOut,
              "viewhierarchy \"W\"\n  view TButton 'mute'\n");
    const struct {
        const char* mArguments;
        const char* mOut;
        int mStatus;
    } rows[] = {
        {" @mute Size", "10 20\n", 0},
        {" @mute Size --layout Compact", "8 16\n", 0},
        {" viewhierarchy/view Title --language FRA", "MUTE\nx\n", 0},
        {" @mute Title --language DEU --localized", "Stumm\n", 0},
        {" @solo Title", "", 1},
        {" @mute Frame", "", 1},
    };
    for (const auto& row : rows) {
        const ToolRun run = RunTool("get " + file + row.mArguments);
        EXPECT_EQ(run.mOut, row.mOut) << row.mArguments;
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mArguments;
    }
}

TEST(QlxView, PackedFilesUnpackToWhatWasPacked) {
    const std::string folder = FreshFolder("qlxview-pack");
    const std::string pack = folder + "/views.qlxpack";
    const ToolRun packed = RunTool("pack --verify -o " + pack + Corpus());
    EXPECT_EQ(packed.mErr, "");
    EXPECT_EQ(Shorten(packed.mOut, folder), "views.qlxpack: 16 descriptions, verified\n");
    const ToolRun list = RunTool("list " + pack);
    EXPECT_NE(list.mOut.find("  SaveAlert\n"), std::string::npos) << list.mOut;
    EXPECT_EQ(RunTool("unpack " + pack + " -C " + folder).mStatus, 0);
    std::size_t compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QLX_TEST_DATA "/views")) {
        const std::string name = entry.path().filename().string();
        EXPECT_EQ(ReadText(folder + "/" + name), ReadText(entry.path().generic_string())) << name;
        ++compared;
    }
    EXPECT_EQ(compared, 16u * 5);
    // A pack file that cannot be made leaves the old one.
    const std::string before = ReadText(pack);
    EXPECT_EQ(RunTool("pack -o " + pack + " " + folder + "/nowhere.xml").mStatus, 2);
    EXPECT_EQ(ReadText(pack), before);
    // A flipped byte is told, not unpacked.
    std::string flipped = before;
    flipped[flipped.size() / 2] = static_cast<char>(flipped[flipped.size() / 2] ^ 0x10);
    WriteText(pack, flipped);
    const ToolRun broken = RunTool("unpack " + pack + " -C " + folder);
    EXPECT_EQ(broken.mStatus, 2);
    EXPECT_NE(broken.mErr.find("damaged"), std::string::npos) << broken.mErr;
}
} // namespace

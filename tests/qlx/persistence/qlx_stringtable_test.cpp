// String tables: the reader undoes the writer for every text, and says where a file is wrong.
#include "qlx/persistence/qlx_stringtable.h"

#include <gtest/gtest.h>

#include <random>

#include "qlx/persistence/qlx_sourceformat.h"

namespace {
std::string MessageOf(const std::string& text) {
    try {
        (void)QLX_ReadStringTable(text, "t.str");
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

TEST(StringTable, LooksAsItDoes) {
    const QLX_StringTable table{{"CANCEL", {"Cancel", "Abbrechen"}},
                                {"PATH", {"", "C:\\Temp\\"}},
                                {"SAY", {"Say \"hi\"", "\\\"\\"}}};
    const std::string expected = "// String table for Mix\r\n{\r\n"
                                 "\tCANCEL\t\"Cancel\"\t\"Abbrechen\"\r\n"
                                 "\tPATH\t\"C:\\Temp\\\\\"\r\n"
                                 "\tSAY\t\"Say \\\"hi\\\"\"\t\"\\\\\\\"\\\\\"\r\n"
                                 "}\r\n";
    EXPECT_EQ(QLX_WriteStringTable(table, "Mix", LineEndings::Windows), expected);
    EXPECT_EQ(QLX_ReadStringTable(expected, "t.str"), table);
    EXPECT_EQ(QLX_GetStringTableName(expected), "Mix");
}

TEST(StringTable, EveryTextComesBack) {
    // Texts of the few characters that mean something, in every combination that chance finds.
    std::mt19937 random(7);
    const char* const pieces[] = {"\\", "\"", "\n", "\r\n", "\t",
                                  "//", "}",  "{",  "a",    "\xE6\x97\xA5"};
    for (int round = 0; round < 2000; ++round) {
        const auto text = [&] {
            std::string made;
            for (unsigned i = random() % 8; i-- > 0;)
                made += pieces[random() % 10];
            return made;
        };
        QLX_StringTable table;
        for (const char* key : {"A", "}", " B", "{ C", "\"D\"", "\\"})
            table[key] = {text(), text()};
        const LineEndings endings = static_cast<LineEndings>(round % 3);
        const std::string written = QLX_WriteStringTable(table, "n", endings);
        ASSERT_EQ(QLX_ReadStringTable(written, "t.str"), table) << "round " << round << "\n"
                                                                << written;
    }
}

TEST(StringTable, ToleratesWhatPeopleAdd) {
    const auto table =
        QLX_ReadStringTable("\xEF\xBB\xBF\n// heading\n\n  { \n\n// a comment\n"
                            "\t// \"not\" an entry\n    KEY  \t \"two\nlines\"  \n } \n\n// end",
                            "t.str");
    EXPECT_EQ(table, (QLX_StringTable{{"KEY  ", {"", "two\nlines"}}}));
}

TEST(StringTable, SaysWhereItIsWrong) {
    const struct {
        const char* mText;
        const char* mMessage;
    } rows[] = {
        {"", "t.str:1:1: the table's { is missing"},
        {"// x\n[", "t.str:2:1: expected the table's {"},
        {"{\n\tA\t\"x\"\n", "t.str:3:1: the table's } is missing"},
        {"{\n\tA\t\"x\n}\n", "t.str:2:4: this text is not closed by a double quote"},
        {"{\n\tA\n}",
         "t.str:2:3: the key \"A\" has no text: expected a tab and a text in double quotes"},
        {"{\n\tA\t\"x\" y\n}",
         "t.str:2:8: expected the line's end after the text of the key \"A\""},
        {"{\n}\nmore", "t.str:3:1: there is more after the table's }"},
        {"{\r\n\tA\t\"\xFF\"\r\n}", "t.str:2:5: this is no UTF-8"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(MessageOf(row.mText), row.mMessage);
    std::vector<QLX_SourceProblem> problems;
    const auto table = QLX_ReadStringTable("{\n\tA\t\"1\"\n\tA\t\"2\"\n}", "t.str", &problems);
    EXPECT_EQ(table.at("A").mLocalized, "2");
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].ToString(), "t.str:3:2: the key \"A\" stands twice; this one counts");
}

TEST(StringTable, TruncationIsNeverReadAsWhole) {
    const QLX_StringTable table{{"A", {"source \\", "text"}}, {"B", {"", "\"q\""}}};
    const std::string whole = QLX_WriteStringTable(table, "n", LineEndings::Unix);
    for (std::size_t size = 0; size + 1 < whole.size(); ++size) // the last line end may be missing
        EXPECT_NE(MessageOf(whole.substr(0, size)), "") << size;
}

TEST(StringTable, RefusesKeysByName) {
    for (const char* key : {"", "a\tb", "a\nb", "a\rb", "//a", "  //a", "\xFF"}) {
        try {
            (void)QLX_WriteStringTable({{key, {"", "x"}}}, "n", LineEndings::Unix);
            ADD_FAILURE() << "written: " << key;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("\"" + std::string(key) + "\""),
                      std::string::npos);
        }
    }
}

TEST(StringTable, CommentsStayWithTheirKeys) {
    const std::string text = "// String table for Mix\n{\n\t// Mute and solo are verbs.\n\tA\t\"1\n"
                             "// inside the text\"\n\tB\t\"2\"\n\t// The end.\n}\n";
    QLX_StringTableNotes notes;
    QLX_StringTable table = QLX_ReadStringTable(text, "Mix.str", nullptr, &notes);
    EXPECT_EQ(QLX_WriteStringTable(table, "Mix", LineEndings::Unix, &notes), text);
    EXPECT_EQ(notes.mPlaces["B"], std::make_pair(6, 2));
    table.erase("A");
    EXPECT_EQ(QLX_WriteStringTable(table, "Mix", LineEndings::Unix, &notes),
              "// String table for Mix\n{\n\tB\t\"2\"\n\t// The end.\n}\n");
}
} // namespace

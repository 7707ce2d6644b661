#include "qlx/views/utextediting.h"

#include <gtest/gtest.h>

#include <random>

#include "qlx/imaging/qlx_utf8.h"

namespace {

bool IsWellFormed(const std::string& text) {
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t from = place;
        if (QLX_NextCodePoint(text, place) == kReplacementCharacter &&
            text.compare(from, 3, "\xEF\xBF\xBD") != 0)
            return false;
    }
    return true;
}

} // namespace

TEST(TextEditing, MotionsStopAtCharactersWordsAndLines) {
    struct Row {
        const char* why;
        const char* text;
        std::size_t from;
        ETextMotion motion;
        bool forward;
        std::size_t to;
    };
    const Row rows[] = {
        {"two-byte letter", "\xC3\xA9x", 0, ETextMotion::kCharacter, true, 2},
        {"letter with a combining accent is one", "e\xCC\x81x", 0, ETextMotion::kCharacter, true,
         3},
        {"and one backwards", "e\xCC\x81x", 3, ETextMotion::kCharacter, false, 0},
        {"family joined by joiners is one", "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9z", 0,
         ETextMotion::kCharacter, true, 11},
        {"and one backwards", "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9z", 11,
         ETextMotion::kCharacter, false, 0},
        {"word forward skips the blanks", "kick  in", 0, ETextMotion::kWord, true, 6},
        {"word backward goes to a start", "kick  in", 8, ETextMotion::kWord, false, 6},
        {"and over blanks", "kick  in", 6, ETextMotion::kWord, false, 0},
        {"punctuation is a word of its own", "a.b", 0, ETextMotion::kWord, true, 1},
        {"line start", "ab\ncd", 4, ETextMotion::kLine, false, 3},
        {"line end", "ab\ncd", 0, ETextMotion::kLine, true, 2},
        {"start of an empty line", "ab\n\ncd", 3, ETextMotion::kLine, false, 3},
        {"end of the text", "ab\ncd", 0, ETextMotion::kText, true, 5},
        {"nothing behind the end", "ab", 2, ETextMotion::kWord, true, 2},
    };
    for (const Row& row : rows) {
        QLX_TextEditing editing;
        editing.SetMultiline(true);
        editing.SetText(row.text);
        editing.Select(row.from, row.from);
        editing.Move(row.motion, row.forward, /*extend*/ false);
        EXPECT_EQ(editing.GetCaret(), row.to) << row.why;
        EXPECT_FALSE(editing.HasSelection()) << row.why;
    }
}

TEST(TextEditing, WhatComesInIsMadeFit) {
    struct Row {
        const char* why;
        bool multiline;
        std::string in;
        std::string out;
    };
    const Row rows[] = {
        {"line ends in one line", false, "a\r\nb\nc\rd", "a b c d"},
        {"line ends in many", true, "a\r\nb\nc\rd", "a\nb\nc\nd"},
        {"control characters go", false,
         std::string("a\0b\x1B"
                     "c\x7F",
                     6),
         "abc"},
        {"a stray byte becomes U+FFFD", false, "a\xFFz", "a\xEF\xBF\xBDz"},
        {"C1 controls go", false, "a\xC2\x85z", "az"},
    };
    for (const Row& row : rows) {
        QLX_TextEditing editing;
        editing.SetMultiline(row.multiline);
        editing.Insert(row.in);
        EXPECT_EQ(editing.GetText(), row.out) << row.why;
    }
}

TEST(TextEditing, TheLimitCountsCodePointsAndAFullTextKeepsItsSelection) {
    QLX_TextEditing editing;
    editing.SetMaximumLength(4);
    editing.SetText("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    EXPECT_EQ(editing.GetText().size(), 8u);
    EXPECT_FALSE(editing.Insert("x"));
    editing.Select(0, 4);
    EXPECT_TRUE(editing.Insert("abc"));
    EXPECT_EQ(editing.GetText(), "ab\xC3\xA9\xC3\xA9");
}

TEST(TextEditing, DoubleClickTakesTheWordAndDeletingTakesWhatIsSelected) {
    QLX_TextEditing editing;
    editing.SetText("lead vox, take 2");
    editing.SelectWordAt(6);
    EXPECT_EQ(editing.GetSelectedText(), "vox");
    EXPECT_TRUE(editing.Delete(ETextMotion::kCharacter, false));
    EXPECT_EQ(editing.GetText(), "lead , take 2");
    EXPECT_TRUE(editing.Delete(ETextMotion::kWord, false));
    EXPECT_EQ(editing.GetText(), ", take 2");
    editing.Select(0, 0);
    EXPECT_FALSE(editing.Delete(ETextMotion::kText, false));
}

TEST(TextEditing, RandomKeysKeepTheTextWellFormedAndTheCaretOnCharacters) {
    std::minstd_rand random(11);
    const std::string pieces[] = {
        "a",    " ",  "\xC3\xA9", "e\xCC\x81", "\xE6\x97\xA5", "\xF0\x9F\x91\xA8", "\xE2\x80\x8D",
        "\xFF", "\n", ".",        "\xE6"};
    for (int run = 0; run < 50; ++run) {
        QLX_TextEditing editing;
        editing.SetMultiline(run % 2 == 0);
        editing.SetMaximumLength(run % 3 == 0 ? 20 : 0);
        for (int step = 0; step < 200; ++step) {
            const auto motion = static_cast<ETextMotion>(random() % 4);
            const bool forward = random() % 2 != 0;
            switch (random() % 4) {
            case 0:
                editing.Delete(motion, forward);
                break;
            case 1:
                editing.Move(motion, forward, random() % 2 != 0);
                break;
            default:
                editing.Insert(pieces[random() % std::size(pieces)]);
            }
            ASSERT_TRUE(IsWellFormed(editing.GetText())) << "run " << run << " step " << step;
            for (const std::size_t at : {editing.GetCaret(), editing.GetAnchor()}) {
                ASSERT_LE(at, editing.GetText().size());
                ASSERT_TRUE(at == editing.GetText().size() ||
                            (static_cast<unsigned char>(editing.GetText()[at]) & 0xC0) != 0x80);
            }
        }
    }
}

// Lines that follow changes are those of the whole text laid out anew, and cost what changed.
#include <gtest/gtest.h>

#include <random>

#include "qlx/views/utextediting.h"
#include "qlx/views/utextlines.h"
#include "tests/support/seeds.h"

namespace {

const QLX_Font kFont("DejaVu Sans", 12);
constexpr float kWidth = 200;

std::vector<std::size_t> BeginsOf(const QLX_TextLines& lines) {
    std::vector<std::size_t> begins;
    for (std::size_t line = 0; line < lines.Count(); ++line)
        begins.push_back(lines.Begin(line));
    return begins;
}

std::vector<std::size_t> LaidOutAnew(const std::string& text) {
    QLX_TextLines lines;
    lines.LayOut(text, kFont, kWidth);
    return BeginsOf(lines);
}

const char* const kPieces[] = {"a",
                               " ",
                               "word ",
                               "\n",
                               "two\nlines",
                               "-",
                               "\n\n\n",
                               "aVeryLongWordThatIsWiderThanTheWholeFieldAndMustBeCutInTheMiddle",
                               "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x80\x82",
                               "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D ",
                               "a sentence of several words that takes more than a line to say ",
                               "e\xCC\x81",
                               "        "};

} // namespace

TEST(TextLines, ChangesLeaveWhatLayingOutAnewGives) {
    for (std::uint32_t seed = 1; seed <= SeedsToTry(40); ++seed) {
        std::minstd_rand random(seed);
        const auto pick = [&](std::size_t count) { return random() % count; };
        QLX_TextEditing editing;
        editing.SetMultiline(true);
        QLX_TextLines lines;
        lines.LayOut(editing.GetText(), kFont, kWidth);
        for (int step = 0; step < 150; ++step) {
            const std::vector<std::size_t> before = BeginsOf(lines);
            const std::size_t size = editing.GetText().size();
            const std::size_t at = pick(size + 1);
            const std::size_t span = pick(4) == 0 ? pick(200) : pick(3) == 0 ? pick(4) : 0;
            editing.Select(at, std::min(size, at + span));
            const bool changed = pick(5) == 0 ? editing.Delete(ETextMotion::kCharacter, pick(2))
                                              : editing.Insert(kPieces[pick(std::size(kPieces))]);
            if (!changed)
                continue;
            const auto& replaced = editing.GetLastReplaced();
            const QLX_TextLines::Change change = lines.Replace(
                editing.GetText(), replaced.mFrom, replaced.mRemoved, replaced.mInserted);
            const std::vector<std::size_t> now = BeginsOf(lines);
            ASSERT_EQ(now, LaidOutAnew(editing.GetText()))
                << "seed " << seed << " step " << step << " \"" << editing.GetText() << '"';
            // What is said to be unchanged is.
            ASSERT_EQ(static_cast<std::ptrdiff_t>(now.size() - before.size()), change.mMoved);
            for (std::size_t line = 0; line <= change.mFirst; ++line)
                ASSERT_EQ(now[line], before[line]) << "seed " << seed << " step " << step;
            ASSERT_LE(now[change.mFirst], replaced.mFrom);
            const std::size_t shift = replaced.mInserted - replaced.mRemoved;
            for (std::size_t line = change.mBehind; line < now.size(); ++line)
                ASSERT_EQ(now[line],
                          before[line - static_cast<std::size_t>(change.mMoved)] + shift);
            for (const std::size_t offset : {at, size / 2, size}) {
                const std::size_t held = std::min(offset, editing.GetText().size());
                const std::size_t line = lines.LineOf(held);
                ASSERT_LE(lines.Begin(line), held);
                ASSERT_TRUE(line + 1 == lines.Count() || lines.Begin(line + 1) > held);
            }
        }
    }
}

TEST(TextLines, ALetterCostsItsLinesHoweverLongTheTextIs) {
    std::string paragraphs;
    for (int i = 0; i < 10'000; ++i)
        paragraphs += "A line of a comment that somebody wrote down and that wraps once or so.\n";
    std::string oneParagraph;
    for (int i = 0; i < 50'000; ++i)
        oneParagraph += "many words ";
    for (const std::string& whole : {paragraphs, oneParagraph}) {
        std::string text = whole;
        QLX_TextLines lines;
        lines.LayOut(text, kFont, kWidth);
        const std::uint64_t before = lines.GetLaidOutBytes();
        for (const std::size_t at : {std::size_t{30}, text.size() / 2, text.size() - 30}) {
            text.insert(at, "x");
            lines.Replace(text, at, 0, 1);
        }
        EXPECT_LT(lines.GetLaidOutBytes() - before, 3u * 2048);
        EXPECT_EQ(BeginsOf(lines), LaidOutAnew(text));
    }
}

// Whatever is typed, clicked, pasted or changed under a field: its text keeps the shape of its
// format and its selection lies on a block or on the whole.
#include <random>

#include <gtest/gtest.h>

#include "tests/support/entry_monkey.h"

namespace {

class AnyKeys : public testing::TestWithParam<EntryShape> {};

std::string NameOf(const testing::TestParamInfo<EntryShape>& info) {
    return "Format" + std::to_string(info.param.format) +
           (info.param.subframes ? "Subframes" : "") + (info.param.optional ? "Optional" : "");
}

} // namespace

TEST_P(AnyKeys, KeepShapeAndSelection) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        EntryMonkey monkey(GetParam());
        for (int step = 0; step < 1000; ++step) {
            const auto what = static_cast<std::uint8_t>(random());
            const auto how = static_cast<std::uint8_t>(random());
            monkey.Do(what, how);
            const std::string complaint = monkey.Complaint();
            ASSERT_EQ(complaint, "") << "seed " << seed << " step " << step << " deed " << what % 32
                                     << " by " << static_cast<int>(how);
        }
        // Escape twice: out of arithmetic and back to a value, which Return accepts.
        TNumericEntryText* const field = monkey.GetField();
        field->BecomeTarget();
        field->AbortEdit();
        EXPECT_EQ(field->GetText(), field->GetBackup());
        EXPECT_EQ(field->GetArithmeticMode(), kArithmetic_None);
        monkey.Do(0, 17);
        EXPECT_EQ(monkey.Complaint(), "");
    }
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    Time_Session::SetFrameOffset(0);
    Time_Session::SetSampleRate(48000);
}

TEST_P(AnyKeys, EveryByteAsAKey) {
    for (int byte = 0; byte < 256; ++byte) {
        EntryMonkey monkey(GetParam());
        monkey.Do(20, static_cast<std::uint8_t>(byte));
        EXPECT_EQ(monkey.Complaint(), "") << byte;
        monkey.Do(0, 5);
        EXPECT_EQ(monkey.Complaint(), "") << byte << " then a digit";
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, AnyKeys, testing::ValuesIn(cEntryShapes), NameOf);

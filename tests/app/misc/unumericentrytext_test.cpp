#include "app/misc/unumericentrytext.h"

#include <limits>
#include <random>

#include "app/misc/udurationentryhelper.h"
#include "app/misc/uintegerentryhelpers.h"
#include "app/misc/unumericentryhelper.h"
#include "field_fixture.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/ucommand.h"

namespace {

constexpr auto cDrop = ETimeCodeFormat::F2997Drop;
constexpr std::uint32_t cCommandKey = 8;

using NumericField = FieldTest;

struct TypedRow {
    const char* why;
    ENumericEntryFormat format;
    const char* text; // before
    short start, end; // selection; 0, 0: the first one
    const char* keys;
    const char* after;
};

void PrintTo(const TypedRow& row, std::ostream* out) {
    *out << row.why << ": " << row.text << " typed " << row.keys;
}

class TypedText : public FieldTest, public testing::WithParamInterface<TypedRow> {};

constexpr auto cTC = kNumericEntry_TimeCode;
constexpr auto cMS = kNumericEntry_MinutesSeconds;
constexpr auto cFF = kNumericEntry_FeetFrames;
constexpr auto cBB = kNumericEntry_BarsBeats;
constexpr auto cDur = kNumericEntry_Duration;
constexpr auto cInt = kNumericEntry_Integer;
constexpr auto cSig = kNumericEntry_SignedInteger;
constexpr auto cVol = kNumericEntry_Volume;
constexpr auto cSmp = kNumericEntry_Samples;
constexpr auto cPlus = kNumericEntry_PlusValue;
constexpr auto cDen = kNumericEntry_MeterDenominator;

const TypedRow cTypedRows[] = {
    {"first digit", cTC, "00:00:00:00", 0, 0, "1", "00:00:00:01"},
    {"digits fill from the right", cTC, "00:00:00:00", 0, 0, "12345", "00:01:23:45"},
    {"a ninth digit pushes the first out", cTC, "00:00:00:00", 0, 0, "123456789", "23:45:67:89"},
    {"untyped places keep the old value", cTC, "01:00:00:00", 0, 0, "5", "01:00:00:05"},
    {"point is two zeros", cTC, "00:00:00:00", 0, 0, "1.", "00:00:01:00"},
    {"ten seconds and three frames", cTC, "00:00:00:00", 0, 0, "1.3", "00:00:10:03"},
    {"two points", cTC, "00:00:00:00", 0, 0, "1..", "00:01:00:00"},
    {"three points", cTC, "00:00:00:00", 0, 0, "12...", "12:00:00:00"},
    {"comma in the whole text", cTC, "00:00:00:00", 0, 0, "1,2", "00:00:00:12"},
    {"a block shifts and zeroes the later ones", cTC, "01:02:03:04", 3, 5, "45", "01:45:00:00"},
    {"the third digit drops the oldest", cTC, "01:02:03:04", 3, 5, "456", "01:56:00:00"},
    {"the hours zero everything behind", cTC, "01:02:03:04", 0, 2, "7", "07:00:00:00"},
    {"point moves on, comma back", cTC, "01:02:03:04", 3, 5, "4.5,6", "01:06:00:00"},
    {"a point in the last block wraps", cTC, "01:02:03:04", 9, 11, ".7", "07:00:00:00"},

    {"minutes", cMS, "   1:02.345", 0, 0, "12", "  12:00.000"},
    {"four digits of minutes", cMS, "   0:00.000", 0, 0, "12345", "2345:00.000"},
    {"seconds zero milliseconds", cMS, "   1:02.345", 5, 7, "3", "   1:03.000"},
    {"milliseconds", cMS, "   1:02.345", 8, 11, "67", "   1:02.067"},
    {"through the blocks", cMS, "   0:00.000", 0, 0, "3.25.5", "   3:25.005"},

    {"feet clear and zero the frames", cFF, "    12+05", 0, 0, "3", "     3+00"},
    {"feet shift", cFF, "     0+00", 0, 0, "1234567", "234567+00"},
    {"frames", cFF, "    12+05", 7, 9, "9", "    12+09"},
    {"feet, then frames", cFF, "     0+00", 0, 0, "90.12", "    90+12"},

    {"a bar means its first beat", cBB, "   1|01|000", 0, 0, "17", "  17|01|000"},
    {"bar, beat, tick", cBB, "   1|01|000", 0, 0, "17.3.240", "  17|03|240"},
    {"a length counts from zero", cDur, "   0|00|000", 0, 0, "2.1.480", "   2|01|480"},

    {"the first digit clears", cInt, "77", 0, 0, "25", "25"},
    {"no leading zeros", cInt, "77", 0, 0, "007", "7"},
    {"sign first", cSig, "77", 0, 0, "-25", "-25"},
    {"no sign later", cSig, "77", 0, 0, "2-5", "25"},
    {"zero drops its sign", cSig, "77", 0, 0, "-0", "0"},
    {"points mean nothing", cInt, "77", 0, 0, "1.2,3", "123"},
    {"offset", cPlus, "-4", 0, 0, "12", "+12"},
    {"samples", cSmp, "48000", 0, 0, "0123", "0123"},
    {"a digit too many is not kept", cSmp, "0", 0, 0, "165888000001", "16588800000"},
    {"level", cVol, "0.0", 0, 0, "6.5", "6.5"},
    {"a second decimal replaces the first", cVol, "0.0", 0, 0, "6,57", "6.7"},
    {"point first", cVol, "0.0", 0, 0, ".5", "0.5"},
    {"denominator", cDen, "4", 0, 0, "16", "16"},
    {"too large at once", cDen, "4", 0, 0, "99", "64"},
    {"a sign is corrected with its digit", cDen, "4", 0, 0, "-8", "1"},
};

} // namespace

TEST_P(TypedText, Becomes) {
    const TypedRow& row = GetParam();
    Use(row.format);
    Edit(row.text);
    if (row.start != row.end)
        mField->SetSelection(row.start, row.end);
    Type(row.keys);
    EXPECT_EQ(Text(), row.after);
}

INSTANTIATE_TEST_SUITE_P(Rows, TypedText, testing::ValuesIn(cTypedRows));

// ---- Time code ----

TEST_F(NumericField, DigitsAppearOneByOne) {
    Use(cTC);
    Edit("00:00:00:00");
    std::vector<std::string> texts;
    for (const char digit : std::string("12345")) {
        Key(static_cast<unsigned char>(digit));
        texts.push_back(Text());
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"00:00:00:01", "00:00:00:12", "00:00:01:23",
                                               "00:00:12:34", "00:01:23:45"}));
}

TEST_F(NumericField, ThreeFrameDigits) {
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F120);
    Use(cTC);
    const struct {
        const char* keys;
        const char* text;
    } rows[] = {{"1", "00:00:00:001"},    {"1234", "00:00:01:234"}, {"1.", "00:00:01:000"},
                {"1.3", "00:00:10:003"},  {"12.", "00:00:12:000"},  {"123.", "00:00:23:000"},
                {"12.3", "00:01:20:003"}, {"1...", "01:00:00:000"}, {"1234567890", "23:45:67:890"}};
    for (const auto& row : rows) {
        Edit("00:00:00:000");
        Key(kDAW_Key_Backspace);
        Type(row.keys);
        EXPECT_EQ(Text(), row.text) << row.keys;
    }
    Edit("00:00:00:000");
    mField->SetSelection(6, 8);
    mField->HiliteNextBlock(kBlock_Next, false);
    EXPECT_EQ(Selection(), "9..12");
    EXPECT_TRUE(mField->HiliteNextBlock(kBlock_Next, true));
    EXPECT_EQ(Selection(), "0..2");
    mField->HiliteNextBlock(kBlock_Previous, true);
    mField->HiliteNextBlock(kBlock_Previous, true);
    EXPECT_EQ(Selection(), "6..8");
}

TEST_F(NumericField, SubframesEnterAtTheEndAndAreABlock) {
    Use(cTC, /*subframes*/ true);
    Edit("00:00:00:00.00");
    Type("123");
    EXPECT_EQ(Text(), "00:00:00:01.23");
    Type(".");
    EXPECT_EQ(Text(), "00:00:01:23.00");
    mField->SetSelection(9, 11);
    EXPECT_FALSE(mField->HiliteNextBlock(kBlock_Next, false));
    EXPECT_EQ(Selection(), "12..14");
    mField->AddValueToCurrentSelection(150);
    EXPECT_EQ(Text(), "00:00:01:24.50");
    Key(kDAW_Key_Return);
    EXPECT_EQ(mData.mSMPTE.GetTotalSubframes(), 5450);
    mField->AbortEdit();
    mField->AddValueToCurrentSelection(1);
    EXPECT_EQ(Text(), "00:00:01:25.50") << "the whole steps frames";
}

TEST_F(NumericField, StepsCarryAcrossBlocks) {
    Use(cTC);
    mField->SetNormalArrowMode(true);
    const struct {
        const char* why;
        ETimeCodeFormat format;
        const char* text;
        short start;
        int delta;
        const char* after;
    } rows[] = {
        {"seconds carry", ETimeCodeFormat::F30, "00:00:59:00", 6, 1, "00:01:00:00"},
        {"frames borrow", ETimeCodeFormat::F25, "00:01:00:00", 9, -1, "00:00:59:24"},
        {"hours", ETimeCodeFormat::F24, "01:00:00:00", 0, 2, "03:00:00:00"},
        {"zero is the end", ETimeCodeFormat::F24, "00:00:00:05", 6, -1, "00:00:00:00"},
        {"so is the last frame", ETimeCodeFormat::F24, "23:59:59:00", 0, 9, "23:59:59:23"},
        {"a drop-frame minute is 1798 frames", cDrop, "00:00:00;00", 3, 1, "00:00:59;28"},
        {"a drop-frame hour is an hour", cDrop, "00:00:00;00", 0, 1, "01:00:00;00"},
        {"and back", cDrop, "01:00:00;00", 0, -1, "00:00:00;00"},
    };
    for (const auto& row : rows) {
        Time_Session::SetTimeCodeFormat(row.format);
        Edit(row.text);
        mField->SetSelection(row.start, static_cast<short>(row.start + 2));
        mField->AddValueToCurrentSelection(row.delta);
        EXPECT_EQ(Text(), row.after) << row.why;
    }
}

TEST_F(NumericField, ReturnNormalisesAndNotifies) {
    Use(cTC);
    Time_Session::SetTimeCodeFormat(cDrop);
    Edit("00:00:00:00");
    Key(kDAW_Key_Backspace);
    Type("10000");
    EXPECT_EQ(Text(), "00:01:00:00");
    EXPECT_TRUE(Key(kDAW_Key_Return));
    EXPECT_EQ(Text(), "00:01:00;02") << "the next label that exists, with the rate's separator";
    EXPECT_EQ(mKeys, std::vector<int>{13});
    EXPECT_EQ(mData.mType, 20);
    EXPECT_EQ(mData.mSMPTE.GetTotalFrames(), 1800);
    EXPECT_EQ(mData.mValue, 1800 * 1601.6);
    EXPECT_EQ(Selection(), "0..0");
    Edit("00:00:00;00");
    Type("99999999");
    Key(kDAW_Key_Enter);
    EXPECT_EQ(Text(), "23:59:59;29");
}

TEST_F(NumericField, PositionsBeforeTheSessionStartAreReportedAsTheStart) {
    Use(cTC);
    Time_Session::SetFrameOffset(108000);
    Edit("00:59:59:00");
    Key(kDAW_Key_Return);
    EXPECT_EQ(mData.mSMPTE.GetTotalFrames(), 108000);
    EXPECT_EQ(mData.mValue, 0);
    mField->SetAllowPreSessionTimeCode(true);
    Key(kDAW_Key_Return);
    EXPECT_EQ(mData.mSMPTE.GetTotalFrames(), 108000 - 30);
    EXPECT_EQ(mData.mValue, (108000 - 30) * 1600);
    mField->SetAllowPreSessionTimeCode(false);
    mField->SetIsDurationText(true);
    Key(kDAW_Key_Return);
    EXPECT_EQ(mData.mValue, (108000 - 30) * 1600) << "a duration is a length";
    EXPECT_EQ(mLastMilliSeconds, 3599000);
}

TEST_F(NumericField, WhatTheClientIsGiven) {
    Time_Session::SetFrameOffset(30 * 10);
    struct Row {
        const char* why;
        ENumericEntryFormat format;
        bool duration;
        const char* text;
        Time_Typed value;
        Time_TypedLength forward, backward; // from and to sample 24000
        std::int64_t samples, milliseconds;
    };
    const auto samples = [](std::int64_t count) {
        return Time_TypedLength(Time_SampleLength(count));
    };
    const Time_TickLength bar = Time_TickLength::FromDisplayTicks(3840);
    const Time_TickLength beat = Time_TickLength::FromDisplayTicks(960);
    const Row rows[] = {
        {"a position", cTC, false, "00:00:11:15", Time_Typed(Time_Sample(72000)), samples(48000),
         samples(-48000), 72000, 1500},
        {"a length has no ends", cTC, true, "00:00:01:15", Time_Typed(Time_Sample(72000)),
         samples(72000), samples(72000), 72000, 1500},
        {"milliseconds as typed", cMS, false, "   0:01.001", Time_Typed(Time_Sample(48048)),
         samples(24048), samples(-24048), 48048, 1001},
        {"footage", cFF, false, "     1+08", Time_Typed(Time_Sample(48000)), samples(24000),
         samples(-24000), 48000, 1000},
        {"bars stay musical", cBB, false, "   2|01|000", Time_Typed(bar),
         Time_TypedLength(bar - beat), Time_TypedLength(beat - bar), 96000, 2000},
        {"so do lengths of bars", cDur, false, "   1|00|000", Time_Typed(bar),
         Time_TypedLength(bar), Time_TypedLength(bar), 96000, 2000},
        {"samples", cSmp, false, "24001", Time_Typed(Time_Sample(24001)), samples(1), samples(-1),
         24001, 500},
    };
    for (const Row& row : rows) {
        mField->SetIsDurationText(row.duration);
        Use(row.format);
        ASSERT_TRUE(mField->SetText(row.text, true, true)) << row.why;
        mField->GetData(&mData);
        const CNumericEntryCallbackInfo info(mField, mData);
        const Time_Typed start(Time_Sample(24000));
        EXPECT_EQ(info.GetTimeTypedValue(), row.value) << row.why;
        EXPECT_EQ(info.GetTimeTypedLength(start, ELength_Dir::Forward), row.forward) << row.why;
        EXPECT_EQ(info.GetTimeTypedLength(start, ELength_Dir::Backward), row.backward) << row.why;
        EXPECT_EQ(info.GetSampleLengthValue().GetSamples(), row.samples) << row.why;
        EXPECT_EQ(info.GetMilliSeconds(), row.milliseconds) << row.why;
    }
}

// ---- Keys ----

TEST_F(NumericField, ArrowsGoRoundInNormalArrowModeAndPassOnWithout) {
    Use(cTC);
    Edit("01:02:03:04");
    mField->SetNormalArrowMode(true);
    mField->SetSelection(9, 11);
    EXPECT_TRUE(Key(kDAW_Key_Right));
    EXPECT_EQ(Selection(), "0..2");
    EXPECT_TRUE(Key(kDAW_Key_Left));
    EXPECT_EQ(Selection(), "9..11");
    EXPECT_TRUE(Key(kDAW_Key_Up));
    EXPECT_EQ(Text(), "01:02:03:05");
    EXPECT_TRUE(mField->SetText("00:00:59:00", true, true));
    mField->SetSelection(6, 8);
    EXPECT_TRUE(Key(kDAW_Key_Up));
    EXPECT_EQ(Text(), "00:01:00:00");
    EXPECT_TRUE(Key(kDAW_Key_Down));
    EXPECT_EQ(Text(), "00:00:59:00");
    EXPECT_EQ(Selection(), "6..8");
    EXPECT_TRUE(mField->SetText("01:02:03:05", true, true));
    mField->SetSelection(9, 11);
    EXPECT_TRUE(mApplication->mPassed.empty());

    mField->SetNormalArrowMode(false);
    EXPECT_FALSE(Key(kDAW_Key_Right));
    EXPECT_EQ(Selection(), "9..11") << "no wrap";
    EXPECT_FALSE(Key(kDAW_Key_Down));
    EXPECT_EQ(Text(), "01:02:03:05");
    Type("7");
    EXPECT_FALSE(Key(kDAW_Key_Left));
    EXPECT_EQ(Selection(), "6..8");
    EXPECT_EQ(mField->GetTypedCount(), 1) << "clears only when the move stopped at an end";
    EXPECT_EQ(mApplication->mPassed.size(), 3u);
}

TEST_F(NumericField, ArithmeticAddsTheOperandOnReturn) {
    Use(cTC);
    Edit("00:00:10:00");
    Type("+10");
    EXPECT_EQ(Text(), "00:00:00:10");
    EXPECT_EQ(mField->GetArithmeticMode(), kArithmetic_Adding);
    EXPECT_TRUE(mField->IsDurationText()) << "an operand is a length";
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "00:00:10:10");
    EXPECT_EQ(mField->GetArithmeticMode(), kArithmetic_None);
    EXPECT_FALSE(mField->IsDurationText());
    EXPECT_EQ(Selection(), "0..11") << "the field stays the target and shows the result";
    EXPECT_TRUE(mField->IsTarget());
    EXPECT_EQ(mKeys, std::vector<int>{13});

    Type("-1.");
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "00:00:09:10");
    Type("-10000000");
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "00:00:00:00") << "positions stop at zero";
    mField->SetNormalArrowMode(true);
    mKeys.clear();
    Type("+5");
    Key(kDAW_Key_Return);
    EXPECT_TRUE(mKeys.empty()) << "not told in normal arrow mode";
}

TEST_F(NumericField, SignsAfterDigitsAreIgnoredAndBeforeThemStartAgain) {
    Use(cTC);
    Edit("00:00:10:00");
    Type("5+");
    EXPECT_EQ(Text(), "00:00:10:05");
    EXPECT_EQ(mField->GetArithmeticMode(), kArithmetic_None);
    Edit("00:00:10:00");
    Key(kDAW_Key_Backspace);
    mField->AbortEdit();
    mField->SetSelection(6, 8);
    Type("+");
    EXPECT_EQ(Selection(), "6..8") << "the selection stays";
    Type("-");
    EXPECT_EQ(mField->GetArithmeticMode(), kArithmetic_Subtracting);
    EXPECT_EQ(mField->GetBackup(), "00:00:00:00");
    Key(kDAW_Key_Return);
    EXPECT_FALSE(mField->IsDurationText()) << "the flag survives the second sign";
}

TEST_F(NumericField, StarAndSlashFinishWhatIsPending) {
    Use(cTC);
    Edit("00:00:10:00");
    Type("+10*");
    EXPECT_EQ(Text(), "00:00:10:10");
    EXPECT_TRUE(mKeys.empty()) << "pending arithmetic simply ends";
    Type("/");
    EXPECT_EQ(mKeys, std::vector<int>{'/'});
    EXPECT_EQ(mField->GetBackup(), "00:00:10:10");
    Type("8");
    Key('*');
    EXPECT_EQ(mField->GetTypedCount(), 0);
    EXPECT_EQ(Text(), "00:00:10:18");
}

TEST_F(NumericField, BackspaceEscapeAndUndo) {
    Use(cTC);
    Edit("01:02:03:04");
    Type("55");
    Key(kDAW_Key_Escape);
    EXPECT_EQ(Text(), "01:02:03:04");
    EXPECT_EQ(Selection(), "0..11");
    Key(kDAW_Key_Delete);
    EXPECT_EQ(Text(), "00:00:00:00");
    Type("9");
    EXPECT_EQ(Text(), "00:00:00:09");
    mField->DoMenuCommand(kCommand_Undo);
    EXPECT_EQ(Text(), "01:02:03:04");
    Type("+7");
    Key(kDAW_Key_Escape);
    EXPECT_EQ(Text(), "01:02:03:04");
    EXPECT_EQ(mField->GetArithmeticMode(), kArithmetic_None);
    EXPECT_TRUE(mApplication->mPassed.empty());
    mField->SetPassEscapeKeyToSupervisor(true);
    Key(kDAW_Key_Escape);
    EXPECT_EQ(mApplication->mPassed, std::vector<std::uint32_t>{27});

    // A character 27 from elsewhere clears.
    TToolboxEvent event;
    event.IToolboxEvent(mField, QLX_MakeKeyEvent(8, 27, 27, 0));
    mApplication->HandleKeyDownEvent(&event);
    EXPECT_EQ(Text(), "00:00:00:00");
}

TEST_F(NumericField, TabAndReturnReachTheSupervisorOnlyWhenAsked) {
    Use(cTC);
    Edit("00:00:01:00");
    EXPECT_TRUE(Key(kDAW_Key_Tab));
    EXPECT_TRUE(mKeys.empty());
    mField->SetUpdateClientWhenTabbing(true);
    mField->SetPassTabKeyToSupervisor(true);
    EXPECT_FALSE(Key(kDAW_Key_Tab));
    EXPECT_EQ(mKeys, std::vector<int>{9});
    EXPECT_EQ(Selection(), "0..0");
    mField->SetHandlesTab(false);
    mKeys.clear();
    EXPECT_FALSE(Key(kDAW_Key_Tab));
    EXPECT_TRUE(mKeys.empty());
    mField->SetPassReturnKeyToSupervisor(true);
    EXPECT_FALSE(Key(kDAW_Key_Return));
    EXPECT_EQ(mApplication->mPassed, (std::vector<std::uint32_t>{9, 9, 13}));
}

TEST_F(NumericField, TypingAfterReturnStartsAfresh) {
    Use(cTC);
    Edit("00:00:00:00");
    Type("12");
    Key(kDAW_Key_Return);
    EXPECT_EQ(Selection(), "0..0");
    Type("3");
    EXPECT_EQ(Text(), "00:00:00:13") << "the first digit replaces the last";
    EXPECT_EQ(Selection(), "0..11");
}

TEST_F(NumericField, ClientHearsOfKeysWhenAsked) {
    Use(cTC);
    Edit("00:00:00:00");
    mField->SetUpdateClientWhenKeyPressed(true);
    mField->SetNormalArrowMode(true);
    mField->SetUpdateClientAfterArrow(true);
    Type("1");
    Key(kDAW_Key_Up);
    Key(kDAW_Key_Backspace);
    Key('q');
    Key(kDAW_Key_Return);
    EXPECT_EQ(mKeys, (std::vector<int>{'1', 30, 8, 13})) << "each key once, foreign keys not";
}

TEST_F(NumericField, CaptureTakesTheHostsNowInsideTheSession) {
    Use(cTC);
    static Time_SMPTE now;
    now = Time_SMPTE(ETimeCodeFormat::F30, 108000 + 95);
    TNumericEntryText::RegisterCaptureTimeCallback([] { return now; });
    Time_Session::SetFrameOffset(108000);
    Edit("00:00:00:00");
    Type("12=");
    EXPECT_EQ(Text(), "01:00:03:05");
    EXPECT_EQ(Selection(), "0..11");
    EXPECT_EQ(mField->GetTypedCount(), 0);
    now = Time_SMPTE(ETimeCodeFormat::F30, 107999);
    Type("=");
    EXPECT_EQ(Text(), "01:00:03:05") << "before the session: ignored";
    now = Time_SMPTE(ETimeCodeFormat::F30, 108000 + 45);
    const struct {
        ENumericEntryFormat format;
        const char* text;
    } rows[] = {{cMS, "   0:01.500"}, {cSmp, "72000"}, {cFF, "     2+04"}, {cBB, "   1|04|000"}};
    for (const auto& row : rows) {
        Use(row.format);
        mField->BecomeTarget();
        Type("=");
        EXPECT_EQ(Text(), row.text);
    }
    TNumericEntryText::RegisterCaptureTimeCallback(nullptr);
}

TEST_F(NumericField, FullWidthDigitsAndTornCharacters) {
    Use(cTC);
    Edit("00:00:00:00");
    Key(0xFF11);                                        // full-width 1, as one code point
    for (const unsigned char byte : {0xEF, 0xBC, 0x92}) // full-width 2, byte by byte
        EXPECT_TRUE(Key(byte));
    EXPECT_EQ(Text(), "00:00:00:12");
    Key(0xE9); // begins a character that never comes
    Key('3');
    EXPECT_EQ(Text(), "00:00:01:23");
    mField->EnableTextCompositing(true);
    EXPECT_TRUE(mField->DoTextInput("\xEF\xBC\x94"
                                    "5"));
    EXPECT_EQ(Text(), "00:00:12:34") << "plain characters come as keys";
}

TEST_F(NumericField, WhatIsNotEditableOrNotUsedGoesOn) {
    Use(cTC);
    Edit("00:00:01:00");
    EXPECT_FALSE(Key('q'));
    EXPECT_FALSE(Key('T')) << "taps belong to the host's formats";
    mField->SetResignedTargetOnUnhandledEvent(true);
    EXPECT_FALSE(Key('q'));
    EXPECT_FALSE(mField->IsTarget());
    EXPECT_EQ(mApplication->mPassed.size(), 3u);
    mField->BecomeTarget();
    mField->SetEnable(false);
    EXPECT_FALSE(mField->IsTarget());
    EXPECT_FALSE(mField->BecomeTarget());
    mField->SetEnable(true);
    EXPECT_TRUE(mField->BecomeTarget());
}

TEST_F(NumericField, VariantWithoutArithmetic) {
    auto* plain = new TNoMathEntryModeText;
    plain->IView(mRoot, VRect(10, 50, 160, 74));
    plain->SetLocalFormat(cTC, false, false);
    plain->SetText("00:00:10:00", true, true);
    plain->BecomeTarget();
    Type("+5");
    EXPECT_EQ(plain->GetText(), "00:00:10:05");
    EXPECT_EQ(plain->GetArithmeticMode(), kArithmetic_None);
    EXPECT_FALSE(Key('='));
}

TEST_F(NumericField, VariantThatLocksWithoutLookingDisabled) {
    auto* locked = new TGANumericEntryText;
    locked->IView(mRoot, VRect(10, 50, 160, 74));
    locked->SetLocalFormat(cTC, false, false);
    ASSERT_TRUE(locked->BecomeTarget());
    Type("+5");
    locked->SetIsEditable(false);
    EXPECT_FALSE(locked->IsTarget());
    EXPECT_EQ(locked->GetText(), "00:00:00:05") << "what was begun is carried out";
    EXPECT_TRUE(locked->IsEnabled());
    EXPECT_FALSE(locked->BecomeTarget());
    EXPECT_FALSE(locked->PasteText("00:00:00:09"));
    EXPECT_EQ(locked->GetPasteReport(), "the field cannot be edited");
    locked->SetIsEditable(true);
    EXPECT_TRUE(locked->BecomeTarget());
}

// ---- Numbers ----

TEST_F(NumericField, NumbersAreHeldInTheirBounds) {
    struct Row {
        const char* why;
        ENumericEntryFormat format;
        std::int64_t minimum, maximum;
        const char* text;
        const char* keys;
        const char* after;
    };
    const Row rows[] = {
        {"beyond the maximum", cInt, 1, 10, "5", "25\r", "10"},
        {"zero, then its replacement", cInt, 1, 10, "5", "08\r", "8"},
        {"below the minimum", cInt, 1, 10, "5", "0\r", "1"},
        {"inverted bounds are exchanged", cInt, 10, 1, "5", "25\r", "10"},
        {"beyond 64 bits", cInt, INT64_MIN, INT64_MAX, "5", "99999999999999999999999\r",
         "9223372036854775807"},
        {"arithmetic", cInt, -100, 100, "5", "-8\r", "-3"},
        {"no number typed", cSig, -100, 100, "5", "-\r", "5"},
        {"sign typed", cSig, -100, 100, "5", "-8\r", "-8"},
        {"plus sign typed", cSig, -100, 100, "5", "+8\r", "8"},
        {"offset arithmetic", cPlus, -100, 100, "+5", "-8\r", "-3"},
        {"offset back to zero", cPlus, -100, 100, "+5", "-5\r", "+0"},
        {"no power of two", cDen, 1, 64, "4", "5\r", "8"},
        {"none below the maximum", cDen, 1, 20, "4", "17\r", "16"},
    };
    for (const Row& row : rows) {
        Use(row.format);
        mField->SetMinMaxIntegerValues(row.minimum, row.maximum);
        Edit(row.text);
        Type(row.keys);
        EXPECT_EQ(Text(), row.after) << row.why;
    }
}

TEST_F(NumericField, LevelsAreTypedSteppedAndSubtracted) {
    Use(cVol);
    mField->SetNormalArrowMode(true);
    const struct {
        const char* why;
        const char* text;
        const char* keys;
        const char* after;
    } rows[] = {
        {"positive", "0.0", "6.5\r", "+6.5"},
        {"whole", "0.0", "3\r", "+3.0"},
        {"loudest", "0.0", "99\r", "+12.0"},
        {"negative by arithmetic", "-6.5", "\x08-12.3\r", "-12.3"},
        {"relative", "-6.5", "-0.5\r", "-7.0"},
        {"to silence", "0.0", "\x08-200\r", "-inf"},
        {"silence stays silence", "-inf", "+6\r", "-inf"},
        {"silence steps up", "-inf", "\x1E", "-143.9"},
        {"a tenth", "+11.9", "\x1E\x1E", "+12.0"},
        {"a decibel in its block", "-0.5", "\x1D\x1E", "+0.5"},
        {"the decimals step tenths", "-0.5", "\x1D\x1D\x1E", "-0.4"},
    };
    for (const auto& row : rows) {
        mField->ResignTarget();
        Edit(row.text);
        Type(row.keys);
        EXPECT_EQ(Text(), row.after) << row.why;
    }
    mField->SetMinMaxFloatValues(-6, 0);
    Edit("-3.0");
    Type("\x08-9\r");
    EXPECT_EQ(Text(), "-6.0");
    mField->GetData(&mData);
    EXPECT_DOUBLE_EQ(mData.mFloatValue, -6);
    EXPECT_EQ(mData.mValue, -60);
}

TEST_F(NumericField, FixedNumberSetsAreWalked) {
    Use(cSmp);
    for (const int size : {64, 128, 256, 1024})
        mField->AddToFixedNumberSet(size);
    mField->SetIsUsingFixedNumberSet(true);
    Edit("128");
    mField->AddValueToCurrentSelection(1);
    EXPECT_EQ(Text(), "256");
    mField->AddValueToCurrentSelection(5);
    EXPECT_EQ(Text(), "1024") << "the ends stay";
    mField->AddValueToCurrentSelection(-2);
    EXPECT_EQ(Text(), "128");
    mField->ClearFixedNumberSet();
    mField->AddValueToCurrentSelection(1);
    EXPECT_EQ(Text(), "128");
}

TEST_F(NumericField, WildcardsAreValuesButNotNumbers) {
    Use(cInt);
    EXPECT_FALSE(mField->SetText("*", true, true));
    mField->SetAcceptsWildcard(true);
    Edit("*");
    EXPECT_TRUE(mField->Validate());
    Type("+5");
    EXPECT_EQ(Text(), "5") << "a digit replaces it, arithmetic does not begin";
    Edit("*");
    Key(kDAW_Key_Return);
    EXPECT_TRUE(mData.mIsWildcard);
}

// ---- Musical time and footage ----

TEST_F(NumericField, FeetAndFrames) {
    Use(cFF);
    mField->SetNormalArrowMode(true);
    Edit("    12+05");
    EXPECT_EQ(Selection(), "0..6");
    mField->AddValueToCurrentSelection(3);
    EXPECT_EQ(Text(), "    15+05");
    EXPECT_FALSE(mField->HiliteNextBlock(kBlock_Next, false));
    mField->AddValueToCurrentSelection(-22);
    EXPECT_EQ(Text(), "    13+15") << "one foot and six frames back";
    EXPECT_TRUE(mField->HiliteNextBlock(kBlock_Next, false));
    EXPECT_EQ(Selection(), "7..9");
    mField->SetSelection(0, 6);
    EXPECT_TRUE(mField->HiliteNextBlock(kBlock_Previous, false));
    EXPECT_EQ(Selection(), "0..6");
    Key(kDAW_Key_Backspace);
    EXPECT_EQ(Text(), "     0+00");
    EXPECT_EQ(Selection(), "0..6");
    Type("90.20\r");
    EXPECT_EQ(Text(), "    91+04") << "frames carry";
    EXPECT_EQ(mData.mValue, (91 * 16 + 4) * 2000);
}

TEST_F(NumericField, BarsFollowTheMeterMap) {
    Time_SessionMeterMap().SetMeter(1, {3, 4});
    Time_SessionMeterMap().SetMeter(4, {7, 8});
    Use(cBB);
    Edit("   3|03|000");
    mField->SetSelection(5, 7);
    mField->AddValueToCurrentSelection(1);
    EXPECT_EQ(Text(), "   4|01|000");
    mField->AddValueToCurrentSelection(7);
    EXPECT_EQ(Text(), "   5|01|000");
    mField->SetSelection(0, 4);
    mField->AddValueToCurrentSelection(-20);
    EXPECT_EQ(Text(), "   1|01|000");
    Type("2.4\r");
    EXPECT_EQ(Text(), "   3|01|000") << "a beat beyond the bar carries";
    EXPECT_EQ(mData.mTicks.GetDisplayTicks(), 6 * 960);
    mField->BecomeTarget();
    Type("+2\r");
    EXPECT_EQ(Text(), "   4|07|000") << "two bars of three quarters, in eighths";
    Time_SessionMeterMap().SetMeter(1, {4, 2});
    Edit("   1|01|0000");
    Type("2\r");
    EXPECT_EQ(Text(), "   2|01|0000") << "half notes have four digits of ticks";
}

TEST_F(NumericField, BarsFollowMeterAndTempoTogether) {
    // Two bars of 3/4 at 60, then 7/8 at 120: bar 3 begins after six seconds, an eighth takes a
    // quarter of one.
    Time_SessionMeterMap().SetMeter(1, {3, 4});
    Time_SessionMeterMap().SetMeter(3, {7, 8});
    Time_SessionTempoMap().SetTempo(Time_TickLength(), 60000);
    Time_SessionTempoMap().SetTempo(Time_TickLength::FromDisplayTicks(6 * 960), 120000);
    Use(cBB);
    const struct {
        const char* text;
        std::int64_t samples;
    } rows[] = {{"   1|01|000", 0},
                {"   1|02|480", 72000},
                {"   2|03|000", 240000},
                {"   3|01|000", 288000},
                {"   3|02|000", 300000},
                {"   3|07|240", 366000},
                {"   4|01|000", 288000 + 84000}};
    for (const auto& row : rows) {
        mField->SetTextFromSample(Time_Sample(row.samples), true);
        EXPECT_EQ(Text(), row.text);
        mField->GetData(&mData);
        EXPECT_EQ(mData.mType, kEntryType_BarsBeats);
        EXPECT_EQ(mData.mValue, row.samples) << row.text;
        mField->BecomeTarget();
        EXPECT_TRUE(mField->PasteText(std::to_string(row.samples) + " samples"));
        EXPECT_EQ(Text(), row.text);
        mField->ResignTarget();
    }
    Time_SessionTempoMap() = Time_TempoMap();
}

TEST_F(NumericField, AChangeOfMeterKeepsBarBeatAndTick) {
    for (const auto& [format, before, after] : {std::tuple{cBB, "  17|02|240", "  17|02|0240"},
                                                std::tuple{cDur, "   2|00|480", "   2|00|0480"}}) {
        Time_SessionMeterMap() = Time_MeterMap();
        Use(format);
        ASSERT_TRUE(mField->SetText(before, true, true));
        Time_SessionMeterMap().SetMeter(1, {4, 2}); // half notes: four digits of ticks
        EXPECT_EQ(mField->GetLocalFormat(), format);
        EXPECT_EQ(Text(), after);
    }
}

TEST_F(NumericField, DurationsStayInTheirResolutionRange) {
    Use(cDur);
    mField->SetResolutionRange(Time_TickLength::FromDisplayTicks(240),
                               Time_TickLength::FromDisplayTicks(960 * 8));
    Edit("   0|01|000");
    Type("9\r");
    EXPECT_EQ(Text(), "   2|00|000");
    Edit("   0|01|000");
    mField->SetSelection(8, 11);
    mField->AddValueToCurrentSelection(-900);
    EXPECT_EQ(Text(), "   0|00|240");
    Key(kDAW_Key_Return);
    EXPECT_EQ(mData.mTicks, Time_TickLength::FromDisplayTicks(240));
    EXPECT_EQ(mData.mValue, 6000);
}

TEST_F(NumericField, OptionalValuesMayBeNone) {
    for (const auto& [format, empty, zeroTyped] : {std::tuple{cTC, "--:--:--:--", "00:00:00:05"},
                                                   std::tuple{cMS, "----:--.---", "   5:00.000"}}) {
        Use(format, false, true);
        EXPECT_EQ(Text(), empty);
        mField->BecomeTarget();
        EXPECT_TRUE(Key(kDAW_Key_Return));
        EXPECT_TRUE(mData.mIsEmpty);
        EXPECT_EQ(Text(), empty) << "an empty edit is no value";
        mField->BecomeTarget();
        Type("5");
        EXPECT_EQ(Text(), zeroTyped);
        Key(kDAW_Key_Return);
        EXPECT_FALSE(mData.mIsEmpty);
        Key(kDAW_Key_Backspace);
        EXPECT_EQ(Text(), empty);
        mField->ResignTarget();
    }
}

// ---- Helpers of the host ----

namespace {

// A tempo of three digits; taps set it.
class TempoHelper : public CIntegerValueEntryHelper {
  public:
    void Tap(TNumericEntryText* field, std::int32_t perMinute) override {
        mTaps.push_back(perMinute);
        if (perMinute != 0)
            field->ChangeText(std::to_string(perMinute));
    }
    std::vector<std::int32_t> mTaps;
};

// A name of letters, digits, "#" and "-".
class NoteHelper : public CIntegerValueEntryHelper {
  public:
    void DoTyping(TNumericEntryText* field, char character) override {
        const std::string old = field->GetTypedCount() == 0 ? std::string() : field->GetText();
        field->SetTypedCount(field->GetTypedCount() + 1);
        field->ChangeText(old + character);
    }
    bool Validate(TNumericEntryText*) override { return true; }
    bool HasShape(TNumericEntryText*, const std::string& text) override { return !text.empty(); }
};

} // namespace

TEST_F(NumericField, HostsRegisterHelpersOfTheirOwn) {
    static TempoHelper* const tempo = [] {
        auto* helper = new TempoHelper;
        TNumericEntryText::RegisterHelperForFormat(kNumericEntry_HostTap, false, false, helper);
        TNumericEntryText::RegisterHelperForFormat(kNumericEntry_HostTap2, false, false, helper);
        TNumericEntryText::RegisterHelperForFormat(kNumericEntry_HostText, false, false,
                                                   new NoteHelper);
        return helper;
    }();
    for (const auto format : {kNumericEntry_HostTap, kNumericEntry_HostTap2}) {
        Use(format);
        tempo->mTaps.clear();
        Edit("90");
        mField->SetUpdateClientAfterTapEntry(true);
        for (const double when : {10.0, 10.5, 11.0, 99.0}) {
            TToolboxEvent event;
            const QLX_EventRef key = QLX_MakeKeyEvent(8, 'T', 'T', 0);
            key.SetTimestamp(when);
            event.IToolboxEvent(mField, key);
            mApplication->HandleKeyDownEvent(&event);
        }
        EXPECT_EQ(tempo->mTaps, (std::vector<std::int32_t>{0, 120, 120, 0}))
            << "a long pause begins a new series";
        EXPECT_EQ(mKeys, (std::vector<int>{116, 116, 116, 116}));
        mField->SetUpdateClientAfterTapEntry(false);
        mKeys.clear();
        mField->ResignTarget();
    }
    Use(kNumericEntry_HostTap);
    mOther->BecomeTarget();
    TNumericEntryText::CheckOldTarget(nullptr);
    Edit("120");
    mField->SetNormalArrowMode(true);
    Type("+5\r");
    EXPECT_EQ(Text(), "125");
    EXPECT_EQ(mKeys, std::vector<int>{13}) << "Return is told even after arithmetic";
    EXPECT_TRUE(mOther->IsTarget());

    Use(kNumericEntry_HostText);
    Edit("C4");
    Type("-F#-1t");
    EXPECT_EQ(Text(), "F#-1t") << "a sign only behind something";

    Use(cBB);
    auto* const host = new NoteHelper;
    TNumericEntryText::RegisterHelperForFormat(kNumericEntry_BarsBeats, false, false, host);
    EXPECT_EQ(mField->GetHelper(), host);
    TNumericEntryText::RegisterHelperForFormat(kNumericEntry_BarsBeats, false, false,
                                               new CBarsBeatsEntryHelper);
    EXPECT_EQ(Text(), "   1|01|000") << "and back";
    const ENumericEntryFormat nobodys = static_cast<ENumericEntryFormat>(64);
    Use(nobodys);
    EXPECT_FALSE(Key('q'));
    Type("12+\r");
    EXPECT_EQ(mField->GetLocalFormat(), nobodys) << "without a helper nothing happens";
}

// ---- Formats ----

TEST_F(NumericField, RegistryKeys) {
    const struct {
        ENumericEntryFormat format;
        bool subframes, optional;
        std::uint32_t key;
    } rows[] = {{cMS, true, true, 0x80000002u},
                {cMS, true, false, 2},
                {cTC, true, true, 0x80000004u},
                {cTC, true, false, 0x40000004u},
                {cTC, false, false, 4},
                {cFF, true, true, 0x40000008u},
                {cFF, false, true, 8},
                {cInt, true, true, 32},
                {kNumericEntry_HostTap2, true, true, 65536}};
    for (const auto& row : rows)
        EXPECT_EQ(TNumericEntryText::MakeHelperMapKey(row.format, row.subframes, row.optional),
                  row.key);
    for (int format = -1; format <= 5; ++format) {
        const auto time = static_cast<ETimeFormat>(format);
        const int expected[] = {4, 1, 2, 4, 8, 16, 4};
        EXPECT_EQ(TNumericEntryText::TimeFormatToNumericEntryFormat(time), expected[format + 1]);
    }
    EXPECT_EQ(TNumericEntryText::NumericEntryFormatToTimeFormat(kNumericEntry_Samples),
              kTimeFormat_Samples);
    EXPECT_EQ(TNumericEntryText::NumericEntryFormatToTimeFormat(kNumericEntry_Volume),
              kTimeFormat_TimeCode);
}

TEST_F(NumericField, FollowsTheProcessWideFormatAndConvertsItsValue) {
    EXPECT_EQ(mField->GetLocalFormat(), kNumericEntry_BarsBeats);
    TNumericEntryText::SetDefaultTimeFormat(kTimeFormat_TimeCode);
    TNumericEntryText::SetSecondaryDefaultTimeFormat(kTimeFormat_Samples);
    EXPECT_EQ(mField->GetLocalFormat(), kNumericEntry_TimeCode);
    Edit("00:00:01:15");
    mField->SetIsSecondaryCounter(true);
    EXPECT_EQ(Text(), "72000");
    mField->SetIsSecondaryCounter(false);
    EXPECT_EQ(Text(), "00:00:01:15");
    TNumericEntryText::SetDefaultTimeFormatOverride(true, kTimeFormat_FeetFrames);
    EXPECT_EQ(mField->GetLocalFormat(), kNumericEntry_FeetFrames);
    EXPECT_EQ(Text(), "     2+04");
    TNumericEntryText::SetDefaultTimeFormatOverride(false, kTimeFormat_FeetFrames);
    TNumericEntryText::SetDefaultTimeFormat(kTimeFormat_BarsBeats);
    TNumericEntryText::SetSecondaryDefaultTimeFormat(kTimeFormat_BarsBeats);
    EXPECT_EQ(mField->GetLocalFormat(), kNumericEntry_BarsBeats);
    EXPECT_EQ(Text(), "   1|04|000");
}

TEST_F(NumericField, RateChangesUnderAnEdit) {
    Use(cTC);
    Edit("00:00:10:00");
    Type("5");
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F120);
    Key(kDAW_Key_Left);
    EXPECT_EQ(Text(), "00:00:10:020") << "five of thirty frames are twenty of 120";
    EXPECT_EQ(mField->GetTypedCount(), 0);
    Type("+7");
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30Drop);
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "00:00:10;05") << "an operand goes with its rate";
    EXPECT_FALSE(mField->IsDurationText());
}

TEST_F(NumericField, ValuesInFromNumbersAndSamples) {
    Use(cTC);
    mField->SetTextFromSample(Time_Sample(72000), true);
    EXPECT_EQ(Text(), "00:00:01:15");
    mField->BecomeTarget();
    Type("1");
    mField->SetTextFromSample(Time_Sample(0), true);
    EXPECT_EQ(Text(), "00:00:01:11") << "a running clock does not take an edit away";
    Use(cVol);
    mField->SetTextFromFloatValue(-6.54);
    EXPECT_EQ(Text(), "-6.5");
    mField->SetTextFromFloatValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(Text(), "0.0");
    mField->SetTextFromFloatValue(-std::numeric_limits<double>::infinity());
    EXPECT_EQ(Text(), "-inf");
    Use(cPlus);
    mField->SetTextFromIntegerValue(12);
    EXPECT_EQ(Text(), "+12");
    EXPECT_FALSE(mField->SetText("x", true, true));
    EXPECT_EQ(Text(), "+12");
}

TEST_F(NumericField, AFieldMayCountInARateOfItsOwn) {
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    Time_Session::SetFrameOffset(108000);
    mField->SetNumericEntryFormatOverride(cTC, false, false, true, ETimeCodeFormat::F120);
    EXPECT_EQ(mField->GetLocalTimeCodeFormat(), ETimeCodeFormat::F120);
    mField->SetTextFromIntegerValue(24000);
    EXPECT_EQ(Text(), "00:00:00:060") << "a stored length, from zero";
    mField->SetTextFromFloatValue(1.5);
    EXPECT_EQ(Text(), "00:00:01:060");
    mField->SetTextFromSample(Time_Sample(24000), true);
    EXPECT_EQ(Text(), "01:00:00:060") << "a position, from the session's start";
    mField->GetData(&mData);
    EXPECT_EQ(mData.mValue, 24000);
    EXPECT_EQ(mData.mSMPTE, Time_SMPTE(ETimeCodeFormat::F120, 432060));
    Edit("00:00:01:000");
    mField->GetData(&mData);
    EXPECT_EQ(mData.mSMPTE, Time_SMPTE(ETimeCodeFormat::F120, 432000)) << "the start, in its rate";
    EXPECT_EQ(mData.mValue, 0);
    EXPECT_TRUE(mField->PasteText("01:00:00:15 @ 30"));
    EXPECT_EQ(Text(), "01:00:00:060");
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F24);
    EXPECT_EQ(mField->GetLocalTimeCodeFormat(), ETimeCodeFormat::F120) << "whatever the session";
}

// ---- The target ----

TEST_F(NumericField, ReturnGivesTheKeyboardBack) {
    Use(cTC);
    mOther->BecomeTarget();
    TNumericEntryText::CheckOldTarget(nullptr);
    Edit("00:00:00:00");
    Type("5");
    Key(kDAW_Key_Return);
    EXPECT_TRUE(mOther->IsTarget());
    mField->BecomeTarget();
    Key(kDAW_Key_Return);
    EXPECT_TRUE(mField->IsTarget()) << "nothing is remembered twice";
    mOther->BecomeTarget();
    TNumericEntryText::CheckOldTarget(nullptr);
    mField->BecomeTarget();
    mOther->Free();
    mOther = nullptr;
    Key(kDAW_Key_Return);
    EXPECT_TRUE(mField->IsTarget()) << "who went meanwhile is not woken";
}

TEST_F(NumericField, GivingTheKeyboardUpForNobodyGivesItBack) {
    Use(cTC);
    mField->SetUpdateClientWhenResigningTarget(true);
    const auto giveUp = std::vector<std::function<void()>>{
        [this] { mField->ResignTarget(); },
        [this] {
            mField->SetEnable(false);
            mField->SetEnable(true);
        },
        [this] {
            mField->SetResignedTargetOnUnhandledEvent(true);
            Key('q');
        },
    };
    for (const auto& way : giveUp) {
        mOther->BecomeTarget();
        TNumericEntryText::CheckOldTarget(nullptr);
        mField->BecomeTarget();
        mKeys.clear();
        way();
        EXPECT_TRUE(mOther->IsTarget());
        EXPECT_EQ(mKeys, std::vector<int>{0});
    }
    // Taken by somebody else it goes there, and there alone.
    auto* third = new OtherView;
    third->IView(mRoot, VRect(0, 240, 100, 260));
    TNumericEntryText::CheckOldTarget(nullptr);
    mField->BecomeTarget();
    third->BecomeTarget();
    EXPECT_TRUE(third->IsTarget());
}

TEST_F(NumericField, LosingTheKeyboardFinishesTheEdit) {
    Use(cTC);
    Edit("00:00:10:00");
    Type("+5");
    mOther->BecomeTarget();
    EXPECT_EQ(Text(), "00:00:10:05");
    EXPECT_TRUE(mKeys.empty());
    mField->SetUpdateClientWhenResigningTarget(true);
    mField->BecomeTarget();
    Type("9999");
    mOther->BecomeTarget();
    EXPECT_EQ(Text(), "00:01:42:09");
    EXPECT_EQ(mKeys, std::vector<int>{0});
    EXPECT_EQ(Selection(), "0..0");
}

TEST_F(NumericField, CallbacksMayChangeOrFreeTheField) {
    for (const std::uint32_t key : {13u, 3u, 9u, 30u, std::uint32_t('1'), std::uint32_t('*'), 8u}) {
        auto* field = new TNumericEntryText;
        field->IView(mRoot, VRect(10, 50, 160, 74));
        field->SetLocalFormat(cTC, false, false);
        field->SetNormalArrowMode(true);
        field->SetUpdateClientWhenKeyPressed(true);
        field->SetUpdateClientAfterArrow(true);
        field->SetUpdateClientWhenTabbing(true);
        field->SetUpdateClientWhenResigningTarget(true);
        field->SetCallback(&FieldTest::OnClient, this);
        mOnClient = [](CNumericEntryCallbackInfo& info) { info.GetField()->Free(); };
        field->BecomeTarget();
        Key(key);
        EXPECT_EQ(mRoot->CountSubViews(), 2) << key;
    }
    mOnClient = [](CNumericEntryCallbackInfo& info) {
        info.GetField()->SetLocalFormat(kNumericEntry_Samples, false, false);
        info.GetField()->SetText("5", true, true);
    };
    Use(cTC);
    Edit("00:00:01:00");
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "5");
    EXPECT_EQ(mField->GetBackup(), "5");
}

// ---- The clipboard ----

TEST_F(NumericField, PastesAnyDisplaysText) {
    struct Row {
        const char* why;
        ENumericEntryFormat format;
        const char* pasted;
        const char* after; // null: refused
        const char* report;
    };
    const Row rows[] = {
        {"own text", cTC, "01:02:03:04", "01:02:03:04", "at 30 fps (the field's rate)"},
        {"blanks around", cTC, " \t01:02:03:04\r\n", "01:02:03:04", "time code"},
        {"without separators", cTC, "1020304", "01:02:03:04", "without separators"},
        {"out of range carries", cTC, "00:00:75:00", "00:01:15:00", "which is 00:01:15:00"},
        {"another rate", cTC, "00:00:10:12 @ 25", "00:00:10:14", "at 25 fps"},
        {"rate with fps", cTC, "00:00:10:12 25 fps", "00:00:10:14", "at 25 fps"},
        {"drop mark", cTC, "00:01:00;02", "00:01:00:00", "marks drop-frame"},
        {"clock time", cTC, "1:02.500", "00:01:02:15", "minutes and seconds"},
        {"clock time with hours", cTC, "1:02:03", "01:02:03:00", "hours, minutes and seconds"},
        {"footage", cTC, "90+00", "00:01:00:00", "feet and frames"},
        {"samples", cTC, "72000 samples", "00:00:01:15", "samples"},
        {"bars", cTC, "2|1|000", "00:00:02:00", "bars"},
        {"full-width", cTC, "\xEF\xBC\x91\xEF\xBC\x92", "00:00:00:12", "digits"},
        {"beyond the day", cTC, "25:00:00:00", nullptr, "outside"},
        {"negative", cTC, "-00:00:01:00", nullptr, "outside"},
        {"no time", cTC, "hello", nullptr, "column 1"},
        {"unknown rate", cTC, "00:00:00:00 @ 26", nullptr, "unknown frame rate \"26\""},
        {"two lines", cTC, "1\n2", nullptr, "more than one line"},
        {"nothing", cTC, "  ", nullptr, "nothing to paste"},
        {"too many digits", cTC, "123456789", nullptr, "more digits"},
        {"time code into minutes", cMS, "00:01:00:15", "   1:00.500", "time code"},
        {"minutes", cMS, "12:34.5", "  12:34.500", "minutes and seconds"},
        {"time code into footage", cFF, "00:01:00:00", "    90+00", "time code"},
        {"footage", cFF, "12+3", "    12+03", "feet and frames"},
        {"time code into bars", cBB, "00:00:02:00", "   2|01|000", "time code"},
        {"time code into samples", cSmp, "00:00:01:15", "72000", "time code"},
        {"thousands", cSmp, "72,000", "72000", "samples"},
        {"bad thousands", cSmp, "7,20,00", nullptr, "column 5"},
        {"integer", cInt, "-12", "-12", "whole number"},
        {"not whole", cInt, "1.5", nullptr, "column 2"},
        {"level", cVol, "-6,5 dB", "-6.5", "decibels"},
        {"silence", cVol, "-INF", "-inf", "decibels"},
        {"too loud", cVol, "13", nullptr, "nearest is +12.0"},
        {"denominator", cDen, "16", "16", "whole number"},
        {"a length", cDur, "2|0|480", "   2|00|480", "bars"},
        {"a length's beat of a position", cBB, "2|0", "   2|01|000", "bars"},
        {"not of bars", cBB, "2|x", nullptr, "bars|beats"},
        {"no denominator", cDen, "12", nullptr, "nearest is 16"},
        {"duration", cDur, "2|1|480", "   2|01|480", "bars"},
    };
    for (const Row& row : rows) {
        Use(row.format);
        mField->ResignTarget();
        mField->BecomeTarget();
        const std::string before = Text();
        QLX_Clipboard::Get().SetText(row.pasted);
        EXPECT_TRUE(Key('V', cCommandKey));
        EXPECT_EQ(Text(), row.after != nullptr ? row.after : before) << row.why;
        EXPECT_NE(mField->GetPasteReport().find(row.report), std::string::npos)
            << row.why << ": " << mField->GetPasteReport();
        Key('C', cCommandKey);
        std::string copied;
        EXPECT_TRUE(QLX_Clipboard::Get().GetText(copied));
        EXPECT_EQ(copied, Text());
    }
}

// What is copied from a field can be pasted into one like it, and gives the same text.
TEST_F(NumericField, EveryFieldTakesItsOwnText) {
    const struct {
        ENumericEntryFormat format;
        bool subframes;
        std::int64_t from, to;
    } rows[] = {
        {cTC, false, 0, 4000000000}, {cTC, true, 0, 4000000000},  {cMS, false, 0, 4000000000},
        {cFF, false, 0, 4000000000}, {cFF, true, 0, 4000000000},  {cBB, false, 0, 400000000},
        {cDur, false, 0, 400000000}, {cSmp, false, 0, 400000000}, {cInt, false, -5000, 5000},
        {cSig, false, -5000, 5000},  {cPlus, false, -5000, 5000}, {cDen, false, 0, 6},
        {cVol, false, -1440, 120}};
    std::mt19937_64 random(5);
    for (const auto& rate : {ETimeCodeFormat::F24, cDrop, ETimeCodeFormat::F11988Drop}) {
        Time_Session::SetTimeCodeFormat(rate);
        for (const auto& row : rows) {
            Use(row.format, row.subframes);
            for (int i = 0; i < 100; ++i) {
                const auto span = static_cast<std::uint64_t>(row.to - row.from + 1);
                std::int64_t value = row.from + static_cast<std::int64_t>(random() % span);
                if (row.format == cDen)
                    value = std::int64_t{1} << value;
                mField->SetTextFromIntegerValue(value);
                const std::string text = Text();
                mField->CopyToClipBoard();
                mField->SetTextFromIntegerValue(0);
                ASSERT_TRUE(mField->PasteClipBoard()) << text << ": " << mField->GetPasteReport();
                ASSERT_EQ(Text(), text) << mField->GetPasteReport();
            }
        }
    }
}

TEST_F(NumericField, PastedMegabytesAreRefusedAndAnOperandMayBePasted) {
    Use(cTC);
    Edit("00:00:10:00");
    EXPECT_FALSE(mField->PasteText(std::string(20'000'000, '1')));
    EXPECT_EQ(mField->GetPasteReport(), "too long for a value: 20000000 characters");
    EXPECT_EQ(Text(), "00:00:10:00");
    Type("+");
    EXPECT_TRUE(mField->PasteText("12"));
    Key(kDAW_Key_Return);
    EXPECT_EQ(Text(), "00:00:10:12");
}

// ---- Accessibility ----

namespace {

class Listener : public QLX_AccessibilityListener {
  public:
    Listener() { Install(this); }
    ~Listener() override { Install(nullptr); }
    void ViewNotified(TView*, int code, TObject*) override { mCodes.push_back(code); }
    std::vector<int> mCodes;
};

} // namespace

TEST_F(NumericField, AccessibilityHearsOfTextAndSelection) {
    Use(cTC);
    Edit("00:00:10:00");
    Listener listener;
    Type("5");
    EXPECT_EQ(listener.mCodes, std::vector<int>{9});
    listener.mCodes.clear();
    mField->HiliteNextBlock(kBlock_Next, true);
    EXPECT_EQ(listener.mCodes, std::vector<int>{13});
    listener.mCodes.clear();
    mField->SetSelection(0, 2);
    mField->ChangeText(Text());
    EXPECT_TRUE(listener.mCodes.empty()) << "nothing changed, nothing told";

    std::string selected;
    EXPECT_TRUE(mField->GetSelectedForAccessibility(selected));
    EXPECT_EQ(selected, "00");
    double minimum = 0;
    double maximum = 0;
    double value = 0;
    EXPECT_TRUE(mField->GetRangeForAccessibility(minimum, maximum, value));
    EXPECT_EQ(value, 305 * 1600);
    EXPECT_TRUE(mField->SetRangeForAccessibility(48000));
    EXPECT_EQ(Text(), "00:00:01:00");
    EXPECT_EQ(mKeys, std::vector<int>{0});
    mField->SetPrefixText("at ");
    Type("+5");
    std::string spoken;
    mField->ReadAccessibility(spoken);
    EXPECT_EQ(spoken, "at 00:00:01:00 + 05:00:00:00");
}

TEST_F(NumericField, RangesForAccessibility) {
    const struct {
        ENumericEntryFormat format;
        double minimum, maximum, set, value;
        const char* text;
    } rows[] = {
        {cTC, 0, 86400.0 * 48000 - 1600, 48000, 48000, "00:00:01:00"},
        {cTC, 0, 86400.0 * 48000 - 1600, 1e18, 86400.0 * 48000 - 1600, "23:59:59:29"},
        {cSmp, 0, static_cast<double>(Time_Typed::sMaxSessionSample), 77, 77, "77"},
        {cInt, -100, 100, 1e300, 100, "100"},
        {cVol, -100, 100, -6.5, -6.5, "-6.5"},
        {cDen, 1, 64, 5, 8, "8"},
    };
    for (const auto& row : rows) {
        Use(row.format);
        mField->SetMinMaxIntegerValues(-100, 100);
        double minimum = 0;
        double maximum = 0;
        double value = 0;
        EXPECT_TRUE(mField->SetRangeForAccessibility(row.set));
        EXPECT_EQ(Text(), row.text);
        EXPECT_TRUE(mField->GetRangeForAccessibility(minimum, maximum, value));
        EXPECT_EQ(minimum, row.minimum) << row.text;
        EXPECT_EQ(maximum, row.maximum) << row.text;
        EXPECT_EQ(value, row.value);
    }
    EXPECT_FALSE(mField->SetRangeForAccessibility(std::numeric_limits<double>::quiet_NaN()));
    mField->SetEnable(false);
    EXPECT_FALSE(mField->SetRangeForAccessibility(4));
    EXPECT_EQ(Text(), "8");
}

TEST_F(NumericField, CloneIsAFieldOfItsOwn) {
    Use(cTC, true);
    Edit("01:02:03:04.05");
    mField->SetPrefixText("a prefix that is too long for a small string");
    auto* copy = static_cast<TNumericEntryText*>(mField->Clone());
    mField->Free();
    mField = nullptr;
    EXPECT_EQ(copy->GetText(), "01:02:03:04.05");
    EXPECT_EQ(copy->GetPrefixText(), "a prefix that is too long for a small string");
    EXPECT_EQ(copy->GetLocalFormat(), kNumericEntry_TimeCode);
    copy->Free();
}

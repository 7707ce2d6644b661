// The time types beside time code: exact division, minutes and seconds, feet and frames, samples,
// musical time.
#include <random>

#include <gtest/gtest.h>

#include "mediakit/time/time_feetframe.h"
#include "mediakit/time/time_minsec.h"
#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_typed.h"
#include "tests/support/assertion_catcher.h"

namespace {
constexpr std::int64_t cMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t cMin = std::numeric_limits<std::int64_t>::min();
} // namespace

TEST(Time_MulDiv, RoundsOnceAndHalvesGoUpOnBothSidesOfZero) {
    struct Row {
        std::int64_t a, b, c, floor, nearest, ceiling;
    };
    const Row rows[] = {
        {7, 1, 2, 3, 4, 4},
        {-7, 1, 2, -4, -3, -3},
        {7, -1, 3, -3, -2, -2},
        {-8, 1, 3, -3, -3, -2},
        {6, 2, 4, 3, 3, 3},
        {0, -5, 7, 0, 0, 0},
        {cMax, cMax, cMax, cMax, cMax, cMax},
        {cMin, 1, 1, cMin, cMin, cMin},
        {cMin, cMax, cMax, cMin, cMin, cMin},
        {cMax, 2, 1, cMax, cMax, cMax}, // held at the limits
        {cMin, 3, 2, cMin, cMin, cMin},
        {cMax, 3, 10, 2767011611056432742, 2767011611056432742, 2767011611056432743},
        {1LL << 62, (1LL << 61) + 1, cMax, 1152921504606846976, 1152921504606846977,
         1152921504606846977},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Time_MulDiv(row.a, row.b, row.c, Time_ERounding::Floor), row.floor)
            << row.a << "*" << row.b << "/" << row.c;
        EXPECT_EQ(Time_MulDiv(row.a, row.b, row.c, Time_ERounding::Nearest), row.nearest)
            << row.a << "*" << row.b << "/" << row.c;
        EXPECT_EQ(Time_MulDiv(row.a, row.b, row.c, Time_ERounding::Ceiling), row.ceiling)
            << row.a << "*" << row.b << "/" << row.c;
    }
}

// a * b - q * c, kept to 64 bits, must be a remainder: from 0 up to c for the floor. A wrong
// quotient is off by whole multiples of c and cannot pass.
TEST(Time_MulDiv, FloorLeavesAProperRemainderForAnyOperands) {
    std::mt19937_64 random(1);
    int checked = 0;
    for (int i = 0; i < 50000; ++i) {
        const auto any = [&] { return static_cast<std::int64_t>(random()) >> (random() % 60); };
        const std::int64_t a = any();
        const std::int64_t b = any();
        const std::int64_t c = (any() & cMax) | 1;
        const std::int64_t quotient = Time_MulDiv(a, b, c, Time_ERounding::Floor);
        if (quotient == cMax || quotient == cMin)
            continue;
        ++checked;
        const auto wrap = [](std::int64_t v) { return static_cast<std::uint64_t>(v); };
        const std::uint64_t rest = wrap(a) * wrap(b) - wrap(quotient) * wrap(c);
        ASSERT_LT(rest, wrap(c)) << a << " * " << b << " / " << c;
    }
    EXPECT_GT(checked, 10000);
}

TEST(Time_MulDiv, RefusesADivisorThatIsNotPositive) {
    AssertionCatcher catcher;
    EXPECT_EQ(Time_MulDiv(1, 1, 0, Time_ERounding::Floor), 0);
    EXPECT_EQ(Time_MulDiv(1, 1, -1, Time_ERounding::Floor), 0);
    EXPECT_EQ(catcher.GetFailures().size(), 2u);
}

TEST(Time_MinSec, Texts) {
    struct Row {
        std::int64_t milliseconds;
        const char* text;
    };
    const Row rows[] = {
        {0, "   0:00.000"},          {65250, "   1:05.250"}, {9999 * 60000 + 59999, "9999:59.999"},
        {600000000, "10000:00.000"}, {-1, "  -0:00.001"},    {-3600000, " -60:00.000"}};
    for (const Row& row : rows) {
        EXPECT_EQ(Time_MinSec(row.milliseconds).ToString(), row.text);
        Time_MinSec read(-5);
        ASSERT_TRUE(read.FromString(row.text)) << row.text;
        EXPECT_EQ(read.GetMilliSeconds(), row.milliseconds);
    }
    Time_MinSec read(5);
    EXPECT_TRUE(read.FromString("1:75.5"));
    EXPECT_EQ(read.GetMilliSeconds(), 135500);
    for (const char* text : {"", ":00.000", "1:.000", "1:00", "1:00.", "1:00.0000", "1:00.00x",
                             "1 :00.000", "123456789012345:00.000"})
        EXPECT_FALSE(read.FromString(text)) << text;
    EXPECT_EQ(read.GetMilliSeconds(), 135500);
    EXPECT_FALSE(Time_MinSec(cMin).ToString().empty());
}

TEST(Time_MinSec, EveryMillisecondOfAnHourSurvivesSamples) {
    for (const int rate : {44100, 48000, 192000})
        for (std::int64_t ms = -2000; ms < 3600000; ms += 7) {
            Time_MinSec read;
            read.SetFromSamples(Time_MinSec(ms).GetSamples(rate), rate);
            ASSERT_EQ(read.GetMilliSeconds(), ms) << rate;
        }
}

TEST(Time_FeetFrame, Texts) {
    struct Row {
        std::int64_t frames;
        int subframes;
        const char* text;
        const char* withSubframes;
    };
    const Row rows[] = {{0, 0, "     0+00", "     0+00.00"},
                        {15, 5, "     0+15", "     0+15.05"},
                        {16 * 90 + 3, 50, "    90+03", "    90+03.50"},
                        {999999 * 16 + 15, 99, "999999+15", "999999+15.99"},
                        {16000000, 0, "1000000+00", "1000000+00.00"},
                        {-17, 0, "    -1+01", "    -1+01.00"},
                        {-1, 75, "    -0+01", "    -0+00.25"}};
    for (const Row& row : rows) {
        const Time_FeetFrame time(row.frames, row.subframes);
        EXPECT_EQ(time.ToString(), row.text);
        EXPECT_EQ(time.ToString(true), row.withSubframes);
        Time_FeetFrame read(3);
        ASSERT_TRUE(read.FromString(row.withSubframes));
        EXPECT_EQ(read, time) << row.withSubframes;
    }
    Time_FeetFrame read(3);
    EXPECT_TRUE(read.FromString("1+40"));
    EXPECT_EQ(read.GetTotalFrames(), 56);
    for (const char* text : {"", "+00", "1+", "1+0.", "1+00.123", "1 +00", "a+00"})
        EXPECT_FALSE(read.FromString(text)) << text;
}

TEST(Time_FeetFrame, AddsSubframesWithCarry) {
    const Time_FeetFrame sum = Time_FeetFrame(15, 60) + Time_FeetFrame(0, 50);
    EXPECT_EQ(sum.ToString(true), "     1+00.10");
    EXPECT_EQ((Time_FeetFrame(16) - Time_FeetFrame(0, 1)).ToString(true), "     0+15.99");
    EXPECT_EQ(Time_FeetFrame::FromFeetAndFrames(-1, -4), Time_FeetFrame(-20));
    EXPECT_EQ(Time_FeetFrame(90 * 16).GetSamples(48000).GetSamples(), 48000 * 60);
}

TEST(Time_Sample, Texts) {
    Time_Sample read(7);
    EXPECT_TRUE(Time_SampleUtils::FromString("-9223372036854775808", read));
    EXPECT_EQ(read.GetSamples(), cMin);
    EXPECT_EQ(Time_SampleUtils::ToString(read), "-9223372036854775808");
    EXPECT_TRUE(Time_SampleUtils::FromString("+12", read));
    for (const char* text : {"", "+", "-", "+-1", "1.0", "9223372036854775808", " 1", "1 "})
        EXPECT_FALSE(Time_SampleUtils::FromString(text, read)) << text;
    EXPECT_EQ(read.GetSamples(), 12);
}

TEST(Time_MeterMap, PositionsAndTicksAreInverseAcrossMeterChanges) {
    Time_MeterMap map;
    map.SetMeter(5, {7, 8});
    map.SetMeter(3, {3, 4});
    map.SetMeter(9, {1, 64});
    map.SetMeter(12, {4, 4});
    const std::int64_t quarter = Time_TickLength::cInternalQuarter;
    EXPECT_EQ(map.ToTicks({1, 1, 0}).GetTicks(), 0);
    EXPECT_EQ(map.ToTicks({3, 1, 0}).GetTicks(), 8 * quarter);
    EXPECT_EQ(map.ToTicks({5, 1, 0}).GetTicks(), 14 * quarter);
    EXPECT_EQ(map.ToTicks({9, 1, 0}).GetTicks(), 28 * quarter);
    EXPECT_EQ(map.ToTicks({0, 4, 0}).GetTicks(), -quarter); // the beat before bar 1
    EXPECT_EQ(map.ToTicks({5, 8, 0}), map.ToTicks({6, 1, 0})) << "a beat past the bar carries";

    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        const std::int64_t display = static_cast<std::int64_t>(random() % 80000) - 8000;
        const Time_TickLength ticks = Time_TickLength::FromDisplayTicks(display);
        const Time_BarBeatTick position = map.FromTicks(ticks);
        ASSERT_EQ(map.ToTicks(position), ticks) << position.ToString();
        ASSERT_LE(position.beat, map.GetMeter(position.bar).numerator);
        ASSERT_LT(position.tick, map.GetMeter(position.bar).DisplayTicksPerBeat());
        Time_BarBeatTick read;
        ASSERT_TRUE(read.FromString(position.ToString()));
        ASSERT_EQ(read, position);
    }
    map.RemoveMeter(5);
    EXPECT_EQ(map.GetMeter(6), (Time_Meter{3, 4}));
    AssertionCatcher catcher;
    map.SetMeter(0, {4, 4});
    map.SetMeter(2, {4, 3});
    EXPECT_EQ(catcher.GetFailures().size(), 2u);
}

TEST(Time_TempoMap, SamplesFollowTempoChangesWithoutDrift) {
    Time_TempoMap map;
    const std::int64_t quarter = Time_TickLength::cInternalQuarter;
    EXPECT_EQ(map.ToSample(Time_TickLength(quarter), 48000).GetSamples(), 24000);
    // A thousand alternating beats of 60 and 90.9 BPM: 500 s and 500 * 60/90.9 s.
    for (int beat = 0; beat < 1000; ++beat)
        map.SetTempo(Time_TickLength(beat * quarter), beat % 2 == 0 ? 60000 : 90900);
    // 500 + 30000/90.9 seconds are 830.033003300330... s.
    EXPECT_EQ(map.ToSample(Time_TickLength(1000 * quarter), 192000).GetSamples(), 159366337);
    EXPECT_EQ(map.ToSample(Time_TickLength(-quarter), 48000).GetSamples(), -48000);
    std::mt19937_64 random(9);
    for (int i = 0; i < 2000; ++i) {
        const Time_Sample sample(static_cast<std::int64_t>(random() % 200000000) - 1000000);
        ASSERT_EQ(map.ToSample(map.FromSample(sample, 192000), 192000), sample);
    }
}

TEST(Time_Typed, LengthsHaveTwoEnds) {
    const Time_TypedLength beat{Time_TickLength(Time_TickLength::cInternalQuarter)};
    const Time_Typed anchor(Time_Sample(48000));
    EXPECT_EQ(beat.GetSamples(anchor, ELength_Dir::Forward).GetSamples(), 24000);
    EXPECT_EQ(beat.GetSamples(anchor, ELength_Dir::Backward).GetSamples(), 24000);
    EXPECT_EQ(beat.GetOtherEnd(anchor, ELength_Dir::Backward).GetSample().GetSamples(), 24000);
    const Time_TypedLength samples{Time_SampleLength(100)};
    EXPECT_EQ(samples.GetOtherEnd(anchor, ELength_Dir::Forward), Time_Typed(Time_Sample(48100)));
}

#include "mediakit/time/time_smpte.h"

#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/assertion_catcher.h"
#include "timecode_odometer.h"

namespace {

// Every frame when optimised; under the sanitizers every 97th, a stride that meets all residues.
#if defined(__SANITIZE_ADDRESS__)
constexpr int cStride = 97;
#else
constexpr int cStride = 1;
#endif

constexpr auto cDrop = ETimeCodeFormat::F2997Drop;

std::string Text(ETimeCodeFormat format, std::int64_t frames) {
    return Time_SMPTEUtils::ToString(Time_SMPTE(format, frames));
}

std::int64_t Frames(ETimeCodeFormat format, const char* text) {
    Time_SMPTE time(format, -777);
    EXPECT_TRUE(Time_SMPTEUtils::FromString(text, format, time)) << text;
    return time.GetTotalFrames();
}

ETimeCodeFormat FormatNamed(const char* name) {
    ETimeCodeFormat format = ETimeCodeFormat::F24;
    EXPECT_TRUE(Time_FindFormat(name, format)) << name;
    return format;
}

class SessionRestorer {
  public:
    ~SessionRestorer() {
        Time_Session::SetTimeCodeFormat(mFormat);
        Time_Session::SetFrameOffset(mOffset);
        Time_Session::SetSampleRate(mRate);
    }

  private:
    ETimeCodeFormat mFormat = Time_Session::GetTimeCodeFormat();
    std::int64_t mOffset = Time_Session::GetFrameOffset();
    std::int32_t mRate = Time_Session::GetSampleRate();
};

} // namespace

TEST(Time_SMPTE, EveryFrameOfADayGoesToTextAndBackAtEveryRate) {
    for (const OdometerRate& rate : cOdometerRates) {
        const ETimeCodeFormat format = FormatNamed(rate.name);
        std::int64_t wrong = 0;
        Time_SMPTE read(format);
        TimecodeOdometer at(rate);
        for (; !at.IsDayOver(); at.Step()) {
            if (at.GetFrameNumber() % cStride != 0)
                continue;
            char expected[16];
            char actual[Time_SMPTEUtils::cMaxChars];
            const std::size_t length = at.Write(expected);
            const std::size_t written =
                Time_SMPTEUtils::ToChars(Time_SMPTE(format, at.GetFrameNumber()), false, actual);
            const bool sameText = written == length && std::memcmp(expected, actual, length) == 0;
            const bool back =
                Time_SMPTEUtils::FromString(std::string_view(actual, written), format, read) &&
                read.GetTotalFrames() == at.GetFrameNumber();
            if ((!sameText || !back) && ++wrong == 1)
                ADD_FAILURE() << rate.name << " frame " << at.GetFrameNumber() << ": "
                              << std::string(actual, written) << " for " << at.Text();
        }
        EXPECT_EQ(wrong, 0) << rate.name;
        EXPECT_EQ(Time_GetFormatInfo(format).FramesPerDay(), at.GetFrameNumber()) << rate.name;
    }
}

TEST(Time_SMPTE, TextAndBackKeepSubframesSignsAndLateHours) {
    std::mt19937_64 random(20);
    for (const OdometerRate& rate : cOdometerRates) {
        const ETimeCodeFormat format = FormatNamed(rate.name);
        for (int i = 0; i < 2000; ++i) {
            const int shift = static_cast<int>(random() % 40);
            const std::int64_t frames = static_cast<std::int64_t>(random()) >> (20 + shift);
            const Time_SMPTE time(format, frames, static_cast<int>(random() % 100));
            const std::string text = Time_SMPTEUtils::ToString(time, true);
            Time_SMPTE read(format);
            ASSERT_TRUE(Time_SMPTEUtils::FromString(text, format, read)) << text;
            ASSERT_EQ(read, time) << rate.name << " " << text << " frames " << frames;
            ASSERT_EQ(Time_SMPTE(format, time.GetFields()), time) << text;
        }
    }
}

TEST(Time_SMPTE, LabelsOfAwkwardTexts) {
    struct Row {
        const char* why;
        ETimeCodeFormat format;
        const char* text;
        std::int64_t frames;
        const char* written;
    };
    const Row rows[] = {
        {"seconds carry", ETimeCodeFormat::F25, "00:00:75:00", 75 * 25, "00:01:15:00"},
        {"frames carry", ETimeCodeFormat::F25, "00:00:59:30", 59 * 25 + 30, "00:01:00:05"},
        {"a left-out label becomes the next that exists", cDrop, "00:01:00;00", 1800,
         "00:01:00;02"},
        {"the second left-out label too", cDrop, "00:01:00;01", 1800, "00:01:00;02"},
        {"the tenth minute leaves nothing out", cDrop, "00:10:00;00", 17982, "00:10:00;00"},
        {"carrying into a left-out label", cDrop, "00:00:59;30", 1800, "00:01:00;02"},
        {"eight labels at 120", ETimeCodeFormat::F120Drop, "00:01:00;007", 7200, "00:01:00;008"},
        {"either separator is read at any rate", cDrop, "01:00:00:00", 107892, "01:00:00;00"},
        {"hours go on", ETimeCodeFormat::F24, "100:00:00:00", 8640000, "100:00:00:00"},
        {"negative", ETimeCodeFormat::F24, "-00:00:01:12", -36, "-00:00:01:12"},
        {"negative drop mirrors positive", cDrop, "-01:00:00;00", -107892, "-01:00:00;00"},
        {"short groups", ETimeCodeFormat::F24, "1:2:3:4", 89356, "01:02:03:04"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Frames(row.format, row.text), row.frames) << row.why;
        EXPECT_EQ(Text(row.format, row.frames), row.written) << row.why;
    }
}

TEST(Time_SMPTE, RefusesTextsThatAreNotLabelsAndLeavesTheValue) {
    const char* const texts[] = {"",
                                 "::::",
                                 "00:00:00",
                                 "00:00:00:00:00",
                                 "00;00:00:00",
                                 "00:00;00:00",
                                 "00:00:00:00.",
                                 "00:00:00:00.123",
                                 "00:00:00:0x",
                                 " 00:00:00:00",
                                 "--00:00:00:00",
                                 "00:00:00:00 ",
                                 "1234567890123456789:00:00:00"};
    for (const char* text : texts) {
        Time_SMPTE time(ETimeCodeFormat::F25, 99);
        EXPECT_FALSE(Time_SMPTEUtils::FromString(text, ETimeCodeFormat::F30, time)) << text;
        EXPECT_EQ(time, Time_SMPTE(ETimeCodeFormat::F25, 99)) << text;
    }
}

TEST(Time_SMPTE, DropFramesTakesTheLeftOutNumbersOff) {
    EXPECT_EQ(Time_SMPTE::DropFrames(108000, cDrop), 107892);
    EXPECT_EQ(Time_SMPTE::DropFrames(-108000, cDrop), -107892);
    EXPECT_EQ(Time_SMPTE::DropFrames(1800, cDrop), 1798);
    EXPECT_EQ(Time_SMPTE::DropFrames(1799, cDrop), 1799);
    EXPECT_EQ(Time_SMPTE::DropFrames(432000, ETimeCodeFormat::F120Drop), 432000 - 432);
    EXPECT_EQ(Time_SMPTE::DropFrames(108000, ETimeCodeFormat::F30), 108000);
    // Deliberate: a minute up from zero is 1798 frames, which is not the label 00:01:00;02.
    EXPECT_EQ(Text(cDrop, Time_SMPTE::DropFrames(1800, cDrop)), "00:00:59;28");
}

TEST(Time_SMPTE, ValuesBelowZeroAndBeyondADay) {
    const Time_SMPTE halfBefore(ETimeCodeFormat::F24, -1, 50);
    EXPECT_EQ(Time_SMPTEUtils::ToString(halfBefore, true), "-00:00:00:00.50");
    EXPECT_EQ(Time_SMPTEUtils::ToString(halfBefore, false), "-00:00:00:01");
    EXPECT_EQ(halfBefore.GetTotalSubframes(), -50);
    EXPECT_EQ(halfBefore.GetTotalSamples(48000).GetSamples(), -1000);

    Time_SMPTE late(ETimeCodeFormat::F30Drop, 2 * 2589408 + 5);
    EXPECT_EQ(Time_SMPTEUtils::ToString(late), "48:00:00;05");
    late.WrapToDay();
    EXPECT_EQ(Time_SMPTEUtils::ToString(late), "00:00:00;05");
    Time_SMPTE early(ETimeCodeFormat::F24, -1);
    early.WrapToDay();
    EXPECT_EQ(Time_SMPTEUtils::ToString(early), "23:59:59:23");

    // The ends of 64 bits have labels, and none of it overflows.
    for (const std::int64_t end :
         {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()})
        for (const auto format : {ETimeCodeFormat::F24, ETimeCodeFormat::F120Drop}) {
            const Time_SMPTE time(format, end, 99);
            EXPECT_GT(Time_SMPTEUtils::ToString(time, true).size(), 20u);
            (void)time.GetFields();
            (void)time.GetTotalSamples(192000);
            EXPECT_LT(Time_SMPTEUtils::ToString(time, true).size(), Time_SMPTEUtils::cMaxChars);
        }
}

TEST(Time_SMPTE, EveryFrameKeepsItsSampleThroughADayAtEveryRate) {
    for (const OdometerRate& rate : cOdometerRates)
        for (const int samplesPerSecond : {44100, 192000}) {
            const ETimeCodeFormat format = FormatNamed(rate.name);
            SampleOdometer sample(rate, samplesPerSecond);
            TimecodeOdometer at(rate);
            Time_SMPTE read(format);
            std::int64_t wrong = 0;
            for (; !at.IsDayOver(); at.Step(), sample.Step()) {
                if (at.GetFrameNumber() % (cStride * 7) != 0)
                    continue;
                const Time_SMPTE time(format, at.GetFrameNumber());
                const Time_SampleLength start = time.GetTotalSamples(samplesPerSecond);
                read.SetFromTotalSamples(start, samplesPerSecond);
                const bool back = read == time;
                read.SetFromTotalSamples(start - Time_SampleLength(1), samplesPerSecond);
                const bool frameBefore = read.GetTotalFrames() == at.GetFrameNumber() - 1;
                wrong += start.GetSamples() != sample.Nearest() || !back || !frameBefore;
            }
            EXPECT_EQ(wrong, 0) << rate.name << " at " << samplesPerSecond;
        }
}

TEST(Time_SMPTE, SubframesSurviveSamplesAndBack) {
    std::mt19937 random(7);
    for (const OdometerRate& rate : cOdometerRates) {
        const ETimeCodeFormat format = FormatNamed(rate.name);
        for (int i = 0; i < 500; ++i) {
            const Time_SMPTE time(format, static_cast<std::int64_t>(random() % 9000000) - 100,
                                  static_cast<int>(random() % 100));
            Time_SMPTE read(format);
            read.SetFromTotalSamples(time.GetTotalSamples(44100), 44100, true);
            ASSERT_EQ(read, time) << Time_SMPTEUtils::ToString(time, true);
        }
    }
}

TEST(Time_SMPTE, SessionPositionsCountFromTheStartFrame) {
    const SessionRestorer restore;
    Time_Session::SetTimeCodeFormat(cDrop);
    Time_Session::SetFrameOffset(107892 + 1);
    Time_Session::SetSampleRate(44100);
    const Time_SMPTE start = Time_SMPTEUtils::GetSessionStart();
    EXPECT_EQ(Time_SMPTEUtils::ToString(start), "01:00:00;01");
    EXPECT_EQ(Time_SMPTEUtils::GetSamplesFromStartFrame(start).GetSamples(), 0);
    const Time_SMPTE before(cDrop, 107892);
    EXPECT_EQ(Time_SMPTEUtils::GetSamplesFromStartFrame(before).GetSamples(), -1471);
    for (const auto format : {cDrop, ETimeCodeFormat::F25}) {
        const Time_SMPTE time = Time_SMPTEUtils::FromSessionSample(Time_Sample(44100 * 60), format);
        const std::int64_t samples = Time_SMPTEUtils::GetSamplesFromStartFrame(time).GetSamples();
        EXPECT_LE(samples, 44100 * 60);
        EXPECT_GT(samples, 44100 * 60 - 44100 / 24);
    }
}

TEST(Time_SMPTE, OrdersByRealTimeAcrossRates) {
    const Time_SMPTE film(ETimeCodeFormat::F24, 24);
    const Time_SMPTE pulled(ETimeCodeFormat::F23976, 24);
    EXPECT_LT(film, pulled);
    EXPECT_LT(Time_SMPTE(ETimeCodeFormat::F30, 29), film);
    EXPECT_GT(Time_SMPTE(ETimeCodeFormat::F30, 30, 1), film);
}

TEST(Time_Format, UnknownFormatsAreAssertedAndReadAsThirty) {
    AssertionCatcher catcher;
    EXPECT_EQ(Time_GetFormatInfo(static_cast<ETimeCodeFormat>(19)).framesPerSecond, 30);
    EXPECT_EQ(Time_GetFormatInfo(static_cast<ETimeCodeFormat>(-1)).framesPerSecond, 30);
    Time_Session::SetSampleRate(0);
    EXPECT_EQ(catcher.GetFailures().size(), 3u);
    EXPECT_GT(Time_Session::GetSampleRate(), 0);
}

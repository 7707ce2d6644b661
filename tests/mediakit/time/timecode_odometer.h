// A time-code counter that only counts: one frame a step, carrying like the wheels of a counter and
// skipping the numbers drop-frame leaves out, and a sample position kept by adding and carrying a
// fraction. It multiplies and divides nothing, so it can judge arithmetic that does.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

struct OdometerRate {
    const char* name; // as Time_FormatInfo has it
    int frames;       // numbers in a second
    int dropped;      // numbers left out at the start of a minute, unless its number ends in 0
    int digits;       // of the frame number
    std::int64_t rateNumerator;
    std::int64_t rateDenominator;
};

// Written down from the rates themselves, not taken from the library.
inline constexpr OdometerRate cOdometerRates[] = {
    {"23.976", 24, 0, 2, 24000, 1001},
    {"24", 24, 0, 2, 24, 1},
    {"25", 25, 0, 2, 25, 1},
    {"29.97", 30, 0, 2, 30000, 1001},
    {"29.97 drop", 30, 2, 2, 30000, 1001},
    {"30", 30, 0, 2, 30, 1},
    {"30 drop", 30, 2, 2, 30, 1},
    {"47.952", 48, 0, 2, 48000, 1001},
    {"48", 48, 0, 2, 48, 1},
    {"50", 50, 0, 2, 50, 1},
    {"59.94", 60, 0, 2, 60000, 1001},
    {"59.94 drop", 60, 4, 2, 60000, 1001},
    {"60", 60, 0, 2, 60, 1},
    {"60 drop", 60, 4, 2, 60, 1},
    {"100", 100, 0, 2, 100, 1},
    {"119.88", 120, 0, 3, 120000, 1001},
    {"119.88 drop", 120, 8, 3, 120000, 1001},
    {"120", 120, 0, 3, 120, 1},
    {"120 drop", 120, 8, 3, 120, 1},
};

inline constexpr int cOdometerSampleRates[] = {44100, 48000, 88200, 96000, 176400, 192000};

class TimecodeOdometer {
  public:
    explicit TimecodeOdometer(const OdometerRate& rate) : mRate(rate) {}

    void Step() {
        ++mFrameNumber;
        if (++mFrames < mRate.frames)
            return;
        mFrames = 0;
        if (++mSeconds < 60)
            return;
        mSeconds = 0;
        if (++mMinutes == 60) {
            mMinutes = 0;
            ++mHours;
        }
        if (mMinutes % 10 != 0)
            mFrames = mRate.dropped;
    }

    std::int64_t GetFrameNumber() const { return mFrameNumber; }
    int GetHours() const { return mHours; }
    int GetMinutes() const { return mMinutes; }
    int GetSeconds() const { return mSeconds; }
    int GetFrames() const { return mFrames; }
    bool IsDayOver() const { return mHours == 24; }

    // Into a buffer, for the walk over whole days.
    std::size_t Write(char* out) const {
        char* at = Two(Two(Two(out, mHours, ':'), mMinutes, ':'), mSeconds,
                       mRate.dropped != 0 ? ';' : ':');
        if (mRate.digits == 3)
            *at++ = static_cast<char>('0' + mFrames / 100);
        *at++ = static_cast<char>('0' + mFrames / 10 % 10);
        *at++ = static_cast<char>('0' + mFrames % 10);
        return static_cast<std::size_t>(at - out);
    }
    std::string Text() const {
        char text[16];
        return std::string(text, Write(text));
    }

  private:
    static char* Two(char* out, int value, char after) {
        out[0] = static_cast<char>('0' + value / 10);
        out[1] = static_cast<char>('0' + value % 10);
        out[2] = after;
        return out + 3;
    }

    OdometerRate mRate;
    std::int64_t mFrameNumber = 0;
    int mHours = 0;
    int mMinutes = 0;
    int mSeconds = 0;
    int mFrames = 0;
};

// The sample at which the odometer's frame begins: a whole part and a remainder over the rate's
// numerator, both carried forward frame by frame.
class SampleOdometer {
  public:
    SampleOdometer(const OdometerRate& rate, int samplesPerSecond)
        : mDivisor(rate.rateNumerator), mStep(samplesPerSecond * rate.rateDenominator) {
        for (; mStep >= mDivisor; mStep -= mDivisor)
            ++mWholeStep;
    }
    void Step() {
        mWhole += mWholeStep;
        mRest += mStep;
        if (mRest >= mDivisor) {
            mRest -= mDivisor;
            ++mWhole;
        }
    }
    std::int64_t Nearest() const { return mWhole + (mRest + mRest >= mDivisor ? 1 : 0); }

  private:
    std::int64_t mDivisor;
    std::int64_t mStep;
    std::int64_t mWholeStep = 0;
    std::int64_t mWhole = 0;
    std::int64_t mRest = 0;
};

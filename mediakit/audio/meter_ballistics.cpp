#include "mediakit/audio/meter_ballistics.h"

#include <algorithm>
#include <cmath>

// A constant whose address a host takes: mingw exports it only when it is defined in a source.
constexpr double Audio_MeterBallistics::kFloor;

double Audio_MeterBallistics::ToDecibels(double amplitude) {
    // Also false for what is no number.
    if (!(amplitude > 0))
        return kFloor;
    return std::max(kFloor, 20.0 * std::log10(amplitude));
}

void Audio_MeterBallistics::Update(double seconds, float blockPeak, float blockRMS) {
    const double elapsed = mStarted ? std::max(0.0, seconds - mTime) : 0.0;
    mTime = mStarted ? std::max(mTime, seconds) : seconds;
    mStarted = true;

    const double level = ToDecibels(std::isfinite(blockPeak) ? blockPeak : 0.0f);
    mPeak = std::max(level, std::max(kFloor, mPeak - elapsed * kFallPerSecond));
    mClipped = mClipped || level >= mClipLevel;

    const double power = std::isfinite(blockRMS) ? static_cast<double>(blockRMS) * blockRMS : 0.0;
    // The exact solution of the smoothing over the elapsed time, so the call rate does not matter.
    const double kept = std::exp(-elapsed / kRMSTimeConstant);
    mPower = power + (mPower - power) * kept;
    mRMS = ToDecibels(std::sqrt(mPower));

    if (mPeak >= mHeldPeak || mTime >= mHeldUntil) {
        const bool risen = level >= mHeldPeak && level > kFloor;
        mHeldPeak = mPeak;
        if (risen)
            mHeldUntil = mTime + mHoldSeconds;
    }
}

bool Audio_MeterBallistics::IsAtRest() const {
    return mPeak <= kFloor && mRMS <= kFloor && mHeldPeak <= kFloor;
}

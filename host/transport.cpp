#include "host/transport.h"

#include <algorithm>

#include "basekit/sys/sys_clock.h"

void Transport::SetLimits(std::int64_t frameCount, std::int32_t samplesPerSecond) {
    Locate(std::min(GetPosition(), frameCount));
    mFrameCount = frameCount;
    mSamplesPerSecond = samplesPerSecond;
}

void Transport::Play() {
    if (mPlaying)
        return;
    if (mFrom >= mFrameCount)
        mFrom = 0;
    mPlaying = true;
    mStartedAt = Sys_Clock_Seconds();
}

void Transport::Stop() {
    mFrom = GetPosition();
    mPlaying = false;
}

void Transport::Locate(std::int64_t frame) {
    mFrom = std::max<std::int64_t>(0, frame);
    mStartedAt = Sys_Clock_Seconds();
}

std::int64_t Transport::GetPosition() {
    if (!mPlaying)
        return mFrom;
    const double elapsed = Sys_Clock_Seconds() - mStartedAt;
    const auto position = mFrom + static_cast<std::int64_t>(elapsed * mSamplesPerSecond);
    if (position < mFrameCount)
        return position;
    mPlaying = false;
    mFrom = mFrameCount;
    return mFrom;
}

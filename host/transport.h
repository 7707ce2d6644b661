// The transport: where playback is, by the clock.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// A position that runs at the session's rate while playing. Nothing sounds: the host shows time.
class Transport {
  public:
    void SetLimits(std::int64_t frameCount, std::int32_t samplesPerSecond);
    [[nodiscard]] bool IsPlaying() const { return mPlaying; }
    void Play();
    void Stop();
    /// Playing goes on from there.
    void Locate(std::int64_t frame);
    /// The frame that sounds now; playing stops at the end.
    [[nodiscard]] std::int64_t GetPosition();

  private:
    std::int64_t mFrameCount = 0;
    std::int32_t mSamplesPerSecond = 48000;
    bool mPlaying = false;
    double mStartedAt = 0; // seconds
    std::int64_t mFrom = 0;
};

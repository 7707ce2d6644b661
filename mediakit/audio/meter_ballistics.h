// How a level meter's needle moves: fast up, slow down by elapsed time, with hold and clip mark.
//
// The fall is that of a type I programme meter of IEC 60268-10: 20 dB in 1.7 s. The rise is
// immediate, since what is given here are peaks of finished blocks.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// The moving parts of one channel of a meter. Levels in dB relative to full scale; the lowest
/// level shown is kFloor, which stands for silence too. Times in seconds of one clock; a time
/// before the last one is taken as no time elapsed. What is read depends on the times given and
/// never on how often Update was called in between.
class QLX_API Audio_MeterBallistics {
  public:
    static constexpr double kFloor = -90.0;
    static constexpr double kFallPerSecond = 20.0 / 1.7;
    static constexpr double kRMSTimeConstant = 0.3; ///< seconds, of the RMS reading's smoothing

    void SetHoldSeconds(double seconds) { mHoldSeconds = seconds; }
    /// The level from which on a peak sets the clip mark (default 0 dB, full scale).
    void SetClipLevel(double decibels) { mClipLevel = decibels; }

    /// Takes in what sounded since the last call: the highest absolute sample and the RMS, both
    /// with full scale at 1. Values that are no numbers count as silence.
    void Update(double seconds, float blockPeak, float blockRMS);
    /// Lets the reading fall to the given time without new sound.
    void Fall(double seconds) { Update(seconds, 0.0f, 0.0f); }

    [[nodiscard]] double GetPeak() const { return mPeak; }
    [[nodiscard]] double GetRMS() const { return mRMS; }
    /// The highest peak of the hold time; falls to the peak when the time is over.
    [[nodiscard]] double GetHeldPeak() const { return mHeldPeak; }
    /// Set by a clipped peak until it is reset.
    [[nodiscard]] bool IsClipped() const { return mClipped; }
    void ResetClip() { mClipped = false; }
    /// Whether another Fall could change any reading: a meter at rest needs no idle time.
    [[nodiscard]] bool IsAtRest() const;

    /// 20 log10 of an amplitude, not below kFloor.
    [[nodiscard]] static double ToDecibels(double amplitude);

  private:
    double mHoldSeconds = 1.5;
    double mClipLevel = 0.0;
    double mTime = 0;
    bool mStarted = false;
    double mPeak = kFloor;
    double mRMS = kFloor;
    double mPower = 0; // smoothed, of which mRMS is the level
    double mHeldPeak = kFloor;
    double mHeldUntil = 0;
    bool mClipped = false;
};

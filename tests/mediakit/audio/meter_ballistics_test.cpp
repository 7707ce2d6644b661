#include "mediakit/audio/meter_ballistics.h"

#include <gtest/gtest.h>

#include <limits>

TEST(MeterBallistics, FallsTwentyDecibelsInOnePointSevenSecondsAtAnyFrameRate) {
    for (const int framesPerSecond : {10, 24, 60, 1000}) {
        SCOPED_TRACE(framesPerSecond);
        Audio_MeterBallistics meter;
        meter.Update(10.0, 1.0f, 0.7f);
        double when = 0;
        for (int frame = 1; meter.GetPeak() > -20.0; ++frame)
            meter.Fall(10.0 + (when = static_cast<double>(frame) / framesPerSecond));
        EXPECT_NEAR(when, 1.7, 0.3);
        meter.Fall(10.0 + 3.4);
        EXPECT_NEAR(meter.GetPeak(), -40.0, 1e-6);
    }
}

TEST(MeterBallistics, HoldKeepsTheHighestPeakForItsTimeAndTheClipMarkForGood) {
    Audio_MeterBallistics meter;
    meter.SetHoldSeconds(1.0);
    meter.Update(0.0, 1.0f, 0.5f);
    meter.Update(0.5, 0.5f, 0.5f);
    EXPECT_EQ(meter.GetHeldPeak(), 0.0);
    meter.Update(1.1, 0.25f, 0.5f);
    EXPECT_LT(meter.GetHeldPeak(), -6.0);
    EXPECT_EQ(meter.GetHeldPeak(), meter.GetPeak());
    EXPECT_TRUE(meter.IsClipped());
    meter.ResetClip();
    meter.Update(1.2, 0.99f, 0.5f);
    EXPECT_FALSE(meter.IsClipped());
}

TEST(MeterBallistics, SilenceNonsenseAndAClockThatGoesBackAreHarmless) {
    Audio_MeterBallistics meter;
    EXPECT_TRUE(meter.IsAtRest());
    meter.Update(5.0, 0.5f, 0.1f);
    EXPECT_FALSE(meter.IsAtRest());
    const double before = meter.GetPeak();
    meter.Update(1.0, std::numeric_limits<float>::quiet_NaN(), -0.0f);
    EXPECT_EQ(meter.GetPeak(), before);
    meter.Fall(100.0);
    EXPECT_TRUE(meter.IsAtRest());
    EXPECT_EQ(meter.GetPeak(), Audio_MeterBallistics::kFloor);
}

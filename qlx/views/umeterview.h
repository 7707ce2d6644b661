// The level meter: peak and RMS bars with hold line and clip mark.
#pragma once

#include <vector>

#include "mediakit/audio/meter_ballistics.h"
#include "qlx/views/ucontrol.h"

/// One bar a channel along the longer side, from the scale's floor to its top. The host feeds it
/// with what sounded (Feed) whenever it likes; the bars fall by the clock alone and are at rest,
/// without idle time, when nothing sounds. Only the strip of a bar that changed is drawn. A click
/// resets the clip marks.
///
/// Properties beside the base's: "Channels" (int32, 1 to 32), "FloorDecibels", "TopDecibels"
/// (int32), "Scale" (bool: marks and figures beside the bars), "HoldMilliseconds" (int32).
class QLX_API TMeterView : public TControl {
  public:
    QLX_DECLARE_CLASS(TMeterView);
    static constexpr int kMostChannels = 32;
    static constexpr int kClipLength = 6;  ///< along the bar, logical pixels
    static constexpr int kScaleWidth = 26; ///< beside vertical bars, logical pixels

    TMeterView();
    ~TMeterView() override;

    void SetChannels(int count, bool redraw);
    [[nodiscard]] int GetChannels() const { return static_cast<int>(mBars.size()); }
    /// In dB; the floor lies below the top.
    void SetScale(double floor, double top, bool redraw);
    /// What sounded on a channel since the last call, up to now (Sys_Clock_Seconds); full scale
    /// is 1.
    void Feed(int channel, float peak, float rms);
    [[nodiscard]] const Audio_MeterBallistics& GetBallistics(int channel) const;
    void ResetClip();
    [[nodiscard]] bool IsVertical() const;
    /// Pixels from the bar's start to a level, held within the bar.
    [[nodiscard]] int PositionOf(double decibels) const;

    bool DoIdle(IdlePhase phase) override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] std::string GetValueText() const override;
    bool GetRangeForAccessibility(double& minimum, double& maximum, double& value) override;
    bool SetRangeForAccessibility(double value) override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    struct Bar {
        Audio_MeterBallistics mBallistics;
        // What is on the screen, in pixels from the bar's start.
        int mPeak = 0;
        int mRMS = 0;
        int mHeld = 0;
        bool mClipped = false;
    };

    [[nodiscard]] VRect GetBarArea() const;
    [[nodiscard]] VRect GetBarRect(int channel) const;
    /// A piece of a bar from one position to another, in local coordinates.
    [[nodiscard]] VRect GetStrip(int channel, int from, int to) const;
    [[nodiscard]] int GetBarLength() const;
    void FallTo(double seconds);
    void ShowBar(int channel);
    void DrawBar(int channel);
    void DrawScale();

    std::vector<Bar> mBars;
    double mFloor = -60;
    double mTop = 0;
    bool mHasScale = true;
};

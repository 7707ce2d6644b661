// Controls that set a value along a line: the slider and the knob.
#pragma once

#include "qlx/views/ucontrol.h"

/// What sliders and knobs share: keys, wheel, drags with Escape, the double click that goes back to
/// the standard value. Arrow keys, Page Up and Down, Home and End work as in every system; the
/// wheel only on the control that is the target, so that scrolling a window changes no value; Shift
/// makes drags finer.
///
/// Properties beside the base's: "Step", "PageStep", "StandardValue" (int32), "ValueName" (string
/// key or string: what the value is called, for accessibility).
class QLX_API TRangeControl : public TControl {
  public:
    QLX_DECLARE_CLASS(TRangeControl);
    TRangeControl();
    ~TRangeControl() override;

    void SetSteps(std::int32_t step, std::int32_t pageStep);
    [[nodiscard]] std::int32_t GetStep() const { return mStep; }
    [[nodiscard]] std::int32_t GetPageStep() const { return mPageStep; }
    /// Where a double click goes; the minimum unless set.
    void SetStandardValue(std::int32_t value);
    /// The share of the value between the bounds, 0 to 1.
    [[nodiscard]] double GetShare() const;
    /// The value at a share; the nearest whole one.
    [[nodiscard]] std::int32_t ValueAtShare(double share) const;
    /// Moves by that much and notifies; held at the bounds.
    void StepBy(std::int64_t delta);

    void DoKeyEvent(TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  protected:
    /// A double click: back to the standard value. True when it was one.
    bool TakeDoubleClick(TToolboxEvent* event);

  private:
    std::int32_t mStep = 1;
    std::int32_t mPageStep = 10;
    std::int32_t mStandardValue = 0;
    bool mHasStandardValue = false;
    int mWheelRest = 0; // parts of a notch not used yet
    std::string mValueName;
};

/// A thumb on a track, along the longer side of the view; the minimum is left or at the bottom.
class QLX_API TSlider : public TRangeControl {
  public:
    QLX_DECLARE_CLASS(TSlider);
    static constexpr int kThumbLength = 12; ///< along the track, logical pixels

    TSlider();
    ~TSlider() override;
    [[nodiscard]] bool IsVertical() const;
    /// The thumb's place in local coordinates.
    [[nodiscard]] VRect GetThumb() const;

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void SetValue(std::int32_t value, bool redraw) override;
    void Draw(const VRect& area) override;
};

/// A knob that is turned by dragging up and down; a full sweep takes kDragLength pixels.
class QLX_API TKnob : public TRangeControl {
  public:
    QLX_DECLARE_CLASS(TKnob);
    static constexpr int kDragLength = 150; ///< logical pixels from bound to bound
    static constexpr int kSweepDegrees = 300;

    TKnob();
    ~TKnob() override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void Draw(const VRect& area) override;
};

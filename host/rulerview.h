// The time ruler over the waveform, in the session's main format.
#pragma once

#include "qlx/views/ucontrol.h"

class TWaveformView;

/// Ticks and labels for the frames that the waveform below it shows. A press locates playback.
class TRulerView : public TControl {
  public:
    QLX_DECLARE_CLASS(TRulerView);
    using LabelFunction = std::function<std::string(std::int64_t frame)>;
    using LocateFunction = std::function<void(std::int64_t frame)>;

    TRulerView();
    ~TRulerView() override;

    /// Not owned; in the same window. The label turns a frame into text.
    void Follow(TWaveformView* waveform, LabelFunction label, LocateFunction locate);
    void SetSamplesPerSecond(std::int32_t rate) { mSamplesPerSecond = rate; }

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void Draw(const VRect& area) override;
    [[nodiscard]] TObject* Clone() override;

  private:
    TWaveformView* mWaveform = nullptr; // not owned
    LabelFunction mLabel;
    LocateFunction mLocate;
    std::int32_t mSamplesPerSecond = 48000;
};

// The waveform of one audio file over a peak pyramid, with a selection and a playback cursor.
#pragma once

#include <memory>
#include <vector>

#include "mediakit/audio/peak_pyramid.h"
#include "qlx/views/ucontrol.h"

/// A part of the audio's time axis, one lane a channel. Zoom and scroll are in columns of a pixel
/// (Audio_ColumnScale), so scrolling moves pixels and draws only what comes into sight. A drag
/// selects; Shift extends; the host makes the change of the selection its command: the view
/// announces and does not keep what the callback does not set. Wheel scrolls, Ctrl and wheel zoom
/// around the pointer.
class QLX_API TWaveformView : public TControl {
  public:
    QLX_DECLARE_CLASS(TWaveformView);

    /// Hears what the user selects: phase as the tracker's, frames as drawn, half-open; with
    /// kTrack_Cancel what was selected before.
    using SelectionCallback = std::function<void(int phase, std::int64_t from, std::int64_t to)>;
    /// Hears that zoom or scroll changed (rulers follow).
    using ScaleCallback = std::function<void()>;

    TWaveformView();
    ~TWaveformView() override;

    /// The audio to show; null for none. Shared with the caller.
    void SetAudio(std::shared_ptr<Audio_PeakPyramid> peaks, std::int64_t frames, int channels);
    /// Draws what the pyramid has come to know since the last call. The view looks for itself some
    /// times a second until the pyramid is complete.
    void PeaksGrew();

    // Time and pixels

    [[nodiscard]] const Audio_ColumnScale& GetScale() const { return mScale; }
    [[nodiscard]] std::int64_t GetFirstColumn() const { return mFirstColumn; }
    /// The first frame of the column at a local horizontal place.
    [[nodiscard]] std::int64_t FrameAt(VCoordinate h) const;
    /// The local place of the column that holds a frame; may lie out of sight.
    [[nodiscard]] VCoordinate PlaceOf(std::int64_t frame) const;
    /// Sets the zoom; the frame at the local place stays there.
    void SetScale(const Audio_ColumnScale& scale, VCoordinate anchor);
    /// Twice (1) or half (-1) the present zoom, within one frame in 64 pixels and the whole file.
    void Zoom(int direction, VCoordinate anchor);
    void ZoomToFit();
    /// Scrolls so that a column is the first in sight, within the audio.
    void ScrollToColumn(std::int64_t column);
    /// Scrolls as far as needed to show a frame.
    void Reveal(std::int64_t frame);

    // Selection and cursor

    void SetSelection(std::int64_t from, std::int64_t to);
    [[nodiscard]] std::int64_t GetSelectionStart() const { return mSelectionStart; }
    [[nodiscard]] std::int64_t GetSelectionEnd() const { return mSelectionEnd; }
    /// Draws only the two columns that change; negative: no cursor.
    void SetCursorFrame(std::int64_t frame);
    void SetSelectionCallback(SelectionCallback callback);
    void SetScaleCallback(ScaleCallback callback);
    /// Multiplies what is drawn; 1 unless set.
    void SetGain(float gain, bool redraw);

    bool DoIdle(IdlePhase phase) override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void SetFrame(const VRect& frame, bool redraw, bool layOut) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;

  private:
    friend class TWaveformTracker;
    void DrawLane(int channel, const VRect& lane, VCoordinate from, VCoordinate to);
    void MovePixels(std::int64_t columns);
    void InvalidateColumn(std::int64_t frame);
    void TellSelection(int phase, std::int64_t from, std::int64_t to);
    [[nodiscard]] std::int64_t GetLastFirstColumn() const;

    std::shared_ptr<Audio_PeakPyramid> mPeaks;
    std::int64_t mFrameCount = 0;
    int mChannelCount = 1;
    Audio_ColumnScale mScale{1024, 1};
    std::int64_t mFirstColumn = 0;
    std::int64_t mSelectionStart = 0;
    std::int64_t mSelectionEnd = 0;
    std::int64_t mCursor = -1;
    std::int64_t mDrawnFrames = 0; // of the pyramid, when it was last looked at
    float mGain = 1;
    int mWheelRest = 0;
    SelectionCallback mSelectionCallback;
    ScaleCallback mScaleCallback;
    std::vector<Audio_Peak> mColumns; // scratch of DrawLane, kept for its memory
    std::vector<int> mTops;
    std::vector<int> mBottoms;
};

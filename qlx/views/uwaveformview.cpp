#include "qlx/views/uwaveformview.h"

#include <algorithm>
#include <cmath>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TWaveformView, TControl)

namespace {
constexpr std::int64_t kMostColumnsPerFrame = 64;
constexpr int kScrollPixelsPerNotch = 60;
constexpr std::int32_t kGrowthTicks = 6; // a tenth of a second
} // namespace

/// Selects by dragging; scrolls when the pointer leaves the view.
class TWaveformTracker : public TTracker {
  public:
    TWaveformTracker(const TWaveformView& view, std::int64_t anchorFrame)
        : mAnchorFrame(anchorFrame), mOldStart(view.GetSelectionStart()),
          mOldEnd(view.GetSelectionEnd()) {
        SetRepeat(0.05);
    }

    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* view = static_cast<TWaveformView*>(GetView());
        if (!view)
            return;
        if (phase == kTrack_Cancel)
            return view->TellSelection(phase, mOldStart, mOldEnd);
        const VRect extent = view->GetExtent();
        if (phase == kTrack_Continue && next.h < extent.Left())
            view->ScrollToColumn(view->GetFirstColumn() - (extent.Left() - next.h));
        else if (phase == kTrack_Continue && next.h >= extent.Right())
            view->ScrollToColumn(view->GetFirstColumn() + (next.h - extent.Right() + 1));
        const std::int64_t frame = view->FrameAt(std::clamp(next.h, extent.Left(), extent.Right()));
        view->TellSelection(phase, std::min(mAnchorFrame, frame), std::max(mAnchorFrame, frame));
    }

  private:
    std::int64_t mAnchorFrame;
    std::int64_t mOldStart;
    std::int64_t mOldEnd;
};

TWaveformView::TWaveformView() = default;
TWaveformView::~TWaveformView() = default;

TObject* TWaveformView::Clone() {
    auto* copy = static_cast<TWaveformView*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mPeaks, mPeaks);
    CopyMember(copy->mSelectionCallback, mSelectionCallback);
    CopyMember(copy->mScaleCallback, mScaleCallback);
    CopyMember(copy->mColumns, mColumns);
    CopyMember(copy->mTops, mTops);
    CopyMember(copy->mBottoms, mBottoms);
    return copy;
}

void TWaveformView::SetAudio(std::shared_ptr<Audio_PeakPyramid> peaks, std::int64_t frames,
                             int channels) {
    mPeaks = std::move(peaks);
    mFrameCount = std::max<std::int64_t>(0, frames);
    mChannelCount = std::max(1, channels);
    mDrawnFrames = 0;
    mFirstColumn = 0;
    SetIdleFreq(mPeaks && !mPeaks->IsComplete() ? kGrowthTicks : kNoIdle);
    ForceRedraw();
}

bool TWaveformView::DoIdle(IdlePhase phase) {
    if (phase == kIdlePhase_Continue) {
        const bool complete = !mPeaks || mPeaks->IsComplete(); // asked first: growth may come last
        PeaksGrew();
        if (complete)
            SetIdleFreq(kNoIdle);
    }
    return TControl::DoIdle(phase);
}

void TWaveformView::PeaksGrew() {
    if (!mPeaks)
        return;
    const std::int64_t built = mPeaks->GetBuiltFrames();
    if (built == mDrawnFrames)
        return;
    VRect grown = GetExtent();
    grown.Left() = std::max(grown.Left(), PlaceOf(mDrawnFrames) - 1);
    grown.Right() = std::min(grown.Right(), PlaceOf(built) + 1);
    mDrawnFrames = built;
    InvalidateVRect(grown);
}

// Time and pixels

std::int64_t TWaveformView::FrameAt(VCoordinate h) const {
    const std::int64_t column = mFirstColumn + (h - GetExtent().Left());
    return std::clamp<std::int64_t>(mScale.FrameOfColumn(column), 0, mFrameCount);
}

VCoordinate TWaveformView::PlaceOf(std::int64_t frame) const {
    return GetExtent().Left() + mScale.ColumnOfFrame(frame) - mFirstColumn;
}

std::int64_t TWaveformView::GetLastFirstColumn() const {
    const std::int64_t columns = mScale.ColumnOfFrame(mFrameCount) + 1;
    return std::max<std::int64_t>(0, columns - GetSize().h);
}

void TWaveformView::SetScale(const Audio_ColumnScale& scale, VCoordinate anchor) {
    if (scale.mFrames <= 0 || scale.mColumns <= 0)
        return;
    const std::int64_t frame = FrameAt(anchor);
    mScale = scale;
    mFirstColumn = std::clamp<std::int64_t>(
        mScale.ColumnOfFrame(frame) - (anchor - GetExtent().Left()), 0, GetLastFirstColumn());
    ForceRedraw();
    if (mScaleCallback)
        mScaleCallback();
}

void TWaveformView::Zoom(int direction, VCoordinate anchor) {
    Audio_ColumnScale scale = mScale;
    if (direction > 0) {
        if (scale.mFrames % 2 == 0)
            scale.mFrames /= 2;
        else
            scale.mColumns *= 2;
    } else if (scale.mColumns % 2 == 0) {
        scale.mColumns /= 2;
    } else {
        scale.mFrames *= 2;
    }
    const bool tooClose = scale.mColumns > scale.mFrames * kMostColumnsPerFrame;
    const bool wasWhole = mScale.ColumnOfFrame(mFrameCount - 1) < GetSize().h;
    if (!tooClose && (direction > 0 || !wasWhole))
        SetScale(scale, anchor);
}

void TWaveformView::ZoomToFit() {
    const VCoordinate width = std::max<VCoordinate>(1, GetSize().h);
    SetScale({std::max<std::int64_t>(1, (mFrameCount + width - 1) / width), 1}, GetExtent().Left());
    ScrollToColumn(0);
}

void TWaveformView::ScrollToColumn(std::int64_t column) {
    const std::int64_t held = std::clamp<std::int64_t>(column, 0, GetLastFirstColumn());
    if (held == mFirstColumn)
        return;
    const std::int64_t moved = mFirstColumn - held;
    mFirstColumn = held;
    MovePixels(moved);
    if (mScaleCallback)
        mScaleCallback();
}

// What is on the screen already moves; only what comes into sight is drawn.
void TWaveformView::MovePixels(std::int64_t columns) {
    TInvalidateView* around = GetInvalidateView();
    VRect visible = GetVisibleRect();
    if (!around || !IsShown() || visible.Empty())
        return;
    LocalToWindowVRect(visible);
    around->WindowToLocalVRect(visible);
    const VCoordinate width = GetSize().h;
    const VPoint across(std::clamp<std::int64_t>(columns, -width, width), 0);
    if (!around->ScrollPixels(this, visible, across))
        ForceRedraw();
}

void TWaveformView::Reveal(std::int64_t frame) {
    const VCoordinate place = PlaceOf(frame);
    const VRect extent = GetExtent();
    if (place < extent.Left() || place >= extent.Right())
        ScrollToColumn(mScale.ColumnOfFrame(frame) - extent.GetWidth() / 4);
}

// Selection and cursor

void TWaveformView::SetSelection(std::int64_t from, std::int64_t to) {
    if (from == mSelectionStart && to == mSelectionEnd)
        return;
    const auto invalidate = [this](std::int64_t a, std::int64_t b) {
        VRect part = GetExtent();
        part.Left() = std::max(part.Left(), PlaceOf(std::min(a, b)) - 1);
        part.Right() = std::min(part.Right(), PlaceOf(std::max(a, b)) + 1);
        if (!part.Empty())
            InvalidateVRect(part);
    };
    // Only between the old and the new edges does the picture differ.
    if (from != mSelectionStart)
        invalidate(from, mSelectionStart);
    if (to != mSelectionEnd)
        invalidate(to, mSelectionEnd);
    mSelectionStart = std::min(from, to);
    mSelectionEnd = std::max(from, to);
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

void TWaveformView::InvalidateColumn(std::int64_t frame) {
    if (frame < 0)
        return;
    const VCoordinate place = PlaceOf(frame);
    VRect column = GetExtent();
    if (place < column.Left() || place >= column.Right())
        return;
    column.Left() = place;
    column.Right() = place + 1;
    InvalidateVRect(column);
}

void TWaveformView::SetCursorFrame(std::int64_t frame) {
    const bool samePixel = frame >= 0 && mCursor >= 0 && PlaceOf(frame) == PlaceOf(mCursor);
    if (!samePixel) {
        InvalidateColumn(mCursor);
        InvalidateColumn(frame);
    }
    mCursor = frame;
}

void TWaveformView::SetSelectionCallback(SelectionCallback callback) {
    mSelectionCallback = std::move(callback);
}

void TWaveformView::SetScaleCallback(ScaleCallback callback) {
    mScaleCallback = std::move(callback);
}

void TWaveformView::SetGain(float gain, bool redraw) {
    mGain = std::isfinite(gain) ? gain : 1.0f;
    if (redraw)
        ForceRedraw();
}

void TWaveformView::TellSelection(int phase, std::int64_t from, std::int64_t to) {
    const StDispatch dispatch; // the callback may free the view
    if (mSelectionCallback)
        mSelectionCallback(phase, from, to);
    else
        SetSelection(from, to);
}

// Events

bool TWaveformView::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled())
        return true;
    if (WantsToBeTarget())
        BecomeTarget();
    const std::int64_t frame = FrameAt(local.h);
    std::int64_t anchor = frame;
    if (event && event->IsShiftKeyPressed()) {
        // The edge that is further away stays.
        const bool nearStart =
            std::llabs(frame - mSelectionStart) < std::llabs(frame - mSelectionEnd);
        anchor = nearStart ? mSelectionEnd : mSelectionStart;
    }
    return BeginTracking(new TWaveformTracker(*this, anchor), local, event);
}

bool TWaveformView::DoMouseWheel(const VPoint& local, TToolboxEvent* event) {
    const Cmn_Point<int> delta = QLX_GetWheelDelta(event);
    if (event->IsCommandKeyPressed()) {
        mWheelRest += delta.y;
        for (; mWheelRest >= kWheel_Notch; mWheelRest -= kWheel_Notch)
            Zoom(1, local.h);
        for (; mWheelRest <= -kWheel_Notch; mWheelRest += kWheel_Notch)
            Zoom(-1, local.h);
        return true;
    }
    const std::int64_t turned = delta.x != 0 ? delta.x : -delta.y;
    const std::int64_t before = mFirstColumn;
    ScrollToColumn(mFirstColumn + turned * kScrollPixelsPerNotch / kWheel_Notch);
    return mFirstColumn != before;
}

void TWaveformView::DoKeyEvent(TToolboxEvent* event) {
    const VRect extent = GetExtent();
    const VCoordinate middle = (extent.Left() + extent.Right()) / 2;
    switch (event->mKeyCode) {
    case kDAW_Key_Up:
        return Zoom(1, middle);
    case kDAW_Key_Down:
        return Zoom(-1, middle);
    case kDAW_Key_PageUp:
        return ScrollToColumn(mFirstColumn - extent.GetWidth() * 3 / 4);
    case kDAW_Key_PageDown:
        return ScrollToColumn(mFirstColumn + extent.GetWidth() * 3 / 4);
    case kDAW_Key_Home:
        return ScrollToColumn(0);
    case kDAW_Key_End:
        return ScrollToColumn(GetLastFirstColumn());
    default:
        TControl::DoKeyEvent(event);
    }
}

void TWaveformView::SetFrame(const VRect& frame, bool redraw, bool layOut) {
    TControl::SetFrame(frame, redraw, layOut);
    ScrollToColumn(mFirstColumn);
}

// Drawing

void TWaveformView::DrawLane(int channel, const VRect& lane, VCoordinate from, VCoordinate to) {
    const PainterPtr& painter = GetPainter();
    const auto count = static_cast<std::int32_t>(to - from);
    mColumns.resize(static_cast<std::size_t>(count));
    mTops.resize(mColumns.size());
    mBottoms.resize(mColumns.size());
    const std::int32_t known = mPeaks->GetColumns(
        channel, mScale, mFirstColumn + from - GetExtent().Left(), count, mColumns.data());
    const double half = static_cast<double>(lane.GetHeight() - 2) / 2;
    const double middle = static_cast<double>(lane.Top() + lane.Bottom()) / 2;
    const int top = static_cast<int>(lane.Top());
    const int bottom = static_cast<int>(lane.Bottom());
    const auto place = [&](double value) {
        return static_cast<int>(std::lround(middle - std::clamp(value, -1.0, 1.0) * half));
    };
    for (std::int32_t i = 0; i < known; ++i) {
        mTops[i] = place(mColumns[i].mMaximum * mGain);
        mBottoms[i] = std::max(mTops[i], place(mColumns[i].mMinimum * mGain));
    }
    const int x = static_cast<int>(from);
    painter->OptimizedWaveformFill(x, known, mTops.data(), mBottoms.data(), 0, top, bottom,
                                   GetTextColor(kThemeColor_Waveform), nullptr, CRGBColor(), 1,
                                   QLX_Painter::kResolution_Logical);
    for (std::int32_t i = 0; i < known; ++i) {
        const double rms = mColumns[i].mRMS * mGain;
        mTops[i] = std::max(mTops[i], place(rms));
        mBottoms[i] = std::min(mBottoms[i], place(-rms));
    }
    painter->OptimizedWaveformFill(x, known, mTops.data(), mBottoms.data(), 0, top, bottom,
                                   GetTextColor(kThemeColor_WaveformRMS), nullptr, CRGBColor(), 1,
                                   QLX_Painter::kResolution_Logical);
}

void TWaveformView::Draw(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const VRect extent = GetExtent();
    const VRect part = extent & area;
    if (part.Empty())
        return;
    painter->SetForegroundColor(GetControlColor(kThemeColor_WaveformBackground));
    painter->FillRect(part);
    VRect selected = part;
    selected.Left() = std::max(part.Left(), PlaceOf(mSelectionStart));
    selected.Right() = std::min(part.Right(), PlaceOf(mSelectionEnd));
    if (mSelectionEnd > mSelectionStart && !selected.Empty()) {
        painter->SetForegroundColor(GetControlColor(kThemeColor_Selection));
        painter->FillRect(selected);
    }
    const VCoordinate end = std::min(part.Right(), PlaceOf(mFrameCount) + 1);
    for (int channel = 0; mPeaks && channel < mChannelCount; ++channel) {
        VRect lane = extent;
        lane.Top() = extent.Top() + extent.GetHeight() * channel / mChannelCount;
        lane.Bottom() = extent.Top() + extent.GetHeight() * (channel + 1) / mChannelCount;
        const int middle = static_cast<int>((lane.Top() + lane.Bottom()) / 2);
        painter->OptimizedHorizontalLine(
            static_cast<int>(part.Left()), static_cast<int>(part.Right()), middle,
            GetControlColor(kThemeColor_GridLine), QLX_Painter::kResolution_Logical);
        if (end > part.Left())
            DrawLane(channel, lane, part.Left(), end);
    }
    const VCoordinate cursor = mCursor >= 0 ? PlaceOf(mCursor) : part.Left() - 1;
    if (cursor >= part.Left() && cursor < part.Right()) {
        painter->SetForegroundColor(GetControlColor(kThemeColor_PlaybackCursor));
        painter->FillRect(VRect(cursor, part.Top(), cursor + 1, part.Bottom()));
    }
}

void TWaveformView::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "graphics-document";
    info.mValue = std::to_string(mSelectionStart) + " - " + std::to_string(mSelectionEnd);
}

#include "host/rulerview.h"

#include <algorithm>

#include "qlx/views/uwaveformview.h"

QLX_DEFINE_CLASS(TRulerView, TControl)

namespace {

constexpr int kLabelRoom = 110; // logical pixels from label to label, at least

// Distances of labels, in seconds over a divisor, each a whole number of the next smaller one.
struct Distance {
    int mSeconds;
    int mDivisor;
};
constexpr Distance kDistances[] = {{1, 1000}, {1, 100}, {1, 10}, {1, 2},   {1, 1},   {5, 1},
                                   {10, 1},   {30, 1},  {60, 1}, {300, 1}, {600, 1}, {3600, 1}};

} // namespace

TRulerView::TRulerView() { SetTakesFocus(false); }

TRulerView::~TRulerView() = default;

TObject* TRulerView::Clone() {
    auto* copy = static_cast<TRulerView*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mLabel, mLabel);
    CopyMember(copy->mLocate, mLocate);
    return copy;
}

void TRulerView::Follow(TWaveformView* waveform, LabelFunction label, LocateFunction locate) {
    mWaveform = waveform;
    mLabel = std::move(label);
    mLocate = std::move(locate);
    ForceRedraw();
}

bool TRulerView::DoMouseCommand(const VPoint& local, TToolboxEvent*) {
    if (!mWaveform || !mLocate)
        return false;
    VPoint inWaveform = local;
    mWaveform->ConvertVPointFromOtherView(this, inWaveform);
    mLocate(mWaveform->FrameAt(inWaveform.h));
    return true;
}

void TRulerView::Draw(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const VRect extent = GetExtent();
    painter->SetForegroundColor(GetControlColor(kThemeColor_RulerBackground));
    painter->FillRect(extent & area);
    if (!mWaveform || !mLabel)
        return;
    const Audio_ColumnScale& scale = mWaveform->GetScale();
    std::int64_t step = mSamplesPerSecond;
    for (const Distance& distance : kDistances) {
        step = std::max<std::int64_t>(1, std::int64_t{mSamplesPerSecond} * distance.mSeconds /
                                             distance.mDivisor);
        if (scale.ColumnOfFrame(step) >= kLabelRoom)
            break;
    }
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
    const std::int64_t first = mWaveform->FrameAt(mWaveform->GetExtent().Left()) / step;
    for (std::int64_t i = first;; ++i) {
        const VCoordinate h =
            extent.Left() + mWaveform->PlaceOf(i * step) - mWaveform->GetExtent().Left();
        if (h >= area.Right() || h >= extent.Right())
            break;
        painter->SetForegroundColor(GetControlColor(kThemeColor_RulerText));
        painter->FillRect(VRect(h, extent.Bottom() - 8, h + 1, extent.Bottom()));
        const VRect box(h + 4, extent.Top(), h + kLabelRoom, extent.Bottom() - 4);
        const std::string label = mLabel(i * step);
        if (box.Left() + painter->MeasureStringWidth(label) <= extent.Right())
            painter->DrawSingleLineTextBox(box, label, /*ellipsis*/ false, nullptr);
        for (int minor = 1; minor < 5; ++minor) {
            const VCoordinate at = extent.Left() + mWaveform->PlaceOf(i * step + step * minor / 5) -
                                   mWaveform->GetExtent().Left();
            painter->FillRect(VRect(at, extent.Bottom() - 4, at + 1, extent.Bottom()));
        }
    }
}

#include "qlx/views/umeterview.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "basekit/sys/sys_clock.h"
#include "qlx/persistence/qlx_persistence.h"

QLX_DEFINE_CLASS(TMeterView, TControl)

namespace {

constexpr double kMiddleFrom = -18; // dB: where the bar's colour changes
constexpr double kHighFrom = -6;
constexpr int kHoldThickness = 2;
constexpr int kGap = 2;                    // between bars
constexpr std::int32_t kFallFrequency = 1; // ticks

} // namespace

TMeterView::TMeterView() : mBars(2) { SetTakesFocus(false); }

TMeterView::~TMeterView() = default;

TObject* TMeterView::Clone() {
    auto* copy = static_cast<TMeterView*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mBars, mBars);
    return copy;
}

void TMeterView::SetChannels(int count, bool redraw) {
    mBars.resize(static_cast<std::size_t>(std::clamp(count, 1, kMostChannels)));
    if (redraw)
        ForceRedraw();
}

void TMeterView::SetScale(double floor, double top, bool redraw) {
    if (!(floor < top))
        return;
    mFloor = std::max(floor, Audio_MeterBallistics::kFloor);
    mTop = std::max(top, mFloor + 1);
    if (redraw)
        ForceRedraw();
}

const Audio_MeterBallistics& TMeterView::GetBallistics(int channel) const {
    return mBars[static_cast<std::size_t>(std::clamp(channel, 0, GetChannels() - 1))].mBallistics;
}

// Levels

void TMeterView::Feed(int channel, float peak, float rms) {
    if (channel < 0 || channel >= GetChannels())
        return;
    mBars[static_cast<std::size_t>(channel)].mBallistics.Update(Sys_Clock_Seconds(), peak, rms);
    ShowBar(channel);
    if (GetIdleFreq() == kNoIdle && !GetBallistics(channel).IsAtRest())
        SetIdleFreq(kFallFrequency);
}

bool TMeterView::DoIdle(IdlePhase phase) {
    if (phase == kIdlePhase_Continue)
        FallTo(Sys_Clock_Seconds());
    return TControl::DoIdle(phase);
}

void TMeterView::FallTo(double seconds) {
    bool atRest = true;
    for (int channel = 0; channel < GetChannels(); ++channel) {
        Bar& bar = mBars[static_cast<std::size_t>(channel)];
        bar.mBallistics.Fall(seconds);
        atRest = atRest && bar.mBallistics.IsAtRest();
        ShowBar(channel);
    }
    if (atRest)
        SetIdleFreq(kNoIdle);
}

void TMeterView::ResetClip() {
    for (int channel = 0; channel < GetChannels(); ++channel) {
        mBars[static_cast<std::size_t>(channel)].mBallistics.ResetClip();
        ShowBar(channel);
    }
}

// Marks for drawing exactly what differs from what is on the screen.
void TMeterView::ShowBar(int channel) {
    Bar& bar = mBars[static_cast<std::size_t>(channel)];
    const auto update = [&](int& shown, double level, int thickness) {
        const int position = PositionOf(level);
        if (position == shown)
            return;
        const int from = std::min(shown, position) - thickness;
        InvalidateVRect(GetStrip(channel, from, std::max(shown, position)));
        shown = position;
    };
    update(bar.mPeak, bar.mBallistics.GetPeak(), 0);
    update(bar.mRMS, bar.mBallistics.GetRMS(), 0);
    if (const int held = PositionOf(bar.mBallistics.GetHeldPeak()); held != bar.mHeld) {
        InvalidateVRect(GetStrip(channel, bar.mHeld - kHoldThickness, bar.mHeld));
        InvalidateVRect(GetStrip(channel, held - kHoldThickness, held));
        bar.mHeld = held;
    }
    if (bar.mBallistics.IsClipped() != bar.mClipped) {
        bar.mClipped = !bar.mClipped;
        InvalidateVRect(GetStrip(channel, GetBarLength(), GetBarLength() + kClipLength));
    }
}

// Geometry

bool TMeterView::IsVertical() const { return GetSize().v >= GetSize().h; }

VRect TMeterView::GetBarArea() const {
    VRect area = GetExtent();
    if (mHasScale && IsVertical())
        area.Left() = std::min(area.Right(), area.Left() + kScaleWidth);
    return area;
}

int TMeterView::GetBarLength() const {
    const VRect area = GetBarArea();
    const VCoordinate length = IsVertical() ? area.GetHeight() : area.GetWidth();
    return Cmn_ClampTo<int>(std::max<VCoordinate>(0, length - kClipLength));
}

VRect TMeterView::GetBarRect(int channel) const {
    VRect bar = GetBarArea();
    const VCoordinate across = IsVertical() ? bar.GetWidth() : bar.GetHeight();
    const VCoordinate from = across * channel / GetChannels();
    const VCoordinate to =
        across * (channel + 1) / GetChannels() - (channel + 1 < GetChannels() ? kGap : 0);
    if (IsVertical()) {
        bar.Right() = bar.Left() + to;
        bar.Left() += from;
    } else {
        bar.Bottom() = bar.Top() + to;
        bar.Top() += from;
    }
    return bar;
}

VRect TMeterView::GetStrip(int channel, int from, int to) const {
    VRect strip = GetBarRect(channel);
    if (IsVertical()) {
        const VCoordinate start = strip.Bottom();
        strip.Top() = start - to;
        strip.Bottom() = start - std::max(0, from);
    } else {
        const VCoordinate start = strip.Left();
        strip.Left() = start + std::max(0, from);
        strip.Right() = start + to;
    }
    return strip;
}

int TMeterView::PositionOf(double decibels) const {
    const double share = std::clamp((decibels - mFloor) / (mTop - mFloor), 0.0, 1.0);
    return static_cast<int>(std::lround(share * GetBarLength()));
}

// Drawing

void TMeterView::DrawBar(int channel) {
    const PainterPtr& painter = GetPainter();
    const Bar& bar = mBars[static_cast<std::size_t>(channel)];
    const int length = GetBarLength();
    const auto fill = [&](int from, int to, EThemeColor color, double fade) {
        if (from >= to)
            return;
        const CRGBColor full = GetControlColor(color);
        const CRGBColor ground = GetControlColor(kThemeColor_MeterBackground);
        painter->SetForegroundColor(ground.GetScaledBetween(full, static_cast<float>(fade)));
        painter->FillRect(GetStrip(channel, from, to));
    };
    const int middle = PositionOf(kMiddleFrom);
    const int high = PositionOf(kHighFrom);
    // The RMS part stands at full colour, what the peak adds on top of it is fainter.
    const auto fillZones = [&](int from, int to, double fade) {
        fill(from, std::min(to, middle), kThemeColor_MeterLow, fade);
        fill(std::max(from, middle), std::min(to, high), kThemeColor_MeterMiddle, fade);
        fill(std::max(from, high), to, kThemeColor_MeterHigh, fade);
    };
    const int rms = std::min(bar.mRMS, bar.mPeak);
    fillZones(0, rms, 1.0);
    fillZones(rms, bar.mPeak, 0.6);
    fill(bar.mPeak, length + kClipLength, kThemeColor_MeterBackground, 1.0);
    if (bar.mHeld > 0)
        fillZones(std::max(0, bar.mHeld - kHoldThickness), bar.mHeld, 1.0);
    if (bar.mClipped)
        fill(length + 1, length + kClipLength, kThemeColor_MeterClip, 1.0);
}

void TMeterView::DrawScale() {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> all = GetExtent();
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
    painter->SetForegroundColor(GetTextColor(kThemeColor_RulerText));
    int nextTop = INT32_MIN; // where the next figure finds room
    for (int level = static_cast<int>(mTop); level >= mFloor; level -= 6) {
        const int y = all.bottom - PositionOf(level);
        // The outermost figures move inwards rather than lose their edge.
        const int top = std::max(all.top, std::min(y - 6, all.bottom - 12));
        const Cmn_Rect<int> box{all.left, top, all.left + kScaleWidth - 8, top + 12};
        if (box.top < nextTop)
            continue; // no room for this one
        nextTop = box.bottom;
        const int mark = std::min(y, all.bottom - 1);
        painter->FillRect({all.left + kScaleWidth - 5, mark, all.left + kScaleWidth - 2, mark + 1});
        char text[16];
        std::snprintf(text, sizeof text, "%d", level);
        painter->DrawStringJustified(box, text, QLX_Painter::kJustify_Right,
                                     QLX_Painter::kJustify_Middle,
                                     QLX_Painter::kResolution_Logical);
    }
}

void TMeterView::Draw(const VRect& area) {
    for (int channel = 0; channel < GetChannels(); ++channel)
        if (!(GetBarRect(channel) & area).Empty())
            DrawBar(channel);
    if (mHasScale && IsVertical() && area.Left() < GetBarArea().Left())
        DrawScale();
}

bool TMeterView::DoMouseCommand(const VPoint&, TToolboxEvent*) {
    ResetClip();
    return true;
}

// Accessibility

std::string TMeterView::GetValueText() const {
    double loudest = Audio_MeterBallistics::kFloor;
    for (const Bar& bar : mBars)
        loudest = std::max(loudest, bar.mBallistics.GetPeak());
    char text[32];
    std::snprintf(text, sizeof text, "%.1f dB", loudest);
    return loudest <= Audio_MeterBallistics::kFloor ? "-inf dB" : text;
}

void TMeterView::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "meter";
}

bool TMeterView::GetRangeForAccessibility(double& minimum, double& maximum, double& value) {
    minimum = mFloor;
    maximum = mTop;
    value = std::clamp(GetBallistics(0).GetPeak(), mFloor, mTop);
    return true;
}

bool TMeterView::SetRangeForAccessibility(double) {
    return false; // it shows, and is not set
}

void TMeterView::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    std::int32_t number = GetChannels();
    if (container->GetInt32Property("Channels", number))
        SetChannels(number, /*redraw*/ false);
    std::int32_t floor = static_cast<std::int32_t>(mFloor);
    std::int32_t top = static_cast<std::int32_t>(mTop);
    container->GetInt32Property("FloorDecibels", floor);
    container->GetInt32Property("TopDecibels", top);
    SetScale(floor, top, /*redraw*/ false);
    container->GetBoolProperty("Scale", mHasScale);
    if (container->GetInt32Property("HoldMilliseconds", number))
        for (Bar& bar : mBars)
            bar.mBallistics.SetHoldSeconds(std::max(0, number) / 1000.0);
}

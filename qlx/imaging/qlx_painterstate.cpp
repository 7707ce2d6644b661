#include "qlx/imaging/qlx_painterstate.h"

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"

namespace {

[[nodiscard]] int Minus(int a, int b) noexcept {
    return Cmn_ClampTo<int>(std::int64_t{a} - std::int64_t{b});
}
[[nodiscard]] int Plus(int a, int b) noexcept {
    return Cmn_ClampTo<int>(std::int64_t{a} + std::int64_t{b});
}

[[nodiscard]] Cmn_Rect<int> Moved(const Cmn_Rect<int>& rect, Cmn_Point<int> by) noexcept {
    return {Plus(rect.left, by.x), Plus(rect.top, by.y), Plus(rect.right, by.x),
            Plus(rect.bottom, by.y)};
}

[[nodiscard]] QLX_Region Moved(const QLX_Region& region, Cmn_Point<int> by) {
    return by == Cmn_Point<int>() ? region : QLX_Region(region.Offset(by.x, by.y));
}

[[nodiscard]] double HeldCoordinate(double value) noexcept {
    return std::isnan(value) ? 0 : std::clamp(value, -1e6, 1e6);
}

} // namespace

QLX_PainterState::QLX_PainterState(const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : mScale(scale), mWindowBounds(windowBounds), mClipRect(windowBounds) {}

// A copy is counted anew. NOLINTNEXTLINE(bugprone-copy-constructor-init)
QLX_PainterState::QLX_PainterState(const QLX_PainterState& other)
    : QLX_Painter(), mIdentifier(other.mIdentifier), mScale(other.mScale),
      mWindowBounds(other.mWindowBounds), mClipIsRect(other.mClipIsRect),
      mClipRect(other.mClipRect), mClipRegion(other.mClipRegion),
      mClipRegionMade(other.mClipRegionMade), mClipOrigin(other.mClipOrigin),
      mHasSystemClip(other.mHasSystemClip), mSystemClip(other.mSystemClip) {
    CopyDrawingState(other);
}

QLX_PainterState::~QLX_PainterState() = default;

void QLX_PainterState::CopyDrawingState(const QLX_PainterState& other) {
    mForegroundColor = other.mForegroundColor;
    mBackgroundColor = other.mBackgroundColor;
    mHighlightColor = other.mHighlightColor;
    mPenSize = other.mPenSize;
    mPenMode = other.mPenMode;
    mPenPattern = other.mPenPattern;
    mFont = other.mFont;
    mTextMode = other.mTextMode;
    mAlpha = other.mAlpha;
    mWindowOrigin = other.mWindowOrigin;
    mPenPlace = other.mPenPlace;
    ++mClipGeneration;
}

void QLX_PainterState::SetIdentifier(int identifier) { mIdentifier = identifier; }
int QLX_PainterState::GetIdentifier() { return mIdentifier; }
void QLX_PainterState::Activate() { mActive = true; }
bool QLX_PainterState::IsActive() { return mActive; }

Cmn_Rect<int> QLX_PainterState::GetBounds() { return Moved(mWindowBounds, mWindowOrigin); }

QLX_Region QLX_PainterState::GetSystemClipRegion() {
    if (!mHasSystemClip)
        return QLX_Region(GetBounds());
    return Moved(mSystemClip, mWindowOrigin);
}

Cmn_Rect<int> QLX_PainterState::RestrictToSystemClip(const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> window = mHasSystemClip ? mSystemClip.GetBounds() : mWindowBounds;
    return rect & Moved(window, mWindowOrigin);
}

Cmn_Point<int> QLX_PainterState::GetOrigin() { return mWindowBounds.GetTopLeft(); }

void QLX_PainterState::SetWindowOrigin(Cmn_Point<int> origin) { mWindowOrigin = origin; }

Cmn_Point<int> QLX_PainterState::GetWindowOrigin() { return mWindowOrigin; }

QLX_Region QLX_PainterState::GetClipRegion() {
    if (mClipIsRect && !mClipRegionMade) {
        mClipRegion = QLX_Region(mClipRect);
        mClipRegionMade = true;
    }
    return Moved(mClipRegion,
                 {Minus(mWindowOrigin.x, mClipOrigin.x), Minus(mWindowOrigin.y, mClipOrigin.y)});
}

void QLX_PainterState::SetClip(const QLX_Region& region) {
    mClipRegion = region;
    mClipRegionMade = true;
    mClipIsRect = region.IsRectangular();
    mClipRect = region.GetBounds();
    mClipOrigin = mWindowOrigin;
    mWindowClipMade = false;
    ++mClipGeneration;
}

void QLX_PainterState::SetClip(const Cmn_Rect<int>& rect) {
    mClipIsRect = true;
    mClipRegionMade = false;
    mClipRect = rect.Empty() ? Cmn_Rect<int>() : rect;
    mClipOrigin = mWindowOrigin;
    mWindowClipMade = false;
    ++mClipGeneration;
}

const QLX_Region& QLX_PainterState::GetWindowClip() const {
    if (!mWindowClipMade) {
        const Cmn_Point<int> back(Minus(0, mClipOrigin.x), Minus(0, mClipOrigin.y));
        mWindowClip = mClipIsRect ? QLX_Region(Moved(mClipRect, back)) : Moved(mClipRegion, back);
        mWindowClipMade = true;
    }
    return mWindowClip;
}

void QLX_PainterState::SetSystemClip(const QLX_Region& regionInWindow) {
    mHasSystemClip = true;
    mSystemClip = regionInWindow;
    ++mClipGeneration;
}

void QLX_PainterState::ClearSystemClip() noexcept {
    mHasSystemClip = false;
    mSystemClip = QLX_Region();
    ++mClipGeneration;
}

// Those that the complement, every rectangle of it grown by the pen's size, runs into.
QLX_Region QLX_PainterState::GetFrame(const QLX_Region& region, Cmn_Point<short> pen) {
    if (region.IsEmpty() || pen.x <= 0 || pen.y <= 0)
        return {};
    const auto grown = [&](const Cmn_Rect<int>& rect) {
        return Cmn_Rect<int>(
            Cmn_SaturatingAdd(rect.left, -int{pen.x}), Cmn_SaturatingAdd(rect.top, -int{pen.y}),
            Cmn_SaturatingAdd(rect.right, int{pen.x}), Cmn_SaturatingAdd(rect.bottom, int{pen.y}));
    };
    const QLX_Region outside(QLX_Region(grown(region.GetBounds())).Difference(region));
    QLX_Region reached;
    for (const Cmn_Rect<int>& rect : outside.GetRectList())
        reached.UniteWith(grown(rect));
    return QLX_Region(region.Intersection(reached));
}

void QLX_PainterState::SetAlpha(float alpha) {
    mAlpha = std::isnan(alpha) ? 1 : std::clamp(alpha, 0.0F, 1.0F);
}

const CRGBColor& QLX_PainterState::GetForegroundColor() { return mForegroundColor; }
void QLX_PainterState::SetForegroundColor(const CRGBColor& color) { mForegroundColor = color; }
void QLX_PainterState::SetForeground(EThemeColor color) {
    SetForegroundColor(QLX_Theme::GetColor(color));
}
const CRGBColor& QLX_PainterState::GetBackgroundColor() { return mBackgroundColor; }
void QLX_PainterState::SetBackgroundColor(const CRGBColor& color) { mBackgroundColor = color; }
void QLX_PainterState::SetBackground(EThemeColor color) {
    SetBackgroundColor(QLX_Theme::GetColor(color));
}
CRGBColor QLX_PainterState::GetThemeColor(EThemeColor color) { return QLX_Theme::GetColor(color); }
const CRGBColor& QLX_PainterState::GetHighlightColor() { return mHighlightColor; }
void QLX_PainterState::SetHighlightColor(const CRGBColor& color) { mHighlightColor = color; }

Cmn_Point<short> QLX_PainterState::GetPenSize() { return mPenSize; }
void QLX_PainterState::SetPenSize(short horizontal, short vertical) {
    mPenSize = {std::max<short>(horizontal, 0), std::max<short>(vertical, 0)};
}
EPenMode QLX_PainterState::GetPenMode() { return mPenMode; }
void QLX_PainterState::SetPenMode(EPenMode mode) {
    mPenMode = mode >= 0 && mode < kPenMode_Count ? mode : kPenMode_Copy;
}
EPenPattern QLX_PainterState::GetPenPattern() { return mPenPattern; }
void QLX_PainterState::SetPenPattern(EPenPattern pattern) {
    mPenPattern = pattern >= 0 && pattern < kPenPattern_Count ? pattern : kPenPattern_Solid;
}
void QLX_PainterState::NormalizePen() {
    mPenSize = {1, 1};
    mPenMode = kPenMode_Copy;
    mPenPattern = kPenPattern_Solid;
}
const QLX_Font& QLX_PainterState::GetFont() { return mFont; }
void QLX_PainterState::SetFont(const QLX_Font& font) { mFont = font; }
EPenMode QLX_PainterState::GetTextMode() { return mTextMode; }
void QLX_PainterState::SetTextMode(EPenMode mode) {
    mTextMode = mode >= 0 && mode < kPenMode_Count ? mode : kPenMode_Copy;
}

void QLX_PainterState::MoveTo(float x, float y, EResolution resolution) {
    mPenPlace = PointToDevice(x, y, resolution);
}

void QLX_PainterState::LineOfLength(int dx, int dy, bool includeEnd, EResolution resolution) {
    const double unit = resolution == kResolution_Logical ? mScale.GetFactor() : 1;
    const Cmn_Point<int> origin = GetLocalDeviceOrigin();
    LineTo(float(HeldCoordinate(mPenPlace.x - origin.x + dx * unit)),
           float(HeldCoordinate(mPenPlace.y - origin.y + dy * unit)), includeEnd,
           kResolution_Device,
           resolution == kResolution_Logical ? float(mScale.ThicknessToDevice(mPenSize.x)) : 0);
}

int QLX_PainterState::MeasureStringWidth(const std::string& text) {
    return int(std::ceil(std::min(MeasureStringWidthF(text), 2e9F) - 0.01F));
}

QLX_Painter::PathPtr QLX_PainterState::CreateNewPath() { return PathPtr(new QLX_Path); }

QLX_Painter::ImagePtr QLX_PainterState::CreateEmptyImage(int width, int height) {
    return QLX_Image::Create(width, height);
}

Cmn_Point<int> QLX_PainterState::GetLocalDeviceOrigin() const noexcept {
    return {mScale.EdgeToDevice(-std::int64_t{mWindowOrigin.x}),
            mScale.EdgeToDevice(-std::int64_t{mWindowOrigin.y})};
}

Cmn_Rect<int> QLX_PainterState::ToWindow(const Cmn_Rect<int>& local) const noexcept {
    return {Minus(local.left, mWindowOrigin.x), Minus(local.top, mWindowOrigin.y),
            Minus(local.right, mWindowOrigin.x), Minus(local.bottom, mWindowOrigin.y)};
}

int QLX_PainterState::EdgeXToDevice(std::int64_t x, EResolution resolution) const noexcept {
    if (resolution == kResolution_Logical)
        return mScale.EdgeToDevice(x - mWindowOrigin.x);
    return Cmn_ClampTo<int>(x + mScale.EdgeToDevice(-std::int64_t{mWindowOrigin.x}));
}

int QLX_PainterState::EdgeYToDevice(std::int64_t y, EResolution resolution) const noexcept {
    if (resolution == kResolution_Logical)
        return mScale.EdgeToDevice(y - mWindowOrigin.y);
    return Cmn_ClampTo<int>(y + mScale.EdgeToDevice(-std::int64_t{mWindowOrigin.y}));
}

Cmn_Rect<int> QLX_PainterState::ToDevice(const Cmn_Rect<int>& local,
                                         EResolution resolution) const noexcept {
    return {EdgeXToDevice(local.left, resolution), EdgeYToDevice(local.top, resolution),
            EdgeXToDevice(local.right, resolution), EdgeYToDevice(local.bottom, resolution)};
}

Cmn_Point<double> QLX_PainterState::PointToDevice(double x, double y,
                                                  EResolution resolution) const noexcept {
    if (resolution == kResolution_Logical) {
        const double factor = mScale.GetFactor();
        return {HeldCoordinate((x - mWindowOrigin.x) * factor),
                HeldCoordinate((y - mWindowOrigin.y) * factor)};
    }
    const Cmn_Point<int> origin = GetLocalDeviceOrigin();
    return {HeldCoordinate(x + origin.x), HeldCoordinate(y + origin.y)};
}

int QLX_PainterState::ThicknessToDevice(int thickness, EResolution resolution) const noexcept {
    return resolution == kResolution_Logical ? mScale.ThicknessToDevice(thickness)
                                             : std::max(0, thickness);
}

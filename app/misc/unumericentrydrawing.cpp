// TNumericEntryText: drawing and the mouse.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "app/misc/unumericentryhelper.h"
#include "app/misc/unumericentrytext.h"
#include "app/misc/unumericentrytracker.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"

QLX_DEFINE_CLASS(TNumericEntryFrame, TView)

namespace {

// Between the frame and the text, logical pixels.
constexpr int cInset = 4;
constexpr int cCornerRadius = 3;
// The edge of a background image that keeps its width while the middle stretches.
constexpr int cPlateBorder = 8;
// What the frame takes at the edges, its smoothing included.
constexpr int cFrame = 2;

// What one font's ASCII characters measure. Fields share a handful of fonts, and a text's width is
// the sum of its characters', so measuring a field's text is a walk over a table.
struct FontAdvances {
    QLX_Font font;
    const QLX_TextMeasure* measure;
    QLX_FontMetrics metrics;
    float advances[128];
};

const FontAdvances& AdvancesOf(const QLX_Font& font) {
    static std::vector<std::unique_ptr<FontAdvances>> tables;
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    for (const auto& table : tables)
        if (table->font == font && table->measure == &measure)
            return *table;
    constexpr std::size_t most = 32;
    if (tables.size() == most)
        tables.clear();
    auto table = std::make_unique<FontAdvances>();
    table->font = font;
    table->measure = &measure;
    table->metrics = measure.MeasureFont(font);
    for (int c = 0; c < 128; ++c) {
        const char character = static_cast<char>(c);
        table->advances[c] =
            c < 32 ? 0 : measure.MeasureWidth(font, std::string_view(&character, 1));
    }
    tables.push_back(std::move(table));
    return *tables.back();
}

float WidthOf(const QLX_Font& font, std::string_view text) {
    const FontAdvances& table = AdvancesOf(font);
    float width = 0;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 128)
            return QLX_TextMeasure::Get().MeasureWidth(font, text);
        width += table.advances[code];
    }
    return width;
}

int RoundDown(float value) { return static_cast<int>(std::floor(value)); }

int RoundUp(float value) { return static_cast<int>(std::ceil(value)); }

// Whole pixels, so that glyphs lie the same in every field.
float BaselineOf(const VRect& area, const QLX_FontMetrics& metrics) {
    const auto top = static_cast<float>(area.Top());
    const auto height = static_cast<float>(area.Bottom() - area.Top());
    const float lineHeight = metrics.ascent + metrics.descent;
    return std::floor(top + (height - lineHeight) / 2 + metrics.ascent + 0.5F);
}

} // namespace

// ---- Measuring ----

float TNumericEntryText::GetStringWidth(const std::string& text) const {
    return WidthOf(GetControlFont(), text);
}

void TNumericEntryText::GetFontInfo(QLX_Font& font, QLX_FontMetrics& metrics) const {
    font = GetControlFont();
    metrics = AdvancesOf(font).metrics;
}

float TNumericEntryText::GetWidthUpTo(std::size_t characters) const {
    return WidthOf(GetControlFont(), std::string_view(mText).substr(0, characters));
}

float TNumericEntryText::GetValueLeft() const {
    const VRect extent = GetExtent();
    const QLX_Font font = GetControlFont();
    const float before = WidthOf(font, mRightToLeft ? mSuffix : mPrefix);
    const float after = WidthOf(font, mRightToLeft ? mPrefix : mSuffix);
    const float value = WidthOf(font, mText);
    const auto left = static_cast<float>(extent.Left() + cInset);
    const auto right = static_cast<float>(extent.Right() - cInset);
    const float total = before + value + after;
    EJustification justification = mJustification;
    if (mRightToLeft && justification == QLX_Painter::kJustify_Left)
        justification = QLX_Painter::kJustify_Right;
    else if (mRightToLeft && justification == QLX_Painter::kJustify_Right)
        justification = QLX_Painter::kJustify_Left;
    // Whole pixels, so that the value does not shimmer while it runs.
    float start = left;
    if (justification == QLX_Painter::kJustify_Center)
        start = std::floor((left + right - total) / 2);
    else if (justification == QLX_Painter::kJustify_Right)
        start = std::floor(right - total);
    return start + before;
}

short TNumericEntryText::GetCharacterAt(const VPoint& where) {
    const QLX_Font font = GetControlFont();
    auto at = static_cast<double>(where.h) - static_cast<double>(GetValueLeft());
    for (std::size_t i = 0; i < mText.size(); ++i) {
        at -= static_cast<double>(WidthOf(font, std::string_view(mText).substr(i, 1)));
        if (at < 0)
            return static_cast<short>(i);
    }
    return static_cast<short>(mText.size());
}

// The rows that the text and its hilite take, inside the frame.
void TNumericEntryText::GetTextRows(VCoordinate& top, VCoordinate& bottom) const {
    const VRect extent = GetExtent();
    const QLX_FontMetrics& metrics = AdvancesOf(GetControlFont()).metrics;
    const float baseline = BaselineOf(extent, metrics);
    top = std::max<VCoordinate>(extent.Top() + cFrame, RoundDown(baseline - metrics.ascent));
    bottom = std::min<VCoordinate>(extent.Bottom() - cFrame, RoundUp(baseline + metrics.descent));
}

// With volatile update only the characters that changed are drawn again; otherwise the whole field.
void TNumericEntryText::InvalidateCharacters(std::size_t first, std::size_t last, bool all) {
    if (all || !mVolatileUpdate) {
        ForceRedraw();
        return;
    }
    VRect area = GetExtent();
    const float left = GetValueLeft();
    area.Left() = RoundDown(left + GetWidthUpTo(first)) - 1;
    area.Right() = RoundUp(left + GetWidthUpTo(last)) + 1;
    GetTextRows(area.Top(), area.Bottom());
    if (GetInside(GetExtent()).Contains(area))
        InvalidateVRect(area);
    else
        ForceRedraw();
}

// Where there is neither frame nor focus ring. The ring may take a part of one pixel more where a
// logical pixel is not a whole number of them.
VRect TNumericEntryText::GetInside(VRect extent) {
    extent.Inset(VPoint(cInset, ShowsFocus() ? GetFocusRingWidth() + 1 : cFrame));
    return extent;
}

// ---- Looks ----

void TNumericEntryText::SetJustification(EJustification justification) {
    mJustification = justification;
    ForceRedraw();
}

void TNumericEntryText::SetRightToLeft(bool rightToLeft) {
    mRightToLeft = rightToLeft;
    ForceRedraw();
}

void TNumericEntryText::SetPrefixText(const std::string& text) {
    mPrefix = text;
    ForceRedraw();
}

void TNumericEntryText::SetSuffixText(const std::string& text) {
    mSuffix = text;
    ForceRedraw();
}

void TNumericEntryText::SetBackgroundImage(const QLX_Painter::ImagePtr& image) {
    mBackgroundImage = image;
    ForceRedraw();
}

void TNumericEntryText::UseAlternateHiliteColor(const CRGBColor& color) {
    mAlternateHilite = color;
    UseAlternateColors(true);
}

void TNumericEntryText::UseAlternateHiliteTextColor(const CRGBColor& color) {
    mAlternateHiliteText = color;
    UseAlternateColors(true);
}

void TNumericEntryText::InitializeAlternateColors() {
    mAlternateHilite = QLX_Theme::GetColor(kThemeColor_Selection);
    mAlternateHiliteText = QLX_Theme::GetColor(kThemeColor_HighlightText);
}

void TNumericEntryText::UseAlternateColors(bool use) {
    mUseAlternateColors = use;
    ForceRedraw();
}

// ---- Drawing ----

void TNumericEntryText::StaticDrawBackground(const PainterPtr& painter, const Cmn_Rect<int>& area,
                                             bool enabled, const QLX_Painter::ImagePtr& image) {
    if (image) {
        const QLX_StOriginState saver(painter);
        const Cmn_Point<int> origin = painter->GetWindowOrigin();
        painter->SetWindowOrigin({origin.x - area.left, origin.y - area.top});
        painter->OptimizedDrawBackgroundImage(image, area.right - area.left, area.bottom - area.top,
                                              cPlateBorder, QLX_Painter::kResolution_Logical);
        return;
    }
    painter->SetForegroundColor(
        QLX_Theme::GetColor(enabled ? kThemeColor_FieldBackground : kThemeColor_WindowBackground));
    painter->FillRoundRect(area, cCornerRadius, cCornerRadius, /*antialias*/ true,
                           /*topOnly*/ false);
    painter->SetPenSize(1, 1);
    painter->SetForegroundColor(QLX_Theme::GetColor(kThemeColor_FieldFrame));
    painter->DrawRoundRect(area, cCornerRadius, cCornerRadius, /*antialias*/ true,
                           /*topOnly*/ false);
}

void TNumericEntryText::AdjustEraseForAdorners(VRect&) {}

void TNumericEntryText::EraseNonTextArea(const VRect& area) {
    const PainterPtr painter = GetPainter();
    if (!painter)
        return;
    VRect left = area;
    left.Right() = std::min<VCoordinate>(area.Right(), RoundDown(GetValueLeft()));
    VRect right = area;
    right.Left() =
        std::max<VCoordinate>(area.Left(), RoundUp(GetValueLeft() + GetWidthUpTo(mText.size())));
    painter->SetBackgroundColor(GetControlColor(kThemeColor_FieldBackground));
    painter->EraseRect(left);
    painter->EraseRect(right);
}

void TNumericEntryText::Draw(const VRect& area) {
    const PainterPtr painter = GetPainter();
    if (!painter)
        return;
    GetHelper()->WillDraw(this);
    VRect extent = GetExtent();
    AdjustEraseForAdorners(extent);
    // Only characters in the middle changed: the plain field behind them is a filled rectangle,
    // frame and focus ring are still there.
    const bool insideOnly = !mBackgroundImage && GetInside(extent).Contains(area);
    if (insideOnly) {
        painter->SetForegroundColor(IsEnabled() ? GetControlColor(kThemeColor_FieldBackground)
                                                : GetControlColor(kThemeColor_WindowBackground));
        painter->FillRect(area);
    } else {
        StaticDrawBackground(painter, extent, IsEnabled(), mBackgroundImage);
    }
    ImageText(painter, GetExtent());
    if (!insideOnly)
        DrawFocusRing(0, cCornerRadius);
    TControl::Draw(area);
}

void TNumericEntryText::ImageText(const PainterPtr& painter, const VRect& area) {
    const QLX_Font font = GetControlFont();
    const QLX_FontMetrics& metrics = AdvancesOf(font).metrics;
    painter->SetFont(font);
    const float baseline = BaselineOf(area, metrics);
    const float left = GetValueLeft();
    const CRGBColor textColor = GetTextColor(kThemeColor_FieldText);
    const auto drawAt = [&](float x, const std::string& text, const CRGBColor& color) {
        painter->SetForegroundColor(color);
        painter->MoveTo(x, baseline, QLX_Painter::kResolution_Logical);
        painter->DrawString(text);
    };

    const std::string& before = mRightToLeft ? mSuffix : mPrefix;
    const std::string& after = mRightToLeft ? mPrefix : mSuffix;
    if (!before.empty())
        drawAt(left - WidthOf(font, before), before, textColor);
    if (!after.empty())
        drawAt(left + GetWidthUpTo(mText.size()), after, textColor);
    if (mArithmetic != kArithmetic_None)
        drawAt(static_cast<float>(area.Left() + cInset),
               mArithmetic == kArithmetic_Adding ? "+" : "-", GetTextColor(kThemeColor_FocusRing));

    if (!mComposition.empty()) {
        drawAt(left, mText, textColor);
        return DrawComposition(painter);
    }
    const bool hilited = mSelectionStart != mSelectionEnd && mEditable && ShowsFocus();
    drawAt(left, mText, textColor);
    if (!hilited)
        return;
    const auto start = static_cast<std::size_t>(mSelectionStart);
    const auto count = static_cast<std::size_t>(mSelectionEnd - mSelectionStart);
    const float hiliteLeft = left + GetWidthUpTo(start);
    const float hiliteRight = left + GetWidthUpTo(start + count);
    const Cmn_Rect<int> block(
        RoundDown(hiliteLeft), static_cast<int>(std::floor(baseline - metrics.ascent)),
        RoundUp(hiliteRight), static_cast<int>(std::ceil(baseline + metrics.descent)));
    painter->SetForegroundColor(mUseAlternateColors ? mAlternateHilite
                                                    : GetControlColor(kThemeColor_Highlight));
    painter->FillRect(block);
    drawAt(hiliteLeft, mText.substr(start, count),
           mUseAlternateColors ? mAlternateHiliteText : GetControlColor(kThemeColor_HighlightText));
}

// ---- The mouse ----

bool TNumericEntryText::HandleSpecificMouse(const VPoint&, TToolboxEvent*) { return false; }

bool TNumericEntryText::DoMouseCommand(const VPoint& where, TToolboxEvent* event) {
    if (!mEditable)
        return TControl::DoMouseCommand(where, event);
    const StDispatch dispatch;
    if (HandleSpecificMouse(where, event))
        return true;
    CNumericEntryHelper* const helper = GetHelper();
    const bool wasTarget = IsTarget();
    const bool isTimeCode = mFormat == kNumericEntry_TimeCode;
    constexpr int shortSelection = 4;
    const bool widens = wasTarget && isTimeCode && QLX_GetClickCount(event) == 2 &&
                        mSelectionEnd - mSelectionStart < shortSelection;
    if (widens) {
        helper->GetInitialSelection(this);
    } else if (wasTarget || WantsToBeTarget()) {
        if (!wasTarget) {
            CheckOldTarget(GetWindow());
            if (!BecomeTarget() || mGone)
                return true;
        }
        if (wasTarget || !isTimeCode)
            helper->CalculateHiliteSelection(this, where);
        mTypedCount = 0;
    }
    if (!mGone && IsTarget() && !IsWildcard())
        BeginTracking(new TNumericEntryTracker(wasTarget), where, event);
    return true;
}

bool TNumericEntryText::DoMouseWheel(const VPoint& where, TToolboxEvent* event) {
    if (!mEditable || !IsTarget())
        return TControl::DoMouseWheel(where, event);
    const StDispatch dispatch;
    mWheelRest += QLX_GetWheelDelta(event).y;
    const int steps = mWheelRest / kWheel_Notch;
    mWheelRest -= steps * kWheel_Notch;
    for (int i = 0; i < std::abs(steps) && !mGone; ++i) {
        AddValueToCurrentSelection(steps > 0 ? 1 : -1);
        mTypedCount = 0;
        constexpr short up = 30;
        constexpr short down = 31;
        if (mUpdateAfterArrow)
            UpdateClient(steps > 0 ? up : down, event->IsCommandKeyPressed(),
                         event->IsShiftKeyPressed(), event->IsOptionKeyPressed(),
                         event->IsControlKeyPressed(), /*fromTracking*/ false, kTrack_End);
    }
    return true;
}

void TNumericEntryText::MouseOverHook(int) {}

void TNumericEntryText::DoMouseEnter(const VPoint& where, TToolboxEvent* event) {
    const StDispatch dispatch;
    MouseOverHook(1);
    if (mMouseCallback != nullptr)
        mMouseCallback(true, mCallbackContext);
    if (!mGone)
        TControl::DoMouseEnter(where, event);
}

void TNumericEntryText::DoMouseLeave(TToolboxEvent* event) {
    const StDispatch dispatch;
    MouseOverHook(0);
    if (mMouseCallback != nullptr)
        mMouseCallback(false, mCallbackContext);
    if (!mGone)
        TControl::DoMouseLeave(event);
}

// ---- TNumericEntryFrame ----

TNumericEntryFrame::TNumericEntryFrame() = default;

void TNumericEntryFrame::Draw(const VRect& area) {
    const PainterPtr painter = GetPainter();
    if (painter)
        TNumericEntryText::StaticDrawBackground(painter, GetExtent(), IsEnabled(), {});
    TView::Draw(area);
}

bool TNumericEntryFrame::DoMouseCommand(const VPoint& where, TToolboxEvent* event) {
    for (int i = 1; i <= CountSubViews(); ++i) {
        auto* field = QLX_ObjectCast<TNumericEntryText>(GetSubView(i));
        if (field == nullptr || !field->WantsToBeTarget())
            continue;
        if (!field->IsTarget()) {
            TNumericEntryText::CheckOldTarget(GetWindow());
            field->BecomeTarget();
        }
        return true;
    }
    return TView::DoMouseCommand(where, event);
}

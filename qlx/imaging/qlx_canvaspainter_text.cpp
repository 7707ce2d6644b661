// Where the lines of a text go; the lines themselves are the platform's.

#include <cmath>

#include "qlx/imaging/qlx_canvaspainter.h"

int QLX_CanvasPainter::BaselineToCanvas(std::int64_t baseline) const noexcept {
    return Cmn_ClampTo<int>(std::int64_t{EdgeYToDevice(baseline, kResolution_Logical)} -
                            mDeviceCorner.y);
}

void QLX_CanvasPainter::DrawChar(char character) { DrawString(std::string(1, character)); }

void QLX_CanvasPainter::DrawString(const std::string& text) {
    const int baseline = int(std::floor(mPenPlace.y + 0.5)) - mDeviceCorner.y;
    mPenPlace.x += DrawTextLine(text, mPenPlace.x - mDeviceCorner.x, baseline, kNoLimit);
}

void QLX_CanvasPainter::DrawStringJustified(const Cmn_Rect<int>& rect, const std::string& text,
                                            EJustification justification,
                                            EVerticalJustification vertical,
                                            EResolution resolution) {
    const Cmn_Rect<int> box = ToCanvas(rect, resolution);
    const double factor = mScale.GetFactor();
    const double width = double(QLX_TextMeasure::Get().MeasureWidth(mFont, text)) * factor;
    double x = box.left;
    if (justification == kJustify_Center)
        x += (double(box.GetWidth()) - width) / 2;
    else if (justification == kJustify_Right)
        x += double(box.GetWidth()) - width;
    const QLX_FontMetrics metrics = mFont.GetMetrics();
    const int height = int(std::lround(metrics.GetLineHeight() * factor));
    std::int64_t top = box.top;
    if (vertical == kJustify_Middle)
        top += (std::int64_t{box.GetHeight()} - height) >> 1;
    else if (vertical == kJustify_Bottom)
        top += std::int64_t{box.GetHeight()} - height;
    const int baseline = Cmn_ClampTo<int>(top + int(std::lround(metrics.GetBaseline() * factor)));
    (void)DrawTextLine(text, x, baseline, kNoLimit);
}

int QLX_CanvasPainter::DrawTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                                   EJustification justification, bool wrap, bool ellipsis,
                                   bool clip, bool erase) {
    mLayout.LayOut(text, mFont, float(rect.GetWidth()), wrap ? kWrap_Word : kWrap_None);
    const int height = mLayout.GetHeight();
    if (!IsValid() || (rect.Empty() && (clip || erase)))
        return height;
    if (erase)
        EraseRect(rect);
    mLayout.Place(rect, justification, ellipsis);
    const Cmn_Rect<int> limit = clip ? ToCanvas(rect) : kNoLimit;
    for (const QLX_TextLayout::Placed& line : mLayout.GetPlaced()) {
        const double x = (double(line.x) - mWindowOrigin.x) * mScale.GetFactor() - mDeviceCorner.x;
        (void)DrawTextLine(line.text, x, BaselineToCanvas(line.baseline), limit);
    }
    return height;
}

void QLX_CanvasPainter::DrawSingleLineTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                                              bool ellipsis, const Ptr& second) {
    if (IsValid() && !rect.Empty()) {
        const std::string_view line = ellipsis
                                          ? mLayout.CutToWidth(text, mFont, float(rect.GetWidth()))
                                          : std::string_view(text);
        const QLX_FontMetrics metrics = mFont.GetMetrics();
        const std::int64_t top =
            rect.top + (std::int64_t{rect.GetHeight()} - metrics.GetLineHeight()) / 2;
        const Cmn_Rect<int> box = ToCanvas(rect);
        (void)DrawTextLine(line, box.left, BaselineToCanvas(top + metrics.GetBaseline()), box);
    }
    if (second)
        second->DrawSingleLineTextBox(rect, text, ellipsis, nullptr);
}

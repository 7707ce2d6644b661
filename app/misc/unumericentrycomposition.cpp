// TNumericEntryText: what an input method composes, shown where it will go.
#include <algorithm>
#include <cmath>

#include "app/misc/unumericentrytext.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

constexpr int cInset = 4; // of the text from the field's edges

} // namespace

// The digits of a composition are no entry yet: they become one when it is entered, full-width ones
// as plain ones.
bool TNumericEntryText::DoTextComposition(const std::string& text, int caret, int selectionLength) {
    if (!mTextCompositing || !mEditable)
        return TControl::DoTextComposition(text, caret, selectionLength);
    if (text.empty() && mComposition.empty())
        return true;
    mComposition = text;
    mCompositionCaret = 0;
    for (int i = 0; i < caret && mCompositionCaret < text.size(); ++i)
        static_cast<void>(QLX_NextCodePoint(mComposition, mCompositionCaret));
    ForceRedraw();
    return true;
}

// At the block that is to be replaced, moved in where the field ends before it does.
float TNumericEntryText::GetCompositionLeft() const {
    const VRect extent = GetExtent();
    const float block = GetValueLeft() +
                        GetWidthUpTo(static_cast<std::size_t>(std::max<short>(0, mSelectionStart)));
    const float most = static_cast<float>(extent.Right() - cInset) - GetStringWidth(mComposition);
    return std::max(static_cast<float>(extent.Left() + cInset), std::floor(std::min(block, most)));
}

bool TNumericEntryText::GetTextInputArea(VRect& caret) const {
    if (!mTextCompositing || !mEditable)
        return false;
    caret = GetExtent();
    GetTextRows(caret.Top(), caret.Bottom());
    if (mComposition.empty()) {
        const float left = GetValueLeft();
        caret.Left() = static_cast<VCoordinate>(
            left + GetWidthUpTo(static_cast<std::size_t>(std::max<short>(0, mSelectionStart))));
        caret.Right() = static_cast<VCoordinate>(std::ceil(
            left + GetWidthUpTo(static_cast<std::size_t>(std::max<short>(0, mSelectionEnd)))));
        caret.Right() = std::max(caret.Right(), caret.Left() + 1);
        return true;
    }
    const float place =
        QLX_TextCarets::Get().PlaceOf(GetControlFont(), mComposition, mCompositionCaret);
    caret.Left() = static_cast<VCoordinate>(std::lround(GetCompositionLeft() + place));
    caret.Right() = caret.Left() + 1;
    return true;
}

void TNumericEntryText::DrawComposition(const PainterPtr& painter) {
    QLX_Font font;
    QLX_FontMetrics metrics;
    GetFontInfo(font, metrics);
    VRect box = GetExtent();
    GetTextRows(box.Top(), box.Bottom());
    const float left = GetCompositionLeft();
    box.Left() = static_cast<VCoordinate>(left);
    box.Right() = static_cast<VCoordinate>(std::ceil(left + GetStringWidth(mComposition)));
    painter->SetForegroundColor(GetControlColor(kThemeColor_FieldBackground));
    painter->FillRect(box);
    painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
    painter->MoveTo(left, std::floor(static_cast<float>(box.Top()) + metrics.ascent + 0.5F),
                    QLX_Painter::kResolution_Logical);
    painter->DrawString(mComposition);
    painter->FillRect(VRect(box.Left(), box.Bottom() - 1, box.Right(), box.Bottom()));
    VRect caret;
    if (GetTextInputArea(caret))
        painter->FillRect(caret);
}

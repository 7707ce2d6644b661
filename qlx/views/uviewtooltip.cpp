#include "qlx/views/uviewtooltip.h"

#include <algorithm>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"

QLX_DEFINE_CLASS(TToolTipView, TView);

namespace {
constexpr int kMargin = 4;
}

TToolTipView::TToolTipView() : mText(new std::string) {}

TToolTipView::~TToolTipView() { delete mText; }

TObject* TToolTipView::Clone() {
    auto* copy = static_cast<TToolTipView*>(TView::Clone());
    if (copy)
        copy->mText = new std::string(*mText);
    return copy;
}

void TToolTipView::SetText(const std::string& text, const PainterPtr& painter, int maxWidth) {
    *mText = text;
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
    const int room = std::max(maxWidth - 2 * kMargin, 1);
    const int width = std::min(painter->MeasureStringWidth(text), room);
    const int height = painter->MeasureStringHeight(width, text, QLX_Painter::kWrap_Word);
    InvalidateFocus(); // the painter's font is no longer that of the view it was set up for
    Resize({width + 2 * kMargin, height + 2 * kMargin}, /*redraw*/ true);
}

void TToolTipView::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    if (!painter)
        return;
    const Cmn_Rect<int> all = GetExtent().ToCmn_Rect();
    painter->SetForeground(kThemeColor_ToolTipBackground);
    painter->FillRect(all);
    painter->SetForeground(kThemeColor_ToolTipText);
    painter->DrawRect(all);
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
    painter->DrawTextBox(
        {all.left + kMargin, all.top + kMargin, all.right - kMargin + 1, all.bottom - kMargin + 1},
        *mText, QLX_Painter::kJustify_Left, /*wrap*/ true, /*ellipsis*/ true,
        /*clip*/ false, /*erase*/ false);
}

bool TToolTipView::ContainsMouse(const VPoint&) const { return false; }

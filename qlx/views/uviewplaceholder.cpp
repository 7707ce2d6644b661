#include "qlx/views/uviewplaceholder.h"

#include "qlx/imaging/qlx_painter.h"

QLX_DEFINE_CLASS(TPlaceholderView, TView);

TPlaceholderView::TPlaceholderView() : mMissingClass(new std::string) {}

TPlaceholderView::~TPlaceholderView() { delete mMissingClass; }

void TPlaceholderView::SetMissingClass(const std::string& name) {
    *mMissingClass = name;
    ForceRedraw();
}

TObject* TPlaceholderView::Clone() {
    auto* copy = static_cast<TPlaceholderView*>(TView::Clone());
    if (copy)
        copy->mMissingClass = new std::string(*mMissingClass);
    return copy;
}

void TPlaceholderView::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    if (!painter)
        return;
    const Cmn_Rect<int> all = GetExtent().ToCmn_Rect();
    painter->SetForeground(kThemeColor_Error);
    painter->DrawRect(all);
    painter->MoveTo(static_cast<float>(all.left), static_cast<float>(all.top),
                    QLX_Painter::kResolution_Logical);
    painter->LineTo(static_cast<float>(all.right - 1), static_cast<float>(all.bottom - 1), true,
                    QLX_Painter::kResolution_Logical, 0);
    painter->MoveTo(static_cast<float>(all.right - 1), static_cast<float>(all.top),
                    QLX_Painter::kResolution_Logical);
    painter->LineTo(static_cast<float>(all.left), static_cast<float>(all.bottom - 1), true,
                    QLX_Painter::kResolution_Logical, 0);
    painter->DrawTextBox(all, *mMissingClass, QLX_Painter::kJustify_Center, /*wrap*/ false,
                         /*ellipsis*/ true, /*clip*/ true, /*erase*/ false);
}

bool TPlaceholderView::GetToolTip(const VPoint&, std::string& text, VRect& area) const {
    text = "missing class: " + *mMissingClass;
    area = GetExtent();
    return true;
}

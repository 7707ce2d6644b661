#include "qlx/views/ustatictext.h"

#include <algorithm>

#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/udescribedpicture.h"

QLX_DEFINE_CLASS(TStaticText, TControl)
QLX_DEFINE_CLASS(TPicture, TControl)
QLX_DEFINE_CLASS(TPlate, TControl)

// TStaticText

TStaticText::TStaticText() { SetTakesFocus(false); }

TStaticText::~TStaticText() = default;

TObject* TStaticText::Clone() {
    auto* copy = static_cast<TStaticText*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mText, mText);
    return copy;
}

void TStaticText::SetText(const std::string& text, bool redraw) {
    if (text == mText)
        return;
    mText = text;
    if (redraw)
        ForceRedraw();
    AccessibilityNotification(kAccessibility_TextChanged, nullptr);
}

void TStaticText::SetJustification(QLX_Painter::EJustification horizontal,
                                   QLX_Painter::EVerticalJustification vertical, bool redraw) {
    mJustification = horizontal;
    mVertical = vertical;
    if (redraw)
        ForceRedraw();
}

int TStaticText::VerticalInset(int textHeight) const {
    const int spare = static_cast<int>(GetExtent().GetHeight()) - textHeight;
    if (spare <= 0 || mVertical == QLX_Painter::kJustify_Top)
        return 0;
    return mVertical == QLX_Painter::kJustify_Bottom ? spare : spare / 2;
}

void TStaticText::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    Cmn_Rect<int> box = GetExtent();
    painter->SetForegroundColor(GetTextColor(mTextColor));
    const auto wrap = mWrap ? QLX_Painter::kWrap_Word : QLX_Painter::kWrap_None;
    box.top += VerticalInset(painter->MeasureStringHeight(box.right - box.left, mText, wrap));
    painter->DrawTextBox(box, mText, mJustification, mWrap, mEllipsis, /*clip*/ true,
                         /*erase*/ false);
}

void TStaticText::SetWrap(bool wrap, bool redraw) {
    mWrap = wrap;
    if (redraw)
        ForceRedraw();
}

void TStaticText::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "text";
    info.mName = mText;
    info.mValue.clear();
}

VPoint TStaticText::CalcMinFrame() const {
    const QLX_Font font = GetControlFont();
    const float width = QLX_TextMeasure::Get().MeasureWidth(font, mText);
    const VPoint own(mWrap || mEllipsis ? 0 : static_cast<int>(width) + 1,
                     font.GetMetrics().GetLineHeight());
    const VPoint base = TControl::CalcMinFrame();
    return VPoint(std::max(own.h, base.h), std::max(own.v, base.v));
}

void TStaticText::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    ReadText(container, memento, "Text", mText);
    std::int32_t number = mJustification;
    if (container->GetInt32Property("Justification", number))
        mJustification = static_cast<QLX_Painter::EJustification>(std::clamp(number, 0, 3));
    number = mVertical;
    if (container->GetInt32Property("Vertical", number))
        mVertical = static_cast<QLX_Painter::EVerticalJustification>(std::clamp(number, 0, 2));
    container->GetBoolProperty("Wrap", mWrap);
    container->GetBoolProperty("Ellipsis", mEllipsis);
    std::string color;
    if (container->GetStringProperty("TextColor", color))
        QLX_Theme::FindByName(color, mTextColor);
}

// TPicture

TPicture::TPicture() { SetTakesFocus(false); }

TPicture::~TPicture() = default;

TObject* TPicture::Clone() {
    auto* copy = static_cast<TPicture*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mImage, mImage);
    return copy;
}

void TPicture::SetImage(const Cmn_AliasedRefCountPtr<QLX_Image>& image, bool redraw) {
    mImage = image;
    if (redraw)
        ForceRedraw();
}

void TPicture::SetStretch(bool stretch, bool redraw) {
    mStretch = stretch;
    if (redraw)
        ForceRedraw();
}

void TPicture::Draw(const VRect&) {
    if (!mImage)
        return;
    Cmn_Rect<int> box = GetExtent();
    if (!mStretch) {
        box.left += (box.right - box.left - mImage->GetWidth()) / 2;
        box.top += (box.bottom - box.top - mImage->GetHeight()) / 2;
        box.right = box.left + mImage->GetWidth();
        box.bottom = box.top + mImage->GetHeight();
    }
    GetPainter()->DrawImage(mImage, box, kPenMode_Copy);
}

void TPicture::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "img";
    info.mValue.clear();
}

void TPicture::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    container->GetBoolProperty("Stretch", mStretch);
    std::string name;
    // A window without its picture is still a window.
    if (container->GetStringProperty("Image", name))
        if (const QLX_Image::Ptr image = QLX_ReadDescribedPicture(container, memento, name))
            mImage = image;
}

// TPlate

TPlate::TPlate() { SetTakesFocus(false); }

TPlate::~TPlate() = default;

TObject* TPlate::Clone() {
    auto* copy = static_cast<TPlate*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mTitle, mTitle);
    return copy;
}

void TPlate::SetTitle(const std::string& title, bool redraw) {
    mTitle = title;
    if (redraw)
        ForceRedraw();
}

void TPlate::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    Cmn_Rect<int> box = GetExtent();
    const int radius = mRounded ? 5 : 0;
    // Half way to the theme's light: a plate is seen and does not glare.
    painter->SetForegroundColor(
        GetControlColor(kThemeColor_WindowBackground)
            .GetScaledBetween(GetControlColor(kThemeColor_ControlLight), 0.5f));
    painter->FillRoundRect(box, radius, radius, /*antialias*/ true, /*topOnly*/ false);
    if (mFramed) {
        painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
        painter->DrawRoundRect(box, radius, radius, /*antialias*/ true, /*topOnly*/ false);
    }
    if (mTitle.empty())
        return;
    const int height = GetControlFont().GetMetrics().GetLineHeight();
    const Cmn_Rect<int> caption{box.left + 8, box.top + 3, box.right - 8, box.top + 3 + height};
    painter->SetForegroundColor(GetTextColor(kThemeColor_ControlText));
    painter->DrawSingleLineTextBox(caption, mTitle, /*ellipsis*/ true, nullptr);
}

void TPlate::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "group";
    info.mName = mTitle;
    info.mValue.clear();
}

void TPlate::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    ReadText(container, memento, "Title", mTitle);
    container->GetBoolProperty("Rounded", mRounded);
    container->GetBoolProperty("Framed", mFramed);
}

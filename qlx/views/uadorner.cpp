#include "qlx/views/uadorner.h"

#include "qlx/imaging/qlx_painter.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewserver.h"

QLX_DEFINE_CLASS(TAdorner, TObject);
QLX_DEFINE_CLASS(TFillAdorner, TAdorner);
QLX_DEFINE_CLASS(TFrameAdorner, TAdorner);
QLX_DEFINE_CLASS(TSelectionAdorner, TAdorner);

namespace {

constexpr int kBehindEverything = -100;
constexpr int kAboveTheContents = 100;

/// "Color" and "ThemeColor"; a theme colour that does not exist is a problem and changes nothing.
void ReadColor(QLX_RawPropertyContainer* container,
               const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento, const TObject* object,
               CRGBColor& color, int& themeColor) {
    if (container->GetColorProperty("Color", color))
        themeColor = -1;
    std::string name;
    if (!container->GetStringProperty("ThemeColor", name))
        return;
    EThemeColor found = kThemeColor_Text;
    if (QLX_Theme::FindByName(name, found))
        themeColor = found;
    else
        TViewServer::Get()->AddProblem(container, memento,
                                       object->GetClassDescDynamic()->GetClassName(),
                                       "ThemeColor is no theme colour: \"" + name + "\"");
}

void SetForeground(QLX_Painter& painter, const CRGBColor& color, int themeColor) {
    if (themeColor >= 0)
        painter.SetForeground(static_cast<EThemeColor>(themeColor));
    else
        painter.SetForegroundColor(color);
}

} // namespace

// TAdorner

TAdorner::TAdorner() = default;

TAdorner::~TAdorner() = default;

void TAdorner::Draw(TView*, const VRect&) {}

void TAdorner::Highlight(TView*, const VRect&, bool, EHighlight) {}

void TAdorner::ReadProperties(QLX_RawPropertyContainer* container,
                              const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TObject::ReadProperties(container, memento);
    container->GetIDTypeProperty("Identifier", mIdentifier);
    std::int32_t order = mOrder;
    if (container->GetInt32Property("Order", order))
        mOrder = order;
    container->GetBoolProperty("Enabled", mEnabled);
}

// TFillAdorner

TFillAdorner::TFillAdorner() : mThemeColor(kThemeColor_WindowBackground) {
    mOrder = kBehindEverything;
}

TFillAdorner::~TFillAdorner() = default;

void TFillAdorner::SetColor(const CRGBColor& color) {
    mColor = color;
    mThemeColor = -1;
}

void TFillAdorner::Draw(TView* view, const VRect& area) {
    const QLX_Painter::Ptr& painter = view->GetPainter();
    if (!painter)
        return;
    SetForeground(*painter, mColor, mThemeColor);
    painter->FillRect(area.ToCmn_Rect());
}

void TFillAdorner::ReadProperties(QLX_RawPropertyContainer* container,
                                  const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TAdorner::ReadProperties(container, memento);
    ReadColor(container, memento, this, mColor, mThemeColor);
}

// TFrameAdorner

TFrameAdorner::TFrameAdorner() : mThemeColor(kThemeColor_ControlFrame) {
    mOrder = kAboveTheContents;
}

TFrameAdorner::~TFrameAdorner() = default;

void TFrameAdorner::SetColor(const CRGBColor& color) {
    mColor = color;
    mThemeColor = -1;
}

void TFrameAdorner::Draw(TView* view, const VRect&) {
    const QLX_Painter::Ptr& painter = view->GetPainter();
    if (!painter || mThickness <= 0)
        return;
    SetForeground(*painter, mColor, mThemeColor);
    const Cmn_Rect<int> all = view->GetExtent().ToCmn_Rect();
    const int thickness = mThickness;
    if (mEdges & 1)
        painter->FillRect({all.left, all.top, all.right, all.top + thickness});
    if (mEdges & 4)
        painter->FillRect({all.left, all.bottom - thickness, all.right, all.bottom});
    if (mEdges & 2)
        painter->FillRect({all.left, all.top, all.left + thickness, all.bottom});
    if (mEdges & 8)
        painter->FillRect({all.right - thickness, all.top, all.right, all.bottom});
}

void TFrameAdorner::ReadProperties(QLX_RawPropertyContainer* container,
                                   const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TAdorner::ReadProperties(container, memento);
    ReadColor(container, memento, this, mColor, mThemeColor);
    std::int32_t thickness = mThickness;
    if (container->GetInt32Property("Thickness", thickness))
        mThickness = thickness < 0 ? 0 : thickness;
    std::string edges;
    if (!container->GetStringProperty("Edges", edges))
        return;
    const std::string letters = "tlbr";
    mEdges = 0;
    for (const char letter : edges) {
        const std::size_t edge = letters.find(letter);
        if (edge == std::string::npos)
            TViewServer::Get()->AddProblem(container, memento, "TFrameAdorner",
                                           "Edges is not made of the letters tlbr: \"" + edges +
                                               "\"");
        else
            mEdges = static_cast<std::uint8_t>(mEdges | 1U << edge);
    }
}

// TSelectionAdorner

TSelectionAdorner::TSelectionAdorner() { mOrder = kAboveTheContents; }

TSelectionAdorner::~TSelectionAdorner() = default;

void TSelectionAdorner::Highlight(TView* view, const VRect& area, bool on, EHighlight highlight) {
    const QLX_Painter::Ptr& painter = view->GetPainter();
    if (painter && on && highlight != kHighlight_Off)
        painter->HighlightRect(area.ToCmn_Rect(), nullptr);
}

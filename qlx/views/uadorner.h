// Adorners draw something around or on top of a view's own drawing: backgrounds, frames, hilites.
// They belong to one view and are made by descriptions or by code.
#pragma once

#include "qlx/foundation/uobject.h"
#include "qlx/views/crgbcolor.h"
#include "qlx/views/ugeometry.h"

enum EHighlight : int;

/// The base, which draws nothing. Adorners of order below 0 draw before the view's own Draw, the
/// others after it; lower orders first.
///
/// Properties: "Identifier" (idtype), "Order" (int32), "Enabled" (bool).
class QLX_API TAdorner : public TObject {
  public:
    QLX_DECLARE_CLASS(TAdorner);
    TAdorner();
    ~TAdorner() override;

    [[nodiscard]] std::uint32_t GetIdentifier() const { return mIdentifier; }
    void SetIdentifier(std::uint32_t identifier) { mIdentifier = identifier; }
    [[nodiscard]] int GetOrder() const { return mOrder; }
    /// Before the adorner is added to a view; later changes do not move it.
    void SetOrder(int order) { mOrder = order; }
    [[nodiscard]] bool IsEnabled() const { return mEnabled; }
    /// The view is not redrawn.
    void SetEnabled(bool enabled) { mEnabled = enabled; }

    // Slot order is part of the binary interface: append, never move.

    /// Draws on the view's painter, which is set up for the view; area is the part that needs it,
    /// in the view's local coordinates.
    virtual void Draw(TView* view, const VRect& area);
    /// Draws or, with on false, takes away a highlighting.
    virtual void Highlight(TView* view, const VRect& area, bool on, EHighlight highlight);

    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;

  protected:
    std::uint32_t mIdentifier = 0x20202020;
    int mOrder = 0;
    bool mEnabled = true;

  private:
    friend class TView;
    bool mFromDescription = false;
};

/// Fills the view's extent. Order -100 unless set: behind everything.
///
/// Properties: "Color" (rgbcolor) or "ThemeColor" (string, a name of the theme).
class QLX_API TFillAdorner : public TAdorner {
  public:
    QLX_DECLARE_CLASS(TFillAdorner);
    TFillAdorner();
    ~TFillAdorner() override;
    void SetColor(const CRGBColor& color);
    /// A number of EThemeColor; the colour follows the theme.
    void SetThemeColor(int themeColor) { mThemeColor = themeColor; }
    void Draw(TView* view, const VRect& area) override;
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;

  private:
    CRGBColor mColor;
    int mThemeColor = -1; // -1: mColor
};

/// Draws a frame inside the edges of the view's extent. Order 100 unless set.
///
/// Properties: "Color" or "ThemeColor" as above, "Thickness" (int32, logical pixels, 1), "Edges"
/// (string of the letters "tlbr"; all four).
class QLX_API TFrameAdorner : public TAdorner {
  public:
    QLX_DECLARE_CLASS(TFrameAdorner);
    TFrameAdorner();
    ~TFrameAdorner() override;
    void SetColor(const CRGBColor& color);
    void SetThemeColor(int themeColor) { mThemeColor = themeColor; }
    void SetThickness(int thickness) { mThickness = thickness; }
    void Draw(TView* view, const VRect& area) override;
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;

  private:
    CRGBColor mColor;
    int mThemeColor = -1; // -1: mColor
    int mThickness = 1;
    std::uint8_t mEdges = 15; // top 1, left 2, bottom 4, right 8
};

/// Hilites the whole extent while the view's highlighting is on.
///
/// Properties: those of the base.
class QLX_API TSelectionAdorner : public TAdorner {
  public:
    QLX_DECLARE_CLASS(TSelectionAdorner);
    TSelectionAdorner();
    ~TSelectionAdorner() override;
    void Highlight(TView* view, const VRect& area, bool on, EHighlight highlight) override;
};

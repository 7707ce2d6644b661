// What a description can say about a view beside its own properties: a drawing environment (pen,
// colours and font that hold when Draw begins) and named states (settings that are switched
// together).
#pragma once

#include <string>

#include "qlx/foundation/uobject.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/views/crgbcolor.h"

class QLX_Painter;

/// Pen, colours and font for one view. What is not set stays the painter's standard.
///
/// Properties, all optional: "ForegroundColor", "BackgroundColor" (rgbcolor),
/// "ForegroundThemeColor", "BackgroundThemeColor" (strings, names of the theme; they win over the
/// colours), "PenWidth", "PenHeight" (int32, logical pixels), "PenMode", "TextMode", "PenPattern"
/// (int32, the painter's numbers), "FontNumber" (int32, a number of the font map), "FontStyle"
/// (int32, its selector), "FontSize" (int32, logical pixels).
class QLX_API TDrawingEnvironment : public TObject {
  public:
    QLX_DECLARE_CLASS(TDrawingEnvironment);
    TDrawingEnvironment();
    ~TDrawingEnvironment() override;

    // Slot order is part of the binary interface: append, never move.
    virtual void Apply(QLX_Painter& painter) const;

    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;

    void SetForegroundColor(const CRGBColor& color);
    void SetBackgroundColor(const CRGBColor& color);
    void SetFont(const QLX_Font& font);
    void SetPenSize(int horizontal, int vertical);

  private:
    enum : std::uint16_t {
        kForeground = 1,
        kBackground = 2,
        kPenSize = 4,
        kPenMode = 8,
        kTextMode = 16,
        kPenPattern = 32,
        kFont = 64
    };
    std::uint16_t mSet = 0; // which of the fields below count
    CRGBColor mForeground;
    CRGBColor mBackground;
    int mForegroundTheme = -1; // -1: mForeground
    int mBackgroundTheme = -1; // -1: mBackground
    short mPenWidth = 1;
    short mPenHeight = 1;
    int mPenMode = 0;
    int mTextMode = 0;
    int mPenPattern = 0;
    QLX_Font mFont;
};

/// A named set of settings: TView::SetState applies it. A state may hold a drawing environment and
/// adorner switches.
///
/// Properties: "Name" (string); optional "Shown", "Enabled" (bool), "ToolTip" (localised or plain
/// string), "EnabledAdorners", "DisabledAdorners" (strings of four-character codes, four bytes
/// each, one after the other).
class QLX_API TViewState : public TObject {
  public:
    QLX_DECLARE_CLASS(TViewState);
    TViewState();
    ~TViewState() override;

    [[nodiscard]] const std::string& GetName() const;
    void SetName(const std::string& name);

    // Slot order is part of the binary interface: append, never move.

    /// Applies the settings and redraws the view.
    virtual void Apply(TView* view);

    void ReadContainer(QLX_RawPropertyContainer* container,
                       const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                       TView* view) override;
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;
    [[nodiscard]] TObject* Clone() override;

  private:
    struct Settings;
    Settings* mSettings; // owned
};

// TControl, the base of everything that has a value and a look of its own: buttons, sliders,
// fields.
#pragma once

#include <functional>
#include <string>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/views/uview.h"

/// Event numbers by which a control tells its supervisor (TEventHandler::HandleEvent, the control
/// as source, no event object). Numbers are fixed; new ones go at the end.
enum EControlEvent : std::int32_t {
    kControlEvent_ValueChanged = 60,  ///< the user changed the value, and it is settled
    kControlEvent_ValueChanging = 61, ///< the user is changing it: a drag is under way
    kControlEvent_Pressed = 62,       ///< a push button was pushed
    kControlEvent_Cancelled = 63      ///< a drag was given up; the value is what it was before it
};

/// A view with a value between a minimum and a maximum, an enabled and a hilited state, and a
/// control theme. What the program sets is not announced; what the user changes goes to the change
/// callback, then to the supervisor, then, as a menu command, up the handler chain. Any of them may
/// free the control. User-interface thread only.
///
/// Properties, all optional: "Value", "Minimum", "Maximum" (int32; a maximum below the minimum:
/// both are swapped), "ControlTheme" (string), "CommandNumber" (int32), "FontNumber" (int32, of the
/// font map), "FontStyle" (int32, its selector), "FontSize" (int32, logical pixels), "TakesFocus"
/// (bool), and for pictures of a look "Hilited" and "ShowsFocus" (bool: drawn as if it were pressed
/// or were the target).
class QLX_API TControl : public TView {
  public:
    QLX_DECLARE_CLASS(TControl);
    using ChangeCallback = std::function<void(TControl& control, std::int32_t event)>;

    TControl();
    ~TControl() override;

    // Value

    [[nodiscard]] std::int32_t GetValue() const { return mValue; }
    [[nodiscard]] std::int32_t GetMinimum() const { return mMinimum; }
    [[nodiscard]] std::int32_t GetMaximum() const { return mMaximum; }
    /// Both bounds, in whichever order they are given; the value is held between them.
    void SetRange(std::int32_t minimum, std::int32_t maximum, bool redraw);

    // Who hears of changes

    /// Called first; an empty function for nobody.
    void SetChangeCallback(ChangeCallback callback);
    /// Not owned; null (as at birth) stands for the next handler. The owner of a supervisor sets
    /// null before the supervisor goes away.
    void SetSupervisor(TEventHandler* supervisor) { mSupervisor = supervisor; }
    [[nodiscard]] TEventHandler* GetSupervisor();
    /// A menu command that goes up the chain when the value has changed; 0 for none.
    void SetCommandNumber(std::int32_t number) { mCommandNumber = number; }
    [[nodiscard]] std::int32_t GetCommandNumber() const { return mCommandNumber; }

    // Look

    [[nodiscard]] bool IsHilited() const { return mHilited; }
    /// The name before the dot under which a theme may give this control colours of its own
    /// ("Transport.ControlFace"); empty for the theme's plain ones.
    void SetControlTheme(const std::string& name, bool redraw);
    [[nodiscard]] const std::string& GetControlTheme() const { return mControlTheme; }
    /// The colour in this control's theme, in the theme's present variant.
    [[nodiscard]] CRGBColor GetControlColor(EThemeColor color) const;
    void SetControlFont(int fontNumber, int styleSelector);
    [[nodiscard]] QLX_Font GetControlFont() const;
    /// Whether the focus look is due: the control is the target, or shows it for a picture.
    [[nodiscard]] bool ShowsFocus();
    /// Whether Tab stops here; most controls do, texts and plates do not.
    void SetTakesFocus(bool takes) { mTakesFocus = takes; }

    // Accessibility

    /// Value and bounds; false for a control that has no range.
    virtual bool GetRangeForAccessibility(double& minimum, double& maximum, double& value);
    /// What a screen reader sets, as if the user had; false when it is not possible.
    virtual bool SetRangeForAccessibility(double value);

    // Slot order is part of the binary interface: append, never move.

    /// Sets the value, held between the bounds. Nobody but accessibility hears of it.
    virtual void SetValue(std::int32_t value, bool redraw);
    virtual void SetHilite(bool hilited, bool redraw);
    /// The value as the user reads it; the number here.
    [[nodiscard]] virtual std::string GetValueText() const;
    /// The user's change: sets the value, redraws, and notifies when it is another one. True then.
    virtual bool ChangeValue(std::int32_t value, EControlEvent event);
    /// Tells the callback, the supervisor and, for a settled change, the command's handlers.
    virtual void NotifyChange(EControlEvent event);

    // Overrides

    [[nodiscard]] bool WantsToBeTarget() override;
    void BecameTarget() override;
    void ResignedTarget() override;
    void SetEnable(bool enable) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void DoFocus(const PainterPtr& painter) override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  protected:
    /// Gives a byte-wise copy a member of its own, in the place of the original's bytes. Every
    /// class with such members does it in Clone, after its base's.
    template <class T>
    static void CopyMember(T& copied, const T& original) {
        new (&copied) T(original);
    }
    /// Reads a text that is a key into the string tables, or else a plain string; false, and the
    /// text untouched, when there is neither.
    static bool ReadText(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                         const char* name, std::string& text);
    /// The same colour, faded when the control is disabled.
    [[nodiscard]] CRGBColor GetTextColor(EThemeColor color);
    /// Draws the focus ring just inside the extent when it is due.
    void DrawFocusRing(int inset = 0, int radius = 3);
    /// How thick it is, logical pixels; the field's own frame is thinner.
    [[nodiscard]] static int GetFocusRingWidth();

  private:
    // The order of the fields is part of the binary interface.
    std::int32_t mValue = 0;
    std::int32_t mMinimum = 0;
    std::int32_t mMaximum = 1;
    std::int32_t mCommandNumber = 0;
    TEventHandler* mSupervisor = nullptr; // not owned
    ChangeCallback mChangeCallback;
    std::string mControlTheme;
    std::int16_t mFontNumber = 0; // 0: the interface font
    std::int16_t mFontStyle = 0;
    std::int16_t mFontSize = 0; // 0: the font's own
    bool mHilited = false;
    bool mTakesFocus = true;
    bool mHasReadValue = false;
    bool mAlwaysShowsFocus = false;
};

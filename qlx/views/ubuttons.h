// Controls that are pushed: push button, check box, radio button, and the cluster that keeps one of
// several radio buttons on. All work by mouse, by Space and, where it says so, by Return.
#pragma once

#include "qlx/imaging/qlx_image.h"
#include "qlx/views/ucontrol.h"

/// What buttons share: a title, an optional icon, and the press that counts only when the mouse is
/// released inside. Space presses while held and acts when released.
///
/// Properties beside the base's: "Title" (string key or string).
class QLX_API TButtonBase : public TControl {
  public:
    QLX_DECLARE_CLASS(TButtonBase);
    TButtonBase();
    ~TButtonBase() override;

    void SetTitle(const std::string& title, bool redraw);
    [[nodiscard]] const std::string& GetTitle() const { return mTitle; }

    /// Does what a click does, as if the user had: nothing when disabled.
    void Push();

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void DoMouseEnter(const VPoint& local, TToolboxEvent* event) override;
    void DoMouseLeave(TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoKeyUp(TToolboxEvent* event) override;
    void ResignedTarget() override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] VPoint CalcMinFrame() const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  protected:
    /// What a completed push does.
    virtual void Pushed();
    /// Room beside the title, in logical pixels.
    [[nodiscard]] virtual VPoint GetTitleMargin() const;
    [[nodiscard]] CRGBColor GetFaceColor();

  private:
    friend class TButtonTracker;
    std::string mTitle;
    bool mSpaceHeld = false;
};

/// A push button. The default button of a window is also pushed by Return, the cancel button by
/// Escape; their window or dialog sees to it (TButton::FindRole).
///
/// Properties beside the base's: "Role" (string: "default", "cancel" or empty), "Icon" (string, a
/// PNG file), "Toggles" (bool: the button stays down and has the values 0 and 1).
class QLX_API TButton : public TButtonBase {
  public:
    QLX_DECLARE_CLASS(TButton);
    enum ERole : std::int8_t { kRole_None = 0, kRole_Default, kRole_Cancel };

    TButton();
    ~TButton() override;

    void SetRole(ERole role, bool redraw);
    [[nodiscard]] ERole GetRole() const { return mRole; }
    void SetIcon(const QLX_Icon& icon, bool redraw);
    void SetToggles(bool toggles) { mToggles = toggles; }

    /// The first enabled, shown button with a role in a tree; null when there is none.
    [[nodiscard]] static TButton* FindRole(TView* root, ERole role);

    void Draw(const VRect& area) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  protected:
    void Pushed() override;

  private:
    QLX_Icon mIcon;
    ERole mRole = kRole_None;
    bool mToggles = false;
};

/// A box that is on (1) or off (0); a maximum of 2 adds the mixed state, which only the program
/// sets.
class QLX_API TCheckBox : public TButtonBase {
  public:
    QLX_DECLARE_CLASS(TCheckBox);
    static constexpr std::int32_t kMixed = 2;

    TCheckBox();
    ~TCheckBox() override;

    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;

  protected:
    void Pushed() override;
    [[nodiscard]] VPoint GetTitleMargin() const override;
};

/// One of several choices; belongs to the nearest cluster around it. Arrow keys go through its
/// fellows.
class QLX_API TRadio : public TButtonBase {
  public:
    QLX_DECLARE_CLASS(TRadio);
    TRadio();
    ~TRadio() override;

    void Draw(const VRect& area) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;

  protected:
    void Pushed() override;
    [[nodiscard]] VPoint GetTitleMargin() const override;
};

/// A group of radio buttons of which one is on. Its value is the place of that one, counting from 1
/// in tree order, and 0 for none; the buttons lie in it directly or deeper.
///
/// Properties beside the base's: "Title" (string key or string), drawn over the upper edge.
class QLX_API TCluster : public TControl {
  public:
    QLX_DECLARE_CLASS(TCluster);
    TCluster();
    ~TCluster() override;

    /// The radio buttons in tree order.
    [[nodiscard]] std::vector<TRadio*> GetRadios();
    /// The user chose this one.
    void Choose(TRadio* radio);
    /// Chooses the next enabled button in a direction (+1, -1), from the end back to the start.
    void ChooseNext(TRadio* from, int direction);

    void SetValue(std::int32_t value, bool redraw) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                       TView* view) override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    void ShowChoice(bool redraw);
    std::string mTitle;
};

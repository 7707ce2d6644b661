// The popup: a choice from a list.
#pragma once

#include <memory>
#include <vector>

#include "qlx/views/ucontrol.h"

class TMenu;

/// A choice from a list, shown as a button with the chosen text. Its value is the choice, from 0.
///
/// Properties beside the base's: "Choices" (string key or string: one a line, a line "-" a
/// separator that counts as a place but cannot be chosen).
class QLX_API TPopup : public TControl {
  public:
    QLX_DECLARE_CLASS(TPopup);
    TPopup();
    ~TPopup() override;

    void SetChoices(const std::vector<std::string>& choices, bool redraw);
    [[nodiscard]] const std::vector<std::string>& GetChoices() const { return mChoices; }
    void SetChoiceEnabled(int choice, bool enabled);
    void OpenMenu(TToolboxEvent* press);

    [[nodiscard]] std::string GetValueText() const override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void Free() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    void StepChoice(int direction);
    [[nodiscard]] bool CanChoose(int choice) const;

    std::vector<std::string> mChoices;
    std::vector<bool> mDisabled;
    std::unique_ptr<TMenu> mMenu; // while it is open
};

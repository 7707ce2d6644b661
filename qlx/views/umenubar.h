// The menu bar.
#pragma once

#include "qlx/views/ucontrol.h"

/// The menus of TMenuManager, left to right. F10, or Alt and a title's mnemonic, opens one by key:
/// the window's application sends unhandled keys here (HandleMenuKey).
class QLX_API TMenuBar : public TControl {
  public:
    QLX_DECLARE_CLASS(TMenuBar);
    TMenuBar();
    ~TMenuBar() override;

    [[nodiscard]] VRect GetTitleRect(int menu) const;
    /// The title at a local point; -1 for none.
    [[nodiscard]] int TitleAt(const VPoint& local) const;
    void OpenMenu(int menu);
    /// The menu that is open; -1 when none is.
    [[nodiscard]] int GetOpenMenu() const { return mOpen; }
    void OpenNext(int direction);
    /// Opens the menu whose title has this mnemonic; false when none has.
    bool OpenMnemonic(char32_t letter);
    /// Opens a menu when the key is one of the bar's own; a key equivalent of an enabled item sends
    /// its command. False when the key means nothing here.
    bool HandleMenuKey(TToolboxEvent* event);

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void Free() override;

  private:
    int mOpen = -1;
};

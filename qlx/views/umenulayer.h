// Open menus: the layer over a window on which they are drawn and used.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "qlx/views/umenumanager.h"
#include "qlx/views/uview.h"

class TMenuBar;

/// A key stroke as menus show it: "Ctrl+Shift+Z". Empty for an item without one.
[[nodiscard]] QLX_API std::string QLX_MenuKeyText(const TMenuKey& key);
/// What keys are called in the user's language: "Strg" for "Ctrl", "Eingabe" for "Return". Names
/// that are not there stay as they are. Returns the previous names.
QLX_API std::map<std::string, std::string>
QLX_SetMenuKeyNames(std::map<std::string, std::string> names);
/// Draws the text of a menu, in the middle of a rectangle's height, in the painter's font and
/// colour, its mnemonic underlined.
QLX_API void QLX_DrawMenuText(const TView::PainterPtr& painter, const Cmn_Rect<int>& rect,
                              const TMenuText& text, QLX_Painter::EJustification justification);

/// Where menus are open: a view over the whole of a window that takes every press and key until one
/// item was chosen or the menus are closed (Escape, a press outside, the window going away). The
/// target is asked for nothing and gets its place back. A menu may be used in one drag, or by click
/// and click, or by keys: arrows, Home, End, Return, Space, mnemonics, and the beginning of an
/// item's text.
///
/// One layer at a time; it frees itself.
class QLX_API TMenuLayer : public TView {
  public:
    QLX_DECLARE_CLASS(TMenuLayer);
    /// Hears what was chosen (null: nothing), when everything is closed and the target is back.
    using ChoiceCallback = std::function<void(TMenuItem* chosen)>;

    TMenuLayer();
    ~TMenuLayer() override;

    /// Opens a menu (not owned; to be there until it is closed) below the anchor, or above where
    /// there is no room. The anchor is in window coordinates. Items with a command are brought up
    /// to date first. With initialItem (0 on) that item comes to lie over the anchor, as popups do;
    /// -1 for none. Null, and nothing opened, when the window is not open or the menu shows
    /// nothing.
    static TMenuLayer* Open(TWindow* window, TMenu* menu, const VRect& anchor, int initialItem,
                            ChoiceCallback callback);
    /// The layer that is open; null when none is.
    [[nodiscard]] static TMenuLayer* GetOpen();
    /// Closes everything; nothing is chosen.
    void Close();
    /// Lets a press that opened the menu go on as a drag through it.
    void FollowPress(const VPoint& windowPoint, TToolboxEvent* event);
    /// Set by a menu bar: Left and Right at the outermost menu, and the pointer over it, go there.
    void SetMenuBar(TMenuBar* bar) { mBar = bar; }
    /// Replaces all that is open by another menu.
    void Switch(TMenu* menu, const VRect& anchor);

    /// The menus that are open, outermost first.
    [[nodiscard]] int CountPanels() const { return static_cast<int>(mPanels.size()); }
    [[nodiscard]] VRect GetPanelRect(int panel) const;
    /// The hilited item of a panel; null when there is none.
    [[nodiscard]] TMenuItem* GetHilited(int panel) const;
    /// An item's place in window coordinates; empty when it is in no open panel or scrolled away.
    [[nodiscard]] VRect GetItemRect(const TMenuItem* item) const;

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoOtherButton(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoMouseMove(const VPoint& local, TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    bool DoTextInput(const std::string& text) override;
    bool WantsToBeTarget() override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    [[nodiscard]] TObject* Clone() override;
    void Free() override;

  private:
    friend class TMenuTracker;
    struct Panel {
        TMenu* mMenu; // not owned
        std::vector<TMenuItem*> mItems;
        std::vector<std::string> mKeys; // the texts of their keys
        VRect mRect;
        int mHilited = -1;
        VCoordinate mScroll = 0; // how far the items are moved up
    };

    void PushPanel(TMenu* menu, const VRect& anchor, bool beside, int initialItem);
    void PopPanelsAbove(int panel);
    /// A menu that may be open has changed, or goes away now.
    void MenuChanged(const TMenu* menu, bool gone);
    void RefreshPanel(int panel);
    void RefreshKeys();
    [[nodiscard]] VRect PlacePanel(const Panel& panel, const VRect& anchor, bool beside,
                                   int initialItem) const;
    [[nodiscard]] VPoint MeasurePanel(const Panel& panel) const;
    [[nodiscard]] VRect GetItemRect(const Panel& panel, int item) const;
    [[nodiscard]] bool HitTest(const VPoint& local, int& panel, int& item) const;
    void Hilite(int panel, int item, bool openSubmenu);
    void Step(int direction);
    void GoTo(int from, int direction);
    void HoverAt(const VPoint& local);
    void Choose(int panel, int item);
    void TypeAhead(const std::string& typed);
    [[nodiscard]] bool ChooseMnemonic(char32_t letter);
    void ScrollPanel(Panel& panel, VCoordinate scroll);
    void Finish(TMenuItem* chosen);
    void DrawPanel(const Panel& panel, const VRect& area);
    void DrawItem(const Panel& panel, int item);

    std::vector<Panel> mPanels;
    ChoiceCallback mCallback;
    TMenuBar* mBar = nullptr; // not owned
    std::string mTyped;
    double mTypedAt = 0; // seconds
    bool mFinished = false;
};

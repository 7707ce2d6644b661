// Tabs: a row of titles over pages of which one is shown.
#pragma once

#include <vector>

#include "qlx/views/ucontrol.h"

/// Every subview is a page; the value is the place of the shown one, from 0. A page's title is its
/// accessible name, or the n-th of the titles set here. Arrow keys, Home and End choose while the
/// tabs are the target; Ctrl+Tab and Ctrl+Shift+Tab choose from anywhere inside.
///
/// Properties beside the base's: "Titles" (string key or string: one a line).
class QLX_API TTabs : public TControl {
  public:
    QLX_DECLARE_CLASS(TTabs);
    static constexpr int kRowHeight = 26; ///< logical pixels

    TTabs();
    ~TTabs() override;

    void SetTitles(const std::vector<std::string>& titles, bool redraw);
    [[nodiscard]] int CountPages() const;
    /// A title's place in the row, in local coordinates.
    [[nodiscard]] VRect GetTab(int page) const;

    void SetValue(std::int32_t value, bool redraw) override;
    [[nodiscard]] std::string GetValueText() const override;
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    void AddedASubView(TView* sub) override;
    void RemovedASubView(TView* sub) override;
    void Draw(const VRect& area) override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                       TView* view) override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    [[nodiscard]] const std::string& GetTitle(int page) const;
    void ShowPage(bool redraw);
    void Step(int direction);

    std::vector<std::string> mTitles;
};

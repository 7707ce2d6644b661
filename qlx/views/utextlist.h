// A list of text rows that come from a callback, so that a million rows cost nothing.
#pragma once

#include "qlx/views/ucontrol.h"
#include "qlx/views/urowselection.h"

class TEditText;

/// Rows of one line each. The view is as high as all its rows; put it into a TScroller to show a
/// part. Its value is the focus row (-1: none). Click, Shift and Ctrl select as in every list;
/// typing goes to the next row that begins with what was typed; Return and a double click announce
/// kControlEvent_Pressed; a changed selection announces kControlEvent_ValueChanged.
///
/// Properties beside the base's: "Multiple" (bool: several rows may be selected), "RowHeight"
/// (int32, logical pixels; the font's line height and 4 unless set), "Striped" (bool), "Rows"
/// (string key or string: fixed rows, one a line).
class QLX_API TTextList : public TControl {
  public:
    QLX_DECLARE_CLASS(TTextList);
    /// The text of a row, counting from 0. Called only for rows that are drawn or searched.
    using RowTextCallback = std::function<std::string(std::int64_t row)>;
    /// The first row at or after one (wrapping around) whose text begins with what was typed; -1
    /// for none. For hosts that know better than asking for every text, which is done for a million
    /// rows at most.
    using FindCallback = std::function<std::int64_t(std::int64_t from, const std::string& typed)>;
    /// Takes a row's new text over; false refuses it.
    using EditCallback = std::function<bool(std::int64_t row, const std::string& text)>;

    TTextList();
    ~TTextList() override;

    /// Also sizes the view. Rows beyond the new count leave the selection.
    void SetRows(std::int64_t count, RowTextCallback rowText);
    void SetFindCallback(FindCallback find);
    /// Lets the user edit rows in place; an empty function ends that. F2, or a click on the one row
    /// that is selected already, opens a field over the row. Return and leaving the field give the
    /// text to the callback, Escape gives it up. A text that is refused stays in the field, with
    /// the theme's error colour, after Return, and is given up when the field is left.
    void SetEditCallback(EditCallback edit);
    /// Opens the field over a row. False when rows are not edited here or there is no such row.
    bool EditRow(std::int64_t row);
    /// Closes the field; nothing happens when none is open. With keep the text is given to the
    /// callback first; false when that refuses it and orGiveUp is not set, so the field stays.
    bool EndEditing(bool keep, bool orGiveUp);
    /// The row that is being edited; -1 for none.
    [[nodiscard]] std::int64_t GetEditedRow() const { return mEditor ? mEditedRow : -1; }
    [[nodiscard]] TEditText* GetEditor() const { return mEditor; }
    [[nodiscard]] std::int64_t GetRowCount() const { return mRowCount; }
    [[nodiscard]] std::string GetRowText(std::int64_t row) const;
    /// Draws a row again whose text has changed.
    void RowChanged(std::int64_t row);

    [[nodiscard]] int GetRowHeight() const;
    /// Local coordinates.
    [[nodiscard]] VRect GetRowRect(std::int64_t row) const;
    /// The row at a local place; -1 when there is none.
    [[nodiscard]] std::int64_t RowAt(const VPoint& local) const;
    /// Rows drawn since the view was made: what tests count.
    [[nodiscard]] std::uint64_t GetDrawnRows() const { return mDrawnRows; }

    void SetMultiple(bool multiple) { mMultiple = multiple; }
    [[nodiscard]] const QLX_RowSelection& GetSelection() const { return mSelection; }
    void SetSelection(const QLX_RowSelection& selection, bool redraw);
    [[nodiscard]] std::int64_t GetFocusRow() const { return mFocusRow; }
    /// What the user does: goes to a row, extending the selection from the anchor or replacing it.
    void GoToRow(std::int64_t row, bool extend);

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    void RemovedASubView(TView* sub) override;
    void SuperViewChangedSize(const VPoint& oldSize, const VPoint& newSize, bool redraw) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    void DoKeySelection(const std::string& typed) override;
    void Draw(const VRect& area) override;
    [[nodiscard]] std::string GetValueText() const override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void ResignedTarget() override;
    [[nodiscard]] TObject* Clone() override;
    void Free() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    friend class TListTracker;
    void InvalidateRows(std::int64_t first, std::int64_t end);
    void InvalidateDifference(const QLX_RowSelection& before);
    /// Selects for a press or drag at a row; toggling starts from the selection at the press.
    void SelectTo(std::int64_t row, bool toggle, const QLX_RowSelection& atPress);
    void Reveal(std::int64_t row);
    void Announce(const QLX_RowSelection& before);
    [[nodiscard]] std::int64_t FindRow(std::int64_t from, const std::string& typed) const;
    void FitHeight();
    void DrawRow(std::int64_t row);
    void AwaitEditing(std::int64_t row);
    void StopAwaiting();

    std::int64_t mRowCount = 0;
    RowTextCallback mRowText;
    FindCallback mFind;
    QLX_RowSelection mSelection;
    std::int64_t mFocusRow = -1;
    std::int64_t mAnchorRow = 0;
    int mRowHeight = 0; // 0: from the font
    bool mMultiple = false;
    bool mStriped = true;
    std::string mTyped;
    double mTypedAt = 0; // seconds
    std::uint64_t mDrawnRows = 0;
    EditCallback mEdit;
    TEditText* mEditor = nullptr; // a subview while a row is edited
    std::int64_t mEditedRow = -1;
    std::uint32_t mEditTimer = 0; // of a click that may open the field; 0: none
};

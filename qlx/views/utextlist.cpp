#include "qlx/views/utextlist.h"

#include <algorithm>
#include <utility>

#include "basekit/sys/sys_clock.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TTextList, TControl)

namespace {

constexpr double kTypeAheadSeconds = 1.0;
constexpr double kEditClickSeconds = 0.6;         // longer than a double click may take
constexpr std::int64_t kMostSearched = 1'000'000; // rows asked for one key; a moment's work
constexpr std::uint32_t kKey_F2 = kDAW_Key_F1 + 1;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; }

bool BeginsWith(const std::string& text, const std::string& typed) {
    return text.size() >= typed.size() &&
           std::equal(typed.begin(), typed.end(), text.begin(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

void AppendUTF8(std::string& text, std::uint32_t character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (character >> 18 & 0x07));
        text += static_cast<char>(0x80 | (character >> 12 & 0x3F));
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
}

} // namespace

/// Selects while dragging; scrolls along when the pointer leaves what is visible.
class TListTracker : public TTracker {
  public:
    TListTracker(bool toggle, std::int64_t mayEdit) : mToggle(toggle), mMayEdit(mayEdit) {
        SetRepeat(0.05);
        SetHysteresis(2);
    }

    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* list = static_cast<TTextList*>(GetView());
        if (!list || list->GetRowCount() == 0)
            return;
        if (phase == kTrack_Begin)
            mBefore = list->GetSelection();
        if (phase == kTrack_Cancel)
            return list->SetSelection(mBefore, /*redraw*/ true);
        const std::int64_t row = std::clamp<std::int64_t>(
            (next.v - list->GetExtent().Top()) / list->GetRowHeight(), 0, list->GetRowCount() - 1);
        list->SelectTo(row, mToggle, mBefore);
        if (phase != kTrack_End)
            return;
        if (mMayEdit >= 0 && !HasMoved())
            list->AwaitEditing(mMayEdit);
        list->Announce(mBefore);
    }

  private:
    bool mToggle;
    std::int64_t mMayEdit; // the row that a click without a drag edits; -1: none
    QLX_RowSelection mBefore;
};

/// The field over a row that is edited.
class TRowEditor : public TEditText {
  public:
    explicit TRowEditor(TTextList* list) : mList(list) {}

    void DoKeyEvent(TToolboxEvent* event) override {
        const StDispatch dispatch; // the list frees this field
        const std::uint32_t key = event->mKeyCode;
        const bool composes = !GetComposition().empty();
        if (key == kDAW_Key_Escape && !composes) {
            mList->EndEditing(/*keep*/ false, /*orGiveUp*/ true);
        } else if ((key == kDAW_Key_Return || key == kDAW_Key_Enter) && !composes) {
            if (!mList->EndEditing(/*keep*/ true, /*orGiveUp*/ false))
                ValidationFailed(1);
        } else {
            TEditText::DoKeyEvent(event);
        }
    }
    void ResignedTarget() override {
        const StDispatch dispatch;
        TEditText::ResignedTarget();
        if (mList->GetEditor() == this)
            mList->EndEditing(/*keep*/ true, /*orGiveUp*/ true);
    }

  private:
    TTextList* mList; // not owned: the superview
};

TTextList::TTextList() {
    SetRange(-1, INT32_MAX, /*redraw*/ false);
    SetValue(-1, /*redraw*/ false);
}

TTextList::~TTextList() { StopAwaiting(); }

TObject* TTextList::Clone() {
    auto* copy = static_cast<TTextList*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mRowText, mRowText);
    CopyMember(copy->mFind, mFind);
    CopyMember(copy->mSelection, mSelection);
    CopyMember(copy->mTyped, mTyped);
    CopyMember(copy->mEdit, mEdit);
    copy->mEditor = nullptr;
    copy->mEditTimer = 0;
    return copy;
}

void TTextList::Free() {
    StopAwaiting();
    EndEditing(/*keep*/ false, /*orGiveUp*/ true);
    TControl::Free();
}

// Rows

void TTextList::SetRows(std::int64_t count, RowTextCallback rowText) {
    StopAwaiting();
    EndEditing(/*keep*/ false, /*orGiveUp*/ true);
    mRowCount = std::max<std::int64_t>(0, count);
    mRowText = std::move(rowText);
    mSelection.Remove(mRowCount, INT64_MAX);
    mFocusRow = std::min(mFocusRow, mRowCount - 1);
    mAnchorRow = std::clamp<std::int64_t>(mAnchorRow, 0, std::max<std::int64_t>(0, mRowCount - 1));
    FitHeight();
    ForceRedraw();
}

void TTextList::SetFindCallback(FindCallback find) { mFind = std::move(find); }

std::string TTextList::GetRowText(std::int64_t row) const {
    return mRowText && row >= 0 && row < mRowCount ? mRowText(row) : std::string();
}

void TTextList::RowChanged(std::int64_t row) { InvalidateRows(row, row + 1); }

int TTextList::GetRowHeight() const {
    return mRowHeight > 0 ? mRowHeight : GetControlFont().GetMetrics().GetLineHeight() + 4;
}

void TTextList::FitHeight() {
    TScroller* scroller = TScroller::Around(this);
    if (!scroller)
        return;
    VRect frame = GetFrame();
    frame.Bottom() = frame.Top() + mRowCount * GetRowHeight();
    // Rows scroll up and down, never sideways: they are as wide as what is beside the bar.
    const VPoint room = scroller->GetSize();
    const bool needsBar = frame.GetHeight() > room.v;
    frame.Right() = frame.Left() + room.h - (needsBar ? TScrollBar::kThickness : 0);
    SetFrame(frame, /*redraw*/ true, /*layOut*/ true); // rows may leave places empty
    scroller->ContentChanged(/*redraw*/ true);
}

void TTextList::SuperViewChangedSize(const VPoint& oldSize, const VPoint& newSize, bool redraw) {
    TControl::SuperViewChangedSize(oldSize, newSize, redraw);
    FitHeight();
}

VRect TTextList::GetRowRect(std::int64_t row) const {
    VRect rect = GetExtent();
    rect.Top() += row * GetRowHeight();
    rect.Bottom() = rect.Top() + GetRowHeight();
    return rect;
}

std::int64_t TTextList::RowAt(const VPoint& local) const {
    const VCoordinate from = local.v - GetExtent().Top();
    const std::int64_t row = from / GetRowHeight();
    return from >= 0 && row < mRowCount ? row : -1;
}

void TTextList::InvalidateRows(std::int64_t first, std::int64_t end) {
    if (first < end)
        InvalidateVRect(GetRowRect(first) | GetRowRect(end - 1));
}

void TTextList::Reveal(std::int64_t row) {
    if (TScroller* scroller = TScroller::Around(this)) {
        VRect rect = GetRowRect(row);
        rect.Right() = rect.Left(); // rows scroll up and down, never sideways
        scroller->RevealInContent(rect);
    }
}

// Selection

void TTextList::SetSelection(const QLX_RowSelection& selection, bool redraw) {
    const QLX_RowSelection before = mSelection;
    mSelection = selection;
    mSelection.Remove(mRowCount, INT64_MAX);
    if (redraw)
        InvalidateDifference(before);
}

void TTextList::InvalidateDifference(const QLX_RowSelection& before) {
    if (before == mSelection)
        return;
    // Only what is in one of both and not in the other looks different.
    QLX_RowSelection gone = before;
    for (const auto& range : mSelection.GetRanges())
        gone.Remove(range.mFirst, range.mEnd);
    QLX_RowSelection come = mSelection;
    for (const auto& range : before.GetRanges())
        come.Remove(range.mFirst, range.mEnd);
    for (const QLX_RowSelection* changed : {&gone, &come})
        for (const auto& range : changed->GetRanges())
            InvalidateRows(range.mFirst, range.mEnd);
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

void TTextList::Announce(const QLX_RowSelection& before) {
    if (!(before == mSelection))
        NotifyChange(kControlEvent_ValueChanged);
}

void TTextList::SelectTo(std::int64_t row, bool toggle, const QLX_RowSelection& atPress) {
    const QLX_RowSelection before = mSelection;
    const std::int64_t first = mMultiple ? std::min(row, mAnchorRow) : row;
    const std::int64_t end = (mMultiple ? std::max(row, mAnchorRow) : row) + 1;
    if (toggle && mMultiple) {
        mSelection = atPress;
        if (atPress.Contains(mAnchorRow))
            mSelection.Remove(first, end);
        else
            mSelection.Add(first, end);
    } else {
        mSelection.Set(first, end);
    }
    InvalidateRows(mFocusRow, mFocusRow + (mFocusRow >= 0));
    mFocusRow = row;
    InvalidateRows(row, row + 1);
    TControl::SetValue(Cmn_ClampTo<std::int32_t>(row), /*redraw*/ false);
    InvalidateDifference(before);
    Reveal(row);
}

void TTextList::GoToRow(std::int64_t row, bool extend) {
    if (mRowCount == 0)
        return;
    const QLX_RowSelection before = mSelection;
    const std::int64_t held = std::clamp<std::int64_t>(row, 0, mRowCount - 1);
    if (!extend || !mMultiple)
        mAnchorRow = held;
    SelectTo(held, /*toggle*/ false, before);
    Announce(before);
}

// Editing in place

void TTextList::SetEditCallback(EditCallback edit) { mEdit = std::move(edit); }

bool TTextList::EditRow(std::int64_t row) {
    StopAwaiting();
    if (!mEdit || !IsEnabled() || row < 0 || row >= mRowCount)
        return false;
    const StDispatch dispatch; // the text of another row may be taken over first
    EndEditing(/*keep*/ true, /*orGiveUp*/ true);
    if (row >= mRowCount)
        return false;
    Reveal(row);
    mEditedRow = row;
    auto* editor = new TRowEditor(this);
    mEditor = editor;
    editor->SetText(GetRowText(row), /*redraw*/ false);
    editor->SelectAll();
    editor->IView(this, GetRowRect(row));
    return editor->BecomeTarget();
}

bool TTextList::EndEditing(bool keep, bool orGiveUp) {
    TEditText* const editor = mEditor;
    if (!editor)
        return true;
    const StDispatch dispatch; // the callback may free the list
    const std::int64_t row = mEditedRow;
    mEditor = nullptr; // what the callback does ends nothing twice
    const EditCallback edit = mEdit;
    const std::string text = editor->GetText();
    const bool changed = text != GetRowText(row);
    if (keep && changed && edit && !edit(row, text) && !orGiveUp) {
        if (editor->GetSuperView() == this)
            mEditor = editor;
        return false;
    }
    if (editor->GetSuperView() != this)
        return true; // freed with the list
    const bool wasTarget = editor->IsTarget();
    editor->Free();
    InvalidateRows(row, row + 1);
    if (wasTarget && WantsToBeTarget())
        BecomeTarget();
    return true;
}

void TTextList::RemovedASubView(TView* sub) {
    if (sub == mEditor)
        mEditor = nullptr;
    TControl::RemovedASubView(sub);
}

void TTextList::AwaitEditing(std::int64_t row) {
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    if (!loop)
        return;
    StopAwaiting();
    mEditTimer = loop->StartTimer(kEditClickSeconds, 0, [this, row] {
        const StDispatch dispatch;
        mEditTimer = 0;
        if (mSelection.Count() == 1 && mSelection.Contains(row) && IsTarget())
            EditRow(row);
    });
}

void TTextList::StopAwaiting() {
    if (const std::uint32_t timer = std::exchange(mEditTimer, 0))
        if (QLX_EventLoop* loop = QLX_EventLoop::Get())
            loop->StopTimer(timer);
}

void TTextList::ResignedTarget() {
    StopAwaiting();
    TControl::ResignedTarget();
}

// Events

bool TTextList::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled())
        return true;
    StopAwaiting();
    const bool wasTarget = IsTarget();
    if (WantsToBeTarget() && !BecomeTarget())
        return true;
    const std::int64_t row = RowAt(local);
    if (row < 0)
        return true;
    if (QLX_GetClickCount(event) == 2 && mSelection.Contains(row)) {
        NotifyChange(kControlEvent_Pressed);
        return true;
    }
    const bool toggle = event && event->IsCommandKeyPressed();
    const bool extend = event && event->IsShiftKeyPressed() && mMultiple;
    if (!extend)
        mAnchorRow = row;
    const bool mayEdit = mEdit && wasTarget && !toggle && !extend && mSelection.Count() == 1 &&
                         mSelection.Contains(row);
    return BeginTracking(new TListTracker(toggle, mayEdit ? row : -1), local, event);
}

void TTextList::DoKeyEvent(TToolboxEvent* event) {
    if (!IsEnabled() || mRowCount == 0)
        return TControl::DoKeyEvent(event);
    const bool extend = event->IsShiftKeyPressed();
    const TScroller* scroller = TScroller::Around(this);
    const VCoordinate visible =
        scroller ? const_cast<TScroller*>(scroller)->GetViewport().GetHeight() : GetSize().v;
    const std::int64_t page = std::max<std::int64_t>(1, visible / GetRowHeight() - 1);
    switch (event->mKeyCode) {
    case kDAW_Key_Up:
        return GoToRow(mFocusRow - 1, extend);
    case kDAW_Key_Down:
        return GoToRow(mFocusRow + 1, extend);
    case kDAW_Key_PageUp:
        return GoToRow(mFocusRow - page, extend);
    case kDAW_Key_PageDown:
        return GoToRow(mFocusRow + page, extend);
    case kDAW_Key_Home:
        return GoToRow(0, extend);
    case kDAW_Key_End:
        return GoToRow(mRowCount - 1, extend);
    case kKey_F2:
        if (EditRow(mFocusRow))
            return;
        break;
    case kDAW_Key_Return:
    case kDAW_Key_Enter:
        if (mFocusRow >= 0)
            return NotifyChange(kControlEvent_Pressed);
        break;
    default:
        break;
    }
    const std::uint32_t character = event->mCharacterCode;
    const double now = Sys_Clock_Seconds();
    const bool goesOn = now - mTypedAt < kTypeAheadSeconds;
    if (character < ' ' || character == 127 || character >= 0x110000 ||
        (character == ' ' && !(goesOn && !mTyped.empty())))
        return TControl::DoKeyEvent(event);
    if (!goesOn)
        mTyped.clear();
    mTypedAt = now;
    AppendUTF8(mTyped, character);
    DoKeySelection(mTyped);
}

void TTextList::DoCommandKeyEvent(TToolboxEvent* event) {
    const std::uint32_t character = event->mCharacterCode;
    if (!mMultiple || !IsEnabled() || (character != 'a' && character != 'A' && character != 1))
        return TControl::DoCommandKeyEvent(event);
    const QLX_RowSelection before = mSelection;
    mSelection.Set(0, mRowCount);
    InvalidateDifference(before);
    Announce(before);
}

void TTextList::DoKeySelection(const std::string& typed) {
    // A longer text may still fit the row where the search stands; a first letter goes on to the
    // next.
    const std::int64_t from = std::max<std::int64_t>(0, mFocusRow + (typed.size() == 1 ? 1 : 0));
    const std::int64_t row = FindRow(from, typed);
    if (row >= 0)
        GoToRow(row, /*extend*/ false);
}

std::int64_t TTextList::FindRow(std::int64_t from, const std::string& typed) const {
    if (mFind)
        return mFind(from, typed);
    for (std::int64_t i = 0; i < std::min(mRowCount, kMostSearched); ++i) {
        const std::int64_t row = (from + i) % mRowCount;
        if (BeginsWith(GetRowText(row), typed))
            return row;
    }
    return -1;
}

// Drawing

void TTextList::DrawRow(std::int64_t row) {
    const PainterPtr& painter = GetPainter();
    const VRect rect = GetRowRect(row);
    const bool selected = mSelection.Contains(row);
    const EThemeColor ground = selected && !IsEnabled() ? kThemeColor_ControlPressed
                               : selected               ? kThemeColor_Highlight
                               : mStriped && row % 2    ? kThemeColor_ListAlternate
                                                        : kThemeColor_ListBackground;
    painter->SetForegroundColor(GetControlColor(ground));
    painter->FillRect(rect);
    VRect text = rect;
    text.Inset(VPoint(6, 0));
    painter->SetForegroundColor(
        GetTextColor(selected ? kThemeColor_HighlightText : kThemeColor_ListText));
    painter->DrawSingleLineTextBox(text, GetRowText(row), /*ellipsis*/ true, nullptr);
    if (row == mFocusRow && ShowsFocus()) {
        painter->SetForegroundColor(GetControlColor(kThemeColor_FocusRing));
        painter->DrawRect(rect);
    }
    ++mDrawnRows;
}

void TTextList::Draw(const VRect& area) {
    const VRect extent = GetExtent();
    const VRect part = extent & area;
    if (part.Empty())
        return;
    const int rowHeight = GetRowHeight();
    const std::int64_t first = (part.Top() - extent.Top()) / rowHeight;
    const std::int64_t end = std::min<std::int64_t>(
        mRowCount, (part.Bottom() - extent.Top() + rowHeight - 1) / rowHeight);
    for (std::int64_t row = first; row < end; ++row)
        DrawRow(row);
    const VRect rest(part.Left(), std::max(part.Top(), extent.Top() + mRowCount * rowHeight),
                     part.Right(), part.Bottom());
    if (!rest.Empty()) {
        GetPainter()->SetForegroundColor(GetControlColor(kThemeColor_ListBackground));
        GetPainter()->FillRect(rest);
    }
}

// Description and accessibility

std::string TTextList::GetValueText() const { return GetRowText(mFocusRow); }

void TTextList::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "listbox";
}

void TTextList::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    container->GetBoolProperty("Multiple", mMultiple);
    container->GetBoolProperty("Striped", mStriped);
    std::int32_t height = mRowHeight;
    if (container->GetInt32Property("RowHeight", height))
        mRowHeight = std::clamp(height, 0, 1000);
    std::string text;
    if (!ReadText(container, memento, "Rows", text))
        return;
    std::vector<std::string> rows;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        rows.push_back(text.substr(from, to - from));
        from = to + 1;
    }
    const auto count = static_cast<std::int64_t>(rows.size());
    SetRows(count, [rows = std::move(rows)](std::int64_t row) {
        return rows[static_cast<std::size_t>(row)];
    });
}

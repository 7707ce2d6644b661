#include "qlx/views/uedittext.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "basekit/sys/sys_clock.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/imaging/qlx_utf8.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/utracker.h"
#include "qlx/views/utypingcommand.h"

QLX_DEFINE_CLASS(TEditText, TControl)

namespace {

constexpr int kMargin = 6;                // around the text, logical pixels
constexpr int kCornerRadius = 3;          // of the frame
constexpr int kEdge = 3;                  // the frame and the focus ring are no wider
constexpr int kInkBeyond = 3;             // letters may reach this far out of their place
constexpr std::uint32_t kBlinkTicks = 32; // half a blink of the caret
constexpr std::int32_t kRefusal_Invalid = 1;
constexpr std::size_t kMostPasted = 16u << 20; // bytes; more than any name or comment

char LetterOf(TToolboxEvent* event) {
    const std::uint32_t character = event->mCharacterCode;
    if (character >= 1 && character <= 26) // platforms may give control characters with Ctrl
        return static_cast<char>('a' + character - 1);
    if (character >= 'A' && character <= 'Z')
        return static_cast<char>(character - 'A' + 'a');
    return character < 128 ? static_cast<char>(character) : '\0';
}

std::string AsUTF8(std::uint32_t code) {
    if (code < 0x80)
        return {static_cast<char>(code)};
    if (code < 0x800)
        return {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
    if (code < 0x10000)
        return {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                static_cast<char>(0x80 | (code & 0x3F))};
    return {static_cast<char>(0xF0 | code >> 18), static_cast<char>(0x80 | (code >> 12 & 0x3F)),
            static_cast<char>(0x80 | (code >> 6 & 0x3F)), static_cast<char>(0x80 | (code & 0x3F))};
}

} // namespace

/// Selects by dragging: by characters, by words after a double click, by lines after a triple one.
class TTextTracker : public TTracker {
  public:
    TTextTracker(std::size_t anchorFrom, std::size_t anchorTo, int clicks)
        : mFrom(anchorFrom), mTo(anchorTo), mClicks(clicks) {
        SetRepeat(0.05);
    }

    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* field = static_cast<TEditText*>(GetView());
        if (!field || phase != kTrack_Continue)
            return;
        const std::size_t offset = field->OffsetAt(next);
        const QLX_TextEditing& text = field->GetEditing();
        const auto [start, end] = mClicks == 2 ? text.GetWordAt(offset)
                                  : mClicks >= 3
                                      ? std::pair(text.LineStart(offset), text.LineEnd(offset))
                                      : std::pair(offset, offset);
        if (start < mFrom)
            field->Select(mTo, start);
        else
            field->Select(mFrom, std::max(mTo, end));
    }

  private:
    std::size_t mFrom;
    std::size_t mTo;
    int mClicks;
};

TEditText::TEditText() { SetCursor(kCursor_IBeam); }

TEditText::~TEditText() = default;

TObject* TEditText::Clone() {
    auto* copy = static_cast<TEditText*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mEditing, mEditing);
    CopyMember(copy->mPlaceholder, mPlaceholder);
    CopyMember(copy->mComposition, mComposition);
    CopyMember(copy->mShown, mShown);
    CopyMember(copy->mValidator, mValidator);
    CopyMember(copy->mLines, mLines);
    copy->mTyping = nullptr;
    return copy;
}

// Text

void TEditText::SetText(const std::string& text, bool redraw) {
    CommitLastCommand();
    mTyping = nullptr;
    mComposition.clear();
    mShown.clear();
    mEditing.SetText(text);
    mLayoutValid = false;
    mScroll = VPoint();
    mChangedSinceTarget = false;
    if (redraw)
        ForceRedraw();
    AccessibilityNotification(kAccessibility_TextChanged, nullptr);
}

void TEditText::SetPlaceholder(const std::string& text, bool redraw) {
    mPlaceholder = text;
    if (redraw)
        ForceRedraw();
}

void TEditText::SetMultiline(bool multiline, bool redraw) {
    mEditing.SetMultiline(multiline);
    mLayoutValid = false;
    if (redraw)
        ForceRedraw();
}

void TEditText::SetValidator(Validator validator) { mValidator = std::move(validator); }

bool TEditText::IsValid() const { return !mValidator || mValidator(GetText()); }

void TEditText::BeginTyping(const QLX_TextEditing& before) {
    if (mTyping)
        return;
    auto* command = new TTypingCommand;
    command->ITypingCommand(this, before);
    PerformCommand(command); // commits what was typed before the last undo
    mTyping = command;
}

// The text from before is copied by the first change of a run of typing only.
void TEditText::Change(const std::function<bool(QLX_TextEditing&)>& change) {
    const StDispatch dispatch; // whoever hears of it may free the field
    SetComposition({}, 0);
    std::optional<QLX_TextEditing> copied;
    if (!mTyping)
        copied = mEditing;
    const Look before = GetLook();
    const bool changed = change(mEditing);
    mWantedPlace = -1;
    if (!changed)
        return SelectionMoved(before);
    const QLX_TextEditing::Replaced& replaced = mEditing.GetLastReplaced();
    const QLX_TextLines::Change lines =
        mLines.Replace(GetText(), replaced.mFrom, replaced.mRemoved, replaced.mInserted);
    if (copied)
        BeginTyping(*copied);
    const bool showedError = std::exchange(mShowsError, mShowsError && !IsValid());
    SelectionMoved(before);
    if (showedError != mShowsError || (before.mEmpty != GetText().empty() && !mPlaceholder.empty()))
        ForceRedraw();
    else
        InvalidateChange(lines, replaced.mFrom);
    Announce();
}

// The text is another one altogether.
void TEditText::Edited() {
    const StDispatch dispatch;
    mComposition.clear();
    mShown.clear();
    mLayoutValid = false;
    mWantedPlace = -1;
    mShowsError = mShowsError && !IsValid();
    SelectionMoved(GetLook());
    ForceRedraw();
    Announce();
}

void TEditText::Announce() {
    mChangedSinceTarget = true;
    AccessibilityNotification(kAccessibility_TextChanged, nullptr);
    NotifyChange(kControlEvent_ValueChanging);
}

// What is to be drawn

TEditText::Look TEditText::GetLook() {
    return {mEditing.GetAnchor(), mEditing.GetCaret(), CaretRect(mEditing.GetCaret()), mScroll,
            GetText().empty()};
}

void TEditText::InvalidateFrom(const Look& before) {
    if (mScroll != before.mScroll)
        return ForceRedraw();
    InvalidateVRect(before.mCaretRect);
    InvalidateVRect(CaretRect(mEditing.GetCaret()));
    if (before.mAnchor == before.mCaret && !mEditing.HasSelection())
        return;
    if (before.mAnchor == mEditing.GetAnchor())
        return InvalidateOffsets(before.mCaret, mEditing.GetCaret());
    InvalidateOffsets(before.mAnchor, before.mCaret);
    InvalidateOffsets(mEditing.GetAnchor(), mEditing.GetCaret());
}

void TEditText::InvalidateOffsets(std::size_t a, std::size_t b) {
    if (a == b)
        return;
    const std::size_t from = std::min(a, b);
    InvalidateLines(LineOf(from), LineOf(std::min(std::max(a, b), GetText().size())) + 1, from);
}

// Where lines were added or taken away, all that stand below have moved.
void TEditText::InvalidateChange(const QLX_TextLines::Change& lines, std::size_t from) {
    const auto rows = static_cast<std::size_t>(GetExtent().GetHeight() / GetLineHeight());
    InvalidateLines(lines.mFirst,
                    lines.mMoved == 0 ? lines.mBehind
                                      : std::max(mLines.Count(), lines.mFirst + rows) + 1,
                    from);
}

// Lines from one up to another one; of the first, what stands behind an offset. Where a line does
// not simply run from the left, a letter may move all others.
void TEditText::InvalidateLines(std::size_t first, std::size_t behind, std::size_t from) {
    LayOutIfNeeded();
    const VRect area = GetTextArea();
    VRect rows(area.Left(), LineTop(first) - kInkBeyond, area.Right(),
               LineTop(behind) + kInkBeyond);
    rows &= area; // texts are not drawn outside of it
    first = std::min(first, mLines.Count() - 1);
    const std::string_view text = TextOf(first);
    const bool plain = mJustification == QLX_Painter::kJustify_Left &&
                       std::all_of(text.begin(), text.end(), [](char c) {
                           return static_cast<unsigned char>(c) < 0xCC; // nothing joins or turns
                       });
    if (plain && mComposition.empty() && from > mLines.Begin(first)) {
        const std::size_t end = mLines.End(first, GetText());
        const VCoordinate left =
            CaretRect(mEditing.PreviousCharacter(std::min(from, end))).Left() - kInkBeyond;
        if (behind <= first + 1) {
            rows.Left() = std::max(rows.Left(), left);
        } else {
            InvalidateVRect(VRect(std::max(rows.Left(), left), rows.Top(), rows.Right(),
                                  LineTop(first + 1) + kInkBeyond) &
                            rows);
            rows.Top() = std::max(rows.Top(), LineTop(first + 1) - kInkBeyond);
        }
    }
    InvalidateVRect(rows);
}

// Selection

void TEditText::SelectionMoved(const Look& before) {
    ShowCaret();
    RevealCaret();
    InvalidateFrom(before);
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

void TEditText::Select(std::size_t anchor, std::size_t caret) {
    SetComposition({}, 0);
    const Look before = GetLook();
    mEditing.Select(anchor, caret);
    SelectionMoved(before);
}

void TEditText::SelectAll() { Select(0, GetText().size()); }

// Layout

VRect TEditText::GetTextArea() const {
    VRect area = GetExtent();
    const VCoordinate spare = (area.GetHeight() - GetLineHeight()) / 2;
    area.Inset(VPoint(kMargin,
                      mEditing.IsMultiline() ? kMargin : std::clamp<VCoordinate>(spare, 0, kEdge)));
    return area;
}

void TEditText::LayOutIfNeeded() {
    if (mLayoutValid)
        return;
    mLayoutValid = true;
    if (mEditing.IsMultiline())
        mLines.LayOut(Shown(), GetControlFont(), static_cast<float>(GetTextArea().GetWidth()));
    else
        mLines.LayOutAsOneLine();
}

std::size_t TEditText::LineOf(std::size_t offset) {
    LayOutIfNeeded();
    return mLines.LineOf(offset);
}

int TEditText::GetLineHeight() const { return GetControlFont().GetMetrics().GetLineHeight(); }

VCoordinate TEditText::LineTop(std::size_t line) const {
    const VRect area = GetTextArea();
    const int height = GetLineHeight();
    if (mEditing.IsMultiline())
        return area.Top() - mScroll.v + static_cast<VCoordinate>(line) * height;
    return area.Top() + (area.GetHeight() - height) / 2 + static_cast<VCoordinate>(line) * height;
}

double TEditText::LineLeft(std::size_t line) {
    const VRect area = GetTextArea();
    const std::string_view text = TextOf(line);
    const double left = static_cast<double>(area.Left() - mScroll.h);
    // Left stands for where reading begins.
    const bool atRight =
        mJustification == QLX_Painter::kJustify_Right ||
        (mJustification == QLX_Painter::kJustify_Left && QLX_TextCarets::Get().RunsToTheLeft(text));
    if (mJustification == QLX_Painter::kJustify_Left && !atRight)
        return left;
    const auto width =
        static_cast<double>(QLX_TextMeasure::Get().MeasureWidth(GetControlFont(), text));
    const double spare = static_cast<double>(area.GetWidth()) - width;
    if (spare <= 0)
        return left;
    return left + (atRight ? spare : spare / 2);
}

VRect TEditText::CaretRect(std::size_t textOffset) {
    const std::size_t offset = ToShown(textOffset);
    const std::size_t line = LineOf(offset);
    const VCoordinate top = LineTop(line);
    const std::string_view text = TextOf(line);
    const std::size_t inLine = std::min(offset - mLines.Begin(line), text.size());
    const double place =
        LineLeft(line) +
        static_cast<double>(QLX_TextCarets::Get().PlaceOf(GetControlFont(), text, inLine));
    const auto left = static_cast<VCoordinate>(std::lround(place));
    return VRect(left, top, left + 1, top + GetLineHeight());
}

std::size_t TEditText::OffsetAt(const VPoint& local) {
    LayOutIfNeeded();
    std::size_t line = 0;
    if (mEditing.IsMultiline()) {
        const VCoordinate down = local.v - GetTextArea().Top() + mScroll.v;
        line = static_cast<std::size_t>(std::clamp<VCoordinate>(
            down / GetLineHeight(), 0, static_cast<VCoordinate>(mLines.Count()) - 1));
    }
    const std::size_t begin = mLines.Begin(line);
    const double wanted = static_cast<double>(local.h) - LineLeft(line);
    const std::size_t at = begin + QLX_TextCarets::Get().OffsetAt(GetControlFont(), TextOf(line),
                                                                  static_cast<float>(wanted));
    if (at == begin || !mComposition.empty())
        return FromShown(at);
    // A mark that combines with a letter is no place of its own.
    return std::min(mEditing.NextCharacter(mEditing.PreviousCharacter(at)),
                    mLines.End(line, GetText()));
}

void TEditText::RevealCaret() {
    const VRect caret = CaretRect(mEditing.GetCaret());
    const VRect area = GetTextArea();
    VPoint scroll = mScroll;
    if (caret.Right() > area.Right())
        scroll.h += caret.Right() - area.Right();
    if (caret.Left() < area.Left())
        scroll.h -= area.Left() - caret.Left();
    if (mEditing.IsMultiline()) {
        if (caret.Bottom() > area.Bottom())
            scroll.v += caret.Bottom() - area.Bottom();
        if (caret.Top() - (scroll.v - mScroll.v) < area.Top())
            scroll.v = mScroll.v - (area.Top() - caret.Top());
    }
    mScroll = VPoint(std::max<VCoordinate>(0, scroll.h), std::max<VCoordinate>(0, scroll.v));
}

void TEditText::SetFrame(const VRect& frame, bool redraw, bool layOut) {
    TControl::SetFrame(frame, redraw, layOut);
    mLayoutValid = false;
}

// Mouse

bool TEditText::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled())
        return true;
    if (!IsTarget() && !BecomeTarget())
        return true;
    SetComposition({}, 0);
    const std::size_t offset = OffsetAt(local);
    const int clicks = QLX_GetClickCount(event);
    const Look before = GetLook();
    if (event && event->IsShiftKeyPressed())
        mEditing.Select(mEditing.GetAnchor(), offset);
    else if (clicks == 2)
        mEditing.SelectWordAt(offset);
    else if (clicks >= 3)
        mEditing.SelectLineAt(offset);
    else
        mEditing.Select(offset, offset);
    mWantedPlace = -1;
    SelectionMoved(before);
    const bool extends = event && event->IsShiftKeyPressed();
    const std::size_t from = extends ? mEditing.GetAnchor() : mEditing.GetSelectionStart();
    const std::size_t to = extends ? mEditing.GetAnchor() : mEditing.GetSelectionEnd();
    return BeginTracking(new TTextTracker(from, to, clicks), local, event);
}

bool TEditText::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    if (!mEditing.IsMultiline())
        return false;
    LayOutIfNeeded();
    const int height = GetLineHeight();
    const VCoordinate most = std::max<VCoordinate>(
        0, static_cast<VCoordinate>(mLines.Count()) * height - GetTextArea().GetHeight());
    const VCoordinate before = mScroll.v;
    mScroll.v = std::clamp<VCoordinate>(
        mScroll.v - QLX_GetWheelDelta(event).y * 3 * height / kWheel_Notch, 0, most);
    if (mScroll.v == before)
        return false;
    ForceRedraw();
    return true;
}

// Keys

void TEditText::MoveByLines(int lines, bool extend) {
    const VRect caret = CaretRect(mEditing.GetCaret());
    if (mWantedPlace < 0)
        mWantedPlace = static_cast<double>(caret.Left() + mScroll.h);
    const auto target = static_cast<std::int64_t>(LineOf(mEditing.GetCaret())) + lines;
    const double wanted = mWantedPlace;
    std::size_t offset = lines < 0 ? 0 : GetText().size();
    if (target >= 0 && target < static_cast<std::int64_t>(mLines.Count()))
        offset = OffsetAt(VPoint(static_cast<VCoordinate>(wanted) - mScroll.h,
                                 caret.Top() + lines * caret.GetHeight()));
    Select(extend ? mEditing.GetAnchor() : offset, offset);
    mWantedPlace = wanted;
}

// The keys that work in every text; false for one that means nothing here.
bool TEditText::EditKey(TToolboxEvent* event) {
    const bool extend = event->IsShiftKeyPressed();
    const bool byWord = event->IsCommandKeyPressed() || event->IsOptionKeyPressed();
    const ETextMotion step = byWord ? ETextMotion::kWord : ETextMotion::kCharacter;
    const auto move = [&](ETextMotion motion, bool forward) {
        const Look before = GetLook();
        mEditing.Move(motion, forward, extend);
        mWantedPlace = -1;
        SelectionMoved(before);
        return true;
    };
    switch (event->mKeyCode) {
    case kDAW_Key_Left:
    case kDAW_Key_Right: {
        // The arrows go the way they point, also where reading goes to the left.
        const bool toTheLeft =
            QLX_TextCarets::Get().RunsToTheLeft(TextOf(LineOf(mEditing.GetCaret())));
        return move(step, (event->mKeyCode == kDAW_Key_Right) != toTheLeft);
    }
    case kDAW_Key_Home:
        return move(byWord ? ETextMotion::kText : ETextMotion::kLine, false);
    case kDAW_Key_End:
        return move(byWord ? ETextMotion::kText : ETextMotion::kLine, true);
    case kDAW_Key_Up:
    case kDAW_Key_Down:
        if (!mEditing.IsMultiline())
            return false;
        MoveByLines(event->mKeyCode == kDAW_Key_Up ? -1 : 1, extend);
        return true;
    case kDAW_Key_PageUp:
    case kDAW_Key_PageDown: {
        if (!mEditing.IsMultiline())
            return false;
        const int page =
            std::max(1, static_cast<int>(GetTextArea().GetHeight()) / GetLineHeight() - 1);
        MoveByLines(event->mKeyCode == kDAW_Key_PageUp ? -page : page, extend);
        return true;
    }
    case kDAW_Key_Backspace:
    case kDAW_Key_Delete:
        if (mReadOnly)
            return true;
        Change([&](QLX_TextEditing& editing) {
            return editing.Delete(step, event->mKeyCode == kDAW_Key_Delete);
        });
        return true;
    default:
        return false;
    }
}

void TEditText::DoKeyEvent(TToolboxEvent* event) {
    const StDispatch dispatch; // whoever hears of a change may free the field
    if (!IsEnabled())
        return TControl::DoKeyEvent(event);
    if (!mComposition.empty() || EditKey(event))
        return;
    const std::uint32_t character = event->mCharacterCode;
    if (event->mKeyCode == kDAW_Key_Return || event->mKeyCode == kDAW_Key_Enter) {
        if (mEditing.IsMultiline() && !mReadOnly) {
            static_cast<void>(DoTextInput("\n"));
            return;
        }
        mShowsError = !IsValid();
        ForceRedraw();
        if (!mShowsError) {
            mChangedSinceTarget = false;
            NotifyChange(kControlEvent_ValueChanged);
            TControl::DoKeyEvent(event); // the default button of a dialog hears of it too
        }
        return;
    }
    const bool isText = character >= 0x20 && character != 0x7F && character < 0x110000 &&
                        event->mKeyCode < kDAW_FirstNamedKeyCode;
    if (!isText || !DoTextInput(AsUTF8(character)))
        TControl::DoKeyEvent(event);
}

void TEditText::DoCommandKeyEvent(TToolboxEvent* event) {
    const StDispatch dispatch;
    if (!IsEnabled())
        return TControl::DoCommandKeyEvent(event);
    if (!mComposition.empty() ||
        EditKey(event)) // the keys are the input method's while it composes
        return;
    switch (LetterOf(event)) {
    case 'a':
        return SelectAll();
    case 'x':
        return Cut();
    case 'c':
        return Copy();
    case 'v':
        return Paste();
    case 'z':
        return HandleMenuCommand(kCommand_Undo);
    default:
        break;
    }
    const bool isReturn = event->mKeyCode == kDAW_Key_Return || event->mKeyCode == kDAW_Key_Enter;
    if (!isReturn || !mEditing.IsMultiline())
        return TControl::DoCommandKeyEvent(event);
    mShowsError = !IsValid();
    ForceRedraw();
    if (!mShowsError) {
        mChangedSinceTarget = false;
        NotifyChange(kControlEvent_ValueChanged);
    }
}

bool TEditText::DoTextInput(const std::string& text) {
    if (!IsEnabled())
        return false;
    if (mReadOnly)
        return true;
    Change([&](QLX_TextEditing& editing) { return editing.Insert(text); });
    return true;
}

// Input methods

bool TEditText::DoTextComposition(const std::string& text, int caret, int) {
    if (!IsEnabled() || mReadOnly)
        return true;
    const StDispatch dispatch;
    // What is composed stands in for the selection.
    if (!text.empty() && mEditing.HasSelection())
        Change([](QLX_TextEditing& editing) {
            return editing.Delete(ETextMotion::kCharacter, false);
        });
    std::size_t bytes = 0;
    for (int i = 0; i < caret && bytes < text.size(); ++i)
        static_cast<void>(QLX_NextCodePoint(text, bytes));
    SetComposition(text, bytes);
    return true;
}

void TEditText::SetComposition(const std::string& text, std::size_t caret) {
    if (text.empty() && mComposition.empty())
        return;
    const Look before = GetLook();
    if (mComposition.empty()) {
        mCompositionAt = mEditing.GetCaret();
        mShown = GetText();
    }
    const std::size_t replaced = mComposition.size();
    // One line, and well-formed, whatever the input method sends.
    QLX_TextEditing clean;
    clean.SetText(text);
    mComposition = clean.GetText();
    mCompositionCaret = mComposition == text ? caret : mComposition.size();
    mShown.replace(mCompositionAt, replaced, mComposition);
    const QLX_TextLines::Change lines =
        mLines.Replace(mShown, mCompositionAt, replaced, mComposition.size());
    if (mComposition.empty())
        mShown.clear();
    ShowCaret();
    RevealCaret();
    InvalidateFrom(before);
    if (GetText().empty() && !mPlaceholder.empty())
        ForceRedraw();
    else
        InvalidateChange(lines, mLines.Begin(std::min(lines.mFirst, mLines.Count() - 1)));
}

std::size_t TEditText::ToShown(std::size_t offset) const {
    if (mComposition.empty() || offset < mCompositionAt)
        return offset;
    return offset + (offset == mCompositionAt ? mCompositionCaret : mComposition.size());
}

std::size_t TEditText::FromShown(std::size_t offset) const {
    if (offset <= mCompositionAt || mComposition.empty())
        return offset;
    return std::max(mCompositionAt, offset - std::min(offset, mComposition.size()));
}

bool TEditText::GetTextInputArea(VRect& caret) const {
    if (mReadOnly)
        return false;
    caret = const_cast<TEditText*>(this)->CaretRect(mEditing.GetCaret());
    return true;
}

// The clipboard

void TEditText::Copy() {
    if (mEditing.HasSelection())
        QLX_Clipboard::Get().SetText(mEditing.GetSelectedText());
}

void TEditText::Cut() {
    if (mReadOnly || !mEditing.HasSelection())
        return;
    Copy();
    Change([](QLX_TextEditing& editing) { return editing.Delete(ETextMotion::kCharacter, false); });
}

void TEditText::Paste() {
    std::string text;
    if (mReadOnly || !QLX_Clipboard::Get().GetText(text))
        return;
    if (text.size() > kMostPasted)
        text.resize(kMostPasted);
    Change([&](QLX_TextEditing& editing) { return editing.Insert(text); });
}

// Target

void TEditText::BecameTarget() {
    mChangedSinceTarget = false;
    ShowCaret();
    SetIdleFreq(kBlinkTicks);
    TControl::BecameTarget();
}

void TEditText::ResignedTarget() {
    const StDispatch dispatch;
    SetIdleFreq(kNoIdle);
    SetComposition({}, 0);
    TControl::ResignedTarget();
    if (!mChangedSinceTarget)
        return;
    mChangedSinceTarget = false;
    NotifyChange(kControlEvent_ValueChanged);
}

std::int32_t TEditText::WillingToResignTarget() { return IsValid() ? 0 : kRefusal_Invalid; }

void TEditText::ValidationFailed(std::int32_t code) {
    mShowsError = true;
    ForceRedraw();
    TControl::ValidationFailed(code);
}

// For a whole half of a blink from now on.
void TEditText::ShowCaret() {
    mCaretOn = true;
    mCaretSince = Sys_Clock_Ticks();
}

bool TEditText::DoIdle(IdlePhase phase) {
    const std::uint32_t now = Sys_Clock_Ticks();
    if (phase == kIdlePhase_Continue && IsTarget() && now - mCaretSince >= kBlinkTicks) {
        mCaretOn = !mCaretOn;
        mCaretSince = now;
        InvalidateVRect(CaretRect(mEditing.GetCaret()));
    }
    return TControl::DoIdle(phase);
}

// Drawing

void TEditText::DrawLine(std::size_t line, const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const VCoordinate top = LineTop(line);
    const VCoordinate bottom = top + GetLineHeight();
    if (bottom + kInkBeyond <= area.Top() || top - kInkBeyond >= area.Bottom())
        return;
    const std::size_t begin = mLines.Begin(line);
    const std::string text(TextOf(line));
    const std::size_t end = begin + text.size();
    const std::size_t from = std::clamp(mEditing.GetSelectionStart(), begin, end);
    const std::size_t to = std::clamp(mEditing.GetSelectionEnd(), begin, end);
    const auto left = static_cast<float>(LineLeft(line));
    const auto baseline = static_cast<float>(top + GetControlFont().GetMetrics().GetBaseline());
    painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
    painter->MoveTo(left, baseline, QLX_Painter::kResolution_Logical);
    painter->DrawString(text);
    if (!mComposition.empty())
        return UnderlineComposition(line, left);
    if (from >= to || !ShowsFocus())
        return;
    for (const QLX_TextCarets::Span& span :
         QLX_TextCarets::Get().SpansOf(GetControlFont(), text, from - begin, to - begin)) {
        const VRect selected(static_cast<VCoordinate>(std::lround(left + span.left)), top,
                             static_cast<VCoordinate>(std::lround(left + span.right)), bottom);
        DrawSelected(selected, text, left, baseline);
    }
}

void TEditText::DrawSelected(const VRect& selected, const std::string& text, float left,
                             float baseline) {
    const PainterPtr& painter = GetPainter();
    painter->SetForegroundColor(GetControlColor(kThemeColor_Highlight));
    painter->FillRect(selected);
    // The whole line again, cut to the selection: letters keep their places.
    QLX_StClipRgnState clip(painter);
    clip.SectWithCurrent(selected);
    painter->SetForegroundColor(GetControlColor(kThemeColor_HighlightText));
    painter->MoveTo(left, baseline, QLX_Painter::kResolution_Logical);
    painter->DrawString(text);
}

void TEditText::UnderlineComposition(std::size_t line, float left) {
    const std::string_view text = TextOf(line);
    const std::size_t begin = mLines.Begin(line);
    const std::size_t end = begin + text.size();
    const std::size_t from = std::clamp(mCompositionAt, begin, end);
    const std::size_t to = std::clamp(mCompositionAt + mComposition.size(), begin, end);
    if (from >= to)
        return;
    const VCoordinate bottom = LineTop(line) + GetLineHeight();
    for (const QLX_TextCarets::Span& span :
         QLX_TextCarets::Get().SpansOf(GetControlFont(), text, from - begin, to - begin))
        GetPainter()->FillRect(
            VRect(static_cast<VCoordinate>(std::lround(left + span.left)), bottom - 1,
                  static_cast<VCoordinate>(std::lround(left + span.right)), bottom));
}

// What is typed changes the inside of the field: its frame and focus ring are left alone then.
void TEditText::DrawFrame(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const VRect extent = GetExtent();
    painter->SetForegroundColor(
        GetControlColor(IsEnabled() ? kThemeColor_FieldBackground : kThemeColor_WindowBackground));
    VRect inside = extent;
    inside.Inset(VPoint(kEdge, kEdge));
    if (inside.Contains(area))
        return painter->FillRect(area);
    painter->FillRoundRect(extent, kCornerRadius, kCornerRadius, /*antialias*/ true,
                           /*topOnly*/ false);
    painter->SetForegroundColor(
        GetControlColor(mShowsError ? kThemeColor_Error : kThemeColor_FieldFrame));
    painter->DrawRoundRect(extent, kCornerRadius, kCornerRadius, /*antialias*/ true,
                           /*topOnly*/ false);
}

void TEditText::Draw(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    DrawFrame(area);
    {
        QLX_StClipRgnState clip(painter);
        clip.SectWithCurrent(GetTextArea());
        LayOutIfNeeded();
        if (GetText().empty() && mComposition.empty() && !mPlaceholder.empty()) {
            painter->SetForegroundColor(GetControlColor(kThemeColor_DisabledText));
            painter->DrawSingleLineTextBox(GetTextArea(), mPlaceholder, /*ellipsis*/ true, nullptr);
        }
        const int height = GetLineHeight();
        const VCoordinate above = area.Top() - kInkBeyond - LineTop(0);
        const auto first = static_cast<std::size_t>(std::max<VCoordinate>(0, above / height));
        for (std::size_t line = first;
             line < mLines.Count() && LineTop(line) < area.Bottom() + kInkBeyond; ++line)
            DrawLine(line, area);
        if (ShowsFocus() && mCaretOn && !mEditing.HasSelection()) {
            painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
            painter->FillRect(CaretRect(mEditing.GetCaret()));
        }
    }
    VRect inside = GetExtent();
    inside.Inset(VPoint(kEdge, kEdge));
    if (!inside.Contains(area))
        DrawFocusRing(/*inset*/ 0, kCornerRadius);
}

// Object

std::string TEditText::GetValueText() const { return GetText(); }

void TEditText::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "textbox";
    if (info.mName.empty())
        info.mName = mPlaceholder;
}

bool TEditText::GetRangeForAccessibility(double&, double&, double&) { return false; }

void TEditText::Free() {
    mTyping = nullptr;
    TControl::Free();
}

void TEditText::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    bool multiline = mEditing.IsMultiline();
    container->GetBoolProperty("Multiline", multiline);
    mEditing.SetMultiline(multiline);
    container->GetBoolProperty("ReadOnly", mReadOnly);
    std::int32_t number = 0;
    if (container->GetInt32Property("MaximumLength", number))
        mEditing.SetMaximumLength(static_cast<std::size_t>(std::max(0, number)));
    number = mJustification;
    if (container->GetInt32Property("Justification", number))
        mJustification = static_cast<QLX_Painter::EJustification>(std::clamp(number, 0, 2));
    ReadText(container, memento, "Placeholder", mPlaceholder);
    std::string text;
    // What the user has typed, or emptied, stays when the description is read again.
    if (!IsFromDescription() && ReadText(container, memento, "Text", text) && GetText().empty())
        mEditing.SetText(text);
    mLayoutValid = false;
}

#include "qlx/views/uedittext.h"

#include <algorithm>
#include <cmath>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/utracker.h"
#include "qlx/views/utypingcommand.h"

QLX_DEFINE_CLASS(TEditText, TControl)

namespace {

constexpr int kMargin = 4;               // around the text, logical pixels
constexpr std::int32_t kBlinkTicks = 32; // half a blink of the caret
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
        QLX_TextEditing unit = field->GetEditing();
        if (mClicks == 2)
            unit.SelectWordAt(offset);
        else if (mClicks >= 3)
            unit.SelectLineAt(offset);
        else
            unit.Select(offset, offset);
        if (unit.GetSelectionStart() < mFrom)
            field->Select(mTo, unit.GetSelectionStart());
        else
            field->Select(mFrom, std::max(mTo, unit.GetSelectionEnd()));
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
    CopyMember(copy->mValidator, mValidator);
    CopyMember(copy->mLayout, mLayout);
    CopyMember(copy->mLines, mLines);
    copy->mTyping = nullptr;
    return copy;
}

// Text

void TEditText::SetText(const std::string& text, bool redraw) {
    CommitLastCommand();
    mTyping = nullptr;
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

void TEditText::Change(const std::function<bool(QLX_TextEditing&)>& change) {
    const StDispatch dispatch; // whoever hears of it may free the field
    const QLX_TextEditing before = mEditing;
    const bool changed = change(mEditing);
    if (changed)
        BeginTyping(before);
    Edited(changed);
}

void TEditText::Edited(bool changed) {
    mLayoutValid = mLayoutValid && !changed;
    mWantedPlace = -1;
    mShowsError = mShowsError && !IsValid();
    if (mTyping)
        mTyping->Grow();
    SelectionMoved();
    ForceRedraw();
    if (!changed)
        return;
    mChangedSinceTarget = true;
    AccessibilityNotification(kAccessibility_TextChanged, nullptr);
    NotifyChange(kControlEvent_ValueChanging);
}

// Selection

void TEditText::SelectionMoved() {
    mCaretOn = true;
    RevealCaret();
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

void TEditText::Select(std::size_t anchor, std::size_t caret) {
    mEditing.Select(anchor, caret);
    SelectionMoved();
    ForceRedraw();
}

void TEditText::SelectAll() { Select(0, GetText().size()); }

// Layout

VRect TEditText::GetTextArea() const {
    VRect area = GetExtent();
    area.Inset(VPoint(kMargin, mEditing.IsMultiline() ? kMargin : 0));
    return area;
}

void TEditText::LayOutIfNeeded() {
    if (mLayoutValid)
        return;
    mLayoutValid = true;
    mLines.clear();
    const std::string& text = GetText();
    if (mEditing.IsMultiline()) {
        mLayout.LayOut(text, GetControlFont(), static_cast<float>(GetTextArea().GetWidth()),
                       QLX_Painter::kWrap_Word);
        // Spaces at a break belong to the line before it, so every offset lies in one line.
        for (const QLX_TextLayout::Line& line : mLayout.GetLines()) {
            if (!mLines.empty() && (mLines.back().mEnd > text.size() || mLines.back().mEnd == 0 ||
                                    text[mLines.back().mEnd] != '\n'))
                mLines.back().mEnd = std::max(mLines.back().mEnd, line.begin);
            mLines.push_back({line.begin, line.end});
        }
        if (!text.empty() && text.back() == '\n' &&
            (mLines.empty() || mLines.back().mBegin != text.size()))
            mLines.push_back({text.size(), text.size()});
    } else {
        mLines.push_back({0, text.size()});
    }
    if (mLines.empty())
        mLines.push_back({0, 0});
}

std::size_t TEditText::LineOf(std::size_t offset) {
    LayOutIfNeeded();
    const auto behind = std::partition_point(
        mLines.begin(), mLines.end(), [offset](const Line& line) { return line.mBegin <= offset; });
    return behind == mLines.begin() ? 0 : static_cast<std::size_t>(behind - mLines.begin()) - 1;
}

double TEditText::WidthOf(std::size_t from, std::size_t to) const {
    return static_cast<double>(QLX_TextMeasure::Get().MeasureWidth(
        GetControlFont(), std::string_view(GetText()).substr(from, to - from)));
}

std::string_view TEditText::TextOf(const Line& line) const {
    return std::string_view(GetText()).substr(line.mBegin, line.mEnd - line.mBegin);
}

double TEditText::LineLeft(const Line& line) {
    const VRect area = GetTextArea();
    const double spare = static_cast<double>(area.GetWidth()) - WidthOf(line.mBegin, line.mEnd);
    const double left = static_cast<double>(area.Left() - mScroll.h);
    // Left stands for where reading begins.
    const bool atRight = mJustification == QLX_Painter::kJustify_Right ||
                         (mJustification == QLX_Painter::kJustify_Left &&
                          QLX_TextCarets::Get().RunsToTheLeft(TextOf(line)));
    if (spare <= 0 || (mJustification == QLX_Painter::kJustify_Left && !atRight))
        return left;
    return left + (atRight ? spare : spare / 2);
}

VRect TEditText::CaretRect(std::size_t offset) {
    const std::size_t index = LineOf(offset);
    const Line& line = mLines[index];
    const VRect area = GetTextArea();
    const int height = GetControlFont().GetMetrics().GetLineHeight();
    const VCoordinate top = mEditing.IsMultiline()
                                ? area.Top() - mScroll.v + static_cast<VCoordinate>(index) * height
                                : area.Top() + (area.GetHeight() - height) / 2;
    const std::string_view text = TextOf(line);
    const std::size_t inLine = std::min(offset - line.mBegin, text.size());
    const double place =
        LineLeft(line) +
        static_cast<double>(QLX_TextCarets::Get().PlaceOf(GetControlFont(), text, inLine));
    const auto left = static_cast<VCoordinate>(std::lround(place));
    return VRect(left, top, left + 1, top + height);
}

std::size_t TEditText::OffsetAt(const VPoint& local) {
    LayOutIfNeeded();
    const int height = GetControlFont().GetMetrics().GetLineHeight();
    std::size_t index = 0;
    if (mEditing.IsMultiline()) {
        const VCoordinate down = local.v - GetTextArea().Top() + mScroll.v;
        index = static_cast<std::size_t>(
            std::clamp<VCoordinate>(down / height, 0, static_cast<VCoordinate>(mLines.size()) - 1));
    }
    const Line& line = mLines[index];
    const double wanted = static_cast<double>(local.h) - LineLeft(line);
    const std::size_t at =
        line.mBegin +
        QLX_TextCarets::Get().OffsetAt(GetControlFont(), TextOf(line), static_cast<float>(wanted));
    if (at == line.mBegin)
        return at;
    // A mark that combines with a letter is no place of its own.
    return std::min(mEditing.NextCharacter(mEditing.PreviousCharacter(at)), line.mEnd);
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
    const std::size_t offset = OffsetAt(local);
    const int clicks = QLX_GetClickCount(event);
    if (event && event->IsShiftKeyPressed())
        Select(mEditing.GetAnchor(), offset);
    else if (clicks == 2)
        mEditing.SelectWordAt(offset);
    else if (clicks >= 3)
        mEditing.SelectLineAt(offset);
    else
        Select(offset, offset);
    SelectionMoved();
    ForceRedraw();
    const bool extends = event && event->IsShiftKeyPressed();
    const std::size_t from = extends ? mEditing.GetAnchor() : mEditing.GetSelectionStart();
    const std::size_t to = extends ? mEditing.GetAnchor() : mEditing.GetSelectionEnd();
    return BeginTracking(new TTextTracker(from, to, clicks), local, event);
}

bool TEditText::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    if (!mEditing.IsMultiline())
        return false;
    LayOutIfNeeded();
    const int height = GetControlFont().GetMetrics().GetLineHeight();
    const VCoordinate most = std::max<VCoordinate>(
        0, static_cast<VCoordinate>(mLines.size()) * height - GetTextArea().GetHeight());
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
    if (target >= 0 && target < static_cast<std::int64_t>(mLines.size()))
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
        mEditing.Move(motion, forward, extend);
        Edited(/*changed*/ false);
        return true;
    };
    switch (event->mKeyCode) {
    case kDAW_Key_Left:
    case kDAW_Key_Right: {
        // The arrows go the way they point, also where reading goes to the left.
        const bool toTheLeft =
            QLX_TextCarets::Get().RunsToTheLeft(TextOf(mLines[LineOf(mEditing.GetCaret())]));
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
        const int height = GetControlFont().GetMetrics().GetLineHeight();
        const int page = std::max(1, static_cast<int>(GetTextArea().GetHeight()) / height - 1);
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
    if (EditKey(event))
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
    mComposition.clear();
    if (mReadOnly)
        return true;
    Change([&](QLX_TextEditing& editing) { return editing.Insert(text); });
    return true;
}

// Input methods

bool TEditText::DoTextComposition(const std::string& text, int caret, int) {
    if (!IsEnabled() || mReadOnly)
        return true;
    mComposition = text;
    mCompositionCaret = 0;
    for (int i = 0; i < caret && mCompositionCaret < text.size(); ++i) {
        do
            ++mCompositionCaret;
        while (mCompositionCaret < text.size() &&
               (static_cast<unsigned char>(text[mCompositionCaret]) & 0xC0) == 0x80);
    }
    ForceRedraw();
    return true;
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
    SetIdleFreq(kBlinkTicks);
    TControl::BecameTarget();
}

void TEditText::ResignedTarget() {
    const StDispatch dispatch;
    SetIdleFreq(kNoIdle);
    mComposition.clear();
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

bool TEditText::DoIdle(IdlePhase phase) {
    if (phase == kIdlePhase_Continue && IsTarget()) {
        mCaretOn = !mCaretOn;
        InvalidateVRect(CaretRect(mEditing.GetCaret()));
    }
    return TControl::DoIdle(phase);
}

// Drawing

void TEditText::DrawLine(std::size_t index, const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const Line line = mLines[index];
    VRect box = CaretRect(line.mBegin);
    box.Left() = GetTextArea().Left(); // the caret's place is not the line's start in every script
    box.Right() = GetTextArea().Right();
    if ((box & area).Empty())
        return;
    const std::size_t from = std::clamp(mEditing.GetSelectionStart(), line.mBegin, line.mEnd);
    const std::size_t to = std::clamp(mEditing.GetSelectionEnd(), line.mBegin, line.mEnd);
    const float left = static_cast<float>(LineLeft(line));
    const float baseline =
        static_cast<float>(box.Top() + GetControlFont().GetMetrics().GetBaseline());
    const std::string text = GetText().substr(line.mBegin, line.mEnd - line.mBegin);
    painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
    painter->MoveTo(left, baseline, QLX_Painter::kResolution_Logical);
    painter->DrawString(text);
    if (from >= to || !ShowsFocus())
        return;
    for (const QLX_TextCarets::Span& span : QLX_TextCarets::Get().SpansOf(
             GetControlFont(), TextOf(line), from - line.mBegin, to - line.mBegin)) {
        const VRect selected(static_cast<VCoordinate>(std::lround(left + span.left)), box.Top(),
                             static_cast<VCoordinate>(std::lround(left + span.right)),
                             box.Bottom());
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

void TEditText::DrawComposition() {
    const PainterPtr& painter = GetPainter();
    const VRect caret = CaretRect(mEditing.GetCaret());
    const QLX_Font font = GetControlFont();
    const int width = painter->MeasureStringWidth(mComposition);
    VRect box = caret;
    box.Right() = box.Left() + width;
    painter->SetForegroundColor(GetControlColor(kThemeColor_FieldBackground));
    painter->FillRect(box);
    painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
    painter->MoveTo(static_cast<float>(caret.Left()),
                    static_cast<float>(caret.Top() + font.GetMetrics().GetBaseline()),
                    QLX_Painter::kResolution_Logical);
    painter->DrawString(mComposition);
    painter->FillRect(VRect(box.Left(), box.Bottom() - 1, box.Right(), box.Bottom()));
    const float before = QLX_TextMeasure::Get().MeasureWidth(
        font, std::string_view(mComposition).substr(0, mCompositionCaret));
    const auto at = caret.Left() + static_cast<VCoordinate>(std::lround(before));
    painter->FillRect(VRect(at, caret.Top(), at + 1, caret.Bottom()));
}

void TEditText::Draw(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    const VRect extent = GetExtent();
    painter->SetForegroundColor(
        GetControlColor(IsEnabled() ? kThemeColor_FieldBackground : kThemeColor_WindowBackground));
    painter->FillRect(extent);
    painter->SetForegroundColor(
        GetControlColor(mShowsError ? kThemeColor_Error : kThemeColor_FieldFrame));
    painter->DrawRect(extent);
    {
        QLX_StClipRgnState clip(painter);
        clip.SectWithCurrent(GetTextArea());
        LayOutIfNeeded();
        if (GetText().empty() && mComposition.empty() && !mPlaceholder.empty()) {
            painter->SetForegroundColor(GetControlColor(kThemeColor_DisabledText));
            painter->DrawSingleLineTextBox(GetTextArea(), mPlaceholder, /*ellipsis*/ true, nullptr);
        }
        for (std::size_t index = 0; index < mLines.size(); ++index)
            DrawLine(index, area);
        if (!mComposition.empty()) {
            DrawComposition();
        } else if (ShowsFocus() && mCaretOn && !mEditing.HasSelection()) {
            painter->SetForegroundColor(GetTextColor(kThemeColor_FieldText));
            painter->FillRect(CaretRect(mEditing.GetCaret()));
        }
    }
    DrawFocusRing(/*inset*/ 0, /*radius*/ 0);
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

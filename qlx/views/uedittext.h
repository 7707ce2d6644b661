// TEditText: a text that the user edits, in one line or many.
#pragma once

#include "qlx/views/ucontrol.h"
#include "qlx/views/utextediting.h"
#include "qlx/views/utextlines.h"

class TTypingCommand;

/// An editable text. Selection by mouse, keys and double and triple click; cut, copy and paste;
/// input methods with the composition shown in place; Undo takes back the typing since the field
/// became the target or since the last undo, as one command whose context is the field.
///
/// Return announces kControlEvent_ValueChanged (in a text of many lines with Ctrl), as does losing
/// the target after a change. Every change by the user announces kControlEvent_ValueChanging. A
/// validator that refuses the text keeps the target here and shows the field in the theme's error
/// colour.
///
/// Properties beside the base's: "Text", "Placeholder" (string key or string), "MaximumLength"
/// (int32, code points), "Multiline", "ReadOnly" (bool), "Justification" (int32: 0 left, 1 centred,
/// 2 right).
class QLX_API TEditText : public TControl {
  public:
    QLX_DECLARE_CLASS(TEditText);
    /// Whether a text may stand.
    using Validator = std::function<bool(const std::string& text)>;

    TEditText();
    ~TEditText() override;

    // Text

    [[nodiscard]] const std::string& GetText() const { return mEditing.GetText(); }
    /// The program's change: no one is notified, and what could be undone no longer can.
    void SetText(const std::string& text, bool redraw);
    void SetPlaceholder(const std::string& text, bool redraw);
    void SetMaximumLength(std::size_t codePoints) { mEditing.SetMaximumLength(codePoints); }
    void SetMultiline(bool multiline, bool redraw);
    /// Bytes of text that were laid out so far: a letter that is typed costs its lines, not the
    /// text.
    [[nodiscard]] std::uint64_t GetLaidOutBytes() const { return mLines.GetLaidOutBytes(); }
    void SetReadOnly(bool readOnly) { mReadOnly = readOnly; }
    [[nodiscard]] bool IsReadOnly() const { return mReadOnly; }
    void SetValidator(Validator validator);
    [[nodiscard]] bool IsValid() const;

    // Selection: byte offsets, see QLX_TextEditing

    [[nodiscard]] const QLX_TextEditing& GetEditing() const { return mEditing; }
    void Select(std::size_t anchor, std::size_t caret);
    void SelectAll();
    /// The offset of the character boundary nearest to a local point.
    [[nodiscard]] std::size_t OffsetAt(const VPoint& local);
    /// Where a caret before an offset stands, in local coordinates.
    [[nodiscard]] VRect CaretRect(std::size_t offset);
    /// The text that an input method is composing; empty when none is.
    [[nodiscard]] const std::string& GetComposition() const { return mComposition; }

    // The clipboard

    void Cut();
    void Copy();
    void Paste();

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& local, TToolboxEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    bool DoTextInput(const std::string& text) override;
    bool DoTextComposition(const std::string& text, int caret, int selectionLength) override;
    [[nodiscard]] bool GetTextInputArea(VRect& caret) const override;
    void BecameTarget() override;
    void ResignedTarget() override;
    [[nodiscard]] std::int32_t WillingToResignTarget() override;
    void ValidationFailed(std::int32_t code) override;
    bool DoIdle(IdlePhase phase) override;
    void SetFrame(const VRect& frame, bool redraw, bool layOut) override;
    void Draw(const VRect& area) override;
    [[nodiscard]] std::string GetValueText() const override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    bool GetRangeForAccessibility(double& minimum, double& maximum, double& value) override;
    [[nodiscard]] TObject* Clone() override;
    void Free() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    friend class TTypingCommand;
    friend class TTextTracker;
    /// What is shown of caret and selection, to know what a change of them touches.
    struct Look {
        std::size_t mAnchor;
        std::size_t mCaret;
        VRect mCaretRect;
        VPoint mScroll;
        bool mEmpty;
    };

    void Edited();
    void Announce();
    void SelectionMoved(const Look& before);
    [[nodiscard]] Look GetLook();
    void InvalidateFrom(const Look& before);
    void InvalidateChange(const QLX_TextLines::Change& lines, std::size_t from);
    void InvalidateLines(std::size_t first, std::size_t behind, std::size_t from);
    void InvalidateOffsets(std::size_t a, std::size_t b);
    void BeginTyping(const QLX_TextEditing& before);
    void Change(const std::function<bool(QLX_TextEditing&)>& change);
    void MoveByLines(int lines, bool extend);
    void LayOutIfNeeded();
    [[nodiscard]] std::size_t LineOf(std::size_t offset);
    [[nodiscard]] int GetLineHeight() const;
    [[nodiscard]] VRect GetTextArea() const;
    [[nodiscard]] VCoordinate LineTop(std::size_t line) const;
    [[nodiscard]] std::string_view TextOf(std::size_t line) const {
        return mLines.TextOf(line, Shown());
    }
    /// The text as it is laid out: with the composition in its place.
    [[nodiscard]] const std::string& Shown() const {
        return mComposition.empty() ? GetText() : mShown;
    }
    [[nodiscard]] std::size_t ToShown(std::size_t offset) const;
    [[nodiscard]] std::size_t FromShown(std::size_t offset) const;
    void SetComposition(const std::string& text, std::size_t caret);
    [[nodiscard]] double LineLeft(std::size_t line);
    void RevealCaret();
    void ShowCaret();
    void DrawFrame(const VRect& area);
    void DrawLine(std::size_t line, const VRect& area);
    void DrawSelected(const VRect& selected, const std::string& text, float left, float baseline);
    void UnderlineComposition(std::size_t line, float left);
    [[nodiscard]] bool EditKey(TToolboxEvent* event);

    QLX_TextEditing mEditing;
    std::string mPlaceholder;
    std::string mComposition;
    std::size_t mCompositionAt = 0;    // offset in the text
    std::size_t mCompositionCaret = 0; // bytes into the composition
    std::string mShown;                // the text with the composition; empty without one
    Validator mValidator;
    QLX_TextLines mLines;
    bool mLayoutValid = false;
    VPoint mScroll;           // how far the text is moved up and left, logical pixels
    double mWantedPlace = -1; // of the caret while it goes through lines; negative: none
    QLX_Painter::EJustification mJustification = QLX_Painter::kJustify_Left;
    bool mReadOnly = false;
    bool mChangedSinceTarget = false;
    bool mShowsError = false;
    bool mCaretOn = true;
    std::uint32_t mCaretSince = 0;     // ticks
    TTypingCommand* mTyping = nullptr; // not owned: the field's last command while it grows
};

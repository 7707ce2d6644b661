// TNumericEntryText, the field for typing times and numbers, and its variants. Its text always has
// the exact shape of its format; what depends on the format lives in the format's helper.
#pragma once

#include <set>
#include <string>

#include "app/misc/unumericentrydata.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/views/ucontrol.h"
#include "qlx/views/utracker.h"

class CNumericEntryHelper;

/// Notifications to the field's dependents around a drag.
inline constexpr int kNumericEntry_TrackingBegins = 0x1200000;
inline constexpr int kNumericEntry_TrackingEnds = 0x1200001;

/// What shows that a field holds no number but any.
inline constexpr char kNumericEntry_Wildcard[] = "*";

/// A field whose text is one value of a format. The user types into one block at a time, steps it
/// with the arrows, the wheel or by dragging, moves between blocks, and adds or subtracts by typing
/// "+" or
/// "-", an operand and Return. docs/numeric-entry.md is the user's description.
///
/// States: idle; target (a backup of the text is taken); typing (typed count above 0); arithmetic
/// (an operand is being typed); validated or aborted. A callback may change or free the field: it
/// returns at once from whatever it was doing then. User-interface thread.
class QLX_API TNumericEntryText : public TControl {
  public:
    QLX_DECLARE_CLASS(TNumericEntryText);
    using EJustification = QLX_Painter::EJustification;
    using ClientCallback = void (*)(void* context, CNumericEntryCallbackInfo& info, int key);
    using MouseEnterExitCallback = void (*)(bool entered, void* context);

    TNumericEntryText();
    ~TNumericEntryText() override;

    // Set-up

    /// Gives the field the format of a time display and its zero text. False when no helper is
    /// registered for it.
    bool InitializeNumericEntryText(ETimeFormat format);
    /// Gives the field a format of its own, whatever the process-wide one is. The value is
    /// converted where both formats are times; else the text becomes the new format's zero text.
    void SetLocalFormat(ENumericEntryFormat format, bool useSubframes, bool optional);
    /// The same with, when useTimeCodeFormat is set, a time-code format of its own.
    void SetNumericEntryFormatOverride(ENumericEntryFormat format, bool useSubframes, bool optional,
                                       bool useTimeCodeFormat, ETimeCodeFormat timeCodeFormat);
    /// The field follows the process-wide format again.
    void ClearLocalFormat();
    /// The format of its own, or, while it follows the process, that one.
    [[nodiscard]] ENumericEntryFormat GetLocalFormat();
    [[nodiscard]] ETimeCodeFormat GetLocalTimeCodeFormat();
    [[nodiscard]] bool HasLocalFormat() const { return mHasLocalFormat; }
    [[nodiscard]] bool UsesSubframes() const { return mUseSubframes; }
    [[nodiscard]] bool IsOptional() const { return mOptional; }
    void SetDefaultValueInt(std::int32_t value);

    void SetPassEscapeKeyToSupervisor(bool pass) { mPassEscapeKey = pass; }
    void SetPassReturnKeyToSupervisor(bool pass) { mPassReturnKey = pass; }
    void SetPassTabKeyToSupervisor(bool pass) { mPassTabKey = pass; }
    /// Without it Tab does nothing at all. On at first.
    void SetHandlesTab(bool handle) { mHandlesTab = handle; }
    void SetUpdateClientWhenResigningTarget(bool update) { mUpdateWhenResigning = update; }
    void SetUpdateClientWhenTabbing(bool update) { mUpdateWhenTabbing = update; }
    void SetUpdateClientWhenKeyPressed(bool update) { mUpdateWhenKeyPressed = update; }
    void SetUpdateClientAfterArrow(bool update) { mUpdateAfterArrow = update; }
    void SetUpdateClientAfterTapEntry(bool update) { mUpdateAfterTapEntry = update; }
    /// The window shows a new value before the client hears of it.
    void SetUpdateClientConcurrentWithView(bool update) { mUpdateConcurrent = update; }
    /// On: Left and Right go round the blocks, Up and Down step, and all four stay in the field.
    /// Off at first: the application gets them too.
    void SetNormalArrowMode(bool normal) { mNormalArrowMode = normal; }
    /// A key that the field does not use makes it give the target back first.
    void SetResignedTargetOnUnhandledEvent(bool resign) { mResignOnUnhandled = resign; }
    /// Whether a drag that began while the field was the target ends its being the target.
    void SetResignTargetAfterTracking(bool resign) { mResignAfterTracking = resign; }
    void SetAllowPreSessionTimeCode(bool allow) { mAllowPreSession = allow; }
    [[nodiscard]] bool IsPreSessionTimeCodeAllowed() const { return mAllowPreSession; }
    /// The main display shows the secondary time format's counter with this.
    void SetIsSecondaryCounter(bool secondary);
    [[nodiscard]] bool IsSecondaryCounter() const { return mIsSecondary; }
    void SetIsDurationText(bool duration);
    [[nodiscard]] bool IsDurationText() const { return mIsDuration; }
    void SetAcceptsWildcard(bool accept) { mAcceptsWildcard = accept; }
    [[nodiscard]] bool AcceptsWildcard() const { return mAcceptsWildcard; }
    /// Whether the text is an accepted "*".
    [[nodiscard]] bool IsWildcard() const;
    void SetUseVolatileUpdate(bool use) { mVolatileUpdate = use; }
    /// Offers the platform's input methods while the field is the target.
    void EnableTextCompositing(bool enable) { mTextCompositing = enable; }

    /// Bounds of whole-number formats; the float bounds follow. Inverted bounds are exchanged.
    void SetMinMaxIntegerValues(std::int64_t minimum, std::int64_t maximum);
    /// Bounds of levels; the integer bounds follow by truncation, held at 64 bits.
    void SetMinMaxFloatValues(double minimum, double maximum);
    [[nodiscard]] std::int64_t GetMinIntegerValue() const { return mMinInteger; }
    [[nodiscard]] std::int64_t GetMaxIntegerValue() const { return mMaxInteger; }
    [[nodiscard]] double GetMinFloatValue() const { return mMinFloat; }
    [[nodiscard]] double GetMaxFloatValue() const { return mMaxFloat; }
    [[nodiscard]] bool HasFloatBounds() const { return mHasBounds; }
    /// Bounds of durations.
    void SetResolutionRange(Time_TickLength least, Time_TickLength most);
    [[nodiscard]] Time_TickLength GetLeastLength() const { return mLeastLength; }
    [[nodiscard]] Time_TickLength GetMostLength() const { return mMostLength; }

    // The fixed number set: stepping goes to its next or previous member; at its ends it stays.

    void SetIsUsingFixedNumberSet(bool use) { mUsingFixedSet = use; }
    [[nodiscard]] bool IsUsingFixedNumberSet() const { return mUsingFixedSet; }
    void AddToFixedNumberSet(std::int64_t number) { mFixedSet.insert(number); }
    void ClearFixedNumberSet() { mFixedSet.clear(); }
    [[nodiscard]] bool IsInFixedNumberSet(std::int64_t number) const;
    /// The nearest larger (smaller) member; the number itself when there is none.
    [[nodiscard]] std::int64_t GetNextInFixedNumberSet(std::int64_t number) const;
    [[nodiscard]] std::int64_t GetPrevInFixedNumberSet(std::int64_t number) const;

    // Looks

    void SetJustification(EJustification justification);
    [[nodiscard]] EJustification GetJustification() const { return mJustification; }
    /// For windows that read from right to left: left and right change places, and so do prefix and
    /// suffix. The number itself keeps its direction.
    void SetRightToLeft(bool rightToLeft);
    void SetPrefixText(const std::string& text);
    void SetSuffixText(const std::string& text);
    [[nodiscard]] const std::string& GetPrefixText() const { return mPrefix; }
    [[nodiscard]] const std::string& GetSuffixText() const { return mSuffix; }
    /// Drawn behind the text: its corners keep their size, the rest stretches. Null for the theme's
    /// plain field.
    void SetBackgroundImage(const QLX_Painter::ImagePtr& image);
    /// What the description gave as its background: a PNG file's path, from the description's
    /// folder. A file that cannot be read leaves the plain field, and the reason in the trace.
    [[nodiscard]] const std::string& GetBackgroundImageName() const { return mBackgroundName; }
    void UseAlternateHiliteColor(const CRGBColor& color);
    void UseAlternateHiliteTextColor(const CRGBColor& color);
    /// Takes the theme's as the alternate colours.
    void InitializeAlternateColors();
    void UseAlternateColors(bool use);

    // The value

    /// A stored number in the format's own unit, see CNumericEntryHelper::IntegerValueToString.
    void SetTextFromIntegerValue(std::int64_t value);
    void SetTextFromFloatValue(double value);
    /// A session position (a length, for a duration text). While the user is typing nothing
    /// happens, so that a running clock does not take an edit away. With redraw false only the text
    /// is set.
    void SetTextFromSample(Time_Sample position, bool redraw);
    /// Sets the text when it has the format's shape, else keeps the old one and answers false. With
    /// asBackup it is also what an aborted edit returns to.
    bool SetText(const std::string& text, bool redraw, bool asBackup);
    [[nodiscard]] const std::string& GetText() const { return mText; }
    [[nodiscard]] const std::string& GetBackup() const { return mBackup; }
    void GetData(CNumericEntryData* data);

    void SetCallback(ClientCallback callback, void* context);
    /// Called with true when the mouse comes over the field and false when it leaves, and with the
    /// context of SetCallback.
    void SetMouseEnterExitCallback(MouseEnterExitCallback callback);

    // Editing

    void GetSelection(short& start, short& end) const;
    /// Held within the text.
    void SetSelection(short start, short end);
    [[nodiscard]] int GetTypedCount() const { return mTypedCount; }
    void SetTypedCount(int count) { mTypedCount = count; }
    [[nodiscard]] EArithmeticMode GetArithmeticMode() const { return mArithmetic; }
    /// Whether the user has begun something that is not finished.
    [[nodiscard]] bool IsBeingEdited() const;
    bool HiliteNextBlock(EBlockHiliteDirection direction, bool wrap);
    void AddValueToCurrentSelection(std::int64_t delta);
    /// Carries out pending arithmetic, then normalises. False when the text is no value.
    bool Validate();
    /// Back to the text from before the edit.
    void AbortEdit();
    /// Shows the text now instead of with the next frame.
    void UpdateText();
    /// Back to the zero text, as Backspace does.
    void ClearChar();
    /// One byte of input; the ASCII character it completes, 0 when none is complete yet.
    char DigestKey(char byte);
    /// Tells client, supervisor and accessibility of the value.
    void UpdateClient(short keyOrStep, bool command, bool shift, bool option, bool control,
                      bool fromTracking, TrackPhase phase);

    // The clipboard

    /// The value as it is shown, without prefix and suffix.
    void CopyToClipBoard();
    /// Takes the clipboard's text as a value. A refused one changes nothing. Either way
    /// GetPasteReport says how it was understood, or why not.
    bool PasteClipBoard();
    bool PasteText(const std::string& text);
    [[nodiscard]] const std::string& GetPasteReport() const { return mPasteReport; }

    // The target

    /// Remembers who is the target now, so that RestoreOldTarget can give it back. Numeric fields
    /// are not remembered: going from one to the next keeps what was there before the first. Only a
    /// handler of this window counts.
    static void CheckOldTarget(TWindow* window);
    /// Makes the remembered handler the target again, and forgets it. Nothing when it is gone.
    static void RestoreOldTarget();

    // Of the process

    static void SetDefaultTimeFormat(ETimeFormat format);
    [[nodiscard]] static ETimeFormat GetDefaultTimeFormat();
    /// Stands before the default while it is on.
    static void SetDefaultTimeFormatOverride(bool on, ETimeFormat format);
    static void SetSecondaryDefaultTimeFormat(ETimeFormat format);
    [[nodiscard]] static ETimeFormat GetSecondaryDefaultTimeFormat();
    /// Whether fields that follow the process show subframes.
    static void SetDefaultUseSubframes(bool use);
    static void RegisterHelperForFormat(ENumericEntryFormat format, bool useSubframes,
                                        bool optional, CNumericEntryHelper* helper);
    static void RegisterCaptureTimeCallback(Time_SMPTE (*callback)());
    [[nodiscard]] static std::uint32_t MakeHelperMapKey(ENumericEntryFormat format,
                                                        bool useSubframes, bool optional);
    /// Time formats and entry formats name the same five displays; time code stands in for anything
    /// else.
    [[nodiscard]] static ENumericEntryFormat TimeFormatToNumericEntryFormat(ETimeFormat format);
    [[nodiscard]] static ETimeFormat NumericEntryFormatToTimeFormat(ENumericEntryFormat format);

    // For helpers

    /// Puts a text in place as typing does: no check, tells accessibility, asks for drawing.
    void ChangeText(const std::string& text);
    /// The index of the character under a local point; the text's length behind it.
    [[nodiscard]] short GetCharacterAt(const VPoint& where);
    [[nodiscard]] ETimeCodeFormat GetTimeCodeFormat() const { return mTimeCodeFormat; }
    [[nodiscard]] CNumericEntryHelper* GetHelper();

    // Drawing

    /// Frame and background of a field, for views that look like one.
    static void StaticDrawBackground(const PainterPtr& painter, const Cmn_Rect<int>& area,
                                     bool enabled, const QLX_Painter::ImagePtr& image);
    /// The width of a text in the field's font, in logical pixels.
    [[nodiscard]] float GetStringWidth(const std::string& text) const;
    void GetFontInfo(QLX_Font& font, QLX_FontMetrics& metrics) const;

    // Slot order is part of the binary interface: append, never move.

    /// Prefix, value with its hilite, suffix, within a local rectangle.
    virtual void ImageText(const PainterPtr& painter, const VRect& area);
    /// The part of the extent that the field may erase: adorners keep theirs.
    virtual void AdjustEraseForAdorners(VRect& area);
    /// Draws the background around the text only, not under it.
    virtual void EraseNonTextArea(const VRect& area);
    /// The mouse came over the field (1) or left it (0). For subclasses.
    virtual void MouseOverHook(int over);
    /// A view-specific handler of presses. True when it took the click. Here: false.
    virtual bool HandleSpecificMouse(const VPoint& where, TToolboxEvent* event);
    /// How a paste was taken. Here it goes to the trace.
    virtual void ReportPaste(bool taken, const std::string& report);
    /// The text of the selected block; false when nothing is selected.
    virtual bool GetSelectedForAccessibility(std::string& text);
    /// What a screen reader says: prefix, value, suffix, and an operand as such.
    virtual void ReadAccessibility(std::string& spoken);
    [[nodiscard]] virtual bool AllowsArithmetic() const { return true; }
    [[nodiscard]] virtual bool AllowsCapture() const { return true; }
    [[nodiscard]] virtual bool AllowsTap() const { return true; }

    // Overrides

    void Free() override;
    [[nodiscard]] TObject* Clone() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;
    void SetEnable(bool enable) override;
    void Draw(const VRect& area) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    void DoMenuCommand(std::int32_t command) override;
    void DoSetupMenus() override;
    bool DoMouseCommand(const VPoint& where, TToolboxEvent* event) override;
    bool DoMouseWheel(const VPoint& where, TToolboxEvent* event) override;
    void DoMouseEnter(const VPoint& where, TToolboxEvent* event) override;
    void DoMouseLeave(TToolboxEvent* event) override;
    bool DoTextInput(const std::string& text) override;
    bool DoTextComposition(const std::string& text, int caret, int selectionLength) override;
    [[nodiscard]] bool GetTextInputArea(VRect& caret) const override;
    /// What an input method is composing; empty when none is. Not part of the value yet.
    [[nodiscard]] const std::string& GetComposition() const { return mComposition; }
    [[nodiscard]] bool WantsToBeTarget() override;
    bool BecomeTarget() override;
    void BecameTarget() override;
    void ResignedTarget() override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    /// The number that SetTextFromIntegerValue takes, with its bounds.
    bool GetRangeForAccessibility(double& minimum, double& maximum, double& value) override;
    /// Sets the number as if the user had typed it and Return.
    bool SetRangeForAccessibility(double value) override;
    [[nodiscard]] std::string GetValueText() const override;

  protected:
    friend class TNumericEntryTracker;
    struct KeyStroke;

    void SyncFormat();
    void LookUpFormat(ENumericEntryFormat& format, bool& subframes) const;
    void Convert(CNumericEntryHelper* helper, ETimeCodeFormat timeCodeFormat);
    bool WriteOwnLength(std::int64_t samples, std::string& text);
    void StopEditing();
    void ReadBackgroundImage(QLX_RawPropertyContainer* container, const MementoPtr& memento);

    bool UseKey(const KeyStroke& key, TToolboxEvent* event);
    bool DispatchKey(const KeyStroke& key, TToolboxEvent* event);
    bool TypeKey(const KeyStroke& key);
    bool KeyReturn(const KeyStroke& key);
    bool KeyTab(const KeyStroke& key);
    bool KeyEscape();
    bool KeyLeftRight(const KeyStroke& key);
    bool KeyUpDown(const KeyStroke& key);
    bool KeySign(const KeyStroke& key);
    bool KeyFinishMath(const KeyStroke& key);
    bool KeyCapture();
    bool KeyTap(const KeyStroke& key, TToolboxEvent* event);
    void NotifyClient(const KeyStroke& key);
    void CollapseSelection();
    void SetArithmetic(EArithmeticMode mode);
    void EndArithmetic();
    void PassOn(TToolboxEvent* event);
    void InvalidateCharacters(std::size_t first, std::size_t last, bool all);
    [[nodiscard]] float GetCompositionLeft() const;
    void DrawComposition(const PainterPtr& painter);
    void GetTextRows(VCoordinate& top, VCoordinate& bottom) const;
    [[nodiscard]] VRect GetInside(VRect extent);
    /// Where the value's first character begins, in local coordinates.
    [[nodiscard]] float GetValueLeft() const;
    /// The width of the first characters of the text.
    [[nodiscard]] float GetWidthUpTo(std::size_t characters) const;

    // The order of the fields is part of the binary interface.
    std::string mText;
    std::string mBackup;
    EArithmeticMode mArithmetic = kArithmetic_None;
    short mSelectionStart = 0;
    short mSelectionEnd = 0;
    std::int32_t mTypedCount = 0;
    bool mHasLocalFormat = false;
    ENumericEntryFormat mLocalFormat = kNumericEntry_BarsBeats;
    bool mUseSubframes = false;
    bool mOptional = false;
    bool mHasLocalTimeCodeFormat = false;
    ETimeCodeFormat mLocalTimeCodeFormat = ETimeCodeFormat::F30;

    bool mEditable = true;
    bool mPassEscapeKey = false;
    bool mPassReturnKey = false;
    bool mPassTabKey = false;
    bool mHandlesTab = true;
    bool mUpdateWhenResigning = false;
    bool mUpdateWhenTabbing = false;
    bool mUpdateWhenKeyPressed = false;
    bool mUpdateAfterArrow = false;
    bool mUpdateAfterTapEntry = false;
    bool mUpdateConcurrent = false;
    bool mNormalArrowMode = false;
    bool mResignOnUnhandled = false;
    bool mResignAfterTracking = false;
    bool mAllowPreSession = false;
    bool mIsSecondary = false;
    bool mIsDuration = false;
    bool mOldIsDuration = false;
    bool mAcceptsWildcard = false;
    bool mVolatileUpdate = false;
    bool mTextCompositing = false;
    bool mUsingFixedSet = false;
    bool mRightToLeft = false;
    bool mUseAlternateColors = false;
    bool mHasBounds = false;

    std::int64_t mMinInteger;
    std::int64_t mMaxInteger;
    double mMinFloat;
    double mMaxFloat;
    Time_TickLength mLeastLength;
    Time_TickLength mMostLength;
    std::set<std::int64_t> mFixedSet;

    CRGBColor mAlternateHilite;
    CRGBColor mAlternateHiliteText;
    std::string mPrefix;
    std::string mSuffix;
    std::string mBackgroundName;
    QLX_Painter::ImagePtr mBackgroundImage;
    EJustification mJustification = QLX_Painter::kJustify_Center;

    std::string mPendingInput;                        // bytes of a character that is not complete
    CNumericEntryHelper* mHelper = nullptr;           // the registry's
    ENumericEntryFormat mFormat = kNumericEntry_None; // that mHelper was looked up for
    bool mFormatUsesSubframes = false;
    ETimeCodeFormat mTimeCodeFormat = ETimeCodeFormat::F30;
    std::uint32_t mSeenRegistry = 0;
    std::uint32_t mSeenSession = 0;
    std::uint32_t mSeenDefaults = 0;

    ClientCallback mCallback = nullptr;
    void* mCallbackContext = nullptr; // the client's
    MouseEnterExitCallback mMouseCallback = nullptr;
    std::string mPasteReport;
    int mWheelRest = 0;  // parts of a notch
    double mLastTap = 0; // seconds
    bool mSyncing = false;
    bool mInKey = false;    // a key is under way
    bool mNotified = false; // the client has heard of it
    bool mGone = false;     // freed; the memory lives on until the outermost dispatch returns
    std::string mComposition;
    std::size_t mCompositionCaret = 0; // bytes into the composition
};

/// The field without arithmetic, time capture and tap keys.
class QLX_API TNoMathEntryModeText : public TNumericEntryText {
  public:
    QLX_DECLARE_CLASS(TNoMathEntryModeText);
    TNoMathEntryModeText();
    [[nodiscard]] bool AllowsArithmetic() const override;
    [[nodiscard]] bool AllowsCapture() const override;
    [[nodiscard]] bool AllowsTap() const override;
};

/// The field for views that lock and unlock it without the look of a disabled control.
class QLX_API TGANumericEntryText : public TNumericEntryText {
  public:
    QLX_DECLARE_CLASS(TGANumericEntryText);
    TGANumericEntryText();
    /// False: every key and click goes to the next handler.
    void SetIsEditable(bool editable);
};

/// The frame around a field, in which a caption or several fields may stand.
class QLX_API TNumericEntryFrame : public TView {
  public:
    QLX_DECLARE_CLASS(TNumericEntryFrame);
    TNumericEntryFrame();
    void Draw(const VRect& area) override;
    /// A press beside the field goes to the first field inside.
    bool DoMouseCommand(const VPoint& where, TToolboxEvent* event) override;
};

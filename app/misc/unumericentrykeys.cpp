// TNumericEntryText: keys, the clipboard and menu commands. docs/numeric-entry.md has the table of
// what each key does.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

#include "app/misc/unumericentryhelper.h"
#include "app/misc/unumericentrytext.h"
#include "basekit/cmn/cmn_string.h"
#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"
#include "qlx/views/umenumanager.h"

/// A key as the field sees it: the ASCII character it amounts to, and the modifiers.
struct TNumericEntryText::KeyStroke {
    unsigned char code = 0;
    std::uint32_t state = 0; ///< TToolboxEvent::mKeyState
    bool command = false;
    bool shift = false;
    bool option = false;
    bool control = false;
};

namespace {

// The third field of the event of a real Escape key.
constexpr std::uint32_t cRealEscape = 6;

// What a character that is none of the field's becomes.
constexpr char cForeignCharacter = 0x1A;

bool IsLetter(unsigned char code) {
    return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
}

bool IsDigit(unsigned char code) { return code >= '0' && code <= '9'; }

} // namespace

// ---- Digestion ----

// Input methods deliver characters byte by byte. A byte that cannot continue what is pending drops
// the torn character and begins anew, so that no key is lost behind it.
char TNumericEntryText::DigestKey(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    const bool continues = (value & 0xC0) == 0x80;
    if (!continues)
        mPendingInput.clear();
    if (mPendingInput.empty() && value < 0x80)
        return byte;
    mPendingInput += byte;
    if (mPendingInput.size() <
        static_cast<std::size_t>(Cmn_UTF8Length(static_cast<unsigned char>(mPendingInput[0]))))
        return 0;
    std::size_t position = 0;
    const std::uint32_t plain = Cmn_FullWidthToASCII(Cmn_DecodeUTF8(mPendingInput, position));
    mPendingInput.clear();
    return plain < 0x80 ? static_cast<char>(plain) : cForeignCharacter;
}

// ---- Dispatch ----

void TNumericEntryText::PassOn(TToolboxEvent* event) { TControl::DoKeyEvent(event); }

void TNumericEntryText::DoKeyEvent(TToolboxEvent* event) {
    const StDispatch dispatch;
    if (!mEditable || event == nullptr) {
        PassOn(event);
        return;
    }
    // Arrows and editing keys may come without a character.
    std::uint32_t code = event->mCharacterCode;
    if (code == 0 && event->mKeyCode < 0x80)
        code = event->mKeyCode;
    if (code == 0 || code > 0x10FFFF) {
        PassOn(event);
        return;
    }
    KeyStroke key;
    if (code < 0x100) {
        key.code = static_cast<unsigned char>(DigestKey(static_cast<char>(code)));
    } else {
        std::string bytes;
        Cmn_AppendUTF8(bytes, code);
        for (const char byte : bytes)
            key.code = static_cast<unsigned char>(DigestKey(byte));
    }
    if (key.code == 0)
        return; // the rest of the character is still to come
    key.state = event->mKeyState;
    key.command = event->IsCommandKeyPressed();
    key.shift = event->IsShiftKeyPressed();
    key.option = event->IsOptionKeyPressed();
    key.control = event->IsControlKeyPressed();
    const bool consumed = UseKey(key, event);
    if (mGone || consumed)
        return;
    const bool isArrow = key.code >= kDAW_Key_Left && key.code <= kDAW_Key_Down;
    if (mResignOnUnhandled && !isArrow && IsTarget()) {
        if (GetNextHandler() != nullptr)
            RestoreOldTarget();
        if (!mGone && IsTarget())
            ResignTarget();
    }
    if (!mGone)
        PassOn(event);
}

// Answers whether the key ends here. The client hears of it once.
bool TNumericEntryText::UseKey(const KeyStroke& key, TToolboxEvent* event) {
    const bool wasInKey = std::exchange(mInKey, true);
    mNotified = false;
    const bool consumed = DispatchKey(key, event);
    if (consumed && mUpdateWhenKeyPressed && !mNotified && !mGone)
        NotifyClient(key);
    mInKey = wasInKey;
    mNotified = false;
    return consumed;
}

bool TNumericEntryText::DispatchKey(const KeyStroke& key, TToolboxEvent* event) {
    if (TypeKey(key))
        return true;
    switch (key.code) {
    case kDAW_Key_Return:
    case kDAW_Key_Enter:
        return KeyReturn(key);
    case kDAW_Key_Backspace:
    case kDAW_Key_Delete:
        ClearChar();
        return true;
    case kDAW_Key_Tab:
        return KeyTab(key);
    case kDAW_Key_Escape:
        if (key.state == cRealEscape)
            return KeyEscape();
        ClearChar();
        return true;
    case kDAW_Key_Left:
    case kDAW_Key_Right:
        return KeyLeftRight(key);
    case kDAW_Key_Up:
    case kDAW_Key_Down:
        return KeyUpDown(key);
    case '+':
    case '-':
        return KeySign(key);
    case '*':
    case '/':
        return KeyFinishMath(key);
    case '=':
        return KeyCapture();
    case 'T':
    case 't':
        return KeyTap(key, event);
    default:
        return false;
    }
}

void TNumericEntryText::NotifyClient(const KeyStroke& key) {
    UpdateClient(static_cast<short>(key.code), key.command, key.shift, key.option, key.control,
                 /*fromTracking*/ false, kTrack_End);
}

bool TNumericEntryText::TypeKey(const KeyStroke& key) {
    bool typed = IsDigit(key.code) || key.code == ',' || key.code == '.';
    if (GetLocalFormat() == kNumericEntry_HostText)
        typed =
            typed || key.code == '#' || IsLetter(key.code) || (key.code == '-' && mTypedCount != 0);
    if (!typed)
        return false;
    GetHelper()->DoTyping(this, static_cast<char>(key.code));
    if (mUpdateWhenKeyPressed)
        NotifyClient(key);
    return true;
}

bool TNumericEntryText::KeyReturn(const KeyStroke& key) {
    const bool inArithmetic = mArithmetic != kArithmetic_None;
    CNumericEntryHelper* const helper = GetHelper();
    if (!Validate()) {
        AbortEdit();
        return !mPassReturnKey;
    }
    mTypedCount = 0;
    mBackup = mText;
    if (inArithmetic && mFormat != kNumericEntry_HostTap) {
        // The field stays the target and shows the result.
        helper->GetInitialSelection(this);
        if (!mNormalArrowMode)
            NotifyClient(key);
        return !mPassReturnKey;
    }
    NotifyClient(key);
    if (mGone)
        return true;
    CollapseSelection();
    // What the client made of the text meanwhile is what an aborted edit returns to.
    mBackup = mText;
    RestoreOldTarget();
    return !mPassReturnKey;
}

bool TNumericEntryText::KeyTab(const KeyStroke& key) {
    if (!mHandlesTab)
        return false;
    if (!Validate()) {
        EndArithmetic();
        ChangeText(mBackup);
    }
    mTypedCount = 0;
    mBackup = mText;
    if (mUpdateWhenTabbing)
        NotifyClient(key);
    if (mGone)
        return true;
    CollapseSelection();
    mBackup = mText;
    return !mPassTabKey;
}

bool TNumericEntryText::KeyEscape() {
    AbortEdit();
    return !mPassEscapeKey;
}

bool TNumericEntryText::KeyLeftRight(const KeyStroke& key) {
    const EBlockHiliteDirection direction =
        key.code == kDAW_Key_Left ? kBlock_Previous : kBlock_Next;
    const bool stopped = HiliteNextBlock(direction, /*wrap*/ mNormalArrowMode);
    if (mNormalArrowMode || stopped) {
        mTypedCount = 0;
        if (mUpdateAfterArrow)
            NotifyClient(key);
    }
    return mNormalArrowMode;
}

bool TNumericEntryText::KeyUpDown(const KeyStroke& key) {
    mTypedCount = 0;
    if (!mNormalArrowMode)
        return false;
    AddValueToCurrentSelection(key.code == kDAW_Key_Up ? 1 : -1);
    if (mUpdateAfterArrow)
        NotifyClient(key);
    return true;
}

bool TNumericEntryText::KeySign(const KeyStroke& key) {
    CNumericEntryHelper* const helper = GetHelper();
    const bool subtract = key.code == '-';
    const bool calculates =
        AllowsArithmetic() && !helper->TypesSigns() &&
        helper->SupportsCalculation(subtract ? kCalculation_Subtract : kCalculation_Add);
    if (!calculates) {
        helper->DoTyping(this, static_cast<char>(key.code));
        return true;
    }
    if (mTypedCount != 0 || IsWildcard())
        return true;
    mBackup = mText;
    // The operand is a length, not a position. A second sign finds the flag saved already.
    if (mArithmetic == kArithmetic_None)
        mOldIsDuration = mIsDuration;
    mIsDuration = true;
    helper->ResetCurrentText(this);
    SetArithmetic(subtract ? kArithmetic_Subtracting : kArithmetic_Adding);
    return true;
}

bool TNumericEntryText::KeyFinishMath(const KeyStroke& key) {
    const bool inArithmetic = mArithmetic != kArithmetic_None;
    if (!Validate()) {
        EndArithmetic();
        ChangeText(mBackup);
        mTypedCount = 0;
        GetHelper()->GetInitialSelection(this);
        return true;
    }
    mTypedCount = 0;
    if (inArithmetic)
        return true;
    mBackup = mText;
    NotifyClient(key);
    return true;
}

bool TNumericEntryText::KeyCapture() {
    if (!AllowsCapture())
        return false;
    CNumericEntryHelper* const helper = GetHelper();
    // An operand goes back to what it was to be added to; "now" replaces that.
    if (mArithmetic != kArithmetic_None) {
        EndArithmetic();
        ChangeText(mBackup);
    }
    helper->CaptureTime(this);
    helper->GetInitialSelection(this);
    mTypedCount = 0;
    return true;
}

bool TNumericEntryText::KeyTap(const KeyStroke& key, TToolboxEvent* event) {
    const ENumericEntryFormat format = GetLocalFormat();
    if (!AllowsTap() || (format != kNumericEntry_HostTap && format != kNumericEntry_HostTap2))
        return false;
    // Taps further apart than this begin a new series.
    constexpr double longestInterval = 10;
    const double now = event->GetEventWhen();
    const double interval = now - mLastTap;
    const bool counts = mLastTap != 0 && interval > 0 && interval <= longestInterval;
    mLastTap = now;
    const double tapsPerSecond = counts ? 1 / interval : 0;
    GetHelper()->Tap(this, static_cast<std::int32_t>(std::min(tapsPerSecond * 60 + 0.5, 1e9)));
    if (mUpdateAfterTapEntry) {
        KeyStroke tap = key;
        tap.code = 't';
        NotifyClient(tap);
    }
    return true;
}

// ---- Input methods ----

// Plain characters of a committed text have come as keys already; only those that no key types are
// taken from here.
bool TNumericEntryText::DoTextInput(const std::string& text) {
    if (!mTextCompositing || !mEditable)
        return TControl::DoTextInput(text);
    const StDispatch dispatch;
    DoTextComposition({}, 0, 0);
    bool taken = false;
    for (std::size_t at = 0; at < text.size() && !mGone;) {
        const std::uint32_t codePoint = Cmn_DecodeUTF8(text, at);
        const std::uint32_t plain = Cmn_FullWidthToASCII(codePoint);
        if (plain == codePoint || plain >= 0x80)
            continue;
        taken = true;
        KeyStroke key;
        key.code = static_cast<unsigned char>(plain);
        if (key.code != 'T' && key.code != 't')
            UseKey(key, nullptr);
    }
    return taken || TControl::DoTextInput(text);
}

// ---- The clipboard and menus ----

void TNumericEntryText::CopyToClipBoard() { QLX_Clipboard::Get().SetText(mText); }

bool TNumericEntryText::PasteClipBoard() {
    std::string text;
    if (!QLX_Clipboard::Get().GetText(text)) {
        mPasteReport = "the clipboard holds no text";
        ReportPaste(false, mPasteReport);
        return false;
    }
    return PasteText(text);
}

bool TNumericEntryText::PasteText(const std::string& text) {
    const StDispatch dispatch;
    CNumericEntryHelper* const helper = GetHelper();
    std::string value;
    std::string report;
    const bool taken = mEditable && helper->ParsePaste(this, text, value, report);
    mPasteReport = mEditable ? report : "the field cannot be edited";
    if (taken) {
        // Into an operand it goes as one; else it replaces the value, as typing it would.
        ChangeText(value);
        mTypedCount = 0;
        if (IsTarget())
            helper->GetInitialSelection(this);
        else
            mBackup = mText;
    }
    ReportPaste(taken, std::string(mPasteReport));
    if (taken && !mGone && mUpdateWhenKeyPressed)
        UpdateClient('v', true, false, false, false, /*fromTracking*/ false, kTrack_End);
    return taken;
}

void TNumericEntryText::ReportPaste(bool taken, const std::string& report) {
    Cmn_Trace(kTrace_Views, "paste %s: %s", taken ? "taken" : "refused", report.c_str());
}

void TNumericEntryText::DoCommandKeyEvent(TToolboxEvent* event) {
    if (!mEditable || event == nullptr) {
        TControl::DoCommandKeyEvent(event);
        return;
    }
    const StDispatch dispatch;
    const std::uint32_t code = event->mKeyCode != 0 ? event->mKeyCode : event->mCharacterCode;
    const bool plain = !event->IsShiftKeyPressed() && !event->IsOptionKeyPressed() &&
                       !event->IsControlKeyPressed();
    switch (plain && code < 0x80 ? std::toupper(static_cast<int>(code)) : 0) {
    case 'C':
        CopyToClipBoard();
        return;
    case 'X':
        CopyToClipBoard();
        ClearChar();
        return;
    case 'V':
        PasteClipBoard();
        return;
    case 'A':
        GetHelper()->GetInitialSelection(this);
        mTypedCount = 0;
        return;
    case 'Z':
        if (mText == mBackup && mArithmetic == kArithmetic_None)
            break;
        AbortEdit();
        return;
    default:
        break;
    }
    TControl::DoCommandKeyEvent(event);
}

void TNumericEntryText::DoMenuCommand(std::int32_t command) {
    const StDispatch dispatch;
    switch (mEditable && IsTarget() ? command : 0) {
    case kEntryCommand_Copy:
        CopyToClipBoard();
        return;
    case kEntryCommand_Cut:
        CopyToClipBoard();
        ClearChar();
        return;
    case kEntryCommand_Paste:
        PasteClipBoard();
        return;
    case kEntryCommand_Clear:
        ClearChar();
        return;
    case kCommand_Undo:
        // An edit that is not finished is taken back before anything that was done earlier.
        if (mText == mBackup && mArithmetic == kArithmetic_None)
            break;
        AbortEdit();
        return;
    default:
        break;
    }
    TControl::DoMenuCommand(command);
}

void TNumericEntryText::DoSetupMenus() {
    TControl::DoSetupMenus();
    if (!mEditable || !IsTarget())
        return;
    for (const std::int32_t command :
         {std::int32_t{kEntryCommand_Cut}, std::int32_t{kEntryCommand_Copy},
          std::int32_t{kEntryCommand_Paste}, std::int32_t{kEntryCommand_Clear}})
        TMenuManager::ForEachItem(
            command, [](TMenuItem& item, void*) { item.SetEnabled(true); }, nullptr);
}

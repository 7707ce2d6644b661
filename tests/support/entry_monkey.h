// A monkey at a numeric entry field: turns any bytes into keys, clicks, drags, pastes and changes
// of settings, and checks after each that the field is still in order. Property tests and the
// fuzzer share it.
#pragma once

#include <cstdint>
#include <string>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentryhelper.h"
#include "app/misc/unumericentrytext.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"

/// What the texts of a format look like between two keys, spelled out anew: 9 a digit, _ a blank or
/// a digit, : either separator of frames, everything else itself.
struct EntryShape {
    ENumericEntryFormat format;
    bool subframes;
    bool optional;
    const char* mask; // null: a number, checked by its characters
    const char* empty;
};

inline constexpr EntryShape cEntryShapes[] = {
    {kNumericEntry_TimeCode, false, false, "99:99:99:99", nullptr},
    {kNumericEntry_TimeCode, true, false, "99:99:99:99.99", nullptr},
    {kNumericEntry_TimeCode, false, true, "99:99:99:99", "--:--:--:--"},
    {kNumericEntry_MinutesSeconds, false, false, "___9:99.999", nullptr},
    {kNumericEntry_MinutesSeconds, false, true, "___9:99.999", "----:--.---"},
    {kNumericEntry_FeetFrames, false, false, "_____9+99", nullptr},
    {kNumericEntry_FeetFrames, true, false, "_____9+99.99", nullptr},
    {kNumericEntry_BarsBeats, false, false, "___9|99|999", nullptr},
    {kNumericEntry_Duration, false, false, "___9|99|999", nullptr},
    {kNumericEntry_Samples, false, false, nullptr, nullptr},
    {kNumericEntry_Integer, false, false, nullptr, nullptr},
    {kNumericEntry_SignedInteger, false, false, nullptr, nullptr},
    {kNumericEntry_PlusValue, false, false, nullptr, nullptr},
    {kNumericEntry_MeterDenominator, false, false, nullptr, nullptr},
    {kNumericEntry_Volume, false, false, nullptr, nullptr},
};

/// Of formats that are one number.
inline bool HasNumberShape(const EntryShape& shape, const std::string& text) {
    if (text.size() > 31 || text.empty())
        return false;
    const bool level = shape.format == kNumericEntry_Volume;
    if (level && text == "-inf")
        return true;
    std::size_t points = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool sign = text[i] == '-' || text[i] == '+';
        const bool point = text[i] == '.' && level;
        points += point ? 1 : 0;
        if (!(text[i] >= '0' && text[i] <= '9') && !(sign && i == 0) && !point)
            return false;
    }
    return points <= 1;
}

/// Whether a text may stand in a field between two keys.
inline bool HasEntryShape(const EntryShape& shape, const std::string& text) {
    if (shape.mask == nullptr)
        return HasNumberShape(shape, text);
    std::string mask = shape.mask;
    std::string empty = shape.empty != nullptr ? shape.empty : "";
    if (shape.format == kNumericEntry_TimeCode &&
        Time_SMPTEUtils::NeedsThreeFrameDigits(Time_Session::GetTimeCodeFormat())) {
        mask.insert(11, "9");
        empty += empty.empty() ? "" : "-";
    }
    if (!empty.empty() && text == empty)
        return true;
    if (text.size() != mask.size())
        return false;
    bool digitSeen = false; // no blank behind a digit
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        const bool dropMark = shape.format == kNumericEntry_TimeCode && i == 8 && text[i] == ';';
        if (mask[i] == '9'   ? !digit
            : mask[i] == '_' ? !digit && (text[i] != ' ' || digitSeen)
                             : text[i] != mask[i] && !dropMark)
            return false;
        digitSeen = digitSeen || digit;
    }
    return true;
}

class EntryMonkey {
  public:
    explicit EntryMonkey(const EntryShape& shape) : mShape(shape) {
        QLX_Init::Init();
        Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
        Time_Session::SetFrameOffset(0);
        mApplication = new TApplication;
        mRoot = new TView;
        mRoot->IView(nullptr, VRect(0, 0, 300, 100));
        mRoot->IEventHandler(mApplication);
        mField = new TNumericEntryText;
        mField->IView(mRoot, VRect(10, 10, 200, 34));
        mField->SetLocalFormat(shape.format, shape.subframes, shape.optional);
        mField->SetMinMaxIntegerValues(-5000, 5000);
        mField->BecomeTarget();
    }
    ~EntryMonkey() {
        mRoot->Free();
        mApplication->Free();
    }
    EntryMonkey(const EntryMonkey&) = delete;
    EntryMonkey& operator=(const EntryMonkey&) = delete;

    /// One deed, chosen by a byte, with a byte to go by.
    void Do(std::uint8_t what, std::uint8_t how) {
        switch (what % 32) {
        default: // mostly the keys that mean something
            Key(static_cast<unsigned char>(
                "0123456789.,+-*/=\r\x03\x08\x7F\x1C\x1D\x1E\x1F"[how % 25]));
            break;
        case 20:
            Key(how);
            break;
        case 21:
            Key(how * 0x101u); // code points, also full-width ones
            break;
        case 22:
            Key(0xFF10u + how % 10);
            break;
        case 23:
            Click(how);
            break;
        case 24:
            mField->AddValueToCurrentSelection(static_cast<std::int8_t>(how) * 1000001LL);
            break;
        case 25:
            mField->PasteText(cPastes[how % cPasteCount]);
            break;
        case 26:
            Time_Session::SetTimeCodeFormat(
                static_cast<ETimeCodeFormat>(how % cTimeCodeFormatCount));
            break;
        case 27:
            mField->SetNormalArrowMode((how & 1) != 0);
            mField->SetUpdateClientWhenKeyPressed((how & 2) != 0);
            mField->SetIsDurationText((how & 4) != 0 &&
                                      mField->GetArithmeticMode() == kArithmetic_None);
            break;
        case 28:
            mField->SetMinMaxIntegerValues(static_cast<std::int8_t>(how) * 7, 100 - how);
            break;
        case 29:
            how % 2 != 0 ? mField->BecomeTarget() : mField->ResignTarget();
            break;
        case 30:
            Key(kDAW_Key_Escape);
            break;
        case 18:
            Undo();
            break;
        case 19:
            how % 2 != 0 ? (void)mField->Validate() : mField->SetTypedCount(0);
            break;
        case 31:
            Time_Session::SetSampleRate(how % 2 != 0 ? 44100 : 192000);
            Time_Session::SetFrameOffset(how * 1000);
            break;
        }
    }

    /// Empty when all is in order, else what is not.
    [[nodiscard]] std::string Complaint() {
        (void)mField->GetLocalFormat(); // lets the field follow a change of rate
        if (!mComplaint.empty())
            return mComplaint;
        const std::string& text = mField->GetText();
        if (!HasEntryShape(mShape, text))
            return "shape of \"" + text + "\"";
        if (!HasEntryShape(mShape, mField->GetBackup()))
            return "shape of the backup \"" + mField->GetBackup() + "\"";
        short start = 0;
        short end = 0;
        mField->GetSelection(start, end);
        const bool collapsed = start == 0 && end == 0;
        if (!collapsed && !mField->GetHelper()->IsSelection(mField, start, end))
            return "selection " + std::to_string(start) + ".." + std::to_string(end) + " of \"" +
                   text + "\"";
        if (!collapsed && !mField->IsTarget())
            return "a selection without the keyboard";
        if (mField->GetTypedCount() < 0 || mField->GetTypedCount() > 64)
            return "typed count " + std::to_string(mField->GetTypedCount());
        if (mField->GetArithmeticMode() != kArithmetic_None && !mField->IsTarget())
            return "arithmetic without the keyboard";
        if (mField->IsTarget() != (gApplication->GetTarget() == mField))
            return "the field and the application disagree on the target";
        return "";
    }
    [[nodiscard]] TNumericEntryText* GetField() const { return mField; }

  private:
    static constexpr const char* cPastes[] = {
        "01:02:03:04", "12",   "1:02.5",      "90+15.50",          "7|3|100",
        "-6.5 dB",     "x",    "48000",       "99:99:99:99 @ 120", "--:--:--:--",
        "*",           "-inf", "\xEF\xBC\x99"};
    static constexpr unsigned cPasteCount = sizeof cPastes / sizeof cPastes[0];

    void Key(std::uint32_t code) {
        TToolboxEvent event;
        event.IToolboxEvent(mField, QLX_MakeKeyEvent(8, code, code, 0));
        if (code == kDAW_Key_Escape)
            event.mKeyState = kKeyState_RealEscape;
        mApplication->HandleKeyDownEvent(&event);
    }
    // What Undo gives back is the backup, out of arithmetic, and it is all of an edit: a second one
    // is not the field's.
    void Undo() {
        const bool edits = mField->IsTarget() && (mField->GetText() != mField->GetBackup() ||
                                                  mField->GetArithmeticMode() != kArithmetic_None);
        const std::string backup = mField->GetBackup();
        const std::string before = mField->GetText();
        mField->DoMenuCommand(kCommand_Undo);
        if (mField->GetText() != (edits ? backup : before))
            mComplaint = "undo gave \"" + mField->GetText() + "\" for \"" + backup + "\"";
        if (edits &&
            (mField->GetTypedCount() != 0 || mField->GetArithmeticMode() != kArithmetic_None))
            mComplaint = "an edit goes on after undo";
    }
    void Click(std::uint8_t where) {
        TToolboxEvent event;
        event.IToolboxEvent(mField, QLX_MakeMouseEvent(3, {where, 12}, 0));
        mField->DoMouseCommand(VPoint(where, 12), &event);
    }

    EntryShape mShape;
    std::string mComplaint;
    TApplication* mApplication;
    TView* mRoot;
    TNumericEntryText* mField;
};

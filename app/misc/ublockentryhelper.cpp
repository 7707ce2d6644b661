#include "app/misc/ublockentryhelper.h"

#include <algorithm>
#include <cmath>

#include "app/misc/uentrypaste.h"
#include "app/misc/unumericentrytext.h"
#include "mediakit/time/time_muldiv.h"

namespace {

CEntryState StateOf(TNumericEntryText* field) {
    CEntryState state;
    state.mText = field->GetText();
    field->GetSelection(state.mSelection.mStart, state.mSelection.mEnd);
    state.mTypedCount = field->GetTypedCount();
    return state;
}

void Apply(TNumericEntryText* field, const CEntryState& state) {
    field->SetTypedCount(state.mTypedCount);
    field->ChangeText(state.mText);
}

void Select(TNumericEntryText* field, const CEntryBlock& block) {
    field->SetSelection(block.mStart, block.mEnd);
}

} // namespace

// ---- Selection ----

void CBlockEntryHelper::CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) {
    const CEntryLayout layout = GetLayout(field);
    Select(field, layout.GetBlock(layout.FindBlockAt(field->GetCharacterAt(where))));
}

bool CBlockEntryHelper::HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                                        bool wrap) {
    CEntryBlock selection;
    field->GetSelection(selection.mStart, selection.mEnd);
    const bool wrapped = GetLayout(field).Move(selection, direction, wrap);
    Select(field, selection);
    return wrapped;
}

void CBlockEntryHelper::GetInitialSelection(TNumericEntryText* field) {
    const CEntryLayout layout = GetLayout(field);
    Select(field, TypesIntoWhole() ? layout.GetWhole() : layout.GetBlock(0));
}

bool CBlockEntryHelper::IsSelection(TNumericEntryText* field, short start, short end) {
    return GetLayout(field).IsSelection({start, end});
}

void CBlockEntryHelper::GetValueRange(TNumericEntryText* field, double& minimum, double& maximum) {
    minimum = static_cast<double>(UnitsToSamples(field, GetMinUnits(field)));
    maximum = static_cast<double>(UnitsToSamples(field, GetMaxUnits(field)));
}

// ---- Typing ----

void CBlockEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    const bool digit = character >= '0' && character <= '9';
    if (!digit && character != '.' && character != ',')
        return;
    const CEntryLayout layout = GetLayout(field);
    CEntryState state = StateOf(field);
    // A selection that is none (after Return it is collapsed) begins afresh.
    if (!layout.IsSelection(state.mSelection)) {
        GetInitialSelection(field);
        state = StateOf(field);
        state.mTypedCount = 0;
    }
    int block = layout.FindBlock(state.mSelection);
    if (block < 0 && !TypesIntoWhole())
        block = 0;
    if (block >= 0 && !digit) {
        field->HiliteNextBlock(character == '.' ? kBlock_Next : kBlock_Previous, /*wrap*/ true);
        field->SetTypedCount(0);
        return;
    }
    if (block < 0 && character == ',')
        return;
    if (state.mText.size() != static_cast<std::size_t>(layout.GetLength()) ||
        IsEmptyText(field, state.mText))
        state.mText = GetZeroText(field);
    if (block >= 0) {
        Select(field, layout.GetBlock(block));
        layout.TypeIntoBlock(state, block, character, GetPadding(block));
        MendLaterBlocks(field, state.mText, block);
    } else if (digit) {
        layout.TypeIntoWhole(state, character);
    } else {
        layout.TypePointIntoWhole(state);
    }
    Apply(field, state);
}

void CBlockEntryHelper::ResetCurrentText(TNumericEntryText* field) {
    const char* const empty = GetEmptyText(field);
    field->ChangeText(empty != nullptr ? std::string(empty) : GetZeroText(field));
}

void CBlockEntryHelper::PrepareTextForEditing(TNumericEntryText* field) {
    if (!field->IsWildcard() && !Validate(field))
        ResetCurrentText(field);
}

// ---- Values ----

std::int64_t CBlockEntryHelper::Clamp(TNumericEntryText* field, std::int64_t units) const {
    return std::clamp(units, GetMinUnits(field), std::max(GetMinUnits(field), GetMaxUnits(field)));
}

bool CBlockEntryHelper::IsEmptyText(TNumericEntryText* field, const std::string& text) const {
    const char* const empty = GetEmptyText(field);
    return empty != nullptr && text == empty;
}

std::string CBlockEntryHelper::UnitsToText(TNumericEntryText* field, std::int64_t units) const {
    std::string text;
    WriteUnits(field, Clamp(field, units), text);
    return text;
}

bool CBlockEntryHelper::Validate(TNumericEntryText* field) {
    const std::string& text = field->GetText();
    if (IsEmptyText(field, text))
        return true;
    std::int64_t units = 0;
    if (!MatchesShape(field, text) || !ReadUnits(field, text, units))
        return false;
    field->ChangeText(UnitsToText(field, units));
    return true;
}

void CBlockEntryHelper::AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) {
    CEntryBlock selection;
    field->GetSelection(selection.mStart, selection.mEnd);
    std::int64_t units = 0;
    if (!IsEmptyText(field, field->GetText()) &&
        (!MatchesShape(field, field->GetText()) || !ReadUnits(field, field->GetText(), units)))
        return;
    const int block = GetLayout(field).FindBlock(selection);
    field->ChangeText(UnitsToText(field, StepUnits(field, units, block, delta)));
}

void CBlockEntryHelper::DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                                           const std::string& operand, bool subtract,
                                           std::string& result) {
    // "No value" counts as zero on either side; with both empty there is nothing to do.
    std::int64_t left = 0;
    std::int64_t right = 0;
    const bool noLeft = IsEmptyText(field, base);
    const bool noRight = IsEmptyText(field, operand);
    if ((!noLeft && !ReadUnits(field, base, left)) ||
        (!noRight && !ReadUnits(field, operand, right)))
        return;
    if (noRight) {
        result = base;
        return;
    }
    result = UnitsToText(field,
                         Cmn_SaturatingAdd(left, subtract ? Time_SaturatingNegate(right) : right));
}

bool CBlockEntryHelper::SupportsCalculation(ENumericEntryCalculationType) { return true; }

void CBlockEntryHelper::IntegerValueToString(std::int64_t value, std::string& text) {
    text = UnitsToText(nullptr, SamplesToUnits(nullptr, value));
}

void CBlockEntryHelper::FloatValueToString(double value, std::string& text) {
    const double samples = value * Time_Session::GetSampleRate();
    constexpr double limit = 9.0e18;
    const bool countable = std::isfinite(samples);
    const double held = countable ? std::clamp(samples, -limit, limit) : 0.0;
    IntegerValueToString(std::llround(held), text);
}

bool CBlockEntryHelper::SampleToString(TNumericEntryText* field, std::int64_t samples,
                                       std::string& text) {
    text = UnitsToText(field, SamplesToUnits(field, samples));
    return true;
}

bool CBlockEntryHelper::TextToSamples(TNumericEntryText* field, std::int64_t& samples) {
    std::int64_t units = 0;
    if (IsEmptyText(field, field->GetText()) || !MatchesShape(field, field->GetText()) ||
        !ReadUnits(field, field->GetText(), units))
        return false;
    samples = UnitsToSamples(field, Clamp(field, units));
    return true;
}

void CBlockEntryHelper::GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) {
    *data = CNumericEntryData();
    data->mTimeCodeFormat = field->GetTimeCodeFormat();
    data->mIsDuration = field->IsDurationText();
    data->mIsWildcard = field->IsWildcard();
    data->mIsEmpty = IsEmptyText(field, field->GetText());
    std::int64_t units = 0;
    if (!data->mIsEmpty && !data->mIsWildcard)
        ReadUnits(field, field->GetText(), units);
    data->mSMPTE = Time_SMPTE(data->mTimeCodeFormat);
    data->mValue = UnitsToSamples(field, units);
    data->mFloatValue = static_cast<double>(data->mValue) / Time_Session::GetSampleRate();
    FillData(field, units, data);
}

void CBlockEntryHelper::CaptureTime(TNumericEntryText* field) {
    const auto callback = GetCaptureTimeCallback();
    if (callback == nullptr)
        return;
    const Time_SMPTE now = callback();
    const std::int64_t samples = Time_SMPTEUtils::GetSamplesFromStartFrame(now).GetSamples();
    if (samples < 0 || samples > Time_Typed::sMaxSessionSample)
        return;
    std::int64_t units = 0;
    CPastedTime captured;
    captured.mKind = CPastedTime::Kind::TimeCode;
    captured.mSMPTE = now;
    // The label itself where the format can show it: going through samples could lose a part of it.
    if (!TakePasted(field, captured, units))
        units = SamplesToUnits(field, samples);
    field->ChangeText(UnitsToText(field, units));
}

bool CBlockEntryHelper::HasShape(TNumericEntryText* field, const std::string& text) {
    return IsEmptyText(field, text) ||
           (text.size() == static_cast<std::size_t>(GetLayout(field).GetLength()) &&
            MatchesShape(field, text));
}

// ---- Pasting ----

// Digits without separators are what typing them one by one into a fresh edit gives.
bool CBlockEntryHelper::PasteDigits(TNumericEntryText* field, const std::string& digits,
                                    std::int64_t& units) const {
    const CEntryLayout layout = GetLayout(field);
    if (digits.size() > static_cast<std::size_t>(layout.CountDigits()))
        return false;
    CEntryState state;
    state.mText = GetZeroText(field);
    layout.ZeroFrom(state.mText, 0);
    for (const char digit : digits)
        layout.TypeIntoWhole(state, digit);
    return ReadUnits(field, state.mText, units);
}

bool CBlockEntryHelper::ParsePaste(TNumericEntryText* field, const std::string& pasted,
                                   std::string& text, std::string& report) {
    std::string clean;
    if (!Entry_CleanPaste(pasted, clean, report))
        return false;
    if (IsEmptyText(field, clean)) {
        text = clean;
        report = "no value";
        return true;
    }
    CPastedTime time;
    if (!Entry_ReadPastedTime(clean, field->GetTimeCodeFormat(), time, report))
        return false;
    std::int64_t units = 0;
    if (time.mKind == CPastedTime::Kind::Digits) {
        if (!PasteDigits(field, time.mDigits, units)) {
            report = "\"" + clean + "\" has more digits than the field";
            return false;
        }
    } else if (!TakePasted(field, time, units)) {
        units = SamplesToUnits(field, Entry_PastedSamples(time, field->IsDurationText()));
    }
    if (units != Clamp(field, units)) {
        std::string shown;
        WriteUnits(field, Clamp(field, units), shown);
        report += ", which lies outside what the field can show (the nearest is " + shown + ")";
        return false;
    }
    text = UnitsToText(field, units);
    report += ": " + text;
    return true;
}

// ---- What formats override ----

std::int64_t CBlockEntryHelper::GetMinUnits(TNumericEntryText*) const { return 0; }

const char* CBlockEntryHelper::GetEmptyText(TNumericEntryText*) const { return nullptr; }

char CBlockEntryHelper::GetPadding(int) const { return '0'; }

bool CBlockEntryHelper::TypesIntoWhole() const { return false; }

void CBlockEntryHelper::MendLaterBlocks(TNumericEntryText*, std::string&, int) const {}

bool CBlockEntryHelper::TakePasted(TNumericEntryText*, const CPastedTime&, std::int64_t&) const {
    return false;
}

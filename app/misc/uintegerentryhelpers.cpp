#include "app/misc/uintegerentryhelpers.h"

#include <algorithm>
#include <cmath>

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"
#include "basekit/cmn/cmn_string.h"
#include "mediakit/time/time_muldiv.h"

namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

bool HoldsDigit(const std::string& text) { return std::any_of(text.begin(), text.end(), IsDigit); }

bool ReadsZero(const std::string& text) {
    return HoldsDigit(text) && text.find_first_not_of("+-0") == std::string::npos;
}

std::int64_t RoundToInteger(double value) {
    constexpr double limit = 9.2e18;
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<std::int64_t>::max();
    if (value <= -limit)
        return std::numeric_limits<std::int64_t>::min();
    return std::llround(value);
}

} // namespace

// ---- CNumberEntryHelper ----

void CNumberEntryHelper::Put(TNumericEntryText* field, const std::string& text) const {
    field->ChangeText(text);
    // Whoever does not have the keyboard shows no selection.
    if (field->IsTarget())
        GetWhole(field);
}

void CNumberEntryHelper::GetWhole(TNumericEntryText* field) {
    field->SetSelection(0, static_cast<short>(field->GetText().size()));
}

void CNumberEntryHelper::CalculateHiliteSelection(TNumericEntryText* field, const VPoint&) {
    GetInitialSelection(field);
}

void CNumberEntryHelper::GetInitialSelection(TNumericEntryText* field) { GetWhole(field); }

bool CNumberEntryHelper::HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection, bool) {
    GetInitialSelection(field);
    return true;
}

void CNumberEntryHelper::GetValueRange(TNumericEntryText* field, double& minimum, double& maximum) {
    std::int64_t least = 0;
    std::int64_t most = 0;
    GetBounds(field, least, most);
    minimum = static_cast<double>(least) / GetScale();
    maximum = static_cast<double>(most) / GetScale();
}

double CNumberEntryHelper::GetScale() const { return 1; }

bool CNumberEntryHelper::IsSelection(TNumericEntryText* field, short start, short end) {
    return start == 0 && end == static_cast<short>(field->GetText().size());
}

bool CNumberEntryHelper::ReadValue(const std::string& text, std::int64_t& value) const {
    if (!HoldsDigit(text))
        return false;
    value = Cmn_StringToInt64(text); // held at the limits
    return true;
}

void CNumberEntryHelper::WriteValue(std::int64_t value, std::string& text) const {
    text = std::to_string(value);
}

void CNumberEntryHelper::GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                                   std::int64_t& maximum) const {
    minimum = field->GetMinIntegerValue();
    maximum = field->GetMaxIntegerValue();
}

std::int64_t CNumberEntryHelper::Allowed(TNumericEntryText*, std::int64_t value) const {
    return value;
}

std::int64_t CNumberEntryHelper::Held(TNumericEntryText* field, std::int64_t value) const {
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    GetBounds(field, minimum, maximum);
    return Allowed(field, std::clamp(value, minimum, std::max(minimum, maximum)));
}

std::int64_t CNumberEntryHelper::StepValue(TNumericEntryText* field, std::int64_t value,
                                           std::int64_t delta) const {
    if (!field->IsUsingFixedNumberSet())
        return Cmn_SaturatingAdd(value, delta);
    // Beyond a few members every step lands on the same end.
    const std::int64_t steps = std::min<std::int64_t>(
        static_cast<std::int64_t>(std::min<std::uint64_t>(Time_Magnitude(delta), 1000000)),
        1000000);
    for (std::int64_t i = 0; i < steps; ++i) {
        const std::int64_t next = delta > 0 ? field->GetNextInFixedNumberSet(value)
                                            : field->GetPrevInFixedNumberSet(value);
        if (next == value)
            break;
        value = next;
    }
    return value;
}

bool CNumberEntryHelper::Validate(TNumericEntryText* field) {
    if (field->IsWildcard())
        return true;
    std::int64_t value = 0;
    if (!HasShape(field, field->GetText()) || !ReadValue(field->GetText(), value))
        return false;
    std::string text;
    WriteValue(Held(field, value), text);
    Put(field, text);
    return true;
}

void CNumberEntryHelper::AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) {
    std::int64_t value = 0;
    if (field->IsWildcard() || !ReadValue(field->GetText(), value))
        return;
    std::string text;
    WriteValue(Held(field, StepValue(field, value, delta)), text);
    Put(field, text);
}

void CNumberEntryHelper::ResetCurrentText(TNumericEntryText* field) {
    std::string text;
    WriteValue(GetDefaultValueInt(), text);
    field->ChangeText(text);
    // What was selected of the old text may not be there any more.
    if (field->IsTarget())
        GetInitialSelection(field);
}

void CNumberEntryHelper::DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                                            const std::string& operand, bool subtract,
                                            std::string& result) {
    std::int64_t left = 0;
    std::int64_t right = 0;
    if (!ReadValue(base, left) || !ReadValue(operand, right))
        return;
    WriteValue(
        Held(field, Cmn_SaturatingAdd(left, subtract ? Time_SaturatingNegate(right) : right)),
        result);
}

void CNumberEntryHelper::PrepareTextForEditing(TNumericEntryText* field) {
    if (!field->IsWildcard() && !Validate(field))
        ResetCurrentText(field);
}

void CNumberEntryHelper::GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) {
    *data = CNumericEntryData();
    data->mTimeCodeFormat = field->GetTimeCodeFormat();
    data->mType = kEntryType_Number;
    data->mIsWildcard = field->IsWildcard();
    data->mIsDuration = field->IsDurationText();
    std::int64_t value = 0;
    if (!data->mIsWildcard)
        ReadValue(field->GetText(), value);
    data->mValue = value;
    data->mFloatValue = static_cast<double>(value);
}

bool CNumberEntryHelper::SupportsCalculation(ENumericEntryCalculationType) { return true; }

void CNumberEntryHelper::IntegerValueToString(std::int64_t value, std::string& text) {
    WriteValue(value, text);
}

void CNumberEntryHelper::FloatValueToString(double value, std::string& text) {
    WriteValue(RoundToInteger(value), text);
}

bool CNumberEntryHelper::HasShape(TNumericEntryText*, const std::string& text) {
    return !text.empty() && text.size() <= kMaxCharacters &&
           Entry_IsInteger(text, /*whileTyping*/ true);
}

bool CNumberEntryHelper::ParsePaste(TNumericEntryText* field, const std::string& pasted,
                                    std::string& text, std::string& report) {
    std::string clean;
    std::int64_t value = 0;
    if (!Entry_CleanPaste(pasted, clean, report))
        return false;
    if (clean == kNumericEntry_Wildcard && field->AcceptsWildcard()) {
        text = clean;
        report = "any number";
        return true;
    }
    if (!Entry_ReadPastedInteger(clean, value, report))
        return false;
    const std::int64_t held = Held(field, value);
    if (held != value) {
        report += ", which this field does not take (the nearest is " + std::to_string(held) + ")";
        return false;
    }
    WriteValue(value, text);
    report += ": " + text;
    return true;
}

// ---- Integers ----

void CIntegerValueEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    const bool sign = character == '-' || (TypesSigns() && character == '+');
    if (!IsDigit(character) && !sign)
        return;
    const bool first = field->GetTypedCount() == 0;
    if (sign && !first)
        return;
    std::string text = first ? std::string() : field->GetText();
    if (text.size() >= kMaxCharacters)
        return;
    text += character;
    field->SetTypedCount(field->GetTypedCount() + 1);
    if (ReadsZero(text)) {
        text = "0";
        field->SetTypedCount(0);
    }
    Put(field, text);
}

bool CSignedIntegerValueEntryHelper::TypesSigns() const { return true; }

// ---- Offsets ----

void CPlusValueEntryHelper::StaticIntegerValueToString(std::int64_t value, std::string& text) {
    text = value < 0 ? std::to_string(value) : "+" + std::to_string(value);
}

void CPlusValueEntryHelper::WriteValue(std::int64_t value, std::string& text) const {
    StaticIntegerValueToString(value, text);
}

// The sign in front is the format's, never typed: the first digit begins a new positive offset.
void CPlusValueEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    if (!IsDigit(character))
        return;
    const bool first = field->GetTypedCount() == 0;
    std::string text = first ? std::string("+") : field->GetText();
    if (text.size() >= kMaxCharacters)
        return;
    text += character;
    field->SetTypedCount(field->GetTypedCount() + 1);
    if (ReadsZero(text)) {
        text = "+0";
        field->SetTypedCount(0);
    }
    Put(field, text);
}

// ---- Meter denominators ----

namespace {

constexpr std::int64_t cLargestDenominator = 64;

std::int64_t NextPowerOfTwo(std::int64_t value) {
    std::int64_t power = 1;
    while (power < value && power < cLargestDenominator)
        power *= 2;
    return power;
}

std::int64_t PreviousPowerOfTwo(std::int64_t value) {
    std::int64_t power = 1;
    while (power * 2 <= value && power < cLargestDenominator)
        power *= 2;
    return power;
}

} // namespace

bool CMeterDenominatorEntryHelper::StringToIntegerValue(const std::string& text,
                                                        std::int64_t& value) {
    if (!HoldsDigit(text))
        return false;
    value = Cmn_StringToInt64(text);
    return true;
}

void CMeterDenominatorEntryHelper::GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                                             std::int64_t& maximum) const {
    minimum = std::clamp(field->GetMinIntegerValue(), std::int64_t{1}, cLargestDenominator);
    maximum = std::clamp(field->GetMaxIntegerValue(), minimum, cLargestDenominator);
}

// The next larger denominator; where that is beyond the bounds, the largest one within them.
std::int64_t CMeterDenominatorEntryHelper::Allowed(TNumericEntryText* field,
                                                   std::int64_t value) const {
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    GetBounds(field, minimum, maximum);
    const std::int64_t next = NextPowerOfTwo(value);
    return next <= maximum ? next : PreviousPowerOfTwo(maximum);
}

std::int64_t CMeterDenominatorEntryHelper::StepValue(TNumericEntryText* field, std::int64_t value,
                                                     std::int64_t delta) const {
    if (field->IsUsingFixedNumberSet())
        return CNumberEntryHelper::StepValue(field, value, delta);
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    GetBounds(field, minimum, maximum);
    const std::int64_t least = NextPowerOfTwo(minimum);
    const std::int64_t most = PreviousPowerOfTwo(maximum);
    for (; delta > 0 && value < most; --delta)
        value = NextPowerOfTwo(value + 1);
    for (; delta < 0 && value > least; ++delta)
        value = PreviousPowerOfTwo(value - 1);
    return value;
}

void CMeterDenominatorEntryHelper::LocalValidateAndChange(TNumericEntryText* field) const {
    std::int64_t value = 0;
    if (!StringToIntegerValue(field->GetText(), value))
        return;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    GetBounds(field, minimum, maximum);
    if (value < minimum || value > maximum)
        Put(field, std::to_string(std::clamp(value, minimum, maximum)));
}

void CMeterDenominatorEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    const bool sign = character == '-' || character == '+';
    if (!IsDigit(character) && !sign)
        return;
    const bool first = field->GetTypedCount() == 0;
    if (sign && !first)
        return;
    std::string text = first ? std::string() : field->GetText();
    if (text.size() >= kMaxCharacters)
        return;
    text += character;
    // The value is held in its range with every digit, so that the text does not grow with them.
    field->SetTypedCount(std::min(field->GetTypedCount() + 1, static_cast<int>(kMaxCharacters)));
    Put(field, text);
    if (!sign)
        LocalValidateAndChange(field);
}

bool CMeterDenominatorEntryHelper::SupportsCalculation(ENumericEntryCalculationType) {
    return false;
}

// ---- Samples ----

void CDecimalSamplesEntryHelper::GetBounds(TNumericEntryText*, std::int64_t& minimum,
                                           std::int64_t& maximum) const {
    minimum = Time_Typed::sMinTimes;
    maximum = Time_Typed::sMaxSessionSample;
}

void CDecimalSamplesEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    if (!IsDigit(character))
        return;
    const bool first = field->GetTypedCount() == 0;
    std::string text = first ? std::string() : field->GetText();
    text += character;
    Time_Sample typed;
    if (text.size() > kMaxCharacters || !Time_SampleUtils::FromString(text, typed) ||
        typed.GetSamples() < Time_Typed::sMinTimes ||
        typed.GetSamples() > Time_Typed::sMaxSessionSample)
        return;
    field->SetTypedCount(field->GetTypedCount() + 1);
    Put(field, text);
}

bool CDecimalSamplesEntryHelper::SupportsCalculation(ENumericEntryCalculationType) { return false; }

bool CDecimalSamplesEntryHelper::HasShape(TNumericEntryText*, const std::string& text) {
    return !text.empty() && text.size() <= kMaxCharacters &&
           std::all_of(text.begin(), text.end(), IsDigit);
}

void CDecimalSamplesEntryHelper::FloatValueToString(double value, std::string& text) {
    WriteValue(std::max<std::int64_t>(RoundToInteger(value * Time_Session::GetSampleRate()), 0),
               text);
}

bool CDecimalSamplesEntryHelper::SampleToString(TNumericEntryText* field, std::int64_t samples,
                                                std::string& text) {
    WriteValue(Held(field, samples), text);
    return true;
}

void CDecimalSamplesEntryHelper::GetCallbackData(TNumericEntryText* field,
                                                 CNumericEntryData* data) {
    CNumberEntryHelper::GetCallbackData(field, data);
    data->mType = kEntryType_Samples;
}

bool CDecimalSamplesEntryHelper::TextToSamples(TNumericEntryText* field, std::int64_t& samples) {
    return ReadValue(field->GetText(), samples);
}

void CDecimalSamplesEntryHelper::CaptureTime(TNumericEntryText* field) {
    const auto callback = GetCaptureTimeCallback();
    if (callback == nullptr)
        return;
    const std::int64_t samples = Time_SMPTEUtils::GetSamplesFromStartFrame(callback()).GetSamples();
    if (samples >= 0 && samples <= Time_Typed::sMaxSessionSample)
        Put(field, std::to_string(samples));
}

bool CDecimalSamplesEntryHelper::ParsePaste(TNumericEntryText* field, const std::string& pasted,
                                            std::string& text, std::string& report) {
    std::string clean;
    CPastedTime time;
    if (!Entry_CleanPaste(pasted, clean, report) ||
        !Entry_ReadPastedTime(clean, field->GetTimeCodeFormat(), time, report))
        return false;
    std::int64_t samples = 0;
    if (time.mKind == CPastedTime::Kind::Digits) {
        if (!Entry_ReadPastedInteger(time.mDigits, samples, report))
            return false;
        report = "\"" + clean + "\" read as samples";
    } else {
        samples = Entry_PastedSamples(time, field->IsDurationText());
    }
    if (samples != Held(field, samples)) {
        report += ", which lies outside the session";
        return false;
    }
    WriteValue(samples, text);
    report += ": " + text;
    return true;
}

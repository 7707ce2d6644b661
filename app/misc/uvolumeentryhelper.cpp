#include "app/misc/uvolumeentryhelper.h"

#include <algorithm>
#include <cmath>

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"
#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_scan.h"

namespace {

constexpr int kMostTyped = 31;

const char cMinusInfinityText[] = "-inf";

// Held to what three digits before the point can say.
std::int64_t ToTenths(double decibels) {
    if (std::isnan(decibels))
        return 0;
    return std::llround(std::clamp(decibels, -999.9, 999.9) * 10);
}

} // namespace

bool CVolumeEntryHelper::StringToIntegerValue(const std::string& text, std::int64_t& value) {
    if (text == cMinusInfinityText) {
        value = kMinusInfinity;
        return true;
    }
    std::string_view rest(text);
    const bool negative = Time_TakeChar(rest, '-');
    if (!negative)
        Time_TakeChar(rest, '+');
    std::int64_t decibels = 0;
    std::int64_t tenths = 0;
    std::size_t digits = 0;
    const bool hasWhole = Time_TakeDigits(rest, 9, decibels, digits);
    bool hasTenth = false;
    if (Time_TakeChar(rest, '.'))
        hasTenth = Time_TakeDigits(rest, 1, tenths, digits);
    if (!rest.empty() || (!hasWhole && !hasTenth))
        return false;
    value = (decibels * 10 + tenths) * (negative ? -1 : 1);
    return true;
}

void CVolumeEntryHelper::MinMaxValueToString(std::int64_t value, std::string& text) {
    if (value <= kMinusInfinity) {
        text = cMinusInfinityText;
        return;
    }
    const std::uint64_t distance = Time_Magnitude(value);
    text = value < 0 ? "-" : value > 0 ? "+" : "";
    text += std::to_string(distance / 10);
    text += '.';
    text += static_cast<char>('0' + distance % 10);
}

bool CVolumeEntryHelper::ReadValue(const std::string& text, std::int64_t& value) const {
    return StringToIntegerValue(text, value);
}

void CVolumeEntryHelper::WriteValue(std::int64_t value, std::string& text) const {
    MinMaxValueToString(value, text);
}

void CVolumeEntryHelper::GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                                   std::int64_t& maximum) const {
    minimum = kMinusInfinity;
    maximum = kLoudest;
    if (!field->HasFloatBounds())
        return;
    minimum = std::max(kMinusInfinity, ToTenths(field->GetMinFloatValue()));
    maximum = std::max(minimum, ToTenths(field->GetMaxFloatValue()));
}

double CVolumeEntryHelper::GetScale() const { return 10; }

std::int64_t CVolumeEntryHelper::Allowed(TNumericEntryText*, std::int64_t value) const {
    return std::max(value, kMinusInfinity);
}

void CVolumeEntryHelper::FloatValueToString(double value, std::string& text) {
    WriteValue(ToTenths(value), text);
}

// ---- Typing ----

// Digits build a positive number; "-" before it is arithmetic on the zero text. A digit behind a
// decimal that is there replaces it, so that the text never grows past its shape.
void CVolumeEntryHelper::DoTyping(TNumericEntryText* field, char character) {
    const bool point = character == '.' || character == ',';
    if (!point && (character < '0' || character > '9'))
        return;
    constexpr std::size_t wholeDigits = 3;
    // "-inf" may stand there in the middle of an edit when the host validates it.
    const bool startsAfresh = field->GetTypedCount() == 0 || field->GetText() == cMinusInfinityText;
    std::string text = startsAfresh ? std::string() : field->GetText();
    const std::size_t pointAt = text.find('.');
    if (point) {
        if (pointAt != std::string::npos)
            return;
        if (text.empty())
            text = "0";
        text += '.';
    } else if (pointAt != std::string::npos) {
        text.resize(pointAt + 1);
        text += character;
    } else if (text == "0") {
        text[0] = character;
    } else if (text.size() < wholeDigits) {
        text += character;
    } else {
        return;
    }
    // Behind the point each digit takes the last one's place: the text does not grow with them.
    field->SetTypedCount(std::min(field->GetTypedCount() + 1, kMostTyped));
    Put(field, text);
}

bool CVolumeEntryHelper::HasShape(TNumericEntryText*, const std::string& text) {
    return !text.empty() && Entry_IsLevel(text, /*whileTyping*/ true);
}

// ---- Blocks ----

namespace {

// The part before the point and the part behind it; the text's length where there is no point.
short PointOf(TNumericEntryText* field) {
    const std::string& text = field->GetText();
    return static_cast<short>(std::min(text.find('.'), text.size()));
}

short LengthOf(TNumericEntryText* field) { return static_cast<short>(field->GetText().size()); }

bool HasTenths(TNumericEntryText* field) { return PointOf(field) + 1 < LengthOf(field); }

} // namespace

bool CVolumeEntryHelper::IsSelection(TNumericEntryText* field, short start, short end) {
    if (start == 0 && (end == LengthOf(field) || (HasTenths(field) && end == PointOf(field))))
        return true;
    return HasTenths(field) && start == PointOf(field) + 1 && end == LengthOf(field);
}

void CVolumeEntryHelper::CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) {
    if (!HasTenths(field))
        GetInitialSelection(field);
    else if (field->GetCharacterAt(where) > PointOf(field))
        field->SetSelection(static_cast<short>(PointOf(field) + 1), LengthOf(field));
    else
        field->SetSelection(0, PointOf(field));
}

bool CVolumeEntryHelper::HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                                         bool wrap) {
    short start = 0;
    short end = 0;
    field->GetSelection(start, end);
    if (!HasTenths(field)) {
        GetInitialSelection(field);
        return true;
    }
    const bool inTenths = start == PointOf(field) + 1;
    const bool inWhole = start == 0 && end == PointOf(field);
    const bool toTenths = direction == kBlock_Next;
    const bool atEnd = toTenths ? inTenths : inWhole;
    if (atEnd && !wrap)
        return true;
    if (!inTenths && !inWhole)
        field->SetSelection(0, PointOf(field));
    else if (inTenths)
        field->SetSelection(0, PointOf(field));
    else
        field->SetSelection(static_cast<short>(PointOf(field) + 1), LengthOf(field));
    return atEnd;
}

void CVolumeEntryHelper::AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) {
    short start = 0;
    short end = 0;
    field->GetSelection(start, end);
    const bool byDecibels = HasTenths(field) && start == 0 && end == PointOf(field);
    const bool byTenths = HasTenths(field) && start == PointOf(field) + 1;
    std::int64_t value = 0;
    if (field->IsWildcard() || !ReadValue(field->GetText(), value))
        return;
    if (field->IsUsingFixedNumberSet())
        value = StepValue(field, value, delta);
    else
        value = Cmn_SaturatingAdd(value, Time_SaturatingMultiply(delta, byDecibels ? 10 : 1));
    std::string text;
    WriteValue(Held(field, value), text);
    Put(field, text);
    // The step keeps its block, although the text's length may have changed around it.
    if (!field->IsTarget() || !HasTenths(field))
        return;
    if (byDecibels)
        field->SetSelection(0, PointOf(field));
    else if (byTenths)
        field->SetSelection(static_cast<short>(PointOf(field) + 1), LengthOf(field));
}

// ---- Arithmetic and pasting ----

void CVolumeEntryHelper::DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                                            const std::string& operand, bool subtract,
                                            std::string& result) {
    // Silence stays silence, whatever is added to it.
    if (base == cMinusInfinityText) {
        result = base;
        return;
    }
    CNumberEntryHelper::DoNumericEntryMath(field, base, operand, subtract, result);
}

void CVolumeEntryHelper::GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) {
    CNumberEntryHelper::GetCallbackData(field, data);
    data->mType = kEntryType_Level;
    data->mFloatValue = static_cast<double>(data->mValue) / 10;
}

bool CVolumeEntryHelper::ParsePaste(TNumericEntryText* field, const std::string& pasted,
                                    std::string& text, std::string& report) {
    std::string clean;
    if (!Entry_CleanPaste(pasted, clean, report))
        return false;
    std::string level = clean;
    for (char& c : level)
        c = c == ',' ? '.' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (level.size() > 2 && level.compare(level.size() - 2, 2, "db") == 0)
        level.resize(level.size() - 2);
    while (!level.empty() && level.back() == ' ')
        level.pop_back();
    std::int64_t value = 0;
    if (!Entry_IsLevel(level, /*whileTyping*/ false) || !ReadValue(level, value)) {
        report = "\"" + clean +
                 "\" is no level: a number of decibels with at most one decimal, "
                 "or -inf, is expected";
        return false;
    }
    if (Held(field, value) != value) {
        std::string nearest;
        WriteValue(Held(field, value), nearest);
        report =
            "\"" + clean + "\" lies outside the field's range (the nearest is " + nearest + ")";
        return false;
    }
    WriteValue(value, text);
    report = "\"" + clean + "\" read as decibels: " + text;
    return true;
}

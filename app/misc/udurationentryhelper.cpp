#include "app/misc/udurationentryhelper.h"

#include <algorithm>

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"
#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_scan.h"

// Units are display ticks throughout.

namespace {

constexpr std::int64_t cMostBars = 9999;

// The shortest beat of all meters decides nothing: the width follows the first bar, so that all
// fields of a session have one shape.
const Time_Meter& FirstMeter() { return Time_SessionMeterMap().GetMeter(1); }

int TickDigits() { return FirstMeter().DisplayTicksPerBeat() > 1000 ? 4 : 3; }

std::string MakeText(std::int64_t bars, std::int64_t beats, std::int64_t ticks) {
    std::string text;
    Time_AppendPadded(text, static_cast<std::uint64_t>(bars), 4, ' ');
    text += '|';
    Time_AppendPadded(text, static_cast<std::uint64_t>(beats), 2, '0');
    text += '|';
    Time_AppendPadded(text, static_cast<std::uint64_t>(ticks),
                      static_cast<std::size_t>(TickDigits()), '0');
    return text;
}

bool ReadFields(const std::string& text, std::int64_t (&fields)[3]) {
    std::string_view rest(text);
    while (Time_TakeChar(rest, ' ')) {
    }
    std::size_t digits = 0;
    return Time_TakeDigits(rest, 4, fields[0], digits) && Time_TakeChar(rest, '|') &&
           Time_TakeDigits(rest, 2, fields[1], digits) && Time_TakeChar(rest, '|') &&
           Time_TakeDigits(rest, 4, fields[2], digits) && rest.empty();
}

std::int64_t ToDisplay(Time_TickLength length) { return length.GetDisplayTicks(); }

} // namespace

// ---- CDurationEntryHelper ----

bool CDurationEntryHelper::ValidDurationChars(const std::string& text) {
    return text.find_first_not_of(" |0123456789") == std::string::npos;
}

std::string CDurationEntryHelper::DurationToString(Time_TickLength length) {
    const Time_Meter& meter = FirstMeter();
    const std::int64_t perBeat = meter.DisplayTicksPerBeat();
    const std::int64_t perBar = perBeat * meter.numerator;
    const std::int64_t ticks = std::max<std::int64_t>(ToDisplay(length), 0);
    const std::int64_t bars = std::min(ticks / perBar, cMostBars);
    return MakeText(bars, ticks % perBar / perBeat, ticks % perBeat);
}

CEntryLayout CDurationEntryHelper::GetLayout(TNumericEntryText*) const {
    return {{0, 4}, {5, 7}, {8, static_cast<short>(8 + TickDigits())}};
}

std::string CDurationEntryHelper::GetZeroText(TNumericEntryText*) const {
    return MakeText(0, 0, 0);
}

bool CDurationEntryHelper::MatchesShape(TNumericEntryText*, const std::string& text) const {
    return ValidDurationChars(text) && Entry_IsBarsBeats(text, TickDigits());
}

bool CDurationEntryHelper::ReadUnits(TNumericEntryText*, const std::string& text,
                                     std::int64_t& units) const {
    std::int64_t fields[3] = {};
    if (!ReadFields(text, fields))
        return false;
    const Time_Meter& meter = FirstMeter();
    units = (fields[0] * meter.numerator + fields[1]) * meter.DisplayTicksPerBeat() + fields[2];
    return true;
}

void CDurationEntryHelper::WriteUnits(TNumericEntryText*, std::int64_t units,
                                      std::string& text) const {
    text = DurationToString(Time_TickLength::FromDisplayTicks(units));
}

std::int64_t CDurationEntryHelper::StepUnits(TNumericEntryText*, std::int64_t units, int block,
                                             std::int64_t delta) const {
    const Time_Meter& meter = FirstMeter();
    const std::int64_t beat = meter.DisplayTicksPerBeat();
    const std::int64_t step = block == 0 ? beat * meter.numerator : block == 1 ? beat : 1;
    return Cmn_SaturatingAdd(units, Time_SaturatingMultiply(delta, step));
}

std::int64_t CDurationEntryHelper::GetMinUnits(TNumericEntryText* field) const {
    if (field == nullptr)
        return 0;
    // The shortest length that is allowed, up to the next display tick.
    const std::int64_t least = field->GetLeastLength().GetTicks();
    return std::max<std::int64_t>(
        Time_MulDiv(least, 1, Time_TickLength::cInternalPerDisplay, Time_ERounding::Ceiling), 0);
}

std::int64_t CDurationEntryHelper::GetMaxUnits(TNumericEntryText* field) const {
    const Time_Meter& meter = FirstMeter();
    const std::int64_t shown = (cMostBars + 1) * meter.numerator * meter.DisplayTicksPerBeat() - 1;
    return field == nullptr ? shown : std::min(shown, ToDisplay(field->GetMostLength()));
}

std::int64_t CDurationEntryHelper::UnitsToSamples(TNumericEntryText*, std::int64_t units) const {
    return Time_SessionTempoMap()
        .ToSample(Time_TickLength::FromDisplayTicks(units), Time_Session::GetSampleRate())
        .GetSamples();
}

// The nearest display tick: samples are coarser than ticks at some tempos and finer at others, and
// rounding down would lose a tick on the way through samples.
std::int64_t CDurationEntryHelper::SamplesToUnits(TNumericEntryText*, std::int64_t samples) const {
    const Time_TickLength ticks =
        Time_SessionTempoMap().FromSample(Time_Sample(samples), Time_Session::GetSampleRate());
    return Time_MulDiv(ticks.GetTicks(), 1, Time_TickLength::cInternalPerDisplay,
                       Time_ERounding::Nearest);
}

void CDurationEntryHelper::FillData(TNumericEntryText*, std::int64_t units,
                                    CNumericEntryData* data) const {
    data->mType = kEntryType_Duration;
    data->mTicks = Time_TickLength(Time_TickLength::ToInternalTicks(units));
    data->mIsDuration = true;
}

char CDurationEntryHelper::GetPadding(int block) const { return block == 0 ? ' ' : '0'; }

bool CDurationEntryHelper::TakePasted(TNumericEntryText*, const CPastedTime& pasted,
                                      std::int64_t& units) const {
    if (pasted.mKind != CPastedTime::Kind::BarsBeats)
        return false;
    units = ToDisplay(Entry_PastedTicks(pasted, /*isLength*/ true));
    return true;
}

// ---- CBarsBeatsEntryHelper ----

std::string CBarsBeatsEntryHelper::GetZeroText(TNumericEntryText* field) const {
    if (field != nullptr && field->IsDurationText())
        return CDurationEntryHelper::GetZeroText(field);
    return MakeText(1, 1, 0);
}

bool CBarsBeatsEntryHelper::ReadUnits(TNumericEntryText* field, const std::string& text,
                                      std::int64_t& units) const {
    if (field != nullptr && field->IsDurationText())
        return CDurationEntryHelper::ReadUnits(field, text, units);
    std::int64_t fields[3] = {};
    if (!ReadFields(text, fields))
        return false;
    // Beat 0 is none; what was meant is the bar's first.
    const Time_BarBeatTick position{fields[0],
                                    static_cast<std::int32_t>(std::max<std::int64_t>(fields[1], 1)),
                                    static_cast<std::int32_t>(fields[2])};
    units = ToDisplay(Time_SessionMeterMap().ToTicks(position));
    return true;
}

void CBarsBeatsEntryHelper::WriteUnits(TNumericEntryText* field, std::int64_t units,
                                       std::string& text) const {
    if (field != nullptr && field->IsDurationText()) {
        CDurationEntryHelper::WriteUnits(field, units, text);
        return;
    }
    const Time_BarBeatTick position =
        Time_SessionMeterMap().FromTicks(Time_TickLength::FromDisplayTicks(units));
    text = MakeText(position.bar, position.beat, position.tick);
}

std::int64_t CBarsBeatsEntryHelper::StepUnits(TNumericEntryText* field, std::int64_t units,
                                              int block, std::int64_t delta) const {
    if (field != nullptr && field->IsDurationText())
        return CDurationEntryHelper::StepUnits(field, units, block, delta);
    const Time_MeterMap& map = Time_SessionMeterMap();
    Time_BarBeatTick position = map.FromTicks(Time_TickLength::FromDisplayTicks(units));
    if (block == 0) {
        position.bar =
            std::clamp(Cmn_SaturatingAdd(position.bar, delta), std::int64_t{1}, cMostBars);
        return ToDisplay(map.ToTicks(position));
    }
    const std::int64_t step = block == 1 ? map.GetMeter(position.bar).DisplayTicksPerBeat() : 1;
    return Cmn_SaturatingAdd(units, Time_SaturatingMultiply(delta, step));
}

std::int64_t CBarsBeatsEntryHelper::GetMinUnits(TNumericEntryText*) const { return 0; }

std::int64_t CBarsBeatsEntryHelper::GetMaxUnits(TNumericEntryText* field) const {
    if (field != nullptr && field->IsDurationText())
        return CDurationEntryHelper::GetMaxUnits(nullptr);
    return ToDisplay(Time_SessionMeterMap().ToTicks({cMostBars + 1, 1, 0})) - 1;
}

void CBarsBeatsEntryHelper::FillData(TNumericEntryText* field, std::int64_t units,
                                     CNumericEntryData* data) const {
    data->mType = kEntryType_BarsBeats;
    data->mTicks = Time_TickLength(Time_TickLength::ToInternalTicks(units));
    data->mIsDuration = field->IsDurationText();
}

void CBarsBeatsEntryHelper::MendLaterBlocks(TNumericEntryText* field, std::string& text,
                                            int block) const {
    // A bar without a beat means its first one.
    if (block == 0 && !field->IsDurationText())
        text[6] = '1';
}

// The operand is a length whatever the field shows: beats count from zero in it.
void CBarsBeatsEntryHelper::DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                                               const std::string& operand, bool subtract,
                                               std::string& result) {
    std::int64_t left = 0;
    std::int64_t right = 0;
    if (!ReadUnits(field, base, left) || !CDurationEntryHelper::ReadUnits(field, operand, right))
        return;
    WriteUnits(field, Clamp(field, Cmn_SaturatingAdd(left, subtract ? -right : right)), result);
}

bool CBarsBeatsEntryHelper::TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                                       std::int64_t& units) const {
    if (pasted.mKind != CPastedTime::Kind::BarsBeats)
        return false;
    if (field->IsDurationText())
        return CDurationEntryHelper::TakePasted(field, pasted, units);
    units = ToDisplay(Entry_PastedTicks(pasted, /*isLength*/ false));
    return true;
}

#include "mediakit/time/time_barbeattick.h"

#include <algorithm>

#include "basekit/cmn/cmn_assert.h"
#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_scan.h"

namespace {

constexpr std::int64_t cPicosecondsPerSecond = 1'000'000'000'000;

// Picoseconds of a quarter at 1/1000 BPM: a minute times a thousand.
constexpr std::int64_t cPicosecondsTimesTempo = 60 * cPicosecondsPerSecond * 1000;

std::int64_t TicksToPicoseconds(std::int64_t ticks, std::int32_t tempo) noexcept {
    // A quarter lasts P / tempo, so a number of ticks lasts ticks * P / (tempo * quarter). Both
    // sides lose the common factor of P and the quarter to stay inside 64 bits.
    constexpr std::int64_t common = 38400;
    static_assert(cPicosecondsTimesTempo % common == 0 &&
                  Time_TickLength::cInternalQuarter % common == 0);
    return Time_MulDiv(ticks, cPicosecondsTimesTempo / common,
                       Time_TickLength::cInternalQuarter / common * tempo, Time_ERounding::Nearest);
}

std::int64_t PicosecondsToTicks(std::int64_t picoseconds, std::int32_t tempo) noexcept {
    constexpr std::int64_t common = 38400;
    return Time_MulDiv(picoseconds, Time_TickLength::cInternalQuarter / common * tempo,
                       cPicosecondsTimesTempo / common, Time_ERounding::Nearest);
}

// The last element that begins at or before a place; the first one for places before all.
template <class Changes, class Place>
auto& LastAtOrBefore(Changes& changes, std::int64_t place, Place placeOf) noexcept {
    auto after = std::upper_bound(
        changes.begin(), changes.end(), place,
        [&](std::int64_t wanted, const auto& change) { return wanted < placeOf(change); });
    return after == changes.begin() ? changes.front() : *std::prev(after);
}

} // namespace

// ---- Time_TickLength ----

std::int64_t Time_TickLength::ToInternalTicks(std::int64_t displayTicks) noexcept {
    return Time_SaturatingMultiply(displayTicks, cInternalPerDisplay);
}

Time_TickLength Time_TickLength::FromDisplayTicks(std::int64_t displayTicks) noexcept {
    return Time_TickLength(ToInternalTicks(displayTicks));
}

std::int64_t Time_TickLength::GetDisplayTicks() const noexcept {
    return Time_FloorDiv(mTicks, cInternalPerDisplay);
}

// ---- Time_BarBeatTick ----

std::string Time_BarBeatTick::ToString() const {
    std::string text = std::to_string(bar);
    text += '|';
    text += std::to_string(beat);
    text += '|';
    Time_AppendPadded(text, static_cast<std::uint64_t>(std::max(tick, 0)), 3, '0');
    return text;
}

bool Time_BarBeatTick::FromString(std::string_view text) noexcept {
    while (Time_TakeChar(text, ' ')) {
    }
    const bool negative = Time_TakeChar(text, '-');
    std::int64_t bars = 0;
    std::int64_t beats = 0;
    std::int64_t ticks = 0;
    std::size_t digits = 0;
    if (!Time_TakeDigits(text, 12, bars, digits) || !Time_TakeChar(text, '|') ||
        !Time_TakeDigits(text, 6, beats, digits))
        return false;
    if (Time_TakeChar(text, '|') && !Time_TakeDigits(text, 8, ticks, digits))
        return false;
    if (!text.empty() || beats < 1)
        return false;
    *this = {negative ? -bars : bars, static_cast<std::int32_t>(beats),
             static_cast<std::int32_t>(ticks)};
    return true;
}

// ---- Time_MeterMap ----

Time_MeterMap::Time_MeterMap() : mChanges{{1, 0, Time_Meter()}} {}

void Time_MeterMap::SetMeter(std::int64_t bar, const Time_Meter& meter) {
    CMN_ASSERT(bar >= 1 && meter.IsValid());
    if (bar < 1 || !meter.IsValid())
        return;
    auto at = std::lower_bound(mChanges.begin(), mChanges.end(), bar,
                               [](const Change& change, std::int64_t b) { return change.bar < b; });
    if (at != mChanges.end() && at->bar == bar)
        at->meter = meter;
    else
        mChanges.insert(at, Change{bar, 0, meter});
    PlaceChanges();
}

void Time_MeterMap::RemoveMeter(std::int64_t bar) {
    if (bar == 1)
        mChanges.front().meter = Time_Meter();
    else
        std::erase_if(mChanges, [bar](const Change& change) { return change.bar == bar; });
    PlaceChanges();
}

void Time_MeterMap::PlaceChanges() noexcept {
    ++mChangeCount;
    for (std::size_t i = 1; i < mChanges.size(); ++i) {
        const Change& before = mChanges[i - 1];
        const std::int64_t ticks =
            Time_SaturatingMultiply(mChanges[i].bar - before.bar, before.meter.TicksPerBar());
        mChanges[i].tick = Cmn_SaturatingAdd(before.tick, ticks);
    }
}

const Time_MeterMap::Change& Time_MeterMap::ChangeAtBar(std::int64_t bar) const noexcept {
    return LastAtOrBefore(mChanges, bar, [](const Change& change) { return change.bar; });
}

const Time_MeterMap::Change& Time_MeterMap::ChangeAtTick(std::int64_t tick) const noexcept {
    return LastAtOrBefore(mChanges, tick, [](const Change& change) { return change.tick; });
}

const Time_Meter& Time_MeterMap::GetMeter(std::int64_t bar) const noexcept {
    return ChangeAtBar(bar).meter;
}

Time_TickLength Time_MeterMap::ToTicks(const Time_BarBeatTick& position) const noexcept {
    const Change& change = ChangeAtBar(position.bar);
    const std::int64_t bars =
        Time_SaturatingMultiply(position.bar - change.bar, change.meter.TicksPerBar());
    const std::int64_t beats = (position.beat - std::int64_t{1}) * change.meter.TicksPerBeat();
    const std::int64_t ticks = Time_TickLength::ToInternalTicks(position.tick);
    return Time_TickLength(Cmn_SaturatingAdd(Cmn_SaturatingAdd(change.tick, bars), beats + ticks));
}

Time_BarBeatTick Time_MeterMap::FromTicks(Time_TickLength ticks) const noexcept {
    const Change& change = ChangeAtTick(ticks.GetTicks());
    const std::int64_t perBar = change.meter.TicksPerBar();
    const std::int64_t perBeat = change.meter.TicksPerBeat();
    const std::int64_t fromChange =
        Cmn_SaturatingAdd(ticks.GetTicks(), Time_SaturatingNegate(change.tick));
    const std::int64_t inBar = Time_FloorMod(fromChange, perBar);
    return {change.bar + Time_FloorDiv(fromChange, perBar),
            static_cast<std::int32_t>(inBar / perBeat + 1),
            static_cast<std::int32_t>(inBar % perBeat / Time_TickLength::cInternalPerDisplay)};
}

// ---- Time_TempoMap ----

Time_TempoMap::Time_TempoMap() : mChanges{{0, 0, 120000}} {}

void Time_TempoMap::SetTempo(Time_TickLength at, std::int32_t milliBeatsPerMinute) {
    const bool valid =
        at.GetTicks() >= 0 && milliBeatsPerMinute >= 1 && milliBeatsPerMinute <= 1'000'000;
    CMN_ASSERT(valid);
    if (!valid)
        return;
    auto place =
        std::lower_bound(mChanges.begin(), mChanges.end(), at.GetTicks(),
                         [](const Change& change, std::int64_t t) { return change.tick < t; });
    if (place != mChanges.end() && place->tick == at.GetTicks())
        place->milliBeatsPerMinute = milliBeatsPerMinute;
    else
        mChanges.insert(place, Change{at.GetTicks(), 0, milliBeatsPerMinute});
    PlaceChanges();
}

void Time_TempoMap::RemoveTempo(Time_TickLength at) {
    if (at.GetTicks() == 0)
        mChanges.front().milliBeatsPerMinute = 120000;
    else
        std::erase_if(mChanges,
                      [at](const Change& change) { return change.tick == at.GetTicks(); });
    PlaceChanges();
}

void Time_TempoMap::PlaceChanges() noexcept {
    for (std::size_t i = 1; i < mChanges.size(); ++i) {
        const Change& before = mChanges[i - 1];
        mChanges[i].picoseconds =
            Cmn_SaturatingAdd(before.picoseconds, TicksToPicoseconds(mChanges[i].tick - before.tick,
                                                                     before.milliBeatsPerMinute));
    }
}

std::int32_t Time_TempoMap::GetTempo(Time_TickLength at) const noexcept {
    return LastAtOrBefore(mChanges, at.GetTicks(), [](const Change& change) { return change.tick; })
        .milliBeatsPerMinute;
}

Time_Sample Time_TempoMap::ToSample(Time_TickLength at,
                                    std::int32_t samplesPerSecond) const noexcept {
    const Change& change =
        LastAtOrBefore(mChanges, at.GetTicks(), [](const Change& entry) { return entry.tick; });
    const std::int64_t inside = TicksToPicoseconds(Cmn_SaturatingAdd(at.GetTicks(), -change.tick),
                                                   change.milliBeatsPerMinute);
    return Time_Sample(Time_MulDiv(Cmn_SaturatingAdd(change.picoseconds, inside), samplesPerSecond,
                                   cPicosecondsPerSecond, Time_ERounding::Nearest));
}

Time_TickLength Time_TempoMap::FromSample(Time_Sample position,
                                          std::int32_t samplesPerSecond) const noexcept {
    const std::int64_t picoseconds = Time_MulDiv(position.GetSamples(), cPicosecondsPerSecond,
                                                 samplesPerSecond, Time_ERounding::Nearest);
    const Change& change = LastAtOrBefore(mChanges, picoseconds,
                                          [](const Change& entry) { return entry.picoseconds; });
    const std::int64_t inside = PicosecondsToTicks(
        Cmn_SaturatingAdd(picoseconds, -change.picoseconds), change.milliBeatsPerMinute);
    return Time_TickLength(Cmn_SaturatingAdd(change.tick, inside));
}

// ---- The session's maps ----

Time_MeterMap& Time_SessionMeterMap() {
    static Time_MeterMap map;
    return map;
}

Time_TempoMap& Time_SessionTempoMap() {
    static Time_TempoMap map;
    return map;
}

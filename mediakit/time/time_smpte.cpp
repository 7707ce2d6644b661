#include "mediakit/time/time_smpte.h"

#include <cstring>

#include "mediakit/time/time_formattable.h"
#include "mediakit/time/time_muldiv.h"

namespace {

struct Label {
    std::uint64_t hours;
    std::uint32_t minutes;
    std::uint32_t seconds;
    std::uint32_t frames;
};

// Numbers left out before a frame of a drop-frame format. The first minute of every ten is whole,
// the nine after it are short.
template <class Count>
Count NumbersLeftOut(const Time_FormatInfo& info, Count frames) noexcept {
    const auto drop = static_cast<Count>(info.droppedPerMinute);
    const auto tenMinutes = static_cast<Count>(info.FramesPerTenMinutes());
    const auto wholeMinute = static_cast<Count>(info.framesPerSecond) * 60;
    const auto shortMinute = static_cast<Count>(info.FramesPerShortMinute());
    const Count tens = frames / tenMinutes;
    const Count rest = frames - tens * tenMinutes;
    const Count shortMinutes = rest < wholeMinute ? 0 : (rest - wholeMinute) / shortMinute + 1;
    return drop * (tens * 9 + shortMinutes);
}

template <class Count>
Label CutLabel(const Time_FormatInfo& info, Count frames) noexcept {
    if (info.droppedPerMinute != 0)
        frames += NumbersLeftOut(info, frames);
    const auto perSecond = static_cast<Count>(info.framesPerSecond);
    const Count seconds = frames / perSecond;
    const Count minutes = seconds / 60;
    const Count hours = minutes / 60;
    return {hours, static_cast<std::uint32_t>(minutes - hours * 60),
            static_cast<std::uint32_t>(seconds - minutes * 60),
            static_cast<std::uint32_t>(frames - seconds * perSecond)};
}

// Days of any session fit 32 bits, where division costs a third of what it costs in 64.
Label LabelOf(const Time_FormatInfo& info, std::uint64_t frames) noexcept {
    constexpr std::uint64_t narrowLimit = 0x7FFFFFFF;
    return frames <= narrowLimit ? CutLabel(info, static_cast<std::uint32_t>(frames))
                                 : CutLabel(info, frames);
}

struct Distance {
    bool negative;
    std::uint64_t frames;
    std::uint32_t subframes;
};

// A value's distance from zero. Subframes count upwards from the frame below, so under zero they
// are turned round.
Distance DistanceFromZero(std::int64_t frames, std::int32_t subframes) noexcept {
    if (frames >= 0)
        return {false, static_cast<std::uint64_t>(frames), static_cast<std::uint32_t>(subframes)};
    if (subframes == 0)
        return {true, Time_Magnitude(frames), 0};
    return {true, Time_Magnitude(frames + 1),
            static_cast<std::uint32_t>(Time_SMPTE::cSubframesPerFrame - subframes)};
}

std::int64_t CarryAdd(std::int64_t larger, std::int64_t factor, std::int64_t smaller) noexcept {
    return Cmn_SaturatingAdd(Time_SaturatingMultiply(larger, factor), smaller);
}

std::int64_t FramesOfNumber(const Time_FormatInfo& info, std::int64_t number) noexcept {
    if (info.droppedPerMinute == 0)
        return number;
    const std::int64_t perMinute = std::int64_t{info.framesPerSecond} * 60;
    const std::int64_t minutes = number / perMinute;
    const bool isShort = minutes % 10 != 0;
    // A number that is left out stands for the next one that is not.
    if (isShort && number - minutes * perMinute < info.droppedPerMinute)
        number = Cmn_SaturatingAdd(minutes * perMinute, std::int64_t{info.droppedPerMinute});
    return number - info.droppedPerMinute * (minutes - minutes / 10);
}

// The frame count of a label without its sign.
std::int64_t FramesOfLabel(const Time_FormatInfo& info, const Time_SMPTE::Fields& label) noexcept {
    constexpr std::int64_t ordinary = 100000;
    const auto fits = [](std::int64_t field) { return field >= 0 && field < ordinary; };
    if (fits(label.hours) && fits(label.minutes) && fits(label.seconds) && fits(label.frames))
        return FramesOfNumber(info, ((label.hours * 60 + label.minutes) * 60 + label.seconds) *
                                            info.framesPerSecond +
                                        label.frames);
    const std::int64_t minutes = CarryAdd(label.hours, 60, label.minutes);
    const std::int64_t seconds = CarryAdd(minutes, 60, label.seconds);
    const std::int64_t number = CarryAdd(seconds, info.framesPerSecond, label.frames);
    return number < 0 ? number : FramesOfNumber(info, number);
}

struct DigitPairs {
    char pairs[200];
};

constexpr DigitPairs MakeDigitPairs() noexcept {
    DigitPairs table{};
    for (int value = 0; value < 100; ++value) {
        table.pairs[value * 2] = static_cast<char>('0' + value / 10);
        table.pairs[value * 2 + 1] = static_cast<char>('0' + value % 10);
    }
    return table;
}

constexpr DigitPairs cDigitPairs = MakeDigitPairs();

char* PutTwo(char* out, std::uint32_t value) noexcept {
    std::memcpy(out, cDigitPairs.pairs + value * 2, 2);
    return out + 2;
}

char* PutHours(char* out, std::uint64_t hours) noexcept {
    if (hours < 100)
        return PutTwo(out, static_cast<std::uint32_t>(hours));
    char digits[20];
    int count = 0;
    for (; hours != 0; hours /= 10)
        digits[count++] = static_cast<char>('0' + hours % 10);
    while (count > 0)
        *out++ = digits[--count];
    return out;
}

// Reads one group of digits, at most 18 so that it cannot overflow. Returns null when there is
// none.
const char* TakeNumber(const char* at, const char* end, std::int64_t& number) noexcept {
    const char* const start = at;
    std::int64_t value = 0;
    while (at != end && *at >= '0' && *at <= '9' && at - start < 18)
        value = value * 10 + (*at++ - '0');
    number = value;
    return at == start ? nullptr : at;
}

const char* TakeSubframes(const char* at, const char* end, std::int32_t& subframes) noexcept {
    const char* const start = at;
    while (at != end && *at >= '0' && *at <= '9' && at - start < 2)
        subframes = subframes * 10 + (*at++ - '0');
    if (at - start == 1)
        subframes *= 10; // ".5" is half a frame
    return at == start ? nullptr : at;
}

// Two digits as a number; what is no digit makes it 100 or more.
std::uint32_t TwoDigits(const char* at) noexcept {
    const auto tens = static_cast<std::uint32_t>(static_cast<unsigned char>(at[0])) - '0';
    const auto ones = static_cast<std::uint32_t>(static_cast<unsigned char>(at[1])) - '0';
    return tens > 9 || ones > 9 ? 100 : tens * 10 + ones;
}

// Reads "HH:MM:SS:FF" with every field in its range and a label that exists, the text nearly every
// caller has. Returns -1 for all others, which take the general road.
std::int64_t FramesOfOrdinaryText(const char* text, const Time_FormatInfo& info) noexcept {
    if (text[2] != ':' || text[5] != ':' || (text[8] != ':' && text[8] != ';'))
        return -1;
    const std::uint32_t hours = TwoDigits(text);
    const std::uint32_t minutes = TwoDigits(text + 3);
    const std::uint32_t seconds = TwoDigits(text + 6);
    const std::uint32_t frames = TwoDigits(text + 9);
    const auto framesPerSecond = static_cast<std::uint32_t>(info.framesPerSecond);
    if (hours > 99 || minutes > 59 || seconds > 59 || frames > 99 || frames >= framesPerSecond)
        return -1;
    const auto drop = static_cast<std::uint32_t>(info.droppedPerMinute);
    if (seconds == 0 && frames < drop)
        return -1;
    const std::uint32_t allMinutes = hours * 60 + minutes;
    const std::uint32_t number = (allMinutes * 60 + seconds) * framesPerSecond + frames;
    return number - drop * (allMinutes - allMinutes / 10);
}

} // namespace

// ---- Time_SMPTE ----

Time_SMPTE::Time_SMPTE() noexcept : mFormat(Time_Session::GetTimeCodeFormat()) {}

Time_SMPTE::Time_SMPTE(ETimeCodeFormat format, std::int64_t totalFrames,
                       std::int32_t subframes) noexcept
    : mFrames(Cmn_SaturatingAdd(totalFrames, Time_FloorDiv(subframes, cSubframesPerFrame))),
      mFormat(format),
      mSubframes(static_cast<std::int32_t>(Time_FloorMod(subframes, cSubframesPerFrame))) {}

Time_SMPTE::Time_SMPTE(ETimeCodeFormat format, const Fields& label) noexcept : mFormat(format) {
    SetFromFields(label);
}

std::int64_t Time_SMPTE::GetTotalSubframes() const noexcept {
    return CarryAdd(mFrames, cSubframesPerFrame, mSubframes);
}

Time_SMPTE::Fields Time_SMPTE::GetFields() const noexcept {
    const Distance distance = DistanceFromZero(mFrames, mSubframes);
    const Label label = LabelOf(Time_FormatRow(mFormat), distance.frames);
    return {distance.negative, static_cast<std::int64_t>(label.hours),
            label.minutes,     label.seconds,
            label.frames,      static_cast<std::int32_t>(distance.subframes)};
}

void Time_SMPTE::SetFromTotalFrames(std::int64_t frames) noexcept {
    mFrames = frames;
    mSubframes = 0;
}

void Time_SMPTE::SetFromTotalSubframes(std::int64_t subframes) noexcept {
    mFrames = Time_FloorDiv(subframes, cSubframesPerFrame);
    mSubframes = static_cast<std::int32_t>(Time_FloorMod(subframes, cSubframesPerFrame));
}

void Time_SMPTE::SetFromFields(const Fields& label) noexcept {
    const std::int64_t frames = FramesOfLabel(Time_FormatRow(mFormat), label);
    const std::int32_t subframes = label.subframes;
    *this = label.negative ? Time_SMPTE(mFormat, Time_SaturatingNegate(frames), -subframes)
                           : Time_SMPTE(mFormat, frames, subframes);
}

void Time_SMPTE::WrapToDay() noexcept {
    mFrames = Time_FloorMod(mFrames, Time_FormatRow(mFormat).FramesPerDay());
}

std::int64_t Time_SMPTE::DropFrames(std::int64_t labelledFrames, ETimeCodeFormat format) noexcept {
    const Time_FormatInfo& info = Time_FormatRow(format);
    // Division towards zero makes negative steps mirror positive ones.
    const std::int64_t minutes = labelledFrames / (std::int64_t{info.framesPerSecond} * 60);
    return labelledFrames - info.droppedPerMinute * (minutes - minutes / 10);
}

Time_SampleLength Time_SMPTE::GetTotalSamples() const noexcept {
    return GetTotalSamples(Time_Session::GetSampleRate());
}

Time_SampleLength Time_SMPTE::GetTotalSamples(std::int32_t samplesPerSecond) const noexcept {
    const Time_FormatInfo& info = Time_FormatRow(mFormat);
    return Time_SampleLength(
        mSubframes == 0
            ? Time_UnitsToSamples(info, mFrames, 1, samplesPerSecond)
            : Time_UnitsToSamples(info, GetTotalSubframes(), cSubframesPerFrame, samplesPerSecond));
}

void Time_SMPTE::SetFromTotalSamples(Time_SampleLength length, std::int32_t samplesPerSecond,
                                     bool withSubframes) noexcept {
    const Time_FormatInfo& info = Time_FormatRow(mFormat);
    if (withSubframes)
        SetFromTotalSubframes(
            Time_SamplesToUnits(info, length.GetSamples(), cSubframesPerFrame, samplesPerSecond));
    else
        SetFromTotalFrames(Time_SamplesToUnits(info, length.GetSamples(), 1, samplesPerSecond));
}

// Rates of two formats have a common unit of 1/(numerator * numerator') of a second; 30000 * 24000
// stays far inside 64 bits, and the products are compared after a saturating multiplication, which
// is exact for any value below a million years.
std::strong_ordering Time_SMPTE::Compare(const Time_SMPTE& other) const noexcept {
    if (mFormat == other.mFormat) {
        if (mFrames != other.mFrames)
            return mFrames <=> other.mFrames;
        return mSubframes <=> other.mSubframes;
    }
    const Time_FormatInfo& mine = Time_FormatRow(mFormat);
    const Time_FormatInfo& its = Time_FormatRow(other.mFormat);
    const std::int64_t left = Time_SaturatingMultiply(
        GetTotalSubframes(), std::int64_t{mine.rateDenominator} * its.rateNumerator);
    const std::int64_t right = Time_SaturatingMultiply(
        other.GetTotalSubframes(), std::int64_t{its.rateDenominator} * mine.rateNumerator);
    if (left != right)
        return left <=> right;
    // Equal in time, yet not equal values: the enumeration's order keeps sorting stable.
    return mFormat <=> other.mFormat;
}

// ---- Time_SMPTEUtils ----

// A constant whose address a host takes: mingw exports it only when it is defined in a source.
constexpr std::size_t Time_SMPTEUtils::cMaxChars;

bool Time_SMPTEUtils::NeedsThreeFrameDigits(ETimeCodeFormat format) {
    return Time_FormatRow(format).frameDigits == 3;
}

std::int32_t Time_SMPTEUtils::GetFramesPerSecond(ETimeCodeFormat format) {
    return Time_FormatRow(format).framesPerSecond;
}

bool Time_SMPTEUtils::IsDropFrame(ETimeCodeFormat format) {
    return Time_FormatRow(format).IsDropFrame();
}

std::string Time_SMPTEUtils::ToString(const Time_SMPTE& time, bool withSubframes) {
    char text[cMaxChars];
    return std::string(text, ToChars(time, withSubframes, text));
}

std::size_t Time_SMPTEUtils::ToChars(const Time_SMPTE& time, bool withSubframes,
                                     char* out) noexcept {
    const Time_FormatInfo& info = Time_FormatRow(time.GetFormat());
    // Without the subframes shown, a value names the frame it lies in, also below zero.
    const Distance distance =
        DistanceFromZero(time.GetTotalFrames(), withSubframes ? time.GetSubframes() : 0);
    const Label label = LabelOf(info, distance.frames);
    char* at = out;
    if (distance.negative)
        *at++ = '-';
    at = PutHours(at, label.hours);
    *at++ = ':';
    at = PutTwo(at, label.minutes);
    *at++ = ':';
    at = PutTwo(at, label.seconds);
    *at++ = info.droppedPerMinute != 0 ? ';' : ':';
    if (info.frameDigits == 3)
        *at++ = static_cast<char>('0' + label.frames / 100);
    at = PutTwo(at, label.frames % 100);
    if (withSubframes) {
        *at++ = '.';
        at = PutTwo(at, distance.subframes);
    }
    return static_cast<std::size_t>(at - out);
}

bool Time_SMPTEUtils::FromString(std::string_view text, ETimeCodeFormat format,
                                 Time_SMPTE& time) noexcept {
    const char* at = text.data();
    if (text.size() == 11) {
        const std::int64_t frames = FramesOfOrdinaryText(at, Time_FormatRow(format));
        if (frames >= 0) {
            time = Time_SMPTE(format, frames);
            return true;
        }
    }
    const char* const end = at + text.size();
    Time_SMPTE::Fields label;
    if (at != end && (*at == '-' || *at == '+'))
        label.negative = *at++ == '-';
    std::int64_t* const fields[] = {&label.hours, &label.minutes, &label.seconds, &label.frames};
    for (int field = 0; field < 4; ++field) {
        if (field > 0) {
            const bool separated = at != end && (*at == ':' || (field == 3 && *at == ';'));
            if (!separated)
                return false;
            ++at;
        }
        at = TakeNumber(at, end, *fields[field]);
        if (at == nullptr)
            return false;
    }
    if (at != end && *at == '.') {
        at = TakeSubframes(at + 1, end, label.subframes);
        if (at == nullptr)
            return false;
    }
    if (at != end)
        return false;
    time = Time_SMPTE(format, label);
    return true;
}

Time_SMPTE Time_SMPTEUtils::GetSessionStart() noexcept {
    return Time_SMPTE(Time_Session::GetTimeCodeFormat(), Time_Session::GetFrameOffset());
}

Time_Sample Time_SMPTEUtils::GetSamplesFromStartFrame(const Time_SMPTE& time) noexcept {
    const Time_SMPTE start = GetSessionStart();
    if (time.GetFormat() != start.GetFormat())
        return Time_Sample((time.GetTotalSamples() - start.GetTotalSamples()).GetSamples());
    const Time_SMPTE fromStart(
        time.GetFormat(),
        Cmn_SaturatingAdd(time.GetTotalFrames(), Time_SaturatingNegate(start.GetTotalFrames())),
        time.GetSubframes());
    return Time_Sample(fromStart.GetTotalSamples().GetSamples());
}

Time_SMPTE Time_SMPTEUtils::FromSessionSample(Time_Sample position, ETimeCodeFormat format,
                                              bool withSubframes) noexcept {
    const Time_SMPTE start = GetSessionStart();
    const std::int32_t rate = Time_Session::GetSampleRate();
    Time_SMPTE time(format);
    if (format != start.GetFormat()) {
        const Time_SampleLength fromZero =
            start.GetTotalSamples(rate) + Time_SampleLength(position.GetSamples());
        time.SetFromTotalSamples(fromZero, rate, withSubframes);
        return time;
    }
    time.SetFromTotalSamples(Time_SampleLength(position.GetSamples()), rate, withSubframes);
    return Time_SMPTE(format, Cmn_SaturatingAdd(time.GetTotalFrames(), start.GetTotalFrames()),
                      time.GetSubframes());
}

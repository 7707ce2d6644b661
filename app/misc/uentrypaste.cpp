#include "app/misc/uentrypaste.h"

#include <algorithm>
#include <array>

#include "basekit/cmn/cmn_string.h"
#include "mediakit/time/time_scan.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsAllDigits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

std::string Lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string Trimmed(const std::string& text) {
    std::size_t first = 0;
    std::size_t last = text.size();
    while (first < last && IsBlank(text[first]))
        ++first;
    while (last > first && IsBlank(text[last - 1]))
        --last;
    return text.substr(first, last - first);
}

// Takes a word off the end, with the blanks before it.
bool TakeSuffix(std::string& text, const char* word) {
    const std::string lower = Lower(text);
    const std::string_view suffix(word);
    if (lower.size() <= suffix.size() ||
        lower.compare(lower.size() - suffix.size(), suffix.size(), suffix) != 0)
        return false;
    text = Trimmed(text.substr(0, text.size() - suffix.size()));
    return true;
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string FormatName(ETimeCodeFormat format) {
    return std::string(Time_GetFormatInfo(format).name) + " fps";
}

// The format that counts the same frames with numbers left out.
bool FindDropSibling(ETimeCodeFormat format, ETimeCodeFormat& sibling) {
    const Time_FormatInfo& info = Time_GetFormatInfo(format);
    return info.IsDropFrame()
               ? (sibling = format, true)
               : Time_FindFormat((std::string(info.name) + " drop").c_str(), sibling);
}

// Cuts "@ 25", "25 fps", "29.97 drop fps" off the end. False with a report for a rate that is none.
bool TakeRate(std::string& text, ETimeCodeFormat& format, bool& stated, std::string& report) {
    stated = false;
    const bool fps = TakeSuffix(text, "fps");
    std::size_t mark = text.find('@');
    if (mark == std::string::npos && fps) {
        // Without "@" the rate begins at the first blank after the time.
        mark = text.find(' ');
    }
    if (mark == std::string::npos) {
        if (fps)
            report = "\"fps\" without a rate before it";
        return !fps;
    }
    std::string rate = Lower(Trimmed(text.substr(mark + 1)));
    text = Trimmed(text.substr(0, mark));
    for (const auto& [spelled, name] :
         {std::array{"df", " drop"}, std::array{"drop", " drop"}, std::array{"nd", ""}})
        if (TakeSuffix(rate, spelled)) {
            rate += name;
            break;
        }
    if (!Time_FindFormat(rate.c_str(), format)) {
        report = "unknown frame rate " + Quoted(rate);
        return false;
    }
    stated = true;
    return true;
}

bool ReadTimeCode(const std::string& text, ETimeCodeFormat format, bool stated, CPastedTime& pasted,
                  std::string& report) {
    const bool dropMark = text.find(';') != std::string::npos;
    std::string understood = stated ? "" : " (the field's rate)";
    if (dropMark && !Time_GetFormatInfo(format).IsDropFrame()) {
        ETimeCodeFormat sibling = format;
        if (!FindDropSibling(format, sibling)) {
            report =
                "\";\" marks drop-frame time code, which " + FormatName(format) + " does not have";
            return false;
        }
        understood = " (\";\" marks drop-frame)";
        format = sibling;
    }
    Time_SMPTE time(format);
    if (!Time_SMPTEUtils::FromString(text, format, time)) {
        report = Quoted(text) + " is no time code: hours:minutes:seconds:frames is expected";
        return false;
    }
    pasted.mKind = CPastedTime::Kind::TimeCode;
    pasted.mSMPTE = time;
    report = Quoted(text) + " read as time code at " + FormatName(format) + understood;
    const std::string written =
        Time_SMPTEUtils::ToString(time, text.find('.') != std::string::npos);
    if (written != text)
        report += ", which is " + written;
    return true;
}

// M:SS, M:SS.mmm, H:MM:SS, H:MM:SS.mmm.
bool ReadClock(const std::string& text, CPastedTime& pasted, std::string& report) {
    std::string_view rest(text);
    const bool negative = Time_TakeChar(rest, '-');
    std::int64_t groups[3] = {};
    std::size_t digits = 0;
    int count = 0;
    do {
        if (count == 3 || !Time_TakeDigits(rest, 9, groups[count], digits)) {
            report = Quoted(text) + " is no time: digits are missing at column " +
                     std::to_string(text.size() - rest.size() + 1);
            return false;
        }
        ++count;
    } while (Time_TakeChar(rest, ':'));
    std::int64_t fraction = 0;
    if (Time_TakeChar(rest, '.') || Time_TakeChar(rest, ',')) {
        if (!Time_TakeDigits(rest, 3, fraction, digits)) {
            report = Quoted(text) + " is no time: no digits after the point";
            return false;
        }
        for (; digits < 3; ++digits)
            fraction *= 10;
    }
    if (!rest.empty()) {
        report = Quoted(text) + " is no time: column " +
                 std::to_string(text.size() - rest.size() + 1) + " is not understood";
        return false;
    }
    const std::int64_t seconds =
        count == 3 ? (groups[0] * 60 + groups[1]) * 60 + groups[2] : groups[0] * 60 + groups[1];
    pasted.mKind = CPastedTime::Kind::Clock;
    pasted.mMilliseconds = (seconds * 1000 + fraction) * (negative ? -1 : 1);
    report = Quoted(text) +
             (count == 3 ? " read as hours, minutes and seconds" : " read as minutes and seconds");
    return true;
}

bool ReadFeet(const std::string& text, CPastedTime& pasted, std::string& report) {
    if (!pasted.mFeetFrame.FromString(text)) {
        report = Quoted(text) + " is no footage: feet+frames is expected";
        return false;
    }
    pasted.mKind = CPastedTime::Kind::FeetFrames;
    report = Quoted(text) + " read as feet and frames";
    return true;
}

// B|b or B|b|t. Beat 0 is read too: lengths count from zero.
bool TakeBars(std::string_view text, Time_BarBeatTick& position) {
    std::int64_t fields[3] = {};
    constexpr std::size_t digitLimits[] = {12, 6, 8};
    std::size_t digits = 0;
    const bool negative = Time_TakeChar(text, '-');
    for (int i = 0; i < 3; ++i) {
        const bool ended = i == 2 && text.empty();
        if (ended)
            break;
        if ((i > 0 && !Time_TakeChar(text, '|')) ||
            !Time_TakeDigits(text, digitLimits[i], fields[i], digits))
            return false;
    }
    position = {negative ? -fields[0] : fields[0], static_cast<std::int32_t>(fields[1]),
                static_cast<std::int32_t>(fields[2])};
    return text.empty();
}

bool ReadBars(const std::string& text, CPastedTime& pasted, std::string& report) {
    if (!TakeBars(text, pasted.mPosition)) {
        report = Quoted(text) + " is no musical time: bars|beats or bars|beats|ticks is expected";
        return false;
    }
    pasted.mKind = CPastedTime::Kind::BarsBeats;
    report = Quoted(text) + " read as bars, beats and ticks";
    return true;
}

bool ReadSamples(const std::string& text, CPastedTime& pasted, std::string& report) {
    std::int64_t samples = 0;
    if (!Entry_ReadPastedInteger(text, samples, report))
        return false;
    pasted.mKind = CPastedTime::Kind::Samples;
    pasted.mSamples = samples;
    report = Quoted(text) + " read as samples";
    return true;
}

} // namespace

bool Entry_CleanPaste(const std::string& pasted, std::string& text, std::string& report) {
    // Megabytes are refused before anything is copied out of them.
    std::size_t first = 0;
    std::size_t last = pasted.size();
    while (first < last && IsBlank(pasted[first]))
        ++first;
    while (last > first && IsBlank(pasted[last - 1]))
        --last;
    if (first == last) {
        report = "nothing to paste";
        return false;
    }
    if (last - first > cEntryPasteLimit) {
        report = "too long for a value: " + std::to_string(last - first) + " characters";
        return false;
    }
    std::string plain;
    const std::string_view inside = std::string_view(pasted).substr(first, last - first);
    for (std::size_t at = 0; at < inside.size();)
        Cmn_AppendUTF8(plain, Cmn_FullWidthToASCII(Cmn_DecodeUTF8(inside, at)));
    const std::size_t lineEnd = plain.find_first_of("\r\n");
    if (lineEnd != std::string::npos) {
        report = "more than one line: the second begins at column " + std::to_string(lineEnd + 2);
        return false;
    }
    text = plain;
    return true;
}

bool Entry_ReadPastedTime(const std::string& text, ETimeCodeFormat format, CPastedTime& pasted,
                          std::string& report) {
    std::string time = text;
    const bool inSamples =
        TakeSuffix(time, "samples") || TakeSuffix(time, "sample") || TakeSuffix(time, "smp");
    if (inSamples)
        return ReadSamples(time, pasted, report);
    bool stated = false;
    if (!TakeRate(time, format, stated, report))
        return false;
    if (IsAllDigits(time) && !stated) {
        pasted.mKind = CPastedTime::Kind::Digits;
        pasted.mDigits = time;
        report = Quoted(time) + " read as digits without separators";
        return true;
    }
    if (time.find('|') != std::string::npos)
        return ReadBars(time, pasted, report);
    if (time.find('+') != std::string::npos && time.find('+') != 0)
        return ReadFeet(time, pasted, report);
    const auto colons =
        std::count_if(time.begin(), time.end(), [](char c) { return c == ':' || c == ';'; });
    if (colons >= 3 || time.find(';') != std::string::npos || stated)
        return ReadTimeCode(time, format, stated, pasted, report);
    if (colons > 0)
        return ReadClock(time, pasted, report);
    return ReadSamples(time, pasted, report);
}

bool Entry_ReadPastedInteger(const std::string& text, std::int64_t& value, std::string& report) {
    const bool hasSign = !text.empty() && (text[0] == '-' || text[0] == '+');
    std::string digits = hasSign && text[0] == '-' ? "-" : "";
    std::size_t sinceSeparator = 0;
    bool separated = false;
    for (std::size_t at = hasSign ? 1 : 0; at < text.size(); ++at) {
        if (IsDigit(text[at])) {
            digits += text[at];
            ++sinceSeparator;
            continue;
        }
        const bool isSeparator = text[at] == ',' || text[at] == '\'' || text[at] == ' ';
        const bool fits =
            separated ? sinceSeparator == 3 : sinceSeparator >= 1 && sinceSeparator <= 3;
        if (!isSeparator || !fits) {
            report = Quoted(text) + " is no whole number: column " + std::to_string(at + 1) +
                     " is not understood";
            return false;
        }
        separated = true;
        sinceSeparator = 0;
    }
    const bool ends = separated ? sinceSeparator == 3 : sinceSeparator > 0;
    if (!ends) {
        report = Quoted(text) + " is no whole number";
        return false;
    }
    if (!Cmn_ParseInt64(digits, value)) {
        report = Quoted(text) + " is beyond 64 bits";
        return false;
    }
    report = Quoted(text) + " read as a whole number";
    return true;
}

Time_TickLength Entry_PastedTicks(const CPastedTime& pasted, bool isLength) {
    Time_BarBeatTick position = pasted.mPosition;
    if (!isLength) {
        position.beat = std::max(position.beat, 1); // what was meant is the bar's first
        return Time_SessionMeterMap().ToTicks(position);
    }
    const Time_Meter& meter = Time_SessionMeterMap().GetMeter(1);
    return Time_TickLength::FromDisplayTicks((position.bar * meter.numerator + position.beat) *
                                                 meter.DisplayTicksPerBeat() +
                                             position.tick);
}

std::int64_t Entry_PastedSamples(const CPastedTime& pasted, bool isLength) {
    const std::int32_t rate = Time_Session::GetSampleRate();
    switch (pasted.mKind) {
    case CPastedTime::Kind::TimeCode:
        return isLength ? pasted.mSMPTE.GetTotalSamples().GetSamples()
                        : Time_SMPTEUtils::GetSamplesFromStartFrame(pasted.mSMPTE).GetSamples();
    case CPastedTime::Kind::Clock:
        return Time_MinSec(pasted.mMilliseconds).GetSamples(rate).GetSamples();
    case CPastedTime::Kind::FeetFrames:
        return pasted.mFeetFrame.GetSamples(rate).GetSamples();
    case CPastedTime::Kind::BarsBeats:
        return Time_SessionTempoMap()
            .ToSample(Entry_PastedTicks(pasted, isLength), rate)
            .GetSamples();
    case CPastedTime::Kind::Samples:
    case CPastedTime::Kind::Digits:
        break;
    }
    return pasted.mSamples;
}

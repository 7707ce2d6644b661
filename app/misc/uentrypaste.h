// Reads times out of pasted text, whatever display they were copied from.
#pragma once

#include <string>

#include "app/misc/unumericentrydata.h"

/// A time as it was found in a text.
struct CPastedTime {
    enum class Kind {
        TimeCode,   ///< mSMPTE, which names its rate
        Clock,      ///< mMilliseconds
        FeetFrames, ///< mFeetFrame
        BarsBeats,  ///< mPosition
        Samples,    ///< mSamples
        Digits      ///< mDigits: nothing but digits, to be read as the field would type them
    };
    Kind mKind = Kind::Digits;
    Time_SMPTE mSMPTE{ETimeCodeFormat::F30};
    std::int64_t mMilliseconds = 0;
    Time_FeetFrame mFeetFrame;
    Time_BarBeatTick mPosition;
    std::int64_t mSamples = 0;
    std::string mDigits;
};

/// How much a paste may hold; more is refused unread.
inline constexpr std::size_t cEntryPasteLimit = 64;

/// Blanks, tabs and line ends at both ends taken off and full-width characters made plain. False
/// with the reason when nothing, more than a time can have, or a second line is left.
QLX_API bool Entry_CleanPaste(const std::string& pasted, std::string& text, std::string& report);

/// Reads a cleaned text as a time:
///   HH:MM:SS:FF, with ";" before the frames for drop-frame and ".SS" for subframes; a rate may
///   follow
///   ("01:00:00:00 @ 25", "... 29.97 drop fps"). Without one the field's own format holds, except
///   that
///   ";" in a format without drop-frame means its drop-frame sibling.
///   HH:MM:SS, M:SS.mmm, HH:MM:SS.mmm: minutes and seconds; F+FF and F+FF.SS: feet and frames;
///   B|b and B|b|t: bars, beats, ticks; digits with "samples" or thousands separators: samples;
///   digits alone: Digits.
/// How it was understood, or the first thing that is wrong with its column, goes into report.
QLX_API bool Entry_ReadPastedTime(const std::string& text, ETimeCodeFormat format,
                                  CPastedTime& pasted, std::string& report);

/// Reads a cleaned text as a whole number: sign, digits, thousands separators (",", "'", blanks) in
/// groups of three. False with the reason otherwise.
QLX_API bool Entry_ReadPastedInteger(const std::string& text, std::int64_t& value,
                                     std::string& report);

/// Bars, beats and ticks: a position by the session's meter map, or a length in bars of its first
/// meter with beats from zero.
[[nodiscard]] QLX_API Time_TickLength Entry_PastedTicks(const CPastedTime& pasted, bool isLength);

/// A time that is not mere digits, in samples: from the session start, or as a length.
[[nodiscard]] QLX_API std::int64_t Entry_PastedSamples(const CPastedTime& pasted, bool isLength);

// The shapes of the formats' texts, as regular expressions that are compiled once.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

/// "00:00:00:00": two digits each, two or three for frames, ":" or ";" before the frames; with two
/// subframe digits after a "." when wanted.
[[nodiscard]] QLX_API bool Entry_IsTimeCode(const std::string& text, int frameDigits,
                                            bool withSubframes);
/// "     0+00": six characters of blanks and digits, "+", two frame digits; ".00" with subframes.
[[nodiscard]] QLX_API bool Entry_IsFeetFrames(const std::string& text, bool withSubframes);
/// "   0:00.000": one to four digits of minutes behind blanks, eleven characters in all.
[[nodiscard]] QLX_API bool Entry_IsMinutesSeconds(const std::string& text);
/// "   1|01|000": one to four digits of bars behind blanks, two of beats, three or four of ticks.
[[nodiscard]] QLX_API bool Entry_IsBarsBeats(const std::string& text, int tickDigits);
/// An optional sign and digits; also what leads there while typing: a sign alone, or nothing.
[[nodiscard]] QLX_API bool Entry_IsInteger(const std::string& text, bool whileTyping);
/// "-inf", or an optional sign, up to three digits and one decimal; while typing also a sign alone
/// and a point without its decimal.
[[nodiscard]] QLX_API bool Entry_IsLevel(const std::string& text, bool whileTyping);

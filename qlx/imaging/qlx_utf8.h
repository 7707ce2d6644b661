// Walking UTF-8 text of unknown quality.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Takes the code point at a place of the text and moves the place behind it. A byte that begins no
/// well-formed sequence (overlong, surrogate and too large ones included) counts as U+FFFD by
/// itself, so a walk always ends and every byte belongs to exactly one answer. The place must be
/// within the text.
[[nodiscard]] inline char32_t QLX_NextCodePoint(std::string_view text,
                                                std::size_t& place) noexcept {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byteAt(place++);
    if (first < 0x80)
        return first;
    const int extra = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() - place < std::size_t(extra))
        return kReplacementCharacter;
    char32_t code = first & (0x3F >> extra);
    for (int i = 0; i < extra; ++i) {
        const unsigned char next = byteAt(place + i);
        if ((next & 0xC0) != 0x80)
            return kReplacementCharacter;
        code = code << 6 | (next & 0x3F);
    }
    const char32_t smallest = extra == 1 ? 0x80 : extra == 2 ? 0x800 : 0x10000;
    if (code < smallest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return kReplacementCharacter;
    place += extra;
    return code;
}

/// A path or other text of the system's wide characters, UTF-16 or UTF-32. What is no character,
/// lone surrogates included, becomes U+FFFD.
[[nodiscard]] inline std::string QLX_WideToUTF8(std::wstring_view wide) {
    std::string text;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        auto code = static_cast<char32_t>(wide[i]);
        const bool high = code >= 0xD800 && code < 0xDC00;
        if (high && i + 1 < wide.size() && (wide[i + 1] & ~0x3FF) == 0xDC00)
            code = 0x10000 + ((code & 0x3FF) << 10) + (static_cast<char32_t>(wide[++i]) & 0x3FF);
        else if ((code >= 0xD800 && code < 0xE000) || code > 0x10FFFF)
            code = kReplacementCharacter;
        const int extra = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
        text += char(kLead[extra] | code >> 6 * extra);
        for (int rest = extra - 1; rest >= 0; --rest)
            text += char(0x80 | (code >> 6 * rest & 0x3F));
    }
    return text;
}

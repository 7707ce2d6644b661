#include "basekit/cmn/cmn_string.h"

#include <charconv>

namespace {

constexpr std::uint32_t kReplacementCharacter = 0xFFFD;
constexpr std::size_t kEscapedIDLength = 10;

bool IsPrintable(unsigned char byte) { return byte >= 0x20 && byte <= 0x7E; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The value of a hexadecimal digit as Cmn_IDToString writes it; -1 for anything else.
int HexValue(char c) {
    if (IsDigit(c))
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool ParseEscapedID(std::string_view text, std::uint32_t& id) {
    if (text.size() != kEscapedIDLength || text.substr(0, 2) != "0x")
        return false;
    std::uint32_t value = 0;
    for (const char c : text.substr(2)) {
        const int digit = HexValue(c);
        if (digit < 0)
            return false;
        value = value << 4 | static_cast<std::uint32_t>(digit);
    }
    id = value;
    return true;
}

template <class Int>
bool ParseWhole(std::string_view text, Int& value) {
    // std::from_chars knows the minus only; a plus must be followed by a digit.
    if (text.size() >= 2 && text[0] == '+' && IsDigit(text[1]))
        text.remove_prefix(1);
    Int parsed{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, parsed);
    if (error != std::errc{} || stop != end)
        return false;
    value = parsed;
    return true;
}

template <class Int>
Int ParseBeginning(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\r\v\f");
    if (start == std::string_view::npos)
        return 0;
    text.remove_prefix(start);
    const bool negative = text[0] == '-';
    if (text[0] == '+' || negative)
        text.remove_prefix(1);
    Int value = 0; // built downwards: the negative range is the wider one
    constexpr Int kLowest = std::numeric_limits<Int>::min();
    for (std::size_t i = 0; i < text.size() && IsDigit(text[i]); ++i) {
        const Int digit = static_cast<Int>(text[i] - '0');
        if (value < (kLowest + digit) / 10)
            return negative ? kLowest : std::numeric_limits<Int>::max();
        value = static_cast<Int>(value * 10 - digit);
    }
    if (negative)
        return value;
    return value == kLowest ? std::numeric_limits<Int>::max() : static_cast<Int>(-value);
}

} // namespace

std::string Cmn_IDToString(std::uint32_t id) {
    const char bytes[4] = {static_cast<char>(id >> 24), static_cast<char>(id >> 16),
                           static_cast<char>(id >> 8), static_cast<char>(id)};
    bool printable = true;
    for (const char byte : bytes)
        printable = printable && IsPrintable(static_cast<unsigned char>(byte));
    if (printable)
        return std::string(bytes, sizeof bytes);
    std::string text(kEscapedIDLength, '0');
    text[1] = 'x';
    for (std::size_t i = kEscapedIDLength; i-- > 2; id >>= 4)
        text[i] = "0123456789ABCDEF"[id & 0xF];
    return text;
}

std::uint32_t Cmn_StringToID(std::string_view text) {
    std::uint32_t id = 0;
    if (text.empty() || ParseEscapedID(text, id))
        return id;
    for (std::size_t i = 0; i < 4; ++i)
        id = id << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0x20u);
    return id;
}

bool Cmn_ParseID(std::string_view text, std::uint32_t& id) {
    std::uint32_t parsed = 0;
    if (text.size() == 4)
        parsed = Cmn_StringToID(text);
    else if (!ParseEscapedID(text, parsed))
        return false;
    if (Cmn_IDToString(parsed) != text)
        return false;
    id = parsed;
    return true;
}

std::int32_t Cmn_StringToInt32(std::string_view text) { return ParseBeginning<std::int32_t>(text); }

std::int64_t Cmn_StringToInt64(std::string_view text) { return ParseBeginning<std::int64_t>(text); }

bool Cmn_ParseInt32(std::string_view text, std::int32_t& value) { return ParseWhole(text, value); }

bool Cmn_ParseInt64(std::string_view text, std::int64_t& value) { return ParseWhole(text, value); }

std::string Cmn_XML_SimpleEscape(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&apos;";
            break;
        case '\t':
            escaped += "&#9;";
            break;
        case '\n':
            escaped += "&#10;";
            break;
        case '\r':
            escaped += "&#13;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

int Cmn_UTF8Length(unsigned char leadByte) {
    if (leadByte < 0xC2 || leadByte > 0xF4)
        return 1;
    return leadByte < 0xE0 ? 2 : leadByte < 0xF0 ? 3 : 4;
}

std::uint32_t Cmn_DecodeUTF8(std::string_view text, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(text[position]);
    const auto length = static_cast<std::size_t>(Cmn_UTF8Length(lead));
    if (lead < 0x80) {
        ++position;
        return lead;
    }
    if (length == 1 || text.size() - position < length) {
        ++position;
        return kReplacementCharacter;
    }
    std::uint32_t codePoint = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[position + i]);
        if ((byte & 0xC0) != 0x80) {
            ++position;
            return kReplacementCharacter;
        }
        codePoint = codePoint << 6 | (byte & 0x3Fu);
    }
    constexpr std::uint32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < kLowest[length] || codePoint > 0x10FFFF || isSurrogate) {
        ++position;
        return kReplacementCharacter;
    }
    position += length;
    return codePoint;
}

void Cmn_AppendUTF8(std::string& text, std::uint32_t codePoint) {
    if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        codePoint = kReplacementCharacter;
    const auto tail = [codePoint](int shift) {
        return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
    };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | codePoint >> 6);
        text += tail(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | codePoint >> 12);
        text += tail(6);
        text += tail(0);
    } else {
        text += static_cast<char>(0xF0 | codePoint >> 18);
        text += tail(12);
        text += tail(6);
        text += tail(0);
    }
}

std::uint32_t Cmn_FullWidthToASCII(std::uint32_t codePoint) {
    if (codePoint >= 0xFF01 && codePoint <= 0xFF5E)
        return codePoint - 0xFF01 + 0x21;
    return codePoint == 0x3000 ? 0x20 : codePoint;
}

#include "qlx/persistence/qlx_property.h"

#include <algorithm>
#include <array>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_string.h"

namespace {
// By value; none has no name.
constexpr std::string_view kTypeNames[kQLX_PropertyTypeCount] = {
    "", "bool", "int32", "idtype", "string", "stringidx", "rgbcolor", "point", "rect", "int64"};

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// What each character counts as a hexadecimal digit, -1 for those that are none. A table: digits
/// and letters come in no order that a processor could guess.
constexpr auto kHexDigits = [] {
    std::array<signed char, 256> digits{};
    digits.fill(-1);
    for (std::size_t i = 0; i < 10; ++i)
        digits['0' + i] = static_cast<signed char>(i);
    for (std::size_t i = 0; i < 6; ++i)
        digits['a' + i] = digits['A' + i] = static_cast<signed char>(10 + i);
    return digits;
}();

/// What is left of a text while numbers are read from its front. Of a text that ends with a NUL,
/// which is no part of a number, no other end is looked for.
template <bool kEndsWithNUL>
class Scanner {
  public:
    explicit Scanner(std::string_view text) : mAt(text.data()), mEnd(mAt + text.size()) {}
    explicit Scanner(const char* text) : mAt(text), mEnd(nullptr) {}

    /// A signed decimal after blanks, held at the limits of 32 bits. False when there is none.
    bool ScanInt32(std::int32_t& value) {
        const char* at = SkipBlanks();
        bool negative = false;
        if (!IsEnd(at) && !IsDigit(*at)) {
            negative = *at == '-';
            if (negative || *at == '+')
                ++at;
        }
        const char* const digits = at;
        std::uint32_t number = 0; // may wrap around
        for (; !IsEnd(at) && IsDigit(*at); ++at)
            number = number * 10 + static_cast<std::uint32_t>(*at - '0');
        if (at == digits)
            return false;
        mAt = at;
        constexpr int surelyFit = 9;
        if (at - digits > surelyFit) [[unlikely]]
            return HoldAtLimits(digits, negative, value);
        const auto fitting = static_cast<std::int32_t>(number);
        value = negative ? -fitting : fitting;
        return true;
    }

    /// "0x" and hexadecimal digits after blanks; the low 16 bits count.
    bool ScanHex(std::uint16_t& value) {
        const char* at = SkipBlanks();
        if (IsEnd(at) || at[0] != '0' || IsEnd(at + 1) || at[1] != 'x')
            return false;
        at += 2;
        const char* const digits = at;
        std::uint32_t number = 0;
        std::uint32_t lost = 0; // what was shifted out of the low 16 bits
        for (int digit; !IsEnd(at) && (digit = HexDigit(*at)) >= 0; ++at) {
            lost |= number >> 12;
            number = (number << 4 & 0xFFFF) | static_cast<std::uint32_t>(digit);
        }
        if (at == digits)
            return false;
        mAt = at;
        mInRange = mInRange && lost == 0;
        value = static_cast<std::uint16_t>(number);
        return true;
    }

    [[nodiscard]] bool IsInRange() const { return mInRange; }
    [[nodiscard]] bool IsAtEnd() const { return mAt == mEnd; }

  private:
    static constexpr std::int64_t kBeyond = std::int64_t{1} << 40;

    /// The number of the digits up to what is left of the text.
    bool HoldAtLimits(const char* digits, bool negative, std::int32_t& value) {
        std::int64_t number = 0;
        for (; digits != mAt; ++digits)
            number = std::min(number * 10 + (*digits - '0'), kBeyond);
        number = negative ? -number : number;
        value = Cmn_ClampTo<std::int32_t>(number);
        mInRange = mInRange && value == number;
        return true;
    }
    [[nodiscard]] bool IsEnd(const char* at) const {
        if constexpr (kEndsWithNUL)
            return false;
        else
            return at == mEnd;
    }
    static bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') <= 9; }
    static int HexDigit(char c) { return kHexDigits[static_cast<unsigned char>(c)]; }
    const char* SkipBlanks() {
        const char* at = mAt;
        while (!IsEnd(at) && *at <= ' ' && IsBlank(*at))
            ++at;
        return at;
    }

    const char* mAt;
    const char* mEnd;
    bool mInRange = true;
};

using TextScanner = Scanner</*ends with NUL*/ false>;
using CStringScanner = Scanner</*ends with NUL*/ true>;

/// How many numbers a text of the type holds.
template <class Scanner>
int ScanNumbers(Scanner& scanner, std::int32_t* numbers, int count) {
    for (int i = 0; i < count; ++i)
        if (!scanner.ScanInt32(numbers[i]))
            return i;
    return count;
}

template <class Scanner>
int ScanColor(Scanner& scanner, std::uint16_t* components) {
    for (int i = 0; i < 3; ++i)
        if (!scanner.ScanHex(components[i]))
            return i;
    return 3;
}

/// The reason for a text of several numbers; empty when all are there and nothing else is.
std::string CheckNumbers(const TextScanner& scanner, int found, int wanted) {
    if (found < wanted)
        return std::to_string(found) + " of " + std::to_string(wanted) +
               " numbers could be read, the others are taken as 0";
    if (!scanner.IsInRange())
        return "a number is out of range";
    return scanner.IsAtEnd() ? std::string() : std::string("there is more after the last number");
}

template <class Int>
std::string CheckInteger(std::string_view text, bool (*parse)(std::string_view, Int&),
                         Int (*convert)(std::string_view)) {
    Int value = 0;
    if (parse(text, value))
        return {};
    return "read as " + std::to_string(convert(text)) + ": no whole number within range";
}
} // namespace

QLX_PropertyType QLX_FindPropertyType(std::string_view name) noexcept {
    switch (name.size()) {
    case 4:
        if (name == "bool")
            return qlx_PropType_Bool;
        return name == "rect" ? qlx_PropType_Rect : qlx_PropType_None;
    case 5:
        if (name == "int32")
            return qlx_PropType_Int32;
        if (name == "point")
            return qlx_PropType_Point;
        return name == "int64" ? qlx_PropType_Int64 : qlx_PropType_None;
    case 6:
        if (name == "string")
            return qlx_PropType_String;
        return name == "idtype" ? qlx_PropType_IDType : qlx_PropType_None;
    case 8:
        return name == "rgbcolor" ? qlx_PropType_Color : qlx_PropType_None;
    case 9:
        return name == "stringidx" ? qlx_PropType_String_Key : qlx_PropType_None;
    default:
        return qlx_PropType_None;
    }
}

QLX_PropertyType QLX_StringToPropertyType(const std::string& name) {
    const QLX_PropertyType type = QLX_FindPropertyType(name);
    if (type == qlx_PropType_None)
        Cmn_Assert("it != sStringToTypeMap.end()", __FILE__, __LINE__);
    return type;
}

std::string QLX_PropertyTypeToString(QLX_PropertyType type) {
    if (type > qlx_PropType_None && type < kQLX_PropertyTypeCount)
        return std::string(kTypeNames[type]);
    Cmn_Assert("it != sTypeToStringMap.end()", __FILE__, __LINE__);
    return "<unknown>";
}

std::string QLX_CheckPropertyText(QLX_PropertyType type, std::string_view text) {
    switch (type) {
    case qlx_PropType_Bool:
        return text == "true" || text == "false" ? "" : "read as false: neither true nor false";
    case qlx_PropType_Int32:
        return CheckInteger<std::int32_t>(text, Cmn_ParseInt32, Cmn_StringToInt32);
    case qlx_PropType_Int64:
        return CheckInteger<std::int64_t>(text, Cmn_ParseInt64, Cmn_StringToInt64);
    case qlx_PropType_IDType: {
        std::uint32_t id = 0;
        if (Cmn_ParseID(text, id))
            return {};
        return "read as \"" + Cmn_IDToString(Cmn_StringToID(text)) +
               "\": neither four characters nor 0x and eight digits";
    }
    case qlx_PropType_Color: {
        std::uint16_t components[3] = {};
        TextScanner scanner(text);
        const int found = ScanColor(scanner, components);
        return CheckNumbers(scanner, found, 3);
    }
    case qlx_PropType_Point:
    case qlx_PropType_Rect: {
        const int wanted = type == qlx_PropType_Point ? 2 : 4;
        std::int32_t numbers[4] = {};
        TextScanner scanner(text);
        const int found = ScanNumbers(scanner, numbers, wanted);
        return CheckNumbers(scanner, found, wanted);
    }
    case qlx_PropType_None:
        return "no type";
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        break;
    }
    return {};
}

bool QLX_TextToBool(std::string_view text) noexcept { return text == "true"; }
std::int32_t QLX_TextToInt32(std::string_view text) { return Cmn_StringToInt32(text); }
std::int64_t QLX_TextToInt64(std::string_view text) { return Cmn_StringToInt64(text); }
std::uint32_t QLX_TextToIDType(std::string_view text) { return Cmn_StringToID(text); }

namespace {
template <class Scanner>
CRGBColor ColorOf(Scanner scanner) {
    std::uint16_t components[3] = {};
    ScanColor(scanner, components);
    return CRGBColor(components[0], components[1], components[2]);
}

template <class Scanner>
VPoint PointOf(Scanner scanner) {
    std::int32_t numbers[2] = {};
    ScanNumbers(scanner, numbers, 2);
    return VPoint(/*horizontal*/ numbers[1], /*vertical*/ numbers[0]);
}

template <class Scanner>
VRect RectOf(Scanner scanner) {
    std::int32_t numbers[4] = {};
    ScanNumbers(scanner, numbers, 4);
    return VRect(/*left*/ numbers[1], /*top*/ numbers[0], /*right*/ numbers[3],
                 /*bottom*/ numbers[2]);
}
} // namespace

CRGBColor QLX_TextToColor(std::string_view text) { return ColorOf(TextScanner(text)); }
CRGBColor QLX_TextToColor(const char* text) { return ColorOf(CStringScanner(text)); }
VPoint QLX_TextToPoint(std::string_view text) { return PointOf(TextScanner(text)); }
VPoint QLX_TextToPoint(const char* text) { return PointOf(CStringScanner(text)); }
VRect QLX_TextToRect(std::string_view text) { return RectOf(TextScanner(text)); }
VRect QLX_TextToRect(const char* text) { return RectOf(CStringScanner(text)); }

// Text of unknown quality, walked code point by code point.
#include <gtest/gtest.h>

#include <random>

#include "qlx/imaging/qlx_utf8.h"

namespace {

std::u32string Walked(std::string_view text) {
    std::u32string codes;
    for (std::size_t place = 0; place < text.size();)
        codes += QLX_NextCodePoint(text, place);
    return codes;
}

constexpr char32_t kNone = kReplacementCharacter;

} // namespace

TEST(UTF8, EveryByteBelongsToExactlyOneAnswer) {
    const std::pair<std::string, std::u32string> cases[] = {
        {"a", U"a"},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E", U"\u00E9\u20AC\U0001D11E"},
        {"\xC0\xAF", {kNone, kNone}},                       // overlong
        {"\xE0\x80\xAF", {kNone, kNone, kNone}},            // overlong
        {"\xED\xA0\x80", {kNone, kNone, kNone}},            // a surrogate
        {"\xF4\x90\x80\x80", {kNone, kNone, kNone, kNone}}, // beyond the last
        {"\xF5\x80\x80\x80", {kNone, kNone, kNone, kNone}}, //
        {"\xE2\x82", {kNone, kNone}},                       // cut off
        {"\xE2\x28\xA1", {kNone, U'(', kNone}},             // cut into
        {"\x80x\xFF", {kNone, U'x', kNone}},                // none begins so
        {std::string("\0z", 2), std::u32string(U"\0z", 2)}, //
    };
    for (const auto& [text, codes] : cases)
        EXPECT_TRUE(Walked(text) == codes) << ::testing::PrintToString(text);
}

TEST(UTF8, WideTextComesBackAsTheSameCodePoints) {
    std::mt19937 random(21);
    for (int turn = 0; turn < 500; ++turn) {
        std::wstring wide;
        std::u32string codes;
        for (int i = 0; i < 20; ++i) {
            char32_t code = random() >> (11 + random() % 16);
            if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
                code = U'.';
            codes += code;
            if (sizeof(wchar_t) == 2 && code >= 0x10000) {
                wide += wchar_t(0xD800 + ((code - 0x10000) >> 10));
                wide += wchar_t(0xDC00 + ((code - 0x10000) & 0x3FF));
            } else {
                wide += wchar_t(code);
            }
        }
        EXPECT_TRUE(Walked(QLX_WideToUTF8(wide)) == codes);
    }
    const std::wstring broken{wchar_t(0xD800), L'a', wchar_t(0xDC00), wchar_t(0xDBFF)};
    EXPECT_TRUE(Walked(QLX_WideToUTF8(broken)) == std::u32string({kNone, U'a', kNone, kNone}));
}

#include "basekit/cmn/cmn_string.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

TEST(IDText, PrintableCodesAreTheirFourCharacters) {
    const struct {
        std::uint32_t id;
        const char* text;
    } rows[] = {
        {Cmn_FourChar("dlog"), "dlog"},     {Cmn_FourChar("    "), "    "},
        {Cmn_FourChar("a\"\\~"), "a\"\\~"}, {0, "0x00000000"},
        {0xFFFFFFFF, "0xFFFFFFFF"},         {0x6162637F, "0x6162637F"},
        {0x61620A63, "0x61620A63"},         {Cmn_FourChar("0x00"), "0x00"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Cmn_IDToString(row.id), row.text);
        EXPECT_EQ(Cmn_StringToID(row.text), row.id);
    }
}

TEST(IDText, EveryTextGivesACode) {
    const struct {
        const char* why;
        const char* text;
        std::uint32_t id;
    } rows[] = {
        {"the empty text is no identifier", "", 0},
        {"a short one is filled up with blanks", "ab", Cmn_FourChar("ab  ")},
        {"a long one is cut", "abcdef", Cmn_FourChar("abcd")},
        {"small digits are not the escape form", "0x0000000a", Cmn_FourChar("0x00")},
        {"too few digits are not either", "0x0000000", Cmn_FourChar("0x00")},
        {"bytes outside of ASCII count as they are", "\xC3\x89\x01\xFF", 0xC38901FF},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Cmn_StringToID(row.text), row.id) << row.why;
    std::uint32_t untouched = 7;
    for (const char* text : {"", "ab", "abcdef", "0x64646464", "0x0000000a",
                             "\xC3\x89"
                             "ab"})
        EXPECT_FALSE(Cmn_ParseID(text, untouched)) << text;
    EXPECT_EQ(untouched, 7u);
    EXPECT_TRUE(Cmn_ParseID("0x00000001", untouched));
    EXPECT_EQ(untouched, 1u);
}

namespace {

/// Checks the codes from first to last in steps and answers how many did not come back.
std::uint64_t CountLost(std::uint64_t first, std::uint64_t last, std::uint64_t step) {
    std::uint64_t lost = 0;
    for (std::uint64_t id = first; id <= last; id += step) {
        const std::string text = Cmn_IDToString(static_cast<std::uint32_t>(id));
        lost += Cmn_StringToID(text) != id;
        lost += text.size() != 4 && text.size() != 10;
    }
    return lost;
}

} // namespace

TEST(IDText, ComesBackForAll32BitValues) {
#if defined(__SANITIZE_ADDRESS__)
    // A prime step under the sanitizers, so that every byte takes every value in every place.
    constexpr std::uint64_t kStep = 4093;
#else
    constexpr std::uint64_t kStep = 1;
#endif
    const unsigned threads = std::max(1u, std::thread::hardware_concurrency());
    const std::uint64_t share = 0x100000000u / threads / kStep * kStep;
    std::atomic<std::uint64_t> lost{0};
    std::vector<std::thread> running;
    for (unsigned i = 0; i < threads; ++i) {
        const std::uint64_t last = i + 1 == threads ? 0xFFFFFFFFu : (i + 1) * share - 1;
        running.emplace_back(
            [&lost, i, share, last] { lost += CountLost(i * share, last, kStep); });
    }
    for (std::thread& thread : running)
        thread.join();
    EXPECT_EQ(lost, 0u);
}

TEST(NumberText, LenientReadersTakeWhatIsThere) {
    const struct {
        const char* text;
        std::int32_t int32;
        std::int64_t int64;
    } rows[] = {
        {"", 0, 0},
        {"12", 12, 12},
        {" \t-12abc", -12, -12},
        {"+7", 7, 7},
        {"abc", 0, 0},
        {"-", 0, 0},
        {"- 5", 0, 0},
        {"+-5", 0, 0},
        {"0x10", 0, 0},
        {"2147483647", 2147483647, 2147483647},
        {"2147483648", 2147483647, 2147483648},
        {"-2147483648", -2147483647 - 1, -2147483648LL},
        {"-2147483649", -2147483647 - 1, -2147483649LL},
        {"9223372036854775807", 2147483647, INT64_MAX},
        {"9223372036854775808", 2147483647, INT64_MAX},
        {"-9223372036854775808", INT32_MIN, INT64_MIN},
        {"-9999999999999999999999", INT32_MIN, INT64_MIN},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Cmn_StringToInt32(row.text), row.int32) << row.text;
        EXPECT_EQ(Cmn_StringToInt64(row.text), row.int64) << row.text;
    }
}

TEST(NumberText, StrictReadersTakeAWholeNumberOrNothing) {
    std::int32_t value = 99;
    for (const char* text : {"", " 1", "1 ", "+", "-", "+-1", "1.0", "0x1", "2147483648", "1a"}) {
        EXPECT_FALSE(Cmn_ParseInt32(text, value)) << text;
        EXPECT_EQ(value, 99) << text;
    }
    EXPECT_TRUE(Cmn_ParseInt32("-2147483648", value));
    EXPECT_EQ(value, INT32_MIN);
    std::int64_t wide = 0;
    EXPECT_TRUE(Cmn_ParseInt64("+9223372036854775807", wide));
    EXPECT_EQ(wide, INT64_MAX);
    EXPECT_FALSE(Cmn_ParseInt64("9223372036854775808", wide));
}

TEST(XMLText, EscapesWhatAnAttributeWouldLose) {
    EXPECT_EQ(Cmn_XML_SimpleEscape("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c&apos;");
    EXPECT_EQ(Cmn_XML_SimpleEscape("\t\n\r"), "&#9;&#10;&#13;");
    EXPECT_EQ(Cmn_XML_SimpleEscape("\xC3\x89 plain"), "\xC3\x89 plain");
}

TEST(UTF8, EveryCodePointComesBackAndNothingElse) {
    for (std::uint32_t code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 61) {
        if (code >= 0xD800 && code <= 0xDFFF)
            continue;
        std::string text;
        Cmn_AppendUTF8(text, code);
        ASSERT_EQ(Cmn_UTF8Length(static_cast<unsigned char>(text[0])),
                  static_cast<int>(text.size()));
        std::size_t position = 0;
        ASSERT_EQ(Cmn_DecodeUTF8(text, position), code);
        ASSERT_EQ(position, text.size());
        for (std::size_t cut = 1; cut < text.size(); ++cut) { // a character that is cut off
            position = 0;
            ASSERT_EQ(Cmn_DecodeUTF8(std::string_view(text).substr(0, cut), position), 0xFFFDu);
            ASSERT_EQ(position, 1u);
        }
    }
    const char* const bad[] = {"\x80",
                               "\xC0\x80",
                               "\xE0\x80\x80",
                               "\xED\xA0\x80",
                               "\xF4\x90\x80\x80",
                               "\xFF",
                               "\xC3"
                               "a"};
    for (const char* text : bad) {
        std::size_t position = 0;
        EXPECT_EQ(Cmn_DecodeUTF8(text, position), 0xFFFDu);
        EXPECT_EQ(position, 1u);
    }
    std::string replaced;
    Cmn_AppendUTF8(replaced, 0xD800);
    Cmn_AppendUTF8(replaced, 0x110000);
    EXPECT_EQ(replaced, "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(UTF8, FullWidthCharactersCountAsTheirASCIIForms) {
    EXPECT_EQ(Cmn_FullWidthToASCII(0xFF11), '1');
    EXPECT_EQ(Cmn_FullWidthToASCII(0xFF0B), '+');
    EXPECT_EQ(Cmn_FullWidthToASCII(0xFF5E), '~');
    EXPECT_EQ(Cmn_FullWidthToASCII(0x3000), ' ');
    EXPECT_EQ(Cmn_FullWidthToASCII(0xFF5F), 0xFF5Fu);
    EXPECT_EQ(Cmn_FullWidthToASCII('7'), '7');
}

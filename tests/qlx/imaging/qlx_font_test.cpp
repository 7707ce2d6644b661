#include "qlx/imaging/qlx_font.h"

#include <gtest/gtest.h>

#include <limits>

#include "qlx/imaging/qlx_textlayout.h"

namespace {

TEST(Font, SizesAndFamiliesAreHeldToSense) {
    EXPECT_EQ(QLX_Font(), QLX_Font("", 12));
    EXPECT_EQ(QLX_Font("x", std::numeric_limits<float>::quiet_NaN()).GetSize(), 12);
    EXPECT_EQ(QLX_Font("x", 1e9F).GetSize(), 2000);
    EXPECT_EQ(QLX_Font("x", -5).GetSize(), 1);
    EXPECT_NE(QLX_Font("x", 12), QLX_Font("y", 12));
}

TEST(Font, TextReadsBack) {
    const struct {
        const char* text;
        bool good;
    } rows[] = {
        {"DejaVu Sans 12", true},
        {"DejaVu Sans Mono 10.5 bold italic", true},
        {"Name With 3 Digits 9 underline", true},
        {"", false},
        {"DejaVu Sans", false},
        {"DejaVu Sans 12 shiny", false},
    };
    for (const auto& row : rows) {
        QLX_Font font("kept", 7);
        EXPECT_EQ(QLX_Font::ParseText(row.text, font), row.good) << row.text;
        EXPECT_EQ(font.AsText(), row.good ? row.text : "kept 7");
    }
}

TEST(FontMap, NumbersAndSelectors) {
    const QLX_Font standard = QLX_FontMap::RetrieveFont(128, 1);
    EXPECT_EQ(standard, QLX_Font()) << "the standard interface font, plain, at its own size";
    EXPECT_EQ(QLX_FontMap::RetrieveFont(-4, 1), standard) << "unknown numbers";
    EXPECT_EQ(QLX_FontMap::RetrieveFont(128, 99), standard) << "unknown selectors";
    EXPECT_TRUE(QLX_FontMap::RetrieveFont(128, kFontSelect_BoldItalic).IsBold());
    EXPECT_TRUE(QLX_FontMap::RetrieveFont(128, kFontSelect_BoldItalic).IsItalic());
    const QLX_Font own("Somebody's", 17, kFontStyle_Bold);
    QLX_FontMap::RegisterFont(9001, own);
    EXPECT_EQ(QLX_FontMap::RetrieveFont(9001, kFontSelect_AsRegistered), own);
    EXPECT_EQ(QLX_FontMap::RetrieveFont(9001, kFontSelect_Plain), own.WithStyle(kFontStyle_Plain));
    QLX_FontMap::Reset();
    EXPECT_FALSE(QLX_FontMap::HasFont(9001));
}

// Widths of parts add up, so a field can place each digit where the whole text has it.
TEST(Font, MeasuresAddUp) {
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    const QLX_Font font("DejaVu Sans", 11);
    const std::string text = "01:23 Takes, AV";
    float sum = 0;
    for (const char character : text)
        sum += measure.MeasureWidth(font, std::string(1, character));
    EXPECT_NEAR(measure.MeasureWidth(font, text), sum, 0.001F);
    EXPECT_EQ(measure.MeasureWidth(font, ""), 0);
}

std::string Lines(const QLX_TextLayout& layout) {
    std::string lines;
    for (const QLX_TextLayout::Placed& line : layout.GetPlaced())
        lines += (lines.empty() ? "" : "|") + std::string(line.text);
    return lines;
}

TEST(TextLayout, BreaksWhereLinesMayEnd) {
    const struct {
        const char* why;
        const char* text;
        QLX_Painter::EWrapKind wrap;
        bool ellipsis;
        const char* lines;
    } rows[] = {
        {"line ends of three kinds", "a\nb\r\nc\rd", QLX_Painter::kWrap_None, false, "a|b|c|d"},
        {"between words", "one two three four", QLX_Painter::kWrap_Word, false,
         "one two|three|four"},
        {"behind a hyphen", "record-arm it", QLX_Painter::kWrap_Word, false, "record-|arm it"},
        {"a word that is too long", "abcdefghijklmnop", QLX_Painter::kWrap_Word, false,
         "abcdefgh|ijklmnop"},
        {"closing marks stay with their word", "(12345678)", QLX_Painter::kWrap_Word, false,
         "(1234567|8)"},
        {"between ideographs, not before a full stop",
         "\xE6\x99\x82\xE9\x96\x93\xE6\x99\x82\xE9\x96\x93\xE6\x99\x82\xE3\x80\x82",
         QLX_Painter::kWrap_Word, false,
         "\xE6\x99\x82\xE9\x96\x93\xE6\x99\x82\xE9\x96\x93|\xE6\x99\x82\xE3\x80\x82"},
        {"cut to the width", "one two three four", QLX_Painter::kWrap_None, true,
         "one two\xE2\x80\xA6"},
    };
    QLX_TextMeasure* installed = QLX_TextMeasure::Install(nullptr); // the same on every platform
    for (const auto& row : rows) {
        QLX_TextLayout layout;
        const QLX_Font font("DejaVu Sans Mono", 10);
        const float width = 8.5F * QLX_TextMeasure::Get().MeasureWidth(font, "0");
        layout.LayOut(row.text, font, width, row.wrap);
        layout.Place({0, 0, int(width), 500}, QLX_Painter::kJustify_Left, row.ellipsis);
        EXPECT_EQ(Lines(layout), row.lines) << row.why;
    }
    QLX_TextMeasure::Install(installed);
}

} // namespace

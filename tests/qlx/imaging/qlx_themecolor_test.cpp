#include "qlx/imaging/qlx_themecolor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "qlx/views/ucolortable.h"
#include "tests/support/assertion_catcher.h"

namespace {

class Theme : public ::testing::Test {
  protected:
    void SetUp() override { QLX_Theme::Reset(); }
    void TearDown() override { QLX_Theme::Reset(); }
};

// Relative luminance and contrast of WCAG 2.1.
double Luminance(const CRGBColor& color) {
    const auto linear = [](unsigned short component) {
        const double share = component / 65535.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.GetRed()) + 0.7152 * linear(color.GetGreen()) +
           0.0722 * linear(color.GetBlue());
}
double Contrast(EThemeColor a, EThemeColor b, EThemeVariant variant) {
    const double first = Luminance(QLX_Theme::GetColor(a, variant));
    const double second = Luminance(QLX_Theme::GetColor(b, variant));
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

TEST_F(Theme, TextsStandOutInEveryVariant) {
    const std::pair<EThemeColor, EThemeColor> pairs[] = {
        {kThemeColor_Text, kThemeColor_WindowBackground},
        {kThemeColor_HighlightText, kThemeColor_Highlight},
        {kThemeColor_ControlText, kThemeColor_ControlFace},
        {kThemeColor_FieldText, kThemeColor_FieldBackground},
        {kThemeColor_MenuText, kThemeColor_MenuBackground},
        {kThemeColor_MenuHighlightText, kThemeColor_MenuHighlight},
        {kThemeColor_ListText, kThemeColor_ListBackground},
        {kThemeColor_ListText, kThemeColor_ListAlternate},
        {kThemeColor_RulerText, kThemeColor_RulerBackground},
        {kThemeColor_ToolTipText, kThemeColor_ToolTipBackground}};
    for (int variant = 0; variant < kTheme_VariantCount; ++variant)
        for (const auto& [text, background] : pairs)
            EXPECT_GE(Contrast(text, background, EThemeVariant(variant)),
                      variant >= kTheme_LightHighContrast ? 7.0 : 4.5)
                << QLX_Theme::GetName(text) << " on " << QLX_Theme::GetName(background)
                << ", variant " << variant;
}

TEST_F(Theme, TextReadsBackAndChangesOnlyWhatItNames) {
    const std::string builtIn = QLX_Theme::AsText();
    QLX_Theme::LoadText("# a comment\n[dark]\n Text = #102030 ; why\nMine=$Text\n"
                        "ListText = $Later\nLater = #01020304\r\n[light]\n",
                        "t");
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text, kTheme_Dark),
              CRGBColor(0x1010, 0x2020, 0x3030));
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_ListText, kTheme_Dark),
              CRGBColor(0x0101, 0x0202, 0x0303, 0x0404));
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text, kTheme_Light),
              CRGBColor(0x1E1E, 0x1E1E, 0x1E1E));
    const std::string changed = QLX_Theme::AsText();
    QLX_Theme::LoadText(changed, "again");
    EXPECT_EQ(QLX_Theme::AsText(), changed);
    QLX_Theme::LoadText("", "nothing");
    EXPECT_EQ(QLX_Theme::AsText(), builtIn) << "a theme lies over the built-in one";
}

std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// From a section's heading to the empty line behind it.
std::string SectionOf(const std::string& theme, const std::string& name) {
    const std::size_t begin = theme.find("[" + name + "]\n");
    return begin == std::string::npos ? "" : theme.substr(begin, theme.find("\n\n", begin) - begin);
}

TEST_F(Theme, TheShippedFilesAreTheBuiltInThemes) {
    const std::string folder = QLX_SOURCE_DIR "/data/themes/";
    const std::string builtIn = QLX_Theme::AsText();
    const struct {
        const char* file;
        std::vector<std::string> sections;
    } rows[] = {{"light.theme", {"light"}},
                {"dark.theme", {"dark"}},
                {"high-contrast.theme", {"light high contrast", "dark high contrast"}}};
    for (const auto& row : rows) {
        const std::string theme = BytesOf(folder + row.file) + "\n";
        for (const std::string& section : row.sections) {
            EXPECT_NE(SectionOf(theme, section), "") << row.file;
            EXPECT_EQ(SectionOf(theme, section), SectionOf(builtIn + "\n", section)) << row.file;
        }
        QLX_Theme::LoadFile(folder + row.file);
        EXPECT_EQ(QLX_Theme::AsText(), builtIn) << row.file;
    }
}

TEST_F(Theme, FilesAreReadWithAByteOrderMarkAndToldWhenTheyCannotBe) {
    const std::string path = ::testing::TempDir() + "qlx_marked.theme";
    std::ofstream(path, std::ios::binary) << "\xEF\xBB\xBF[light]\r\nText = #102030\r\n";
    QLX_Theme::LoadFile(path);
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text), CRGBColor(0x1010, 0x2020, 0x3030));
    std::remove(path.c_str());
    for (std::string gone : {path, ::testing::TempDir()})
        try {
            std::replace(gone.begin(), gone.end(), '\\', '/'); // as messages name files
            QLX_Theme::LoadFile(gone);
            ADD_FAILURE() << gone << " was read";
        } catch (const std::runtime_error& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(gone.substr(0, gone.size() - 1)))
                << error.what();
        }
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text), CRGBColor(0x1010, 0x2020, 0x3030));
}

TEST_F(Theme, WhatIsNoThemeIsToldWithItsPlace) {
    const struct {
        const char* why;
        const char* text;
        const char* message;
    } rows[] = {
        {"no section yet", "Text = #000000\n", "f:1:1: a colour before the first section"},
        {"an unknown section", "[dusk]\n", "f:1:2: unknown section \"dusk\""},
        {"an open section", "[dark\n", "f:1:6: a section ends in \"]\""},
        {"no value", "[dark]\nText\n", "f:2:1: expected \"Name = colour\""},
        {"no name", "[dark]\n = #000000\n", "f:2:2: the name is missing"},
        {"a digit short", "[dark]\nText = #12345\n",
         "f:2:8: expected #RRGGBB, #RRGGBBAA or $Name, not \"#12345\""},
        {"nothing of that name", "[dark]\nText = $Gone\n", "f:2:8: unknown colour \"Gone\""},
        {"a circle", "[dark]\nA = $B\nB = $A\n", "f:2:5: \"A\" refers to itself"},
        {"a way into a circle", "[dark]\nIn = $A\nA = $B\nB = $A\n",
         "f:3:5: \"A\" refers to itself"},
        {"the end of a chain is missing", "[dark]\nA = $B\nB = $Gone\n",
         "f:3:5: unknown colour \"Gone\""},
    };
    const std::string before = QLX_Theme::AsText();
    for (const auto& row : rows) {
        try {
            QLX_Theme::LoadText(row.text, "f");
            ADD_FAILURE() << row.why << " was read";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), row.message) << row.why;
        }
        EXPECT_EQ(QLX_Theme::AsText(), before) << row.why;
    }
}

// A chain from top to bottom, of which every name waits for the next: done in one walk.
TEST_F(Theme, LongChainsAreNotWalkedAgainAndAgain) {
    std::string text = "[light]\n";
    constexpr int kLinks = 20000;
    for (int i = 0; i < kLinks; ++i)
        text += "N" + std::to_string(i) + " = $N" + std::to_string(i + 1) + "\n";
    QLX_Theme::LoadText(text + "N" + std::to_string(kLinks) + " = #102030\nText = $N0\n", "t");
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text), CRGBColor(0x1010, 0x2020, 0x3030));
    QLX_Theme::LoadText("[light]\nA = #000000\nA = $B\nB = #102030\nText = $B\nText = $A\n"
                        "MenuText = $A\nMenuText = #FFFFFF\n",
                        "t");
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text), CRGBColor(0x1010, 0x2020, 0x3030));
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_MenuText), CRGBColor(65535, 65535, 65535));
}

TEST_F(Theme, NamedColoursRegisterWithIt) {
    QLX_Theme::LoadText("[light]\nMarker = #112233\n[dark]\nMarker = #445566\n", "t");
    const CRGBColor light("Marker", CRGBColor(1, 2, 3), kRGBColorType_General);
    EXPECT_TRUE(light.IsNamed());
    EXPECT_EQ(light, CRGBColor(0x1111, 0x2222, 0x3333));
    QLX_Theme::SetVariant(kTheme_Dark);
    EXPECT_EQ(CRGBColor("Marker", CRGBColor(1, 2, 3), kRGBColorType_General),
              CRGBColor(0x4444, 0x5555, 0x6666));
    EXPECT_EQ(CRGBColor("Text", CRGBColor(), kRGBColorType_Font),
              QLX_Theme::GetColor(kThemeColor_Text));
    EXPECT_EQ(CRGBColor("theme test, unknown", CRGBColor(1, 2, 3), kRGBColorType_General),
              CRGBColor(1, 2, 3));
    QLX_Theme::SetUserColor("Marker", CRGBColor(7, 8, 9));
    EXPECT_EQ(CRGBColor("Marker", CRGBColor(1, 2, 3), kRGBColorType_General), CRGBColor(7, 8, 9));
    CRGBColor own;
    EXPECT_TRUE(CRGBColor::GetUserCustomizedColor("Marker", own));
    EXPECT_EQ(own, CRGBColor(7, 8, 9));
    EXPECT_FALSE(CRGBColor::GetUserCustomizedColor("Text", own));
    EXPECT_EQ(own, CRGBColor(7, 8, 9)) << "untouched";
}

TEST_F(Theme, ForegroundFollowsTheBackgroundsBrightness) {
    const struct {
        EThemeVariant variant;
        float brightness;
        int index;
        CRGBColor contrast;
    } rows[] = {
        {kTheme_Light, 0xEC / 255.0F, 0, CRGBColor()},
        {kTheme_Dark, 0.176F, 1, CRGBColor(65535, 65535, 65535)},
        {kTheme_LightHighContrast, 1, 0, CRGBColor()},
        {kTheme_DarkHighContrast, 0, 1, CRGBColor(65535, 65535, 65535)},
    };
    for (const auto& row : rows) {
        QLX_Theme::SetVariant(row.variant);
        EXPECT_NEAR(CRGBColor::GetGlobalBackgroundBrightness(), row.brightness, 0.002F);
        EXPECT_EQ(CRGBColor::GetGlobalForegroundColorIndex(), row.index);
        EXPECT_EQ(CRGBColor::GetGlobalHighContrastForegroundColor(), row.contrast);
        EXPECT_NE(CRGBColor::GetGlobalHighContrastBackgroundColor(), row.contrast);
    }
}

TEST_F(Theme, FontColoursStayLegible) {
    QLX_Theme::LoadText("[light]\nWindowBackground = #FFFFFF\n", "t");
    const auto prepared = [](CRGBColor color) {
        color.SetupAsFontColor();
        EXPECT_TRUE(color.IsFontColor());
        EXPECT_TRUE(color.IsOpaque());
        return color;
    };
    const CRGBColor gray(0x8000, 0x8000, 0x8000);
    EXPECT_EQ(prepared(gray), gray);
    EXPECT_EQ(prepared(CRGBColor(0, 0, 0, 0)), CRGBColor(65535, 65535, 65535));
    EXPECT_NEAR(prepared(CRGBColor(0, 0, 0, 0x8000)).GetRed(), 0x7FFF, 2);
    QLX_Theme::SetTextBrightness(0);
    EXPECT_EQ(prepared(gray), CRGBColor(65535, 65535, 65535)) << "as the background";
    QLX_Theme::SetTextBrightness(9);
    EXPECT_EQ(QLX_Theme::GetTextBrightness(), 2);
    EXPECT_EQ(prepared(gray), CRGBColor()) << "as far from it as can be";
    QLX_Theme::SetTextBrightness(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(prepared(gray), gray);
    QLX_Theme::SetVariant(kTheme_DarkHighContrast);
    EXPECT_EQ(prepared(CRGBColor(1, 2, 3, 4)), CRGBColor(65535, 65535, 65535));
}

TEST_F(Theme, WhatIsOutOfRangeIsAssertedAndBlack) {
    AssertionCatcher catcher;
    EXPECT_EQ(QLX_Theme::GetColor(EThemeColor(-1)), CRGBColor());
    EXPECT_EQ(QLX_Theme::GetColor(kThemeColor_Text, EThemeVariant(9)), CRGBColor());
    QLX_Theme::SetVariant(EThemeVariant(9));
    EXPECT_EQ(QLX_Theme::GetVariant(), kTheme_Light);
    EXPECT_EQ(catcher.TakeTexts().size(), 3U);
}

} // namespace

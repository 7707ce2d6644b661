// Numeric entry fields as pixels.
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/uwindow.h"

// What is drawn after a change of a digit is what a full drawing gives, at every scale.
TEST(NumericFieldPicture, PartialDrawingGivesTheFullPicture) {
    QLX_Init::Init();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    constexpr std::uint32_t cField = Cmn_FourChar("fld1");
    const struct {
        ENumericEntryFormat format;
        const char* keys;
    } rows[] = {{kNumericEntry_TimeCode, "123.4+5\r6"},
                {kNumericEntry_MinutesSeconds, "12.34.567."},
                {kNumericEntry_FeetFrames, "90.12,8"}};
    for (const int scale : {120, 150, 180, 210}) {
        QLX_TestDriver driver;
        driver.SetScale(scale);
        auto* window = new TWindow;
        window->IWindow("field", VPoint(200, 60));
        auto* field = new TNumericEntryText;
        field->IView(window, VRect(10, 10, 161, 40));
        field->SetIdentifier(cField);
        field->SetUseVolatileUpdate(true);
        driver.OpenWindow(*window);
        const auto expectFullPicture = [&](const std::string& why) {
            driver.WaitForIdle();
            const QLX_Image::Ptr partial = driver.GetPicture(cField);
            field->ForceRedraw();
            driver.WaitForIdle();
            EXPECT_TRUE(QLX_TestDriver::IsSamePicture(partial, driver.GetPicture(cField)))
                << why << " at scale " << scale;
        };
        for (const auto& row : rows) {
            field->SetLocalFormat(row.format, false, false);
            for (int frame = 1; frame < 5; ++frame) {
                field->SetTextFromSample(Time_Sample(frame * 1602000), true);
                expectFullPicture("clock at " + field->GetText());
            }
            field->BecomeTarget();
            for (const char* key = row.keys; *key != 0; ++key) {
                driver.KeyDown(static_cast<unsigned char>(*key));
                expectFullPicture(std::string("typed up to ") + key);
            }
            field->ResignTarget();
        }
        window->Free();
    }
}

TEST(NumericFieldPicture, ABackgroundFromTheDescriptionStretchesBetweenItsCorners) {
    QLX_Init::Init();
    constexpr std::uint32_t cField = Cmn_FourChar("fld1");
    // A blue plate with a red frame of one pixel.
    const QLX_Painter::Ptr plate = QLX_PainterCairo::New(20, 20);
    plate->SetForegroundColor(CRGBColor(0xFFFF, 0, 0));
    plate->FillRect(Cmn_Rect<int>(0, 0, 20, 20));
    plate->SetForegroundColor(CRGBColor(0, 0, 0xFFFF));
    plate->FillRect(Cmn_Rect<int>(1, 1, 19, 19));
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/numeric-entry-plate.png";
    plate->SaveToFile(std::wstring(path.begin(), path.end()));
    QLX_RawPropertyContainer container("view");
    const QLX_PropertyFilter filter;
    container.SetStringProperty("Background_Image", std::filesystem::absolute(path).string(),
                                filter);
    container.SetCurrentFilter(filter);
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("field", VPoint(200, 60));
    auto* field = new TNumericEntryText;
    field->IView(window, VRect(0, 0, 1, 1));
    field->ReadProperties(&container, {});
    field->SetFrame(VRect(10, 10, 160, 40), false, false);
    field->SetIdentifier(cField);
    driver.OpenWindow(*window);
    const QLX_Image::Ptr picture = driver.GetPicture(cField);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->GetWidth(), 150);
    for (int x = 0; x < 150; ++x) {
        EXPECT_EQ(picture->GetPixel(x, 0) & 0xFFFFFFU, 0xFF0000U) << x;
        EXPECT_EQ(picture->GetPixel(x, 2) & 0xFFFFFFU, x == 0 || x == 149 ? 0xFF0000U : 0xFFU) << x;
    }
    window->Free();
}

namespace {

struct PictureRow {
    const char* name;
    ENumericEntryFormat format;
    bool subframes, optional;
    const char* text;
    const char* keys; // of the edit
};

const PictureRow cRows[] = {
    {"Time code", kNumericEntry_TimeCode, false, false, "01:02:03;04", "12"},
    {"with subframes", kNumericEntry_TimeCode, true, false, "01:02:03;04.50", "123"},
    {"optional", kNumericEntry_TimeCode, false, true, "--:--:--:--", "5"},
    {"Minutes:seconds", kNumericEntry_MinutesSeconds, false, false, "  62:03.136", "12"},
    {"Feet+frames", kNumericEntry_FeetFrames, false, false, "  5584+11", "90."},
    {"with subframes", kNumericEntry_FeetFrames, true, false, "  5584+11.25", "90.1"},
    {"Bars|beats", kNumericEntry_BarsBeats, false, false, "  17|03|240", "4.2"},
    {"Duration", kNumericEntry_Duration, false, false, "   2|00|000", "-1"},
    {"Samples", kNumericEntry_Samples, false, false, "178710532", "48"},
    {"Integer", kNumericEntry_Integer, false, false, "440", "+25"},
    {"Signed integer", kNumericEntry_SignedInteger, false, false, "-12", "-7"},
    {"Offset", kNumericEntry_PlusValue, false, false, "+12", "-3"},
    {"Meter", kNumericEntry_MeterDenominator, false, false, "4", "1"},
    {"Level", kNumericEntry_Volume, false, false, "-6.5", "3."},
};

constexpr int cRowHeight = 30;
constexpr int cColumnWidth = 124;
constexpr int cNameWidth = 112;
constexpr int cSheetWidth = cNameWidth + 4 * cColumnWidth + 6;
constexpr int cSheetHeight = 32 + static_cast<int>(std::size(cRows)) * cRowHeight;

void AddText(TView* window, const char* text, const VRect& frame) {
    auto* view = new TStaticText;
    view->IView(window, frame);
    view->SetText(text, false);
}

TNumericEntryText* AddField(TView* window, const PictureRow& row, int index, int state) {
    auto* field = new TNumericEntryText;
    const int left = cNameWidth + state * cColumnWidth;
    const int top = 28 + index * cRowHeight;
    field->IView(window, VRect(left, top, left + cColumnWidth - 6, top + 24));
    field->SetLocalFormat(row.format, row.subframes, row.optional);
    field->SetIdentifier(static_cast<std::uint32_t>(1000 + index * 10 + state));
    if (row.format == kNumericEntry_Volume)
        field->SetSuffixText(" dB");
    EXPECT_TRUE(field->SetText(row.text, true, true)) << row.name;
    field->SetEnable(state != 3);
    return field;
}

// One field has the keyboard at a time: their pictures are laid over the window's.
void DrawSheet(const QLX_Painter::Ptr& sheet, EThemeVariant variant, int left) {
    QLX_Theme::SetVariant(variant);
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("fields", VPoint(cSheetWidth, cSheetHeight));
    const char* const states[] = {"idle", "focused", "mid-edit", "disabled"};
    for (int state = 0; state < 4; ++state) {
        const int at = cNameWidth + state * cColumnWidth;
        AddText(window, states[state], VRect(at, 4, at + cColumnWidth, 24));
    }
    std::vector<TNumericEntryText*> fields;
    for (int row = 0; row < static_cast<int>(std::size(cRows)); ++row) {
        const int top = 28 + row * cRowHeight;
        AddText(window, cRows[row].name, VRect(8, top, cNameWidth, top + 24));
        for (int state = 0; state < 4; ++state)
            fields.push_back(AddField(window, cRows[row], row, state));
    }
    driver.OpenWindow(*window);
    const auto lay = [&](const QLX_Image::Ptr& picture, const VRect& frame) {
        const Cmn_Rect<int> place(
            left + static_cast<int>(frame.Left()), static_cast<int>(frame.Top()),
            left + static_cast<int>(frame.Right()), static_cast<int>(frame.Bottom()));
        ASSERT_TRUE(picture);
        sheet->DrawImage(picture, place, kPenMode_Copy);
    };
    lay(driver.GetPicture(), VRect(0, 0, cSheetWidth, cSheetHeight));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::size_t state = i % 4;
        if (state == 0 || state == 3)
            continue;
        ASSERT_TRUE(fields[i]->BecomeTarget());
        if (state == 2)
            driver.Type(cRows[i / 4].keys);
        driver.WaitForIdle();
        lay(driver.GetPicture(fields[i]->GetIdentifier()), fields[i]->GetFrame());
    }
    window->Free();
}

} // namespace

// One field of each format, idle, focused, in the middle of an edit and disabled, on light and on
// dark: written beside the test reports, to be looked at.
TEST(NumericFieldPicture, OneFieldOfEachFormatInEachState) {
    QLX_Init::Init();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F2997Drop);
    const EThemeVariant variant = QLX_Theme::GetVariant();
    const QLX_Painter::Ptr sheet = QLX_PainterCairo::New(2 * cSheetWidth, cSheetHeight);
    ASSERT_TRUE(sheet);
    DrawSheet(sheet, kTheme_Light, 0);
    DrawSheet(sheet, kTheme_Dark, cSheetWidth);
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/numeric-entry-fields.png";
    sheet->SaveToFile(std::wstring(path.begin(), path.end()));
    EXPECT_TRUE(std::filesystem::exists(path));
    QLX_Theme::SetVariant(variant);
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
}

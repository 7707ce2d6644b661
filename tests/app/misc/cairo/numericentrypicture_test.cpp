// Numeric entry fields as pixels.
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/uwindow.h"

// What is drawn after a change of one digit is what a full drawing gives.
TEST(NumericFieldPicture, PartialDrawingGivesTheFullPicture) {
    QLX_Init::Init();
    constexpr std::uint32_t cField = Cmn_FourChar("fld1");
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("field", VPoint(60, 200));
    auto* field = new TNumericEntryText;
    field->IView(window, VRect(10, 10, 160, 40));
    field->SetIdentifier(cField);
    field->SetLocalFormat(kNumericEntry_TimeCode, false, false);
    field->SetUseVolatileUpdate(true);
    driver.OpenWindow(*window);
    driver.Click(cField);
    for (const char* keys : {"1", "2", "3"}) {
        driver.Type(keys);
        driver.WaitForIdle();
        const QLX_Image::Ptr partial = driver.GetPicture(cField);
        field->ForceRedraw();
        driver.WaitForIdle();
        EXPECT_TRUE(QLX_TestDriver::IsSamePicture(partial, driver.GetPicture(cField))) << keys;
    }
    window->Free();
}

// One field of each format, idle, in the middle of an edit, focused, disabled: written beside the
// test reports, to be looked at.
TEST(NumericFieldPicture, OneFieldOfEachFormatInEachState) {
    QLX_Init::Init();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F2997Drop);
    const struct {
        const char* name;
        ENumericEntryFormat format;
        bool subframes, optional;
        const char* text;
        const char* keys;
    } rows[] = {
        {"Time code", kNumericEntry_TimeCode, false, false, "01:02:03;04", "12"},
        {"with subframes", kNumericEntry_TimeCode, true, false, "01:02:03;04.50", "123"},
        {"optional", kNumericEntry_TimeCode, false, true, "--:--:--:--", "+"},
        {"Minutes:seconds", kNumericEntry_MinutesSeconds, false, false, "  62:03.136", "12"},
        {"Feet+frames", kNumericEntry_FeetFrames, false, false, "  5584+11", "90."},
        {"with subframes", kNumericEntry_FeetFrames, true, false, "  5584+11.25", "90.1"},
        {"Bars|beats", kNumericEntry_BarsBeats, false, false, "  17|03|240", "4.2"},
        {"Duration", kNumericEntry_Duration, false, false, "   2|00|000", "-1"},
        {"Samples", kNumericEntry_Samples, false, false, "178710532", "48"},
        {"Integer", kNumericEntry_Integer, false, false, "440", "25"},
        {"Signed integer", kNumericEntry_SignedInteger, false, false, "-12", "-7"},
        {"Offset", kNumericEntry_PlusValue, false, false, "+12", "-3"},
        {"Meter", kNumericEntry_MeterDenominator, false, false, "4", "1"},
        {"Level", kNumericEntry_Volume, false, false, "-6.5", "3."},
    };
    QLX_TestDriver driver;
    auto* window = new TWindow;
    constexpr int rowHeight = 34;
    constexpr int width = 780;
    const int height = static_cast<int>(sizeof rows / sizeof rows[0]) * rowHeight + 44;
    window->IWindow("fields", VPoint(height, width));
    const char* const states[] = {"idle", "focused", "mid-edit", "disabled"};
    driver.OpenWindow(*window);
    for (int state = 0; state < 4; ++state) {
        auto* title = new TStaticText;
        title->IView(window, VRect(140 + state * 155, 8, 290 + state * 155, 28));
        title->SetText(states[state], false);
    }
    int row = 0;
    std::vector<TNumericEntryText*> fields;
    for (const auto& format : rows) {
        const int top = 34 + row * rowHeight;
        auto* name = new TStaticText;
        name->IView(window, VRect(10, top, 135, top + 26));
        name->SetText(format.name, false);
        for (int state = 0; state < 4; ++state) {
            auto* field = new TNumericEntryText;
            field->IView(window, VRect(140 + state * 155, top, 285 + state * 155, top + 26));
            field->SetLocalFormat(format.format, format.subframes, format.optional);
            field->SetIdentifier(static_cast<std::uint32_t>(1000 + row * 10 + state));
            if (format.format == kNumericEntry_Volume)
                field->SetSuffixText(" dB");
            EXPECT_TRUE(field->SetText(format.text, true, true)) << format.name;
            if (state == 3)
                field->SetEnable(false);
            fields.push_back(field);
        }
        ++row;
    }
    driver.WaitForIdle();
    // One field has the keyboard at a time: their pictures are laid over the window's afterwards.
    const QLX_Painter::Ptr sheet = QLX_PainterCairo::New(width, height);
    ASSERT_TRUE(sheet);
    sheet->DrawImage(driver.GetPicture(), Cmn_Rect<int>(0, 0, width, height), kPenMode_Copy);
    row = 0;
    for (const auto& format : rows) {
        for (const int state : {1, 2}) {
            TNumericEntryText* const field = fields[static_cast<std::size_t>(row * 4 + state)];
            ASSERT_TRUE(field->BecomeTarget());
            if (state == 2)
                driver.Type(format.keys);
            driver.WaitForIdle();
            const VRect frame = field->GetFrame();
            const QLX_Image::Ptr picture = driver.GetPicture(field->GetIdentifier());
            ASSERT_TRUE(picture);
            sheet->DrawImage(picture, frame, kPenMode_Copy);
        }
        ++row;
    }
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/numeric-entry-fields.png";
    sheet->SaveToFile(std::wstring(path.begin(), path.end()));
    EXPECT_TRUE(std::filesystem::exists(path));
    window->Free();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
}

// What a key and a running clock cost: allocations, views drawn, pixels painted.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uwindow.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/live_window.h"

namespace {

TNumericEntryText* MakeField(TWindow* window, int index, ENumericEntryFormat format) {
    auto* field = new TNumericEntryText;
    const int left = 4 + index % 8 * 124;
    const int top = 4 + index / 8 * 30;
    field->IView(window, VRect(left, top, left + 120, top + 26));
    field->SetIdentifier(static_cast<std::uint32_t>(1000 + index));
    field->SetLocalFormat(format, false, false);
    field->SetUseVolatileUpdate(true);
    return field;
}

struct CostRow {
    const char* why;
    ENumericEntryFormat format;
    const char* keys;
};

} // namespace

// The event is made and queued before the count begins: all that follows, from the loop to the
// pixels on the screen, runs in memory that is there.
TEST(NumericEntryCosts, ATypedKeyAllocatesNothing) {
    QLX_Init::Init();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    const CostRow rows[] = {
        {"the whole of a time code", kNumericEntry_TimeCode, "01234567890123456789"},
        {"blocks", kNumericEntry_MinutesSeconds, "12.34.567.89.01.234."},
        {"feet", kNumericEntry_FeetFrames, "12.34.56.78.90.12.3"},
        {"bars", kNumericEntry_BarsBeats, "12.3.45.6.7.890.12."},
    };
    for (const CostRow& row : rows) {
        LiveWindow live(200, 60);
        TNumericEntryText* const field = MakeField(live.GetWindow(), 0, row.format);
        ASSERT_TRUE(live.Open());
        ASSERT_TRUE(field->BecomeTarget());
        live.Run();
        const auto type = [&](char key) {
            const auto code = static_cast<std::uint32_t>(key);
            live.Inject(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, code, code, 0));
            const AllocationCounter counter;
            live.Run();
            const std::size_t allocated = counter.GetCount();
            EXPECT_FALSE(live.GetWindow()->NeedsDrawing());
            return allocated;
        };
        for (const char key : std::string(row.keys))
            type(key); // glyphs, tables and buffers come to be
        std::size_t allocated = 0;
        for (const char key : std::string(row.keys))
            allocated += type(key);
        EXPECT_EQ(allocated, 0u) << row.why;
        EXPECT_GT(live.GetWindow()->GetCosts().mFrames, 20u) << "it was drawn";
    }
}

TEST(NumericEntryCosts, TwoHundredFieldsFollowAClock) {
    QLX_Init::Init();
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("fields", VPoint(1000, 800));
    std::vector<TNumericEntryText*> fields;
    for (int i = 0; i < 200; ++i)
        fields.push_back(MakeField(window, i, kNumericEntry_TimeCode));
    driver.OpenWindow(*window);
    std::uint64_t widest = 0;
    for (int frame = 1; frame <= 60; ++frame) {
        driver.WaitForIdle();
        driver.ResetCosts();
        // Thirty frames a second on a display of sixty: every other one changes nothing.
        const Time_Sample now(frame * 800);
        const std::string before = fields[0]->GetText();
        for (std::size_t i = 0; i < fields.size(); i += 2)
            fields[i]->SetTextFromSample(now, true);
        driver.WaitForIdle();
        const bool changed = fields[0]->GetText() != before;
        ASSERT_EQ(changed, frame % 2 == 0);
        std::size_t drawn = 0;
        for (const std::string& view : driver.GetDrawnViews())
            drawn += view.rfind("TNumericEntryText", 0) == 0 ? 1 : 0;
        ASSERT_EQ(drawn, changed ? 100u : 0u) << "frame " << frame;
        widest = std::max(widest, driver.GetCosts().mPixelsPainted);
    }
    EXPECT_LT(widest, 100u * 3000u) << "characters, not fields";
    EXPECT_EQ(fields[0]->GetText(), "00:00:01:00");
    EXPECT_EQ(fields[1]->GetText(), "00:00:00:00");
    window->Free();
}

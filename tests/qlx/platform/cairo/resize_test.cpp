#include <gtest/gtest.h>

#include "qlx/platform/testing/qlx_testdriver.h"
#include "tests/support/full_repaint.h"

namespace {

// Each key gives it another size and has it drawn at once, before the platform has told that the
// size is another one.
class Growing : public TWindow {
  public:
    explicit Growing(const VPoint& step) : mStep(step) {}
    void DoKeyEvent(TToolboxEvent*) override {
        Resize(GetSize() + mStep, /*redraw*/ true);
        DrawInvalid();
    }

  private:
    VPoint mStep;
};

} // namespace

// The surface still has the old size then, which is less or more than what is shown of it.
TEST(Resize, ShowsTheWholeWindowWhenItIsDrawnBeforeTheSizeIsTold) {
    for (const VPoint& step : {VPoint(50, 30), VPoint(-50, -30), VPoint(-50, 30)}) {
        QLX_TestDriver driver;
        auto* window = new Growing(step);
        window->IWindow("Growing", VPoint(300, 200));
        driver.OpenWindow(*window);
        for (int i = 1; i <= 2; ++i) {
            driver.Key(kDAW_Key_Return);
            EXPECT_EQ(RepaintComplaint(driver, "resize"), "");
            EXPECT_EQ(driver.GetPicture()->GetWidth(), 300 + i * static_cast<int>(step.h));
        }
        window->Close();
        window->Free();
    }
}

// Scale factors that are no whole numbers: every one from 1 to 3 in steps of 1/120. Views that
// partition a window partition its pixels, and drawing a part gives the pixels of drawing
// everything. Builds with sanitizers try every eighth scale, the ends included; QLX_LONG_TESTS=1
// all.
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_types.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uwindow.h"
#include "tests/support/probe_view.h"

namespace {

constexpr int kFirstScale = 120;
constexpr int kLastScale = 360;

int ScaleStep() {
#ifdef __SANITIZE_ADDRESS__
    return std::getenv("QLX_LONG_TESTS") ? 1 : 8;
#else
    return 1;
#endif
}

std::mt19937 sRandom;

int Any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(sRandom); }

// Adds one grey level to every pixel that it believes to be its own.
class Adder : public TView {
  public:
    void Draw(const VRect&) override {
        constexpr std::uint16_t kLevel = 0x1010;
        GetPainter()->OptimizedFillRect(GetExtent().ToCmn_Rect(), CRGBColor(kLevel, kLevel, kLevel),
                                        QLX_Painter::kAlphaBlend_Add,
                                        QLX_Painter::kResolution_Logical, nullptr, CRGBColor(),
                                        QLX_Painter::kAlphaBlend_Ignore);
    }
};

// Cuts a view into pieces down to a few pixels; inner views are scrolled, so that local edges
// differ from window edges.
void Partition(TView* view, int depth) {
    const VRect extent = view->GetExtent();
    const bool upright = extent.GetWidth() > extent.GetHeight();
    const int length = static_cast<int>(upright ? extent.GetWidth() : extent.GetHeight());
    const int cut = length < 4 ? 0 : Any(1, length - 1);
    VRect first = extent;
    VRect second = extent;
    if (upright) {
        first.Right() = extent.Left() + cut;
        second.Left() = first.Right();
    } else {
        first.Bottom() = extent.Top() + cut;
        second.Top() = first.Bottom();
    }
    for (const VRect& piece : {first, second}) {
        const bool leaf = depth == 0 || piece.GetWidth() < 4 || piece.GetHeight() < 4;
        TView* part = leaf ? new Adder : new TView;
        part->IView(view, piece);
        part->SetLocalOrigin({Any(-9, 9), Any(-9, 9)}, false);
        if (!leaf)
            Partition(part, depth - 1);
    }
}

class BlackWindow : public TWindow {
  public:
    void Draw(const VRect& area) override {
        GetPainter()->SetForegroundColor(CRGBColor(0, 0, 0));
        GetPainter()->FillRect(area.ToCmn_Rect());
    }
};

TEST(Fraction, APartitionOfAWindowCoversEveryPixelOnce) {
    sRandom.seed(120360);
    QLX_TestDriver driver;
    for (int scale = kFirstScale; scale <= kLastScale; scale += ScaleStep()) {
        SCOPED_TRACE("scale " + std::to_string(scale) + "/120");
        driver.SetScale(scale);
        auto* window = new BlackWindow;
        window->IWindow("", {Any(20, 60), Any(20, 40)});
        Partition(window, 4);
        driver.OpenWindow(*window);
        const QLX_Image::Ptr picture = driver.GetPicture();
        int wrong = 0;
        for (int i = 0; i < picture->GetWidth() * picture->GetHeight(); ++i)
            wrong += picture->GetPixels()[i] != 0xFF101010U;
        EXPECT_EQ(wrong, 0);
        window->Free();
    }
}

// Text, ovals, frames and a view that scrolls.
class Scrolled : public TView {
  public:
    void Draw(const VRect& area) override {
        const PainterPtr& painter = GetPainter();
        painter->SetForeground(kThemeColor_FieldBackground);
        painter->FillRect(area.ToCmn_Rect());
        painter->SetForeground(kThemeColor_FieldText);
        for (int line = 0; line < 12; ++line) {
            painter->MoveTo(3, static_cast<float>(14 + 15 * line),
                            QLX_Painter::kResolution_Logical);
            painter->DrawString("line " + std::to_string(line) + " of Text");
            painter->DrawOval({60 + line, 15 * line, 75 + line, 15 * line + 13});
        }
    }
};

TEST(Fraction, APartialRepaintGivesThePixelsOfAFullOne) {
    sRandom.seed(360120);
    ClassDesc::InitUClassDesc();
    QLX_TestDriver driver;
    for (int scale = kFirstScale; scale <= kLastScale; scale += ScaleStep()) {
        SCOPED_TRACE("scale " + std::to_string(scale) + "/120");
        driver.SetScale(scale);
        TWindow& window = driver.OpenWindow(ReadDescription("windows/probe.xml"));
        auto* scrolled = new Scrolled;
        scrolled->IView(&window, {200, 95, 300, 160});
        driver.Click(Cmn_FourChar("prob"));
        const QLX_Image::Ptr full = driver.GetPicture();
        for (int i = 0; i < 6; ++i) {
            const int left = Any(-5, 310);
            const int top = Any(-5, 170);
            window.InvalidateVRect({left, top, left + Any(1, 40), top + Any(1, 30)});
        }
        EXPECT_TRUE(QLX_TestDriver::IsSamePicture(driver.GetPicture(), full)) << "damage";

        driver.Type("g");
        driver.FindAs<TProbeView>(Cmn_FourChar("two ")).SetDragged({Any(0, 50), Any(-20, 20)});
        scrolled->ScrollTo({0, -Any(1, 40)});
        const QLX_Image::Ptr partial = driver.GetPicture();
        window.ForceRedraw();
        EXPECT_TRUE(QLX_TestDriver::IsSamePicture(partial, driver.GetPicture())) << "changes";
        window.Free();
    }
}

// Shapes at fixed local places, as far from the origin as it is told.
class Far : public TView {
  public:
    explicit Far(int distance) : mDistance(distance) {}
    void Draw(const VRect&) override {
        const PainterPtr& painter = GetPainter();
        for (int x = 0; x < 100; x += 9) {
            painter->SetForegroundColor(CRGBColor(0xFFFF, 0x3000, 0));
            painter->FillRect({mDistance + x, x / 3, mDistance + x + 4, 40});
            painter->SetForegroundColor(CRGBColor(0, 0x3000, 0xFFFF));
            painter->FillOval({mDistance + x, 2, mDistance + x + 11, 17}, /*antialias*/ true);
            painter->DrawRect({mDistance + x, 41, mDistance + x + 7, 48});
        }
    }

  private:
    int mDistance;
};

TEST(Fraction, AMillionPixelsFromTheOriginLooksAsAtTheOrigin) {
    constexpr int kFar = 1000000;
    QLX_TestDriver driver;
    for (const int scale : {120, 150, 137, 301}) {
        SCOPED_TRACE("scale " + std::to_string(scale) + "/120");
        driver.SetScale(scale);
        const auto picture = [&driver](Far* view, const VRect& frame, VCoordinate origin) {
            auto* window = new TWindow;
            window->IWindow("", {100, 50});
            view->IView(window, frame);
            view->SetLocalOrigin({origin, 0}, false);
            driver.OpenWindow(*window);
            QLX_Image::Ptr shown = driver.GetPicture();
            window->Free();
            return shown;
        };
        const QLX_Image::Ptr near = picture(new Far(0), {0, 0, 100, 50}, 0);
        EXPECT_EQ(near->GetPixel(1, 39 * scale / 120), 0xFFFF3000U) << "something is drawn";
        EXPECT_TRUE(
            QLX_TestDriver::IsSamePicture(near, picture(new Far(kFar), {-kFar, 0, 100, 50}, 0)))
            << "a view that wide";
        EXPECT_TRUE(
            QLX_TestDriver::IsSamePicture(near, picture(new Far(kFar), {0, 0, 100, 50}, -kFar)))
            << "one scrolled that far";
    }
}

TEST(Fraction, ScrollingMovesPixelsWhereItMay) {
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("", {150, 150});
    auto* scrolled = new Scrolled;
    scrolled->IView(window, {10, 10, 110, 110});
    driver.OpenWindow(*window);
    driver.ResetCosts();
    scrolled->ScrollTo({0, -20});
    EXPECT_EQ(driver.GetCosts().mPixelsPainted, 100U * 20U);
    EXPECT_EQ(driver.GetCosts().mPixelsShown, 100U * 100U);
    auto* front = new TView;
    front->IView(window, {50, 50, 60, 60});
    driver.ResetCosts();
    scrolled->ScrollTo({0, -30});
    EXPECT_EQ(driver.GetCosts().mPixelsPainted, 100U * 100U) << "something lies in front";
    window->Free();
}

} // namespace

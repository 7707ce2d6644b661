// Text that runs to the left, edited: carets, clicks, arrows and selection by Pango's layout.
#include <gtest/gtest.h>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uwindow.h"

namespace {

const std::string kShalom = "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D"; // four letters, two bytes each

class RightToLeft : public ::testing::Test {
  protected:
    void SetUp() override {
        mWindow.IWindow("text", VPoint(300, 100));
        mField = new TEditText;
        mField->SetIdentifier(Cmn_FourChar("text"));
        mField->IView(&mWindow, VRect(20, 20, 220, 44));
        mDriver.OpenWindow(mWindow);
        mField->BecomeTarget();
    }
    void TearDown() override { mWindow.Close(); }
    QLX_TestDriver mDriver;
    TWindow mWindow;
    TEditText* mField = nullptr;
};

} // namespace

TEST_F(RightToLeft, ALineBeginsAtTheRightAndGoesToTheLeft) {
    mField->SetText(kShalom, /*redraw*/ true);
    const VCoordinate start = mField->CaretRect(0).Left();
    EXPECT_GT(start, mField->GetExtent().Right() - 10);
    for (std::size_t offset = 2; offset <= 8; offset += 2)
        EXPECT_LT(mField->CaretRect(offset).Left(), mField->CaretRect(offset - 2).Left());
    // A click between two letters finds the place between them again.
    for (std::size_t offset = 0; offset <= 8; offset += 2) {
        const VRect caret = mField->CaretRect(offset);
        EXPECT_EQ(mField->OffsetAt(VPoint(caret.Left(), caret.Top() + 3)), offset);
    }
}

TEST_F(RightToLeft, ALineIsDrawnWhereItsCaretsStand) {
    const auto inkFrom = [&](int from, int to) {
        const QLX_Image::Ptr picture = mDriver.GetPicture();
        const std::uint32_t ground = picture->GetPixel(120, 26);
        int pixels = 0;
        for (int y = 24; y < 40; ++y)
            for (int x = from; x < to; ++x)
                pixels += picture->GetPixel(x, y) != ground;
        return pixels;
    };
    for (const bool multiline : {false, true}) {
        mField->SetMultiline(multiline, /*redraw*/ true);
        mField->SetText(kShalom, /*redraw*/ true);
        mField->Select(8, 8); // the caret at the far end
        EXPECT_GT(inkFrom(186, 215), 60) << multiline;
        EXPECT_EQ(inkFrom(30, 150), 0) << multiline;
    }
}

TEST_F(RightToLeft, ArrowsGoTheWayTheyPoint) {
    mField->SetText(kShalom, /*redraw*/ true);
    mField->Select(0, 0);
    mDriver.Key(kDAW_Key_Left);
    EXPECT_EQ(mField->GetEditing().GetCaret(), 2u);
    mDriver.Chord("Shift+Left");
    EXPECT_EQ(mField->GetEditing().GetSelectedText(), kShalom.substr(2, 2));
    mDriver.Key(kDAW_Key_Right);
    EXPECT_EQ(mField->GetEditing().GetCaret(), 2u);
    mDriver.Type("x");
    EXPECT_EQ(mField->GetText(), kShalom.substr(0, 2) + "x" + kShalom.substr(2));
}

TEST_F(RightToLeft, ASelectionAcrossBothDirectionsIsDrawnInPieces) {
    const std::string mixed = "abc " + kShalom;
    QLX_TextCarets& carets = QLX_TextCarets::Get();
    const QLX_Font font = mField->GetControlFont();
    const auto whole = carets.SpansOf(font, mixed, 0, mixed.size());
    const auto pieces = carets.SpansOf(font, mixed, 2, 6); // "c ", then the first letter, far right
    ASSERT_GE(pieces.size(), 2u);
    float covered = 0;
    for (const auto& span : whole)
        covered += span.right - span.left;
    EXPECT_NEAR(covered, QLX_TextMeasure::Get().MeasureWidth(font, mixed), 0.5f);
    EXPECT_GT(pieces.back().left, pieces.front().right + 1);
    mField->SetText(mixed, /*redraw*/ true);
    mDriver.Click(Cmn_FourChar("text"));
    mDriver.Chord("Ctrl+A");
    EXPECT_EQ(mField->GetEditing().GetSelectedText(), mixed);
}

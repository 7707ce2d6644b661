// A field of text draws what changed, and what it draws is what drawing everything gives.
#include <gtest/gtest.h>

#include <random>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uwindow.h"

namespace {

std::string Lines(int count) {
    std::string text;
    for (int line = 0; line < count; ++line)
        text += "A line of a comment that somebody wrote.\n";
    return text;
}

class TextDrawing : public ::testing::Test {
  protected:
    void Open(const VRect& frame, bool multiline, int scale = kWindow_ScaleUnit) {
        mDriver.SetScale(scale);
        mWindow.IWindow("text", VPoint(400, 300));
        mField = new TEditText;
        mField->SetMultiline(multiline, /*redraw*/ false);
        mField->IView(&mWindow, frame);
        mDriver.OpenWindow(mWindow);
        mField->BecomeTarget();
        mDriver.WaitForIdle();
    }
    void TearDown() override { mWindow.Close(); }

    /// Pixels that are drawn by an action.
    template <class Action>
    std::uint64_t PixelsOf(Action action) {
        mDriver.WaitForIdle();
        mDriver.ResetCosts();
        action();
        mDriver.WaitForIdle();
        return mDriver.GetCosts().mPixelsPainted;
    }
    /// Draws everything, and says whether that gave the same picture.
    bool IsWhole() {
        mDriver.WaitForIdle();
        const QLX_Image::Ptr parts = mDriver.GetPicture();
        mField->ForceRedraw();
        mDriver.WaitForIdle();
        return QLX_TestDriver::IsSamePicture(parts, mDriver.GetPicture());
    }

    QLX_TestDriver mDriver;
    TWindow mWindow;
    TEditText* mField = nullptr;
};

} // namespace

TEST_F(TextDrawing, ALetterCostsWhatItMovesHoweverLongTheTextIs) {
    Open(VRect(0, 0, 400, 300), /*multiline*/ true);
    const auto height =
        static_cast<std::uint64_t>(mField->GetControlFont().GetMetrics().GetLineHeight());
    std::uint64_t bytes[2] = {};
    for (const int lines : {20, 10'000}) {
        const bool isLong = lines > 20;
        mField->SetText(Lines(lines), /*redraw*/ true);
        const std::size_t end = mField->GetText().size() / 2 / 41 * 41 + 40; // of a line
        mField->Select(end, end);
        const std::uint64_t before = mField->GetLaidOutBytes();
        // From the letter before it to the line's end, and the caret's old place.
        EXPECT_LT(PixelsOf([&] { mDriver.Type("x"); }), (height + 8) * 160) << lines;
        bytes[isLong] = mField->GetLaidOutBytes() - before;
        EXPECT_LT(PixelsOf([&] { mDriver.Key(kDAW_Key_Left); }), 4 * height);
        EXPECT_LT(PixelsOf([&] { mDriver.Chord("Shift+Left"); }), (height + 8) * 160);
        // A line more moves all that stand below it, and none of those above.
        mField->Select(end - 410, end - 410);
        EXPECT_GT(PixelsOf([&] { mDriver.Key(kDAW_Key_Return); }), 400u * 50);
        EXPECT_TRUE(IsWhole());
    }
    EXPECT_EQ(bytes[0], bytes[1]);
    EXPECT_LT(bytes[1], 100u);
}

TEST_F(TextDrawing, PartsMakeUpTheWholeAtEveryScale) {
    const std::string pieces[] = {"a",
                                  "W",
                                  " ",
                                  "words and words ",
                                  "\n",
                                  "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D ",
                                  "e\xCC\x81",
                                  "\xE6\x97\xA5\xE6\x9C\xAC",
                                  "\xC3\x80\xC3\x96j"};
    const char* const keys[] = {"Left",       "Right",     "Up",         "Down",
                                "Shift+Left", "Shift+End", "Shift+Down", "Home",
                                "Backspace",  "Delete",    "Ctrl+Z",     "Ctrl+Shift+Right",
                                "PageUp",     "End",       "Ctrl+A",     "Ctrl+End"};
    for (const bool multiline : {true, false})
        for (const int scale : {120, 150, 240}) {
            Open(multiline ? VRect(10, 10, 211, 113) : VRect(10, 10, 131, 34), multiline, scale);
            std::minstd_rand random(static_cast<std::uint32_t>(scale));
            mField->SetPlaceholder("Say what it is", /*redraw*/ true);
            for (int step = 0; step < 40; ++step) {
                const std::string& piece = pieces[random() % std::size(pieces)];
                switch (random() % 6) {
                case 0:
                    mDriver.Compose(piece, piece);
                    break;
                case 1:
                    static_cast<void>(
                        mField->DoTextComposition(piece, static_cast<int>(random() % 3), 0));
                    break;
                case 2:
                case 3:
                    mField->DoTextInput(piece);
                    break;
                default:
                    mDriver.Chord(keys[random() % std::size(keys)]);
                }
                ASSERT_TRUE(IsWhole()) << "step " << step << " at scale " << scale << " \""
                                       << mField->GetText() << '"';
            }
            mWindow.Close();
            mField->Free();
        }
}

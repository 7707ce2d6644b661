// The waveform as a user meets it: it fills while its peaks are made, scrolls, zooms and selects.
#include <gtest/gtest.h>

#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uwaveformview.h"
#include "qlx/views/uwindow.h"

namespace {

constexpr std::uint32_t kID = Cmn_FourChar("wave");
constexpr std::int64_t kFrames = 400 * 1024;

/// A tone whose loudness grows, handed out only as far as the test allows.
class HeldReader : public Audio_SampleReader {
  public:
    explicit HeldReader(std::int64_t allowed) : mAllowed(allowed) {}
    std::int64_t GetFrameCount() const override { return kFrames; }
    int GetChannelCount() const override { return 1; }
    bool Read(std::int64_t start, std::int32_t count, float* samples) override {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [&] { return start + count <= mAllowed; });
        for (std::int32_t i = 0; i < count; ++i) {
            const auto frame = static_cast<double>(start + i);
            samples[i] = static_cast<float>(std::sin(frame / 40) * frame / kFrames);
        }
        return true;
    }
    void Allow(std::int64_t frames) {
        const std::lock_guard lock(mMutex);
        mAllowed = frames;
        mChanged.notify_all();
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::int64_t mAllowed;
};

class Waveform : public ::testing::Test {
  protected:
    void SetUp() override {
        mWindow = new TWindow;
        mWindow->IWindow("waveform", VPoint(400, 100));
        mView = new TWaveformView;
        mView->SetIdentifier(kID);
        mView->IView(mWindow, VRect(0, 0, 400, 100));
        mDriver.OpenWindow(*mWindow);
        mDriver.WaitForIdle();
    }
    void TearDown() override {
        mReader->Allow(kFrames); // the builder is waited for
        mWindow->Free();
    }
    void Show(std::int64_t allowed) {
        mReader = std::make_shared<HeldReader>(allowed);
        mPeaks = std::make_shared<Audio_PeakPyramid>(mReader, "", 1);
        mView->SetAudio(mPeaks, kFrames, 1);
        mView->ZoomToFit();
    }
    void ShowAll() {
        Show(kFrames);
        mPeaks->WaitUntilComplete();
        mDriver.Step(1);
    }
    std::uint64_t PixelsPainted() { return mDriver.GetCosts().mPixelsPainted; }
    /// The picture as it is must be the one that drawing everything anew gives.
    void ExpectPictureWhole() {
        const QLX_Image::Ptr before = mDriver.GetPicture();
        mWindow->ForceRedraw();
        mDriver.WaitForIdle();
        EXPECT_TRUE(QLX_TestDriver::IsSamePicture(before, mDriver.GetPicture()));
    }

    QLX_TestDriver mDriver;
    TWindow* mWindow = nullptr;
    TWaveformView* mView = nullptr;
    std::shared_ptr<HeldReader> mReader = std::make_shared<HeldReader>(kFrames);
    std::shared_ptr<Audio_PeakPyramid> mPeaks;
};

} // namespace

TEST_F(Waveform, GrowsWithItsPeaksWithoutAnyEventAndThenRests) {
    Show(kFrames / 2);
    while (mPeaks->GetBuiltFrames() < kFrames / 4)
        std::this_thread::yield();
    mDriver.Step(0.2);
    const QLX_Image::Ptr half = mDriver.GetPicture();
    mReader->Allow(kFrames);
    mPeaks->WaitUntilComplete();
    mDriver.ResetCosts();
    mDriver.Step(0.2);
    EXPECT_FALSE(QLX_TestDriver::IsSamePicture(half, mDriver.GetPicture()));
    EXPECT_LT(PixelsPainted(), 400u * 100 * 7 / 8) << "what was there is not drawn again";
    ExpectPictureWhole();
    mDriver.Step(0.2);
    EXPECT_EQ(mView->GetIdleFreq(), kNoIdle);
}

TEST_F(Waveform, NoAudioAndCompleteAudioWantNoIdleTime) {
    EXPECT_EQ(mView->GetIdleFreq(), kNoIdle);
    ShowAll();
    EXPECT_EQ(mView->GetIdleFreq(), kNoIdle);
    mView->SetAudio(nullptr, 0, 0);
    mDriver.Step(1);
    EXPECT_EQ(mView->GetIdleFreq(), kNoIdle);
}

TEST_F(Waveform, ScrollingDrawsOnlyTheColumnsThatComeIntoSight) {
    ShowAll();
    mView->Zoom(1, 0);
    mView->Zoom(1, 0);
    mView->SetSelection(kFrames / 8, kFrames / 6);
    mView->SetCursorFrame(kFrames / 7);
    mDriver.WaitForIdle();
    int told = 0;
    mView->SetScaleCallback([&told] { ++told; });
    for (const auto& [column, newColumns] :
         {std::pair<std::int64_t, unsigned>{10, 10}, {130, 120}, {90, 40}, {600, 400}, {600, 0}}) {
        mDriver.ResetCosts();
        mView->ScrollToColumn(column);
        mDriver.WaitForIdle();
        EXPECT_EQ(mView->GetFirstColumn(), column);
        EXPECT_EQ(PixelsPainted(), newColumns * 100) << column;
        ExpectPictureWhole();
    }
    EXPECT_EQ(told, 4);
}

TEST_F(Waveform, ZoomKeepsTheFrameUnderThePointer) {
    ShowAll();
    const std::int64_t frame = mView->FrameAt(300);
    for (int notch = 0; notch < 12; ++notch)
        mDriver.Wheel({300, 50}, 1, kQLX_Modifier_Command);
    EXPECT_NEAR(static_cast<double>(mView->FrameAt(300)), static_cast<double>(frame), 1024);
    for (int notch = 0; notch < 40; ++notch)
        mDriver.Wheel({300, 50}, -1, kQLX_Modifier_Command);
    EXPECT_EQ(mView->GetFirstColumn(), 0) << "never further out than the whole";
    EXPECT_EQ(mView->FrameAt(399), std::min<std::int64_t>(399 * 1024, kFrames));
}

TEST_F(Waveform, ADragSelectsAndAnEscapeTakesItBack) {
    ShowAll();
    mDriver.Drag({100, 50}, {50, 60});
    EXPECT_EQ(mView->GetSelectionStart(), mView->FrameAt(50));
    EXPECT_EQ(mView->GetSelectionEnd(), mView->FrameAt(100));
    mDriver.Press({200, 50});
    mDriver.MoveTo(Cmn_Point<int>{250, 50});
    mDriver.Key(kDAW_Key_Escape);
    mDriver.Release();
    EXPECT_EQ(mView->GetSelectionStart(), mView->FrameAt(50));
    EXPECT_EQ(mView->GetSelectionEnd(), mView->FrameAt(100));
    ExpectPictureWhole();
    mDriver.ResetCosts();
    mView->SetCursorFrame(mView->FrameAt(300));
    mDriver.WaitForIdle();
    EXPECT_EQ(PixelsPainted(), 100u) << "one column";
    mDriver.ResetCosts();
    mView->SetCursorFrame(mView->FrameAt(301));
    mDriver.WaitForIdle();
    EXPECT_EQ(PixelsPainted(), 200u) << "where it was and where it is";
    ExpectPictureWhole();
}

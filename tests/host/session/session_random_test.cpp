// The session window under a user who does anything: what stands on the screen is what a full
// repaint draws, and what the fields show is what the session holds.
#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "host/session_window.h"
#include "mediakit/time/time_format.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uviewserver.h"
#include "tests/support/full_repaint.h"
#include "tests/support/seeds.h"

namespace {

constexpr const char* kChords[] = {
    "Return",     "Tab",          "Shift+Tab",  "Escape", "Up",        "Down",   "Left",
    "Right",      "Home",         "End",        "PageUp", "Backspace", "Delete", "Space",
    "Ctrl+Z",     "Ctrl+Z",       "Ctrl+A",     "Ctrl+C", "Ctrl+V",    "Ctrl+X", "Shift+End",
    "Ctrl+Right", "Ctrl+Shift+Z", "Shift+Left", "Alt+F"};
constexpr const char* kTyped[] = {"1", "23", "+", "-", ".", ",", "=", "9999999", "a", "\xC3\xA9"};

class User {
  public:
    explicit User(std::uint32_t seed) : mRandom(seed) {
        QLX_Init::Init();
        const StCurrentLanguage english(QLX_Language::English);
        QLX_SourceViewFormat format(Sys_FileLoc(QLX_SOURCE_DIR "/host/data/session.xml"));
        const Cmn_AliasedRefCountPtr<QLX_ViewMemento> memento(format.ReadMemento(nullptr));
        memento->GetRoot()->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
        mWindow = QLX_ObjectCast<TSessionWindow>(TViewServer::Get()->NewWindow(memento));
        mWindow->ISession(MakeGeneratedAudio(), memento, SessionLook());
        mDriver.SetScale(kRepaintScales[seed % std::size(kRepaintScales)]);
        Open();
        mWindow->WaitForPeaks();
    }
    ~User() {
        mWindow->Free();
        TMenuManager::RemoveAllMenus();
        QLX_Language::SetCurrentLanguage(QLX_Language::English);
        QLX_Theme::SetVariant(kTheme_Dark);
        Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
        Time_Session::SetFrameOffset(0);
        Time_Session::SetSampleRate(48000);
    }

    void Step() {
        if (!mWindow->IsOpen()) // the user has quit
            Open();
        try {
            Act();
        } catch (const QLX_TestDriverError&) { // what closed in the middle
        }
    }

    /// Empty when all is in order.
    std::string Complaint() {
        const SessionState& state = mWindow->GetModel().GetState();
        const std::int64_t frames = mWindow->GetModel().GetFrameCount();
        if (state.mStart < 0 || state.mStart > state.mEnd || state.mEnd > frames)
            return "selection " + std::to_string(state.mStart) + ".." + std::to_string(state.mEnd);
        for (const auto& [identifier, value] : {std::pair(Cmn_FourChar("volu"), state.mGain),
                                                std::pair(Cmn_FourChar("pan "), state.mPan)}) {
            auto& field = *static_cast<TNumericEntryText*>(mWindow->FindSubView(identifier, true));
            CNumericEntryData data;
            field.GetData(&data);
            if (!field.IsTarget() && data.mValue != value)
                return "\"" + field.GetText() + "\" is shown for " + std::to_string(value);
        }
        return "";
    }

    std::string PictureComplaint() {
        return mWindow->IsOpen() ? RepaintComplaint(mDriver, "session_random") : "";
    }

    const std::string& GetDeed() const { return mDeed; }

  private:
    std::uint32_t Pick(std::size_t count) { return static_cast<std::uint32_t>(mRandom() % count); }
    Cmn_Point<int> Place() {
        const VPoint size = mWindow->GetSize();
        return {static_cast<int>(Pick(static_cast<std::size_t>(size.h) + 20)) - 10,
                static_cast<int>(Pick(static_cast<std::size_t>(size.v) + 20)) - 10};
    }
    void Open() {
        mDriver.OpenWindow(*mWindow);
        mDriver.WaitForIdle();
    }

    void Act() {
        const std::uint32_t what = Pick(20);
        mDeed = std::to_string(what);
        switch (what) {
        case 0:
        case 1:
            return mDriver.Click(Place(), Pick(8) == 0 ? Pick(16) : 0);
        case 2:
            return mDriver.Press(Place());
        case 3:
        case 4:
            return mDriver.MoveTo(Place());
        case 5:
        case 6:
            return mDriver.Release();
        case 7:
            return mDriver.DoubleClick(Place());
        case 8:
            return mDriver.Drag(Place(), Place(), 4, Pick(4) == 0 ? Pick(16) : 0);
        case 9:
            return mDriver.Wheel(Place(), static_cast<int>(Pick(9)) - 4, Pick(3) ? 0 : Pick(16));
        case 10:
            return mDriver.Step(Pick(2) ? 1.0 / 60 : 0.4);
        case 11:
            return mDriver.ResizeWindow(300 + static_cast<int>(Pick(1000)),
                                        200 + static_cast<int>(Pick(700)));
        case 12:
            return Pick(4) ? mDriver.LeaveWindow() : mDriver.LoseCapture();
        case 13:
            return mWindow->DoMenuCommand(Pick(2) ? kSessionCommand_Play : kSessionCommand_ZoomIn);
        case 14:
        case 15:
        case 16:
            return mDriver.Type(kTyped[Pick(std::size(kTyped))]);
        default:
            return mDriver.Chord(mDeed = kChords[Pick(std::size(kChords))]);
        }
    }

    std::minstd_rand mRandom;
    QLX_TestDriver mDriver;
    TSessionWindow* mWindow = nullptr; // owned
    std::string mDeed;
};

} // namespace

TEST(SessionRandom, TheScreenIsWhatAFullRepaintDrawsAndTheFieldsWhatTheSessionHolds) {
    for (unsigned seed = 1; seed <= SeedsToTry(4); ++seed) {
        User user(seed);
        for (int step = 0; step < 200; ++step) {
            user.Step();
            ASSERT_EQ(user.Complaint(), "")
                << "seed " << seed << " step " << step << " after " << user.GetDeed();
            if (step % 8 != 0)
                continue;
            ASSERT_EQ(user.PictureComplaint(), "")
                << "seed " << seed << " step " << step << " after " << user.GetDeed();
        }
    }
}

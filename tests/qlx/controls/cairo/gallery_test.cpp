// The gallery: how every control looks in every state, and that keys alone reach and change all of
// them.
#include <gtest/gtest.h>

#include <cstdlib>

#include "app/misc/qlx_init.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/udialog.h"
#include "qlx/views/umenubar.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uwindow.h"
#include "qlx/views/uwindowmodal.h"
#include "tests/support/gallery.h"
#include "tests/support/picture_compare.h"

namespace {

constexpr char kFolder[] = QLX_SOURCE_DIR "/examples/gallery";

struct Look {
    EThemeVariant mVariant;
    const char* mTheme;
};
constexpr Look kLooks[] = {
    {kTheme_Light, "light"}, {kTheme_Dark, "dark"}, {kTheme_DarkHighContrast, "contrast"}};

class Gallery : public ::testing::Test {
  protected:
    void SetUp() override { QLX_Init::Init(); }
    void TearDown() override {
        TMenuManager::RemoveAllMenus();
        QLX_Theme::Reset();
    }
};

/// Opens the gallery for as long as it lives.
class OpenGallery {
  public:
    explicit OpenGallery(int scale = 1) {
        mDriver.SetScale(scale * kWindow_ScaleUnit);
        SetGalleryMenus();
        mWindow = MakeGallery(kFolder);
        mDriver.OpenWindow(*mWindow);
    }
    ~OpenGallery() { mWindow->Free(); }
    QLX_TestDriver mDriver;
    TWindow* mWindow;
};

} // namespace

TEST_F(Gallery, LooksAsItDidWhenItWasLookedAt) {
    for (const Look& look : kLooks)
        for (const int scale : {1, 2}) {
            QLX_Theme::SetVariant(look.mVariant);
            OpenGallery gallery(scale);
            const std::string name =
                std::string("gallery-") + look.mTheme + "-" + std::to_string(scale) + "x";
            EXPECT_TRUE(MatchesGolden(*gallery.mDriver.GetPicture(), name, /*tolerance*/ 1));
        }
}

TEST_F(Gallery, MenusAndAlertsLookAsTheyDid) {
    for (const Look& look : kLooks) {
        QLX_Theme::SetVariant(look.mVariant);
        const std::string theme = look.mTheme;
        OpenGallery gallery;
        auto& bar = gallery.mDriver.FindAs<TMenuBar>(Cmn_FourChar("menu"));
        bar.OpenMenu(0);
        for (const char* key : {"Down", "Down", "Down", "Right"})
            gallery.mDriver.Chord(key);
        EXPECT_TRUE(MatchesGolden(*gallery.mDriver.GetPicture(), "menu-" + theme, 1));
        TMenuLayer::GetOpen()->Close();
        const std::pair<EAlertKind, const char*> kinds[] = {
            {kAlert_Note, "note"}, {kAlert_Caution, "caution"}, {kAlert_Stop, "stop"}};
        for (const auto& [kind, name] : kinds) {
            TAlert::Show(kind, "Save the changes to \"Ballad\" before it is closed?",
                         "What was recorded since the last save would be lost. This cannot be "
                         "undone.",
                         {"Save", "Don't Save", "Cancel"}, {});
            gallery.mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
            EXPECT_TRUE(MatchesGolden(*gallery.mDriver.GetPicture(),
                                      "alert-" + std::string(name) + "-" + theme, 1));
            gallery.mDriver.Key(kDAW_Key_Escape);
            gallery.mDriver.UseWindow(*gallery.mWindow);
        }
    }
}

TEST_F(Gallery, KeysAloneReachAndChangeEveryControl) {
    OpenGallery gallery;
    const GalleryWalk walk =
        WalkGallery(*gallery.mWindow, [&](const std::string& key) { gallery.mDriver.Chord(key); });
    EXPECT_EQ(walk.mProblems, std::vector<std::string>{});
    EXPECT_GE(walk.mVisited, 50);
}

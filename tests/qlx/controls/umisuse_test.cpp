// Every control under users and programs that do anything: random events, values and sizes out of
// range, what is no number, broken text, and being freed by its own action. What is drawn piece by
// piece has to be what a full repaint draws.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/upopup.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/utabs.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindow.h"
#include "tests/support/full_repaint.h"
#include "tests/support/seeds.h"

namespace {

constexpr std::uint32_t kSubject = Cmn_FourChar("subj");

constexpr std::uint32_t kKeys[] = {kDAW_Key_Up,
                                   kDAW_Key_Down,
                                   kDAW_Key_Left,
                                   kDAW_Key_Right,
                                   kDAW_Key_Home,
                                   kDAW_Key_End,
                                   kDAW_Key_PageUp,
                                   kDAW_Key_PageDown,
                                   kDAW_Key_Tab,
                                   kDAW_Key_Escape,
                                   kDAW_Key_Return,
                                   kDAW_Key_Backspace,
                                   kDAW_Key_Delete,
                                   ' ',
                                   'a',
                                   'v',
                                   'x',
                                   'z',
                                   kDAW_Key_F1 + 1};

constexpr std::int32_t kValues[] = {0, 1, -1, 7, INT32_MAX, INT32_MIN, 100, INT32_MAX - 1};

const double kNumbers[] = {
    0.0, -1e300, 1e300, std::nan(""), std::numeric_limits<double>::infinity(), 2147483648.0};

const std::string kTexts[] = {"",
                              "plain",
                              std::string(3, '\0'),
                              "\xFF\xC0\x80\xED\xA0\x80",
                              std::string(20000, 'w'),
                              "one\ntwo\r\nthree\n-\n\n",
                              "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D e\xCC\x81"};

/// One class under one user.
class Subject {
  public:
    Subject(const std::string& className, std::uint32_t seed)
        : mClassName(className), mRandom(seed) {
        mWindow.IWindow("misuse", VPoint(300, 200));
        mDriver.SetScale(kRepaintScales[seed % std::size(kRepaintScales)]);
        mDriver.OpenWindow(mWindow);
    }
    ~Subject() { mWindow.Close(); }

    void Step() {
        TControl* control = Get();
        switch (Pick(16)) {
        case 0:
            return mDriver.Press(Place(), Pick(16));
        case 1:
            return mDriver.Release();
        case 2:
            return mDriver.MoveTo(Place());
        case 3:
            return mDriver.Wheel(Place(), static_cast<int>(Pick(9)) - 4);
        case 4:
            return mDriver.Step(0.3);
        case 5:
            return control->SetRange(Value(), Value(), /*redraw*/ true);
        case 6:
            return control->SetValue(Value(), /*redraw*/ true);
        case 7:
            static_cast<void>(
                control->SetRangeForAccessibility(kNumbers[Pick(std::size(kNumbers))]));
            return;
        case 8:
            return control->SetFrame(Frame(), /*redraw*/ true, /*layOut*/ true);
        case 9:
            control->SetEnable(Pick(4) != 0);
            return Get()->SetHilite(Pick(2) != 0, /*redraw*/ true);
        case 10:
            return GiveText(control);
        case 11:
            return mDriver.DoubleClick(Place());
        case 12:
            return Pick(8) == 0 ? control->Free() : mDriver.LoseCapture();
        default:
            return mDriver.Key(kKeys[Pick(std::size(kKeys))], Pick(3) == 0 ? Pick(16) : 0);
        }
    }

    void Check() {
        TControl* control = Get();
        ASSERT_GE(control->GetValue(), control->GetMinimum());
        ASSERT_LE(control->GetValue(), control->GetMaximum());
    }

    void CheckPicture() { ASSERT_EQ(RepaintComplaint(mDriver, "misuse"), ""); }

  private:
    std::uint32_t Pick(std::size_t count) { return static_cast<std::uint32_t>(mRandom() % count); }
    std::int32_t Value() { return kValues[Pick(std::size(kValues))]; }
    Cmn_Point<int> Place() {
        return {static_cast<int>(Pick(340)) - 20, static_cast<int>(Pick(240)) - 20};
    }
    VRect Frame() {
        switch (Pick(5)) {
        case 0:
            return VRect(10, 10, 10, 10);
        case 1:
            return VRect(50, 50, 20, 20); // inverted
        case 2:
            return VRect(0, 0, 1, 1);
        case 3:
            return VRect(-1000, -1000, 100000, 100000);
        default:
            return VRect(20, 20, 220, 160);
        }
    }

    /// The control, made anew when the last one is gone. Now and then it frees itself by what it
    /// announces.
    TControl* Get() {
        if (auto* control = QLX_ObjectCast<TControl>(mWindow.FindSubView(kSubject, true)))
            return control;
        auto* control =
            static_cast<TControl*>(static_cast<TObject*>(ClassDesc::NewByClassName(mClassName)));
        control->SetIdentifier(kSubject);
        control->IView(&mWindow, VRect(20, 20, 220, 160));
        if (QLX_ObjectCast<TScroller>(control) || QLX_ObjectCast<TTabs>(control) ||
            QLX_ObjectCast<TCluster>(control))
            for (int i = 0; i < 3; ++i)
                (new TRadio)->IView(control, VRect(0, 30 * i, 300, 30 * i + 30));
        if (auto* list = QLX_ObjectCast<TTextList>(control)) {
            list->SetMultiple(true);
            list->SetEditCallback(
                [](std::int64_t, const std::string& text) { return text.size() % 2 == 0; });
        }
        control->SetChangeCallback([this](TControl& announcing, std::int32_t) {
            if (Pick(40) == 0)
                announcing.Free();
        });
        return control;
    }

    void GiveText(TControl* control) {
        const std::string& text = kTexts[Pick(std::size(kTexts))];
        QLX_Clipboard::Get().SetText(text);
        if (auto* button = QLX_ObjectCast<TButtonBase>(control))
            button->SetTitle(text, /*redraw*/ true);
        else if (auto* popup = QLX_ObjectCast<TPopup>(control))
            popup->SetChoices({text, "-", "two", text}, /*redraw*/ true);
        else if (auto* tabs = QLX_ObjectCast<TTabs>(control))
            tabs->SetTitles({text, "two"}, /*redraw*/ true);
        else if (auto* list = QLX_ObjectCast<TTextList>(control))
            list->SetRows(Value() % 5000, [text](std::int64_t) { return text; });
        else if (auto* field = QLX_ObjectCast<TEditText>(control))
            field->SetMultiline(Pick(2) != 0, /*redraw*/ true);
    }

    std::string mClassName;
    std::minstd_rand mRandom;
    QLX_TestDriver mDriver;
    TWindow mWindow;
};

class Misuse : public ::testing::TestWithParam<const char*> {};

} // namespace

TEST_P(Misuse, LeavesTheControlInOrder) {
    ClassDesc::InitUClassDesc();
    for (unsigned seed = 1; seed <= SeedsToTry(3); ++seed) {
        Subject subject(GetParam(), seed);
        for (int step = 0; step < 250; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            subject.Step();
            subject.Check();
            if (step % 10 == 0)
                subject.CheckPicture();
            if (HasFatalFailure())
                return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Controls, Misuse,
                         ::testing::Values("TButton", "TCheckBox", "TRadio", "TCluster", "TPopup",
                                           "TSlider", "TKnob", "TScrollBar", "TScroller", "TTabs",
                                           "TEditText", "TTextList", "TStaticText", "TPicture",
                                           "TPlate", "TMeterView", "TWaveformView", "TMenuBar"),
                         [](const auto& info) { return std::string(info.param); });

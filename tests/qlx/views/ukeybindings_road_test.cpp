// Key bindings as a user meets them: keys pressed in a window, on the road that the application
// gives them.

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_memory.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/ukeybindings.h"
#include "qlx/views/uwindow.h"

namespace {

using Lines = std::vector<std::string>;
Lines sLog;

class LogCommand : public DAW_Command {
  public:
    LogCommand(int id, const std::string& name) : DAW_Command(id, name, name) {
        DAW_CommandRegistry::RegisterCommand(this);
    }
    void DoCommandX() override {
        sLog.push_back(GetName() + (GetOptionState("other way") ? " the other way" : ""));
    }
    void DoCommandEnd(Cmn_AliasedRefCountPtr<DAW_EventModifiers>,
                      Cmn_RefCountPtr<DAW_KeyboardState>) override {
        sLog.push_back(GetName() + " ends");
    }
};

/// A view that takes plain keys, as a list does.
class KeyView : public TView {
  public:
    KeyView(TView* superview, std::uint32_t identifier, const VRect& frame) {
        IView(superview, frame);
        SetIdentifier(identifier);
    }
    bool WantsToBeTarget() override { return true; }
    void DoKeyEvent(TToolboxEvent*) override { sLog.push_back("view"); }
    void DoCommandKeyEvent(TToolboxEvent*) override { sLog.push_back("view, command key"); }
};

class KeyRoad : public ::testing::Test {
  protected:
    KeyRoad() {
        mWindow->IWindow("keys", {200, 100});
        mWindow->SetIdentifier(Cmn_FourChar("wndw"));
        mView = new KeyView(mWindow, Cmn_FourChar("list"), {0, 0, 50, 200});
        mField = new TEditText;
        mField->IView(mWindow, {50, 0, 100, 200});
        mField->SetIdentifier(Cmn_FourChar("text"));
        mDriver.OpenWindow(*mWindow);
        EXPECT_TRUE(mBindings.ReadText("- - S save\n"
                                       "<Cmd> [Shift] S save.as\n"
                                       "- - Return apply list\n"
                                       "- [Shift] F5 zoom\n",
                                       "keys"));
        mPrevious = gApplication->SetKeyBindings(&mBindings);
        sLog.clear();
    }
    ~KeyRoad() override {
        gApplication->SetKeyBindings(mPrevious);
        mWindow->Free();
        DAW_CommandOptionRegistry::GetCommandOptionMap().clear();
    }
    Lines Take() { return std::exchange(sLog, {}); }

    QLX_TestDriver mDriver;
    TWindow* mWindow = new TWindow; // freed by the fixture
    KeyView* mView;                 // the window's
    TEditText* mField;              // the window's
    CKeyBindings mBindings;
    CKeyBindings* mPrevious = nullptr;
    LogCommand mSave{1, "save"}, mSaveAs{2, "save.as"}, mApply{3, "apply"}, mZoom{4, "zoom"};
};

} // namespace

TEST_F(KeyRoad, BoundKeysPerformAndTheOthersAreTyped) {
    mWindow->SetWindowTarget(mView);
    mDriver.Type("xs");
    EXPECT_EQ(Take(), (Lines{"view", "save", "save ends"}));
    mDriver.Chord("Ctrl+S");
    mDriver.Chord("Ctrl+Shift+S");
    mDriver.Chord("Ctrl+X");
    EXPECT_EQ(Take(),
              (Lines{"save.as", "save.as ends", "save.as", "save.as ends", "view, command key"}));
}

TEST_F(KeyRoad, ATextFieldGetsPlainKeysFirst) {
    mWindow->SetWindowTarget(mField);
    mField->SetText("", false);
    mDriver.Type("gos");
    EXPECT_EQ(mField->GetText(), "gos");
    EXPECT_EQ(Take(), Lines{});
    mDriver.Key(kDAW_Key_F1 + 4); // nothing a text field can do with it
    mDriver.Chord("Ctrl+S");
    EXPECT_EQ(Take(), (Lines{"zoom", "zoom ends", "save.as", "save.as ends"}));
    EXPECT_EQ(mField->GetText(), "gos");
}

TEST_F(KeyRoad, ContextsFollowTheFocus) {
    mWindow->SetWindowTarget(mView);
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(Take(), (Lines{"apply", "apply ends"}));
    mWindow->SetWindowTarget(mField);
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(Take(), Lines{});
}

TEST_F(KeyRoad, HeldModifiersSwitchOptions) {
    DAW_CommandOptionRegistry::RegisterCommandOption(
        DAW_CommandOption::New(4, "other way", kDAW_ModifierKind_Shift, false, kDAW_Key_None,
                               kCommandNameAppend_None, {}));
    DAW_CommandOptionRegistry::RegisterCommandOption(
        DAW_CommandOption::New(1, "other way", kDAW_ModifierKind_OwnKey, false, DAW_EKeyCode('O'),
                               kCommandNameAppend_None, {}));
    mWindow->SetWindowTarget(mView);
    mDriver.Key(kDAW_Key_F1 + 4);
    mDriver.Key(kDAW_Key_F1 + 4, kQLX_Modifier_Shift);
    EXPECT_EQ(Take(), (Lines{"zoom", "zoom ends", "zoom the other way", "zoom ends"}));
    mDriver.KeyDown('O');
    mDriver.Key('S');
    mDriver.KeyUp('O');
    EXPECT_EQ(Take(), (Lines{"view", "save the other way", "save ends"}));
}

TEST_F(KeyRoad, LeavingTheApplicationEndsWhatIsHeld) {
    mWindow->SetWindowTarget(mView);
    mDriver.KeyDown('S');
    mDriver.KeyDown('S', 0, /*repeated*/ true);
    mWindow->Deliver(QLX_MakeWindowEvent(kQLX_EventKind_Deactivated));
    EXPECT_EQ(Take(), (Lines{"save", "save", "save ends"}));
    mWindow->Deliver(QLX_MakeWindowEvent(kQLX_EventKind_Activated));
    mDriver.KeyUp('S');
    EXPECT_EQ(Take(), Lines{});
}

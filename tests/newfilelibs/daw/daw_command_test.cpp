#include "newfilelibs/daw/daw_command.h"

#include <gtest/gtest.h>

#include <set>

#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"
#include "tests/support/assertion_catcher.h"

namespace {

using Kinds = std::vector<DAW_EModifierKind>;

DAW_EModifierKind Kind(int value) { return static_cast<DAW_EModifierKind>(value); }

Cmn_AliasedRefCountPtr<DAW_EventModifiers> Modifiers(int menu, int alternate, int meta, int shift) {
    return DAW_EventModifiers::New(
        DAW_EMenuCommandKeyState(menu), DAW_EAlternateKeyState(alternate), DAW_EMetaKeyState(meta),
        DAW_EShiftKeyState(shift), kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed,
        kDAW_RightButton_NotPressed, false, kDAW_KeyboardFocus_Normal);
}

Cmn_RefCountPtr<DAW_CommandOption> Option(const Kinds& required, bool defaultState,
                                          const Kinds& excluded = {}, int owner = 1,
                                          const std::string& name = "option") {
    return DAW_CommandOption::New(owner, name, required, defaultState, DAW_EKeyCode('X'),
                                  kCommandNameAppend_Suffix, excluded);
}

class Registries : public ::testing::Test {
  protected:
    ~Registries() override {
        DAW_CommandRegistry::RemoveRegisteredCommands();
        DAW_CommandRegistry::SetRegistrationNotificationCallback(nullptr);
        DAW_CommandOptionRegistry::GetCommandOptionMap().clear();
        DAW_CommandOptionRegistry::SetRegistrationNotificationCallback(nullptr);
    }
};

} // namespace

// Options

TEST(CommandOption, HoldingTheRequiredModifiersFlipsTheDefault) {
    const auto withX = DAW_KeyboardState::New();
    withX->SetKeyDown(DAW_EKeyCode('X'), true);
    const auto without = DAW_KeyboardState::New();
    const struct {
        const char* why;
        Kinds required, excluded;
        int states[4]; // menu-command, alternate, meta, shift
        const DAW_KeyboardState* keyboard;
        bool flipped;
    } rows[] = {
        {"pressed", {Kind(1)}, {}, {1, 0, 0, 0}, nullptr, true},
        {"either does not count as pressed", {Kind(1)}, {}, {2, 0, 0, 0}, nullptr, false},
        {"the other keys do not matter", {Kind(3)}, {}, {1, 1, 1, 1}, nullptr, true},
        {"all required ones", {Kind(2), Kind(4)}, {}, {0, 1, 0, 0}, nullptr, false},
        {"an excluded one is held", {Kind(1)}, {Kind(4)}, {1, 0, 0, 1}, nullptr, false},
        {"an excluded one in state either", {Kind(1)}, {Kind(4)}, {1, 0, 0, 2}, nullptr, true},
        {"the own key is held", {Kind(0)}, {}, {0, 0, 0, 0}, withX.Get(), true},
        {"the own key is not held", {Kind(0)}, {}, {0, 0, 0, 0}, without.Get(), false},
        {"no keyboard state", {Kind(0)}, {}, {0, 0, 0, 0}, nullptr, false},
        {"nothing asked is always met", {}, {}, {0, 0, 0, 0}, nullptr, true},
    };
    for (const auto& row : rows) {
        const Cmn_RefCountPtr<DAW_KeyboardState> keyboard(
            const_cast<DAW_KeyboardState*>(row.keyboard));
        const auto& s = row.states;
        for (const bool defaultState : {false, true}) {
            const bool state = Option(row.required, defaultState, row.excluded)
                                   ->GetOptionState(Modifiers(s[0], s[1], s[2], s[3]), keyboard);
            EXPECT_EQ(state, row.flipped != defaultState) << row.why;
        }
    }
    EXPECT_FALSE(Option({Kind(1)}, false)->GetOptionState(nullptr, nullptr)) << "no modifiers";
}

TEST(CommandOption, KindsThatAreNoneAreReportedAndPassedOver) {
    AssertionCatcher caught;
    const bool state = Option({Kind(5), Kind(1)}, false, {Kind(0), Kind(-1), Kind(2)})
                           ->GetOptionState(Modifiers(1, 0, 0, 0), nullptr);
    EXPECT_TRUE(state);
    std::vector<int> lines;
    for (const auto& failure : caught.GetFailures()) {
        EXPECT_EQ(failure.mSource, "newfilelibs/daw/daw_commandoption");
        lines.push_back(failure.mLine);
    }
    EXPECT_EQ(lines, (std::vector<int>{47, 70, 70}));
}

TEST(CommandOption, ReferencesAreGivenBack) {
    const auto modifiers = Modifiers(1, 0, 0, 0);
    const auto keyboard = DAW_KeyboardState::New();
    (void)Option({Kind(0), Kind(1)}, false)->GetOptionState(modifiers, keyboard);
    EXPECT_EQ(modifiers->GetReferenceCount(), 1);
    EXPECT_EQ(keyboard->GetReferenceCount(), 1);
}

TEST(CommandOption, BuildsTheModifiersThatSwitchIt) {
    const auto built =
        Option({Kind(2), Kind(0), Kind(4)}, false, {Kind(1)})->BuildModifiersFromOption();
    EXPECT_EQ(built->AsDAW_EModifier(true), kDAW_Modifier_Alternate | kDAW_Modifier_Shift);
    EXPECT_EQ(built->UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode(), 2);
    EXPECT_EQ(built->GetMenuCommandKeyState(), 0);
    EXPECT_EQ(built->GetLeftMouseButtonState(), 0);
    const auto all = Option({Kind(1), Kind(3)}, false)->BuildModifiersFromOption();
    EXPECT_EQ(all->AsDAW_EModifier(true), kDAW_Modifier_MenuCommand | kDAW_Modifier_Meta);
}

TEST(CommandOption, NameJoinsTheCommandsName) {
    const auto name = [](ECommandNameAppendMode mode) {
        return DAW_CommandOption::New(1, "to Disk", Kind(1), false, kDAW_Key_None, mode, {})
            ->AppendToCommandName("Bounce");
    };
    EXPECT_EQ(name(kCommandNameAppend_None), "Bounce");
    EXPECT_EQ(name(kCommandNameAppend_Suffix), "Bounce to Disk");
    EXPECT_EQ(name(kCommandNameAppend_Parentheses), "Bounce (to Disk)");
    EXPECT_EQ(name(kCommandNameAppend_Prefix), "to Disk Bounce");
    EXPECT_EQ(name(kCommandNameAppend_Replace), "to Disk");
}

TEST_F(Registries, OptionsComeInTheOrderOfOwnerAndName) {
    static std::vector<std::string> sTold;
    sTold.clear();
    DAW_CommandOptionRegistry::SetRegistrationNotificationCallback(
        [](const DAW_CommandOption* option) { sTold.push_back(option->GetOptionName()); });
    for (const char* name : {"b", "B", "a\xFF", "a"})
        DAW_CommandOptionRegistry::RegisterCommandOption(Option({}, false, {}, 7, name));
    DAW_CommandOptionRegistry::RegisterCommandOption(Option({}, false, {}, -7, "z"));
    const auto later = Option({}, true, {}, 7, "b");
    DAW_CommandOptionRegistry::RegisterCommandOption(later); // replaces

    const auto first = Option({}, false);
    std::vector<Cmn_RefCountPtr<DAW_CommandOption>> found = {first};
    DAW_CommandOptionRegistry::FindAllOptionsForCommand(7, found);
    std::vector<std::string> names;
    for (const auto& option : found)
        names.push_back(option->GetOptionName());
    EXPECT_EQ(names, (std::vector<std::string>{"option", "B", "a", "a\xFF", "b"}));
    EXPECT_EQ(sTold, (std::vector<std::string>{"b", "B", "a\xFF", "a", "z", "b"}));
    EXPECT_EQ(DAW_CommandOptionRegistry::FindByOwnerCommandIDAndName(7, "b"), later);
    EXPECT_FALSE(DAW_CommandOptionRegistry::FindByOwnerCommandIDAndName(8, "b"));
    DAW_CommandOptionRegistry::FindAllOptionsForCommand(8, found);
    EXPECT_EQ(found.size(), 5u);
}

TEST_F(Registries, EmptyEntriesAreReported) {
    AssertionCatcher caught;
    DAW_CommandOptionRegistry::RegisterCommandOption(nullptr);
    DAW_CommandOptionRegistry::GetCommandOptionMap()[{3, "gone"}] = nullptr;
    DAW_CommandOptionRegistry::RegisterCommandOption(Option({}, false, {}, 3, "kept"));
    std::vector<Cmn_RefCountPtr<DAW_CommandOption>> found;
    DAW_CommandOptionRegistry::FindAllOptionsForCommand(3, found);
    EXPECT_EQ(found.size(), 1u);
    ASSERT_EQ(caught.GetFailures().size(), 2u);
    EXPECT_EQ(caught.GetFailures()[1].mText, "option");
    EXPECT_EQ(caught.GetFailures()[1].mSource, "newfilelibs/daw/daw_commandoptionregistry");
    EXPECT_EQ(caught.GetFailures()[1].mLine, 70);
}

// Commands

TEST_F(Registries, TheLowestIdentifierWinsAmongEqualNames) {
    DAW_Command high(9, "Play", "transport.play");
    DAW_Command low(-2, "Play", "transport.play");
    DAW_Command other(3, "play", "transport.Play");
    for (DAW_Command* command : {&high, &low, &other})
        DAW_CommandRegistry::RegisterCommand(command);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByName("Play"), &low);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByUniquePersistedName("transport.play"), &low);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByUniquePersistedName("transport.Play"), &other);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByUniquePersistedName("transport.pla"), nullptr);
    DAW_CommandRegistry::RemoveRegisteredCommand(-2);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByName("Play"), &high);
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByID(-2), nullptr);
}

TEST_F(Registries, RegisteringAgainReplacesAndNotifies) {
    static std::vector<DAW_Command*> sTold;
    sTold.clear();
    DAW_CommandRegistry::SetRegistrationNotificationCallback([](DAW_Command* command) {
        EXPECT_EQ(DAW_CommandRegistry::FindCommandByID(command->GetCommandID()), command);
        sTold.push_back(command);
    });
    DAW_Command first(4, "One", "one");
    {
        DAW_Command second(4, "Two", "two");
        DAW_CommandRegistry::RegisterCommand(&first);
        DAW_CommandRegistry::RegisterCommand(&second);
        DAW_CommandRegistry::RemoveRegisteredCommand(&first); // no longer the one that is there
        EXPECT_EQ(DAW_CommandRegistry::FindCommandByID(4), &second);
        EXPECT_EQ(sTold, (std::vector<DAW_Command*>{&first, &second}));
    } // a command that ends is found no more
    EXPECT_EQ(DAW_CommandRegistry::FindCommandByID(4), nullptr);
    AssertionCatcher caught;
    DAW_CommandRegistry::RegisterCommand(nullptr);
    DAW_CommandRegistry::RemoveRegisteredCommand(nullptr);
    EXPECT_EQ(caught.TakeTexts(), std::vector<std::string>{"command"});
}

TEST_F(Registries, ACommandKnowsItsOptionsWhileItRuns) {
    class Bounce : public DAW_Command {
      public:
        Bounce() : DAW_Command(12, "Bounce", "mix.bounce") {}
        void DoCommandX() override {
            mStates.push_back(GetOptionState("offline"));
            if (mInner) {
                mInner->DoCommand(nullptr, nullptr);
                mStates.push_back(GetOptionState("offline"));
            }
            if (mThrow)
                throw 1;
        }
        DAW_Command* mInner = nullptr;
        bool mThrow = false;
        std::vector<bool> mStates;
    };
    DAW_CommandOptionRegistry::RegisterCommandOption(
        Option({Kind(2)}, /*defaultState*/ true, {}, 12, "offline"));
    Bounce bounce;
    EXPECT_TRUE(bounce.GetOptionState("offline"));
    EXPECT_FALSE(bounce.GetOptionState("no such option"));
    DAW_Command inner(13, "Inner", "inner");
    bounce.mInner = &inner;
    const auto held = Modifiers(0, 1, 0, 0);
    bounce.DoCommand(held, nullptr);
    bounce.mInner = nullptr;
    bounce.DoCommand(Modifiers(0, 0, 0, 0), nullptr);
    bounce.mThrow = true;
    EXPECT_THROW(bounce.DoCommand(held, nullptr), int);
    EXPECT_EQ(bounce.mStates, (std::vector<bool>{false, false, true, false}));
    EXPECT_TRUE(bounce.GetOptionState("offline")); // the invocation is over
    EXPECT_EQ(held->GetReferenceCount(), 1);
}

TEST(Command, TagsHaveTextsOfTheirOwn) {
    std::set<std::string> texts;
    for (int tag = 1; tag <= 29; ++tag)
        texts.insert(DAW_Command::TagToString(static_cast<EDAW_CommandTag>(tag)));
    EXPECT_EQ(texts.size(), 29u);
    EXPECT_EQ(texts.count(""), 0u);
    AssertionCatcher caught;
    for (const int tag : {0, 30, -1})
        EXPECT_EQ(DAW_Command::TagToString(static_cast<EDAW_CommandTag>(tag)), "");
    ASSERT_EQ(caught.GetFailures().size(), 3u);
    EXPECT_EQ(caught.GetFailures()[0].mSource, "newfilelibs/daw/daw_command");
}

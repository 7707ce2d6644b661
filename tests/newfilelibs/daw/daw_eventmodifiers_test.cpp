#include "newfilelibs/daw/daw_eventmodifiers.h"

#include <gtest/gtest.h>

namespace {

/// Menu-command, alternate, meta, shift, focus.
Cmn_AliasedRefCountPtr<DAW_EventModifiers> Make(int menu, int alternate, int meta, int shift,
                                                int focus) {
    return DAW_EventModifiers::New(
        DAW_EMenuCommandKeyState(menu), DAW_EAlternateKeyState(alternate), DAW_EMetaKeyState(meta),
        DAW_EShiftKeyState(shift), kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed,
        kDAW_RightButton_NotPressed, false, DAW_EKeyboardFocusState(focus));
}

} // namespace

TEST(EventModifiers, TextForms) {
    const struct {
        const char* why;
        int states[5];
        const char *shortWindows, *shortMac, *longWindows, *longMac, *descriptiveWindows,
            *descriptiveMac, *saveFile;
    } rows[] = {
        {"nothing held, outside of commands focus", {0, 0, 0, 0, 1}, "", "", "", "", "", "", ""},
        {"the focus part stands for state 0",
         {1, 0, 0, 1, 0},
         "Ctrl+Shift+Focus",
         "Cmd+Shift+Focus",
         "Control+Shift+Commands Focus",
         "Command+Shift+Commands Focus",
         "<Ctrl>+<Shift>+<Focus>",
         "<Cmd>+<Shift>+<Focus>",
         "<Cmd>+<Shift>+<Focus>"},
        {"all four in their order",
         {1, 1, 1, 1, 2},
         "Ctrl+Alt+Start+Shift",
         "Cmd+Opt+Cntrl+Shift",
         "Control+Alt+Winkey+Shift",
         "Command+Option+Control+Shift",
         "<Ctrl>+<Alt>+<Winkey>+<Shift>",
         "<Cmd>+<Opt>+<Ctrl>+<Shift>",
         "<Cmd>+<Opt>+<Ctrl>+<Shift>"},
        {"either keys come behind the pressed ones and before the focus",
         {2, 1, 2, 2, 0},
         "Alt+Focus",
         "Opt+Focus",
         "Alt+Commands Focus",
         "Option+Commands Focus",
         "<Alt>+[Ctrl]+[Winkey]+[Shift]+<Focus>",
         "<Opt>+[Cmd]+[Ctrl]+[Shift]+<Focus>",
         "<Opt>+<Focus>"},
    };
    for (const auto& row : rows) {
        const auto& s = row.states;
        const auto modifiers = Make(s[0], s[1], s[2], s[3], s[4]);
        EXPECT_EQ(modifiers->GetKeyModifiersShortNameString(false, true, "+"), row.shortWindows)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersShortNameString(true, true, "+"), row.shortMac)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersLongNameString(false, true, "+"), row.longWindows)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersLongNameString(true, true, "+"), row.longMac)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersDescriptiveString(false, true, true, "+"),
                  row.descriptiveWindows)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersDescriptiveString(true, true, true, "+"),
                  row.descriptiveMac)
            << row.why;
        EXPECT_EQ(modifiers->GetKeyModifiersSaveFileString(), row.saveFile) << row.why;
    }
}

TEST(EventModifiers, FocusAndEitherKeysCanBeLeftOut) {
    const auto modifiers = Make(1, 2, 0, 0, 0);
    EXPECT_EQ(modifiers->GetKeyModifiersShortNameString(false, false, ", "), "Ctrl");
    EXPECT_EQ(modifiers->GetKeyModifiersLongNameString(false, false, ", "), "Control");
    EXPECT_EQ(modifiers->GetKeyModifiersDescriptiveString(false, false, true, ", "),
              "<Ctrl>, <Focus>");
    EXPECT_EQ(modifiers->GetMouseModifiersDescriptiveString(), "");
}

TEST(EventModifiers, BitsCountPressedKeysAndTheFocusTheOtherWayRound) {
    const struct {
        int states[5];
        bool excludeFocus;
        int bits;
    } rows[] = {
        {{1, 0, 0, 1, 0}, false, 9},   {{1, 1, 1, 1, 0}, false, 15}, {{0, 0, 0, 0, 1}, false, 128},
        {{2, 2, 2, 2, 2}, false, 128}, {{0, 1, 1, 0, 1}, true, 6},
    };
    for (const auto& row : rows) {
        const auto& s = row.states;
        EXPECT_EQ(Make(s[0], s[1], s[2], s[3], s[4])->AsDAW_EModifier(row.excludeFocus), row.bits);
    }
}

TEST(EventModifiers, ACopyIsIndependent) {
    const auto original = Make(1, 0, 0, 0, 2);
    const auto copy = DAW_EventModifiers::New(*original);
    copy->SetMenuCommandKeyState(kDAW_MenuCommandKey_Either);
    EXPECT_TRUE(original->MenuCommandKeyIsDown());
    EXPECT_FALSE(copy->MenuCommandKeyIsDown());
    EXPECT_EQ(copy->GetReferenceCount(), 1);
}

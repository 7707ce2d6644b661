#include "newfilelibs/daw/daw_keynames.h"

#include <gtest/gtest.h>

#include <set>

#include "newfilelibs/daw/daw_keyboardstate.h"

TEST(KeyNames, EveryCodeHasANameOfItsOwn) {
    std::set<std::string> names;
    const auto check = [&](std::uint32_t code) {
        const std::string name = DAW_KeyCodeToName(DAW_EKeyCode(code));
        ASSERT_TRUE(names.insert(name).second) << name;
        DAW_EKeyCode back = kDAW_Key_None;
        ASSERT_TRUE(DAW_KeyCodeFromName(name, back)) << name;
        ASSERT_EQ(back, code) << name;
    };
    for (std::uint32_t code = 0; code < 0x3100; ++code) // Latin to the first wide characters
        check(code);
    for (std::uint32_t code = 0xD7F0; code < 0xE010; ++code) // around the surrogates
        check(code);
    for (std::uint32_t code = 0xFFF0; code < 0x10010;
         ++code) // the replacement character among them
        check(code);
    for (std::uint32_t code = 0x10FFF0; code < 0x110200; ++code) // into the named keys
        check(code);
    check(0xFFFFFFFF);
}

TEST(KeyNames, NamesAreTakenInAnyCase) {
    const struct {
        const char* name;
        std::uint32_t code; // 0: no key's name
    } rows[] = {
        {"s", 'S'},
        {"RETURN", kDAW_Key_Return},
        {"f12", kDAW_Key_F12},
        {"F13", kDAW_Key_F13},
        {"f", 'F'},
        {"\xC3\x89", 0xC9},
        {"-", '-'},
        {"0X0000000a", 10},
        {"", 0},
        {"F0", 0},
        {"F01", 0},
        {"F25", 0},
        {"F+1", 0},
        {"ab", 0},
        {"\xC3", 0},
        {"\xC0\x80", 0},
        {" ", 0},
        {"0x123", 0},
        {"0x0000000g", 0},
    };
    for (const auto& row : rows) {
        DAW_EKeyCode code = kDAW_Key_None;
        EXPECT_EQ(DAW_KeyCodeFromName(row.name, code), row.code != 0) << row.name;
        EXPECT_EQ(code, row.code) << row.name;
    }
}

TEST(KeyboardState, HoldsASetOfKeys) {
    const auto state = DAW_KeyboardState::New();
    state->SetKeyDown(kDAW_Key_F1, true);
    state->SetKeyDown(DAW_EKeyCode('A'), true);
    state->SetKeyDown(kDAW_Key_F1, true); // repeated
    const auto copy = DAW_KeyboardState::New(*state);
    state->SetKeyDown(kDAW_Key_F1, false);
    state->SetKeyDown(DAW_EKeyCode('B'), false); // was not down
    EXPECT_EQ(state->GetKeysDown(), std::vector<DAW_EKeyCode>{DAW_EKeyCode('A')});
    EXPECT_TRUE(copy->KeyIsDown(kDAW_Key_F1));
    copy->ReleaseAllKeys();
    EXPECT_FALSE(copy->KeyIsDown(DAW_EKeyCode('A')));
}

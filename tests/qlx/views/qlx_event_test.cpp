#include "qlx/views/qlx_event.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <vector>

#include "newfilelibs/cmn/cmn_rect.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uevent.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/assertion_catcher.h"

namespace {

const QLX_EventID kKeyDown{kQLX_EventClass_Keyboard, kQLX_EventKind_KeyDown};

TEST(QLX_Event, StandardPropertiesNeedNoAllocationOfTheirOwn) {
    if (!AllocationCounter::CountsTheLibrary())
        GTEST_SKIP();
    const unsigned char bytes[48] = {};
    const AllocationCounter counter;
    const QLX_EventRef event = QLX_EventRef::New(kKeyDown);
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_Modifiers, bytes, 4));
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_Where, bytes, 8));
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_KeyCode, bytes, 4));
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_Character, bytes, 12));
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_NativeMessage, bytes, 48));
    EXPECT_TRUE(event.SetProperty(kQLX_EventProperty_Modifiers, bytes, 4));
    EXPECT_EQ(counter.GetCount(), 1u) << "the event itself";
}

// The property map against a plain map: any keys, sizes and orders, also beyond what fits inside.
TEST(QLX_Event, PropertiesBehaveAsAMapOfBlocks) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const QLX_EventRef event = QLX_EventRef::New(kKeyDown);
        std::map<std::uint32_t, std::vector<unsigned char>> expected;
        for (int step = 0; step < 40; ++step) {
            const std::uint32_t key = random() % 12;
            std::vector<unsigned char> value(random() % 60);
            for (unsigned char& byte : value)
                byte = static_cast<unsigned char>(random());
            ASSERT_TRUE(event.SetProperty(key, value.data(), value.size()));
            expected[key] = value;
        }
        const QLX_EventRef copy = event.NewCopy();
        event.SetProperty(0, "changed", 7); // the copy does not hear of it
        for (const auto& [key, value] : expected) {
            std::vector<unsigned char> read(value.size(), 0xEE);
            EXPECT_TRUE(copy.GetProperty(key, read.data(), read.size()));
            EXPECT_EQ(read, value);
            std::vector<unsigned char> tooMany(value.size() + 1, 0xEE);
            EXPECT_FALSE(copy.GetProperty(key, tooMany.data(), tooMany.size()));
            EXPECT_EQ(tooMany, std::vector<unsigned char>(value.size() + 1, 0xEE));
        }
    }
}

TEST(QLX_Event, AbsentAndImpossibleProperties) {
    const QLX_EventRef event = QLX_EventRef::New(kKeyDown);
    std::uint32_t value = 7;
    EXPECT_FALSE(event.GetProperty(0x6E6F6E65, &value, 4));
    EXPECT_FALSE(event.SetProperty(0x6E6F6E65, nullptr, 4));
    EXPECT_EQ(value, 7u);
    const std::uint32_t stored[3] = {1, 2, 3};
    event.SetProperty(kQLX_EventProperty_Character, stored, 12);
    EXPECT_TRUE(event.GetProperty(kQLX_EventProperty_Character, &value, 4)) << "the first part";
    EXPECT_EQ(value, 1u);
}

TEST(QLX_Event, ReleasedEventReadsAsEmpty) {
    QLX_EventRef ref = QLX_EventRef::New(kKeyDown, 2.5);
    ref.SetPriority(3);
    std::uint32_t value = 1;
    ref.SetProperty(0x61626364, &value, 4);
    const QLX_EventRef second = ref;
    ref.Get()->Release();
    EXPECT_TRUE(second.IsEmpty());
    EXPECT_TRUE(second.NewCopy().IsEmpty());
    EXPECT_EQ(second.GetID(), QLX_EventID());
    EXPECT_EQ(second.GetTimestamp(), 0.0);
    EXPECT_EQ(second.GetPriority(), 0);
    EXPECT_FALSE(second.GetProperty(0x61626364, &value, 4));
    EXPECT_FALSE(second.SetProperty(0x61626364, &value, 4));
    ref = QLX_EventRef();
    EXPECT_TRUE(second.IsEmpty()) << "still held by one reference";
}

TEST(QLX_Event, LastReferenceEndsTheEvent) {
    auto* const event = new QLX_Event(kKeyDown);
    QLX_EventRef first(event);
    {
        const QLX_EventRef second = first;
        EXPECT_EQ(event->GetReferenceCount(), 2);
    }
    EXPECT_EQ(event->GetReferenceCount(), 1);
    QLX_EventRef moved = std::move(first);
    EXPECT_TRUE(first.IsEmpty()); // NOLINT: what is moved from is empty
    EXPECT_EQ(event->GetReferenceCount(), 1);
}

class ToolboxEvent : public testing::Test {
  protected:
    ~ToolboxEvent() override {
        QLX_Keyboard::sHWCModifierComposite = 0;
        QLX_Keyboard::SetSource(nullptr);
    }
    QLX_EventRef mRef = QLX_EventRef::New(kKeyDown, 1.25);
    TToolboxEvent mEvent;
};

TEST_F(ToolboxEvent, EachModifierQuestionTestsItsBit) {
    for (std::uint32_t bits = 0; bits < 16; ++bits) {
        SCOPED_TRACE(bits);
        mRef.SetProperty(kQLX_EventProperty_Modifiers, &bits, 4);
        mEvent.IToolboxEvent(nullptr, mRef);
        EXPECT_EQ(mEvent.IsShiftKeyPressed(), (bits & 1) != 0);
        EXPECT_EQ(mEvent.IsControlKeyPressed(), (bits & 2) != 0);
        EXPECT_EQ(mEvent.IsOptionKeyPressed(), (bits & 4) != 0);
        EXPECT_EQ(mEvent.IsCommandKeyPressed(), (bits & 8) != 0);
        EXPECT_EQ(mEvent.GetEventModifiers(), bits);
        const auto modifiers = mEvent.GetDAWEventModifiers();
        EXPECT_EQ(modifiers->ShiftKeyIsDown(), (bits & 1) != 0);
        EXPECT_EQ(modifiers->MetaKeyIsDown(), (bits & 2) != 0);
        EXPECT_EQ(modifiers->AlternateKeyIsDown(), (bits & 4) != 0);
        EXPECT_EQ(modifiers->MenuCommandKeyIsDown(), (bits & 8) != 0);
    }
}

TEST_F(ToolboxEvent, EmptyReferenceAnswersNothing) {
    EXPECT_FALSE(mEvent.IsCommandKeyPressed());
    EXPECT_FALSE(mEvent.IsAutoKeyEvent());
    EXPECT_EQ(mEvent.GetEventModifiers(), 0);
    EXPECT_EQ(mEvent.GetEventWhat(), QLX_EventID());
    EXPECT_EQ(mEvent.GetEventWhere(), Cmn_Point<int>());
    mEvent.IToolboxEvent(nullptr, QLX_EventRef());
    EXPECT_EQ(mEvent.mEventKind, 0u);
}

TEST_F(ToolboxEvent, InitialisingTakesInTheHardwareControllersModifiers) {
    const std::uint32_t shift = kQLX_Modifier_Shift;
    mRef.SetProperty(kQLX_EventProperty_Modifiers, &shift, 4);
    QLX_Keyboard::sHWCModifierComposite = kQLX_Modifier_Option;
    mEvent.mCharacterCode = mEvent.mKeyCode = mEvent.mKeyState = 9;
    mEvent.IToolboxEvent(nullptr, mRef);
    std::uint32_t written = 0;
    EXPECT_TRUE(mRef.GetProperty(kQLX_EventProperty_Modifiers, &written, 4));
    EXPECT_EQ(written, 5u) << "written back into the event";
    EXPECT_EQ(mEvent.mEventKind, std::uint32_t{kQLX_EventKind_KeyDown});
    EXPECT_EQ(mEvent.mCharacterCode + mEvent.mKeyCode + mEvent.mKeyState, 0u);
    EXPECT_EQ(mEvent.GetEventWhen(), 1.25);
}

TEST_F(ToolboxEvent, InitialisingWithoutModifiersStoresThem) {
    mEvent.IToolboxEvent(nullptr, mRef);
    std::uint32_t written = 77;
    EXPECT_TRUE(mRef.GetProperty(kQLX_EventProperty_Modifiers, &written, 4));
    EXPECT_EQ(written, 0u);
}

TEST_F(ToolboxEvent, CloneIsAnAssertion) {
    AssertionCatcher catcher;
    EXPECT_EQ(mEvent.Clone(), nullptr);
    ASSERT_EQ(catcher.GetFailures().size(), 1u);
    EXPECT_EQ(catcher.GetFailures()[0].mSource, "qlx/views/uevent");
}

class HeldKeyboard : public QLX_KeyboardSource {
  public:
    std::uint32_t GetModifierBits() const override { return kQLX_Modifier_Command; }
    bool IsKeyDown(DAW_EKeyCode key) const override { return key == kDAW_Key_Space; }
    std::uint32_t GetMouseButtons() const override { return kQLX_MouseButton_Right; }
    bool IsInCommandsFocusMode() const override { return true; }
};

TEST_F(ToolboxEvent, WhatTheBitsDoNotSayIsAskedOfTheSource) {
    HeldKeyboard held;
    EXPECT_EQ(QLX_Keyboard::SetSource(&held), nullptr);
    const auto modifiers = QLX_Keyboard::GetDAWModifiers(kQLX_Modifier_Shift);
    EXPECT_FALSE(modifiers->MenuCommandKeyIsDown()) << "of the event, not of now";
    EXPECT_TRUE(modifiers->ShiftKeyIsDown());
    EXPECT_TRUE(modifiers->RightButtonIsDown());
    EXPECT_FALSE(modifiers->LeftButtonIsDown());
    EXPECT_EQ(modifiers->UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode(),
              kDAW_KeyboardFocus_Commands);
    QLX_Keyboard::sHWCModifierComposite = kQLX_Modifier_Option;
    const auto now = QLX_Keyboard::GetDAWModifiers();
    EXPECT_TRUE(now->MenuCommandKeyIsDown());
    EXPECT_TRUE(now->AlternateKeyIsDown());
    const auto keyboard = QLX_Keyboard::GetDAWKeyboardState();
    EXPECT_TRUE(keyboard->KeyIsDown(kDAW_Key_Space));
    EXPECT_EQ(QLX_Keyboard::SetSource(nullptr), &held);
    EXPECT_FALSE(keyboard->KeyIsDown(kDAW_Key_Space)) << "the source of the moment";
}

} // namespace

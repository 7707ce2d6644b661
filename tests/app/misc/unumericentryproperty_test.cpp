// Whatever is typed, clicked, pasted or changed under a field: its text keeps the shape of its
// format and its selection lies on a block or on the whole.
#include <random>

#include <gtest/gtest.h>

#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uwindow.h"
#include "tests/support/entry_monkey.h"
#include "tests/support/seeds.h"

namespace {

class OtherView : public TView {
  public:
    bool WantsToBeTarget() override { return true; }
};

class AnyKeys : public testing::TestWithParam<EntryShape> {};

std::string NameOf(const testing::TestParamInfo<EntryShape>& info) {
    return "Format" + std::to_string(info.param.format) +
           (info.param.subframes ? "Subframes" : "") + (info.param.optional ? "Optional" : "");
}

} // namespace

TEST_P(AnyKeys, KeepShapeAndSelection) {
    for (unsigned seed = 1; seed <= SeedsToTry(20); ++seed) {
        std::mt19937 random(seed);
        EntryMonkey monkey(GetParam());
        for (int step = 0; step < 1000; ++step) {
            const auto what = static_cast<std::uint8_t>(random());
            const auto how = static_cast<std::uint8_t>(random());
            monkey.Do(what, how);
            const std::string complaint = monkey.Complaint();
            ASSERT_EQ(complaint, "") << "seed " << seed << " step " << step << " deed " << what % 32
                                     << " by " << static_cast<int>(how);
        }
        // Escape twice: out of arithmetic and back to a value, which Return accepts.
        TNumericEntryText* const field = monkey.GetField();
        field->BecomeTarget();
        field->AbortEdit();
        EXPECT_EQ(field->GetText(), field->GetBackup());
        EXPECT_EQ(field->GetArithmeticMode(), kArithmetic_None);
        monkey.Do(0, 17);
        EXPECT_EQ(monkey.Complaint(), "");
    }
    Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
    Time_Session::SetFrameOffset(0);
    Time_Session::SetSampleRate(48000);
}

TEST_P(AnyKeys, EveryByteAsAKey) {
    for (int byte = 0; byte < 256; ++byte) {
        EntryMonkey monkey(GetParam());
        monkey.Do(20, static_cast<std::uint8_t>(byte));
        EXPECT_EQ(monkey.Complaint(), "") << byte;
        monkey.Do(0, 5);
        EXPECT_EQ(monkey.Complaint(), "") << byte << " then a digit";
    }
}

// A user in a window: keys, clicks, drags, the wheel, another view that takes the keyboard. Through
// the native events, with the client hearing of everything.
TEST_P(AnyKeys, AUserInAWindowKeepsThemToo) {
    constexpr std::uint32_t cField = Cmn_FourChar("fld1");
    QLX_TestDriver driver;
    auto* window = new TWindow;
    window->IWindow("field", VPoint(300, 120));
    auto* other = new OtherView;
    other->IView(window, VRect(0, 90, 300, 120));
    auto* field = new TNumericEntryText;
    field->IView(window, VRect(10, 10, 200, 34));
    field->SetIdentifier(cField);
    field->SetLocalFormat(GetParam().format, GetParam().subframes, GetParam().optional);
    field->SetUpdateClientWhenKeyPressed(true);
    field->SetUpdateClientAfterArrow(true);
    field->SetMinMaxIntegerValues(-5000, 5000);
    std::string wrong;
    struct Context {
        const EntryShape* shape;
        std::string* wrong;
    } context{&GetParam(), &wrong};
    field->SetCallback(
        [](void* pointer, CNumericEntryCallbackInfo& info, int key) {
            const auto* told = static_cast<Context*>(pointer);
            if (!HasEntryShape(*told->shape, info.GetField()->GetText()))
                *told->wrong =
                    "told of \"" + info.GetField()->GetText() + "\" by key " + std::to_string(key);
        },
        &context);
    driver.OpenWindow(*window);
    field->BecomeTarget();
    std::mt19937 random(11);
    bool pressed = false;
    Cmn_Point<int> pointer(20, 20);
    const char keys[] = "0123456789.,+-*/=\r\x03\x08\x7F\x1C\x1D\x1E\x1Fqt";
    const unsigned steps = SeedsToTry(1000);
    for (unsigned step = 0; step < steps; ++step) {
        const unsigned what = random() % 16;
        if (what < 9) {
            driver.KeyDown(static_cast<unsigned char>(keys[random() % (sizeof keys - 1)]));
        } else if (what < 13) {
            pointer = {static_cast<int>(random() % 300), static_cast<int>(random() % 120)};
            driver.MoveTo(pointer);
        } else if (what == 13) {
            pressed ? driver.Release() : driver.Press(pointer);
            pressed = !pressed;
        } else if (what == 14) {
            driver.Wheel(cField, static_cast<int>(random() % 5) - 2);
        } else {
            field->SetNormalArrowMode(random() % 2 != 0);
            random() % 3 == 0 ? (void)other->BecomeTarget() : (void)field->BecomeTarget();
        }
        short start = 0;
        short end = 0;
        field->GetSelection(start, end);
        const bool collapsed = start == 0 && end == 0;
        ASSERT_EQ(wrong, "") << "step " << step;
        ASSERT_TRUE(HasEntryShape(GetParam(), field->GetText()))
            << field->GetText() << " step " << step;
        ASSERT_TRUE(collapsed || field->GetHelper()->IsSelection(field, start, end))
            << start << ".." << end << " of " << field->GetText() << " step " << step;
        if (!field->IsTarget()) {
            ASSERT_TRUE(collapsed && !field->IsBeingEdited()) << "step " << step;
            ASSERT_EQ(field->GetText(), field->GetBackup()) << "step " << step;
        }
    }
    window->Free();
}

INSTANTIATE_TEST_SUITE_P(Formats, AnyKeys, testing::ValuesIn(cEntryShapes), NameOf);

#include "qlx/views/ukeybindings.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <random>

#include "basekit/sys/sys_file.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "newfilelibs/daw/daw_keyevent.h"
#include "qlx/views/ueventhandler.h"
#include "tests/support/key_binding_laws.h"
#include "tests/support/seeds.h"

namespace {

using Pattern = Cmn_AliasedRefCountPtr<DAW_EventModifiers>;

/// Menu-command, alternate, meta, shift, focus.
Pattern Make(int menu, int alternate, int meta, int shift, int focus = 2) {
    return DAW_EventModifiers::New(
        DAW_EMenuCommandKeyState(menu), DAW_EAlternateKeyState(alternate), DAW_EMetaKeyState(meta),
        DAW_EShiftKeyState(shift), kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed,
        kDAW_RightButton_NotPressed, false, DAW_EKeyboardFocusState(focus));
}

CKeyBinding Binding(char key, const Pattern& pattern, const std::string& command,
                    std::uint32_t context = CKeyBinding::kEverywhere) {
    return {DAW_EKeyCode(key), pattern, context, command};
}

std::vector<CKeyBinding> AllOf(const CKeyBindings& bindings) {
    std::vector<CKeyBinding> all;
    for (std::size_t i = 0; i < bindings.GetBindingCount(); ++i)
        all.push_back(bindings.GetBinding(i));
    return all;
}

std::vector<std::string> Problems(const CKeyBindings& bindings) {
    std::vector<std::string> texts;
    for (const CKeyBindingProblem& problem : bindings.FindProblems())
        texts.push_back(problem.AsText());
    return texts;
}

constexpr std::uint32_t kEdit = Cmn_FourChar("edit");
constexpr std::uint32_t kMixer = Cmn_FourChar("mixr");

} // namespace

// The table

TEST(KeyBindings, RefusesWhatAFileCannotHold) {
    const CKeyBinding good = Binding('S', Make(1, 0, 0, 0), "save");
    EXPECT_EQ(CKeyBindings::GetRefusal(good), "");
    const auto refuses = [&](auto change) {
        CKeyBinding bad = good;
        bad.mPattern = DAW_EventModifiers::New(*good.mPattern);
        change(bad);
        CKeyBindings bindings;
        std::string reason;
        EXPECT_FALSE(bindings.AddBinding(bad, &reason));
        EXPECT_FALSE(reason.empty());
        EXPECT_EQ(bindings.WriteText(), "");
        EXPECT_TRUE(bindings.AddBinding(good, &reason));
        EXPECT_FALSE(bindings.ReplaceBinding(0, bad));
        EXPECT_TRUE(bindings.GetBinding(0) == good);
    };
    refuses([](CKeyBinding& b) { b.mKeyCode = kDAW_Key_None; });
    refuses([](CKeyBinding& b) { b.mCommandName.clear(); });
    refuses([](CKeyBinding& b) { b.mPattern = nullptr; });
    refuses([](CKeyBinding& b) { b.mPattern->SetShiftKeyState(DAW_EShiftKeyState(3)); });
    refuses([](CKeyBinding& b) { b.mPattern->SetScrollDirectionInverted(true); });
    refuses([](CKeyBinding& b) { b.mPattern->SetLeftMouseButtonState(kDAW_LeftButton_Either); });
    refuses([](CKeyBinding& b) {
        b.mPattern->SetUsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode(
            kDAW_KeyboardFocus_Normal);
    });
}

TEST(KeyBindings, KeepsACopyOfThePattern) {
    CKeyBindings bindings;
    const Pattern pattern = Make(1, 0, 0, 0);
    bindings.AddBinding(Binding('S', pattern, "save"));
    pattern->SetMenuCommandKeyState(kDAW_MenuCommandKey_NotPressed);
    EXPECT_TRUE(bindings.GetBinding(0).mPattern->MenuCommandKeyIsDown());
}

// Text

TEST(KeyBindingText, WritingAndReadingIsTheIdentityForEveryPattern) {
    const std::string names[] = {"File.Save", "with blanks",   "",         "-",        "#sharp",
                                 "a\"b\\c",   "tab\tline\n\r", "\x01\x7F", "\xC3\xA9", "x#y"};
    const std::uint32_t contexts[] = {CKeyBinding::kEverywhere,
                                      kEdit,
                                      Cmn_FourChar("# - "),
                                      Cmn_FourChar("    "),
                                      Cmn_FourChar("a\"\\b"),
                                      1,
                                      0xFFFFFFFF};
    const std::uint32_t keys[] = {
        'S',           '-',       '#', '"', '\\', '+', 'a', 0xC9, kDAW_Key_F1 + 4, kDAW_Key_Space,
        kDAW_Key_Left, 0xFFFFFFFF};
    CKeyBindings bindings;
    std::vector<CKeyBinding> accepted;
    unsigned n = 0;
    for (int states = 0; states < 3 * 3 * 3 * 3 * 3; ++states) {
        CKeyBinding binding;
        binding.mPattern =
            Make(states % 3, states / 3 % 3, states / 9 % 3, states / 27 % 3, states / 81 % 3);
        for (int i = 0; i < 5; ++i, ++n) {
            binding.mKeyCode = DAW_EKeyCode(keys[n % std::size(keys)]);
            binding.mContext = contexts[n % std::size(contexts)];
            binding.mCommandName = names[n % std::size(names)];
            const bool isHeld = states / 81 % 3 != 1 && !binding.mCommandName.empty();
            ASSERT_EQ(bindings.AddBinding(binding), isHeld);
            if (isHeld)
                accepted.push_back(binding);
        }
    }
    const std::string text = bindings.WriteText();
    CKeyBindings again;
    EXPECT_TRUE(again.ReadText(text, "keys.txt"));
    EXPECT_TRUE(AllOf(again) == accepted);
    EXPECT_EQ(again.WriteText(), text);
}

TEST(KeyBindingText, ReadsWhatPeopleWrite) {
    CKeyBindings bindings;
    EXPECT_TRUE(bindings.ReadText("# my keys\n"
                                  "\n"
                                  "<Shift>+<Cmd> [Opt] s File.SaveAs # with a comment\n"
                                  "   <Focus>\t-  space \"Play or stop\"  edit\n"
                                  "- [Shift]+[Ctrl] - zoom.out -",
                                  "keys.txt"));
    const std::vector<CKeyBinding> expected = {
        Binding('S', Make(1, 2, 0, 1), "File.SaveAs"),
        Binding(' ', Make(0, 0, 0, 0, 0), "Play or stop", kEdit),
        Binding('-', Make(0, 0, 2, 2), "zoom.out"),
    };
    EXPECT_TRUE(AllOf(bindings) == expected);
    EXPECT_EQ(bindings.GetLine(1), 4);
}

TEST(KeyBindingText, SaysWhatIsWrongAndWhere) {
    const struct {
        const char* line;
        int column;
        const char* reason;
    } rows[] = {
        {"<Cmd> - S", 10, "a binding needs modifiers, either, a key and a command"},
        {"<Cmd>", 6, "a binding needs modifiers, either, a key and a command"},
        {"<Cmd>+<Foo> - S save", 7, "unknown modifier <Foo>"},
        {"<cmd> - S save", 1, "unknown modifier <cmd>"},
        {"<Cmd>+ - S save", 7, "a modifier is missing"},
        {"<Cmd>+<Cmd> - S save", 7, "the modifier <Cmd> stands here twice"},
        {"- [Cmd]+[Cmd] S save", 9, "the modifier [Cmd] stands here twice"},
        {"<Opt> [Opt] S save", 7, "the key of [Opt] is listed as pressed already"},
        {"- [Focus] S save", 3, "unknown modifier [Focus]"},
        {"[Cmd] - S save", 1, "unknown modifier [Cmd]"},
        {"- - Hyper save", 5, "unknown key Hyper"},
        {"- - \"\" save", 5, "unknown key "},
        {"- - 0x00000000 save", 5, "there is no key with the code 0"},
        {"- - S -", 7, "the command has no name"},
        {"- - S \"\"", 7, "the command has no name"},
        {"- - S \"save", 7, "the quote is not closed"},
        {"- - S \"save\"as", 13, "a blank is missing after the quote"},
        {"- - S \"sa\\ve\"", 10, "unknown escape: use \\\" \\\\ \\t \\n \\r or \\x"},
        {"- - S \"sa\\x4\"", 10, "\\x needs two hexadecimal digits"},
        {"- - S save edi", 12, "the context is not a four-character code"},
        {"- - S save 0x00000000", 12, "0 is no view's identifier"},
        {"- - S save edit more", 17, "there is something behind the context"},
    };
    for (const auto& row : rows) {
        CKeyBindings bindings;
        const std::string text = std::string("# first\r\n") + row.line + "\r\n- - T File.Test\r\n";
        EXPECT_FALSE(bindings.ReadText(text, "my keys.txt")) << row.line;
        const std::vector<std::string> expected = {"my keys.txt:2:" + std::to_string(row.column) +
                                                       ": " + row.reason,
                                                   "my keys.txt:3:7: unknown command File.Test"};
        EXPECT_EQ(Problems(bindings), expected) << row.line;
        EXPECT_EQ(bindings.GetBindingCount(), 1u) << row.line;
        EXPECT_EQ(bindings.WriteText(), text) << row.line;
    }
}

TEST(KeyBindingText, RewritingKeepsEveryByteOfOtherLines) {
    const std::string text = "\xEF\xBB\xBF# keys\r\n"
                             "bad line\r\n"
                             "<Cmd>   -   S   save   # mine\r\n"
                             "-  -  P  unknown.command\r\n"
                             "- - Q quit";
    CKeyBindings bindings;
    EXPECT_FALSE(bindings.ReadText(text, "keys.txt"));
    EXPECT_EQ(bindings.WriteText(), text);
    // A changed binding keeps its comment; an added one gets the line end of the others.
    EXPECT_TRUE(bindings.ReplaceBinding(0, Binding('S', Make(1, 0, 0, 2), "save", kEdit)));
    bindings.RemoveBinding(2);
    bindings.RemoveBinding(99);
    EXPECT_TRUE(bindings.AddBinding(Binding('W', Make(0, 0, 0, 0), "close window")));
    EXPECT_EQ(bindings.WriteText(), "\xEF\xBB\xBF# keys\r\n"
                                    "bad line\r\n"
                                    "<Cmd>\t[Shift]\tS\tsave\tedit\t# mine\r\n"
                                    "-  -  P  unknown.command\r\n"
                                    "-\t-\tW\t\"close window\"\r\n");
    CKeyBindings unended;
    unended.ReadText("- - Q quit", "keys.txt");
    unended.AddBinding(Binding('W', Make(0, 0, 0, 0), "close"));
    EXPECT_EQ(unended.WriteText(), "- - Q quit\n-\t-\tW\tclose\n");
}

TEST(KeyBindingText, AnyBytesComeBackAsTheyWere) {
    const std::string pieces[] = {
        "<Cmd>", "+",    "[Opt]", " - ", "S",  "\"",   "\\",
        "#",     "save", "\t",    "\n",  "\r", "\r\n", std::string(1, '\0'),
        "\xFF",  "\\x41"};
    for (unsigned seed = 0; seed < SeedsToTry(2000); ++seed) {
        std::mt19937 random(seed);
        std::string text;
        for (unsigned n = random() % 40; n > 0; --n)
            text += pieces[random() % std::size(pieces)];
        ASSERT_EQ(BrokenKeyBindingLaw(text), "") << "seed " << seed;
    }
}

TEST(KeyBindingText, FilesAreReplacedWholeOrNotAtAll) {
    const std::string path = QLX_TEST_OUTPUT "/keys.txt";
    CKeyBindings bindings;
    bindings.AddBinding(Binding('S', Make(1, 0, 0, 0), "save"));
    bindings.WriteFile(path);
    CKeyBindings again;
    EXPECT_TRUE(again.ReadFile(path));
    EXPECT_TRUE(AllOf(again) == AllOf(bindings));
    EXPECT_THROW(again.ReadFile(QLX_TEST_OUTPUT "/no such folder/keys.txt"), Sys_FileError);
    EXPECT_EQ(again.GetBindingCount(), 1u);
    EXPECT_THROW(again.WriteFile(QLX_TEST_OUTPUT "/no such folder/keys.txt"), Sys_FileError);
}

TEST(KeyBindingText, RepeatedBindingsAreReported) {
    CKeyBindings bindings;
    EXPECT_TRUE(bindings.ReadText("- - S save\n<Cmd> - S save\n - -\ts  save # again\n", "k"));
    const std::vector<std::string> expected = {
        "k:1:7: unknown command save", "k:2:11: unknown command save",
        "k:3:9: unknown command save", "k:3:1: the same as line 1"};
    EXPECT_EQ(Problems(bindings), expected);
}

// Conflicts

TEST(KeyBindingConflicts, OnlyWhatCanBeLiveTogether) {
    using EDecision = CKeyBindingConflict::EDecision;
    const std::uint32_t kInner = Cmn_FourChar("clip");
    const struct {
        const char* why;
        CKeyBinding first, second;
        bool conflict;
        int winner;
        EDecision decision;
    } rows[] = {
        {"the same stroke", Binding('S', Make(1, 0, 0, 0), "a"),
         Binding('S', Make(1, 0, 0, 0), "b"), true, 0, EDecision::EarlierPlace},
        {"another key",
         Binding('S', Make(1, 0, 0, 0), "a"),
         Binding('T', Make(1, 0, 0, 0), "b"),
         false,
         0,
         {}},
        {"one command twice",
         Binding('S', Make(1, 0, 0, 0), "a"),
         Binding('S', Make(1, 0, 0, 0), "a"),
         false,
         0,
         {}},
        {"either meets pressed", Binding('S', Make(2, 0, 0, 0), "a"),
         Binding('S', Make(1, 0, 0, 0), "b"), true, 1, EDecision::NarrowerPattern},
        {"either keys that cross", Binding('S', Make(2, 1, 0, 0), "a"),
         Binding('S', Make(1, 2, 0, 0), "b"), true, 0, EDecision::EarlierPlace},
        {"one key keeps them apart",
         Binding('S', Make(2, 1, 0, 0), "a"),
         Binding('S', Make(1, 0, 0, 2), "b"),
         false,
         0,
         {}},
        {"in commands focus and in both", Binding('S', Make(0, 0, 0, 0, 0), "a"),
         Binding('S', Make(0, 0, 0, 0, 2), "b"), true, 0, EDecision::NarrowerPattern},
        {"everywhere and in a view", Binding('S', Make(1, 0, 0, 0), "a"),
         Binding('S', Make(2, 2, 2, 2), "b", kEdit), true, 1, EDecision::InnerContext},
        {"in two views apart",
         Binding('S', Make(1, 0, 0, 0), "a", kMixer),
         Binding('S', Make(1, 0, 0, 0), "b", kEdit),
         false,
         0,
         {}},
        {"in a view and far inside it", Binding('S', Make(1, 0, 0, 0), "a", kInner),
         Binding('S', Make(1, 0, 0, 0), "b", kEdit), true, 0, EDecision::InnerContext},
    };
    for (const auto& row : rows) {
        CKeyBindings bindings;
        EXPECT_TRUE(bindings.DeclareNesting(kInner, Cmn_FourChar("list")));
        EXPECT_TRUE(bindings.DeclareNesting(Cmn_FourChar("list"), kEdit));
        EXPECT_FALSE(bindings.DeclareNesting(kEdit, kInner)) << "a view in itself";
        EXPECT_FALSE(bindings.DeclareNesting(kEdit, kEdit));
        bindings.AddBinding(row.first);
        bindings.AddBinding(row.second);
        const auto conflicts = bindings.FindConflicts();
        ASSERT_EQ(conflicts.size(), row.conflict ? 1u : 0u) << row.why;
        if (!row.conflict)
            continue;
        EXPECT_EQ(conflicts[0].mWinner, static_cast<std::size_t>(row.winner)) << row.why;
        EXPECT_EQ(conflicts[0].mLoser, static_cast<std::size_t>(1 - row.winner)) << row.why;
        EXPECT_TRUE(conflicts[0].mDecision == row.decision) << row.why;
    }
    CKeyBindings bindings;
    bindings.ReadText("# keys\n<Cmd> - S save\n- [Cmd]+[Shift] S solo\n", "keys.txt");
    ASSERT_EQ(bindings.FindConflicts().size(), 1u);
    EXPECT_EQ(bindings.ConflictAsText(bindings.FindConflicts()[0]),
              "keys.txt:2: <Cmd> S performs save, not solo of line 3 (narrower pattern)");
}

// Key strokes

namespace {

/// Every call of every handler and command, in order.
std::vector<std::string> sCalls;

class Command : public DAW_Command {
  public:
    Command(int id, const std::string& name) : DAW_Command(id, name, name) {
        DAW_CommandRegistry::RegisterCommand(this);
    }
    void DoCommandStart(Cmn_AliasedRefCountPtr<DAW_EventModifiers>,
                        Cmn_RefCountPtr<DAW_KeyboardState>) override {
        sCalls.push_back(GetName() + " start");
        if (mOnStart)
            mOnStart();
    }
    void DoCommandX() override {
        sCalls.push_back(GetName() + (GetOptionState("flipped") ? " flipped" : ""));
        if (mOnDo)
            mOnDo();
    }
    void DoCommandEnd(Cmn_AliasedRefCountPtr<DAW_EventModifiers>,
                      Cmn_RefCountPtr<DAW_KeyboardState>) override {
        sCalls.push_back(GetName() + " end");
    }
    std::function<void()> mOnStart, mOnDo;
};

} // namespace

/// A text field of the host's own, and a handler that is none.
class TestField : public TEventHandler {
  public:
    QLX_DECLARE_CLASS(TestField);
};
class TestDerivedField : public TestField {
  public:
    QLX_DECLARE_CLASS(TestDerivedField);
};
QLX_DEFINE_CLASS(TestField, TEventHandler)
QLX_DEFINE_CLASS(TestDerivedField, TestField)

namespace {

class Strokes : public ::testing::Test {
  protected:
    Strokes() { sCalls.clear(); }
    ~Strokes() override { DAW_CommandOptionRegistry::GetCommandOptionMap().clear(); }

    /// Sends a key down with modifiers (menu-command, alternate, meta, shift, focus).
    bool Press(char key, const Pattern& modifiers, TEventHandler* target = nullptr,
               bool targetHandles = true, bool repeated = false) {
        const auto event =
            DAW_KeyEvent::New(DAW_EKeyCode(key), DAW_EAutoKey(repeated), "", kDAW_Key_IsDown);
        return mBindings.DeliverKeyDown(*event, modifiers, DAW_KeyboardState::New(), target, [&] {
            sCalls.push_back("target");
            if (mOnTarget)
                mOnTarget();
            return targetHandles;
        });
    }
    bool Release(char key) {
        const auto event = DAW_KeyEvent::New(DAW_EKeyCode(key), kDAW_AutoKey_No, "", kDAW_Key_IsUp);
        return mBindings.DeliverKeyUp(*event, Make(0, 0, 0, 0, 1), DAW_KeyboardState::New());
    }
    std::vector<std::string> TakeCalls() { return std::exchange(sCalls, {}); }

    CKeyBindings mBindings;
    std::function<void()> mOnTarget;
};

using Calls = std::vector<std::string>;

} // namespace

TEST_F(Strokes, TheInnermostContextThenTheNarrowestPatternWins) {
    Command everywhere(1, "everywhere"), narrow(2, "narrow"), edit(3, "edit"), outer(4, "outer");
    ASSERT_TRUE(mBindings.ReadText("- [Cmd]+[Shift] S everywhere\n"
                                   "<Cmd> - S not.registered\n"
                                   "<Cmd> [Shift] S narrow\n"
                                   "<Cmd> [Opt] S outer wndw\n"
                                   "<Cmd> [Opt]+[Shift] S edit edit\n",
                                   "keys"));
    TEventHandler application, window, editor, other;
    window.IEventHandler(&application);
    editor.IEventHandler(&window);
    other.IEventHandler(&application);
    window.SetIdentifier(Cmn_FourChar("wndw"));
    editor.SetIdentifier(kEdit);
    const struct {
        const char* why;
        TEventHandler* target;
        Pattern modifiers;
        const char* command;
    } rows[] = {
        {"in the inner view", &editor, Make(1, 0, 0, 0, 1), "edit"},
        {"in the outer view only", &window, Make(1, 0, 0, 0, 1), "outer"},
        {"outside, the narrower one", &other, Make(1, 0, 0, 0, 1), "narrow"},
        {"outside, without the key that it wants", &other, Make(0, 0, 0, 1, 1), "everywhere"},
        {"inside, the context's pattern does not match", &editor, Make(0, 0, 0, 0, 1),
         "everywhere"},
        {"no target", nullptr, Make(1, 0, 0, 1, 1), "narrow"},
        {"a key that nothing lists", &editor, Make(1, 0, 1, 0, 1), ""},
    };
    for (const auto& row : rows) {
        const CKeyBinding* found = mBindings.Find(DAW_EKeyCode('S'), *row.modifiers, row.target);
        EXPECT_EQ(found ? found->mCommandName : "", row.command) << row.why;
    }
    const Pattern dragging = Make(1, 0, 0, 0, 1);
    dragging->SetLeftMouseButtonState(kDAW_LeftButton_Pressed);
    EXPECT_EQ(mBindings.Find(DAW_EKeyCode('S'), *dragging, &other), nullptr);
}

TEST_F(Strokes, FocusPatternsHoldInCommandsFocusModeOnly) {
    Command focus(1, "focus"), both(2, "both");
    mBindings.AddBinding(Binding('F', Make(0, 0, 0, 0, 0), "focus"));
    mBindings.AddBinding(Binding('B', Make(0, 0, 0, 0, 2), "both"));
    EXPECT_TRUE(mBindings.Find(DAW_EKeyCode('F'), *Make(0, 0, 0, 0, 0), nullptr));
    EXPECT_FALSE(mBindings.Find(DAW_EKeyCode('F'), *Make(0, 0, 0, 0, 1), nullptr));
    EXPECT_TRUE(mBindings.Find(DAW_EKeyCode('B'), *Make(0, 0, 0, 0, 0), nullptr));
    EXPECT_TRUE(mBindings.Find(DAW_EKeyCode('B'), *Make(0, 0, 0, 0, 1), nullptr));
}

TEST_F(Strokes, PlainKeysGoToATextFieldFirst) {
    Command command(1, "bound");
    CKeyBindings::AddTextFieldClass("TestField");
    mBindings.AddBinding(Binding('S', Make(2, 2, 2, 2), "bound"));
    TestDerivedField field;
    TEventHandler other;
    const Calls performed = {"bound start", "bound"};
    const Calls targetOnly = {"target"};
    const Calls targetFirst = {"target", "bound start", "bound"};
    const struct {
        const char* why;
        char key;
        Pattern modifiers;
        TEventHandler* target;
        bool targetHandles;
        bool taken;
        Calls calls;
    } rows[] = {
        {"typed into a field", 'S', Make(0, 0, 0, 0, 1), &field, true, true, targetOnly},
        {"shift is typing too", 'S', Make(0, 0, 0, 1, 1), &field, true, true, targetOnly},
        {"the field does not want it", 'S', Make(0, 0, 0, 0, 1), &field, false, true, targetFirst},
        {"with Ctrl", 'S', Make(1, 0, 0, 0, 1), &field, true, true, performed},
        {"with Alt", 'S', Make(0, 1, 0, 0, 1), &field, true, true, performed},
        {"with the Windows key", 'S', Make(0, 0, 1, 0, 1), &field, true, true, performed},
        {"another target", 'S', Make(0, 0, 0, 0, 1), &other, true, true, performed},
        {"no target", 'S', Make(0, 0, 0, 0, 1), nullptr, true, true, performed},
        {"not bound", 'T', Make(1, 0, 0, 0, 1), &other, false, false, targetOnly},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Press(row.key, row.modifiers, row.target, row.targetHandles), row.taken)
            << row.why;
        EXPECT_EQ(TakeCalls(), row.calls) << row.why;
        mBindings.ReleaseAllKeys();
        TakeCalls();
    }
    command.SetEnabled(false);
    EXPECT_TRUE(Press('S', Make(1, 0, 0, 0, 1), &other));
    EXPECT_EQ(TakeCalls(), targetOnly) << "a disabled command does not take the key";
}

TEST_F(Strokes, TheFieldMayEndItselfBeforeTheBindingGetsTheKey) {
    Command command(1, "bound");
    CKeyBindings::AddTextFieldClass("TestField");
    mBindings.AddBinding(Binding('S', Make(0, 0, 0, 0), "bound", kEdit));
    auto* field = new TestField;
    field->SetIdentifier(kEdit);
    mOnTarget = [&] {
        field->Free();
        mBindings.RemoveAll();
    };
    EXPECT_TRUE(Press('S', Make(0, 0, 0, 0, 1), field, /*targetHandles*/ false));
    EXPECT_EQ(TakeCalls(), (Calls{"target", "bound start", "bound"}));
}

TEST_F(Strokes, ACommandIsStartedOnceAndEndedWhenItsKeyGoesUp) {
    Command first(1, "first"), second(2, "second");
    mBindings.AddBinding(Binding('A', Make(0, 0, 0, 0), "first"));
    mBindings.AddBinding(Binding('A', Make(0, 0, 0, 1), "second"));
    Press('A', Make(0, 0, 0, 0, 1));
    Press('A', Make(0, 0, 0, 0, 1), nullptr, true, /*repeated*/ true);
    Press('A', Make(0, 0, 0, 1, 1), nullptr, true, /*repeated*/ true); // now with shift
    EXPECT_TRUE(Release('A'));
    EXPECT_FALSE(Release('A'));
    EXPECT_EQ(TakeCalls(), (Calls{"first start", "first", "first", "first end", "second start",
                                  "second", "second end"}));
    Press('A', Make(0, 0, 0, 0, 1));
    Press('A', Make(0, 0, 0, 0, 1)); // its going up was missed
    mBindings.ReleaseAllKeys();
    mBindings.ReleaseAllKeys();
    EXPECT_EQ(TakeCalls(),
              (Calls{"first start", "first", "first end", "first start", "first", "first end"}));
}

TEST_F(Strokes, OptionsHaveTheStateOfTheHeldModifiers) {
    Command command(5, "bounce");
    DAW_CommandOptionRegistry::RegisterCommandOption(DAW_CommandOption::New(
        5, "flipped", kDAW_ModifierKind_Shift, false, kDAW_Key_None, kCommandNameAppend_None, {}));
    mBindings.AddBinding(Binding('B', Make(1, 0, 0, 2), "bounce"));
    Press('B', Make(1, 0, 0, 0, 1));
    Press('B', Make(1, 0, 0, 1, 1), nullptr, true, /*repeated*/ true);
    EXPECT_EQ(TakeCalls(), (Calls{"bounce start", "bounce", "bounce flipped"}));
}

TEST_F(Strokes, CommandsMayGoAwayOrThrowWhileTheyRun) {
    auto command = std::make_unique<Command>(1, "gone");
    mBindings.AddBinding(Binding('A', Make(0, 0, 0, 0), "gone"));
    command->mOnStart = [&] { command.reset(); };
    EXPECT_TRUE(Press('A', Make(0, 0, 0, 0, 1)));
    EXPECT_FALSE(Release('A'));
    EXPECT_EQ(TakeCalls(), Calls{"gone start"});

    command = std::make_unique<Command>(1, "gone");
    Command* const raw = command.get();
    raw->mOnDo = [this] {
        mBindings.RemoveAll();
        throw std::runtime_error("no");
    };
    EXPECT_THROW(Press('A', Make(0, 0, 0, 0, 1)), std::runtime_error);
    EXPECT_TRUE(Release('A')); // started, so it is ended
    EXPECT_EQ(TakeCalls(), (Calls{"gone start", "gone", "gone end"}));
}

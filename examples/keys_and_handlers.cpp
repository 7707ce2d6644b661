// Keys on their road: a small script of keys is played against three handlers, one behaviour and
// two key bindings, and the event trace says who got what and who took it.
//
// Usage: keys_and_handlers [--times] [--json]

#include <cstdio>
#include <cstring>
#include <string>

#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"
#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/views/qlx_event.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ueventtrace.h"
#include "qlx/views/ukeybindings.h"

/// Takes the letters that it is typed, like a text field.
class TNameField : public TEventHandler {
  public:
    QLX_DECLARE_CLASS(TNameField);
    void DoKeyEvent(TToolboxEvent* event) override {
        if (event->mCharacterCode < 0x20) {
            TEventHandler::DoKeyEvent(event); // not a letter: the next handler's
            return;
        }
        mText += static_cast<char>(event->mCharacterCode);
    }
    std::string mText;
};
QLX_DEFINE_CLASS(TNameField, TEventHandler)

/// Takes Return.
class TPanel : public TEventHandler {
  public:
    QLX_DECLARE_CLASS(TPanel);
    void DoKeyEvent(TToolboxEvent* event) override {
        if (event->mKeyCode != kDAW_Key_Return)
            TEventHandler::DoKeyEvent(event);
    }
};
QLX_DEFINE_CLASS(TPanel, TEventHandler)

/// Keeps digits away from the handler that it is attached to.
class TNoDigits : public TBehavior {
  public:
    QLX_DECLARE_CLASS(TNoDigits);
    void DoKeyEvent(TToolboxEvent* event) override {
        if (event->mCharacterCode < '0' || event->mCharacterCode > '9')
            TBehavior::DoKeyEvent(event);
    }
};
QLX_DEFINE_CLASS(TNoDigits, TBehavior)

namespace {

class BounceCommand : public DAW_Command {
  public:
    BounceCommand() : DAW_Command(700, "Bounce", "mix.bounce") {}

  protected:
    void DoCommandX() override {
        std::printf("  the command runs%s\n", GetOptionState("Offline") ? ", offline" : "");
    }
};

struct ScriptedKey {
    const char* remark;
    std::uint32_t keyCode;
    std::uint32_t character;
    std::uint32_t modifiers; // bits of QLX_EModifierBits
};

constexpr ScriptedKey kScript[] = {
    {"a letter goes into the field", 'A', 'a', 0},
    {"a digit stops at the field's behaviour", '7', '7', 0},
    {"Return goes on to the panel", kDAW_Key_Return, 13, 0},
    {"nobody takes Escape", kDAW_Key_Escape, 27, 0},
    {"a plain bound key is typed while the field is the target", 'B', 'b', 0},
    {"with Ctrl the binding comes first", 'B', 2, kQLX_Modifier_Command},
    {"Shift switches the command's option", 'B', 2, kQLX_Modifier_Command | kQLX_Modifier_Shift},
};

bool Play(TApplication& application, const ScriptedKey& key) {
    QLX_EventRef event =
        QLX_EventRef::New(QLX_EventID{kQLX_EventClass_Keyboard, kQLX_EventKind_KeyDown});
    event.SetProperty(kQLX_EventProperty_Modifiers, &key.modifiers, sizeof key.modifiers);
    event.SetProperty(kQLX_EventProperty_KeyCode, &key.keyCode, sizeof key.keyCode);
    const std::uint32_t characters[3] = {key.character, 0, 0};
    event.SetProperty(kQLX_EventProperty_Character, characters, sizeof characters);
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(&application, event);
    return application.DeliverKeyDown(&toolboxEvent);
}

} // namespace

int main(int argc, char** argv) {
    bool withTimes = false;
    auto form = QLX_EventTraceWriter::EForm::Lines;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--times") == 0) {
            withTimes = true;
        } else if (std::strcmp(argv[i], "--json") == 0) {
            form = QLX_EventTraceWriter::EForm::JSON;
        } else {
            std::fprintf(stderr, "usage: %s [--times] [--json]\n", argv[0]);
            return 2;
        }
    }

    auto* const application = new TApplication;
    application->SetIdentifier(Cmn_FourChar("appl"));
    auto* const panel = new TPanel;
    panel->IEventHandler(application);
    panel->SetIdentifier(Cmn_FourChar("panl"));
    auto* const field = new TNameField;
    field->IEventHandler(panel);
    field->SetIdentifier(Cmn_FourChar("name"));
    auto* const noDigits = new TNoDigits;
    noDigits->IBehavior(Cmn_FourChar("nodg"));
    field->AddBehavior(noDigits);
    application->SetTarget(field);

    BounceCommand bounce;
    DAW_CommandRegistry::RegisterCommand(&bounce);
    DAW_CommandOptionRegistry::RegisterCommandOption(DAW_CommandOption::New(
        bounce.GetCommandID(), "Offline", kDAW_ModifierKind_Shift,
        /*defaultState*/ false, kDAW_Key_None, kCommandNameAppend_Parentheses, {}));
    CKeyBindings bindings;
    CKeyBindings::AddTextFieldClass("TNameField");
    bindings.ReadText("# modifiers  either   key  command     context\n"
                      "<Cmd>         [Shift]  B    mix.bounce\n"
                      "-             -        B    mix.bounce  panl\n",
                      "built-in keys");
    for (const CKeyBindingProblem& problem : bindings.FindProblems())
        std::fprintf(stderr, "%s\n", problem.AsText().c_str());
    application->SetKeyBindings(&bindings);

    Cmn_SetTraceSink([](const char* line) { std::printf("  %s\n", line); });
    QLX_EventTraceWriter trace(form, withTimes);
    QLX_EventTrace::Start(&trace);
    for (const ScriptedKey& key : kScript) {
        std::printf("%s:\n", key.remark);
        const bool isTaken = Play(*application, key);
        std::printf("  %s\n", isTaken ? "taken" : "not taken");
    }
    QLX_EventTrace::Stop();
    std::printf("The field holds \"%s\".\n", field->mText.c_str());

    application->SetKeyBindings(nullptr);
    field->Free();
    panel->Free();
    application->Free();
    return 0;
}

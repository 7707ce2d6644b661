// The session's named commands, which menus and key bindings perform, and their options.

#include <functional>

#include "basekit/cmn/cmn_trace.h"
#include "host/session_window.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ukeybindings.h"

namespace {

constexpr const char* kByGrid = "by grid";

/// A command that calls a function with the state of its one option.
class FunctionCommand : public DAW_Command {
  public:
    FunctionCommand(std::int32_t number, const std::string& name, const std::string& persistedName,
                    std::function<void(bool option)> function)
        : DAW_Command(number, name, persistedName), mFunction(std::move(function)) {}

  protected:
    void DoCommandX() override { mFunction(GetOptionState(kByGrid)); }

  private:
    std::function<void(bool)> mFunction;
};

void RegisterByGrid(std::int32_t command) {
    DAW_CommandOptionRegistry::RegisterCommandOption(
        DAW_CommandOption::New(command, kByGrid, kDAW_ModifierKind_Shift, /*defaultState*/ false,
                               kDAW_Key_None, kCommandNameAppend_None, {}));
}

} // namespace

SessionKeys::SessionKeys(TSessionWindow& window) : mBindings(std::make_unique<CKeyBindings>()) {
    TSessionWindow* const session = &window;
    const auto add = [this](std::int32_t number, const char* name, const char* persistedName,
                            std::function<void(bool)> function) {
        mCommands.push_back(
            std::make_unique<FunctionCommand>(number, name, persistedName, std::move(function)));
        DAW_CommandRegistry::RegisterCommand(mCommands.back().get());
    };
    const auto addMenu = [&](std::int32_t number, const char* name, const char* persistedName) {
        add(number, name, persistedName,
            [session, number](bool) { session->HandleMenuCommand(number); });
    };
    add(2001, "Play or stop", "transport.playstop", [session](bool) {
        session->GetTransport().IsPlaying() ? session->Stop() : session->Play();
    });
    addMenu(kSessionCommand_ToStart, "Return to zero", "transport.rtz");
    add(kSessionCommand_NudgeBack, "Nudge back", "edit.nudgeback",
        [session](bool byGrid) { session->Nudge(-1, byGrid); });
    add(kSessionCommand_NudgeForward, "Nudge forward", "edit.nudgeforward",
        [session](bool byGrid) { session->Nudge(1, byGrid); });
    addMenu(kSessionCommand_ZoomIn, "Zoom in", "view.zoomin");
    addMenu(kSessionCommand_ZoomOut, "Zoom out", "view.zoomout");
    addMenu(kSessionCommand_ZoomFit, "Whole track", "view.zoomfit");
    RegisterByGrid(kSessionCommand_NudgeBack);
    RegisterByGrid(kSessionCommand_NudgeForward);
    if (gApplication)
        gApplication->SetKeyBindings(mBindings.get());
}

SessionKeys::~SessionKeys() {
    if (gApplication && gApplication->GetKeyBindings() == mBindings.get())
        gApplication->SetKeyBindings(nullptr);
}

void SessionKeys::ReadFile(const std::string& path) {
    mBindings->ReadFile(path);
    for (const CKeyBindingProblem& problem : mBindings->FindProblems())
        Cmn_TraceWrite("%s", problem.AsText().c_str());
    for (const CKeyBindingConflict& conflict : mBindings->FindConflicts())
        Cmn_TraceWrite("%s", mBindings->ConflictAsText(conflict).c_str());
}

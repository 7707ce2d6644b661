#include "qlx/views/ucommandhandler.h"

#include <exception>
#include <utility>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/ustguard.h"

QLX_DEFINE_CLASS(TCommandHandler, TEventHandler)

TCommandHandler::TCommandHandler() = default;

TCommandHandler::~TCommandHandler() {
    // What is left here belongs to a handler that was not ended with Free. Its command is not
    // committed: it would meet a context that is half gone.
    if (mLastCommand)
        LetGo(mLastCommand, mLastCommand->ShouldFreeOnCompletion());
    ForgetContext(this);
}

void TCommandHandler::ICommandHandler(TEventHandler* next) { IEventHandler(next); }

TObject* TCommandHandler::Clone() {
    // The bytes are copied without the command, so that a copy that fails half way does not free
    // it.
    struct Restore {
        TCommandHandler* mHandler;
        TCommand* mLastCommand;
        bool mInCommand;
        ~Restore() {
            mHandler->mLastCommand = mLastCommand;
            mHandler->mInCommand = mInCommand;
        }
    } const restore{this, std::exchange(mLastCommand, nullptr), std::exchange(mInCommand, false)};
    return TEventHandler::Clone();
}

void TCommandHandler::Free() {
    try {
        CommitLastCommand();
    } catch (const std::exception& x) {
        Cmn_TraceWrite("TCommandHandler::Free - EXCEPTION in commit, x.what()=%s", x.what());
    } catch (...) {
        Cmn_TraceWrite("TCommandHandler::Free - EXCEPTION in commit");
    }
    if (TCommand* const last = std::exchange(mLastCommand, nullptr)) {
        last->mKeeper = nullptr;
        // One that is in its Commit or UndoIt is ended when it comes back from there.
        if (!IsBusy(last))
            last->Free();
    }
    TEventHandler::Free();
}

// Menus

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kKeepsSpare = false; // every use of freed memory is to be seen
#else
constexpr bool kKeepsSpare = true;
#endif

/// Undo and redo follow each other, one command at a time: its memory is kept for the next one.
class SparingUndoRedo final : public TUndoRedoCommand {
  public:
    static void* operator new(std::size_t size) {
        if (kKeepsSpare && sSpare)
            return std::exchange(sSpare, nullptr);
        return ::operator new(size);
    }
    static void operator delete(void* bytes) noexcept {
        if (kKeepsSpare && !sSpare)
            sSpare = bytes;
        else
            ::operator delete(bytes);
    }

  private:
    static constinit void* sSpare; // owned; null while it is in use
};
constinit void* SparingUndoRedo::sSpare = nullptr;

} // namespace

void TCommandHandler::PostUndoRedo() {
    auto* const undoRedo = new SparingUndoRedo;
    undoRedo->IUndoRedoCommand(kCommand_Undo, this);
    PostCommand(undoRedo);
}

void TCommandHandler::HandleSetupMenus() {
    const StGuard self(this);
    TEventHandler::HandleSetupMenus();
    if (self)
        SetupUndoMenu();
}

void TCommandHandler::SetupUndoMenu() {
    TCommand* const last = GetLastCommand();
    if (!last || !last->CanBeUndone())
        return;
    TCommandManager::Enable(kCommand_Undo, true);
    if (gApplication)
        gApplication->SetUndoText(last->mDone, last);
}

TCommandHandler* TCommandHandler::GetContext(int) { return this; }

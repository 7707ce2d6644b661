// TCommandHandler: a handler that performs commands and keeps the last one for undo, and the
// registry of commands that are alive.
#pragma once

#include "qlx/views/ueventhandler.h"

class StGuard;

/// A handler with one level of undo. Performing the next command that changes something commits the
/// last one first. User-interface thread.
class QLX_API TCommandHandler : public TEventHandler {
  public:
    QLX_DECLARE_CLASS(TCommandHandler);
    TCommandHandler();
    ~TCommandHandler() override;

    void ICommandHandler(TEventHandler* next);

    /// The copy has no last command.
    [[nodiscard]] TObject* Clone() override;
    /// Commits or discards the last command as CommitLastCommand does and frees it if it is still
    /// there, then frees the handler.
    void Free() override;
    /// Undoes or redoes on kCommand_Undo when the last command is this handler's own.
    void DoMenuCommand(std::int32_t command) override;
    /// Also enables Undo.
    void HandleSetupMenus() override;

    // Slot order is part of the binary interface: append, never move.

    virtual void SetupUndoMenu();
    [[nodiscard]] virtual TCommandHandler* GetContext(int kind);
    /// Performs a command and keeps or ends it. A null or misaligned pointer is an assertion and
    /// nothing more. An exception is passed on after the command was freed, unless it does not free
    /// on completion or is the last command. A command that performs another one on this handler
    /// from its DoIt takes that one's place as last command, which commits it.
    virtual void PerformCommand(TCommand* command);
    /// Commits the last command when it is done, discards it when it is undone, and frees it when
    /// it frees on completion. Deliberate: a command that does not stays the last command, and is
    /// committed again the next time. An exception from the command is passed on after it was let
    /// go.
    virtual void CommitLastCommand();
    [[nodiscard]] virtual TCommand* GetLastCommand();

    /// Whether a command is in its DoIt.
    [[nodiscard]] bool IsProcessingCommand() const { return mInCommand; }

    /// Asked of every command pointer before it is used, when set: whether its memory can be read.
    /// A pointer that it refuses is reported like a misaligned one. Null, the default, switches the
    /// check off. Returns the previous one.
    using PointerChecker = bool (*)(const void* memory, std::size_t size);
    static PointerChecker SetPointerChecker(PointerChecker checker);

    // The commands that are alive: added by PerformCommand, removed by the command's destructor.

    [[nodiscard]] static bool IsAlive(const TCommand* command);
    [[nodiscard]] static std::size_t CountAliveCommands();

  private:
    friend class TCommand;
    friend class TUndoRedoCommand;
    class StBusy;
    class Run;
    [[nodiscard]] static bool IsBusy(const TCommand* command);
    static void ForgetContext(const TCommandHandler* context);
    static void End(TCommand* command, const StGuard& alive);
    static void LetGo(TCommand* command, bool frees);
    void PerformTraced(TCommand* command);
    static void Commit(TCommand* command);
    static void CommitNamed(TCommand* command);
    void PostUndoRedo();
    void UndoOrRedo();
    static void UndoOrRedoNamed(TCommand* command, bool wasDone, const StGuard& alive);
    static void UndoOrRedoBusy(TCommand* command, bool wasDone, const StGuard& alive);
    static void EndDisplaced(TCommand* command, const StGuard& alive);

    // The order of the fields is part of the binary interface.
    TCommand* mLastCommand = nullptr; // owned
    bool mInCommand = false;
};

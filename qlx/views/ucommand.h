// TCommand: a user action as an object that is posted, performed, undone, redone and in the end
// committed.
#pragma once

#include <string>
#include <vector>

#include "qlx/views/uevent.h"

/// Command numbers with a meaning of their own.
enum ECommandNumber : std::int32_t {
    kCommand_None = 0,
    kCommand_Undo = 101, ///< undoes or redoes; also the change code of a command that is not done
    kCommand_Unknown = -1
};

/// Changes after which a command cannot be undone any more.
enum ECommandChange : int {
    kChange_ContextGoesAway = 28, ///< heeded when it comes from the command's context
    kChange_CommitEverything = 30 ///< heeded from anyone
};

/// What is to become of the references to files that a command holds.
enum EFileRefTagOp : std::int32_t {
    kFileRefTag_Mark = 0,   ///< mark the files in use
    kFileRefTag_Unmark = 1, ///< take the mark away
    kFileRefTag_Release = 2 ///< let go of the files
};

/// An action. Made by whoever reacts to a menu, a key or the mouse, given to the chain with
/// PostCommand, performed by its context. After DoIt the context either keeps it as its last
/// command, which can be undone and redone, or ends it: Completed, then Free when it frees on
/// completion.
///
/// A command may free itself in DoIt; nothing touches it afterwards. It may throw from DoIt,
/// UndoIt, RedoIt and Commit; the exception reaches whoever performed. User-interface thread.
class QLX_API TCommand : public TEvent {
  public:
    QLX_DECLARE_CLASS(TCommand);
    TCommand();
    ~TCommand() override;

    /// Without a context, the application is the context. The object to notify (not owned) hears of
    /// the change through its dependents; it may be null.
    void ICommand(std::int32_t number, TCommandHandler* context, bool canUndo, bool causesChange,
                  TObject* objectToNotify);

    // TObject

    /// Commits the context's last command on kChange_ContextGoesAway from the context and on
    /// kChange_CommitEverything.
    void DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                  TDependencySpace* space) override;
    /// A command that is not kept by any handler.
    [[nodiscard]] TObject* Clone() override;
    /// Gives the clipboard's views up first, when the command uses the clipboard.
    void Free() override;

    // Slot order is part of the binary interface: append, never move.

    bool ShouldFreeOnCompletion() override;
    bool IsReadyToPost() override;
    bool IsReadyToExecute() override;
    bool IsRecurring() override;
    TEventHandler* GetHandler() override;
    /// Has the context perform this command; nothing without a context.
    void Process() override;
    bool Merge(TEvent* posted) override;
    virtual void AbandonClipboardView();
    virtual void AbandonUndoClipboardView();
    virtual bool NeedsToUnloadAllSegments();
    /// The change is final. Called once, when another command takes this one's place.
    virtual void Commit();
    virtual void DoIt();
    /// Calls DoIt here.
    virtual void RedoIt();
    virtual void UndoIt();
    /// Tells the dependents of the object to notify, when the command causes a change:
    /// kCommand_Undo while the command is not done, else GetChangeID.
    virtual void DoNotification();
    /// Makes an undoable command a dependent of its context.
    virtual void SetupDependencies();
    /// The command will not be performed, undone or redone any more.
    virtual void Completed();
    /// Another command was queued behind this one.
    virtual void NewCommandWasPosted();
    /// The command stopped being (became) the one that Undo works on.
    virtual void NoLongerTopUndo();
    virtual void NowTopUndo();
    virtual void FileRefTagOp(EFileRefTagOp operation);
    /// Whether the command may change tracks that are frozen.
    virtual bool AllowedOverFrozenPlaylist();
    virtual void ClaimClipboard(TView* view);
    virtual void UndoRedoClipboard();
    virtual bool CanBeUndone();
    virtual bool WillCauseChange();
    virtual bool DeferCommitUntilAfterTracking();
    /// The change code of DoNotification; the command number here.
    virtual std::int32_t GetChangeID();
    /// The name for menus and traces, without mnemonics: the command's own, else the menu item's,
    /// else the named command's of this number, else the class's. False when it is empty.
    virtual bool GetCommandName(std::string* name);
    /// Why the command cannot be undone; false when there is nothing to say.
    virtual bool GetCanNotBeUndoReason(std::string* reason);
    virtual bool ShouldTraceCommand();
    virtual bool ShouldValidateCommand();
    /// More for the trace; leaves the text empty here.
    virtual void GetCommandTracingDetails(std::string* details);
    /// More for the user; false when there is nothing to say.
    virtual bool GetCommandDetails(std::string* details);
    virtual void SetCommandName(const std::string& name);
    /// Bytes that the command keeps for undoing.
    virtual std::int64_t GetMemoryFootPrint();

    [[nodiscard]] std::int32_t GetCommandNumber() const { return mEventNumber; }
    [[nodiscard]] TCommandHandler* GetContext() const { return mContext; }
    [[nodiscard]] TObject* GetObjectToNotify() const { return mObjectToNotify; }
    [[nodiscard]] bool IsDone() const { return mDone; }
    [[nodiscard]] bool UsesClipboard() const { return mUsesClipboard; }
    void SetUsesClipboard(bool uses) { mUsesClipboard = uses; }
    void SetFreeOnCompletion(bool frees) { mFreeOnCompletion = frees; }
    void SetReadyToExecute(bool ready) { mReadyToExecute = ready; }
    void SetRecurring(bool recurring) { mRecurring = recurring; }
    void SetCanBeUndone(bool can) { mCanUndo = can; }
    void SetCausesChange(bool causes) { mCausesChange = causes; }
    /// Further objects (not owned) whose dependents hear of the change, after the object to notify.
    void AddObjectToNotify(TObject* object);
    /// Seconds since 1970 at which the object was made.
    [[nodiscard]] std::int64_t GetCreationTime() const { return mCreationTime; }
    /// Bytes, as of the last DetermineCommandSize.
    [[nodiscard]] std::int64_t GetCommandSize() const { return mCommandSize; }
    void DetermineCommandSize() { mCommandSize = GetMemoryFootPrint(); }

  private:
    void NotifyAll();
    [[nodiscard]] const std::string& FindName();

  protected:
    friend class TCommandHandler;
    friend class TUndoRedoCommand;
    // The order of the fields is part of the binary interface.
    TObject* mObjectToNotify = nullptr;  // not owned
    TCommandHandler* mContext = nullptr; // not owned; null once it is gone
    bool mDone = false;
    bool mCanUndo = true;
    bool mCausesChange = true;
    bool mUsesClipboard = false;
    std::vector<TObject*> mFurtherObjects; // not owned
    bool mFreeOnCompletion = true;
    bool mReadyToExecute = true;
    bool mRecurring = false;
    std::int64_t mCreationTime;
    std::int64_t mCommandSize = 0;
    std::string mCommandName;
    TCommandHandler* mKeeper = nullptr; // not owned; the handler whose last command this is
};

/// Undoes or redoes the last command of its context. Posted by the command handler when it gets the
/// Undo menu command.
class QLX_API TUndoRedoCommand : public TCommand {
  public:
    QLX_DECLARE_CLASS(TUndoRedoCommand);
    TUndoRedoCommand();
    ~TUndoRedoCommand() override;

    /// Without a handler, the application is the context. The command itself causes no change and
    /// cannot be undone, so it does not commit what it works on.
    void IUndoRedoCommand(std::int32_t number, TCommandHandler* handler);
    void DoIt() override;
};

// The undoable changes of a session. Each keeps the state before and after it.
#pragma once

#include "host/session_model.h"
#include "qlx/views/ucommand.h"

/// Numbers of menu commands and of the commands below.
enum ESessionCommand : std::int32_t {
    kSessionCommand_Play = 1001,
    kSessionCommand_Stop = 1002,
    kSessionCommand_ToStart = 1003,
    kSessionCommand_SelectAll = 1010,
    kSessionCommand_NudgeBack = 1011,
    kSessionCommand_NudgeForward = 1012,
    kSessionCommand_ZoomIn = 1020,
    kSessionCommand_ZoomOut = 1021,
    kSessionCommand_ZoomFit = 1022,
    kSessionCommand_Quit = 1030,
    kSessionCommand_SetSelection = 1100,
    kSessionCommand_RenameTrack = 1101,
    kSessionCommand_ChangeGain = 1102
};

/// What the session's commands share.
class SessionCommand : public TCommand {
  public:
    /// The state before is the one to undo to: the model's own unless a drag has shown others
    /// since.
    void ISessionCommand(std::int32_t number, TCommandHandler* context, SessionModel* model,
                         const SessionState& before, const SessionState& after, int change,
                         const std::string& name);
    void DoIt() override { mModel->SetState(mAfter, mChange); }
    void UndoIt() override { mModel->SetState(mBefore, mChange); }
    std::int64_t GetMemoryFootPrint() override {
        return static_cast<std::int64_t>(sizeof *this + mBefore.mTrackName.size() +
                                         mAfter.mTrackName.size());
    }

  private:
    SessionModel* mModel = nullptr; // not owned
    SessionState mBefore;
    SessionState mAfter;
    int mChange = 0;
};

class SetSelectionCommand : public SessionCommand {};
class NudgeCommand : public SessionCommand {};
class RenameTrackCommand : public SessionCommand {};
class ChangeGainCommand : public SessionCommand {};

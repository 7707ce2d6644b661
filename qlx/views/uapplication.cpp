#include "qlx/views/uapplication.h"

#include <algorithm>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "basekit/cmn/cmn_traceswitch.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "newfilelibs/daw/daw_keyevent.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uactivitywatch.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ueventdispatch.h"
#include "qlx/views/ukeybindings.h"
#include "qlx/views/uscratchtext.h"
#include "qlx/views/ustguard.h"

QLX_DEFINE_CLASS(TApplication, TCommandHandler)

TApplication* gApplication = nullptr;
constinit Cmn_VirtualTable gUnwatchedApplication;

bool TApplication::sMacAppKeyDownHandled = true;
std::vector<TEventHandler*> TApplication::sTargetHandlingEventStack;

namespace {

TEventHandler* sPreMenuLoopTarget = nullptr;  // not owned
constinit Cmn_VirtualTable sPlainApplication; // written by the constructor

} // namespace

TEventHandler* TApplicationData::GetPreMenuLoopTarget() { return sPreMenuLoopTarget; }

void TApplicationData::SetPreMenuLoopTarget(TEventHandler* handler) {
    sPreMenuLoopTarget = handler;
}

TApplication::TApplication() : mPrevious(std::exchange(gApplication, this)) {
    sPlainApplication = Cmn_VirtualTable(*this);
    gUnwatchedApplication = Cmn_VirtualTable();
    sTargetHandlingEventStack.reserve(16);
    AttachToLoop(QLX_EventLoop::Get());
}

TApplication::~TApplication() {
    LeaveLoop();
    DropPosted();
    for (TApplication** application = &gApplication; *application;
         application = &(*application)->mPrevious) {
        if (*application == this) {
            *application = mPrevious;
            break;
        }
    }
}

// Target

void TApplication::SetTarget(TEventHandler* handler) {
    TEventHandler* const next = handler ? handler : this;
    TEventHandler* const old = GetTarget();
    if (next == old)
        return;
    mTarget = next == this ? nullptr : next;
    const StGuard self(this);
    old->ResignedTarget();
    // The old target may have made yet another one the target, or have freed the new one.
    if (self && GetTarget() == next)
        next->BecameTarget();
}

void TApplication::ForgetHandler(TEventHandler* handler) {
    for (TApplication* application = gApplication; application;
         application = application->mPrevious) {
        if (application->mTarget == handler)
            application->mTarget = nullptr;
        if (!application->mPosted.empty())
            application->ForgetPosted(handler);
    }
    std::replace(sTargetHandlingEventStack.begin(), sTargetHandlingEventStack.end(), handler,
                 static_cast<TEventHandler*>(nullptr));
    if (sPreMenuLoopTarget == handler)
        sPreMenuLoopTarget = nullptr;
    ForgetIdleWish(handler);
}

// Keys

/// A key down on its way: the stack entry and the flag, restored on every way out.
class TApplication::StKeyDown {
  public:
    StKeyDown() {
        sTargetHandlingEventStack.push_back(nullptr);
        sMacAppKeyDownHandled = true;
    }
    ~StKeyDown() {
        sMacAppKeyDownHandled = true;
        if (!sTargetHandlingEventStack.empty())
            sTargetHandlingEventStack.pop_back();
    }
    StKeyDown(const StKeyDown&) = delete;
    StKeyDown& operator=(const StKeyDown&) = delete;
};

void TApplication::ClearFromTargetHandlingEventStack(TEventHandler* handler) {
    const auto entry =
        std::find(sTargetHandlingEventStack.begin(), sTargetHandlingEventStack.end(), handler);
    if (entry != sTargetHandlingEventStack.end())
        *entry = nullptr;
}

void TApplication::KeyDownIsUnhandled() {
    sMacAppKeyDownHandled = false;
    QLX_NoteEndOfChain();
}

void TApplication::LogCommandKey(const TToolboxEvent& event) {
    TEventHandler* const handler =
        sTargetHandlingEventStack.empty() ? nullptr : sTargetHandlingEventStack.back();
    if (!handler)
        return;
    const std::uint32_t code = event.mCharacterCode;
    Cmn_Trace(kTrace_CommandKeys, "Command Key %c(%x) handled by %s %s",
              code >= 0x20 && code < 0x7F ? static_cast<int>(code) : '?',
              static_cast<unsigned>(code), handler->GetClassDescDynamic()->GetClassName().c_str(),
              Cmn_IDToString(handler->GetIdentifier()).c_str());
}

bool TApplication::HandleKeyDownEvent(TToolboxEvent* event) {
    if (!event)
        return false;
    const StGuard self(this);
    EndIdleTime();
    if (self)
        GetTarget()->KeyEventToComponents(event);
    bool isHandled = false;
    if (self) {
        const StKeyDown keyDown;
        const bool isCommandKey = event->IsCommandKeyPressed();
        if (isCommandKey)
            GetTarget()->HandleCommandKey(event);
        else
            GetTarget()->HandleKeyCommand(event);
        isHandled = sMacAppKeyDownHandled;
        if (isCommandKey && isHandled && Cmn_TraceIsOn(kTrace_CommandKeys))
            LogCommandKey(*event);
    }
    if (self)
        RescheduleTimers();
    return isHandled;
}

void TApplication::HandleKeyUpEvent(TToolboxEvent* event) {
    if (!event)
        return;
    const StGuard self(this);
    EndIdleTime();
    if (self)
        GetTarget()->KeyEventToComponents(event);
    if (self)
        GetTarget()->HandleKeyUp(event);
}

CKeyBindings* TApplication::SetKeyBindings(CKeyBindings* bindings) {
    CKeyBindings* const before = std::exchange(mKeyBindings, bindings);
    CKeyBindings::TellOfChange();
    return before;
}

namespace {

DAW_EKeyCode KeyCodeOf(const TToolboxEvent& event) {
    std::uint32_t code = kDAW_Key_None;
    event.GetEvent().GetProperty(kQLX_EventProperty_KeyCode, &code, sizeof code);
    return static_cast<DAW_EKeyCode>(code);
}

Cmn_RefCountPtr<DAW_KeyEvent> KeyEventOf(TToolboxEvent& event, DAW_EKeyState state) {
    std::uint32_t character = 0;
    event.GetEvent().GetProperty(kQLX_EventProperty_Character, &character, sizeof character);
    std::string text;
    if (character != 0)
        Cmn_AppendUTF8(text, character);
    return DAW_KeyEvent::New(
        KeyCodeOf(event), event.IsAutoKeyEvent() ? kDAW_AutoKey_Yes : kDAW_AutoKey_No, text, state);
}

} // namespace

bool TApplication::DeliverKeyDown(TToolboxEvent* event) {
    // Keys without a binding, typed text above all, take the short road and allocate nothing.
    if (!event || !mKeyBindings || !mKeyBindings->Concerns(KeyCodeOf(*event)))
        return HandleKeyDownEvent(event);
    const StGuard self(this);
    EndIdleTime();
    if (!self)
        return false;
    const auto sendToTarget = [&] { return self && HandleKeyDownEvent(event); };
    const bool isTaken = mKeyBindings->DeliverKeyDown(
        *KeyEventOf(*event, kDAW_Key_IsDown), event->GetDAWEventModifiers(),
        QLX_Keyboard::GetDAWKeyboardState(), GetTarget(), sendToTarget);
    if (self)
        RescheduleTimers();
    return isTaken;
}

void TApplication::DeliverKeyUp(TToolboxEvent* event) {
    if (event && mKeyBindings && mKeyBindings->Concerns(KeyCodeOf(*event))) {
        const StGuard self(this);
        mKeyBindings->DeliverKeyUp(*KeyEventOf(*event, kDAW_Key_IsUp),
                                   event->GetDAWEventModifiers(),
                                   QLX_Keyboard::GetDAWKeyboardState());
        if (!self)
            return;
    }
    HandleKeyUpEvent(event);
}

void TApplication::ReleaseAllKeys() {
    if (mKeyBindings)
        mKeyBindings->ReleaseAllKeys();
}

// Menu commands

void TApplication::BeginMenuLoop() { TApplicationData::SetPreMenuLoopTarget(GetTarget()); }

void TApplication::EndMenuLoop() { TApplicationData::SetPreMenuLoopTarget(nullptr); }

void TApplication::SendMenuCommand(std::int32_t command) {
    TEventHandler* const target = TApplicationData::GetPreMenuLoopTarget();
    (target ? target : GetTarget())->HandleMenuCommand(command);
}

void TApplication::SetUndoText(bool done, TCommand* command) {
    StScratchText name;
    if (command)
        command->GetCommandName(&*name);
    StScratchText text;
    *text = done ? "Undo" : "Redo";
    if (!name->empty())
        text->append(" ").append(*name);
    TCommandManager::SetCommandName(kCommand_Undo, *text);
}

// Activities

bool QLX_TakesOverActivityHooks(const TApplication& application) {
    const Cmn_VirtualTable table(application);
    if (!table.Shares<&TApplication::ActivityStarted, &TApplication::ActivityEnded>(
            sPlainApplication))
        return true;
    gUnwatchedApplication = table;
    return false;
}

void TApplication::ActivityStarted(const CActivity&) {}
void TApplication::ActivityEnded(const CActivity&) {}

std::int32_t TApplication::StCommandValidator::sValidateCount = 0;
std::string TApplication::StCommandValidator::sCmdName;

TApplication::StCommandValidator::StCommandValidator(const std::string& commandName) {
    if (sValidateCount++ != 0)
        return;
    sCmdName = commandName;
    if (!gApplication)
        return;
    // A copy: the hook may open a scope of its own.
    StScratchText name;
    *name = sCmdName;
    gApplication->ActivityStarted(CActivity("performing ", *name));
}

TApplication::StCommandValidator::~StCommandValidator() {
    if (sValidateCount <= 0 || --sValidateCount != 0 || !gApplication)
        return;
    try {
        StScratchText name;
        *name = sCmdName;
        gApplication->ActivityEnded(CActivity("performing ", *name));
    } catch (...) {
        ReportSafely("activity end");
    }
}

void TApplication::StActivity::Abandon() noexcept {
    try {
        End();
    } catch (...) {
        ReportSafely("activity end");
    }
}

// Exceptions that nobody above could do anything about

void TApplication::ReportException(const char* where, std::exception_ptr exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception& x) {
        Cmn_TraceWrite("EXCEPTION in %s, x.what()=%s", where, x.what());
    } catch (...) {
        Cmn_TraceWrite("EXCEPTION in %s", where);
    }
}

void TApplication::ReportSafely(const char* where) {
    const std::exception_ptr exception = std::current_exception();
    try {
        if (gApplication)
            gApplication->ReportException(where, exception);
        else
            Cmn_TraceWrite("EXCEPTION in %s", where);
    } catch (...) {
        Cmn_TraceWrite("EXCEPTION in %s, and in reporting it", where);
    }
}

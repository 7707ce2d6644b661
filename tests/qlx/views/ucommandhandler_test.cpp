#include "qlx/views/ucommandhandler.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/daw/daw_command.h"
#include "qlx/views/ucommandmanager.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/assertion_catcher.h"
#include "tests/support/handlers.h"

namespace {

CallLog sTrace;

/// Keeps the lines of the command channel, with addresses as "@".
class CommandTrace {
  public:
    CommandTrace() {
        sTrace.clear();
        Cmn_TraceEnable(kTrace_Commands, true);
        mPrevious = Cmn_SetTraceSink([](const char* line) {
            // "0x5500…" with one C library, sixteen bare digits with another.
            constexpr const char* kDigits = "0123456789abcdefABCDEF";
            std::string text(line);
            for (const char* start : {"0x", "0000"})
                for (std::size_t at = text.find(start); at != std::string::npos;
                     at = text.find(start))
                    text.replace(at, text.find_first_not_of(kDigits, at + 2) - at, "@");
            sTrace.push_back(text);
        });
    }
    ~CommandTrace() {
        Cmn_TraceEnable(kTrace_Commands, false);
        Cmn_SetTraceSink(mPrevious);
    }

  private:
    Cmn_TraceSink mPrevious;
};

class Commands : public testing::Test {
  protected:
    ~Commands() override {
        EXPECT_EQ(TCommandHandler::CountAliveCommands(), mLeftAlive) << "commands were leaked";
    }

    LogCommand* New(const std::string& name, bool canUndo = true, bool causesChange = true,
                    TCommandHandler* context = nullptr) {
        auto* const command = new LogCommand(mLog, name);
        command->ICommand(500, context ? context : mHandler, canUndo, causesChange, nullptr);
        command->SetCommandName(name);
        return command;
    }
    CallLog Take() { return std::exchange(mLog, {}); }
    void EndHandler() {
        if (mHandler)
            std::exchange(mHandler, nullptr)->Free();
    }
    void Undo() {
        mHandler->HandleMenuCommand(kCommand_Undo);
        mApplication.ProcessPosted();
    }
    void TearDown() override { EndHandler(); }

    CallLog mLog;
    LogApplication mApplication{mLog};
    LogHandler* mHandler = new LogHandler(mLog, "h", &mApplication);
    std::size_t mLeftAlive = 0;
};

TEST_F(Commands, TheNextChangeCommitsTheLastOne) {
    mHandler->PerformCommand(New("a"));
    EXPECT_EQ(Take(), (CallLog{"a:do", "a:notify done"}));
    TCommand* const b = New("b");
    mHandler->PerformCommand(b);
    EXPECT_EQ(Take(), (CallLog{"a:commit", "a:completed", "a:gone", "b:do", "b:notify done"}));
    EXPECT_EQ(mHandler->GetLastCommand(), b);
    EndHandler();
    EXPECT_EQ(Take(), (CallLog{"b:commit", "b:completed", "b:gone"}));
}

TEST_F(Commands, OnlyChangesCommitTheLastOne) {
    struct {
        bool mCanUndo, mCausesChange, mCommits;
    } const rows[] = {
        {false, false, false}, {false, true, true}, {true, false, true}, {true, true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.mCanUndo << row.mCausesChange);
        mHandler->PerformCommand(New("last"));
        Take();
        mHandler->PerformCommand(New("x", row.mCanUndo, row.mCausesChange));
        CallLog expected;
        if (row.mCommits)
            expected = {"last:commit", "last:completed", "last:gone"};
        expected.push_back("x:do");
        expected.push_back("x:notify done");
        if (!row.mCanUndo) {
            expected.push_back("x:completed");
            expected.push_back("x:gone");
        }
        EXPECT_EQ(Take(), expected);
        mHandler->CommitLastCommand();
        Take();
    }
}

TEST_F(Commands, UndoTogglesAndAnUndoneCommandIsDiscarded) {
    mHandler->PerformCommand(New("a"));
    Take();
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "a:undo", "a:notify undone"}));
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "a:redo", "a:notify done"}));
    Undo();
    Take();
    mHandler->CommitLastCommand();
    EXPECT_EQ(Take(), (CallLog{"a:completed", "a:gone"}));
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
    mHandler->CommitLastCommand();
    EXPECT_TRUE(Take().empty());
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101"})) << "nothing to undo: goes on";
}

TEST_F(Commands, UndoOfAnothersCommandPassesOn) {
    LogHandler outer(mLog, "outer", &mApplication);
    mHandler->IEventHandler(&outer);
    mHandler->PerformCommand(New("a", true, true, &outer));
    Take();
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "outer:menu 101"}));
    EXPECT_TRUE(mHandler->GetLastCommand()->IsDone());
    EndHandler();
}

TEST_F(Commands, RedoIsDoItUnlessOverridden) {
    class Plain : public TCommand {
      public:
        void DoIt() override { ++mCount; }
        int mCount = 0;
    } plain;
    plain.RedoIt();
    EXPECT_EQ(plain.mCount, 1);
}

TEST_F(Commands, OneThatIsNotFreedStaysTheLastCommand) {
    LogCommand command(mLog, "a");
    command.mLogsDeath = false;
    command.ICommand(5, mHandler, true, true, nullptr);
    command.SetFreeOnCompletion(false);
    mHandler->PerformCommand(&command);
    Take();
    mHandler->CommitLastCommand();
    mHandler->CommitLastCommand();
    EXPECT_EQ(Take(), (CallLog{"a:commit", "a:completed", "a:commit", "a:completed"}));
    EXPECT_EQ(mHandler->GetLastCommand(), &command);
    mHandler->PerformCommand(New("b"));
    EXPECT_EQ(mLog.back(), "b:notify done");
    EXPECT_NE(mHandler->GetLastCommand(), &command);
}

TEST_F(Commands, ACommandFreedWhileItIsTheLastOneIsForgotten) {
    {
        LogCommand command(mLog, "a");
        command.ICommand(5, mHandler, true, true, nullptr);
        command.SetFreeOnCompletion(false);
        mHandler->PerformCommand(&command);
    }
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
}

TEST_F(Commands, PerformingTheLastCommandAgainCommitsItAndKeepsIt) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    Take();
    mHandler->PerformCommand(a);
    EXPECT_EQ(Take(), (CallLog{"a:commit", "a:do", "a:notify done"}));
    EXPECT_EQ(mHandler->GetLastCommand(), a);
}

TEST_F(Commands, ChangesThatCommit) {
    TObject stranger;
    struct {
        int mChange;
        TObject* mFrom;
        bool mCommits;
    } const rows[] = {
        {28, mHandler, true}, {28, &stranger, false}, {30, &stranger, true}, {29, mHandler, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mChange);
        LogCommand* const command = New("a");
        mHandler->PerformCommand(command);
        command->DoUpdate(row.mChange, row.mFrom, nullptr, nullptr);
        EXPECT_EQ(mHandler->GetLastCommand() == nullptr, row.mCommits);
        mHandler->CommitLastCommand();
    }
    // Through the dependency that performing sets up.
    mHandler->PerformCommand(New("a"));
    mHandler->Changed(kChange_ContextGoesAway, nullptr);
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
}

class Listener : public TObject {
  public:
    void DoUpdate(int change, TObject*, TObject*, TDependencySpace*) override {
        mChanges.push_back(change);
    }
    std::vector<int> mChanges;
};

TEST_F(Commands, NotificationSaysDoneOrUndone) {
    TObject document, other;
    Listener listener;
    document.AddDependent(&listener);
    other.AddDependent(&listener);
    auto* const command = New("a");
    command->ICommand(77, mHandler, true, true, &document);
    mHandler->PerformCommand(command);
    Undo();
    Undo();
    EXPECT_EQ(listener.mChanges, (std::vector<int>{77, 101, 77}));
    listener.mChanges.clear();
    command->AddObjectToNotify(&other);
    command->SetCausesChange(false);
    Undo();
    EXPECT_TRUE(listener.mChanges.empty()) << "causes no change";
    command->SetCausesChange(true);
    Undo();
    EXPECT_EQ(listener.mChanges, (std::vector<int>{77, 77}));
    document.RemoveAllDependencies();
    other.RemoveAllDependencies();
}

TEST_F(Commands, NamesComeFromTheFirstThatHasOne) {
    TCommand command;
    std::string name;
    const auto nameOf = [&](std::int32_t number) {
        command.ICommand(number, mHandler, true, true, nullptr);
        EXPECT_TRUE(command.GetCommandName(&name));
        return name;
    };
    class Named : public DAW_Command {
      public:
        Named() : DAW_Command(900, "Na&med", "named") {}
    } named;
    DAW_CommandRegistry::RegisterCommand(&named);
    EXPECT_EQ(nameOf(901), "TCommand");
    EXPECT_EQ(nameOf(900), "Named");
    const auto item = TMenuItem::NewCommand(900, "&Item && more");
    EXPECT_EQ(nameOf(900), "Item  more");
    command.SetCommandName("O&wn");
    EXPECT_EQ(nameOf(900), "Own");
    command.SetCommandName("");
    const auto none = TMenuItem::NewCommand(-1, "never asked");
    EXPECT_EQ(nameOf(-1), "TCommand");
    EXPECT_EQ(nameOf(0), "TCommand");
    EXPECT_FALSE(command.GetCommandName(nullptr));
    DAW_CommandRegistry::RemoveRegisteredCommand(&named);
}

TEST_F(Commands, DefaultsAndPlainFields) {
    TCommand command;
    EXPECT_TRUE(command.IsCommand());
    EXPECT_FALSE(command.IsDone());
    command.ICommand(5, nullptr, false, true, nullptr);
    EXPECT_EQ(command.GetContext(), gApplication);
    EXPECT_EQ(command.GetHandler(), gApplication);
    EXPECT_EQ(command.GetChangeID(), 5);
    command.DetermineCommandSize();
    EXPECT_EQ(command.GetCommandSize(), 160);
    EXPECT_GT(command.GetCreationTime(), 1'600'000'000);
    std::string text = "kept";
    EXPECT_FALSE(command.GetCanNotBeUndoReason(&text));
    EXPECT_TRUE(text.empty());
    EXPECT_FALSE(command.GetCommandDetails(&text));
    TUndoRedoCommand undo;
    undo.IUndoRedoCommand(kCommand_Undo, mHandler);
    EXPECT_FALSE(undo.CanBeUndone());
    EXPECT_FALSE(undo.WillCauseChange());
    undo.DoIt(); // no last command
}

TEST_F(Commands, UndoMenuIsNamedAfterTheCommand) {
    TMenu menu;
    menu.AppendItem(TMenuItem::NewCommand(kCommand_Undo, "Undo"));
    const auto setUp = [&] {
        TMenuManager::SetupMenus(mHandler);
        return menu.GetItem(0)->GetText();
    };
    setUp();
    EXPECT_FALSE(TCommandManager::CommandEnabled(kCommand_Undo));
    LogCommand* const command = New("Trim");
    mHandler->PerformCommand(command);
    EXPECT_EQ(setUp(), "Undo Trim");
    EXPECT_TRUE(TCommandManager::CommandEnabled(kCommand_Undo));
    Undo();
    EXPECT_EQ(setUp(), "Redo Trim");
    command->SetCanBeUndone(false);
    setUp();
    EXPECT_FALSE(TCommandManager::CommandEnabled(kCommand_Undo));
}

TEST_F(Commands, ClipboardIsGivenUpBeforeTheCommandGoes) {
    class Clip : public TCommand {
      public:
        explicit Clip(CallLog& log) : mLog(log) { SetUsesClipboard(true); }
        void AbandonClipboardView() override { mLog.push_back("abandon"); }
        void AbandonUndoClipboardView() override { mLog.push_back("abandon undo"); }
        void UndoRedoClipboard() override { mLog.push_back("clipboard"); }
        CallLog& mLog;
    };
    auto* const command = new Clip(mLog);
    command->ICommand(5, mHandler, true, true, nullptr);
    mHandler->PerformCommand(command);
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "clipboard"}));
    mHandler->CommitLastCommand();
    EXPECT_EQ(Take(), (CallLog{"abandon", "abandon undo"}));
}

TEST_F(Commands, ActivitiesBracketWhatIsDone) {
    mApplication.mLogsActivities = true;
    mHandler->PerformCommand(New("a"));
    EXPECT_EQ(Take(), (CallLog{"start performing a", "a:do", "a:notify done", "end performing a"}));
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "start performing TUndoRedoCommand", "start undoing a",
                               "a:undo", "end undoing a", "a:notify undone",
                               "end performing TUndoRedoCommand"}));
    Undo();
    EXPECT_EQ(Take()[2], "start redoing a");
    mHandler->CommitLastCommand();
    EXPECT_EQ(Take(), (CallLog{"start committing a", "a:commit", "a:completed", "a:gone",
                               "end committing a"}));
    LogCommand* const quiet = New("quiet", false);
    class Quiet : public LogCommand {
      public:
        using LogCommand::LogCommand;
        bool ShouldTraceCommand() override { return false; }
    };
    auto* const silent = new Quiet(mLog, "silent");
    silent->ICommand(5, mHandler, false, false, nullptr);
    mHandler->PerformCommand(silent);
    EXPECT_EQ(Take()[0], "silent:do");
    quiet->Free();
}

TEST_F(Commands, ValidatorsNest) {
    mApplication.mLogsActivities = true;
    {
        const TApplication::StCommandValidator outer("Cut");
        const TApplication::StCommandValidator inner("Copy");
        EXPECT_EQ(TApplication::StCommandValidator::sValidateCount, 2);
        EXPECT_EQ(TApplication::StCommandValidator::sCmdName, "Cut");
    }
    EXPECT_EQ(Take(), (CallLog{"start performing Cut", "end performing Cut"}));
    {
        const TApplication::StCommandValidator posting("Cut");
        TApplication::StCommandValidator::PostingCommand();
    }
    EXPECT_EQ(Take(), (CallLog{"start performing Cut"}));
    EXPECT_EQ(TApplication::StCommandValidator::sValidateCount, 0);
}

TEST_F(Commands, TraceLines) {
    const CommandTrace trace;
    mHandler->PerformCommand(New("a", false));
    EXPECT_EQ(sTrace,
              (CallLog{"Performing TCommand: a  ",
                       "TCommandHandler::PerformCommand - adding to AliveCommands @ (TCommand)",
                       "TCommand::~TCommand - deleting from AliveCommands @ (TCommand)",
                       "done freeing", "Completed TCommand: a"}));
}

// Bad input

TEST_F(Commands, NullAndMisalignedCommandsAreReportedAndLeftAlone) {
    AssertionCatcher catcher;
    mHandler->PerformCommand(nullptr);
    alignas(8) char bytes[sizeof(TCommand) + 8] = {};
    mHandler->PerformCommand(reinterpret_cast<TCommand*>(bytes + 4));
    TCommandHandler::SetPointerChecker([](const void*, std::size_t) { return false; });
    TCommand fine;
    mHandler->PerformCommand(&fine);
    TCommandHandler::SetPointerChecker(nullptr);
    EXPECT_EQ(
        catcher.TakeTexts(),
        (std::vector<std::string>{"TCommandHandler::PerformCommand - volatileCommand is NULL",
                                  "TCommandHandler::PerformCommand - volatileCommand is bogus",
                                  "TCommandHandler::PerformCommand - volatileCommand is bogus"}));
    EXPECT_FALSE(mHandler->IsProcessingCommand());
}

TEST_F(Commands, ACommandMayDestroyItself) {
    LogCommand* const command = New("a");
    command->mInDoIt = [command] { command->Free(); };
    mHandler->PerformCommand(command);
    EXPECT_EQ(Take(), (CallLog{"a:do", "a:gone"}));
    EXPECT_FALSE(mHandler->IsProcessingCommand());
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
}

TEST_F(Commands, InCommandFlagIsSetInDoItOnly) {
    LogCommand* const outer = New("outer");
    bool inOuter = false, afterInner = false, inInner = false;
    outer->mInDoIt = [&] {
        inOuter = mHandler->IsProcessingCommand();
        LogCommand* const inner = New("inner", false, false);
        inner->mInDoIt = [&] { inInner = mHandler->IsProcessingCommand(); };
        mHandler->PerformCommand(inner);
        afterInner = mHandler->IsProcessingCommand();
    };
    mHandler->PerformCommand(outer);
    EXPECT_TRUE(inOuter && inInner && afterInner);
    EXPECT_FALSE(mHandler->IsProcessingCommand());
}

TEST_F(Commands, AnExceptionInDoItFreesTheCommandAndPassesOn) {
    LogCommand* const command = New("a");
    command->mInDoIt = [] { throw std::runtime_error("disk full"); };
    const CommandTrace trace;
    EXPECT_THROW(mHandler->PerformCommand(command), std::runtime_error);
    EXPECT_EQ(Take(), (CallLog{"a:do", "a:gone"}));
    EXPECT_FALSE(mHandler->IsProcessingCommand());
    EXPECT_EQ(sTrace[2], "TCommandHandler::PerformCommand - EXCEPTION command=@ (TCommand), "
                         "CommandNumber=500, ShouldFreeOnCompletion=YES, fInURMCommand=YES, "
                         "IsLastCommand=NO, x.what()=disk full");
    EXPECT_EQ(sTrace[3],
              "TCommandHandler::PerformCommand - EXCEPTION - deleting command @ (TCommand)");

    LogCommand* const silent = New("b");
    silent->mInDoIt = [] { throw 5; };
    sTrace.clear();
    EXPECT_THROW(mHandler->PerformCommand(silent), int);
    EXPECT_EQ(sTrace[2], "TCommandHandler::PerformCommand - EXCEPTION command=@ (TCommand), "
                         "CommandNumber=500, ShouldFreeOnCompletion=YES, fInURMCommand=YES, "
                         "IsLastCommand=NO");
}

TEST_F(Commands, AnExceptionLeavesWhatIsNotFreedOnCompletion) {
    LogCommand command(mLog, "a");
    command.mLogsDeath = false;
    command.ICommand(5, mHandler, true, true, nullptr);
    command.SetFreeOnCompletion(false);
    command.mInDoIt = [] { throw std::runtime_error("no"); };
    EXPECT_THROW(mHandler->PerformCommand(&command), std::runtime_error);
    EXPECT_FALSE(command.IsDone());
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
}

TEST_F(Commands, ACommandMayFreeItselfAndThrow) {
    LogCommand* const command = New("a");
    command->mInDoIt = [command] {
        command->Free();
        throw std::runtime_error("gone");
    };
    EXPECT_THROW(mHandler->PerformCommand(command), std::runtime_error);
    EXPECT_EQ(Take(), (CallLog{"a:do", "a:gone"}));
}

TEST_F(Commands, AnExceptionInUndoLeavesTheCommandAsItWas) {
    LogCommand* const command = New("a");
    mHandler->PerformCommand(command);
    Take();
    command->mInUndoIt = [] { throw std::runtime_error("no undo"); };
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "a:undo", "exception in a posted event: no undo"}));
    EXPECT_EQ(mHandler->GetLastCommand(), command);
    EXPECT_TRUE(command->IsDone());
    EXPECT_EQ(TCommandHandler::CountAliveCommands(), 1u) << "the undo command is gone";
}

TEST_F(Commands, AnExceptionInCommitLetsTheOldAndTheNewCommandGo) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    a->mInCommit = [] { throw std::runtime_error("no commit"); };
    Take();
    mApplication.mLogsActivities = true;
    EXPECT_THROW(mHandler->PerformCommand(New("b")), std::runtime_error);
    EXPECT_EQ(Take(), (CallLog{"start performing b", "start committing a", "a:commit", "a:gone",
                               "end committing a", "end performing b", "b:gone"}));
    mApplication.mLogsActivities = false;
    mHandler->PerformCommand(New("c"));
    EXPECT_EQ(Take(), (CallLog{"c:do", "c:notify done"})) << "nothing is blocked";
}

TEST_F(Commands, AnExceptionInCommitDoesNotKeepAHandlerFromGoing) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    a->mInCommit = [] { throw std::runtime_error("no commit"); };
    mHandler->mLogsDeath = true;
    Take();
    const CommandTrace trace;
    EndHandler();
    EXPECT_EQ(Take(), (CallLog{"a:commit", "a:gone", "h:gone"}));
}

TEST_F(Commands, PerformingAnotherFromDoItEndsThatOneWhenTheOuterIsKept) {
    LogCommand* const outer = New("outer");
    outer->mInDoIt = [&] { mHandler->PerformCommand(New("inner")); };
    mHandler->PerformCommand(outer);
    EXPECT_EQ(Take(), (CallLog{"outer:do", "inner:do", "inner:notify done", "outer:notify done",
                               "inner:commit", "inner:completed", "inner:gone"}));
    EXPECT_EQ(mHandler->GetLastCommand(), outer);
}

TEST_F(Commands, PerformingAnotherFromCommitDoesNotCommitTwice) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    a->mInCommit = [&] { mHandler->PerformCommand(New("nested")); };
    Take();
    mHandler->CommitLastCommand();
    EXPECT_EQ(Take(),
              (CallLog{"a:commit", "nested:do", "nested:notify done", "a:completed", "a:gone"}));
    ASSERT_NE(mHandler->GetLastCommand(), nullptr);
    EXPECT_NE(mHandler->GetLastCommand(), a);
}

// It took the place of the command that was committed, and was lost when the next one took it.
TEST_F(Commands, OneThatTheCommitBeforePerformedIsEndedToo) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    a->mInCommit = [&] { mHandler->PerformCommand(New("nested")); };
    Take();
    mHandler->PerformCommand(New("b"));
    EXPECT_EQ(Take(), (CallLog{"a:commit", "nested:do", "nested:notify done", "a:completed",
                               "a:gone", "b:do", "b:notify done", "nested:commit",
                               "nested:completed", "nested:gone"}));
}

TEST_F(Commands, PerformingAnotherFromUndoItEndsTheUndoneCommand) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    a->mInUndoIt = [&] { mHandler->PerformCommand(New("nested")); };
    Take();
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "a:undo", "nested:do", "nested:notify done",
                               "a:notify undone", "a:completed", "a:gone"}));
}

TEST_F(Commands, ACommandMayFreeItsHandler) {
    for (const bool canUndo : {true, false}) {
        auto* const window = new LogHandler(mLog, "window", &mApplication);
        window->mLogsDeath = true;
        window->PerformCommand(New("before", true, true, window));
        LogCommand* const close = New("close", canUndo, true, window);
        close->mInDoIt = [window] { window->Free(); };
        Take();
        window->PerformCommand(close);
        EXPECT_EQ(Take(), (CallLog{"before:commit", "before:completed", "before:gone", "close:do",
                                   "window:gone", "close:completed", "close:gone"}));
    }
}

TEST_F(Commands, ACommitMayFreeItsHandler) {
    auto* const window = new LogHandler(mLog, "window", &mApplication);
    window->mLogsDeath = true;
    LogCommand* const a = New("a", true, true, window);
    a->mInCommit = [window] { window->Free(); };
    window->PerformCommand(a);
    Take();
    window->CommitLastCommand();
    EXPECT_EQ(Take(), (CallLog{"a:commit", "window:gone", "a:completed", "a:gone"}));

    auto* const second = new LogHandler(mLog, "second", &mApplication);
    LogCommand* const b = New("b", true, true, second);
    b->mInCommit = [second] { second->Free(); };
    second->PerformCommand(b);
    Take();
    second->PerformCommand(New("c", true, true, second));
    EXPECT_EQ(Take(), (CallLog{"b:commit", "b:completed", "b:gone", "c:completed", "c:gone"}))
        << "nobody is left to do it";
}

TEST_F(Commands, ACopyOfAHandlerHasNoLastCommand) {
    TCommandHandler original;
    LogCommand* const a = New("a", true, true, &original);
    original.PerformCommand(a);
    auto* const copy = static_cast<TCommandHandler*>(original.Clone());
    EXPECT_EQ(copy->GetLastCommand(), nullptr);
    EXPECT_EQ(original.GetLastCommand(), a);
    copy->Free();
    EXPECT_EQ(original.GetLastCommand(), a);
}

TEST_F(Commands, ACopyOfACommandHasItsOwnName) {
    TCommand original;
    original.SetCommandName("a name that is too long for the string itself");
    auto* const copy = static_cast<TCommand*>(original.Clone());
    original.SetCommandName("changed to something else that is just as long");
    std::string name;
    copy->GetCommandName(&name);
    EXPECT_EQ(name, "a name that is too long for the string itself");
    copy->Free();
}

TEST_F(Commands, CommandsOfAContextThatIsGoneDoNothing) {
    auto* const context = new LogHandler(mLog, "context", &mApplication);
    LogCommand* const a = New("a", true, true, context);
    mHandler->PerformCommand(a); // kept by h, about context
    context->Free();
    EXPECT_EQ(a->GetContext(), nullptr);
    a->Process();
    Undo();
    mHandler->CommitLastCommand();
}

// Behind the second round nothing but the commands themselves is allocated, however long their
// names and whether or not somebody reads what the application is doing; the memory of those that
// undo and redo is used again.
TEST_F(Commands, PerformingAllocatesTheCommandsAndNothingElse) {
    if (!AllocationCounter::CountsTheLibrary())
        GTEST_SKIP() << "the library's allocations are not counted here";
    struct Plain : TCommand {
        bool GetCommandName(std::string* name) override {
            *name = "a name that does not fit into a string itself";
            return true;
        }
    };
    struct Reader : TApplication {
        std::size_t mRead = 0;
        bool mReads = false;
        void ActivityStarted(const CActivity& activity) override {
            mRead += mReads ? activity.GetText().size() : 0;
        }
        void ActivityEnded(const CActivity& activity) override {
            mRead += mReads ? activity.GetText().size() : 0;
        }
    } application;
    TCommandHandler handler;
    handler.IEventHandler(&application);
#if defined(__SANITIZE_ADDRESS__)
    constexpr std::size_t kUndoneAndRedone = 3; // so that every use of freed memory is seen
#else
    constexpr std::size_t kUndoneAndRedone = 1;
#endif
    struct Row {
        const char* mWhy;
        bool mReads, mCanUndo, mUndoes;
        std::size_t mAllocations;
    } const rows[] = {
        {"performed and freed", false, false, false, 1},
        {"kept, the one before it committed", false, true, false, 1},
        {"undone and redone", false, true, true, kUndoneAndRedone},
        {"all of it with a reader", true, true, true, kUndoneAndRedone},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mWhy);
        application.mReads = row.mReads;
        application.mRead = 0;
        const auto round = [&] {
            auto* const command = new Plain;
            command->ICommand(500, &handler, row.mCanUndo, true, nullptr);
            handler.PerformCommand(command);
            for (int i = 0; row.mUndoes && i < 2; ++i) {
                handler.HandleMenuCommand(kCommand_Undo);
                application.ProcessPosted();
            }
        };
        round();
        round();
        const AllocationCounter counter;
        round();
        EXPECT_EQ(counter.GetCount(), row.mAllocations);
        EXPECT_EQ(application.mRead != 0, row.mReads);
    }
    handler.CommitLastCommand();
}

// Both hooks read the name as it was when the activity began.
TEST_F(Commands, ANameThatChangesMeanwhileDoesNotChangeTheActivity) {
    mApplication.mLogsActivities = true;
    LogCommand* const command = New("before");
    command->mInDoIt = [&] { command->SetCommandName("after"); };
    command->mInUndoIt = [&] { command->SetCommandName("undone"); };
    mHandler->PerformCommand(command);
    EXPECT_EQ(Take(), (CallLog{"start performing before", "before:do", "before:notify done",
                               "end performing before"}));
    Undo();
    EXPECT_EQ(Take(), (CallLog{"h:menu 101", "start performing TUndoRedoCommand",
                               "start undoing after", "before:undo", "end undoing after",
                               "before:notify undone", "end performing TUndoRedoCommand"}));
    mApplication.mLogsActivities = false;
}

TEST_F(Commands, ACommandThatItsPredecessorsCommitFreesIsNotTouched) {
    LogCommand* const a = New("a");
    mHandler->PerformCommand(a);
    LogCommand* const b = New("b");
    a->mInCommit = [b] { b->Free(); };
    Take();
    mHandler->PerformCommand(b);
    EXPECT_EQ(Take(), (CallLog{"a:commit", "b:gone", "a:completed", "a:gone"}));
    EXPECT_EQ(mHandler->GetLastCommand(), nullptr);
}

// Commands come and go in any order, at addresses that are used again.
TEST_F(Commands, TheLiveCommandsAreThoseThatWerePerformedAndNotFreed) {
    std::mt19937 random(20250107);
    std::vector<LogCommand*> kept;
    std::vector<LogCommand*> fresh;
    for (int step = 0; step < 500; ++step) {
        if (fresh.empty() || random() % 3 == 0) {
            fresh.push_back(New("x", false, false));
            fresh.back()->SetFreeOnCompletion(false);
        }
        auto& from = random() % 2 == 0 || kept.empty() ? fresh : kept;
        const std::size_t at = random() % from.size();
        LogCommand* const command = from[at];
        if (random() % 2 == 0) {
            mHandler->PerformCommand(command);
            if (&from == &fresh) {
                kept.push_back(command);
                fresh.erase(fresh.begin() + static_cast<std::ptrdiff_t>(at));
            }
        } else {
            from.erase(from.begin() + static_cast<std::ptrdiff_t>(at));
            command->Free();
            ASSERT_FALSE(TCommandHandler::IsAlive(command)) << "step " << step;
        }
        ASSERT_EQ(TCommandHandler::CountAliveCommands(), kept.size()) << "step " << step;
    }
    for (LogCommand* const command : kept)
        EXPECT_TRUE(TCommandHandler::IsAlive(command));
    for (LogCommand* const command : fresh)
        EXPECT_FALSE(TCommandHandler::IsAlive(command));
    kept.insert(kept.end(), fresh.begin(), fresh.end());
    for (LogCommand* const command : kept)
        command->Free();
}

} // namespace

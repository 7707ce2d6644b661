// Commands make their names, and the application is told of activities, only when somebody looks.
// Everything else is the same whether or not anybody does.
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "basekit/cmn/cmn_trace.h"
#include "tests/support/handlers.h"

namespace {

/// Nobody takes over the activity hooks here, so nobody looks.
class QuietApplication : public TApplication {
  public:
    explicit QuietApplication(CallLog& log) : mLog(log) {}
    void ReportException(const char* where, std::exception_ptr exception) override {
        try {
            std::rethrow_exception(exception);
        } catch (const std::exception& x) {
            mLog.push_back(std::string("exception in ") + where + ": " + x.what());
        }
    }

  private:
    CallLog& mLog;
};

/// Commands that do all that commands do to those who perform them, in any order.
template <class Application>
class RandomSession {
  public:
    explicit RandomSession(unsigned seed) : mRandom(seed) {}

    CallLog Run() {
        for (int step = 0; step < 30; ++step) {
            try {
                TakeStep();
            } catch (const std::exception& x) {
                mLog.push_back(std::string("threw ") + x.what());
            }
            mLog.push_back(mHandler->GetLastCommand() ? "one is kept" : "none is kept");
        }
        mHandler->Free();
        return mLog;
    }

  private:
    void TakeStep() {
        switch (mRandom() % 8) {
        case 0:
        case 1:
            mHandler->HandleMenuCommand(kCommand_Undo);
            mApplication.ProcessPosted();
            break;
        case 2:
            mHandler->CommitLastCommand();
            break;
        case 3:
            mHandler->PostCommand(New(0));
            mHandler->PostCommand(New(0));
            mApplication.ProcessPosted();
            break;
        default:
            mHandler->PerformCommand(New(0));
        }
    }

    LogCommand* New(int depth) {
        auto* const command = new LogCommand(mLog, std::to_string(++mCount));
        command->ICommand(500, mHandler, mRandom() % 3 != 0, mRandom() % 2 == 0, nullptr);
        command->SetUsesClipboard(mRandom() % 4 == 0);
        command->mInDoIt = Deed(command, depth);
        command->mInUndoIt = Deed(command, depth);
        command->mInCommit = Deed(command, depth);
        if (depth == 0 && mRandom() % 6 == 0)
            command->mInDoIt = [command] { command->Free(); };
        return command;
    }

    std::function<void()> Deed(LogCommand* command, int depth) {
        const unsigned kind = mRandom() % 12;
        if (kind == 0)
            return [] { throw std::runtime_error("disk full"); };
        if (kind == 1 && depth == 0)
            return [this] { mHandler->PerformCommand(New(1)); };
        if (kind == 2)
            return [command] { command->SetCommandName("renamed"); };
        if (kind == 3)
            return [this] { mHandler->CommitLastCommand(); };
        return nullptr;
    }

    std::mt19937 mRandom;
    CallLog mLog;
    Application mApplication{mLog};
    TCommandHandler* mHandler = [this] {
        auto* const handler = new TCommandHandler;
        handler->IEventHandler(&mApplication);
        return handler;
    }();
    int mCount = 0;
};

TEST(UnseenCommands, GoTheSameWayAsThoseThatSomebodyWatches) {
    // Handlers trace what goes wrong while they go.
    const Cmn_TraceSink previous = Cmn_SetTraceSink([](const char*) {});
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const CallLog unseen = RandomSession<QuietApplication>(seed).Run();
        const CallLog seen = RandomSession<LogApplication>(seed).Run();
        EXPECT_EQ(unseen, seen) << "seed " << seed;
        EXPECT_EQ(TCommandHandler::CountAliveCommands(), 0u) << "seed " << seed;
        if (HasFailure())
            break;
    }
    Cmn_SetTraceSink(previous);
}

// Whether somebody looks is asked of the application that is there at the time.
TEST(UnseenCommands, AreSeenAsSoonAsAnApplicationLooks) {
    CallLog log;
    const QuietApplication quiet(log);
    const auto perform = [] {
        TCommandHandler handler;
        auto* const command = new TCommand;
        command->ICommand(500, &handler, false, false, nullptr);
        command->SetCommandName("Cut");
        handler.PerformCommand(command);
    };
    perform();
    EXPECT_EQ(log, CallLog{});
    {
        LogApplication watching(log);
        watching.mLogsActivities = true;
        perform();
        EXPECT_EQ(log, (CallLog{"start performing Cut", "end performing Cut"}));
    }
    perform();
    EXPECT_EQ(log.size(), 2u);
}

// A class that says more of its commands is asked, whoever looks.
TEST(UnseenCommands, WhatASubclassTakesOverIsCalledAllTheSame) {
    struct Teller : TCommand {
        CallLog& mLog;
        explicit Teller(CallLog& log) : mLog(log) {}
        bool GetCommandName(std::string* name) override {
            mLog.emplace_back("name");
            return TCommand::GetCommandName(name);
        }
        void GetCommandTracingDetails(std::string* details) override {
            mLog.emplace_back("details");
            TCommand::GetCommandTracingDetails(details);
        }
        bool ShouldValidateCommand() override {
            mLog.emplace_back("validate");
            return true;
        }
    };
    CallLog log;
    QuietApplication application(log);
    TCommandHandler handler;
    handler.IEventHandler(&application);
    auto* const command = new Teller(log);
    command->ICommand(500, &handler, true, true, nullptr);
    handler.PerformCommand(command);
    EXPECT_EQ(log, (CallLog{"name", "details", "validate"}));
    log.clear();
    handler.HandleMenuCommand(kCommand_Undo);
    application.ProcessPosted();
    EXPECT_EQ(log, CallLog{"name"});
    handler.CommitLastCommand();
    EXPECT_EQ(log, (CallLog{"name", "name"}));
}

// The hooks are the host's code and may end what they are told of.
TEST(UnseenCommands, AHookMayEndTheCommandThatItIsToldOf) {
    struct Ending : TApplication {
        TCommand* mVictim = nullptr;
        void ActivityStarted(const CActivity&) override {
            if (TCommand* const victim = std::exchange(mVictim, nullptr))
                victim->Free();
        }
    } application;
    CallLog log;
    TCommandHandler handler;
    handler.IEventHandler(&application);
    const auto keep = [&] {
        auto* const command = new LogCommand(log, "c");
        command->ICommand(500, &handler, true, true, nullptr);
        handler.PerformCommand(command);
        log.clear();
        return command;
    };
    application.mVictim = keep();
    handler.CommitLastCommand();
    EXPECT_EQ(log, CallLog{"c:gone"});
    EXPECT_EQ(handler.GetLastCommand(), nullptr);

    struct Second : TApplication { // told of the undo command first
        int mTold = 0;
        TCommand* mVictim = nullptr;
        void ActivityStarted(const CActivity&) override {
            if (mVictim && ++mTold == 2)
                std::exchange(mVictim, nullptr)->Free();
        }
    } second;
    handler.IEventHandler(&second);
    second.mVictim = keep();
    handler.HandleMenuCommand(kCommand_Undo);
    second.ProcessPosted();
    EXPECT_EQ(log, CallLog{"c:gone"});
}

} // namespace

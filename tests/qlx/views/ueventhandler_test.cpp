#include "qlx/views/ueventhandler.h"

#include <gtest/gtest.h>

#include <memory>

#include "qlx/foundation/udependencyspace.h"
#include "qlx/views/ueventtrace.h"
#include "qlx/views/ugeometry.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/handlers.h"

namespace {

struct FreeObject {
    void operator()(TObject* object) const { object->Free(); }
};
template <class T>
using Owned = std::unique_ptr<T, FreeObject>;

class Chain : public testing::Test {
  protected:
    CallLog mLog;
    LogHandler mLast{mLog, "last"};
    LogHandler mMiddle{mLog, "middle", &mLast};
    LogHandler mFirst{mLog, "first", &mMiddle};
    TToolboxEvent mEvent;

    LogBehavior* Add(TEventHandler& handler, const std::string& name) {
        auto* const behavior = new LogBehavior(mLog, name);
        handler.AddBehavior(behavior);
        return behavior;
    }
    static CallLog Names(TEventHandler& handler) {
        CallLog names;
        for (TBehavior* b = handler.GetFirstBehavior(); b; b = b->GetNextBehavior())
            names.push_back(std::to_string(b->GetIdentifier()));
        return names;
    }
};

// Each message: how it is sent, and the word it leaves in the log.
struct Message {
    const char* mWord;
    void (*mSend)(TEventHandler& handler, TToolboxEvent* event);
};
const Message kMessages[] = {
    {"event 7", [](TEventHandler& h, TToolboxEvent*) { h.HandleEvent(7, &h, nullptr); }},
    {"key", [](TEventHandler& h, TToolboxEvent* e) { h.HandleKeyCommand(e); }},
    {"commandKey", [](TEventHandler& h, TToolboxEvent* e) { h.HandleCommandKey(e); }},
    {"menu 900", [](TEventHandler& h, TToolboxEvent*) { h.HandleMenuCommand(900); }},
    {"setup", [](TEventHandler& h, TToolboxEvent*) { h.HandleSetupMenus(); }},
};

TEST_F(Chain, MessagesGoThroughBehavioursThenTheHandlerThenOn) {
    for (const Message& message : kMessages) {
        SCOPED_TRACE(message.mWord);
        LogHandler second(mLog, "second");
        LogHandler first(mLog, "first", &second);
        Add(first, "a");
        LogBehavior* const disabled = Add(first, "b");
        Add(first, "c");
        disabled->SetEnabled(false);
        LogBehavior* const last = Add(second, "d");
        mLog.clear();
        message.mSend(first, &mEvent);
        const std::string word = std::string(":") + message.mWord;
        EXPECT_EQ(mLog,
                  (CallLog{"a" + word, "c" + word, "first" + word, "d" + word, "second" + word}));

        // Consuming is not passing on.
        mLog.clear();
        last->mConsumes = true;
        message.mSend(first, &mEvent);
        EXPECT_EQ(mLog.back(), "d" + word);
    }
}

// What a key asks on its way is merged into the hops; a subclass that answers otherwise is heard.
TEST_F(Chain, KeysAskEveryQuestionThatASubclassMayAnswer) {
    struct Lender : LogHandler {
        using LogHandler::LogHandler;
        TBehavior* mLent = nullptr;
        TEventHandler* mDetour = nullptr;
        int mAsked = 0;
        TBehavior* GetFirstEnabledBehavior() override {
            ++mAsked;
            return mLent ? mLent : LogHandler::GetFirstEnabledBehavior();
        }
        TEventHandler* GetNextHandler() override {
            return mDetour ? mDetour : LogHandler::GetNextHandler();
        }
    };
    struct Chooser : LogBehavior {
        using LogBehavior::LogBehavior;
        bool mSaysEnabled = true;
        TBehavior* mFollower = nullptr;
        bool IsEnabled() override { return mSaysEnabled; }
        TBehavior* GetNextEnabledBehavior() override {
            return mFollower ? mFollower : LogBehavior::GetNextEnabledBehavior();
        }
    };
    struct Row {
        const char* mWhy;
        bool mLends, mDetours, mSaysEnabled, mFollows;
        CallLog mExpected;
    };
    const Row rows[] = {
        {"nothing special", false, false, true, false, {"own:key", "h:key", "end:key"}},
        {"a behaviour from elsewhere", true, false, true, false, {"lent:key"}},
        {"a next handler from elsewhere",
         false,
         true,
         true,
         false,
         {"own:key", "h:key", "detour:key"}},
        {"disabled by its own word", false, false, false, false, {"h:key", "end:key"}},
        {"a follower from elsewhere", false, false, true, true, {"own:key", "other:key"}},
    };
    for (const bool isTraced : {false, true}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << row.mWhy << (isTraced ? ", traced" : ""));
            mLog.clear();
            LogHandler end(mLog, "end"), detour(mLog, "detour");
            LogBehavior lent(mLog, "lent"), other(mLog, "other");
            Lender handler(mLog, "h", &end);
            auto* const own = new Chooser(mLog, "own");
            own->mSaysEnabled = row.mSaysEnabled;
            own->mFollower = row.mFollows ? &other : nullptr;
            handler.AddBehavior(own);
            handler.mLent = row.mLends ? &lent : nullptr;
            handler.mDetour = row.mDetours ? &detour : nullptr;
            // Through a plain handler, as its Do is where the hops are merged.
            TEventHandler before;
            before.IEventHandler(&handler);
            QLX_EventTraceLog sink;
            QLX_EventTrace::Start(isTraced ? &sink : nullptr);
            before.HandleKeyCommand(&mEvent);
            QLX_EventTrace::Stop();
            EXPECT_EQ(mLog, row.mExpected);
            EXPECT_EQ(handler.mAsked, 1);
        }
    }
    // The same without a behaviour of its own.
    mLog.clear();
    LogBehavior lent(mLog, "lent");
    Lender handler(mLog, "h");
    TEventHandler before;
    before.IEventHandler(&handler);
    handler.mLent = &lent;
    before.HandleKeyCommand(&mEvent);
    handler.mLent = nullptr;
    before.HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"lent:key", "h:key"}));
    EXPECT_EQ(handler.mAsked, 2);
}

TEST_F(Chain, KeyUpGoesToTheFirstHandlerThatOverridesIt) {
    KeyUpHandler end(mLog, "end");
    KeyUpHandler overriding(mLog, "overriding", &end);
    LogHandler plain(mLog, "plain", &overriding);
    overriding.mConsumes = true;
    plain.HandleKeyUp(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"overriding:keyUp"}));

    mLog.clear();
    overriding.mConsumes = false; // passes on by hand
    LogBehavior* const behavior = Add(plain, "b");
    plain.HandleKeyUp(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"b:keyUp", "overriding:keyUp", "end:keyUp"}));

    mLog.clear();
    behavior->mConsumes = true;
    plain.HandleKeyUp(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"b:keyUp"}));
}

TEST_F(Chain, UnhandledKeysAreNotedAtTheEnd) {
    TApplication::sMacAppKeyDownHandled = true;
    mMiddle.mConsumes = true;
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_TRUE(TApplication::sMacAppKeyDownHandled);
    mMiddle.mConsumes = false;
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_FALSE(TApplication::sMacAppKeyDownHandled);
    TApplication::sMacAppKeyDownHandled = true;
    mFirst.HandleCommandKey(&mEvent);
    EXPECT_FALSE(TApplication::sMacAppKeyDownHandled);
    TApplication::sMacAppKeyDownHandled = true;
}

TEST_F(Chain, UpdatesGoAlongTheBehavioursOnly) {
    Add(mFirst, "a");
    Add(mFirst, "b");
    Add(mMiddle, "c");
    mFirst.DoUpdate(5, &mLast, nullptr, nullptr);
    EXPECT_EQ(mLog, (CallLog{"a:update 5", "b:update 5"}));
}

TEST_F(Chain, BehavioursAnswerForViewsUntilOneConsumes) {
    LogBehavior* const a = Add(mFirst, "a");
    LogBehavior* const b = Add(mFirst, "b");
    EXPECT_FALSE(a->DoToolboxEvent(&mEvent));
    b->mConsumes = true;
    EXPECT_TRUE(a->DoToolboxEvent(&mEvent));
    EXPECT_EQ(mLog, (CallLog{"a:toolbox", "b:toolbox", "a:toolbox", "b:toolbox"}));
    TBehavior alone;
    EXPECT_FALSE(alone.DoMouseCommand(VPoint(), &mEvent));
    EXPECT_FALSE(alone.DoMouseUp(VPoint(), &mEvent));
    EXPECT_FALSE(alone.DoMouseWheel(VPoint(), &mEvent));
    EXPECT_FALSE(alone.DoSetCursor(VPoint()));
}

TEST_F(Chain, AMessagePassesWithoutAllocating) {
    std::vector<std::unique_ptr<TEventHandler>> handlers;
    TEventHandler* next = nullptr;
    for (int i = 0; i < 32; ++i) {
        handlers.push_back(std::make_unique<TEventHandler>());
        handlers.back()->IEventHandler(next);
        handlers.back()->AddBehavior(new TBehavior);
        next = handlers.back().get();
    }
    MakeKey(mEvent, 'x');
    TApplication application;
    application.SetTarget(next);
    const AllocationCounter counter;
    application.HandleKeyDownEvent(&mEvent);
    application.HandleKeyUpEvent(&mEvent);
    next->HandleMenuCommand(5);
    next->HandleEvent(5, next, nullptr);
    next->HandleSetupMenus();
    EXPECT_EQ(counter.GetCount(), 0u);
}

TEST_F(Chain, AddingAndRemovingHandlers) {
    TEventHandler a, b, c, stranger;
    EXPECT_EQ(a.AddHandler(&b), &a);
    a.AddHandler(&c);
    EXPECT_EQ(b.GetNextHandler(), &c);
    a.AddHandler(&c);      // in it already
    a.AddHandler(&a);      // would close a ring
    a.AddHandler(nullptr); // nobody
    EXPECT_EQ(c.GetNextHandler(), nullptr);

    EXPECT_EQ(stranger.RemoveHandler(&a), &a);
    EXPECT_EQ(b.RemoveHandler(&a), &a);
    EXPECT_EQ(a.GetNextHandler(), &c);
    EXPECT_EQ(b.GetNextHandler(), nullptr);
    EXPECT_EQ(a.RemoveHandler(&a), &c);
    EXPECT_EQ(a.GetNextHandler(), nullptr);
    EXPECT_EQ(c.RemoveHandler(&c), nullptr);
    EXPECT_EQ(c.RemoveHandler(nullptr), nullptr);
}

TEST_F(Chain, KeysAreDecodedAtTheEndOfTheChain) {
    struct {
        std::uint32_t mKind;
        bool mDecodes;
    } const rows[] = {{kQLX_EventKind_KeyDown, true},
                      {kQLX_EventKind_AutoKey, true},
                      {kQLX_EventKind_KeyUp, true},
                      {kQLX_EventKind_MouseDown, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mKind);
        MakeKey(mEvent, 'q', 0, row.mKind);
        mFirst.KeyEventToComponents(&mEvent);
        EXPECT_EQ(mEvent.mCharacterCode, row.mDecodes ? 'q' : 0u);
        EXPECT_EQ(mEvent.mKeyCode, row.mDecodes ? 'q' : 0u);
    }
    // Without the properties the fields stay as they are.
    mEvent.IToolboxEvent(nullptr, QLX_EventRef::New({2, kQLX_EventKind_KeyDown}));
    mEvent.mKeyCode = 5;
    mFirst.KeyEventToComponents(&mEvent);
    EXPECT_EQ(mEvent.mKeyCode, 5u);
}

TEST_F(Chain, MultiClickAllowsFourPixelsOnEitherAxis) {
    struct {
        _CPoint mFirst, mSecond;
        bool mIsMultiClick;
    } const rows[] = {{{10, 10}, {14, 14}, true},
                      {{10, 10}, {6, 6}, true},
                      {{10, 10}, {15, 10}, false},
                      {{10, 10}, {10, 5}, false},
                      {{-32768, 0}, {32767, 0}, false}};
    for (const auto& row : rows)
        EXPECT_EQ(mFirst.DoMultiClick(row.mFirst, row.mSecond), row.mIsMultiClick)
            << row.mSecond.v << " " << row.mSecond.h;
}

// Behaviour lists

TEST_F(Chain, BehaviourListKeepsItsLinks) {
    TEventHandler handler;
    auto* const a = new TBehavior;
    auto* const b = new TBehavior;
    auto* const c = new TBehavior;
    auto* const d = new TBehavior;
    a->IBehavior(1);
    b->IBehavior(2);
    c->IBehavior(3);
    d->IBehavior(4);
    handler.AddBehavior(nullptr);
    handler.AddBehavior(b);
    b->InsertBefore(a, b); // becomes the handler's first
    EXPECT_EQ(handler.GetFirstBehavior(), a);
    a->InsertAfter(d, b);
    a->InsertBefore(c, d);
    EXPECT_EQ(Names(handler), (CallLog{"1", "2", "3", "4"}));
    for (TBehavior* behavior : {a, b, c, d})
        EXPECT_EQ(behavior->GetOwner(), &handler);
    EXPECT_EQ(d->GetPreviousBehavior(), c);
    EXPECT_EQ(a->GetPreviousBehavior(), nullptr);
    EXPECT_EQ(handler.GetBehaviorWithIdentifier(3), c);
    EXPECT_EQ(handler.GetBehaviorWithIdentifier(9), nullptr);

    TBehavior stranger;
    a->InsertBefore(nullptr, b);
    a->InsertAfter(nullptr, b);
    a->InsertAfter(&stranger, nullptr);
    a->InsertAfter(&stranger, &stranger);
    b->InsertBefore(&stranger, a); // a stands before the receiver
    a->AppendBehavior(nullptr);
    a->AppendBehavior(c); // is there already
    handler.RemoveBehavior(&stranger);
    handler.RemoveBehavior(nullptr);
    EXPECT_EQ(Names(handler), (CallLog{"1", "2", "3", "4"}));

    handler.RemoveBehavior(a);
    EXPECT_EQ(handler.GetFirstBehavior(), b);
    EXPECT_EQ(b->GetPreviousBehavior(), nullptr);
    EXPECT_EQ(a->GetNextBehavior(), nullptr);
    EXPECT_EQ(a->GetOwner(), nullptr);
    handler.RemoveBehavior(c);
    EXPECT_EQ(Names(handler), (CallLog{"2", "4"}));
    EXPECT_EQ(d->GetPreviousBehavior(), b);
    a->Free();
    c->Free();
}

TEST_F(Chain, ABehaviourHasOneOwner) {
    TEventHandler one, two;
    auto* const moving = new TBehavior;
    auto* const staying = new TBehavior;
    one.AddBehavior(moving);
    one.AddBehavior(staying);
    two.AddBehavior(moving);
    EXPECT_EQ(one.GetFirstBehavior(), staying);
    EXPECT_EQ(two.GetFirstBehavior(), moving);
    EXPECT_EQ(moving->GetNextBehavior(), nullptr);
    EXPECT_EQ(moving->GetOwner(), &two);
    two.AddBehavior(moving); // again
    EXPECT_EQ(two.GetFirstBehavior(), moving);
    EXPECT_EQ(moving->GetNextBehavior(), nullptr);
}

TEST_F(Chain, FreeingABehaviourFreesThoseAfterIt) {
    LogBehavior* const a = Add(mFirst, "a");
    LogBehavior* const b = Add(mFirst, "b");
    LogBehavior* const c = Add(mFirst, "c");
    for (LogBehavior* behavior : {a, b, c})
        behavior->mLogsDeath = true;
    b->Free();
    EXPECT_EQ(mLog, (CallLog{"c:gone", "b:gone"}));
    EXPECT_EQ(a->GetNextBehavior(), nullptr);
    mLog.clear();
    a->Free(); // still in its handler's list
    EXPECT_EQ(mFirst.GetFirstBehavior(), nullptr);
}

TEST_F(Chain, SelectingReachesEveryBehaviour) {
    LogBehavior* const a = Add(mFirst, "a");
    Add(mFirst, "b");
    LogBehavior* const c = Add(mFirst, "c");
    a->SetEnabled(false);
    a->mThen = [&] { mFirst.RemoveBehavior(a); };
    mFirst.SelectOwner(true);
    EXPECT_EQ(mLog, (CallLog{"a:select", "b:select", "c:select"}));
    EXPECT_TRUE(c->IsOwnerSelected());
    a->Free();
}

// What may happen while a message is on its way

TEST_F(Chain, AHandlerRemovedWhileItHasTheMessageEndsTheRoad) {
    TApplication::sMacAppKeyDownHandled = true;
    mMiddle.mThen = [&] { mMiddle.RemoveHandler(&mFirst); };
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"first:key", "middle:key"}));
    EXPECT_FALSE(TApplication::sMacAppKeyDownHandled);
    EXPECT_EQ(mFirst.GetNextHandler(), &mLast);
    TApplication::sMacAppKeyDownHandled = true;
}

TEST_F(Chain, AHandlerFreedByTheNextOneIsNotTouchedAgain) {
    auto* const first = new LogHandler(mLog, "first", &mMiddle);
    Add(*first, "b");
    first->mLogsDeath = true;
    mMiddle.mThen = [&] {
        first->RemoveHandler(first);
        first->Free();
    };
    first->HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"b:key", "first:key", "middle:key", "first:gone", "last:key"}));
}

TEST_F(Chain, ABehaviourRemovedWhileItRunsDropsWhatItPassesOn) {
    LogBehavior* const a = Add(mFirst, "a");
    Add(mFirst, "b");
    a->mThen = [&] { mFirst.RemoveBehavior(a); };
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"a:key"}));
    mLog.clear();
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog.front(), "b:key");
    a->Free();
}

TEST_F(Chain, ABehaviourThatFreesTheOthersGoesOnToTheHandler) {
    LogBehavior* const a = Add(mFirst, "a");
    LogBehavior* const b = Add(mFirst, "b");
    Add(mFirst, "c");
    a->mThen = [&] { b->Free(); };
    mFirst.HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"a:key", "first:key", "middle:key", "last:key"}));
    EXPECT_EQ(a->GetNextBehavior(), nullptr);
}

TEST_F(Chain, ABehaviourMayFreeItsOwnerAndThenConsume) {
    auto* const handler = new LogHandler(mLog, "h", &mLast);
    handler->mLogsDeath = true;
    LogBehavior* const a = Add(*handler, "a");
    a->mConsumes = true;
    a->mThen = [&] { handler->Free(); };
    handler->HandleKeyCommand(&mEvent);
    EXPECT_EQ(mLog, (CallLog{"a:key", "h:gone"}));
}

// Idle time

TEST_F(Chain, NextIdleIsTheEarliestWish) {
    const TestClock clock(1000);
    EXPECT_EQ(mFirst.NextIdle(), kNoIdle);
    mFirst.SetIdleFreq(60);
    EXPECT_EQ(mFirst.NextIdle(), 1000) << "never idled: at once";
    mFirst.HandleIdle(kIdlePhase_Continue);
    TestClock::Advance(10);
    EXPECT_EQ(mFirst.NextIdle(), 1070) << "a handler counts from now";
    LogBehavior* const behavior = Add(mFirst, "b");
    behavior->SetIdleFreq(30);
    EXPECT_EQ(mFirst.NextIdle(), 1010);
    mFirst.HandleIdle(kIdlePhase_Continue);
    TestClock::Advance(10);
    EXPECT_EQ(behavior->NextIdle(), 1040) << "a behaviour counts from its last idle";
    EXPECT_EQ(mFirst.NextIdle(), 1040);
    behavior->SetEnabled(false);
    EXPECT_EQ(mFirst.NextIdle(), 1080);
    mFirst.SetEnable(false);
    EXPECT_EQ(mFirst.NextIdle(), kNoIdle);
}

TEST_F(Chain, IdleTimeIsGivenWhenDue) {
    const TestClock clock(1000);
    mFirst.SetIdleFreq(60);
    LogBehavior* const a = Add(mFirst, "a");
    LogBehavior* const b = Add(mFirst, "b");
    a->SetIdleFreq(10);
    b->SetIdleFreq(100);
    const auto continueAfter = [&](double ticks) {
        TestClock::Advance(ticks);
        mLog.clear();
        mFirst.HandleIdle(kIdlePhase_Continue);
        return mLog;
    };
    EXPECT_EQ(continueAfter(0), (CallLog{"a:idle 1", "b:idle 1", "first:idle 1"}));
    EXPECT_EQ(continueAfter(9), CallLog{});
    EXPECT_EQ(continueAfter(1), (CallLog{"a:idle 1"}));
    EXPECT_EQ(continueAfter(50), (CallLog{"a:idle 1", "first:idle 1"}));
    EXPECT_EQ(continueAfter(39), (CallLog{"a:idle 1"}));
    EXPECT_EQ(continueAfter(1), (CallLog{"b:idle 1"})) << "passed on by one that is not due";
    mLog.clear();
    mFirst.HandleIdle(kIdlePhase_Begin);
    EXPECT_EQ(mLog, (CallLog{"a:idle 0", "b:idle 0", "first:idle 0"})) << "whatever is due";
    mFirst.mIdleAnswer = true; // wants more
    continueAfter(60);
    EXPECT_EQ(continueAfter(1), (CallLog{"first:idle 1"})) << "the call did not count";
}

TEST_F(Chain, IdleTimeSurvivesWhatItsReceiversDo) {
    const TestClock clock(1000);
    auto* const handler = new LogHandler(mLog, "h");
    handler->mLogsDeath = true;
    handler->SetIdleFreq(10);
    LogBehavior* const a = Add(*handler, "a");
    LogBehavior* const b = Add(*handler, "b");
    LogBehavior* const c = Add(*handler, "c");
    for (LogBehavior* behavior : {a, b, c})
        behavior->SetIdleFreq(10);
    a->mThen = [&] {
        handler->RemoveBehavior(a);
        a->Free();
    };
    handler->HandleIdle(kIdlePhase_Continue);
    EXPECT_EQ(mLog, (CallLog{"a:idle 1", "b:idle 1", "c:idle 1", "h:idle 1"}));
    mLog.clear();
    TestClock::Advance(10);
    b->mThen = [&] { handler->Free(); };
    handler->HandleIdle(kIdlePhase_Continue);
    EXPECT_EQ(mLog, (CallLog{"b:idle 1", "h:gone"}));
}

// Target

class Target : public Chain {
  protected:
    LogApplication mApplication{mLog};
};

TEST_F(Target, BecomingTheTargetAsksTheOldOne) {
    EXPECT_TRUE(mApplication.IsTarget());
    EXPECT_TRUE(mFirst.BecomeTarget());
    EXPECT_TRUE(mFirst.IsTarget());
    mLog.clear();
    EXPECT_TRUE(mFirst.BecomeTarget());
    EXPECT_TRUE(mLog.empty()) << "it is the target already";

    mFirst.mRefusal = 12;
    EXPECT_FALSE(mLast.BecomeTarget());
    EXPECT_EQ(mLog, (CallLog{"first:failed 12"}));
    EXPECT_TRUE(mFirst.IsTarget());
    mFirst.mRefusal = 0;
    mLog.clear();
    EXPECT_TRUE(mLast.BecomeTarget());
    EXPECT_EQ(mLog, (CallLog{"first:succeeded", "first:event 27", "middle:event 27",
                             "last:event 27", "last:event 26"}));
}

int sValidated = 0;

TEST_F(Target, ValidationCallbackHearsOfSuccess) {
    sValidated = 0;
    EXPECT_EQ(mFirst.SetValidationCallback([](TEventHandler*) { ++sValidated; }), nullptr);
    mFirst.BecomeTarget();
    mFirst.ResignTarget();
    EXPECT_EQ(sValidated, 1);
    EXPECT_EQ(mApplication.GetTarget(), &mApplication);
    EXPECT_NE(mFirst.SetValidationCallback(nullptr), nullptr);
}

TEST_F(Target, WithoutAnApplicationEveryHandlerMayHaveItsWill) {
    TApplication* const application = std::exchange(gApplication, nullptr);
    EXPECT_TRUE(mFirst.BecomeTarget());
    EXPECT_TRUE(mFirst.ResignTarget());
    EXPECT_FALSE(mFirst.IsTarget());
    gApplication = application;
}

TEST_F(Target, FreeingTheTargetHandsItToTheNextHandler) {
    auto* const handler = new LogHandler(mLog, "h", &mLast);
    handler->BecomeTarget();
    handler->Free();
    EXPECT_EQ(mApplication.GetTarget(), &mLast);
    auto* const alone = new LogHandler(mLog, "alone");
    alone->BecomeTarget();
    alone->Free();
    EXPECT_EQ(mApplication.GetTarget(), &mApplication);
    {
        LogHandler scoped(mLog, "scoped"); // ends without Free
        scoped.BecomeTarget();
    }
    EXPECT_EQ(mApplication.GetTarget(), &mApplication);
}

TEST_F(Target, ATargetThatFreesTheNewOneInResigningLeavesTheApplication) {
    auto* const coming = new LogHandler(mLog, "coming");
    mFirst.BecomeTarget();
    mFirst.mConsumes = true;
    mFirst.mThen = [&] { coming->Free(); }; // on event 27
    EXPECT_FALSE(coming->BecomeTarget());
    EXPECT_EQ(mApplication.GetTarget(), &mApplication);
}

TEST_F(Target, FreeingForgetsTheHandlerEverywhere) {
    auto* const handler = new LogHandler(mLog, "h");
    TApplicationData::SetPreMenuLoopTarget(handler);
    TApplication::sTargetHandlingEventStack = {nullptr, handler, &mFirst, handler};
    handler->Free();
    EXPECT_EQ(TApplicationData::GetPreMenuLoopTarget(), nullptr);
    EXPECT_EQ(TApplication::sTargetHandlingEventStack,
              (std::vector<TEventHandler*>{nullptr, nullptr, &mFirst, nullptr}));
    TApplication::sTargetHandlingEventStack.clear();
}

// Copies

class CountedBehavior : public TBehavior {
  public:
    QLX_DECLARE_CLASS(CountedBehavior);
    TObject* Clone() override {
        if (sFailsAt-- == 0)
            throw std::runtime_error("cannot be copied");
        ++sCopies;
        return TBehavior::Clone();
    }
    ~CountedBehavior() override { ++sGone; }
    static inline int sFailsAt = -1, sCopies = 0, sGone = 0;
};
QLX_DEFINE_CLASS(CountedBehavior, TBehavior)

TEST_F(Chain, ACopyHasCopiesOfTheBehaviours) {
    TEventHandler original;
    original.IEventHandler(&mLast);
    original.SetIdentifier(42);
    for (std::uint32_t id : {1, 2, 3}) {
        auto* const behavior = new CountedBehavior;
        behavior->IBehavior(id);
        original.AddBehavior(behavior);
    }
    CountedBehavior::sFailsAt = -1;
    const Owned<TEventHandler> copy(static_cast<TEventHandler*>(original.Clone()));
    EXPECT_EQ(Names(*copy), (CallLog{"1", "2", "3"}));
    EXPECT_NE(copy->GetFirstBehavior(), original.GetFirstBehavior());
    EXPECT_TRUE(copy->GetFirstBehavior()->DescendsFrom(CountedBehavior::GetClassDescStatic()));
    EXPECT_EQ(copy->GetFirstBehavior()->GetOwner(), copy.get());
    EXPECT_EQ(copy->GetIdentifier(), 42u);
    EXPECT_EQ(copy->GetNextHandler(), &mLast);

    CountedBehavior::sCopies = CountedBehavior::sGone = 0;
    CountedBehavior::sFailsAt = 2;
    EXPECT_THROW((void)original.Clone(), std::runtime_error);
    EXPECT_EQ(CountedBehavior::sCopies, 2);
    EXPECT_EQ(CountedBehavior::sGone, 2) << "the half of a copy is gone again";
    CountedBehavior::sFailsAt = -1;
}

TEST_F(Chain, ListsOfAnyLengthGoWithoutDepth) {
    TEventHandler handler;
    TBehavior* last = new TBehavior;
    handler.AddBehavior(last);
    for (int i = 0; i < 100000; ++i) {
        auto* const behavior = new TBehavior;
        last->AppendBehavior(behavior); // from the last one: adding walks the list
        last = behavior;
    }
    handler.GetFirstBehavior()->Free();
    EXPECT_EQ(handler.GetFirstBehavior(), nullptr);
}

// Posting without an application at the end

TEST_F(Chain, PostedThingsAreFreedWhenNobodyTakesThem) {
    mFirst.PostCommand(nullptr);
    mFirst.PostAndConsumeEvent(nullptr, false);
    mFirst.PostCommand(new LogCommand(mLog));
    EXPECT_EQ(mLog, (CallLog{"c:gone"}));
    LogCommand kept(mLog);
    kept.SetFreeOnCompletion(false);
    kept.mLogsDeath = false;
    mFirst.PostCommand(&kept);
    mFirst.PostAndConsumeEvent(new TEvent, false);
    EXPECT_EQ(mLog.size(), 1u);
    EXPECT_EQ(mFirst.RetrieveAnEvent(), nullptr);
}

} // namespace

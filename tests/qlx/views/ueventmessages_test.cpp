// Messages pass over the handlers and behaviours that do nothing with them without calling them.
// Nobody may notice: every class that takes over any operation on the way is asked, in its turn.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "qlx/views/ueventtrace.h"
#include "tests/support/handlers.h"

namespace {

/// Says that it was called, by its number.
class Caller {
  public:
    static CallLog sLog;
    int mNumber = 0;

  protected:
    void Say(const char* what) const { sLog.push_back(std::to_string(mNumber) + " " + what); }
};
CallLog Caller::sLog;

struct Handler : TEventHandler, Caller {};
struct OtherHandler : Handler {};
struct KeyHandler : Handler {
    void DoKeyEvent(TToolboxEvent* event) override {
        Say("DoKeyEvent");
        Handler::DoKeyEvent(event);
    }
};
struct KeyEntryHandler : Handler {
    void HandleKeyCommand(TToolboxEvent* event) override {
        Say("HandleKeyCommand");
        Handler::HandleKeyCommand(event);
    }
};
struct KeyUpHandler : Handler {
    void DoKeyUp(TToolboxEvent* event) override {
        Say("DoKeyUp");
        Handler::DoKeyUp(event);
    }
};
struct MenuHandler : Handler {
    void DoMenuCommand(std::int32_t command) override {
        Say("DoMenuCommand");
        Handler::DoMenuCommand(command);
    }
    void HandleSetupMenus() override {
        Say("HandleSetupMenus");
        Handler::HandleSetupMenus();
    }
};
struct EventHandler : Handler {
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override {
        Say("DoEvent");
        Handler::DoEvent(number, source, event);
    }
    void DoSetupMenus() override {
        Say("DoSetupMenus");
        Handler::DoSetupMenus();
    }
};
struct DecodingHandler : Handler {
    void KeyEventToComponents(TToolboxEvent* event) override {
        Say("KeyEventToComponents");
        Handler::KeyEventToComponents(event);
    }
    void HandleEvent(std::int32_t number, TEventHandler* source, TEvent* event) override {
        Say("HandleEvent");
        Handler::HandleEvent(number, source, event);
    }
};
struct LeadingHandler : Handler {
    TEventHandler* GetNextHandler() override {
        Say("GetNextHandler");
        return Handler::GetNextHandler();
    }
};
struct AskedHandler : Handler {
    TBehavior* GetFirstEnabledBehavior() override {
        Say("GetFirstEnabledBehavior");
        return Handler::GetFirstEnabledBehavior();
    }
};

struct Behavior : TBehavior, Caller {};
struct OtherBehavior : Behavior {};
struct KeyBehavior : Behavior {
    void DoKeyEvent(TToolboxEvent* event) override {
        Say("behaviour's DoKeyEvent");
        Behavior::DoKeyEvent(event);
    }
    void DoKeyUp(TToolboxEvent* event) override {
        Say("behaviour's DoKeyUp");
        Behavior::DoKeyUp(event);
    }
};
struct MenuBehavior : Behavior {
    void DoMenuCommand(std::int32_t command) override {
        Say("behaviour's DoMenuCommand");
        Behavior::DoMenuCommand(command);
    }
    void DoSetupMenus() override {
        Say("behaviour's DoSetupMenus");
        Behavior::DoSetupMenus();
    }
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override {
        Say("behaviour's DoEvent");
        Behavior::DoEvent(number, source, event);
    }
};
struct AskedBehavior : Behavior {
    bool IsEnabled() override {
        Say("behaviour's IsEnabled");
        return Behavior::IsEnabled();
    }
};
struct LeadingBehavior : Behavior {
    TBehavior* GetNextEnabledBehavior() override {
        Say("behaviour's GetNextEnabledBehavior");
        return Behavior::GetNextEnabledBehavior();
    }
};
/// Its list does not know where it belongs, so that what it passes on is dropped.
struct StrayBehavior : Behavior {
    void SetOwner(TEventHandler*) override {}
};

template <class Base, class... Classes>
Base* MakeOneOf(std::size_t which, int number) {
    using Maker = Base* (*)(int);
    static constexpr Maker kMakers[] = {[](int n) -> Base* {
        auto* const object = new Classes;
        object->mNumber = n;
        return object;
    }...};
    return kMakers[which % std::size(kMakers)](number);
}

/// A chain of handlers and behaviours of any of these classes; every second one does nothing.
class RandomChain {
  public:
    explicit RandomChain(std::mt19937& random) {
        TEventHandler* next = nullptr;
        for (std::size_t left = random() % 12 + 1; left > 0; --left) {
            mHandlers.emplace_back(NewHandler(random));
            mHandlers.back()->IEventHandler(next);
            for (std::size_t more = random() % 6; more > 3; --more)
                mHandlers.back()->AddBehavior(NewBehavior(random));
            next = mHandlers.back().get();
        }
    }
    [[nodiscard]] TEventHandler* GetFirst() const { return mHandlers.back().get(); }
    [[nodiscard]] std::ptrdiff_t CountDecoders() const {
        return std::count_if(mHandlers.begin(), mHandlers.end(), [](const auto& handler) {
            return dynamic_cast<const DecodingHandler*>(handler.get()) != nullptr;
        });
    }

  private:
    TEventHandler* NewHandler(std::mt19937& random) {
        if (random() % 2 == 0)
            return MakeOneOf<TEventHandler, Handler, OtherHandler>(random(), ++mCount);
        return MakeOneOf<TEventHandler, KeyHandler, KeyEntryHandler, KeyUpHandler, MenuHandler,
                         EventHandler, DecodingHandler, LeadingHandler, AskedHandler>(random(),
                                                                                      ++mCount);
    }
    TBehavior* NewBehavior(std::mt19937& random) {
        TBehavior* const behavior =
            random() % 2 == 0 ? MakeOneOf<TBehavior, Behavior, OtherBehavior>(random(), ++mCount)
                              : MakeOneOf<TBehavior, KeyBehavior, MenuBehavior, AskedBehavior,
                                          LeadingBehavior, StrayBehavior>(random(), ++mCount);
        behavior->SetEnabled(random() % 3 != 0);
        return behavior;
    }

    std::vector<std::unique_ptr<TEventHandler>> mHandlers; // the last one first
    int mCount = 0;
};

/// Everything that the walk shortens, sent along a chain: who says what, and whether the key came
/// to the end.
CallLog SendEverything(TEventHandler* handler) {
    TToolboxEvent event;
    MakeKey(event, 'x');
    Caller::sLog.clear();
    handler->KeyEventToComponents(&event);
    TApplication::sMacAppKeyDownHandled = true;
    handler->HandleKeyCommand(&event);
    if (!std::exchange(TApplication::sMacAppKeyDownHandled, true))
        Caller::sLog.emplace_back("unhandled");
    if (event.mCharacterCode == 'x')
        Caller::sLog.emplace_back("decoded");
    handler->HandleKeyUp(&event);
    handler->HandleMenuCommand(900);
    handler->HandleSetupMenus();
    handler->HandleEvent(7, nullptr, nullptr);
    return std::exchange(Caller::sLog, {});
}

// The trace has every handler and every behaviour called in turn, so it is what the short road is
// measured against. The trace itself asks nothing that is counted here. Decoding takes the short
// road either way.
TEST(QuietWalk, CallsWhomTheWayFromHandlerToHandlerCalls) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        const RandomChain chain(random);
        const CallLog shortRoad = SendEverything(chain.GetFirst());
        QLX_EventTraceLog sink;
        QLX_EventTrace::Start(&sink);
        const CallLog longRoad = SendEverything(chain.GetFirst());
        QLX_EventTrace::Stop();
        ASSERT_EQ(shortRoad, longRoad) << "seed " << seed;
        ASSERT_EQ(std::count_if(shortRoad.begin(), shortRoad.end(),
                                [](const std::string& call) {
                                    return call.find("KeyEventToComponents") != std::string::npos;
                                }),
                  chain.CountDecoders())
            << "seed " << seed;
    }
}

// A handler gets its own class only at the end of its constructor: until then it is what its base
// is, also for messages on their way.
TEST(QuietWalk, KnowsAHandlerThatIsBeingBuiltForWhatItIsByThen) {
    struct Base : Handler {
        explicit Base(TEventHandler& before) {
            before.IEventHandler(this);
            SendEverything(&before);
        }
    };
    struct Derived : Base {
        using Base::Base;
        void DoKeyEvent(TToolboxEvent*) override { Say("built"); }
    };
    Handler first;
    const Derived built(first);
    EXPECT_EQ(SendEverything(&first), (CallLog{"0 built", "decoded"}));
}

} // namespace

// What a message costs on its way along a chain of handlers, and what a command costs from posting
// to its end, against a bare chain with as many virtual calls and against other toolkits.
#include <cstdlib>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/peers/bare_chain.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"

#ifdef EVENT_BENCH_WX
#include <wx/cmdproc.h>
#include <wx/event.h>
#endif
#ifdef EVENT_BENCH_QT
#include <QApplication>
#include <QKeyEvent>
#include <QUndoCommand>
#include <QWidget>
#endif
#ifdef EVENT_BENCH_JUCE
#include <juce_data_structures/juce_data_structures.h>
#endif

namespace {

// A chain of handlers, none of which wants the key.

struct Chain {
    Chain(std::int64_t length, bool withBehaviors) {
        TEventHandler* next = nullptr;
        for (std::int64_t i = 0; i < length; ++i) {
            mHandlers.push_back(std::make_unique<TEventHandler>());
            mHandlers.back()->IEventHandler(next);
            if (withBehaviors)
                mHandlers.back()->AddBehavior(new TBehavior);
            next = mHandlers.back().get();
        }
        const QLX_EventRef ref =
            QLX_EventRef::New({kQLX_EventClass_Keyboard, kQLX_EventKind_KeyDown});
        mEvent.IToolboxEvent(nullptr, ref);
    }
    std::vector<std::unique_ptr<TEventHandler>> mHandlers; // the last one first
    TToolboxEvent mEvent;
};

void Key(benchmark::State& state, bool withBehaviors) {
    Chain chain(state.range(0), withBehaviors);
    TEventHandler* const target = chain.mHandlers.back().get();
    for (auto _ : state) {
        target->HandleKeyCommand(&chain.mEvent);
        benchmark::ClobberMemory();
    }
}

void ApplicationKey(benchmark::State& state) {
    TApplication application;
    Chain chain(state.range(0), false);
    application.SetTarget(chain.mHandlers.back().get());
    for (auto _ : state)
        benchmark::DoNotOptimize(application.HandleKeyDownEvent(&chain.mEvent));
}

// The same number of virtual calls per hop and nothing else.

void BareKey(benchmark::State& state, bool withBehaviors) {
    std::vector<std::unique_ptr<BareHandler>> handlers;
    std::vector<std::unique_ptr<BareBehavior>> behaviors;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto handler = std::make_unique<BareHandler>();
        handler->mNext = handlers.empty() ? nullptr : handlers.back().get();
        if (withBehaviors) {
            behaviors.push_back(std::make_unique<BareBehavior>());
            behaviors.back()->mOwner = handler.get();
            handler->mBehavior = behaviors.back().get();
        }
        handlers.push_back(std::move(handler));
    }
    BareHandler* target = handlers.back().get();
    int event = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(target);
        target->Handle(&event);
        benchmark::ClobberMemory();
    }
}

#ifdef EVENT_BENCH_WX
void WxKey(benchmark::State& state) {
    std::vector<std::unique_ptr<wxEvtHandler>> handlers;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        handlers.push_back(std::make_unique<wxEvtHandler>());
        if (i > 0)
            handlers[static_cast<std::size_t>(i)]->SetNextHandler(
                handlers[static_cast<std::size_t>(i - 1)].get());
    }
    wxKeyEvent event(wxEVT_KEY_DOWN);
    for (auto _ : state)
        benchmark::DoNotOptimize(handlers.back()->ProcessEvent(event));
    for (auto& handler : handlers)
        handler->Unlink();
}
#endif

#ifdef EVENT_BENCH_QT
class IgnoringWidget : public QWidget {
  public:
    using QWidget::QWidget;

  protected:
    void keyPressEvent(QKeyEvent* event) override { event->ignore(); }
};

void QtKey(benchmark::State& state) {
    IgnoringWidget root;
    QWidget* innermost = &root;
    for (std::int64_t i = 1; i < state.range(0); ++i)
        innermost = new IgnoringWidget(innermost);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    for (auto _ : state)
        benchmark::DoNotOptimize(QCoreApplication::sendEvent(innermost, &event));
}
#endif

// Commands that change one number.

int sDocument = 0;

class Increment : public TCommand {
  public:
    void DoIt() override { ++sDocument; }
    void UndoIt() override { --sDocument; }
};

void PerformAndCommit(benchmark::State& state, bool withApplication) {
    std::unique_ptr<TApplication> application;
    if (withApplication)
        application = std::make_unique<TApplication>();
    auto* const handler = new TCommandHandler;
    handler->IEventHandler(application.get());
    const std::string name = "Increment";
    for (auto _ : state) {
        auto* const command = new Increment;
        command->ICommand(500, handler, true, true, nullptr);
        command->SetCommandName(name);
        handler->PerformCommand(command);
    }
    handler->Free();
}

void UndoRedo(benchmark::State& state) {
    TApplication application;
    auto* const handler = new TCommandHandler;
    handler->IEventHandler(&application);
    auto* const command = new Increment;
    command->ICommand(500, handler, true, true, nullptr);
    command->SetCommandName("Increment");
    handler->PerformCommand(command);
    for (auto _ : state) {
        handler->HandleMenuCommand(kCommand_Undo);
        application.ProcessPosted();
    }
    handler->Free();
}

// An object of the same class is allocated, called and freed.
void BareCommand(benchmark::State& state) {
    for (auto _ : state) {
        TCommand* command = new Increment;
        benchmark::DoNotOptimize(command);
        command->DoIt();
        delete command;
    }
}

// Bytes of the same size with a virtual call.
void BareBytes(benchmark::State& state) {
    struct Base {
        virtual ~Base() = default;
        virtual void Do() = 0;
    };
    struct Bytes : Base {
        void Do() override { ++sDocument; }
        char mBytes[sizeof(Increment) - sizeof(void*)];
    };
    for (auto _ : state) {
        Base* object = new Bytes;
        benchmark::DoNotOptimize(object);
        object->Do();
        delete object;
    }
}

#ifdef EVENT_BENCH_QT
class QtIncrement : public QUndoCommand {
  public:
    explicit QtIncrement(const QString& name) : QUndoCommand(name) {}
    void redo() override { ++sDocument; }
    void undo() override { --sDocument; }
};

void QtPerform(benchmark::State& state) {
    QUndoStack stack;
    stack.setUndoLimit(1);
    const QString name = QStringLiteral("Increment");
    for (auto _ : state)
        stack.push(new QtIncrement(name));
}

void QtUndoRedo(benchmark::State& state) {
    QUndoStack stack;
    stack.setUndoLimit(1);
    stack.push(new QtIncrement(QStringLiteral("Increment")));
    for (auto _ : state) {
        if (stack.canUndo())
            stack.undo();
        else
            stack.redo();
    }
}
#endif

#ifdef EVENT_BENCH_WX
class WxIncrement : public wxCommand {
  public:
    explicit WxIncrement(const wxString& name) : wxCommand(true, name) {}
    bool Do() override {
        ++sDocument;
        return true;
    }
    bool Undo() override {
        --sDocument;
        return true;
    }
};

void WxPerform(benchmark::State& state) {
    wxCommandProcessor processor(1);
    const wxString name = "Increment";
    for (auto _ : state)
        processor.Submit(new WxIncrement(name));
}
#endif

#ifdef EVENT_BENCH_JUCE
class JuceIncrement : public juce::UndoableAction {
  public:
    bool perform() override {
        ++sDocument;
        return true;
    }
    bool undo() override {
        --sDocument;
        return true;
    }
};

void JucePerform(benchmark::State& state) {
    juce::UndoManager manager(1, 1);
    const juce::String name("Increment");
    for (auto _ : state) {
        manager.beginNewTransaction(name);
        manager.perform(new JuceIncrement);
    }
}
#endif

} // namespace

#define LENGTHS Arg(1)->Arg(8)->Arg(32)
BENCHMARK_CAPTURE(Key, plain, false)->Name("Event_Key")->LENGTHS;
BENCHMARK_CAPTURE(BareKey, plain, false)->Name("Event_Key/virtual")->LENGTHS;
BENCHMARK_CAPTURE(Key, behaviors, true)->Name("Event_KeyWithBehaviors")->LENGTHS;
BENCHMARK_CAPTURE(BareKey, behaviors, true)->Name("Event_KeyWithBehaviors/virtual")->LENGTHS;
BENCHMARK(ApplicationKey)->Name("Event_KeyFromApplication")->LENGTHS;
BENCHMARK_CAPTURE(PerformAndCommit, app, true)->Name("Event_PerformAndCommit");
BENCHMARK(UndoRedo)->Name("Event_UndoRedo");
BENCHMARK(BareCommand)->Name("Event_UndoRedo/plain");
BENCHMARK(BareBytes)->Name("Event_UndoRedo/virtual");
#ifdef EVENT_BENCH_WX
BENCHMARK(WxKey)->Name("Event_Key/wx")->LENGTHS;
BENCHMARK(WxPerform)->Name("Event_PerformAndCommit/wx");
#endif
#ifdef EVENT_BENCH_QT
BENCHMARK(QtKey)->Name("Event_Key/qt")->LENGTHS;
BENCHMARK(QtPerform)->Name("Event_PerformAndCommit/qt");
BENCHMARK(QtUndoRedo)->Name("Event_UndoRedo/qt");
#endif
#ifdef EVENT_BENCH_JUCE
BENCHMARK(JucePerform)->Name("Event_PerformAndCommit/juce");
#endif

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
#ifdef EVENT_BENCH_QT
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
#endif
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

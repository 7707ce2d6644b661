// What a numeric entry field costs its user: a digit from the native event to the pixels, and a
// window full of fields that follow a running clock. Aims: a digit below 60 µs (median_us) without
// an allocation, two hundred fields below 5 % of a core.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "bench/counted_allocations.h"
#include "qlx/views/qlx_windowevents.h"
#include "tests/support/live_window.h"

#ifdef BENCH_QT
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#endif

namespace {

class Fields {
  public:
    explicit Fields(int count) : mLive(1000, 800) {
        QLX_Init::Init();
        Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
        for (int i = 0; i < count; ++i) {
            auto* field = new TNumericEntryText;
            const int left = 4 + i % 8 * 124;
            const int top = 4 + i / 8 * 30;
            field->IView(mLive.GetWindow(), VRect(left, top, left + 120, top + 26));
            field->SetLocalFormat(kNumericEntry_TimeCode, false, false);
            field->SetUseVolatileUpdate(true);
            mFields.push_back(field);
        }
        if (!mLive.Open())
            std::abort();
    }

    LiveWindow mLive;
    std::vector<TNumericEntryText*> mFields;
};

void DigitToPixels(benchmark::State& state, bool volatileUpdate) {
    Fields fields(1);
    fields.mFields[0]->SetUseVolatileUpdate(volatileUpdate);
    fields.mFields[0]->BecomeTarget();
    fields.mLive.Run();
    std::vector<double> micros;
    std::size_t allocations = 0;
    int digit = 0;
    for (auto _ : state) {
        digit = (digit + 7) % 10;
        const auto code = static_cast<std::uint32_t>('0' + digit);
        fields.mLive.Inject(QLX_MakeKeyEvent(8, code, code, 0));
        const std::size_t before = gCountedAllocations;
        const auto start = std::chrono::steady_clock::now();
        fields.mLive.Run();
        const auto end = std::chrono::steady_clock::now();
        allocations = gCountedAllocations - before;
        const double seconds = std::chrono::duration<double>(end - start).count();
        state.SetIterationTime(seconds);
        micros.push_back(seconds * 1e6);
    }
    const auto middle = micros.begin() + static_cast<std::ptrdiff_t>(micros.size() / 2);
    std::nth_element(micros.begin(), middle, micros.end());
    state.counters["median_us"] = *middle;
    state.counters["allocations"] = static_cast<double>(allocations);
}

// One turn is one frame of a 60 Hz display: every field is given the clock's position, what changed
// is drawn. The share of a core is a turn's processor time against a sixtieth of a second.
void FollowClock(benchmark::State& state) {
    Fields fields(static_cast<int>(state.range(0)));
    std::int64_t position = 0;
    const std::clock_t start = std::clock();
    for (auto _ : state) {
        for (TNumericEntryText* field : fields.mFields)
            field->SetTextFromSample(Time_Sample(position), true);
        fields.mLive.Run();
        position += 800;
    }
    const auto turns = static_cast<double>(state.iterations());
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    state.counters["percent_of_core"] = seconds / turns * 60 * 100;
    state.counters["pixels_a_frame"] =
        static_cast<double>(fields.mLive.GetWindow()->GetCosts().mPixelsPainted) / turns;
}

#ifdef BENCH_QT

// A line with the mask of a time code, on the platform without a display: the key event to the
// pixels in the window's backing store. At the text's end the cursor goes back to the first digit,
// unmeasured.
void MaskedLine(benchmark::State& state) {
    static int argc = 1;
    static char name[] = "numericentry_bench";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
    QWidget window;
    window.resize(1000, 800);
    QLineEdit line(&window);
    line.setGeometry(4, 4, 120, 26);
    line.setInputMask("99:99:99:99;0");
    line.setText("00:00:00:00");
    window.show();
    line.setFocus();
    QApplication::processEvents();
    int digit = 0;
    for (auto _ : state) {
        digit = (digit + 7) % 10;
        if (line.cursorPosition() >= 11) {
            line.setCursorPosition(0);
            QApplication::processEvents();
        }
        const auto start = std::chrono::steady_clock::now();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_0 + digit, Qt::NoModifier, QString::number(digit));
        QApplication::sendEvent(&line, &key);
        QApplication::processEvents();
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
}

#endif

} // namespace

#ifdef BENCH_QT
BENCHMARK(MaskedLine)
    ->Name("NumericEntry_DigitToPixels/qt")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
#endif
BENCHMARK_CAPTURE(DigitToPixels, field, false)
    ->Name("NumericEntry_DigitToPixels/whole_field")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DigitToPixels, characters, true)
    ->Name("NumericEntry_DigitToPixels/volatile_update")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(FollowClock)
    ->Name("NumericEntry_FollowClock60Hz")
    ->Arg(200)
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

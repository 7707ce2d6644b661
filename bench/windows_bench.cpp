// The Windows painters against each other, in one process under wine (software rendering): a window
// of an audio host (panels, eighty fields, a waveform, meters) of 900 by 600 pixels, repainted and
// shown, and one numeric field of it. The times are Direct2D's; below 1 it is faster than GDI. The
// counter is what the owners of handles and references hold more after ten thousand repaints of the
// field than before. Without a graphics card Direct2D pays for every pixel that it covers, and to
// show a frame is to copy the window: GDI is what small repaints, remote desktops and machines
// without a card are best served by. With a card Direct2D draws large filled and smoothed areas
// there, and the copying is the card's; what that gains has not been measured.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "qlx/imaging/win32/qlx_nativehandles.h"
#include "qlx/imaging/win32/qlx_painterdirect2d.h"
#include "qlx/imaging/win32/qlx_paintergdi.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

constexpr int kWidth = 900;
constexpr int kHeight = 600;
constexpr int kRepaintsCounted = 10000;

using Rect = Cmn_Rect<int>;

Rect FieldPlace(int index) {
    const int left = 10 + index % 8 * 110, top = 10 + index / 8 * 28;
    return {left, top, left + 100, top + 22};
}

void DrawField(const QLX_Painter::Ptr& p, int index, int value) {
    const Rect box = FieldPlace(index);
    p->SetForegroundColor(CRGBColor(0x1000, 0x1400, 0x1800));
    p->FillRect(box);
    p->SetForegroundColor(CRGBColor(0xC000, 0xE000, 0xFFFF));
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d:%02d", value / 3600 % 24, value / 60 % 60,
                  value % 60, value * 7 % 25);
    p->DrawSingleLineTextBox(box, text, false, nullptr);
}

void DrawWindow(const QLX_Painter::Ptr& p, int number) {
    static std::vector<int> low, high;
    if (low.empty())
        for (int i = 0; i < 860; ++i) {
            const int size = int(60 * std::fabs(std::sin(i * 0.013) * std::cos(i * 0.31))) + 1;
            low.push_back(-size);
            high.push_back(size);
        }
    p->SetBackgroundColor(CRGBColor(0x3000, 0x3400, 0x3A00));
    p->EraseRect({0, 0, kWidth, kHeight});
    for (int i = 0; i < 80; ++i)
        DrawField(p, i, number + i * 31);
    p->SetForegroundColor(CRGBColor(0x2000, 0x2400, 0x2A00));
    p->FillRoundRect({10, 300, 890, 450}, 8, 8, true, false);
    p->OptimizedWaveformFill(20, 860, low.data(), high.data(), 375, 300, 450,
                             CRGBColor(0x4000, 0xC000, 0x7000), nullptr, CRGBColor(), 1,
                             QLX_Painter::kResolution_Logical);
    for (int i = 0; i < 16; ++i) {
        p->SetForegroundColor(CRGBColor(0x6000, 0x6800, 0x7000));
        p->FillOval({20 + i * 54, 470, 60 + i * 54, 510}, true);
        p->SetForegroundColor(CRGBColor(0x3000, 0xA000, 0x4000));
        p->FillRect({30 + i * 54, 520 + (number + i * 7) % 40, 50 + i * 54, 590});
    }
}

double Seconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

// The fastest of several rounds, in nanoseconds a call.
double Measure(const std::function<void(int)>& call) {
    double best = 1e30;
    int number = 0;
    for (int round = 0; round < 5; ++round) {
        int calls = 0;
        const double begin = Seconds();
        double end = begin;
        while (end - begin < 0.3) {
            call(number++);
            ++calls;
            end = Seconds();
        }
        best = std::min(best, (end - begin) * 1e9 / calls);
    }
    return best;
}

struct Result {
    std::string name;
    double nanoseconds;
    int grown;
};

// Google Benchmark's form, as far as scripts/bench_table.py reads it.
bool Write(const char* path, const std::vector<Result>& results) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file)
        return false;
    std::fprintf(file, "{\"context\": {\"num_cpus\": %d},\n \"benchmarks\": [\n",
                 std::max(1, std::atoi(std::getenv("NUMBER_OF_PROCESSORS")
                                           ? std::getenv("NUMBER_OF_PROCESSORS")
                                           : "1")));
    for (std::size_t i = 0; i < results.size(); ++i)
        std::fprintf(file,
                     "  {\"name\": \"%s\", \"run_name\": \"%s\", \"run_type\": \"iteration\", "
                     "\"iterations\": 1, \"real_time\": %.1f, \"cpu_time\": %.1f, "
                     "\"time_unit\": \"ns\", \"handles_grown\": %d}%s\n",
                     results[i].name.c_str(), results[i].name.c_str(), results[i].nanoseconds,
                     results[i].nanoseconds, results[i].grown, i + 1 < results.size() ? "," : "");
    std::fprintf(file, "]}\n");
    return std::fclose(file) == 0;
}

} // namespace

int main(int argc, char** argv) {
    std::string out = "windows_bench.json";
    for (int i = 1; i < argc; ++i)
        if (const std::string argument = argv[i]; argument.rfind("--benchmark_out=", 0) == 0)
            out = argument.substr(16);
    QLX_WinFonts::InstallMeasure();
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight, nullptr,
                        nullptr, GetModuleHandleW(nullptr), nullptr);
    std::vector<Result> results;
    const struct {
        const char* suffix;
        QLX_Painter::Ptr (*make)(HWND, QLX_DeviceScale);
    } kinds[] = {{"/gdi", &QLX_PainterGDI::NewForWindow}, {"", &QLX_PainterDirect2D::NewForWindow}};
    for (const auto& kind : kinds) {
        const QLX_Painter::Ptr painter = kind.make(window, QLX_DeviceScale());
        if (!painter) {
            std::fprintf(stderr, "windows_bench: no painter for \"Repaint%s\"\n", kind.suffix);
            return 1;
        }
        auto& shown = static_cast<QLX_PainterWindows&>(*painter);
        const auto full = [&](int number) {
            DrawWindow(painter, number % 50);
            shown.AddDirtyRgn(Rect(0, 0, kWidth, kHeight));
            painter->Flush();
        };
        const auto field = [&](int number) {
            painter->SetClip(FieldPlace(19));
            DrawField(painter, 19, number % 50);
            shown.AddDirtyRgn(FieldPlace(19));
            painter->Flush();
            painter->SetClip(painter->GetBounds());
        };
        for (int i = 0; i < 50; ++i) { // every text has been laid out once
            full(i);
            field(i);
        }
        const int before = QLX_NativeHandles::GetTotal();
        const double fieldTime = Measure(field);
        for (int i = 0; i < kRepaintsCounted; ++i)
            field(i);
        const int grown = QLX_NativeHandles::GetTotal() - before;
        results.push_back({std::string("Repaint_Full") + kind.suffix, Measure(full), grown});
        results.push_back({std::string("Repaint_OneField") + kind.suffix, fieldTime, grown});
    }
    for (const Result& result : results)
        std::printf("%-24s %10.1f us  %d handles more\n", result.name.c_str(),
                    result.nanoseconds / 1000, result.grown);
    DestroyWindow(window);
    if (!Write(out.c_str(), results)) {
        std::fprintf(stderr, "windows_bench: cannot write %s\n", out.c_str());
        return 1;
    }
    return 0;
}

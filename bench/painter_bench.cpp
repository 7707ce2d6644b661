// How long drawing takes beside Cairo used directly, QPainter on a QImage, JUCE's software renderer
// on an image, and plain loops that write the same pixels and nothing else. Names:
// Painter_<what>/<who>. All draw on 1920 by 1080 pixels of 32 bits.
//
// Views1000: small views, each a fill, a frame and a short text. Waveform1920: columns from arrays
// of minima and maxima. Meters1000: bars of a background and three coloured parts. Field: one
// time-code field with its background, a hilited block and eleven digits.

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painterfactory.h"

#include <cairo.h>

#ifdef BENCH_JUCE
#include "bench/peers/juce_painter.h"
#endif
#ifdef BENCH_QT
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QStaticText>
#endif

namespace {

constexpr int kWidth = 1920, kHeight = 1080;
constexpr int kViews = 1000, kAcross = 40, kViewWidth = 46, kViewHeight = 40;
constexpr int kColumns = 1920, kWaveHeight = 400;
constexpr int kMeters = 1000, kMeterHeight = 100;

// What is drawn

struct Box {
    int left, top, width, height;
};

Box ViewBox(int i) {
    return {(i % kAcross) * (kViewWidth + 2), (i / kAcross) * (kViewHeight + 2), kViewWidth,
            kViewHeight};
}
Box MeterBox(int i) { return {(i % 200) * 9, (i / 200) * (kMeterHeight + 4), 7, kMeterHeight}; }

const std::vector<std::string>& Labels() {
    static const std::vector<std::string> labels = [] {
        std::vector<std::string> made;
        for (int i = 0; i < kViews; ++i)
            made.push_back("Trk " + std::to_string(i));
        return made;
    }();
    return labels;
}

struct Wave {
    std::vector<int> minima, maxima;
    Wave() {
        std::uint32_t seed = 1;
        for (int i = 0; i < kColumns; ++i) {
            seed = seed * 1664525 + 1013904223;
            const double swing = (0.25 + 0.7 * std::fabs(std::sin(i * 0.004))) *
                                 (0.6 + 0.4 * (seed >> 16) / 65536.0) * kWaveHeight / 2;
            minima.push_back(kWaveHeight / 2 - int(swing));
            maxima.push_back(kWaveHeight / 2 + int(swing * 0.9));
        }
    }
};
const Wave& TheWave() {
    static const Wave wave;
    return wave;
}

const std::string kTimeCode = "01:23:45:12";

// Ours

QLX_Painter::Ptr NewPainter() {
    return QLX_PainterFactory::Find("cairo")->MakeOffscreen(kWidth, kHeight, QLX_DeviceScale(),
                                                            false);
}
constexpr CRGBColor kFill(0xE0E0, 0xE4E4, 0xE8E8), kFrame(0x8080, 0x8080, 0x9090),
    kText(0x1010, 0x1010, 0x1010), kGreen(0x2E2E, 0xAFAF, 0x5B5B), kYellow(0xE2E2, 0xB9B9, 0x3B3B),
    kRed(0xE0E0, 0x3535, 0x2F2F), kHilite(0xB3B3, 0xD7D7, 0xFFFF);

void Views(benchmark::State& state) {
    const auto p = NewPainter();
    p->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain));
    for (auto _ : state)
        for (int i = 0; i < kViews; ++i) {
            const Box box = ViewBox(i);
            const Cmn_Rect<int> rect(box.left, box.top, box.left + box.width, box.top + box.height);
            p->SetForegroundColor(kFill);
            p->FillRect(rect);
            p->SetForegroundColor(kFrame);
            p->DrawRect(rect);
            p->SetForegroundColor(kText);
            p->MoveTo(float(box.left + 4), float(box.top + 24), QLX_Painter::kResolution_Logical);
            p->DrawString(Labels()[std::size_t(i)]);
        }
}
BENCHMARK(Views)->Name("Painter_Views1000")->Unit(benchmark::kMicrosecond);

void Waveform(benchmark::State& state) {
    const auto p = NewPainter();
    const Wave& wave = TheWave();
    for (auto _ : state)
        p->OptimizedWaveformFill(0, kColumns, wave.minima.data(), wave.maxima.data(), 0, 0,
                                 kWaveHeight, kGreen, nullptr, kGreen, 1,
                                 QLX_Painter::kResolution_Logical);
}
BENCHMARK(Waveform)->Name("Painter_Waveform1920")->Unit(benchmark::kMicrosecond);

void Meters(benchmark::State& state) {
    const auto p = NewPainter();
    const QLX_Painter::Ptr none;
    for (auto _ : state)
        for (int i = 0; i < kMeters; ++i) {
            const Box box = MeterBox(i);
            const auto part = [&](int from, int to, const CRGBColor& color) {
                p->OptimizedFillRect({box.left, box.top + from, box.left + box.width, box.top + to},
                                     color, QLX_Painter::kAlphaBlend_Ignore,
                                     QLX_Painter::kResolution_Logical, none, color,
                                     QLX_Painter::kAlphaBlend_Ignore);
            };
            part(0, 20, kText);
            part(20, 30, kRed);
            part(30, 50, kYellow);
            part(50, 100, kGreen);
        }
}
BENCHMARK(Meters)->Name("Painter_Meters1000")->Unit(benchmark::kMicrosecond);

void Field(benchmark::State& state) {
    const auto p = NewPainter();
    p->SetFont(QLX_FontMap::RetrieveFont(kFont_Counter, kFontSelect_Plain));
    for (auto _ : state) {
        p->SetForegroundColor(kFill);
        p->FillRect({100, 100, 190, 118});
        p->SetForegroundColor(kHilite);
        p->FillRect({124, 102, 140, 116});
        p->SetForegroundColor(kText);
        p->MoveTo(104, 114, QLX_Painter::kResolution_Logical);
        p->DrawString(kTimeCode);
    }
}
BENCHMARK(Field)->Name("Painter_Field");

// Plain loops

struct Pixels {
    std::vector<std::uint32_t> memory = std::vector<std::uint32_t>(std::size_t(kWidth) * kHeight);
    void Fill(int left, int top, int width, int height, std::uint32_t color) {
        for (int y = top; y < top + height; ++y)
            std::fill_n(memory.data() + std::size_t(y) * kWidth + left, width, color);
    }
};

void ViewsPlain(benchmark::State& state) {
    Pixels pixels;
    for (auto _ : state) {
        for (int i = 0; i < kViews; ++i) {
            const Box b = ViewBox(i);
            pixels.Fill(b.left, b.top, b.width, b.height, 0xFFE0E4E8);
            pixels.Fill(b.left, b.top, b.width, 1, 0xFF808090);
            pixels.Fill(b.left, b.top + b.height - 1, b.width, 1, 0xFF808090);
            pixels.Fill(b.left, b.top, 1, b.height, 0xFF808090);
            pixels.Fill(b.left + b.width - 1, b.top, 1, b.height, 0xFF808090);
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(ViewsPlain)->Name("Painter_Views1000/plain_loop")->Unit(benchmark::kMicrosecond);

// As many pixels a row as the waveform covers there, in one run: no painter that has to find out
// where they lie can be faster.
void WaveformPlain(benchmark::State& state) {
    Pixels pixels;
    const Wave& wave = TheWave();
    std::vector<int> covered(kWaveHeight);
    for (std::size_t x = 0; x < std::size_t(kColumns); ++x)
        for (int y = wave.minima[x]; y <= wave.maxima[x]; ++y)
            ++covered[std::size_t(y)];
    for (auto _ : state) {
        for (int y = 0; y < kWaveHeight; ++y)
            pixels.Fill(0, y, covered[std::size_t(y)], 1, 0xFF2EAF5B);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(WaveformPlain)->Name("Painter_Waveform1920/plain_loop")->Unit(benchmark::kMicrosecond);

// The meters' pixels of each row side by side, row by row.
void MetersPlain(benchmark::State& state) {
    Pixels pixels;
    constexpr int kAcrossMeters = 200, kMeterWidth = 7;
    for (auto _ : state) {
        for (int i = 0; i < kMeters; i += kAcrossMeters) {
            const int top = MeterBox(i).top;
            for (int y = 0; y < kMeterHeight; ++y)
                pixels.Fill(0, top + y, kAcrossMeters * kMeterWidth, 1,
                            y < 20   ? 0xFF101010
                            : y < 30 ? 0xFFE0352F
                            : y < 50 ? 0xFFE2B93B
                                     : 0xFF2EAF5B);
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(MetersPlain)->Name("Painter_Meters1000/plain_loop")->Unit(benchmark::kMicrosecond);

void FieldPlain(benchmark::State& state) {
    Pixels pixels;
    for (auto _ : state) {
        pixels.Fill(100, 100, 90, 18, 0xFFE0E4E8);
        pixels.Fill(124, 102, 16, 14, 0xFFB3D7FF);
        for (int i = 0; i < 11; ++i) // the digits as blocks of their size
            pixels.Fill(104 + 7 * i, 105, 6, 9, 0xFF101010);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(FieldPlain)->Name("Painter_Field/plain_loop");

// Cairo, with glyphs looked up beforehand, which is its fastest text

class CairoPeer {
  public:
    CairoPeer() {
        mSurface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
        mContext = cairo_create(mSurface);
        cairo_select_font_face(mContext, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                               CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(mContext, 12);
        mFont = cairo_get_scaled_font(mContext);
        cairo_set_antialias(mContext, CAIRO_ANTIALIAS_NONE);
    }
    ~CairoPeer() {
        cairo_destroy(mContext);
        cairo_surface_destroy(mSurface);
    }
    CairoPeer(const CairoPeer&) = delete;
    CairoPeer& operator=(const CairoPeer&) = delete;

    void Fill(int left, int top, int width, int height, double r, double g, double b) {
        cairo_set_source_rgb(mContext, r, g, b);
        cairo_rectangle(mContext, left, top, width, height);
        cairo_fill(mContext);
    }
    std::vector<cairo_glyph_t> Glyphs(const std::string& text, double x, double y) {
        cairo_glyph_t* glyphs = nullptr;
        int count = 0;
        cairo_scaled_font_text_to_glyphs(mFont, x, y, text.c_str(), int(text.size()), &glyphs,
                                         &count, nullptr, nullptr, nullptr);
        std::vector<cairo_glyph_t> out(glyphs, glyphs + count);
        cairo_glyph_free(glyphs);
        return out;
    }
    cairo_surface_t* mSurface;
    cairo_t* mContext;
    cairo_scaled_font_t* mFont;
};

void ViewsCairo(benchmark::State& state) {
    CairoPeer cairo;
    std::vector<std::vector<cairo_glyph_t>> texts;
    for (int i = 0; i < kViews; ++i)
        texts.push_back(
            cairo.Glyphs(Labels()[std::size_t(i)], ViewBox(i).left + 4, ViewBox(i).top + 24));
    for (auto _ : state) {
        for (int i = 0; i < kViews; ++i) {
            const Box b = ViewBox(i);
            cairo.Fill(b.left, b.top, b.width, b.height, .88, .89, .91);
            cairo_set_source_rgb(cairo.mContext, .5, .5, .56);
            cairo_set_line_width(cairo.mContext, 1);
            cairo_rectangle(cairo.mContext, b.left + .5, b.top + .5, b.width - 1, b.height - 1);
            cairo_stroke(cairo.mContext);
            cairo_set_source_rgb(cairo.mContext, .06, .06, .06);
            cairo_show_glyphs(cairo.mContext, texts[std::size_t(i)].data(),
                              int(texts[std::size_t(i)].size()));
        }
        cairo_surface_flush(cairo.mSurface);
    }
}
BENCHMARK(ViewsCairo)->Name("Painter_Views1000/cairo")->Unit(benchmark::kMicrosecond);

void WaveformCairo(benchmark::State& state) {
    CairoPeer cairo;
    const Wave& wave = TheWave();
    for (auto _ : state) {
        cairo_set_source_rgb(cairo.mContext, .18, .69, .36);
        for (int i = 0; i < kColumns; ++i)
            cairo_rectangle(cairo.mContext, i, wave.minima[std::size_t(i)], 1,
                            wave.maxima[std::size_t(i)] - wave.minima[std::size_t(i)] + 1);
        cairo_fill(cairo.mContext);
        cairo_surface_flush(cairo.mSurface);
    }
}
BENCHMARK(WaveformCairo)->Name("Painter_Waveform1920/cairo")->Unit(benchmark::kMicrosecond);

void MetersCairo(benchmark::State& state) {
    CairoPeer cairo;
    for (auto _ : state) {
        for (int i = 0; i < kMeters; ++i) {
            const Box b = MeterBox(i);
            cairo.Fill(b.left, b.top, b.width, 20, .06, .06, .06);
            cairo.Fill(b.left, b.top + 20, b.width, 10, .88, .2, .18);
            cairo.Fill(b.left, b.top + 30, b.width, 20, .88, .72, .23);
            cairo.Fill(b.left, b.top + 50, b.width, 50, .18, .69, .36);
        }
        cairo_surface_flush(cairo.mSurface);
    }
}
BENCHMARK(MetersCairo)->Name("Painter_Meters1000/cairo")->Unit(benchmark::kMicrosecond);

void FieldCairo(benchmark::State& state) {
    CairoPeer cairo;
    const auto glyphs = cairo.Glyphs(kTimeCode, 104, 114);
    for (auto _ : state) {
        cairo.Fill(100, 100, 90, 18, .88, .89, .91);
        cairo.Fill(124, 102, 16, 14, .7, .84, 1);
        cairo_set_source_rgb(cairo.mContext, .06, .06, .06);
        cairo_show_glyphs(cairo.mContext, glyphs.data(), int(glyphs.size()));
        cairo_surface_flush(cairo.mSurface);
    }
}
BENCHMARK(FieldCairo)->Name("Painter_Field/cairo");

#ifdef BENCH_JUCE

// JUCE, with its texts laid out beforehand

void ViewsJuce(benchmark::State& state) {
    JucePainter juce(kWidth, kHeight);
    for (int i = 0; i < kViews; ++i)
        juce.PrepareText(Labels()[std::size_t(i)], float(ViewBox(i).left + 4),
                         float(ViewBox(i).top + 24));
    for (auto _ : state)
        for (int i = 0; i < kViews; ++i) {
            const Box b = ViewBox(i);
            juce.Fill(b.left, b.top, b.width, b.height, 0xFFE0E4E8);
            juce.Frame(b.left, b.top, b.width, b.height, 0xFF808090);
            juce.DrawText(i, 0xFF101010);
        }
}
BENCHMARK(ViewsJuce)->Name("Painter_Views1000/juce")->Unit(benchmark::kMicrosecond);

void WaveformJuce(benchmark::State& state) {
    JucePainter juce(kWidth, kHeight);
    for (auto _ : state)
        juce.Columns(TheWave().minima, TheWave().maxima, 0xFF2EAF5B);
}
BENCHMARK(WaveformJuce)->Name("Painter_Waveform1920/juce")->Unit(benchmark::kMicrosecond);

void MetersJuce(benchmark::State& state) {
    JucePainter juce(kWidth, kHeight);
    for (auto _ : state)
        for (int i = 0; i < kMeters; ++i) {
            const Box b = MeterBox(i);
            juce.Fill(b.left, b.top, b.width, 20, 0xFF101010);
            juce.Fill(b.left, b.top + 20, b.width, 10, 0xFFE0352F);
            juce.Fill(b.left, b.top + 30, b.width, 20, 0xFFE2B93B);
            juce.Fill(b.left, b.top + 50, b.width, 50, 0xFF2EAF5B);
        }
}
BENCHMARK(MetersJuce)->Name("Painter_Meters1000/juce")->Unit(benchmark::kMicrosecond);

void FieldJuce(benchmark::State& state) {
    JucePainter juce(kWidth, kHeight);
    const int text = juce.PrepareText(kTimeCode, 104, 114);
    for (auto _ : state) {
        juce.Fill(100, 100, 90, 18, 0xFFE0E4E8);
        juce.Fill(124, 102, 16, 14, 0xFFB3D7FF);
        juce.DrawText(text, 0xFF101010);
    }
}
BENCHMARK(FieldJuce)->Name("Painter_Field/juce");

#endif

#ifdef BENCH_QT

// QPainter

class QtPeer {
  public:
    QtPeer() : mImage(kWidth, kHeight, QImage::Format_RGB32), mPainter(&mImage) {
        QFont font("DejaVu Sans");
        font.setPixelSize(12);
        mPainter.setFont(font);
        mPainter.setRenderHint(QPainter::Antialiasing, false);
    }
    QImage mImage;
    QPainter mPainter;
};

QStaticText Prepared(QPainter& painter, const std::string& text) {
    QStaticText prepared(QString::fromStdString(text));
    prepared.setTextFormat(Qt::PlainText);
    prepared.setPerformanceHint(QStaticText::AggressiveCaching);
    prepared.prepare(QTransform(), painter.font());
    return prepared;
}

void ViewsQt(benchmark::State& state) {
    QtPeer qt;
    std::vector<QStaticText> texts;
    for (const std::string& label : Labels())
        texts.push_back(Prepared(qt.mPainter, label));
    const QColor fill(0xE0, 0xE4, 0xE8), frame(0x80, 0x80, 0x90), text(0x10, 0x10, 0x10);
    for (auto _ : state)
        for (int i = 0; i < kViews; ++i) {
            const Box b = ViewBox(i);
            qt.mPainter.fillRect(b.left, b.top, b.width, b.height, fill);
            qt.mPainter.setPen(frame);
            qt.mPainter.drawRect(b.left, b.top, b.width - 1, b.height - 1);
            qt.mPainter.setPen(text);
            qt.mPainter.drawStaticText(b.left + 4, b.top + 12, texts[std::size_t(i)]);
        }
}
BENCHMARK(ViewsQt)->Name("Painter_Views1000/qpainter")->Unit(benchmark::kMicrosecond);

void WaveformQt(benchmark::State& state) {
    QtPeer qt;
    const Wave& wave = TheWave();
    QVector<QLine> lines(kColumns);
    for (auto _ : state) {
        for (int i = 0; i < kColumns; ++i)
            lines[i] = QLine(i, wave.minima[std::size_t(i)], i, wave.maxima[std::size_t(i)]);
        qt.mPainter.setPen(QColor(0x2E, 0xAF, 0x5B));
        qt.mPainter.drawLines(lines);
    }
}
BENCHMARK(WaveformQt)->Name("Painter_Waveform1920/qpainter")->Unit(benchmark::kMicrosecond);

void MetersQt(benchmark::State& state) {
    QtPeer qt;
    const QColor back(0x10, 0x10, 0x10), red(0xE0, 0x35, 0x2F), yellow(0xE2, 0xB9, 0x3B),
        green(0x2E, 0xAF, 0x5B);
    for (auto _ : state)
        for (int i = 0; i < kMeters; ++i) {
            const Box b = MeterBox(i);
            qt.mPainter.fillRect(b.left, b.top, b.width, 20, back);
            qt.mPainter.fillRect(b.left, b.top + 20, b.width, 10, red);
            qt.mPainter.fillRect(b.left, b.top + 30, b.width, 20, yellow);
            qt.mPainter.fillRect(b.left, b.top + 50, b.width, 50, green);
        }
}
BENCHMARK(MetersQt)->Name("Painter_Meters1000/qpainter")->Unit(benchmark::kMicrosecond);

void FieldQt(benchmark::State& state) {
    QtPeer qt;
    const QStaticText text = Prepared(qt.mPainter, kTimeCode);
    const QColor fill(0xE0, 0xE4, 0xE8), hilite(0xB3, 0xD7, 0xFF), ink(0x10, 0x10, 0x10);
    for (auto _ : state) {
        qt.mPainter.fillRect(100, 100, 90, 18, fill);
        qt.mPainter.fillRect(124, 102, 16, 14, hilite);
        qt.mPainter.setPen(ink);
        qt.mPainter.drawStaticText(104, 102, text);
    }
}
BENCHMARK(FieldQt)->Name("Painter_Field/qpainter");

#endif

} // namespace

int main(int argc, char** argv) {
#ifdef BENCH_QT
    qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts need an application; no window is opened
    QGuiApplication application(argc, argv);
#endif
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

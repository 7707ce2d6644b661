// The view tree at ten thousand views in eight levels below the root: finding, drawing, mapping,
// building. Every view has three subviews side by side, turn about in rows and columns, so that the
// deepest ones are the squares of a board of 81 by 81.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_types.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/uviewserver.h"

#ifdef BENCH_QT
#include <QApplication>
#include <QImage>
#include <QWidget>
#endif

namespace {

constexpr int kLevels = 8;
constexpr int kSide = 81 * 20; // logical pixels

template <class MakeChild>
void Divide(const VRect& extent, int level, MakeChild&& makeChild) {
    const bool upright = level % 2 == 0;
    const VCoordinate step = (upright ? extent.GetWidth() : extent.GetHeight()) / 3;
    for (int i = 0; i < 3; ++i) {
        VRect frame(0, 0, extent.GetWidth(), extent.GetHeight());
        if (upright) {
            frame.Left() = i * step;
            frame.Right() = (i + 1) * step;
        } else {
            frame.Top() = i * step;
            frame.Bottom() = (i + 1) * step;
        }
        makeChild(frame);
    }
}

// Views

unsigned sNextID = 1;

void Grow(TView* view, int level) {
    if (level == kLevels)
        return;
    Divide(view->GetExtent(), level, [&](const VRect& frame) {
        auto* sub = new TView;
        sub->SetIdentifier(++sNextID);
        sub->IView(view, frame);
        Grow(sub, level + 1);
    });
}

struct Freer {
    void operator()(TView* view) const { view->Free(); }
};
using Tree = std::unique_ptr<TInvalidateView, Freer>;

Tree MakeTree() {
    sNextID = 1;
    Tree root(new TInvalidateView);
    root->SetFrame({0, 0, kSide, kSide}, false, false);
    Grow(root.get(), 0);
    root->SetDrawingPainter(
        QLX_PainterFactory::Get().MakeOffscreen(kSide, kSide, QLX_DeviceScale(), false));
    return root;
}

std::vector<VPoint> Points() {
    std::mt19937 random(10000);
    std::uniform_int_distribution<int> place(0, kSide - 1);
    std::vector<VPoint> points;
    for (int i = 0; i < 1024; ++i)
        points.emplace_back(place(random), place(random));
    return points;
}

void View_HitTest(benchmark::State& state) {
    const Tree root = MakeTree();
    const std::vector<VPoint> points = Points();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(root->FindViewAt(points[i++ % points.size()]));
}
BENCHMARK(View_HitTest);

void View_FindDeep(benchmark::State& state) {
    const Tree root = MakeTree();
    for (auto _ : state)
        benchmark::DoNotOptimize(root->FindSubView(sNextID, true));
}
BENCHMARK(View_FindDeep);

void View_DrawAll(benchmark::State& state) {
    const Tree root = MakeTree();
    for (auto _ : state) {
        root->ForceRedraw();
        root->DrawInvalid();
    }
    state.counters["views"] = static_cast<double>(root->GetCosts().mViewsDrawn) /
                              static_cast<double>(root->GetCosts().mFrames);
}
BENCHMARK(View_DrawAll)->Unit(benchmark::kMicrosecond);

void View_DrawDamage20x20(benchmark::State& state) {
    const Tree root = MakeTree();
    root->DrawInvalid();
    root->GetCosts() = {};
    for (auto _ : state) {
        root->InvalidateRect({810, 810, 830, 830});
        root->DrawInvalid();
    }
    state.counters["views"] = static_cast<double>(root->GetCosts().mViewsVisited) /
                              static_cast<double>(root->GetCosts().mFrames);
}
BENCHMARK(View_DrawDamage20x20);

/// A chain of 32 views, the deepest one last.
TView* MakeChain(TView* root) {
    TView* view = root;
    for (int i = 0; i < 32; ++i) {
        auto* sub = new TView;
        sub->IView(view, {1, 1, 100, 100});
        view = sub;
    }
    return view;
}

void View_LocalToWindow32(benchmark::State& state) {
    const Tree root(new TInvalidateView);
    const TView* deep = MakeChain(root.get());
    for (auto _ : state) {
        VPoint point(3, 4);
        deep->LocalToWindow(point);
        benchmark::DoNotOptimize(point);
    }
}
BENCHMARK(View_LocalToWindow32);

void View_WindowToLocal32(benchmark::State& state) {
    const Tree root(new TInvalidateView);
    const TView* deep = MakeChain(root.get());
    for (auto _ : state) {
        VPoint point(3, 4);
        deep->WindowToLocal(point);
        benchmark::DoNotOptimize(point);
    }
}
BENCHMARK(View_WindowToLocal32);

void Describe(QLX_RawPropertyContainer* container, const VRect& frame, int level) {
    const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
    container->SetStringProperty("class", "TView", filter);
    container->SetIDTypeProperty("Identifier", ++sNextID, filter);
    container->SetRectProperty("Frame", frame, filter);
    if (level == kLevels)
        return;
    Divide(frame, level, [&](const VRect& inside) {
        auto child = std::make_unique<QLX_RawPropertyContainer>("view");
        Describe(child.get(), inside, level + 1);
        container->AddChild(std::move(child));
    });
}

void View_BuildFromPacked(benchmark::State& state) {
    ClassDesc::InitUClassDesc();
    sNextID = 0;
    auto* root = new QLX_RawPropertyContainer("viewhierarchy");
    auto view = std::make_unique<QLX_RawPropertyContainer>("view");
    Describe(view.get(), {0, 0, kSide, kSide}, 0);
    root->AddChild(std::move(view));
    const QLX_ViewMemento memento(root, "bench");
    const std::string packed = QLX_BinaryViewFormat::EncodeMemento(memento);
    for (auto _ : state) {
        const Cmn_AliasedRefCountPtr<QLX_ViewMemento> read(
            QLX_BinaryViewFormat::DecodeMemento(packed, "bench").release());
        TView* tree = TViewServer::Get()->NewViewHierarchy(read);
        state.PauseTiming();
        tree->Free();
        state.ResumeTiming();
    }
    state.counters["views"] = sNextID;
}
BENCHMARK(View_BuildFromPacked)->Unit(benchmark::kMillisecond);

#ifdef BENCH_QT

QApplication& Application() {
    static int argc = 1;
    static char name[] = "view_bench";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
    return application;
}

int sWidgets = 0;

void Grow(QWidget* widget, int level) {
    if (level == kLevels)
        return;
    Divide({0, 0, widget->width(), widget->height()}, level, [&](const VRect& frame) {
        auto* child = new QWidget(widget);
        child->setObjectName(QString::number(++sWidgets));
        child->setGeometry(static_cast<int>(frame.Left()), static_cast<int>(frame.Top()),
                           static_cast<int>(frame.GetWidth()), static_cast<int>(frame.GetHeight()));
        Grow(child, level + 1);
    });
}

std::unique_ptr<QWidget> MakeWidgets() {
    Application();
    sWidgets = 0;
    auto root = std::make_unique<QWidget>();
    root->setGeometry(0, 0, kSide, kSide);
    Grow(root.get(), 0);
    return root;
}

void QWidget_HitTest(benchmark::State& state) {
    const auto root = MakeWidgets();
    root->show();
    const std::vector<VPoint> points = Points();
    std::size_t i = 0;
    for (auto _ : state) {
        const VPoint& point = points[i++ % points.size()];
        benchmark::DoNotOptimize(
            root->childAt(static_cast<int>(point.h), static_cast<int>(point.v)));
    }
}
BENCHMARK(QWidget_HitTest)->Name("View_HitTest/qt");

void QWidget_FindDeep(benchmark::State& state) {
    const auto root = MakeWidgets();
    const QString last = QString::number(sWidgets);
    for (auto _ : state)
        benchmark::DoNotOptimize(root->findChild<QWidget*>(last));
}
BENCHMARK(QWidget_FindDeep)->Name("View_FindDeep/qt");

void QWidget_DrawAll(benchmark::State& state) {
    const auto root = MakeWidgets();
    root->show();
    QImage image(kSide, kSide, QImage::Format_RGB32);
    for (auto _ : state)
        root->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
}
BENCHMARK(QWidget_DrawAll)->Name("View_DrawAll/qt")->Unit(benchmark::kMicrosecond);

void QWidget_DrawDamage20x20(benchmark::State& state) {
    const auto root = MakeWidgets();
    root->show();
    QImage image(kSide, kSide, QImage::Format_RGB32);
    const QRegion damage(810, 810, 20, 20);
    for (auto _ : state)
        root->render(&image, QPoint(), damage, QWidget::DrawChildren);
}
BENCHMARK(QWidget_DrawDamage20x20)->Name("View_DrawDamage20x20/qt");

QWidget* MakeChain(QWidget* root) {
    QWidget* widget = root;
    for (int i = 0; i < 32; ++i) {
        widget = new QWidget(widget);
        widget->setGeometry(1, 1, 99, 99);
    }
    return widget;
}

void QWidget_LocalToWindow32(benchmark::State& state) {
    Application();
    QWidget root;
    const QWidget* deep = MakeChain(&root);
    for (auto _ : state)
        benchmark::DoNotOptimize(deep->mapTo(&root, QPoint(3, 4)));
}
BENCHMARK(QWidget_LocalToWindow32)->Name("View_LocalToWindow32/qt");

void QWidget_WindowToLocal32(benchmark::State& state) {
    Application();
    QWidget root;
    const QWidget* deep = MakeChain(&root);
    for (auto _ : state)
        benchmark::DoNotOptimize(deep->mapFrom(&root, QPoint(3, 4)));
}
BENCHMARK(QWidget_WindowToLocal32)->Name("View_WindowToLocal32/qt");

void QWidget_Build(benchmark::State& state) {
    Application();
    for (auto _ : state) {
        auto root = MakeWidgets();
        state.PauseTiming();
        root.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(QWidget_Build)->Name("View_BuildFromPacked/qt")->Unit(benchmark::kMillisecond);

#endif

} // namespace

BENCHMARK_MAIN();

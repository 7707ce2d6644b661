// What a menu of 200 items costs until it stands on the screen (aim: one frame of 8 ms), a thousand
// buttons hilited and released, a list of a million rows scrolled by a page, a letter typed into a
// field of text; all in memory, beside Qt's widgets on its offscreen platform.
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindow.h"

#ifdef BENCH_QT
#include <QAbstractListModel>
#include <QApplication>
#include <QKeyEvent>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#endif

namespace {

constexpr int kItems = 200;
constexpr int kButtons = 1000;
constexpr int kWidth = 400;
constexpr int kHeight = 300;

std::string ItemText(int item) { return "Command number " + std::to_string(item); }

std::string Lines(std::size_t count) {
    std::string text;
    for (std::size_t line = 0; line < count; ++line)
        text += "A line of a comment that somebody wrote.\n";
    return text;
}

/// A window in memory, drawn at once after each change.
struct Window {
    Window() {
        mWindow = new TWindow;
        mWindow->IWindow("bench", VPoint(kWidth, kHeight));
        mDriver.OpenWindow(*mWindow);
    }
    ~Window() { mWindow->Free(); }
    void Show() { mDriver.WaitForIdle(); }
    QLX_TestDriver mDriver;
    TWindow* mWindow;
};

void Menu_OpenAndDraw(benchmark::State& state) {
    Window window;
    TMenu menu("Menu");
    for (int i = 0; i < kItems; ++i)
        menu.AppendItem(TMenuItem::NewCommand(0, ItemText(i)));
    for (auto _ : state) {
        TMenuLayer* layer =
            TMenuLayer::Open(window.mWindow, &menu, VRect(10, 10, 60, 30), -1, nullptr);
        window.Show();
        state.PauseTiming();
        layer->Close();
        window.Show();
        state.ResumeTiming();
    }
}
BENCHMARK(Menu_OpenAndDraw)->Name("Menu_OpenAndDraw/200")->Unit(benchmark::kMillisecond);

void Buttons_HiliteAndRelease(benchmark::State& state) {
    Window window;
    std::vector<TButton*> buttons;
    for (int i = 0; i < kButtons; ++i) {
        buttons.push_back(new TButton);
        const int left = i % 40 * 10;
        const int top = i / 40 * 12;
        buttons.back()->IView(window.mWindow, VRect(left, top, left + 8, top + 10));
    }
    window.Show();
    for (auto _ : state)
        for (const bool hilited : {true, false}) {
            for (TButton* button : buttons)
                button->SetHilite(hilited, /*redraw*/ true);
            window.Show();
        }
}
BENCHMARK(Buttons_HiliteAndRelease)
    ->Name("Buttons_HiliteAndRelease/1000")
    ->Unit(benchmark::kMillisecond);

void List_ScrollAPage(benchmark::State& state) {
    Window window;
    auto* scroller = new TScroller;
    scroller->IView(window.mWindow, VRect(0, 0, kWidth, kHeight));
    auto* list = new TTextList;
    list->IView(scroller, VRect(0, 0, kWidth, kHeight));
    list->SetRows(1'000'000, [](std::int64_t row) { return ItemText(static_cast<int>(row)); });
    window.Show();
    VCoordinate place = 0;
    for (auto _ : state) {
        place = (place + kHeight - 20) % 10'000'000;
        scroller->ScrollContentTo(VPoint(0, place), /*redraw*/ true);
        window.Show();
    }
}
BENCHMARK(List_ScrollAPage)->Name("List_ScrollAPage/1000000");

/// A letter typed in the middle of a text of so many lines, and shown.
void Text_TypeALetter(benchmark::State& state) {
    const auto lines = static_cast<std::size_t>(state.range(0));
    Window window;
    auto* field = new TEditText;
    field->SetMultiline(true, /*redraw*/ false);
    field->IView(window.mWindow, VRect(0, 0, kWidth, kHeight));
    field->SetText(Lines(lines), /*redraw*/ false);
    field->BecomeTarget();
    const std::size_t middle = field->GetText().size() / 2;
    field->Select(middle, middle);
    window.Show();
    for (auto _ : state) {
        field->DoTextInput("x");
        window.Show();
        state.PauseTiming();
        window.mDriver.Chord("Backspace");
        state.ResumeTiming();
    }
}
BENCHMARK(Text_TypeALetter)->Arg(20)->Arg(10000)->Unit(benchmark::kMicrosecond);

#ifdef BENCH_QT

QApplication& Application() {
    static int argc = 1;
    static char name[] = "controls_bench";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
    return application;
}

void Menu_OpenAndDrawQt(benchmark::State& state) {
    Application();
    QMenu menu;
    for (int i = 0; i < kItems; ++i)
        menu.addAction(QString::fromStdString(ItemText(i)));
    for (auto _ : state) {
        menu.popup(QPoint(10, 10));
        QApplication::processEvents();
        menu.repaint();
        state.PauseTiming();
        menu.close();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(Menu_OpenAndDrawQt)->Name("Menu_OpenAndDraw/qt/200")->Unit(benchmark::kMillisecond);

void Buttons_HiliteAndReleaseQt(benchmark::State& state) {
    Application();
    QWidget window;
    window.resize(kWidth, kHeight);
    std::vector<QPushButton*> buttons;
    for (int i = 0; i < kButtons; ++i) {
        buttons.push_back(new QPushButton(&window));
        buttons.back()->setGeometry(i % 40 * 10, i / 40 * 12, 8, 10);
    }
    window.show();
    QApplication::processEvents();
    for (auto _ : state)
        for (const bool down : {true, false}) {
            for (QPushButton* button : buttons)
                button->setDown(down);
            QApplication::processEvents();
        }
}
BENCHMARK(Buttons_HiliteAndReleaseQt)
    ->Name("Buttons_HiliteAndRelease/qt/1000")
    ->Unit(benchmark::kMillisecond);

class Rows : public QAbstractListModel {
  public:
    int rowCount(const QModelIndex&) const override { return 1'000'000; }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? QVariant(QString::fromStdString(ItemText(index.row())))
                                       : QVariant();
    }
};

void List_ScrollAPageQt(benchmark::State& state) {
    Application();
    Rows rows;
    QListView list;
    list.setUniformItemSizes(true);
    list.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list.setModel(&rows);
    list.resize(kWidth, kHeight);
    list.show();
    QApplication::processEvents();
    int place = 0;
    for (auto _ : state) {
        place = (place + kHeight - 20) % 10'000'000;
        list.verticalScrollBar()->setValue(place);
        QApplication::processEvents();
    }
}
BENCHMARK(List_ScrollAPageQt)->Name("List_ScrollAPage/qt/1000000");

void Text_TypeALetterQt(benchmark::State& state) {
    Application();
    QPlainTextEdit field;
    field.resize(kWidth, kHeight);
    field.setPlainText(QString::fromStdString(Lines(static_cast<std::size_t>(state.range(0)))));
    QTextCursor cursor = field.textCursor();
    cursor.setPosition(static_cast<int>(field.document()->characterCount() / 2));
    field.setTextCursor(cursor);
    field.show();
    QApplication::processEvents();
    for (auto _ : state) {
        field.insertPlainText("x");
        QApplication::processEvents();
        state.PauseTiming();
        field.textCursor().deletePreviousChar();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(Text_TypeALetterQt)
    ->Name("Text_TypeALetter/qt")
    ->Arg(20)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);

#endif

} // namespace

BENCHMARK_MAIN();

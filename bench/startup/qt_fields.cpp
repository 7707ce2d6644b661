// The same in Qt Widgets: twenty line edits in a window of the offscreen platform, to the end of
// the first frame.
#include <QApplication>
#include <QLineEdit>
#include <QWidget>

namespace {

int sPainted = 0;

class Field : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QLineEdit::paintEvent(event);
        ++sPainted;
    }
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle("Fields");
    window.resize(420, 280);
    for (int i = 0; i < 20; ++i) {
        auto* field = new Field(QString("Field %1").arg(i + 1), &window);
        field->setGeometry(10 + i % 2 * 205, 10 + i / 2 * 26, 195, 22);
    }
    window.show();
    for (int turn = 0; turn < 100 && sPainted < 20; ++turn)
        application.processEvents();
    return sPainted >= 20 ? 0 : 1;
}

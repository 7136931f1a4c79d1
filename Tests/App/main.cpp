#include <QApplication>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace {

/// The usual one, and a small one to its right.
constexpr auto screens = R"({"screens": [
    {"name": "one", "x": 0, "y": 0, "width": 800, "height": 800, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1},
    {"name": "two", "x": 800, "y": 0, "width": 500, "height": 300, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}
]})";

}  // namespace

int main(int argc, char** argv) {
    QTemporaryFile file;
    if (!file.open() || file.write(screens) < 0 || !file.flush()) return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toUtf8());
    qunsetenv("QT_NO_GLIB");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // A question hears its first press at once.
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

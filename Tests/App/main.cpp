#include <QApplication>
#include <QQuickWindow>
#include <QStyleHints>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_NO_GLIB");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // A question hears its first press at once.
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

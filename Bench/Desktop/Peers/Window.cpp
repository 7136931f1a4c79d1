// A program that has shown an empty QML window for a second, and goes on without it.
#include <memory>

#include <QApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    auto engine = std::make_unique<QQmlEngine>();
    QQmlComponent component(engine.get());
    component.setData("import QtQuick\nWindow { width: 360; height: 480; visible: true; title: \"Peer\" }", {});
    std::unique_ptr<QObject> window(component.create());
    QTimer::singleShot(1000, [&] {
        window.reset();
        engine.reset();
    });
    return QApplication::exec();
}

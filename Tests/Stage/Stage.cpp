#include "Tests/Stage/Stage.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QStyleHints>
#include <QTimer>
#include <QWheelEvent>

namespace ravik::stage {

Stage::Stage(const std::function<void(fakes::FakeMachine&)>& furnish) {
    fakes::FakeMachine& on = m_computer.machine;
    furnish(on);
    on.defaults.values["firstRunDone"] = true;
    on.folders.log = m_folder.path() / "log";
    on.folders.historyCache = m_folder.path() / "history";
    m_log = std::make_unique<Log>(Log::Options{.folder = on.folders.log,
                                               .formerFolder = m_folder.path() / "former",
                                               .now = [&on] { return on.clock.now(); },
                                               .session = "0123ABCD"});
    m_controller = std::make_unique<app::StatusBarController>(m_computer, *m_log, on.host);
}

Stage::~Stage() {
    m_controller->terminate();
    m_controller.reset();
    QCoreApplication::processEvents();
}

void Stage::launch() { m_controller->launch(); }

void Stage::pass(double seconds) {
    machine().loop.runFor(seconds);
    QCoreApplication::processEvents();
}

void Stage::draw(int milliseconds) {
    const QDeadlineTimer end(milliseconds);
    // With a time given, processEvents() would not sleep between events.
    QTimer waking;
    waking.start(10);
    while (!end.hasExpired()) {
        machine().loop.settle();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void Stage::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QQuickWindow* to = window();
    if (!to) return;
    QKeyEvent down(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(to, &down);
    QKeyEvent up(QEvent::KeyRelease, key, modifiers);
    QCoreApplication::sendEvent(to, &up);
    draw();
}

void Stage::scrollDown() {
    QQuickWindow* over = window();
    if (!over) return;
    const QPointF middle(over->width() / 2.0, over->height() / 2.0);
    constexpr QPoint farDown(0, -120 * 100);
    QWheelEvent wheel(middle, over->mapToGlobal(middle), {}, farDown, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(over, &wheel);
    draw();
}

QQuickWindow* Stage::window() {
    QQuickWindow* last = nullptr;
    for (QWindow* one : QGuiApplication::topLevelWindows()) {
        auto* quick = qobject_cast<QQuickWindow*>(one);
        if (quick && quick->isVisible()) last = quick;
    }
    return last;
}

void prepareApplication() {
    QApplication::setApplicationName(QStringLiteral("Ravik"));
    QApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // A question hears its first press at once.
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
}

}  // namespace ravik::stage

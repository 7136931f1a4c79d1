#include "App/Views/Questions.h"

#include <utility>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "App/Views/QuestionView.h"

namespace ravik::app {

Questions::Questions(QmlFrame& frame, const Program& program) : m_frame(frame), m_program(program) {}

Questions::~Questions() { end(); }

Task<bool> Questions::ask(const Confirmation& question) {
    if (m_hasEnded || m_resume) {
        raise();
        co_return false;
    }
    co_return co_await Callback<bool>(
        [this, &question](std::function<void(bool)> resume) { put(question, std::move(resume)); });
}

void Questions::put(const Confirmation& question, std::function<void(bool)> resume) {
    m_resume = std::move(resume);
    auto view = std::make_unique<QuestionView>(QuestionScreen(question, m_program.monitor.host()),
                                               [this](bool yes) { answer(yes); });
    auto& keys = *view;
    m_window = m_frame.open("QuestionWindow", std::move(view));
    keys.watch(*m_window);
    // Where the user is.
    const QWindow* front = QGuiApplication::focusWindow();
    QScreen* screen = front ? front->screen() : QGuiApplication::screenAt(QCursor::pos());
    if (screen) m_window->setScreen(screen);
    Q_EMIT asked();
    const QRect free = m_window->screen() ? m_window->screen()->availableGeometry() : QRect();
    m_window->setPosition(free.center() - QRect(QPoint(), m_window->size()).center());
    m_window->show();
    raise();
}

void Questions::raise() {
    if (!m_window) return;
    m_window->raise();
    m_window->requestActivate();
}

void Questions::answer(bool yes) {
    if (!m_window) return;
    QQuickWindow* window = std::exchange(m_window, nullptr);
    // What comes back stands first: with no window of the program's on the screen the keyboard goes to nobody, and that
    // may be told only after it has come back, which looks as if the user had left.
    Q_EMIT answered();
    m_frame.close(window);
    // What follows may block the loop for seconds: the window goes first.
    QMetaObject::invokeMethod(
        this, [this, yes] { resume(yes); }, Qt::QueuedConnection);
}

void Questions::resume(bool yes) {
    if (const auto once = std::exchange(m_resume, {})) once(yes);
}

void Questions::end() {
    m_hasEnded = true;
    if (m_window) {
        m_frame.close(std::exchange(m_window, nullptr));
        Q_EMIT answered();
    }
    resume(false);
}

}  // namespace ravik::app

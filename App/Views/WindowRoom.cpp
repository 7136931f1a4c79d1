#include "App/Views/WindowRoom.h"

#include <QScreen>

namespace ravik::app {

void WindowRoom::setWindow(QQuickWindow* window) {
    if (m_window) m_window->disconnect(this);
    m_window = window;
    if (m_window) connect(m_window, &QWindow::screenChanged, this, &WindowRoom::follow);
    follow();
}

void WindowRoom::follow() {
    disconnect(m_following);
    if (const QScreen* screen = m_window ? m_window->screen() : nullptr) {
        m_following = connect(screen, &QScreen::availableGeometryChanged, this, &WindowRoom::read);
    }
    read();
}

void WindowRoom::read() {
    const QScreen* screen = m_window ? m_window->screen() : nullptr;
    const QSize size = screen ? screen->availableSize() : QSize();
    if (size == m_size) return;
    m_size = size;
    Q_EMIT changed();
}

}  // namespace ravik::app

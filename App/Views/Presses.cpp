#include "App/Views/Presses.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QStyleHints>

namespace ravik::app {

bool Presses::isMeant(QQuickItem* item, QPointF at) const {
    const QStyleHints* hints = QGuiApplication::styleHints();
    if (!m_since.isValid() || m_since.elapsed() >= hints->mouseDoubleClickInterval() || m_last == item) return true;
    const qreal moved = (item->mapToGlobal(at) - m_at).manhattanLength();
    return moved > hints->mouseDoubleClickDistance() && isStillThere();
}

void Presses::note(QQuickItem* item, QPointF at) {
    m_last = item;
    m_place = item->mapToGlobal(QPointF());
    m_at = item->mapToGlobal(at);
    m_since.start();
}

bool Presses::isStillThere() const {
    if (!m_last || !m_last->isVisible() || !m_last->isEnabled()) return false;
    const QQuickWindow* window = m_last->window();
    return window && window->isVisible() && m_last->mapToGlobal(QPointF()) == m_place;
}

}  // namespace ravik::app

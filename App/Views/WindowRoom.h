#pragma once

#include <QtQml/qqmlregistration.h>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>

namespace ravik::app {

/// The room that a window has on the one screen it stands on, without the desktop's own bars. Follows the window from
/// screen to screen. Main thread.
class WindowRoom : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickWindow* window READ window WRITE setWindow REQUIRED FINAL)
    Q_PROPERTY(int width READ width NOTIFY changed FINAL)
    Q_PROPERTY(int height READ height NOTIFY changed FINAL)

public:
    using QObject::QObject;

    QQuickWindow* window() const { return m_window; }
    void setWindow(QQuickWindow* window);
    int width() const { return m_size.width(); }
    int height() const { return m_size.height(); }

Q_SIGNALS:
    void changed();

private:
    void follow();
    void read();

    QPointer<QQuickWindow> m_window;
    QMetaObject::Connection m_following;
    QSize m_size;
};

}  // namespace ravik::app

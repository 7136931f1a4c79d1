#pragma once

#include <QtQml/qqmlregistration.h>
#include <QElapsedTimer>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QQuickItem>

namespace ravik::app {

/// Tells which press of the pointer was meant for what it hits. The second one of a double click was not, where what
/// the first one hit has gone from there or been covered: a row that left under the pointer, a question that was
/// answered. One for all windows. Main thread.
class Presses : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// `at`: of the press, in the coordinates of `item`.
    Q_INVOKABLE bool isMeant(QQuickItem* item, QPointF at) const;
    /// To be called before anything comes of the press.
    Q_INVOKABLE void note(QQuickItem* item, QPointF at);

private:
    bool isStillThere() const;

    QPointer<QQuickItem> m_last;
    /// On the screen: what was pressed last, and where.
    QPointF m_place;
    QPointF m_at;
    QElapsedTimer m_since;
};

}  // namespace ravik::app

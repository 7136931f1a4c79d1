#pragma once

#include <QPainterPath>
#include <QPointer>
#include <QQuickPaintedItem>

#include "App/Views/MapView.h"

namespace ravik::app {

/// Draws the ring of the machine's memory: apps on the inner ring, what each can give back on the outer one. As large
/// as the smaller of its sides; the screen's direction of reading does not turn it.
class MemoryMap : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(MapView* map READ map WRITE setMap NOTIFY mapChanged FINAL)
    /// What lies between two apps: the surface that the ring stands on.
    Q_PROPERTY(QColor surface MEMBER m_surface NOTIFY changed FINAL)
    /// Pixels of an app's icon within its arc.
    Q_PROPERTY(qreal iconSize MEMBER m_iconSize NOTIFY changed FINAL)
    /// The free space in the middle, across.
    Q_PROPERTY(qreal hole READ hole NOTIFY changed FINAL)

public:
    explicit MemoryMap(QQuickItem* parent = nullptr);

    MapView* map() const { return m_map; }
    void setMap(MapView* map);
    qreal hole() const;

    /// The id of the arc at this place; empty where there is none.
    Q_INVOKABLE QString arcAt(qreal x, qreal y) const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void mapChanged();
    void changed();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    /// Of the drawing, to pixels.
    qreal unit() const;
    QPointF middle() const { return {width() / 2, height() / 2}; }
    QRectF around(qreal radius) const;
    QPointF at(qreal degrees, qreal radius) const;
    QPainterPath stretch(const MapScreen::Span& span, qreal inner, qreal outer) const;
    void paintArc(QPainter* painter, const MapScreen::Arc& arc) const;
    void paintIcon(QPainter* painter, const MapScreen::Arc& arc) const;
    void paintLine(QPainter* painter, qreal degrees, qreal from, qreal to, const QPen& pen) const;

    QPointer<MapView> m_map;
    QColor m_surface = Qt::transparent;
    qreal m_iconSize = 16;
};

}  // namespace ravik::app

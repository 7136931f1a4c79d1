#include "App/Views/ToneShape.h"

#include <QPainter>

namespace ravik::app {

namespace {

constexpr qreal box = 10;
constexpr qreal line = 1.5;

}  // namespace

ToneShape::ToneShape(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setImplicitSize(box, box);
    setAntialiasing(true);
}

void ToneShape::setTone(tone::Value tone) {
    if (m_tone == tone) return;
    m_tone = tone;
    update();
    Q_EMIT changed();
}

void ToneShape::setColor(const QColor& color) {
    if (m_color == color) return;
    m_color = color;
    update();
    Q_EMIT changed();
}

void ToneShape::paint(QPainter* painter) {
    painter->scale(width() / box, height() / box);
    const QPointF middle(box / 2, box / 2);
    QPen pen(m_color, line, Qt::SolidLine, Qt::FlatCap);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_color);
    switch (m_tone) {
        case tone::Value::Safe: painter->drawEllipse(middle, 4, 4); return;
        case tone::Value::Never: painter->drawRoundedRect(QRectF(1.25, 1.25, 7.5, 7.5), 1, 1); return;
        case tone::Value::Advice: pen.setDashPattern({2.1 / line, 1.83 / line}); break;
        case tone::Value::Caution: break;
    }
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    painter->drawEllipse(middle, 3.75, 3.75);
}

}  // namespace ravik::app

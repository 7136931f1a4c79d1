#include "App/Views/MemoryMap.h"

#include <cmath>

#include <QPainter>

#include "App/Views/AppIcon.h"
#include "App/Views/Hatch.h"
#include "App/Views/Tokens.h"

namespace ravik::app {

namespace {

// Of a drawing of this size, from its middle.
constexpr qreal whole = 304;
constexpr qreal innerFrom = 90;
constexpr qreal innerTo = 128;
constexpr qreal outerFrom = 132;
constexpr qreal outerTo = 144;
constexpr qreal lineOver = 3;  // what the line of the installed memory stands out on each side

constexpr qreal iconRoom = 6;

}  // namespace

MemoryMap::MemoryMap(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &MemoryMap::changed, this, [this] { update(); });
    connect(&Tokens::instance(), &Tokens::coloursChanged, this, [this] { update(); });
}

void MemoryMap::setMap(MapView* map) {
    if (m_map == map) return;
    if (m_map) m_map->disconnect(this);
    m_map = map;
    if (m_map) connect(m_map, &View::changed, this, [this] { update(); });
    update();
    Q_EMIT mapChanged();
}

void MemoryMap::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.size() != before.size()) Q_EMIT changed();
}

void MemoryMap::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickPaintedItem::itemChange(change, value);
    if (change == ItemActiveFocusHasChanged) update();
}

qreal MemoryMap::unit() const { return qMin(width(), height()) / whole; }

qreal MemoryMap::hole() const { return 2 * innerFrom * unit(); }

QRectF MemoryMap::around(qreal radius) const {
    const qreal pixels = radius * unit();
    return {middle().x() - pixels, middle().y() - pixels, 2 * pixels, 2 * pixels};
}

QPointF MemoryMap::at(qreal degrees, qreal radius) const {
    const qreal angle = qDegreesToRadians(degrees);
    return middle() + QPointF(std::sin(angle), -std::cos(angle)) * (radius * unit());
}

QPainterPath MemoryMap::stretch(const MapScreen::Span& span, qreal inner, qreal outer) const {
    // Qt counts from three o'clock, against the clock.
    const qreal start = 90 - span.start;
    QPainterPath path;
    path.arcMoveTo(around(outer), start);
    path.arcTo(around(outer), start, -span.degrees);
    path.arcTo(around(inner), start - span.degrees, span.degrees);
    path.closeSubpath();
    return path;
}

QString MemoryMap::arcAt(qreal x, qreal y) const {
    if (!m_map || unit() <= 0) return {};
    const QPointF from = QPointF(x, y) - middle();
    const qreal radius = std::hypot(from.x(), from.y()) / unit();
    if (radius < innerFrom || radius > outerTo) return {};
    qreal degrees = qRadiansToDegrees(std::atan2(from.x(), -from.y()));
    if (degrees < 0) degrees += 360;
    for (const auto& arc : m_map->face().arcs) {
        if (degrees >= arc.span.start && degrees < arc.span.start + arc.span.degrees) return text(arc.id);
    }
    return {};
}

void MemoryMap::paintLine(QPainter* painter, qreal degrees, qreal from, qreal to, const QPen& pen) const {
    painter->setPen(pen);
    painter->drawLine(at(degrees, from), at(degrees, to));
}

void MemoryMap::paintArc(QPainter* painter, const MapScreen::Arc& arc) const {
    const Tokens& tokens = Tokens::instance();
    const bool isRest = arc.fill == MapScreen::Arc::Fill::rest;
    const QPainterPath path = stretch(arc.span, innerFrom, innerTo);
    painter->fillPath(path, isRest ? tokens.rest() : tokens.tolvaneData());
    if (arc.isSelected) painter->fillPath(path, tokens.tolvaneData());
    const double end = arc.span.start + arc.span.degrees;
    if (const double ram = m_map->face().ramAt; end > ram) {
        const double from = qMax(arc.span.start, ram);
        painter->fillPath(stretch({from, end - from}, innerFrom, innerTo), tokens.tolvaneSwap());
    }
    if (arc.quit.degrees > 0) {
        painter->save();
        const QPainterPath quit = stretch(arc.quit, outerFrom, outerTo);
        painter->setClipPath(quit);
        paintHatch(painter, quit.boundingRect());
        painter->restore();
    }
    if (arc.free.degrees > 0) {
        painter->fillPath(stretch(arc.free, outerFrom, outerTo), tokens.tolvaneSignalFill());
    }
}

void MemoryMap::paintIcon(QPainter* painter, const MapScreen::Arc& arc) const {
    constexpr qreal half = (innerFrom + innerTo) / 2;
    const qreal length = qDegreesToRadians(arc.span.degrees) * half * unit();
    const qreal thickness = (innerTo - innerFrom) * unit();
    if (!arc.icon || length < m_iconSize + iconRoom || thickness < m_iconSize + iconRoom) return;
    QRectF square(0, 0, m_iconSize, m_iconSize);
    square.moveCenter(at(arc.span.start + arc.span.degrees / 2, half));
    AppIcon::draw(painter, square, *arc.icon, false);
}

void MemoryMap::paint(QPainter* painter) {
    if (!m_map) return;
    const Tokens& tokens = Tokens::instance();
    const MapScreen& face = m_map->face();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(stretch({face.heldAt, 360 - face.heldAt}, innerFrom, innerTo), tokens.track());
    for (const auto& arc : face.arcs) paintArc(painter, arc);
    for (const auto& arc : face.arcs) {
        paintLine(painter, arc.span.start, innerFrom, outerTo, QPen(m_surface, 1.5));
        paintLine(painter, arc.span.start + arc.span.degrees, innerFrom, outerTo, QPen(m_surface, 1.5));
    }
    for (const auto& arc : face.arcs) paintIcon(painter, arc);

    const bool hasKeys = hasActiveFocus();
    bool isChosen = false;
    for (const auto& arc : face.arcs) {
        if (!arc.isSelected) continue;
        isChosen = true;
        const QPen pen = hasKeys ? QPen(tokens.tolvaneSignalText(), 2) : QPen(tokens.text(), 1.5);
        painter->strokePath(stretch(arc.span, innerFrom, innerTo), pen);
    }
    paintLine(painter, face.ramAt, innerFrom - lineOver, innerTo + lineOver,
              QPen(tokens.text(), 2, Qt::SolidLine, Qt::RoundCap));
    if (hasKeys && !isChosen) {
        painter->setPen(QPen(tokens.tolvaneSignalText(), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawEllipse(around(whole / 2).adjusted(1, 1, -1, -1));
    }
}

}  // namespace ravik::app

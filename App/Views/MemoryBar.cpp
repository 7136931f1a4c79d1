#include "App/Views/MemoryBar.h"

#include <QPainter>
#include <QPainterPath>

#include "App/Views/AppIcon.h"
#include "App/Views/Hatch.h"
#include "App/Views/Tokens.h"

namespace ravik::app {

namespace {

constexpr qreal roundness = 5;
constexpr qreal lineWidth = 2;
constexpr qreal iconRoom = 6;  // an icon stands only in a part that is so much wider

}  // namespace

MemoryBar::MemoryBar(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setThickness(20);
    setAntialiasing(true);
    connect(this, &MemoryBar::changed, this, [this] { update(); });
    connect(&Tokens::instance(), &Tokens::coloursChanged, this, [this] { update(); });
}

void MemoryBar::setPicture(MemoryPictureView* picture) {
    if (m_picture == picture) return;
    if (m_picture) m_picture->disconnect(this);
    m_picture = picture;
    if (m_picture) connect(m_picture, &View::changed, this, [this] { update(); });
    update();
    Q_EMIT pictureChanged();
}

void MemoryBar::setThickness(qreal thickness) {
    setImplicitHeight(thickness + 2 * lineOver);
    Q_EMIT changed();
}

QRectF MemoryBar::part(double from, double length) const {
    const qreal start = qRound(from * width());
    const qreal end = qRound((from + length) * width());
    return {m_isMirrored ? width() - end : start, lineOver, end - start, height() - 2 * lineOver};
}

void MemoryBar::paintSegment(QPainter* painter, const MemoryBarFace::Segment& segment, double ramAt) const {
    const Tokens& tokens = Tokens::instance();
    const QRectF stays = part(segment.start, segment.stays);
    const QRectF quit = part(segment.start + segment.stays, segment.quit);
    const QRectF free = part(segment.start + segment.stays + segment.quit, segment.free);
    painter->fillRect(stays, segment.isRest ? tokens.rest() : tokens.tolvaneData());
    const double staysTo = segment.start + segment.stays;
    if (staysTo > ramAt) {
        const double from = qMax(segment.start, ramAt);
        painter->fillRect(part(from, staysTo - from), tokens.tolvaneSwap());
    }
    paintHatch(painter, quit);
    painter->fillRect(free, tokens.tolvaneSignalFill());

    const double end = segment.start + segment.stays + segment.quit + segment.free;
    if (segment.icon && m_iconSize > 0 && stays.width() >= m_iconSize + iconRoom) {
        QRectF square(0, 0, m_iconSize, m_iconSize);
        square.moveCenter(stays.center());
        AppIcon::draw(painter, square, *segment.icon, false);
    }
    const QRectF last = part(end, 0);
    painter->fillRect(QRectF(m_isMirrored ? last.left() : last.left() - 1, last.top(), 1, last.height()), m_surface);
}

void MemoryBar::paint(QPainter* painter) {
    const Tokens& tokens = Tokens::instance();
    const QRectF whole = part(0, 1);
    QPainterPath shape;
    shape.addRoundedRect(whole, roundness, roundness);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->save();
    painter->setClipPath(shape);
    painter->fillRect(whole, tokens.track());
    if (m_picture) {
        for (const auto& segment : m_picture->face().segments) paintSegment(painter, segment, m_picture->face().ramAt);
    }
    painter->restore();

    if (!m_picture) return;
    const qreal at = m_picture->face().ramAt * (width() - lineWidth);
    painter->setPen(Qt::NoPen);
    painter->setBrush(tokens.text());
    painter->drawRoundedRect(QRectF(m_isMirrored ? width() - at - lineWidth : at, 0, lineWidth, height()), 1, 1);
}

}  // namespace ravik::app

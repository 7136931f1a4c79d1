#include "App/Views/Hatch.h"

#include "App/Views/Tokens.h"

namespace ravik::app {

namespace {

constexpr qreal stripe = 2;
constexpr qreal pitch = 5.5;  // across the stripes

}  // namespace

void paintHatch(QPainter* painter, const QRectF& area) {
    if (area.isEmpty()) return;
    const Tokens& tokens = Tokens::instance();
    painter->save();
    painter->setClipRect(area, Qt::IntersectClip);
    painter->fillRect(area, tokens.tolvaneData());
    painter->setPen(QPen(tokens.tolvaneSignalFill(), stripe, Qt::SolidLine, Qt::FlatCap));
    const qreal step = pitch * M_SQRT2;
    const qreal first = area.left() - area.height();
    const int last = static_cast<int>((area.right() - first) / step) + 1;
    for (int i = 0; i <= last; ++i) {
        const qreal x = first + i * step;
        painter->drawLine(QPointF(x, area.bottom()), QPointF(x + area.height(), area.top()));
    }
    painter->restore();
}

}  // namespace ravik::app

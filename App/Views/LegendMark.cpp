#include "App/Views/LegendMark.h"

#include <QPainter>
#include <QPainterPath>

#include "App/Views/Hatch.h"
#include "App/Views/Tokens.h"
#include "Core/Wording/MemoryPicture.h"

namespace ravik::app {

LegendMark::LegendMark(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setImplicitSize(10, 10);
    setAntialiasing(true);
    connect(this, &LegendMark::changed, this, [this] { update(); });
    connect(&Tokens::instance(), &Tokens::coloursChanged, this, [this] { update(); });
}

void LegendMark::setMark(int mark) {
    if (m_mark == mark) return;
    m_mark = mark;
    Q_EMIT changed();
}

void LegendMark::paint(QPainter* painter) {
    const Tokens& tokens = Tokens::instance();
    const QRectF area = boundingRect();
    const qreal roundness = area.width() / 4;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    QPainterPath shape;
    shape.addRoundedRect(area, roundness, roundness);
    switch (static_cast<LegendItem::Mark>(m_mark)) {
        case LegendItem::Mark::held: painter->fillPath(shape, tokens.tolvaneData()); break;
        case LegendItem::Mark::free: painter->fillPath(shape, tokens.tolvaneSignalFill()); break;
        case LegendItem::Mark::spilled: painter->fillPath(shape, tokens.tolvaneSwap()); break;
        case LegendItem::Mark::quit:
            painter->setClipPath(shape);
            paintHatch(painter, area);
            break;
        case LegendItem::Mark::ram: {
            constexpr qreal line = 2;
            painter->setBrush(tokens.text());
            painter->drawRoundedRect(QRectF(area.center().x() - line / 2, area.top(), line, area.height()), 1, 1);
            break;
        }
    }
}

}  // namespace ravik::app

#include "App/Views/FlowLayout.h"

namespace ravik::app {

namespace {

bool counts(const QQuickItem* item) { return item->isVisible() && item->implicitWidth() > 0; }

}  // namespace

FlowLayout::FlowLayout(QQuickItem* parent) : QQuickItem(parent) {
    connect(this, &FlowLayout::changed, this, [this] { polish(); });
}

void FlowLayout::watch(QQuickItem* child) {
    const auto again = [this] { polish(); };
    connect(child, &QQuickItem::implicitWidthChanged, this, again);
    connect(child, &QQuickItem::implicitHeightChanged, this, again);
    connect(child, &QQuickItem::visibleChanged, this, again);
}

void FlowLayout::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemChildAddedChange) watch(value.item);
    if (change == ItemChildRemovedChange) value.item->disconnect(this);
    if (change == ItemChildAddedChange || change == ItemChildRemovedChange) polish();
    QQuickItem::itemChange(change, value);
}

void FlowLayout::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (!qFuzzyCompare(now.width(), before.width())) polish();
}

void FlowLayout::updatePolish() {
    QList<QQuickItem*> line;
    qreal used = 0;
    qreal tallest = 0;
    qreal top = 0;
    qreal whole = 0;
    const auto place = [&] {
        qreal x = 0;
        for (QQuickItem* item : std::as_const(line)) {
            const qreal wide = qMin(item->implicitWidth(), width());
            item->setWidth(wide);
            item->setPosition({m_isMirrored ? width() - x - wide : x, top + (tallest - item->height()) / 2});
            x += wide + m_spacing;
        }
        top += tallest + m_lineSpacing;
        line.clear();
        used = tallest = 0;
    };
    const auto children = childItems();
    for (QQuickItem* item : children) {
        if (!counts(item)) continue;
        whole += (whole > 0 ? m_spacing : 0) + item->implicitWidth();
        const qreal wanted = used + (line.isEmpty() ? 0 : m_spacing) + item->implicitWidth();
        if (!line.isEmpty() && wanted > width() + 0.01) place();
        used += (line.isEmpty() ? 0 : m_spacing) + item->implicitWidth();
        tallest = qMax(tallest, item->implicitHeight());
        line.append(item);
    }
    if (!line.isEmpty()) place();
    setImplicitSize(whole, qMax(0.0, top - m_lineSpacing));
}

}  // namespace ravik::app

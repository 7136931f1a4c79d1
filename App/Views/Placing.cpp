#include "App/Views/Placing.h"

#include <algorithm>

namespace ravik::app {

namespace {

constexpr int gap = 8;  // to the icon and to the edge of the screen

/// The place of a length that begins at `wanted` but stays between the two ends; the start counts if it is too long.
int within(int wanted, int length, int from, int to) { return std::max(from, std::min(wanted, to - length)); }

}  // namespace

QPoint panelPlace(const QSize& size, const QRect& icon, const QPoint& pointer, const QRect& available) {
    const QRect free = available.adjusted(gap, gap, -gap, -gap);
    const int right = free.left() + free.width(), bottom = free.top() + free.height();
    const QPoint near = icon.isEmpty() ? pointer : icon.center();
    const bool isLow = near.y() > free.center().y();
    QPoint at;
    if (icon.isEmpty()) {
        at = {near.x() > free.center().x() ? right : free.left(), isLow ? bottom : free.top()};
    } else {
        at = {near.x() - size.width() / 2, isLow ? icon.top() - gap - size.height() : icon.bottom() + 1 + gap};
    }
    return {within(at.x(), size.width(), free.left(), right), within(at.y(), size.height(), free.top(), bottom)};
}

}  // namespace ravik::app

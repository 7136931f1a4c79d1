#pragma once

#include <QPoint>
#include <QRect>

namespace ravik::app {

/// Where a panel of `size` stands: centred at the icon, on the side where the screen is, or where that is unknown
/// (empty) in the pointer's corner of the screen. Always whole within `available`, the screen without the desktop's
/// own bars, as far as it is large enough.
QPoint panelPlace(const QSize& size, const QRect& icon, const QPoint& pointer, const QRect& available);

}  // namespace ravik::app

#pragma once

#include <QPainter>

namespace ravik::app {

/// Diagonal stripes: memory that comes back if the user quits the app.
void paintHatch(QPainter* painter, const QRectF& area);

}  // namespace ravik::app

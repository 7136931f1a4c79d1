#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace ravik::app {

/// The status item's drawing: a memory chip; with an amount the chip filled above its digits, since a tray shows no
/// text. In one colour, drawn anew for each size that the tray asks for.
/// `amount`: the figure alone, "4.6" or "712"; empty for the plain chip.
QIcon glyphIcon(const QString& amount, const QColor& color);

}  // namespace ravik::app

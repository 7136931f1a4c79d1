#pragma once

#include <QIcon>

#include "Core/Screens/Glyph.h"

namespace ravik::app {

/// The status item's drawing: the chip, and the amount in digits beneath it, since a tray shows no text. Redrawn by
/// the tray for each size it asks for.
QIcon glyphIcon(const Glyph& glyph);

}  // namespace ravik::app

#pragma once

#include <QImage>

namespace ravik::pictures {

/// The image with the 256 colours that most of it has; every other becomes the nearest of them.
QImage paletted(const QImage& image);

}  // namespace ravik::pictures

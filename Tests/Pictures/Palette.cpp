#include "Tests/Pictures/Palette.h"

#include <algorithm>
#include <vector>

#include <QHash>

namespace ravik::pictures {

namespace {

constexpr std::size_t most = 256;

int distance(QRgb one, QRgb other) {
    const int red = qRed(one) - qRed(other);
    const int green = qGreen(one) - qGreen(other);
    const int blue = qBlue(one) - qBlue(other);
    return red * red + green * green + blue * blue;
}

std::vector<QRgb> commonest(const QImage& image) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) ++counts[line[x]];
    }
    std::vector<QRgb> colours(counts.keyBegin(), counts.keyEnd());
    // Of colours as frequent the darker first, so that a picture comes out alike each time.
    std::ranges::sort(colours, [&](QRgb one, QRgb other) {
        return counts[one] != counts[other] ? counts[one] > counts[other] : one < other;
    });
    if (colours.size() > most) colours.resize(most);
    return colours;
}

}  // namespace

QImage paletted(const QImage& image) {
    const QImage source = image.convertToFormat(QImage::Format_RGB32);
    const std::vector<QRgb> colours = commonest(source);
    QHash<QRgb, uchar> places;
    QImage result(source.size(), QImage::Format_Indexed8);
    result.setColorTable(QList<QRgb>(colours.begin(), colours.end()));
    for (int y = 0; y < source.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        for (int x = 0; x < source.width(); ++x) {
            auto place = places.find(line[x]);
            if (place == places.end()) {
                const auto nearest =
                    std::ranges::min_element(colours, {}, [&](QRgb colour) { return distance(colour, line[x]); });
                place = places.insert(line[x], static_cast<uchar>(nearest - colours.begin()));
            }
            result.scanLine(y)[x] = *place;
        }
    }
    return result;
}

}  // namespace ravik::pictures

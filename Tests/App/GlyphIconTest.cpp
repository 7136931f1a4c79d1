#include "App/GlyphIcon.h"

#include <QImage>

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

struct Ink {
    int pixels = 0;
    QRect bounds;
};

/// What is drawn in these rows of the icon.
Ink ink(const QImage& image, int from, int to) {
    Ink ink;
    for (int y = from; y < to; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) < 128) continue;
            ++ink.pixels;
            ink.bounds |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

QImage drawn(const QString& amount, int side) {
    return glyphIcon(amount, Qt::black).pixmap(QSize(side, side), 1.0).toImage();
}

class GlyphIconTest : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Sizes, GlyphIconTest, testing::Values(16, 22, 24, 32, 44, 48, 66));

TEST_P(GlyphIconTest, IsAsLargeAsItIsAskedFor) {
    for (const auto& amount : {QString(), QStringLiteral("4.6")}) {
        const QImage image = drawn(amount, GetParam());
        EXPECT_EQ(image.size(), QSize(GetParam(), GetParam()));
        EXPECT_GT(ink(image, 0, image.height()).pixels, GetParam());
    }
}

TEST_P(GlyphIconTest, KeepsTheChipAboveAndTheDigitsBelow) {
    const int side = GetParam();
    const QImage image = drawn(QStringLiteral("4.6"), side);
    const int chipEnds = side < 20 ? side * 5 / 16 : side * 11 / 22;
    EXPECT_GT(ink(image, 0, chipEnds).bounds.width(), side / 2);
    EXPECT_GT(ink(image, chipEnds + 1, side).pixels, side / 3);
}

TEST_P(GlyphIconTest, NarrowsDigitsThatWouldBeCutOff) {
    const QImage image = drawn(QStringLiteral("1234.5"), GetParam());
    const Ink digits = ink(image, image.height() * 2 / 3, image.height());
    EXPECT_GT(digits.pixels, 0);
    EXPECT_GE(digits.bounds.left(), 0);
    EXPECT_LT(digits.bounds.width(), GetParam() + 1);
    const Ink few = ink(drawn(QStringLiteral("1"), GetParam()), GetParam() * 2 / 3, GetParam());
    EXPECT_LT(few.bounds.width(), digits.bounds.width());
}

TEST(GlyphIcon, DiffersWithTheAmountAndWithTheColour) {
    EXPECT_NE(drawn({}, 22), drawn(QStringLiteral("4.6"), 22));
    EXPECT_NE(drawn(QStringLiteral("4.6"), 22), drawn(QStringLiteral("4.7"), 22));
    const QImage light = glyphIcon({}, Qt::white).pixmap(QSize(22, 22), 1.0).toImage();
    EXPECT_NE(drawn({}, 22), light);
}

TEST(GlyphIcon, OffersTheSizesThatTraysUse) {
    EXPECT_EQ(glyphIcon({}, Qt::black).availableSizes(),
              (QList<QSize>{{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}}));
}

}  // namespace
}  // namespace ravik::app

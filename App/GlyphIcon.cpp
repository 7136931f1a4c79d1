#include "App/GlyphIcon.h"

#include <algorithm>
#include <initializer_list>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace ravik::app {

namespace {

/// The chip alone, on a grid of 16.
void drawChip(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawRoundedRect(QRectF(1.75, 3.75, 12.5, 7), 1.25, 1.25);
    for (const double x : {4.75, 8.0, 11.25}) painter.drawLine(QPointF(x, 6.5), QPointF(x, 8));
    for (const double x : {3.75, 6.75, 9.25, 12.25}) painter.drawLine(QPointF(x, 11.75), QPointF(x, 13.25));
}

/// The filled chip above the digits, on a grid of 22.
void drawFilledChip(QPainter& painter, const QColor& color) {
    QPainterPath chip;
    chip.setFillRule(Qt::OddEvenFill);
    chip.addRoundedRect(QRectF(3, 2, 16, 6.5), 1.5, 1.5);
    for (const double x : {6.6, 10.3, 14.0}) chip.addRect(QRectF(x, 4.1, 1.4, 2.3));
    painter.fillPath(chip, color);
    for (const double x : {5.0, 8.5, 12.0, 15.5}) painter.fillRect(QRectF(x, 9, 1.5, 1.5), color);
}

/// The same where pixels are few, on a grid of 16: no legs, so that the digits can be read.
void drawSmallFilledChip(QPainter& painter, const QColor& color) {
    QPainterPath chip;
    chip.setFillRule(Qt::OddEvenFill);
    chip.addRoundedRect(QRectF(1, 0, 14, 5), 1, 1);
    for (const double x : {4.0, 7.5, 11.0}) chip.addRect(QRectF(x, 1.5, 1, 2));
    painter.fillPath(chip, color);
}

/// In device pixels, so that the digits are hinted; narrowed where they are wider than the icon.
void drawDigits(QPainter& painter, const QString& digits, const QColor& color, const QSizeF& size, double baseline,
                double height) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(1, qRound(height)));
    font.setBold(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, -0.03 * height);
    const double width = QFontMetricsF(font).horizontalAdvance(digits);
    const double fit = std::min(1.0, size.width() / width);
    painter.save();
    painter.translate(size.width() / 2, baseline);
    painter.scale(fit, 1);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(QPointF(-width / 2, 0), digits);
    painter.restore();
}

class GlyphEngine : public QIconEngine {
public:
    GlyphEngine(QString amount, const QColor& color) : m_amount(std::move(amount)), m_color(color) {}
    QIconEngine* clone() const override { return new GlyphEngine(m_amount, m_color); }

    /// Those that trays use: a tray that is sent pictures is sent these.
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}};
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap image(size);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return image;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        const double side = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        const bool isSmall = side < 20;
        const double scale = side / (m_amount.isEmpty() || isSmall ? 16 : 22);
        painter->save();
        painter->scale(scale, scale);
        if (m_amount.isEmpty()) {
            drawChip(*painter, m_color);
        } else if (isSmall) {
            drawSmallFilledChip(*painter, m_color);
        } else {
            drawFilledChip(*painter, m_color);
        }
        painter->restore();
        if (!m_amount.isEmpty()) {
            drawDigits(*painter, m_amount, m_color, {side, side}, (isSmall ? 15 : 20.6) * scale,
                       (isSmall ? 10 : 10.5) * scale);
        }
        painter->restore();
    }

private:
    const QString m_amount;
    const QColor m_color;
};

}  // namespace

QIcon glyphIcon(const QString& amount, const QColor& color) {
    QIcon icon(new GlyphEngine(amount, color));
    icon.setIsMask(true);
    return icon;
}

}  // namespace ravik::app

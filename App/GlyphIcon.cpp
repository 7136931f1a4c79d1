#include "App/GlyphIcon.h"

#include <QIconEngine>
#include <QPainter>

namespace ravik::app {

namespace {

class GlyphEngine : public QIconEngine {
public:
    explicit GlyphEngine(Glyph glyph) : m_glyph(std::move(glyph)) {}
    QIconEngine* clone() const override { return new GlyphEngine(m_glyph); }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap image(size);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return image;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(Qt::gray, 1.5));
        painter->drawRoundedRect(rect.adjusted(3, 3, -3, -3), 3, 3);
    }

private:
    Glyph m_glyph;
};

}  // namespace

QIcon glyphIcon(const Glyph& glyph) { return QIcon(new GlyphEngine(glyph)); }

}  // namespace ravik::app

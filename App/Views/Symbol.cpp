#include "App/Views/Symbol.h"

#include <QCache>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace ravik::app {

namespace {

constexpr int kept = 200;

struct Key {
    QString name;
    QRgb color;
    int pixels;
    bool operator==(const Key&) const = default;
};

size_t qHash(const Key& key, size_t seed = 0) { return qHashMulti(seed, key.name, key.color, key.pixels); }

QImage draw(const QString& name, const QColor& color, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QString file = QStringLiteral(":/icons/%1.svg").arg(name);
    if (!QFile::exists(file)) return image;
    QPainter painter(&image);
    QSvgRenderer(file).render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

}  // namespace

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setSize(16);
    setAntialiasing(true);
}

QImage Symbol::image(const QString& name, const QColor& color, int pixels) {
    static QCache<Key, QImage> images(kept);
    const Key key{name, color.rgba(), pixels};
    if (const QImage* found = images.object(key)) return *found;
    QImage drawn = draw(name, color, qMax(1, pixels));
    images.insert(key, new QImage(drawn));
    return drawn;
}

void Symbol::setName(const QString& name) {
    if (m_name == name) return;
    m_name = name;
    update();
    Q_EMIT nameChanged();
}

void Symbol::setColor(const QColor& color) {
    if (m_color == color) return;
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void Symbol::setSize(qreal size) {
    if (qFuzzyCompare(implicitWidth(), size)) return;
    setImplicitSize(size, size);
    Q_EMIT sizeChanged();
}

void Symbol::paint(QPainter* painter) {
    const qreal ratio = painter->transform().m11() * painter->device()->devicePixelRatio();
    const int pixels = qRound(qMin(width(), height()) * ratio);
    QImage drawn = image(m_name, m_color, pixels);
    drawn.setDevicePixelRatio(ratio);
    painter->drawImage(QPointF(), drawn);
}

}  // namespace ravik::app

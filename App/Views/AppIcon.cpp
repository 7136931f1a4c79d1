#include "App/Views/AppIcon.h"

#include <QPainter>

#include "App/Views/IconStore.h"
#include "App/Views/Symbol.h"
#include "App/Views/Tokens.h"

namespace ravik::app {

namespace {

constexpr qreal roundness = 5.0 / 24;  // of a tile's corners
constexpr qreal glyphShare = 0.62;     // of a tile's side

qreal deviceRatio(const QPainter* painter) {
    return painter->transform().m11() * painter->device()->devicePixelRatio();
}

void drawImage(QPainter* painter, const QRectF& square, QImage image, qreal ratio) {
    image.setDevicePixelRatio(ratio);
    const QSizeF size = image.deviceIndependentSize();
    painter->drawImage(square.center() - QPointF(size.width() / 2, size.height() / 2), image);
}

}  // namespace

AppIcon::AppIcon(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setSize(24);
    setAntialiasing(true);
    connect(&Tokens::instance(), &Tokens::coloursChanged, this, [this] { update(); });
}

void AppIcon::draw(QPainter* painter, const QRectF& square, const IconRef& icon, bool onTile) {
    const qreal ratio = deviceRatio(painter);
    const QImage own = IconStore::instance().icon(icon, qRound(square.width() * ratio));
    if (!own.isNull()) {
        drawImage(painter, square, own, ratio);
        return;
    }

    const Tokens& tokens = Tokens::instance();
    if (onTile) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(tokens.rest());
        painter->drawRoundedRect(square, square.width() * roundness, square.width() * roundness);
    }
    const int pixels = qRound(square.width() * (onTile ? glyphShare : 1.0) * ratio);
    drawImage(painter, square, Symbol::image(QString::fromStdString(icon.symbol), tokens.text2(), pixels), ratio);
}

void AppIcon::put(std::string& held, const QString& value) {
    if (QString::fromStdString(held) == value) return;
    held = value.toStdString();
    update();
    Q_EMIT changed();
}

void AppIcon::setApp(const QString& app) { put(m_icon.app, app); }

void AppIcon::setSymbol(const QString& symbol) { put(m_icon.symbol, symbol); }

void AppIcon::setSize(qreal size) {
    if (qFuzzyCompare(implicitWidth(), size)) return;
    setImplicitSize(size, size);
    Q_EMIT changed();
}

void AppIcon::paint(QPainter* painter) { draw(painter, boundingRect(), m_icon, true); }

}  // namespace ravik::app

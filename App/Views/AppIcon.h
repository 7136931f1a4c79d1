#pragma once

#include <QQuickPaintedItem>

#include "Core/Wording/AppIcons.h"

namespace ravik::app {

/// What stands beside a name: an application's own icon, or a glyph on a quiet tile. It says nothing to assistive
/// technology: the name does.
class AppIcon : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// The group whose application is meant; empty for a plain symbol.
    Q_PROPERTY(QString app READ app WRITE setApp NOTIFY changed FINAL)
    /// Stands in where the application has no icon.
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol NOTIFY changed FINAL)
    /// Pixels of its square.
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY changed FINAL)

public:
    explicit AppIcon(QQuickItem* parent = nullptr);

    /// The same, for painted items that hold icons. `onTile`: a glyph gets its tile.
    static void draw(QPainter* painter, const QRectF& square, const IconRef& icon, bool onTile);

    QString app() const { return QString::fromStdString(m_icon.app); }
    void setApp(const QString& app);
    QString symbol() const { return QString::fromStdString(m_icon.symbol); }
    void setSymbol(const QString& symbol);
    qreal size() const { return implicitWidth(); }
    void setSize(qreal size);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    void put(std::string& held, const QString& value);

    IconRef m_icon;
};

}  // namespace ravik::app

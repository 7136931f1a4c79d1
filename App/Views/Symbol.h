#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace ravik::app {

/// One of our line glyphs in one colour, as sharp as the screen is. Nothing is drawn under an unknown name. It says
/// nothing to assistive technology: what it stands beside does.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// The system symbol it is drawn after, "checkmark.circle"; a file in App/Icons.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    /// Pixels of its square.
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged FINAL)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    /// A glyph of this many device pixels; kept, since the same few are drawn again and again. Main thread.
    static QImage image(const QString& name, const QColor& color, int pixels);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    qreal size() const { return implicitWidth(); }
    void setSize(qreal size);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

private:
    QString m_name;
    QColor m_color = Qt::black;
};

}  // namespace ravik::app

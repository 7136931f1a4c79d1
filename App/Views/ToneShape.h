#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace ravik::app {

/// The tones of a verdict, as QML names them: `Tone.Caution`. In the order of ravik::Tone.
namespace tone {
Q_NAMESPACE
QML_NAMED_ELEMENT(Tone)

// QML knows none that begins in lower case.
enum class Value { Safe, Caution, Never, Advice };  // NOLINT(readability-identifier-naming)
Q_ENUM_NS(Value)
}  // namespace tone

/// The shape of a verdict: a dot, a ring, a square, a dashed ring.
class ToneShape : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ravik::app::tone::Value tone READ tone WRITE setTone NOTIFY changed FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed FINAL)

public:
    explicit ToneShape(QQuickItem* parent = nullptr);

    tone::Value tone() const { return m_tone; }
    void setTone(tone::Value tone);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    tone::Value m_tone = tone::Value::Safe;
    QColor m_color = Qt::black;
};

}  // namespace ravik::app

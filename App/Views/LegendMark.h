#pragma once

#include <QQuickPaintedItem>

namespace ravik::app {

/// The mark before an entry of a legend: how that part of the picture is drawn.
class LegendMark : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// One of LegendItem::Mark.
    Q_PROPERTY(int mark READ mark WRITE setMark NOTIFY changed FINAL)

public:
    explicit LegendMark(QQuickItem* parent = nullptr);

    int mark() const { return m_mark; }
    void setMark(int mark);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    int m_mark = 0;
};

}  // namespace ravik::app

#pragma once

#include <QQuickItem>

namespace ravik::app {

/// Places its items side by side at their implicit sizes and wraps them to a new line when its width is used up; from
/// the right where the layout is mirrored. Items of one line stand on one middle line. Its implicit width is that of
/// all items on one line.
class FlowLayout : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Between items.
    Q_PROPERTY(qreal spacing MEMBER m_spacing NOTIFY changed FINAL)
    /// Between lines.
    Q_PROPERTY(qreal lineSpacing MEMBER m_lineSpacing NOTIFY changed FINAL)
    /// Bind to LayoutMirroring.enabled.
    Q_PROPERTY(bool isMirrored MEMBER m_isMirrored NOTIFY changed FINAL)

public:
    explicit FlowLayout(QQuickItem* parent = nullptr);

Q_SIGNALS:
    void changed();

protected:
    void updatePolish() override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void watch(QQuickItem* child);

    qreal m_spacing = 0;
    qreal m_lineSpacing = 0;
    bool m_isMirrored = false;
};

}  // namespace ravik::app

#pragma once

#include <QPointer>
#include <QQuickPaintedItem>

#include "App/Views/MemoryPictureView.h"

namespace ravik::app {

/// Draws a picture of the memory along its width, with a line where the installed memory ends. Within an app, from the
/// leading edge: what stays, what comes back by quitting, what Free ends.
class MemoryBar : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ravik::app::MemoryPictureView* picture READ picture WRITE setPicture NOTIFY pictureChanged FINAL)
    /// Pixels of an app's icon within its part; 0 for none.
    Q_PROPERTY(qreal iconSize MEMBER m_iconSize NOTIFY changed FINAL)
    /// Pixels of the bar itself; the line stands out of it on both sides.
    Q_PROPERTY(qreal thickness READ thickness WRITE setThickness NOTIFY changed FINAL)
    /// What lies between two apps: the surface that the bar stands on.
    Q_PROPERTY(QColor surface MEMBER m_surface NOTIFY changed FINAL)
    /// Bind to LayoutMirroring.enabled.
    Q_PROPERTY(bool isMirrored MEMBER m_isMirrored NOTIFY changed FINAL)

public:
    explicit MemoryBar(QQuickItem* parent = nullptr);

    MemoryPictureView* picture() const { return m_picture; }
    void setPicture(MemoryPictureView* picture);
    qreal thickness() const { return implicitHeight() - 2 * lineOver; }
    void setThickness(qreal thickness);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void pictureChanged();
    void changed();

private:
    static constexpr qreal lineOver = 3;  // what the line stands out on each side

    QRectF part(double from, double length) const;
    void paintSegment(QPainter* painter, const MemoryBarFace::Segment& segment, double ramAt) const;

    QPointer<MemoryPictureView> m_picture;
    qreal m_iconSize = 0;
    QColor m_surface = Qt::transparent;
    bool m_isMirrored = false;
};

}  // namespace ravik::app

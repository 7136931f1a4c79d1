#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/MemoryPictureView.h"
#include "Core/Screens/DiagnosisScreen.h"

namespace ravik::app {

/// The memory as it is and as it would be, on one scale.
class BeforeAfterView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(QString nowHeading READ nowHeading NOTIFY changed FINAL)
    Q_PROPERTY(QString nowHead READ nowHead NOTIFY changed FINAL)
    Q_PROPERTY(MemoryPictureView* now READ now CONSTANT FINAL)
    Q_PROPERTY(QString afterHeading READ afterHeading NOTIFY changed FINAL)
    Q_PROPERTY(QString afterHead READ afterHead NOTIFY changed FINAL)
    Q_PROPERTY(MemoryPictureView* after READ after CONSTANT FINAL)

public:
    using View::View;

    void show(const DiagnosisScreen::BeforeAfter& face) {
        m_now.show(face.now, face.legend);
        m_after.show(face.after);
        publish(m_face, face);
    }

    QString nowHeading() const { return text(m_face.nowHeading); }
    QString nowHead() const { return text(m_face.nowHead); }
    /// Its legend is of both.
    MemoryPictureView* now() { return &m_now; }
    QString afterHeading() const { return text(m_face.afterHeading); }
    QString afterHead() const { return text(m_face.afterHead); }
    MemoryPictureView* after() { return &m_after; }

private:
    DiagnosisScreen::BeforeAfter m_face;
    MemoryPictureView m_now;
    MemoryPictureView m_after;
};

}  // namespace ravik::app

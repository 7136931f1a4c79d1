#pragma once

#include <functional>

#include <QtQml/qqmlregistration.h>

#include "App/Views/View.h"

namespace ravik::app {

/// One thing that the program says once: that without a status area it goes on unseen.
class NoticeView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QString button READ button CONSTANT)

public:
    explicit NoticeView(std::function<void()> dismiss) : m_dismiss(std::move(dismiss)) {}

    QString title() const { return QStringLiteral("Ravik goes on without a window"); }
    QString message() const {
        return QStringLiteral("There is no status area to sit in. The command “ravik open” brings the window back.");
    }
    QString button() const { return QStringLiteral("OK"); }

    Q_INVOKABLE void dismissed() { m_dismiss(); }

private:
    const std::function<void()> m_dismiss;
};

}  // namespace ravik::app

#pragma once

#include <utility>

#include <QtQml/qqmlregistration.h>
#include <QObject>

namespace ravik::app {

/// What a QML file reads: one of the core's records as properties that answer from it, all told by one signal. Its
/// lists are RecordListModels, which tell by themselves.
class View : public QObject {
    Q_OBJECT
    QML_ANONYMOUS

public:
    using QObject::QObject;

Q_SIGNALS:
    void changed();

protected:
    /// Puts a new record in the place of the old one; tells it only if it differs.
    template <typename Record>
    void publish(Record& held, Record record) {
        if (held == record) return;
        held = std::move(record);
        Q_EMIT changed();
    }
};

}  // namespace ravik::app

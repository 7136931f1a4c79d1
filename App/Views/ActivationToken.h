#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace ravik::app {

/// The desktop's leave to come to the front, for the windows that are opened or raised while this object stands. Qt
/// looks for it in the environment. There it must not stay: what the program starts would inherit it.
class ActivationToken {
public:
    /// Empty: the desktop gave none.
    explicit ActivationToken(const QByteArray& token) {
        if (!token.isEmpty()) qputenv(variable, token);
    }
    ~ActivationToken() { qunsetenv(variable); }
    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;

    /// The token of whoever started this process, taken out of its environment.
    static QByteArray taken() {
        QByteArray token = qgetenv(variable);
        qunsetenv(variable);
        return token;
    }

private:
    static constexpr const char* variable = "XDG_ACTIVATION_TOKEN";
};

}  // namespace ravik::app

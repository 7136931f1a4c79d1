#include <cstdlib>
#include <string>

#include <QApplication>
#include <QQuickWindow>

#include "App/StatusBarController.h"
#include "App/Views/ActivationToken.h"
#include "App/Views/Tokens.h"
#include "Core/Watch/Composition.h"
#include "Platform/Compositor.h"

namespace {

/// A tray tool keeps no GPU awake, unless the environment asks for one.
void chooseRendering() {
    if (!qEnvironmentVariableIsSet("QSG_RHI_BACKEND") && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

/// What the desktop gave this start to come to the front with.
std::string startToken() {
    const QByteArray token = ravik::app::ActivationToken::taken();
    return (token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token).toStdString();
}

/// "--open disk": what a start from the terminal or a menu asks to see.
ravik::Activation activation(const QStringList& words, const std::string& token) {
    const auto at = words.indexOf(QStringLiteral("--open"));
    if (at < 0) return {{}, {}, token};
    return {"open", words.value(at + 1).toStdString(), token};
}

ravik::app::StatusBarController* standing = nullptr;

/// When the screen goes Qt ends the program by exit(), past all that main() would still do.
void letGo() {
    if (standing) standing->letGo();
}

}  // namespace

int main(int argc, char** argv) {
    using namespace ravik;
    // The platform's loop is GLib's, and Qt's has to be the same.
    qunsetenv("QT_NO_GLIB");
    // Before Qt takes what it knows of out of the environment.
    const std::string token = startToken();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ravik"));
    QApplication::setApplicationVersion(QStringLiteral(RAVIK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("dev.tolvane.Ravik"));
    QApplication::setQuitOnLastWindowClosed(false);
    chooseRendering();

    Host host;
    const auto computer = makeComputer(coreRules(host), "Ravik");
    host = hostOf(*computer);
    Log log(logOptions(*computer, creationDate));

    app::Tokens::instance().setCompositor(isComposited);
    app::StatusBarController controller(*computer, log, host);
    computer->onTermination([&controller] { controller.quit(); });
    if (!controller.launch(activation(QApplication::arguments(), token))) return 0;
    standing = &controller;
    std::atexit(letGo);
    const int status = QApplication::exec();
    controller.terminate();
    standing = nullptr;
    return status;
}

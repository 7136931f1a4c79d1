#include <clocale>

#include <QApplication>
#include <QQuickWindow>

#include "App/StatusBarController.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"
#include "Platform/Computer.h"

namespace {

/// A tray tool keeps no GPU awake, unless the environment asks for one.
void chooseRendering() {
    if (!qEnvironmentVariableIsSet("QSG_RHI_BACKEND") && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

/// "--open disk": what a start from the terminal or a menu asks to see.
ravik::Activation activation(const QStringList& words) {
    const auto at = words.indexOf(QStringLiteral("--open"));
    if (at < 0) return {};
    return {"open", words.value(at + 1).toStdString(), {}};
}

}  // namespace

int main(int argc, char** argv) {
    using namespace ravik;
    // The platform's loop is GLib's, and Qt's has to be the same.
    qunsetenv("QT_NO_GLIB");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ravik"));
    QApplication::setApplicationVersion(QStringLiteral(RAVIK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("dev.tolvane.Ravik"));
    QApplication::setQuitOnLastWindowClosed(false);
    chooseRendering();

    Host host;
    CoreRules rules;
    rules.groupOf = [&host](const Proc& proc) { return Classifier::group(proc, host); };
    rules.isToolHelper = [](std::string_view command) {
        return Rx::agentLeftover().matches(command) || Rx::automationProfile().matches(command);
    };
    const auto computer = makeComputer(std::move(rules), "Ravik");
    host.kind = computer->isMac() ? HostKind::mac : HostKind::linux;
    host.uid = computer->uid();
    host.pid = computer->pid();
    const Platform& platform = computer->platform();
    const Clock& clock = platform.clock;
    Log log({.folder = platform.folders.log,
             .formerFolder = platform.folders.formerLog,
             .now = [&clock] { return clock.now(); },
             .session = Log::newSession(),
             .enabled = !computer->environment("XCTestConfigurationFilePath"),
             .createdAt = creationDate});

    app::StatusBarController controller(*computer, log, host);
    computer->onTermination([&controller] { controller.quit(); });
    if (!controller.launch(activation(QApplication::arguments()))) return 0;
    const int status = QApplication::exec();
    controller.terminate();
    return status;
}

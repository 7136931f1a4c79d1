#include "App/StatusBarController.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTimer>

#include <nlohmann/json.hpp>

namespace ravik::app {

namespace {

using namespace std::chrono_literals;

constexpr auto openAfter = 2s;
constexpr auto panelOpensAfter = 5s;
constexpr auto panelClosesAfter = 10s;

}  // namespace

StatusBarController::StatusBarController(Computer& computer, Log& log, const Host& host)
    : m_computer(computer),
      m_log(log),
      m_underTest(computer.environment("XCTestConfigurationFilePath").has_value()),
      m_monitor(computer.platform(), log, host, Monitor::Role::watcher),
      m_views(m_program),
      m_program{m_monitor, m_views, [this] { openMain(); }, [] { QCoreApplication::quit(); }} {}

StatusBarController::~StatusBarController() = default;

bool StatusBarController::launch() {
    m_log.event("launch", {{"version", RAVIK_VERSION}});
    if (const auto variable = m_computer.environment("TOLVANE_INTERVAL")) {
        bool isNumber = false;
        const double seconds = QLocale::c().toDouble(QString::fromStdString(*variable), &isNumber);
        if (isNumber) m_monitor.setInterval(seconds);
    }
    connect(&m_item, &StatusItem::clicked, this, &StatusBarController::toggle);
    m_observing = m_monitor.observe([this](Monitor::Change change) {
        if (change == Monitor::Change::snapshot) render();
    });
    m_computer.platform().notifier.onAction([this](const std::string& action) { answer(action); });
    m_monitor.checkNotifications();
    render();
    m_monitor.start();
    m_monitor.watchFocus();
    readEnvironment();
    return true;
}

void StatusBarController::readEnvironment() {
    if (m_computer.environment("TOLVANE_OPEN")) {
        QTimer::singleShot(openAfter, this, [this] { openMain(); });
    }
    if (m_computer.environment("TOLVANE_PANEL_ONCE")) {
        QTimer::singleShot(panelOpensAfter, this, [this] { toggle(); });
        QTimer::singleShot(panelClosesAfter, this, [this] { m_views.closePanel(); });
    }
    if (m_computer.environment("TOLVANE_CLOSE_WINDOW")) {
        QTimer::singleShot(openAfter, this, [this] { m_views.closeMain(); });
    }
}

void StatusBarController::render() { m_item.render(Glyph(m_monitor.snapshot(), m_monitor.host())); }

void StatusBarController::toggle() {
    if (m_views.isPanelOpen()) {
        m_views.closePanel();
        return;
    }
    m_views.openPanel(m_item.place());
    m_log.event("panel", nlohmann::json::object());
}

void StatusBarController::openMain(const QByteArray& token) {
    m_views.closePanel();
    m_views.openMain(token);
}

void StatusBarController::answer(const std::string& action) {
    m_log.event("notificationAction", {{"action", action}});
    openMain();
}

void StatusBarController::terminate() {
    m_monitor.stop();
    m_monitor.releaseAllLive();
    m_computer.platform().notifier.onAction({});
    m_computer.platform().watchLock.release();
}

}  // namespace ravik::app

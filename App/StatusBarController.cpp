#include "App/StatusBarController.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSessionManager>

#include <nlohmann/json.hpp>

#include "App/Views/ActivationToken.h"
#include "App/Views/IconStore.h"
#include "App/Views/Tokens.h"
#include "Core/Reporting/Diagnostics.h"
#include "Core/Reporting/Feedback.h"
#include "Core/Watch/Interval.h"

namespace ravik::app {

namespace {

constexpr double openAfter = 2;  // seconds, as all of these
constexpr double panelOpensAfter = 5;
constexpr double panelClosesAfter = 10;
/// A program that starts with the desktop may be there before its status area.
constexpr double trayComesWithin = 2;
/// Who closes a window and looks again soon finds everything as it was.
constexpr double memoryKeptFor = 30;
/// The patience with what is asked to end, and some more.
constexpr double fixesEndWithin = 6;

const std::vector<Destination> screens{Destination::diagnosis};

}  // namespace

StatusBarController::StatusBarController(Computer& computer, Log& log, const Host& host)
    : m_computer(computer),
      m_log(log),
      m_underTest(computer.environment("XCTestConfigurationFilePath").has_value()),
      m_monitor(computer.platform(), log, host, Monitor::Role::reader),
      m_nav(log, screens),
      m_history(computer.platform().loop, computer.platform().folders.log, computer.platform().folders.historyCache),
      m_views(m_program),
      m_disk(computer.platform(), log, host.kind, m_views),
      m_actions(m_monitor, m_views),
      m_program{m_monitor,
                m_nav,
                m_actions,
                m_disk,
                m_history,
                m_views,
                [this] { return sendFeedback(); },
                [this] { openMain(); },
                [this] { quit(); },
                [this] { releaseLater(); }},
      m_item(m_nav.screens(), host) {
    Workspace& workspace = computer.platform().workspace;
    IconStore::instance().setFinder([&workspace](const std::string& group) { return workspace.iconPath(group); });
}

StatusBarController::~StatusBarController() {
    terminate();
    m_views.clear();
    IconStore::instance().setFinder({});
}

Task<std::string> StatusBarController::sendFeedback() {
    return Feedback::build(m_computer.platform(), m_log,
                           Feedback::about(m_monitor.host(), RAVIK_VERSION, m_computer.osRelease()));
}

bool StatusBarController::launch(const Activation& asked) {
    Platform& platform = m_computer.platform();
    if (!m_underTest) {
        platform.desktopApp.onActivation([this](const Activation& later) { activate(later); });
        if (const auto other = platform.desktopApp.claim(asked)) {
            m_log.event("secondInstance", {{"kept", other->pid}});
            return false;
        }
        Diagnostics::begin(platform.crashReports, m_log, RAVIK_VERSION);
    }
    m_log.event("launch", {{"version", RAVIK_VERSION}});
    if (const auto variable = m_computer.environment("TOLVANE_INTERVAL")) {
        if (const auto seconds = parseInterval(*variable)) m_monitor.setInterval(*seconds);
    }
    connectItem();
    m_observing = m_monitor.observe([this](Monitor::Change change) {
        if (change != Monitor::Change::snapshot) return;
        render();
        settle();
    });
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) m_monitor.checkNotifications();
    });
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this] { m_monitor.releaseAllLive(); });
    connect(qGuiApp, &QGuiApplication::aboutToQuit, this, &StatusBarController::terminate);
    platform.notifier.onAction([this](const std::string& action) { answer(action); });
    m_monitor.checkNotifications();
    // The watcher at once where nobody else watches, and as soon as who does has ended.
    m_monitor.takeOverWhenFree();
    m_monitor.start();
    m_startToken = QByteArray::fromStdString(asked.token);
    // The program starts without its window.
    m_nav.setWindowShown(m_views.isMainOpen());
    readEnvironment();
    if (!asked.action.empty()) activate(asked);
    return true;
}

void StatusBarController::connectItem() {
    connect(&m_item, &StatusItem::clicked, this, &StatusBarController::toggle);
    connect(&m_item, &StatusItem::openChosen, this, [this] { openMain(); });
    connect(&m_item, &StatusItem::screenChosen, this, [this](Destination screen) { go(screen); });
    connect(&m_item, &StatusItem::readChosen, this, [this] { m_monitor.refresh(); });
    connect(&m_item, &StatusItem::quitChosen, this, &StatusBarController::quit);
    Appearance& appearance = m_computer.platform().appearance;
    appearance.onChange([this](const Look& look) { wear(look); });
    wear(appearance.look());
    render();
    m_views.onMainClosed([this] { mainClosed(); });
    if (!StatusItem::isAvailable()) {
        m_computer.platform().loop.after(trayComesWithin, [this] { openWithoutTray(); });
    }
}

void StatusBarController::readEnvironment() {
    MainLoop& loop = m_computer.platform().loop;
    if (const auto variable = m_computer.environment("TOLVANE_OPEN")) {
        if (const auto screen = parseDestination(*variable))
            loop.after(openAfter, [this, screen] { go(*screen, m_startToken); });
    }
    if (m_computer.environment("TOLVANE_PANEL_ONCE")) {
        loop.after(panelOpensAfter, [this] { toggle(); });
        loop.after(panelClosesAfter, [this] { m_views.closePanel(); });
    }
    if (m_computer.environment("TOLVANE_CLOSE_WINDOW")) {
        loop.after(openAfter, [this] { m_views.closeMain(); });
    }
}

void StatusBarController::settle() {
    if (m_hasSettled || !m_monitor.snapshot().sampled) return;
    m_hasSettled = true;
    release();
}

void StatusBarController::releaseLater() {
    if (m_hasEnded) return;
    MainLoop& loop = m_computer.platform().loop;
    loop.cancel(m_releasing);
    m_releasing = loop.after(memoryKeptFor, [this] {
        m_releasing = 0;
        release();
    });
}

void StatusBarController::release() {
    // One that is open needs it, and gives it back when it closes.
    if (m_views.isEmpty()) m_computer.releaseMemory();
}

void StatusBarController::render() { m_item.render(Glyph(m_monitor.snapshot(), m_monitor.host())); }

void StatusBarController::toggle() {
    if (m_views.raiseQuestion()) return;
    if (m_views.isPanelOpen()) {
        m_views.closePanel();
    } else if (!m_views.hasPanelJustLeft()) {
        m_views.openPanel(m_item.place());
        m_log.event("panel", nlohmann::json::object());
    }
}

void StatusBarController::openMain(const QByteArray& token) {
    m_views.closePanel();
    m_views.openMain(token);
}

void StatusBarController::go(Destination screen, const QByteArray& token) {
    m_nav.go(screen);
    openMain(token);
}

void StatusBarController::mainClosed() {
    if (m_hasEnded || m_hasToldUnseen || StatusItem::isAvailable()) return;
    m_hasToldUnseen = true;
    m_views.tellUnseen();
}

void StatusBarController::openWithoutTray() {
    if (!m_hasEnded && !StatusItem::isAvailable()) openMain(m_startToken);
}

void StatusBarController::wear(const Look& look) {
    Tokens& tokens = Tokens::instance();
    std::optional<bool> dark;
    if (look.scheme) dark = look.scheme == ColorScheme::dark;
    tokens.setDark(dark);
    tokens.setHighContrast(look.highContrast.value_or(false));
    tokens.setReducedMotion(look.reducedMotion.value_or(false));
    tokens.setTextScale(look.textScale.value_or(1));
    // GNOME's bar is dark whatever the scheme of its windows.
    const auto desktop = m_computer.environment("XDG_CURRENT_DESKTOP").value_or("");
    const bool isGnome = desktop.find("GNOME") != desktop.npos || desktop.find("Unity") != desktop.npos;
    m_item.setDark(isGnome ? true : dark);
}

void StatusBarController::activate(const Activation& asked) {
    const auto screen = requestedDestination(asked.action, asked.parameter);
    const QByteArray token = QByteArray::fromStdString(asked.token);
    if (screen) {
        go(*screen, token);
    } else {
        openMain(token);
    }
}

void StatusBarController::answer(const std::string& action) {
    m_log.event("notificationAction", {{"action", action}});
    const QByteArray token = QByteArray::fromStdString(m_computer.platform().notifier.activationToken());
    // What could be freed when it was posted may have gone since: then the window says so.
    if (action != "free" || m_monitor.snapshot().freeable().empty()) {
        go(Destination::diagnosis, token);
        return;
    }
    const ActivationToken leave(token);
    if (!m_views.raiseQuestion()) spawn(m_actions.freeAll({}), [](const std::optional<std::string>&) {});
}

void StatusBarController::quit() {
    const bool isAgain = m_hasEnded;
    // Before the windows are closed one by one, each as if the user had closed it.
    terminate();
    if (isAgain || !m_monitor.isFixing()) {
        QCoreApplication::quit();
        return;
    }
    // What the user has said yes to is done and written down, unless it takes too long or he asks again.
    m_fixing = m_monitor.observe([this](Monitor::Change change) {
        if (change == Monitor::Change::fixes && !m_monitor.isFixing()) QCoreApplication::quit();
    });
    m_computer.platform().loop.after(fixesEndWithin, [] { QCoreApplication::quit(); });
}

void StatusBarController::letGo() {
    if (m_hasEnded) return;
    m_monitor.releaseAllLive();
    m_log.flush();
}

void StatusBarController::terminate() {
    if (m_hasEnded) return;
    m_hasEnded = true;
    m_observing.end();
    m_views.end();
    m_monitor.retire();
    Platform& platform = m_computer.platform();
    platform.loop.cancel(m_releasing);
    platform.notifier.onAction({});
    platform.appearance.onChange({});
    platform.desktopApp.onActivation({});
    platform.watchLock.release();
    platform.desktopApp.release();
}

}  // namespace ravik::app

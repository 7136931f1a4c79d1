// What the desktop app weighs beside peers, each alone on a screen of its own: ravik-bench-weight [SECONDS], the time
// over which CPU is measured, 60 if not told.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <fmt/format.h>

#include "Bench/Desktop/Weight.h"
#include "Bench/Sleepers.h"
#include "Bench/TerminalPeer.h"
#include "Tests/EndToEnd/Desktop/Session.h"
#include "Tests/EndToEnd/Isolation.h"

namespace ravik::bench {
namespace {

using endtoend::Area;
using endtoend::Hands;
using endtoend::Home;
using endtoend::Running;
using endtoend::Session;
using endtoend::Tray;
using platform::waitUntil;

constexpr int processes = 300;
constexpr double defaultInterval = 5;
/// Until whatever a program does at its start, or after its windows have changed, is over.
constexpr std::chrono::seconds settling{8};
/// Longer than the app keeps what closed windows have left.
constexpr std::chrono::seconds givingBack{32};

void settle() { std::this_thread::sleep_for(settling); }

void tell(const char* what, std::optional<double> figure, const char* unit, double limit = 0) {
    fmt::print("{:<58}", what);
    if (figure) {
        fmt::print("{:9.2f} {}", *figure, unit);
    } else {
        fmt::print("        -");
    }
    if (limit > 0) fmt::print("   limit {:.4g}{}", limit, figure && *figure > limit ? "  EXCEEDED" : "");
    fmt::print("\n");
    std::fflush(stdout);
}

/// A screen with a tray, and one program on it.
class Stage {
public:
    explicit Stage(const std::string& program, const std::vector<std::string>& variables = {}) : m_session(m_home) {
        m_home.store({{"firstRunDone", true}});
        m_tray = m_reaper.add(endtoend::startTray(Tray::trayer, m_home));
        waitUntil([&] { return hands.ownsTray(); });
        for (const std::string& variable : variables) m_home.add(variable);
        m_program = std::make_unique<Running>(m_home, std::vector<std::string>{}, program);
        settle();
    }
    ~Stage() {
        m_program->signal(SIGTERM);
        m_program->finish(10);
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    Pid pid() const { return m_program->pid(); }
    std::optional<double> megabytes() const { return proportionalMegabytes(pid()); }
    std::optional<double> percent(double seconds) const { return cpuPercent(pid(), seconds); }
    void clickIcon() {
        if (const auto icon = iconIn(Tray::trayer, hands)) hands.click(*icon);
        settle();
    }
    bool hasWindow() {
        for (const Area& area : hands.windowsOfClass("Ravik")) {
            if (area.width > endtoend::largestIcon) return true;
        }
        return false;
    }

private:
    Home m_home;
    Session m_session;

public:
    Hands hands{m_session.server().display()};

private:
    platform::Reaper m_reaper;
    Pid m_tray = 0;
    std::unique_ptr<Running> m_program;
};

void weighPeers(double seconds) {
    {
        const Stage peer("ravik-peer-tray");
        tell("a bare Qt tray program: CPU", peer.percent(seconds), "%");
        tell("a bare Qt tray program: memory", peer.megabytes(), "MB");
    }
    Home home;
    home.write("config/btop/btop.conf", fmt::format("update_ms = {}\n", static_cast<int>(defaultInterval * 1000)));
    setenv("XDG_CONFIG_HOME", (home.path() / "config").c_str(), 1);
    const auto refresh = secondsPerRefresh({"btop"}, 4);
    tell("btop at the same interval: CPU", refresh ? std::optional(*refresh / defaultInterval * 100) : refresh, "%");
}

double weighEmptyWindow() {
    const Stage peer("ravik-peer-window");
    const auto megabytes = peer.megabytes();
    tell("a program that has closed an empty QML window: memory", megabytes, "MB");
    return megabytes.value_or(0);
}

void weighApp(double seconds, double emptyWindow) {
    Stage app("ravik-desktop");
    tell("everything closed: CPU", app.percent(seconds), "%", 0.15);
    tell("everything closed: memory", app.megabytes(), "MB", 32);
    app.clickIcon();
    if (!app.hasWindow()) {
        fmt::print("The panel did not open.\n");
        return;
    }
    tell("the panel open: memory", app.megabytes(), "MB", 64);
    tell("the panel open: CPU", app.percent(seconds), "%");
    app.clickIcon();
    if (app.hasWindow()) fmt::print("The panel did not close.\n");
    tell("just closed: memory", app.megabytes(), "MB");
    std::this_thread::sleep_for(givingBack);
    tell("closed again: memory", app.megabytes(), "MB", emptyWindow * 1.15);
}

void weighMainWindow() {
    Stage app("ravik-desktop", {"TOLVANE_OPEN=diagnosis"});
    if (!app.hasWindow()) fmt::print("The main window did not open.\n");
    tell("the main window on Diagnosis: memory", app.megabytes(), "MB", 72);
}

int weigh(double seconds) {
    const Sleepers sleepers(processes);
    fmt::print("On a machine of {} processes, CPU over {:.0f} s\n", processes, seconds);
    weighPeers(seconds);
    const double emptyWindow = weighEmptyWindow();
    weighApp(seconds, emptyWindow);
    weighMainWindow();
    endtoend::endOthers();
    return 0;
}

}  // namespace
}  // namespace ravik::bench

int main(int count, char** words) {
    const double seconds = count > 1 ? std::atof(words[1]) : 60;
    return ravik::endtoend::isolated([=] { return ravik::bench::weigh(seconds > 0 ? seconds : 60); });
}

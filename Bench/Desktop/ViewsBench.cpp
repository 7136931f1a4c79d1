// What the windows cost from within, on machines in memory: each figure from a process of its own.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QQmlComponent>
#include <QQmlEngine>

#include <fmt/format.h>
#include <unistd.h>

#include "Bench/Desktop/Weight.h"
#include "Platform/Linux/MemoryRelease.h"
#include "Tests/EndToEnd/Desktop/Hands.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Stage/Machines.h"
#include "Tests/Stage/Stage.h"

namespace ravik::bench {
namespace {

using stage::Stage;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int warmOpenings = 9;
constexpr int openings = 500;
constexpr double simulatedHours = 8;
constexpr int processes = 500;
constexpr int ticks = 30;
constexpr double interval = 5;
/// Until digits that roll have come to rest, in milliseconds.
constexpr int drawing = 500;
/// Longer than the app keeps what closed windows have left.
constexpr double rest = 40;

struct FirstFrame {
    double cold = 0;
    /// Soon after the last window has closed.
    double warm = 0;
    /// After the program has given back what that left in memory.
    double rested = 0;
};

double middle(std::vector<double> figures) {
    std::ranges::sort(figures);
    return figures[figures.size() / 2];
}

/// From the call that opens a window to its first frame on the screen.
double untilFrame(const std::function<QQuickWindow*()>& open) {
    const auto begun = std::chrono::steady_clock::now();
    QQuickWindow* window = open();
    if (!window) return 0;
    bool drawn = false;
    const auto connection = QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [&] { drawn = true; }, Qt::DirectConnection);
    while (!drawn) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const Milliseconds taken = std::chrono::steady_clock::now() - begun;
    QObject::disconnect(connection);
    return taken.count();
}

FirstFrame firstFrames(const std::function<QQuickWindow*()>& open, const std::function<void()>& close,
                       const std::function<void()>& giveBack) {
    FirstFrame frames;
    frames.cold = untilFrame(open);
    std::vector<double> warm, rested;
    for (int opening = 0; opening < warmOpenings; ++opening) {
        close();
        warm.push_back(untilFrame(open));
        close();
        giveBack();
        rested.push_back(untilFrame(open));
    }
    frames.warm = middle(std::move(warm));
    frames.rested = middle(std::move(rested));
    return frames;
}

FirstFrame panelFrames() {
    Stage stage(stage::furnishBusy);
    stage.computer().onRelease = platform::releaseMemory;
    stage.launch();
    stage.pass(2 * interval);
    return firstFrames(
        [&] {
            stage.toggle();
            return Stage::window();
        },
        [&] {
            stage.toggle();
            stage.draw(200);
        },
        [&] { stage.pass(rest); });
}

/// The same for a window that holds nothing but forty of Qt's plain buttons.
FirstFrame buttonsFrames() {
    constexpr const char* source =
        "import QtQuick\nimport QtQuick.Controls.Basic\nimport QtQuick.Layouts\n"
        "Window { width: 360; height: 640\n"
        "GridLayout { columns: 4; Repeater { model: 40; Button { required property int index\n"
        "text: \"Button \" + index } } } }";
    std::unique_ptr<QQmlEngine> engine;
    std::unique_ptr<QQuickWindow> window;
    return firstFrames(
        [&] {
            engine = std::make_unique<QQmlEngine>();
            QQmlComponent component(engine.get());
            component.setData(source, {});
            window.reset(qobject_cast<QQuickWindow*>(component.create()));
            if (window) window->show();
            return window.get();
        },
        [&] {
            window.reset();
            engine.reset();
            QCoreApplication::processEvents();
        },
        platform::releaseMemory);
}

double cpuMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) * 1e-6;
}

struct TickCost {
    /// Until the windows know all that is new.
    double told = 0;
    /// And it has been drawn.
    double drawn = 0;
};

/// CPU of one tick, in the middle of many.
TickCost tickCost(Stage& stage) {
    std::vector<double> told, drawn;
    for (int tick = 0; tick < ticks; ++tick) {
        for (auto& [pid, process] : stage.machine().processes.all()) {
            if (pid % 10 == tick % 10) process.footprintBytes += 1u << 20;
        }
        const double before = cpuMilliseconds();
        stage.machine().loop.runFor(interval);
        told.push_back(cpuMilliseconds() - before);
        stage.draw(drawing);
        drawn.push_back(cpuMilliseconds() - before);
    }
    return {middle(std::move(told)), middle(std::move(drawn))};
}

struct Ticks {
    TickCost closed;
    TickCost panel;
    TickCost mainWindow;
};

void closeWindow() {
    if (QQuickWindow* window = Stage::window()) window->close();
}

Ticks tickCosts() {
    Stage stage([](fakes::FakeMachine& machine) {
        stage::furnishBusy(machine);
        stage::furnishProcesses(machine, processes);
    });
    stage.launch();
    stage.pass(2 * interval);
    // Without a window, last: by then the allocator has what it needs in each case.
    Ticks costs;
    stage.toggle();
    stage.draw();
    costs.panel = tickCost(stage);
    stage.openMain();
    stage.draw();
    costs.mainWindow = tickCost(stage);
    closeWindow();
    stage.draw();
    costs.closed = tickCost(stage);
    return costs;
}

/// Megabytes from the first opening of a window to its last, hours later.
struct Growth {
    double open = 0;
    double closed = 0;
};

Growth growth(const std::function<void(Stage&)>& open, int times) {
    Stage stage(stage::furnishBusy);
    stage.computer().onRelease = platform::releaseMemory;
    stage.launch();
    stage.pass(2 * interval);
    Growth first, last;
    for (int opening = 0; opening < times; ++opening) {
        const bool isMeasured = opening == 0 || opening == times - 1;
        open(stage);
        if (!Stage::window()) std::exit(1);
        stage.pass(interval);
        stage.draw(isMeasured ? 2000 : 20);
        last.open = anonymousMegabytes(getpid()).value_or(0);
        closeWindow();
        stage.draw(isMeasured ? 500 : 1);
        stage.pass(simulatedHours * 3600 / (times - 1) - interval);
        last.closed = anonymousMegabytes(getpid()).value_or(0);
        if (Stage::window()) std::exit(1);
        if (opening == 0) first = last;
    }
    return {last.open - first.open, last.closed - first.closed};
}

using Figures = std::vector<double>;

Figures measure(const std::string& what) {
    if (what == "panel" || what == "buttons") {
        const FirstFrame frames = what == "panel" ? panelFrames() : buttonsFrames();
        return {frames.cold, frames.warm, frames.rested};
    }
    if (what == "ticks") {
        const auto [closed, panel, mainWindow] = tickCosts();
        return {closed.told, closed.drawn, panel.told, panel.drawn, mainWindow.told, mainWindow.drawn};
    }
    const bool isMain = what.ends_with("main");
    const Growth found = growth([=](Stage& stage) { isMain ? stage.openMain() : stage.toggle(); },
                                what.starts_with("often") ? openings : 2);
    return {found.open, found.closed};
}

int measureOne(int& count, char** words) {
    QApplication application(count, words);
    stage::prepareApplication();
    for (const double figure : measure(words[2])) fmt::print("{:.3f}\n", figure);
    return 0;
}

/// What a process of its own says of that; as many figures as it gave.
Figures ask(const char* program, const char* what) {
    Figures figures;
    FILE* answer = popen(fmt::format("'{}' --one '{}'", program, what).c_str(), "r");
    double figure = 0;
    while (answer && std::fscanf(answer, "%lf", &figure) == 1) figures.push_back(figure);
    if (answer) pclose(answer);
    figures.resize(std::max<std::size_t>(figures.size(), 6), std::nan(""));
    return figures;
}

void tell(const char* what, double figure, const char* unit, double limit) {
    if (std::isnan(figure)) {
        fmt::print("{:<58}        -\n", what);
        return;
    }
    fmt::print("{:<58}{:9.2f} {}", what, figure, unit);
    if (limit > 0) fmt::print("   limit {:.4g}{}", limit, figure > limit ? "  EXCEEDED" : "");
    fmt::print("\n");
    std::fflush(stdout);
}

int measureAll(const char* program) {
    const platform::OwnXServer server("1800x1200x24");
    const platform::OwnBus bus;
    setenv("DISPLAY", server.display().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    const platform::OwnWindowManager manager(server);
    // Where there is none, the main window opens by itself.
    endtoend::Hands hands(server.display());
    platform::Reaper reaper;
    reaper.add(platform::startProgram({"trayer", "--edge", "bottom", "--align", "left", "--widthtype", "request"}));
    platform::waitUntil([&] { return hands.ownsTray(); });

    const Figures buttons = ask(program, "buttons");
    const Figures panel = ask(program, "panel");
    const double limit = std::min(80.0, buttons[1] * 1.6);
    tell("forty plain buttons, first frame: cold", buttons[0], "ms", 0);
    tell("forty plain buttons, first frame: warm", buttons[1], "ms", 0);
    tell("forty plain buttons, first frame: memory given back", buttons[2], "ms", 0);
    tell("the panel's first frame: cold", panel[0], "ms", std::min(250.0, buttons[0] * 1.6));
    tell("the panel's first frame: warm", panel[1], "ms", limit);
    tell("the panel's first frame: memory given back", panel[2], "ms", limit);
    const Figures costs = ask(program, "ticks");
    tell("a tick at 500 processes, everything closed: CPU", costs[1], "ms", 0);
    tell("what the open panel adds to it, undrawn", costs[2] - costs[0], "ms", 0);
    tell("what the open panel adds to it", costs[3] - costs[1], "ms", 4);
    tell("what the main window adds to it, undrawn", costs[4] - costs[0], "ms", 0);
    tell("what the main window adds to it", costs[5] - costs[1], "ms", 4);
    for (const std::string window : {"panel", "main"}) {
        const Figures seldom = ask(program, ("seldom " + window).c_str());
        const Figures often = ask(program, ("often " + window).c_str());
        const auto what = [&](const char* times, const char* state) {
            return fmt::format("{}: {} openings in 8 hours, grown {}", window, times, state);
        };
        tell(what("2", "open").c_str(), seldom[0], "MB", 0);
        tell(what("2", "closed").c_str(), seldom[1], "MB", 0);
        tell(what("500", "open").c_str(), often[0], "MB", 2);
        tell(what("500", "closed").c_str(), often[1], "MB", 2);
    }
    return 0;
}

}  // namespace
}  // namespace ravik::bench

int main(int count, char** words) {
    if (count == 3 && std::strcmp(words[1], "--one") == 0) return ravik::bench::measureOne(count, words);
    return ravik::bench::measureAll(words[0]);
}

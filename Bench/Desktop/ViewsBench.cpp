// What the windows cost from within, on machines in memory: each figure from a process of its own.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <vector>

#include <QApplication>
#include <QQmlComponent>
#include <QQmlEngine>

#include <fmt/format.h>
#include <unistd.h>

#include "Bench/Desktop/Weight.h"
#include "Tests/EndToEnd/Desktop/Hands.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Stage/Machines.h"
#include "Tests/Stage/Stage.h"

namespace ravik::bench {
namespace {

using stage::Stage;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int warmOpenings = 7;
constexpr int openings = 500;
constexpr double simulatedHours = 8;
constexpr int processes = 500;
constexpr int ticks = 60;
constexpr double interval = 5;

struct FirstFrame {
    double cold = 0;
    double warm = 0;
};

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

FirstFrame firstFrames(const std::function<QQuickWindow*()>& open, const std::function<void()>& close) {
    FirstFrame frames;
    frames.cold = untilFrame(open);
    std::vector<double> warm;
    for (int opening = 0; opening < warmOpenings; ++opening) {
        close();
        warm.push_back(untilFrame(open));
    }
    std::ranges::sort(warm);
    frames.warm = warm[warm.size() / 2];
    return frames;
}

FirstFrame panelFrames() {
    Stage stage(stage::furnishBusy);
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
        });
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
        });
}

double cpuMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) * 1e-6;
}

/// CPU of one tick and of all that it draws, in the middle of many.
double tickMilliseconds(Stage& stage) {
    std::vector<double> each;
    for (int tick = 0; tick < ticks; ++tick) {
        for (auto& [pid, process] : stage.machine().processes.all()) {
            if (pid % 10 == tick % 10) process.footprintBytes += 1u << 20;
        }
        const double before = cpuMilliseconds();
        stage.pass(interval);
        stage.draw(30);
        each.push_back(cpuMilliseconds() - before);
    }
    std::ranges::sort(each);
    return each[each.size() / 2];
}

struct Ticks {
    double closed = 0;
    double panel = 0;
    double mainWindow = 0;
};

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
    costs.panel = tickMilliseconds(stage);
    stage.openMain();
    stage.draw();
    costs.mainWindow = tickMilliseconds(stage);
    if (QQuickWindow* window = Stage::window()) window->close();
    stage.draw();
    costs.closed = tickMilliseconds(stage);
    return costs;
}

struct Growth {
    double first = 0;
    double last = 0;
};

/// Memory with the panel open, at its first opening and at its last, so many hours later.
Growth growth(int times) {
    Stage stage(stage::furnishBusy);
    stage.launch();
    stage.pass(2 * interval);
    Growth found;
    for (int opening = 0; opening < times; ++opening) {
        stage.toggle();
        stage.pass(interval);
        stage.draw(opening == 0 || opening == times - 1 ? 2000 : 20);
        found.last = anonymousMegabytes(getpid()).value_or(0);
        if (opening == 0) found.first = found.last;
        stage.toggle();
        stage.draw(1);
        stage.pass(simulatedHours * 3600 / (times - 1) - interval);
    }
    return found;
}

using Figures = std::vector<double>;

Figures measure(const char* what) {
    if (std::strcmp(what, "panel") == 0) {
        const FirstFrame frames = panelFrames();
        return {frames.cold, frames.warm};
    }
    if (std::strcmp(what, "buttons") == 0) {
        const FirstFrame frames = buttonsFrames();
        return {frames.cold, frames.warm};
    }
    if (std::strcmp(what, "ticks") == 0) {
        const Ticks costs = tickCosts();
        return {costs.closed, costs.panel, costs.mainWindow};
    }
    const Growth found = growth(std::strcmp(what, "growth") == 0 ? openings : 2);
    return {found.first, found.last};
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
    FILE* answer = popen(fmt::format("'{}' --one {}", program, what).c_str(), "r");
    double figure = 0;
    while (answer && std::fscanf(answer, "%lf", &figure) == 1) figures.push_back(figure);
    if (answer) pclose(answer);
    figures.resize(std::max<std::size_t>(figures.size(), 3));
    return figures;
}

void tell(const char* what, double figure, const char* unit, double limit) {
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
    tell("forty plain buttons, first frame: cold", buttons[0], "ms", 0);
    tell("forty plain buttons, first frame: warm", buttons[1], "ms", 0);
    tell("the panel's first frame: cold", panel[0], "ms", std::min(250.0, buttons[0] * 1.6));
    tell("the panel's first frame: warm", panel[1], "ms", std::min(80.0, buttons[1] * 1.6));
    const Figures costs = ask(program, "ticks");
    tell("a tick at 500 processes, everything closed: CPU", costs[0], "ms", 0);
    tell("what the open panel adds to it", costs[1] - costs[0], "ms", 4);
    tell("what the main window adds to it", costs[2] - costs[0], "ms", 4);
    const Figures seldom = ask(program, "seldom");
    tell("8 hours between two openings of the panel: memory grows", seldom[1] - seldom[0], "MB", 0);
    const Figures memory = ask(program, "growth");
    tell("500 openings in 8 hours: memory grows", memory[1] - memory[0], "MB", 2);
    return 0;
}

}  // namespace
}  // namespace ravik::bench

int main(int count, char** words) {
    if (count == 3 && std::strcmp(words[1], "--one") == 0) return ravik::bench::measureOne(count, words);
    return ravik::bench::measureAll(words[0]);
}

#include "Tests/EndToEnd/Desktop/MainWindowCase.h"

#include <algorithm>

#include <unistd.h>

namespace ravik::endtoend {

using platform::waitUntil;

void MainWindowCase::SetUp() {
    DesktopCase::SetUp();
    home.storeShortPatience();
    Json thresholds = home.settings()["thresholds"];
    thresholds.update({{"memoryFreePct", 1}, {"diskFreeGB", 1}, {"swapOutMBps", 1000}, {"hogMinHours", 100}});
    home.store({{"thresholds", thresholds}});
}

void MainWindowCase::openWindow(const std::string& interval) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=" + interval, "TOLVANE_OPEN=diagnosis"});
    awaitWindow();
}

void MainWindowCase::awaitWindow() {
    ASSERT_TRUE(waitUntil([&] { return hands->windows(title).size() == 1; }, 20)) << hands->list();
    ASSERT_TRUE(shows([](const Accessible& windows) {
        const Accessible* frame = windows.find("frame", title);
        return frame && frame->active && !frame->find(label, "Reading your computer…");
    }));
}

void MainWindowCase::enlarge() {
    constexpr Area large{40, 60, 960, 1200};
    hands->place(title, large);
    // What is heard of it is where it is.
    ASSERT_TRUE(shows([&](const Accessible& windows) {
        const Accessible* frame = windows.find("frame", title);
        const auto standing = hands->windows(title);
        return frame && frame->area.height == large.height && standing == std::vector{frame->area};
    })) << hands->list();
}

void MainWindowCase::readNow() {
    constexpr useconds_t orphanMinimum = 1'000'000;
    usleep(orphanMinimum + orphanMinimum / 5);
    click(button, "Read the computer Now");
}

bool MainWindowCase::ticks(std::size_t count) {
    const std::size_t wanted = home.logLines("tick").size() + count;
    return waitUntil([&] { return home.logLines("tick").size() >= wanted; }, 40);
}

Accessible MainWindowCase::get(const std::string& role, const std::string& beginning) {
    Accessible one;
    shows([&](const Accessible& windows) {
        const Accessible* found = windows.findBeginning(role, beginning);
        if (found) one = *found;
        return found != nullptr;
    });
    return one;
}

bool MainWindowCase::showsNone(const std::string& role, const std::string& beginning) {
    return shows([&](const Accessible& windows) { return !windows.findBeginning(role, beginning); });
}

bool MainWindowCase::hasFocus(const std::string& role, const std::string& beginning) {
    return shows([&](const Accessible& windows) {
        const Accessible* focus = windows.focus();
        return focus && focus->role == role && focus->name.starts_with(beginning);
    });
}

bool MainWindowCase::isAsked() {
    return shows([](const Accessible& windows) {
        return std::ranges::any_of(
            windows.children, [](const Accessible& frame) { return frame.active && frame.find(button, "Cancel"); });
    });
}

void MainWindowCase::sayYes() {
    ASSERT_TRUE(isAsked());
    usleep(doubleClick);
    hands->press(key::backspace, {key::control});
}

}  // namespace ravik::endtoend

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

#include <csignal>

#include "Tests/EndToEnd/Isolation.h"
#include "Tests/Platform/Support/LeverScene.h"

namespace ravik::endtoend {

using platform::waitUntil;

void DesktopCase::SetUp() {
    EndToEnd::SetUp();
    session = std::make_unique<Session>(home);
    ASSERT_TRUE(session->started());
    home.add("QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1");
    hands = std::make_unique<Hands>(session->server().display());
    accessibility = std::make_unique<AccessibilityBus>(session->bus());
    home.store({{"firstRunDone", true}});
}

void DesktopCase::TearDown() {
    if (app) {
        app->signal(SIGTERM);
        const Result result = app->finish();
        EXPECT_EQ(result.status, 0) << result.err;
        if (HasFailure()) std::fputs(result.err.c_str(), stderr);
    }
    app.reset();
    accessibility.reset();
    hands.reset();
    session.reset();
    endOthers();
    EndToEnd::TearDown();
}

void DesktopCase::showTray(Tray wanted) {
    tray = wanted;
    trayPid = reaper.add(startTray(tray, home));
    ASSERT_GT(trayPid, 0);
    if (tray == Tray::trayer) {
        ASSERT_TRUE(waitUntil([&] { return hands->ownsTray(); }));
    } else {
        ASSERT_TRUE(waitUntil([&] { return session->bus().owns("org.kde.StatusNotifierWatcher"); }, 20));
    }
}

void DesktopCase::startApp(const std::vector<std::string>& variables) {
    for (const std::string& variable : variables) home.add(variable);
    app = std::make_unique<Running>(home, std::vector<std::string>{}, "ravik-desktop");
}

Area DesktopCase::icon() {
    Area area;
    int looks = 0;
    // A tray moves an icon a few times before it rests in its place.
    const auto rests = [&] {
        const auto found = iconIn(tray, *hands);
        looks = found && *found == area ? looks + 1 : 0;
        area = found.value_or(Area{});
        return looks >= 20;
    };
    EXPECT_TRUE(waitUntil(rests, 20));
    return area;
}

bool DesktopCase::shows(const std::function<bool(const Accessible&)>& wanted, double seconds) {
    Accessible last;
    const bool shown = waitUntil(
        [&] {
            last = accessibility->windowsOf(app->pid());
            return wanted(last);
        },
        seconds);
    if (!shown) {
        ADD_FAILURE() << "it shows:\n"
                      << last.text() << "on a screen with:\n"
                      << hands->list() << "panels opened: " << home.logLines("panel").size();
    }
    return shown;
}

bool DesktopCase::shows(const std::string& role, const std::string& name, double seconds) {
    return shows([&](const Accessible& windows) { return windows.find(role, name) != nullptr; }, seconds);
}

bool DesktopCase::showsBeginning(const std::string& role, const std::string& beginning, double seconds) {
    return shows([&](const Accessible& windows) { return windows.findBeginning(role, beginning) != nullptr; }, seconds);
}

std::vector<Area> DesktopCase::windows() {
    std::vector<Area> areas = hands->windowsOfClass("Ravik");
    std::erase_if(areas, [](const Area& area) { return area.width <= largestIcon; });
    return areas;
}

bool DesktopCase::showsNoWindow(double seconds) {
    return waitUntil([&] { return windows().empty(); }, seconds);
}

bool DesktopCase::hasKeyboard(const std::string& title) {
    const bool has = waitUntil([&] { return hands->focusedTitle() == title; }, 20);
    EXPECT_TRUE(has) << "the keyboard is with \"" << hands->focusedTitle() << "\"\n" << hands->list();
    return has;
}

void DesktopCase::click(const std::string& role, const std::string& name) {
    Area area;
    const bool found = shows([&](const Accessible& windows) {
        const Accessible* one = windows.find(role, name);
        // It has come to rest.
        const bool rests = one && one->area == area;
        if (one) area = one->area;
        return rests && one->enabled && area.width > 0;
    });
    if (found) hands->click(area);
}

Pid DesktopCase::leave(const std::string& script, int megabytes, std::vector<std::string> variables) {
    const std::string command = home.idle("node") + " " + (home.path() / script).native();
    variables.push_back("RAVIK_TEST_HOLDS=" + std::to_string(megabytes));
    const Pid terminal = start({home.shell("bash"), "-c", command + " & wait"}, variables);
    const Pid left = find(command);
    reaper.end(terminal);
    // One that is at work would be asked about.
    EXPECT_TRUE(waitUntil([&] { return platform::stateOf(left) == 'S'; }, 20));
    return findAdopted(command) == left ? left : 0;
}

bool DesktopCase::logs(std::string_view kind, double seconds) const {
    return waitUntil([&] { return !home.logLines(kind).empty(); }, seconds);
}

}  // namespace ravik::endtoend

#include <gmock/gmock.h>

#include <csignal>
#include <optional>

#include <sys/resource.h>
#include <unistd.h>

#include "Platform/Linux/Autogroups.h"
#include "Tests/EndToEnd/Desktop/DesktopCase.h"
#include "Tests/EndToEnd/KernelFile.h"
#include "Tests/EndToEnd/LaterClock.h"
#include "Tests/Platform/Support/LeverScene.h"

namespace ravik::endtoend {
namespace {

using platform::stateOf;
using platform::waitUntil;
using testing::SizeIs;

/// Ways in which the app ends.
enum class End { signal, menu, panel, screen };

std::string nameOf(const testing::TestParamInfo<End>& end) {
    static const char* const names[]{"BySignal", "ByTheMenu", "ByThePanel", "WithItsScreen"};
    return names[static_cast<std::size_t>(end.param)];
}

/// The app holds a real process back, and then ends.
class Holding : public DesktopCase {
protected:
    void endApp(End how) {
        switch (how) {
            case End::signal: app->signal(SIGTERM); break;
            case End::menu:
                hands->click(icon(), 3);
                ASSERT_TRUE(waitUntil([&] { return hands->windowsOfClass("Ravik").size() == 2; })) << hands->list();
                hands->press(key::up);
                hands->press(key::enter);
                break;
            case End::panel:
                hands->click(icon());
                click("push button", "Quit Ravik");
                break;
            case End::screen: session->server().stop(); break;
        }
        ASSERT_TRUE(waitUntil([&] { return !lives(app->pid()); }, 20));
        const Result result = app->finish();
        app.reset();
        if (how == End::screen) {
            EXPECT_LT(result.status, 128) << result.err;
        } else {
            EXPECT_EQ(result.status, 0) << result.err;
        }
    }
    bool holds(const char* action) {
        if (!logs("autopilotAction", 30)) return false;
        const Json line = home.logLines("autopilotAction").at(0);
        EXPECT_EQ(line["action"], action);
        EXPECT_EQ(line["target"], "painter");
        EXPECT_EQ(line["pids"], 1);
        return true;
    }
    void expectLetGo(const char* action) {
        const auto lines = home.logLines("autopilotRelease");
        ASSERT_THAT(lines, SizeIs(1));
        EXPECT_EQ(lines[0]["action"], action);
        EXPECT_EQ(lines[0]["target"], "painter");
        EXPECT_EQ(lines[0]["why"], "quit");
        EXPECT_FALSE(std::filesystem::exists(home.path() / "run/ravik/levers.json"));
    }
};

/// The app has paused a program that does nothing, on a computer short of memory.
class Pausing : public Holding {
protected:
    void pause() {
        // Not before the session stands, whose own programs keep the time.
        m_clock.emplace(home);
        home.store({{"autopilotApproved", Json::array({"pause"})}});
        painter = start({"setsid", home.idle("painter")}, {"RAVIK_TEST_HOLDS=300"});
        showTray(Tray::trayer);
        startApp({"TOLVANE_INTERVAL=1"});
        icon();
        beIdle();
        ASSERT_TRUE(holds("pause"));
        ASSERT_TRUE(waitUntil([&] { return stateOf(painter) == 'T'; }));
    }

    Pid painter = 0;

private:
    /// Nothing has been done by it for half an hour, as far as the app has seen.
    void beIdle() {
        ASSERT_TRUE(waitUntil([&] { return stateOf(painter) == 'S'; }));
        const std::size_t seen = home.logLines("tick").size();
        ASSERT_TRUE(waitUntil([&] { return home.logLines("tick").size() >= seen + 3; }, 20));
        m_clock->advance(31 * 60);
    }

    const KernelFile m_memory{"/proc/meminfo", shortMemory(10)};
    std::optional<LaterClock> m_clock;
};

class Pause : public Pausing, public testing::WithParamInterface<End> {};

INSTANTIATE_TEST_SUITE_P(Desktop, Pause, testing::Values(End::signal, End::menu, End::panel, End::screen), nameOf);

TEST_P(Pause, IsUndoneWhenTheAppEnds) {
    ASSERT_NO_FATAL_FAILURE(pause());
    endApp(GetParam());
    EXPECT_TRUE(waitUntil([&] { return stateOf(painter) == 'S'; }));
    expectLetGo("pause");
}

class Demotion : public Holding, public testing::WithParamInterface<End> {
protected:
    /// How the kernel shares out the processor and the disk to it.
    static std::string priority(Pid pid) {
        return platform::policyOf(pid) + ", " + platform::ioClassOf(pid) + ", " +
               std::to_string(platform::autogroupNice(pid).value_or(0));
    }
    /// A process of a session of its own that does nothing but work, and may be raised again where anybody may.
    Pid work() {
        const std::string script = "while :; do :; done";
        const rlimit nice{20, 20};
        const Pid pid = start({"setsid", home.shell("painter"), "-c", script});
        mayRaise = prlimit(pid, RLIMIT_NICE, &nice, nullptr) == 0;
        return pid;
    }
    bool hasLever(Pid pid) const { return mayRaise || platform::heedsAutogroup("/proc", "/sys/fs/cgroup", pid); }

    bool mayRaise = false;
};

INSTANTIATE_TEST_SUITE_P(Desktop, Demotion, testing::Values(End::signal, End::screen), nameOf);

TEST_P(Demotion, IsUndoneWhenTheAppEnds) {
    const KernelFile load("/proc/loadavg", heavyLoad());
    home.store({{"autopilotApproved", Json::array({"demote"})}});
    const Pid painter = work();
    const std::string before = priority(painter);
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=1"});
    icon();
    if (!hasLever(painter)) {
        // Where the way back is barred nothing is done, and nothing claimed.
        ASSERT_TRUE(waitUntil([&] { return home.logLines("tick").size() >= 5; }, 30));
        EXPECT_THAT(home.logLines("autopilotAction"), SizeIs(0));
        EXPECT_EQ(priority(painter), before);
        return;
    }
    ASSERT_TRUE(holds("demote"));
    EXPECT_NE(priority(painter), before);
    endApp(GetParam());
    EXPECT_EQ(priority(painter), before);
    expectLetGo("demote");
}

TEST_F(Holding, AFixUnderWayGoesToItsEndFirst) {
    home.storeShortPatience();
    const Pid left = leave("shop/server.js", 200, {"RAVIK_TEST_DEAF=1"});
    ASSERT_GT(left, 0);
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=1"});
    hands->click(icon());
    ASSERT_TRUE(showsBeginning("push button", "Free "));
    ASSERT_TRUE(shows([](const Accessible& windows) {
        const Accessible* found = windows.findBeginning("push button", "Free ");
        return found && found->enabled;
    }));
    ASSERT_TRUE(hasKeyboard("Ravik"));
    hands->press(key::enter);
    ASSERT_TRUE(shows("push button", "Cancel"));
    ASSERT_TRUE(hasKeyboard("End 1 program?"));
    usleep(600'000);
    hands->press(key::backspace, {key::control});
    ASSERT_TRUE(logs("confirm"));
    endApp(End::signal);
    ASSERT_THAT(home.logLines("remedy"), SizeIs(1));
    EXPECT_FALSE(lives(left)) << home.logLines("remedy").at(0);
    EXPECT_THAT(home.logLines("fixAll"), SizeIs(1));
}

TEST_F(Pausing, ACrashOfTheAppIsMadeGoodByTheNextStart) {
    ASSERT_NO_FATAL_FAILURE(pause());
    app->signal(SIGKILL);
    app->finish();
    EXPECT_EQ(stateOf(painter), 'T');
    startApp();
    EXPECT_TRUE(waitUntil([&] { return stateOf(painter) == 'S'; }, 20));
    ASSERT_TRUE(logs("autopilotRelease"));
    EXPECT_EQ(home.logLines("autopilotRelease").at(0)["why"], "restart");
}

}  // namespace
}  // namespace ravik::endtoend

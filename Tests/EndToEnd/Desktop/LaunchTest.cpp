#include <gmock/gmock.h>

#include <csignal>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;

class Launch : public DesktopCase {
protected:
    bool hasWindow(int width, double seconds = 20) {
        return waitUntil([&] { return windows().size() == 1 && windows().front().width == width; }, seconds);
    }

    static constexpr int panel = 360;
    static constexpr int mainWindow = 960;
};

TEST_F(Launch, ShowsNoWindowWhereThereIsATray) {
    showTray(Tray::trayer);
    startApp();
    icon();
    EXPECT_TRUE(logs("tick"));
    EXPECT_THAT(windows(), SizeIs(0));
    EXPECT_THAT(home.logLines("launch"), SizeIs(1));
}

TEST_F(Launch, OpensTheMainWindowThatTheEnvironmentNames) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_OPEN=diagnosis"});
    EXPECT_TRUE(hasWindow(mainWindow));
}

TEST_F(Launch, OpensAndClosesThePanelOnceAsTheEnvironmentAsks) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_PANEL_ONCE=1"});
    ASSERT_TRUE(hasWindow(panel));
    EXPECT_TRUE(showsNoWindow(20));
    EXPECT_THAT(home.logLines("panel"), SizeIs(1));
}

TEST_F(Launch, TakesTheIntervalFromTheEnvironment) {
    startApp({"TOLVANE_INTERVAL=0.5"});
    // At five seconds each they would take twenty-five.
    EXPECT_TRUE(waitUntil([&] { return home.logLines("tick").size() >= 6; }, 20));
}

TEST_F(Launch, EndsCleanlyWhenTheScreenGoes) {
    showTray(Tray::trayer);
    startApp();
    icon();
    session->server().stop();
    ASSERT_TRUE(waitUntil([&] { return !lives(app->pid()); }, 20));
    const Result result = app->finish();
    app.reset();
    // Told by Qt, which ends the program in its own way, and not by a signal.
    EXPECT_LT(result.status, 128) << result.err;
}

class Termination : public DesktopCase, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Desktop, Termination, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto& signal) { return std::string(sigabbrev_np(signal.param)); });

TEST_P(Termination, BySignalIsAnOrderlyEnd) {
    showTray(Tray::trayer);
    startApp();
    icon();
    app->signal(GetParam());
    EXPECT_EQ(app->finish().status, 0);
    app.reset();
    // The next one finds no watcher that went without a word.
    startApp();
    icon();
    EXPECT_TRUE(waitUntil([&] { return home.logLines("launch").size() == 2; }));
}

}  // namespace
}  // namespace ravik::endtoend

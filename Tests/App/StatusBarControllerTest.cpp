#include "App/StatusBarController.h"

#include <QStyleHints>
#include <QTest>

#include <algorithm>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Fakes/FakeComputer.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::app {
namespace {

class StatusBarControllerTest : public testing::Test {
protected:
    /// A program that has been started; what is set on `computer` before that counts.
    StatusBarController& start(const Activation& asked = {}) {
        controller = std::make_unique<StatusBarController>(computer, folder.log, computer.machine.host);
        launched = controller->launch(asked);
        computer.machine.loop.settle();
        return *controller;
    }
    void pass(double seconds) { computer.machine.loop.runFor(seconds); }
    /// A program that has lost its terminal.
    fakes::FakeProcess& leaveOrphan() {
        computer.machine.clock.advance(100000);
        fakes::FakeProcess process;
        process.pid = 800;
        process.name = "server";
        process.command = "/tmp/server";
        process.started = computer.machine.clock.now() - 7200;
        process.footprintBytes = 100 << 20;
        return computer.machine.processes.add(process);
    }
    /// A while after the start; what it gave back is not counted.
    void startWithoutWindows() {
        start();
        pass(6);
        controller->views().closeMain();
        QTest::qWait(0);
        pass(60);
        computer.releases = 0;
    }
    void openPanel() {
        controller->toggle();
        EXPECT_TRUE(controller->views().isPanelOpen());
    }
    void closePanel() {
        controller->views().closePanel();
        QTest::qWait(0);
    }

    fakes::FakeComputer computer;
    fakes::LogFolder folder{computer.machine.clock};
    std::unique_ptr<StatusBarController> controller;
    bool launched = false;
};

TEST_F(StatusBarControllerTest, ASecondInstanceEndsWithOneLineAndNothingElse) {
    computer.machine.desktopApp.other = DesktopApp::Other{77, true};
    start();
    EXPECT_FALSE(launched);
    ASSERT_EQ(folder.lines("secondInstance").size(), 1u);
    EXPECT_EQ(folder.lines("secondInstance")[0]["kept"], 77);
    EXPECT_EQ(folder.lines().size(), 1u);
    EXPECT_EQ(controller->item().updates(), 0);
}

TEST_F(StatusBarControllerTest, ATestHostSkipsTheCheckForAnother) {
    computer.machine.desktopApp.other = DesktopApp::Other{77, true};
    computer.variables["XCTestConfigurationFilePath"] = "";
    start();
    EXPECT_TRUE(launched);
    EXPECT_TRUE(folder.lines("secondInstance").empty());
}

TEST_F(StatusBarControllerTest, StartsWithoutItsWindow) {
    start();
    EXPECT_FALSE(controller->nav().windowShown());
    controller->openMain();
    EXPECT_TRUE(controller->nav().windowShown());
    controller->views().closeMain();
    EXPECT_FALSE(controller->nav().windowShown());
}

TEST_F(StatusBarControllerTest, WatchesWhereNobodyElseDoes) {
    start();
    EXPECT_TRUE(launched);
    EXPECT_EQ(controller->monitor().role(), Monitor::Role::watcher);
    EXPECT_EQ(folder.lines("launch").size(), 1u);
}

TEST_F(StatusBarControllerTest, ReadsWhileAnotherWatchesAndTakesOverWhenThatEnds) {
    computer.machine.watchLock.refusal = WatchLock::Refusal{99, "ravik watch watches"};
    start();
    pass(11);
    EXPECT_EQ(controller->monitor().role(), Monitor::Role::reader);
    EXPECT_TRUE(folder.lines("tick").empty());
    computer.machine.watchLock.refusal.reset();
    pass(11);
    EXPECT_EQ(controller->monitor().role(), Monitor::Role::watcher);
    EXPECT_FALSE(folder.lines("tick").empty());
}

TEST_F(StatusBarControllerTest, TakesTheIntervalFromTheEnvironmentWithoutARange) {
    computer.variables["TOLVANE_INTERVAL"] = "0.5";
    EXPECT_EQ(start().monitor().interval(), 0.5);
}

TEST_F(StatusBarControllerTest, IgnoresAnIntervalThatNoTimerCouldKeep) {
    for (const char* text : {"abc", "nan", "inf", "0", "-1"}) {
        computer.variables["TOLVANE_INTERVAL"] = text;
        EXPECT_EQ(start().monitor().interval(), 5.0) << text;
        controller.reset();
    }
}

TEST_F(StatusBarControllerTest, OpensTheScreenThatTheEnvironmentNamesAfterTwoSeconds) {
    computer.variables["TOLVANE_OPEN"] = "diagnosis";
    start();
    pass(1.5);
    EXPECT_FALSE(controller->views().isMainOpen());
    pass(1);
    EXPECT_TRUE(controller->views().isMainOpen());
}

TEST_F(StatusBarControllerTest, OpensTheScreenItHasWhereTheEnvironmentNamesOneThatIsStillMissing) {
    const auto missing =
        std::ranges::find_if(allDestinations, [](Destination each) { return each != Destination::diagnosis; });
    computer.variables["TOLVANE_OPEN"] = word(*missing);
    start();
    pass(2.5);
    EXPECT_TRUE(controller->views().isMainOpen());
    EXPECT_NE(std::ranges::find(controller->nav().screens(), controller->nav().destination()),
              controller->nav().screens().end());
}

TEST_F(StatusBarControllerTest, ClosesTheMainWindowAfterTwoSecondsAsTheEnvironmentAsks) {
    computer.variables["TOLVANE_CLOSE_WINDOW"] = "";
    start().openMain();
    pass(1.5);
    EXPECT_TRUE(controller->views().isMainOpen());
    pass(1);
    EXPECT_FALSE(controller->views().isMainOpen());
    EXPECT_FALSE(controller->nav().windowShown());
}

TEST_F(StatusBarControllerTest, OpensThePanelAtFiveSecondsAndClosesItAtTen) {
    computer.variables["TOLVANE_PANEL_ONCE"] = "";
    start();
    pass(4.5);
    EXPECT_FALSE(controller->views().isPanelOpen());
    pass(1);
    EXPECT_TRUE(controller->views().isPanelOpen());
    EXPECT_EQ(folder.lines("panel").size(), 1u);
    pass(5);
    EXPECT_FALSE(controller->views().isPanelOpen());
}

TEST_F(StatusBarControllerTest, WithoutAStatusAreaItShowsItsWindowAndSaysOnceThatItGoesOnUnseen) {
    start();
    pass(2.5);
    ASSERT_TRUE(controller->views().isMainOpen());
    const auto close = [](const QString& title) {
        for (auto* window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible() && window->title() == title) return window->close();
        }
        return false;
    };
    EXPECT_TRUE(close(QStringLiteral("Diagnosis")));
    EXPECT_FALSE(controller->views().isMainOpen());
    EXPECT_TRUE(close(QStringLiteral("Ravik goes on without a window")));
    computer.machine.desktopApp.ask({"open", "diagnosis", ""});
    EXPECT_TRUE(controller->views().isMainOpen());
    EXPECT_TRUE(close(QStringLiteral("Diagnosis")));
    EXPECT_FALSE(close(QStringLiteral("Ravik goes on without a window")));
}

TEST_F(StatusBarControllerTest, ANotificationOpensTheDiagnosis) {
    start();
    computer.machine.notifier.press("default");
    EXPECT_TRUE(controller->views().isMainOpen());
    const auto lines = folder.lines("notificationAction");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["action"], "default");
}

TEST_F(StatusBarControllerTest, ItsFreeAsksNothingWhereNothingIsLeftToFreeAndShowsThat) {
    start();
    pass(5);
    computer.machine.notifier.press("free");
    EXPECT_FALSE(controller->views().raiseQuestion());
    EXPECT_TRUE(controller->views().isMainOpen());
    EXPECT_EQ(folder.lines("notificationAction").at(0)["action"], "free");
    EXPECT_TRUE(folder.lines("fixAll").empty());
}

/// Remembers with which leave windows came to the front.
class TokenWatch : public QObject {
public:
    TokenWatch() { qGuiApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && watched->isWindowType()) seen = qgetenv("XDG_ACTIVATION_TOKEN");
        return false;
    }

    QByteArray seen;
};

TEST_F(StatusBarControllerTest, TheTokenOfANotificationReachesTheWindowAndNobodyElse) {
    leaveOrphan();
    start();
    pass(5);
    TokenWatch watch;
    computer.machine.notifier.token = "leave-1";
    computer.machine.notifier.press("free");
    ASSERT_TRUE(controller->views().raiseQuestion());
    EXPECT_EQ(watch.seen, "leave-1");
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));

    controller->views().closeMain();
    computer.machine.notifier.token = "leave-2";
    computer.machine.notifier.press("show");
    EXPECT_EQ(watch.seen, "leave-2");
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(StatusBarControllerTest, TheTokenOfItsStartReachesTheWindowThatTheStartOpens) {
    TokenWatch watch;
    start({"", "", "leave-3"});
    pass(2.5);
    ASSERT_TRUE(controller->views().isMainOpen());
    EXPECT_EQ(watch.seen, "leave-3");
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(StatusBarControllerTest, LetsGoOfWhatItHoldsWhereItMayTouchNoWindowAnyMore) {
    computer.machine.readings.load = 20;
    computer.machine.defaults.values["autopilotApproved"] = nlohmann::json::array({"demote"});
    leaveOrphan().cpuPercent = 90;
    computer.machine.processes.find(800)->ppid = 2;
    start();
    pass(11);
    ASSERT_TRUE(computer.machine.processes.find(800)->demoted);
    controller->letGo();
    EXPECT_FALSE(computer.machine.processes.find(800)->demoted);
    controller->letGo();
    controller->terminate();
    const auto lines = folder.lines("autopilotRelease");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["why"], "quit");
}

TEST_F(StatusBarControllerTest, GivesMemoryBackOnceHalfAMinuteAfterItsWindowsHaveClosed) {
    startWithoutWindows();
    openPanel();
    pass(60);
    closePanel();
    pass(29);
    EXPECT_EQ(computer.releases, 0);
    pass(2);
    EXPECT_EQ(computer.releases, 1);
    pass(120);
    EXPECT_EQ(computer.releases, 1);
}

TEST_F(StatusBarControllerTest, KeepsMemoryForAWindowThatOpensSoonAgain) {
    startWithoutWindows();
    openPanel();
    closePanel();
    pass(20);
    openPanel();
    pass(60);
    EXPECT_EQ(computer.releases, 0) << "a window is open";
    closePanel();
    pass(20);
    openPanel();
    closePanel();
    pass(29);
    EXPECT_EQ(computer.releases, 0) << "counted from the last closing";
    pass(2);
    EXPECT_EQ(computer.releases, 1);
}

TEST_F(StatusBarControllerTest, GivesNothingBackAfterItsEnd) {
    startWithoutWindows();
    openPanel();
    closePanel();
    openPanel();
    controller->terminate();
    QTest::qWait(0);
    pass(60);
    EXPECT_EQ(computer.releases, 0);
}

TEST_F(StatusBarControllerTest, AFixThatIsUnderWayAtItsEndIsDoneAndWrittenDown) {
    leaveOrphan();
    start();
    pass(5);
    computer.machine.notifier.press("free");
    const auto windows = QGuiApplication::topLevelWindows();
    const auto question = std::ranges::find(windows, QStringLiteral("End 1 program?"), &QWindow::title);
    ASSERT_NE(question, windows.end());
    ASSERT_TRUE(QTest::qWaitForWindowActive(*question));
    QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval() + 50);
    QTest::keyClick(*question, Qt::Key_Backspace, Qt::ControlModifier);
    QTest::qWait(20);
    ASSERT_TRUE(controller->monitor().isFixing());
    const std::size_t ticks = folder.lines("tick").size();
    controller->quit();
    EXPECT_TRUE(controller->monitor().isFixing());
    pass(20);
    EXPECT_FALSE(controller->monitor().isFixing());
    EXPECT_FALSE(computer.machine.processes.find(800));
    EXPECT_EQ(folder.lines("remedy").size(), 1u);
    EXPECT_EQ(folder.lines("fixAll").size(), 1u);
    EXPECT_EQ(folder.lines("tick").size(), ticks) << "it looks at the machine no more";
}

TEST_F(StatusBarControllerTest, ItsEndLeavesTheLockAndTheNameToOthers) {
    start();
    EXPECT_TRUE(computer.machine.desktopApp.claimed);
    controller->terminate();
    EXPECT_FALSE(computer.machine.desktopApp.claimed);
    EXPECT_FALSE(computer.machine.watchLock.held);
}

}  // namespace
}  // namespace ravik::app

#include "App/StatusBarController.h"

#include <QTest>

#include <gtest/gtest.h>

#include "Tests/Fakes/FakeComputer.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::app {
namespace {

class StatusBarControllerTest : public testing::Test {
protected:
    /// A program that has been started; what is set on `computer` before that counts.
    StatusBarController& start() {
        controller = std::make_unique<StatusBarController>(computer, folder.log, computer.machine.host);
        launched = controller->launch();
        computer.machine.loop.settle();
        return *controller;
    }
    void pass(double seconds) { computer.machine.loop.runFor(seconds); }

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

TEST_F(StatusBarControllerTest, IgnoresAnIntervalThatIsNoNumber) {
    computer.variables["TOLVANE_INTERVAL"] = "abc";
    EXPECT_EQ(start().monitor().interval(), 5.0);
}

TEST_F(StatusBarControllerTest, OpensTheScreenThatTheEnvironmentNamesAfterTwoSeconds) {
    computer.variables["TOLVANE_OPEN"] = "diagnosis";
    start();
    pass(1.5);
    EXPECT_FALSE(controller->views().isMainOpen());
    pass(1);
    EXPECT_TRUE(controller->views().isMainOpen());
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

TEST_F(StatusBarControllerTest, ANotificationOpensTheDiagnosisAndItsFreeAsksNothingWhereThereIsNothing) {
    start();
    computer.machine.notifier.press("free");
    EXPECT_FALSE(controller->views().isMainOpen());
    EXPECT_FALSE(controller->views().raiseQuestion());
    computer.machine.notifier.press("default");
    EXPECT_TRUE(controller->views().isMainOpen());
    const auto lines = folder.lines("notificationAction");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["action"], "free");
    EXPECT_EQ(lines[1]["action"], "default");
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

#include "App/Views/QmlViews.h"

#include <QScreen>
#include <QTest>

#include "Tests/App/Desk.h"

namespace ravik::app {
namespace {

class QmlViewsTest : public Desk {
protected:
    static QQuickWindow* panel() { return theWindow(QStringLiteral("Ravik")); }
    static QQuickWindow* mainWindow() { return theWindow(QStringLiteral("Diagnosis")); }
    static void settle() { QTest::qWait(20); }
    void ask() {
        spawn(views.ask({"End 3 programs?", "Frees 1.2 GB.", "End 3 programs", {}, {}}),
              [this](bool yes) { answers.append(yes); });
        auto* window = theWindow(QStringLiteral("End 3 programs?"));
        ASSERT_TRUE(window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void say(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(theWindow(QStringLiteral("End 3 programs?")), key, modifiers);
        settle();
    }

    QList<bool> answers;
    QmlViews views{program};
};

TEST_F(QmlViewsTest, OpensThePanelWholeOnTheScreen) {
    views.openPanel({});
    ASSERT_TRUE(panel());
    EXPECT_TRUE(panel()->screen()->availableGeometry().contains(panel()->geometry()));
    EXPECT_TRUE(views.isPanelOpen());
    views.closePanel();
    EXPECT_FALSE(views.isPanelOpen());
    EXPECT_FALSE(panel());
}

TEST_F(QmlViewsTest, ThePanelStaysBesideItsIconWhenItGrows) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect icon(screen.center().x(), screen.bottom() - 23, 24, 24);
    views.openPanel(icon);
    ASSERT_TRUE(panel());
    const int bottom = panel()->geometry().bottom();
    EXPECT_LT(bottom, icon.top());
    panel()->setHeight(panel()->height() + 100);
    settle();
    EXPECT_EQ(panel()->geometry().bottom(), bottom);
}

TEST_F(QmlViewsTest, ThePanelClosesWhenItLosesTheFocus) {
    views.openPanel({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel()));
    QWindow other;
    other.show();
    other.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(views.isPanelOpen());
    EXPECT_TRUE(views.hasPanelJustLeft());
    QTest::qWait(600);
    EXPECT_FALSE(views.hasPanelJustLeft());
}

TEST_F(QmlViewsTest, ThePanelHearsTheKeysOfTheProgram) {
    bool hasOpened = false;
    const Program hearing{monitor, nav, actions, disk, history, asker, {}, [&] { hasOpened = true; }, [] {}, [] {}};
    QmlViews own{hearing};
    own.openPanel({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel()));
    EXPECT_FALSE(monitor.snapshot().sampled);
    QTest::keyClick(panel(), Qt::Key_R, Qt::ControlModifier);
    machine.loop.settle();
    EXPECT_TRUE(monitor.snapshot().sampled);
    QTest::keyClick(panel(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_FALSE(hasOpened) << "there is no such screen";
    QTest::keyClick(panel(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(hasOpened);
}

TEST_F(QmlViewsTest, ThePanelWaitsBehindItsQuestionAndComesBack) {
    views.openPanel({});
    auto* before = panel();
    ASSERT_TRUE(QTest::qWaitForWindowActive(before));
    ask();
    EXPECT_FALSE(before->isVisible());
    EXPECT_TRUE(views.isPanelOpen());
    EXPECT_TRUE(views.raiseQuestion());
    say(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(answers, QList<bool>{true});
    EXPECT_EQ(panel(), before) << "the same one, with all that it shows";
    EXPECT_FALSE(views.raiseQuestion());
}

TEST_F(QmlViewsTest, APanelThatWasClosedMeanwhileStaysClosed) {
    views.openPanel({});
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel()));
    ask();
    views.closePanel();
    say(Qt::Key_Escape);
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_FALSE(views.isPanelOpen());
    EXPECT_FALSE(panel());
}

TEST_F(QmlViewsTest, ClosingTheMainWindowIsSeenByTheNavigation) {
    views.openMain({});
    EXPECT_TRUE(views.isMainOpen());
    EXPECT_TRUE(nav.windowShown());
    ASSERT_TRUE(mainWindow());
    mainWindow()->close();
    settle();
    EXPECT_FALSE(views.isMainOpen());
    EXPECT_FALSE(nav.windowShown());
    views.openMain({});
    EXPECT_TRUE(nav.windowShown());
    EXPECT_EQ(folder.lines("window").size(), 2u);
}

TEST_F(QmlViewsTest, ThePanelIsNoHigherThanTheScreenItOpensOn) {
    const QRect small = QGuiApplication::screens().at(1)->availableGeometry();
    for (int pid = 800; pid < 806; ++pid) {
        fakes::FakeProcess process;
        process.pid = pid;
        process.name = "server-" + std::to_string(pid);
        process.command = "/tmp/" + process.name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = 100 << 20;
        machine.processes.add(process);
    }
    monitor.readNow();
    views.openPanel(QRect(small.center().x(), small.top(), 24, 24));
    settle();
    ASSERT_TRUE(panel());
    EXPECT_EQ(panel()->screen(), QGuiApplication::screens().at(1));
    EXPECT_EQ(panel()->height(), small.height() - 16);
    EXPECT_TRUE(small.contains(panel()->geometry()));
}

TEST_F(QmlViewsTest, OpensTheMainWindowOnceAndBringsItToTheFrontAfterwards) {
    views.openMain({});
    views.openMain({});
    EXPECT_EQ(shown(QStringLiteral("Diagnosis")).size(), 1);
}

TEST_F(QmlViewsTest, TheEndClosesAllAndAnswersNo) {
    views.openMain({});
    views.openPanel({});
    ask();
    views.end();
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_FALSE(views.isMainOpen());
    EXPECT_FALSE(views.isPanelOpen());
    settle();
    EXPECT_TRUE(QGuiApplication::topLevelWindows().isEmpty());
}

}  // namespace
}  // namespace ravik::app

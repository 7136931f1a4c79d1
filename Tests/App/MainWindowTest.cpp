#include "Tests/App/WindowDesk.h"

namespace ravik::app {
namespace {

class MainWindow : public WindowDesk {};

TEST_F(MainWindow, IsNamedAfterItsScreen) {
    EXPECT_EQ(open().title(), QStringLiteral("Diagnosis"));
    EXPECT_EQ(window->minimumWidth(), 820);
    EXPECT_EQ(window->size(), QSize(960, 640));
}

TEST_F(MainWindow, WaitsForTheFirstReading) {
    open();
    EXPECT_TRUE(says("Reading your computer…"));
    EXPECT_TRUE(says("This takes a few seconds."));
    EXPECT_FALSE(the("Hero"));
    monitor.readNow();
    settle();
    EXPECT_FALSE(says("Reading your computer…"));
}

TEST_F(MainWindow, IsCalmWhereThereIsNothingToFree) {
    monitor.readNow();
    open();
    EXPECT_TRUE(says("Your computer is fine"));
    EXPECT_TRUE(says("Nothing to free. Ravik keeps watching."));
    EXPECT_TRUE(all("FindingCard").isEmpty());
}

TEST_F(MainWindow, ShowsACardForEachFinding) {
    threeOrphans();
    monitor.readNow();
    open();
    EXPECT_EQ(all("FindingCard").size(), 3);
    EXPECT_EQ(all("CardSection").size(), 1);
    EXPECT_TRUE(says("Safe to end"));
    EXPECT_TRUE(says("300\u00a0MB back"));
    ASSERT_TRUE(the("FreeButton"));
    EXPECT_TRUE(the("FreeButton")->isEnabled());
}

TEST_F(MainWindow, TheSidebarCountsTheFindings) {
    threeOrphans();
    monitor.readNow();
    open();
    ASSERT_TRUE(the("SidebarRow"));
    EXPECT_EQ(the("SidebarRow")->property("badge").toString(), QStringLiteral("3"));
    EXPECT_EQ(the("SidebarRow")->property("spoken").toString(), QStringLiteral("Diagnosis, 3 findings"));
}

TEST_F(MainWindow, WithLargeTextTheSidebarIsARail) {
    monitor.readNow();
    open();
    ASSERT_TRUE(the("Sidebar"));
    EXPECT_EQ(the("Sidebar")->width(), 200);
    Tokens::instance().setTextScale(2);
    settle();
    EXPECT_EQ(the("Sidebar")->width(), 64);
    Tokens::instance().setTextScale(1);
}

TEST_F(MainWindow, ItsKeysReadNowCloseAndQuit) {
    bool hasQuit = false;
    const Program quitting{monitor, nav, actions, disk, history, asker, {}, [] {}, [&] { hasQuit = true; }, [] {}};
    auto view = std::make_unique<MainView>(quitting);
    model = view.get();
    window = frame.open("MainWindow", std::move(view));
    window->show();
    window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_FALSE(monitor.snapshot().sampled);
    press(Qt::Key_R, Qt::ControlModifier);
    letRun();
    EXPECT_TRUE(monitor.snapshot().sampled);
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(hasQuit);
    EXPECT_TRUE(window->isVisible());
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
    close();
}

/// Neither at the least width nor with large text is a word cut off or drawn outside.
class EveryLook : public WindowDesk, public testing::WithParamInterface<std::tuple<int, double, bool>> {
protected:
    EveryLook() {
        Tokens::instance().setTextScale(std::get<1>(GetParam()));
        QGuiApplication::setLayoutDirection(std::get<2>(GetParam()) ? Qt::RightToLeft : Qt::LeftToRight);
    }
    ~EveryLook() override {
        Tokens::instance().setTextScale(1);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
    void lookAtAll() const {
        for (const QQuickItem* label : all("Label")) {
            const QString words = label->property("text").toString();
            if (words.isEmpty() || label->width() <= 0) continue;
            EXPECT_FALSE(label->property("truncated").toBool()) << words.toStdString();
            EXPECT_LE(label->property("contentWidth").toReal(), label->width() + 1) << words.toStdString();
            const QRectF place = label->mapRectToScene(label->boundingRect());
            EXPECT_GE(place.left(), 0) << words.toStdString();
            EXPECT_LE(place.right(), window->width()) << words.toStdString();
        }
    }
};

TEST_P(EveryLook, NoWordIsCutOff) {
    orphan(799, "a-server-with-a-name-that-is-much-longer-than-any-other-name-here", 5000);
    threeOrphans();
    orphan(803, "postgres", 200);
    monitor.readNow();
    open().resize(std::get<0>(GetParam()), 640);
    settle();
    lookAtAll();
    screen().setMode(1);
    screen().selectNextArc();
    settle();
    ASSERT_TRUE(the("MapRing"));
    lookAtAll();
    screen().open(QStringLiteral("orphan:800"));
    settle();
    ASSERT_TRUE(the("EvidenceSheet"));
    lookAtAll();
}

INSTANTIATE_TEST_SUITE_P(All, EveryLook,
                         testing::Combine(testing::Values(820, 960, 1600), testing::Values(1.0, 2.0), testing::Bool()));

}  // namespace
}  // namespace ravik::app

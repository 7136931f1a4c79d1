#include "App/Views/QmlFrame.h"

#include <QGuiApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include "App/Views/PanelView.h"
#include "Tests/App/Desk.h"

namespace ravik::app {
namespace {

using QmlFrameTest = Desk;

TEST_F(QmlFrameTest, FreesTheWindowAndThenItsView) {
    QmlFrame frame;
    auto view = std::make_unique<PanelView>(program);
    QStringList gone;
    QObject::connect(view.get(), &QObject::destroyed, &frame, [&gone] { gone << QStringLiteral("view"); });
    auto* window = frame.open("MenuBarPanel", std::move(view));
    QObject::connect(window, &QObject::destroyed, &frame, [&gone] { gone << QStringLiteral("window"); });
    window->show();
    frame.close(window);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(gone.isEmpty()) << "a button of the window may be what closes it";
    QTest::qWait(0);
    EXPECT_EQ(gone, (QStringList{QStringLiteral("window"), QStringLiteral("view")}));
    EXPECT_TRUE(frame.isEmpty());
}

TEST_F(QmlFrameTest, SaysOnceThatTheLastWindowHasGone) {
    QmlFrame frame;
    QSignalSpy emptied(&frame, &QmlFrame::emptied);
    auto* first = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
    auto* second = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
    frame.close(first);
    frame.close(first);
    QTest::qWait(0);
    EXPECT_TRUE(emptied.isEmpty());
    frame.close(second);
    QTest::qWait(0);
    EXPECT_EQ(emptied.size(), 1);
}

TEST_F(QmlFrameTest, KeepsTheEngineForTheNextWindowAndFreesItWithItself) {
    QPointer<QQmlEngine> engine;
    {
        QmlFrame frame;
        EXPECT_FALSE(frame.hasEngine()) << "a program without a window does without it";
        auto* first = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
        engine = qmlEngine(first);
        frame.close(first);
        QTest::qWait(0);
        EXPECT_TRUE(frame.hasEngine());
        EXPECT_EQ(qmlEngine(frame.open("MenuBarPanel", std::make_unique<PanelView>(program))), engine);
    }
    EXPECT_FALSE(engine);
}

TEST_F(QmlFrameTest, OpensAgainBeforeTheLastWindowIsFreed) {
    QmlFrame frame;
    for (int i = 0; i < 20; ++i) {
        auto* window = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
        window->show();
        frame.close(window);
    }
    auto* window = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
    window->show();
    QTest::qWait(0);
    EXPECT_EQ(QGuiApplication::topLevelWindows(), QWindowList{window});
    EXPECT_FALSE(frame.isEmpty());
}

TEST_F(QmlFrameTest, FreesWhatIsOpenWithItself) {
    QPointer<QQuickWindow> window;
    {
        QmlFrame frame;
        window = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
        window->show();
    }
    EXPECT_FALSE(window);
}

}  // namespace
}  // namespace ravik::app

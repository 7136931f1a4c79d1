#include <gmock/gmock.h>

#include <csignal>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;

class StatusArea : public DesktopCase {};

TEST_F(StatusArea, IfThereIsNoneTheMainWindowOpens) {
    startApp();
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }, 20));
    EXPECT_EQ(windows().front().width, 960);
    EXPECT_THAT(home.logLines("panel"), SizeIs(0));
}

TEST_F(StatusArea, ThatComesBackGetsTheIconAgain) {
    showTray(Tray::trayer);
    startApp();
    icon();
    reaper.end(trayPid);
    ASSERT_TRUE(waitUntil([&] { return !hands->ownsTray(); }));
    EXPECT_TRUE(lives(app->pid()));
    showTray(Tray::trayer);
    // The new tray's icon takes the old one's place after a while.
    EXPECT_TRUE(waitUntil(
        [&] {
            hands->click(icon());
            return waitUntil([&] { return windows().size() == 1; }, 2);
        },
        30));
}

TEST_F(StatusArea, ThatComesLateGetsTheIcon) {
    startApp();
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }, 20));
    showTray(Tray::xfce);
    EXPECT_GT(icon().width, 0);
}

TEST_F(StatusArea, HasAMenuWhoseLastEntryEndsTheApp) {
    showTray(Tray::trayer);
    startApp();
    hands->click(icon(), 3);
    // The keys go to the menu, whose entries no accessibility bus tells of.
    ASSERT_TRUE(waitUntil([&] { return hands->windowsOfClass("Ravik").size() == 2; })) << hands->list();
    hands->press(key::up);
    hands->press(key::enter);
    EXPECT_EQ(app->finish().status, 0);
    app.reset();
}

}  // namespace
}  // namespace ravik::endtoend

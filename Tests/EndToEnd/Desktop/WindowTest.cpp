#include <gmock/gmock.h>

#include <fmt/format.h>
#include <unistd.h>

#include "Tests/EndToEnd/Desktop/MainWindowCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::Each;
using testing::SizeIs;

constexpr std::uint32_t keyW = 'w', keyQ = 'q', keyR = 'r', key1 = '1';

/// The main window's ways in and out.
class Window : public MainWindowCase {
protected:
    bool opened(std::size_t times) {
        return waitUntil([&] { return home.logLines("window").size() == times; });
    }
    bool isOpen() {
        return waitUntil([&] { return hands->windows(title).size() == 1; }, 20);
    }
    bool isClosed() {
        return waitUntil([&] { return hands->windows(title).empty(); });
    }
    void close() {
        hands->press(keyW, {key::control});
        ASSERT_TRUE(isClosed());
        EXPECT_TRUE(ticks(2)) << "the app goes on";
    }
};

TEST_F(Window, ClosesWhileTheAppGoesOnAndOpensAgainFromTheStatusItemsMenu) {
    openWindow();
    close();
    // Open Ravik is the first entry, Diagnosis the next. No accessibility bus tells of them.
    for (int entry = 1; entry <= 2; ++entry) {
        hands->click(icon(), 3);
        ASSERT_TRUE(waitUntil([&] { return hands->windowsOfClass("Ravik").size() == 2; })) << hands->list();
        for (int step = 0; step < entry; ++step) hands->press(key::down);
        hands->press(key::enter);
        awaitWindow();
        close();
    }
    EXPECT_TRUE(opened(3));
    EXPECT_THAT(home.logLines("window"), Each(testing::Contains(Json(true))));
}

TEST_F(Window, OpensFromThePanel) {
    leave("shop/server.js", 200);
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=1"});
    hands->click(icon());
    click(button, "Open Ravik");
    awaitWindow();
    EXPECT_THAT(windows(), SizeIs(1)) << "the panel has gone";
    EXPECT_TRUE(shows("heading", "Safe to end"));
    EXPECT_TRUE(opened(1));
}

TEST_F(Window, OpensFromTheTerminalAndOnce) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=1"});
    icon();
    ASSERT_TRUE(logs("tick"));
    EXPECT_EQ(run(home, {"open"}).status, 0);
    awaitWindow();
    EXPECT_EQ(run(home, {"open", "diagnosis"}).status, 0);
    EXPECT_TRUE(ticks(2));
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(opened(1));
}

TEST_F(Window, SidebarCountsWhatWasFoundAndReadsAgain) {
    leave("shop/server.js", 64);
    openWindow("60");
    readNow();
    EXPECT_TRUE(shows("page tab", "Diagnosis, 1 finding"));
    const Pid second = leave("blog/site.js", 64);
    ASSERT_GT(second, 0);
    readNow();
    EXPECT_TRUE(shows("page tab", "Diagnosis, 2 findings"));
    reaper.end(second);
    hands->press(keyR, {key::control});
    EXPECT_TRUE(shows("page tab", "Diagnosis, 1 finding"));
    click("page tab", "Diagnosis, 1 finding");
    hands->press(key1, {key::control});
    EXPECT_TRUE(shows("heading", "Safe to end"));
    EXPECT_TRUE(opened(1));
    EXPECT_THAT(home.logLines("tab"), SizeIs(0)) << "it is where it was";
}

TEST_F(Window, CtrlQEndsTheApp) {
    openWindow();
    hands->press(keyQ, {key::control});
    EXPECT_EQ(app->finish().status, 0);
    app.reset();
}

TEST_F(Window, KeepsSelectionAndScrollOverTicks) {
    std::vector<Pid> left;
    for (int one = 10; one < 24; ++one) left.push_back(leave(fmt::format("shop/server-{}.js", one), one));
    openWindow();
    ASSERT_TRUE(shows("page tab", "Diagnosis, 14 findings"));
    for (int step = 0; step < 9; ++step) hands->press(key::down);
    // The largest stands first.
    ASSERT_TRUE(hasFocus(card, "server-15.js. "));
    Accessible before;
    // The list comes to rest.
    ASSERT_TRUE(shows([&](const Accessible& windows) {
        const int y = before.area.y;
        if (const Accessible* focus = windows.focus()) before = *focus;
        return before.area.y == y && before.selected;
    }));
    EXPECT_FALSE(shown().find(label, "you can free")) << "it is scrolled";

    // One larger than all comes, and one that is to be seen goes.
    const Pid large = leave("shop/server-99.js", 99);
    EXPECT_TRUE(shows("page tab", "Diagnosis, 15 findings"));
    reaper.end(large);
    reaper.end(left.front());
    EXPECT_TRUE(shows("page tab", "Diagnosis, 13 findings"));
    EXPECT_TRUE(ticks(2));
    EXPECT_TRUE(hasFocus(card, "server-15.js. "));
    const Accessible after = get(card, "server-15.js. ");
    EXPECT_TRUE(after.selected);
    EXPECT_EQ(after.area.y, before.area.y);
}

}  // namespace
}  // namespace ravik::endtoend

#include <gmock/gmock.h>

#include <chrono>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;

/// What the environment asks of the app.
class Environment : public DesktopCase {
protected:
    bool mainWindowOpens(double seconds = 20) {
        return waitUntil([&] { return windows().size() == 1 && windows().front().width == 960; }, seconds);
    }
    bool ticks(std::size_t count, double seconds) {
        return waitUntil([&] { return home.logLines("tick").size() >= count; }, seconds);
    }
};

TEST_F(Environment, ClosesTheWindowThatOpenedByItself) {
    // Without a status area the main window opens at the start.
    startApp({"TOLVANE_CLOSE_WINDOW=1"});
    ASSERT_TRUE(logs("window"));
    EXPECT_TRUE(showsNoWindow());
    ASSERT_TRUE(ticks(2, 20));
    EXPECT_THAT(windows(), SizeIs(0));
    EXPECT_TRUE(lives(app->pid()));
    // Nothing has been closed for good.
    EXPECT_EQ(run(home, {"open"}).status, 0);
    EXPECT_TRUE(mainWindowOpens());
}

TEST_F(Environment, OpensAScreenThatIsStillMissingOnOneThatIsThere) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_OPEN=autopilot"});
    ASSERT_TRUE(mainWindowOpens());
    EXPECT_TRUE(shows([](const Accessible& windows) {
        return windows.children.size() == 1 && !windows.children.front().name.empty();
    }));
}

class OtherText : public Environment, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Desktop, OtherText, testing::Values("", "Diagnosis", "settings", "diagnosis "),
                         [](const auto& text) { return "Case" + std::to_string(text.index); });

TEST_P(OtherText, OpensNothing) {
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=0.5", std::string("TOLVANE_OPEN=") + GetParam()});
    icon();
    ASSERT_TRUE(ticks(8, 30));
    EXPECT_THAT(windows(), SizeIs(0));
    EXPECT_THAT(home.logLines("window"), SizeIs(0));
}

class NoInterval : public Environment, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Desktop, NoInterval, testing::Values("nan", "0"),
                         [](const auto& text) { return "Case" + std::to_string(text.index); });

TEST_P(NoInterval, LeavesItAtFiveSeconds) {
    showTray(Tray::trayer);
    startApp({std::string("TOLVANE_INTERVAL=") + GetParam()});
    ASSERT_TRUE(ticks(1, 20));
    const auto begun = std::chrono::steady_clock::now();
    ASSERT_TRUE(ticks(3, 40));
    const std::chrono::duration<double> two = std::chrono::steady_clock::now() - begun;
    EXPECT_GT(two.count(), 8);
    EXPECT_LT(two.count(), 15);
    EXPECT_THAT(home.logLines("tick"), SizeIs(3));
}

}  // namespace
}  // namespace ravik::endtoend

#include <gmock/gmock.h>

#include <unistd.h>

#include "Tests/EndToEnd/Desktop/Daemon.h"
#include "Tests/EndToEnd/Desktop/DesktopCase.h"
#include "Tests/EndToEnd/LaterClock.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

/// An alert on a real notification service: a limit is passed all the time, and beside that stands a program that its
/// terminal has left behind.
class Alert : public DesktopCase {
protected:
    void SetUp() override {
        DesktopCase::SetUp();
        Json thresholds = run(home, {"settings", "--json"}).json();
        thresholds["orphanMinHours"] = 1 / 3600.0;
        thresholds["memoryFreePct"] = 101;
        home.store({{"thresholds", thresholds}});
        clock.emplace(home);
        left = leave("shop/server.js", 200);
        ASSERT_GT(left, 0);
        ASSERT_GT(reaper.add(startNotifications(home, session->bus(), "Free")), 0);
        showTray(Tray::trayer);
        startApp({"TOLVANE_INTERVAL=1"});
        ASSERT_TRUE(waitUntil([&] { return ticks("diagnosis") >= 2; }, 30));
    }

    std::size_t ticks(const char* kind = "tick") const { return home.logLines(kind).size(); }
    bool isShown(double seconds = 20) {
        return waitUntil([&] { return notifications(*hands).size() == 1; }, seconds);
    }
    void click(std::uint8_t button) {
        ASSERT_TRUE(isShown());
        hands->click(notifications(*hands).front(), button);
    }
    /// What was answered, once it was.
    std::string answered() {
        EXPECT_TRUE(logs("notificationAction"));
        const auto lines = home.logLines("notificationAction");
        return lines.empty() ? "" : lines.back()["action"].get<std::string>();
    }

    static constexpr std::uint8_t middle = 2, right = 3;
    static constexpr useconds_t doubleClick = 600'000;
    std::optional<LaterClock> clock;
    Pid left = 0;
};

TEST_F(Alert, ComesOnceTheCauseHasLastedTenMinutesAndNotAgainThatDay) {
    clock->advance(540);
    std::size_t seen = ticks();
    ASSERT_TRUE(waitUntil([&] { return ticks() >= seen + 3; }, 20));
    EXPECT_THAT(notifications(*hands), SizeIs(0));
    clock->advance(120);
    ASSERT_TRUE(isShown());
    ASSERT_THAT(home.logLines("notify"), SizeIs(1));
    const Json line = home.logLines("notify").at(0);
    EXPECT_THAT(line["causes"].get<std::vector<std::string>>(), ElementsAre("breach"));
    EXPECT_THAT(line["title"].get<std::string>(), HasSubstr("has run"));
    clock->advance(3600);
    seen = ticks();
    ASSERT_TRUE(waitUntil([&] { return ticks() >= seen + 3; }, 20));
    EXPECT_THAT(home.logLines("notify"), SizeIs(1));
}

TEST_F(Alert, ItsButtonAsksAndAYesFreesTheLeftover) {
    clock->advance(650);
    click(right);
    EXPECT_EQ(answered(), "free");
    ASSERT_TRUE(shows("push button", "Cancel"));
    ASSERT_TRUE(hasKeyboard("End 1 program?"));
    EXPECT_TRUE(lives(left));
    usleep(doubleClick);
    hands->press(key::backspace, {key::control});
    EXPECT_TRUE(waitUntil([&] { return !lives(left); }, 20));
    ASSERT_TRUE(waitUntil([&] { return home.settings().contains("lastFix"); }));
    EXPECT_EQ(home.logLines("confirm").at(0)["confirmed"], true);
    EXPECT_THAT(home.logLines("fixAll"), SizeIs(1));
    EXPECT_THAT(home.settings()["lastFix"]["line"].get<std::string>(), StartsWith("1 ended · 0 survivors · "));
    EXPECT_TRUE(showsNoWindow());
}

TEST_F(Alert, ItsButtonTakesANo) {
    clock->advance(650);
    click(right);
    ASSERT_TRUE(shows("push button", "Cancel"));
    ASSERT_TRUE(hasKeyboard("End 1 program?"));
    hands->press(key::enter);
    ASSERT_TRUE(logs("fixAll"));
    EXPECT_EQ(home.logLines("fixAll").at(0)["cancelled"], true);
    EXPECT_TRUE(lives(left));
}

TEST_F(Alert, ItsButtonShowsThatNothingIsLeftToFree) {
    clock->advance(650);
    ASSERT_TRUE(isShown());
    reaper.end(left);
    const std::size_t seen = ticks();
    ASSERT_TRUE(waitUntil([&] { return ticks() >= seen + 2; }, 20));
    click(right);
    EXPECT_EQ(answered(), "free");
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }, 20)) << hands->list();
    EXPECT_EQ(windows().front().width, 960);
    EXPECT_THAT(home.logLines("confirm"), SizeIs(0));
}

TEST_F(Alert, AClickOnItOpensTheMainWindow) {
    clock->advance(650);
    click(middle);
    EXPECT_EQ(answered(), "default");
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }, 20)) << hands->list();
    EXPECT_EQ(windows().front().width, 960);
    EXPECT_TRUE(waitUntil([&] { return notifications(*hands).empty(); }));
    EXPECT_THAT(home.logLines("window"), SizeIs(1));
}

}  // namespace
}  // namespace ravik::endtoend

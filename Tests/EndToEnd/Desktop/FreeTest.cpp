#include <gmock/gmock.h>
#include <unistd.h>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;
using testing::StartsWith;

/// A panel over one program that its terminal has left behind.
class Free : public DesktopCase {
protected:
    void SetUp() override {
        DesktopCase::SetUp();
        home.storeShortPatience();
        left = leave("shop/server.js", 200);
        ASSERT_GT(left, 0);
        showTray(Tray::trayer);
        startApp({"TOLVANE_INTERVAL=1"});
        hands->click(icon());
        ASSERT_TRUE(showsBeginning(button, "Free "));
    }

    void ask() {
        ASSERT_TRUE(hasKeyboard("Ravik"));
        Area free;
        ASSERT_TRUE(shows([&](const Accessible& windows) {
            const Accessible* found = windows.findBeginning(button, "Free ");
            if (found) free = found->area;
            return found && found->enabled && free.width > 0;
        }));
        hands->click(free);
        ASSERT_TRUE(shows(button, "Cancel"));
        ASSERT_TRUE(hasKeyboard("End 1 program?"));
        // Until then it takes no yes.
        usleep(doubleClick);
    }
    /// Waits for that many answers, and returns the last.
    bool answer(std::size_t count) {
        EXPECT_TRUE(waitUntil([&] { return home.logLines("confirm").size() == count; }));
        const auto lines = home.logLines("confirm");
        EXPECT_THAT(lines, SizeIs(count));
        return !lines.empty() && lines.back()["confirmed"] == true;
    }

    static constexpr const char* button = "push button";
    static constexpr useconds_t doubleClick = 600'000;
    Pid left = 0;
};

TEST_F(Free, EndsARealLeftoverAfterTheChord) {
    ask();
    EXPECT_TRUE(lives(left));
    hands->press(key::backspace, {key::control});
    EXPECT_TRUE(answer(1));
    ASSERT_TRUE(waitUntil([&] { return !lives(left); }, 20));
    EXPECT_TRUE(showsBeginning("label", "1 ended · 0 survivors · "));

    ASSERT_TRUE(logs("fixAll"));
    EXPECT_THAT(home.logLines("remedy"), SizeIs(1));
    EXPECT_THAT(home.settings()["lastFix"]["line"].get<std::string>(), StartsWith("1 ended · 0 survivors · "));
}

TEST_F(Free, TakesReturnEscapeAndPlainBackspaceForNo) {
    ask();
    hands->press(key::enter);
    EXPECT_FALSE(answer(1));
    ask();
    hands->press(key::escape);
    EXPECT_FALSE(answer(2));
    ask();
    hands->press(key::backspace);
    hands->press(key::enter);
    EXPECT_FALSE(answer(3));
    EXPECT_TRUE(lives(left));
    EXPECT_THAT(home.logLines("remedy"), SizeIs(0));
}

TEST_F(Free, IsWhatReturnPressesInThePanel) {
    ASSERT_TRUE(hasKeyboard("Ravik"));
    hands->press(key::enter);
    ASSERT_TRUE(shows(button, "Cancel"));
    ASSERT_TRUE(hasKeyboard("End 1 program?"));
    hands->press(key::enter);
    EXPECT_FALSE(answer(1));
    EXPECT_TRUE(lives(left));
}

TEST_F(Free, LeavesOneAloneThatIsToBeKept) {
    click(button, "Keep This One Running");
    ASSERT_TRUE(logs("keep"));
    EXPECT_TRUE(shows([](const Accessible& windows) { return !windows.find("push button", "Keep This One Running"); }));
    EXPECT_TRUE(lives(left));
}

TEST_F(Free, IsANoWhenTheAppIsToEnd) {
    ask();
    app->signal(15);
    EXPECT_EQ(app->finish().status, 0);
    app.reset();
    EXPECT_FALSE(answer(1));
    EXPECT_TRUE(lives(left));
}

}  // namespace
}  // namespace ravik::endtoend

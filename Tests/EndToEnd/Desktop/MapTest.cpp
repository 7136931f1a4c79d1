#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include <unistd.h>

#include "Tests/EndToEnd/Desktop/MainWindowCase.h"

namespace ravik::endtoend {
namespace {

using testing::StartsWith;

/// The ring of this machine's memory, most of what is held by two programs that were left behind.
class Map : public MainWindowCase {
protected:
    void SetUp() override {
        MainWindowCase::SetUp();
        left = leave("shop/server.js", 600);
        ASSERT_GT(left, 0);
        ASSERT_GT(leave("blog/site.js", 300), 0);
        home.store({{"diagnosisMode", "Map"}});
        openWindow();
        enlarge();
        ASSERT_TRUE(showsBeginning("list", ring));
        ASSERT_TRUE(shows(label, hint));
        ASSERT_THAT(get(card, "node: server.js, 0.6 GB, ").name, StartsWith("node: server.js, "));
    }
    /// Clicks what lies so far clockwise from the top, in the middle of the ring.
    void clickAt(double degrees) {
        const Area area = get("list", ring).area;
        const double radius = 109.0 / 304 * area.width;
        const double angle = degrees * std::numbers::pi / 180;
        const auto x = static_cast<int>(std::lround(area.x + area.width / 2.0 + radius * std::sin(angle)));
        const auto y = static_cast<int>(std::lround(area.y + area.height / 2.0 - radius * std::cos(angle)));
        hands->click({x, y, 1, 1});
    }
    bool isChosen(const std::string& name) {
        return shows([&](const Accessible& windows) {
            const Accessible* arc = windows.findBeginning(card, name + ", ");
            return arc && arc->selected && windows.find("heading", name);
        });
    }

    static constexpr const char* ring = "Memory map. ";
    static constexpr const char* hint = "Click a part to see its causes.";
    Pid left = 0;
};

TEST_F(Map, OpensTheSidePanelOfThePartThatIsClicked) {
    // The largest part begins at the top.
    clickAt(1.5);
    ASSERT_TRUE(isChosen("node: server.js"));
    EXPECT_TRUE(showsBeginning(button, "End… server.js"));
    EXPECT_FALSE(shown().find(label, hint));
    EXPECT_TRUE(ticks(2));
    EXPECT_TRUE(isChosen("node: server.js"));
    // In the free space opposite there is nothing.
    clickAt(270);
    EXPECT_TRUE(shows(label, hint));
}

TEST_F(Map, IsGoneRoundByKeys) {
    hands->press(key::right);
    ASSERT_TRUE(isChosen("node: server.js"));
    EXPECT_TRUE(hasFocus("list", ring));
    hands->press(key::right);
    ASSERT_TRUE(isChosen("node: site.js"));
    EXPECT_TRUE(showsBeginning(button, "End… site.js"));
    hands->press(key::left);
    EXPECT_TRUE(isChosen("node: server.js"));
    EXPECT_TRUE(ticks(2));
    EXPECT_TRUE(isChosen("node: server.js"));
    hands->press(key::escape);
    EXPECT_TRUE(shows(label, hint));
    EXPECT_TRUE(hasFocus("list", ring));
}

TEST_F(Map, EndsALeftoverFromItsSidePanel) {
    clickAt(1.5);
    ASSERT_TRUE(isChosen("node: server.js"));
    click(button, "End… server.js");
    sayYes();
    ASSERT_TRUE(platform::waitUntil([&] { return !lives(left); }, 20));
    EXPECT_TRUE(showsBeginning(label, "server.js. 1 ended · 0 survivors · "));
}

TEST_F(Map, IsChosenByKeysAndKeptForTheNextWindow) {
    // The option that is chosen is the one stop before the ring.
    hands->press(key::tab, {key::shift});
    ASSERT_TRUE(hasFocus("radio button", "Map"));
    hands->press(key::left);
    ASSERT_TRUE(hasFocus("radio button", "Cards"));
    EXPECT_TRUE(showsBeginning(card, "server.js. "));
    EXPECT_TRUE(platform::waitUntil([&] { return home.settings()["diagnosisMode"] == "Cards"; }));
    hands->press(key::right);
    ASSERT_TRUE(hasFocus("radio button", "Map"));
    EXPECT_TRUE(showsBeginning("list", ring));
    EXPECT_TRUE(platform::waitUntil([&] { return home.settings()["diagnosisMode"] == "Map"; }));
}

TEST_F(Map, ShowsTheEvidenceOfAPartsFinding) {
    clickAt(1.5);
    ASSERT_TRUE(isChosen("node: server.js"));
    click(button, "server.js");
    ASSERT_TRUE(showsBeginning("dialog", "server.js"));
    hands->press(key::escape);
    EXPECT_TRUE(isChosen("node: server.js"));
}

}  // namespace
}  // namespace ravik::endtoend

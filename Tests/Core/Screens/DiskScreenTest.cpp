#include "Core/Screens/DiskScreen.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "Core/Screens/LiveLeftoversRule.h"
#include "Tests/Core/Disk/DiskTree.h"
#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"

namespace ravik {

using namespace DiskScreen;  // NOLINT: the functions under test
using ::testing::ElementsAre;

class DiskScreenTest : public DiskTree {
protected:
    DiskScreenTest() {
        machine.platform.folders.home = home;
        model.projectRoots = roots;
    }

    fakes::FakeMachine machine;
    Log log{[this] {
        Log::Options options;
        options.folder = outside / "log";
        options.now = [] { return 0.0; };
        options.enabled = false;
        return options;
    }()};
    fakes::FakeAsker asker;
    DiskModel model{machine.platform, log, HostKind::mac, asker};
};

TEST_F(DiskScreenTest, StartsWithFreeSpaceAndTheHelp) {
    EXPECT_EQ(hero(model, 123ull << 30),
              (Hero{"123", "GB", "free on your disk", "A scan finds caches and old build folders you can delete."}));
    EXPECT_THAT(buttons(model), ElementsAre(Button{"Scan", true}));
    EXPECT_EQ(body(model), (Body{BodyKind::help, "", 0}));
}

TEST_F(DiskScreenTest, ShowsTheScanOnItsWay) {
    folder(home / "Projects/a");
    std::vector<Body> bodies;
    model.onChange([&] {
        bodies.push_back(body(model));
        EXPECT_THAT(buttons(model), ElementsAre(Button{"Scan again", !model.isScanning()}));
    });
    model.scan();
    machine.loop.settle();
    EXPECT_EQ(bodies[0], (Body{BodyKind::spinner, "Looking for folders…", 0}));
    EXPECT_EQ(bodies[9], (Body{BodyKind::progress, "9 of 18 folders", 0.5}));
}

TEST_F(DiskScreenTest, AScanThatFindsNothingLeavesTheHeroOnFreeSpace) {
    model.scan();
    machine.loop.settle();
    EXPECT_EQ(hero(model, 1ull << 30).caption, "free on your disk");
    EXPECT_THAT(buttons(model), ElementsAre(Button{"Scan again", true}));
    EXPECT_EQ(body(model), (Body{BodyKind::nothing, "No big caches and no old build folders to clear.", 0}));
}

TEST_F(DiskScreenTest, ShowsTheRowsInATable) {
    fill(home / ".npm/_npx", 1230 * MiB);
    fill(home / ".cache/uv", 60 * MiB);
    model.scan();
    machine.loop.settle();
    EXPECT_EQ(hero(model, 0),
              (Hero{"1.3", "GB", "you can free on disk", "Tick what to move to the Trash. You can put it back."}));
    EXPECT_EQ(body(model).kind, BodyKind::table);
    EXPECT_THAT(buttons(model), ElementsAre(Button{"Scan again", true}, Button{"Move to Trash…", false}));
    const std::string npx = (home / ".npm/_npx").string();
    const std::string uv = (home / ".cache/uv").string();
    model.setChecked(uv, true);
    EXPECT_THAT(buttons(model), ElementsAre(Button{"Scan again", true}, Button{"Move to Trash…", true}));
    EXPECT_THAT(rows(model), ElementsAre(Row{npx, "1.2", "npx cache", "recreated on next use", npx, false},
                                         Row{uv, "0.1", "uv cache", "recreated on next use", uv, true}));
    model.setChecked(uv, false);
    EXPECT_FALSE(rows(model)[1].isChecked);
}

TEST_F(DiskScreenTest, AFailureHidesTheTableUntilTheNextScan) {
    fill(home / ".npm/_npx", 60 * MiB);
    model.scan();
    machine.loop.settle();
    machine.trash.refusal = "No.";
    model.setChecked((home / ".npm/_npx").string(), true);
    spawn(model.trashChecked());
    EXPECT_EQ(body(model),
              (Body{BodyKind::warning, "Could not move npx cache to the Trash: No. Nothing else was changed.", 0}));
    EXPECT_EQ(hero(model, 1ull << 30).caption, "free on your disk");
    model.scan();
    machine.loop.settle();
    EXPECT_EQ(body(model).kind, BodyKind::table);
}

TEST(DiskRing, FillsToWhatIsUsed) {
    constexpr std::uint64_t gb = 1000ull << 20;
    EXPECT_EQ(ring(125 * gb, 500 * gb), (Ring{0.75, "25%", "free of 500.0 GB", "Disk: 25 percent free of 500.0 GB"}));
    EXPECT_EQ(ring(2 * gb, 3 * gb).percent, "66%");
}

TEST(DiskRing, WithoutACapacityNothingIsUsed) {
    EXPECT_EQ(ring(5, 5), (Ring{0, "100%", "free of 0.0 GB", "Disk: 100 percent free of 0.0 GB"}));
    EXPECT_EQ(ring(5, 0).used, 0);
}

TEST(LiveLeftoversRule, TakesHoursWithinItsRangeOnly) {
    Thresholds limits;
    for (const double hours : {0.2, 168.01, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(LiveLeftoversRule::setHours(limits, hours));
        EXPECT_EQ(limits.autoLeftoverMinHours, 1.0);
    }
    for (const double hours : {0.25, 168.0}) {
        EXPECT_TRUE(LiveLeftoversRule::setHours(limits, hours));
        EXPECT_EQ(limits.autoLeftoverMinHours, hours);
    }
}

}  // namespace ravik

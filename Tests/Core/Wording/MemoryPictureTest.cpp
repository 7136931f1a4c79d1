#include "Core/Wording/MemoryPicture.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

Making app(Pid pid, const std::string& name) { return Making(pid, "/Applications/" + name + ".app/x"); }

struct Scene : Machine {
    std::vector<Finding> findings;

    MemoryPicture picture(std::size_t topApps = 6) const {
        const Cards cards(*this, findings);
        return {cards.snapshot, cards.index, ram, topApps, host};
    }
};

using Segment = MemoryPicture::Segment;

const Segment* find(const MemoryPicture& picture, const std::string& id) {
    for (const Segment& segment : picture.segments) {
        if (segment.id == id) return &segment;
    }
    return nullptr;
}

std::vector<std::string> ids(const MemoryPicture& picture) {
    std::vector<std::string> found;
    for (const Segment& segment : picture.segments) found.push_back(segment.id);
    return found;
}

using Ids = std::vector<std::string>;

}  // namespace

TEST(MemoryPicture, MarksWhatFreeEndsAndWhatQuittingGivesBack) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000), app(8, "Foo").mb(3000)};
    scene.findings = {finding("browser:Arc", QuitApp{"Arc"}, 3000 * MiB),
                      finding("orphan:8", KillTrees{{8}}, 500 * MiB)};
    scene.stats.swapUsedBytes = 7;
    const MemoryPicture picture = scene.picture();
    EXPECT_EQ(
        picture.segments,
        (std::vector<Segment>{{"Arc", "Arc", IconRef{"Arc", "terminal"}, 6000 * MiB, 0, 3000 * MiB, {"browser:Arc"}},
                              {"Foo", "Foo", IconRef{"Foo", "terminal"}, 3000 * MiB, 500 * MiB, 0, {"orphan:8"}}}));
    EXPECT_EQ(picture.ram, 16 * GiB);
    EXPECT_EQ(picture.swap, 7u);
    EXPECT_EQ(picture.held(), 9000 * MiB);
    EXPECT_EQ(picture.freeBytes(), 500 * MiB);
    EXPECT_EQ(picture.quitBytes(), 3000 * MiB);
    EXPECT_EQ(picture.quitApps(), Ids{"Arc"});
    EXPECT_EQ(picture.summary(),
              "Apps hold 9.0 GB of 16 GB RAM; 500\u00a0MB ends with Free, 3.0 GB comes back when you quit Arc.");
}

TEST(MemoryPicture, WithNothingToQuitTheSummaryStopsAtFree) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000)};
    EXPECT_EQ(scene.picture().summary(), "Apps hold 6.0 GB of 16 GB RAM; 0\u00a0MB ends with Free.");
}

TEST(MemoryPicture, AFindingWithoutGainMarksNothing) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000)};
    scene.findings = {finding("hog:7", KillTrees{{7}}, 0), finding("vm:Arc", Advice{}, 0)};
    EXPECT_TRUE(scene.picture().segments.at(0).findingIDs.empty());
    EXPECT_EQ(scene.picture().freeBytes(), 0u);
}

TEST(MemoryPicture, WhatAsksFirstIsNeverAmber) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000)};
    scene.findings = {cautioned(finding("orphan:7", KillTrees{{7}}, 100 * MiB))};
    EXPECT_EQ(scene.picture().segments.at(0).freeBytes, 0u);
    EXPECT_EQ(scene.picture().segments.at(0).quitBytes, 100 * MiB);
}

TEST(MemoryPicture, AHundredthOfTheMemoryGetsNoNameOfItsOwn) {
    Scene scene;
    const std::uint64_t hundredth = 16 * GiB / 100;
    scene.procs = {app(7, "Arc").bytes(hundredth), app(8, "Foo").bytes(hundredth + 1)};
    EXPECT_EQ(ids(scene.picture()), Ids{"Foo"});
    scene.procs = {app(7, "Arc").mb(160)};
    scene.findings = {finding("orphan:7", KillTrees{{7}}, 160 * MiB)};
    const MemoryPicture picture = scene.picture();
    EXPECT_EQ(picture.segments, (std::vector<Segment>{{"leftovers",
                                                       "1 leftover",
                                                       IconRef{"", "chevron.left.forwardslash.chevron.right"},
                                                       160 * MiB,
                                                       160 * MiB,
                                                       0,
                                                       {"orphan:7"},
                                                       Segment::Kind::leftovers}}));
}

TEST(MemoryPicture, LeftoversAreCountedByOwnerAndListedByFinding) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").mb(1), Making(8, "/tmp/b").mb(1), Making(9, "/tmp/a").mb(1)};
    scene.findings = {finding("orphan:7", KillTrees{{7}}, MiB), finding("orphan:8", KillTrees{{8}}, MiB),
                      finding("orphan:9", KillTrees{{9}}, MiB), finding("orphan:99", KillTrees{{99}}, MiB),
                      finding("leftovers", KillTrees{}, MiB)};
    const MemoryPicture picture = scene.picture();
    ASSERT_TRUE(find(picture, "leftovers"));
    EXPECT_EQ(find(picture, "leftovers")->label, "3 leftovers");
    EXPECT_EQ(find(picture, "leftovers")->bytes, 5 * MiB);
    EXPECT_EQ(find(picture, "leftovers")->findingIDs,
              (Ids{"orphan:7", "orphan:8", "orphan:9", "orphan:99", "leftovers"}));
}

TEST(MemoryPicture, AnAppToQuitThatIsNotNamedGetsItsOwnSegment) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000), app(8, "Foo").mb(100)};
    scene.findings = {finding("holder:Foo", QuitApp{"Foo"}, 100 * MiB),
                      finding("holder:Bar", QuitApp{"Bar"}, 50 * MiB)};
    const MemoryPicture picture = scene.picture();
    EXPECT_EQ(ids(picture), (Ids{"Arc", "Foo", "Bar"}));
    EXPECT_EQ(find(picture, "Foo")->bytes, 100 * MiB);
    EXPECT_EQ(find(picture, "Bar")->quitBytes, 50 * MiB);
    EXPECT_EQ(picture.quitApps(), (Ids{"Foo", "Bar"}));
}

TEST(MemoryPicture, OtherUsersFallIntoTheRest) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").uid(0).mb(5000), app(8, "Arc").mb(3000)};
    const MemoryPicture picture = scene.picture();
    EXPECT_EQ(ids(picture), (Ids{"Arc", "rest"}));
    EXPECT_EQ(*find(picture, "rest"),
              (Segment{"rest", "Everything else", {}, 5000 * MiB, 0, 0, {}, Segment::Kind::rest}));
}

TEST(MemoryPicture, TheRestIsShownAboveAFiftiethOfTheMemory) {
    Scene scene;
    const std::uint64_t fiftieth = 16 * GiB / 50;
    scene.procs = {Making(7, "/tmp/a").uid(0).bytes(fiftieth)};
    EXPECT_TRUE(scene.picture().segments.empty());
    scene.procs = {Making(7, "/tmp/a").uid(0).bytes(fiftieth + 1)};
    EXPECT_EQ(ids(scene.picture()), Ids{"rest"});
    scene.procs = {Making(7, "/tmp/a").uid(0).bytes(64 * GiB)};
    EXPECT_TRUE(scene.picture().segments.empty());
    scene.procs = {Making(7, "/tmp/a").uid(0).bytes(64 * GiB - 1)};
    EXPECT_EQ(ids(scene.picture()), Ids{"rest"});
}

TEST(MemoryPicture, OnlyTheFirstAppsAreNamed) {
    Scene scene;
    for (Pid pid = 1; pid <= 8; ++pid) {
        scene.procs.push_back(
            app(pid, std::string(1, static_cast<char>('A' + pid))).mb(1000 - static_cast<std::uint64_t>(pid)));
    }
    EXPECT_EQ(ids(scene.picture(6)), (Ids{"B", "C", "D", "E", "F", "G", "rest"}));
}

TEST(MemoryPicture, AShareNeverPassesWhatItsAppHolds) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(500)};
    scene.findings = {finding("orphan:7", KillTrees{{7}}, 900 * MiB), finding("holder:Arc", QuitApp{"Arc"}, 900 * MiB)};
    const MemoryPicture picture = scene.picture();
    EXPECT_EQ(picture.segments.at(0).freeBytes, 500 * MiB);
    EXPECT_EQ(picture.segments.at(0).quitBytes, 500 * MiB);
    EXPECT_EQ(picture.after().segments.at(0).bytes, 0u);
}

TEST(MemoryPicture, AfterIsWhatRemains) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000)};
    scene.findings = {finding("browser:Arc", QuitApp{"Arc"}, 3000 * MiB)};
    const MemoryPicture after = scene.picture().after();
    EXPECT_EQ(after.segments.at(0).bytes, 3000 * MiB);
    EXPECT_EQ(after.quitBytes(), 0u);
    EXPECT_TRUE(after.quitApps().empty());
}

TEST(MemoryPicture, TheLegendNamesTheMarksInUse) {
    using Mark = LegendItem::Mark;
    EXPECT_EQ(memoryLegend(16 * GiB, true, macHost()),
              (std::vector<LegendItem>{{Mark::held, "Memory apps are using"},
                                       {Mark::free, "Free can end it"},
                                       {Mark::quit, "Comes back if you quit the app"},
                                       {Mark::spilled, "Spilled to disk — slows your Mac"},
                                       {Mark::ram, "Your 16 GB of memory"}}));
    EXPECT_EQ(memoryLegend(16 * GiB, false, linuxHost()).at(2).text, "Spilled to disk — slows your computer");
}

TEST(MemoryPicture, SharesAreWholePercents) {
    EXPECT_EQ(memoryShare(0, 100), "0%");
    EXPECT_EQ(memoryShare(4, 1000), "<1%");
    EXPECT_EQ(memoryShare(996, 1000), "100%");
    EXPECT_EQ(memoryShare(1, 100), "1%");
    EXPECT_EQ(memoryShare(0, 0), "0%");
}

}  // namespace ravik

#include "Core/Screens/Nav.h"

#include <gtest/gtest.h>

#include "Core/Screens/Sidebar.h"
#include "Tests/Core/Wording/Cards.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

using namespace fakes;

namespace {

using Change = Nav::Change;

const std::vector<Destination> everything(allDestinations.begin(), allDestinations.end());

struct NavTest : testing::Test {
    FakeClock clock;
    LogFolder logFolder{clock};
    Nav nav{logFolder.log, everything};
    std::vector<Change> changes;
    Subscription watching = nav.observe([this](Change change) { changes.push_back(change); });
};

AgentSession session(Pid id, bool alive) {
    AgentSession made;
    made.id = id;
    made.alive = alive;
    return made;
}

Snapshot busy() {
    Snapshot snapshot;
    snapshot.sampled = true;
    snapshot.findings = {finding("a"), finding("b"), finding("c")};
    snapshot.sessions = {session(10, true), session(11, true), session(-1, false)};
    return snapshot;
}

SidebarRow row(Destination destination, const Snapshot& snapshot) {
    const Sidebar sidebar(everything, Destination::diagnosis, true, snapshot, linuxHost());
    return sidebar.rows.at(static_cast<std::size_t>(key(destination) - 1));
}

}  // namespace

TEST_F(NavTest, StartsOnDiagnosisWithNothingOverIt) {
    EXPECT_EQ(nav.destination(), Destination::diagnosis);
    EXPECT_FALSE(nav.info());
    EXPECT_TRUE(nav.expanded().empty());
    EXPECT_TRUE(nav.windowShown());
}

TEST_F(NavTest, LogsEachChangeOfTheScreenOnce) {
    EXPECT_TRUE(nav.go(Destination::history));
    EXPECT_TRUE(nav.go(Destination::history));
    EXPECT_TRUE(nav.go(Destination::diagnosis));
    const auto tabs = logFolder.lines("tab");
    ASSERT_EQ(tabs.size(), 2u);
    EXPECT_EQ(tabs[0]["name"], "history");
    EXPECT_EQ(tabs[1]["name"], "diagnosis");
    EXPECT_EQ(changes, (std::vector{Change::destination, Change::destination}));
}

TEST_F(NavTest, StaysWhereItIsForAScreenThatDoesNotExist) {
    Nav small(logFolder.log, {Destination::disk, Destination::diagnosis});
    EXPECT_EQ(small.screens(), (std::vector{Destination::diagnosis, Destination::disk}));
    EXPECT_FALSE(small.go(Destination::history));
    EXPECT_EQ(small.destination(), Destination::diagnosis);
    EXPECT_TRUE(logFolder.lines("tab").empty());
    EXPECT_TRUE(small.go(Destination::disk));
}

TEST_F(NavTest, LogsEachAppearanceOfTheWindow) {
    nav.setWindowShown(false);
    nav.go(Destination::disk);
    nav.windowAppeared();
    nav.windowAppeared();
    const auto lines = logFolder.lines("window");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["open"], true);
    EXPECT_TRUE(nav.windowShown());
    EXPECT_EQ(nav.destination(), Destination::disk);
    EXPECT_EQ(changes, (std::vector{Change::windowShown, Change::destination, Change::windowShown}));
}

TEST_F(NavTest, UnfoldsAndFoldsRows) {
    nav.setExpanded("a", true);
    nav.setExpanded("a", true);
    EXPECT_TRUE(nav.isExpanded("a"));
    nav.go(Destination::disk);
    EXPECT_TRUE(nav.isExpanded("a"));
    nav.setExpanded("a", false);
    nav.setExpanded("b", false);
    EXPECT_FALSE(nav.isExpanded("a"));
    EXPECT_EQ(changes, (std::vector{Change::expanded, Change::destination, Change::expanded}));
}

TEST_F(NavTest, OpensAndClosesTheHelpSheet) {
    nav.setInfo(FindingInfo{"orphan:812"});
    nav.setInfo(FindingInfo{"orphan:812"});
    EXPECT_EQ(nav.info(), Info(FindingInfo{"orphan:812"}));
    nav.setInfo({});
    EXPECT_FALSE(nav.info());
    EXPECT_EQ(changes, (std::vector{Change::info, Change::info}));
}

TEST_F(NavTest, TellsNobodyWhoHasLeft) {
    watching.end();
    nav.go(Destination::disk);
    EXPECT_TRUE(changes.empty());
}

TEST(Info, IsKnownByItsKindAndItsSubject) {
    EXPECT_EQ(idOf(FindingInfo{"orphan:812"}), "f:orphan:812");
    EXPECT_EQ(idOf(SessionInfo{812}), "s:812");
    EXPECT_EQ(idOf(PageInfo{Destination::history}), "p:history");
    EXPECT_NE(idOf(FindingInfo{"812"}), idOf(SessionInfo{812}));
}

TEST(Destination, ItsKeyIsItsPlace) {
    EXPECT_EQ(key(Destination::diagnosis), 1);
    EXPECT_EQ(key(Destination::sessions), 2);
    EXPECT_EQ(key(Destination::processes), 3);
    EXPECT_EQ(key(Destination::disk), 4);
    EXPECT_EQ(key(Destination::history), 5);
    EXPECT_EQ(key(Destination::autopilot), 6);
}

TEST(Sidebar, ListsTheScreensThatExistInTheirOrder) {
    const Sidebar sidebar({Destination::diagnosis, Destination::disk}, Destination::disk, false, busy(), linuxHost());
    ASSERT_EQ(sidebar.rows.size(), 2u);
    EXPECT_EQ(sidebar.rows[0].title, "Diagnosis");
    EXPECT_EQ(sidebar.rows[0].symbol, "stethoscope");
    EXPECT_EQ(sidebar.rows[0].shortcut, "Ctrl+1");
    EXPECT_FALSE(sidebar.rows[0].isSelected);
    EXPECT_EQ(sidebar.rows[1].title, "Disk");
    EXPECT_EQ(sidebar.rows[1].symbol, "internaldrive");
    EXPECT_EQ(sidebar.rows[1].shortcut, "Ctrl+4");
    EXPECT_TRUE(sidebar.rows[1].isSelected);
    EXPECT_FALSE(sidebar.hasSettings);
}

TEST(Sidebar, WritesShortcutsAsTheSystemDoes) {
    const Sidebar sidebar(everything, Destination::diagnosis, true, {}, macHost());
    EXPECT_EQ(sidebar.rows.at(5).shortcut, "⌘6");
    EXPECT_TRUE(sidebar.hasSettings);
    EXPECT_EQ(Sidebar::settingsTitle, "Settings");
    EXPECT_EQ(GoMenu::readNow(macHost()), "Read the Mac Now");
    EXPECT_EQ(GoMenu::readNow(linuxHost()), "Read the computer Now");
}

TEST(Sidebar, DiagnosisCountsItsFindings) {
    EXPECT_EQ(row(Destination::diagnosis, busy()).badge, "3");
    EXPECT_EQ(row(Destination::diagnosis, busy()).spoken(), "Diagnosis, 3 findings");
    Snapshot calm = busy();
    calm.findings.clear();
    EXPECT_EQ(row(Destination::diagnosis, calm).badge, std::nullopt);
    EXPECT_EQ(row(Destination::diagnosis, calm).spoken(), "Diagnosis");
    Snapshot unread = busy();
    unread.sampled = false;
    EXPECT_EQ(row(Destination::diagnosis, unread).badge, std::nullopt);
}

TEST(Sidebar, AgentSessionsCountsRunningOnesOnly) {
    EXPECT_EQ(row(Destination::sessions, busy()).badge, "2");
    EXPECT_EQ(row(Destination::sessions, busy()).spoken(), "Agent sessions, 2 running");
    Snapshot ended;
    ended.sessions = {session(-1, false)};
    EXPECT_EQ(row(Destination::sessions, ended).badge, std::nullopt);
}

TEST(Sidebar, AutopilotIsAlwaysLearningAndTheRestHasNoBadge) {
    EXPECT_EQ(row(Destination::autopilot, {}).badge, "learning");
    EXPECT_EQ(row(Destination::autopilot, {}).spoken(), "Autopilot, learning");
    EXPECT_EQ(row(Destination::processes, busy()).badge, std::nullopt);
    EXPECT_EQ(row(Destination::disk, busy()).badge, std::nullopt);
    EXPECT_EQ(row(Destination::history, busy()).badge, std::nullopt);
}

}  // namespace ravik

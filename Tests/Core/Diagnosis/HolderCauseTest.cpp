#include <limits>

#include <gtest/gtest.h>

#include "Core/Diagnosis/Diagnoser.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::GiB;
using fakes::Machine;
using fakes::Making;
using fakes::MiB;
using fakes::minute;
using Severity = Finding::Severity;
using Ids = std::vector<std::string>;

namespace {

constexpr std::string_view app = "/Applications/App.app/Contents/MacOS/App";
constexpr std::string_view code = "/Applications/Visual Studio Code.app/Contents/MacOS/Electron";
constexpr std::string_view plugin =
    "/Applications/Visual Studio Code.app/Contents/Frameworks/Code Helper (Plugin).app/Contents/MacOS/Code Helper "
    "(Plugin) --type=utility --utility-sub-type=node.mojom.NodeService";

Machine pressed(std::vector<Proc> procs) {
    Machine machine;
    machine.procs = std::move(procs);
    machine.press();
    return machine;
}

Trend heldSince(double seconds, std::string group, std::uint64_t bytes) {
    Trend trend;
    trend.held = {{fakes::now - seconds, {{std::move(group), bytes}}}};
    return trend;
}

/// An editor of 8 GiB whose extension host and its child hold `hostBytes` of it and `below`.
Machine editor(std::uint64_t hostBytes, Making below = Making(30, "/opt/tsserver").mb(100)) {
    return pressed({Making(10, code).bytes(8 * GiB - hostBytes),
                    Making(20, plugin).name("Code Helper (Plugin)").parent(10).bytes(hostBytes), below.parent(20)});
}

}  // namespace

TEST(HolderCause, SpeaksOnlyWhenMemoryIsShort) {
    Machine machine = pressed({Making(7, app).bytes(8 * GiB)});
    machine.stats.memoryFreePercent = machine.limits.memoryFreePct + 5;
    EXPECT_TRUE(machine.ids().empty());
    machine.stats.memoryFreePercent = machine.limits.memoryFreePct + 4;
    EXPECT_EQ(machine.ids(), (Ids{"holder:App"}));
    machine.stats.memoryFreePercent = 90;
    machine.stats.swapOutBytesPerSec = 5 * 0x1p20;
    EXPECT_TRUE(machine.ids().empty());
    machine.stats.swapOutBytesPerSec = 5.1 * 0x1p20;
    EXPECT_EQ(machine.ids(), (Ids{"thrash", "holder:App"}));
}

TEST(HolderCause, TheLargestLimitOnFreeMemoryStillMeansShort) {
    Machine machine = pressed({Making(7, app).bytes(8 * GiB)});
    machine.limits.memoryFreePct = std::numeric_limits<int>::max();
    machine.stats.memoryFreePercent = 100;
    EXPECT_EQ(machine.ids(), (Ids{"holder:App"}));
}

TEST(HolderCause, AnAppThatHoldsMuchIsAskedToQuit) {
    Machine machine =
        pressed({Making(7, app).name("App").mb(6000), Making(8, app).name("Helper").parent(7).mb(1373),
                 Making(9, app).name("Third").parent(7).mb(5), Making(11, app).name("Fourth").parent(7).mb(1)});
    machine.ram = 24 * GiB;
    const auto finding = machine.finding("holder:App");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title, "App holds 7.4 GB — 30% of your RAM");
    EXPECT_EQ(finding->evidence,
              "4 processes · biggest: App (pid 7) 6000 MB, Helper (pid 8) 1373 MB, Third (pid 9) 5 MB");
    EXPECT_EQ(finding->remedy, Remedy(QuitApp{"App"}));
    EXPECT_EQ(finding->gainBytes, 7379 * MiB);
    EXPECT_EQ(finding->caution, std::nullopt);
    EXPECT_EQ(finding->startedBy, std::nullopt);
}

TEST(HolderCause, AQuarterOfMemoryIsEnough) {
    EXPECT_EQ(pressed({Making(7, app).bytes(4 * GiB)}).ids(), (Ids{"holder:App"}));
    EXPECT_TRUE(pressed({Making(7, app).bytes(4 * GiB - 1)}).ids().empty());
}

TEST(HolderCause, MoreThanAllIsSaidSo) {
    EXPECT_EQ(pressed({Making(7, app).bytes(16 * GiB)}).finding("holder:App")->title,
              "App holds 16.4 GB — more than all your RAM");
}

TEST(HolderCause, GrowthFromLittleLeavesOutWhereItBegan) {
    Machine machine = pressed({Making(7, app).name("App").bytes(4096 * MiB)});
    machine.trend = heldSince(7 * minute + 59, "App", 50 * MiB);
    const auto finding = machine.finding("holder:App");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "App grew to 4.1 GB in 7 min");
    EXPECT_EQ(finding->evidence, "25% of your RAM · 1 process · biggest: App (pid 7) 4096 MB");
}

TEST(HolderCause, GrowthFromAHundredMebibytesTellsWhereItBegan) {
    Machine machine = pressed({Making(7, app).bytes(4096 * MiB)});
    machine.trend = heldSince(20, "App", 100 * MiB);
    EXPECT_EQ(machine.finding("holder:App")->title, "App grew from 0.1 GB to 4.1 GB in 1 min");
    machine.trend = heldSince(20, "App", 100 * MiB - 1);
    EXPECT_EQ(machine.finding("holder:App")->title, "App grew to 4.1 GB in 1 min");
}

TEST(HolderCause, GrowthCountsFromAnEighthOfMemoryOrAGibibyte) {
    Machine machine = pressed({Making(7, app).bytes(3 * GiB)});
    machine.trend = heldSince(60, "App", GiB);
    EXPECT_EQ(machine.ids(), (Ids{"holder:App"}));
    machine.trend = heldSince(60, "App", GiB + 1);
    EXPECT_TRUE(machine.ids().empty());
    machine.ram = 4 * GiB;
    machine.procs = {Making(7, app).bytes(GiB - 1)};
    machine.trend = heldSince(60, "App", 0);
    EXPECT_TRUE(machine.ids().empty());
    // Shrinking is no growth, and a quarter of memory held is still much.
    machine.procs = {Making(7, app).bytes(GiB)};
    machine.trend = heldSince(60, "App", 3 * GiB);
    EXPECT_EQ(machine.finding("holder:App")->severity, Severity::warn);
}

TEST(HolderCause, OnlyTheFirstEightGroupsAreLookedAt) {
    Machine machine = pressed({});
    machine.ram = 100 * GiB;
    for (Pid pid = 1; pid <= 9; ++pid) {
        machine.procs.push_back(Making(100 + pid, "/opt/p" + std::to_string(pid)).bytes((40 - pid) * GiB));
    }
    machine.trend = heldSince(60, "none", 0);
    Ids expected;
    for (int group = 1; group <= 8; ++group) expected.push_back("holder:p" + std::to_string(group));
    EXPECT_EQ(machine.ids(), expected);
}

TEST(HolderCause, AnotherUsersGroupAndAClaimedOneAreSkipped) {
    EXPECT_TRUE(pressed({Making(7, app).bytes(9 * GiB).uid(0)}).ids().empty());
    EXPECT_EQ(pressed({Making(7, "/Applications/Docker.app/x").bytes(9 * GiB)}).ids(), (Ids{"vm:Docker"}));
}

TEST(HolderCause, WithoutABundleItsRootsAreEnded) {
    const auto finding =
        pressed({Making(8, "node /srv/server.js").parent(7).bytes(GiB), Making(7, "node /srv/server.js").bytes(5 * GiB),
                 Making(9, "node /x/server.js").bytes(GiB)})
            .finding("holder:node: server.js");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{7, 9}}));
    EXPECT_EQ(finding->gainBytes, 7 * GiB);
}

TEST(HolderCause, OnLinuxADesktopApplicationIsAskedToQuit) {
    Machine machine = pressed({Making(7, "/opt/draw/draw").bytes(5 * GiB).uid(1000).app("Draw")});
    machine.host = fakes::linuxHost();
    EXPECT_EQ(machine.finding("holder:Draw")->remedy, Remedy(QuitApp{"Draw"}));
}

TEST(HolderCause, SessionsStartedFromAnAppWouldEndWithIt) {
    Machine machine = pressed({Making(7, app).bytes(5 * GiB), Making(8, "/bin/zsh").parent(7),
                               Making(9, "claude").parent(8), Making(10, "claude")});
    EXPECT_EQ(machine.finding("holder:App")->caution, "1 agent session started from it would end with it");
    machine.procs.push_back(Making(11, "codex").parent(8));
    EXPECT_EQ(machine.finding("holder:App")->caution, "2 agent sessions started from it would end with it");
}

TEST(HolderCause, AToolsOwnMembersAreNoSessionsStartedFromIt) {
    Machine machine = pressed({Making(9, "claude").bytes(5 * GiB), Making(10, "claude").parent(9)});
    EXPECT_EQ(machine.finding("holder:Claude Code")->caution, std::nullopt);
    EXPECT_EQ(machine.finding("holder:Claude Code")->remedy, Remedy(KillTrees{{9}}));

    machine.procs = {Making(9, "/Applications/Claude.app/Contents/MacOS/Claude").bytes(5 * GiB),
                     Making(10, "/Applications/Claude.app/Contents/MacOS/claude").parent(9)};
    EXPECT_EQ(machine.finding("holder:Claude")->remedy, Remedy(QuitApp{"Claude"}));
    EXPECT_EQ(machine.finding("holder:Claude")->caution, std::nullopt);
}

TEST(ExtensionHost, IsRestartedInTheEditorsPlace) {
    const Machine machine = editor(5000 * MiB);
    const auto finding = machine.finding("holder:Visual Studio Code");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title, "Visual Studio Code holds 8.2 GB — its extensions hold 5.1 GB of it");
    EXPECT_EQ(finding->evidence,
              "extension host (pid 20) holds 5.1 GB of it · Visual Studio Code restarts it; windows and terminals stay "
              "· biggest: Code Helper (Plugin) 5000 MB, tsserver 100 MB");
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{20}}));
    EXPECT_EQ(finding->gainBytes, 5100 * MiB);
    EXPECT_EQ(finding->caution,
              "Visual Studio Code's extensions restart: a debug session or a task running in them stops");
    EXPECT_EQ(finding->tone(), Tone::caution);
}

TEST(ExtensionHost, GrowthTakesItsTitle) {
    Machine machine = editor(5000 * MiB);
    machine.trend = heldSince(5 * minute, "Visual Studio Code", 2 * GiB);
    const auto finding = machine.finding("holder:Visual Studio Code");
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "Visual Studio Code grew from 2.0 GB to 8.2 GB in 5 min");
}

TEST(ExtensionHost, LessThanHalfOfTheGroupIsNotEnough) {
    EXPECT_EQ(editor(4 * GiB, Making(30, "/opt/x")).finding("holder:Visual Studio Code")->remedy,
              Remedy(KillTrees{{20}}));
    EXPECT_EQ(editor(4 * GiB - 1, Making(30, "/opt/x")).finding("holder:Visual Studio Code")->remedy,
              Remedy(QuitApp{"Visual Studio Code"}));
}

TEST(ExtensionHost, ASessionInsideItRefusesIt) {
    const auto finding = editor(5000 * MiB, Making(30, "claude")).finding("holder:Visual Studio Code");
    EXPECT_EQ(finding->remedy, Remedy(QuitApp{"Visual Studio Code"}));
    EXPECT_EQ(finding->caution, "1 agent session started from it would end with it");
}

TEST(ExtensionHost, AForbiddenTreeRefusesIt) {
    EXPECT_EQ(editor(5000 * MiB, Making(30, "/opt/git fetch")).finding("holder:Visual Studio Code")->remedy,
              Remedy(QuitApp{"Visual Studio Code"}));
}

TEST(ExtensionHost, LessThanAnEighthOfMemoryIsNotEnough) {
    Machine machine = editor(5000 * MiB, Making(30, "/opt/x"));
    machine.ram = 5000 * MiB * 8;
    machine.trend = heldSince(60, "Visual Studio Code", 0);
    EXPECT_EQ(machine.finding("holder:Visual Studio Code")->remedy, Remedy(KillTrees{{20}}));
    machine.ram += 8;
    EXPECT_EQ(machine.finding("holder:Visual Studio Code")->remedy, Remedy(QuitApp{"Visual Studio Code"}));
}

TEST(ExtensionHost, OfEqualOnesTheFirstIsTaken) {
    Machine machine = editor(4 * GiB, Making(30, "/opt/x"));
    machine.procs[0].footprintBytes = 0;
    machine.procs.push_back(Making(21, plugin).parent(10).bytes(4 * GiB));
    EXPECT_EQ(machine.finding("holder:Visual Studio Code")->remedy, Remedy(KillTrees{{20}}));
    std::swap(machine.procs[1], machine.procs[3]);
    EXPECT_EQ(machine.finding("holder:Visual Studio Code")->remedy, Remedy(KillTrees{{21}}));
}

TEST(ExtensionHost, OnlyTheTwoEditorsHaveOne) {
    Machine machine =
        pressed({Making(10, app).bytes(GiB),
                 Making(20, "/Applications/App.app/App Helper (Plugin) extension-host").parent(10).bytes(7 * GiB)});
    EXPECT_EQ(machine.finding("holder:App")->remedy, Remedy(QuitApp{"App"}));
    machine.procs = {
        Making(10, "/Applications/Cursor.app/Cursor").bytes(GiB),
        Making(20, "/Applications/Cursor.app/Cursor Helper (Plugin) extension-host").parent(10).bytes(7 * GiB)};
    EXPECT_EQ(machine.finding("holder:Cursor")->remedy, Remedy(KillTrees{{20}}));
}

}  // namespace ravik

#include "Core/Wording/CardFace.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

CardFace faceOf(const Finding& finding, const std::vector<Proc>& procs, const Host& host = macHost()) {
    Machine machine;
    machine.host = host;
    machine.procs = procs;
    return Cards(machine).face(finding);
}

}  // namespace

TEST(CardFace, AProcessIsShownByItsProgramAndItsTree) {
    const CardFace face = faceOf(finding("orphan:7", KillTrees{{7}}),
                                 {Making(7, "node /srv/server.js").mb(10), Making(8, "esbuild").parent(7).mb(5)});
    EXPECT_EQ(face.name, "server.js");
    EXPECT_EQ(face.sub, "node · pid 7 · 2 processes");
    EXPECT_EQ(face.icon, (IconRef{"node", "chevron.left.forwardslash.chevron.right"}));
    EXPECT_EQ(face.heldBytes, 15 * MiB);
    EXPECT_EQ(face.age, 2 * hour);
    EXPECT_EQ(face.does, "ends 2 processes");
}

TEST(CardFace, AProgramAloneHasOnlyItsPid) {
    const CardFace face = faceOf(cautioned(finding("orphan:7", KillTrees{{7}})), {Making(7, "/tmp/backup")});
    EXPECT_EQ(face.name, "backup");
    EXPECT_EQ(face.sub, "pid 7");
    EXPECT_EQ(face.icon, (IconRef{"backup", "terminal"}));
    EXPECT_EQ(face.does, "asks, then ends 1 process");
}

TEST(CardFace, ANameThatSplitsInThreeStaysWhole) {
    const CardFace face = faceOf(finding("orphan:7", KillTrees{{7}}), {Making(7, "/tmp/A: B: C.app/x")});
    EXPECT_EQ(face.name, "A: B: C");
    EXPECT_EQ(face.sub, "pid 7");
}

TEST(CardFace, TheAutomationBrowserLosesItsMakersName) {
    const Finding hidden =
        titled(finding("automation:7", KillTrees{{7}}), "A hidden automation Google Chrome from node has run 2 h");
    const CardFace face = faceOf(hidden, {Making(7, "/Applications/Google Chrome.app/x"), Making(8, "y").parent(7)});
    EXPECT_EQ(face.name, "Hidden automation Chrome");
    EXPECT_EQ(face.sub, "pid 7 · 2 processes");
    EXPECT_EQ(face.icon.app, "Google Chrome");
    EXPECT_EQ(faceOf(titled(hidden, "?"), {}).name, "Hidden automation browser");
}

TEST(CardFace, AnAppIsTheUsersOwnInstance) {
    const CardFace face =
        faceOf(finding("browser:Arc", QuitApp{"Arc"}), {Making(7, "/Applications/Arc.app/x").mb(30).age(hour),
                                                        Making(8, "/Applications/Arc.app/y").mb(10).age(5 * hour)});
    EXPECT_EQ(face.name, "Arc");
    EXPECT_EQ(face.sub, "2 processes · your own instance");
    EXPECT_EQ(face.icon.app, "Arc");
    EXPECT_EQ(face.age, 5 * hour);
    EXPECT_EQ(face.heldBytes, 40 * MiB);
    EXPECT_EQ(face.does, "asks Arc to quit");
}

TEST(CardFace, AnAppThatHasGoneHoldsNothing) {
    const CardFace face = faceOf(finding("browser:Arc", QuitApp{"Arc"}), {});
    EXPECT_EQ(face.sub, "0 processes · your own instance");
    EXPECT_EQ(face.age, std::nullopt);
    EXPECT_EQ(face.heldBytes, 0u);
}

TEST(CardFace, SessionsHoldWhatTheLiveOnesHold) {
    const CardFace face = faceOf(titled(finding("sessions"), "3 agent sessions hold 0.0 GB", "claude pid 7"),
                                 {Making(7, "claude").mb(600), Making(8, "codex").mb(500), Making(9, "aider").mb(100),
                                  Making(10, "/Users/me/.claude/x").parent(1).mb(900)});
    EXPECT_EQ(face.name, "3 agent sessions");
    EXPECT_EQ(face.sub, "3 sessions · 1.2 GB");
    EXPECT_EQ(face.heldBytes, 1200 * MiB);
    EXPECT_EQ(face.age, std::nullopt);
    EXPECT_EQ(face.icon.app, "Claude Code");
    EXPECT_EQ(face.does, "advice, no button");
}

TEST(CardFace, ADatabaseIsShownByItsProcessWhileThatLives) {
    const Finding database =
        titled(forbidden(finding("db:7"), "a database server: force-killing one means crash recovery"),
               "postgres has run 2 h with no terminal", "pid 7 · 30 MB · postgres -D /x");
    const CardFace living = faceOf(database, {Making(7, "/opt/x/postgres -D /x").mb(30)});
    EXPECT_EQ(living.name, "postgres");
    EXPECT_EQ(living.sub, "pid 7");
    EXPECT_EQ(living.icon.symbol, "cylinder.split.1x2");
    EXPECT_EQ(living.does, "no button — left running");
    const CardFace gone = faceOf(database, {});
    EXPECT_EQ(gone.name, "pid 7");
    EXPECT_EQ(gone.sub, "database · 30 MB · postgres -D /x");
    EXPECT_EQ(gone.icon, (IconRef{"", "cylinder.split.1x2"}));
}

TEST(CardFace, TheMachinesOwnCausesHaveSymbols) {
    const CardFace disk =
        faceOf(titled(finding("disk", ScanDisk{}), "Only 9 GB of disk is free — swap cannot grow", "a"), {});
    EXPECT_EQ(disk.name, "Only 9 GB of disk");
    EXPECT_EQ(disk.sub, "a");
    EXPECT_EQ(disk.icon.symbol, "internaldrive");
    EXPECT_EQ(disk.does, "opens Disk");
    EXPECT_EQ(faceOf(titled(finding("thrash"), "t", "a · b · c"), {}).sub, "a · b");
    EXPECT_EQ(faceOf(finding("thrash"), {}).icon.symbol, "arrow.down.doc");
    EXPECT_EQ(faceOf(finding("indexing"), {}).icon.symbol, "magnifyingglass");
}

TEST(CardFace, AVirtualMachineIsItsGroup) {
    const CardFace face =
        faceOf(titled(finding("vm:Docker"), "Docker holds 4.0 GB — 25% of your RAM", "2 processes · a VM"),
               {Making(7, "/Applications/Docker.app/x").mb(4096).age(3 * hour)});
    EXPECT_EQ(face.name, "Docker");
    EXPECT_EQ(face.sub, "2 processes · a VM");
    EXPECT_EQ(face.heldBytes, 4096 * MiB);
    EXPECT_EQ(face.age, 3 * hour);
    EXPECT_EQ(face.icon, (IconRef{"", "terminal"}));
}

TEST(CardFace, OnlyAWholeNumberAtTheEndOfTheIdIsAPid) {
    EXPECT_EQ(faceOf(titled(finding("vm:node: 7"), "x holds 1 GB"), {Making(7, "/tmp/x")}).name, "x");
    EXPECT_EQ(faceOf(titled(finding("db:99999999999"), "x", "a · b"), {}).name, "a");
}

TEST(AppIcons, SymbolsGoByTheFirstPartOfTheName) {
    const Host host = macHost();
    EXPECT_EQ(AppIcons::symbol("postgres", host), "cylinder.split.1x2");
    EXPECT_EQ(AppIcons::symbol("python3: x.py", host), "chevron.left.forwardslash.chevron.right");
    EXPECT_EQ(AppIcons::symbol("sqlite3", host), "terminal");
    EXPECT_EQ(AppIcons::symbol("Arc", host), "terminal");
}

TEST(AppIcons, AForeignGroupFallsBackToAGear) {
    EXPECT_EQ(AppIcons::icon("[0] mds", macHost()), (IconRef{"mds", "gearshape"}));
    EXPECT_EQ(AppIcons::icon("node: a", macHost()), (IconRef{"node: a", "chevron.left.forwardslash.chevron.right"}));
}

TEST(AppIcons, TheTintFollowsTheSumOfTheScalars) {
    EXPECT_EQ(AppIcons::tint(""), 0.13);
    EXPECT_EQ(AppIcons::tint("a"), 0.19);  // 97 = 3 * 32 + 1
    EXPECT_EQ(AppIcons::tint("b"), 0.25);
    EXPECT_EQ(AppIcons::tint("c"), 0.13);
    EXPECT_EQ(AppIcons::tint("é"), 0.25);  // 233 = 3 * 77 + 2
}

TEST(AppIcons, EachIconIsLookedForOnce) {
    int asked = 0;
    AppIcons::Cache cache([&](const std::string& group) {
        ++asked;
        return group == "Arc" ? std::optional<std::string>("/icons/arc.png") : std::nullopt;
    });
    EXPECT_EQ(cache.path({"Arc", "terminal"}), "/icons/arc.png");
    EXPECT_EQ(cache.path({"Arc", "terminal"}), "/icons/arc.png");
    EXPECT_EQ(cache.path({"Foo", "terminal"}), std::nullopt);
    EXPECT_EQ(cache.path({"Foo", "terminal"}), std::nullopt);
    EXPECT_EQ(cache.path({"", "terminal"}), std::nullopt);
    EXPECT_EQ(asked, 2);
}

}  // namespace ravik

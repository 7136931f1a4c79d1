#include <gtest/gtest.h>

#include "Core/Diagnosis/Diagnoser.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::GiB;
using fakes::hour;
using fakes::Machine;
using fakes::Making;
using fakes::MiB;
using Severity = Finding::Severity;

namespace {

Machine with(std::vector<Proc> procs) {
    Machine machine;
    machine.procs = std::move(procs);
    return machine;
}

constexpr std::string_view chrome = "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome";

std::string automated(std::string_view profile = "/tmp/profile") {
    return std::string(chrome) + " --user-data-dir=" + std::string(profile);
}

}  // namespace

TEST(LeftoversCause, TellsHowManyHowMuchAndWho) {
    const auto finding = with({Making(7, "/Users/me/.npm/_npx/1/mcp-a").parent(1).mb(100),
                               Making(8, "node /Users/me/.npm/_npx/2/b.js").parent(1).mb(50),
                               Making(9, "node /Users/me/.npm/_npx/3/b.js").parent(1).bytes(MiB - 1)})
                             .finding("leftovers");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title, "3 processes left behind by ended agent sessions hold 150 MB");
    EXPECT_EQ(finding->evidence, "no living parent · 1× mcp-a, 2× node: b.js");
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{7, 8, 9}}));
    EXPECT_EQ(finding->gainBytes, 151 * MiB - 1);
    EXPECT_EQ(finding->caution, std::nullopt);
    EXPECT_EQ(finding->startedBy, "agent sessions that have ended");
}

TEST(LeftoversCause, OneIsWrittenInThePluralToo) {
    EXPECT_EQ(with({Making(7, "/Users/me/mcp").parent(1).mb(3)}).finding("leftovers")->title,
              "1 processes left behind by ended agent sessions hold 3 MB");
}

TEST(LeftoversCause, ShowsTheFirstFourGroupsInTheOrderOfTheirText) {
    std::vector<Proc> procs;
    Pid pid = 100;
    for (const char* name : {"e", "d", "c", "b", "a"}) {
        procs.push_back(Making(++pid, std::string("/Users/me/mcp/") + name).parent(1));
    }
    for (int more = 0; more < 11; ++more) procs.push_back(Making(++pid, "/Users/me/mcp/e").parent(1));
    procs.push_back(Making(++pid, "/Users/me/mcp/d").parent(1));
    EXPECT_EQ(with(procs).finding("leftovers")->evidence, "no living parent · 12× e, 1× a, 1× b, 1× c");
}

TEST(LeftoversCause, WhereAllAreKeptEachIsAKeptOrphan) {
    Machine machine = with({Making(7, "/Users/me/mcp-a").parent(1).mb(5), Making(8, "/Users/me/mcp-b").parent(1).mb(6),
                            Making(9, "/Users/me/mcp-c").parent(1).mb(7)});
    machine.keep = {"/Users/me/mcp-a", "/Users/me/mcp-b", "/Users/me/mcp-c"};
    EXPECT_EQ(machine.ids(), (std::vector<std::string>{"orphan:7", "orphan:8", "orphan:9"}));
    for (const Finding& finding : machine.diagnose()) {
        EXPECT_EQ(finding.severity, Severity::info);
        EXPECT_EQ(finding.gainBytes, 0u);
        EXPECT_EQ(finding.neverReason, "on your Keep list — you asked Ravik to leave it running");
    }
}

TEST(AutomationCause, TellsWhichBrowserFromWhomAndHowLong) {
    const auto finding =
        with({Making(5, "node /srv/test.js").mb(1), Making(9, automated() + " --type=renderer").parent(7).mb(30),
              Making(7, automated()).parent(5).age(3 * hour).mb(100), Making(8, "/opt/crashpad").parent(9).mb(2)})
            .finding("automation:7");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title,
              "A hidden automation Google Chrome from node: test.js has run 3 h — your own Google Chrome may not open "
              "while it runs");
    EXPECT_EQ(finding->evidence, "pid 7 · temp profile · 3 processes · 132 MB");
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{7}}));
    EXPECT_EQ(finding->gainBytes, 132 * MiB);
    EXPECT_EQ(finding->caution, std::nullopt);
    EXPECT_EQ(finding->startedBy, "node: test.js");
}

TEST(AutomationCause, OnlyTheTopOfTheTreeIsReported) {
    EXPECT_EQ(with({Making(7, automated()), Making(9, automated() + " --type=renderer").parent(7)}).ids(),
              (std::vector<std::string>{"automation:7"}));
}

TEST(AutomationCause, AnAdoptedBrowserNamesItsAdopterWhereItIsSeen) {
    EXPECT_EQ(with({Making(7, automated()).parent(1)}).finding("automation:7")->startedBy, "an ended session");
    EXPECT_EQ(
        with({Making(1, "/sbin/launchd").uid(0), Making(7, automated()).parent(1)}).finding("automation:7")->startedBy,
        "[0] launchd");
}

TEST(AutomationCause, TheProfileTellsItFromTheUsersOwnBrowser) {
    const auto isFound = [](std::string_view profile) {
        return with({Making(7, automated(profile))}).finding("automation:7").has_value();
    };
    EXPECT_FALSE(isFound("/Users/me/Library/Application Support/Google/Chrome"));
    EXPECT_TRUE(isFound("/var/folders/xy/T/puppeteer_dev_profile"));
    EXPECT_TRUE(isFound("/tmp/x"));
}

TEST(AutomationCause, AnHourIsNotYetMoreThanAnHour) {
    EXPECT_TRUE(with({Making(7, automated()).age(hour)}).ids().empty());
    EXPECT_EQ(with({Making(7, automated()).age(hour + 1)}).ids().size(), 1u);
}

TEST(AutomationCause, OthersBrowsersAndOtherProgramsAreNone) {
    EXPECT_TRUE(with({Making(7, automated()).uid(502)}).ids().empty());
    EXPECT_TRUE(with({Making(7, "/opt/electron --user-data-dir=/tmp/x")}).ids().empty());
}

TEST(AutomationCause, OnLinuxTheDesktopNamesTheBrowser) {
    Machine machine = with({Making(7, "/usr/lib/chromium/chromium --user-data-dir=/tmp/x").uid(1000).app("Chromium")});
    machine.host = fakes::linuxHost();
    ASSERT_EQ(machine.ids(), (std::vector<std::string>{"automation:7"}));
    EXPECT_EQ(machine.diagnose()[0].title,
              "A hidden automation Chromium from an ended session has run 2 h — your own Chromium may not open while "
              "it runs");
}

TEST(DatabaseCause, AnOrphanedDatabaseCanNeverBeEnded) {
    const std::string command = "/opt/pg/bin/postgres -D /opt/data " + std::string(100, 'x');
    const Machine machine = with({Making(7, command).parent(1).mb(300).cpu(90)});
    EXPECT_EQ(machine.ids(), (std::vector<std::string>{"db:7"}));
    const Finding finding = machine.diagnose()[0];
    EXPECT_EQ(finding.severity, Severity::info);
    EXPECT_EQ(finding.title, "postgres has run 2 h with no terminal");
    EXPECT_EQ(finding.evidence, "pid 7 · 300 MB · " + command.substr(0, 90));
    EXPECT_EQ(finding.remedy, Remedy(Advice{"Stop it gracefully: pg_ctl stop -D /opt/data -m fast"}));
    EXPECT_EQ(finding.gainBytes, 0u);
    EXPECT_EQ(finding.neverReason, "a database server: force-killing one means crash recovery");
    EXPECT_EQ(finding.startedBy, "a terminal that has closed");
}

TEST(OrphanCause, TellsWhatRunsWithNoTerminal) {
    const std::string command = "/Users/me/bin/serve " + std::string(100, 'x');
    const auto finding =
        with({Making(7, command).parent(1).mb(12).age(50 * hour), Making(8, "/opt/child").parent(7).mb(500)})
            .finding("orphan:7");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title, "serve has run 2 days with no terminal");
    EXPECT_EQ(finding->evidence, "pid 7 · 12 MB · " + command.substr(0, 80));
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{7}}));
    EXPECT_EQ(finding->gainBytes, 12 * MiB);
    EXPECT_EQ(finding->startedBy, "a terminal that has closed");
}

TEST(OrphanCause, AtTheLimitItIsCritical) {
    const auto busy = with({Making(7, "/Users/me/spin").parent(1).cpu(50)}).finding("orphan:7");
    EXPECT_EQ(busy->severity, Severity::critical);
    EXPECT_EQ(busy->title, "spin has run 2 h with no terminal at 50% CPU");
    EXPECT_EQ(busy->caution, "spin is actively working (50% CPU)");
    const auto calmer = with({Making(7, "/Users/me/spin").parent(1).cpu(49.9)}).finding("orphan:7");
    EXPECT_EQ(calmer->severity, Severity::warn);
    EXPECT_EQ(calmer->title, "spin has run 2 h with no terminal");
}

TEST(OrphanCause, AShortCommandIsShownWholeAndALongOneIsCutBetweenCharacters) {
    EXPECT_EQ(with({Making(7, "/Users/me/x -v").parent(1)}).finding("orphan:7")->evidence,
              "pid 7 · 0 MB · /Users/me/x -v");
    std::string umlauts = "/Users/me/";
    for (int count = 0; count < 90; ++count) umlauts += "ü";
    std::string shown = "/Users/me/";
    for (int count = 0; count < 70; ++count) shown += "ü";
    EXPECT_EQ(with({Making(7, umlauts).parent(1)}).finding("orphan:7")->evidence, "pid 7 · 0 MB · " + shown);
}

TEST(SessionsCause, SpeaksFromThreeOn) {
    std::vector<Proc> procs{Making(7, "claude").bytes(GiB), Making(8, "codex").parent(7).bytes(GiB / 2)};
    EXPECT_TRUE(with(procs).ids().empty());
    procs.push_back(Making(9, "claude").mb(100));
    const auto finding = with(procs).finding("sessions");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    // The second stands in the first as well and is counted twice.
    EXPECT_EQ(finding->title, "3 agent sessions hold 2.1 GB");
    EXPECT_EQ(finding->evidence,
              "claude pid 7: 2 procs, 1536 MB · codex pid 8: 1 procs, 512 MB · claude pid 9: 1 procs, 100 MB");
    EXPECT_EQ(finding->remedy,
              Remedy(Advice{"End the sessions you are not using; each keeps its MCP servers and browsers resident"}));
    EXPECT_EQ(finding->gainBytes, 0u);
    EXPECT_EQ(finding->startedBy, std::nullopt);
}

}  // namespace ravik

#include "Core/Diagnosis/Diagnoser.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::GiB;
using fakes::hour;
using fakes::Machine;
using fakes::Making;

using Ids = std::vector<std::string>;

TEST(Diagnoser, ACalmEmptyMachineHasNoFindings) { EXPECT_TRUE(Machine().diagnose().empty()); }

TEST(Diagnoser, HoursAreCutAndHaveNoSingular) {
    EXPECT_EQ(Diagnoser::hours(0), "0 min");
    EXPECT_EQ(Diagnoser::hours(59.9), "0 min");
    EXPECT_EQ(Diagnoser::hours(3599), "59 min");
    EXPECT_EQ(Diagnoser::hours(3600), "1 h");
    EXPECT_EQ(Diagnoser::hours(172799), "47 h");
    EXPECT_EQ(Diagnoser::hours(172800), "2 days");
    EXPECT_EQ(Diagnoser::hours(-1), "0 min");
}

TEST(Diagnoser, ADatabaseIsStoppedByItsOwnMeans) {
    const Host mac = fakes::macHost();
    const std::string general =
        "Stop it with its own tool (brew services stop, or the command that started it) — never force-kill a database";
    EXPECT_EQ(Diagnoser::stopCommand(Making(7, "/opt/pg/bin/postgres -D /opt/data -p 5432"), mac),
              "Stop it gracefully: pg_ctl stop -D /opt/data -m fast");
    EXPECT_EQ(Diagnoser::stopCommand(Making(7, "/opt/postmaster -D x"), mac),
              "Stop it gracefully: pg_ctl stop -D x -m fast");
    EXPECT_EQ(Diagnoser::stopCommand(Making(7, "/opt/pg/bin/postgres -c x"), mac), general);
    EXPECT_EQ(Diagnoser::stopCommand(Making(7, "/opt/redis-server -D x"), mac), general);
    EXPECT_EQ(Diagnoser::stopCommand(Making(7, "/opt/redis-server"), fakes::linuxHost()),
              "Stop it with its own tool (systemctl stop, or the command that started it) — never force-kill a "
              "database");
}

TEST(Diagnoser, EqualFindingsKeepTheOrderOfTheCauses) {
    Machine machine;
    machine.procs = {Making(7, "/opt/busy").cpu(80),
                     Making(8, "/Applications/Docker.app/Contents/MacOS/com.docker").bytes(4 * GiB)};
    machine.trend.busySince = {{7, fakes::now - 2 * hour}};
    EXPECT_EQ(machine.ids(), (Ids{"hog:7", "vm:Docker"}));
}

TEST(Diagnoser, SeverityGoesBeforeGain) {
    Machine machine;
    machine.procs = {Making(7, "/Users/me/.npm/_npx/1/mcp-server").parent(1).bytes(4 * GiB),
                     Making(8, "/Users/me/bin/spin").parent(1).mb(200).cpu(60)};
    EXPECT_EQ(machine.ids(), (Ids{"orphan:8", "leftovers"}));
}

TEST(Diagnoser, GainOrdersWhatIsEquallySevere) {
    Machine machine;
    machine.procs = {Making(7, "/Users/me/a").parent(1).mb(10), Making(8, "/Users/me/b").parent(1).mb(30),
                     Making(9, "/Users/me/c").parent(1).mb(20)};
    EXPECT_EQ(machine.ids(), (Ids{"orphan:8", "orphan:9", "orphan:7"}));
}

TEST(Diagnoser, WhatTheGateLowersSinks) {
    Machine machine;
    machine.procs = {Making(7, "/Users/me/a").parent(1).mb(900), Making(70, "/opt/git pull").parent(7),
                     Making(8, "/Users/me/b").parent(1).mb(1)};
    EXPECT_EQ(machine.ids(), (Ids{"orphan:8", "orphan:7"}));
    EXPECT_EQ(machine.finding("orphan:7")->severity, Finding::Severity::info);
}

TEST(Diagnoser, ALeftoverIsReportedOnceAndAKeptOneAsKept) {
    Machine machine;
    machine.procs = {Making(7, "/Users/me/mcp-a").parent(1).mb(5), Making(8, "/Users/me/mcp-b").parent(1).mb(6)};
    EXPECT_EQ(machine.ids(), (Ids{"leftovers"}));
    machine.keep = {"/Users/me/mcp-a"};
    EXPECT_EQ(machine.ids(), (Ids{"leftovers", "orphan:7"}));
    EXPECT_EQ(machine.finding("leftovers")->remedy, Remedy(KillTrees{{8}}));
    EXPECT_EQ(machine.finding("orphan:7")->tone(), Tone::never);
}

TEST(Diagnoser, AHogInAVirtualMachineOrAnIndexerIsLeftToItsOwnCause) {
    Machine machine;
    machine.procs = {Making(7, "/opt/OrbStack.app/x").cpu(90).mb(1), Making(8, "/opt/mds").cpu(90),
                     Making(9, "/opt/other").cpu(90)};
    machine.trend.busySince = {{7, 0}, {8, 0}, {9, 0}};
    EXPECT_EQ(machine.ids(), (Ids{"hog:9", "indexing"}));
}

TEST(Finding, ToneTellsTheFirstThatHolds) {
    Finding finding;
    EXPECT_EQ(finding.tone(), Tone::advice);
    finding.remedy = ScanDisk{};
    EXPECT_EQ(finding.tone(), Tone::advice);
    finding.remedy = KillTrees{{7}};
    EXPECT_EQ(finding.tone(), Tone::safe);
    finding.remedy = QuitApp{"x"};
    EXPECT_EQ(finding.tone(), Tone::safe);
    finding.caution = "c";
    EXPECT_EQ(finding.tone(), Tone::caution);
    finding.neverReason = "n";
    EXPECT_EQ(finding.tone(), Tone::never);
}

TEST(Finding, WordsAreTheirNames) {
    EXPECT_EQ(word(Tone::safe), "safe");
    EXPECT_EQ(word(Tone::caution), "caution");
    EXPECT_EQ(word(Tone::never), "never");
    EXPECT_EQ(word(Tone::advice), "advice");
    EXPECT_EQ(word(Finding::Severity::info), "info");
    EXPECT_EQ(word(Finding::Severity::warn), "warn");
    EXPECT_EQ(word(Finding::Severity::critical), "critical");
}

}  // namespace ravik

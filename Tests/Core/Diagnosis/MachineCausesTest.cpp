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
using Ids = std::vector<std::string>;

namespace {

constexpr std::string_view chrome = "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome";

Machine with(std::vector<Proc> procs) {
    Machine machine;
    machine.procs = std::move(procs);
    return machine;
}

}  // namespace

TEST(HogCause, TellsSinceWhenAndHowMuch) {
    Machine machine = with({Making(7, "node /srv/spin.js").cpu(93.7).mb(40)});
    machine.trend.busySince = {{7, fakes::now - 3.5 * hour}};
    const auto finding = machine.finding("hog:7");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "node: spin.js has been above 50% CPU for 3 h (93% now)");
    EXPECT_EQ(finding->evidence, "pid 7 · 40 MB · node /srv/spin.js");
    EXPECT_EQ(finding->remedy, Remedy(KillTrees{{7}}));
    EXPECT_EQ(finding->gainBytes, 0u);
    EXPECT_EQ(finding->caution, "node: spin.js is actively working (93% CPU)");
}

TEST(VirtualMachineCause, AFifthOfMemoryIsNotMoreThanAFifth) {
    const auto docker = [](std::uint64_t bytes) {
        return with({Making(7, "/Applications/Docker.app/x").bytes(bytes)}).ids();
    };
    // 3.2 GiB in whole bytes is a hair below.
    EXPECT_TRUE(docker(3435973836).empty());
    EXPECT_EQ(docker(3435973837), (Ids{"vm:Docker"}));
}

TEST(VirtualMachineCause, TellsItsShareAndNeverEndsIt) {
    const auto finding = with({Making(7, "/Applications/Docker.app/x").bytes(5 * GiB),
                               Making(8, "/Applications/Docker.app/y").bytes(GiB)})
                             .finding("vm:Docker");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "Docker holds 6.0 GB — 37% of your RAM");
    EXPECT_EQ(finding->evidence, "2 processes · a VM keeps its allocation even when its containers are idle");
    EXPECT_EQ(finding->remedy,
              Remedy(Advice{"Lower the VM's memory limit in its settings, or quit it when not in use"}));
    EXPECT_EQ(finding->gainBytes, 0u);
}

TEST(VirtualMachineCause, IsToldByTheGroupsNameInItsExactCase) {
    EXPECT_TRUE(with({Making(7, "/opt/docker").bytes(5 * GiB)}).ids().empty());
    EXPECT_EQ(with({Making(7, "/opt/qemu-system-arm").bytes(5 * GiB)}).ids(), (Ids{"vm:qemu-system-arm"}));
    EXPECT_TRUE(with({Making(7, "/opt/VirtualBoxVM").bytes(5 * GiB)}).ids().empty());
    Machine box = with({Making(7, "/opt/VirtualBoxVM").bytes(5 * GiB).uid(1000)});
    box.host = fakes::linuxHost();
    EXPECT_EQ(box.ids(), (Ids{"vm:VirtualBoxVM"}));
}

TEST(BrowserCause, TellsHowLongAndGivesBackHalf) {
    const auto finding =
        with({Making(7, chrome).bytes(5 * GiB).age(13 * hour), Making(8, chrome).parent(7).bytes(GiB + 1).age(hour)})
            .finding("browser:Google Chrome");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::warn);
    EXPECT_EQ(finding->title, "Google Chrome has been open 13 h and holds 6.0 GB");
    EXPECT_EQ(finding->evidence, "2 processes · long-lived tabs and extensions accumulate memory");
    EXPECT_EQ(finding->remedy, Remedy(QuitApp{"Google Chrome"}));
    EXPECT_EQ(finding->gainBytes, 3 * GiB);
}

TEST(BrowserCause, BothLimitsAreStrict) {
    EXPECT_TRUE(with({Making(7, chrome).bytes(4 * GiB).age(99 * hour)}).ids().empty());
    EXPECT_TRUE(with({Making(7, chrome).bytes(5 * GiB).age(12 * hour)}).ids().empty());
    EXPECT_EQ(with({Making(7, chrome).bytes(4 * GiB + 1).age(12 * hour + 1)}).ids(), (Ids{"browser:Google Chrome"}));
}

TEST(BrowserCause, ItsAgeIsThatOfTheOldestThatNoScriptStarted) {
    const std::string scripted = std::string(chrome) + " --user-data-dir=/tmp/x";
    EXPECT_EQ(with({Making(7, chrome).bytes(5 * GiB).age(11 * hour), Making(8, scripted).age(30 * hour)}).ids(),
              (Ids{"automation:8"}));
    EXPECT_EQ(with({Making(8, scripted).bytes(5 * GiB).age(30 * hour)}).ids(), (Ids{"automation:8"}));
}

TEST(BrowserCause, OnePassedOverMayStillBeAHolder) {
    Machine machine = with({Making(7, chrome).bytes(5 * GiB).age(11 * hour)});
    EXPECT_TRUE(machine.ids().empty());
    machine.press();
    EXPECT_EQ(machine.ids(), (Ids{"holder:Google Chrome"}));
    machine.procs = {Making(7, chrome).bytes(5 * GiB).age(13 * hour)};
    EXPECT_EQ(machine.ids(), (Ids{"browser:Google Chrome"}));
}

TEST(BrowserCause, LinuxKnowsItsOwnBrowsers) {
    for (const char* browser : {"Firefox ESR", "Chromium", "Chromium Web Browser", "Brave", "Vivaldi", "Opera",
                                "LibreWolf", "Web", "Firefox", "Google Chrome"}) {
        Machine machine = with({Making(7, "/usr/bin/b").bytes(5 * GiB).age(13 * hour).uid(1000).app(browser)});
        machine.host = fakes::linuxHost();
        EXPECT_EQ(machine.ids(), (Ids{std::string("browser:") + browser}));
    }
}

TEST(ThrashCause, TellsRateSwapAndTheLargest) {
    Machine machine = with({Making(7, "/opt/a").bytes(3 * GiB), Making(8, "/opt/b").bytes(2 * GiB),
                            Making(9, "/opt/c").bytes(GiB), Making(10, "/opt/d").mb(1)});
    machine.stats.swapOutBytesPerSec = 5 * 0x1p20;
    EXPECT_EQ(machine.finding("thrash"), std::nullopt);
    machine.stats.swapOutBytesPerSec = 41.6 * 0x1p20;
    machine.stats.swapUsedBytes = 9 * GiB + 512 * MiB;
    const auto finding = machine.finding("thrash");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "Memory is being swapped to disk at 42 MB/s");
    EXPECT_EQ(finding->evidence, "swap 9.5 GB · top: a 3.0 GB, b 2.0 GB, c 1.0 GB");
    EXPECT_EQ(finding->remedy,
              Remedy(Advice{"Fix the causes above first; the thrash stops once resident memory drops"}));
    EXPECT_EQ(finding->gainBytes, 0u);
}

TEST(ThrashCause, StandsBehindEveryCriticalCauseThatClaimsMemory) {
    Machine machine = with({Making(7, "node /srv/a.js").bytes(6 * GiB)});
    machine.trend.held = {{fakes::now - 600, {{"node: a.js", GiB}}}};
    machine.stats.swapOutBytesPerSec = 41.6 * 0x1p20;
    EXPECT_EQ(machine.ids(), (Ids{"holder:node: a.js", "thrash"}));
}

TEST(DiskCause, OpensTheScan) {
    Machine machine;
    machine.stats.diskFreeBytes = 15 * GiB;
    EXPECT_TRUE(machine.ids().empty());
    machine.stats.diskFreeBytes = 15 * GiB - 1;
    const auto finding = machine.finding("disk");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::critical);
    EXPECT_EQ(finding->title, "Only 15 GB of disk is free — swap cannot grow");
    EXPECT_EQ(finding->evidence, "macOS slows sharply below ~15 GB free");
    EXPECT_EQ(finding->remedy, Remedy(ScanDisk{}));
    EXPECT_EQ(finding->tone(), Tone::advice);
}

TEST(DiskCause, ItsEvidenceDoesNotFollowTheThreshold) {
    Machine machine;
    machine.limits.diskFreeGB = 50;
    machine.stats.diskFreeBytes = 40 * GiB;
    EXPECT_EQ(machine.finding("disk")->title, "Only 40 GB of disk is free — swap cannot grow");
    EXPECT_EQ(machine.finding("disk")->evidence, "macOS slows sharply below ~15 GB free");
    machine.host = fakes::linuxHost();
    EXPECT_EQ(machine.finding("disk")->evidence, "updates, builds and swap files fail when a disk runs full");
}

TEST(IndexingCause, MoreThanThirtyPercentIsBusy) {
    EXPECT_TRUE(with({Making(7, "/x/mds").cpu(30).uid(0)}).ids().empty());
    const auto finding = with({Making(7, "/x/mds").cpu(30.1).uid(0), Making(8, "/x/photoanalysisd").cpu(120.9),
                               Making(9, "/x/mds_stores").cpu(2)})
                             .finding("indexing");
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->severity, Severity::info);
    EXPECT_EQ(finding->title, "Spotlight / media analysis is busy (mds 30%, photoanalysisd 120%)");
    EXPECT_EQ(finding->evidence, "expected after large deletes or updates; it settles on its own");
    EXPECT_EQ(finding->remedy, Remedy(Advice{"Wait; it stops by itself"}));
}

TEST(IndexingCause, OnLinuxFilesAreIndexed) {
    Machine machine = with({Making(7, "/usr/libexec/tracker-miner-fs-3").cpu(80).uid(1000)});
    machine.host = fakes::linuxHost();
    EXPECT_EQ(machine.finding("indexing")->title, "File indexing is busy (tracker-miner-fs-3 80%)");
}

}  // namespace ravik

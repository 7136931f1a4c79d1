#include <gtest/gtest.h>

#include "Core/Diagnosis/Classifier.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::hour;
using fakes::linuxHost;
using fakes::macHost;
using fakes::Making;

namespace {

struct Scene {
    Host host = macHost();
    Thresholds limits;
    PidSet managed;

    Pids orphans(const std::vector<Proc>& procs) const {
        return fakes::pids(Classifier::orphans(procs, managed, limits, host, fakes::now));
    }
    bool isOrphan(const Proc& proc) const { return !orphans({proc}).empty(); }
};

Making adopted(std::string_view command) { return Making(7, command).parent(1); }

Scene onLinux() {
    Scene scene;
    scene.host = linuxHost();
    return scene;
}

Making adoptedOnLinux(std::string_view command) { return adopted(command).uid(1000); }

}  // namespace

TEST(Orphans, TheAgeLimitIsInclusive) {
    EXPECT_TRUE(Scene().isOrphan(adopted("/tmp/x").age(hour)));
    EXPECT_FALSE(Scene().isOrphan(adopted("/tmp/x").age(hour - 1)));
}

TEST(Orphans, AreTheUsersOwnAndAdopted) {
    EXPECT_FALSE(Scene().isOrphan(adopted("/tmp/x").uid(0)));
    EXPECT_FALSE(Scene().isOrphan(adopted("/tmp/x").parent(600)));
}

TEST(Orphans, WhatTheServiceManagerRunsIsNone) {
    Scene scene;
    scene.managed = {7};
    EXPECT_FALSE(scene.isOrphan(adopted("/tmp/x").age(1000 * hour)));
}

TEST(Orphans, InstalledProgramsAreNone) {
    for (const char* command :
         {"/System/x", "/Applications/x", "/Library/x", "/usr/local/bin/x", "/sbin/x", "/bin/x"}) {
        EXPECT_FALSE(Scene().isOrphan(adopted(command))) << command;
    }
    for (const char* command : {"/opt/homebrew/bin/x", "/Users/me/x", "x /usr/bin/y", ""}) {
        EXPECT_TRUE(Scene().isOrphan(adopted(command))) << command;
    }
}

TEST(Orphans, WhatRunsFromInsideAnAppBelongsToIt) {
    EXPECT_FALSE(Scene().isOrphan(adopted("/Users/me/Apps/Foo.app/Contents/MacOS/helper")));
    EXPECT_TRUE(Scene().isOrphan(adopted("/Users/me/Apps/Foo.app")));
}

TEST(Orphans, KeepTheOrderOfTheList) {
    EXPECT_EQ(Scene().orphans({Making(9, "/tmp/a").parent(1), Making(3, "/tmp/b").parent(1)}), (Pids{9, 3}));
}

TEST(Orphans, OnLinuxTheAdoptersAreWhoeverAdopts) {
    Scene scene = onLinux();
    EXPECT_FALSE(scene.isOrphan(adoptedOnLinux("/home/me/x").parent(900)));
    scene.host.adopters = {1, 900};
    EXPECT_TRUE(scene.isOrphan(adoptedOnLinux("/home/me/x").parent(900)));
    EXPECT_TRUE(scene.isOrphan(adoptedOnLinux("/home/me/x").parent(1)));
}

TEST(Orphans, OnLinuxMoreFoldersHoldInstalledPrograms) {
    for (const char* command : {"/usr/bin/x", "/bin/x", "/lib/x", "/lib64/ld.so x", "/snap/x/1/bin/x", "/app/bin/x"}) {
        EXPECT_FALSE(onLinux().isOrphan(adoptedOnLinux(command))) << command;
    }
    EXPECT_TRUE(onLinux().isOrphan(adoptedOnLinux("/opt/x/bin/x")));
    EXPECT_TRUE(Scene().isOrphan(adopted("/snap/x")));
}

TEST(Orphans, OnLinuxAScriptIsJudgedInPlaceOfItsInterpreter) {
    const auto isOrphan = [](std::string_view command) { return onLinux().isOrphan(adoptedOnLinux(command)); };
    EXPECT_TRUE(isOrphan("/usr/bin/node /home/me/.npm/_npx/1/node_modules/.bin/mcp-server"));
    EXPECT_TRUE(isOrphan("/usr/bin/python3 -u /home/me/server.py"));
    EXPECT_FALSE(isOrphan("/usr/bin/python3 /usr/bin/unattended"));
    EXPECT_FALSE(isOrphan("/home/me/.venv/bin/python3 /usr/share/x/x.py"));
    EXPECT_FALSE(isOrphan("/usr/bin/node"));
    EXPECT_FALSE(isOrphan("/usr/bin/python3 -c import time; time.sleep(9)"));
    EXPECT_FALSE(isOrphan("/usr/bin/node --require /home/me/hook.js /usr/lib/tool/main.js"));
    EXPECT_FALSE(isOrphan("/bin/bash /home/me/x.sh"));
    EXPECT_FALSE(Scene().isOrphan(adopted("/usr/bin/node /Users/me/x.js")));
}

TEST(Orphans, OnLinuxADesktopApplicationIsNone) {
    EXPECT_FALSE(onLinux().isOrphan(adoptedOnLinux("/opt/app/app").app("App")));
    EXPECT_TRUE(onLinux().isOrphan(adoptedOnLinux("/opt/app/app")));
}

TEST(Orphans, OnLinuxAWindowOrALiveConnectionExemptsTheWholeLine) {
    const std::vector<Proc> procs{
        Making(7, "/home/me/a").parent(1).uid(1000), Making(8, "/home/me/b").parent(7).uid(1000),
        Making(9, "/home/me/c").parent(8).uid(1000), Making(10, "/home/me/d").parent(1).uid(1000)};
    Scene scene = onLinux();
    EXPECT_EQ(scene.orphans(procs), (Pids{7, 10}));
    scene.host.engaged = {9};
    EXPECT_EQ(scene.orphans(procs), (Pids{10}));
    scene.host.engaged = {10, 12345};
    EXPECT_EQ(scene.orphans(procs), (Pids{7}));
}

TEST(Orphans, ACycleAboveAnEngagedProcessEndsTheWalk) {
    Scene scene = onLinux();
    scene.host.engaged = {8};
    EXPECT_EQ(scene.orphans({Making(7, "/home/me/a").parent(8).uid(1000), Making(8, "/home/me/b").parent(7).uid(1000),
                             Making(9, "/home/me/c").parent(1).uid(1000)}),
              (Pids{9}));
}

TEST(Hogs, BothLimitsAreInclusive) {
    const Thresholds limits;
    const std::unordered_map<Pid, Time> busySince{{7, fakes::now - hour}, {8, fakes::now - hour + 1}};
    const auto hogs = [&](const Proc& proc, const std::vector<Proc>& excluding = {}) {
        return Classifier::hogs({proc}, excluding, limits, busySince, macHost(), fakes::now).size();
    };
    EXPECT_EQ(hogs(Making(7, "x").cpu(50)), 1u);
    EXPECT_EQ(hogs(Making(7, "x").cpu(49.9)), 0u);
    EXPECT_EQ(hogs(Making(8, "x").cpu(50)), 0u);
    EXPECT_EQ(hogs(Making(9, "x").cpu(50)), 0u);
    EXPECT_EQ(hogs(Making(7, "x").cpu(50).uid(0)), 0u);
    EXPECT_EQ(hogs(Making(7, "x").cpu(50), {Making(7, "x")}), 0u);
}

TEST(Hogs, LeaveOutTheSystemAndItsApps) {
    const std::unordered_map<Pid, Time> busySince{{7, 0}};
    const auto hogs = [&](const Proc& proc, const Host& host) {
        return Classifier::hogs({proc}, {}, {}, busySince, host, fakes::now).size();
    };
    EXPECT_EQ(hogs(Making(7, "/System/Applications/Mail.app/Contents/MacOS/Mail").cpu(99), macHost()), 0u);
    EXPECT_EQ(hogs(Making(7, "/usr/sbin/x").cpu(99), macHost()), 0u);
    EXPECT_EQ(hogs(Making(7, "/usr/lib/systemd/x").cpu(99), macHost()), 1u);
    EXPECT_EQ(hogs(Making(7, "/usr/lib/systemd/x").uid(1000).cpu(99), linuxHost()), 0u);
}

TEST(Breaches, CalmStatsBreachNothing) { EXPECT_TRUE(Classifier::breaches(fakes::Machine::calm(), {}).empty()); }

TEST(Breaches, EachLimitHasItsTextInFixedOrder) {
    SystemStats stats;
    stats.swapUsedBytes = 9 * fakes::GiB + 600 * fakes::MiB;
    stats.swapOutBytesPerSec = 12.4 * 0x1p20;
    stats.memoryFreePercent = 7;
    stats.diskFreeBytes = 3 * fakes::GiB;
    stats.loadAverage = 33.6;
    stats.cpuCount = 8;
    EXPECT_EQ(Classifier::breaches(stats, {}),
              (std::vector<std::string>{"swap 9.6 GB", "swapping out 12 MB/s", "memory free 7%", "disk 3 GB free",
                                        "load 34"}));
}

TEST(Breaches, EveryComparisonIsStrict) {
    SystemStats stats;
    stats.swapUsedBytes = 8 * fakes::GiB;
    stats.swapOutBytesPerSec = 5 * 0x1p20;
    stats.memoryFreePercent = 15;
    stats.diskFreeBytes = 15 * fakes::GiB;
    stats.loadAverage = 16;
    stats.cpuCount = 8;
    EXPECT_TRUE(Classifier::breaches(stats, {}).empty());
}

}  // namespace ravik

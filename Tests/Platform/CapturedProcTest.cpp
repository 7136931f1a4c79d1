#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Tests/Fakes/FakeClock.h"
#include "Tests/Fakes/TemporaryFolder.h"

// What cannot be staged with live processes, on a folder that looks like the kernel's.
namespace ravik::platform {

namespace {

struct Captured {
    Pid pid = 0;
    std::string name = "tool";
    char state = 'S';
    Pid ppid = 1;
    unsigned flags = 4194304;
    int ticks = 0;
    int start = 100;
    int pages = 500;
    int shared = 100;
    int swapKilobytes = 0;
    std::string arguments = std::string("tool\0", 5);
};

struct CapturedFolder {
    CapturedFolder() {
        write("stat", "cpu  1 2 3\nbtime 1759000000\nprocesses 9\n");
        swap(0);
    }

    void write(const std::string& file, const std::string& text) const { own.write(file, text); }
    void swap(int usedKilobytes) const {
        write("swaps", "Filename\tType\tSize\tUsed\tPriority\n/dev/sda2 partition 1000000 " +
                           std::to_string(usedKilobytes) + " -2\n");
    }
    void put(const Captured& process) const {
        const std::string folder = std::to_string(process.pid) + "/";
        const std::string pages = std::to_string(process.pages);
        write(folder + "stat", std::to_string(process.pid) + " (" + process.name + ") " + process.state + " " +
                                   std::to_string(process.ppid) + " 1 1 0 -1 " + std::to_string(process.flags) +
                                   " 0 0 0 0 " + std::to_string(process.ticks) + " 0 0 0 20 0 1 0 " +
                                   std::to_string(process.start) + " 4096 " + pages + " 0 1 1 0 0 0 0");
        write(folder + "statm", "9000 " + pages + " " + std::to_string(process.shared) + " 1 0 1 0");
        write(folder + "status", "Name:\ttool\nVmSwap:\t" + std::to_string(process.swapKilobytes) + " kB\n");
        write(folder + "cmdline", process.arguments);
    }

    fakes::TemporaryFolder own;
    const std::filesystem::path root = own.path();
};

struct CapturedProcTest : testing::Test, CapturedFolder {
    std::vector<Proc> scan() { return scanner.scan(); }
    const Proc* find(const std::vector<Proc>& procs, Pid pid) const {
        for (const Proc& proc : procs) {
            if (proc.id == pid) return &proc;
        }
        return nullptr;
    }

    fakes::FakeClock clock;
    LinuxProcessTable table{clock, {.root = root.native()}};
    ProcessScanner scanner{table, clock};
    const std::uint64_t page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    const int rate = static_cast<int>(sysconf(_SC_CLK_TCK));
};

}  // namespace

TEST_F(CapturedProcTest, GivesWholeRecords) {
    put({.pid = 41,
         .name = "node",
         .ppid = 7,
         .start = 12345 * rate + rate - 1,
         .arguments = std::string("node\0a.js\0", 10)});
    const std::vector<Proc> procs = scan();
    ASSERT_EQ(procs.size(), 1U);
    EXPECT_EQ(procs[0].id, 41);
    EXPECT_EQ(procs[0].ppid, 7);
    EXPECT_EQ(procs[0].uid, geteuid());
    EXPECT_EQ(procs[0].name, "node");
    EXPECT_EQ(procs[0].command, "node a.js");
    EXPECT_EQ(procs[0].started, 1'759'012'345);
    EXPECT_EQ(procs[0].startTicks, static_cast<std::uint64_t>(12345 * rate + rate - 1));
    EXPECT_EQ(procs[0].footprintBytes, 400 * page);
}

TEST_F(CapturedProcTest, TheBootTimeIsNeverReadAgain) {
    put({.pid = 41});
    const Time before = scan().front().started;
    write("stat", "btime 1759000500\n");
    put({.pid = 42});
    const std::vector<Proc> procs = scan();
    EXPECT_EQ(find(procs, 41)->started, before);
    EXPECT_EQ(find(procs, 42)->started, before);
    EXPECT_EQ(table.startTime(41), before);
}

TEST_F(CapturedProcTest, KernelThreadsAndZombiesAreNoProcesses) {
    put({.pid = 2, .name = "kthreadd", .ppid = 0, .flags = 2129984, .arguments = ""});
    put({.pid = 50, .name = "gone", .state = 'Z', .arguments = ""});
    put({.pid = 51});
    const std::vector<Proc> procs = scan();
    ASSERT_EQ(procs.size(), 1U);
    EXPECT_EQ(procs.front().id, 51);
}

TEST_F(CapturedProcTest, NothingButDigitsIsAPid) {
    put({.pid = 51});
    write("self/stat", "51 (tool) S");
    write("12a/stat", "12 (tool) S");
    Pids pids;
    table.list(pids);
    EXPECT_EQ(pids, Pids{51});
}

TEST_F(CapturedProcTest, AMissingFolderListsNothing) {
    LinuxProcessTable none(clock, {.root = "/nonexistent"});
    Pids pids{5};
    none.list(pids);
    EXPECT_TRUE(pids.empty());
    ProcessReading reading;
    EXPECT_FALSE(none.read(5, reading));
}

TEST_F(CapturedProcTest, AnEmptyArgumentAreaGivesTheName) {
    put({.pid = 60, .name = "worker", .arguments = ""});
    EXPECT_EQ(scan().front().command, "worker");
}

TEST_F(CapturedProcTest, TheExecutableStandsInForMissingArguments) {
    put({.pid = 60, .name = "worker", .arguments = ""});
    std::filesystem::create_symlink("/opt/x/worker (deleted)", root / "60/exe");
    EXPECT_EQ(scan().front().command, "/opt/x/worker");
}

TEST_F(CapturedProcTest, AReusedPidIsAnotherProcess) {
    put({.pid = 70, .ticks = 900, .start = 100});
    scan();
    put({.pid = 70, .name = "other", .start = 200 * rate, .arguments = std::string("other\0", 6)});
    const std::vector<Proc> procs = scan();
    ASSERT_EQ(procs.size(), 1U);
    EXPECT_EQ(procs.front().name, "other");
    EXPECT_EQ(procs.front().command, "other");
    EXPECT_EQ(procs.front().started, table.startTime(70));
}

TEST_F(CapturedProcTest, CpuTimeIsCountedInNanoseconds) {
    put({.pid = 70});
    scan();
    clock.advance(1);
    put({.pid = 70, .ticks = rate / 2});
    EXPECT_NEAR(scan().front().cpuPercent, 50, 1e-9);
}

TEST_F(CapturedProcTest, SwappedMemoryCountsWhereSwapIsInUse) {
    put({.pid = 80, .swapKilobytes = 2048});
    EXPECT_EQ(scan().front().footprintBytes, 400 * page);

    swap(4096);
    put({.pid = 80, .pages = 450, .swapKilobytes = 2048});
    EXPECT_EQ(scan().front().footprintBytes, 350 * page + 2048U * 1024U);

    swap(0);
    put({.pid = 80, .pages = 500});
    EXPECT_EQ(scan().front().footprintBytes, 400 * page);
}

TEST_F(CapturedProcTest, SwappedMemoryIsReadInTurnsWhereNothingMoves) {
    swap(4096);
    put({.pid = 80, .swapKilobytes = 1024});
    EXPECT_EQ(scan().front().footprintBytes, 400 * page + 1024U * 1024U);
    put({.pid = 80, .swapKilobytes = 512});
    std::uint64_t footprint = 0;
    for (int turn = 0; turn < 12; ++turn) footprint = scan().front().footprintBytes;
    EXPECT_EQ(footprint, 400 * page + 512U * 1024U);
}

TEST_F(CapturedProcTest, FreshReadingRemembersNothing) {
    put({.pid = 90});
    scan();
    put({.pid = 90, .name = "git", .pages = 300, .arguments = std::string("git\0gc\0", 7)});
    ProcessReading reading;
    ASSERT_TRUE(table.readFresh(90, reading));
    EXPECT_EQ(reading.name, "git");
    EXPECT_EQ(reading.arguments, Text("git gc"));
    EXPECT_EQ(reading.footprintBytes, 200 * page);
}

}  // namespace ravik::platform

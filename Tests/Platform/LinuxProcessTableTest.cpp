#include "Platform/Linux/LinuxProcessTable.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <ctime>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/Clock.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

/// The computer's clock, ahead by as much as a test likes: what is young now can count as old.
class AheadClock : public SystemClock {
public:
    Time now() const override { return SystemClock::now() + ahead; }
    Time ahead = 0;
};

constexpr std::uint64_t mebibyte = 1U << 20U;

void waitForEver() {
    for (;;) pause();
}

/// Every test runs warm and the plain way; both must tell the same.
struct LinuxProcessTableTest : testing::TestWithParam<std::size_t> {
    std::optional<ProcessReading> scan(Pid pid) {
        table.list(pids);
        return read(pid);
    }
    std::optional<ProcessReading> read(Pid pid) {
        ProcessReading reading;
        if (!table.read(pid, reading)) return {};
        return reading;
    }
    /// The process as it is once `fits` holds for it; absent after ten seconds.
    template <typename Fits>
    std::optional<ProcessReading> scanUntil(Pid pid, Fits fits) {
        std::optional<ProcessReading> reading;
        waitUntil([&] { return (reading = scan(pid)) && fits(*reading); });
        return reading && fits(*reading) ? reading : std::nullopt;
    }
    /// Scans the given process until all that is due in turns has been read once.
    void scanAllTurns(Pid pid) {
        for (int turn = 0; turn < 12; ++turn) scan(pid);
    }
    Pid startSleep() {
        const Pid pid = reaper.add(startProgram({"sleep", "1000"}));
        // Its name comes before its arguments in the midst of an exec.
        EXPECT_TRUE(scanUntil(pid, [](const auto& reading) { return reading.arguments == Text("sleep 1000"); }));
        return pid;
    }

    AheadClock clock;
    LinuxProcessTable table{clock, {.root = "/proc", .keptDescriptors = GetParam()}};
    Reaper reaper;
    Pids pids;
};

// Writes over the arguments of the calling process, as servers do to tell what they are at.
void writeTitle(const char* title) {
    const std::string stat = readFile("/proc/self/stat").value_or("");
    std::vector<std::string> fields;
    std::size_t at = stat.rfind(')') + 2;
    while (at < stat.size()) {
        const std::size_t end = std::min(stat.find(' ', at), stat.size());
        fields.push_back(stat.substr(at, end - at));
        at = end + 1;
    }
    // Fields 48 and 49; the first of these is field 3.
    auto* begin = reinterpret_cast<char*>(std::stoull(fields[45]));
    auto* end = reinterpret_cast<char*>(std::stoull(fields[46]));
    std::memset(begin, 0, static_cast<std::size_t>(end - begin));
    // Where the area is short it runs on into the environment, and the kernel follows it there.
    std::memcpy(begin, title, std::strlen(title) + 1);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(WarmAndPlain, LinuxProcessTableTest, testing::Values(4096U, 0U),
                         [](const auto& way) { return way.param > 0 ? "Warm" : "Plain"; });

TEST_P(LinuxProcessTableTest, TellsWhoAProcessIs) {
    const Pid pid = startSleep();
    const auto reading = scan(pid);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->id, pid);
    EXPECT_EQ(reading->ppid, getpid());
    EXPECT_EQ(reading->uid, geteuid());
    EXPECT_EQ(reading->name, "sleep");
    EXPECT_EQ(reading->started, table.startTime(pid));
    EXPECT_NEAR(reading->started, clock.now(), 15);
    EXPECT_EQ(table.commandLine(pid), "sleep 1000");
}

TEST_P(LinuxProcessTableTest, ListsInTheKernelsOrderWithItself) {
    table.list(pids);
    EXPECT_TRUE(std::ranges::is_sorted(pids));
    EXPECT_NE(std::ranges::find(pids, getpid()), pids.end());
    const Pids fresh = table.listFresh();
    EXPECT_NE(std::ranges::find(fresh, getpid()), fresh.end());
}

TEST_P(LinuxProcessTableTest, RepairsArgumentsThatAreNoUtf8) {
    const Pid pid = reaper.add(startProgram({"sh", "-c", "while kill -STOP $$; do :; done", "caf\xE9"}));
    EXPECT_TRUE(scanUntil(pid, [](const auto& reading) {
        return reading.arguments == Text("sh -c while kill -STOP $$; do :; done caf\xEF\xBF\xBD");
    }));
}

TEST_P(LinuxProcessTableTest, CountsTouchedMemoryAndNoFilePages) {
    const Pid bare = reaper.add(forkChild(waitForEver));
    const Pid pid = reaper.add(forkChild([] {
        const std::size_t size = 300 * mebibyte;
        void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        std::memset(memory, 1, size);
        waitForEver();
    }));
    const Pid sharing = reaper.add(forkChild([] {
        const std::size_t size = 100 * mebibyte;
        void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        std::memset(memory, 1, size);
        prctl(PR_SET_NAME, "has-touched");
        waitForEver();
    }));
    const auto grown = scanUntil(pid, [](const auto& reading) { return reading.footprintBytes > 299 * mebibyte; });
    ASSERT_TRUE(grown);
    EXPECT_LT(grown->footprintBytes, 340 * mebibyte);
    waitUntil([&] { return readFile("/proc/" + std::to_string(sharing) + "/comm") == "has-touched\n"; });
    const auto shares = read(sharing);
    const auto without = read(bare);
    ASSERT_TRUE(shares && without);
    EXPECT_LT(shares->footprintBytes, *without->footprintBytes + 20 * mebibyte);
}

TEST_P(LinuxProcessTableTest, MeasuresTheTimeOnTheProcessor) {
    const Pid pid = reaper.add(forkChild([] {
        timespec used{};
        while (used.tv_sec == 0 && used.tv_nsec < 200'000'000) clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
        waitForEver();
    }));
    const auto reading = scanUntil(pid, [](const auto& told) { return told.cpuTicks >= 200'000'000U; });
    ASSERT_TRUE(reading);
    EXPECT_LT(reading->cpuTicks, 400'000'000U);
}

TEST_P(LinuxProcessTableTest, FollowsAProcessThatRewritesItsArguments) {
    PidPipe go;
    const Pid pid = reaper.add(forkChild([&] {
        go.hear();
        writeTitle("worker: idle");
        waitForEver();
    }));
    const auto before = scan(pid);
    ASSERT_TRUE(before);
    clock.ahead = 3600;
    scanAllTurns(pid);
    go.tell(1);
    const auto after = scanUntil(pid, [](const auto& reading) { return reading.arguments == Text("worker: idle"); });
    ASSERT_TRUE(after);
    EXPECT_EQ(after->startTicks, before->startTicks);
    EXPECT_EQ(table.commandLine(pid), "worker: idle");
}

TEST_P(LinuxProcessTableTest, SeesAnExecWithinTwelveScansAndFreshAtOnce) {
    PidPipe go;
    const Pid pid = reaper.add(forkChild([&] {
        go.hear();
        execlp("sleep", "sleep", "1000", nullptr);
    }));
    clock.ahead = 3600;
    const auto before = scan(pid);
    ASSERT_TRUE(before);
    scanAllTurns(pid);
    EXPECT_NE(before->name, "sleep");

    go.tell(1);
    ASSERT_TRUE(waitUntil([&] { return table.commandLine(pid) == "sleep 1000"; }));
    ProcessReading fresh;
    ASSERT_TRUE(table.readFresh(pid, fresh));
    EXPECT_EQ(fresh.name, "sleep");
    EXPECT_EQ(fresh.arguments, Text("sleep 1000"));
    EXPECT_EQ(fresh.startTicks, before->startTicks);

    scanAllTurns(pid);
    const auto after = read(pid);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->name, "sleep");
    EXPECT_EQ(after->arguments, Text("sleep 1000"));
}

TEST_P(LinuxProcessTableTest, LeavesOutWhatEndsBetweenListingAndReading) {
    const Pid known = startSleep();
    clock.ahead = 3600;
    scanAllTurns(known);
    const Pid unknown = reaper.add(startProgram({"sleep", "1000"}));
    table.list(pids);
    ASSERT_NE(std::ranges::find(pids, known), pids.end());
    ASSERT_NE(std::ranges::find(pids, unknown), pids.end());
    reaper.end(known);
    reaper.end(unknown);
    EXPECT_FALSE(read(known));
    EXPECT_FALSE(read(unknown));
    ProcessReading fresh;
    EXPECT_FALSE(table.readFresh(known, fresh));
    EXPECT_FALSE(table.startTime(known));
    EXPECT_FALSE(table.commandLine(known));
}

TEST_P(LinuxProcessTableTest, AZombieIsNoProcess) {
    const Pid known = startSleep();
    clock.ahead = 3600;
    scanAllTurns(known);
    const Pid unknown = forkChild([] {});
    kill(known, SIGKILL);
    for (const Pid pid : {known, unknown}) {
        siginfo_t info{};
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT), 0);
        EXPECT_FALSE(scan(pid));
        EXPECT_NE(std::ranges::find(pids, pid), pids.end());
        ProcessReading fresh;
        EXPECT_FALSE(table.readFresh(pid, fresh));
        EXPECT_FALSE(table.startTime(pid));
    }
    waitpid(unknown, nullptr, 0);
}

TEST_P(LinuxProcessTableTest, ALostParentIsSeenInTheSameScan) {
    PidPipe pipe;
    const Pid parent = reaper.add(forkChild([&] {
        pipe.tell(forkChild(waitForEver));
        waitForEver();
    }));
    const Pid child = reaper.add(pipe.hear());
    clock.ahead = 3600;
    scan(child);
    scanAllTurns(child);
    ASSERT_EQ(read(child)->ppid, parent);

    // It stays a zombie, in the list, until the test asks for it.
    kill(parent, SIGKILL);
    siginfo_t info{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(parent), &info, WEXITED | WNOWAIT), 0);
    const auto orphan = scan(child);
    ASSERT_TRUE(orphan);
    EXPECT_NE(orphan->ppid, parent);
}

TEST_P(LinuxProcessTableTest, AParentThatHasVanishedIsSeenInTheSameScan) {
    PidPipe pipe;
    const Pid parent = reaper.add(forkChild([&] {
        pipe.tell(forkChild(waitForEver));
        waitForEver();
    }));
    const Pid child = reaper.add(pipe.hear());
    clock.ahead = 3600;
    scan(child);
    scanAllTurns(child);
    reaper.end(parent);
    const auto orphan = scan(child);
    ASSERT_TRUE(orphan);
    EXPECT_NE(orphan->ppid, parent);
}

TEST_P(LinuxProcessTableTest, TheOwnerIsTheEffectiveOneEvenOfAProcessThatMayNotBeTraced) {
    PidPipe pipe;
    const std::uint32_t other = geteuid() == 0 ? 65534 : geteuid();
    const Pid pid = reaper.add(forkChild([&] {
        if (seteuid(other) != 0) _exit(1);
        prctl(PR_SET_DUMPABLE, 0);
        pipe.tell(getpid());
        waitForEver();
    }));
    ASSERT_EQ(pipe.hear(), pid);
    const auto reading = scan(pid);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->uid, other);
    ProcessReading fresh;
    ASSERT_TRUE(table.readFresh(pid, fresh));
    EXPECT_EQ(fresh.uid, other);
}

TEST_P(LinuxProcessTableTest, KeepsNoDescriptorOfWhatHasGone) {
    const Pid pid = startSleep();
    for (const Pid listed : Pids(pids)) read(listed);
    const std::size_t before = table.kept();
    EXPECT_EQ(before > 0, GetParam() > 0);
    EXPECT_LE(before, pids.size());
    reaper.end(pid);
    table.list(pids);
    EXPECT_EQ(table.kept() < before, GetParam() > 0);
}

TEST(LinuxProcessTable, ReadsTheRestPlainlyOnceTheDescriptorsAreUsedUp) {
    AheadClock clock;
    LinuxProcessTable table(clock, {.root = "/proc", .keptDescriptors = 2});
    Reaper reaper;
    Pids started;
    for (int at = 0; at < 4; ++at) started.push_back(reaper.add(startProgram({"sleep", "1000"})));
    Pids pids;
    ASSERT_TRUE(waitUntil([&] {
        table.list(pids);
        return std::ranges::all_of(started, [&](Pid pid) {
            ProcessReading reading;
            return table.read(pid, reading) && reading.name == "sleep" && reading.footprintBytes > 0;
        });
    }));
    EXPECT_EQ(table.kept(), 2U);
}

}  // namespace ravik::platform

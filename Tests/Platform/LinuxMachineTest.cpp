#include "Platform/Linux/LinuxMachine.h"

#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tests/Fakes/LogFolder.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

class LinuxMachineTest : public testing::Test {
protected:
    void write(const fs::path& path, std::string_view text) const {
        fs::create_directories((m_folder.path() / path).parent_path());
        std::ofstream(m_folder.path() / path) << text;
    }
    LinuxMachine machine() const { return LinuxMachine({m_folder.path() / "proc", m_folder.path() / "sys"}); }

private:
    fakes::TemporaryFolder m_folder;
};

}  // namespace

TEST_F(LinuxMachineTest, ReadsTheRealMachine) {
    LinuxMachine machine;
    const auto memory = machine.memory();
    ASSERT_TRUE(memory);
    EXPECT_GT(memory->availableBytes, 0u);
    EXPECT_LE(memory->availableBytes, machine.installedBytes());
    EXPECT_EQ(memory->pageBytes, static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
    EXPECT_GT(machine.diskFreeBytes().value(), 0u);
    EXPECT_GE(machine.loadAverage().value(), 0.0);
    EXPECT_GE(machine.cpuCount().value(), 1);
}

TEST_F(LinuxMachineTest, AMissingFileIsAMissingFigure) {
    LinuxMachine empty = machine();
    EXPECT_EQ(empty.memory(), std::nullopt);
    EXPECT_EQ(empty.installedBytes(), 0u);
    EXPECT_EQ(empty.swapUsedBytes(), std::nullopt);
    EXPECT_EQ(empty.loadAverage(), std::nullopt);
    EXPECT_EQ(empty.gpuPercent(), std::nullopt);
}

TEST_F(LinuxMachineTest, SwapLeavesOutWhatCompressedSwapTakesInMemory) {
    write("proc/meminfo", "SwapTotal: 1000 kB\nSwapFree: 400 kB\n");
    EXPECT_EQ(machine().swapUsedBytes(), 600u * 1024);
    write("sys/block/zram0/mm_stat", "614400 200000 102400 0 102400 0 0 0 0\n");
    EXPECT_EQ(machine().swapUsedBytes(), 600u * 1024) << "what holds a file system is no swap";
    write("proc/swaps", "Filename Type Size Used Priority\n/dev/zram0 partition 1000 600 100\n");
    EXPECT_EQ(machine().swapUsedBytes(), 500u * 1024);
    write("sys/block/zram0/mm_stat", "614400 200000 99999999 0 99999999 0 0 0 0\n");
    EXPECT_EQ(machine().swapUsedBytes(), 0u);
}

TEST_F(LinuxMachineTest, TheSmallestLimitOnTheWayUpIsTheInstalledMemory) {
    write("proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 900000 kB\n");
    write("proc/vmstat", "pswpout 0\n");
    write("proc/self/cgroup", "0::/box/inner\n");
    write("sys/fs/cgroup/box/inner/memory.max", "max\n");
    write("sys/fs/cgroup/box/memory.max", "104857600\n");
    write("sys/fs/cgroup/box/memory.current", "4857600\n");
    EXPECT_EQ(machine().installedBytes(), 104857600u);
    EXPECT_EQ(machine().memory()->availableBytes, 100000000u);
}

TEST_F(LinuxMachineTest, ALimitOfTheFirstVersionCountsAsWell) {
    write("proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 900000 kB\n");
    write("proc/self/cgroup", "5:memory:/docker/0123\n0::/docker/0123\n");
    // Inside a container its own group is the root of what is mounted.
    write("sys/fs/cgroup/memory/memory.limit_in_bytes", "104857600\n");
    write("sys/fs/cgroup/memory/memory.usage_in_bytes", "5857600\n");
    write("sys/fs/cgroup/memory/memory.stat", "inactive_file 5\ntotal_inactive_file 1000000\n");
    EXPECT_EQ(machine().installedBytes(), 104857600u);
    EXPECT_EQ(machine().memory()->availableBytes, 100000000u);
    write("sys/fs/cgroup/memory/memory.limit_in_bytes", "9223372036854771712\n");
    EXPECT_EQ(machine().installedBytes(), 1000000u * 1024);
}

TEST_F(LinuxMachineTest, FilePagesOfAContainerAreNotMemoryInUse) {
    write("proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 900000 kB\n");
    write("proc/self/cgroup", "0::/\n");
    write("sys/fs/cgroup/memory.max", "1000000\n");
    write("sys/fs/cgroup/memory.current", "990000\n");
    write("sys/fs/cgroup/memory.stat", "anon 90000\nfile 890000\ninactive_file 800000\nactive_file 90000\n");
    EXPECT_EQ(machine().memory()->availableBytes, 900000u);
}

TEST_F(LinuxMachineTest, KernelThatCountsNoSwapStillTellsFreeMemory) {
    write("proc/meminfo", "MemTotal: 1000000 kB\nMemAvailable: 900000 kB\n");
    write("proc/vmstat", "nr_free_pages 5\n");
    LinuxMachine plain = machine();
    ASSERT_TRUE(plain.memory());
    EXPECT_EQ(plain.memory()->availableBytes, 900000u * 1024);
    EXPECT_EQ(plain.memory()->swapOutPages, 0u);
    write("proc/vmstat", "pswpout 7\n");
    EXPECT_EQ(plain.memory()->swapOutPages, 7u);
    write("proc/vmstat", "");
    EXPECT_EQ(plain.memory()->swapOutPages, 7u) << "a reading that failed is no wrapped counter";
}

TEST_F(LinuxMachineTest, TheFirstCardThatTellsItsLoadWins) {
    write("sys/class/drm/card0/device/vendor", "0x1\n");
    write("sys/class/drm/card0-HDMI-A-1/status", "connected\n");
    write("sys/class/drm/card1/device/gpu_busy_percent", "37\n");
    EXPECT_EQ(machine().gpuPercent(), 37);
}

TEST_F(LinuxMachineTest, ACardThatSleepsIsNotAsked) {
    write("sys/class/drm/card0/device/gpu_busy_percent", "37\n");
    write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
    LinuxMachine own = machine();
    EXPECT_EQ(own.gpuPercent(), std::nullopt);
    write("sys/class/drm/card0/device/power/runtime_status", "active\n");
    EXPECT_EQ(own.gpuPercent(), 37);
}

TEST_F(LinuxMachineTest, ACardWithoutItsLibraryTellsNothing) {
    write("sys/class/drm/card0/device/vendor", "0x10de\n");
    write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
    EXPECT_EQ(machine().gpuPercent(), std::nullopt);
}

}  // namespace ravik::platform

#include "Platform/Linux/MachineParse.h"

#include <gtest/gtest.h>

namespace ravik::platform {

namespace {

constexpr std::string_view meminfo =
    "MemTotal:       24637480 kB\n"
    "MemFree:        22846632 kB\n"
    "MemAvailable:   23680412 kB\n"
    "SwapTotal:             0 kB\n"
    "SwapFree:              0 kB";  // no newline at the end

}  // namespace

TEST(MachineParse, ReadsKilobytesAsBytes) {
    EXPECT_EQ(meminfoBytes(meminfo, "MemTotal"), 24637480ull * 1024);
    EXPECT_EQ(meminfoBytes(meminfo, "MemAvailable"), 23680412ull * 1024);
    EXPECT_EQ(meminfoBytes(meminfo, "SwapFree"), 0u);
    EXPECT_EQ(meminfoBytes(meminfo, "Mem"), std::nullopt);
    EXPECT_EQ(meminfoBytes(meminfo, "Hugepages"), std::nullopt);
    EXPECT_EQ(meminfoBytes("MemTotal: many kB\n", "MemTotal"), std::nullopt);
    EXPECT_EQ(meminfoBytes("", "MemTotal"), std::nullopt);
}

TEST(MachineParse, ReadsACounter) {
    EXPECT_EQ(vmstatCounter("pswpin 17\npswpout 42\n", "pswpout"), 42u);
    EXPECT_EQ(vmstatCounter("pswpout_x 42\n", "pswpout"), std::nullopt);
}

TEST(MachineParse, TheThirdFigureIsWhatAZramStoreTakes) {
    EXPECT_EQ(zramStoreBytes("  4096   120   81920        0    81920        0        0        0        0\n"), 81920u);
    EXPECT_EQ(zramStoreBytes("4096 120"), std::nullopt);
    EXPECT_EQ(zramStoreBytes(""), std::nullopt);
}

TEST(MachineParse, FindsTheZramDevicesAmongTheSwaps) {
    EXPECT_EQ(zramSwaps("Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
                        "/dev/zram0                              partition\t8388604\t\t123\t\t100\n"
                        "/swapfile                               file\t\t2097148\t\t0\t\t-2\n"
                        "/dev/sda3 partition 1 1 1\n/dev/zram11 partition 1 1 1"),
              (std::vector<std::string>{"zram0", "zram11"}));
    EXPECT_TRUE(zramSwaps("").empty());
    EXPECT_TRUE(zramSwaps("/dev/zram0/../sda x\n").empty());
}

TEST(MachineParse, FilePagesAndReclaimableSlabsCanBeTakenBack) {
    EXPECT_EQ(reclaimableBytes("anon 5000\nfile 900\ninactive_anon 1\nactive_file 200\ninactive_file 30\n"
                               "slab_reclaimable 4\nslab_unreclaimable 7\n"),
              234u);
    EXPECT_EQ(reclaimableBytes(""), 0u);
}

TEST(MachineParse, MaxIsNoLimit) {
    EXPECT_EQ(memoryLimit("max\n"), std::nullopt);
    EXPECT_EQ(memoryLimit("536870912\n"), 536870912u);
}

TEST(MachineParse, TheFirstVersionsCountsTakeTheGroupsBelowIn) {
    EXPECT_EQ(reclaimableBytes("inactive_file 1\nactive_file 2\ntotal_inactive_file 30\ntotal_active_file 200\n"),
              230u);
}

TEST(MachineParse, TheLargestNumberOfPagesIsNoLimit) {
    EXPECT_EQ(memoryLimit("9223372036854771712\n"), std::nullopt);  // pages of 4 KB
    EXPECT_EQ(memoryLimit("9223372036854710272\n"), std::nullopt);  // of 64 KB
}

TEST(MachineParse, WalksUpTheHierarchyThatLimitsMemory) {
    EXPECT_EQ(memoryGroups("0::/a/b.scope\n"), (MemoryGroups{true, {"/a/b.scope", "/a", ""}}));
    EXPECT_EQ(memoryGroups("12:cpu:/x\n0::/\n"), (MemoryGroups{true, {""}}));
    EXPECT_EQ(memoryGroups("12:cpu:/x\n"), std::nullopt);
    EXPECT_EQ(memoryGroups("12:cpu:/x\n4:hugetlb,memory:/docker/7\n1:name=memory:/y\n"),
              (MemoryGroups{false, {"/docker/7", "/docker", ""}}));
    EXPECT_EQ(memoryGroups("4:memory:/docker/7\n0::/system.slice\n"),
              (MemoryGroups{false, {"/docker/7", "/docker", ""}}));
    EXPECT_EQ(memoryGroups("4:memory\n:memory:\n"), std::nullopt);
}

}  // namespace ravik::platform

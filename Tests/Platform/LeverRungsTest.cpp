// Which rung of a demotion applies, on captured folders and on a bus of the test's own.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "Platform/Linux/Autogroups.h"
#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/ThreadPriority.h"
#include "Platform/Linux/UnitWeights.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/FakeUserManager.h"

namespace ravik::platform {
namespace {

namespace fs = std::filesystem;

const std::string appSlice = "/user.slice/user-1000.slice/user@1000.service/app.slice";

/// Processes and control groups of uid 1000 in folders of the test's own.
class LeverRungs : public testing::Test {
protected:
    LeverRungs() {
        folder.write("proc/sys/kernel/sched_autogroup_enabled", "1\n");
        folder.write("cgroup/cgroup.controllers", "cpu io memory pids\n");
        folder.write("cgroup/user.slice/user-1000.slice/user@1000.service/cgroup.controllers", "cpu memory pids\n");
    }

    std::string proc() const { return (folder.path() / "proc").native(); }
    std::string cgroup() const { return (folder.path() / "cgroup").native(); }
    UnitScene scene() const { return {proc(), cgroup(), 1000}; }

    void process(Pid pid, const std::string& group, Pid session = 1, const std::string& autogroup = "autogroup-1") {
        const std::string base = "proc/" + std::to_string(pid) + "/";
        const std::string ids = std::to_string(session) + " " + std::to_string(session);
        folder.write(base + "cgroup", "0::" + group + "\n");
        folder.write(base + "autogroup", "/" + autogroup + " nice 0\n");
        folder.write(base + "stat", std::to_string(pid) + " (x) S 1 " + ids + " 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 5\n");
    }
    /// A unit with these processes in it.
    std::string unit(const std::string& name, const Pids& pids, const std::string& weight = "100") {
        std::string list;
        for (const Pid pid : pids) {
            list.append(std::to_string(pid)).append("\n");
            process(pid, appSlice + "/" + name);
        }
        folder.write("cgroup" + appSlice + "/" + name + "/cgroup.procs", list);
        folder.write("cgroup" + appSlice + "/" + name + "/cpu.weight", weight + "\n");
        folder.write("cgroup" + appSlice + "/" + name + "/cpu.idle", "0\n");
        return name;
    }
    std::string kernel(const std::string& unit, const char* file) const {
        return readFile(cgroup() + appSlice + "/" + unit + "/" + file).value_or("");
    }

    fakes::TemporaryFolder folder;
};

/// The same with somebody to answer for the units.
class UnitWeights : public LeverRungs {
protected:
    UnitWeights() : service(bus.address(), cgroup() + appSlice), manager(bus.address()) {}
    void SetUp() override {
        ASSERT_NE(bus.address(), "");
        ASSERT_TRUE(service.isUp());
    }

    OwnBus bus;
    FakeUserManager service;
    UserManager manager;
};

}  // namespace

TEST(NiceLimit, IsTheSoftOne) {
    const std::string text =
        "Limit                     Soft Limit           Hard Limit           Units     \n"
        "Max cpu time              unlimited            unlimited            seconds   \n"
        "Max nice priority         20                   40                   \n"
        "Max realtime priority     0                    0                    \n";
    EXPECT_EQ(parseNiceLimit(text), 20u);
    EXPECT_EQ(parseNiceLimit("Max nice priority         unlimited            unlimited            \n"), ~0ull);
    EXPECT_EQ(parseNiceLimit("Max nice priority         "), std::nullopt);
    EXPECT_EQ(parseNiceLimit("Max cpu time              0                    0\n"), std::nullopt);
    EXPECT_EQ(parseNiceLimit(""), std::nullopt);
}

TEST(NiceLimit, AllowsTheWayBackUpToTwentyLessTheNiceValue) {
    EXPECT_TRUE(mayLeaveIdlePolicy(0, 20));
    EXPECT_FALSE(mayLeaveIdlePolicy(0, 19));
    EXPECT_TRUE(mayLeaveIdlePolicy(19, 1));
    EXPECT_FALSE(mayLeaveIdlePolicy(19, 0));
    EXPECT_TRUE(mayLeaveIdlePolicy(-20, 40));
    EXPECT_FALSE(mayLeaveIdlePolicy(-20, 39));
}

TEST(Autogroup, ReadsNameAndNiceValue) {
    EXPECT_EQ(parseAutogroup("/autogroup-44 nice 0\n"), (LoweredAutogroup{"autogroup-44", 0}));
    EXPECT_EQ(parseAutogroup("/autogroup-1 nice -5\n"), (LoweredAutogroup{"autogroup-1", -5}));
    EXPECT_EQ(parseAutogroup("/ nice 0\n"), std::nullopt);
    EXPECT_EQ(parseAutogroup("/autogroup-44 nice \n"), std::nullopt);
    EXPECT_EQ(parseAutogroup(""), std::nullopt);
}

TEST_F(LeverRungs, AutogroupsAreHeededWhereNoControlGroupSharesOutTheCpu) {
    process(20, "/user.slice/user-1000.slice/session-2.scope");
    EXPECT_TRUE(heedsAutogroup(proc(), cgroup(), 20));
    folder.write("cgroup/user.slice/cpu.weight", "100\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
}

TEST_F(LeverRungs, AutogroupsAreNotHeededInAContainer) {
    process(20, "/");
    EXPECT_TRUE(heedsAutogroup(proc(), cgroup(), 20));
    folder.write("cgroup/cgroup.type", "domain\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
    process(21, "/../outside");
    fs::remove(folder.path() / "cgroup/cgroup.type");
    folder.write("cgroup/outside/cpu.weight", "100\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 21));
}

TEST_F(LeverRungs, AutogroupsAreNotHeededWhereTheyAreSwitchedOff) {
    process(20, "/");
    folder.write("proc/sys/kernel/sched_autogroup_enabled", "0\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
    fs::remove(folder.path() / "proc/sys/kernel/sched_autogroup_enabled");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
}

TEST_F(LeverRungs, AControllerInAHierarchyOfItsOwnDecidesByItsRoot) {
    process(20, "/");
    folder.write("proc/20/cgroup", "9:name=systemd:/x\n2:cpu,cpuacct:/\n0::/x\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
    folder.write("cgroup/cpu/release_agent", "\n");
    EXPECT_TRUE(heedsAutogroup(proc(), cgroup(), 20));
    folder.write("proc/20/cgroup", "2:cpu,cpuacct:/user.slice\n");
    EXPECT_FALSE(heedsAutogroup(proc(), cgroup(), 20));
}

TEST_F(LeverRungs, AnAutogroupMustBelongToTheApplicationAlone) {
    process(20, "/", 20, "autogroup-44");
    process(21, "/", 20, "autogroup-44");
    process(30, "/", 30, "autogroup-45");
    EXPECT_EQ(autogroupsOf(proc(), cgroup(), {20, 21}), (std::vector{LoweredAutogroup{"autogroup-44", 0}}));
    EXPECT_TRUE(autogroupsOf(proc(), cgroup(), {20}).empty());
    // Another session that stayed in the same autogroup.
    process(31, "/", 31, "autogroup-44");
    EXPECT_TRUE(autogroupsOf(proc(), cgroup(), {20, 21}).empty());
    EXPECT_EQ(autogroupsOf(proc(), cgroup(), {20, 21, 30, 31}).size(), 2u);
}

TEST_F(LeverRungs, AnAutogroupBelowZeroCouldNotBeBroughtBack) {
    process(20, "/", 20, "autogroup-44");
    folder.write("proc/20/autogroup", "/autogroup-44 nice -1\n");
    EXPECT_TRUE(autogroupsOf(proc(), cgroup(), {20}).empty());
}

TEST_F(UnitWeights, AnApplicationsOwnUnitIsFound) {
    const auto name = unit("app-gnome-foo-812.scope", {20, 21});
    const auto units = unitsOf(scene(), manager, {20, 21});
    ASSERT_EQ(units.size(), 1u);
    EXPECT_EQ(units[0].name, name);
    EXPECT_EQ(units[0].path, appSlice + "/" + name);
    EXPECT_EQ(units[0].weight, UserManager::noWeight);
    struct stat status {};
    ASSERT_EQ(stat((cgroup() + appSlice + "/" + name).c_str(), &status), 0);
    EXPECT_EQ(units[0].inode, status.st_ino);
}

TEST_F(UnitWeights, AUnitThatHoldsAnythingElseIsNotTheApplicationsOwn) {
    const auto name = unit("app-gnome-foo-812.scope", {20, 21});
    EXPECT_TRUE(unitsOf(scene(), manager, {20}).empty());
    folder.write("cgroup" + appSlice + "/" + name + "/inner/cgroup.procs", "22\n");
    EXPECT_TRUE(unitsOf(scene(), manager, {20, 21}).empty());
}

TEST_F(UnitWeights, AllProcessesMustLieInUnitsOfTheApplication) {
    unit("app-foo.service", {20});
    unit("app-foo-2.scope", {21});
    process(22, "/user.slice/user-1000.slice/session-2.scope");
    EXPECT_EQ(unitsOf(scene(), manager, {20, 21}).size(), 2u);
    EXPECT_TRUE(unitsOf(scene(), manager, {20, 21, 22}).empty());
}

TEST_F(UnitWeights, OnlyThisUsersApplicationUnitsCount) {
    process(20, "/user.slice/user-1000.slice/user@1000.service/app.slice/dbus.service");
    EXPECT_TRUE(unitsOf(scene(), manager, {20}).empty());
    unit("app-foo.service", {21});
    UnitScene other = scene();
    other.uid = 1001;
    EXPECT_TRUE(unitsOf(other, manager, {21}).empty());
    EXPECT_TRUE(unitsOf(scene(), manager, {99}).empty());
}

TEST_F(UnitWeights, WithoutTheControllerThereIsNoLever) {
    unit("app-foo.service", {20});
    folder.write("cgroup/user.slice/user-1000.slice/user@1000.service/cgroup.controllers", "memory pids\n");
    EXPECT_TRUE(unitsOf(scene(), manager, {20}).empty());
}

TEST_F(UnitWeights, AUnitThatTheManagerDoesNotKnowIsNoLever) {
    unit("app-foo.service", {20});
    service.forget("app-foo.service");
    EXPECT_TRUE(unitsOf(scene(), manager, {20}).empty());
}

TEST_F(UnitWeights, WithoutABusThereIsNoLever) {
    unit("app-foo.service", {20});
    UserManager nobody("");
    EXPECT_TRUE(unitsOf(scene(), nobody, {20}).empty());
    EXPECT_EQ(nobody.version(), 0);
    EXPECT_FALSE(nobody.setWeight("app-foo.service", 1));
}

TEST_F(UnitWeights, IsMadeIdleAndBroughtBack) {
    const auto name = unit("app-foo.service", {20});
    const auto units = unitsOf(scene(), manager, {20});
    ASSERT_TRUE(lowerUnits(scene(), manager, units));
    EXPECT_EQ(kernel(name, "cpu.idle"), "1\n");
    EXPECT_EQ(service.lastRuntime(), true);
    EXPECT_EQ(manager.weight(name), UserManager::idleWeight);
    ASSERT_TRUE(raiseUnits(scene(), manager, units));
    EXPECT_EQ(kernel(name, "cpu.idle"), "0\n");
    EXPECT_EQ(kernel(name, "cpu.weight"), "100\n");
    EXPECT_EQ(manager.weight(name), UserManager::noWeight);
}

TEST_F(UnitWeights, AManagerThatKnowsNoIdleGetsTheLeastWeight) {
    service.setVersion("249.11-0ubuntu3");
    const auto name = unit("app-foo.service", {20}, "300");
    service.setWeight(name, 300);
    const auto units = unitsOf(scene(), manager, {20});
    ASSERT_TRUE(lowerUnits(scene(), manager, units));
    EXPECT_EQ(kernel(name, "cpu.weight"), "1\n");
    EXPECT_EQ(kernel(name, "cpu.idle"), "0\n");
    ASSERT_TRUE(raiseUnits(scene(), manager, units));
    EXPECT_EQ(kernel(name, "cpu.weight"), "300\n");
    EXPECT_EQ(manager.weight(name), 300u);
}

TEST_F(UnitWeights, AChangeThatTheKernelDoesNotShowIsNone) {
    unit("app-foo.service", {20});
    const auto units = unitsOf(scene(), manager, {20});
    service.ignoreChanges();
    EXPECT_FALSE(lowerUnits(scene(), manager, units));
}

TEST_F(UnitWeights, AWeightThatSomebodyElseHasSetSinceStays) {
    const auto name = unit("app-foo.service", {20});
    const auto units = unitsOf(scene(), manager, {20});
    ASSERT_TRUE(lowerUnits(scene(), manager, units));
    service.setWeight(name, 500);
    EXPECT_TRUE(raiseUnits(scene(), manager, units));
    EXPECT_EQ(manager.weight(name), 500u);
}

TEST_F(UnitWeights, ALaterUnitOfTheSameNameIsLeftAlone) {
    const auto name = unit("app-foo.service", {20});
    auto units = unitsOf(scene(), manager, {20});
    ASSERT_TRUE(lowerUnits(scene(), manager, units));
    units[0].inode += 1;
    EXPECT_TRUE(raiseUnits(scene(), manager, units));
    EXPECT_EQ(kernel(name, "cpu.idle"), "1\n");
    EXPECT_FALSE(lowerUnits(scene(), manager, units));
}

TEST(UserManager, TheVersionIsTheNumberInFront) {
    EXPECT_EQ(majorVersion("252.39-1~deb12u1"), 252);
    EXPECT_EQ(majorVersion("257"), 257);
    EXPECT_EQ(majorVersion(""), 0);
    EXPECT_EQ(majorVersion("v257"), 0);
}

}  // namespace ravik::platform

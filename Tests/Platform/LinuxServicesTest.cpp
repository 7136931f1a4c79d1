#include "Platform/Linux/LinuxServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik::platform {
namespace {

using testing::UnorderedElementsAre;

constexpr std::uint32_t me = 1000;
constexpr Pid self = 900;
constexpr Time now = 1'760'000'000;
const std::string typed = "/user.slice/user-1000.slice/session-3.scope";
const std::string manager = "/user.slice/user-1000.slice/user@1000.service";

class Apps : public ApplicationUnits {
public:
    std::optional<Application> ofUnit(std::string_view unit) override {
        for (const auto& [id, isTerminal] : entries) {
            if (unit.find(id) != unit.npos) return Application{id, isTerminal};
        }
        return {};
    }
    bool belongs(const Proc& proc, const std::string& id) override { return members.contains({proc.id, id}); }

    std::map<std::string, bool> entries;
    std::set<std::pair<Pid, std::string>> members;
};

/// A made-up process tree under a made-up /proc.
class LinuxServicesTest : public testing::Test {
protected:
    LinuxServicesTest() : services(options()) { put(self, 800, typed); }

    LinuxServices::Options options() {
        LinuxServices::Options made;
        made.procRoot = root.path();
        made.uid = me;
        made.self = self;
        made.isToolHelper = [](std::string_view command) { return command.find("mcp") != command.npos; };
        made.applications = &apps;
        return made;
    }

    /// A process whose session is `session`; that of a shell long gone unless told.
    Proc& put(Pid id, Pid parent, const std::string& group, Pid session = 3, std::uint32_t uid = me) {
        write(id, group, session);
        Proc proc;
        proc.id = id;
        proc.ppid = parent;
        proc.uid = uid;
        proc.name = "node";
        proc.command = "node /home/me/server.js";
        proc.started = now - 9000;
        proc.startTicks = static_cast<std::uint64_t>(id);
        procs.push_back(proc);
        return procs.back();
    }
    void write(Pid id, const std::string& group, Pid session) {
        const std::string folder = std::to_string(id);
        root.write(folder + "/cgroup", "0::" + group + "\n");
        root.write(folder + "/stat", folder + " (node) S 1 5 " + std::to_string(session) + " 0\n");
    }

    bool managed(Pid pid, Time at = now) { return services.read(procs, at).managed.contains(pid); }

    fakes::TemporaryFolder root;
    Apps apps;
    std::vector<Proc> procs;
    LinuxServices services;
};

TEST_F(LinuxServicesTest, LeavesWhatWasTypedUnmanaged) {
    put(10, 1, typed);
    EXPECT_FALSE(managed(10));
}

TEST_F(LinuxServicesTest, ManagesServicesAndContainers) {
    put(10, 1, "/system.slice/db.service");
    put(11, 1, "/docker/0a1b");
    EXPECT_TRUE(managed(10));
    EXPECT_TRUE(managed(11));
}

TEST_F(LinuxServicesTest, LeavesOutTheServiceInWhichItRuns) {
    write(self, "/system.slice/ci.service", 3);
    put(10, 1, "/system.slice/ci.service");
    put(11, 1, "/system.slice/db.service");
    EXPECT_FALSE(managed(10));
    EXPECT_TRUE(managed(11));
}

TEST_F(LinuxServicesTest, KnowsTheUsersManagerFromTheFirstReading) {
    put(700, 1, manager + "/init.scope", 700);
    put(10, 700, typed);
    put(11, 700, manager + "/app.slice/sync.service");
    const Services::Reading reading = services.read(procs, now);
    EXPECT_THAT(reading.adopters, UnorderedElementsAre(1, 700));
    EXPECT_FALSE(reading.managed.contains(10));
    EXPECT_TRUE(reading.managed.contains(11));
}

TEST_F(LinuxServicesTest, TakesNoOtherUsersManagerForAnAdopter) {
    put(700, 1, "/user.slice/user-1001.slice/user@1001.service/init.scope", 700, 1001);
    EXPECT_THAT(services.read(procs, now).adopters, UnorderedElementsAre(1));
}

TEST_F(LinuxServicesTest, ManagesADaemonThatLeadsItsSession) {
    put(10, 1, typed, 10);
    EXPECT_TRUE(managed(10));
}

TEST_F(LinuxServicesTest, LeavesAToolsDetachedHelperUnmanaged) {
    put(10, 1, typed, 10).command = "node /home/me/.npm/_npx/0a/mcp-server";
    EXPECT_FALSE(managed(10));
}

TEST_F(LinuxServicesTest, LeavesALeaderWhoseAdoptionItSawUnmanaged) {
    put(50, 40, typed);
    put(10, 50, typed, 10);
    EXPECT_FALSE(managed(10));
    std::erase_if(procs, [](const Proc& proc) { return proc.id == 50; });
    procs.back().ppid = 1;
    EXPECT_FALSE(managed(10, now + 5));
    EXPECT_FALSE(managed(10, now + 500));
}

TEST_F(LinuxServicesTest, ManagesAnApplicationWhileItLives) {
    const std::string unit = manager + "/app.slice/app-gnome-editorless-77.scope";
    apps.entries["editorless"] = false;
    put(20, 30, unit);
    put(10, 1, unit);
    apps.members = {{20, "editorless"}};
    EXPECT_TRUE(managed(10));
    std::erase_if(procs, [](const Proc& proc) { return proc.id == 20; });
    EXPECT_FALSE(managed(10, now + 1));
}

TEST_F(LinuxServicesTest, ManagesOfATerminalOnlyItsOwnProcesses) {
    const std::string unit = manager + "/app.slice/app-org.kde.konsole@0a.service";
    apps.entries["org.kde.konsole"] = true;
    put(20, 1, unit);
    put(10, 1, unit);
    apps.members = {{20, "org.kde.konsole"}};
    EXPECT_TRUE(managed(20));
    EXPECT_FALSE(managed(10));
}

TEST_F(LinuxServicesTest, ManagesAUnitWhoseApplicationItDoesNotKnow) {
    put(10, 1, manager + "/app.slice/app-gnome-strange-77.scope");
    EXPECT_TRUE(managed(10));
}

TEST_F(LinuxServicesTest, ManagesFamiliesThatLiveAlone) {
    put(10, 1, typed).name = "tmux: server";
    put(11, 10, typed);
    put(12, 11, typed);
    const PidSet managed = services.read(procs, now).managed;
    EXPECT_TRUE(managed.contains(10));
    EXPECT_TRUE(managed.contains(11));
    EXPECT_TRUE(managed.contains(12));
}

TEST_F(LinuxServicesTest, DoesNotTakeAllForAFamilyWherePid1IsItsHead) {
    put(1, 0, "/", 1, 0).name = "sshd";
    put(10, 1, typed);
    EXPECT_FALSE(managed(10));
}

TEST_F(LinuxServicesTest, ManagesItselfAndItsAncestors) {
    put(800, 1, typed);
    put(10, 1, typed);
    const PidSet managed = services.read(procs, now).managed;
    EXPECT_TRUE(managed.contains(self));
    EXPECT_TRUE(managed.contains(800));
    EXPECT_FALSE(managed.contains(10));
}

TEST_F(LinuxServicesTest, HoldsASupervisorsOwnChildrenApartFromAdoptedOnes) {
    put(60, 800, typed);
    put(61, 60, typed);
    put(62, 60, typed);
    put(10, 62, typed);
    services.read(procs, now);
    std::erase_if(procs, [](const Proc& proc) { return proc.id == 62; });
    procs.back().ppid = 60;
    const Services::Reading reading = services.read(procs, now + 5);
    EXPECT_THAT(reading.adopters, UnorderedElementsAre(1, 60));
    EXPECT_TRUE(reading.managed.contains(61));
    EXPECT_FALSE(reading.managed.contains(10));
}

TEST_F(LinuxServicesTest, DoesNotTakeAnAdoptedProcessForTheFamilysOwn) {
    put(70, 1, typed).name = "tmux: server";
    put(60, 70, typed);
    put(62, 60, typed);
    put(10, 62, typed);
    services.read(procs, now);
    std::erase_if(procs, [](const Proc& proc) { return proc.id == 62; });
    procs.back().ppid = 60;
    const PidSet managed = services.read(procs, now + 5).managed;
    EXPECT_TRUE(managed.contains(60));
    EXPECT_FALSE(managed.contains(10));
}

TEST_F(LinuxServicesTest, KeepsAnAnswerForAMinute) {
    put(10, 1, typed);
    EXPECT_FALSE(managed(10));
    write(10, "/system.slice/db.service", 3);
    EXPECT_FALSE(managed(10, now + 59));
    EXPECT_TRUE(managed(10, now + 60));
}

TEST_F(LinuxServicesTest, JudgesAServiceThatIsNewWithinTheMinute) {
    put(10, 1, typed);
    EXPECT_FALSE(managed(10));
    put(11, 1, "/system.slice/db.service");
    EXPECT_TRUE(managed(11, now + 1));
    std::erase_if(procs, [](const Proc& proc) { return proc.id == 10; });
    put(10, 1, "/system.slice/db.service").startTicks = 5555;
    EXPECT_TRUE(managed(10, now + 2));
}

TEST_F(LinuxServicesTest, TakesWhatCannotBeReadForManaged) {
    put(10, 1, typed);
    std::filesystem::remove(root.path() / "10/cgroup");
    EXPECT_TRUE(managed(10));
}

TEST_F(LinuxServicesTest, KeepsWhatItReadWhereItCannotReadAgain) {
    put(10, 1, typed);
    EXPECT_FALSE(managed(10));
    std::filesystem::remove(root.path() / "10/cgroup");
    EXPECT_FALSE(managed(10, now + 100));
}

}  // namespace
}  // namespace ravik::platform

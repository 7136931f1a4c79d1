#include "Platform/Linux/ControlGroup.h"

#include <gtest/gtest.h>

namespace ravik::platform {
namespace {

constexpr const char* user = "/user.slice/user-1000.slice/user@1000.service";

std::string below(const std::string& rest) { return user + rest; }

TEST(ControlGroup, ReadsTheUnifiedPath) {
    EXPECT_EQ(ControlGroup::path("0::/user.slice/user-1000.slice/session-3.scope\n"),
              "/user.slice/user-1000.slice/session-3.scope");
}

TEST(ControlGroup, ReadsATextWithoutALastNewline) { EXPECT_EQ(ControlGroup::path("0::/init.scope"), "/init.scope"); }

TEST(ControlGroup, TakesSystemdsTreeWhereTheUnifiedOneIsEmpty) {
    EXPECT_EQ(ControlGroup::path("12:cpu,cpuacct:/\n1:name=systemd:/system.slice/cron.service\n0::/\n"),
              "/system.slice/cron.service");
}

TEST(ControlGroup, TakesTheLongestWhereNeitherSaysAnything) {
    EXPECT_EQ(ControlGroup::path("5:devices:/\n4:memory:/docker/0a1b\n0::/\n"), "/docker/0a1b");
}

TEST(ControlGroup, KeepsAColonInAName) {
    EXPECT_EQ(ControlGroup::path("0::/a.slice/dbus-:1.2-org.x.Y@0.service\n"), "/a.slice/dbus-:1.2-org.x.Y@0.service");
}

TEST(ControlGroup, CutsTheMarkOfARemovedGroup) {
    EXPECT_EQ(ControlGroup::path("0::/a.slice/b.scope (deleted)\n"), "/a.slice/b.scope");
}

TEST(ControlGroup, IsEmptyForATextThatIsNone) {
    EXPECT_EQ(ControlGroup::path(""), "");
    EXPECT_EQ(ControlGroup::path("no such file\n"), "");
}

TEST(ControlGroup, TakesTheDeepestUnitAboveAPlainFolder) {
    EXPECT_EQ(ControlGroup::unitPath("/system.slice/foo.service/worker/7"), "/system.slice/foo.service");
    EXPECT_EQ(ControlGroup::unit("/system.slice/foo.service/worker/7"), "foo.service");
    EXPECT_EQ(ControlGroup::unit("/"), "");
}

TEST(ControlGroup, KnowsTheUsersServiceManager) {
    EXPECT_TRUE(ControlGroup::isUserManager(below("/init.scope"), 1000));
    EXPECT_FALSE(ControlGroup::isUserManager(below("/init.scope"), 100));
    EXPECT_FALSE(ControlGroup::isUserManager("/init.scope", 1000));
}

TEST(ControlGroup, ManagesServicesAndTheManagerItself) {
    EXPECT_TRUE(ControlGroup::isManaged("/system.slice/cups.service", "/x.scope"));
    EXPECT_TRUE(ControlGroup::isManaged(below("/app.slice/syncthing.service"), "/x.scope"));
    EXPECT_TRUE(ControlGroup::isManaged("/init.scope", "/x.scope"));
    EXPECT_TRUE(ControlGroup::isManaged(below("/init.scope"), "/x.scope"));
}

TEST(ControlGroup, ManagesTheDesktopsSessionAndBackground) {
    EXPECT_TRUE(ControlGroup::isManaged(below("/session.slice/org.gnome.Shell@x11.service"), "/x.scope"));
    EXPECT_TRUE(ControlGroup::isManaged(below("/background.slice/run-r12.scope"), "/x.scope"));
}

TEST(ControlGroup, TakesAnApplicationsServiceForAnApplication) {
    const std::string path = below("/app.slice/app-org.kde.kate@1f2e.service");
    EXPECT_FALSE(ControlGroup::isManaged(path, "/x.scope"));
    EXPECT_TRUE(ControlGroup::isApplication(ControlGroup::unit(path)));
}

TEST(ControlGroup, LeavesASessionsScopeAndAPlainSliceUnmanaged) {
    EXPECT_FALSE(ControlGroup::isManaged("/user.slice/user-1000.slice/session-3.scope", "/x.scope"));
    EXPECT_FALSE(ControlGroup::isManaged(below("/app.slice"), "/x.scope"));
    EXPECT_FALSE(ControlGroup::isManaged("/", "/x.scope"));
    EXPECT_FALSE(ControlGroup::isManaged(below("/tmux-spawn-0a.scope"), "/x.scope"));
}

TEST(ControlGroup, LeavesOutTheServiceInWhichTheProgramLies) {
    EXPECT_FALSE(ControlGroup::isManaged("/system.slice/ci.service", "/system.slice/ci.service"));
    EXPECT_FALSE(ControlGroup::isManaged("/system.slice/ci.service/job", "/system.slice/ci.service/watch"));
    EXPECT_TRUE(ControlGroup::isManaged("/system.slice/ci2.service", "/system.slice/ci.service"));
}

class ContainerPath : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(ContainerPath, IsFound) {
    EXPECT_EQ(ControlGroup::containerPath(GetParam().first), GetParam().second);
    EXPECT_TRUE(ControlGroup::isManaged(GetParam().first, "/user.slice/user-1000.slice/session-3.scope"));
}

INSTANTIATE_TEST_SUITE_P(
    Engines, ContainerPath,
    testing::Values(
        std::pair{"/system.slice/docker-0a1b.scope", "/system.slice/docker-0a1b.scope"},
        std::pair{"/docker/0a1b/sub", "/docker/0a1b"},
        std::pair{"/machine.slice/libpod-9c.scope/container", "/machine.slice/libpod-9c.scope"},
        std::pair{"/user.slice/user-1000.slice/user@1000.service/user.slice/libpod-9c.scope/container",
                  "/user.slice/user-1000.slice/user@1000.service/user.slice/libpod-9c.scope"},
        std::pair{"/machine.slice/crio-77.scope", "/machine.slice/crio-77.scope"},
        std::pair{"/lxc.payload.web/system.slice/cron.service", "/lxc.payload.web"},
        std::pair{"/lxc/web/user.slice", "/lxc/web"},
        std::pair{"/machine.slice/systemd-nspawn@deb.service/payload", "/machine.slice/systemd-nspawn@deb.service"},
        std::pair{"/kubepods/burstable/pod1-2/0a1b", "/kubepods/burstable/pod1-2/0a1b"},
        std::pair{"/kubepods.slice/kubepods-burstable.slice/kubepods-burstable-pod1.slice/cri-containerd-0a.scope/x",
                  "/kubepods.slice/kubepods-burstable.slice/kubepods-burstable-pod1.slice/cri-containerd-0a.scope"}));

TEST(ControlGroup, LeavesOutTheContainerInWhichTheProgramLies) {
    EXPECT_FALSE(ControlGroup::isManaged("/docker/0a1b/a", "/docker/0a1b/b"));
    EXPECT_TRUE(ControlGroup::isManaged("/docker/0a1b", "/docker/77ff"));
    EXPECT_TRUE(ControlGroup::isManaged("/docker/0a1b/system.slice/db.service", "/docker/0a1b/b"));
}

TEST(ControlGroup, TakesAServiceWithAContainersNameForAService) {
    EXPECT_EQ(ControlGroup::containerPath(below("/app.slice/docker-desktop.service")), "");
}

TEST(ControlGroup, KnowsAnApplicationsUnit) {
    EXPECT_TRUE(ControlGroup::isApplication("app-gnome-firefox-812.scope"));
    EXPECT_TRUE(ControlGroup::isApplication("app-flatpak-org.x.Y-812.scope"));
    EXPECT_TRUE(ControlGroup::isApplication("snap.firefox.firefox-0a1b.scope"));
    EXPECT_FALSE(ControlGroup::isApplication("snap.docker.dockerd.service"));
    EXPECT_FALSE(ControlGroup::isApplication("app.slice"));
    EXPECT_FALSE(ControlGroup::isApplication("session-3.scope"));
}

}  // namespace
}  // namespace ravik::platform

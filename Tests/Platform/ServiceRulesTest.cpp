#include "Platform/Linux/ServiceRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ravik::platform {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

Proc proc(Pid id, Pid parent, const char* name = "node", const char* command = "/home/me/x") {
    Proc made;
    made.id = id;
    made.ppid = parent;
    made.name = name;
    made.command = command;
    made.started = 1000 + id;
    return made;
}

struct Named {
    const char* name;
    const char* command;
};

class LoneFamily : public testing::TestWithParam<Named> {};

TEST_P(LoneFamily, IsKnown) { EXPECT_TRUE(livesAloneOnPurpose(proc(5, 1, GetParam().name, GetParam().command))); }

INSTANTIATE_TEST_SUITE_P(
    Heads, LoneFamily,
    testing::Values(
        Named{"tmux: server", "tmux new-session -s work"}, Named{"screen", "SCREEN -S work"},
        Named{"zellij", "/home/me/.cargo/bin/zellij --server /run/user/1000/zellij/x"},
        Named{"mosh-server", "mosh-server new -s"}, Named{"sshd", "sshd: me@pts/0"},
        Named{"sshd-session", "sshd-session: me"}, Named{"ssh-agent", "ssh-agent -s"},
        Named{"gpg-agent", "/home/me/bin/gpg-agent --supervised"}, Named{"dbus-daemon", "dbus-daemon --fork"},
        Named{"conmon", "/opt/podman/conmon --api-version 1"},
        Named{"containerd-shim-runc-v2", "/opt/bin/containerd-shim-runc-v2 -namespace moby"},
        Named{"node", "/home/me/.vscode-server/bin/0a1b/node /home/me/.vscode-server/bin/0a1b/out/server-main.js"},
        Named{"node", "/home/me/.cursor-server/cli/servers/Stable-1/server/node out/server-main.js"},
        Named{"code-0a1b", "/home/me/.vscode-server/code-0a1b command-shell"},
        Named{"remote-dev-serv", "/home/me/.cache/JetBrains/RemoteDev/dist/x/bin/remote-dev-server run"},
        Named{"emacs", "/opt/emacs/bin/emacs --daemon"}, Named{"emacs-gtk", "emacs --bg-daemon=work"},
        Named{"java",
              "/opt/jdk/bin/java -cp gradle-launcher.jar org.gradle.launcher.daemon.bootstrap.GradleDaemon 8.5"},
        Named{"adb", "adb -L tcp:5037 fork-server server --reply-fd 4"}));

class NoLoneFamily : public testing::TestWithParam<Named> {};

TEST_P(NoLoneFamily, IsNotTaken) { EXPECT_FALSE(livesAloneOnPurpose(proc(5, 1, GetParam().name, GetParam().command))); }

INSTANTIATE_TEST_SUITE_P(Others, NoLoneFamily,
                         testing::Values(Named{"node", "node /home/me/.npm/_npx/0a/node_modules/.bin/mcp-server"},
                                         Named{"node", "node /home/me/.vscode-server/extensions/tool/mcp.js"},
                                         Named{"emacs", "emacs notes.org"}, Named{"adb", "adb logcat"},
                                         Named{"java", "java -jar server.jar"},
                                         Named{"tmuxinator", "ruby tmuxinator start"},
                                         Named{"node", "node /home/me/mcp-server/bin/run.js"}, Named{"x", ""}));

TEST(SessionOf, ReadsPastAnyName) {
    EXPECT_EQ(sessionOf("812 (a) b (c)) S 1 812 811 34816 900 4194304 1"), 811);
    EXPECT_EQ(sessionOf("7 (sh) R 1 7 6"), 6);
    EXPECT_EQ(sessionOf("7 (sh) R 1"), 0);
    EXPECT_EQ(sessionOf("nothing"), 0);
    EXPECT_EQ(sessionOf(""), 0);
}

TEST(Families, EndAtACycle) {
    const std::vector<Proc> procs{proc(2, 3), proc(3, 2), proc(4, 3)};
    const Families families(procs);
    EXPECT_THAT(families.tree(2), UnorderedElementsAre(2, 3, 4));
    EXPECT_THAT(families.ancestry(4), UnorderedElementsAre(4, 3, 2));
}

TEST(AdoptionWatch, SeesNothingOnFirstSight) {
    AdoptionWatch watch;
    watch.observe({proc(5, 1)});
    EXPECT_FALSE(watch.sawAdoption(5));
    EXPECT_THAT(watch.adopters(), IsEmpty());
}

TEST(AdoptionWatch, SeesAChangeOfParent) {
    AdoptionWatch watch;
    watch.observe({proc(2, 1), proc(4, 2), proc(5, 4)});
    watch.observe({proc(2, 1), proc(5, 2)});
    EXPECT_TRUE(watch.sawAdoption(5));
    EXPECT_FALSE(watch.sawAdoption(2));
    EXPECT_THAT(watch.adopters(), UnorderedElementsAre(2));
}

TEST(AdoptionWatch, RemembersWhatItSaw) {
    AdoptionWatch watch;
    watch.observe({proc(2, 1), proc(4, 2), proc(5, 4)});
    watch.observe({proc(2, 1), proc(5, 2)});
    watch.observe({proc(2, 1), proc(5, 2)});
    EXPECT_TRUE(watch.sawAdoption(5));
    EXPECT_THAT(watch.adopters(), UnorderedElementsAre(2));
}

TEST(AdoptionWatch, TakesAReusedPidForAnother) {
    AdoptionWatch watch;
    watch.observe({proc(5, 4)});
    Proc other = proc(5, 1);
    other.started += 60;
    watch.observe({other});
    EXPECT_FALSE(watch.sawAdoption(5));

    watch.observe({proc(2, 1), proc(6, 4)});
    watch.observe({proc(2, 1), proc(6, 2)});
    Proc successor = proc(2, 1);
    successor.startTicks = 77;
    watch.observe({successor, proc(6, 2)});
    EXPECT_THAT(watch.adopters(), IsEmpty());
}

}  // namespace
}  // namespace ravik::platform

#include "Core/Diagnosis/Classifier.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::linuxHost;
using fakes::macHost;
using fakes::Making;

namespace {

std::string groupOf(std::string_view command) { return Classifier::group(Making(7, command), macHost()); }

}  // namespace

TEST(Classifier, AnAppsHelpersBelongToTheOuterBundle) {
    EXPECT_EQ(groupOf("/Applications/Cursor.app/Contents/MacOS/Cursor"), "Cursor");
    EXPECT_EQ(groupOf("/Applications/Google Chrome.app/Contents/Frameworks/Google Chrome Framework.framework/Versions/"
                      "1/Helpers/Google Chrome Helper (Renderer).app/Contents/MacOS/Google Chrome Helper (Renderer) "
                      "--type=renderer"),
              "Google Chrome");
    EXPECT_EQ(groupOf("/usr/bin/open /Applications/Mail.app/x"), "Mail");
    EXPECT_EQ(groupOf("/Apps/Foo.Bar.app/x"), "Foo");
    EXPECT_EQ(groupOf("/Users/me/Foo.app"), "Foo");
    EXPECT_EQ(groupOf("/opt/Foo.application/bin/x"), "x");
}

TEST(Classifier, AnotherUsersProcessNeverJoinsTheOwnGroup) {
    const Proc cursor = Making(7, "/Applications/Cursor.app/Contents/MacOS/Cursor").uid(0);
    EXPECT_EQ(Classifier::group(cursor, macHost()), "[0] Cursor");
    EXPECT_EQ(Classifier::group(Making(7, "claude").uid(502), macHost()), "[502] Claude Code");
}

TEST(Classifier, ClaudeIsClaudeCode) {
    EXPECT_EQ(groupOf("/Users/me/.local/bin/claude --resume"), "Claude Code");
    EXPECT_EQ(groupOf("claude"), "Claude Code");
    EXPECT_EQ(groupOf("claude-desktop"), "claude-desktop");
}

TEST(Classifier, AnInterpreterIsNamedWithWhatItRuns) {
    EXPECT_EQ(groupOf("node /srv/app/server.js --port 3000"), "node: server.js");
    EXPECT_EQ(groupOf("npx tsx watch.ts"), "npx: tsx");
    EXPECT_EQ(groupOf("pnpm run dev"), "pnpm: dev");
    EXPECT_EQ(groupOf("node --max-old-space-size 4096 x.js"), "node: 4096");
    EXPECT_EQ(groupOf("python3 -m http.server"), "python3: http.server");
    EXPECT_EQ(groupOf("node"), "node");
    EXPECT_EQ(groupOf("npm run"), "npm");
    EXPECT_EQ(groupOf("/bin/bash /srv/x.sh"), "bash");
}

TEST(Classifier, ASplitStopsAfterSixteenBlanks) {
    // Sixteen pieces and a seventeenth that keeps its blanks.
    std::string command = "node";
    for (int option = 0; option < 15; ++option) command += " -x";
    EXPECT_EQ(groupOf(command + " a/b c/d"), "node: d");
    EXPECT_EQ(groupOf(command + " -y a"), "node");
    EXPECT_EQ(groupOf(command), "node");
}

TEST(Classifier, WithoutACommandTheNameIsTheGroup) {
    EXPECT_EQ(Classifier::group(Making(7, "").name("kernel_task"), macHost()), "kernel_task");
    EXPECT_EQ(Classifier::group(Making(7, "   ").name("blank"), macHost()), "blank");
    EXPECT_EQ(Classifier::group(Making(7, "").name(""), macHost()), "");
}

TEST(Classifier, OnLinuxTheDesktopApplicationComesFirst) {
    const Proc tab = Making(7, "/usr/lib/firefox/firefox -contentproc").uid(1000).app("Firefox");
    EXPECT_EQ(Classifier::group(tab, linuxHost()), "Firefox");
    EXPECT_EQ(Classifier::group(Making(7, "x").uid(0).app("Files"), linuxHost()), "[0] Files");
    EXPECT_EQ(Classifier::group(Making(7, "node /srv/a.js").uid(1000), linuxHost()), "node: a.js");
    EXPECT_EQ(Classifier::group(Making(7, "x").app("Files"), macHost()), "x");
}

TEST(Classifier, GroupsAddUpTheirMembersHeaviestFirst) {
    const std::vector<AppGroup> groups = Classifier::groups(
        {Making(1, "a").mb(10).cpu(60), Making(2, "b").mb(25), Making(3, "a").mb(20).cpu(70)}, macHost());
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].id, "a");
    EXPECT_EQ(groups[0].footprintBytes, 30 * fakes::MiB);
    EXPECT_EQ(groups[0].cpuPercent, 130);
    EXPECT_EQ(fakes::pids(groups[0].processes), (Pids{1, 3}));
    EXPECT_EQ(groups[1].id, "b");
}

TEST(Classifier, GroupsOfEqualSizeStandAsFirstSeen) {
    std::vector<Proc> procs;
    for (Pid pid = 0; pid < 20; ++pid) procs.push_back(Making(pid, "p" + std::to_string(20 - pid)).mb(5));
    procs.push_back(Making(99, "heavy").mb(6));
    const std::vector<AppGroup> groups = Classifier::groups(procs, macHost());
    ASSERT_EQ(groups.size(), 21u);
    EXPECT_EQ(groups[0].id, "heavy");
    for (std::size_t at = 1; at < groups.size(); ++at) EXPECT_EQ(groups[at].id, "p" + std::to_string(21 - at));
}

TEST(Classifier, RecognisesAToolByItsName) {
    const Host host = macHost();
    EXPECT_EQ(Classifier::agentTool(Making(7, "/Users/me/.local/bin/claude --resume"), host), "claude");
    EXPECT_EQ(Classifier::agentTool(Making(7, "codex").parent(1), host), "codex");
    EXPECT_EQ(Classifier::agentTool(Making(7, "").name("aider"), host), "aider");
    EXPECT_EQ(Classifier::agentTool(Making(7, " x").name("gemini"), host), "gemini");
    EXPECT_EQ(Classifier::agentTool(Making(7, "/Users/me/My Tools/claude"), host), std::nullopt);
    EXPECT_EQ(Classifier::agentTool(Making(7, "Claude"), host), std::nullopt);
}

TEST(Classifier, RecognisesAToolInstalledUnderItsVersion) {
    const std::string_view command = "/Users/me/.local/share/claude/versions/2.1.4 --print";
    Host host = macHost();
    EXPECT_EQ(Classifier::agentTool(Making(7, command).parent(600), host), "claude");
    EXPECT_EQ(Classifier::agentTool(Making(7, command).parent(1), host), std::nullopt);
    EXPECT_EQ(Classifier::agentTool(Making(7, "/opt/x/1.2 run").parent(600), host), std::nullopt);
    EXPECT_EQ(Classifier::agentTool(Making(7, "share/claude/2.1").parent(600), host), std::nullopt);

    host.adopters = {1, 600};
    EXPECT_EQ(Classifier::agentTool(Making(7, command).parent(600), host), std::nullopt);
}

TEST(Classifier, PartsOfMacOSLieInItsFolders) {
    const Host host = macHost();
    EXPECT_TRUE(Classifier::isMacOS(Making(7, "/usr/libexec/trustd"), host));
    EXPECT_TRUE(Classifier::isMacOS(Making(7, "/System/Library/x"), host));
    EXPECT_FALSE(Classifier::isMacOS(Making(7, "/System/Applications/Mail.app/Contents/MacOS/Mail"), host));
    EXPECT_FALSE(Classifier::isMacOS(Making(7, "/usr/bin/ruby"), host));
    EXPECT_FALSE(Classifier::isMacOS(Making(7, ""), host));
}

TEST(Classifier, PartsOfLinuxLieInItsFolders) {
    const Host host = linuxHost();
    for (const char* command : {"/usr/lib/systemd/systemd-logind", "/lib/systemd/systemd", "/usr/libexec/gvfsd",
                                "/usr/sbin/cupsd", "/sbin/init"}) {
        EXPECT_TRUE(Classifier::isMacOS(Making(7, command), host)) << command;
    }
    EXPECT_FALSE(Classifier::isMacOS(Making(7, "/usr/bin/python3"), host));
    EXPECT_FALSE(Classifier::isMacOS(Making(7, "/usr/lib/firefox/firefox"), host));
}

TEST(Classifier, LastPathComponentIgnoresTrailingSlashes) {
    EXPECT_EQ(Classifier::lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(Classifier::lastPathComponent("a//"), "a");
    EXPECT_EQ(Classifier::lastPathComponent("b"), "b");
    EXPECT_EQ(Classifier::lastPathComponent("/"), "/");
    EXPECT_EQ(Classifier::lastPathComponent(""), "");
}

}  // namespace ravik

#include <gmock/gmock.h>

#include <csignal>

#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/EndToEnd/Support.h"

namespace ravik::endtoend {
namespace {

using platform::forkChild;
using platform::readProc;
using platform::waitUntil;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Leftovers : public EndToEnd {
protected:
    void SetUp() override {
        EndToEnd::SetUp();
        home.storeShortPatience();
        node = home.idle("node");
        server = node + " " + (home.path() / "project/server.js").native();
        helper = node + " " + (home.path() / "_npx/mcp-server/index.js").native();
    }

    Json diagnose() const { return run(home, {"diagnose", "--json"}).json(); }

    /// A program that starts `command` and stays; `name` is what it is called.
    Pid parent(const std::string& name, const std::string& command) {
        return start({home.shell(name), "-c", command + " & wait"});
    }

    /// What is left of `command` once `name`, which started it, has been ended.
    Pid leftBy(const std::string& name, const std::string& command) {
        const Pid starter = parent(name, command);
        const Pid child = find(command);
        reaper.end(starter);
        return findAdopted(command) == child ? child : 0;
    }

    std::string node;
    std::string server;
    std::string helper;
};

TEST_F(Leftovers, OfAnEndedToolAreNamed) {
    const Pid tool = parent("claude", helper);
    const Pid child = find(helper);
    Json before = diagnose();
    EXPECT_EQ(finding(before, "leftovers"), Json());
    ASSERT_EQ(before["sessions"].size(), 1u);
    EXPECT_EQ(before["sessions"][0]["tool"], "claude");
    EXPECT_EQ(before["sessions"][0]["alive"], true);
    EXPECT_EQ(before["sessions"][0]["members"], Json({tool, child}));

    reaper.end(tool);
    findAdopted(helper);
    Json after = diagnose();
    EXPECT_EQ(after["orphans"], Json({child}));
    Json found = finding(after, "leftovers");
    EXPECT_THAT(found["title"], StartsWith("1 processes left behind by ended agent sessions hold "));
    EXPECT_EQ(found["evidence"], "no living parent · 1× node: index.js");
    EXPECT_EQ(found["remedy"], Json({{"kind", "killTrees"}, {"pids", {child}}}));
    EXPECT_EQ(found["startedBy"], "agent sessions that have ended");
    EXPECT_EQ(found["severity"], "warn");
    EXPECT_EQ(after["freeable"], Json({"leftovers"}));
    EXPECT_EQ(after["sessions"].back()["id"], -1);
    EXPECT_EQ(after["sessions"].back()["tool"], "ended sessions");
}

TEST_F(Leftovers, OfAClosedTerminalAreNamed) {
    const Pid child = leftBy("bash", server);
    Json diagnosis = diagnose();
    Json found = finding(diagnosis, fmt::format("orphan:{}", child));
    EXPECT_THAT(found["title"], StartsWith("node: server.js has run "));
    EXPECT_THAT(found["title"], HasSubstr(" with no terminal"));
    EXPECT_THAT(found["evidence"], StartsWith(fmt::format("pid {} · ", child)));
    EXPECT_THAT(found["evidence"], testing::EndsWith(" MB · " + server.substr(0, 80)));
    EXPECT_EQ(found["remedy"], Json({{"kind", "killTrees"}, {"pids", {child}}}));
    EXPECT_EQ(found["startedBy"], "a terminal that has closed");
    EXPECT_EQ(finding(diagnosis, "leftovers"), Json());
}

TEST_F(Leftovers, AreNotNamedBeforeTheirTime) {
    home.store({{"thresholds", nullptr}});
    const Pid child = leftBy("claude", helper);
    ASSERT_GT(child, 0);
    Json diagnosis = diagnose();
    EXPECT_EQ(diagnosis["orphans"], Json::array());
    EXPECT_EQ(diagnosis["freeable"], Json::array());
}

TEST_F(Leftovers, ADatabaseHasNoButton) {
    const Pid child = leftBy("bash", home.idle("postgres") + " -D " + (home.path() / "data").native());
    Json diagnosis = diagnose();
    EXPECT_EQ(finding(diagnosis, fmt::format("orphan:{}", child)), Json());
    Json found = finding(diagnosis, fmt::format("db:{}", child));
    EXPECT_EQ(found["severity"], "info");
    EXPECT_EQ(found["remedy"]["kind"], "advice");
    EXPECT_EQ(found["neverReason"], "a database server: force-killing one means crash recovery");
    EXPECT_EQ(diagnosis["freeable"], Json::array());

    const Result forced = run(home, {"end", std::to_string(child), "--yes"});
    EXPECT_EQ(forced.status, 1);
    EXPECT_EQ(forced.out, fmt::format("Left running: a database server (postgres, pid {}).\n", child));
    EXPECT_TRUE(lives(child));
}

TEST_F(Leftovers, AnInstallationIsNeverOffered) {
    const std::string npm = home.idle("npm") + " install left-pad";
    const Pid terminal =
        start({home.shell("bash"), "-c", fmt::format("{} -c '{} & wait' & wait", home.shell("sh"), npm)});
    const Pid child = find(npm);
    const Pid root = reaper.add(readProc(child)->ppid);
    ASSERT_NE(root, terminal);
    reaper.end(terminal);
    ASSERT_TRUE(waitUntil([&] { return readProc(root)->ppid == 1; }));

    Json diagnosis = diagnose();
    Json found = finding(diagnosis, fmt::format("orphan:{}", root));
    EXPECT_EQ(found["severity"], "info");
    EXPECT_EQ(found["remedy"], Json({{"kind", "advice"}, {"text", "Stop it from where it was started."}}));
    EXPECT_EQ(found["neverReason"], fmt::format("npm is installing packages (pid {})", child));
    EXPECT_EQ(found["gainBytes"], 0);
    EXPECT_EQ(run(home, {"free", "--yes"}).out, "Nothing is safe to end in one click.\n");
    EXPECT_EQ(run(home, {"fix", fmt::format("orphan:{}", root), "--yes"}).status, 1);
    EXPECT_TRUE(lives(root));
    EXPECT_TRUE(lives(child));
}

TEST_F(Leftovers, AKeptOneTurnsIntoAdvice) {
    const Pid child = leftBy("claude", helper);
    ASSERT_EQ(run(home, {"keep", "add", helper}).status, 0);
    Json diagnosis = diagnose();
    EXPECT_EQ(finding(diagnosis, "leftovers"), Json());
    Json found = finding(diagnosis, fmt::format("orphan:{}", child));
    EXPECT_EQ(found["severity"], "info");
    EXPECT_EQ(found["remedy"],
              Json({{"kind", "advice"}, {"text", "Remove it from Settings › Kept running to let Free end it again."}}));
    EXPECT_EQ(found["neverReason"], "on your Keep list — you asked Ravik to leave it running");
    EXPECT_EQ(run(home, {"free", "--yes"}).status, 0);
    EXPECT_TRUE(lives(child));
}

TEST_F(Leftovers, OfAToolThatEndedInAnOpenTerminalAreNamed) {
    // The terminal's shell leads the session and stays; the tool between it and the helper goes.
    const Pid terminal = reaper.add(forkChild([&] {
        setsid();
        const std::string shell = home.shell("bash");
        const std::string words =
            fmt::format("{} -c '{} & wait' & wait; exec {} prompt", home.shell("claude"), helper, node);
        execl(shell.c_str(), shell.c_str(), "-c", words.c_str(), nullptr);
    }));
    const Pid child = find(helper);
    const Pid tool = reaper.add(readProc(child)->ppid);
    ASSERT_EQ(readProc(tool)->ppid, terminal);
    reaper.end(tool);
    findAdopted(helper);
    ASSERT_TRUE(lives(terminal));
    ASSERT_EQ(getsid(child), terminal);
    EXPECT_EQ(finding(diagnose(), "leftovers")["remedy"], Json({{"kind", "killTrees"}, {"pids", {child}}}));
}

TEST_F(Leftovers, AreNoDaemons) {
    // Both lead a session of their own, as daemons do; tools start their helpers like that too.
    const auto detached = [&](const std::string& script) {
        const Pid starter = start({"/usr/bin/setsid", "--fork", node, script});
        waitpid(starter, nullptr, 0);
        return findAdopted(node + " " + script);
    };
    const Pid daemon = detached("/srv/daemon.js");
    const Pid detachedHelper = detached("/srv/_npx/tool.js");
    ASSERT_EQ(getsid(daemon), daemon);
    ASSERT_EQ(getsid(detachedHelper), detachedHelper);
    EXPECT_EQ(diagnose()["orphans"], Json({detachedHelper}));
}

TEST_F(Leftovers, OfASubreaperAreNamedByAWatchThatSawTheAdoption) {
    const Pid manager = reaper.add(forkChild([&] {
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        platform::startProgram({home.shell("claude"), "-c", helper + " & wait"});
        while (true) wait(nullptr) < 0 ? pause() : 0;
    }));
    const Pid child = find(helper);
    const Pid tool = reaper.add(readProc(child)->ppid);
    Running watch(home, {"watch", "--json", "--interval", "1"});
    ASSERT_TRUE(watch.says("\"takenAt\""));
    EXPECT_THAT(watch.out(), Not(HasSubstr("\"leftovers\"")));

    reaper.end(tool);
    ASSERT_TRUE(waitUntil([&] { return readProc(child)->ppid == manager; }));
    EXPECT_TRUE(watch.says("\"leftovers\"")) << watch.out();
    watch.signal(SIGTERM);
    EXPECT_EQ(watch.finish().status, 0);
    EXPECT_TRUE(lives(child));
}

TEST_F(Leftovers, AreNeverThisProgramOrItsAncestors) {
    // The command's own parent has been adopted and would pass for one.
    const std::string script = fmt::format("sleep 1; {}/bin/ravik diagnose --json > {}/own.json; echo > {}/done; {} 1",
                                           RAVIK_BINARY_DIR, home.path().native(), home.path().native(), node);
    const Pid starter = start({home.shell("bash"), "-c", fmt::format("{} -c '{}' & wait", home.shell("own"), script)},
                              home.environment());
    const Pid ancestor = find(home.shell("own") + " -c " + script);
    reaper.end(starter);
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(home.path() / "done"); }, 20));
    Json diagnosis = Json::parse(std::ifstream(home.path() / "own.json"), nullptr, false);
    find(node + " 1");
    ASSERT_TRUE(diagnosis.is_object());
    EXPECT_EQ(diagnosis["orphans"], Json::array());
    // Seen from elsewhere it is one.
    EXPECT_EQ(diagnose()["orphans"], Json({ancestor}));
}

}  // namespace
}  // namespace ravik::endtoend

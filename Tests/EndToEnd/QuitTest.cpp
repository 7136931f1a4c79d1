#include <gmock/gmock.h>

#include <csignal>

#include <fmt/format.h>

#include "Platform/Linux/XWindowOwners.h"
#include "Tests/EndToEnd/Support.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::endtoend {
namespace {

using platform::OwnWindowManager;
using platform::OwnXServer;
using platform::waitUntil;
using testing::MatchesRegex;

/// `ravik quit` on an X server of the test's own.
class Quit : public EndToEnd {
protected:
    void SetUp() override {
        EndToEnd::SetUp();
        server = std::make_unique<OwnXServer>();
        ASSERT_FALSE(server->display().empty());
        manager = std::make_unique<OwnWindowManager>(*server);
        ASSERT_TRUE(manager->started());
        home.add(server->variable());
    }
    void TearDown() override {
        reaper.endAll();
        manager.reset();
        server.reset();
        EndToEnd::TearDown();
    }
    /// Starts a program and waits for its window.
    Pid show(const std::vector<std::string>& words) {
        const Pid pid = start(words, home.environment());
        EXPECT_TRUE(waitUntil([&] { return platform::xWindowOwners(server->display()).contains(pid); }))
            << words.front();
        return pid;
    }
    Pid window(const std::string& name, const std::string& onClose, const std::string& more = "") {
        std::vector<std::string> words{home.copy(RAVIK_BINARY_DIR "/bin/ravik-test-window", name), server->display(),
                                       onClose};
        if (!more.empty()) words.push_back(more);
        return show(words);
    }

    std::unique_ptr<OwnXServer> server;
    std::unique_ptr<OwnWindowManager> manager;
};

TEST_F(Quit, AsksATerminalToClose) {
    const Pid xterm = show({"xterm", "-e", home.idle("prompt")});
    const Pid inside = find(home.idle("prompt"));
    const Result result = run(home, {"quit", "XTerm", "--yes"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, MatchesRegex("XTerm quit · about [0-9]+\u00a0MB\n"));
    EXPECT_FALSE(lives(xterm));
    EXPECT_TRUE(waitUntil([&] { return !lives(inside); }));
    Json remedy = home.logLines("remedy").at(0);
    EXPECT_EQ(remedy["finding"], "app:XTerm");
    EXPECT_EQ(remedy["quit"], true);
    EXPECT_EQ(remedy["survivors"], Json::array());
    EXPECT_EQ(home.settings()["lastFix"]["line"].get<std::string>() + "\n", result.out);
}

TEST_F(Quit, AsksOnlyAfterAYes) {
    const Pid app = window("painter", "quit");
    Typed quit(home, {"quit", "painter"});
    ASSERT_TRUE(quit.shows("Quit painter? [y/N] ")) << quit.screen();
    EXPECT_TRUE(quit.shows("Only your own painter, never an automation copy."));
    quit.type("\n");
    EXPECT_EQ(quit.finish().status, 1);
    EXPECT_TRUE(lives(app));
    EXPECT_TRUE(home.logLines("remedy").empty());
}

TEST_F(Quit, SaysWhenAPromptStands) {
    const Pid app = window("painter", "refuse");
    const Pid other = window("painter", "quit");
    const Result result = run(home, {"quit", "painter", "--yes"}, 60);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "painter did not quit. Check it for a prompt.\n");
    EXPECT_GE(result.seconds, 30);
    EXPECT_LT(result.seconds, 36);
    EXPECT_TRUE(lives(app));
    EXPECT_FALSE(lives(other));
    Json remedy = home.logLines("remedy").at(0);
    EXPECT_EQ(remedy["refused"], "painter did not quit. Check it for a prompt.");
    EXPECT_EQ(remedy["quit"], false);
    EXPECT_FALSE(home.settings().contains("lastFix"));
}

TEST_F(Quit, LeavesAutomationCopiesAlone) {
    const Pid copy = window("painter", "quit", "--user-data-dir=/home/ada/puppeteer_profile");
    // With nothing else of that name there is nothing to quit.
    const Result none = run(home, {"quit", "painter", "--yes"});
    EXPECT_EQ(none.status, 0);
    EXPECT_LT(none.seconds, 5);
    EXPECT_TRUE(lives(copy));

    const Pid own = window("painter", "quit", "--user-data-dir=/home/ada/profile");
    EXPECT_EQ(run(home, {"quit", "painter", "--yes"}).status, 0);
    EXPECT_FALSE(lives(own));
    EXPECT_TRUE(lives(copy));
}

TEST_F(Quit, ContinuesAStoppedApplicationFirst) {
    const Pid app = window("painter", "quit");
    const Pid copy = window("painter", "quit", "--user-data-dir=/home/ada/puppeteer_profile");
    kill(app, SIGSTOP);
    kill(copy, SIGSTOP);
    const Result result = run(home, {"quit", "painter", "--yes"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_LT(result.seconds, 10);
    EXPECT_FALSE(lives(app));
    EXPECT_TRUE(lives(copy));
}

TEST_F(Quit, OfANameThatNothingHasIsDoneAtOnce) {
    const Pid app = window("painter", "quit");
    const Result result = run(home, {"quit", "paint", "--yes"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "paint quit · about 0\u00a0MB\n");
    EXPECT_LT(result.seconds, 5);
    EXPECT_TRUE(lives(app));
}

}  // namespace
}  // namespace ravik::endtoend

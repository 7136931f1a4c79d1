#include <gmock/gmock.h>

#include <fstream>

#include <fmt/format.h>
#include <sys/stat.h>

#include "Tests/EndToEnd/Support.h"

namespace ravik::endtoend {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::string_view prompt = "[y/N] ";

/// One leftover server that waits for a word on a pipe and then does what the test wants.
class Question : public EndToEnd {
protected:
    void SetUp() override {
        EndToEnd::SetUp();
        home.storeShortPatience();
        git = home.idle("git");
        pipe = (home.path() / "pipe").native();
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    }

    /// The leftover, whose shell reads a word and then runs `then`.
    void leave(const std::string& then) {
        const std::string script = fmt::format("read word < {}; {}", pipe, then);
        const std::string node = home.shell("node");
        const Pid terminal = start({home.shell("bash"), "-c", fmt::format("{} -c \"{}\" & wait", node, script)});
        leftover = find(node + " -c " + script);
        reaper.end(terminal);
        findAdopted(node + " -c " + script);
        id = fmt::format("orphan:{}", leftover);
    }
    void change() const { std::ofstream(pipe) << "now\n"; }

    void expectNo(const Result& result) {
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(lives(leftover));
        auto asked = home.logLines("confirm");
        ASSERT_EQ(asked.size(), 1u);
        EXPECT_EQ(asked[0]["confirmed"], false);
        auto batch = home.logLines("fixAll");
        ASSERT_EQ(batch.size(), 1u);
        EXPECT_EQ(batch[0]["findings"], Json({id}));
        EXPECT_EQ(batch[0]["cancelled"], true);
        EXPECT_FALSE(batch[0].contains("survivors"));
        EXPECT_TRUE(home.logLines("remedy").empty());
        EXPECT_FALSE(home.settings().contains("lastFix"));
    }
    void expectNoTo(std::string_view keys) {
        leave("exit");
        Typed free(home, {"free"});
        ASSERT_TRUE(free.shows(prompt)) << free.screen();
        EXPECT_TRUE(lives(leftover));
        free.type(keys);
        expectNo(free.finish());
    }
    void expectRefusal(const Result& result, Pid gitPid) {
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.out, HasSubstr("0 ended · 0 survivors · "));
        EXPECT_THAT(result.out, HasSubstr(" · 1 left running"));
        EXPECT_TRUE(lives(leftover));
        EXPECT_TRUE(lives(gitPid));
        const std::string why = fmt::format("a git operation in progress (git, pid {})", gitPid);
        auto remedies = home.logLines("remedy");
        ASSERT_EQ(remedies.size(), 1u);
        EXPECT_EQ(remedies[0]["refused"], why);
        EXPECT_FALSE(remedies[0].contains("survivors"));
        auto batch = home.logLines("fixAll");
        ASSERT_EQ(batch.size(), 1u);
        EXPECT_EQ(batch[0]["refused"], Json({why}));
        EXPECT_EQ(batch[0]["survivors"], Json::array());
    }

    std::string git;
    std::string pipe;
    std::string id;
    Pid leftover = 0;
};

TEST_F(Question, NamesWhatEndsAndGoesAheadAfterY) {
    leave("exit");
    Typed free(home, {"free"});
    ASSERT_TRUE(free.shows(prompt)) << free.screen();
    EXPECT_THAT(free.screen(), StartsWith("End 1 program?\r\nFrees "));
    EXPECT_THAT(free.screen(), HasSubstr("Will end"));
    EXPECT_THAT(free.screen(), EndsWith("Ravik checks each one is still the same program, asks it to stop, and tells "
                                        "you if anything doesn't.\r\n\r\nEnd 1 program? [y/N] "));
    free.type("y\n");
    const Result result = free.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("1 ended · 0 survivors · "));
    EXPECT_FALSE(lives(leftover));
    EXPECT_EQ(home.logLines("confirm").at(0)["confirmed"], true);
}

TEST_F(Question, TakesReturnAloneForNo) { expectNoTo("\n"); }

TEST_F(Question, TakesTheEndOfInputForNo) { expectNoTo("\x04"); }

TEST_F(Question, TakesCtrlCForNo) { expectNoTo("\x03"); }

TEST_F(Question, TakesAnythingElseForNo) { expectNoTo("Y es\n"); }

TEST_F(Question, WithNobodyToAskEndsNothing) {
    leave("exit");
    const Result result = run(home, {"free"});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "Nothing was ended: there is nobody to ask here; --yes answers for a script.\n");
    expectNo(result);
}

TEST_F(Question, WithNobodyToAskIsCancelledInJson) {
    leave("exit");
    const Result result = run(home, {"free", "--json"});
    EXPECT_EQ(result.json(), Json({{"outcome", "cancelled"}, {"survivors", Json::array()}, {"line", nullptr}}));
    expectNo(result);
}

TEST_F(Question, AboutATreeThatForksAGitMeanwhileIsRefused) {
    leave(git + " push & wait");
    Typed free(home, {"free"});
    ASSERT_TRUE(free.shows(prompt)) << free.screen();
    change();
    const Pid added = find(git + " push");
    ASSERT_NE(added, leftover);
    free.type("y\n");
    expectRefusal(free.finish(), added);
}

TEST_F(Question, AboutATreeThatBecomesAGitMeanwhileIsRefused) {
    leave("exec " + git + " push");
    Typed free(home, {"free"});
    ASSERT_TRUE(free.shows(prompt)) << free.screen();
    change();
    ASSERT_EQ(find(git + " push"), leftover);
    free.type("yes\n");
    expectRefusal(free.finish(), leftover);
}

TEST_F(Question, AboutOneProcessThatForksAGitMeanwhileIsRefused) {
    leave(git + " push & wait");
    Typed end(home, {"end", std::to_string(leftover)});
    ASSERT_TRUE(end.shows(prompt)) << end.screen();
    change();
    const Pid added = find(git + " push");
    end.type("y\n");
    const Result result = end.finish();
    EXPECT_EQ(result.status, 1);
    const std::string why = fmt::format("a git operation in progress (git, pid {})", added);
    EXPECT_THAT(result.out, HasSubstr("Left running: " + why + ".\r\n"));
    EXPECT_TRUE(lives(leftover));
    EXPECT_TRUE(lives(added));
    EXPECT_EQ(home.logLines("kill").at(0)["refused"], why);
}

}  // namespace
}  // namespace ravik::endtoend

#include "Core/Diagnosis/Rx.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace ravik {

TEST(Rx, TakesTheFirstMatchFromTheLeft) {
    EXPECT_EQ(Rx::appBundle().find("/A/One.app/x/Two.app/y"), "/One.app/");
    EXPECT_EQ(Rx::appBundle().find("/A/One.app"), "/One.app");
    EXPECT_EQ(Rx::appBundle().find("/A/One.application/x"), std::nullopt);
    EXPECT_EQ(Rx::appBundle().find("/.app/x"), std::nullopt);
}

TEST(Rx, InsideAppNeedsASlashBehindTheBundle) {
    EXPECT_TRUE(Rx::insideApp().matches("/Users/me/Foo.app/Contents/MacOS/x"));
    EXPECT_FALSE(Rx::insideApp().matches("/Users/me/Foo.app"));
}

TEST(Rx, VersionStandsAtTheStart) {
    EXPECT_TRUE(Rx::version().matches("2.1.4"));
    EXPECT_TRUE(Rx::version().matches("1.2"));
    EXPECT_FALSE(Rx::version().matches("v2.1"));
    EXPECT_FALSE(Rx::version().matches("2"));
}

TEST(Rx, KnowsWhatAgentSessionsLeave) {
    for (const char* command :
         {"/a/mcp-server", "/h/.npm/_npx/1/x", "node playwright", "chrome-devtools-x", "/h/.claude/hooks/x"}) {
        EXPECT_TRUE(Rx::agentLeftover().matches(command)) << command;
    }
    EXPECT_FALSE(Rx::agentLeftover().matches("/Users/me/bin/backup.sh"));
    EXPECT_FALSE(Rx::agentLeftover().matches("MCP"));
    EXPECT_FALSE(Rx::agentLeftover().matches("/h/claude/x"));
}

TEST(Rx, KnowsThrowAwayProfiles) {
    const Regex& profile = Rx::automationProfile();
    EXPECT_TRUE(profile.matches("chrome --user-data-dir=/var/folders/xy/T/puppeteer_dev_profile"));
    EXPECT_TRUE(profile.matches("chrome --user-data-dir=/tmp/x --headless"));
    EXPECT_TRUE(profile.matches("chrome --user-data-dir=/home/me --user-data-dir=/tmp/x"));
    EXPECT_FALSE(profile.matches("chrome --user-data-dir=/Users/me/Library/Application Support/Google/Chrome"));
    EXPECT_FALSE(profile.matches("chrome --user-data-dir=/home/me /tmp/x"));
    EXPECT_FALSE(profile.matches("chrome /tmp/x"));
}

TEST(Rx, AFlagRepeatedWithoutEndCostsNoMoreThanItsLength) {
    std::string command = "chrome ";
    while (command.size() < 2'000'000) command += "--user-data-dir=";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(Rx::automationProfile().matches(command));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST(Rx, BrokenBytesMatchNothingAndHideNothing) {
    EXPECT_EQ(Rx::appBundle().find("\xff\xfe /A/One.app/x"), "/One.app/");
    EXPECT_EQ(Rx::appBundle().find("/A/O\xffne.app/x"), std::nullopt);
    EXPECT_TRUE(Rx::agentLeftover().matches("\xff mcp"));
}

TEST(Rx, AnswersSeveralThreadsAtOnce) {
    int hits[4] = {};
    {
        std::vector<std::jthread> threads;
        for (int& count : hits) {
            threads.emplace_back([&count] {
                for (int turn = 0; turn < 1000; ++turn) count += Rx::appBundle().find("/A/One.app/x") == "/One.app/";
            });
        }
    }
    for (const int count : hits) EXPECT_EQ(count, 1000);
}

TEST(RxDeathTest, APatternThatDoesNotCompileEndsTheProgram) { EXPECT_DEATH(Regex("("), "missing closing parenthesis"); }

}  // namespace ravik

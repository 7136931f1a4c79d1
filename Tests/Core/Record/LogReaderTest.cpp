#include "Core/Record/LogReader.h"

#include <array>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Record/ByteSearch.h"
#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

constexpr std::array<std::string_view, 2> kinds{"shadowDecision", "shadowOutcome"};

struct LogReaderTest : testing::Test {
    LogFolder folder;
    std::vector<std::string> targets(const LogReader::Days& days = {}) {
        std::vector<std::string> result;
        for (const auto& line : LogReader::lines(folder.logs, kinds, days)) result.push_back(line.value("target", "?"));
        return result;
    }
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(LogReaderTest, AMissingFolderHasNoLines) { EXPECT_TRUE(LogReader::lines(folder.root / "none", kinds).empty()); }

TEST_F(LogReaderTest, LinesComeInTheOrderOfTheDays) {
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"b\"}\n", "2026-03-02");
    folder.append(
        "{\"kind\":\"shadowOutcome\",\"target\":\"a\"}\n{\"kind\":\"tick\"}\n\n"
        "{\"kind\":\"shadowDecision\",\"target\":\"a2\"}\n",
        "2026-03-01");
    LogFolder::put(folder.logs / "2026-03-03.txt", "{\"kind\":\"shadowDecision\",\"target\":\"c\"}\n");
    EXPECT_EQ(targets(), (Names{"a", "a2", "b"}));
}

TEST_F(LogReaderTest, OnlyTheDaysAskedForAreRead) {
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"a\"}\n", "2026-03-01");
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"b\"}\n", "2026-03-02");
    EXPECT_EQ(targets({{"2026-03-02"}}), Names{"b"});
    EXPECT_EQ(targets(std::set<std::string>()), Names{});
}

TEST_F(LogReaderTest, TheKindOfTheLineDecidesHoweverItIsWritten) {
    folder.append(
        "{\"kind\": \"shadowDecision\",\"target\":\"loose\"}\n"
        "{\"kind\":\"keep\",\"target\":\"named\",\"cmd\":\"shadowOutcome\"}\n");
    EXPECT_EQ(targets(), Names{"loose"});
}

TEST_F(LogReaderTest, OfTwoKindsTheLastOneCounts) {
    folder.append(
        "{\"kind\":\"shadowDecision\",\"target\":\"first\",\"kind\":\"keep\"}\n"
        "{\"kind\":\"keep\",\"target\":\"last\",\"kind\":\"shadowDecision\"}\n");
    EXPECT_EQ(targets(), Names{"last"});
}

TEST_F(LogReaderTest, ANumberBeyond64BitsIsARealOne) {
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"a\",\"gainMB\":18446744073709551616,\"pids\":2}\n");
    const auto lines = LogReader::lines(folder.logs, kinds);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["gainMB"], 18446744073709551616.0);
    EXPECT_EQ(lines[0]["pids"], 2);
}

TEST_F(LogReaderTest, ADeviceIsNoLog) {
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"a\"}\n");
    std::filesystem::create_symlink("/dev/zero", folder.logFile("2026-03-02"));
    EXPECT_EQ(targets(), Names{"a"});
}

TEST_F(LogReaderTest, WhatIsNoObjectIsPassedOver) {
    folder.append(
        "[\"shadowDecision\"]\n\"shadowDecision\"\n{\"kind\":\"shadowDecision\"\nshadowDecision\n"
        "{\"kind\":\"shadowDecision\",\"x\":\"\xff\"}\n{\"kind\":\"shadowDecision\",\"target\":\"ok\"}\n");
    EXPECT_EQ(targets(), Names{"ok"});
}

TEST_F(LogReaderTest, ALastLineWithoutItsLineFeedCountsIfItIsWhole) {
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"whole\"}");
    folder.append("{\"kind\":\"shadowDecision\",\"target\":\"ha", "2026-03-02");
    EXPECT_EQ(targets(), Names{"whole"});
}

TEST_F(LogReaderTest, LinesAcrossChunksAreWhole) {
    const int count = 30000;
    std::string log;
    for (int n = 0; n < count; ++n) {
        log += "{\"kind\":\"tick\",\"pad\":\"" + std::string(static_cast<std::size_t>(n % 97), 'x') + "\"}\n";
        if (n % 3 == 0) log += "{\"kind\":\"shadowOutcome\",\"target\":\"" + std::to_string(n) + "\"}\n";
    }
    ASSERT_GT(log.size(), 2u << 20);
    folder.append(log);
    const auto found = targets();
    ASSERT_EQ(found.size(), static_cast<std::size_t>(count / 3));
    for (std::size_t at = 0; at < found.size(); ++at) ASSERT_EQ(found[at], std::to_string(3 * at));
}

TEST_F(LogReaderTest, ValuesKeepTheirTypes) {
    folder.append(
        R"({"kind":"shadowOutcome","i":-3,"u":18446744073709551615,"d":1.5,"b":true,"n":null,"a":[1,{"x":"é\n"}]})"
        "\n");
    const auto lines = LogReader::lines(folder.logs, kinds);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(
        lines[0],
        nlohmann::json::parse(
            R"({"kind":"shadowOutcome","i":-3,"u":18446744073709551615,"d":1.5,"b":true,"n":null,"a":[1,{"x":"é\n"}]})"));
    EXPECT_TRUE(lines[0]["i"].is_number_integer());
    EXPECT_TRUE(lines[0]["d"].is_number_float());
}

TEST(WordLines, FindsEachLineOnceWhateverItHolds) {
    const std::array<std::string_view, 3> words{"ab", "b", "zz"};
    WordLines lines("x\nabab b\nno\n\nzz\nb", words);
    EXPECT_EQ(lines.next(), "abab b");
    EXPECT_EQ(lines.next(), "zz");
    EXPECT_EQ(lines.next(), "b");
    EXPECT_EQ(lines.next().data(), nullptr);
    WordLines none("", words);
    EXPECT_EQ(none.next().data(), nullptr);
}

}  // namespace ravik

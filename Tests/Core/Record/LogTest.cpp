#include "Core/Record/Log.h"

#include <atomic>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Core/Record/LogScene.h"

namespace ravik {

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

using Logging = LogScene;

constexpr Time day = 86400;

}  // namespace

TEST_F(Logging, LineIsCompactAndHoldsTheThreeKeys) {
    const std::string session = Log::newSession();
    {
        auto options = plain();
        options.session = session;
        Log log(options);
        log.event("launch", {{"version", "1.0"}});
        log.event("panel");
        EXPECT_EQ(log.session(), session);
        EXPECT_EQ(log.folder(), folder);
    }
    const auto lines = linesOf(today());
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(json::parse(lines[0]),
              (json{{"t", "2026-03-01T09:30:15Z"}, {"kind", "launch"}, {"session", session}, {"version", "1.0"}}));
    EXPECT_NE(lines[0].find(R"("kind":"launch")"), std::string::npos);
    EXPECT_EQ(lines[0].find(' '), std::string::npos);
    EXPECT_EQ(json::parse(lines[1]), (json{{"t", "2026-03-01T09:30:15Z"}, {"kind", "panel"}, {"session", session}}));
}

TEST_F(Logging, SessionIsEightUpperCaseDigits) {
    const std::string session = Log::newSession();
    EXPECT_EQ(session.size(), 8u);
    EXPECT_EQ(session.find_first_not_of("0123456789ABCDEF"), std::string::npos);
    EXPECT_NE(Log::newSession(), session);
}

TEST_F(Logging, FieldOfABuiltInNameReplacesIt) {
    Log(plain()).event("tick", {{"t", 5}, {"kind", "other"}, {"session", "mine"}});
    EXPECT_EQ(json::parse(linesOf(today()).at(0)), (json{{"t", 5}, {"kind", "other"}, {"session", "mine"}}));
}

TEST_F(Logging, DropsWhatJsonCannotCarry) {
    {
        Log log(plain());
        log.event("bad", {{"n", std::nan("")}});
        log.event("bad", {{"n", json::array({1, json{{"deep", std::numeric_limits<double>::infinity()}}})}});
        log.event("bad", json::array({1, 2}));
        log.event("bad", {{"n", json::binary({1, 2})}});
        log.event("good", {{"n", 1.5}});
    }
    const auto lines = linesOf(today());
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(json::parse(lines[0]).at("n"), 1.5);
}

TEST_F(Logging, RepairsBytesThatAreNoText) {
    Log(plain()).event("keep", {{"cmd", "a\xff\xc3 b\n\x01"}});
    EXPECT_EQ(json::parse(linesOf(today()).at(0)).at("cmd"), "a\uFFFD\uFFFD b\n\x01");
}

TEST_F(Logging, MidnightOpensTheNextDaysFile) {
    Log log(plain());
    now = localTime(2026, 3, 1, 23, 59, 59);
    log.event("first");
    log.flush();
    now = now + 1;
    log.event("second");
    log.flush();
    EXPECT_EQ(kindsOf("2026-03-01.jsonl"), std::vector<std::string>{"first"});
    EXPECT_EQ(kindsOf("2026-03-02.jsonl"), std::vector<std::string>{"second"});
    EXPECT_EQ(openDescriptorsTo(folder / "2026-03-01.jsonl"), 0);
    EXPECT_EQ(openDescriptorsTo(folder / "2026-03-02.jsonl"), 1);
}

TEST_F(Logging, DeletesWhatIsOlderThanFourteenDaysAndNothingYounger) {
    fs::create_directories(folder / "old-folder");
    for (const char* name : {"2026-02-15.jsonl", "2026-02-16.jsonl", "notes.txt", "old-folder/inside", "undated"}) {
        std::ofstream(folder / name) << "x\n";
    }
    std::map<std::string, Time> created{{"2026-02-15.jsonl", now - 14 * day - 0.001},
                                        {"2026-02-16.jsonl", now - 14 * day},
                                        {"notes.txt", now - 15 * day},
                                        {"old-folder", now - 20 * day}};
    auto options = plain();
    options.createdAt = [&](const fs::path& path) -> std::optional<Time> {
        const auto found = created.find(path.filename());
        if (found == created.end()) return {};
        return found->second;
    };
    Log(options).event("launch");
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"2026-02-16.jsonl", today(), "undated"}));
}

TEST_F(Logging, PrunesAgainOnlyWhenTheDayChanges) {
    std::map<std::string, Time> created;
    auto options = plain();
    options.createdAt = [&](const fs::path& path) -> std::optional<Time> {
        return path.filename() == "late" ? now - 15 * day : now.load();
    };
    Log log(options);
    log.event("first");
    log.flush();
    std::ofstream(folder / "late") << "x";
    log.event("second");
    log.flush();
    EXPECT_TRUE(fs::exists(folder / "late"));
    now = now + day;
    log.event("third");
    log.flush();
    EXPECT_FALSE(fs::exists(folder / "late"));
}

TEST_F(Logging, KeepsEveryFileWhereNobodyTellsItsAge) {
    fs::create_directories(folder);
    std::ofstream(folder / "2020-01-01.jsonl") << "x\n";
    Log(plain()).event("launch");
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"2020-01-01.jsonl", today()}));
}

TEST_F(Logging, FormerFolderMovesWhenItIsTheOnlyOne) {
    fs::create_directories(former);
    std::ofstream(former / "2026-02-27.jsonl") << "{\"kind\":\"launch\"}\n";
    std::ofstream(former / today()) << "{\"kind\":\"earlier\"}\n";
    Log(plain()).event("launch");
    EXPECT_FALSE(fs::exists(former));
    EXPECT_EQ(kindsOf("2026-02-27.jsonl"), std::vector<std::string>{"launch"});
    EXPECT_EQ(kindsOf(today()), (std::vector<std::string>{"earlier", "launch"}));
}

TEST_F(Logging, FormerFolderIsLeftAloneBesideThePresentOne) {
    fs::create_directories(former);
    fs::create_directories(folder);
    std::ofstream(former / "2026-02-27.jsonl") << "{}\n";
    Log(plain()).event("launch");
    EXPECT_EQ(namesIn(former), std::vector<std::string>{"2026-02-27.jsonl"});
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{today()});
}

TEST_F(Logging, UnderATestHostNothingIsMade) {
    auto options = plain();
    options.enabled = false;
    fs::create_directories(former);
    {
        Log log(options);
        log.event("launch");
        log.flush();
    }
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_TRUE(fs::exists(former));
}

TEST_F(Logging, FolderIsMadeForItsOwnerAlone) {
    Log(plain()).event("launch");
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(folder / today()).permissions() & fs::perms::owner_all,
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Logging, LinesOfManyThreadsStayWholeAndInTheirOrder) {
    constexpr int threads = 8;
    constexpr int each = 500;
    {
        Log log(plain());
        std::vector<std::thread> writers;
        for (int writer = 0; writer < threads; ++writer) {
            writers.emplace_back([&log, writer] {
                for (int n = 0; n < each; ++n) log.event("tick", {{"writer", writer}, {"n", n}});
            });
        }
        for (auto& writer : writers) writer.join();
    }
    std::map<int, int> next;
    for (const auto& line : linesOf(today())) {
        const json value = json::parse(line);
        EXPECT_EQ(value.at("n"), next[value.at("writer")]++);
    }
    EXPECT_EQ(next.size(), static_cast<std::size_t>(threads));
    for (const auto& [writer, count] : next) EXPECT_EQ(count, each) << writer;
}

TEST_F(Logging, FlushWaitsForWhatWasAddedBefore) {
    Log log(plain());
    for (int n = 1; n <= 50; ++n) {
        log.event("tick");
        log.flush();
        ASSERT_EQ(linesOf(today()).size(), static_cast<std::size_t>(n));
    }
}

}  // namespace ravik

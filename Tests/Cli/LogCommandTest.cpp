#include <fstream>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

class LogCommand : public CommandTest {
protected:
    LogCommand() { std::filesystem::create_directories(folder()); }
    std::filesystem::path folder() const { return logFolder.log.folder(); }
    void append(const std::string& day, const std::string& text) const {
        std::ofstream(folder() / (day + ".jsonl"), std::ios::app) << text;
    }
};

TEST_F(LogCommand, PrintsTheLinesOfAllDaysAsTheyStand) {
    append("2026-03-02", "{\"kind\":\"b\"}\n");
    append("2026-03-01", "{\"kind\":\"a\",  \"x\":1}\n");
    EXPECT_EQ(call({"log"}).out, "{\"kind\":\"a\",  \"x\":1}\n{\"kind\":\"b\"}\n");
}

TEST_F(LogCommand, SteersNoTerminal) {
    append("2026-03-01", "{\"cmd\":\"\u009b31m\u202e\"}\n");
    EXPECT_EQ(call({"log"}).out, "{\"cmd\":\"\\u009b31m\\u202e\"}\n");
    computer.fakeTerminal.interactive = false;
    EXPECT_EQ(call({"log"}).out, "{\"cmd\":\"\u009b31m\u202e\"}\n");
}

TEST_F(LogCommand, KeepsToTheKindsAskedFor) {
    append("2026-03-01", "{\"kind\":\"tick\"}\n{\"kind\":\"kill\"}\n{\"kind\":\"remedy\"}\n");
    EXPECT_EQ(call({"log", "--kind", "kill", "--kind", "remedy"}).out, "{\"kind\":\"kill\"}\n{\"kind\":\"remedy\"}\n");
}

TEST_F(LogCommand, AnEmptyOrMissingFolderIsNoError) {
    EXPECT_EQ(call({"log"}).status, done);
    std::filesystem::remove_all(folder());
    const Result result = call({"log"});
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(result.out, "");
}

TEST_F(LogCommand, FollowsWholeLinesAndNewDays) {
    append("2026-03-01", "{\"kind\":\"a\"}\n");
    machine.loop.after(1, [this] { append("2026-03-01", "{\"kind\":"); });
    machine.loop.after(2, [this] { append("2026-03-01", "\"b\"}\n"); });
    machine.loop.after(3, [this] { append("2026-03-02", "{\"kind\":\"c\"}\n"); });
    machine.loop.after(5, [this] { computer.terminate(); });
    EXPECT_EQ(call({"log", "-f"}).out, "{\"kind\":\"a\"}\n{\"kind\":\"b\"}\n{\"kind\":\"c\"}\n");
}

TEST_F(LogCommand, EndsWhenNobodyReadsAnyMore) {
    append("2026-03-01", "{\"kind\":\"a\"}\n");
    machine.loop.after(2, [this] { computer.fakeTerminal.lostReader = true; });
    const Time begin = machine.clock.now();
    EXPECT_EQ(call({"log", "-f"}).out, "{\"kind\":\"a\"}\n");
    EXPECT_LE(machine.clock.now() - begin, 2.5);
    outputIsBroken = true;
    EXPECT_EQ(call({"log", "-f"}).status, couldNot);
}

}  // namespace ravik::cli

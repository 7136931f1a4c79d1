#include "Platform/Linux/ReportFolder.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/GLibLoop.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

struct ReportFolderTest : testing::Test {
    fakes::TemporaryFolder folder;
    ReportFolder reports{folder.path()};

    void write(const std::string& name, const std::string& text, int age = 0) const {
        folder.write(name, text);
        fs::last_write_time(folder.path() / name, fs::file_time_type::clock::now() - std::chrono::hours(age));
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path())) found.push_back(entry.path().filename());
        std::ranges::sort(found);
        return found;
    }
    /// Watches itself and does this on its main loop.
    void watch(const std::function<void()>& work) const {
        GLibLoop loop;
        ReportFolder own(folder.path());
        own.watch("0.1.0");
        loop.post([&] {
            work();
            loop.quit();
        });
        loop.run();
    }
    /// The status of a child that does so.
    int watched(const std::function<void()>& work) const {
        int status = 0;
        waitpid(forkChild([&] {
                    crashAsUsual();
                    watch(work);
                }),
                &status, 0);
        return status;
    }
    static void block(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }
};

DiagnosticPayload crash(int signal, const std::string& reason) { return {{{signal, 0, "0.1.0", reason}}, {}}; }

}  // namespace

TEST_F(ReportFolderTest, GivesEachReportOnceOldestFirst) {
    write("Ravik-crash-b.new", "signal: 11\nversion: 0.1.0\nreason: second\n", 1);
    write("Ravik-crash-a.new", "signal: 6\nversion: 0.1.0\nreason: third\n");
    write("Ravik-hang-c.new", "seconds: 2.5\n", 2);
    EXPECT_THAT(reports.takeNew(), ElementsAre(DiagnosticPayload{{}, {{2.5}}}, crash(11, "second"), crash(6, "third")));
    EXPECT_THAT(reports.takeNew(), IsEmpty());
    EXPECT_THAT(names(), ElementsAre("Ravik-crash-a.txt", "Ravik-crash-b.txt", "Ravik-hang-c.txt"));
}

TEST_F(ReportFolderTest, ATornReportIsStillACrash) {
    write("Ravik-crash-a.new", "");
    EXPECT_THAT(reports.takeNew(), ElementsAre(DiagnosticPayload{{CrashDiagnostic{}}, {}}));
    write("Ravik-hang-a.new", "");
    EXPECT_THAT(reports.takeNew(), IsEmpty());
}

TEST_F(ReportFolderTest, AMissingFolderHoldsNone) {
    EXPECT_THAT(ReportFolder(folder.path() / "missing").takeNew(), IsEmpty());
}

TEST_F(ReportFolderTest, KeepsTheTwentyLatestAndNothingButItsOwnIsRemoved) {
    for (int each = 0; each < 30; ++each) write(fmt::format("Ravik-hang-{:02}.txt", each), "seconds: 2\n", each);
    write("2026-03-01.jsonl", "{}\n", 100);
    write("Ravik-notes", "the user's", 100);
    fs::create_directory(folder.path() / "Ravik-crash-folder");
    reports.takeNew();
    auto left = names();
    EXPECT_EQ(std::erase_if(left, [](const std::string& name) { return name.starts_with("Ravik-hang-"); }), 20u);
    EXPECT_TRUE(fs::exists(folder.path() / "Ravik-hang-19.txt"));
    EXPECT_FALSE(fs::exists(folder.path() / "Ravik-hang-20.txt"));
    EXPECT_THAT(left, ElementsAre("2026-03-01.jsonl", "Ravik-crash-folder", "Ravik-notes"));
}

TEST_F(ReportFolderTest, ACrashIsToldAtTheNextStart) {
    EXPECT_EQ(WTERMSIG(watched([] { std::raise(SIGSEGV); })), SIGSEGV);
    EXPECT_EQ(WTERMSIG(watched([] { std::abort(); })), SIGABRT);
    const auto payloads = reports.takeNew();
    ASSERT_EQ(payloads.size(), 2u);
    EXPECT_EQ(payloads[0].crashes.at(0).signal, SIGSEGV);
    EXPECT_EQ(payloads[1].crashes.at(0).signal, SIGABRT);
    EXPECT_EQ(payloads[1].crashes.at(0).version, "0.1.0");
    EXPECT_THAT(reports.takeNew(), IsEmpty());
}

TEST_F(ReportFolderTest, AHangOfTwoSecondsAndAHalfIsToldWithItsLength) {
    EXPECT_EQ(watched([] { block(2.5); }), 0);
    const auto payloads = reports.takeNew();
    ASSERT_EQ(payloads.size(), 1u);
    EXPECT_NEAR(payloads[0].hangs.at(0).seconds, 2.5, 0.4);
}

TEST_F(ReportFolderTest, AShorterWaitIsNone) {
    EXPECT_EQ(watched([] { block(1.5); }), 0);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ReportFolderTest, AHangThatEndsByAKillIsToldAsFarAsItWasSeen) {
    Reaper reaper;
    const Pid child = reaper.add(forkChild([this] { watch([] { block(60); }); }));
    EXPECT_TRUE(waitUntil([this] { return !names().empty() && names().front().starts_with("Ravik-hang-"); }));
    reaper.end(child);
    const auto payloads = reports.takeNew();
    ASSERT_EQ(payloads.size(), 1u);
    EXPECT_GE(payloads[0].hangs.at(0).seconds, 2.0);
}

}  // namespace ravik::platform

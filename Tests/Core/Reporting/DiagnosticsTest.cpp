#include "Core/Reporting/Diagnostics.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

struct DiagnosticsTest : testing::Test {
    DiagnosticsTest() {
        for (const fs::path& each : {into, temporary, reports}) fs::create_directories(each);
    }

    Diagnostics::Bundle make(const std::function<bool()>& cancelled = {}) {
        return Diagnostics::makeFeedbackBundle(into, {logs, reports, "Ravik 1.2 · macOS 14.4"}, temporary, 1772357415.9,
                                               archive, cancelled);
    }
    static void write(const fs::path& file, const std::string& bytes) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
    }

    fakes::FakeMachine machine;
    fakes::LogFolder logFolder{machine.clock};
    fakes::TemporaryFolder folder;
    fs::path logs = folder.path() / "state";
    fs::path reports = folder.path() / "reports";
    fs::path into = folder.path() / "Desktop";
    fs::path temporary = folder.path() / "tmp";
    fakes::FakeArchive archive;
};

}  // namespace

TEST_F(DiagnosticsTest, ACrashAndAHangBecomeALineEach) {
    const std::vector<DiagnosticPayload> payloads{{{{11, 1, "0.1.0", "SIGSEGV at address 0x0"}, {}}, {{2.5}}},
                                                  {{}, {{7.25}}}};
    Diagnostics::didReceive(payloads, logFolder.log);
    const auto lines = logFolder.lines();
    ASSERT_EQ(lines.size(), 4u);
    const auto without = [](json line) {
        line.erase("t");
        line.erase("session");
        return line;
    };
    EXPECT_EQ(without(lines[0]), json({{"kind", "crash"},
                                       {"signal", 11},
                                       {"exception", 1},
                                       {"version", "0.1.0"},
                                       {"reason", "SIGSEGV at address 0x0"}}));
    EXPECT_EQ(without(lines[1]),
              json({{"kind", "crash"}, {"signal", 0}, {"exception", 0}, {"version", ""}, {"reason", ""}}));
    EXPECT_EQ(without(lines[2]), json({{"kind", "hang"}, {"seconds", 2.5}}));
    EXPECT_EQ(without(lines[3]), json({{"kind", "hang"}, {"seconds", 7.25}}));
}

TEST_F(DiagnosticsTest, NoPayloadWritesNothing) {
    Diagnostics::didReceive({}, logFolder.log);
    Diagnostics::didReceive(std::vector<DiagnosticPayload>{{}, {}}, logFolder.log);
    EXPECT_THAT(logFolder.lines(), IsEmpty());
}

TEST_F(DiagnosticsTest, AStartTellsOfEarlierRunsAndWatchesItsOwn) {
    machine.crashReports.payloads = {{{{6, 0, "0.0.9", "SIGABRT"}}, {}}};
    Diagnostics::begin(machine.crashReports, logFolder.log, "0.1.0");
    EXPECT_EQ(logFolder.lines().size(), 1u);
    EXPECT_EQ(machine.crashReports.watched, "0.1.0");
    Diagnostics::begin(machine.crashReports, logFolder.log, "0.1.0");
    EXPECT_EQ(logFolder.lines().size(), 1u);
}

TEST_F(DiagnosticsTest, TheBundleHoldsLogsReportsAndOneLineAboutTheProgram) {
    write(logs / "2026-03-01.jsonl", "{}\n");
    write(logs / "2026-02-28.jsonl", "{}\n{}\n");
    write(reports / "Ravik-2026-03-01.ips", "crash");
    write(reports / "Ravik", "hang");
    write(reports / "Other-2026-03-01.ips", "somebody else's");
    write(reports / "not-Ravik.ips", "somebody else's");
    const auto bundle = make();
    EXPECT_EQ(bundle.error, "");
    EXPECT_EQ(bundle.zip, into / "Ravik-feedback-1772357415.zip");
    EXPECT_EQ(archive.file, bundle.zip);
    EXPECT_EQ(archive.folder, temporary / "Ravik-feedback-1772357415");
    const std::string top = "Ravik-feedback-1772357415/";
    EXPECT_THAT(archive.packed,
                ElementsAre(Pair(top + "about.txt", "Ravik 1.2 · macOS 14.4\n"), Pair(top + "crashes/", ""),
                            Pair(top + "crashes/Ravik", "hang"), Pair(top + "crashes/Ravik-2026-03-01.ips", "crash"),
                            Pair(top + "logs/", ""), Pair(top + "logs/2026-02-28.jsonl", "{}\n{}\n"),
                            Pair(top + "logs/2026-03-01.jsonl", "{}\n")));
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST_F(DiagnosticsTest, WithoutReportsTheirFolderIsThereAndEmpty) {
    write(logs / "2026-03-01.jsonl", "{}\n");
    for (const bool listed : {true, false}) {
        if (!listed) fs::remove(reports);
        archive.packed.clear();
        EXPECT_TRUE(make().ok());
        EXPECT_EQ(archive.packed.count("Ravik-feedback-1772357415/crashes/"), 1u);
        EXPECT_EQ(archive.packed.size(), 4u);
    }
}

TEST_F(DiagnosticsTest, WithoutLogsTheBundleHoldsTheLineAndTheEmptyFolder) {
    EXPECT_TRUE(make().ok());
    const std::string top = "Ravik-feedback-1772357415/";
    EXPECT_THAT(archive.packed,
                ElementsAre(Pair(top + "about.txt", "Ravik 1.2 · macOS 14.4\n"), Pair(top + "crashes/", "")));
}

TEST_F(DiagnosticsTest, NothingStaysBehindWhenPackingFails) {
    write(logs / "2026-03-01.jsonl", "{}\n");
    archive.refusal = "The disk is full.";
    EXPECT_EQ(make().error, "The disk is full.");
    EXPECT_TRUE(fs::is_empty(temporary));
    EXPECT_TRUE(fs::is_empty(into));
}

TEST_F(DiagnosticsTest, NothingStaysBehindWhenItIsCancelled) {
    write(logs / "2026-03-01.jsonl", "{}\n");
    EXPECT_EQ(make([] { return true; }).error, "It was interrupted.");
    EXPECT_THAT(archive.packed, IsEmpty());
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST_F(DiagnosticsTest, NobodyElseCanLookIntoWhatIsPacked) {
    EXPECT_TRUE(make().ok());
    EXPECT_EQ(archive.permissions, fs::perms(0700));
}

TEST_F(DiagnosticsTest, AFolderThatIsAlreadyThereIsNeitherUsedNorRemoved) {
    write(temporary / "Ravik-feedback-1772357415/mine", "kept");
    EXPECT_EQ(make().error, (temporary / "Ravik-feedback-1772357415").string() + " could not be made (File exists).");
    EXPECT_TRUE(fs::exists(temporary / "Ravik-feedback-1772357415/mine"));
    EXPECT_THAT(archive.packed, IsEmpty());
}

TEST_F(DiagnosticsTest, ReportsThatAreLinksOrFoldersAreNotCopied) {
    fs::create_symlink("/etc/hostname", reports / "Ravik-link");
    fs::create_directory(reports / "Ravik-folder");
    EXPECT_TRUE(make().ok());
    EXPECT_EQ(archive.packed.size(), 2u);
}

}  // namespace ravik

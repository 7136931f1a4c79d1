#include "Core/Reporting/Feedback.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

struct FeedbackTest : testing::Test {
    FeedbackTest() {
        machine.clock.advance(1772357415 - machine.clock.now());
        Folders& folders = machine.platform.folders;
        folders.home = folder.path();
        folders.desktop = folder.path() / "Desktop";
        folders.temporary = folder.path() / "tmp";
        folders.log = logFolder.log.folder();
        folders.crashReports = folders.log;
        fs::create_directory(folders.desktop);
        fs::create_directory(folders.temporary);
    }

    std::string build() {
        told.clear();
        spawn(Feedback::build(machine.platform, logFolder.log, "Ravik 0.1.0 · Linux debian 12"),
              [&](const std::string& line) { told = line; });
        machine.loop.settle();
        return told;
    }
    nlohmann::json lastLine() {
        auto line = logFolder.lines().back();
        line.erase("t");
        line.erase("session");
        return line;
    }

    fakes::FakeMachine machine;
    std::string told;
    fakes::LogFolder logFolder{machine.clock};
    fakes::TemporaryFolder folder;
};

}  // namespace

TEST_F(FeedbackTest, IsSavedToTheDesktopAndShown) {
    EXPECT_EQ(build(), "Saved to the Desktop");
    const fs::path zip = folder.path() / "Desktop/Ravik-feedback-1772357415.zip";
    EXPECT_EQ(machine.archive.file, zip);
    EXPECT_THAT(machine.fileViewer.revealed, ElementsAre(zip));
    EXPECT_EQ(lastLine(), nlohmann::json({{"kind", "feedback"}, {"ok", true}}));
}

TEST_F(FeedbackTest, AFailureIsToldAndLoggedAndShowsNothing) {
    machine.archive.refusal = "The disk is full.";
    EXPECT_EQ(build(), "Could not create the feedback bundle: The disk is full.");
    EXPECT_THAT(machine.fileViewer.revealed, IsEmpty());
    EXPECT_EQ(lastLine(), nlohmann::json({{"kind", "feedback"}, {"error", "The disk is full."}}));
    EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
}

TEST_F(FeedbackTest, WithoutADesktopFolderItGoesHome) {
    fs::remove(machine.platform.folders.desktop);
    EXPECT_EQ(build(), "Saved to your home folder");
    EXPECT_EQ(machine.archive.file, folder.path() / "Ravik-feedback-1772357415.zip");
}

TEST_F(FeedbackTest, HoldsTheLinesThatLedToIt) {
    logFolder.log.event("hang", {{"seconds", 2.5}});
    EXPECT_EQ(build(), "Saved to the Desktop");
    std::string logs;
    for (const auto& [name, bytes] : machine.archive.packed) {
        if (name.find("/logs/") != name.npos) logs += bytes;
    }
    EXPECT_THAT(logs, testing::HasSubstr("\"kind\":\"hang\""));
}

TEST_F(FeedbackTest, TheLoopGoesOnWhileItIsPacked) {
    machine.loop.holdBackground = true;
    EXPECT_EQ(build(), "");
    EXPECT_THAT(logFolder.lines(), IsEmpty());
    machine.loop.holdBackground = false;
    machine.loop.settle();
    EXPECT_EQ(told, "Saved to the Desktop");
}

TEST_F(FeedbackTest, SaysWhatItRanOn) {
    Host linux;
    linux.kind = HostKind::linux;
    const Host mac;
    EXPECT_EQ(Feedback::about(linux, "0.1.0", "ID=debian\nVERSION_ID=\"12\"\n"), "Ravik 0.1.0 · Linux debian 12");
    EXPECT_EQ(Feedback::about(linux, "0.1.0", ""), "Ravik 0.1.0 · Linux");
    EXPECT_EQ(Feedback::about(mac, "0.1.0", "Version 14.4 (Build 23E214)"),
              "Ravik 0.1.0 · macOS Version 14.4 (Build 23E214)");
}

}  // namespace ravik

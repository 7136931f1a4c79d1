#include <fmt/format.h>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

namespace fs = std::filesystem;

class FeedbackCommand : public CommandTest {
protected:
    FeedbackCommand() {
        Folders& folders = machine.platform.folders;
        folders.home = folder.path() / "home";
        folders.desktop = folder.path() / "home/Desktop";
        folders.temporary = folder.path() / "tmp";
        folders.crashReports = folders.log;
        fs::create_directories(folders.desktop);
        fs::create_directory(folders.temporary);
    }
    std::string nameOfNow() const { return fmt::format("Ravik-feedback-{:.0f}.zip", machine.clock.now()); }
    fakes::TemporaryFolder folder;
};

TEST_F(FeedbackCommand, PrintsThePathOnTheDesktop) {
    const Result result = call({"feedback"});
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(result.out, (folder.path() / "home/Desktop" / nameOfNow()).string() + "\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(machine.archive.packed[fs::path(nameOfNow()).stem().string() + "/about.txt"],
              "Ravik " RAVIK_VERSION " · Linux debian 12\n");
    EXPECT_TRUE(machine.fileViewer.revealed.empty());
    EXPECT_EQ(logFolder.lines().back().at("ok"), true);
}

TEST_F(FeedbackCommand, PutsItIntoTheFolderThatIsNamed) {
    const fs::path into = folder.path() / "elsewhere";
    fs::create_directory(into);
    EXPECT_EQ(call({"feedback", "--into", into.string()}).out, (into / nameOfNow()).string() + "\n");
    EXPECT_EQ(machine.archive.file, into / nameOfNow());
}

TEST_F(FeedbackCommand, AFolderOfTheCurrentOneIsPrintedInFull) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    const auto out = call({"feedback", "--into", "tmp"}).out;
    fs::current_path(before);
    EXPECT_EQ(out, (fs::canonical(folder.path()) / "tmp" / nameOfNow()).string() + "\n");
}

TEST_F(FeedbackCommand, RefusesWhatIsNoFolderInOneLine) {
    const fs::path file = folder.path() / "file";
    std::ofstream(file) << "text";
    for (const fs::path& into : {file, folder.path() / "missing"}) {
        const Result result = call({"feedback", "--into", into.string()});
        EXPECT_EQ(result.status, couldNot);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, into.string() + " is not a folder.\n");
    }
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(FeedbackCommand, WrongWordsAreToldApart) {
    EXPECT_EQ(call({"feedback", "--into", ""}).status, wrongWords);
    EXPECT_EQ(call({"feedback", "--into"}).status, wrongWords);
    EXPECT_EQ(call({"feedback", "here"}).status, wrongWords);
}

TEST_F(FeedbackCommand, AFailureIsOneSentence) {
    machine.archive.refusal = "The disk is full.";
    const Result result = call({"feedback"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "Could not create the feedback bundle: The disk is full.\n");
    EXPECT_EQ(logFolder.lines().back().at("error"), "The disk is full.");
}

TEST_F(FeedbackCommand, InterruptedItTakesAwayWhatItHasCopied) {
    machine.loop.post([this] { computer.terminate(); });
    const Result result = call({"feedback"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "Could not create the feedback bundle: It was interrupted.\n");
    EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
}

}  // namespace ravik::cli

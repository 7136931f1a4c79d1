#include <fstream>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;
namespace fs = std::filesystem;

class DiskCommands : public CommandTest {
protected:
    DiskCommands() {
        machine.platform.folders.home = m_home.path();
        fs::create_directories(cache());
        std::ofstream file(cache() / "data");
        const std::string megabyte(1 << 20, 'x');
        for (int count = 0; count < 60; ++count) file << megabyte;
    }
    fs::path cache() const { return m_home.path() / ".npm/_cacache"; }

private:
    fakes::TemporaryFolder m_home;
};

TEST_F(DiskCommands, ListsACacheInJsonAndInText) {
    const json rows = json::parse(call({"disk", "--json"}).out);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]["id"], cache().string());
    EXPECT_GE(rows[0]["bytes"].get<std::uint64_t>(), 60u << 20);
    EXPECT_EQ(rows[0].size(), 4u);
    EXPECT_NE(call({"disk"}).out.find(cache().string()), std::string::npos);
    EXPECT_EQ(logFolder.lines("diskScan").at(0)["items"], 1);
}

TEST_F(DiskCommands, AnEmptyHomeHasNothingToClear) {
    fs::remove_all(cache());
    EXPECT_EQ(call({"disk"}).out, "No big caches and no old build folders to clear.\n");
    EXPECT_EQ(json::parse(call({"disk", "--json"}).out), json::array());
}

TEST_F(DiskCommands, MovesWhatIsListedAfterAYes) {
    computer.fakeTerminal.typed = {"n"};
    EXPECT_EQ(call({"disk", "trash", cache().string()}).status, couldNot);
    EXPECT_TRUE(machine.trash.moved.empty());
    computer.fakeTerminal.typed = {"y"};
    const Result result = call({"disk", "trash", cache().string() + "/"});
    EXPECT_EQ(result.status, done) << result.err;
    EXPECT_EQ(result.out, "Moved 0.1 GB to the Trash. The space returns when the Trash is emptied.\n");
    EXPECT_EQ(machine.trash.moved, std::vector<fs::path>{cache()});
    EXPECT_EQ(logFolder.lines().back()["ok"], true);
}

TEST_F(DiskCommands, LeavesEverythingElseWhereItIs) {
    computer.fakeTerminal.interactive = false;
    const Result result = call({"disk", "trash", "--yes", "/etc", cache().string()});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "/etc is not a cache or a build folder Ravik found, so it was left where it is.\n");
    EXPECT_EQ(machine.trash.moved, std::vector<fs::path>{cache()});
}

TEST_F(DiskCommands, WordsThatNameNothingAreNoCrash) {
    EXPECT_EQ(call({"disk", "--root", ""}).status, wrongWords);
    const Result trash = call({"disk", "trash", "--yes", ""});
    EXPECT_EQ(trash.status, couldNot);
    EXPECT_TRUE(trash.err.ends_with(" is not a cache or a build folder Ravik found, so it was left where it is.\n"));
    const Result missing = call({"disk", "--json", "--root", "/no/such\nfolder"});
    EXPECT_EQ(missing.status, done);
    EXPECT_EQ(json::parse(missing.out).size(), 1u);
    EXPECT_NE(missing.err.find("ravik disk: /no/such\\nfolder is no folder that can be read\n"), std::string::npos);
}

TEST_F(DiskCommands, RootsReplaceTheDefaultOnes) {
    const fs::path root = cache().parent_path() / "elsewhere";
    fs::create_directories(root / "old/target");
    std::ofstream(root / "old/target/data") << std::string(21 << 20, 'x');
    EXPECT_EQ(json::parse(call({"disk", "--json"}).out).size(), 1u);
    const json rows = json::parse(call({"disk", "--json", "--root", root.string() + "/../elsewhere/."}).out);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1]["id"], (root / "old/target").string());
    EXPECT_EQ(rows[1]["kind"], "target");
}

TEST_F(DiskCommands, TheCacheOfABrowserThatRunsUnseenStays) {
    const fs::path firefox = cache().parent_path().parent_path() / ".cache/mozilla";
    fs::create_directories(firefox.parent_path());
    fs::rename(cache(), firefox);
    EXPECT_EQ(json::parse(call({"disk", "--json"}).out).size(), 1u);
    // No desktop lists it, as over SSH.
    machine.processes.add({.pid = 700, .name = "firefox-esr", .command = "/usr/lib/firefox-esr/firefox-esr"});
    EXPECT_EQ(json::parse(call({"disk", "--json"}).out), json::array());
    const Result trash = call({"disk", "trash", "--yes", firefox.string()});
    EXPECT_EQ(trash.status, couldNot);
    EXPECT_NE(trash.err.find("Firefox is running and may be using it. Quit Firefox first; nothing was changed.\n"),
              std::string::npos);
    const std::string seenFromHere = fs::relative(firefox).string() + "/";
    EXPECT_NE(call({"disk", "trash", "--yes", seenFromHere})
                  .err.find("Firefox is running and may be using it. Quit Firefox first; nothing was changed.\n"),
              std::string::npos);
    EXPECT_TRUE(machine.trash.moved.empty());
}

TEST_F(DiskCommands, AnInterruptedScanEndsWithoutAResult) {
    machine.loop.after(0, [&] { computer.terminate(); });
    machine.loop.holdBackground = true;
    const Result result = call({"disk", "--json"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("The scan was interrupted; nothing was changed.\n"), std::string::npos);
    EXPECT_TRUE(logFolder.lines("diskScan").empty());
    machine.loop.holdBackground = false;
    machine.loop.settle();
    computer.terminate();
}

TEST_F(DiskCommands, ARefusalOfTheTrashIsSaid) {
    machine.trash.refusal = "It has no room.";
    computer.fakeTerminal.interactive = false;
    const Result result = call({"disk", "trash", "--yes", cache().string()});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "Could not move npm cache to the Trash: It has no room. Nothing else was changed.\n");
    EXPECT_EQ(result.out, "");
}

}  // namespace ravik::cli

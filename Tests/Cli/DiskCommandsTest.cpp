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

TEST_F(DiskCommands, ARefusalOfTheTrashIsSaid) {
    machine.trash.refusal = "It has no room.";
    computer.fakeTerminal.interactive = false;
    const Result result = call({"disk", "trash", "--yes", cache().string()});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "Could not move npm cache to the Trash: It has no room. Nothing else was changed.\n");
    EXPECT_EQ(result.out, "");
}

}  // namespace ravik::cli

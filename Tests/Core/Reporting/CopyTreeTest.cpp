#include "Core/Reporting/CopyTree.h"

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;

struct CopyTreeTest : testing::Test {
    fakes::TemporaryFolder folder;
    fs::path from = folder.path() / "from";
    fs::path to = folder.path() / "to";

    void write(const fs::path& name, const std::string& bytes) const {
        fs::create_directories((from / name).parent_path());
        std::ofstream(from / name, std::ios::binary) << bytes;
    }
    static std::string read(const fs::path& file) {
        std::ifstream bytes(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(bytes), {}};
    }
};

}  // namespace

TEST_F(CopyTreeTest, CopiesAFolderWithAllBelowIt) {
    const std::string large(300000, 'x');
    write("a.jsonl", large);
    write("below/b", "b");
    write("below/empty", "");
    EXPECT_EQ(copyTree(from, to, {}), std::nullopt);
    EXPECT_EQ(read(to / "a.jsonl"), large);
    EXPECT_EQ(read(to / "below/b"), "b");
    EXPECT_TRUE(fs::is_regular_file(to / "below/empty"));
    EXPECT_EQ(fs::last_write_time(to / "a.jsonl"), fs::last_write_time(from / "a.jsonl"));
}

TEST_F(CopyTreeTest, WhatIsCopiedIsItsOwnersAlone) {
    write("a", "a");
    fs::permissions(from / "a", fs::perms(0644));
    EXPECT_EQ(copyTree(from, to, {}), std::nullopt);
    EXPECT_EQ(fs::status(to).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(to / "a").permissions(), fs::perms(0600));
}

TEST_F(CopyTreeTest, FollowsALinkOnlyWhereItIsTheFolderItself) {
    write("a", "secret");
    const fs::path link = folder.path() / "link";
    fs::create_directory_symlink(from, link);
    fs::create_symlink(from / "a", from / "inside");
    fs::create_symlink("nowhere", from / "dangling");
    EXPECT_EQ(copyTree(link, to, {}), std::nullopt);
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(to)));
    EXPECT_EQ(read(to / "a"), "secret");
    EXPECT_EQ(fs::read_symlink(to / "inside"), from / "a");
    EXPECT_EQ(fs::read_symlink(to / "dangling"), "nowhere");
}

TEST_F(CopyTreeTest, LeavesPipesOut) {
    write("a", "a");
    ASSERT_EQ(mkfifo((from / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(copyTree(from, to, {}), std::nullopt);
    EXPECT_TRUE(fs::exists(to / "a"));
    EXPECT_FALSE(fs::exists(fs::symlink_status(to / "pipe")));
}

TEST_F(CopyTreeTest, AFileThatGrowsIsCopiedAsLongAsItWas) {
    write("a", std::string(400000, 'x'));
    int asked = 0;
    // Between two pieces somebody appends.
    const auto grow = [&] {
        std::ofstream(from / "a", std::ios::app) << std::string(100000, 'y');
        ++asked;
        return false;
    };
    // The first piece is read after the size was taken.
    EXPECT_EQ(copyTree(from, to, grow), std::nullopt);
    EXPECT_GE(asked, 2);
    EXPECT_EQ(read(to / "a"), std::string(400000, 'x'));
}

TEST_F(CopyTreeTest, AFileThatShrinksIsCopiedAsFarAsItGoes) {
    write("a", std::string(400000, 'x'));
    const auto shrink = [&] {
        fs::resize_file(from / "a", 10);
        return false;
    };
    EXPECT_EQ(copyTree(from, to, shrink), std::nullopt);
    EXPECT_EQ(read(to / "a"), std::string(10, 'x'));
}

TEST_F(CopyTreeTest, GivesUpWhenItIsCancelled) {
    write("a", "a");
    EXPECT_EQ(copyTree(from, to, [] { return true; }), "It was interrupted.");
}

TEST_F(CopyTreeTest, SaysWhatIsMissing) {
    EXPECT_EQ(copyTree(from, to, {}), from.string() + " could not be copied (No such file or directory).");
}

TEST_F(CopyTreeTest, NeverWritesOverWhatIsThere) {
    write("a", "a");
    fs::create_directory(to);
    std::ofstream(to / "a") << "kept";
    EXPECT_EQ(copyTree(from / "a", to / "a", {}), (from / "a").string() + " could not be copied (File exists).");
    EXPECT_EQ(read(to / "a"), "kept");
}

}  // namespace ravik

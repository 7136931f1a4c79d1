#include "Platform/Linux/ZipArchive.h"

#include <array>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

struct ZipArchiveTest : testing::Test {
    ZipArchiveTest() {
        fs::create_directory(from);
        fs::create_directory(into);
    }

    std::optional<std::string> zip(const std::function<bool()>& cancelled = {}) {
        return ZipArchive().zip(from, file, cancelled);
    }

    /// What unzip prints, and its status in a last line.
    std::string unzip(const std::string& words) const {
        const std::string command = "LC_ALL=C.UTF-8 unzip " + words + " 2>&1; echo \"status $?\"";
        FILE* output = popen(command.c_str(), "r");
        std::string text;
        std::array<char, 4096> piece{};
        std::size_t got = 0;
        while ((got = fread(piece.data(), 1, piece.size(), output)) > 0) text.append(piece.data(), got);
        pclose(output);
        return text;
    }
    std::string content(const std::string& name) const { return unzip("-p " + file.string() + " '" + name + "'"); }

    fakes::TemporaryFolder folder;
    fs::path from = folder.path() / "Ravik-feedback-1";
    fs::path into = folder.path() / "into";
    fs::path file = into / "bundle.zip";
};

}  // namespace

TEST_F(ZipArchiveTest, OpensAndKeepsTheFolderItself) {
    folder.write("Ravik-feedback-1/logs/a.jsonl", "{}\n");
    folder.write("Ravik-feedback-1/about.txt", std::string(500000, 'x'));
    fs::create_directory(from / "crashes");
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_THAT(unzip("-tqq " + file.string()), "status 0\n");
    EXPECT_EQ(unzip("-Z1 " + file.string()),
              "Ravik-feedback-1/\nRavik-feedback-1/about.txt\nRavik-feedback-1/crashes/\nRavik-feedback-1/logs/\n"
              "Ravik-feedback-1/logs/a.jsonl\nstatus 0\n");
    EXPECT_EQ(content("Ravik-feedback-1/logs/a.jsonl"), "{}\nstatus 0\n");
    EXPECT_EQ(content("Ravik-feedback-1/about.txt"), std::string(500000, 'x') + "status 0\n");
    EXPECT_LT(fs::file_size(file), 10000u);
    EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(ZipArchiveTest, NamesAreUtf8AlsoInTheCLocale) {
    folder.write("Ravik-feedback-1/grün.txt", "leaves");
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_THAT(unzip("-Z1 " + file.string()), HasSubstr("Ravik-feedback-1/grün.txt\n"));
    // The bit that says so, in the entry's header: readers on other systems go by it.
    const std::string bytes = readFile(file.string()).value_or("");
    const std::size_t name = bytes.find("Ravik-feedback-1/grün.txt");
    ASSERT_GE(name, 30u);
    EXPECT_EQ(bytes.substr(name - 30, 4), "PK\x03\x04");
    EXPECT_NE(bytes[name - 30 + 7] & 0x08, 0);
}

TEST_F(ZipArchiveTest, ANameThatIsNoUtf8IsMended) {
    folder.write(
        "Ravik-feedback-1/b\xff"
        "d",
        "text");
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_THAT(unzip("-tqq " + file.string()), "status 0\n");
    EXPECT_THAT(unzip("-Z1 " + file.string()), HasSubstr("Ravik-feedback-1/b\uFFFDd\n"));
}

TEST_F(ZipArchiveTest, KeepsModes) {
    folder.write("Ravik-feedback-1/secret", "text");
    folder.write("Ravik-feedback-1/tool", "text");
    chmod((from / "secret").c_str(), 0600);
    chmod((from / "tool").c_str(), 0755);
    EXPECT_EQ(zip(), std::nullopt);
    const std::string listed = unzip("-Z " + file.string());
    EXPECT_THAT(listed, testing::ContainsRegex("-rw------- .* Ravik-feedback-1/secret\n"));
    EXPECT_THAT(listed, testing::ContainsRegex("-rwxr-xr-x .* Ravik-feedback-1/tool\n"));
}

TEST_F(ZipArchiveTest, LinksAreNotFollowed) {
    folder.write("outside/secret", "do not pack");
    fs::create_symlink(folder.path() / "outside/secret", from / "file");
    fs::create_directory_symlink(folder.path() / "outside", from / "below");
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_EQ(unzip("-Z1 " + file.string()),
              "Ravik-feedback-1/\nRavik-feedback-1/below\nRavik-feedback-1/file\nstatus 0\n");
    EXPECT_THAT(unzip("-p " + file.string()), Not(HasSubstr("do not pack")));
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_NE(ZipArchive().zip(from / "below", file, {}), std::nullopt);
}

TEST_F(ZipArchiveTest, PipesAreLeftOut) {
    ASSERT_EQ(mkfifo((from / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_EQ(unzip("-Z1 " + file.string()), "Ravik-feedback-1/\nstatus 0\n");
}

TEST_F(ZipArchiveTest, AFileThatGrowsIsPackedAsLongAsItWas) {
    folder.write("Ravik-feedback-1/log", std::string(400000, 'x'));
    int asked = 0;
    EXPECT_EQ(zip([&] {
                  std::ofstream(from / "log", std::ios::app) << std::string(100000, 'y');
                  ++asked;
                  return false;
              }),
              std::nullopt);
    EXPECT_GE(asked, 2);
    EXPECT_THAT(unzip("-tqq " + file.string()), "status 0\n");
    EXPECT_EQ(content("Ravik-feedback-1/log"), std::string(400000, 'x') + "status 0\n");
}

TEST_F(ZipArchiveTest, AFileThatShrinksIsPackedAsFarAsItGoes) {
    folder.write("Ravik-feedback-1/log", std::string(400000, 'x'));
    folder.write("Ravik-feedback-1/next", "next");
    EXPECT_EQ(zip([&] {
                  fs::resize_file(from / "log", 10);
                  return false;
              }),
              std::nullopt);
    EXPECT_THAT(unzip("-tqq " + file.string()), "status 0\n");
    EXPECT_EQ(content("Ravik-feedback-1/log"), "xxxxxxxxxxstatus 0\n");
    EXPECT_EQ(content("Ravik-feedback-1/next"), "nextstatus 0\n");
}

TEST_F(ZipArchiveTest, AnUnreadableFileIsNamedAndNothingIsLeft) {
    folder.write("Ravik-feedback-1/locked", "text");
    chmod((from / "locked").c_str(), 0);
    for (const auto& each : {folder.path(), from, into}) chmod(each.c_str(), 0777);
    const std::string expected = (from / "locked").string() + " could not be read (Permission denied).";
    EXPECT_EQ(unprivileged([&] { return zip() == expected ? 0 : 1; }), 0);
    EXPECT_TRUE(fs::is_empty(into));
}

TEST_F(ZipArchiveTest, GivesUpWhenItIsCancelledAndLeavesAnEarlierFile) {
    folder.write("Ravik-feedback-1/log", "text");
    folder.write("into/bundle.zip", "earlier");
    EXPECT_EQ(zip([] { return true; }), "It was interrupted.");
    EXPECT_EQ(readFile(file.string()), "earlier");
    EXPECT_EQ(std::distance(fs::directory_iterator(into), {}), 1);
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_THAT(unzip("-tqq " + file.string()), "status 0\n");
}

TEST_F(ZipArchiveTest, AMissingTargetFolderIsASentence) {
    file = folder.path() / "missing/bundle.zip";
    EXPECT_EQ(zip(), file.string() + " could not be written (No such file or directory).");
}

TEST_F(ZipArchiveTest, AFullDiskIsASentence) {
    // The largest file that this child may write is smaller than the zip.
    std::string noise;
    unsigned seed = 1;
    while (noise.size() < 400000) noise += static_cast<char>((seed = seed * 1103515245 + 12345) >> 16);
    folder.write("Ravik-feedback-1/noise", noise);
    EXPECT_EQ(inChild([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{100000, 100000};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  const auto why = zip();
                  return why == file.string() + " could not be written (File too large)." ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(fs::is_empty(into));
}

TEST_F(ZipArchiveTest, TheThreadKeepsItsLocale) {
    const locale_t before = uselocale(nullptr);
    EXPECT_EQ(zip(), std::nullopt);
    EXPECT_EQ(uselocale(nullptr), before);
}

}  // namespace ravik::platform

#include "Platform/Linux/SettingsFile.h"

#include <csignal>
#include <fstream>
#include <random>

#include <sys/wait.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

struct SettingsFiles : ::testing::Test {
    json stored() const {
        const auto bytes = readFile(file.string());
        if (!bytes) return "no file";
        return json::parse(*bytes, nullptr, false);
    }
    void write(std::string_view bytes) const {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << bytes;
    }
    /// Names in the settings' folder but for the file and its lock.
    std::vector<std::string> litter() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(file.parent_path())) {
            const std::string name = entry.path().filename();
            if (name != "settings.json" && name != "settings.json.lock") names.push_back(name);
        }
        return names;
    }

    fakes::TemporaryFolder folder;
    fs::path file = folder.path() / "config/ravik/settings.json";
};

}  // namespace

TEST_F(SettingsFiles, MissingFileGivesNothingAndIsNotMade) {
    SettingsFile settings(file);
    EXPECT_EQ(settings.get("thresholds"), std::nullopt);
    EXPECT_FALSE(settings.changed());
    EXPECT_TRUE(settings.remove("thresholds"));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(SettingsFiles, KeepsWhatWasSetInAFileOfItsOwnersAlone) {
    {
        SettingsFile settings(file);
        EXPECT_TRUE(settings.set("keepRunning", json{"node a.js", "\u00e9\n"}));
        EXPECT_TRUE(settings.set("firstRunDone", true));
        EXPECT_EQ(settings.get("firstRunDone"), json(true));
    }
    EXPECT_EQ(stored(), (json{{"keepRunning", {"node a.js", "\u00e9\n"}}, {"firstRunDone", true}}));
    EXPECT_EQ(SettingsFile(file).get("keepRunning"), (json{"node a.js", "\u00e9\n"}));
    EXPECT_EQ(modeOf(file), 0600u);
    EXPECT_EQ(modeOf(file.parent_path()), 0700u);
    EXPECT_TRUE(litter().empty());
}

TEST_F(SettingsFiles, ForeignKeysStay) {
    write(R"({"somebodys": {"deep": [1, 2.5, null]}, "usageID": "abc"})");
    SettingsFile settings(file);
    EXPECT_TRUE(settings.set("shareUsage", true));
    EXPECT_TRUE(settings.remove("usageID"));
    EXPECT_EQ(stored(), (json{{"somebodys", {{"deep", {1, 2.5, nullptr}}}}, {"shareUsage", true}}));
    EXPECT_EQ(settings.get("usageID"), std::nullopt);
    EXPECT_EQ(settings.get("somebodys"), (json{{"deep", {1, 2.5, nullptr}}}));
}

TEST_F(SettingsFiles, ValueThatIsTheSameWritesNothing) {
    SettingsFile settings(file);
    ASSERT_TRUE(settings.set("diagnosisMode", "Cards"));
    const FileStamp before = FileStamp::of(file);
    EXPECT_TRUE(settings.set("diagnosisMode", "Cards"));
    EXPECT_TRUE(settings.remove("absent"));
    EXPECT_EQ(FileStamp::of(file), before);
}

TEST_F(SettingsFiles, ChangeOfAnotherProcessIsToldOnceAndSeenAtOnce) {
    SettingsFile ours(file);
    SettingsFile theirs(file);
    EXPECT_TRUE(ours.set("a", 1));
    EXPECT_FALSE(ours.changed());
    EXPECT_TRUE(theirs.changed());
    EXPECT_FALSE(theirs.changed());

    EXPECT_TRUE(theirs.set("b", 2));
    EXPECT_EQ(ours.get("b"), json(2));
    EXPECT_TRUE(ours.changed());
    EXPECT_FALSE(ours.changed());
    EXPECT_FALSE(theirs.changed());
}

TEST_F(SettingsFiles, ForeignChangeUnderAnOwnOneIsStillTold) {
    SettingsFile ours(file);
    SettingsFile theirs(file);
    EXPECT_TRUE(theirs.set("b", 2));
    EXPECT_TRUE(ours.set("a", 1));
    EXPECT_TRUE(ours.changed());
    EXPECT_FALSE(ours.changed());
    EXPECT_EQ(stored(), (json{{"a", 1}, {"b", 2}}));
}

TEST_F(SettingsFiles, DeletedFileIsAChangeAndEmpty) {
    SettingsFile settings(file);
    ASSERT_TRUE(settings.set("a", 1));
    fs::remove(file);
    EXPECT_EQ(settings.get("a"), std::nullopt);
    EXPECT_TRUE(settings.changed());
    EXPECT_TRUE(settings.set("b", 2));
    EXPECT_EQ(stored(), (json{{"b", 2}}));
}

TEST_F(SettingsFiles, FileThatIsNoObjectGivesNothingAndIsKeptAsideByTheFirstChange) {
    int copies = 0;
    for (const char* bytes : {"{\"a\": 1,", "[1, 2]", "\"text\"", "\x01\xff", "{'a': 1}"}) {
        write(bytes);
        SettingsFile settings(file);
        EXPECT_EQ(settings.get("a"), std::nullopt) << bytes;
        EXPECT_TRUE(settings.remove("a")) << bytes;
        EXPECT_EQ(readFile(file.string()), std::string(bytes));

        EXPECT_TRUE(settings.set("b", 2)) << bytes;
        EXPECT_EQ(stored(), (json{{"b", 2}})) << bytes;
        ++copies;
        const std::string aside =
            file.string() + (copies == 1 ? ".unreadable" : ".unreadable-" + std::to_string(copies));
        EXPECT_EQ(readFile(aside), std::string(bytes));
    }
    EXPECT_EQ(litter().size(), static_cast<std::size_t>(copies));
}

TEST_F(SettingsFiles, EmptyFileHasNothingToKeepAside) {
    write(" \n");
    SettingsFile settings(file);
    EXPECT_TRUE(settings.set("b", 2));
    EXPECT_EQ(stored(), (json{{"b", 2}}));
    EXPECT_TRUE(litter().empty());
}

TEST_F(SettingsFiles, LinkStaysALink) {
    fs::create_directories(folder.path() / "dotfiles");
    std::ofstream(folder.path() / "dotfiles/ravik.json") << R"({"a": 1})";
    fs::create_directories(file.parent_path());
    fs::create_symlink(folder.path() / "dotfiles/ravik.json", file);
    EXPECT_TRUE(SettingsFile(file).set("b", 2));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(stored(), (json{{"a", 1}, {"b", 2}}));
}

TEST_F(SettingsFiles, FolderThatCannotBeMadeRefusesTheChange) {
    std::ofstream(folder.path() / "config") << "a file";
    SettingsFile settings(file);
    EXPECT_FALSE(settings.set("a", 1));
    EXPECT_EQ(settings.get("a"), std::nullopt);
}

TEST_F(SettingsFiles, FolderAsTheFileRefusesTheChange) {
    fs::create_directories(file);
    SettingsFile settings(file);
    EXPECT_EQ(settings.get("a"), std::nullopt);
    EXPECT_FALSE(settings.set("a", 1));
    EXPECT_TRUE(fs::is_directory(file));
}

TEST_F(SettingsFiles, WithoutTheRightToWriteNothingChanges) {
    write(R"({"a": 1})");
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(file.parent_path(), fs::perms(0555));
    EXPECT_EQ(unprivileged([this] {
                  SettingsFile settings(file);
                  if (settings.get("a") != json(1)) return 1;
                  return settings.set("a", 2) ? 2 : 0;
              }),
              0);
    EXPECT_EQ(stored(), (json{{"a", 1}}));
}

TEST_F(SettingsFiles, WithoutTheRightToReadNothingIsOverwritten) {
    write(R"({"a": 1})");
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(file.parent_path(), fs::perms(0777));
    fs::permissions(file, fs::perms::none);
    EXPECT_EQ(unprivileged([this] {
                  SettingsFile settings(file);
                  if (settings.get("a")) return 1;
                  return settings.set("b", 2) ? 2 : 0;
              }),
              0);
    fs::permissions(file, fs::perms(0600));
    EXPECT_EQ(stored(), (json{{"a", 1}}));
}

TEST_F(SettingsFiles, TwoProcessesLoseNoKeyOfEachOther) {
    constexpr int each = 60;
    pid_t writers[2];
    for (int writer = 0; writer < 2; ++writer) {
        writers[writer] = fork();
        if (writers[writer] == 0) {
            SettingsFile settings(file);
            bool done = true;
            for (int n = 0; n < each; ++n) {
                done = settings.set(std::to_string(writer) + ":" + std::to_string(n), n) && done;
            }
            _exit(done ? 0 : 1);
        }
    }
    for (const pid_t writer : writers) {
        int status = 0;
        ASSERT_EQ(waitpid(writer, &status, 0), writer);
        EXPECT_EQ(status, 0);
    }
    json expected = json::object();
    for (int writer = 0; writer < 2; ++writer) {
        for (int n = 0; n < each; ++n) expected[std::to_string(writer) + ":" + std::to_string(n)] = n;
    }
    EXPECT_EQ(stored(), expected);
}

TEST_F(SettingsFiles, KilledWriterNeverLeavesHalfAFile) {
    const std::string padding(20000, 'x');
    ASSERT_TRUE(SettingsFile(file).set("kept", padding));
    std::mt19937 random(7);
    int last = 0;
    for (int round = 0; round < 40; ++round) {
        const pid_t writer = fork();
        if (writer == 0) {
            SettingsFile settings(file);
            for (int n = last + 1;; ++n) settings.set("n", n);
        }
        EXPECT_TRUE(waitUntil([&] {
            const json now = stored();
            return !now.is_object() || now.value("n", 0) > last;
        }));
        usleep(random() % 9000);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        const json now = stored();
        ASSERT_TRUE(now.is_object()) << "round " << round;
        ASSERT_EQ(now.at("kept"), padding);
        if (now.contains("n")) {
            ASSERT_GE(now.at("n").get<int>(), last);
            last = now.at("n").get<int>();
        }
    }
    EXPECT_GT(last, 0) << "no writer got far enough to be killed at its work";
    // What the last one left half written is swept up by the next change.
    EXPECT_TRUE(SettingsFile(file).set("n", 0));
    EXPECT_TRUE(litter().empty());
    EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(SettingsFiles, LockThatIsNotGivenBackRefusesAfterAWhile) {
    fs::create_directories(file.parent_path());
    const FileLock lock(fs::path(file) += ".lock");
    ASSERT_TRUE(lock.held());
    EXPECT_FALSE(SettingsFile(file).set("a", 1));
    EXPECT_FALSE(fs::exists(file));
}

}  // namespace ravik::platform

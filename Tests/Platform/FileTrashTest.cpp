#include "Platform/Linux/FileTrash.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <unistd.h>

#include <gtest/gtest.h>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

/// GLib asks for the home folder once, so each case is a process of its own, started anew.
struct FileTrashDeathTest : ::testing::Test {
    FileTrashDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    void useOwnHome() const {
        setenv("HOME", folder.path().c_str(), 1);
        setenv("XDG_DATA_HOME", trash.parent_path().c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    /// The end of the process: 0 where all held, else the place of the first that did not.
    [[noreturn]] void endWith(std::initializer_list<bool> held) const {
        fs::remove_all(folder.path());
        int place = 0;
        for (const bool one : held) {
            ++place;
            if (!one) _exit(place);
        }
        _exit(0);
    }

    fakes::TemporaryFolder folder;
    fs::path trash = folder.path() / "data/Trash";
};

}  // namespace

TEST_F(FileTrashDeathTest, KeepsWhatItTakesWhereItCanBeGotBack) {
    EXPECT_EXIT(
        {
            useOwnHome();
            folder.write("caches/pip/wheel", "bytes");
            const fs::path cache = folder.path() / "caches/pip";
            const auto refusal = FileTrash().move(cache);
            const auto info = readFile((trash / "info/pip.trashinfo").string()).value_or("");
            endWith({!refusal, !fs::exists(cache), readFile((trash / "files/pip/wheel").string()) == "bytes",
                     info.find("Path=" + cache.string()) != std::string::npos});
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FileTrashDeathTest, LinkGoesAndItsTargetStays) {
    EXPECT_EXIT(
        {
            useOwnHome();
            folder.write("target/file", "bytes");
            fs::create_directory_symlink(folder.path() / "target", folder.path() / "link");
            const auto refusal = FileTrash().move(folder.path() / "link");
            endWith({!refusal, !fs::is_symlink(folder.path() / "link"), fs::exists(folder.path() / "target/file"),
                     fs::is_symlink(trash / "files/link")});
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FileTrashDeathTest, SecondOfANameLeavesTheFirst) {
    EXPECT_EXIT(
        {
            useOwnHome();
            bool moved = true;
            for (const char* text : {"first", "second"}) {
                folder.write("cache", text);
                moved = moved && !FileTrash().move(folder.path() / "cache");
            }
            int kept = 0;
            for ([[maybe_unused]] const auto& entry : fs::directory_iterator(trash / "files")) ++kept;
            endWith({moved, kept == 2, readFile((trash / "files/cache").string()) == "first"});
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FileTrashDeathTest, WhatHasGoneIsSaidInOneSentence) {
    EXPECT_EXIT(
        {
            useOwnHome();
            const fs::path missing = folder.path() / "missing";
            endWith({FileTrash().move(missing) == missing.string() + " is no longer there."});
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(FileTrashDeathTest, WithoutTheRightNothingIsTouched) {
    EXPECT_EXIT(
        {
            useOwnHome();
            folder.write("kept/cache", "bytes");
            fs::create_directory(folder.path() / "data");
            fs::permissions(folder.path(), fs::perms(0755));
            fs::permissions(folder.path() / "data", fs::perms(0777));
            fs::permissions(folder.path() / "kept", fs::perms(0555));
            const fs::path cache = folder.path() / "kept/cache";
            const int status = unprivileged([&] {
                const auto refusal = FileTrash().move(cache);
                if (!refusal || !fs::exists(cache)) return 1;
                std::cerr << *refusal << std::endl;
                return refusal->find(cache.string()) == 0 ? 0 : 2;
            });
            fs::permissions(folder.path() / "kept", fs::perms(0755));
            endWith({status == 0});
        },
        ::testing::ExitedWithCode(0), "kept/cache .*left where it is\\.\n");
}

TEST_F(FileTrashDeathTest, VolumeWithoutATrashKeepsItsFiles) {
    EXPECT_EXIT(
        {
            useOwnHome();
            // In the memory disk of the system no Trash is ever made.
            std::string pattern = "/dev/shm/ravik-test-XXXXXX";
            const int file = mkstemp(pattern.data());
            const auto refusal = FileTrash().move(pattern);
            const bool stays = fs::exists(pattern);
            close(file);
            unlink(pattern.c_str());
            endWith({file >= 0, stays,
                     refusal == "The volume of " + pattern + " has no Trash, so it was left where it is."});
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace ravik::platform

#include "Platform/Linux/Folders.h"

#include <map>

#include <gtest/gtest.h>

namespace ravik::platform {

namespace {

struct User {
    std::map<std::string, std::string> variables{{"HOME", "/home/ada"}};
    std::map<std::string, std::string> files;
    std::string databaseHome = "/home/database";

    Folders folders() const {
        Environment environment;
        environment.variable = [this](const char* name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            if (found == variables.end()) return {};
            return found->second;
        };
        environment.uid = 1234;
        environment.databaseHome = databaseHome;
        environment.read = [this](const std::filesystem::path& path) -> std::optional<std::string> {
            const auto found = files.find(path.string());
            if (found == files.end()) return {};
            return found->second;
        };
        return linuxFolders(environment);
    }
};

}  // namespace

TEST(Folders, LieBelowHomeByDefault) {
    const Folders folders = User().folders();
    EXPECT_EQ(folders.home, "/home/ada");
    EXPECT_EQ(folders.log, "/home/ada/.local/state/ravik");
    EXPECT_EQ(folders.formerLog, "/home/ada/.local/state/tolvane");
    EXPECT_EQ(folders.historyCache, "/home/ada/.cache/ravik/history");
    EXPECT_EQ(folders.settings, "/home/ada/.config/ravik/settings.json");
    EXPECT_EQ(folders.runtime, "/tmp/ravik-1234");
    EXPECT_EQ(folders.desktop, "/home/ada");
    EXPECT_EQ(folders.temporary, "/tmp");
    EXPECT_EQ(folders.crashReports, "/home/ada/.local/state/ravik");
}

TEST(Folders, FollowTheVariables) {
    User user;
    user.variables["XDG_STATE_HOME"] = "/s";
    user.variables["TMPDIR"] = "/t";
    user.variables["XDG_CACHE_HOME"] = "/c/";
    user.variables["XDG_CONFIG_HOME"] = "/e";
    user.variables["XDG_RUNTIME_DIR"] = "/run/user/1234";
    const Folders folders = user.folders();
    EXPECT_EQ(folders.log, "/s/ravik");
    EXPECT_EQ(folders.crashReports, "/s/ravik");
    EXPECT_EQ(folders.temporary, "/t");
    EXPECT_EQ(folders.formerLog, "/s/tolvane");
    EXPECT_EQ(folders.historyCache, "/c/ravik/history");
    EXPECT_EQ(folders.settings, "/e/ravik/settings.json");
    EXPECT_EQ(folders.runtime, "/run/user/1234/ravik");
}

TEST(Folders, RelativeOrEmptyVariableCountsAsAbsent) {
    User user;
    for (const char* name :
         {"XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "XDG_DESKTOP_DIR"}) {
        for (const char* value : {"", "state", "./state", "~/state", "$HOME/state"}) {
            user.variables[name] = value;
            const Folders folders = user.folders();
            EXPECT_EQ(folders.log, "/home/ada/.local/state/ravik") << name << value;
            EXPECT_EQ(folders.historyCache, "/home/ada/.cache/ravik/history") << name << value;
            EXPECT_EQ(folders.settings, "/home/ada/.config/ravik/settings.json") << name << value;
            EXPECT_EQ(folders.runtime, "/tmp/ravik-1234") << name << value;
            EXPECT_EQ(folders.desktop, "/home/ada") << name << value;
        }
    }
}

TEST(Folders, HomeComesFromTheUserDatabaseWhereTheVariableIsNoUse) {
    User user;
    user.variables["HOME"] = "here";
    EXPECT_EQ(user.folders().settings, "/home/database/.config/ravik/settings.json");
    user.variables.clear();
    EXPECT_EQ(user.folders().home, "/home/database");
}

TEST(Folders, WithoutAnyHomeNothingLandsInTheCurrentFolder) {
    for (const char* known : {"", "relative"}) {
        User user;
        user.variables.clear();
        user.databaseHome = known;
        const Folders folders = user.folders();
        EXPECT_EQ(folders.home, "/");
        EXPECT_EQ(folders.log, "/.local/state/ravik");
        EXPECT_EQ(folders.settings, "/.config/ravik/settings.json");
    }
}

TEST(Folders, DesktopIsTheOneThatTheUserNamed) {
    User user;
    user.files["/home/ada/.config/user-dirs.dirs"] =
        "# written by hand\nXDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\nXDG_DESKTOP_DIR=\"$HOME/Schreib\\\"tisch\"\n";
    EXPECT_EQ(user.folders().desktop, "/home/ada/Schreib\"tisch");
    user.variables["XDG_CONFIG_HOME"] = "/e";
    EXPECT_EQ(user.folders().desktop, "/home/ada");
    user.files["/e/user-dirs.dirs"] = "  XDG_DESKTOP_DIR = \"/data/Desktop\"";
    EXPECT_EQ(user.folders().desktop, "/data/Desktop");
    user.variables["XDG_DESKTOP_DIR"] = "/named";
    EXPECT_EQ(user.folders().desktop, "/named");
}

TEST(Folders, UserFolderBearsAnyFile) {
    const auto desktop = [](std::string_view text) { return userFolder(text, "XDG_DESKTOP_DIR", "/h"); };
    EXPECT_EQ(desktop(""), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR"), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR="), std::nullopt);
    EXPECT_EQ(desktop("#XDG_DESKTOP_DIR=\"/x\"\n"), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"/open\n"), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"/open\\"), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"relative\""), std::nullopt);
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"$HOME\""), "/h");
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"$HOME/\"\n"), "/h");
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=/plain\r\n"), "/plain");
    EXPECT_EQ(desktop("XDG_DESKTOP_DIR=\"/a\"\nXDG_DESKTOP_DIR=\"/b\"\n\n"), "/b");
}

TEST(Folders, OfThisProcessAreAbsolute) {
    const Folders folders = linuxFolders(processEnvironment());
    for (const auto& path : {folders.home, folders.log, folders.formerLog, folders.historyCache, folders.settings,
                             folders.runtime, folders.desktop}) {
        EXPECT_TRUE(path.is_absolute()) << path;
    }
}

}  // namespace ravik::platform

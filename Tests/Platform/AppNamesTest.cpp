#include "Platform/Linux/AppNames.h"

#include <filesystem>
#include <fstream>
#include <map>

#include <gtest/gtest.h>

#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Tests/Fakes/FakeClock.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

struct Folder {
    Folder() {
        fs::create_directories(root / "applications");
        fs::create_directories(root / "proc");
    }
    fakes::TemporaryFolder own;
    const fs::path root = own.path();
};

/// Processes in a captured folder, applications in another.
struct AppNamesTest : testing::Test, Folder {
    AppNamesTest() {
        entry("firefox", "Firefox", "/usr/lib/firefox/firefox %u");
        entry("org.kde.konsole", "Konsole", "/usr/bin/konsole", "System;TerminalEmulator;");
        entry("code", "Visual Studio Code", "/usr/share/code/code %F", "Development;IDE;");
        entry("google-chrome", "Google Chrome", "/opt/google/chrome/google-chrome %U");
        entry("terminator-like", "Notes", "python3 /usr/share/notes/notes.py");
        entry("org.gimp.GIMP", "GIMP", "/usr/bin/flatpak run --command=gimp-2.10 org.gimp.GIMP");
        entry("spot_spot", "Spot", "/snap/bin/spot");
    }

    void entry(const std::string& id, const std::string& name, const std::string& exec,
               const std::string& categories = "") {
        std::ofstream(root / "applications" / (id + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=" << exec << "\nCategories=" << categories
            << "\n";
    }

    struct Process {
        Pid pid = 0;
        Pid ppid = 1;
        std::string executable = {};
        std::vector<std::string> arguments = {};
        std::string unit = "session-2.scope";
        int image = 7000;
    };
    void put(const Process& process) const {
        const fs::path folder = root / "proc" / std::to_string(process.pid);
        fs::create_directories(folder);
        const std::string name = fs::path(process.executable).filename().native().substr(0, 15);
        std::ofstream(folder / "stat") << process.pid << " (" << name << ") S " << process.ppid
                                       << " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " << 100 + process.pid << " 1 10 0 1 1 "
                                       << process.image;
        std::ofstream(folder / "statm") << "90 10 1 0 0 0 0";
        std::ofstream cmdline(folder / "cmdline", std::ios::binary);
        if (process.arguments.empty()) cmdline << process.executable << '\0';
        for (const std::string& argument : process.arguments) cmdline << argument << '\0';
        std::ofstream(folder / "cgroup") << "0::/user.slice/user-1000.slice/" << process.unit << "\n";
        fs::remove(folder / "exe");
        fs::create_symlink(process.executable, folder / "exe");
    }
    void end(Pid pid) const { fs::remove_all(root / "proc" / std::to_string(pid)); }

    /// Names by pid; "" where there is none.
    std::map<Pid, std::string> scan() {
        std::map<Pid, std::string> names;
        for (const Proc& proc : scanner.scan()) names[proc.id] = proc.app ? proc.app->str() : "";
        return names;
    }
    /// So many that all that is looked at in turns has been.
    std::map<Pid, std::string> scanAllTurns() {
        std::map<Pid, std::string> names;
        for (int turn = 0; turn < 12; ++turn) names = scan();
        return names;
    }

    fakes::FakeClock clock;
    AppNames apps{{{root / "applications"}, {"/usr/bin"}}, (root / "proc").native()};
    LinuxProcessTable table{clock, {.root = (root / "proc").native(), .apps = &apps}};
    ProcessScanner scanner{table, clock};
};

}  // namespace

TEST_F(AppNamesTest, TheUnitOfTheControlGroupComesFirst) {
    put({.pid = 10, .executable = "/home/me/wrapper", .unit = "app.slice/app-gnome-firefox-3401.scope"});
    put({.pid = 11, .executable = "/usr/bin/bwrap", .unit = "app.slice/app-flatpak-org.gimp.GIMP-77.scope"});
    put({.pid = 12,
         .executable = "/snap/spot/9/bin/x",
         .unit = "snap.spot.spot-3f0c2a52-6a0b-4d9e-9f0e-0a1b2c3d4e5f.scope"});
    put({.pid = 13, .executable = "/home/me/other", .unit = R"(app.slice/app-google\x2dchrome@0b12.service)"});
    put({.pid = 14, .executable = "/home/me/other", .unit = "app.slice/app-unknown-1.scope"});
    auto names = scan();
    EXPECT_EQ(names[10], "Firefox");
    EXPECT_EQ(names[11], "GIMP");
    EXPECT_EQ(names[12], "Spot");
    EXPECT_EQ(names[13], "Google Chrome");
    EXPECT_EQ(names[14], "");
}

TEST_F(AppNamesTest, AnExecutableOfAnotherEntryGoesBeforeTheUnit) {
    put({.pid = 10, .executable = "/usr/lib/firefox/firefox", .unit = "app-org.kde.konsole-88.scope"});
    put({.pid = 11,
         .executable = "/usr/bin/python3.11",
         .arguments = {"python3", "/usr/share/notes/notes.py"},
         .unit = "app-gnome-firefox-3401.scope"});
    auto names = scan();
    EXPECT_EQ(names[10], "Firefox");
    EXPECT_EQ(names[11], "Notes");
}

TEST_F(AppNamesTest, ATerminalsOrAnEditorsUnitNamesOnlyItsOwn) {
    put({.pid = 10, .executable = "/usr/bin/konsole", .unit = "app-org.kde.konsole-88.scope"});
    put({.pid = 11, .ppid = 10, .executable = "/usr/bin/bash", .unit = "app-org.kde.konsole-88.scope"});
    put({.pid = 12,
         .ppid = 11,
         .executable = "/usr/bin/node",
         .arguments = {"node", "server.js"},
         .unit = "app-org.kde.konsole-88.scope"});
    put({.pid = 20, .executable = "/usr/share/code/code", .unit = "app-code-4.scope"});
    put({.pid = 21, .executable = "/usr/bin/node", .arguments = {"node", "server.js"}, .unit = "app-code-4.scope"});
    auto names = scan();
    EXPECT_EQ(names[10], "Konsole");
    EXPECT_EQ(names[11], "");
    EXPECT_EQ(names[12], "");
    EXPECT_EQ(names[20], "Visual Studio Code");
    EXPECT_EQ(names[21], "");
}

TEST_F(AppNamesTest, AHelperTakesTheNameOfItsNearestAncestorFromTheSameFolder) {
    put({.pid = 10, .executable = "/opt/google/chrome/chrome"});
    put({.pid = 11,
         .ppid = 10,
         .executable = "/opt/google/chrome/chrome",
         .arguments = {"/opt/google/chrome/chrome", "--type=zygote"}});
    put({.pid = 12,
         .ppid = 11,
         .executable = "/opt/google/chrome/chrome",
         .arguments = {"/opt/google/chrome/chrome --type=renderer --x"}});
    // An application that no entry's path leads to, known by its unit alone.
    put({.pid = 20, .executable = "/home/me/electron/app", .unit = "app-gnome-firefox-1.scope"});
    put({.pid = 21, .ppid = 20, .executable = "/usr/bin/bash"});
    put({.pid = 22, .ppid = 21, .executable = "/home/me/electron/app", .arguments = {"app", "--type=gpu-process"}});
    put({.pid = 23, .ppid = 21, .executable = "/home/me/electron/crashpad_handler"});
    put({.pid = 24, .ppid = 21, .executable = "/home/me/elsewhere/app", .arguments = {"app", "--type=utility"}});
    auto names = scan();
    EXPECT_EQ(names[11], "Google Chrome");
    EXPECT_EQ(names[12], "Google Chrome");
    EXPECT_EQ(names[22], "Firefox");
    EXPECT_EQ(names[23], "Firefox");
    EXPECT_EQ(names[24], "");
}

TEST_F(AppNamesTest, ExecutablesAndScriptsAreLookedUp) {
    put({.pid = 10, .executable = "/usr/lib/firefox/firefox (deleted)"});
    put({.pid = 11,
         .executable = "/usr/bin/python3.11",
         .arguments = {"/usr/bin/python3", "-s", "/usr/share/notes/notes.py"}});
    put({.pid = 12, .executable = "/usr/bin/python3.11", .arguments = {"python3", "/home/me/x.py"}});
    put({.pid = 13, .executable = "/app/bin/gimp-2.10"});
    auto names = scan();
    EXPECT_EQ(names[10], "Firefox");
    EXPECT_EQ(names[11], "Notes");
    EXPECT_EQ(names[12], "");
    EXPECT_EQ(names[13], "GIMP");
}

TEST_F(AppNamesTest, ChildrenTakeTheirParentsNameButNeverThroughAShell) {
    put({.pid = 10, .executable = "/usr/share/code/code"});
    put({.pid = 11, .ppid = 10, .executable = "/usr/bin/node", .arguments = {"node", "lsp.js"}});
    put({.pid = 12, .ppid = 11, .executable = "/home/me/worker"});
    put({.pid = 13, .ppid = 10, .executable = "/usr/bin/zsh"});
    put({.pid = 14, .ppid = 13, .executable = "/usr/bin/node", .arguments = {"node", "tool.js"}});
    put({.pid = 20, .executable = "/usr/bin/konsole"});
    put({.pid = 21, .ppid = 20, .executable = "/home/me/straight"});
    auto names = scan();
    EXPECT_EQ(names[11], "Visual Studio Code");
    EXPECT_EQ(names[12], "Visual Studio Code");
    EXPECT_EQ(names[13], "Visual Studio Code");
    EXPECT_EQ(names[14], "");
    EXPECT_EQ(names[21], "");
}

TEST_F(AppNamesTest, AParentWithAHigherPidIsAskedFirst) {
    put({.pid = 500, .executable = "/usr/lib/firefox/firefox"});
    put({.pid = 30, .ppid = 500, .executable = "/home/me/worker"});
    // Links that form a circle name nobody and end.
    put({.pid = 40, .ppid = 41, .executable = "/home/me/a"});
    put({.pid = 41, .ppid = 40, .executable = "/home/me/b"});
    auto names = scan();
    EXPECT_EQ(names[30], "Firefox");
    EXPECT_EQ(names[40], "");
}

TEST_F(AppNamesTest, AnExecIsAskedAgain) {
    put({.pid = 10, .executable = "/usr/lib/firefox/firefox"});
    EXPECT_EQ(scan()[10], "Firefox");
    put({.pid = 10, .executable = "/home/me/other", .image = 7001});
    EXPECT_EQ(scanAllTurns()[10], "");
}

TEST_F(AppNamesTest, ATitleKeepsTheName) {
    put({.pid = 10, .executable = "/home/me/wrapper", .unit = "app-firefox-1.scope"});
    scan();
    put({.pid = 10, .executable = "/home/me/wrapper", .arguments = {"wrapper: idle"}, .unit = "session-2.scope"});
    EXPECT_EQ(scanAllTurns()[10], "Firefox");
}

TEST_F(AppNamesTest, AnInheritedNameEndsWithTheParent) {
    put({.pid = 10, .executable = "/usr/share/code/code"});
    put({.pid = 11, .ppid = 10, .executable = "/home/me/server"});
    put({.pid = 12, .ppid = 10, .executable = "/usr/share/code/code", .arguments = {"code", "--type=utility"}});
    EXPECT_EQ(scan()[11], "Visual Studio Code");
    end(10);
    put({.pid = 11, .ppid = 1, .executable = "/home/me/server"});
    put({.pid = 12, .ppid = 1, .executable = "/usr/share/code/code", .arguments = {"code", "--type=utility"}});
    auto names = scanAllTurns();
    EXPECT_EQ(names[11], "");
    EXPECT_EQ(names[12], "Visual Studio Code");
}

TEST_F(AppNamesTest, WhoWasSeenToAdoptHandsNothingDown) {
    put({.pid = 10, .executable = "/usr/share/code/code"});
    put({.pid = 11, .ppid = 10, .executable = "/home/me/middle"});
    put({.pid = 12, .ppid = 11, .executable = "/home/me/server"});
    EXPECT_EQ(scan()[12], "Visual Studio Code");
    end(11);
    put({.pid = 12, .ppid = 10, .executable = "/home/me/server"});
    EXPECT_EQ(scanAllTurns()[12], "");
}

TEST_F(AppNamesTest, TheIndexFollowsItsFolders) {
    put({.pid = 10, .executable = "/opt/new/new"});
    EXPECT_EQ(scan()[10], "");
    entry("new", "New", "/opt/new/new");
    EXPECT_EQ(scanAllTurns()[10], "New");
    fs::remove(root / "applications/new.desktop");
    EXPECT_EQ(scanAllTurns()[10], "");
}

TEST_F(AppNamesTest, FoldersBelowAreJoinedIntoTheId) {
    fs::create_directories(root / "applications/kde");
    entry("kde/thing", "Thing", "/usr/bin/thing");
    put({.pid = 10, .executable = "/home/me/x", .unit = R"(app-kde\x2dthing-5.scope)"});
    EXPECT_EQ(scan()[10], "Thing");
}

TEST_F(AppNamesTest, TellsTheServicesWhoseUnitItIs) {
    const auto konsole = apps.ofUnit("app-org.kde.konsole-88.scope");
    ASSERT_TRUE(konsole);
    EXPECT_EQ(konsole->id, "org.kde.konsole");
    EXPECT_TRUE(konsole->isTypedIn);
    EXPECT_FALSE(apps.ofUnit("app-firefox-1.scope")->isTypedIn);
    EXPECT_FALSE(apps.ofUnit("app-none-1.scope"));

    put({.pid = 10, .executable = "/usr/lib/firefox/firefox"});
    put({.pid = 11, .executable = "/usr/bin/python3.11", .arguments = {"python3", "/usr/share/notes/notes.py"}});
    Proc proc;
    proc.id = 10;
    EXPECT_TRUE(apps.belongs(proc, "firefox"));
    EXPECT_FALSE(apps.belongs(proc, "org.kde.konsole"));
    EXPECT_FALSE(apps.belongs(proc, "none"));
    proc.id = 11;
    EXPECT_TRUE(apps.belongs(proc, "terminator-like"));
}

}  // namespace ravik::platform

#include "Platform/Linux/LinuxDesktopApp.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <sstream>

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* program = RAVIK_BINARY_DIR "/bin/ravik-test-desktop-app";

/// Another start of the app, as a process of its own.
class Start : public OwnServer {
public:
    Start(const std::vector<std::string>& environment, const fs::path& heard, std::vector<std::string> asked = {}) {
        asked.insert(asked.begin(), {program, "{fd}", heard});
        m_told = start(asked, environment);
    }
    /// "first", or who is.
    const std::string& told() const { return m_told; }

private:
    std::string m_told;
};

struct DesktopApps : ::testing::Test {
    DesktopAppOptions options(const std::string& address) {
        DesktopAppOptions options;
        options.bus = address;
        options.runtime = runtime;
        options.home = folder.path();
        options.programs = folder.path() / "bin";
        options.uid = geteuid();
        options.variable = [this](const char* name) { return variables[name]; };
        return options;
    }
    std::vector<std::string> environment(const std::string& address) const {
        return {"DBUS_SESSION_BUS_ADDRESS=" + address, "XDG_RUNTIME_DIR=" + runtime.native()};
    }
    /// A program of the app's name that tells how it was started.
    void install(const fs::path& where, const std::string& then = "sleep 5") {
        folder.write(where / "ravik-desktop",
                     "#!/bin/sh\n"
                     "{ echo \"$@\"; pwd; ps -o sid= -o tty= $$ | tr -d ' '; echo $$; readlink /proc/$$/fd/2; "
                     "echo \"[$TOLVANE_OPEN]\"; } > '" +
                         heard.native() + ".new'\nmv '" + heard.native() + ".new' '" + heard.native() + "'\nexec " +
                         then + "\n");
        fs::permissions(folder.path() / where / "ravik-desktop", fs::perms(0700));
    }
    /// Sees to the end of what was started in that way.
    void endStarted() {
        std::istringstream words(lines());
        std::string line;
        for (int at = 0; at < 4; ++at) std::getline(words, line);
        if (!line.empty()) reaper.end(reaper.add(static_cast<Pid>(std::stol(line))));
    }
    std::string lines() const { return readFile(heard.native()).value_or(""); }
    bool hears(const std::string& text) {
        return waitUntil([&] { return lines() == text; });
    }

    fakes::TemporaryFolder folder;
    fs::path runtime = folder.path() / "run";
    fs::path heard = folder.path() / "heard";
    std::map<std::string, std::string> variables;
    Reaper reaper;
};

}  // namespace

TEST_F(DesktopApps, FirstOneIsTheApp) {
    OwnBus bus;
    LinuxDesktopApp app(options(bus.address()));
    EXPECT_EQ(app.claim({}), std::nullopt);
    EXPECT_EQ(app.claim({}), std::nullopt) << "who is the app may ask again";
    EXPECT_FALSE(fs::exists(runtime)) << "the bus alone decides where there is one";
}

TEST_F(DesktopApps, SecondStartAsksTheFirstWithItsToken) {
    OwnBus bus;
    const Start first(environment(bus.address()), heard);
    ASSERT_EQ(first.told(), "first");
    variables["XDG_ACTIVATION_TOKEN"] = "wayland-token";
    variables["DESKTOP_STARTUP_ID"] = "startup_TIME7";
    LinuxDesktopApp second(options(bus.address()));
    EXPECT_EQ(second.claim({}), (DesktopApp::Other{first.pid(), true}));
    EXPECT_TRUE(hears("||wayland-token\n")) << lines();
    EXPECT_EQ(second.claim({"open", "history", "own-token"}), (DesktopApp::Other{first.pid(), true}));
    EXPECT_TRUE(hears("||wayland-token\nopen|history|own-token\n")) << lines();
}

TEST_F(DesktopApps, StartupIdStandsInForAToken) {
    OwnBus bus;
    const Start first(environment(bus.address()), heard);
    variables["DESKTOP_STARTUP_ID"] = "startup_TIME7";
    EXPECT_TRUE(LinuxDesktopApp(options(bus.address())).claim({"open", "disk", ""}));
    EXPECT_TRUE(hears("open|disk|startup_TIME7\n")) << lines();
}

TEST_F(DesktopApps, AppThatEndedLeavesItsPlace) {
    OwnBus bus;
    Start first(environment(bus.address()), heard);
    ASSERT_EQ(first.told(), "first");
    first.stop();
    LinuxDesktopApp second(options(bus.address()));
    EXPECT_EQ(second.claim({}), std::nullopt);
    second.release();
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).claim({}), std::nullopt);
}

TEST_F(DesktopApps, AppThatHangsIsNamedAndNotDoubled) {
    OwnBus bus;
    const Start first(environment(bus.address()), heard);
    ASSERT_EQ(kill(first.pid(), SIGSTOP), 0);
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).claim({}), (DesktopApp::Other{first.pid(), false}));
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).open({}),
              "The desktop app (process " + std::to_string(first.pid()) + ") is running but does not answer.");
}

TEST_F(DesktopApps, OfManyAtOnceExactlyOneIsTheApp) {
    OwnBus bus;
    constexpr int starts = 8;
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    for (int start = 0; start < starts; ++start) {
        reaper.add(startProgram({program, std::to_string(told[1]), heard.native(), "open", std::to_string(start)},
                                environment(bus.address())));
    }
    close(told[1]);
    std::string answers;
    int firsts = 0;
    int heardOf = 0;
    for (char byte = 0; firsts + heardOf < starts && read(told[0], &byte, 1) == 1;) {
        answers += byte;
        if (answers.ends_with("first\n")) ++firsts;
        if (answers.ends_with(" heard\n")) ++heardOf;
    }
    close(told[0]);
    EXPECT_EQ(firsts, 1) << answers;
    EXPECT_EQ(heardOf, starts - 1) << answers;
    EXPECT_TRUE(waitUntil([&] { return std::ranges::count(lines(), '\n') == starts - 1; })) << lines();
}

TEST_F(DesktopApps, WithoutABusALockDecides) {
    for (const std::string address : {"", "unix:path=/nowhere/bus", "no address"}) {
        Start first(environment(address), heard);
        ASSERT_EQ(first.told(), "first") << address;
        LinuxDesktopApp second(options(address));
        EXPECT_EQ(second.claim({}), (DesktopApp::Other{first.pid(), false}));
        EXPECT_EQ(second.open({}), "The desktop app (process " + std::to_string(first.pid()) +
                                       ") is running, but without a session bus it cannot be asked.");
        first.stop();
        EXPECT_TRUE(waitUntil([&] { return !second.claim({}); }));
    }
}

TEST_F(DesktopApps, WithoutABusOrAFolderForALockEveryStartIsTheApp) {
    runtime = folder.path() / "missing" / "run";
    EXPECT_EQ(LinuxDesktopApp(options("")).claim({}), std::nullopt);
}

TEST_F(DesktopApps, HearsWhatTheDesktopAsks) {
    OwnBus bus;
    const Start first(environment(bus.address()), heard);
    ASSERT_EQ(first.told(), "first");
    const auto send = [&](const std::vector<std::string>& words) {
        std::vector<std::string> call{"gdbus",         "call",
                                      "--address",     bus.address(),
                                      "--dest",        "dev.tolvane.Ravik",
                                      "--object-path", "/dev/tolvane/Ravik",
                                      "--method"};
        call.insert(call.end(), words.begin(), words.end());
        const Pid pid = reaper.add(startProgram(call));
        waitUntil([&] { return !readProc(pid); });
    };
    send({"org.freedesktop.Application.Activate", "{'desktop-startup-id': <'id'>, 'activation-token': <''>}"});
    send({"org.freedesktop.Application.Open", "['file:///tmp/a']", "{'activation-token': <'t'>}"});
    send({"org.freedesktop.Application.ActivateAction", "history", "@av []", "{'unknown': <7>}"});
    send({"org.freedesktop.Application.ActivateAction", "open", "[<'disk'>, <'more'>]", "{}"});
    send({"org.freedesktop.Application.ActivateAction", "open", "[<42>]", "{'activation-token': <42>}"});
    send({"org.freedesktop.Application.ActivateAction", "quit", "{}"});  // no such signature
    EXPECT_EQ(lines(), "||id\n||t\nhistory||\nopen|disk|\nopen||\n");
}

TEST_F(DesktopApps, OpeningAsksTheOneThatRuns) {
    OwnBus bus;
    const Start first(environment(bus.address()), heard);
    ASSERT_EQ(first.told(), "first");
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).open({"open", "history", ""}), std::nullopt)
        << "no display is needed for that";
    EXPECT_TRUE(hears("open|history|\n")) << lines();
}

TEST_F(DesktopApps, OpeningStartsTheProgramBesideThisOne) {
    install("bin");
    install("path", "false");
    variables["DISPLAY"] = ":4711";
    variables["PATH"] = (folder.path() / "path").native();
    EXPECT_EQ(LinuxDesktopApp(options("")).open({"open", "history", ""}), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return fs::exists(heard); }));
    std::istringstream told(lines());
    std::string words, folderName, session, pid, output, variable;
    std::getline(told, words);
    std::getline(told, folderName);
    std::getline(told, session);
    std::getline(told, pid);
    std::getline(told, output);
    std::getline(told, variable);
    EXPECT_EQ(words, "--open history");
    EXPECT_EQ(folderName, folder.path().native());
    EXPECT_EQ(session, pid + "?") << "a session of its own, no terminal";
    EXPECT_EQ(output, "/dev/null");
    EXPECT_EQ(variable, "[]");
    endStarted();
}

TEST_F(DesktopApps, OpeningLooksOnThePath) {
    install("path");
    variables["WAYLAND_DISPLAY"] = "wayland-0";
    variables["PATH"] = "relative::/nowhere:" + (folder.path() / "path").native();
    EXPECT_EQ(LinuxDesktopApp(options("")).open({}), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return fs::exists(heard); }));
    EXPECT_TRUE(lines().starts_with("\n")) << lines();
    endStarted();
}

TEST_F(DesktopApps, OpeningLetsTheBusStartIt) {
    OwnBus bus;
    install("bin");
    variables["DISPLAY"] = ":4711";
    bus.offer("dev.tolvane.Ravik", std::string(program) + " 1 " + heard.native());
    ApplicationBus look(bus.address());
    ASSERT_TRUE(waitUntil([&] { return look.canStart(); }));
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).open({"open", "disk", ""}), std::nullopt);
    EXPECT_TRUE(hears("open|disk|\n")) << lines();
    const auto owner = look.owner();
    ASSERT_TRUE(owner);
    reaper.end(reaper.add(*owner));
}

TEST_F(DesktopApps, OpeningGoesOnWhereTheBusFailsToStartIt) {
    OwnBus bus;
    install("bin");
    variables["DISPLAY"] = ":4711";
    bus.offer("dev.tolvane.Ravik", "/bin/false");
    ApplicationBus look(bus.address());
    ASSERT_TRUE(waitUntil([&] { return look.canStart(); }));
    EXPECT_EQ(LinuxDesktopApp(options(bus.address())).open({"open", "disk", ""}), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return fs::exists(heard); }));
    EXPECT_TRUE(lines().starts_with("--open disk\n")) << lines();
    endStarted();
}

TEST_F(DesktopApps, OpeningSaysWhyItCannot) {
    OwnBus bus;
    for (const std::string& address : {std::string(), bus.address()}) {
        variables.clear();
        EXPECT_EQ(LinuxDesktopApp(options(address)).open({}),
                  "There is no display here, and the desktop app is not running.");
        variables["DISPLAY"] = ":4711";
        EXPECT_EQ(LinuxDesktopApp(options(address)).open({}), "The desktop app, ravik-desktop, is not installed.");
    }
    install("bin", "false");
    EXPECT_EQ(LinuxDesktopApp(options("")).open({}), "The desktop app could not be started from " +
                                                         (folder.path() / "bin/ravik-desktop").native() +
                                                         ": it ended at once, with status 1.");
    folder.write("bin/ravik-desktop", "no program");
    EXPECT_EQ(LinuxDesktopApp(options("")).open({}), "The desktop app could not be started from " +
                                                         (folder.path() / "bin/ravik-desktop").native() +
                                                         ": Exec format error.");
}

TEST_F(DesktopApps, OutlivesTheBusAndTakesItsNameAgain) {
    fakes::TemporaryFolder socket;
    const std::string address = "unix:path=" + (socket.path() / "bus").native();
    auto bus = std::make_unique<OwnBus>(std::vector<std::string>{}, address);
    Start first(environment(address), heard);
    ASSERT_EQ(first.told(), "first");
    bus = nullptr;
    fs::remove(socket.path() / "bus");
    EXPECT_FALSE(waitUntil([&] { return !readProc(first.pid()); }, 0.3));
    bus = std::make_unique<OwnBus>(std::vector<std::string>{}, address);
    ApplicationBus look(address);
    ASSERT_TRUE(waitUntil([&] { return look.owner() == first.pid(); }));
    EXPECT_EQ(look.send({"open", "sessions", ""}, {}, false), ApplicationBus::Delivery::heard);
    EXPECT_TRUE(hears("open|sessions|\n")) << lines();
}

}  // namespace ravik::platform

#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::endtoend {

using Json = nlohmann::json;

/// What came of a command.
struct Result {
    /// Its exit status; -1 if it had to be killed at the end of its time, 128 and the signal if one ended it.
    int status = -1;
    std::string out;
    std::string err;
    double seconds = 0;

    /// Standard output as JSON; null, and a failed test, if it is none.
    Json json() const;
};

/// The finding with that id among `findings` of a diagnosis; null if there is none.
Json finding(const Json& diagnosis, std::string_view id);

/// A user's folders, all of them below one that goes with the object.
class Home {
public:
    Home();

    const std::filesystem::path& path() const { return m_folder.path(); }
    /// "NAME=value" of every variable that leads to a folder, and of none of the desktop's.
    const std::vector<std::string>& environment() const { return m_environment; }
    /// Adds a variable for the commands that are run from now on.
    void add(std::string variable) { m_environment.push_back(std::move(variable)); }

    /// A file of the user's.
    void write(const std::filesystem::path& name, const std::string& text) const { m_folder.write(name, text); }
    /// Puts the keys into the settings file as they are: what stands there is not checked for its range.
    void store(const Json& keys) const;
    Json settings() const;
    /// Leftovers count as such after a second.
    void storeShortPatience() const;
    /// The lines of a kind in the event log, oldest first.
    std::vector<Json> logLines(std::string_view kind) const;

    /// A copy of a program under another name, below a folder that is no system's: its path.
    std::string copy(const std::filesystem::path& program, const std::string& as) const;
    /// A program that only waits, under that name.
    std::string idle(const std::string& as) const;
    /// A shell under that name.
    std::string shell(const std::string& as) const;

private:
    fakes::TemporaryFolder m_folder;
    std::vector<std::string> m_environment;
};

/// A built program, started with standard input from nowhere.
class Running {
public:
    /// `program`: one of those that are built.
    Running(const Home& home, const std::vector<std::string>& words, const std::string& program = "ravik");
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    Pid pid() const { return m_pid; }
    void signal(int number) const;
    /// Waits until standard output holds a line with `text`; false at the end of that time.
    bool says(std::string_view text, double seconds = 20);
    /// What standard output holds so far.
    std::string out() const;
    /// Waits for its end; killed at the end of that time.
    Result finish(double seconds = 30);

private:
    fakes::TemporaryFolder m_output;
    std::chrono::steady_clock::time_point m_begun;
    Pid m_pid = 0;
    bool m_ended = false;
};

/// Runs the built command to its end.
Result run(const Home& home, const std::vector<std::string>& words, double seconds = 40);

/// The built command on a terminal, where it can ask and be answered.
class Typed {
public:
    Typed(const Home& home, const std::vector<std::string>& words);
    ~Typed();
    Typed(const Typed&) = delete;
    Typed& operator=(const Typed&) = delete;

    /// Waits until the terminal shows `text`; false at the end of that time.
    bool shows(std::string_view text, double seconds = 20);
    /// What keys send: "\x03" is Ctrl-C.
    void type(std::string_view keys) const;
    const std::string& screen() const { return m_screen; }
    /// Waits for its end; out is the screen.
    Result finish(double seconds = 30);

private:
    bool readSome(double seconds);

    std::chrono::steady_clock::time_point m_begun;
    int m_terminal = -1;
    Pid m_pid = 0;
    bool m_ended = false;
    std::string m_screen;
};

/// A test of the built command. What it starts has to have gone when it is over.
class EndToEnd : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts a program and sees to its end.
    Pid start(const std::vector<std::string>& words, const std::vector<std::string>& environment = {});
    /// The process that runs these very words, once there is one, which is then seen to as well; 0 after a while.
    Pid find(const std::string& command);
    /// The same, once it has been adopted.
    Pid findAdopted(const std::string& command);
    bool lives(Pid pid) const { return platform::readProc(pid).has_value(); }

    Home home;
    platform::Reaper reaper;
};

}  // namespace ravik::endtoend

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

/// A server program of a test's own that tells its address on a pipe. Ended with the object, by its own pid.
class OwnServer {
public:
    OwnServer() = default;
    ~OwnServer() { stop(); }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;

    /// 0 if it could not be started.
    Pid pid() const { return m_pid; }
    void stop() { m_reaper.end(m_pid); }

protected:
    /// Starts it with the number of the pipe's end in place of "{fd}" and returns the first line that it writes
    /// there; empty if it writes none within ten seconds.
    std::string start(std::vector<std::string> words, const std::vector<std::string>& environment = {});

private:
    Reaper m_reaper;
    Pid m_pid = 0;
};

/// Xvfb on a display number of its own choice.
class OwnXServer : public OwnServer {
public:
    explicit OwnXServer(const std::string& screen = "800x600x24");
    /// ":7"; empty if it did not start.
    const std::string& display() const { return m_display; }
    /// "DISPLAY=:7", for the environment of a program.
    std::string variable() const { return "DISPLAY=" + m_display; }

private:
    std::string m_display;
};

/// openbox, with its own defaults and none of the user's settings.
class OwnWindowManager {
public:
    explicit OwnWindowManager(const OwnXServer& server);
    bool started() const { return m_started; }

private:
    fakes::TemporaryFolder m_home;
    Reaper m_reaper;
    Pid m_pid = 0;
    bool m_started = false;
};

/// A message bus for session services, in a folder of its own.
class OwnBus : public OwnServer {
public:
    /// It starts those services that are named here when they are asked for, as the system describes them. `address`
    /// is one of the test's choice, at which the bus can come back.
    explicit OwnBus(const std::vector<std::string>& services = {}, const std::string& address = "");
    /// Soon it starts that as well.
    void offer(const std::string& name, const std::string& exec) const;
    /// Empty if it did not start.
    const std::string& address() const { return m_address; }
    std::string variable() const { return "DBUS_SESSION_BUS_ADDRESS=" + m_address; }

private:
    fakes::TemporaryFolder m_folder;
    std::string m_address;
};

/// Turns GLib's default main context until `done` says true, at most this long.
bool turnUntil(const std::function<bool()>& done, double seconds = 10);

}  // namespace ravik::platform

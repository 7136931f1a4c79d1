#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// The user's session bus, as far as it tells of applications. Main loop. Never starts a bus; waits for an answer
/// half a second at most.
class SessionBus {
public:
    /// `address` in D-Bus's form; empty: there is none.
    explicit SessionBus(const std::string& address);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Owners of names that belong to applications: players, and those with a desktop entry that is shown.
    Pids applications();

    /// Asks the process to quit, through the first of its names that offers it; false if none does.
    bool quit(Pid pid);

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};

/// The session bus's address from the environment, else the socket in the run-time folder; empty if there is none.
std::string sessionBusAddress();

/// The object at which an application of this bus name exports its actions.
std::string actionsPath(std::string_view busName);

}  // namespace ravik::platform

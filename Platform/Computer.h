#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Platform.h"
#include "Platform/Terminal.h"

namespace ravik {

/// The computer that the program runs on, made once at start. Each platform has its own makeComputer().
class Computer {
public:
    virtual ~Computer() = default;
    virtual Platform& platform() = 0;
    virtual Terminal& terminal() = 0;

    virtual bool isMac() const = 0;
    virtual std::uint32_t uid() const = 0;
    virtual Pid pid() const = 0;
    /// A variable of the environment; absent if it is not set.
    virtual std::optional<std::string> environment(const char* name) const = 0;
    /// Calls back once, on the main loop, when the program is asked to end (SIGINT, SIGTERM, SIGHUP).
    virtual void onTermination(std::function<void()> handler) = 0;
    /// How the operating system calls itself, as "debian 12"; empty if it does not say.
    virtual std::string systemName() const = 0;
};

/// `groupOf` names the application that a process belongs to, for what the desktop only knows by its pid.
std::unique_ptr<Computer> makeComputer(std::function<std::string(const Proc&)> groupOf);

}  // namespace ravik

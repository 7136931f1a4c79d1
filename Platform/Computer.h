#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Core/Base/Time.h"
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
    /// What the operating system says of itself: the text of os-release; empty if there is none.
    virtual std::string osRelease() const = 0;
    /// Gives back memory that a window which has closed has left behind. Main loop; takes a millisecond or two.
    virtual void releaseMemory() = 0;
};

/// What a platform needs of the core's knowledge, handed in by whoever composes the program.
struct CoreRules {
    /// The group name of a process, for what the desktop only knows by its pid.
    std::function<std::string(const Proc&)> groupOf;
    /// True for the command of a helper that tools start detached.
    std::function<bool(std::string_view command)> isToolHelper;
};

/// `name` is what other processes are told of this one: "ravik watch".
std::unique_ptr<Computer> makeComputer(CoreRules rules, std::string name);

/// When this file or folder was made, links not followed; absent where the file system does not keep it. Each platform
/// has its own. Any thread.
std::optional<Time> creationDate(const std::filesystem::path& path);

}  // namespace ravik

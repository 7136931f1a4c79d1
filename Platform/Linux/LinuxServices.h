#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include "Platform/Linux/ServiceRules.h"
#include "Platform/Linux/Sockets.h"
#include "Platform/Linux/XWindowOwners.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// What the index of desktop entries knows of units and programs. Background task.
class ApplicationUnits {
public:
    struct Application {
        /// Of the desktop entry, as belongs() takes it.
        std::string id;
        /// A terminal or an editor: everything that is typed in it lies in its unit.
        bool isTypedIn = false;
    };

    virtual ~ApplicationUnits() = default;
    /// The application that a unit is named for; absent where no desktop entry fits.
    virtual std::optional<Application> ofUnit(std::string_view unit) = 0;
    /// True if the executable of the process belongs to that desktop entry.
    virtual bool belongs(const Proc& proc, const std::string& id) = 0;
};

/// Which processes an adopter has for a good reason, by control group, session and family. Keeps what it saw of
/// adoptions between readings, and for a minute what it read of a process; whoever was not known then, or has
/// another parent or command since, is read at once. What cannot be read counts as managed.
class LinuxServices : public Services {
public:
    struct Options {
        std::filesystem::path procRoot = "/proc";
        std::uint32_t uid = 0;
        /// This program.
        Pid self = 0;
        /// True for a command that tools start detached, so that leading a session is no proof of a daemon.
        std::function<bool(std::string_view command)> isToolHelper;
        /// May be null; outlives the services. Without it every unit of an application manages what lies in it.
        ApplicationUnits* applications = nullptr;
        /// Pids that own a window. Asked from the background task.
        std::function<PidSet()> windowOwners = [] { return xWindowOwners(); };
        /// All Unix sockets with their other ends; absent where the kernel does not tell.
        std::function<std::optional<std::vector<UnixSocket>>()> unixSockets = readUnixSockets;
    };

    explicit LinuxServices(Options options);

    Reading read(const std::vector<Proc>& procs, Time now) override;
    PidSet engaged(const Pids& candidates, const std::vector<Proc>& procs) override;

private:
    /// What the kernel says of one process that does not stand in its record.
    struct Facts {
        Time at = distantPast;
        Time started = 0;
        std::uint64_t startTicks = 0;
        Pid parent = 0;
        Text command;
        bool known = false;
        std::string controlGroup;
        Pid session = 0;
    };

    const Facts& facts(const Proc& proc, Time now);
    bool isManaged(const Proc& proc, const PidSet& managers, const std::vector<Proc>& procs, Time now);
    bool appLivesIn(const std::string& unitPath, const std::string& id, const std::vector<Proc>& procs, Time now);
    std::string ownControlGroup() const;

    Options m_options;
    AdoptionWatch m_adoptions;
    std::unordered_map<Pid, Facts> m_facts;
    std::string m_ownGroup;
    Time m_ownGroupAt = distantPast;
};

}  // namespace ravik::platform

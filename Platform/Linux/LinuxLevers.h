#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/LeverJournal.h"
#include "Platform/Linux/LeverRecord.h"
#include "Platform/Linux/UnitWeights.h"
#include "Platform/Linux/UserManager.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// Where LinuxLevers finds things.
struct LeverOptions {
    /// This program's run-time folder, for levers.json.
    std::filesystem::path folder;
    std::uint32_t uid = 0;
    Pid self = 0;
    /// The session bus, in D-Bus's form; empty: there is none.
    std::string bus;
    /// Seconds since 1970.
    std::function<Time()> now;
    std::string procRoot = "/proc";
    std::string cgroupRoot = "/sys/fs/cgroup";
};

/// Pausing by signals, and demoting by the first rung that applies to a whole application: its own units' weight, its
/// sessions' autogroups, the idle policy of its threads; and always the idle I/O class. What this user could not undo
/// is not done, which is found out by asking and never by trying.
class LinuxLevers : public Levers {
public:
    /// `signals` outlives it.
    LinuxLevers(const Signals& signals, LeverOptions options);

    Pids pause(const std::string& group, const std::vector<Proc>& targets) override;
    /// `pids` as one call of pause() returned them.
    void resume(const Pids& pids) override;
    Pids demote(const std::string& group, const std::vector<Proc>& targets) override;
    /// `pids` as one call of demote() returned them.
    void restore(const Pids& pids) override;
    std::vector<Leftover> releaseLeftovers() override;

private:
    LeverRecord begin(const std::string& action, const std::string& group) const;
    /// Those that are still the processes recorded and this user's.
    std::vector<Proc> stillSame(const std::vector<Proc>& targets) const;
    std::optional<LeverRecord> planDemotion(const std::string& group, const std::vector<Proc>& targets);
    bool lower(const LeverRecord& record);
    /// The processes that were brought back, and whether everything was.
    struct Undone {
        Pids pids;
        bool whole = true;
    };
    Undone raise(const LeverRecord& record);
    Undone resume(const LeverRecord& record) const;
    Undone undo(const LeverRecord& record);
    void release(const char* action, const Pids& pids);

    const Signals& m_signals;
    LeverOptions m_options;
    UnitScene m_scene;
    LeverJournal m_journal;
    UserManager m_manager;
};

}  // namespace ravik::platform

#pragma once

#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Watch/Proc.h"

/// Which processes stand alone for a good reason. Pure, any thread.
namespace ravik::platform {

/// True for the head of a family that outlives its terminal on purpose: a multiplexer, an agent, a remote editor's
/// server, a build daemon.
bool livesAloneOnPurpose(const Proc& proc);

/// The session in the text of /proc/PID/stat; 0 if the text is none.
Pid sessionOf(std::string_view stat);

/// Children by parent for one list of processes, which must outlive it. Every walk meets a process once.
class Families {
public:
    explicit Families(const std::vector<Proc>& procs);

    /// The root and everything below it.
    PidSet tree(Pid root) const;
    /// All heads and everything below them, but not below a child that has strayed in from elsewhere.
    PidSet below(const std::function<bool(const Proc&)>& isHead,
                 const std::function<bool(const Proc& child, const Proc& parent)>& strayed) const;
    /// The pid and its ancestors, as far as they are in the list.
    PidSet ancestry(Pid pid) const;

private:
    const std::vector<Proc>& m_procs;
    std::unordered_map<Pid, std::vector<const Proc*>> m_children;
    std::unordered_map<Pid, Pid> m_parents;
};

/// Remembers from reading to reading who was whose child.
class AdoptionWatch {
public:
    /// Call once a reading, with all processes.
    void observe(const std::vector<Proc>& procs);

    /// True if this process was seen under another parent before.
    bool sawAdoption(Pid pid) const;
    /// Living processes that were seen to take over another's child.
    const PidSet& adopters() const { return m_adopters; }

private:
    struct Known {
        Time started = 0;
        std::uint64_t startTicks = 0;
        Pid parent = 0;
        bool adopted = false;
        bool adopts = false;
    };
    std::unordered_map<Pid, Known> m_known;
    PidSet m_adopters;
};

}  // namespace ravik::platform

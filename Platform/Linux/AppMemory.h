#pragma once

#include <mutex>
#include <unordered_map>

#include "Platform/Platform.h"

namespace ravik::platform {

/// Passes a process table on and remembers which application each process was found to belong to, for those who ask
/// about a pid from another thread.
class AppMemory : public ProcessTable {
public:
    explicit AppMemory(ProcessTable& table) : m_table(table) {}

    double nanosPerTick() const override { return m_table.nanosPerTick(); }
    void list(Pids& pids) override;
    bool read(Pid pid, ProcessReading& reading) override;
    Pids listFresh() const override { return m_table.listFresh(); }
    bool readFresh(Pid pid, ProcessReading& reading) const override { return m_table.readFresh(pid, reading); }
    std::optional<Time> startTime(Pid pid) const override { return m_table.startTime(pid); }
    std::optional<std::string> commandLine(Pid pid) const override { return m_table.commandLine(pid); }

    /// The live process as a scan would give it but for its figures, with the application of the last finished
    /// scan. Any thread.
    std::optional<Proc> find(Pid pid) const;

private:
    struct App {
        std::uint64_t startTicks = 0;
        Text name;
    };

    ProcessTable& m_table;
    std::unordered_map<Pid, App> m_scanning;
    mutable std::mutex m_mutex;
    std::unordered_map<Pid, App> m_scanned;  // guarded
};

}  // namespace ravik::platform

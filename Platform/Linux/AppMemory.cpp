#include "Platform/Linux/AppMemory.h"

namespace ravik::platform {

void AppMemory::list(Pids& pids) {
    {
        const std::lock_guard lock(m_mutex);
        m_scanned.swap(m_scanning);
    }
    m_scanning.clear();
    m_table.list(pids);
}

bool AppMemory::read(Pid pid, ProcessReading& reading) {
    if (!m_table.read(pid, reading)) return false;
    if (reading.app) m_scanning[pid] = {reading.startTicks, *reading.app};
    return true;
}

std::optional<Proc> AppMemory::find(Pid pid) const {
    ProcessReading reading;
    if (!m_table.readFresh(pid, reading)) return {};
    Proc proc;
    proc.id = pid;
    proc.ppid = reading.ppid;
    proc.uid = reading.uid;
    proc.name = reading.name;
    proc.command = reading.arguments ? *reading.arguments : reading.path ? *reading.path : Text(reading.name);
    proc.started = reading.started;
    proc.startTicks = reading.startTicks;
    const std::lock_guard lock(m_mutex);
    const auto app = m_scanned.find(pid);
    if (app != m_scanned.end() && app->second.startTicks == reading.startTicks) proc.app = app->second.name;
    return proc;
}

}  // namespace ravik::platform

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/Utf8.h"

// What any thread may ask: these touch nothing that a scan remembers.
namespace ravik::platform {

Pids LinuxProcessTable::listFresh() const {
    ReadBuffer buffer;
    Pids pids;
    m_proc.list(pids, buffer);
    return pids;
}

bool LinuxProcessTable::readFresh(Pid pid, ProcessReading& reading) const {
    // Opened first and read last: it confirms that all between is of one process.
    const Descriptor memory = m_proc.open(pid, "statm");
    ReadBuffer statBuffer;
    const auto text = m_proc.read(pid, "stat", statBuffer);
    const auto stat = text ? parseProcStat(*text) : std::nullopt;
    if (!memory || !stat || stat->isKernelThread() || stat->hasEnded()) return false;
    const auto owner = m_proc.owner(pid);
    if (!owner) return false;

    ReadBuffer buffer;
    const auto arguments = splitArguments(m_proc.read(pid, "cmdline", buffer).value_or(""));
    const auto executable = m_proc.executable(pid);
    ProcessReading fresh;
    fresh.id = pid;
    fresh.ppid = stat->ppid;
    fresh.uid = *owner;
    fresh.name = processName(stat->comm, arguments, executable.value_or(""));
    if (const auto joined = joinArguments(arguments)) fresh.arguments.emplace(*joined);
    if (executable) fresh.path.emplace(repairedUtf8(withoutDeleted(*executable)));
    fresh.startTicks = stat->startTicks;
    fresh.started = startedAt(stat->startTicks, m_boot, ticksPerSecond());
    fresh.cpuTicks = m_proc.isLive() ? cpuNanoseconds(pid) : stat->cpuNanoseconds(ticksPerSecond());

    const auto swapped = m_proc.read(pid, "status", buffer);
    const std::uint64_t swapBytes = swapped ? parseVmSwap(*swapped).value_or(0) : 0;
    const auto last = ProcFolder::read(memory, buffer);
    const auto statm = last ? parseProcStatm(*last) : std::nullopt;
    if (!statm) return false;
    fresh.footprintBytes = statm->anonymous() * m_pageBytes + swapBytes;
    reading = std::move(fresh);
    return true;
}

std::optional<Time> LinuxProcessTable::startTime(Pid pid) const {
    ReadBuffer buffer;
    const auto text = m_proc.read(pid, "stat", buffer);
    const auto stat = text ? parseProcStat(*text) : std::nullopt;
    if (!stat || stat->hasEnded()) return {};
    return startedAt(stat->startTicks, m_boot, ticksPerSecond());
}

std::optional<std::string> LinuxProcessTable::commandLine(Pid pid) const {
    ReadBuffer buffer;
    const auto area = m_proc.read(pid, "cmdline", buffer);
    return area ? joinArguments(splitArguments(*area)) : std::nullopt;
}

}  // namespace ravik::platform

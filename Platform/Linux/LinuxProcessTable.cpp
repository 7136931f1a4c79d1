#include "Platform/Linux/LinuxProcessTable.h"

#include <algorithm>
#include <functional>

#include <sys/resource.h>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/ControlGroup.h"
#include "Platform/Linux/Utf8.h"

namespace ravik::platform {

namespace {

constexpr Time youngSeconds = 30;
constexpr std::uint8_t turns = 12;
/// Left to the rest of the program.
constexpr rlim_t spareDescriptors = 256;

/// How many descriptors the program may hold after asking for all it can have.
rlim_t raiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
    if (limit.rlim_cur < limit.rlim_max) {
        const rlimit raised{limit.rlim_max, limit.rlim_max};
        if (setrlimit(RLIMIT_NOFILE, &raised) == 0) limit = raised;
    }
    return limit.rlim_cur;
}

std::int64_t bootTimeOf(const ProcFolder& proc) {
    if (proc.isLive()) return bootTime();
    ReadBuffer buffer;
    return parseBootTime(ProcFolder::read(proc.open("stat"), buffer).value_or("")).value_or(0);
}

}  // namespace

LinuxProcessTable::LinuxProcessTable(const Clock& clock, Options options)
    : m_clock(clock),
      m_options(std::move(options)),
      m_proc(m_options.root),
      m_swaps(m_proc.open("swaps")),
      m_pageBytes(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      m_boot(bootTimeOf(m_proc)) {
    const rlim_t limit = raiseDescriptorLimit();
    const std::size_t room = limit > spareDescriptors ? limit - spareDescriptors : 0;
    m_options.keptDescriptors = m_proc.isLive() ? std::min(m_options.keptDescriptors, room) : 0;
}

void LinuxProcessTable::list(Pids& pids) {
    ++m_scan;
    m_now = m_clock.now();
    m_askedParent = 0;
    m_proc.list(pids, m_buffer);
    for (const Pid pid : pids) {
        const auto [entry, isNew] = m_entries.try_emplace(pid);
        if (isNew) {
            entry->second.pid = pid;
            entry->second.turn = m_nextTurn++ % turns;
        }
        entry->second.listedIn = m_scan;
    }
    if (m_entries.size() != pids.size()) {
        std::erase_if(m_entries, [&](const auto& entry) {
            const bool isGone = entry.second.listedIn != m_scan;
            if (isGone && entry.second.statm) --m_kept;
            return isGone;
        });
    }
    noteSwap();
    if (m_options.apps) m_options.apps->refresh();
}

bool LinuxProcessTable::read(Pid pid, ProcessReading& reading) {
    const Entry* entry = refresh(pid);
    if (!entry || entry->kind != Kind::process) return false;
    reading = entry->reading;
    return true;
}

LinuxProcessTable::Entry* LinuxProcessTable::refresh(Pid pid) {
    Entry& entry = m_entries[pid];
    if (entry.isKnown) {
        const bool due = isDue(entry);
        // What is read by pid comes before the measurement, which confirms it.
        if (due) entry.measuredIn = 0;
        bool lives = (!due || identify(entry)) && measure(entry);
        const bool looksAlive = entry.hasMemory;
        if (lives && entry.statm && looksAlive != (entry.kind == Kind::process)) {
            entry.measuredIn = 0;
            lives = identify(entry) && measure(entry);
        }
        if (lives) return &entry;
    }
    forget(entry);
    entry.pid = pid;
    return admit(entry) ? &entry : nullptr;
}

bool LinuxProcessTable::admit(Entry& entry) {
    if (m_kept < m_options.keptDescriptors) {
        entry.statm = m_proc.open(entry.pid, "statm");
        if (entry.statm) ++m_kept;
    }
    if (identify(entry) && measure(entry)) return true;
    forget(entry);
    return false;
}

void LinuxProcessTable::forget(Entry& entry) {
    if (entry.statm) --m_kept;
    Entry none;
    none.pid = entry.pid;
    none.turn = entry.turn;
    none.listedIn = entry.listedIn;
    entry = std::move(none);
}

bool LinuxProcessTable::isDue(const Entry& entry) {
    if (entry.kind != Kind::process || entry.identifiedIn == m_scan) return false;
    if (m_now - entry.reading.started < youngSeconds) return true;
    if (entry.turn == m_scan % turns) {
        const bool hasRun = !entry.ticksBefore || clockOf(entry.pid) != entry.ticksBefore;
        const bool hasOldName = m_options.apps && entry.appGeneration != m_options.apps->generation();
        if (hasRun || hasOldName || m_swapUsed > 0) return true;
    }
    if (hasLostParent(entry.reading.ppid)) return true;
    // A parent that is younger than its child took over the pid of the one that has gone.
    const auto parent = m_entries.find(entry.reading.ppid);
    return parent != m_entries.end() && parent->second.reading.startTicks > entry.reading.startTicks;
}

bool LinuxProcessTable::hasLostParent(Pid parent) {
    if (parent <= 0) return false;
    if (parent == m_askedParent) return m_askedParentLost;
    const auto found = m_entries.find(parent);
    if (found == m_entries.end() || found->second.listedIn != m_scan) {
        m_askedParentLost = !m_proc.isLive() || !exists(parent);
    } else {
        Entry& entry = found->second;
        m_askedParentLost = !entry.isKnown || !measure(entry) || entry.kind == Kind::zombie ||
                            (entry.kind == Kind::process && !entry.hasMemory);
    }
    m_askedParent = parent;
    return m_askedParentLost;
}

std::optional<std::uint64_t> LinuxProcessTable::clockOf(Pid pid) const {
    return m_proc.isLive() ? cpuNanoseconds(pid) : std::nullopt;
}

bool LinuxProcessTable::identify(Entry& entry) {
    entry.ticksBefore = clockOf(entry.pid);
    const auto text = m_proc.read(entry.pid, "stat", m_buffer);
    const auto stat = text ? parseProcStat(*text) : std::nullopt;
    if (!stat || (entry.isKnown && stat->startTicks != entry.reading.startTicks)) return false;

    ProcessReading& reading = entry.reading;
    const bool isAdopted = entry.isKnown && reading.ppid != stat->ppid;
    if (isAdopted) {
        const auto adopter = m_entries.find(stat->ppid);
        if (adopter != m_entries.end()) adopter->second.adopts = true;
    }
    reading.id = entry.pid;
    reading.ppid = stat->ppid;
    reading.startTicks = stat->startTicks;
    reading.started = startedAt(stat->startTicks, m_boot, ticksPerSecond());
    entry.kind = stat->isKernelThread() ? Kind::kernelThread : stat->hasEnded() ? Kind::zombie : Kind::process;
    if (entry.kind == Kind::process) {
        const auto owner = m_proc.owner(entry.pid);
        if (!owner) return false;
        reading.uid = *owner;
        const auto arguments = m_proc.read(entry.pid, "cmdline", m_arguments).value_or("");
        const std::size_t hash = std::hash<std::string_view>{}(arguments);
        const bool isRetitled = hash != entry.argumentsHash || stat->comm != entry.comm;
        // Where the image is not told, whatever may come of an exec counts as one.
        const bool isExec = stat->image != entry.image || (stat->image == 0 && isRetitled);
        const std::uint64_t generation = m_options.apps ? m_options.apps->generation() : 0;
        const bool isUnnamed = !entry.isKnown || isExec || entry.appGeneration != generation;
        if (isUnnamed || isRetitled) {
            describe(entry, *stat, arguments);
            entry.argumentsHash = hash;
            entry.comm = stat->comm;
            entry.image = stat->image;
        }
        if (m_swapUsed > 0) readSwap(entry);
        if (m_options.apps && (isUnnamed || (isAdopted && entry.app.isInherited))) nameApplication(entry);
    }
    entry.isKnown = true;
    entry.identifiedIn = m_scan;
    return true;
}

void LinuxProcessTable::describe(Entry& entry, const ProcStat& stat, std::string_view area) {
    const auto arguments = splitArguments(area);
    const auto joined = joinArguments(arguments);
    std::optional<std::string> executable;
    const bool asksApp = m_options.apps && !m_options.apps->knowsNone();
    if (asksApp || !joined || !namedByArguments(stat.comm, arguments)) executable = m_proc.executable(entry.pid);
    if (asksApp) {
        entry.executable = withoutDeleted(executable.value_or(""));
        entry.script = scriptPathOf(arguments);
    }

    ProcessReading& reading = entry.reading;
    reading.name = processName(stat.comm, arguments, executable.value_or(""));
    reading.arguments.reset();
    if (joined) reading.arguments.emplace(*joined);
    reading.path.reset();
    if (executable) reading.path.emplace(repairedUtf8(withoutDeleted(*executable)));
}

void LinuxProcessTable::nameApplication(Entry& entry) {
    AppNames& apps = *m_options.apps;
    entry.appGeneration = apps.generation();
    entry.app = {};
    if (!apps.knowsNone()) {
        const auto group = m_proc.read(entry.pid, "cgroup", m_status);
        // The walk to the ancestors reads into the same memory.
        const std::string unit(ControlGroup::unit(ControlGroup::path(group.value_or(""))));
        const Text command = entry.reading.arguments.value_or(Text());
        entry.isNaming = true;
        entry.app = apps.ask({entry.reading.name, entry.executable, entry.script, command.view(), unit},
                             entry.reading.ppid, [this](Pid pid) { return ancestor(pid); });
        entry.isNaming = false;
    }
    entry.reading.app = entry.app.app;
}

std::optional<AppNames::Ancestor> LinuxProcessTable::ancestor(Pid pid) {
    if (pid <= 1) return {};
    const auto found = m_entries.find(pid);
    // One that is being named has come round to itself.
    if (found == m_entries.end() || found->second.isNaming) return {};
    Entry& entry = found->second;
    if (entry.identifiedIn != m_scan && !refresh(pid)) return {};
    if (entry.kind != Kind::process || entry.adopts) return {};
    return AppNames::Ancestor{entry.executable, entry.reading.ppid, &entry.app};
}

bool LinuxProcessTable::measure(Entry& entry) {
    if (entry.measuredIn == m_scan) return true;
    if (!entry.statm) return measurePlainly(entry);
    // The clock first: that the descriptor can still be read proves that the clock was this process's.
    const auto used = cpuNanoseconds(entry.pid);
    const bool hasRun = !used || used != entry.reading.cpuTicks;
    const bool mustLook = entry.identifiedIn == m_scan || entry.turn == m_scan % turns;
    if (!hasRun && !mustLook && entry.swapLooked == m_swapMoves) {
        entry.measuredIn = m_scan;
        return true;
    }
    entry.reading.cpuTicks = used;
    const auto text = ProcFolder::read(entry.statm, m_buffer);
    const auto statm = text ? parseProcStatm(*text) : std::nullopt;
    if (!statm) return false;
    take(entry, *statm);
    entry.measuredIn = m_scan;
    return true;
}

bool LinuxProcessTable::measurePlainly(Entry& entry) {
    const auto used = clockOf(entry.pid);
    const auto text = m_proc.read(entry.pid, "stat", m_buffer);
    const auto stat = text ? parseProcStat(*text) : std::nullopt;
    if (!stat || stat->startTicks != entry.reading.startTicks) return false;
    if (stat->isKernelThread() || stat->hasEnded()) {
        entry.kind = stat->hasEnded() ? Kind::zombie : Kind::kernelThread;
        entry.measuredIn = m_scan;
        return true;
    }
    entry.reading.cpuTicks = m_proc.isLive() ? used : stat->cpuNanoseconds(ticksPerSecond());
    const bool isChanged = entry.kind != Kind::process || stat->ppid != entry.reading.ppid ||
                           stat->comm != entry.comm || stat->image != entry.image;
    if (stat->residentPages != entry.residentPages) {
        entry.residentPages = stat->residentPages;
        const auto memory = m_proc.read(entry.pid, "statm", m_buffer);
        const auto statm = memory ? parseProcStatm(*memory) : std::nullopt;
        if (!statm) return false;
        take(entry, *statm);
    }
    entry.reading.footprintBytes = entry.anonymousPages * m_pageBytes + entry.swapBytes;
    entry.measuredIn = m_scan;
    return !isChanged || identify(entry);
}

void LinuxProcessTable::take(Entry& entry, const ProcStatm& statm) {
    const std::uint64_t pages = statm.anonymous();
    const bool moved = pages != entry.anonymousPages;
    entry.anonymousPages = pages;
    entry.hasMemory = statm.hasMemory();
    entry.swapLooked = m_swapMoves;
    if (m_swapUsed == 0) {
        entry.swapBytes = 0;
    } else if (moved && entry.swapSeen != m_swapMoves) {
        readSwap(entry);
    }
    entry.reading.footprintBytes = pages * m_pageBytes + entry.swapBytes;
}

void LinuxProcessTable::readSwap(Entry& entry) {
    const auto status = m_proc.read(entry.pid, "status", m_status);
    entry.swapBytes = status ? parseVmSwap(*status).value_or(0) : 0;
    entry.swapSeen = m_swapMoves;
}

void LinuxProcessTable::noteSwap() {
    const std::uint64_t used = parseSwapUsed(ProcFolder::read(m_swaps, m_buffer).value_or(""));
    if (used != m_swapUsed) ++m_swapMoves;
    m_swapUsed = used;
}

}  // namespace ravik::platform

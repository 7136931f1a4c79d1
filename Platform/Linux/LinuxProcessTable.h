#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/ProcFolder.h"
#include "Platform/Linux/ProcParse.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// The process table out of /proc, read warm: of a process that is known already, a scan asks only for its CPU clock
/// and, where that has moved, for its memory, on a descriptor that stays open. What has not run for a nanosecond has
/// changed nothing about itself; what the kernel does to its memory meanwhile is seen in turn, and at once while the
/// machine swaps. Who it is (parent, owner, arguments) is read again while it is younger than 30 s, when its parent
/// has gone, and of a twelfth of the others on each scan, as far as they have run since.
///
/// list() begins a scan: it forgets who is no longer listed, and what read() takes from then on is of that scan.
/// Zombies and kernel threads are no processes. CPU ticks are nanoseconds.
///
/// The process behind the kept descriptor and the one that pid names are the same as long as that descriptor can be
/// read, so everything read by pid is confirmed by a reading of the descriptor that comes after it.
class LinuxProcessTable : public ProcessTable {
public:
    struct Options {
        /// A captured copy serves as well; there CPU time is as coarse as `stat` tells it.
        std::string root = "/proc";
        /// Memory descriptors kept open at most. The rest is read the plain way.
        std::size_t keptDescriptors = 4096;
        /// Tells `app`; may be null, and outlives the table.
        AppNames* apps = nullptr;
    };

    /// Raises the process's own limit of open files to what it may have. The clock tells how old a process is and
    /// outlives the table.
    explicit LinuxProcessTable(const Clock& clock) : LinuxProcessTable(clock, Options()) {}
    LinuxProcessTable(const Clock& clock, Options options);

    double nanosPerTick() const override { return 1; }
    void list(Pids& pids) override;
    bool read(Pid pid, ProcessReading& reading) override;
    Pids listFresh() const override;
    /// `app` stays absent: it is a question for a scan.
    bool readFresh(Pid pid, ProcessReading& reading) const override;
    std::optional<Time> startTime(Pid pid) const override;
    std::optional<std::string> commandLine(Pid pid) const override;

    /// Descriptors kept open now.
    std::size_t kept() const { return m_kept; }

private:
    enum class Kind { process, zombie, kernelThread };

    struct Entry {
        Pid pid = 0;
        Kind kind = Kind::process;
        bool isKnown = false;
        std::uint8_t turn = 0;
        std::uint64_t listedIn = 0;
        std::uint64_t identifiedIn = 0;
        std::uint64_t measuredIn = 0;

        ProcessReading reading;
        /// The clock just before it was last identified: as long as it stands there, nothing is new.
        std::optional<std::uint64_t> ticksBefore;
        std::string comm;
        std::uint64_t image = 0;
        std::size_t argumentsHash = 0;

        /// What its application is told by.
        std::string executable;
        std::string script;
        AppNames::Answer app;
        std::uint64_t appGeneration = 0;
        bool isNaming = false;
        /// It took over another's child.
        bool adopts = false;

        Descriptor statm;
        std::uint64_t anonymousPages = 0;
        std::int64_t residentPages = -1;
        bool hasMemory = false;
        std::uint64_t swapBytes = 0;
        /// The count of the machine's swap moves when the swapped part, and when the memory, was read.
        std::uint64_t swapSeen = 0;
        std::uint64_t swapLooked = 0;
    };

    Entry* refresh(Pid pid);
    bool admit(Entry& entry);
    bool isDue(const Entry& entry);
    bool hasLostParent(Pid parent);
    /// Absent in a captured copy.
    std::optional<std::uint64_t> clockOf(Pid pid) const;
    /// Who the process is; false if it has gone. By pid, so a measurement has to follow.
    bool identify(Entry& entry);
    void describe(Entry& entry, const ProcStat& stat, std::string_view area);
    void nameApplication(Entry& entry);
    std::optional<AppNames::Ancestor> ancestor(Pid pid);
    /// Its clock and memory, once a scan; false if it has gone, or another has taken its pid.
    bool measure(Entry& entry);
    bool measurePlainly(Entry& entry);
    void take(Entry& entry, const ProcStatm& statm);
    void readSwap(Entry& entry);
    void noteSwap();
    void forget(Entry& entry);

    const Clock& m_clock;
    Options m_options;
    ProcFolder m_proc;
    Descriptor m_swaps;
    std::uint64_t m_pageBytes;
    std::int64_t m_boot;

    std::unordered_map<Pid, Entry> m_entries;
    std::size_t m_kept = 0;
    std::uint64_t m_scan = 0;
    std::uint8_t m_nextTurn = 0;
    Time m_now = 0;

    std::uint64_t m_swapUsed = 0;
    /// Counts the scans on which the machine's swap had moved.
    std::uint64_t m_swapMoves = 1;

    Pid m_askedParent = 0;
    bool m_askedParentLost = false;
    ReadBuffer m_buffer;
    ReadBuffer m_arguments;
    ReadBuffer m_status;
};

}  // namespace ravik::platform

#include "Core/Ending/LastLook.h"

#include "Core/Watch/ProcessIndex.h"

namespace ravik {

namespace {

Proc fresh(const ProcessReading& reading, const Proc* older) {
    Proc proc;
    proc.id = reading.id;
    proc.ppid = reading.ppid;
    proc.uid = reading.uid;
    proc.name = reading.name;
    proc.command = reading.arguments ? *reading.arguments : reading.path ? *reading.path : Text(reading.name);
    proc.started = reading.started;
    proc.startTicks = reading.startTicks;
    proc.footprintBytes = reading.footprintBytes.value_or(0);
    proc.app = reading.app;
    if (older) {
        proc.cpuPercent = older->cpuPercent;
        if (!proc.app) proc.app = older->app;
    }
    return proc;
}

/// A pid can be reused within the second that `started` tells; the kernel's own stamp, where known, is finer.
bool sameStart(Time started, std::uint64_t ticks, const Proc& other) {
    return started == other.started && (ticks == 0 || other.startTicks == 0 || ticks == other.startTicks);
}

bool sameLife(const Proc* a, const Proc& b) {
    return a && a->id == b.id && sameStart(a->started, a->startTicks, b);
}

std::vector<Proc> readAll(const ProcessIndex& older, const ProcessTable& table) {
    std::vector<Proc> now;
    for (const Pid pid : table.listFresh()) {
        ProcessReading reading;
        if (pid < 1 || !table.readFresh(pid, reading)) continue;
        const Proc* before = older.find(pid);
        now.push_back(fresh(reading, before && sameStart(reading.started, reading.startTicks, *before) ? before : nullptr));
    }
    return now;
}

}  // namespace

LastLook lastLook(const Pids& roots, const std::vector<Proc>& procs, const ProcessTable& table) {
    const ProcessIndex older(procs);
    const std::vector<Proc> now = readAll(older, table);
    const ProcessIndex present(now);

    PidSet members;
    for (const Pid root : roots) {
        for (const Proc& member : older.tree(root)) {
            // A pid that is another process by now has nothing of ours below it.
            if (!sameLife(present.find(member.id), member)) continue;
            members.insert(member.id);
            for (const Pid pid : present.descendants(member.id)) members.insert(pid);
        }
    }

    LastLook look;
    for (const Proc& proc : now) {
        if (members.contains(proc.id)) look.trees.push_back(proc);
    }
    look.procs = procs;
    for (Proc& proc : look.procs) {
        const Proc* living = present.find(proc.id);
        if (!sameLife(living, proc)) continue;
        const Pid parent = proc.ppid;
        proc = *living;
        proc.ppid = parent;
    }
    return look;
}

}  // namespace ravik

#include "Core/Ending/LastLook.h"

#include "Core/Watch/ProcessIndex.h"

namespace ravik {

namespace {

Proc fresh(const ProcessReading& reading) {
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
    return proc;
}

std::vector<Proc> readAll(const ProcessIndex& older, const ProcessTable& table) {
    std::vector<Proc> now;
    for (const Pid pid : table.listFresh()) {
        ProcessReading reading;
        if (pid < 1 || !table.readFresh(pid, reading)) continue;
        Proc proc = fresh(reading);
        if (const Proc* before = older.find(pid); before && sameLife(*before, proc)) {
            proc.cpuPercent = before->cpuPercent;
            if (!proc.app) proc.app = before->app;
        }
        now.push_back(std::move(proc));
    }
    return now;
}

}  // namespace

LastLook lastLook(const Pids& roots, const std::vector<Proc>& procs, const ProcessTable& table) {
    const ProcessIndex older(procs);
    const std::vector<Proc> now = readAll(older, table);
    const ProcessIndex present(now);

    LastLook look;
    PidSet members;
    for (const Pid root : roots) {
        for (const Proc& member : older.tree(root)) {
            const Proc* living = present.find(member.id);
            if (!living) look.unread.push_back(member);
            // A pid that is another process by now has nothing of ours below it.
            if (!living || !sameLife(*living, member)) continue;
            members.insert(member.id);
            for (const Pid pid : present.descendants(member.id)) members.insert(pid);
        }
    }

    for (const Proc& proc : now) {
        if (members.contains(proc.id)) look.trees.push_back(proc);
    }
    look.procs = procs;
    for (Proc& proc : look.procs) {
        const Proc* living = present.find(proc.id);
        if (!living || !sameLife(*living, proc)) continue;
        const Pid parent = proc.ppid;
        proc = *living;
        proc.ppid = parent;
    }
    return look;
}

}  // namespace ravik

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Diagnoser.h"

/// A developer's machine with fifty causes, whatever the length of its process list.
namespace ravik::bench {

inline constexpr Time now = 1'700'000'000;
inline constexpr int findings = 50;

inline Proc proc(Pid id, Pid parent, std::string command) {
    Proc proc;
    proc.id = id;
    proc.ppid = parent;
    proc.uid = 1000;
    proc.name = std::string(Classifier::lastPathComponent(std::string_view(command).substr(0, command.find(' '))));
    proc.command = Text(std::move(command));
    proc.started = now - 7200;
    proc.footprintBytes = (20ull << 20) + static_cast<std::uint64_t>(id) * 4096;
    return proc;
}

/// What fills a developer's process list: a browser's tabs, an editor's servers, shells, builds, tools.
inline std::string ordinary(int number) {
    switch (number % 8) {
        case 0: return "/usr/lib/firefox/firefox -contentproc -childID 7 -isForBrowser -prefsLen 41226 tab";
        case 1: return "/usr/share/code/code --type=utility --utility-sub-type=node.mojom.NodeService --lang=en-GB";
        case 2: return "/bin/bash";
        case 3: return fmt::format("node /home/me/src/app{}/node_modules/.bin/vite --port 5173", number);
        case 4: return "/usr/libexec/gvfsd-trash --spawner :1.20 /org/gtk/gvfs/exec_spaw/0";
        case 5: return "/opt/google/chrome/chrome --type=renderer --enable-crash-reporter --change-stack-guard-on-fork";
        case 6: return fmt::format("python3 -m tool{} --serve", number);
        default: return fmt::format("/home/me/bin/daemon-{}", number);
    }
}

struct Scene {
    std::vector<Proc> procs;
    Host host;
    Thresholds limits;
    Trend trend;
    KeepSet keep{"/home/me/bin/kept"};

    explicit Scene(int size) {
        host.kind = HostKind::linux;
        host.uid = 1000;
        // Orphans, and one finding each for memory being swapped out and for the disk.
        for (int leftover = 0; leftover < findings - 2; ++leftover) {
            procs.push_back(proc(100 + leftover, 1, fmt::format("/home/me/tools/serve-{} --quiet", leftover)));
        }
        for (int number = static_cast<int>(procs.size()); number < size; ++number) {
            const Pid parent = number % 7 == 0 ? 100 + number % 48 : 99 + number - number % 5;
            procs.push_back(proc(100 + number, parent, ordinary(number)));
        }
    }

    Snapshot classified() const {
        Snapshot snap;
        snap.stats.swapOutBytesPerSec = 50 * 0x1p20;
        snap.stats.memoryFreePercent = 10;
        snap.stats.diskFreeBytes = 1ull << 30;
        snap.takenAt = now;
        snap.processes = procs;
        snap.breaches = Classifier::breaches(snap.stats, limits);
        snap.groups = Classifier::groups(procs, host);
        snap.orphans = Classifier::orphans(procs, {}, limits, host, now);
        snap.hogs = Classifier::hogs(procs, snap.orphans, limits, trend.busySince, host, now);
        snap.sessions = Classifier::sessions(ProcessIndex(procs), snap.orphans, host);
        return snap;
    }

    std::vector<Finding> diagnosed(const Snapshot& snap) const {
        const ProcessIndex index(snap.processes);
        return Diagnoser::diagnose(snap, index, limits, 512ull << 30, keep, trend, host, now);
    }
};

}  // namespace ravik::bench

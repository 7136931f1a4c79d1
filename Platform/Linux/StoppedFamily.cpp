#include "Platform/Linux/StoppedFamily.h"

#include <sys/stat.h>

#include <charconv>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/ProcParse.h"
#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/ServiceRules.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

fs::path executable(const fs::path& procRoot, Pid pid) {
    std::error_code error;
    return fs::read_symlink(procRoot / std::to_string(pid) / "exe", error);
}

}  // namespace

std::vector<Proc> stoppedFamily(const fs::path& procRoot, Pid root) {
    std::vector<Proc> all;
    PidSet stopped;
    std::error_code error;
    for (fs::directory_iterator at(procRoot, error); !error && at != fs::directory_iterator(); at.increment(error)) {
        const std::string name = at->path().filename().native();
        Pid pid = 0;
        const auto [end, failed] = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (failed != std::errc{} || end != name.data() + name.size()) continue;
        const auto text = readFile((at->path() / "stat").native());
        const auto stat = text ? parseProcStat(*text) : std::nullopt;
        if (!stat) continue;
        struct stat owner {};
        if (::stat(at->path().c_str(), &owner) != 0) continue;
        Proc proc;
        proc.id = pid;
        proc.ppid = stat->ppid;
        proc.uid = owner.st_uid;
        proc.startTicks = stat->startTicks;
        proc.started = startedAt(stat->startTicks);
        if (stat->state == 'T') stopped.insert(pid);
        all.push_back(std::move(proc));
    }
    if (stopped.empty()) return {};

    const fs::path own = executable(procRoot, root);
    const PidSet tree = Families(all).tree(root);
    std::vector<Proc> found;
    for (const Proc& proc : all) {
        if (!stopped.contains(proc.id) || !tree.contains(proc.id)) continue;
        if (proc.id == root || (!own.empty() && executable(procRoot, proc.id) == own)) found.push_back(proc);
    }
    return found;
}

}  // namespace ravik::platform

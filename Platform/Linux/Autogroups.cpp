#include "Platform/Linux/Autogroups.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

#include "Platform/Linux/ControlGroup.h"
#include "Platform/Linux/Descriptor.h"
#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

constexpr int lowest = 19;

std::string fileOf(const std::string& procRoot, Pid pid) { return procRoot + "/" + std::to_string(pid) + "/autogroup"; }

std::optional<LoweredAutogroup> readAutogroup(const std::string& procRoot, Pid pid) {
    const auto text = readFile(fileOf(procRoot, pid));
    return text ? parseAutogroup(*text) : std::nullopt;
}

/// Absent if it is not mounted that way; else the group of the controller "cpu" in a hierarchy of its own.
std::optional<std::string> ownHierarchyGroup(std::string_view cgroups) {
    while (!cgroups.empty()) {
        const std::size_t end = cgroups.find('\n');
        const std::string_view line = cgroups.substr(0, end);
        cgroups = end == std::string_view::npos ? std::string_view{} : cgroups.substr(end + 1);
        const std::size_t first = line.find(':');
        const std::size_t second = first == line.npos ? line.npos : line.find(':', first + 1);
        if (second == line.npos) continue;
        const std::string controllers = "," + std::string(line.substr(first + 1, second - first - 1)) + ",";
        if (controllers.find(",cpu,") != controllers.npos) return std::string(line.substr(second + 1));
    }
    return {};
}

/// Any process in the group. Its name is never used twice, so whoever is in it is in the one meant.
std::map<std::string, Pid> members(const std::string& procRoot, const std::vector<LoweredAutogroup>& groups) {
    std::map<std::string, Pid> found;
    if (groups.empty()) return found;
    for (const JobStat& job : readJobs(procRoot)) {
        const auto now = job.hasEnded() ? std::nullopt : readAutogroup(procRoot, job.pid);
        if (now && std::ranges::find(groups, now->name, &LoweredAutogroup::name) != groups.end()) {
            found.emplace(now->name, job.pid);
        }
    }
    return found;
}

bool setNice(const std::string& procRoot, Pid pid, int nice) {
    const std::string text = std::to_string(nice);
    // The kernel takes ten such changes a second from all users together.
    constexpr int attempts = 5;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Descriptor file(open(fileOf(procRoot, pid).c_str(), O_WRONLY | O_CLOEXEC));
        if (!file) return false;
        if (write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size())) return true;
        if (errno != EAGAIN) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(110));
    }
    return false;
}

}  // namespace

std::optional<LoweredAutogroup> parseAutogroup(std::string_view text) {
    constexpr std::string_view begin = "/autogroup-";
    constexpr std::string_view middle = " nice ";
    const std::size_t at = text.find(middle);
    if (!text.starts_with(begin) || at == std::string_view::npos) return {};
    LoweredAutogroup group{std::string(text.substr(1, at - 1)), 0};
    const std::string_view nice = text.substr(at + middle.size());
    if (std::from_chars(nice.data(), nice.data() + nice.size(), group.nice).ec != std::errc{}) return {};
    return group;
}

bool heedsAutogroup(const std::string& procRoot, const std::string& cgroupRoot, Pid pid) {
    const auto enabled = readFile(procRoot + "/sys/kernel/sched_autogroup_enabled");
    if (!enabled || !enabled->starts_with('1')) return false;
    const auto groups = readFile(procRoot + "/" + std::to_string(pid) + "/cgroup");
    if (!groups) return false;
    std::error_code error;
    if (const auto own = ownHierarchyGroup(*groups)) {
        // Inside a container the first group calls itself the root as well, but has no agent to call.
        return own == "/" && fs::exists(fs::path(cgroupRoot) / "cpu" / "release_agent", error);
    }
    // The one hierarchy: only its root has no weight.
    fs::path group = fs::path(ControlGroup::path(*groups)).lexically_normal();
    if (!group.is_absolute()) return false;
    for (;; group = group.parent_path()) {
        if (fs::exists(fs::path(cgroupRoot) / group.relative_path() / "cpu.weight", error)) return false;
        if (group == group.parent_path()) break;
    }
    // A container's root has a type, the machine's has none.
    return fs::exists(fs::path(cgroupRoot) / "cgroup.controllers", error) &&
           !fs::exists(fs::path(cgroupRoot) / "cgroup.type", error);
}

std::vector<LoweredAutogroup> autogroupsOf(const std::string& procRoot, const std::string& cgroupRoot,
                                           const PidSet& pids) {
    std::vector<LoweredAutogroup> groups;
    PidSet sessions;
    const std::vector<JobStat> jobs = readJobs(procRoot);
    for (const JobStat& job : jobs) {
        if (!pids.contains(job.pid)) continue;
        const auto group = readAutogroup(procRoot, job.pid);
        if (!group || group->nice < 0 || job.session <= 0 || !heedsAutogroup(procRoot, cgroupRoot, job.pid)) return {};
        sessions.insert(job.session);
        if (std::ranges::find(groups, group->name, &LoweredAutogroup::name) == groups.end()) groups.push_back(*group);
    }
    for (const JobStat& job : jobs) {
        if (job.hasEnded() || pids.contains(job.pid)) continue;
        if (sessions.contains(job.session)) return {};
        const auto group = readAutogroup(procRoot, job.pid);
        if (group && std::ranges::find(groups, group->name, &LoweredAutogroup::name) != groups.end()) return {};
    }
    return groups;
}

bool lowerAutogroups(const std::string& procRoot, const std::vector<LoweredAutogroup>& groups) {
    const auto found = members(procRoot, groups);
    return std::ranges::all_of(groups, [&](const LoweredAutogroup& group) {
        const auto member = found.find(group.name);
        if (member == found.end() || !setNice(procRoot, member->second, lowest)) return false;
        const auto now = readAutogroup(procRoot, member->second);
        return now && now->name == group.name && now->nice == lowest;
    });
}

bool raiseAutogroups(const std::string& procRoot, const std::vector<LoweredAutogroup>& groups) {
    bool done = true;
    for (const auto& [name, pid] : members(procRoot, groups)) {
        const int before = std::ranges::find(groups, name, &LoweredAutogroup::name)->nice;
        const auto now = readAutogroup(procRoot, pid);
        if (!now || now->name != name || now->nice != lowest) continue;
        done = setNice(procRoot, pid, before) && done;
    }
    return done;
}

}  // namespace ravik::platform

#include "Platform/Linux/JobControl.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <unordered_map>

#include "Platform/Linux/ProcFolder.h"

namespace ravik::platform {

namespace {

/// Takes whole numbers off the front, one blank before each.
class Numbers {
public:
    explicit Numbers(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size()) {}

    template <typename Number>
    bool take(Number& value) {
        while (m_at != m_end && *m_at == ' ') ++m_at;
        const auto [next, failed] = std::from_chars(m_at, m_end, value);
        m_at = next;
        return failed == std::errc{};
    }
    bool skip(int count) {
        std::int64_t ignored = 0;
        for (int field = 0; field < count; ++field) {
            if (!take(ignored)) return false;
        }
        return true;
    }

private:
    const char* m_at;
    const char* m_end;
};

class Jobs {
public:
    explicit Jobs(const std::vector<JobStat>& all) {
        for (const JobStat& job : all) {
            if (!job.hasEnded()) m_jobs.emplace(job.pid, &job);
        }
    }

    const JobStat* find(Pid pid) const {
        const auto hit = m_jobs.find(pid);
        return hit == m_jobs.end() ? nullptr : hit->second;
    }
    /// The process and its ancestors, as long as `goesOn`.
    template <typename GoesOn>
    void ancestry(Pid pid, PidSet& into, GoesOn goesOn) const {
        for (const JobStat* job = find(pid); job && goesOn(*job); job = find(job->ppid)) {
            if (!into.insert(job->pid).second) return;
        }
    }

private:
    std::unordered_map<Pid, const JobStat*> m_jobs;
};

}  // namespace

std::optional<JobStat> parseJobStat(std::string_view text) {
    // A program may put any byte into its name, ")" and line ends among them.
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
    JobStat job;
    if (!Numbers(text.substr(0, open)).take(job.pid)) return {};
    std::string_view rest = text.substr(close + 1);
    if (rest.size() < 3 || rest[0] != ' ') return {};
    job.state = rest[1];
    Numbers numbers(rest.substr(2));
    const bool whole = numbers.take(job.ppid) && numbers.take(job.group) && numbers.take(job.session) &&
                       numbers.take(job.terminal) && numbers.take(job.foreground) && numbers.skip(13) &&
                       numbers.take(job.startTicks);
    if (!whole) return {};
    return job;
}

std::vector<JobStat> readJobs(const std::string& procRoot) {
    Pids pids;
    ReadBuffer buffer;
    const ProcFolder folder(procRoot);
    folder.list(pids, buffer);
    std::vector<JobStat> jobs;
    jobs.reserve(pids.size());
    for (const Pid pid : pids) {
        const auto text = folder.read(pid, "stat", buffer);
        auto job = text ? parseJobStat(*text) : std::nullopt;
        const auto owner = folder.owner(pid);
        if (!job || !owner) continue;
        job->uid = *owner;
        jobs.push_back(*job);
    }
    return jobs;
}

std::vector<JobStat> stoppable(const std::vector<JobStat>& all, const PidSet& wanted, std::uint32_t uid, Pid self) {
    const Jobs jobs(all);
    PidSet barred;
    jobs.ancestry(self, barred, [](const JobStat&) { return true; });
    for (const JobStat& job : all) {
        if (job.hasEnded() || job.terminal == 0) continue;
        // The leader of a terminal's session is its shell. So is whatever the foreground job came from.
        if (job.session == job.pid) barred.insert(job.pid);
        if (job.group != job.foreground) continue;
        jobs.ancestry(job.pid, barred, [&](const JobStat& above) { return above.session == job.session; });
    }

    std::unordered_map<Pid, bool> mayStop;
    for (const JobStat& job : all) {
        if (job.hasEnded()) continue;
        const bool may = job.group > 0 && wanted.contains(job.pid) && job.uid == uid && !job.isStopped() &&
                         !barred.contains(job.pid);
        const auto [group, isNew] = mayStop.emplace(job.group, may);
        if (!isNew) group->second = group->second && may;
    }

    std::vector<JobStat> found;
    for (const JobStat& job : all) {
        if (!job.hasEnded() && wanted.contains(job.pid) && mayStop[job.group]) found.push_back(job);
    }
    std::ranges::sort(found, {}, [](const JobStat& job) { return std::tuple(job.startTicks, job.pid); });
    return found;
}

}  // namespace ravik::platform

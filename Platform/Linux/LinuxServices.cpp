#include "Platform/Linux/LinuxServices.h"

#include <algorithm>

#include "Platform/Linux/ControlGroup.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr Time cacheSeconds = 60.0;

std::string folder(const std::filesystem::path& root, Pid pid) { return (root / std::to_string(pid)).native(); }

}  // namespace

LinuxServices::LinuxServices(Options options) : m_options(std::move(options)) {}

const LinuxServices::Facts& LinuxServices::facts(const Proc& proc, Time now) {
    Facts& known = m_facts[proc.id];
    const bool same = known.started == proc.started && known.startTicks == proc.startTicks;
    if (same && known.parent == proc.ppid && known.command == proc.command && now >= known.at &&
        now - known.at < cacheSeconds) {
        return known;
    }
    const std::string base = folder(m_options.procRoot, proc.id);
    const auto group = readFile(base + "/cgroup");
    const auto stat = readFile(base + "/stat");
    if (group && stat) {
        known.controlGroup = ControlGroup::path(*group);
        known.session = sessionOf(*stat);
        known.known = true;
        known.at = now;
    } else if (!same) {
        known.known = false;
    }
    known.started = proc.started;
    known.startTicks = proc.startTicks;
    known.parent = proc.ppid;
    known.command = proc.command;
    return known;
}

std::string LinuxServices::ownControlGroup() const {
    const auto text = readFile(folder(m_options.procRoot, m_options.self) + "/cgroup");
    return text ? std::string(ControlGroup::path(*text)) : std::string();
}

bool LinuxServices::appLivesIn(const std::string& unitPath, const std::string& id, const std::vector<Proc>& procs,
                               Time now) {
    return std::ranges::any_of(procs, [&](const Proc& proc) {
        if (proc.uid != m_options.uid) return false;
        const Facts& known = facts(proc, now);
        return known.known && ControlGroup::unitPath(known.controlGroup) == unitPath &&
               m_options.applications->belongs(proc, id);
    });
}

bool LinuxServices::isManaged(const Proc& proc, const PidSet& managers, const std::vector<Proc>& procs, Time now) {
    const bool adopted = m_adoptions.sawAdoption(proc.id);
    // One that merely happens to adopt, such as a supervisor, has children of its own as well.
    if (!managers.contains(proc.ppid) && !adopted) return true;

    const Facts known = facts(proc, now);
    if (!known.known || ControlGroup::isManaged(known.controlGroup, m_ownGroup)) return true;

    const std::string_view unit = ControlGroup::unit(known.controlGroup);
    if (ControlGroup::isApplication(unit)) {
        const auto app = m_options.applications ? m_options.applications->ofUnit(unit) : std::nullopt;
        if (!app) return true;
        if (m_options.applications->belongs(proc, app->id)) return true;
        const std::string unitPath(ControlGroup::unitPath(known.controlGroup));
        if (!app->isTypedIn && appLivesIn(unitPath, app->id, procs, now)) return true;
    }
    const bool isToolHelper = m_options.isToolHelper && m_options.isToolHelper(proc.command.view());
    return known.session == proc.id && !adopted && !isToolHelper;
}

Services::Reading LinuxServices::read(const std::vector<Proc>& procs, Time now) {
    m_adoptions.observe(procs);
    if (now < m_ownGroupAt || now - m_ownGroupAt >= cacheSeconds) {
        m_ownGroup = ownControlGroup();
        m_ownGroupAt = now;
    }

    Reading reading;
    PidSet managers{1};
    for (const Proc& proc : procs) {
        if (proc.uid != m_options.uid || proc.ppid != 1) continue;
        const Facts& known = facts(proc, now);
        if (known.known && ControlGroup::isUserManager(known.controlGroup, m_options.uid)) managers.insert(proc.id);
    }
    reading.adopters = managers;
    reading.adopters.insert(m_adoptions.adopters().begin(), m_adoptions.adopters().end());

    const Families families(procs);
    const auto strayed = [&](const Proc& proc, const Proc& parent) {
        return m_adoptions.sawAdoption(proc.id) && !livesAloneOnPurpose(parent);
    };
    reading.managed = families.below(
        [&](const Proc& proc) { return !managers.contains(proc.id) && livesAloneOnPurpose(proc); }, strayed);
    for (const Proc& proc : procs) {
        if (proc.uid != m_options.uid || !reading.adopters.contains(proc.ppid)) continue;
        if (isManaged(proc, managers, procs, now)) reading.managed.insert(proc.id);
    }
    reading.managed.merge(families.ancestry(m_options.self));
    if (m_options.self > 0) reading.managed.insert(m_options.self);

    PidSet present;
    for (const Proc& proc : procs) present.insert(proc.id);
    std::erase_if(m_facts, [&](const auto& entry) { return !present.contains(entry.first); });
    return reading;
}

}  // namespace ravik::platform

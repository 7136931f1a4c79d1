#include "Core/Watch/ProcessIndex.h"

#include <algorithm>
#include <unordered_set>

namespace ravik {

ProcessIndex::ProcessIndex(std::span<const Proc> procs) : m_procs(procs) {
    m_pids.reserve(procs.size());
    m_byParent.resize(procs.size());
    for (std::size_t at = 0; at < procs.size(); ++at) {
        m_pids.emplace_back(procs[at].id, at);
        m_byParent[at] = at;
    }
    std::ranges::sort(m_pids);
    const auto [first, last] = std::ranges::unique(m_pids, {}, &std::pair<Pid, std::size_t>::first);
    m_pids.erase(first, last);

    std::ranges::sort(m_byParent, [&](std::size_t a, std::size_t b) {
        return procs[a].ppid != procs[b].ppid ? procs[a].ppid < procs[b].ppid : a < b;
    });
    for (std::size_t at = 0; at < m_byParent.size(); ++at) {
        const Pid parent = procs[m_byParent[at]].ppid;
        if (m_ranges.empty() || m_ranges.back().parent != parent) m_ranges.push_back({parent, at, at});
        m_ranges.back().end = at + 1;
    }
}

const Proc* ProcessIndex::find(Pid pid) const {
    const auto hit = std::ranges::lower_bound(m_pids, pid, {}, &std::pair<Pid, std::size_t>::first);
    return hit != m_pids.end() && hit->first == pid ? &m_procs[hit->second] : nullptr;
}

std::span<const std::size_t> ProcessIndex::children(Pid pid) const {
    const auto hit = std::ranges::lower_bound(m_ranges, pid, {}, &Range::parent);
    if (hit == m_ranges.end() || hit->parent != pid) return {};
    return std::span(m_byParent).subspan(hit->begin, hit->end - hit->begin);
}

Pids ProcessIndex::descendants(Pid root) const {
    Pids found;
    Pids stack{root};
    std::unordered_set<Pid> seen{root};
    while (!stack.empty()) {
        const Pid parent = stack.back();
        stack.pop_back();
        for (const std::size_t at : children(parent)) {
            const Pid child = m_procs[at].id;
            if (!seen.insert(child).second) continue;
            found.push_back(child);
            stack.push_back(child);
        }
    }
    return found;
}

std::vector<std::size_t> ProcessIndex::treePositions(Pid root) const {
    std::vector<std::size_t> positions;
    Pids members = descendants(root);
    members.push_back(root);
    for (const Pid pid : members) {
        const auto hit = std::ranges::lower_bound(m_pids, pid, {}, &std::pair<Pid, std::size_t>::first);
        if (hit != m_pids.end() && hit->first == pid) positions.push_back(hit->second);
    }
    std::ranges::sort(positions);
    return positions;
}

std::vector<Proc> ProcessIndex::tree(Pid root) const {
    std::vector<Proc> members;
    for (const std::size_t at : treePositions(root)) members.push_back(m_procs[at]);
    return members;
}

}  // namespace ravik

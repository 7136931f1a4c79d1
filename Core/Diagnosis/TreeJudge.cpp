#include "Core/Diagnosis/TreeJudge.h"

#include <algorithm>

namespace ravik {

TreeJudge::TreeJudge(const ProcessIndex& procs, const Host& host)
    : m_procs(procs), m_host(host), m_marks(procs.all().size()), m_met(procs.all().size()) {}

void TreeJudge::beginWalk() {
    if (++m_walk == 0) {
        std::ranges::fill(m_met, 0);
        m_walk = 1;
    }
    m_members.clear();
}

void TreeJudge::meet(std::size_t at) {
    if (m_met[at] == m_walk) return;
    m_met[at] = m_walk;
    m_members.push_back(at);
}

void TreeJudge::meetChildren(Pid parent) {
    for (const std::size_t child : m_procs.children(parent)) meet(child);
}

void TreeJudge::walk(Pid root) {
    std::size_t next = m_members.size();
    if (const Proc* proc = m_procs.find(root)) {
        meet(static_cast<std::size_t>(proc - m_procs.all().data()));
    } else {
        meetChildren(root);
    }
    for (; next < m_members.size(); ++next) meetChildren(m_procs.all()[m_members[next]].id);
}

PidSet TreeJudge::below(std::span<const Pid> roots) {
    beginWalk();
    for (const Pid root : roots) meetChildren(root);
    for (std::size_t next = 0; next < m_members.size(); ++next) meetChildren(m_procs.all()[m_members[next]].id);
    PidSet found;
    for (const std::size_t at : m_members) found.insert(m_procs.all()[at].id);
    return found;
}

const std::vector<std::size_t>& TreeJudge::members(Pid root) {
    beginWalk();
    walk(root);
    return m_members;
}

TreeJudge::Mark TreeJudge::mark(std::size_t at) {
    if (m_marks[at] == Mark::unknown) {
        const Proc& proc = m_procs.all()[at];
        m_marks[at] = Safety::forbids(proc, m_host)            ? Mark::forbidden
                      : proc.cpuPercent >= Safety::busyPercent ? Mark::busy
                                                               : Mark::idle;
    }
    return m_marks[at];
}

TreeJudge::Firsts TreeJudge::walked(Pid root) {
    const std::size_t none = m_procs.all().size();
    Firsts firsts{none, none};
    const std::size_t begin = m_members.size();
    walk(root);
    m_steps += m_members.size() - begin;
    for (std::size_t at = begin; at < m_members.size(); ++at) {
        const std::size_t position = m_members[at];
        const Mark found = mark(position);
        if (found == Mark::forbidden) firsts.forbidden = std::min(firsts.forbidden, position);
        if (found == Mark::busy) firsts.busy = std::min(firsts.busy, position);
    }
    return firsts;
}

TreeJudge::Firsts TreeJudge::looked(Pid root) {
    const std::size_t none = m_procs.all().size();
    const auto below = [&](const FirstBelow& first) {
        const auto hit = first.find(root);
        return hit == first.end() ? none : hit->second;
    };
    Firsts firsts{below(m_forbiddenBelow), below(m_busyBelow)};
    if (const Proc* proc = m_procs.find(root)) {
        const auto position = static_cast<std::size_t>(proc - m_procs.all().data());
        const Mark own = mark(position);
        if (own == Mark::forbidden) firsts.forbidden = std::min(firsts.forbidden, position);
        if (own == Mark::busy) firsts.busy = std::min(firsts.busy, position);
    }
    return firsts;
}

void TreeJudge::settle() {
    m_settled = true;
    const auto procs = m_procs.all();
    std::vector<std::pair<Pid, Pid>> parents;
    parents.reserve(procs.size());
    for (const Proc& proc : procs) parents.emplace_back(proc.id, proc.ppid);
    std::ranges::sort(parents);
    for (std::size_t at = 0; at < procs.size(); ++at) {
        const Mark found = mark(at);
        if (found == Mark::forbidden) spread(m_forbiddenBelow, at, procs[at].ppid, parents);
        if (found == Mark::busy) spread(m_busyBelow, at, procs[at].ppid, parents);
    }
}

void TreeJudge::spread(FirstBelow& first, std::size_t at, Pid parent, std::span<const std::pair<Pid, Pid>> parents) {
    // Positions come in ascending order: whoever has one already, and so everybody above, has an earlier one.
    Pids stack{parent};
    while (!stack.empty()) {
        const Pid pid = stack.back();
        stack.pop_back();
        if (!first.emplace(pid, at).second) continue;
        for (const auto& link : std::ranges::equal_range(parents, pid, {}, &std::pair<Pid, Pid>::first)) {
            stack.push_back(link.second);
        }
    }
}

Verdict TreeJudge::check(std::span<const Pid> roots) {
    const std::size_t none = m_procs.all().size();
    if (!m_settled && m_steps > none) settle();
    std::size_t busy = none;
    beginWalk();
    for (const Pid root : roots) {
        // What an earlier tree held has been judged there, and was not forbidden.
        const Firsts firsts = m_settled ? looked(root) : walked(root);
        if (firsts.forbidden != none) return Verdict::never(*Safety::forbids(m_procs.all()[firsts.forbidden], m_host));
        if (busy == none) busy = firsts.busy;
    }
    if (busy == none) return Verdict::safe();
    return Safety::working(m_procs.all()[busy], m_host);
}

}  // namespace ravik

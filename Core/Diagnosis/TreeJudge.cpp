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
        m_marks[at] = Safety::forbids(proc, m_host) ? Mark::forbidden
                      : proc.cpuPercent >= Safety::busyPercent ? Mark::busy
                                                               : Mark::idle;
    }
    return m_marks[at];
}

Verdict TreeJudge::check(std::span<const Pid> roots) {
    const std::size_t none = m_procs.all().size();
    std::size_t busy = none;
    beginWalk();
    for (const Pid root : roots) {
        // What an earlier tree held has been judged there, and was not forbidden.
        const std::size_t begin = m_members.size();
        walk(root);
        std::size_t firstForbidden = none;
        std::size_t firstBusy = none;
        for (std::size_t at = begin; at < m_members.size(); ++at) {
            const std::size_t position = m_members[at];
            const Mark found = mark(position);
            if (found == Mark::forbidden) firstForbidden = std::min(firstForbidden, position);
            if (found == Mark::busy) firstBusy = std::min(firstBusy, position);
        }
        if (firstForbidden != none) {
            return Verdict::never(*Safety::forbids(m_procs.all()[firstForbidden], m_host));
        }
        if (busy == none) busy = firstBusy;
    }
    if (busy == none) return Verdict::safe();
    return Safety::working(m_procs.all()[busy], m_host);
}

}  // namespace ravik

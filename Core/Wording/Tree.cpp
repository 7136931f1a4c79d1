#include "Core/Wording/Tree.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Wording/Fmt.h"

namespace ravik::Tree {

namespace {

class Walk {
public:
    Walk(const ProcessIndex& procs, std::size_t cap, const Host& host) : m_procs(procs), m_cap(cap), m_host(host) {}

    void from(const Proc& root) {
        struct Step {
            const Proc* proc;
            int depth;
            bool last;
        };
        std::vector<Step> stack{{&root, 0, true}};
        while (!stack.empty() && lines.size() < m_cap) {
            const Step step = stack.back();
            stack.pop_back();
            lines.push_back({step.proc->id, step.depth, step.last,
                             fmt::format("{} · pid {}", Classifier::group(*step.proc, m_host), step.proc->id),
                             Fmt::mb(step.proc->footprintBytes)});
            const auto children = childrenOf(*step.proc, root);
            for (std::size_t at = children.size(); at-- > 0;) {
                stack.push_back({children[at], step.depth + 1, at + 1 == children.size()});
            }
        }
    }

    std::vector<TreeLine> lines;

private:
    /// Heaviest first. Parent links may lead back to the root, and nowhere else: there the walk ends.
    std::vector<const Proc*> childrenOf(const Proc& parent, const Proc& root) const {
        std::vector<const Proc*> children;
        for (const std::size_t at : m_procs.children(parent.id)) {
            const Proc& child = m_procs.all()[at];
            if (child.id != root.id) children.push_back(&child);
        }
        std::ranges::stable_sort(children, std::ranges::greater{}, &Proc::footprintBytes);
        return children;
    }

    const ProcessIndex& m_procs;
    std::size_t m_cap;
    const Host& m_host;
};

}  // namespace

std::vector<TreeLine> lines(const Pids& roots, const ProcessIndex& procs, std::size_t cap, const Host& host) {
    Walk walk(procs, cap, host);
    for (const Pid pid : roots) {
        if (const Proc* root = procs.find(pid)) walk.from(*root);
    }
    return std::move(walk.lines);
}

}  // namespace ravik::Tree

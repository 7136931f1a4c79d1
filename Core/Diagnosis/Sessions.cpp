#include <algorithm>
#include <ranges>
#include <unordered_set>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik::Classifier {

namespace {

/// The process at `root` and all below it, parents before children and every child's own tree behind it.
std::vector<Proc> family(const ProcessIndex& all, std::size_t root) {
    std::vector<Proc> members;
    std::unordered_set<std::size_t> seen{root};
    std::vector<std::size_t> stack{root};
    while (!stack.empty()) {
        const Proc& proc = all.all()[stack.back()];
        stack.pop_back();
        members.push_back(proc);
        for (const std::size_t child : all.children(proc.id) | std::views::reverse) {
            if (seen.insert(child).second) stack.push_back(child);
        }
    }
    return members;
}

}  // namespace

std::vector<AgentSession> sessions(const ProcessIndex& all, const std::vector<Proc>& orphans, const Host& host) {
    std::vector<AgentSession> found;
    for (std::size_t at = 0; at < all.all().size(); ++at) {
        const Proc& proc = all.all()[at];
        if (proc.uid != host.uid) continue;
        const auto tool = agentTool(proc, host);
        if (tool) found.push_back({.id = proc.id, .tool = *tool, .alive = true, .members = family(all, at)});
    }

    AgentSession ended{.id = -1, .tool = "ended sessions", .alive = false, .members = {}};
    std::ranges::copy_if(orphans, std::back_inserter(ended.members),
                         [](const Proc& proc) { return Rx::agentLeftover().matches(proc.command); });
    if (!ended.members.empty()) found.push_back(std::move(ended));
    return found;
}

}  // namespace ravik::Classifier

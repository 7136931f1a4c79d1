#include <algorithm>

#include "Core/Diagnosis/Causes/Causes.h"

namespace ravik::causes {

namespace {

bool isExtensionHost(std::string_view command) {
    const auto holds = [&](std::string_view part) { return command.find(part) != command.npos; };
    return holds("Helper (Plugin)") && (holds("--utility-sub-type=node.mojom.NodeService") || holds("extension-host"));
}

ExtensionHost treeOf(const Proc& root, Pass& pass) {
    ExtensionHost found{.root = &root, .tree = {}, .bytes = 0};
    std::vector<std::size_t> positions = pass.judge.members(root.id);
    std::ranges::sort(positions);
    for (const std::size_t at : positions) {
        found.tree.push_back(&pass.snap.processes[at]);
        found.bytes += found.tree.back()->footprintBytes;
    }
    return found;
}

}  // namespace

std::optional<ExtensionHost> extensionHost(Pass& pass, const AppGroup& group, const PidSet& agents) {
    if (!pass.tables().editorsWithExtensionHosts.contains(group.id)) return std::nullopt;
    std::optional<ExtensionHost> host;
    for (const Proc& proc : group.processes) {
        if (!isExtensionHost(proc.command)) continue;
        ExtensionHost candidate = treeOf(proc, pass);
        if (!host || candidate.bytes > host->bytes) host = std::move(candidate);
    }
    if (!host || pass.judge.check(host->root->id).isNever()) return std::nullopt;
    const bool isHalf = group.footprintBytes <= host->bytes || group.footprintBytes - host->bytes <= host->bytes;
    if (!isHalf || host->bytes < pass.ram >> 3) return std::nullopt;
    const auto isAgent = [&](const Proc* proc) { return agents.contains(proc->id); };
    if (std::ranges::any_of(host->tree, isAgent)) return std::nullopt;
    return host;
}

}  // namespace ravik::causes

#include "Core/Diagnosis/Safety.h"

#include <cmath>

#include <fmt/format.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/CommandLine.h"
#include "Core/Diagnosis/TreeJudge.h"

namespace ravik::Safety {

namespace {

/// "python3" for "python3.11": a distribution's interpreters carry their version.
std::string_view withoutVersion(std::string_view program) {
    const std::size_t last = program.find_last_not_of("0123456789.");
    return last == program.npos ? program : program.substr(0, last + 1);
}

bool isInterpreter(std::string_view program, const HostTables& tables) {
    return tables.interpreters.contains(program) || tables.interpreters.contains(withoutVersion(program));
}

/// "npm" for "/usr/lib/node_modules/npm/bin/npm-cli.js".
std::string_view scriptTool(std::string_view script) {
    std::string_view name = Classifier::lastPathComponent(script);
    for (const std::string_view ending : {".js", ".cjs", ".mjs", ".py", "-cli"}) {
        if (name.ends_with(ending)) name.remove_suffix(ending.size());
    }
    return name;
}

/// The package manager that runs here, by itself or by its interpreter; empty if there is none.
std::string_view packageManager(const Proc& proc, const HostTables& tables) {
    const std::string_view program = programName(proc);
    if (tables.packageManagers.contains(program)) return program;
    if (!tables.judgesScripts || !isInterpreter(program, tables)) return {};
    const std::string_view tool = scriptTool(interpretedScript(proc, tables));
    return tables.packageManagers.contains(tool) ? tool : std::string_view{};
}

bool hasInstallVerb(const Proc& proc, const HostTables& tables) {
    CommandWords words(proc.command);
    words.next();
    for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
        if (tables.installVerbs.contains(word)) return true;
    }
    return false;
}

}  // namespace

std::optional<std::string> forbids(const Proc& proc, const Host& host) {
    const HostTables& tables = host.tables();
    if (Classifier::isMacOS(proc, host)) {
        return fmt::format("{} ({}, pid {})", host.nouns().partOfSystem, proc.name, proc.id);
    }
    if (const auto reason = tables.neverNames.find(proc.name); reason != tables.neverNames.end()) {
        return fmt::format("{} ({}, pid {})", reason->second, proc.name, proc.id);
    }
    const std::string_view tool = packageManager(proc, tables);
    if (!tool.empty() && hasInstallVerb(proc, tables)) {
        return fmt::format("{} is installing packages (pid {})", tool, proc.id);
    }
    return std::nullopt;
}

Verdict working(const Proc& proc, const Host& host) {
    return Verdict::caution(fmt::format("{} is actively working ({:.0f}% CPU)", Classifier::group(proc, host),
                                        std::trunc(proc.cpuPercent)));
}

Verdict check(const std::vector<Proc>& tree, const Host& host) {
    for (const Proc& proc : tree) {
        if (auto reason = forbids(proc, host)) return Verdict::never(std::move(*reason));
    }
    for (const Proc& proc : tree) {
        if (proc.cpuPercent >= busyPercent) return working(proc, host);
    }
    return Verdict::safe();
}

std::vector<Proc> tree(Pid root, const ProcessIndex& procs) { return procs.tree(root); }

std::unordered_map<Pid, Verdict> verdicts(const Pids& roots, const ProcessIndex& procs, const Host& host) {
    TreeJudge judge(procs, host);
    std::unordered_map<Pid, Verdict> verdicts;
    verdicts.reserve(roots.size());
    for (const Pid root : roots) {
        const Proc* proc = procs.find(root);
        const bool foreign = proc && proc->uid != host.uid;
        verdicts[root] = foreign ? Verdict::never("not yours") : judge.check(root);
    }
    return verdicts;
}

}  // namespace ravik::Safety

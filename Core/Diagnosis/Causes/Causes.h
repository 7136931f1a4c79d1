#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Diagnosis/TreeJudge.h"

/// The catalogue of causes, each in the file of its name. A cause appends what it finds, not yet gated.
namespace ravik::causes {

/// One pass over one snapshot: what it is given, and what one cause leaves for those behind it.
struct Pass {
    const Snapshot& snap;
    const ProcessIndex& index;
    const Thresholds& limits;
    std::uint64_t ram;
    const KeepSet& keep;
    const Trend& trend;
    const Host& host;
    Time now;

    TreeJudge judge{index, host};
    std::vector<Finding> findings{};
    /// Groups that a cause has spoken of, so that holders() does not.
    std::unordered_set<std::string_view> claimed{};

    const HostTables& tables() const { return host.tables(); }
    std::string group(const Proc& proc) const { return Classifier::group(proc, host); }
    bool keeps(const Proc& proc) const { return !keep.empty() && keep.contains(proc.command.str()); }
    double age(const Proc& proc) const { return now - proc.started; }
    /// The record of what ended sessions left; null if there is none.
    const AgentSession* ended() const;
};

// In the order of the pass.
void leftovers(Pass& pass);
void automationBrowsers(Pass& pass);
void databaseOrphans(Pass& pass);
void otherOrphans(Pass& pass);
void hogs(Pass& pass);
void virtualMachines(Pass& pass);
void browsers(Pass& pass);
void holders(Pass& pass);
void manySessions(Pass& pass);
void thrash(Pass& pass);
void lowDisk(Pass& pass);
void indexing(Pass& pass);

/// An editor's extension host that may be restarted in the editor's place, and its tree.
struct ExtensionHost {
    const Proc* root = nullptr;
    std::vector<const Proc*> tree;
    std::uint64_t bytes = 0;
};
/// `agents` are the members of all live sessions. Absent unless it is safe and worth while.
std::optional<ExtensionHost> extensionHost(Pass& pass, const AppGroup& group, const PidSet& agents);

/// "12 MB": whole mebibytes.
std::string megabytes(std::uint64_t bytes);
/// A figure without its fraction.
std::string whole(double figure);
/// The whole part of bytes as a percentage of the installed memory.
std::string percentOf(std::uint64_t bytes, std::uint64_t ram);
/// True if the group is a virtual machine by its name.
bool isVirtualMachine(const AppGroup& group, const HostTables& tables);
/// The first three by memory, larger first; equal ones in their order.
std::vector<const Proc*> biggest(std::vector<const Proc*> procs);

}  // namespace ravik::causes

#include <algorithm>
#include <unordered_set>

#include <gtest/gtest.h>

#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Diagnosis/Safety.h"
#include "Tests/Core/Diagnosis/GeneratedMachine.h"

namespace ravik {

namespace {

constexpr std::uint32_t machines = 5000;

/// The trees of a remedy, joined the slow and plain way.
std::vector<Proc> joined(const Pids& pids, const ProcessIndex& index) {
    std::vector<Proc> tree;
    for (const Pid pid : pids) {
        for (const Proc& proc : Safety::tree(pid, index)) tree.push_back(proc);
    }
    return tree;
}

bool sinks(const Finding& a, const Finding& b) {
    return a.severity != b.severity ? a.severity > b.severity : a.gainBytes >= b.gainBytes;
}

void expectOnlySafeOffers(const fakes::Machine& machine, const std::vector<Finding>& findings) {
    const ProcessIndex index(machine.procs);
    for (const Finding& finding : findings) {
        if (!finding.kills()) continue;
        const Pids& pids = finding.kills()->pids;
        const Verdict verdict = Safety::check(joined(pids, index), machine.host);
        ASSERT_FALSE(verdict.isNever()) << finding.id << ", " << verdict.reason;
        if (verdict.isCaution()) {
            ASSERT_EQ(finding.caution, verdict.reason) << finding.id;
        }
        for (const Pid pid : pids) ASSERT_EQ(index.find(pid)->uid, machine.host.uid) << finding.id;
        const auto isKept = [&](Pid pid) { return machine.keep.contains(index.find(pid)->command.str()); };
        ASSERT_FALSE(!machine.keep.empty() && std::ranges::all_of(pids, isKept)) << finding.id;
    }
}

void expectAnOrderedListThatAddsUp(const fakes::Machine& machine, const std::vector<Finding>& findings) {
    Snapshot snap;
    snap.findings = findings;
    ASSERT_LE(snap.freeableBytes(), snap.reclaimableBytes());
    std::unordered_set<std::string> ids;
    for (const Finding& finding : findings) ASSERT_TRUE(ids.insert(finding.id).second) << finding.id;
    for (std::size_t at = 1; at < findings.size(); ++at) ASSERT_TRUE(sinks(findings[at - 1], findings[at]));
    ASSERT_EQ(machine.diagnose(), findings);
}

}  // namespace

TEST(AnyMachine, IsOfferedOnlyWhatMayBeEnded) {
    std::uint32_t withTrees = 0;
    std::uint32_t withCycles = 0;
    std::uint32_t refused = 0;
    for (std::uint32_t seed = 0; seed < machines && !testing::Test::HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const fakes::Machine machine = fakes::generatedMachine(seed);
        const std::vector<Finding> findings = machine.diagnose();
        expectOnlySafeOffers(machine, findings);
        expectAnOrderedListThatAddsUp(machine, findings);
        withTrees += std::ranges::any_of(findings, [](const Finding& finding) { return finding.kills(); });
        refused += std::ranges::any_of(findings, [](const Finding& finding) { return finding.tone() == Tone::never; });
        withCycles += fakes::hasCycle(machine.procs);
    }
    EXPECT_GE(withTrees, machines / 2);
    EXPECT_GE(withCycles, machines / 10);
    EXPECT_GE(refused, machines / 10);
}

TEST(AnyMachine, HasTheSameVerdictsOneByOneAndAtOnce) {
    for (std::uint32_t seed = 0; seed < machines; ++seed) {
        const fakes::Machine machine = fakes::generatedMachine(seed);
        const ProcessIndex index(machine.procs);
        const auto verdicts = Safety::verdicts(fakes::pids(machine.procs), index, machine.host);
        for (const Proc& proc : machine.procs) {
            const Verdict single = proc.uid == machine.host.uid
                                       ? Safety::check(Safety::tree(proc.id, index), machine.host)
                                       : Verdict::never("not yours");
            ASSERT_EQ(verdicts.at(proc.id), single) << "seed " << seed << ", pid " << proc.id;
        }
    }
}

}  // namespace ravik

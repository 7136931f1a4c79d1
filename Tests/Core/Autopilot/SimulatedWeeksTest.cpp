#include "Tests/Core/Autopilot/SimulatedWeeks.h"

#include <algorithm>
#include <cstdio>

#include <gtest/gtest.h>

#include "Core/Autopilot/ShadowRecord.h"
#include "Core/Record/LogReader.h"

namespace ravik {

namespace {

using Action = Decision::Action;
using fakes::SimulatedWeeks;
using nlohmann::json;

/// What the log says was done to targets and undone, and whether it makes sense.
struct Deeds {
    explicit Deeds(const std::vector<json>& lines) {
        std::map<std::string, std::string> open;
        for (const json& line : lines) {
            const std::string kind = line["kind"];
            const std::string target = line["target"];
            const std::string action = line["action"];
            if (kind == "autopilotRelease") {
                const auto hit = open.find(target);
                if (hit == open.end() || hit->second != action) {
                    ++wrong;
                } else {
                    open.erase(hit);
                }
                ++released[line["why"]];
            } else {
                ++done;
                if (action == "end" || !open.emplace(target, action).second) ++wrong;
            }
        }
        leftOpen = open.size();
    }

    std::size_t done = 0;
    std::map<std::string, std::size_t> released;
    std::size_t leftOpen = 0;
    std::size_t wrong = 0;
};

/// Decisions and outcomes must take turns for each action and target; the number of those still open.
std::size_t stillOpen(const std::vector<json>& lines, std::size_t& wrong) {
    std::set<std::string> open;
    for (const json& line : lines) {
        const std::string key = line["action"].get<std::string>() + "|" + line["target"].get<std::string>();
        const bool fits = line["kind"] == "shadowDecision" ? open.insert(key).second : open.erase(key) == 1;
        if (!fits) ++wrong;
    }
    return open.size();
}

std::vector<std::pair<std::string, std::int64_t>> worst(const std::map<std::string, std::int64_t>& against) {
    std::vector<std::pair<std::string, std::int64_t>> pairs(against.begin(), against.end());
    std::ranges::stable_sort(pairs, std::greater(), &std::pair<std::string, std::int64_t>::second);
    if (pairs.size() > 5) pairs.resize(5);
    return pairs;
}

}  // namespace

TEST(SimulatedWeeks, ActOnlyAsApprovedLetGoOfAllAndAreRecordedAsTheyWere) {
    SimulatedWeeks weeks(1);
    weeks.run(14);
    ASSERT_FALSE(weeks.open.empty());
    weeks.monitor->releaseAllLive();
    weeks.logFolder.log.flush();

    // On the machine: only what was approved or accepted, one at a time, and nothing is left held.
    EXPECT_EQ(weeks.withoutApproval, 0u);
    EXPECT_EQ(weeks.twiceOpen, 0u);
    EXPECT_EQ(weeks.heldWithoutAction, 0u);
    for (const auto& [pid, process] : weeks.machine.processes.all()) {
        EXPECT_FALSE(process.stopped || process.demoted) << pid;
    }
    for (const auto& signal : weeks.machine.processes.sent) {
        ASSERT_TRUE(signal.signal == Signal::stop || signal.signal == Signal::resume);
    }
    for (Pid pid = 900; pid < 904; ++pid) EXPECT_NE(weeks.machine.processes.find(pid), nullptr);

    // In the log: each action is released once, for one of the four reasons.
    const auto& folder = weeks.logFolder.log.folder();
    const std::string_view deedKinds[]{"autopilotAction", "autopilotRelease", "suggestionAccepted"};
    const Deeds deeds(LogReader::lines(folder, deedKinds));
    EXPECT_GE(deeds.done, 100u);
    EXPECT_EQ(deeds.done, weeks.liveActions);
    EXPECT_EQ(deeds.wrong, 0u);
    EXPECT_EQ(deeds.leftOpen, 0u);
    EXPECT_EQ(deeds.released.size(), 4u);
    for (const char* why : {"focused", "condition passed", "undo", "quit"}) {
        EXPECT_GE(deeds.released.count(why), 1u) << why;
    }

    // Each decision in the shadow got one outcome or is still open.
    const std::string_view shadowKinds[]{"shadowDecision", "shadowOutcome"};
    std::size_t wrong = 0;
    EXPECT_EQ(stillOpen(LogReader::lines(folder, shadowKinds), wrong), weeks.waiting());
    EXPECT_EQ(wrong, 0u);

    // The record read back is what the run saw.
    const auto record = ShadowRecord::build(LogReader::lines(folder, ShadowRecord::kinds));
    std::int64_t decided = 0;
    for (const auto& rule : record.rules) {
        const SimulatedWeeks::Counts read{rule.decided, rule.resolved, rule.regrets, rule.accepted, rule.dismissed};
        EXPECT_EQ(read, weeks.seen[rule.action]) << word(rule.action);
        EXPECT_GE(rule.decided, 300) << word(rule.action);
        decided += rule.decided;
        std::printf("%s: %ld decided, %ld wrong, %ld accepted, %ld dismissed\n", word(rule.action).data(), rule.decided,
                    rule.regrets, rule.accepted, rule.dismissed);
    }
    std::printf("%zu live actions\n", deeds.done);
    EXPECT_EQ(weeks.seen[Action::end].regrets, 0);
    EXPECT_EQ(record.entries.size(), static_cast<std::size_t>(decided));
    EXPECT_EQ(static_cast<std::size_t>(
                  std::ranges::count_if(record.entries, [](const auto& entry) { return !entry.outcome; })),
              weeks.waiting());
    EXPECT_EQ(record.mostRegretted, worst(weeks.against));
    EXPECT_GE(*record.until - *record.since, 13 * 86400.0);
}

}  // namespace ravik

#include "Core/Autopilot/ShadowRecord.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Base/Iso8601.h"

namespace ravik {

namespace {

constexpr Time first = 1772357415;  // 2026-03-01T09:30:15Z

struct ShadowRecordTest : testing::Test {
    std::vector<nlohmann::json> lines;

    nlohmann::json& add(const std::string& kind, const std::string& action, const std::string& target,
                        Time at = first) {
        return lines.emplace_back(nlohmann::json{{"kind", kind},
                                                 {"action", action},
                                                 {"target", target},
                                                 {"t", Iso8601::format(at)},
                                                 {"session", "0A1B2C3D"}});
    }
    void outcomes(int count, const std::string& outcome, const std::string& action = "pause", Time at = first) {
        for (int n = 0; n < count; ++n) add("shadowOutcome", action, "Slack", at)["outcome"] = outcome;
    }
    ShadowRecord build() const { return ShadowRecord::build(lines); }
    ShadowRecord::Standing pauseStanding() const {
        const ShadowRecord record = build();
        return record.standing(record.rules[1]);
    }
};

using Standing = ShadowRecord::Standing;

}  // namespace

TEST_F(ShadowRecordTest, AnEmptyLogGivesThreeZeroedRules) {
    const ShadowRecord record = build();
    EXPECT_EQ(record, ShadowRecord());
    EXPECT_EQ(record.rules[0].action, Decision::Action::demote);
    EXPECT_EQ(record.rules[1].action, Decision::Action::pause);
    EXPECT_EQ(record.rules[2].action, Decision::Action::end);
    EXPECT_FALSE(record.since);
    EXPECT_FALSE(record.until);
    for (const auto& rule : record.rules) EXPECT_EQ(record.standing(rule), Standing(ShadowRecord::NeedsData()));
}

TEST_F(ShadowRecordTest, AnOutcomeFillsInItsDecision) {
    auto& decision = add("shadowDecision", "pause", "Slack");
    decision["reason"] = "idle 40 min, not focused, memory under pressure";
    decision["gainMB"] = 512;
    auto& outcome = add("shadowOutcome", "pause", "Slack", first + 3600);
    outcome["outcome"] = "held";
    outcome["afterMin"] = 60;
    add("shadowDecision", "demote", "Slack", first + 10);
    const ShadowRecord record = build();
    ASSERT_EQ(record.entries.size(), 2u);
    EXPECT_EQ(record.entries[0],
              (ShadowRecord::Entry{0, first, Decision::Action::pause, "Slack",
                                   "idle 40 min, not focused, memory under pressure", 512, "held", 60}));
    EXPECT_EQ(record.entries[1], (ShadowRecord::Entry{1, first + 10, Decision::Action::demote, "Slack", "", 0,
                                                      std::nullopt, std::nullopt}));
    EXPECT_EQ(record.rules[1], (ShadowRecord::Rule{Decision::Action::pause, 1, 1, 0, 0, 0}));
    EXPECT_EQ(record.since, first);
    EXPECT_EQ(record.until, first + 3600);
}

TEST_F(ShadowRecordTest, AnOutcomeWithoutItsDecisionStillCounts) {
    outcomes(1, "regret:focused");
    const ShadowRecord record = build();
    EXPECT_EQ(record.rules[1].resolved, 1);
    EXPECT_EQ(record.rules[1].regrets, 1);
    EXPECT_TRUE(record.entries.empty());
}

TEST_F(ShadowRecordTest, OfTwoOpenDecisionsTheLaterGetsTheOutcome) {
    add("shadowDecision", "pause", "Slack");
    add("shadowDecision", "pause", "Slack", first + 5);
    outcomes(2, "held");
    const ShadowRecord record = build();
    EXPECT_FALSE(record.entries[0].outcome);
    EXPECT_EQ(record.entries[1].outcome, "held");
    EXPECT_EQ(record.rules[1].resolved, 2);
}

TEST_F(ShadowRecordTest, AnOutcomeWithoutAWordIsEmptyAndNoRegret) {
    add("shadowDecision", "end", "agent leftovers");
    add("shadowOutcome", "end", "agent leftovers")["afterMin"] = 3.5;
    const ShadowRecord record = build();
    EXPECT_EQ(record.entries[0].outcome, "");
    EXPECT_FALSE(record.entries[0].afterMin);
    EXPECT_EQ(record.rules[2].regrets, 0);
}

TEST_F(ShadowRecordTest, LinesThatDoNotFitCountForNothing) {
    add("shadowDecision", "restart", "Slack");
    add("shadowDecision", "pause", "Slack").erase("target");
    add("shadowDecision", "pause", "Slack")["t"] = "2026-03-01T09:30:15.5Z";
    add("shadowDecision", "pause", "Slack")["t"] = 5;
    add("shadowDecision", "pause", "Slack")["action"] = 1;
    lines.push_back(nlohmann::json::array({"shadowDecision"}));
    EXPECT_EQ(build(), ShadowRecord());
}

TEST_F(ShadowRecordTest, AnyLineOfAKnownActionExtendsTheDates) {
    add("keep", "pause", "Slack", first + 100);
    add("x", "pause", "Slack", first - 100).erase("kind");
    const ShadowRecord record = build();
    EXPECT_EQ(record.since, first - 100);
    EXPECT_EQ(record.until, first + 100);
    EXPECT_EQ(record.rules, ShadowRecord().rules);
}

TEST_F(ShadowRecordTest, TheMostRegrettedAreTheFiveWorstWithTiesByName) {
    for (const char* target : {"f", "e", "d", "c", "b", "a"}) add("suggestionDismissed", "pause", target);
    add("suggestionDismissed", "demote", "f");
    add("shadowOutcome", "pause", "f")["outcome"] = "regret:woke";
    add("suggestionAccepted", "pause", "z");
    const ShadowRecord record = build();
    using Pairs = std::vector<std::pair<std::string, std::int64_t>>;
    EXPECT_EQ(record.mostRegretted, (Pairs{{"f", 3}, {"a", 1}, {"b", 1}, {"c", 1}, {"d", 1}}));
    EXPECT_EQ(record.rules[1], (ShadowRecord::Rule{Decision::Action::pause, 0, 1, 1, 1, 6}));
    EXPECT_EQ(record.rules[0].dismissed, 1);
    EXPECT_EQ(record.rules[0].regrets, 0);
}

TEST_F(ShadowRecordTest, TwoOfThirtyIsTooOftenWhateverTheWeek) {
    outcomes(28, "held");
    outcomes(2, "regret:woke", "pause", first + 30 * 86400);
    const auto standing = pauseStanding();
    ASSERT_TRUE(std::holds_alternative<ShadowRecord::TooOften>(standing));
    EXPECT_NEAR(std::get<ShadowRecord::TooOften>(standing).percent, 6.67, 0.01);
}

TEST_F(ShadowRecordTest, FivePercentExactlyIsTooOften) {
    outcomes(38, "held");
    outcomes(2, "regret:woke", "pause", first + 30 * 86400);
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::TooOften{5.0}));
}

TEST_F(ShadowRecordTest, TwentyNineAreTooFewWhateverTheMonth) {
    outcomes(28, "held");
    outcomes(1, "held", "pause", first + 30 * 86400);
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::NeedsData()));
}

TEST_F(ShadowRecordTest, TheRecordAsAWholeMustSpanAWeek) {
    outcomes(39, "held");
    outcomes(1, "regret:woke");
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::Waiting{7}));
    add("suggestionAccepted", "demote", "x", first + 535680);  // 6.2 days
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::Waiting{1}));
    add("suggestionAccepted", "demote", "x", first + 6 * 86400);
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::Waiting{1}));
    add("suggestionAccepted", "demote", "x", first + 7 * 86400 - 1);
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::Waiting{1}));
    add("suggestionAccepted", "demote", "x", first + 7 * 86400);
    EXPECT_EQ(pauseStanding(), Standing(ShadowRecord::Ready()));
}

TEST_F(ShadowRecordTest, WithoutDatesTheWeekIsAllAhead) {
    const ShadowRecord record;
    EXPECT_EQ(record.standing({Decision::Action::pause, 30, 30, 0, 0, 0}), Standing(ShadowRecord::Waiting{7}));
}

}  // namespace ravik

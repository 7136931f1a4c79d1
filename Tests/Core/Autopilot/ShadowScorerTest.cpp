#include "Core/Autopilot/ShadowScorer.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

using Action = Decision::Action;

Decision decision(Action action, const std::string& target) { return {action, target, {7}, 300ull << 20, "why"}; }

Snapshot with(const std::string& group, double cpu) {
    Snapshot snapshot;
    snapshot.groups = {{group, 300ull << 20, cpu, {}}};
    return snapshot;
}

constexpr Time start = 1'760'000'000;

}  // namespace

TEST(ShadowScorer, ADecisionRepeatedOnEveryTickCountsOnce) {
    ShadowScorer scorer;
    std::size_t opened = 0;
    std::size_t settled = 0;
    for (Time at = start; at <= start + 59 * 60; at += 5) {
        const auto step = scorer.step({decision(Action::pause, "Foo")}, with("Foo", 0), {}, at);
        opened += step.opened.size();
        settled += step.settled.size();
    }
    EXPECT_EQ(opened, 1u);
    EXPECT_EQ(settled, 0u);
}

TEST(ShadowScorer, HoldsAfterExactlyAnHour) {
    ShadowScorer scorer;
    scorer.step({decision(Action::demote, "Foo")}, with("Foo", 30), {}, start);
    EXPECT_TRUE(scorer.step({}, with("Foo", 30), {}, start + 3599.9).settled.empty());
    const auto step = scorer.step({}, with("Foo", 30), {}, start + 3600);
    ASSERT_EQ(step.settled.size(), 1u);
    EXPECT_EQ(step.settled[0].decision, decision(Action::demote, "Foo"));
    EXPECT_EQ(step.settled[0].outcome, "held");
    EXPECT_EQ(step.settled[0].age, 3600.0);
    EXPECT_TRUE(scorer.open.empty());
}

TEST(ShadowScorer, APausedAppThatWorksIsARegretAboveFivePercent) {
    ShadowScorer scorer;
    scorer.step({decision(Action::pause, "Foo")}, with("Foo", 0), {}, start);
    EXPECT_TRUE(scorer.step({}, with("Foo", 5.0), {}, start + 60).settled.empty());
    const auto step = scorer.step({}, with("Foo", 5.1), {}, start + 120);
    ASSERT_EQ(step.settled.size(), 1u);
    EXPECT_EQ(step.settled[0].outcome, "regret:woke");
    EXPECT_EQ(step.settled[0].age, 120.0);
}

TEST(ShadowScorer, ADemotedAppMayWork) {
    ShadowScorer scorer;
    scorer.step({decision(Action::demote, "Foo")}, with("Foo", 30), {}, start);
    EXPECT_TRUE(scorer.step({}, with("Foo", 90), {}, start + 60).settled.empty());
}

TEST(ShadowScorer, FocusIsARegretForBothReversibleActions) {
    ShadowScorer scorer;
    scorer.step({decision(Action::demote, "Foo"), decision(Action::pause, "Foo")}, with("Foo", 0), "Bar", start);
    const auto step = scorer.step({}, with("Foo", 90), "Foo", start + 60);
    ASSERT_EQ(step.settled.size(), 2u);
    EXPECT_EQ(step.settled[0].outcome, "regret:focused");
    EXPECT_EQ(step.settled[1].outcome, "regret:focused");
}

TEST(ShadowScorer, ARegretWinsOverTheEndOfTheHour) {
    for (const bool focused : {true, false}) {
        ShadowScorer scorer;
        scorer.step({decision(Action::pause, "Foo")}, with("Foo", 0), {}, start);
        const auto step = scorer.step({}, with("Foo", focused ? 0 : 6),
                                      focused ? std::optional<std::string>("Foo") : std::nullopt, start + 3600);
        ASSERT_EQ(step.settled.size(), 1u);
        EXPECT_EQ(step.settled[0].outcome, focused ? "regret:focused" : "regret:woke");
    }
}

TEST(ShadowScorer, EndingAlwaysHolds) {
    ShadowScorer scorer;
    const Decision end = decision(Action::end, "agent leftovers");
    scorer.step({end}, with("agent leftovers", 0), {}, start);
    EXPECT_TRUE(scorer.step({end}, with("agent leftovers", 99), "agent leftovers", start + 1800).settled.empty());
    const auto step = scorer.step({end}, with("agent leftovers", 99), "agent leftovers", start + 3600);
    ASSERT_EQ(step.settled.size(), 1u);
    EXPECT_EQ(step.settled[0].outcome, "held");
}

TEST(ShadowScorer, AnAppThatHasGoneCannotWake) {
    ShadowScorer scorer;
    scorer.step({decision(Action::pause, "Foo")}, with("Foo", 0), {}, start);
    EXPECT_TRUE(scorer.step({}, with("Bar", 90), {}, start + 3000).settled.empty());
    EXPECT_EQ(scorer.step({}, with("Bar", 90), {}, start + 3600).settled.at(0).outcome, "held");
}

TEST(ShadowScorer, TheSameChoiceOpensAnewAfterItsOutcome) {
    ShadowScorer scorer;
    const std::vector<Decision> pause{decision(Action::pause, "Foo")};
    scorer.step(pause, with("Foo", 0), {}, start);
    // The tick that settles it does not open it again: it was still open when the decisions came in.
    const auto over = scorer.step(pause, with("Foo", 0), {}, start + 3600);
    EXPECT_EQ(over.settled.size(), 1u);
    EXPECT_TRUE(over.opened.empty());
    EXPECT_EQ(scorer.step(pause, with("Foo", 0), {}, start + 3605).opened.size(), 1u);
    EXPECT_TRUE(scorer.step(pause, with("Foo", 0), {}, start + 3605 + 3599).settled.empty());
    EXPECT_EQ(scorer.step(pause, with("Foo", 0), {}, start + 3605 + 3600).settled.size(), 1u);
}

TEST(ShadowScorer, OneTargetMayBeOpenForSeveralActions) {
    ShadowScorer scorer;
    const auto step =
        scorer.step({decision(Action::pause, "Foo"), decision(Action::demote, "Foo")}, with("Foo", 0), {}, start);
    EXPECT_EQ(step.opened.size(), 2u);
    EXPECT_EQ(scorer.open.size(), 2u);
}

}  // namespace ravik

#include "Core/Screens/AutopilotScreen.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

using namespace AutopilotScreen;
using Action = Decision::Action;

constexpr Time first = 1772357415;  // 2026-03-01T09:30:15Z

/// A record of more than a week in which `pause` was scored so often and so often wrong.
ShadowRecord scored(std::int64_t resolved, std::int64_t regrets) {
    ShadowRecord record;
    record.rules[1].resolved = resolved;
    record.rules[1].regrets = regrets;
    record.since = first;
    record.until = first + 8 * 86400;
    return record;
}

}  // namespace

TEST(AutopilotScreen, EachStandingHasItsWord) {
    EXPECT_EQ(status(ShadowRecord::TooOften{6}), "too often wrong");
    EXPECT_EQ(status(ShadowRecord::NeedsData()), "needs more data");
    EXPECT_EQ(status(ShadowRecord::Waiting{1}), "ready in 1 day");
    EXPECT_EQ(status(ShadowRecord::Waiting{4}), "ready in 4 days");
    EXPECT_EQ(status(ShadowRecord::Ready()), "ready to turn on");
}

TEST(AutopilotScreen, BeforeAnythingIsScoredTheHeroIsADash) {
    const Hero empty = hero(ShadowRecord(), {});
    EXPECT_EQ(empty.value, "—");
    EXPECT_EQ(empty.caption, "of its choices would have been wrong");
    EXPECT_EQ(empty.line, "Learning — not acting yet. A rule can turn on once it stays under 5%.");
}

TEST(AutopilotScreen, TheHeroIsTheShareOverAllRules) {
    ShadowRecord record = scored(30, 2);
    record.rules[2].resolved = 10;
    EXPECT_EQ(hero(record, {}).value, "5%");
    EXPECT_EQ(hero(scored(30, 2), {Action::pause}).line,
              "1 rule on — undoable for 10 minutes from the panel. The rest learn and act on nothing.");
    EXPECT_TRUE(hero(scored(30, 2), {Action::pause, Action::demote}).line.starts_with("2 rules on — "));
}

TEST(AutopilotScreen, ARuleCanBeTurnedOnOnlyOnceItIsReady) {
    auto row = ruleRows(scored(40, 1), {})[1];
    EXPECT_EQ(row, (RuleRow{Action::pause, "Pause idle apps", false, true, "ready to turn on"}));
    row = ruleRows(scored(40, 2), {})[1];
    EXPECT_EQ(row, (RuleRow{Action::pause, "Pause idle apps", false, false, "too often wrong"}));
    ShadowRecord young = scored(40, 1);
    young.until = first + 6 * 86400;
    EXPECT_EQ(ruleRows(young, {})[1].caption, "ready in 1 day");
    EXPECT_FALSE(ruleRows(young, {})[1].isEnabled);
}

TEST(AutopilotScreen, ARuleThatIsOnCanAlwaysBeTurnedOff) {
    const auto rows = ruleRows(scored(40, 20), {Action::pause, Action::end});
    EXPECT_EQ(rows[1], (RuleRow{Action::pause, "Pause idle apps", true, true, "On — undoable for 10 minutes"}));
    EXPECT_TRUE(rows[2].isEnabled);
    EXPECT_EQ(rows[2].caption, "On — undoable for 10 minutes");
    EXPECT_FALSE(rows[0].isOn);
}

TEST(AutopilotScreen, EndingIsNeverTurnedOn) {
    ShadowRecord record = scored(0, 0);
    record.rules[2].resolved = 100;
    const auto row = ruleRows(record, {})[2];
    EXPECT_EQ(row,
              (RuleRow{Action::end, "End old leftovers", false, false, "Stays a suggestion: ending cannot be undone"}));
}

TEST(AutopilotScreen, WithoutKnowingTheFocusIdleAppsAreNotPaused) {
    EXPECT_FALSE(ruleRows(scored(40, 1), {}, false)[1].isEnabled);
    EXPECT_TRUE(ruleRows(scored(40, 1), {Action::pause}, false)[1].isEnabled);
    ShadowRecord record = scored(0, 0);
    record.rules[0].resolved = 40;
    EXPECT_TRUE(ruleRows(record, {}, false)[0].isEnabled);
}

TEST(AutopilotScreen, BarsTellHowOftenEachRuleWasWrong) {
    const auto chart = bars(scored(40, 20));
    EXPECT_EQ(chart[0], (Bar{"Slow busy background work", 0, BarTone::notEnough, "not enough data"}));
    EXPECT_EQ(chart[1], (Bar{"Pause idle apps", 50, BarTone::tooOften, "50 percent wrong"}));
    EXPECT_EQ(bars(scored(40, 1))[1].tone, BarTone::onTrack);
    EXPECT_DOUBLE_EQ(axisTop(scored(40, 1)), 25);
    EXPECT_DOUBLE_EQ(axisTop(scored(40, 20)), 50);
}

TEST(AutopilotScreen, TheSheetNamesWhatWasAcceptedAndTheLatestChoices) {
    ShadowRecord record;
    record.rules[0].accepted = 3;
    EXPECT_EQ(acceptedLines(record), std::vector<std::string>{"Slow busy background work · you said yes 3"});
    record.entries = {{0, first, Action::pause, "Slack", "idle", 5, "held", 60},
                      {1, first + 60, Action::demote, "node", "busy", 0, "regret:focused", 3},
                      {2, first + 120, Action::end, "agent leftovers", "", 0, {}, {}}};
    EXPECT_EQ(entryRows(record),
              (std::vector<EntryRow>{{"2026-03-01 09:32Z", "end", "agent leftovers", "", "not scored yet"},
                                     {"2026-03-01 09:31Z", "demote", "node", "busy", "wrong"},
                                     {"2026-03-01 09:30Z", "pause", "Slack", "idle", "right"}}));
    EXPECT_EQ(entryRows(record, 1).size(), 1u);
    EXPECT_EQ(infoSections().size(), 5u);
}

}  // namespace ravik

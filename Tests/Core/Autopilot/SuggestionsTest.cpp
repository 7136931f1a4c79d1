#include <gtest/gtest.h>

#include "Tests/Core/Autopilot/AutopilotDesk.h"

namespace ravik {

namespace {

using Action = Decision::Action;
using fakes::AutopilotDesk;
using nlohmann::json;

class SuggestionsTest : public testing::Test, protected AutopilotDesk {
protected:
    /// "Foo" suggested for a pause.
    void suggestFoo() {
        app(60, "Foo");
        memory(19);
        tick();
        ASSERT_EQ(targets(), std::vector<std::string>{"Foo"});
    }
    std::vector<std::string> targets() const {
        std::vector<std::string> found;
        for (const Decision& decision : monitor->suggestions()) found.push_back(decision.target);
        return found;
    }
};

using Targets = std::vector<std::string>;

}  // namespace

TEST_F(SuggestionsTest, ASuggestionIsAnnouncedOnceARun) {
    suggestFoo();
    tick();
    const auto shown = lines("suggestionShown");
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["action"], "pause");
    EXPECT_EQ(shown[0]["target"], "Foo");
    EXPECT_EQ(shown[0]["gainMB"], 300);
    EXPECT_EQ(shown[0]["reason"], "idle 31 min, not focused, memory under pressure");
    EXPECT_FALSE(shown[0].contains("pids"));
}

TEST_F(SuggestionsTest, TheFirstTwoAreOfferedAndNeverAnEnding) {
    leftover(70).footprintBytes = 900 << 20;
    app(60, "Foo", 300);
    app(61, "Bar", 400);
    app(62, "Baz", 500);
    memory(19);
    tick();
    ASSERT_EQ(monitor->shadow().size(), 4u);
    EXPECT_EQ(monitor->shadow()[0].action, Action::end);
    EXPECT_EQ(targets(), (Targets{"Baz", "Bar"}));
}

TEST_F(SuggestionsTest, AcceptingActsOnce) {
    suggestFoo();
    const Decision decision = monitor->suggestions()[0];
    monitor->acceptSuggestion(monitor->suggestions()[0], now());
    EXPECT_TRUE(stopped(60));
    EXPECT_TRUE(monitor->suggestions().empty());
    ASSERT_EQ(monitor->live().size(), 1u);
    EXPECT_EQ(monitor->live()[0].decision, decision);
    const json line = lines("suggestionAccepted").at(0);
    EXPECT_EQ(line["action"], "pause");
    EXPECT_EQ(line["target"], "Foo");
    EXPECT_EQ(line["pids"], 1);
    EXPECT_EQ(line["gainMB"], 300);
    EXPECT_FALSE(line.contains("reason"));
    EXPECT_TRUE(lines("autopilotAction").empty());
}

TEST_F(SuggestionsTest, WhatWasAcceptedIsReleasedLikeEveryLiveAction) {
    suggestFoo();
    monitor->acceptSuggestion(monitor->suggestions()[0], now());
    tick();
    EXPECT_TRUE(stopped(60));
    EXPECT_TRUE(monitor->suggestions().empty());
    memory(50);
    tick();
    EXPECT_FALSE(stopped(60));
    EXPECT_EQ(lines("autopilotRelease").at(0)["why"], "condition passed");
}

TEST_F(SuggestionsTest, WhatWasAcceptedAndReleasedIsOfferedAgainButNotAnnounced) {
    suggestFoo();
    monitor->acceptSuggestion(monitor->suggestions()[0], now());
    monitor->undoLive(monitor->live().at(0).id);
    tick();
    EXPECT_EQ(targets(), Targets{"Foo"});
    EXPECT_EQ(lines("suggestionShown").size(), 1u);
}

TEST_F(SuggestionsTest, AcceptingWhatHasJustBecomeOpenWritesNothingAndStillRemovesIt) {
    suggestFoo();
    const Decision decision = monitor->suggestions()[0];
    monitor->acceptSuggestion(decision, now());
    const std::size_t before = lines("").size();
    monitor->acceptSuggestion(decision, now());
    EXPECT_EQ(lines("").size(), before);
    EXPECT_EQ(monitor->live().size(), 1u);
    EXPECT_TRUE(monitor->suggestions().empty());
}

TEST_F(SuggestionsTest, AcceptingThePauseOfWhatHasGoneLeavesNoActionAndNoLine) {
    suggestFoo();
    machine.processes.end(60);
    monitor->acceptSuggestion(monitor->suggestions()[0], now());
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_TRUE(lines("suggestionAccepted").empty());
    EXPECT_TRUE(monitor->suggestions().empty());
}

TEST_F(SuggestionsTest, AReusedPidIsNotPaused) {
    suggestFoo();
    app(60, "Newcomer").started = now();
    monitor->acceptSuggestion(monitor->suggestions()[0], now());
    EXPECT_FALSE(stopped(60));
    EXPECT_TRUE(lines("suggestionAccepted").empty());
}

TEST_F(SuggestionsTest, AnEndingCannotBeAccepted) {
    leftover(70);
    tick();
    ASSERT_EQ(monitor->shadow().at(0).action, Action::end);
    monitor->acceptSuggestion(monitor->shadow()[0], now());
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_NE(machine.processes.find(70), nullptr);
    EXPECT_TRUE(lines("suggestionAccepted").empty());
}

TEST_F(SuggestionsTest, ADismissalHidesForExactlyADay) {
    suggestFoo();
    const Time at = now();
    monitor->dismissSuggestion(monitor->suggestions()[0], at);
    EXPECT_TRUE(monitor->suggestions().empty());
    EXPECT_EQ(machine.defaults.values["dismissedSuggestions"], (json{{"Foo", at}}));
    const json line = lines("suggestionDismissed").at(0);
    EXPECT_EQ(line["action"], "pause");
    EXPECT_EQ(line["target"], "Foo");
    EXPECT_EQ(line["gainMB"], 300);
    EXPECT_FALSE(line.contains("pids"));
    tick(86399);
    ASSERT_EQ(monitor->shadow().size(), 1u);
    EXPECT_TRUE(monitor->suggestions().empty());
    tick(1);
    EXPECT_EQ(targets(), Targets{"Foo"});
    EXPECT_EQ(lines("suggestionShown").size(), 1u);
}

TEST_F(SuggestionsTest, ADismissalMakesRoomForTheNext) {
    app(60, "Foo", 300);
    app(61, "Bar", 400);
    app(62, "Baz", 500);
    memory(19);
    tick();
    monitor->dismissSuggestion(monitor->suggestions()[0], now());
    EXPECT_EQ(targets(), Targets{"Bar"});
    tick();
    EXPECT_EQ(targets(), (Targets{"Bar", "Foo"}));
}

TEST(Suggestions, OldDismissalsStayStored) {
    fakes::FakeDefaults defaults;
    Suggestions suggestions(defaults);
    suggestions.dismiss("Foo", 1000.5);
    suggestions.dismiss("Bar", 1000.5 + 10 * 86400);
    EXPECT_EQ(suggestions.dismissed(), (std::map<std::string, Time>{{"Bar", 865000.5}, {"Foo", 1000.5}}));
    EXPECT_TRUE(suggestions.isDismissed("Foo", 1000.5 + 86399));
    EXPECT_FALSE(suggestions.isDismissed("Foo", 1000.5 + 86400));
    EXPECT_FALSE(suggestions.isDismissed("Baz", 1000.5));
}

TEST(Suggestions, AnUnreadableStoreDismissesNothing) {
    fakes::FakeDefaults defaults;
    Suggestions suggestions(defaults);
    for (const json& stored : {json("Foo"), json::array({"Foo"}), json{{"Foo", "yesterday"}}}) {
        defaults.values["dismissedSuggestions"] = stored;
        EXPECT_FALSE(suggestions.isDismissed("Foo", 1000));
    }
    defaults.values["dismissedSuggestions"] = json{{"Foo", "yesterday"}, {"Bar", 900}};
    EXPECT_TRUE(suggestions.isDismissed("Bar", 1000));
}

TEST(Approvals, AnUnknownWordIsPassedOverAndGoesWithTheNextWrite) {
    fakes::FakeDefaults defaults;
    Approvals approvals(defaults);
    EXPECT_TRUE(approvals.actions().empty());
    defaults.values["autopilotApproved"] = json::array({"sleep", "pause", 7, "demote"});
    EXPECT_EQ(approvals.actions(), (std::set{Action::demote, Action::pause}));
    approvals.setActions({Action::pause, Action::end, Action::demote});
    EXPECT_EQ(defaults.values["autopilotApproved"], json::array({"demote", "end", "pause"}));
    defaults.values["autopilotApproved"] = "pause";
    EXPECT_TRUE(approvals.actions().empty());
}

}  // namespace ravik

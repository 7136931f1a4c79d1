#include "Core/Watch/AlertPolicy.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

using Names = std::set<std::string>;

Finding finding(std::string id, Finding::Severity severity) {
    Finding made;
    made.id = std::move(id);
    made.severity = severity;
    return made;
}

AlertPolicy::Causes critical(Names names, Names urgent = {}) { return {std::move(names), std::move(urgent)}; }

}  // namespace

TEST(AlertPolicy, OnlyCriticalFindingsAreCauses) {
    const auto causes = AlertPolicy::causes({finding("disk", Finding::Severity::critical),
                                             finding("leftovers", Finding::Severity::warn),
                                             finding("indexing", Finding::Severity::info)});
    EXPECT_EQ(causes, critical({"disk"}));
}

TEST(AlertPolicy, AHolderSilencesTheComplaintAboutSwapping) {
    const auto causes = AlertPolicy::causes(
        {finding("holder:Cursor", Finding::Severity::critical), finding("thrash", Finding::Severity::critical)});
    EXPECT_EQ(causes, critical({"holder:Cursor"}, {"holder:Cursor"}));
    const auto calm = AlertPolicy::causes(
        {finding("holder:Cursor", Finding::Severity::warn), finding("thrash", Finding::Severity::critical)});
    EXPECT_EQ(calm, critical({"thrash"}));
}

TEST(AlertPolicy, OnlyTheHoldersThemselvesAreUrgent) {
    const auto causes = AlertPolicy::causes(
        {finding("holdings", Finding::Severity::critical), finding("thrash", Finding::Severity::critical)});
    EXPECT_EQ(causes, critical({"holdings", "thrash"}));
    EXPECT_EQ(AlertPolicy::causes({finding("holder", Finding::Severity::critical)}), critical({"holder"}));
}

TEST(AlertPolicy, ACauseIsDueAfterTenMinutesAndThenNotForADay) {
    AlertPolicy policy;
    const auto causes = critical({"disk"});
    EXPECT_EQ(policy.due(causes, false, 1000), Names{});
    EXPECT_EQ(policy.due(causes, false, 1599), Names{});
    EXPECT_EQ(policy.due(causes, false, 1600), Names{"disk"});
    policy.record({"disk"}, 1600);
    EXPECT_EQ(policy.due(causes, false, 1605), Names{});
    // It goes away and comes back: it must settle, and the day still counts.
    EXPECT_EQ(policy.due(critical({}), false, 50000), Names{});
    EXPECT_EQ(policy.due(causes, false, 87000), Names{});
    EXPECT_EQ(policy.due(causes, false, 87599), Names{});
    EXPECT_EQ(policy.due(causes, false, 1600 + 86400), Names{"disk"});
}

TEST(AlertPolicy, AHolderIsDueAfterAMinuteAndAgainEveryHalfHour) {
    AlertPolicy policy;
    const auto causes = critical({"holder:X"}, {"holder:X"});
    EXPECT_EQ(policy.due(causes, false, 0), Names{});
    EXPECT_EQ(policy.due(causes, false, 59), Names{});
    EXPECT_EQ(policy.due(causes, false, 60), Names{"holder:X"});
    policy.record({"holder:X"}, 60);
    EXPECT_EQ(policy.due(causes, false, 1859), Names{});
    EXPECT_EQ(policy.due(causes, false, 1860), Names{"holder:X"});
}

TEST(AlertPolicy, AllBreachesAreOneCauseWithOneClock) {
    AlertPolicy policy;
    EXPECT_EQ(policy.due({}, true, 0), Names{});
    EXPECT_EQ(policy.due({}, true, 600), Names{"breach"});
}

TEST(AlertPolicy, AGapOfOneTickStartsTheClockAfresh) {
    AlertPolicy policy;
    policy.due(critical({"disk"}), false, 0);
    policy.due({}, false, 300);
    EXPECT_EQ(policy.due(critical({"disk"}), false, 305), Names{});
    EXPECT_EQ(policy.due(critical({"disk"}), false, 904), Names{});
    EXPECT_EQ(policy.due(critical({"disk"}), false, 905), Names{"disk"});
}

TEST(AlertPolicy, WhatWasHeldBackStaysDue) {
    AlertPolicy policy;
    policy.due(critical({"disk"}), false, 0);
    EXPECT_EQ(policy.due(critical({"disk"}), false, 600), Names{"disk"});
    EXPECT_EQ(policy.due(critical({"disk"}), false, 605), Names{"disk"});
}

}  // namespace ravik

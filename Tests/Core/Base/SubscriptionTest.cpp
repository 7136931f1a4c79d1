#include "Core/Base/Subscription.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

static_assert(!std::is_copy_constructible_v<Subscription> && !std::is_copy_assignable_v<Subscription>);

struct SubscriptionTest : testing::Test {
    Observers<int> observers;
    std::vector<int> told;
    std::function<void(int)> note(int who) {
        return [this, who](int value) { told.push_back(who * 10 + value); };
    }
    using Told = std::vector<int>;
};

}  // namespace

TEST_F(SubscriptionTest, TellsInTheOrderInWhichTheyCame) {
    const auto first = observers.add(note(1));
    const auto second = observers.add(note(2));
    observers.notify(5);
    EXPECT_EQ(told, (Told{15, 25}));
}

TEST_F(SubscriptionTest, EndsWithItsHolder) {
    const auto kept = observers.add(note(1));
    {
        const auto passing = observers.add(note(2));
        observers.notify(1);
    }
    observers.notify(2);
    EXPECT_EQ(told, (Told{11, 21, 12}));
}

TEST_F(SubscriptionTest, EndsOnRequestAndTwiceDoesNoHarm) {
    auto held = observers.add(note(1));
    EXPECT_TRUE(held);
    held.end();
    held.end();
    EXPECT_FALSE(held);
    observers.notify(1);
    EXPECT_TRUE(told.empty());
}

TEST_F(SubscriptionTest, MovesToAnotherHolder) {
    Subscription last;
    {
        auto first = observers.add(note(1));
        last = std::move(first);
    }
    observers.notify(1);
    EXPECT_EQ(told, (Told{11}));
}

TEST_F(SubscriptionTest, AnAssignmentEndsWhatWasHeldBefore) {
    auto held = observers.add(note(1));
    held = observers.add(note(2));
    observers.notify(1);
    EXPECT_EQ(told, (Told{21}));
}

TEST_F(SubscriptionTest, OneThatEndsItselfWhileItIsToldRunsToItsEnd) {
    Subscription self;
    // Long enough to lie on the heap, where a sanitizer sees it used after its end.
    self = observers.add([&self, this, text = std::string(100, 'x')](int value) {
        self.end();
        told.push_back(value + static_cast<int>(text.size()));
    });
    observers.notify(1);
    observers.notify(2);
    EXPECT_EQ(told, (Told{101}));
}

TEST_F(SubscriptionTest, OneRemovedByAnotherMeanwhileIsToldNothingMore) {
    Subscription second;
    const auto first = observers.add([&](int) { second.end(); });
    second = observers.add(note(2));
    const auto third = observers.add(note(3));
    observers.notify(1);
    EXPECT_EQ(told, (Told{31}));
}

TEST_F(SubscriptionTest, ManyAddedMeanwhileWaitForTheNextTime) {
    std::vector<Subscription> added;
    const auto first = observers.add([&](int) {
        while (added.size() < 50) added.push_back(observers.add(note(2)));
    });
    const auto last = observers.add(note(3));
    observers.notify(1);
    EXPECT_EQ(told, (Told{31}));
    observers.notify(2);
    EXPECT_EQ(told.size(), 52u);
}

TEST_F(SubscriptionTest, ANotificationWithinANotificationReachesAll) {
    const auto first = observers.add([&](int value) {
        if (value == 1) observers.notify(2);
    });
    const auto second = observers.add(note(2));
    observers.notify(1);
    EXPECT_EQ(told, (Told{22, 21}));
}

TEST_F(SubscriptionTest, OutlivesWhatItObserves) {
    auto passing = std::make_unique<Observers<int>>();
    auto held = passing->add(note(1));
    passing->notify(1);
    passing.reset();
    held.end();
    EXPECT_EQ(told, (Told{11}));
}

TEST_F(SubscriptionTest, AnObserverMayDestroyWhatItObserves) {
    auto passing = std::make_unique<Observers<int>>();
    const auto first = passing->add([&](int) { passing.reset(); });
    const auto second = passing->add(note(2));
    passing->notify(1);
    EXPECT_EQ(told, (Told{21}));
}

TEST_F(SubscriptionTest, LetsGoOfWhatTheObserverHolds) {
    const auto kept = std::make_shared<int>(1);
    auto held = observers.add([kept](int) {});
    EXPECT_EQ(kept.use_count(), 2);
    held.end();
    EXPECT_EQ(kept.use_count(), 1);
}

}  // namespace ravik

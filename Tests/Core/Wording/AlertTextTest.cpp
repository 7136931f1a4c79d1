#include "Core/Wording/AlertText.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

using Actions = std::vector<std::pair<std::string, std::string>>;

Finding finding(std::string title, Remedy remedy, std::uint64_t gain) {
    Finding made;
    made.title = std::move(title);
    made.remedy = std::move(remedy);
    made.gainBytes = gain;
    return made;
}

}  // namespace

TEST(AlertText, WithoutAFindingTheBreachesAreTitleAndBody) {
    Snapshot snapshot;
    snapshot.sampled = true;
    snapshot.breaches = {"swap 9.0 GB", "load 40"};
    const Notification note = alertText(snapshot);
    EXPECT_EQ(note.title, "Ravik: swap 9.0 GB, load 40");
    EXPECT_EQ(note.body, "swap 9.0 GB, load 40");
    EXPECT_EQ(note.actions, (Actions{{"show", "Show"}}));
}

TEST(AlertText, AnAppToQuitIsNamedWithItsAmount) {
    Snapshot snapshot;
    snapshot.sampled = true;
    snapshot.findings = {finding("Cursor grew", QuitApp{"Cursor"}, 4100ull << 20)};
    const Notification note = alertText(snapshot);
    EXPECT_EQ(note.title, "Cursor grew");
    EXPECT_EQ(note.body, "Quitting Cursor gives back about 4.1 GB. Save your work first.");
    EXPECT_EQ(note.actions, (Actions{{"show", "Show"}}));
}

TEST(AlertText, WhatCanBeFreedHasItsButton) {
    Snapshot snapshot;
    snapshot.sampled = true;
    snapshot.findings = {finding("left", KillTrees{{1}}, 1200ull << 20)};
    const Notification note = alertText(snapshot);
    EXPECT_EQ(note.body, "1.2 GB reclaimable");
    EXPECT_EQ(note.actions, (Actions{{"free", "Free 1,200\u00a0MB…"}, {"show", "Show"}}));
}

TEST(AlertText, APlaceholderPromisesNothing) {
    Snapshot snapshot;
    snapshot.breaches = {"load 9", "disk 5 GB free"};
    snapshot.findings = {finding("Two leftovers", KillTrees{{7}}, 300ull << 20)};
    EXPECT_EQ(alertText(snapshot).body, "load 9, disk 5 GB free");
    snapshot.sampled = true;
    EXPECT_EQ(alertText(snapshot).body, "300 MB reclaimable");
}

}  // namespace ravik

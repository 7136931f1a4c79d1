#include "Core/Screens/DiagnosisSections.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

using Shown = std::vector<std::pair<std::string, std::vector<std::string>>>;

Shown shown(std::vector<Finding> findings, const std::unordered_set<std::string>& done = {}) {
    Snapshot snapshot;
    snapshot.findings = std::move(findings);
    Shown sections;
    for (const DiagnosisSection& section : DiagnosisSections::of(snapshot, done)) {
        sections.emplace_back(section.heading, std::vector<std::string>());
        for (const Finding* finding : section.findings) sections.back().second.push_back(finding->id);
    }
    return sections;
}

}  // namespace

TEST(DiagnosisSections, SortTheFindingsByWhatMayBeDone) {
    EXPECT_EQ(shown({finding("disk", ScanDisk{}), finding("orphan:1", KillTrees{{1}}),
                     finding("browser:Arc", QuitApp{"Arc"}), cautioned(finding("orphan:2", KillTrees{{2}})),
                     finding("vm:x", Advice{}), finding("orphan:3", KillTrees{{3}})}),
              (Shown{{"Safe to end", {"orphan:1", "orphan:3"}},
                     {"Busy — asks first", {"orphan:2"}},
                     {"Quit when you are ready", {"browser:Arc"}},
                     {"Left alone", {"disk", "vm:x"}}}));
}

TEST(DiagnosisSections, ACautionGoesBeforeTheRemedy) {
    EXPECT_EQ(shown({cautioned(finding("holder:Cursor", QuitApp{"Cursor"}), "2 agent sessions")}),
              (Shown{{"Busy — asks first", {"holder:Cursor"}}}));
}

TEST(DiagnosisSections, WhatIsDoneIsLeftOutAndSoIsAnEmptySection) {
    EXPECT_EQ(shown({finding("disk", ScanDisk{}), finding("orphan:1", KillTrees{{1}})}, {"orphan:1"}),
              (Shown{{"Left alone", {"disk"}}}));
    EXPECT_TRUE(shown({}).empty());
}

}  // namespace ravik

#include "Core/Wording/InfoText.h"

#include <gtest/gtest.h>

#include "Core/Wording/AppInfo.h"
#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

std::string text(Destination destination, const std::string& heading, const Machine& machine = {}) {
    const Cards cards(machine);
    for (const auto& [found, text] : InfoText::sections(destination, cards.snapshot, machine.ram, machine.host)) {
        if (found == heading) return text;
    }
    return "no such heading";
}

Machine onLinux() {
    Machine machine;
    machine.host = linuxHost();
    return machine;
}

}  // namespace

TEST(InfoText, ThePageOfTheDiagnosisHoldsTheMachinesFigures) {
    Machine machine;
    machine.stats.swapUsedBytes = 3 * GiB / 2;
    EXPECT_EQ(text(Destination::diagnosis, "The bars", machine),
              "Each block is an app; its icon says which. Grey stays, amber is what Free ends, stripes come back when "
              "you quit. The line is your 16.4 GB of memory.");
    EXPECT_EQ(text(Destination::diagnosis, "Memory spilled to disk (swap)", machine),
              "When apps need more than your 16.4 GB, macOS writes the rest to disk. Disk is much slower than memory, "
              "so your Mac slows. Right now: 1.5 GB.");
}

TEST(InfoText, RavikTellsWhatItWeighsItself) {
    Machine machine;
    machine.host.pid = 42;
    EXPECT_EQ(text(Destination::diagnosis, "Ravik itself", machine), "Logs stay on this Mac.");
    machine.procs = {Making(42, "ravik").mb(31).cpu(0.25)};
    EXPECT_EQ(text(Destination::diagnosis, "Ravik itself", machine),
              "31\u00a0MB of memory, 0.2% CPU. Read at 22:13:20Z. Logs stay on this Mac.");
}

TEST(InfoText, OnLinuxTheNounsAreTheComputers) {
    EXPECT_EQ(text(Destination::diagnosis, "Ravik itself", onLinux()), "Logs stay on this computer.");
    EXPECT_EQ(text(Destination::diagnosis, "Keys", onLinux()),
              "Space opens a selected card's details · Ctrl+Backspace runs its button · Ctrl+R reads the computer "
              "again.");
    EXPECT_EQ(text(Destination::processes, "Quit and End", onLinux()),
              "Quit asks an app to close, like Ctrl+Q, so it can save your work. End stops a program and what it "
              "started: a polite stop, then a forced one after 3 seconds.");
    EXPECT_EQ(text(Destination::history, "Where this comes from", onLinux()),
              "Ravik's own log on this computer, averaged per hour. Nothing leaves your computer.");
    EXPECT_EQ(InfoText::title(Destination::diagnosis, linuxHost()), "How Ravik reads your computer");
}

TEST(InfoText, EveryPageHasItsSections) {
    const auto count = [](Destination destination) { return InfoText::sections(destination, {}, 0, macHost()).size(); };
    EXPECT_EQ(count(Destination::diagnosis), 8u);
    EXPECT_EQ(count(Destination::sessions), 4u);
    EXPECT_EQ(count(Destination::processes), 4u);
    EXPECT_EQ(count(Destination::disk), 3u);
    EXPECT_EQ(count(Destination::history), 5u);
    EXPECT_EQ(count(Destination::autopilot), 3u);
    EXPECT_EQ(text(Destination::diagnosis, "Keys"),
              "Space opens a selected card's details · ⌘⌫ runs its button · ⌘R reads the Mac again.");
    EXPECT_EQ(text(Destination::disk, "Why disk space matters"),
              "macOS slows sharply with under about 15 GB free, because memory that spills to disk has nowhere to go.");
    EXPECT_EQ(text(Destination::autopilot, "Turning a rule on"),
              "A rule can act only after a week of choices with fewer than 5% wrong, and only once you approve it. "
              "Everything it does can be undone for 10 minutes.");
}

TEST(InfoText, PagesHaveTitles) {
    const Host host = macHost();
    EXPECT_EQ(InfoText::title(Destination::diagnosis, host), "How Ravik reads your Mac");
    EXPECT_EQ(InfoText::title(Destination::sessions, host), "About AI coding sessions");
    EXPECT_EQ(InfoText::title(Destination::processes, host), "About programs");
    EXPECT_EQ(InfoText::title(Destination::disk, host), "About the disk scan");
    EXPECT_EQ(InfoText::title(Destination::history, host), "About History");
    EXPECT_EQ(InfoText::title(Destination::autopilot, host), "How Autopilot learns");
}

TEST(AppInfo, MomentsAreInUtcAndSaySo) {
    EXPECT_EQ(AppInfo::clock(1'700'000'000.9), "22:13:20Z");
    EXPECT_EQ(AppInfo::dayMinute(1'700'000'000), "2023-11-14 22:13Z");
    EXPECT_EQ(AppInfo::clock(-1), "23:59:59Z");
    EXPECT_EQ(AppInfo::clock(1e300).size(), 9u);
}

TEST(Destination, IsReadBackByItsWord) {
    for (const Destination destination : allDestinations) {
        EXPECT_EQ(parseDestination(word(destination)), destination);
    }
    EXPECT_EQ(parseDestination("Diagnosis"), std::nullopt);
    EXPECT_EQ(title(Destination::sessions), "Agent sessions");
    EXPECT_EQ(symbol(Destination::autopilot), "airplane");
}

}  // namespace ravik

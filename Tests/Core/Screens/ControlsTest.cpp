#include "Core/Screens/Controls.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using namespace fakes;

using Shape = VerdictFace::Shape;

TEST(ReadoutFace, ShowsTheDashAndNoUnitWhilePending) {
    const ReadoutFace pending("4.6", "GB", ReadoutFace::State::pending);
    EXPECT_EQ(pending.value, "—");
    EXPECT_EQ(pending.unit, "");
    EXPECT_EQ(pending, ReadoutFace());
    EXPECT_EQ(pending.spoken(), "—");
}

TEST(ReadoutFace, ShowsAnAmountWithItsUnit) {
    const ReadoutFace gigabytes = ReadoutFace::amount(4600 * MiB);
    EXPECT_EQ(gigabytes.value, "4.6");
    EXPECT_EQ(gigabytes.unit, "GB");
    EXPECT_EQ(gigabytes.state, ReadoutFace::State::live);
    EXPECT_EQ(gigabytes.spoken(), "4.6 GB");
    EXPECT_EQ(ReadoutFace::amount(999 * MiB).spoken(), "999 MB");
    EXPECT_EQ(ReadoutFace::amount(0, ReadoutFace::State::resolved).spoken(), "0 MB");
}

TEST(VerdictFace, EachToneHasItsOwnShapeColourAndWord) {
    const auto is = [](Tone tone, Shape shape, std::string_view colour, std::string_view word) {
        const VerdictFace face(tone);
        EXPECT_EQ(face.shape, shape) << word;
        EXPECT_EQ(face.colour, colour) << word;
        EXPECT_EQ(face.word, word);
    };
    is(Tone::safe, Shape::dot, "safe", "safe");
    is(Tone::caution, Shape::ring, "caution", "asks first");
    is(Tone::never, Shape::square, "never", "left alone");
    is(Tone::advice, Shape::dashedRing, "secondary", "tip");
}

TEST(VerdictFace, SaysItsOwnWordToThoseWhoHear) {
    EXPECT_EQ(VerdictFace(Tone::caution, "busy").spoken(), "Verdict: busy");
    EXPECT_EQ(VerdictFace(Tone::caution, "busy").shape, Shape::ring);
    EXPECT_EQ(VerdictFace(Tone::never).spoken(), "Verdict: left alone");
}

TEST(VerdictFace, TakesTheTextColourOnAmber) {
    for (const Tone tone : {Tone::safe, Tone::caution, Tone::never, Tone::advice}) {
        EXPECT_EQ(VerdictFace(tone, {}, true).colour, "onSignal");
    }
}

TEST(FreeButtonFace, FreesWhatThereIs) {
    const FreeButtonFace face(1846 * MiB);
    EXPECT_EQ(face.label, "Free 1,846\u00a0MB");
    EXPECT_TRUE(face.isEnabled);
    EXPECT_FALSE(face.isBusy);
    EXPECT_EQ(FreeButtonFace::help, "Ends only what is safe to end, after you confirm");
}

TEST(FreeButtonFace, CannotBePressedWithNothingToFree) {
    const FreeButtonFace face(0);
    EXPECT_EQ(face.label, "Nothing to free");
    EXPECT_FALSE(face.isEnabled);
    EXPECT_FALSE(face.isBusy);
}

TEST(FreeButtonFace, ShowsTheRunningTextWhateverThereIs) {
    for (const std::uint64_t bytes : {std::uint64_t{0}, 1846 * MiB}) {
        const FreeButtonFace face(bytes, "Ending 3 processes…");
        EXPECT_EQ(face.label, "Ending 3 processes…");
        EXPECT_FALSE(face.isEnabled);
        EXPECT_TRUE(face.isBusy);
    }
}

TEST(ResolvedFace, TellsWhatWentWellFromWhatDidNot) {
    EXPECT_EQ(ResolvedFace("3 ended · 0 survivors · 312\u00a0MB").symbol, "checkmark.circle.fill");
    EXPECT_EQ(ResolvedFace("Firefox quit · about 312\u00a0MB").colour, "safe");
    for (const char* line :
         {"Left running: a git operation in progress (git, pid 300).", "Firefox did not quit. Check it for a prompt.",
          "1 ended · 1 survivor: node (pid 812) did not exit after KILL"}) {
        EXPECT_EQ(ResolvedFace(line).symbol, "exclamationmark.circle") << line;
        EXPECT_EQ(ResolvedFace(line).colour, "caution") << line;
    }
}

TEST(Pending, NamesTheMachine) {
    EXPECT_EQ(Pending::title(macHost()), "Reading your Mac…");
    EXPECT_EQ(Pending::title(linuxHost()), "Reading your computer…");
    EXPECT_EQ(Pending::line, "This takes a few seconds.");
}

TEST(Ago, IsCutToItsUnit) {
    EXPECT_EQ(ago(now, now).text, "0 s");
    EXPECT_EQ(ago(now, now + 4.9).text, "4 s");
    EXPECT_EQ(ago(now, now + 59.9).text, "59 s");
    EXPECT_EQ(ago(now, now + 60).text, "1 min");
    EXPECT_EQ(ago(now, now + 3599).text, "59 min");
    EXPECT_EQ(ago(now, now + 3600).text, "1 h");
    EXPECT_EQ(ago(now, now + 172799).text, "47 h");
    EXPECT_EQ(ago(now, now + 172800).text, "2 days");
    EXPECT_EQ(ago(now + 30, now).text, "0 s");
}

TEST(Ago, ReadsTheSameUntilTheMomentItNamesAndOtherwiseFromThen) {
    for (const double age : {0.0, 4.25, 59.75, 60.0, 3599.5, 3600.0, 7300.0, 172799.0, 172800.0, 500000.0}) {
        const LiveText text = ago(now, now + age);
        EXPECT_GT(text.until, now + age) << age;
        EXPECT_EQ(ago(now, text.until - 0.125).text, text.text) << age;
        EXPECT_NE(ago(now, text.until).text, text.text) << age;
    }
}

TEST(MinutesLeft, CountsDownToTheLastMinute) {
    const Time end = now + 600;
    EXPECT_EQ(minutesLeft(end, now).text, "10 minutes left");
    EXPECT_EQ(minutesLeft(end, now + 1).text, "10 minutes left");
    EXPECT_EQ(minutesLeft(end, now + 60).text, "9 minutes left");
    EXPECT_EQ(minutesLeft(end, now + 540).text, "1 minute left");
    EXPECT_EQ(minutesLeft(end, now + 599).text, "1 minute left");
    EXPECT_EQ(minutesLeft(end, now + 700).text, "1 minute left");
    EXPECT_EQ(minutesLeft(end, now + 1).until, now + 60);
    EXPECT_EQ(minutesLeft(end, now + 60).until, now + 120);
}

}  // namespace ravik

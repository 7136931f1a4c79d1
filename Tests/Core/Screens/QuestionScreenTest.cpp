#include "Core/Screens/QuestionScreen.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;
using QuestionKeys::answer;
using QuestionKeys::Key;

namespace {

EvidenceLine line(const std::string& name, Tone tone, std::string amount = {}) {
    return {tone, name, name + " stands here.", std::move(amount), {{}, "terminal"}};
}

Confirmation question(std::size_t ends, std::size_t stays) {
    Confirmation made{"End 2 programs?", "Frees 300 MB.", "End 2 programs", {}, {}};
    for (std::size_t at = 1; at <= ends; ++at) made.ends.push_back(line("e" + std::to_string(at), Tone::safe, "9 MB"));
    for (std::size_t at = 1; at <= stays; ++at) made.leftAlone.push_back(line("s" + std::to_string(at), Tone::never));
    return made;
}

QuestionScreen shown(std::size_t ends, std::size_t stays, const Host& host = linuxHost()) {
    return {question(ends, stays), host};
}

}  // namespace

TEST(QuestionScreen, SaysWhatWillEndAndWhatStaysRunning) {
    const QuestionScreen screen = shown(2, 1);
    EXPECT_EQ(screen.title, "End 2 programs?");
    EXPECT_EQ(screen.message, "Frees 300 MB.");
    EXPECT_EQ(screen.verb, "End 2 programs");
    EXPECT_EQ(QuestionScreen::cancel, "Cancel");
    EXPECT_EQ(screen.note,
              "Ravik checks each one is still the same program, asks it to stop, and tells you if anything doesn't.");
    ASSERT_EQ(screen.sections.size(), 2u);
    EXPECT_EQ(screen.sections[0].heading, "Will end");
    EXPECT_EQ(screen.sections[1].heading, "Stays running");
    const QuestionScreen::Row& ends = screen.sections[0].rows.at(1);
    EXPECT_EQ(ends.name, "e2");
    EXPECT_EQ(ends.line, "e2 stands here.");
    EXPECT_EQ(ends.amount, "9 MB");
    EXPECT_EQ(ends.icon.symbol, "terminal");
    EXPECT_FALSE(ends.mark);
    const QuestionScreen::Row& stays = screen.sections[1].rows.at(0);
    EXPECT_EQ(stays.amount, "");
    EXPECT_EQ(stays.mark, VerdictFace(Tone::never));
}

TEST(QuestionScreen, SevenRowsShowSixAndThenOneMore) {
    const QuestionScreen seven = shown(7, 6);
    EXPECT_EQ(seven.sections[0].rows.size(), 6u);
    EXPECT_EQ(seven.sections[0].rows.back().name, "e6");
    EXPECT_EQ(seven.sections[0].more, "1 more");
    EXPECT_EQ(seven.sections[1].rows.size(), 6u);
    EXPECT_EQ(seven.sections[1].more, "");
}

TEST(QuestionScreen, AnEmptyListHasNoHeading) {
    ASSERT_EQ(shown(1, 0).sections.size(), 1u);
    EXPECT_EQ(shown(1, 0).sections[0].heading, "Will end");
    ASSERT_EQ(shown(0, 1).sections.size(), 1u);
    EXPECT_EQ(shown(0, 1).sections[0].heading, "Stays running");
    EXPECT_TRUE(shown(0, 0).sections.empty());
}

TEST(QuestionScreen, WritesTheChordAsTheSystemDoes) {
    EXPECT_EQ(shown(1, 0).chord, "Ctrl+Backspace");
    EXPECT_EQ(shown(1, 0, macHost()).chord, "⌘⌫");
}

TEST(QuestionScreen, IsSpokenInOnePiece) {
    EXPECT_EQ(shown(7, 1).summary,
              "End 2 programs? Frees 300 MB. Will end: e1, e2, e3, e4, e5, e6, 1 more. Stays running: s1.");
    EXPECT_EQ(shown(0, 0).summary, "End 2 programs? Frees 300 MB.");
}

TEST(QuestionKeys, ReturnAndEscapeAnswerNo) {
    EXPECT_EQ(answer({Key::enter}), false);
    EXPECT_EQ(answer({Key::escape}), false);
    EXPECT_EQ(answer({Key::enter, true, true, true}), false);
}

TEST(QuestionKeys, TheChordAnswersYes) { EXPECT_EQ(answer({Key::backspace, true}), true); }

TEST(QuestionKeys, PlainDeleteDoesNothing) {
    EXPECT_EQ(answer({Key::backspace}), std::nullopt);
    EXPECT_EQ(answer({Key::forwardDelete}), std::nullopt);
    EXPECT_EQ(answer({Key::other}), std::nullopt);
}

TEST(QuestionKeys, NothingThatIsNotQuiteTheChordGoesAhead) {
    EXPECT_EQ(answer({Key::backspace, true, true}), std::nullopt);
    EXPECT_EQ(answer({Key::backspace, false, true}), std::nullopt);
    EXPECT_EQ(answer({Key::forwardDelete, true}), std::nullopt);
    EXPECT_EQ(answer({Key::other, true}), std::nullopt);
}

TEST(QuestionKeys, AChordHeldDownSinceBeforeTheQuestionDoesNotAnswerIt) {
    EXPECT_EQ(answer({Key::backspace, true, false, true}), std::nullopt);
}

}  // namespace ravik

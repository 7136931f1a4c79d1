#include "Core/Ending/Confirmation.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

Confirmation ask(std::vector<Finding> findings) {
    Machine machine;
    machine.procs = {Making(7, "/tmp/a"), Making(8, "/tmp/b"), Making(9, "/Applications/Arc.app/x")};
    const Cards cards(machine, std::move(findings));
    return freeConfirmation(cards.snapshot, cards.host, fakes::now);
}

}  // namespace

TEST(FreeConfirmation, NamesWhatEndsAndCountsItsProcesses) {
    const Confirmation question =
        ask({finding("orphan:7", KillTrees{{7}}, 1500 * MiB), finding("leftovers", KillTrees{{8, 9}}, 20 * MiB)});
    EXPECT_EQ(question.title, "End 3 programs?");
    EXPECT_EQ(question.message, "Frees 1,520\u00a0MB. Only what passes the safety check ends.");
    EXPECT_EQ(question.verb, "End 3 programs");
    const std::vector<EvidenceLine> ends{
        {Tone::safe, "a", "Left running 2 h after its window closed.", "1,500\u00a0MB", {"a", "terminal"}},
        {Tone::safe,
         "Leftovers from AI tools",
         "Left behind by coding sessions that have ended.",
         "20\u00a0MB",
         {"b", "terminal"}}};
    EXPECT_EQ(question.ends, ends);
    EXPECT_TRUE(question.leftAlone.empty());
}

TEST(FreeConfirmation, OneIsAProgram) {
    EXPECT_EQ(ask({finding("orphan:7", KillTrees{{7}})}).title, "End 1 program?");
    EXPECT_EQ(ask({}).title, "End 0 programs?");
}

TEST(FreeConfirmation, EverythingElseStaysWithItsReason) {
    Finding both = forbidden(finding("orphan:7"), "a build in progress");
    both.caution = "busy";
    const Confirmation question =
        ask({both, cautioned(finding("orphan:8", KillTrees{{8}})), finding("browser:Arc", QuitApp{"Arc"}),
             finding("vm:Docker", Advice{"x"}), finding("disk", ScanDisk{})});
    ASSERT_EQ(question.leftAlone.size(), 5u);
    const auto told = [&](std::size_t at) {
        return std::pair(question.leftAlone[at].tone, question.leftAlone[at].line);
    };
    EXPECT_EQ(told(0), (std::pair<Tone, std::string>{Tone::never, "A database — never ended from a button."}));
    EXPECT_EQ(told(1), (std::pair<Tone, std::string>{Tone::caution, "Busy — it has its own button and asks first."}));
    EXPECT_EQ(told(2), (std::pair<Tone, std::string>{Tone::safe, "Quit it yourself when you are ready."}));
    EXPECT_EQ(told(3), (std::pair<Tone, std::string>{Tone::advice, "Nothing to end — a tip only."}));
    EXPECT_EQ(told(4), (std::pair<Tone, std::string>{Tone::advice, "Nothing to end — a tip only."}));
    EXPECT_EQ(question.leftAlone[2].name, "Arc");
    EXPECT_EQ(question.leftAlone[2].icon.app, "Arc");
    EXPECT_EQ(question.leftAlone[2].amount, "");
}

TEST(FreeConfirmation, AListOfSevenShowsSixAndCountsTheRest) {
    EXPECT_EQ(moreRows(std::vector<EvidenceLine>(7)), "1 more");
    EXPECT_EQ(moreRows(std::vector<EvidenceLine>(6)), "");
}

}  // namespace ravik

#include <gmock/gmock.h>

#include <fstream>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Tests/EndToEnd/Desktop/MainWindowCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;

// The light palette's.
constexpr std::uint32_t safe = 0x1B683E;
constexpr std::uint32_t caution = 0x91450D;

/// What came of an action stands where the screen shows it, so drawn that it is told by its colour as well.
class Diagnosis : public MainWindowCase {
protected:
    void expectColour(const std::string& name, std::uint32_t colour, std::uint32_t other) {
        // It arrives gently, and moves up while the card that it stands for leaves.
        EXPECT_TRUE(shows([&](const Accessible& windows) {
            const Accessible* outcome = windows.find(label, name);
            return outcome && hands->count(outcome->area, colour) > 20 && hands->count(outcome->area, other) == 0;
        }));
    }
};

TEST_F(Diagnosis, ACardsButtonEndsARealLeftoverAndItsCardSaysSo) {
    const Pid left = leave("shop/server.js", 200);
    const Pid other = leave("blog/site.js", 64);
    openWindow();
    enlarge();
    ASSERT_NE(get(card, "server.js. ").name, "");
    click(button, "End… server.js");
    sayYes();
    ASSERT_TRUE(waitUntil([&] { return !lives(left); }, 20));
    const Accessible outcome = get(label, "server.js. 1 ended · 0 survivors · 200");
    expectColour(outcome.name, safe, caution);
    EXPECT_TRUE(showsNone(card, "server.js. "));
    EXPECT_TRUE(lives(other));
    EXPECT_NE(get(card, "site.js. ").name, "");
    ASSERT_TRUE(logs("remedy"));
    EXPECT_EQ(home.logLines("remedy").front()["survivors"], Json::array());

    EXPECT_TRUE(ticks(3));
    EXPECT_EQ(get(label, "server.js. 1 ended · 0 survivors · 200").name, outcome.name);
}

TEST_F(Diagnosis, AFailedEndingIsInTheCautionColour) {
    // A shell that waits for a word and then becomes a git at work.
    const std::string pipe = (home.path() / "pipe").native();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string script = fmt::format("read word < {}; exec {} push", pipe, home.idle("git"));
    const std::string words = fmt::format("{} -c {}", home.shell("node"), script);
    const Pid terminal =
        start({home.shell("bash"), "-c", fmt::format("{} -c \"{}\" & wait", home.shell("node"), script)});
    const Pid left = find(words);
    reaper.end(terminal);
    ASSERT_EQ(findAdopted(words), left);

    // No reading comes between the question and the answer.
    openWindow("60");
    enlarge();
    readNow();
    click(button, "End… read");
    ASSERT_TRUE(isAsked());
    std::ofstream(pipe) << "now\n";
    ASSERT_EQ(find(home.idle("git") + " push"), left);
    sayYes();
    const std::string outcome = fmt::format("read. Left running: a git operation in progress (git, pid {}).", left);
    ASSERT_TRUE(shows(label, outcome));
    expectColour(outcome, caution, safe);
    EXPECT_TRUE(lives(left));
    ASSERT_TRUE(logs("remedy"));
    EXPECT_FALSE(home.logLines("remedy").front().contains("survivors"));
}

TEST_F(Diagnosis, FreeAsksThenEndsAndItsLineStays) {
    const Pid first = leave("shop/server.js", 200);
    const Pid second = leave("blog/site.js", 64);
    openWindow();
    enlarge();
    const std::string free = get(button, "Free ").name;
    click(button, free);
    ASSERT_TRUE(isAsked());
    EXPECT_TRUE(lives(first) && lives(second));
    hands->press(key::escape);
    ASSERT_TRUE(waitUntil([&] { return home.logLines("confirm").size() == 1; }));
    EXPECT_EQ(home.logLines("confirm").back()["confirmed"], false);

    click(button, free);
    sayYes();
    ASSERT_TRUE(waitUntil([&] { return !lives(first) && !lives(second); }, 20));
    const std::string line = get(label, "2 ended · 0 survivors · ").name;
    EXPECT_TRUE(shows(label, "server.js. Ended with Free"));
    EXPECT_TRUE(shows(label, "site.js. Ended with Free"));
    EXPECT_TRUE(showsNone(card, "server.js. "));

    EXPECT_TRUE(ticks(3));
    EXPECT_TRUE(shows(label, line));
    EXPECT_TRUE(shows(label, "server.js. Ended with Free"));
    click(button, "Nothing to free");
    EXPECT_TRUE(ticks(1));
    EXPECT_FALSE(shown().find(button, "Cancel"));
    EXPECT_EQ(home.settings()["lastFix"]["line"], line);
}

TEST_F(Diagnosis, ItsEvidenceShowsTheTreeOfRealProcesses) {
    // A server with a worker, which holds more.
    const std::string worker = home.idle("esbuild") + " --service";
    const std::string script = worker + " & wait";
    const std::string server = home.shell("node") + " -c " + script;
    const Pid terminal = start({home.shell("bash"), "-c", fmt::format("{} -c '{}' & wait", home.shell("node"), script)},
                               {"RAVIK_TEST_HOLDS=64"});
    const Pid root = find(server);
    const Pid child = find(worker);
    reaper.end(terminal);
    ASSERT_EQ(findAdopted(server), root);

    openWindow();
    enlarge();
    const Accessible shown = get(card, "esbuild");
    hands->press(key::down);
    ASSERT_TRUE(hasFocus(card, "esbuild"));
    hands->press(key::enter);
    ASSERT_TRUE(showsBeginning("dialog", "esbuild"));
    EXPECT_TRUE(hasFocus(button, "Close"));
    const std::vector<Accessible> tree = get(card, "Tree").children;
    ASSERT_THAT(tree, SizeIs(2));
    EXPECT_EQ(tree[0].name, fmt::format("node: esbuild · pid {}", root));
    EXPECT_EQ(tree[1].name, fmt::format("esbuild · pid {}", child));
    EXPECT_EQ(tree[1].description, "64\u00a0MB");
    EXPECT_GT(tree[1].area.y, tree[0].area.y);
    EXPECT_TRUE(ticks(2));
    EXPECT_TRUE(hasFocus(button, "Close"));

    hands->press(key::escape);
    ASSERT_TRUE(showsNone("dialog", ""));
    EXPECT_TRUE(hasFocus(card, "esbuild"));
    EXPECT_EQ(get(card, "esbuild").area.y, shown.area.y);
}

TEST_F(Diagnosis, KeepMovesACardToThoseLeftAlone) {
    const Pid left = leave("shop/server.js", 200);
    const std::string command = home.idle("node") + " " + (home.path() / "shop/server.js").native();
    openWindow();
    enlarge();
    const auto stands = [&](const std::string& section) {
        return shows([&](const Accessible& windows) {
            const Accessible* list = windows.find("list", section);
            return list && list->findBeginning(card, "server.js. ");
        });
    };
    ASSERT_TRUE(stands("Safe to end"));
    click(card, get(card, "server.js. ").name);
    ASSERT_TRUE(shows("dialog", get("dialog", "server.js. ").name));
    click(button, "Keep this one running");
    ASSERT_TRUE(logs("keep"));
    EXPECT_TRUE(shows(label, "Verdict: left alone"));
    click(button, "Keep this one running");
    hands->press(key::escape);
    ASSERT_TRUE(stands("Left alone"));
    EXPECT_TRUE(showsNone(button, "End… server.js"));
    EXPECT_EQ(home.settings()["keepRunning"], Json({command}));
    EXPECT_THAT(home.logLines("keep"), SizeIs(1)) << "once was enough";

    EXPECT_EQ(run(home, {"keep", "remove", command}).status, 0);
    EXPECT_TRUE(stands("Safe to end"));
    EXPECT_TRUE(lives(left));
}

}  // namespace
}  // namespace ravik::endtoend

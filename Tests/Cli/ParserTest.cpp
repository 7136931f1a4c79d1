#include "Cli/Help.h"
#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using ParserTest = CommandTest;

TEST_F(ParserTest, WithoutACommandItIsDiagnose) {
    EXPECT_EQ(call({}).out, call({"diagnose"}).out);
    EXPECT_EQ(call({"--json"}).out.front(), '{');
}

TEST_F(ParserTest, WrongWordsGetOneLineThatSaysWhatIsExpected) {
    const std::vector<std::vector<std::string>> wrong{{"dance"},
                                                      {"end"},
                                                      {"end", "x"},
                                                      {"end", "1", "2"},
                                                      {"ps", "--nonsense"},
                                                      {"settings", "set", "swapGB"},
                                                      {"keep", "dance"},
                                                      {"watch", "--interval"},
                                                      {"watch", "--interval", "soon"},
                                                      {"watch", "--interval", "0.5"},
                                                      {"watch", "--interval", "61"},
                                                      {"end", "--", "-5"},
                                                      {"end", "0"},
                                                      {"end", "99999999999"},
                                                      {"help", "dance"},
                                                      {"replay"},
                                                      {"version", "1"},
                                                      {""}};
    for (const auto& words : wrong) {
        const Result result = call(words);
        const std::string shown = words.front() + (words.size() > 1 ? " " + words[1] : "");
        EXPECT_EQ(result.status, wrongWords) << shown;
        EXPECT_EQ(result.out, "") << shown;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << shown << ": " << result.err;
        EXPECT_TRUE(result.err.starts_with("ravik")) << result.err;
    }
}

TEST_F(ParserTest, ARefusalNamesTheHelpOfItsCommand) {
    EXPECT_NE(call({"end"}).err.find("ravik help end"), std::string::npos);
    EXPECT_NE(call({"end"}).err.find("ravik end PID"), std::string::npos);
    const std::vector<std::vector<std::string>> wrong{{"end", "x"},
                                                      {"watch", "--interval", "0"},
                                                      {"history", "--span", "month"},
                                                      {"history", "--now", "x"},
                                                      {"report", "--day", "x"},
                                                      {"settings", "set", "x", "1"},
                                                      {"open", "x"},
                                                      {"disk", "--root", ""},
                                                      {"feedback", "--into", ""},
                                                      {"help", "--completions", "csh"},
                                                      {"autopilot", "approve", "end"}};
    for (const auto& words : wrong) {
        std::string command = words[0];
        if (words[1] == "set" || words[1] == "approve") command += " " + words[1];
        const Result result = call(words);
        EXPECT_EQ(result.status, wrongWords) << command;
        EXPECT_TRUE(result.err.starts_with("ravik " + command + ": ")) << result.err;
        EXPECT_TRUE(result.err.ends_with(" (see ravik help " + command + ")\n")) << result.err;
    }
}

TEST_F(ParserTest, ARefusalCannotSteerTheTerminal) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"\x1b[31m\n\xff"}, {"ps", "--\x1b[31m"}, {"end", "1", "\x1b]0;x\a"}}) {
        const Result result = call(words);
        EXPECT_EQ(result.status, wrongWords);
        EXPECT_EQ(result.err.find_first_of("\x1b\a\xff"), std::string::npos) << result.err;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    }
}

TEST_F(ParserTest, AFlagTakesNoValue) {
    orphan(200, "server");
    const Result result = call({"free", "--yes=false"});
    EXPECT_EQ(result.status, wrongWords);
    EXPECT_NE(machine.processes.find(200), nullptr);
    EXPECT_EQ(call({"keep", "--json=0"}).status, wrongWords);
}

TEST_F(ParserTest, HelpBehindOtherWordsRunsNothing) {
    orphan(200, "server");
    EXPECT_EQ(call({"end", "200", "--yes", "--help"}).out, call({"help", "end"}).out);
    EXPECT_EQ(call({"settings", "set", "swapGB", "9", "-h"}).out, call({"help", "settings", "set"}).out);
    EXPECT_EQ(call({"keep", "add", "/a", "-h"}).out, call({"help", "keep", "add"}).out);
    EXPECT_NE(machine.processes.find(200), nullptr);
    EXPECT_EQ(machine.defaults.writes, 0);
    EXPECT_EQ(call({"keep", "add", "--", "--help"}).status, done);
    EXPECT_EQ(call({"keep", "list"}).out, "--help\n");
}

TEST_F(ParserTest, SaysWhetherAnOptionTakesAValue) {
    EXPECT_EQ(
        call({"diagnose", "--capture"}).err,
        "ravik diagnose: --capture needs a value (expected: ravik diagnose [--json] [--evidence] [--capture FILE]; "
        "see ravik help diagnose)\n");
    EXPECT_TRUE(call({"log", "--kind"}).err.starts_with("ravik log: --kind needs a value ("));
    EXPECT_TRUE(call({"free", "--yes=false"}).err.starts_with("ravik free: --yes takes no value ("));
}

TEST_F(ParserTest, ACommandsWordIsAValueWhereOneIsExpected) {
    EXPECT_EQ(call({"keep", "add", "list"}).status, done);
    EXPECT_EQ(call({"keep", "list"}).out, "list\n");
    EXPECT_EQ(call({"keep", "add", "--", "--add"}).status, done);
    EXPECT_EQ(call({"keep", "--json", "list"}).out, "[\"--add\",\"list\"]\n");
    orphan(200, "watch");
    EXPECT_NE(call({"ps", "watch"}).out.find("/tmp/watch"), std::string::npos);
}

TEST_F(ParserTest, OutputThatDoesNotArriveIsAFailure) {
    outputIsBroken = true;
    const Result full = call({"apps"});
    EXPECT_EQ(full.status, couldNot);
    EXPECT_EQ(full.err, "ravik: the output could not be written\n");
    computer.fakeTerminal.lostReader = true;
    const Result unread = call({"apps"});
    EXPECT_EQ(unread.status, couldNot);
    EXPECT_EQ(unread.err, "");
    EXPECT_EQ(call({"end", "x"}).status, wrongWords);
}

TEST_F(ParserTest, HelpKnowsEveryCommand) {
    const std::string all = call({"help"}).out;
    for (const Command& command : commands()) {
        EXPECT_NE(all.find(command.name), std::string::npos) << command.name;
        std::vector<std::string> words{"help"};
        std::istringstream parts{std::string(command.name)};
        for (std::string word; parts >> word;) words.push_back(word);
        const Result help = call(words);
        EXPECT_EQ(help.status, done);
        EXPECT_TRUE(help.out.starts_with(usage(command))) << help.out;
    }
}

TEST_F(ParserTest, ManPageAndCompletionsKnowEveryCommand) {
    for (const Command& command : commands()) {
        const std::string first(command.name.substr(0, command.name.find(' ')));
        EXPECT_NE(manPage().find(first), std::string::npos);
        for (const char* shell : {"bash", "zsh", "fish"}) {
            EXPECT_NE(completions(shell).value().find(first), std::string::npos) << shell << " " << first;
        }
    }
    EXPECT_NE(completions("bash").value().find("help) words=\"diagnose watch "), std::string::npos);
    EXPECT_EQ(call({"help", "--completions", "csh"}).status, wrongWords);
    EXPECT_EQ(call({"help", "--completions", "bash"}).out, completions("bash"));
    EXPECT_EQ(call({"help", "--man"}).out, manPage());
}

TEST_F(ParserTest, TheUsualWordsForHelpAndVersionWork) {
    EXPECT_EQ(call({"--help"}).out, call({"help"}).out);
    EXPECT_EQ(call({"end", "--help"}).out, call({"help", "end"}).out);
    EXPECT_EQ(call({"settings", "set", "-h"}).out, call({"help", "settings", "set"}).out);
    EXPECT_EQ(call({"keep", "--help"}).out, call({"help", "keep"}).out);
    EXPECT_EQ(call({"dance", "--help"}).status, wrongWords);
    EXPECT_EQ(call({"--json", "--help"}).out, call({"help", "diagnose"}).out);
    EXPECT_EQ(call({"--version"}).out, call({"version"}).out);
    EXPECT_EQ(call({"version"}).out, "ravik " RAVIK_VERSION "\n");
}

}  // namespace ravik::cli

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using OpenCommand = CommandTest;

TEST_F(OpenCommand, BringsUpTheApp) {
    const Result result = call({"open"});
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(machine.desktopApp.opened, std::vector<Activation>{{}});
}

TEST_F(OpenCommand, NamesTheScreen) {
    for (const char* word : {"diagnosis", "sessions", "processes", "disk", "history", "autopilot"}) {
        machine.desktopApp.opened.clear();
        EXPECT_EQ(call({"open", word}).status, done);
        EXPECT_EQ(machine.desktopApp.opened, (std::vector<Activation>{{"open", word, ""}}));
    }
    EXPECT_TRUE(logFolder.lines().empty()) << "the app itself writes what it opened";
}

TEST_F(OpenCommand, SaysWhatItExpects) {
    for (const char* word : {"Disk", "settings", "", "disk "}) {
        const Result result = call({"open", word});
        EXPECT_EQ(result.status, wrongWords);
        EXPECT_EQ(result.err,
                  "ravik open: DESTINATION: expected one of diagnosis, sessions, processes, disk, history, "
                  "autopilot (see ravik help open)\n");
    }
    EXPECT_EQ(call({"open", "disk", "history"}).status, wrongWords);
    EXPECT_TRUE(machine.desktopApp.opened.empty());
}

TEST_F(OpenCommand, SaysWhyItCouldNot) {
    machine.desktopApp.refusal = "The desktop app, ravik-desktop, is not installed.";
    const Result result = call({"open", "disk"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "The desktop app, ravik-desktop, is not installed.\n");
}

}  // namespace ravik::cli

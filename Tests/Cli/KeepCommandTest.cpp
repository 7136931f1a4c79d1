#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;
using KeepCommand = CommandTest;

TEST_F(KeepCommand, AddsListsAndRemoves) {
    EXPECT_EQ(call({"keep", "add", "/tmp/server --port 1"}).status, done);
    EXPECT_EQ(call({"keep", "add", "/a"}).status, done);
    EXPECT_EQ(json::parse(call({"keep", "--json"}).out), json::parse(R"(["/a","/tmp/server --port 1"])"));
    EXPECT_EQ(call({"keep", "list"}).out, "/a\n/tmp/server --port 1\n");
    EXPECT_EQ(logFolder.lines("keep").at(0)["cmd"], "/tmp/server --port 1");
    EXPECT_EQ(call({"keep", "remove", "/a"}).status, done);
    EXPECT_EQ(json::parse(call({"keep", "list", "--json"}).out), json::parse(R"(["/tmp/server --port 1"])"));
}

TEST_F(KeepCommand, AKeptProgramIsOnlyAdvised) {
    orphan(200, "server");
    call({"keep", "add", "/tmp/server"});
    const json finding = json::parse(call({"diagnose", "--json"}).out)["findings"].at(0);
    EXPECT_EQ(finding["remedy"]["kind"], "advice");
    EXPECT_EQ(json::parse(call({"free", "--json", "--yes"}).out)["outcome"], "nothing");
}

TEST_F(KeepCommand, SaysWhenNothingThatRunsIsKeptByIt) {
    orphan(200, "server");
    EXPECT_EQ(call({"keep", "add", "/tmp/server"}).err, "");
    const Result result = call({"keep", "add", "server"});
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(result.err,
              "Kept, but nothing runs now with exactly this command line; ravik ps --json tells them whole.\n");
    EXPECT_EQ(call({"keep", "list"}).out, "/tmp/server\nserver\n");
}

TEST_F(KeepCommand, ACommandLineIsNotBlank) {
    for (const char* blank : {"", "  "}) {
        EXPECT_EQ(call({"keep", "add", blank}).status, wrongWords);
        EXPECT_EQ(call({"keep", "list"}).out, "Nothing is kept.\n");
    }
}

TEST_F(KeepCommand, SaysWhenThereWasNothingToRemove) {
    call({"keep", "add", "/a"});
    EXPECT_EQ(call({"keep", "remove", "/a"}).err, "");
    const Result result = call({"keep", "remove", "/a\x1b[31m"});
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(result.err, "\"/a\\u001b[31m\" was not kept; ravik keep lists what is.\n");
}

TEST_F(KeepCommand, TheLogCutsALongCommand) {
    call({"keep", "add", std::string(300, 'x')});
    EXPECT_EQ(logFolder.lines("keep").at(0)["cmd"], std::string(160, 'x'));
}

}  // namespace ravik::cli

#include <fstream>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;

using ReadingCommands = CommandTest;

TEST_F(ReadingCommands, DiagnosePrintsNameSentenceAmountAndTone) {
    orphan(200, "server");
    const std::string out = call({"diagnose"}).out;
    for (const char* text : {"server", "[safe]", "100\u00a0MB back", "Left running 2 h after its window closed.",
                             "ends 1 process", "Only what is safe. You confirm first."}) {
        EXPECT_NE(out.find(text), std::string::npos) << text << "\n" << out;
    }
    EXPECT_EQ(out.find("Why the safety check allows it"), std::string::npos);
    EXPECT_NE(call({"diagnose", "--evidence"}).out.find("Why the safety check allows it"), std::string::npos);
    EXPECT_EQ(out.find('\x1b'), std::string::npos);
}

TEST_F(ReadingCommands, ACalmMachineIsSaidToBeCalm) {
    EXPECT_EQ(call({"diagnose"}).out, "Nothing is slowing your computer.\nNothing is safe to end in one click.\n");
}

TEST_F(ReadingCommands, DiagnoseJsonHasTheKeysOfAReplay) {
    orphan(200, "server");
    const json result = json::parse(call({"diagnose", "--json"}).out);
    for (const char* key : {"breaches", "orphans", "hogs", "groups", "sessions", "findings", "freeable",
                            "freeableBytes", "reclaimableBytes", "gapLine"}) {
        EXPECT_TRUE(result.contains(key)) << key;
    }
    EXPECT_EQ(result.size(), 10u);
    EXPECT_EQ(result["orphans"], json::array({200}));
}

TEST_F(ReadingCommands, ACaptureReplaysToTheSameFindings) {
    orphan(200, "server");
    orphan(300, "postgres");
    fakes::TemporaryFolder folder;
    const std::string file = (folder.path() / "capture.json").string();
    const json shown = json::parse(call({"diagnose", "--json", "--capture", file}).out);
    const json again = json::parse(call({"replay", file}).out);
    for (const auto& [key, value] : shown.items()) EXPECT_EQ(again[key], value) << key;
}

TEST_F(ReadingCommands, ABadCaptureIsRefusedInOneLine) {
    fakes::TemporaryFolder folder;
    const std::string file = (folder.path() / "capture.json").string();
    std::ofstream(file) << R"({"stats":{},"now":1,"uid":1,"ramBytes":1,"processes":[{"id":1,"ppid":"x"}]})";
    const Result result = call({"replay", file});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1);
    EXPECT_EQ(call({"replay", "/nonexistent"}).status, couldNot);
    EXPECT_EQ(call({"diagnose", "--capture", "/nonexistent/x"}).status, couldNot);
}

TEST_F(ReadingCommands, ADashReplaysStandardInput) {
    input = R"({"stats":{"swapUsedBytes":0,"swapOutBytesPerSec":0,"memoryFreePercent":50,"diskFreeBytes":107374182400,
        "loadAverage":0,"cpuCount":8,"gpuPercent":-1},"now":1,"uid":1,"ramBytes":1,"processes":[]})";
    const Result result = call({"replay", "-"});
    EXPECT_EQ(result.status, done) << result.err;
    EXPECT_EQ(json::parse(result.out)["findings"], json::array());
    input.clear();
    EXPECT_EQ(call({"replay", "-"}).status, couldNot);
}

TEST_F(ReadingCommands, AppsAndProcessesAreRows) {
    orphan(200, "server");
    orphan(300, "postgres");
    const json apps = json::parse(call({"apps", "--json"}).out);
    EXPECT_EQ(apps.size(), 2u);
    EXPECT_TRUE(apps[0]["id"].get<std::string>().starts_with("app:"));
    const json all = json::parse(call({"ps", "--json"}).out);
    EXPECT_EQ(all.size(), 2u);
    EXPECT_EQ(json::parse(call({"ps", "--json", "POSTG"}).out).size(), 1u);
    EXPECT_EQ(json::parse(call({"ps", "--leftovers", "--json"}).out).size(), 2u);
    EXPECT_NE(call({"ps"}).out.find("/tmp/server"), std::string::npos);
    EXPECT_NE(call({"apps"}).out.find("server"), std::string::npos);
}

TEST_F(ReadingCommands, ACommandLineCannotSteerTheTerminal) {
    orphan(200, "evil").command = "/tmp/\x1b[2Jevil\r\n";
    EXPECT_EQ(call({"ps"}).out.find('\x1b'), std::string::npos);
    EXPECT_EQ(call({"diagnose", "--evidence"}).out.find('\x1b'), std::string::npos);
}

TEST_F(ReadingCommands, SessionsAreListed) {
    fakes::FakeProcess tool;
    tool.pid = 500;
    tool.ppid = 2;
    tool.name = "claude";
    tool.command = "claude --resume";
    machine.processes.add(tool);
    const json sessions = json::parse(call({"sessions", "--json"}).out);
    EXPECT_EQ(sessions, json::parse(R"([{"id":500,"tool":"claude","alive":true,"members":[500],"footprintBytes":0}])"));
    EXPECT_NE(call({"sessions"}).out.find("claude"), std::string::npos);
}

TEST_F(ReadingCommands, WritesNoLines) {
    orphan(200, "server");
    for (const char* command : {"diagnose", "apps", "ps", "sessions"}) call({command});
    EXPECT_TRUE(logFolder.lines().empty());
}

}  // namespace ravik::cli

#include <fmt/format.h>

#include "Core/Watch/Thresholds.h"
#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using SettingsCommand = CommandTest;

TEST_F(SettingsCommand, ShowsTheObjectOfTheLimits) {
    EXPECT_EQ(nlohmann::json::parse(call({"settings", "--json"}).out), Thresholds{}.encode());
}

TEST_F(SettingsCommand, ListsEveryLimitWithItsRange) {
    const std::string out = call({"settings"}).out;
    for (const char* text : {"swapGB", "1 to 128", "memoryFreePct", "1 to 99", "loadPerCore", "0.5 to 16",
                             "autoEndLeftovers", "hogMinHours"}) {
        EXPECT_NE(out.find(text), std::string::npos) << text;
    }
}

TEST_F(SettingsCommand, CallsTheMachineByTheHostsOwnWord) {
    machine.host.kind = HostKind::linux;
    EXPECT_NE(call({"settings"}).out.find("Computer busier than"), std::string::npos);
    machine.host.kind = HostKind::mac;
    EXPECT_NE(call({"settings"}).out.find("Mac busier than"), std::string::npos);
}

TEST_F(SettingsCommand, AChangeThatChangesNothingWritesNothing) {
    EXPECT_EQ(call({"settings", "set", "swapGB", "8"}).status, done);
    EXPECT_EQ(call({"settings", "set", "memoryFreePct", "15.9"}).status, done);
    EXPECT_EQ(call({"settings", "set", "hogMinHours", "1"}).status, done);
    EXPECT_EQ(call({"settings", "set", "autoEndLeftovers", "false"}).status, done);
    EXPECT_EQ(call({"settings", "reset"}).status, done);
    EXPECT_EQ(machine.defaults.writes, 0);
    EXPECT_TRUE(logFolder.lines("autopilotRule").empty());
}

TEST_F(SettingsCommand, BothEndsOfARangeAreStored) {
    for (const ThresholdField& field : thresholdFields()) {
        for (const double value : {field.low, field.high}) {
            EXPECT_EQ(call({"settings", "set", std::string(field.key), fmt::format("{}", value)}).status, done);
            EXPECT_EQ(nlohmann::json::parse(call({"settings", "--json"}).out)[std::string(field.key)], value);
        }
    }
}

TEST_F(SettingsCommand, AValueOutOfRangeGetsTheSentenceAndIsNotStored) {
    const Result result = call({"settings", "set", "swapGB", "0"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "Must be between 1 and 128. The last saved value, 8, stays in use.\n");
    EXPECT_EQ(call({"settings", "set", "swapGB", "nan"}).status, couldNot);
    EXPECT_EQ(call({"settings", "set", "swapGB", "lots"}).status, couldNot);
    EXPECT_FALSE(machine.defaults.values.contains("thresholds"));
}

TEST_F(SettingsCommand, TheRuleForLeftoversWaitsAsLongAsItsScreenAllows) {
    for (const char* hours : {"0.25", "168"}) {
        EXPECT_EQ(call({"settings", "set", "autoLeftoverMinHours", hours}).status, done);
    }
    for (const char* hours : {"0", "0.24", "168.1", "-1", "soon"}) {
        const Result result = call({"settings", "set", "autoLeftoverMinHours", hours});
        EXPECT_EQ(result.status, couldNot);
        EXPECT_EQ(result.err, "Must be between 0.25 and 168. The last saved value, 168, stays in use.\n");
    }
    EXPECT_EQ(machine.defaults.values["thresholds"]["autoLeftoverMinHours"], 168);
}

TEST_F(SettingsCommand, TheHoursOfAHogHaveNoUpperEnd) {
    EXPECT_EQ(call({"settings", "set", "hogMinHours", "1000"}).status, done);
    EXPECT_EQ(call({"settings", "set", "hogMinHours", "0"}).status, done);
    EXPECT_EQ(call({"settings", "set", "hogMinHours", "-1"}).err,
              "Must be a number of hours, 0 or more. The last saved value, 0, stays in use.\n");
}

TEST_F(SettingsCommand, AWholeLimitIsCut) {
    call({"settings", "set", "memoryFreePct", "20.9"});
    EXPECT_EQ(machine.defaults.values["thresholds"]["memoryFreePct"], 20);
}

TEST_F(SettingsCommand, AnUnknownKeyIsWrongAndListsTheKnown) {
    const Result result = call({"settings", "set", "colour", "1"});
    EXPECT_EQ(result.status, wrongWords);
    EXPECT_NE(result.err.find("swapGB, swapOutMBps"), std::string::npos);
}

TEST_F(SettingsCommand, ResetKeepsTheRuleForLeftovers) {
    call({"settings", "set", "autoEndLeftovers", "true"});
    call({"settings", "set", "autoLeftoverMinHours", "3"});
    call({"settings", "set", "hogMinHours", "9"});
    call({"settings", "set", "swapGB", "20"});
    EXPECT_EQ(call({"settings", "reset"}).status, done);
    const auto stored = Thresholds::decode(machine.defaults.values["thresholds"]).value();
    EXPECT_EQ(stored.swapGB, 8);
    EXPECT_EQ(stored.hogMinHours, 1);
    EXPECT_TRUE(stored.autoEndLeftovers);
    EXPECT_EQ(stored.autoLeftoverMinHours, 3);
    EXPECT_EQ(logFolder.lines("autopilotRule").at(0)["on"], true);
}

}  // namespace ravik::cli

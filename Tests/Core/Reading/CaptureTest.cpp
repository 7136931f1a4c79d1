#include "Core/Reading/Capture.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Reading/BoundedJson.h"

namespace ravik {

using nlohmann::json;

namespace {

json process(Pid pid) {
    return {{"id", pid},      {"ppid", 1},    {"uid", 501},          {"name", "x"},
            {"command", "x"}, {"started", 5}, {"footprintBytes", 7}, {"cpuPercent", 1.5}};
}

json capture() {
    return {{"now", 1000},
            {"uid", 501},
            {"ramBytes", 17179869184},
            {"stats",
             {{"swapUsedBytes", 1},
              {"swapOutBytesPerSec", 2},
              {"memoryFreePercent", 3},
              {"diskFreeBytes", 4},
              {"loadAverage", 5},
              {"cpuCount", 6},
              {"gpuPercent", -1}}},
            {"processes", {process(10), process(11), process(12), process(13)}}};
}

json thresholds() { return Thresholds{}.encode(); }

std::string errorOf(const json& value) {
    const CaptureResult result = readCapture(value.dump(), HostKind::mac);
    EXPECT_EQ(result.capture.has_value(), result.error.empty());
    return result.error;
}

/// The error after the value at a JSON pointer has been replaced.
std::string errorWith(const std::string& pointer, const json& value) {
    json broken = capture();
    broken[json::json_pointer(pointer)] = value;
    return errorOf(broken);
}

std::string errorWithout(const std::string& pointer) {
    json broken = capture();
    const json::json_pointer place(pointer);
    broken[place.parent_pointer()].erase(place.back());
    return errorOf(broken);
}

std::string errorOfText(const std::string& text) {
    const CaptureResult result = readCapture(text, HostKind::mac);
    EXPECT_FALSE(result.capture);
    EXPECT_EQ(result.error.find('\n'), std::string::npos);
    return result.error;
}

}  // namespace

TEST(Capture, WhatIsAbsentHasItsDefault) {
    const CaptureResult result = readCapture(capture().dump(), HostKind::linux);
    ASSERT_TRUE(result.capture) << result.error;
    const Reading& reading = result.capture->reading;
    EXPECT_EQ(reading.host.kind, HostKind::linux);
    EXPECT_EQ(reading.host.uid, 501u);
    EXPECT_EQ(reading.host.pid, 0);
    EXPECT_EQ(reading.host.adopters, PidSet{1});
    EXPECT_TRUE(reading.host.engaged.empty());
    EXPECT_TRUE(reading.managed.empty());
    EXPECT_EQ(reading.limits, Thresholds{});
    EXPECT_TRUE(reading.keep.empty());
    EXPECT_EQ(*reading.trend, Trend{});
    EXPECT_EQ(reading.now, 1000);
    EXPECT_EQ(reading.stats.gpuPercent, -1);
    EXPECT_EQ(result.capture->engineHistory, Engine::History{});
    EXPECT_EQ(result.capture->foreground, std::nullopt);
    EXPECT_EQ(result.capture->query, "");
}

TEST(Capture, EveryFieldIsTakenOver) {
    json full = capture();
    full["format"] = 1;
    full["host"] = "linux";
    full["pid"] = 42;
    full["managed"] = {3, 4};
    full["engaged"] = {5};
    full["adopters"] = {1, 900};
    full["thresholds"] = thresholds();
    full["thresholds"]["diskFreeGB"] = 50;
    full["keep"] = {"a b"};
    full["trend"] = {{"busySince", {{"7", 8}}}, {"held", {{{"at", 9}, {"bytes", {{"Arc", 18446744073709551615u}}}}}}};
    full["running"] = {"Arc"};
    full["foreground"] = "Arc";
    full["engineHistory"] = {{"lastBusy", {{"Arc", 1}}}, {"lastFocused", {{"Foo", 2}}}, {"observedSince", 3}};
    full["query"] = "q";
    full["processes"][0]["app"] = "App";
    full["processes"][1]["app"] = nullptr;
    full["unknown"] = {{"deep", {1, {2, 3}}}};
    full["processes"][2]["unknown"] = 1;
    const CaptureResult result = readCapture(full.dump(), HostKind::mac);
    ASSERT_TRUE(result.capture) << result.error;
    const Capture& read = *result.capture;
    EXPECT_EQ(read.reading.host.kind, HostKind::linux);
    EXPECT_EQ(read.reading.host.pid, 42);
    EXPECT_EQ(read.reading.managed, (PidSet{3, 4}));
    EXPECT_EQ(read.reading.host.engaged, PidSet{5});
    EXPECT_EQ(read.reading.host.adopters, (PidSet{1, 900}));
    EXPECT_EQ(read.reading.limits.diskFreeGB, 50);
    EXPECT_EQ(read.reading.keep, KeepSet{"a b"});
    EXPECT_EQ(read.reading.trend->busySince.at(7), 8);
    EXPECT_EQ(read.reading.trend->held.at(0).bytes.at("Arc"), 18446744073709551615u);
    EXPECT_EQ(read.running, std::vector<std::string>{"Arc"});
    EXPECT_EQ(read.foreground, "Arc");
    EXPECT_EQ(read.engineHistory.lastFocused.at("Foo"), 2);
    EXPECT_EQ(read.engineHistory.observedSince, 3);
    EXPECT_EQ(read.query, "q");
    EXPECT_EQ(read.reading.processes.at(0).app, Text("App"));
    EXPECT_EQ(read.reading.processes.at(1).app, std::nullopt);
    EXPECT_EQ(read.reading.processes.at(0).cpuPercent, 1.5);
}

TEST(Capture, SizesKeepAllTheirBits) {
    json wide = capture();
    wide["processes"][0]["footprintBytes"] = 18446744073709551615u;
    const CaptureResult result = readCapture(wide.dump(), HostKind::mac);
    ASSERT_TRUE(result.capture);
    EXPECT_EQ(result.capture->reading.processes[0].footprintBytes, 18446744073709551615u);
}

TEST(Capture, AWrongTypeNamesItsPath) {
    EXPECT_EQ(errorWith("/processes/3/ppid", "1"), "processes[3].ppid: expected a whole number");
    EXPECT_EQ(errorWith("/processes/3/ppid", 1.0), "processes[3].ppid: expected a whole number");
    EXPECT_EQ(errorWith("/processes/3/ppid", nullptr), "processes[3].ppid: expected a whole number");
    EXPECT_EQ(errorWith("/processes/0/name", 7), "processes[0].name: expected a string");
    EXPECT_EQ(errorWith("/processes/0/command", json::array()), "processes[0].command: expected a string");
    EXPECT_EQ(errorWith("/processes/0/started", "x"), "processes[0].started: expected a number");
    EXPECT_EQ(errorWith("/processes/0/footprintBytes", 1.5), "processes[0].footprintBytes: expected a whole number");
    EXPECT_EQ(errorWith("/processes/0/cpuPercent", true), "processes[0].cpuPercent: expected a number");
    EXPECT_EQ(errorWith("/processes/0/app", 1), "processes[0].app: expected a string or null");
    EXPECT_EQ(errorWith("/processes/0", 1), "processes[0]: expected an object");
    EXPECT_EQ(errorWith("/processes", json::object()), "processes: expected an array");
    EXPECT_EQ(errorWith("/stats", 1), "stats: expected an object");
    EXPECT_EQ(errorWith("/stats/cpuCount", 1.5), "stats.cpuCount: expected a whole number");
    EXPECT_EQ(errorWith("/now", "1"), "now: expected a number");
    EXPECT_EQ(errorWith("/uid", "501"), "uid: expected a whole number");
    EXPECT_EQ(errorWith("/host", "windows"), "host: expected \"mac\" or \"linux\"");
    EXPECT_EQ(errorWith("/host", 1), "host: expected \"mac\" or \"linux\"");
    EXPECT_EQ(errorWith("/pid", "x"), "pid: expected a whole number");
    EXPECT_EQ(errorWith("/managed", 1), "managed: expected an array");
    EXPECT_EQ(errorWith("/managed", {1, "2"}), "managed[1]: expected a whole number");
    EXPECT_EQ(errorWith("/adopters", {1.5}), "adopters[0]: expected a whole number");
    EXPECT_EQ(errorWith("/engaged", {nullptr}), "engaged[0]: expected a whole number");
    EXPECT_EQ(errorWith("/keep", {"a", 1}), "keep[1]: expected a string");
    EXPECT_EQ(errorWith("/running", {{1}}), "running[0]: expected a string");
    EXPECT_EQ(errorWith("/foreground", 1), "foreground: expected a string or null");
    EXPECT_EQ(errorWith("/query", nullptr), "query: expected a string");
    EXPECT_EQ(errorWith("/trend", json::array()), "trend: expected an object");
    EXPECT_EQ(errorWith("/engineHistory", {{"observedSince", "x"}}), "engineHistory.observedSince: expected a number");
    EXPECT_EQ(errorWith("/engineHistory", {{"lastBusy", {{"Arc", "x"}}}}),
              "engineHistory.lastBusy.Arc: expected a number");
}

TEST(Capture, AMissingKeyNamesItsPath) {
    for (const char* key : {"now", "uid", "ramBytes", "stats", "processes"}) {
        EXPECT_EQ(errorWithout("/" + std::string(key)), std::string(key) + ": missing");
    }
    for (const char* key : {"id", "ppid", "uid", "name", "command", "started", "footprintBytes", "cpuPercent"}) {
        EXPECT_EQ(errorWithout("/processes/2/" + std::string(key)), "processes[2]." + std::string(key) + ": missing");
    }
    for (const char* key : {"swapUsedBytes", "swapOutBytesPerSec", "memoryFreePercent", "diskFreeBytes", "loadAverage",
                            "cpuCount", "gpuPercent"}) {
        EXPECT_EQ(errorWithout("/stats/" + std::string(key)), "stats." + std::string(key) + ": missing");
    }
    const json whole = thresholds();
    for (const auto& [key, value] : whole.items()) {
        json partial = whole;
        partial.erase(key);
        EXPECT_EQ(errorWith("/thresholds", partial), "thresholds." + key + ": missing");
    }
    EXPECT_EQ(errorWith("/trend", {{"held", {{{"at", 1}}}}}), "trend.held[0].bytes: missing");
    EXPECT_EQ(errorWith("/trend", {{"held", {{{"bytes", json::object()}}}}}), "trend.held[0].at: missing");
}

TEST(Capture, ThresholdsKeepTheirTypes) {
    json limits = thresholds();
    limits["memoryFreePct"] = 15.5;
    EXPECT_EQ(errorWith("/thresholds", limits), "thresholds.memoryFreePct: expected a whole number");
    limits = thresholds();
    limits["autoEndLeftovers"] = 0;
    EXPECT_EQ(errorWith("/thresholds", limits), "thresholds.autoEndLeftovers: expected true or false");
}

TEST(Capture, PidsAreSigned32Bits) {
    const std::string range = ": expected a whole number within signed 32 bits";
    EXPECT_EQ(errorWith("/processes/0/id", 2147483648), "processes[0].id" + range);
    EXPECT_EQ(errorWith("/processes/0/ppid", -2147483649), "processes[0].ppid" + range);
    EXPECT_EQ(errorWith("/processes/0/id", 18446744073709551615u), "processes[0].id" + range);
    EXPECT_EQ(errorWith("/managed", {4294967296}), "managed[0]" + range);
    EXPECT_EQ(errorWith("/pid", 4294967296), "pid" + range);
    EXPECT_EQ(errorWith("/processes/0/id", -2147483648), "");
    EXPECT_EQ(errorWith("/trend", {{"busySince", {{"2147483648", 1}}}}),
              "trend.busySince.2147483648: expected a pid within signed 32 bits for a key");
    EXPECT_EQ(errorWith("/trend", {{"busySince", {{"+7", 1}}}}),
              "trend.busySince[\"+7\"]: expected a pid within signed 32 bits for a key");
    EXPECT_EQ(errorWith("/uid", -1), "uid: expected a whole number within unsigned 32 bits");
    EXPECT_EQ(errorWith("/uid", 4294967295), "");
}

TEST(Capture, NoSizeIsNegative) {
    const std::string size = ": expected a size, which is not negative";
    EXPECT_EQ(errorWith("/ramBytes", -1), "ramBytes" + size);
    EXPECT_EQ(errorWith("/processes/1/footprintBytes", -1), "processes[1].footprintBytes" + size);
    EXPECT_EQ(errorWith("/stats/swapUsedBytes", -1), "stats.swapUsedBytes" + size);
    EXPECT_EQ(errorWith("/stats/diskFreeBytes", -1), "stats.diskFreeBytes" + size);
    EXPECT_EQ(errorWith("/trend", {{"held", {{{"at", 1}, {"bytes", {{"Google Chrome", -1}}}}}}}),
              "trend.held[0].bytes[\"Google Chrome\"]" + size);
}

TEST(Capture, APidOccursOnce) { EXPECT_EQ(errorWith("/processes/3/id", 11), "processes[3].id: pid 11 occurs twice"); }

TEST(Capture, OnlyFormatOneIsRead) {
    EXPECT_EQ(errorWith("/format", 1), "");
    EXPECT_EQ(errorWith("/format", 2), "format: expected 1");
    EXPECT_EQ(errorWith("/format", 0), "format: expected 1");
    EXPECT_EQ(errorWith("/format", "1"), "format: expected a whole number");
    EXPECT_EQ(errorWith("/format", 1.0), "format: expected a whole number");
}

TEST(Capture, WhatIsNoJsonIsRefusedWithItsPlace) {
    EXPECT_EQ(errorOfText(""), "capture: not valid JSON at byte 1");
    EXPECT_EQ(errorOfText("{\"now\": 1, \"uid\": }"), "uid: not valid JSON at byte 19");
    EXPECT_EQ(errorOfText("[1, 2]"), "capture: expected an object");
    EXPECT_EQ(errorOfText("null"), "capture: expected an object");
    EXPECT_EQ(errorOfText(R"({"processes": [{"id": 1}, {"id": x)"), "processes[1].id: not valid JSON at byte 34");
    EXPECT_EQ(errorOfText(capture().dump() + "x").substr(0, 30), "capture: not valid JSON at byt");
}

TEST(Capture, ATruncatedCaptureIsRefusedWhereverItEnds) {
    const std::string whole = capture().dump();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(errorOfText(whole.substr(0, length)).empty()) << length;
    }
}

TEST(Capture, NumbersOutOfRangeAreRefusedByName) {
    EXPECT_EQ(errorOfText(R"({"now": 1e999})"), "now: number out of range");
    EXPECT_EQ(errorOfText(R"({"stats": {"loadAverage": -1e400}})"), "stats.loadAverage: number out of range");
    EXPECT_EQ(errorOfText(R"({"now": 1, "uid": 1, "ramBytes": 99999999999999999999999})"),
              "ramBytes: expected a whole number");
    EXPECT_EQ(errorOfText(R"({"now": 1, "uid": 123456789012345678901234567890})"), "uid: expected a whole number");
}

TEST(Capture, DeepNestingIsRefusedWhereItIsReadAndPassedOverWhereItIsNot) {
    const std::string deep(1'000'000, '[');
    EXPECT_EQ(errorOfText(R"({"keep": )" + deep).find("keep[0][0]"), 0u);
    EXPECT_NE(errorOfText(R"({"keep": )" + deep).find("nested deeper than 64 levels"), std::string::npos);
    EXPECT_NE(errorOfText(deep).find("nested deeper than 64 levels"), std::string::npos);
    std::string text = capture().dump();
    text.insert(1, "\"unknown\": " + deep + std::string(1'000'000, ']') + ",");
    EXPECT_TRUE(readCapture(text, HostKind::mac).capture);
}

TEST(Capture, OddKeysAndTextsKeepTheErrorOnOneLine) {
    EXPECT_EQ(errorWith("/trend", {{"busySince", {{"a\nb", 1}}}}),
              "trend.busySince[\"a\\nb\"]: expected a pid within signed 32 bits for a key");
    EXPECT_FALSE(errorOfText("{\"keep\": [\"\xff\xfe\"]}").empty());
    EXPECT_FALSE(errorOfText(std::string("\0\0", 2)).empty());
    EXPECT_FALSE(errorOfText("{\"keep\": [\"\\ud800\"]}").empty());
}

TEST(Capture, AFileThatCannotBeReadSaysWhy) {
    const auto missing = readCaptureFile("/nonexistent/capture.json", HostKind::mac);
    EXPECT_EQ(missing.error, "/nonexistent/capture.json: No such file or directory");
    const auto folder = readCaptureFile(std::filesystem::temp_directory_path(), HostKind::mac);
    EXPECT_FALSE(folder.capture);
    EXPECT_EQ(folder.error.find('\n'), std::string::npos);
}

TEST(BoundedJson, PathsQuoteWhatIsNoPlainWord) {
    std::string path = "a";
    BoundedJson::appendKey(path, "b_1");
    BoundedJson::appendIndex(path, 2);
    BoundedJson::appendKey(path, "x \"y\"");
    EXPECT_EQ(path, "a.b_1[2][\"x \\\"y\\\"\"]");
}

}  // namespace ravik

#include "Core/Reading/Replay.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Reading/Json.h"

namespace ravik {

using nlohmann::json;
namespace fs = std::filesystem;

namespace {

const fs::path folder = fs::path(RAVIK_SOURCE_DIR) / "Tests/Readings";

std::string contents(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// The readings that have an expected result beside them.
std::vector<std::string> readings() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const std::size_t ending = name.rfind(".expected.json");
        if (ending != std::string::npos) names.push_back(name.substr(0, ending));
    }
    std::ranges::sort(names);
    return names;
}

/// Where `actual` lacks something of `expected`: members that are not named may be anything, arrays are as long as
/// expected.
void compare(const json& expected, const json& actual, const std::string& path, std::vector<std::string>& faults) {
    if (expected.is_object() && actual.is_object()) {
        for (const auto& [key, value] : expected.items()) {
            const auto found = actual.find(key);
            if (found == actual.end()) {
                faults.push_back(fmt::format("{}.{}: missing", path, key));
            } else {
                compare(value, *found, fmt::format("{}.{}", path, key), faults);
            }
        }
    } else if (expected.is_array() && actual.is_array() && expected.size() == actual.size()) {
        for (std::size_t at = 0; at < expected.size(); ++at) {
            compare(expected[at], actual[at], path + "[" + std::to_string(at) + "]", faults);
        }
    } else if (expected != actual) {
        faults.push_back(path + "\n  expected " + expected.dump() + "\n  actual   " + actual.dump());
    }
}

}  // namespace

class Replay : public testing::TestWithParam<std::string> {};

TEST_P(Replay, GivesTheExpectedResult) {
    const auto read = readCaptureFile(folder / (GetParam() + ".json"), HostKind::mac);
    ASSERT_TRUE(read.capture) << read.error;
    std::vector<std::string> faults;
    compare(json::parse(contents(folder / (GetParam() + ".expected.json"))), replay(*read.capture), "", faults);
    for (const std::string& fault : faults) ADD_FAILURE() << fault;
}

/// A capture that is written and read again is the same reading.
TEST_P(Replay, SurvivesBeingWrittenAgain) {
    const auto first = readCaptureFile(folder / (GetParam() + ".json"), HostKind::mac);
    ASSERT_TRUE(first.capture) << first.error;
    const json written = captureJson(*first.capture);
    const auto second = readCapture(Json::text(written), HostKind::mac);
    ASSERT_TRUE(second.capture) << second.error;
    EXPECT_EQ(captureJson(*second.capture), written);
    EXPECT_EQ(replay(*second.capture), replay(*first.capture));
}

INSTANTIATE_TEST_SUITE_P(Readings, Replay, testing::ValuesIn(readings()), [](const auto& reading) {
    std::string name = reading.param;
    std::ranges::replace(name, '-', '_');
    return name;
});

TEST(ReplayResult, HasEveryKeyWhateverTheReading) {
    const auto read = readCapture(R"({"now": 0, "uid": 0, "ramBytes": 0, "processes": [], "stats": {"swapUsedBytes": 0,
        "swapOutBytesPerSec": 0, "memoryFreePercent": 0, "diskFreeBytes": 0, "loadAverage": 0, "cpuCount": 0,
        "gpuPercent": -1}})",
                                  HostKind::linux);
    ASSERT_TRUE(read.capture) << read.error;
    const json result = replay(*read.capture);
    std::vector<std::string> keys;
    for (const auto& [key, value] : result.items()) keys.push_back(key);
    const std::vector<std::string> expected{
        "alertCauses", "breaches",      "conditions", "confirmation", "decisions", "findings",
        "freeable",    "freeableBytes", "gapLine",    "glyph",        "groups",    "hogs",
        "info",        "logLines",      "memory",     "notification", "orphans",   "reclaimableBytes",
        "rows",        "sections",      "sessions",   "trendAfter"};
    EXPECT_EQ(keys, expected);
    EXPECT_EQ(result["glyph"]["label"], "Ravik, nothing to free");
}

}  // namespace ravik

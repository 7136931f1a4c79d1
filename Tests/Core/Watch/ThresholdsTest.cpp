#include "Core/Watch/Thresholds.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace ravik {

namespace {

using nlohmann::json;

json stored() {
    return json::parse(R"({"swapGB":9,"swapOutMBps":6.5,"memoryFreePct":20,"diskFreeGB":16.0,"loadPerCore":3,
        "orphanMinHours":0.5,"hogCPUPercent":75,"hogMinHours":2,"autoEndLeftovers":true,
        "autoLeftoverMinHours":4.25})");
}

const ThresholdField& field(std::string_view key) {
    for (const auto& one : thresholdFields()) {
        if (one.key == key) return one;
    }
    ADD_FAILURE() << "no field " << key;
    return thresholdFields().front();
}

}  // namespace

TEST(Thresholds, DefaultsAreThoseOfTheSettings) {
    EXPECT_EQ(Thresholds{}.encode(),
              json::parse(R"({"swapGB":8.0,"swapOutMBps":5.0,"memoryFreePct":15,"diskFreeGB":15.0,"loadPerCore":2.0,
        "orphanMinHours":1.0,"hogCPUPercent":50.0,"hogMinHours":1.0,"autoEndLeftovers":false,
        "autoLeftoverMinHours":1.0})"));
}

TEST(Thresholds, DecodesEveryFieldAndTakesWholeNumbersForReals) {
    const Thresholds expected{9, 6.5, 20, 16, 3, 0.5, 75, 2, true, 4.25};
    EXPECT_EQ(Thresholds::decode(stored()), expected);
    EXPECT_EQ(Thresholds::decode(expected.encode()), expected);
}

TEST(Thresholds, OneMissingKeyDropsAll) {
    const json whole = stored();
    for (const auto& [key, value] : whole.items()) {
        json torn = whole;
        torn.erase(key);
        EXPECT_EQ(Thresholds::decode(torn), std::nullopt) << key;
    }
}

TEST(Thresholds, OneWrongTypeDropsAll) {
    const json whole = stored();
    for (const auto& [key, value] : whole.items()) {
        for (const json& wrong : {json("8"), json(nullptr), json::array({1}), json::object()}) {
            json torn = whole;
            torn[key] = wrong;
            EXPECT_EQ(Thresholds::decode(torn), std::nullopt) << key << " " << wrong;
        }
        json swapped = whole;
        if (value.is_boolean()) {
            swapped[key] = 1;
        } else {
            swapped[key] = true;
        }
        EXPECT_EQ(Thresholds::decode(swapped), std::nullopt) << key;
    }
    for (const json& wrong : {json(), json::array(), json("x"), json(3)}) {
        EXPECT_EQ(Thresholds::decode(wrong), std::nullopt) << wrong;
    }
}

TEST(Thresholds, WholeFieldTakesNoFractionAndNothingBeyondAnInt) {
    json value = stored();
    value["memoryFreePct"] = 15.5;
    EXPECT_EQ(Thresholds::decode(value), std::nullopt);
    value["memoryFreePct"] = 1e12;
    EXPECT_EQ(Thresholds::decode(value), std::nullopt);
    value["memoryFreePct"] = 15.0;
    EXPECT_EQ(Thresholds::decode(value)->memoryFreePct, 15);
}

TEST(Thresholds, StoredValuesAreNotHeldToTheRanges) {
    json value = stored();
    value["swapGB"] = 0.25;
    value["memoryFreePct"] = -3;
    value["unknown"] = "kept out";
    const auto limits = Thresholds::decode(value);
    ASSERT_TRUE(limits);
    EXPECT_EQ(limits->swapGB, 0.25);
    EXPECT_EQ(limits->memoryFreePct, -3);
}

TEST(ThresholdField, BothEndsOfEachRangeAreAccepted) {
    struct Range {
        const char* key;
        double low, high;
    };
    const Range ranges[] = {{"swapGB", 1, 128},       {"swapOutMBps", 1, 1000}, {"memoryFreePct", 1, 99},
                            {"diskFreeGB", 1, 1000},  {"loadPerCore", 0.5, 16}, {"orphanMinHours", 0.25, 168},
                            {"hogCPUPercent", 5, 800}};
    std::size_t at = 0;
    for (const auto& [key, low, high] : ranges) {
        EXPECT_EQ(thresholdFields()[at++].key, key);
        const auto& one = field(key);
        EXPECT_TRUE(one.accepts(low)) << key;
        EXPECT_TRUE(one.accepts(high)) << key;
        EXPECT_FALSE(one.accepts(std::nextafter(low, 0))) << key;
        EXPECT_FALSE(one.accepts(std::nextafter(high, 1e9))) << key;
        EXPECT_FALSE(one.accepts(std::numeric_limits<double>::quiet_NaN())) << key;
    }
    EXPECT_EQ(at, thresholdFields().size());
}

TEST(ThresholdField, RefusalWritesNumbersInTheirShortestForm) {
    EXPECT_EQ(field("swapGB").refusal(8), "Must be between 1 and 128. The last saved value, 8, stays in use.");
    EXPECT_EQ(field("orphanMinHours").refusal(1.5),
              "Must be between 0.25 and 168. The last saved value, 1.5, stays in use.");
    EXPECT_EQ(rangeRefusal(1, 60, 5), "Must be between 1 and 60. The last saved value, 5, stays in use.");
}

TEST(ThresholdField, AssignsItsOwnMemberAndCutsTheWholeOne) {
    Thresholds limits;
    field("memoryFreePct").assign(limits, 15.9);
    EXPECT_EQ(limits, Thresholds{});
    field("memoryFreePct").assign(limits, 20.9);
    EXPECT_EQ(limits.memoryFreePct, 20);
    EXPECT_EQ(field("memoryFreePct").value(limits), 20.0);

    double next = 30;
    for (const auto& one : thresholdFields()) {
        Thresholds fresh;
        one.assign(fresh, ++next);
        EXPECT_EQ(one.value(fresh), next) << one.key;
        EXPECT_EQ(fresh.encode()[std::string(one.key)].get<double>(), next) << one.key;
    }
}

TEST(ThresholdField, TitlesAndHintsSpeakOfTheHostsMachine) {
    Nouns mac;
    mac.machine = "Mac";
    Nouns linux;
    linux.machine = "computer";
    EXPECT_EQ(field("loadPerCore").titleWith(mac), "Mac busier than");
    EXPECT_EQ(field("loadPerCore").titleWith(linux), "Computer busier than");
    EXPECT_EQ(field("swapGB").titleWith(linux), "Memory spilled to disk, more than");
    EXPECT_EQ(field("swapGB").hint(), "Default 8 GB");
    EXPECT_EQ(field("swapOutMBps").hint(), "Default 5 MB/s");
    EXPECT_EQ(field("memoryFreePct").hint(), "Default 15 %");
    EXPECT_EQ(field("loadPerCore").hint(), "Default 2 × its processor cores");
    EXPECT_EQ(field("orphanMinHours").hint(), "Default 1 h");
}

TEST(Thresholds, CommitKeepsTheAutopilotRuleInForce) {
    Thresholds live;
    live.autoEndLeftovers = true;
    live.autoLeftoverMinHours = 6;
    Thresholds edited;
    edited.swapGB = 12;
    Thresholds expected = live;
    expected.swapGB = 12;
    EXPECT_EQ(committed(edited, live), expected);
}

TEST(Thresholds, RestoringDefaultsKeepsTheAutopilotRuleAlone) {
    Thresholds present{9, 6.5, 20, 16, 3, 0.5, 75, 2, true, 4.25};
    const Thresholds restored = restoredDefaults(present);
    EXPECT_EQ(restored, (Thresholds{8, 5, 15, 15, 2, 1, 50, 1, true, 4.25}));
}

}  // namespace ravik

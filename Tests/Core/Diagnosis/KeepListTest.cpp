#include "Core/Diagnosis/KeepList.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Fakes/FakeDesktop.h"

namespace ravik {

using nlohmann::json;

TEST(KeepList, IsEmptyWhereNothingIsStored) {
    fakes::FakeDefaults defaults;
    EXPECT_TRUE(KeepList(defaults).commands().empty());
}

TEST(KeepList, StoresACommandOnceAndSorted) {
    fakes::FakeDefaults defaults;
    KeepList list(defaults);
    list.add("b");
    list.add("c");
    list.add("a");
    list.add("b");
    EXPECT_EQ(defaults.get("keepRunning"), json::array({"a", "b", "c"}));
    EXPECT_EQ(list.sorted(), (std::vector<std::string>{"a", "b", "c"}));
    list.remove("b");
    list.remove("never there");
    EXPECT_EQ(defaults.get("keepRunning"), json::array({"a", "c"}));
    EXPECT_EQ(list.commands(), (KeepSet{"a", "c"}));
}

TEST(KeepList, SortsWhatItFindsUnsorted) {
    fakes::FakeDefaults defaults;
    defaults.set("keepRunning", json::array({"z", "m", "z"}));
    KeepList(defaults).add("a");
    EXPECT_EQ(defaults.get("keepRunning"), json::array({"a", "m", "z"}));
}

TEST(KeepList, ABadValueCountsAsAbsent) {
    for (const json& bad : {json("x"), json::object(), json::array({"a", 1}), json(nullptr)}) {
        fakes::FakeDefaults defaults;
        defaults.set("keepRunning", bad);
        EXPECT_TRUE(KeepList(defaults).commands().empty()) << bad;
        KeepList(defaults).add("b");
        EXPECT_EQ(defaults.get("keepRunning"), json::array({"b"}));
    }
}

}  // namespace ravik

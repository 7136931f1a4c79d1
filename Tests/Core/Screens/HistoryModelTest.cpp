#include "Core/Screens/HistoryModel.h"

#include <gtest/gtest.h>

#include "Tests/Core/Record/LogFolder.h"
#include "Tests/Fakes/FakeClock.h"
#include "Tests/Fakes/FakeLoop.h"

namespace ravik {

namespace {

struct HistoryModelTest : testing::Test {
    LogFolder folder;
    fakes::FakeClock clock;
    fakes::FakeLoop loop{clock};
    int changes = 0;

    void tick(const std::string& day = "2026-03-01") {
        folder.append("{\"kind\":\"tick\",\"t\":\"" + day + "T09:30:15Z\"}\n", day);
    }
    std::int64_t samples(const HistoryModel& model) const {
        std::int64_t sum = 0;
        for (const auto& bucket : model.data()->hours) sum += bucket.samples;
        return sum;
    }
};

}  // namespace

TEST_F(HistoryModelTest, HasNoDataUntilTheFirstLoadEnds) {
    HistoryModel model(loop, folder.logs, folder.cache);
    EXPECT_FALSE(model.data());
    EXPECT_FALSE(model.isLoading());
    model.refresh();
    EXPECT_FALSE(model.data());
    EXPECT_TRUE(model.isLoading());
    loop.settle();
    ASSERT_TRUE(model.data());
    EXPECT_TRUE(model.data()->hours.empty());
    EXPECT_FALSE(model.isLoading());
}

TEST_F(HistoryModelTest, TwoRefreshesAtOnceDoOneLoad) {
    HistoryModel model(loop, folder.logs, folder.cache);
    model.onChange([this] { ++changes; });
    model.refresh();
    model.refresh();
    loop.settle();
    EXPECT_EQ(changes, 1);
    model.refresh();
    loop.settle();
    EXPECT_EQ(changes, 2);
}

TEST_F(HistoryModelTest, TheNextLoadReadsOnWithoutTheCache) {
    HistoryModel model(loop, folder.logs, folder.cache);
    tick();
    model.refresh();
    loop.settle();
    EXPECT_EQ(samples(model), 1);
    // What has been folded is remembered, not read again.
    std::filesystem::remove_all(folder.cache);
    LogFolder::put(folder.logFile(), std::string(std::filesystem::file_size(folder.logFile()), '\n'));
    tick();
    model.refresh();
    loop.settle();
    EXPECT_EQ(samples(model), 2);
}

TEST_F(HistoryModelTest, ADayWhoseLogIsGoneLeavesTheData) {
    HistoryModel model(loop, folder.logs, folder.cache);
    tick("2026-03-01");
    tick("2026-03-02");
    model.refresh();
    loop.settle();
    EXPECT_EQ(model.data()->hours.size(), 2u);
    std::filesystem::remove(folder.logFile("2026-03-01"));
    model.refresh();
    loop.settle();
    EXPECT_EQ(model.data()->hours.size(), 1u);
}

TEST_F(HistoryModelTest, ALoadMayOutliveTheModel) {
    tick();
    {
        HistoryModel model(loop, folder.logs, folder.cache);
        model.onChange([this] { ++changes; });
        model.refresh();
    }
    loop.settle();
    EXPECT_EQ(changes, 0);
}

}  // namespace ravik

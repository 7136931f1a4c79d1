#include "Platform/Linux/LeverJournal.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik::platform {
namespace {

namespace fs = std::filesystem;

LeverRecord pauseRecord(const std::string& target) {
    LeverRecord record;
    record.action = "pause";
    record.target = target;
    record.at = 1'760'000'000.25;
    record.processes = {{812, 998877, {}}, {813, 998878, {}}};
    return record;
}

LeverRecord demotion() {
    LeverRecord record = pauseRecord("Foo");
    record.action = "demote";
    record.ticks = 1'000'000;
    record.processes[0].threads = {{812, 998877, 0, 0}, {814, 998879, 3, 16388}};
    record.units = {{"app-foo-1.scope", "/user.slice/app-foo-1.scope", 77, std::numeric_limits<std::uint64_t>::max()}};
    record.autogroups = {{"autogroup-44", -3}};
    record.idlePolicy = true;
    return record;
}

class LeverJournalTest : public testing::Test {
protected:
    LeverJournal make(const std::string& boot = "boot-1") const { return {folder, geteuid(), boot}; }
    std::optional<std::string> text() const { return readFile((folder / "levers.json").native()); }

    fakes::TemporaryFolder home;
    fs::path folder = home.path() / "run" / "ravik";
};

}  // namespace

TEST(LeverRecord, EveryFieldComesBack) {
    LeverPage page{"boot-1", {pauseRecord("Foo"), demotion()}};
    page.records[1].id = 7;
    EXPECT_EQ(parsePage(writePage(page)), page);
    EXPECT_EQ(parsePage(writePage({"b", {}})), (LeverPage{"b", {}}));
}

TEST(LeverRecord, ARecordThatIsNotWholeIsPassedOver) {
    const std::string good = R"({"id":1,"action":"pause","target":"Foo","at":5,"ticks":0,)"
                             R"("processes":[{"pid":8,"startTicks":9}]})";
    const auto records = [](const std::string& list) {
        const auto page = parsePage(R"({"boot":"b","records":[)" + list + "]}");
        return page ? page->records.size() : 99;
    };
    EXPECT_EQ(records(good), 1u);
    EXPECT_EQ(records("7," + good), 1u);
    EXPECT_EQ(records(R"({"id":1,"action":"pause","target":"Foo","at":5,"ticks":0,"processes":[{"pid":8}]})"), 0u);
    EXPECT_EQ(records(R"({"id":1,"action":"pause","target":"Foo","at":5,"ticks":0,)"
                      R"("processes":[{"pid":4294967304,"startTicks":9}]})"),
              0u);
    EXPECT_EQ(records(R"({"id":1,"action":"pause","target":"Foo","at":5,"ticks":0,"processes":8})"), 0u);
    EXPECT_EQ(records(R"({"id":-1,"action":"pause","target":"Foo","at":5,"ticks":0})"), 0u);
    EXPECT_EQ(records(R"({"id":1,"action":"pause","target":7,"at":5,"ticks":0})"), 0u);
}

TEST(LeverRecord, ATextThatIsNoPageIsNone) {
    for (const char* text :
         {"", "{", "[]", "7", R"({"boot":"b"})", R"({"records":[]})", R"({"boot":1,"records":[]})"}) {
        EXPECT_FALSE(parsePage(text)) << text;
    }
}

TEST(LeverRecord, ATargetThatIsNoTextIsWrittenAllTheSame) {
    const auto page = parsePage(writePage({"b", {pauseRecord("\xff\xfe Foo")}}));
    ASSERT_TRUE(page);
    EXPECT_EQ(page->records.size(), 1u);
}

TEST_F(LeverJournalTest, WhatIsInForceStandsInTheFileAndNothingElse) {
    auto journal = make();
    const auto first = journal.add(pauseRecord("Foo"));
    const auto second = journal.add(pauseRecord("Bar"));
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    auto page = parsePage(text().value_or(""));
    ASSERT_TRUE(page);
    EXPECT_EQ(page->boot, "boot-1");
    EXPECT_EQ(page->records, journal.records());
    journal.remove(*first);
    page = parsePage(text().value_or(""));
    ASSERT_TRUE(page);
    ASSERT_EQ(page->records.size(), 1u);
    EXPECT_EQ(page->records[0].target, "Bar");
    journal.remove(*second);
    EXPECT_EQ(text(), std::nullopt);
}

TEST_F(LeverJournalTest, TheFileAndItsFolderAreTheUsersAlone) {
    make().add(pauseRecord("Foo"));
    struct stat status {};
    ASSERT_EQ(stat(folder.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    ASSERT_EQ(stat((folder / "levers.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(LeverJournalTest, AnotherRunFindsWhatWasLeft) {
    make().add(demotion());
    auto next = make();
    ASSERT_EQ(next.earlier().size(), 1u);
    EXPECT_EQ(next.earlier()[0].autogroups, demotion().autogroups);
    const auto own = next.add(pauseRecord("Bar"));
    ASSERT_TRUE(own);
    EXPECT_NE(*own, next.earlier()[0].id);
    EXPECT_EQ(next.earlier().size(), 1u);
    EXPECT_EQ(next.records().size(), 2u);
    EXPECT_EQ(parsePage(*text())->records.size(), 2u);
}

TEST_F(LeverJournalTest, WhatAnotherRunOfTheKernelLeftIsGone) {
    make().add(demotion());
    EXPECT_TRUE(make("boot-2").records().empty());
}

TEST_F(LeverJournalTest, WhatCannotBeWrittenDownIsNotRemembered) {
    home.write("run/ravik", "a file in the folder's place");
    auto journal = make();
    EXPECT_FALSE(journal.add(pauseRecord("Foo")));
    EXPECT_TRUE(journal.records().empty());
}

TEST_F(LeverJournalTest, AFolderThatOthersMayWriteToIsNotTrusted) {
    make().add(pauseRecord("Foo"));
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    auto journal = make();
    EXPECT_TRUE(journal.records().empty());
    EXPECT_FALSE(journal.add(pauseRecord("Bar")));
    fs::remove_all(folder);
    fs::create_directory(home.path() / "elsewhere");
    fs::create_symlink(home.path() / "elsewhere", folder);
    EXPECT_FALSE(make().add(pauseRecord("Bar")));
}

TEST_F(LeverJournalTest, AnotherUsersFolderIsNotTrusted) {
    LeverJournal journal(folder, geteuid() + 1, "boot-1");
    EXPECT_FALSE(journal.add(pauseRecord("Foo")));
}

TEST_F(LeverJournalTest, ADamagedFileIsReplaced) {
    home.write("run/ravik/levers.json", R"({"boot":"boot-1","rec)");
    auto journal = make();
    EXPECT_TRUE(journal.earlier().empty());
    EXPECT_TRUE(journal.add(pauseRecord("Foo")));
    EXPECT_EQ(parsePage(*text())->records.size(), 1u);
}

}  // namespace ravik::platform

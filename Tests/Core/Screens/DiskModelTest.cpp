#include "Core/Screens/DiskModel.h"

#include <fstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "Core/Screens/DiskScreen.h"
#include "Tests/Core/Disk/DiskTree.h"
#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"

namespace ravik {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
namespace fs = std::filesystem;

class DiskModelTest : public DiskTree {
protected:
    DiskModelTest() {
        machine.folders.home = home;
        machine.platform.folders.home = home;
        machine.clock.time = now;
    }

    std::unique_ptr<DiskModel> make(HostKind kind = HostKind::mac) {
        Log::Options options;
        options.folder = outside / "log";
        options.now = [this] { return machine.clock.now(); };
        options.session = "00000000";
        log = std::make_unique<Log>(std::move(options));
        return std::make_unique<DiskModel>(machine.platform, *log, kind, asker);
    }

    std::unique_ptr<DiskModel> scanned(HostKind kind = HostKind::mac) {
        auto model = make(kind);
        model->scan();
        machine.loop.settle();
        return model;
    }

    void tickAll(DiskModel& model) {
        for (const Reclaimable& row : model.items()) model.setChecked(row.id, true);
    }

    /// The lines of one kind, or all but the questions.
    std::vector<json> lines(std::string_view kind = {}) {
        log->flush();
        std::vector<json> all;
        for (const auto& entry : fs::directory_iterator(outside / "log")) {
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                json value = json::parse(line);
                if (kind.empty() ? value["kind"] == "confirm" : value["kind"] != kind) continue;
                value.erase("t");
                value.erase("session");
                all.push_back(std::move(value));
            }
        }
        return all;
    }

    fakes::FakeMachine machine;
    std::unique_ptr<Log> log;
    fakes::FakeAsker asker;
};

TEST_F(DiskModelTest, StartsIdleWithTheDefaultRoots) {
    const auto model = make();
    EXPECT_EQ(model->phase(), DiskModel::Phase(DiskModel::Idle{}));
    EXPECT_THAT(model->items(), IsEmpty());
    EXPECT_THAT(model->projectRoots, ElementsAre(home / "Projects"));
}

TEST_F(DiskModelTest, GoesThroughEveryStepToDone) {
    fill(home / ".npm/_npx", 60 * MiB);
    folder(home / "Projects/a");
    auto model = make();
    std::vector<DiskModel::Phase> seen;
    model->onChange([&] { seen.push_back(model->phase()); });
    model->scan();
    model->scan();  // one at a time
    machine.loop.settle();
    ASSERT_THAT(seen, SizeIs(20));
    EXPECT_EQ(seen[0], DiskModel::Phase(DiskModel::Scanning{0, 0}));
    for (int done = 1; done <= 18; ++done) EXPECT_EQ(seen[done], DiskModel::Phase(DiskModel::Scanning{done, 18}));
    EXPECT_EQ(seen[19], DiskModel::Phase(DiskModel::Done{}));
    EXPECT_THAT(model->items(), SizeIs(1));
    EXPECT_THAT(lines(), ElementsAre(json{{"kind", "diskScan"}, {"items", 1}, {"mb", 60}, {"seconds", 0.0}}));
}

TEST_F(DiskModelTest, ANewScanEmptiesTheTicks) {
    fill(home / ".npm/_npx", 60 * MiB);
    const auto model = scanned();
    tickAll(*model);
    model->scan();
    EXPECT_THAT(model->checked(), SizeIs(1));
    machine.loop.settle();
    EXPECT_THAT(model->checked(), IsEmpty());
}

TEST_F(DiskModelTest, AsksWithOneRowAFolder) {
    fill(home / ".npm/_npx", 60 * MiB);
    fill(home / ".cache/uv", 1200 * MiB);
    const auto model = scanned();
    asker.answer = false;
    model->setChecked((home / ".npm/_npx").string(), true);
    spawn(model->trashChecked());
    ASSERT_THAT(asker.asked, SizeIs(1));
    EXPECT_EQ(asker.asked[0].title, "Move 1 folder to the Trash?");
    EXPECT_EQ(asker.asked[0].message,
              "0.1 GB. Each is recreated by its tool on next use, and you can put any of it back from the Trash.");
    EXPECT_EQ(asker.asked[0].verb, "Move to Trash");
    ASSERT_THAT(asker.asked[0].ends, SizeIs(1));
    EXPECT_EQ(asker.asked[0].ends[0].name, "npx cache");
    EXPECT_EQ(asker.asked[0].ends[0].amount, "0.1 GB");
    tickAll(*model);
    spawn(model->trashChecked());
    EXPECT_EQ(asker.asked[1].title, "Move 2 folders to the Trash?");
    EXPECT_THAT(asker.asked[1].message, ::testing::StartsWith("1.3 GB. "));
    EXPECT_EQ(asker.asked[1].ends[0].name, "uv cache");
    EXPECT_EQ(asker.asked[1].ends[0].amount, "1.2 GB");
}

TEST_F(DiskModelTest, ANoChangesNothing) {
    fill(home / ".npm/_npx", 60 * MiB);
    const auto model = scanned();
    tickAll(*model);
    asker.answer = false;
    spawn(model->trashChecked());
    EXPECT_THAT(machine.trash.moved, IsEmpty());
    EXPECT_THAT(model->items(), SizeIs(1));
    EXPECT_THAT(model->checked(), SizeIs(1));
    EXPECT_EQ(model->trashed(), std::nullopt);
    EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(DiskModelTest, TheAnswerIsLogged) {
    fill(home / ".npm/_npx", 60 * MiB);
    const auto model = scanned();
    tickAll(*model);
    asker.answer = false;
    spawn(model->trashChecked());
    EXPECT_THAT(lines("confirm"), ElementsAre(json{{"kind", "confirm"},
                                                   {"title", "Move 1 folder to the Trash?"},
                                                   {"confirmed", false},
                                                   {"seconds", 0.0},
                                                   {"active", true}}));
}

TEST_F(DiskModelTest, NothingTickedIsNotAskedAbout) {
    fill(home / ".npm/_npx", 60 * MiB);
    const auto model = scanned();
    spawn(model->trashChecked());
    EXPECT_THAT(asker.asked, IsEmpty());
}

TEST_F(DiskModelTest, MovingEveryRowLeavesTheHeroOnFreeSpaceWithTheAmountMoved) {
    fill(home / ".npm/_npx", 160 * MiB);
    const auto model = scanned();
    tickAll(*model);
    spawn(model->trashChecked());
    EXPECT_THAT(machine.trash.moved, ElementsAre(home / ".npm/_npx"));
    EXPECT_THAT(model->items(), IsEmpty());
    EXPECT_THAT(model->checked(), IsEmpty());
    EXPECT_EQ(model->trashed(), "Moved 0.2 GB to the Trash");
    EXPECT_EQ(DiskScreen::hero(*model, 100ull << 30),
              (DiskScreen::Hero{"100", "GB", "free on your disk", "Moved 0.2 GB to the Trash"}));
    EXPECT_EQ(lines().back(), (json{{"kind", "npx cache"}, {"ok", true}, {"mb", 160}}));
    model->scan();
    EXPECT_EQ(model->trashed(), std::nullopt);
}

TEST_F(DiskModelTest, ARefusedRowIsNamedAndTheNextStillMoves) {
    fill(home / "Library/Application Support/Claude/vm_bundles", 300 * MiB);
    fill(home / ".npm/_npx", 160 * MiB);
    const auto model = scanned();
    tickAll(*model);
    // It starts while the question stands.
    asker.whileAsked = [&] {
        machine.workspace.apps.push_back({.app = {.bundleName = "", .localizedName = "Claude", .pid = 9}});
    };
    spawn(model->trashChecked());
    const std::string why = "Claude is running and may be using it. Quit Claude first; nothing was changed.";
    EXPECT_EQ(model->phase(), DiskModel::Phase(DiskModel::Failed{"Could not move Claude app VM bundle to the Trash: " +
                                                                 why + " Nothing else was changed."}));
    EXPECT_THAT(machine.trash.moved, ElementsAre(home / ".npm/_npx"));
    EXPECT_EQ(model->trashed(), "Moved 0.2 GB to the Trash");
    ASSERT_THAT(model->items(), SizeIs(1));
    EXPECT_EQ(model->items()[0].kind, "Claude app VM bundle");
    EXPECT_TRUE(model->checked().contains(model->items()[0].id));
    const auto logged = lines();
    ASSERT_THAT(logged, SizeIs(3));
    EXPECT_EQ(logged[1], (json{{"kind", "Claude app VM bundle"}, {"ok", false}, {"error", why}}));
    EXPECT_EQ(logged[2], (json{{"kind", "npx cache"}, {"ok", true}, {"mb", 160}}));
}

TEST_F(DiskModelTest, NothingMovedLeavesTheLastSentence) {
    fill(home / ".npm/_npx", 160 * MiB);
    fill(home / ".cache/uv", 100 * MiB);
    const auto model = scanned();
    model->setChecked((home / ".npm/_npx").string(), true);
    spawn(model->trashChecked());
    machine.trash.refusal = "The Trash is full.";
    model->setChecked((home / ".cache/uv").string(), true);
    spawn(model->trashChecked());
    EXPECT_EQ(model->trashed(), "Moved 0.2 GB to the Trash");
    EXPECT_EQ(model->phase(),
              DiskModel::Phase(DiskModel::Failed{
                  "Could not move uv cache to the Trash: The Trash is full. Nothing else was changed."}));
    EXPECT_THAT(model->failures(), SizeIs(1));
}

TEST_F(DiskModelTest, OnLinuxItSaysWhenTheSpaceReturns) {
    fill(home / ".npm/_npx", 160 * MiB);
    const auto model = scanned(HostKind::linux);
    tickAll(*model);
    spawn(model->trashChecked());
    EXPECT_EQ(asker.asked.at(0).message,
              "0.2 GB. Each is recreated by its tool on next use, and you can put any of it back from the Trash. The "
              "space returns when the Trash is emptied.");
    EXPECT_EQ(model->trashed(), "Moved 0.2 GB to the Trash. The space returns when the Trash is emptied.");
}

TEST_F(DiskModelTest, ACancelledScanKeepsTheRowsOfTheOneBefore) {
    fill(home / ".npm/_npx", 60 * MiB);
    const auto model = scanned();
    fill(home / ".cache/uv", 60 * MiB);
    model->scan();
    model->cancelScan();
    machine.loop.settle();
    EXPECT_EQ(model->phase(), DiskModel::Phase(DiskModel::Idle{}));
    EXPECT_THAT(model->items(), SizeIs(1));
    EXPECT_THAT(lines(), SizeIs(1));
    model->scan();
    machine.loop.settle();
    EXPECT_THAT(model->items(), SizeIs(2));
}

TEST_F(DiskModelTest, AScanThatOutlivesItsModelTouchesNothing) {
    fill(home / ".npm/_npx", 60 * MiB);
    auto model = make();
    int changes = 0;
    model->onChange([&] { ++changes; });
    model->scan();
    model.reset();
    machine.loop.settle();
    EXPECT_EQ(changes, 1);
}

}  // namespace ravik

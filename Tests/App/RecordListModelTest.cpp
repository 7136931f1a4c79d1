#include "App/Views/RecordListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

struct Row {
    int pid = 0;
    std::string name;
    double share = 0;
    std::optional<std::string> note;
    std::string upper() const { return name + "!"; }
    friend bool operator==(const Row&, const Row&) = default;
};

using Model = RecordListModel<Row>;
const Model::Role roles[]{{"name", &Row::name},
                          {"share", &Row::share},
                          {"note", &Row::note},
                          {"upper", &Row::upper},
                          {"isHeavy", [](const Row& row) { return row.share > 0.5; }}};

class RecordListModelTest : public testing::Test {
protected:
    QVariant value(int row, const char* name) const {
        return model.data(model.index(row), model.roleNames().key(name, -1));
    }

    Model model{roles, [](const Row& row) { return std::to_string(row.pid); }, nullptr};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(RecordListModelTest, AnswersEachRoleByItsName) {
    model.set({{1, "näme", 0.75, {}}, {2, "b", 0.25, "kept"}});
    EXPECT_EQ(value(0, "name").toString(), QStringLiteral("näme"));
    EXPECT_EQ(value(0, "share").toDouble(), 0.75);
    EXPECT_EQ(value(0, "note").toString(), QString());
    EXPECT_EQ(value(0, "upper").toString(), QStringLiteral("näme!"));
    EXPECT_TRUE(value(0, "isHeavy").toBool());
    EXPECT_FALSE(value(1, "isHeavy").toBool());
    EXPECT_EQ(value(1, "note").toString(), QStringLiteral("kept"));
    EXPECT_FALSE(model.data(model.index(0), Qt::DisplayRole).isValid());
}

TEST_F(RecordListModelTest, TellsOnlyTheRolesThatChanged) {
    model.set({{1, "a", 0.1, {}}, {2, "b", 0.2, {}}});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.set({{1, "a", 0.1, {}}, {2, "b", 0.3, {}}});
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed[0][2].value<QList<int>>(), QList<int>{model.roleNames().key("share")});
}

TEST_F(RecordListModelTest, TellsNothingForTheSameRecords) {
    model.set({{1, "a", 0.1, {}}});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy counted(&model, &RecordModel::countChanged);
    QSignalSpy moved(&model, &QAbstractItemModel::rowsMoved);
    model.set({{1, "a", 0.1, {}}});
    EXPECT_TRUE(changed.isEmpty());
    EXPECT_TRUE(counted.isEmpty());
    EXPECT_TRUE(moved.isEmpty());
}

TEST_F(RecordListModelTest, KeepsARowThatMovesWithItsPersistentIndex) {
    model.set({{1, "a", 0, {}}, {2, "b", 0, {}}, {3, "c", 0, {}}});
    const QPersistentModelIndex first(model.index(0));
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.set({{2, "b", 0, {}}, {3, "c", 0, {}}, {1, "a", 0.9, {}}});
    EXPECT_EQ(first.row(), 2);
    EXPECT_TRUE(removed.isEmpty());
    EXPECT_EQ(value(2, "share").toDouble(), 0.9);
}

TEST_F(RecordListModelTest, CountsItsRowsAndTellsTheCount) {
    QSignalSpy counted(&model, &RecordModel::countChanged);
    model.set({{1, "a", 0, {}}, {2, "b", 0, {}}});
    EXPECT_EQ(model.count(), 2);
    model.set({{2, "b", 0, {}}, {3, "c", 0, {}}});
    EXPECT_EQ(counted.size(), 1);
    model.set({});
    EXPECT_EQ(model.count(), 0);
    EXPECT_EQ(counted.size(), 2);
}

}  // namespace
}  // namespace ravik::app

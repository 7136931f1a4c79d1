#include "App/Views/ListEdits.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

using Ids = std::vector<std::string>;
using Kind = ListEdit::Kind;

Ids applied(Ids list, const std::vector<ListEdit>& edits, const Ids& to) {
    for (const auto& edit : edits) {
        const auto at = list.begin() + std::ptrdiff_t(edit.at);
        if (edit.kind == Kind::remove) list.erase(at, at + std::ptrdiff_t(edit.count));
        if (edit.kind == Kind::insert) {
            const auto first = to.begin() + std::ptrdiff_t(edit.at);
            list.insert(at, first, first + std::ptrdiff_t(edit.count));
        }
        if (edit.kind == Kind::move) {
            const std::string row = *at;
            list.erase(at);
            list.insert(list.begin() + std::ptrdiff_t(edit.to), row);
        }
    }
    return list;
}

TEST(ListEdits, AreNoneForTheSameRows) { EXPECT_TRUE(listEdits({"a", "b"}, {"a", "b"}).empty()); }

TEST(ListEdits, RemoveAndInsertNeighboursTogether) {
    EXPECT_EQ(listEdits({"a", "b", "c", "d"}, {"a", "d"}), (std::vector<ListEdit>{{Kind::remove, 1, 2, 0}}));
    EXPECT_EQ(listEdits({"a", "d"}, {"a", "b", "c", "d"}), (std::vector<ListEdit>{{Kind::insert, 1, 2, 0}}));
}

TEST(ListEdits, MoveTheOneRowThatChangedItsPlace) {
    EXPECT_EQ(listEdits({"a", "b", "c", "d"}, {"b", "c", "d", "a"}), (std::vector<ListEdit>{{Kind::move, 0, 1, 3}}));
    EXPECT_EQ(listEdits({"a", "b", "c", "d"}, {"d", "a", "b", "c"}), (std::vector<ListEdit>{{Kind::move, 3, 1, 0}}));
}

TEST(ListEdits, CountAnIdThatStandsTwiceAsTwoRows) {
    EXPECT_EQ(listEdits({"a", "a"}, {"a"}), (std::vector<ListEdit>{{Kind::remove, 1, 1, 0}}));
    EXPECT_EQ(listEdits({"a"}, {"a", "a"}), (std::vector<ListEdit>{{Kind::insert, 1, 1, 0}}));
}

TEST(ListEdits, LeadFromAnyListToAnyOther) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Ids from, to;
        for (auto* list : {&from, &to}) {
            const auto size = random() % 9;
            for (unsigned i = 0; i < size; ++i) list->push_back(std::string(1, char('a' + random() % 12)));
        }
        ASSERT_EQ(applied(from, listEdits(from, to), to), to) << "round " << round;
    }
}

TEST(ListEdits, MoveNoRowTwice) {
    std::mt19937 random(11);
    Ids from{"a", "b", "c", "d", "e", "f", "g", "h"};
    for (int round = 0; round < 200; ++round) {
        Ids to = from;
        std::ranges::shuffle(to, random);
        ASSERT_LT(listEdits(from, to).size(), from.size());
        from = to;
    }
}

}  // namespace
}  // namespace ravik::app

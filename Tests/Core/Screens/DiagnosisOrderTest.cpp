#include "Core/Screens/DiagnosisOrder.h"

#include <gtest/gtest.h>

namespace ravik {

using DiagnosisOrder::Ids;

TEST(DiagnosisOrder, WhatStaysKeepsItsPlaceWhatGoesIsDroppedWhatComesStandsLast) {
    EXPECT_EQ(DiagnosisOrder::keep({"a", "b", "c"}, {"d", "c", "a"}), (Ids{"a", "c", "d"}));
    EXPECT_EQ(DiagnosisOrder::keep({}, {"b", "a"}), (Ids{"b", "a"}));
    EXPECT_EQ(DiagnosisOrder::keep({"a"}, {}), Ids{});
}

TEST(DiagnosisOrder, TheSelectionStaysWhileItsRowDoes) {
    EXPECT_EQ(DiagnosisOrder::survivor("b", {"a", "b"}, {"b", "a"}), "b");
    EXPECT_EQ(DiagnosisOrder::survivor({}, {"a", "b"}, {"b"}), std::nullopt);
}

TEST(DiagnosisOrder, TheSelectionOfARowThatGoesMovesToItsNeighbour) {
    EXPECT_EQ(DiagnosisOrder::survivor("b", {"a", "b", "c", "d"}, {"a", "c", "d"}), "c");
    EXPECT_EQ(DiagnosisOrder::survivor("b", {"a", "b", "c", "d"}, {"a", "d"}), "d");
    EXPECT_EQ(DiagnosisOrder::survivor("d", {"a", "b", "c", "d"}, {"a", "b"}), "b");
    EXPECT_EQ(DiagnosisOrder::survivor("a", {"a"}, {"x"}), std::nullopt);
}

TEST(DiagnosisOrder, AStepStopsAtTheEndsOrGoesRound) {
    const Ids ids{"a", "b", "c"};
    EXPECT_EQ(DiagnosisOrder::moved("a", ids, 1, false), "b");
    EXPECT_EQ(DiagnosisOrder::moved("c", ids, 1, false), "c");
    EXPECT_EQ(DiagnosisOrder::moved("a", ids, -1, false), "a");
    EXPECT_EQ(DiagnosisOrder::moved("c", ids, 1, true), "a");
    EXPECT_EQ(DiagnosisOrder::moved("a", ids, -1, true), "c");
}

TEST(DiagnosisOrder, TheFirstStepSelectsAnEnd) {
    EXPECT_EQ(DiagnosisOrder::moved({}, {"a", "b"}, 1, true), "a");
    EXPECT_EQ(DiagnosisOrder::moved({}, {"a", "b"}, -1, false), "b");
    EXPECT_EQ(DiagnosisOrder::moved({}, {}, 1, true), std::nullopt);
}

}  // namespace ravik

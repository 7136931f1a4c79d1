#include "App/Views/Placing.h"

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

const QSize panel(360, 500);
/// A screen with a bar of 32 at its top.
const QRect screen(0, 32, 1920, 1048);

TEST(Placing, CentresThePanelBeneathAnIconAtTheTop) {
    EXPECT_EQ(panelPlace(panel, {1000, 4, 24, 24}, {}, screen), QPoint(1011 - 180, 40));
}

TEST(Placing, PutsThePanelAboveAnIconAtTheBottom) {
    EXPECT_EQ(panelPlace(panel, {1000, 1052, 24, 24}, {}, {0, 0, 1920, 1048}), QPoint(1011 - 180, 1048 - 8 - 500));
}

TEST(Placing, KeepsThePanelOnTheScreenBesideAnIconInTheCorner) {
    EXPECT_EQ(panelPlace(panel, {1890, 4, 24, 24}, {}, screen), QPoint(1920 - 8 - 360, 40));
    EXPECT_EQ(panelPlace(panel, {2, 4, 24, 24}, {}, screen), QPoint(8, 40));
}

TEST(Placing, TakesThePointersCornerWhereTheIconIsUnknown) {
    EXPECT_EQ(panelPlace(panel, {}, {1900, 10}, screen), QPoint(1552, 40));
    EXPECT_EQ(panelPlace(panel, {}, {10, 1000}, screen), QPoint(8, 1080 - 8 - 500));
}

TEST(Placing, StaysOnASecondScreenLeftOfTheFirst) {
    EXPECT_EQ(panelPlace(panel, {-40, 0, 24, 24}, {}, {-1280, 0, 1280, 1024}), QPoint(-8 - 360, 32));
}

TEST(Placing, BeginsAtTheTopOfAScreenThatIsTooSmall) {
    EXPECT_EQ(panelPlace(panel, {100, 280, 24, 24}, {}, {0, 0, 320, 300}), QPoint(8, 8));
}

}  // namespace
}  // namespace ravik::app

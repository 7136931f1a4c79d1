#include <gmock/gmock.h>

#include <unistd.h>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::SizeIs;

class StatusItem : public DesktopCase, public testing::WithParamInterface<Tray> {};

INSTANTIATE_TEST_SUITE_P(Desktop, StatusItem, testing::Values(Tray::trayer, Tray::xfce),
                         [](const auto& tray) { return tray.param == Tray::trayer ? "InTrayer" : "InXfce"; });

TEST_P(StatusItem, OpensThePanelWithAClickAndClosesItWithASecond) {
    showTray(GetParam());
    startApp();
    const Area place = icon();
    EXPECT_THAT(windows(), SizeIs(0));
    for (int time = 1; time <= 2; ++time) {
        hands->click(place);
        ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }));
        EXPECT_EQ(windows().front().width, 360);
        EXPECT_TRUE(waitUntil([&] { return home.logLines("panel").size() == static_cast<std::size_t>(time); }));
        hands->click(place);
        EXPECT_TRUE(showsNoWindow());
        // A click that comes while the panel leaves only closes it.
        usleep(1'000'000);
    }
    EXPECT_THAT(home.logLines("panel"), SizeIs(2));
}

}  // namespace
}  // namespace ravik::endtoend

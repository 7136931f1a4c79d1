#include <gmock/gmock.h>

#include <gio/gio.h>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::turnUntil;

/// Counts what a status item tells its tray.
class Glyph : public DesktopCase {
protected:
    void SetUp() override {
        DesktopCase::SetUp();
        m_heard = g_dbus_connection_signal_subscribe(
            session->bus().connection(), nullptr, "org.kde.StatusNotifierItem", "NewIcon", nullptr, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer self) {
                ++static_cast<Glyph*>(self)->m_icons;
            },
            this, nullptr);
    }
    void TearDown() override {
        g_dbus_connection_signal_unsubscribe(session->bus().connection(), m_heard);
        DesktopCase::TearDown();
    }
    bool ticks(std::size_t count) {
        return turnUntil([&] { return home.logLines("tick").size() >= count; }, 40);
    }
    /// How often the icon was said to be new, all that has been sent until now included.
    int icons() {
        // What comes before the answer is in the queue once the answer is here.
        session->bus().owns("dev.tolvane.Ravik");
        while (g_main_context_iteration(nullptr, FALSE)) {}
        return m_icons;
    }

private:
    int m_icons = 0;
    guint m_heard = 0;
};

TEST_F(Glyph, ChangesOnlyWhenItsSymbolOrTitleDoes) {
    home.storeShortPatience();
    showTray(Tray::xfce);
    startApp({"TOLVANE_INTERVAL=0.5"});
    icon();
    ASSERT_TRUE(ticks(3));
    const int before = icons();
    ASSERT_TRUE(ticks(8));
    EXPECT_EQ(icons(), before);

    const Pid left = leave("project/server.js", 64);
    ASSERT_TRUE(turnUntil([&] { return icons() > before; }, 20));
    const int changed = icons();
    ASSERT_TRUE(ticks(home.logLines("tick").size() + 5));
    EXPECT_EQ(icons(), changed);

    reaper.end(left);
    EXPECT_TRUE(turnUntil([&] { return icons() > changed; }, 20));
}

}  // namespace
}  // namespace ravik::endtoend

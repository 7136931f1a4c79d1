#include <gmock/gmock.h>

#include <csignal>
#include <mutex>

#include <gio/gio.h>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;

class Instance : public DesktopCase {
protected:
    bool mainWindowOpens() {
        return waitUntil([&] { return windows().size() == 1 && windows().front().width == 960; }, 20);
    }
    std::vector<Json> sessions(const char* kind) const {
        std::vector<Json> found;
        for (const Json& line : home.logLines(kind)) found.push_back(line["session"]);
        return found;
    }
};

TEST_F(Instance, ASecondBringsUpTheFirstAndEnds) {
    showTray(Tray::trayer);
    startApp();
    icon();
    ASSERT_TRUE(logs("launch"));
    const Result second = Running(home, {}, "ravik-desktop").finish();
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_TRUE(mainWindowOpens());
    ASSERT_TRUE(logs("secondInstance"));
    EXPECT_EQ(home.logLines("secondInstance").at(0)["kept"], app->pid());
    EXPECT_THAT(home.logLines("launch"), SizeIs(1));
    // A third finds the window open and leaves it at that.
    EXPECT_EQ(Running(home, {"--open", "diagnosis"}, "ravik-desktop").finish().status, 0);
    EXPECT_TRUE(waitUntil([&] { return home.logLines("secondInstance").size() == 2; }));
    EXPECT_THAT(windows(), SizeIs(1));
    EXPECT_THAT(home.logLines("window"), SizeIs(1));
}

/// Overhears what the app is asked on the bus.
class Asked {
public:
    explicit Asked(const Bus& bus) : m_bus(bus) {
        bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "AddMatch",
                 g_variant_new("(s)", "eavesdrop=true,interface='org.freedesktop.Application'"));
        m_filter = g_dbus_connection_add_filter(bus.connection(), &Asked::hear, this, nullptr);
    }
    ~Asked() { g_dbus_connection_remove_filter(m_bus.connection(), m_filter); }
    Asked(const Asked&) = delete;
    Asked& operator=(const Asked&) = delete;

    std::string last() const {
        const std::lock_guard guard(m_lock);
        return m_last;
    }

private:
    /// On the connection's own thread.
    static GDBusMessage* hear(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer data) {
        const char* interface = g_dbus_message_get_interface(message);
        if (!incoming || !interface || std::string_view(interface) != "org.freedesktop.Application") return message;
        auto& self = *static_cast<Asked*>(data);
        char* text = g_variant_print(g_dbus_message_get_body(message), FALSE);
        const std::lock_guard guard(self.m_lock);
        self.m_last = text;
        g_free(text);
        return message;
    }

    const Bus& m_bus;
    guint m_filter = 0;
    mutable std::mutex m_lock;
    std::string m_last;
};

class Leave : public Instance, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Desktop, Leave, testing::Values("XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"),
                         [](const auto& variable) { return std::string(variable.param).substr(0, 3); });

TEST_P(Leave, OfASecondToComeToTheFrontGoesToTheFirst) {
    showTray(Tray::trayer);
    startApp();
    icon();
    ASSERT_TRUE(logs("launch"));
    const Asked asked(session->bus());
    home.add(std::string(GetParam()) + "=leave-1_TIME5");
    EXPECT_EQ(Running(home, {}, "ravik-desktop").finish().status, 0);
    EXPECT_TRUE(mainWindowOpens());
    EXPECT_TRUE(waitUntil([&] { return !asked.last().empty(); }));
    EXPECT_THAT(asked.last(), HasSubstr("'activation-token': <'leave-1_TIME5'>"));
}

TEST_F(Instance, IsBroughtUpFromATerminal) {
    showTray(Tray::trayer);
    startApp();
    icon();
    ASSERT_TRUE(logs("launch"));
    const Result open = run(home, {"open"});
    EXPECT_EQ(open.status, 0) << open.err;
    EXPECT_EQ(open.out + open.err, "");
    EXPECT_TRUE(mainWindowOpens());
    EXPECT_THAT(home.logLines("secondInstance"), SizeIs(0));
}

TEST_F(Instance, IsStartedFromATerminalWhereThereIsNone) {
    showTray(Tray::trayer);
    const Result open = run(home, {"open", "diagnosis"});
    EXPECT_EQ(open.status, 0) << open.err;
    const Pid started = find(RAVIK_BINARY_DIR "/bin/ravik-desktop --open diagnosis");
    EXPECT_TRUE(mainWindowOpens());
    EXPECT_THAT(home.logLines("launch"), SizeIs(1));
    // It is nobody's child any more, and ends as any other.
    const auto proc = platform::readProc(started);
    ASSERT_TRUE(proc);
    EXPECT_EQ(proc->ppid, 1);
    kill(started, SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return !lives(started); }, 20));
}

TEST_F(Instance, LeavesTheRecordToAWatchAndTakesOverAtItsEnd) {
    Running watch(home, {"watch", "--json", "--interval", "1"});
    ASSERT_TRUE(watch.says("\"takenAt\""));
    ASSERT_TRUE(logs("tick"));
    const Json watchs = home.logLines("tick").at(0)["session"];
    showTray(Tray::trayer);
    startApp({"TOLVANE_INTERVAL=0.5"});
    icon();
    // It shows what it reads itself.
    hands->click(icon());
    ASSERT_TRUE(shows([](const Accessible& windows) { return windows.findBeginning("label", "checked "); }));
    const std::size_t before = home.logLines("tick").size();
    ASSERT_TRUE(waitUntil([&] { return home.logLines("tick").size() >= before + 4; }, 20));
    EXPECT_THAT(sessions("tick"), Each(watchs));

    watch.signal(SIGTERM);
    ASSERT_EQ(watch.finish().status, 0);
    EXPECT_TRUE(waitUntil([&] { return sessions("tick").back() != watchs; }, 30));
    // And now a watch is told who watches.
    const Result late = run(home, {"watch"});
    EXPECT_EQ(late.status, 1);
    EXPECT_THAT(late.err, HasSubstr(std::to_string(app->pid())));
}

}  // namespace
}  // namespace ravik::endtoend

#include "Platform/Linux/SessionBus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Linux/DesktopWorkspace.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

/// A real program on a real bus.
class BusApplication : public OwnServer {
public:
    BusApplication(const OwnBus& bus, const std::string& kind, const std::string& name) {
        m_up =
            start({RAVIK_BINARY_DIR "/bin/ravik-test-bus-application", kind, name, "{fd}"}, {bus.variable()}) == "up";
    }
    bool isUp() const { return m_up; }

private:
    bool m_up = false;
};

struct Way {
    const char* kind;
    const char* name;
};

class QuitOverTheBus : public testing::TestWithParam<Way> {};

TEST_P(QuitOverTheBus, EndsTheApplication) {
    OwnBus bus;
    const BusApplication app(bus, GetParam().kind, GetParam().name);
    ASSERT_TRUE(app.isUp());
    EXPECT_TRUE(SessionBus(bus.address()).quit(app.pid()));
    EXPECT_TRUE(waitUntil([&] { return !readProc(app.pid()); }));
}

INSTANTIATE_TEST_SUITE_P(Ways, QuitOverTheBus,
                         testing::Values(Way{"action", "org.example.Photo-Viewer"},
                                         Way{"main", "org.example.mail-4711"},
                                         Way{"player", "org.mpris.MediaPlayer2.example"}));

class NoQuitOverTheBus : public testing::TestWithParam<Way> {};

TEST_P(NoQuitOverTheBus, LeavesTheApplicationAlone) {
    OwnBus bus;
    const BusApplication app(bus, GetParam().kind, GetParam().name);
    ASSERT_TRUE(app.isUp());
    EXPECT_FALSE(SessionBus(bus.address()).quit(app.pid()));
    EXPECT_FALSE(waitUntil([&] { return !readProc(app.pid()); }, 0.3));
}

INSTANTIATE_TEST_SUITE_P(Ways, NoQuitOverTheBus,
                         testing::Values(Way{"silent", "org.example.Daemon"},
                                         Way{"stubborn", "org.mpris.MediaPlayer2.example"},
                                         Way{"player", "org.example.NoPlayersName"}));

TEST(SessionBus, AsksOnlyTheProcessItIsGiven) {
    OwnBus bus;
    const BusApplication first(bus, "action", "org.example.First");
    const BusApplication second(bus, "action", "org.example.Second");
    SessionBus session(bus.address());
    EXPECT_TRUE(session.quit(second.pid()));
    EXPECT_TRUE(waitUntil([&] { return !readProc(second.pid()); }));
    EXPECT_TRUE(readProc(first.pid()));
    EXPECT_FALSE(session.quit(bus.pid()));
}

TEST(SessionBus, ListsPlayersAndNoDaemons) {
    OwnBus bus;
    const BusApplication player(bus, "player", "org.mpris.MediaPlayer2.example");
    const BusApplication daemon(bus, "silent", "org.example.NoDesktopEntry");
    const Pids found = SessionBus(bus.address()).applications();
    EXPECT_THAT(found, Contains(player.pid()));
    EXPECT_THAT(found, Not(Contains(daemon.pid())));
}

TEST(SessionBus, OutlivesTheBus) {
    OwnBus bus;
    SessionBus session(bus.address());
    bus.stop();
    EXPECT_THAT(session.applications(), IsEmpty());
    EXPECT_FALSE(session.quit(1));
}

TEST(SessionBus, MayBeMissing) {
    EXPECT_FALSE(SessionBus("").quit(1));
    EXPECT_FALSE(SessionBus("unix:path=/nowhere/bus").quit(1));
    EXPECT_THAT(SessionBus("no address").applications(), IsEmpty());
}

TEST(SessionBus, DerivesThePathOfTheActions) {
    EXPECT_EQ(actionsPath("org.gnome.Text-Editor"), "/org/gnome/Text_Editor");
}

TEST(DesktopWorkspace, AsksOverTheBusWhereThereIsNoWindow) {
    OwnBus bus;
    const BusApplication player(bus, "player", "org.mpris.MediaPlayer2.example");
    WorkspaceOptions options;
    options.groupOf = [](Pid) { return std::optional<std::string>("Player"); };
    const auto workspace = makeWorkspace(std::move(options), {.bus = bus.address()});
    const auto apps = workspace->running();
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].localizedName, "Player");
    EXPECT_FALSE(workspace->isTerminated(apps[0]));
    EXPECT_TRUE(workspace->terminate(apps[0]));
    EXPECT_TRUE(waitUntil([&] { return workspace->isTerminated(apps[0]); }));
}

}  // namespace
}  // namespace ravik::platform

#include "Platform/Linux/DesktopNotifier.h"

#include <mutex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Support/BusService.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* name = "org.freedesktop.Notifications";
constexpr const char* path = "/org/freedesktop/Notifications";

/// What a service was asked to show.
struct Shown {
    std::string application;
    std::uint32_t replaces = 0;
    std::string title;
    std::string body;
    std::vector<std::string> actions;
    std::string entry;
};

/// A notification service with the capabilities that it is given; its first id is 7.
class Service {
public:
    Service(const OwnBus& bus, std::vector<std::string> capabilities)
        : m_capabilities(std::move(capabilities)),
          m_service(bus.address(), name, [this](std::string_view method, GVariant* arguments) {
              const std::lock_guard guard(m_lock);
              return answer(method, arguments);
          }) {}

    std::vector<Shown> shown() const {
        const std::lock_guard guard(m_lock);
        return m_shown;
    }
    bool shows(std::size_t count) {
        return turnUntil([&] { return shown().size() == count; });
    }
    void press(std::uint32_t id, const char* action) const {
        m_service.emit(path, name, "ActionInvoked", g_variant_new("(us)", id, action));
    }
    void grant(std::uint32_t id, const char* token) const {
        m_service.emit(path, name, "ActivationToken", g_variant_new("(us)", id, token));
    }
    void close(std::uint32_t id) const {
        m_service.emit(path, name, "NotificationClosed", g_variant_new("(uu)", id, 2U));
    }

private:
    GVariant* answer(std::string_view method, GVariant* arguments) {
        if (method == "GetServerInformation") return g_variant_new("(ssss)", "test", "us", "1", "1.2");
        if (method == "GetCapabilities") {
            GVariantBuilder names;
            g_variant_builder_init(&names, G_VARIANT_TYPE("as"));
            for (const std::string& each : m_capabilities) g_variant_builder_add(&names, "s", each.c_str());
            return g_variant_new("(as)", &names);
        }
        if (method != "Notify") return nullptr;
        Shown shown;
        const char* application = nullptr;
        const char* icon = nullptr;
        const char* title = nullptr;
        const char* body = nullptr;
        gchar** actions = nullptr;
        GVariant* hints = nullptr;
        gint32 expires = 0;
        g_variant_get(arguments, "(&su&s&s&s^as@a{sv}i)", &application, &shown.replaces, &icon, &title, &body, &actions,
                      &hints, &expires);
        const char* entry = "";
        g_variant_lookup(hints, "desktop-entry", "&s", &entry);
        shown.application = application;
        shown.title = title;
        shown.body = body;
        shown.entry = entry;
        for (gchar** each = actions; *each; ++each) shown.actions.emplace_back(*each);
        g_strfreev(actions);
        g_variant_unref(hints);
        m_shown.push_back(shown);
        return g_variant_new("(u)", shown.replaces ? shown.replaces : m_next++);
    }

    mutable std::mutex m_lock;
    std::vector<std::string> m_capabilities;
    std::vector<Shown> m_shown;
    std::uint32_t m_next = 7;
    BusService m_service;
};

const Notification alert{"Memory is short", "Quit <b> & \"c\"", {{"free", "Free 1.2 GB…"}, {"show", "Show"}}};

}  // namespace

TEST(DesktopNotifier, AsksWhatTheServiceCan) {
    OwnBus bus;
    Service service(bus, {"body", "body-markup", "actions"});
    DesktopNotifier notifier(bus.address());
    notifier.post(alert);
    ASSERT_TRUE(service.shows(1));
    const Shown shown = service.shown()[0];
    EXPECT_EQ(shown.application, "Ravik");
    EXPECT_EQ(shown.entry, "dev.tolvane.Ravik");
    EXPECT_EQ(shown.title, "Memory is short");
    EXPECT_EQ(shown.body, "Quit &lt;b&gt; &amp; &quot;c&quot;");
    EXPECT_THAT(shown.actions, ElementsAre("default", "Show", "free", "Free 1.2 GB…", "show", "Show"));
}

TEST(DesktopNotifier, SendsPlainTextAndNoButtonsWhereThereAreNone) {
    OwnBus bus;
    Service service(bus, {"body"});
    DesktopNotifier notifier(bus.address());
    notifier.post(alert);
    ASSERT_TRUE(service.shows(1));
    EXPECT_EQ(service.shown()[0].body, alert.body);
    EXPECT_THAT(service.shown()[0].actions, IsEmpty());
}

TEST(DesktopNotifier, ReplacesTheOneThatStands) {
    OwnBus bus;
    Service service(bus, {"actions"});
    DesktopNotifier notifier(bus.address());
    for (const char* title : {"one", "two", "three"}) notifier.post({title, "", {}});
    ASSERT_TRUE(service.shows(2)) << "only the last of those that wait is still news";
    EXPECT_EQ(service.shown()[0].replaces, 0u);
    EXPECT_EQ(service.shown()[1].title, "three");
    EXPECT_EQ(service.shown()[1].replaces, 7u);
    service.close(7);
    turnUntil([] { return false; }, 0.1);
    notifier.post(alert);
    ASSERT_TRUE(service.shows(3));
    EXPECT_EQ(service.shown()[2].replaces, 0u);
}

TEST(DesktopNotifier, HandsTheButtonOnWithItsToken) {
    OwnBus bus;
    Service service(bus, {"actions"});
    DesktopNotifier notifier(bus.address());
    std::vector<std::string> pressed;
    notifier.onAction([&](const std::string& action) { pressed.push_back(action + "|" + notifier.activationToken()); });
    notifier.post(alert);
    ASSERT_TRUE(service.shows(1));
    turnUntil([] { return false; }, 0.1);
    service.press(8, "free");
    service.grant(8, "another's");
    service.grant(7, "leave");
    service.press(7, "default");
    service.press(7, "free");
    ASSERT_TRUE(turnUntil([&] { return pressed.size() == 2; }));
    EXPECT_THAT(pressed, ElementsAre("default|leave", "free|"));
    service.close(7);
    service.press(7, "show");
    EXPECT_FALSE(turnUntil([&] { return pressed.size() > 2; }, 0.2));
}

TEST(DesktopNotifier, LeavesAnotherServicesNotificationsAlone) {
    OwnBus bus;
    auto first = std::make_unique<Service>(bus, std::vector<std::string>{"actions"});
    DesktopNotifier notifier(bus.address());
    notifier.post(alert);
    ASSERT_TRUE(first->shows(1));
    turnUntil([] { return false; }, 0.1);
    first = nullptr;
    Service second(bus, {"actions"});
    turnUntil([] { return false; }, 0.1);
    notifier.post(alert);
    ASSERT_TRUE(second.shows(1));
    EXPECT_EQ(second.shown()[0].replaces, 0u);
}

TEST(DesktopNotifier, IsDeniedWithoutAServiceOrByTheSwitch) {
    OwnBus bus;
    std::optional<bool> denied;
    const auto answer = [&](bool is) { denied = is; };
    DesktopNotifier without(bus.address());
    without.queryDenied(answer);
    ASSERT_TRUE(turnUntil([&] { return denied.has_value(); }));
    EXPECT_EQ(std::exchange(denied, {}), true);
    DesktopNotifier("").queryDenied(answer);
    EXPECT_EQ(std::exchange(denied, {}), true);

    Service service(bus, {});
    bool off = false;
    DesktopNotifier notifier(bus.address(), [&] { return off; });
    for (const bool is : {false, true}) {
        off = is;
        notifier.queryDenied(answer);
        ASSERT_TRUE(turnUntil([&] { return denied.has_value(); }));
        EXPECT_EQ(std::exchange(denied, {}), is);
    }
}

TEST(DesktopNotifier, OutlivesTheBusAndItsOwnQuestions) {
    OwnBus bus;
    Service service(bus, {"actions"});
    {
        DesktopNotifier gone(bus.address());
        gone.post(alert);
    }
    DesktopNotifier notifier(bus.address());
    notifier.post(alert);
    bus.stop();
    std::optional<bool> denied;
    notifier.queryDenied([&](bool is) { denied = is; });
    EXPECT_TRUE(turnUntil([&] { return denied == true; }));
    notifier.post(alert);
}

TEST(NotificationSwitch, ReadsPlasmasFile) {
    EXPECT_TRUE(isOffInPlasma("[Applications][dev.tolvane.Ravik]\nSeen=true\nShowPopups=false\nShowInHistory=false\n"));
    EXPECT_FALSE(isOffInPlasma("[Applications][dev.tolvane.Ravik]\nShowPopups=false\n"));
    EXPECT_FALSE(isOffInPlasma("[Applications][org.example]\nShowPopups=false\nShowInHistory=false\n"));
    EXPECT_FALSE(isOffInPlasma("[Applications][dev.tolvane.Ravik]\n[Other]\nShowPopups=false\nShowInHistory=false"));
    EXPECT_FALSE(isOffInPlasma(""));
}

TEST(NotificationSwitch, IsTheDesktopsOfThisSession) {
    fakes::TemporaryFolder folder;
    folder.write("plasmanotifyrc", "[Applications][dev.tolvane.Ravik]\nShowPopups=false\nShowInHistory=false\n");
    EXPECT_TRUE(notificationSwitch("KDE", folder.path())());
    EXPECT_FALSE(notificationSwitch("KDE", folder.path() / "none")());
    EXPECT_FALSE(notificationSwitch("XFCE", folder.path()));
    EXPECT_FALSE(notificationSwitch("", folder.path()));
}

/// The daemon that many desktops without one of their own run.
TEST(DesktopNotifier, IsShownByARealDaemon) {
    OwnBus bus;
    OwnXServer server;
    Reaper reaper;
    fakes::TemporaryFolder home;
    reaper.add(startProgram({"dunst"}, {bus.variable(), server.variable(), "HOME=" + home.path().native(),
                                        "XDG_CONFIG_HOME=" + home.path().native()}));
    DesktopNotifier notifier(bus.address());
    bool there = false;
    ASSERT_TRUE(waitUntil([&] {
        std::optional<bool> denied;
        notifier.queryDenied([&](bool is) { denied = is; });
        turnUntil([&] { return denied.has_value(); });
        return there = denied == false;
    }));
    std::string pressed;
    notifier.onAction([&](const std::string& action) { pressed = action; });
    notifier.post(alert);
    notifier.post({"Second", "", {{"show", "Show"}}});

    GDBusConnection* asking = g_dbus_connection_new_for_address_sync(
        bus.address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    ASSERT_TRUE(asking);
    const auto displayed = [&] {
        GVariant* answer =
            g_dbus_connection_call_sync(asking, name, path, "org.freedesktop.DBus.Properties", "Get",
                                        g_variant_new("(ss)", "org.dunstproject.cmd0", "displayedLength"),
                                        G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
        guint32 count = 0;
        if (!answer) return count;
        GVariant* boxed = nullptr;
        g_variant_get(answer, "(v)", &boxed);
        count = g_variant_get_uint32(boxed);
        g_variant_unref(boxed);
        g_variant_unref(answer);
        return count;
    };
    EXPECT_TRUE(turnUntil([&] { return displayed() == 1; }));
    EXPECT_FALSE(turnUntil([&] { return displayed() > 1; }, 0.5)) << "the second takes the place of the first";
    GVariant* done =
        g_dbus_connection_call_sync(asking, name, path, "org.dunstproject.cmd0", "NotificationAction",
                                    g_variant_new("(u)", 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
    if (done) g_variant_unref(done);
    EXPECT_TRUE(turnUntil([&] { return pressed == "default"; })) << pressed;
    g_object_unref(asking);
}

}  // namespace ravik::platform

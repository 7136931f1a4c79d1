#include "Platform/Linux/DesktopAppearance.h"

#include <gtest/gtest.h>

#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/XConnection.h"
#include "Tests/Platform/Support/BusService.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/XSettingsBytes.h"

namespace ravik::platform {
namespace {

/// What a settings portal answers: the text of an "a{sa{sv}}".
class Portal : public BusService {
public:
    Portal(const OwnBus& bus, const std::string& settings)
        : BusService(bus.address(), "org.freedesktop.portal.Desktop", [settings](std::string_view method, GVariant*) {
              if (method != "ReadAll") return static_cast<GVariant*>(nullptr);
              return g_variant_new_parsed(("(@a{sa{sv}} " + settings + ",)").c_str());
          }) {}

    void change(const char* space, const char* key, GVariant* value) const {
        emit("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged",
             g_variant_new("(ssv)", space, key, value));
    }
};

/// The XSETTINGS manager of a display.
class Manager {
public:
    explicit Manager(const OwnXServer& server) : m_x(XConnection::open(server.display())), m_window(0) {
        m_window = xcb_generate_id(m_x->get());
        xcb_create_window(m_x->get(), 0, m_window, m_x->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
    }
    void set(const XSettingsBytes& settings) {
        const std::string bytes = settings.bytes();
        xcb_change_property(m_x->get(), XCB_PROP_MODE_REPLACE, m_window, atom("_XSETTINGS_SETTINGS"),
                            atom("_XSETTINGS_SETTINGS"), 8, static_cast<std::uint32_t>(bytes.size()), bytes.data());
        sync();
    }
    void manage() {
        const xcb_atom_t selection = atom("_XSETTINGS_S0");
        xcb_set_selection_owner(m_x->get(), m_window, selection, XCB_CURRENT_TIME);
        xcb_client_message_event_t told{};
        told.response_type = XCB_CLIENT_MESSAGE;
        told.format = 32;
        told.window = m_x->root();
        told.type = atom("MANAGER");
        told.data.data32[1] = selection;
        told.data.data32[2] = m_window;
        xcb_send_event(m_x->get(), 0, m_x->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&told));
        sync();
    }

private:
    xcb_atom_t atom(const std::string& name) {
        const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_x->get(), xcb_intern_atom(m_x->get(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
        return reply->atom;
    }
    void sync() {
        const XReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(m_x->get(), xcb_get_input_focus(m_x->get()), nullptr));
    }

    std::unique_ptr<XConnection> m_x;
    xcb_window_t m_window;
};

/// Follows the appearance and counts what it hears.
struct Follower {
    explicit Follower(AppearanceOptions options) : appearance(std::move(options)) {
        appearance.onChange([this](const Look& look) {
            last = look;
            ++changes;
        });
    }
    bool becomes(const Look& look) {
        return turnUntil([&] { return appearance.look() == look; });
    }

    DesktopAppearance appearance;
    Look last;
    int changes = 0;
};

XSettingsBytes settings(const std::string& theme, int dpi) {
    XSettingsBytes bytes(false);
    bytes.text("Net/ThemeName", theme).number("Xft/DPI", dpi * 1024);
    return bytes;
}

}  // namespace

TEST(DesktopAppearance, KnowsNothingWithoutADesktop) {
    for (const char* bus : {"", "unix:path=/nowhere/bus"}) {
        EXPECT_EQ(DesktopAppearance({bus, ":4711"}).look(), Look{}) << bus;
    }
}

TEST(SettingsPortal, TellsWhatItIsAsked) {
    OwnBus bus;
    const Portal portal(bus,
                        "{'org.freedesktop.appearance': {'color-scheme': <uint32 1>, 'contrast': <uint32 1>},"
                        " 'org.gnome.desktop.interface': {'enable-animations': <false>,"
                        " 'text-scaling-factor': <1.25>, 'gtk-theme': <'Adwaita'>}}");
    ASSERT_TRUE(portal.isUp());
    EXPECT_EQ(DesktopAppearance({bus.address(), ""}).look(), (Look{ColorScheme::dark, true, true, 1.25}));
}

TEST(SettingsPortal, UnwrapsWhatIsWrappedTwiceAndPassesOverOtherTypes) {
    OwnBus bus;
    const Portal portal(bus,
                        "{'org.freedesktop.appearance': {'color-scheme': <<uint32 2>>, 'contrast': <'much'>},"
                        " 'org.gnome.desktop.interface': {'text-scaling-factor': <uint32 2>},"
                        " 'org.kde.kdeglobals.KDE': {'AnimationDurationFactor': <'0'>}}");
    EXPECT_EQ(DesktopAppearance({bus.address(), ""}).look(), (Look{ColorScheme::light, {}, true, {}}));
}

TEST(SettingsPortal, IsFollowed) {
    OwnBus bus;
    const Portal portal(bus, "{'org.freedesktop.appearance': {'color-scheme': <uint32 2>}}");
    Follower follower({bus.address(), ""});
    EXPECT_EQ(follower.appearance.look(), (Look{ColorScheme::light, {}, {}, {}}));
    portal.change("org.freedesktop.appearance", "color-scheme", g_variant_new_uint32(1));
    EXPECT_TRUE(follower.becomes({ColorScheme::dark, {}, {}, {}}));
    EXPECT_EQ(follower.changes, 1);
    EXPECT_EQ(follower.last, (Look{ColorScheme::dark, {}, {}, {}}));
    portal.change("org.gnome.desktop.interface", "font-name", g_variant_new_string("Sans 10"));
    portal.change("org.gnome.desktop.interface", "enable-animations", g_variant_new_boolean(TRUE));
    EXPECT_TRUE(follower.becomes({ColorScheme::dark, {}, false, {}}));
    EXPECT_EQ(follower.changes, 2) << "a setting of no meaning here is no change";
}

TEST(SettingsPortal, MayComeLateAndGo) {
    OwnBus bus;
    auto portal = std::unique_ptr<SettingsPortal>();
    int changes = 0;
    portal = SettingsPortal::open(bus.address(), [&] { ++changes; });
    ASSERT_TRUE(portal);
    EXPECT_FALSE(portal->answers());
    auto service = std::make_unique<Portal>(bus, "{'org.freedesktop.appearance': {'color-scheme': <uint32 1>}}");
    EXPECT_TRUE(turnUntil([&] { return portal->look().scheme == ColorScheme::dark; }));
    EXPECT_EQ(changes, 1);
    service = nullptr;
    EXPECT_TRUE(turnUntil([&] { return !portal->answers(); }));
    EXPECT_EQ(portal->look().scheme, ColorScheme::dark) << "nothing has said otherwise";
    service = std::make_unique<Portal>(bus, "{'org.freedesktop.appearance': {'color-scheme': <uint32 2>}}");
    EXPECT_TRUE(turnUntil([&] { return portal->look().scheme == ColorScheme::light; }));
}

TEST(SettingsPortal, OutlivesTheBus) {
    OwnBus bus;
    const Portal portal(bus, "{'org.freedesktop.appearance': {'color-scheme': <uint32 1>}}");
    Follower follower({bus.address(), ""});
    bus.stop();
    EXPECT_FALSE(turnUntil([&] { return follower.changes > 0; }, 0.2));
}

TEST(XSettings, AreReadAndFollowed) {
    OwnXServer server;
    ASSERT_FALSE(server.display().empty());
    Manager manager(server);
    manager.set(settings("Arc-Dark", 144));
    manager.manage();
    Follower follower({"", server.display()});
    EXPECT_EQ(follower.appearance.look(), (Look{ColorScheme::dark, false, {}, 1.5}));
    manager.set(settings("HighContrast", 96));
    EXPECT_TRUE(follower.becomes({{}, true, {}, 1.0}));
    EXPECT_EQ(follower.changes, 1);
    manager.set(settings("HighContrast", 96));
    EXPECT_FALSE(turnUntil([&] { return follower.changes > 1; }, 0.2));
}

TEST(XSettings, ManagerMayComeGoAndBeReplaced) {
    OwnXServer server;
    Follower follower({"", server.display()});
    EXPECT_EQ(follower.appearance.look(), Look{});
    auto first = std::make_unique<Manager>(server);
    first->set(settings("Arc-Dark", 96));
    first->manage();
    EXPECT_TRUE(follower.becomes({ColorScheme::dark, false, {}, 1.0}));
    first = nullptr;
    EXPECT_TRUE(follower.becomes({}));
    Manager second(server);
    second.set(settings("Arc", 192));
    second.manage();
    EXPECT_TRUE(follower.becomes({{}, false, {}, 2.0}));
}

TEST(XSettings, PortalGoesFirstAndGnomesOwnLast) {
    OwnBus bus;
    OwnXServer server;
    const Portal portal(bus,
                        "{'org.freedesktop.appearance': {'color-scheme': <uint32 2>},"
                        " 'org.gnome.desktop.interface': {'text-scaling-factor': <1.0>, 'enable-animations': <true>}}");
    Manager manager(server);
    manager.set(settings("Arc-Dark", 144));
    manager.manage();
    EXPECT_EQ(DesktopAppearance({bus.address(), server.display()}).look(),
              (Look{ColorScheme::light, false, false, 1.5}));
}

TEST(XSettings, OutliveTheServer) {
    OwnXServer server;
    Follower follower({"", server.display()});
    server.stop();
    EXPECT_FALSE(turnUntil([&] { return follower.changes > 0; }, 0.3));
    EXPECT_EQ(follower.appearance.look(), Look{});
}

/// GNOME's settings in a store of a program's own.
struct DesktopSchemas : ::testing::Test {
    void install(const std::string& keys) {
        folder.write("share/glib-2.0/schemas/test.gschema.xml",
                     "<schemalist><schema id='org.gnome.desktop.interface' path='/org/gnome/desktop/interface/'>" +
                         keys + "</schema></schemalist>");
        const Pid pid =
            reaper.add(startProgram({"glib-compile-schemas", (folder.path() / "share/glib-2.0/schemas").native()}));
        waitUntil([&] { return !readProc(pid); });
    }
    void store(const std::string& values) {
        folder.write("config/glib-2.0/settings/keyfile", "[org/gnome/desktop/interface]\n" + values);
    }
    void follow() {
        reaper.add(startProgram({RAVIK_BINARY_DIR "/bin/ravik-test-look", (folder.path() / "looks").native()},
                                {bus.variable(), "GSETTINGS_BACKEND=keyfile",
                                 "GSETTINGS_SCHEMA_DIR=", "XDG_CONFIG_HOME=" + (folder.path() / "config").native(),
                                 "XDG_DATA_HOME=" + (folder.path() / "none").native(),
                                 "XDG_DATA_DIRS=" + (folder.path() / "share").native()}));
    }
    bool shows(const std::string& looks) {
        return waitUntil([&] { return readFile((folder.path() / "looks").native()) == looks; });
    }
    std::string shown() const { return readFile((folder.path() / "looks").native()).value_or(""); }

    fakes::TemporaryFolder folder;
    OwnBus bus;
    Reaper reaper;
};

TEST_F(DesktopSchemas, AreReadAndFollowedWhereThereIsNoPortal) {
    install(
        "<key name='gtk-theme' type='s'><default>'Adwaita'</default></key>"
        "<key name='color-scheme' type='s'><default>'default'</default></key>"
        "<key name='enable-animations' type='b'><default>true</default></key>"
        "<key name='text-scaling-factor' type='d'><default>1.0</default></key>");
    store("gtk-theme='Adwaita-dark'\n");
    follow();
    EXPECT_TRUE(shows("dark no no 1\n")) << shown();
    store("color-scheme='prefer-light'\nenable-animations=false\ntext-scaling-factor=1.5\n");
    EXPECT_TRUE(waitUntil([&] { return shown().ends_with("light no yes 1.5\n"); })) << shown();
}

TEST_F(DesktopSchemas, OldSchemaTellsWhatItHas) {
    install("<key name='gtk-theme' type='s'><default>'HighContrast'</default></key>");
    follow();
    EXPECT_TRUE(shows("? yes ? ?\n")) << shown();
}

TEST_F(DesktopSchemas, MissingSchemaTellsNothing) {
    follow();
    EXPECT_TRUE(shows("? ? ? ?\n")) << shown();
}

}  // namespace ravik::platform

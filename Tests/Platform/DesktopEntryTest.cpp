#include "Platform/Linux/DesktopEntry.h"

#include <gtest/gtest.h>

#include "Platform/Linux/ApplicationUnit.h"

namespace ravik::platform {

namespace {

using Words = std::vector<std::string>;

constexpr std::string_view firefox = R"([Desktop Entry]
Version=1.0
Name=Firefox
Name[de]=Feuerfuchs
# a comment
Comment=Browse the Web
Exec=firefox %u
TryExec=/usr/bin/firefox
Type=Application
Categories=Network;WebBrowser;

[Desktop Action new-window]
Name=New Window
Exec=firefox --new-window %u
)";

}  // namespace

TEST(ApplicationUnit, ScopesNameTheirApplicationBeforeTheLastPart) {
    EXPECT_EQ(applicationIds("app-gnome-org.gnome.Nautilus-4242.scope").front(), "org.gnome.Nautilus");
    EXPECT_EQ(applicationIds("app-org.kde.kate-8c1f.scope"), Words{"org.kde.kate"});
    EXPECT_EQ(applicationIds("app-flatpak-org.mozilla.firefox-3211.scope").front(), "org.mozilla.firefox");
}

TEST(ApplicationUnit, EscapesAreResolvedAfterTheSplit) {
    EXPECT_EQ(applicationIds(R"(app-gnome-google\x2dchrome-991.scope)").front(), "google-chrome");
    EXPECT_EQ(applicationIds(R"(app-caf\xc3\xa9-1.scope)"), Words{"caf\xC3\xA9"});
    EXPECT_EQ(unescapeUnit(R"(a\x2db\x)"), R"(a-b\x)");
    EXPECT_EQ(unescapeUnit(R"(\xzz\x2)"), R"(\xzz\x2)");
}

TEST(ApplicationUnit, ADashThatWasNotEscapedIsTriedAfterwards) {
    EXPECT_EQ(applicationIds("app-google-chrome-991.scope"), (Words{"chrome", "google-chrome"}));
}

TEST(ApplicationUnit, ServicesNameTheirApplicationLast) {
    EXPECT_EQ(applicationIds("app-org.kde.konsole@0b12.service"), Words{"org.kde.konsole"});
    EXPECT_EQ(applicationIds(R"(app-gnome-org.gnome.Evolution\x2dalarm@autostart.service)").front(),
              "org.gnome.Evolution-alarm");
    EXPECT_EQ(applicationIds("app-firefox.service"), Words{"firefox"});
}

TEST(ApplicationUnit, SnapsArePackageAndApp) {
    EXPECT_EQ(applicationIds("snap.firefox.firefox-3f0c2a52-6a0b-4d9e-9f0e-0a1b2c3d4e5f.scope"),
              Words{"firefox_firefox"});
    EXPECT_EQ(applicationIds("snap.code-insiders.url-handler.3f0c2a52-6a0b-4d9e-9f0e-0a1b2c3d4e5f.scope"),
              Words{"code-insiders_url-handler"});
    EXPECT_TRUE(applicationIds("snap.lxd.hook.configure-3f0c2a52-6a0b-4d9e-9f0e-0a1b2c3d4e5f.scope").empty());
    EXPECT_TRUE(applicationIds("snap.lxd.daemon.service").empty());
}

TEST(ApplicationUnit, OtherUnitsNameNone) {
    for (const auto* unit : {"", "session-2.scope", "user@1000.service", "app-.scope", "app-1.scope", "app.slice",
                             "dbus.service", "vte-spawn-1.scope", "app-x.slice"}) {
        EXPECT_TRUE(applicationIds(unit).empty()) << unit;
    }
}

TEST(DesktopEntry, ReadsItsOwnGroupInNoLanguage) {
    const auto entry = parseDesktopEntry(firefox, "firefox");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->id, "firefox");
    EXPECT_EQ(entry->name, "Firefox");
    EXPECT_EQ(entry->exec, "firefox %u");
    EXPECT_EQ(entry->tryExec, "/usr/bin/firefox");
    EXPECT_EQ(entry->categories, (Words{"Network", "WebBrowser"}));
    EXPECT_TRUE(entry->isDisplayed);
    EXPECT_FALSE(entry->isTypedIn());
}

TEST(DesktopEntry, TerminalsAndEditorsAreTypedIn) {
    const auto withCategories = [](std::string_view list) {
        return parseDesktopEntry("[Desktop Entry]\nType=Application\nName=X\nCategories=" + std::string(list), "x");
    };
    EXPECT_TRUE(withCategories("System;TerminalEmulator;")->isTypedIn());
    EXPECT_TRUE(withCategories("System;TerminalEmulator;")->isTerminal());
    EXPECT_TRUE(withCategories("Utility;TextEditor")->isTypedIn());
    EXPECT_TRUE(withCategories("Development;IDE;")->isTypedIn());
    EXPECT_FALSE(withCategories("Development;IDE;")->isTerminal());
    EXPECT_FALSE(withCategories("Development;")->isTypedIn());
}

TEST(DesktopEntry, EndsOfLinesAndEscapesAreNoMatter) {
    const auto entry =
        parseDesktopEntry("[Desktop Entry]\r\nType = Application\r\nName= A\\sB\\\\C \r\nNoDisplay=true", "x");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "A B\\C");
    EXPECT_FALSE(entry->isDisplayed);
}

TEST(DesktopEntry, WhatIsNoNamedApplicationIsNone) {
    EXPECT_FALSE(parseDesktopEntry("", "x"));
    EXPECT_FALSE(parseDesktopEntry("Type=Application\nName=X\n", "x"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=X\n", "x"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\nExec=x\n", "x"));
}

TEST(DesktopEntry, AHiddenOneIsKeptToHideOthers) {
    const auto entry = parseDesktopEntry("[Desktop Entry]\nHidden=true\n", "x");
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->isHidden);
}

TEST(ExecLine, SplitsAtBlanksOutsideQuotes) {
    EXPECT_EQ(splitExec(R"(  "/opt/My App/run"  --title="A \"B\"" plain\ one )"),
              (Words{"/opt/My App/run", R"(--title=A "B")", "plain one"}));
    EXPECT_EQ(splitExec(R"(run "")"), (Words{"run", ""}));
    EXPECT_TRUE(splitExec("").empty());
}

TEST(ExecLine, DropsTheCodesButNotThePerCentSign) {
    EXPECT_EQ(splitExec("run %U --at=%%5 %f %"), (Words{"run", "--at=%5", "%"}));
}

TEST(LaunchTarget, StripsEnvAndVariables) {
    const LaunchTarget target = launchTarget("env -u LANG BAMF_HINT=/x/y.desktop /snap/bin/firefox --no-remote %u");
    EXPECT_EQ(target.program, "/snap/bin/firefox");
    EXPECT_EQ(target.arguments, Words{"--no-remote"});
    EXPECT_EQ(launchTarget("GDK_BACKEND=x11 tool").program, "tool");
    EXPECT_EQ(launchTarget("/usr/bin/env").program, "");
    EXPECT_EQ(launchTarget("").program, "");
}

TEST(LaunchTarget, FindsTheScriptOfAnInterpreter) {
    const LaunchTarget target = launchTarget("python3 -s /usr/share/tool/tool.py --gui %F");
    EXPECT_EQ(target.program, "python3");
    EXPECT_EQ(target.script, "/usr/share/tool/tool.py");
    EXPECT_EQ(launchTarget(R"(sh -c "cd /x && ./y")").script, "");
}

TEST(LaunchTarget, FindsTheFlatpakAndItsCommand) {
    const LaunchTarget target = launchTarget(
        "/usr/bin/flatpak run --branch=stable --arch=x86_64 --command=gimp-2.10 --file-forwarding org.gimp.GIMP @@u %U @@");
    EXPECT_EQ(target.program, "");
    EXPECT_EQ(target.flatpak, "org.gimp.GIMP");
    EXPECT_EQ(target.flatpakCommand, "gimp-2.10");
}

}  // namespace ravik::platform

#include "Platform/Linux/AutostartEntry.h"

#include <gtest/gtest.h>

#include "Platform/Linux/DesktopEntry.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* own = "home/autostart/dev.tolvane.Ravik.desktop";
constexpr const char* system = "etc/autostart/dev.tolvane.Ravik.desktop";
constexpr const char* enabled = "[Desktop Entry]\nType=Application\nName=Ravik\nExec=ravik-desktop\n";

struct AutostartEntries : ::testing::Test {
    AutostartEntry entry() {
        return {{folder.path() / "home", folder.path() / "etc"}, [this] { return program; }};
    }
    std::string text() const { return readFile((folder.path() / own).native()).value_or("none"); }

    fakes::TemporaryFolder folder;
    std::optional<fs::path> program = "/opt/Ravik 100%/bin/ravik-desktop";
};

}  // namespace

TEST_F(AutostartEntries, IsOffUntilItIsTurnedOn) {
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_EQ(entry().setEnabled(false), std::nullopt);
    EXPECT_EQ(text(), "none");
    EXPECT_EQ(entry().setEnabled(true), std::nullopt);
    EXPECT_TRUE(entry().isEnabled());
    EXPECT_EQ(text(),
              "[Desktop Entry]\nType=Application\nName=Ravik\nIcon=dev.tolvane.Ravik\n"
              "Exec=\"/opt/Ravik 100%%/bin/ravik-desktop\"\n");
    EXPECT_EQ(launchTarget(parseDesktopEntry(text(), "dev.tolvane.Ravik")->exec).program, program->native());
    EXPECT_EQ(entry().setEnabled(false), std::nullopt);
    EXPECT_EQ(text(), "none");
}

TEST_F(AutostartEntries, SystemsEntryIsHiddenAndShownAgain) {
    folder.write(system, enabled);
    EXPECT_TRUE(entry().isEnabled());
    EXPECT_EQ(entry().setEnabled(false), std::nullopt);
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_NE(text().find("\nHidden=true\n"), std::string::npos) << text();
    EXPECT_EQ(entry().setEnabled(true), std::nullopt);
    EXPECT_TRUE(entry().isEnabled());
    EXPECT_EQ(text().find("Hidden"), std::string::npos) << text();
}

TEST_F(AutostartEntries, HonoursTheSwitchesOfDesktops) {
    for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        folder.write(own, std::string(enabled) + off);
        folder.write(system, enabled);
        EXPECT_FALSE(entry().isEnabled()) << off;
        EXPECT_EQ(entry().setEnabled(true), std::nullopt);
        EXPECT_TRUE(entry().isEnabled()) << text();
    }
    folder.write(own, std::string(enabled) + "Hidden=false\nX-GNOME-Autostart-enabled=true\n");
    EXPECT_TRUE(entry().isEnabled());
}

TEST_F(AutostartEntries, KeepsWhatElseTheUserWrote) {
    folder.write(own,
                 "# mine\n\n[Desktop Entry]\nType=Application\nName=Ravik\nName[de]=Ravik!\nExec=old\n"
                 "X-KDE-autostart-after=panel\nHidden=true\n");
    EXPECT_EQ(entry().setEnabled(true), std::nullopt);
    EXPECT_EQ(text(),
              "# mine\n\n[Desktop Entry]\nType=Application\nName=Ravik\nName[de]=Ravik!\n"
              "Exec=\"/opt/Ravik 100%%/bin/ravik-desktop\"\nX-KDE-autostart-after=panel\n");
}

TEST_F(AutostartEntries, AFileThatIsNoEntryIsOff) {
    folder.write(own, "no entry");
    EXPECT_FALSE(entry().isEnabled());
    EXPECT_EQ(entry().setEnabled(true), std::nullopt);
    EXPECT_TRUE(entry().isEnabled());
}

TEST_F(AutostartEntries, SaysWhyItCouldNot) {
    folder.write("home", "a file in the folder's place");
    const std::string folderName = (folder.path() / "home" / "autostart").native();
    EXPECT_EQ(entry().setEnabled(true), folderName + " cannot be made: Not a directory.");
    program.reset();
    EXPECT_EQ(entry().setEnabled(true), "The desktop app, ravik-desktop, is not installed.");
    EXPECT_FALSE(entry().isEnabled());
}

TEST(ConfigFolders, FollowTheEnvironment) {
    const auto folders = [](std::string home, std::string dirs) {
        return configFolders([&](const char* name) { return std::string(name) == "XDG_CONFIG_HOME" ? home : dirs; },
                             "/home/a");
    };
    EXPECT_EQ(folders("", ""), (std::vector<fs::path>{"/home/a/.config", "/etc/xdg"}));
    EXPECT_EQ(folders("relative", "/a:relative::/b"), (std::vector<fs::path>{"/home/a/.config", "/a", "/b"}));
    EXPECT_EQ(folders("/c", "/a"), (std::vector<fs::path>{"/c", "/a"}));
}

}  // namespace ravik::platform

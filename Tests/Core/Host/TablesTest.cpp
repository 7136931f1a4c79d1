#include <algorithm>

#include <gtest/gtest.h>

#include "Core/Host/Host.h"

namespace ravik {

TEST(HostTables, MacHoldsTwentyFiveGroupsThatNoRuleTouches) {
    EXPECT_EQ(macTables().engineProtected.size(), 25u);
    EXPECT_TRUE(macTables().engineProtected.contains("Keychain Access"));
}

TEST(HostTables, LinuxAddsToWhatEveryHostHas) {
    const HostTables& mac = macTables();
    const HostTables& linux = linuxTables();
    for (const auto& [name, reason] : mac.neverNames) EXPECT_EQ(linux.neverNames.at(name), reason);
    for (const auto name : mac.browsers) EXPECT_TRUE(linux.browsers.contains(name)) << name;
    for (const auto name : mac.engineProtected) EXPECT_TRUE(linux.engineProtected.contains(name)) << name;
    for (const auto prefix : mac.installedPrefixes) {
        EXPECT_NE(std::ranges::find(linux.installedPrefixes, prefix), linux.installedPrefixes.end()) << prefix;
    }
    EXPECT_EQ(linux.vmMarkers.size(), mac.vmMarkers.size() + 7);
    for (const auto& [name, reason] : linux.neverNames) EXPECT_FALSE(reason.empty()) << name;
}

TEST(HostTables, LinuxProtectsItsDesktop) {
    for (const char* name : {"GNOME Shell", "gnome-shell", "plasmashell", "Files", "Dolphin", "Console", "Konsole",
                             "Zed", "Kate", "VLC media player", "Zoom", "KeePassXC", "Ravik"}) {
        EXPECT_TRUE(linuxTables().engineProtected.contains(name)) << name;
    }
}

TEST(HostTables, IndexersAreTheHostsOwn) {
    EXPECT_TRUE(macTables().indexers.contains("mds_stores"));
    EXPECT_FALSE(linuxTables().indexers.contains("mds_stores"));
    EXPECT_TRUE(linuxTables().indexers.contains("baloo_file_extractor"));
    EXPECT_EQ(linuxTables().indexers.size(), 7u);
}

}  // namespace ravik

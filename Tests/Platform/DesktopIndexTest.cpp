#include "Platform/Linux/DesktopIndex.h"

#include <map>

#include <gtest/gtest.h>

namespace ravik::platform {

namespace {

struct DesktopIndexTest : testing::Test {
    void add(const std::string& id, const std::string& name, const std::string& exec, const std::string& more = "") {
        index.add(
            *parseDesktopEntry("[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n" + more, id),
            {[](const std::string& program) { return program.starts_with('/') ? program : "/usr/bin/" + program; },
             [this](const std::string& path) { return links.contains(path) ? links[path] : path; }});
    }
    std::string ownerOf(const std::string& path, const std::string& command = "") const {
        const DesktopEntry* entry = index.owner(path, command);
        return entry ? entry->name : "";
    }

    std::map<std::string, std::string> links;
    DesktopIndex index;
};

}  // namespace

TEST_F(DesktopIndexTest, AProgramBelongsToTheEntryThatStartsIt) {
    add("org.gnome.Nautilus", "Files", "nautilus --new-window %U");
    EXPECT_EQ(ownerOf("/usr/bin/nautilus"), "Files");
    EXPECT_EQ(ownerOf("/usr/bin/nautilus-desktop"), "");
    EXPECT_EQ(ownerOf("/usr/local/bin/nautilus"), "");
    EXPECT_EQ(ownerOf(""), "");
}

TEST_F(DesktopIndexTest, LinksAreFollowedToTheProgramItself) {
    links["/usr/bin/google-chrome-stable"] = "/opt/google/chrome/google-chrome";
    add("google-chrome", "Google Chrome", "/usr/bin/google-chrome-stable %U");
    EXPECT_EQ(ownerOf("/opt/google/chrome/google-chrome"), "Google Chrome");
    EXPECT_EQ(ownerOf("/opt/google/chrome/chrome"), "Google Chrome");
    EXPECT_EQ(ownerOf("/opt/google/chrome/locales/helper"), "Google Chrome");
    EXPECT_EQ(ownerOf("/opt/google/earth/earth"), "");
}

TEST_F(DesktopIndexTest, AStartingScriptLeadsToTheFolderOfItsName) {
    add("firefox", "Firefox", "firefox %u");
    EXPECT_EQ(ownerOf("/usr/lib/firefox/firefox"), "Firefox");
    EXPECT_EQ(ownerOf("/usr/lib64/firefox/plugin-container"), "Firefox");
    EXPECT_EQ(ownerOf("/usr/lib/firefox-esr/firefox-esr"), "");
}

TEST_F(DesktopIndexTest, TryExecCountsAsWell) {
    add("tool", "Tool", "sh -c \"tool-wrapper\"", "TryExec=/opt/tool/tool\n");
    EXPECT_EQ(ownerOf("/opt/tool/tool"), "Tool");
    EXPECT_EQ(ownerOf("/opt/tool/worker"), "Tool");
}

TEST_F(DesktopIndexTest, AnInterpreterBelongsToNobodyButItsScriptMay) {
    add("python3.11", "Python (v3.11)", "/usr/bin/python3.11");
    add("tool", "Tool", "python3 /usr/share/tool/tool.py %F");
    links["/usr/bin/sh"] = "/usr/bin/dash";
    add("shell", "Shell", "/usr/bin/sh");
    EXPECT_EQ(ownerOf("/usr/bin/python3.11"), "");
    EXPECT_EQ(ownerOf("/usr/bin/python3"), "");
    EXPECT_EQ(ownerOf("/usr/bin/dash"), "");
    EXPECT_EQ(ownerOf("/usr/share/tool/tool.py"), "Tool");
    EXPECT_EQ(ownerOf("/usr/share/tool/other.py"), "Tool");
}

TEST_F(DesktopIndexTest, AnApplicationsOwnInterpreterIsPartOfIt) {
    add("idea", "IntelliJ IDEA", "/opt/idea-IC/bin/idea.sh %f");
    EXPECT_EQ(ownerOf("/opt/idea-IC/jbr/bin/java"), "IntelliJ IDEA");
}

TEST_F(DesktopIndexTest, ACommonFolderMakesNoApplication) {
    add("spyder", "Spyder", "/opt/conda/bin/spyder");
    add("jconsole", "Java Console", "/usr/lib/jvm/java-17-openjdk-amd64/bin/jconsole");
    add("odd", "Odd", "/usr/lib/x86_64-linux-gnu/odd");
    EXPECT_EQ(ownerOf("/opt/conda/bin/spyder"), "Spyder");
    EXPECT_EQ(ownerOf("/opt/conda/bin/python3.11"), "");
    EXPECT_EQ(ownerOf("/usr/lib/jvm/java-17-openjdk-amd64/bin/java"), "");
    EXPECT_EQ(ownerOf("/usr/lib/x86_64-linux-gnu/libexec/other"), "");
}

TEST_F(DesktopIndexTest, SnapsAreKnownByTheirPackage) {
    add("firefox_firefox", "Firefox", "env BAMF_DESKTOP_FILE_HINT=/var/x.desktop /snap/bin/firefox %u",
        "X-SnapInstanceName=firefox\n");
    links["/snap/bin/firefox"] = "/usr/bin/snap";
    EXPECT_EQ(ownerOf("/snap/firefox/4173/usr/lib/firefox/firefox"), "Firefox");
    EXPECT_EQ(ownerOf("/var/lib/snapd/snap/firefox/4173/usr/lib/firefox/firefox"), "Firefox");
    EXPECT_EQ(ownerOf("/snap/core22/1/usr/bin/x"), "");
    EXPECT_EQ(ownerOf("/usr/bin/snap"), "");
}

TEST_F(DesktopIndexTest, FlatpaksAreKnownByTheCommandInTheirSandbox) {
    add("org.gimp.GIMP", "GIMP", "/usr/bin/flatpak run --command=gimp-2.10 org.gimp.GIMP %U",
        "X-Flatpak=org.gimp.GIMP\n");
    EXPECT_EQ(ownerOf("/app/bin/gimp-2.10"), "GIMP");
    EXPECT_EQ(ownerOf("/app/bin/other"), "");
    EXPECT_EQ(ownerOf("/usr/bin/flatpak"), "");
}

TEST_F(DesktopIndexTest, AppImagesAreKnownByTheirMountAndTheirFile) {
    add("obsidian", "Obsidian", "/home/me/Apps/Obsidian-1.5.AppImage --no-sandbox %U");
    EXPECT_EQ(ownerOf("/tmp/.mount_Obsidia8Kq2/obsidian"), "Obsidian");
    EXPECT_EQ(ownerOf("/tmp/.mount_ObsidiXyZ123/usr/bin/obsidian"), "Obsidian");
    EXPECT_EQ(ownerOf("/home/me/Apps/Obsidian-1.5.AppImage"), "Obsidian");
    EXPECT_EQ(ownerOf("/tmp/.mount_Krita5abcdef/krita"), "");
}

TEST_F(DesktopIndexTest, AmongSeveralEntriesTheArgumentsDecide) {
    links["/usr/bin/libreoffice"] = "/usr/lib/libreoffice/program/soffice";
    add("libreoffice-startcenter", "LibreOffice", "libreoffice %U");
    add("libreoffice-writer", "LibreOffice Writer", "libreoffice --writer %U");
    add("libreoffice-calc", "LibreOffice Calc", "libreoffice --calc %U");
    const std::string program = "/usr/lib/libreoffice/program/soffice.bin";
    EXPECT_EQ(ownerOf(program, program + " --calc"), "LibreOffice Calc");
    EXPECT_EQ(ownerOf(program, program + " --writer x.odt"), "LibreOffice Writer");
    EXPECT_EQ(ownerOf(program, program + " --calculate"), "LibreOffice");
    EXPECT_TRUE(index.owns(*index.byId("libreoffice-writer"), program));
}

TEST_F(DesktopIndexTest, AnEntryThatIsShownGoesBeforeOneThatIsNot) {
    add("a", "Handler", "viewer %u", "NoDisplay=true\n");
    add("viewer-main", "Viewer", "viewer %f");
    EXPECT_EQ(ownerOf("/usr/bin/viewer", "viewer x"), "Viewer");
}

TEST_F(DesktopIndexTest, TheFirstOfAnIdHidesTheOthers) {
    index.add(*parseDesktopEntry("[Desktop Entry]\nHidden=true\n", "tool"), {});
    add("tool", "Tool", "tool");
    EXPECT_EQ(index.byId("tool"), nullptr);
    EXPECT_EQ(ownerOf("/usr/bin/tool"), "");
    add("other", "Mine", "other");
    add("other", "Theirs", "theirs");
    EXPECT_EQ(index.byId("other")->name, "Mine");
    EXPECT_EQ(ownerOf("/usr/bin/theirs"), "");
}

TEST(ApplicationFolder, IsWhatAnApplicationHasToItself) {
    EXPECT_EQ(applicationFolder("/usr/share/code/code"), "/usr/share/code");
    EXPECT_EQ(applicationFolder("/usr/share/code/bin/code"), "/usr/share/code");
    EXPECT_EQ(applicationFolder("/opt/android-studio/bin/studio.sh"), "/opt/android-studio");
    EXPECT_EQ(applicationFolder("/usr/lib/x86_64-linux-gnu/xfce4/exo-helper"), "/usr/lib/x86_64-linux-gnu/xfce4");
    for (const auto* path :
         {"/usr/bin/tool", "/opt/tool", "/opt/bin/tool", "/usr/libexec/tool", "/home/me/tool/tool",
          "/usr/lib/x86_64-linux-gnu/tool", "/usr/lib/python3.11/idle", "/usr/share/applications/x", ""}) {
        EXPECT_EQ(applicationFolder(path), "") << path;
    }
}

}  // namespace ravik::platform

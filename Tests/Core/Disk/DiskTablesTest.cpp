#include "Core/Disk/DiskTables.h"

#include <gmock/gmock.h>

#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

using ::testing::ElementsAre;

TEST(DiskTables, TheMacListsFifteenCachesInThisOrder) {
    std::vector<std::string_view> paths;
    for (const auto& cache : diskTables(HostKind::mac).caches) paths.push_back(cache.path);
    EXPECT_THAT(paths,
                ElementsAre("Library/Caches/pnpm", ".npm/_cacache", ".npm/_npx", ".cache/pip", "Library/Caches/pip",
                            "Library/Caches/Homebrew", ".cargo/registry", "Library/Developer/Xcode/DerivedData",
                            "Library/Caches/Google/Chrome", "Library/Caches/com.apple.dt.Xcode", ".cache/puppeteer",
                            ".cache/uv", ".cache/codex-runtimes", ".cache/huggingface",
                            "Library/Application Support/Claude/vm_bundles"));
}

TEST(DiskTables, TheMacHasOneOwner) {
    const DiskTables& tables = diskTables(HostKind::mac);
    ASSERT_EQ(tables.owners.size(), 1u);
    EXPECT_EQ(tables.owner("Library/Application Support/Claude/vm_bundles")->app, "Claude");
    EXPECT_EQ(tables.owner(".npm/_npx"), nullptr);
}

TEST(DiskTables, LinuxListsItsCachesInThisOrder) {
    std::vector<std::string_view> paths;
    for (const auto& cache : diskTables(HostKind::linux).caches) paths.push_back(cache.path);
    EXPECT_THAT(paths, ElementsAre(".cache/pnpm", ".local/share/pnpm/store", ".npm/_cacache", ".npm/_npx",
                                   ".cache/yarn", ".bun/install/cache", ".cache/deno", ".cache/pip", ".cache/uv",
                                   ".cache/pypoetry", ".cargo/registry", ".cache/go-build", "go/pkg/mod/cache",
                                   ".gradle/caches", ".m2/repository", ".cache/Homebrew", ".cache/google-chrome",
                                   ".cache/chromium", ".cache/mozilla", ".cache/puppeteer", ".cache/Cypress",
                                   ".cache/electron", ".cache/codex-runtimes", ".cache/huggingface", ".cache/JetBrains",
                                   ".cache/ccache", ".cache/thumbnails", ".config/Claude/vm_bundles"));
}

TEST(DiskTables, LinuxBrowsersAndClaudeOwnTheirCaches) {
    const DiskTables& tables = diskTables(HostKind::linux);
    EXPECT_EQ(tables.owners.size(), 4u);
    EXPECT_EQ(tables.owner(".cache/google-chrome")->app, "Chrome");
    EXPECT_EQ(tables.owner(".cache/chromium")->app, "Chromium");
    EXPECT_EQ(tables.owner(".cache/mozilla")->app, "Firefox");
    EXPECT_EQ(tables.owner(".config/Claude/vm_bundles")->app, "Claude");
}

TEST(DiskTables, BuildFoldersAreTheSameOnBoth) {
    const decltype(DiskTables::buildDirs) names{"node_modules", ".next", ".turbo", "dist",        "build",
                                                "target",       ".venv", "venv",   "DerivedData", ".pytest_cache"};
    EXPECT_EQ(diskTables(HostKind::mac).buildDirs, names);
    EXPECT_EQ(diskTables(HostKind::linux).buildDirs, names);
}

TEST(DiskTables, AnOwnerRunsUnderAnyNameThatDesktopsGiveIt) {
    const DiskTables& tables = diskTables(HostKind::linux);
    const auto& chrome = *tables.owner(".cache/google-chrome");
    const auto runs = [](const DiskTables::Owner& owner, RunningApp app) {
        return DiskScanner::isRunning(owner, std::vector<RunningApp>{std::move(app)});
    };
    EXPECT_TRUE(runs(chrome, {.bundleName = "", .localizedName = "Chrome"}));
    EXPECT_TRUE(runs(chrome, {.bundleName = "", .localizedName = "Google Chrome"}));
    EXPECT_TRUE(runs(chrome, {.bundleName = "google-chrome", .localizedName = "Navegador"}));
    EXPECT_FALSE(runs(chrome, {.bundleName = "chromium", .localizedName = "Chromium"}));
    EXPECT_FALSE(runs(chrome, {.bundleName = "", .localizedName = "Google chrome"}));
    EXPECT_TRUE(runs(*tables.owner(".cache/mozilla"), {.bundleName = "", .localizedName = "Firefox ESR"}));
}

TEST(DiskTables, OnAMacOnlyTheLocalizedNameTells) {
    const auto& claude = *diskTables(HostKind::mac).owner("Library/Application Support/Claude/vm_bundles");
    const std::vector<RunningApp> named{{.bundleName = "", .localizedName = "Claude"}};
    const std::vector<RunningApp> bundled{{.bundleName = "Claude", .localizedName = "Claude Helper"}};
    EXPECT_TRUE(DiskScanner::isRunning(claude, named));
    EXPECT_FALSE(DiskScanner::isRunning(claude, bundled));
}

class DefaultProjectRoots : public DiskTree {};

TEST_F(DefaultProjectRoots, OnAMacTheyAreTheProjectsFolder) {
    EXPECT_THAT(DiskScanner::defaultProjectRoots(diskTables(HostKind::mac), home), ElementsAre(home / "Projects"));
}

TEST_F(DefaultProjectRoots, OnLinuxTheyAreThoseThatExist) {
    folder(home / "src");
    folder(home / "Projects");
    file(home / "dev");
    folder(home / "other");
    EXPECT_THAT(DiskScanner::defaultProjectRoots(diskTables(HostKind::linux), home),
                ElementsAre(home / "Projects", home / "src"));
}

TEST_F(DefaultProjectRoots, OneFolderUnderTwoNamesCountsOnce) {
    folder(home / "Projects");
    link(home / "code", home / "Projects");
    EXPECT_THAT(DiskScanner::defaultProjectRoots(diskTables(HostKind::linux), home), ElementsAre(home / "Projects"));
}

}  // namespace ravik

#include "Core/Disk/DiskTables.h"

#include <algorithm>

namespace ravik {

namespace {

const DiskTables& macDisk() {
    static const DiskTables tables{
        .caches =
            {
                {"Library/Caches/pnpm", "pnpm cache"},
                {".npm/_cacache", "npm cache"},
                {".npm/_npx", "npx cache"},
                {".cache/pip", "pip cache"},
                {"Library/Caches/pip", "pip cache"},
                {"Library/Caches/Homebrew", "Homebrew cache"},
                {".cargo/registry", "cargo registry"},
                {"Library/Developer/Xcode/DerivedData", "Xcode DerivedData"},
                {"Library/Caches/Google/Chrome", "Chrome cache"},
                {"Library/Caches/com.apple.dt.Xcode", "Xcode cache"},
                {".cache/puppeteer", "Puppeteer browsers"},
                {".cache/uv", "uv cache"},
                {".cache/codex-runtimes", "Codex runtimes"},
                {".cache/huggingface", "Hugging Face cache"},
                {"Library/Application Support/Claude/vm_bundles", "Claude app VM bundle"},
            },
        .owners = {{"Library/Application Support/Claude/vm_bundles", "Claude", {}}},
        .browsers = "Library/Caches/ms-playwright",
        .transcripts = ".claude/projects",
        .buildDirs = {"node_modules", ".next", ".turbo", "dist", "build", "target", ".venv", "venv", "DerivedData",
                      ".pytest_cache"},
        .projectRoots = {"Projects"},
    };
    return tables;
}

const DiskTables& linuxDisk() {
    static const DiskTables tables{
        .caches =
            {
                {".cache/pnpm", "pnpm cache"},
                {".local/share/pnpm/store", "pnpm store"},
                {".npm/_cacache", "npm cache"},
                {".npm/_npx", "npx cache"},
                {".cache/yarn", "Yarn cache"},
                {".bun/install/cache", "Bun cache"},
                {".cache/deno", "Deno cache"},
                {".cache/pip", "pip cache"},
                {".cache/uv", "uv cache"},
                {".cache/pypoetry", "Poetry cache"},
                {".cargo/registry", "cargo registry"},
                {".cache/go-build", "Go build cache"},
                {"go/pkg/mod/cache", "Go module cache"},
                {".gradle/caches", "Gradle caches"},
                {".m2/repository", "Maven repository"},
                {".cache/Homebrew", "Homebrew cache"},
                {".cache/google-chrome", "Chrome cache"},
                {".cache/chromium", "Chromium cache"},
                {".cache/mozilla", "Firefox cache"},
                {".cache/puppeteer", "Puppeteer browsers"},
                {".cache/Cypress", "Cypress cache"},
                {".cache/electron", "Electron cache"},
                {".cache/codex-runtimes", "Codex runtimes"},
                {".cache/huggingface", "Hugging Face cache"},
                {".cache/JetBrains", "JetBrains cache"},
                {".cache/ccache", "ccache"},
                {".cache/thumbnails", "thumbnail cache"},
                {".config/Claude/vm_bundles", "Claude app VM bundle"},
            },
        .owners =
            {
                {".cache/google-chrome",
                 "Chrome",
                 {"Google Chrome", "google-chrome", "google-chrome-stable", "chrome", "com.google.Chrome"}},
                {".cache/chromium",
                 "Chromium",
                 {"Chromium Web Browser", "chromium", "chromium-browser", "org.chromium.Chromium"}},
                {".cache/mozilla",
                 "Firefox",
                 {"Firefox ESR", "Firefox Web Browser", "Firefox Developer Edition", "Firefox Beta", "Firefox Nightly",
                  "firefox", "firefox-esr", "org.mozilla.firefox"}},
                {".config/Claude/vm_bundles", "Claude", {"Claude Desktop", "claude-desktop"}},
            },
        .browsers = ".cache/ms-playwright",
        .transcripts = ".claude/projects",
        .buildDirs = macDisk().buildDirs,
        .projectRoots = {"Projects", "projects", "src", "code", "dev", "work", "git", "repos"},
        .rootsMustExist = true,
    };
    return tables;
}

}  // namespace

const DiskTables::Owner* DiskTables::owner(std::string_view path) const {
    const auto hit = std::ranges::find(owners, path, &Owner::path);
    return hit == owners.end() ? nullptr : &*hit;
}

const DiskTables& diskTables(HostKind kind) { return kind == HostKind::mac ? macDisk() : linuxDisk(); }

namespace DiskScanner {

std::vector<std::filesystem::path> defaultProjectRoots(const DiskTables& tables, const std::filesystem::path& home) {
    std::vector<std::filesystem::path> roots;
    std::error_code error;
    for (const std::string_view name : tables.projectRoots) {
        std::filesystem::path root = home / name;
        if (tables.rootsMustExist) {
            if (!std::filesystem::is_directory(root, error)) continue;
            const auto isSame = [&](const auto& known) { return std::filesystem::equivalent(known, root, error); };
            if (std::ranges::any_of(roots, isSame)) continue;
        }
        roots.push_back(std::move(root));
    }
    return roots;
}

}  // namespace DiskScanner

}  // namespace ravik

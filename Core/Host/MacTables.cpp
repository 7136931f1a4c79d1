#include "Core/Host/Host.h"

namespace ravik {

const HostTables& macTables() {
    static const HostTables tables{
        .systemPrefixes = {"/System/", "/usr/libexec/", "/usr/sbin/", "/sbin/"},
        .systemExceptions = {"/System/Applications/"},
        .installedPrefixes = {"/System/", "/Applications/", "/Library/", "/usr/", "/sbin/", "/bin/"},
        .enginePrefixes = {"/System/", "/usr/libexec/", "/usr/sbin/", "/sbin/", "/Library/Apple/"},
        .judgesScripts = false,
        .neverNames =
            {
                {"postgres", "a database server"},
                {"postmaster", "a database server"},
                {"mysqld", "a database server"},
                {"mariadbd", "a database server"},
                {"redis-server", "a database server"},
                {"mongod", "a database server"},
                {"clickhouse-server", "a database server"},
                {"sqlite3", "a database session"},
                {"git", "a git operation in progress"},
                {"brew", "a Homebrew operation in progress"},
                {"softwareupdate", "a system update"},
                {"rsync", "a file copy in progress"},
                {"tmutil", "a Time Machine operation"},
                {"backupd", "a backup"},
                {"ffmpeg", "a media encode in progress"},
                {"HandBrakeCLI", "a media encode in progress"},
                {"xcodebuild", "a build in progress"},
                {"swift-frontend", "a build in progress"},
                {"clang", "a build in progress"},
                {"ld", "a build in progress"},
                {"cargo", "a Rust build in progress"},
                {"rustc", "a Rust build in progress"},
                {"go", "a Go build in progress"},
                {"com.docker.backend", "Docker"},
                {"qemu-system-aarch64", "a virtual machine"},
                {"limactl", "a virtual machine"},
            },
        .packageManagers = {"npm", "pnpm", "yarn", "bun", "pip", "pip3", "uv", "poetry", "gem", "bundle", "pod"},
        .installVerbs = {"install", "add", "update", "upgrade", "ci", "sync", "publish"},
        .interpreters = {"node", "python", "python3", "tsx", "npm", "npx", "pnpm", "bun", "deno", "ruby", "perl"},
        .launcherWords = {"exec", "run", "x", "dlx"},
        .agentTools = {"claude", "cursor", "codex", "aider", "gemini"},
        .browsers = {"Google Chrome", "Safari", "Arc", "Firefox", "Brave Browser", "Microsoft Edge"},
        .indexers = {"mds_stores", "mds", "mediaanalysisd", "spotlightknowledged", "corespotlightd", "photoanalysisd"},
        .databases = {"postgres", "postmaster", "mysqld", "mariadbd", "redis-server", "mongod", "clickhouse-server"},
        .editorsWithExtensionHosts = {"Visual Studio Code", "Cursor"},
        .vmMarkers = {"com.apple.Virtualization.VirtualMachine", "Docker", "UTM", "Parallels", "VMware", "qemu",
                      "OrbStack", "colima", "limactl"},
        .engineProtected = {"Finder",        "Dock",        "SystemUIServer", "WindowServer",     "loginwindow",
                            "Terminal",      "iTerm",       "iTerm2",         "Warp",             "Ghostty",
                            "Xcode",         "Visual Studio Code", "Cursor",  "Claude Code",      "Spotify",
                            "Music",         "zoom.us",     "FaceTime",       "Microsoft Teams",  "Webex",
                            "Discord",       "Ravik",       "Activity Monitor", "1Password",      "Keychain Access"},
    };
    return tables;
}

}  // namespace ravik

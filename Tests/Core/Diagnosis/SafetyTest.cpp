#include "Core/Diagnosis/Safety.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::linuxHost;
using fakes::macHost;
using fakes::Making;

namespace {

Verdict check(const std::vector<Proc>& tree) { return Safety::check(tree, macHost()); }
Verdict checkOnLinux(std::string_view command) { return Safety::check({Making(7, command).uid(1000)}, linuxHost()); }

}  // namespace

TEST(Safety, AnEmptyTreeIsSafe) { EXPECT_TRUE(check({}).isSafe()); }

TEST(Safety, OneForbiddenProcessForbidsItsTree) {
    EXPECT_EQ(check({Making(7, "/opt/bin/zsh"), Making(8, "/opt/bin/git fetch").parent(7)}),
              Verdict::never("a git operation in progress (git, pid 8)"));
    EXPECT_EQ(check({Making(7, "/opt/x"), Making(8, "/usr/libexec/trustd").parent(7)}),
              Verdict::never("part of macOS (trustd, pid 8)"));
    EXPECT_TRUE(check({Making(7, "/System/Applications/Mail.app/Contents/MacOS/Mail")}).isSafe());
}

TEST(Safety, EveryNeverNameHasItsReason) {
    const std::vector<std::pair<std::string, std::string>> names{
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
    };
    EXPECT_EQ(macTables().neverNames.size(), names.size());
    for (const auto& [name, reason] : names) {
        const Proc proc = Making(7, "/opt/x").name(name);
        const auto never = Verdict::never(fmt::format("{} ({}, pid 7)", reason, name));
        EXPECT_EQ(check({proc}), never);
        EXPECT_EQ(Safety::check({proc}, linuxHost()), never);
    }
    EXPECT_TRUE(check({Making(7, "/opt/x").name("Git")}).isSafe());
}

TEST(Safety, APackageManagerIsForbiddenWhileItInstalls) {
    EXPECT_EQ(check({Making(7, "npm install")}), Verdict::never("npm is installing packages (pid 7)"));
    EXPECT_EQ(check({Making(7, "/opt/bin/pnpm --silent add left-pad")}),
              Verdict::never("pnpm is installing packages (pid 7)"));
    EXPECT_EQ(check({Making(7, "").name("pip")}), Verdict::safe());
    for (const char* command : {"npm run dev", "npm --save", "yarn", "npm installer", "/opt/x install"}) {
        EXPECT_TRUE(check({Making(7, command)}).isSafe()) << command;
    }
}

TEST(Safety, FivePercentIsWork) {
    EXPECT_TRUE(check({Making(7, "/opt/x"), Making(8, "node /a/s.js").cpu(4.9)}).isSafe());
    EXPECT_EQ(check({Making(7, "/opt/x"), Making(8, "node /a/s.js").cpu(5), Making(9, "/opt/y").cpu(99)}),
              Verdict::caution("node: s.js is actively working (5% CPU)"));
    EXPECT_EQ(check({Making(7, "/opt/x").cpu(7.9)}), Verdict::caution("x is actively working (7% CPU)"));
}

TEST(Safety, NeverWinsOverCautionWhateverTheOrder) {
    EXPECT_EQ(check({Making(7, "/opt/x").cpu(80), Making(8, "/opt/clang").cpu(90)}),
              Verdict::never("a build in progress (clang, pid 8)"));
}

TEST(Safety, OnLinuxTheSystemIsTheSystem) {
    EXPECT_EQ(checkOnLinux("/usr/libexec/gvfsd"), Verdict::never("part of the system (gvfsd, pid 7)"));
    EXPECT_EQ(checkOnLinux("/usr/lib/systemd/systemd-logind"),
              Verdict::never("part of the system (systemd-logind, pid 7)"));
}

TEST(Safety, OnLinuxMoreNamesAreForbidden) {
    for (const char* name : {"apt",
                             "apt-get",
                             "dpkg",
                             "dnf",
                             "rpm",
                             "pacman",
                             "zypper",
                             "snapd",
                             "flatpak",
                             "packagekitd",
                             "fwupd",
                             "unattended-upgr",
                             "unattended-upgrade",
                             "restic",
                             "borg",
                             "rclone",
                             "pg_dump",
                             "mysqldump",
                             "gcc",
                             "cc1",
                             "cc1plus",
                             "g++",
                             "make",
                             "ninja",
                             "cmake",
                             "gradle",
                             "mvn",
                             "qemu-system-x86_64",
                             "dockerd",
                             "containerd",
                             "podman",
                             "Xorg",
                             "Xwayland",
                             "gnome-shell",
                             "kwin_wayland",
                             "kwin_x11",
                             "plasmashell",
                             "sway",
                             "pipewire",
                             "wireplumber",
                             "dbus-daemon",
                             "dbus-broker",
                             "systemd",
                             "gpg-agent",
                             "ssh-agent"}) {
        const Verdict verdict = checkOnLinux(std::string("/opt/") + name);
        EXPECT_TRUE(verdict.isNever()) << name;
        EXPECT_TRUE(verdict.reason.ends_with(std::string(" (") + name + ", pid 7)")) << verdict.reason;
        EXPECT_TRUE(check({Making(7, std::string("/opt/") + name)}).isSafe()) << name;
    }
    EXPECT_EQ(linuxTables().neverNames.size(), 26u + 45u);
    EXPECT_EQ(checkOnLinux("/usr/bin/make -j8").reason, "a build in progress (make, pid 7)");
}

TEST(Safety, OnLinuxAnInterpretersScriptMayBeThePackageManager) {
    EXPECT_EQ(checkOnLinux("python3 /usr/bin/pip install x").reason, "pip is installing packages (pid 7)");
    EXPECT_EQ(checkOnLinux("/usr/bin/python3.11 -m pip install x").reason, "pip is installing packages (pid 7)");
    EXPECT_EQ(checkOnLinux("node /usr/lib/node_modules/npm/bin/npm-cli.js ci").reason,
              "npm is installing packages (pid 7)");
    EXPECT_TRUE(checkOnLinux("python3 /usr/bin/pip list").isSafe());
    EXPECT_TRUE(checkOnLinux("python3 /home/me/x.py install").isSafe());
    EXPECT_TRUE(check({Making(7, "python3 /usr/bin/pip install x")}).isSafe());
}

TEST(Safety, ATreeStandsInTheOrderOfTheList) {
    const std::vector<Proc> procs{Making(12, "c").parent(11), Making(9, "other"), Making(11, "b").parent(10),
                                  Making(10, "a")};
    EXPECT_EQ(fakes::pids(Safety::tree(10, ProcessIndex(procs))), (Pids{12, 11, 10}));
    EXPECT_TRUE(Safety::tree(77, ProcessIndex(procs)).empty());
}

TEST(Safety, ATreeWhoseRootHasGoneIsWhatHangsBelowIt) {
    const std::vector<Proc> procs{Making(11, "b").parent(10)};
    EXPECT_EQ(fakes::pids(Safety::tree(10, ProcessIndex(procs))), (Pids{11}));
}

TEST(Safety, ManyVerdictsAgreeWithSingleOnes) {
    const std::vector<Proc> procs{Making(10, "/opt/a"),
                                  Making(11, "/opt/git").parent(10),
                                  Making(12, "/opt/b").cpu(9),
                                  Making(13, "/opt/c").parent(12).cpu(50),
                                  Making(14, "/usr/sbin/d").uid(0),
                                  Making(15, "/opt/e").parent(16),
                                  Making(16, "/opt/f").parent(15)};
    const auto verdicts = Safety::verdicts({10, 11, 12, 13, 14, 15, 99}, ProcessIndex(procs), macHost());
    EXPECT_EQ(verdicts.size(), 7u);
    EXPECT_EQ(verdicts.at(10), Verdict::never("a git operation in progress (git, pid 11)"));
    EXPECT_EQ(verdicts.at(11), Verdict::never("a git operation in progress (git, pid 11)"));
    EXPECT_EQ(verdicts.at(12), Verdict::caution("b is actively working (9% CPU)"));
    EXPECT_EQ(verdicts.at(13), Verdict::caution("c is actively working (50% CPU)"));
    EXPECT_EQ(verdicts.at(14), Verdict::never("not yours"));
    EXPECT_TRUE(verdicts.at(15).isSafe());
    EXPECT_TRUE(verdicts.at(99).isSafe());
}

TEST(Safety, VerdictsNameTheFirstInTheOrderOfTheList) {
    const std::vector<Proc> procs{Making(12, "/opt/go build").parent(11), Making(10, "/opt/a"),
                                  Making(11, "/opt/git").parent(10)};
    EXPECT_EQ(Safety::verdicts({10}, ProcessIndex(procs), macHost()).at(10).reason,
              "a Go build in progress (go, pid 12)");
    const std::vector<Proc> downwards{procs[1], procs[2], procs[0]};
    EXPECT_EQ(Safety::verdicts({10}, ProcessIndex(downwards), macHost()).at(10).reason,
              "a git operation in progress (git, pid 11)");
}

}  // namespace ravik

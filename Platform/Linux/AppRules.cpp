#include "Platform/Linux/AppRules.h"

#include <unordered_set>

#include "Platform/Linux/CommandLine.h"

namespace ravik::platform {

namespace {

using Names = std::unordered_set<std::string_view>;

const Names& foreignStarters() {
    static const Names names{
        // shells
        "sh", "bash", "dash", "zsh", "fish", "ksh", "mksh", "tcsh", "csh", "nu", "pwsh", "elvish", "xonsh", "ash",
        "busybox", "rbash",
        // terminals and multiplexers
        "gnome-terminal-server", "gnome-terminal", "kgx", "gnome-console", "ptyxis", "ptyxis-agent", "konsole",
        "yakuake", "xterm", "uxterm", "lxterm", "alacritty", "kitty", "foot", "footserver", "wezterm", "wezterm-gui",
        "wezterm-mux-server", "terminator", "tilix", "guake", "tilda", "terminology", "ghostty", "xfce4-terminal",
        "lxterminal", "qterminal", "mate-terminal", "deepin-terminal", "urxvt", "urxvtd", "rxvt", "st", "rio",
        "cool-retro-term", "tabby", "hyper", "warp-terminal", "blackbox", "sakura", "termite", "tmux", "tmux: server",
        "screen", "zellij", "login", "sshd", "sshd-session", "mosh-server", "su", "sudo",
        // session managers, compositors, panels and launchers
        "systemd", "init", "gnome-session-binary", "gnome-session", "gnome-session-service",
        "gnome-session-init-worker", "gnome-shell", "mutter", "ksmserver", "plasma_session", "startplasma-x11",
        "startplasma-wayland", "plasmashell", "kwin_x11", "kwin_wayland", "kded5", "kded6", "kdeinit5", "krunner",
        "xfce4-session", "xfce4-panel", "xfdesktop", "mate-session", "mate-panel", "cinnamon-session", "cinnamon",
        "lxsession", "lxpanel", "lxqt-session", "lxqt-panel", "budgie-panel", "sway", "swaybg", "waybar", "Hyprland",
        "hyprland", "i3", "openbox", "openbox-session", "fluxbox", "awesome", "bspwm", "dwm", "qtile", "xmonad",
        "river", "niri", "labwc", "wayfire", "weston", "rofi", "wofi", "fuzzel", "dmenu", "ulauncher", "xinit",
        "startx", "sddm", "sddm-helper", "gdm", "gdm3", "gdm-session-worker", "gdm-x-session", "gdm-wayland-session",
        "lightdm", "dbus-daemon", "dbus-broker", "dbus-broker-launch", "dbus-run-session", "xdg-desktop-portal", "cron",
        "atd", "supervisord"};
    return names;
}

}  // namespace

bool isHelperProcess(std::string_view executable, std::string_view command) {
    const std::string_view program = baseName(executable);
    return command.find(" --type=") != std::string_view::npos || program.find("crashpad") != std::string_view::npos ||
           program.find("zygote") != std::string_view::npos;
}

bool startsForeigners(std::string_view name) { return foreignStarters().contains(name); }

}  // namespace ravik::platform

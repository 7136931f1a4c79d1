#include "Core/Host/Host.h"

namespace ravik {

namespace {

/// What the program does to a package of the system, a backup, a build and so on, beside those of every host.
const std::pair<std::string_view, std::string_view> neverNames[] = {
    {"apt", "a package operation in progress"},
    {"apt-get", "a package operation in progress"},
    {"dpkg", "a package operation in progress"},
    {"dnf", "a package operation in progress"},
    {"rpm", "a package operation in progress"},
    {"pacman", "a package operation in progress"},
    {"zypper", "a package operation in progress"},
    {"snapd", "the snap service"},
    {"flatpak", "a Flatpak operation in progress"},
    {"packagekitd", "the package service"},
    {"fwupd", "the firmware update service"},
    {"unattended-upgr", "a system update"},
    {"unattended-upgrade", "a system update"},
    {"restic", "a backup"},
    {"borg", "a backup"},
    {"rclone", "a file copy in progress"},
    {"pg_dump", "a database dump in progress"},
    {"mysqldump", "a database dump in progress"},
    {"gcc", "a build in progress"},
    {"cc1", "a build in progress"},
    {"cc1plus", "a build in progress"},
    {"g++", "a build in progress"},
    {"make", "a build in progress"},
    {"ninja", "a build in progress"},
    {"cmake", "a build in progress"},
    {"gradle", "a build in progress"},
    {"mvn", "a build in progress"},
    {"qemu-system-x86_64", "a virtual machine"},
    {"dockerd", "Docker"},
    {"containerd", "the container service"},
    {"podman", "a container engine"},
    {"Xorg", "the display server"},
    {"Xwayland", "the display server"},
    {"gnome-shell", "the desktop"},
    {"kwin_wayland", "the desktop's compositor"},
    {"kwin_x11", "the desktop's window manager"},
    {"plasmashell", "the desktop"},
    {"sway", "the desktop's compositor"},
    {"pipewire", "the sound service"},
    {"wireplumber", "the sound service"},
    {"dbus-daemon", "the message bus"},
    {"dbus-broker", "the message bus"},
    {"systemd", "the service manager"},
    {"gpg-agent", "a key agent"},
    {"ssh-agent", "a key agent"},
};

/// By display name, and by program name for what has no desktop entry of its own.
constexpr std::string_view engineProtected[] = {
    // Shells, compositors, panels, sessions
    "GNOME Shell", "gnome-shell", "Plasma", "plasmashell", "KWin", "kwin_wayland", "kwin_x11", "mutter", "Mutter",
    "Cinnamon", "cinnamon", "muffin", "MATE", "marco", "mate-panel", "xfce4-session", "xfce4-panel", "xfdesktop",
    "xfwm4", "Panel", "Window Manager", "Desktop", "LXQt Panel", "lxqt-panel", "lxqt-session", "lxpanel", "openbox",
    "i3", "i3bar", "sway", "swaybar", "Hyprland", "hyprland", "waybar", "polybar", "river", "niri", "labwc", "wayfire",
    "weston", "budgie-panel", "budgie-wm", "Budgie Desktop", "gala", "wingpanel", "plank", "cosmic-comp",
    "cosmic-panel", "COSMIC Panel", "awesome", "bspwm", "dwm", "picom", "Xorg", "Xwayland", "gnome-session-binary",
    "ksmserver", "startplasma-wayland", "startplasma-x11", "systemd", "dbus-daemon", "dbus-broker", "pipewire",
    "pipewire-pulse", "wireplumber", "pulseaudio", "gdm", "sddm", "lightdm", "ibus-daemon", "fcitx5",
    // File managers
    "Files", "nautilus", "Dolphin", "dolphin", "Nemo", "nemo", "Thunar", "Thunar File Manager", "thunar", "Caja",
    "caja", "PCManFM", "PCManFM-Qt File Manager", "File Manager", "Krusader", "Double Commander",
    // Terminals
    "Console", "kgx", "GNOME Terminal", "gnome-terminal-server", "gnome-terminal", "Konsole", "konsole", "Yakuake",
    "yakuake", "Xfce Terminal", "xfce4-terminal", "MATE Terminal", "mate-terminal", "QTerminal", "qterminal",
    "LXTerminal", "Tilix", "tilix", "Terminator", "terminator", "Guake Terminal", "guake", "Alacritty", "alacritty",
    "kitty", "WezTerm", "wezterm-gui", "foot", "Foot", "ghostty", "Ptyxis", "ptyxis", "Black Box", "BlackBox", "XTerm",
    "xterm", "UXTerm", "rxvt-unicode", "urxvt", "st", "Rio", "Hyper", "Tabby", "tmux", "tmux: server", "screen",
    "zellij", "System Monitor", "Plasma System Monitor",
    // Editors
    "Code", "code", "Code - OSS", "VSCodium", "codium", "Visual Studio Code - Insiders", "Zed", "zed", "zed-editor",
    "Windsurf", "Sublime Text", "sublime_text", "Text Editor", "gedit", "GNOME Text Editor", "gnome-text-editor",
    "Kate", "kate", "KWrite", "kwrite", "KDevelop", "Builder", "GNOME Builder", "Qt Creator", "qtcreator", "Emacs",
    "GNU Emacs", "emacs", "Vim", "GVim", "vim", "Neovim", "nvim", "Neovide", "Helix", "hx", "nano", "micro", "Geany",
    "geany", "Mousepad", "Pluma", "xed", "Lapce", "Eclipse", "IntelliJ IDEA", "IntelliJ IDEA Community Edition",
    "IntelliJ IDEA Ultimate Edition", "PyCharm", "PyCharm Community Edition", "PyCharm Professional Edition", "CLion",
    "GoLand", "WebStorm", "PhpStorm", "RubyMine", "Rider", "RustRover", "DataGrip", "Android Studio",
    // What plays or records
    "VLC media player", "VLC", "vlc", "mpv", "mpv Media Player", "Celluloid", "Videos", "Totem", "totem", "Showtime",
    "Video Player", "Rhythmbox", "rhythmbox", "Amarok", "Elisa", "elisa", "Clementine", "Strawberry", "Lollypop",
    "Audacious", "DeaDBeeF", "Decibels", "Haruna", "Haruna Media Player", "SMPlayer", "Kodi", "Dragon Player",
    "Audacity", "OBS Studio", "obs", "Shortwave", "Amberol", "GNOME Music", "Tidal HiFi", "spotify",
    // Calls
    "Zoom", "Zoom Workplace", "zoom", "Skype", "Signal", "signal-desktop", "Telegram", "Telegram Desktop", "Slack",
    "Element", "Teams for Linux", "teams-for-linux", "Jitsi Meet", "Mumble", "TeamSpeak", "TeamSpeak 3", "WhatsApp",
    "Cisco Webex", "Vesktop", "WebCord", "Linphone", "Jami",
    // Passwords and keys
    "1password", "KeePassXC", "keepassxc", "KeePass", "Bitwarden", "bitwarden", "Passwords and Keys", "seahorse",
    "Secrets", "KWalletManager", "kwalletd5", "kwalletd6", "gnome-keyring-daemon", "Proton Pass", "Enpass", "LastPass",
    "gpg-agent", "ssh-agent",
};

template <typename Set, typename... Words>
Set with(Set set, Words... words) {
    (set.insert(std::string_view(words)), ...);
    return set;
}

HostTables build() {
    const HostTables& common = macTables();
    HostTables tables = common;
    tables.systemPrefixes = {"/usr/lib/systemd/", "/lib/systemd/", "/usr/libexec/", "/usr/sbin/", "/sbin/"};
    tables.systemExceptions = {};
    for (const char* prefix : {"/lib/", "/lib64/", "/snap/", "/app/"}) tables.installedPrefixes.emplace_back(prefix);
    tables.enginePrefixes = tables.systemPrefixes;
    tables.judgesScripts = true;
    tables.neverNames.insert(std::begin(neverNames), std::end(neverNames));
    tables.browsers = with(common.browsers, "Firefox ESR", "Chromium", "Chromium Web Browser", "Brave", "Vivaldi",
                           "Opera", "LibreWolf", "Web");
    tables.indexers = {"tracker-miner-fs-3", "tracker-extract-3",    "localsearch-3",   "baloo_file",
                       "baloo_file_extractor", "updatedb", "plocate-updatedb"};
    for (const char* marker :
         {"qemu-system", "VirtualBox", "libvirt", "gnome-boxes", "multipass", "firecracker", "crosvm"}) {
        tables.vmMarkers.emplace_back(marker);
    }
    tables.engineProtected.insert(std::begin(engineProtected), std::end(engineProtected));
    return tables;
}

}  // namespace

const HostTables& linuxTables() {
    static const HostTables tables = build();
    return tables;
}

}  // namespace ravik

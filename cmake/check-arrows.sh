#!/bin/bash
# Includes point down the picture of docs/architecture.md or sideways within one folder. What the linker cannot see
# of it, since a header needs no linking, is looked for here.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
bad=0

# forbid SENTENCE FOLDER PATTERN [EXCEPT]: no file below the folder has an #include line that the pattern fits.
forbid() {
    local hits
    [[ -d $2 ]] || return 0
    hits=$(grep -rnE --include='*.h' --include='*.cpp' --include='*.mm' "^ *# *include *[<\"]($3)" "$2")
    [[ ! ${4:-} ]] || hits=$(grep -vE "include *[<\"]($4)" <<<"$hits")
    [[ $hits ]] || return 0
    printf '%s:\n%s\n' "$1" "$hits" >&2
    bad=1
}

views='Q[A-Z]|Qt[A-Z]|App/|Cli/'
desktop='glib|gio/|gobject/|xcb/|X11/|dbus/|CoreFoundation/|AppKit/|Foundation/'
# Reading and writing files is allowed: <fcntl.h>, <sys/stat.h>, <unistd.h>, <dirent.h>.
system='sys/(socket|wait|resource|prctl|syscall|ptrace|sysctl|statvfs)\.h|signal\.h|csignal|spawn\.h|poll\.h|pwd\.h|linux/|mach/|libproc\.h'
records='Core/Base/|Core/Watch/(Proc|SystemStats)\.h'

forbid "Core shows nothing and knows no desktop" Core "$views|$desktop|Tests/"
forbid "Core asks the system for files alone" Core "$system"
forbid "Core knows no one platform" Core 'Platform/[^"]*/'
forbid "A platform knows the plain records of Core alone" Platform 'Core/' "$records"
forbid "A platform shows nothing" Platform "$views|Tests/"
forbid "One platform knows nothing of the other" Platform/Linux 'Platform/MacOS/|CoreFoundation/|AppKit/|Foundation/'
forbid "One platform knows nothing of the other" Platform/MacOS 'Platform/Linux/|glib|gio/|xcb/'
forbid "The terminal command leaves the system to the platform" Cli "$desktop|$system|App/|Q[A-Z]|Tests/"
forbid "The app leaves the system to the platform" App "$desktop|$system|Cli/|Tests/"
exit $bad

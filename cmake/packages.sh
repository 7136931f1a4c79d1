# shellcheck shell=bash disable=SC2034
# What the project needs from the system, and how each system's package manager is asked for it. Sourced by ./dev.

# One line a thing: its name on Debian and Ubuntu, Fedora, Arch, Homebrew; "-" where it comes with another.
packages_build='
build-essential            gcc-c++                base-devel     -
cmake                      cmake                  cmake          cmake
ninja-build                ninja-build            ninja          ninja
pkg-config                 pkgconf-pkg-config     pkgconf        pkgconf
ccache                     ccache                 ccache         ccache
mold                       mold                   mold           -
libfmt-dev                 fmt-devel              fmt            fmt
nlohmann-json3-dev         json-devel             nlohmann-json  nlohmann-json
libsimdjson-dev            simdjson-devel         simdjson       simdjson
libpcre2-dev               pcre2-devel            pcre2          pcre2
libcli11-dev               cli11-devel            cli11          cli11
libglib2.0-dev             glib2-devel            glib2          -
libxcb1-dev                libxcb-devel           libxcb         -
libxcb-ewmh-dev            xcb-util-wm-devel      xcb-util-wm    -
libxcb-res0-dev            -                      -              -
libarchive-dev             libarchive-devel       libarchive     libarchive
libcurl4-openssl-dev       libcurl-devel          curl           curl
qt6-base-dev               qt6-qtbase-devel       qt6-base       qt
qt6-declarative-dev        qt6-qtdeclarative-devel qt6-declarative -
qt6-declarative-dev-tools  -                      -              -
libqt6svg6-dev             qt6-qtsvg-devel        qt6-svg        -
qml6-module-qtquick        -                      -              -
qml6-module-qtquick-window -                      -              -
qml6-module-qtquick-controls -                    -              -
qml6-module-qtquick-templates -                   -              -
qml6-module-qtquick-layouts -                     -              -
qml6-module-qtquick-shapes -                      -              -
qml6-module-qtqml          -                      -              -
qml6-module-qtqml-workerscript -                  -              -
qml6-module-qttest         -                      -              -
libgtest-dev               gtest-devel            gtest          googletest
libgmock-dev               gmock-devel            -              -
libbenchmark-dev           google-benchmark-devel benchmark      google-benchmark
libxcb-xtest0-dev          -                      -              -
at-spi2-core               at-spi2-core           at-spi2-core   -
trayer                     trayer                 trayer         -
dunst                      dunst                  dunst          -
xfce4-panel                xfce4-panel            xfce4-panel    -
xvfb                       xorg-x11-server-Xvfb   xorg-server-xvfb -
dbus                       dbus-daemon            dbus           -
openbox                    openbox                openbox        -
xterm                      xterm                  xterm          -
unzip                      unzip                  unzip          -
'
packages_lint='
clang-format-16            clang-tools-extra      clang          clang-format
clang-tidy-16              -                      -              llvm
git                        git                    git            git
'
packages_fuzz='
clang-16                   clang                  clang          llvm
libclang-rt-16-dev         compiler-rt            compiler-rt    -
'
packages_package='
dpkg-dev                   dpkg                   dpkg           -
file                       file                   file           -
'

cores() { nproc 2>/dev/null || sysctl -n hw.ncpu; }

# The column of the tables above; 0 where the system is none of them.
package_column() {
    if command -v apt-get >/dev/null; then echo 1
    elif command -v dnf >/dev/null; then echo 2
    elif command -v pacman >/dev/null; then echo 3
    elif command -v brew >/dev/null; then echo 4
    else echo 0; fi
}

as_root() {
    if [[ $(id -u) == 0 ]]; then "$@"; return; fi
    command -v sudo >/dev/null || { echo "Packages are missing and there is no sudo. As root: $*" >&2; return 1; }
    # On a build machine nobody can answer a question for the password.
    sudo ${CI:+-n} "$@"
}

missing() {  # COLUMN PACKAGE...
    local column=$1 name
    shift
    for name; do
        case $column in
            1) [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] ;;
            2) rpm -q --whatprovides "$name" ;;
            3) pacman -T "$name" ;;
            4) brew list --versions "$name" ;;
        esac >/dev/null 2>&1 || echo "$name"
    done
}

install_packages() {  # COLUMN PACKAGE...
    local column=$1
    shift
    case $column in
        1)
            as_root apt-get update -qq
            # A build machine is thrown away: nothing on it needs to survive a power cut.
            as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
                -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 ${CI:+-o Dpkg::Options::=--force-unsafe-io} "$@" </dev/null
            ;;
        2) as_root dnf install -y "$@" ;;
        3) as_root pacman -S --noconfirm --needed "$@" ;;
        4) brew install "$@" ;;
    esac
}

# need GROUP: what the group lists is installed. Asked once; again only when its list changes.
need() {
    local table=packages_$1 stamp=build/.packages-$1 list column wanted lacking
    list=${!table%$'\n'}
    [[ -f $stamp && $(<"$stamp") == "$list" ]] && return

    column=$(package_column)
    [[ $column != 0 ]] || { echo "No package manager known here. Install by hand: $list" >&2; return 1; }
    wanted=$(awk -v column="$column" 'NF && $column != "-" {print $column}' <<<"$list")
    # shellcheck disable=SC2086
    lacking=$(missing "$column" $wanted)
    if [[ $lacking ]]; then
        echo "Installing: ${lacking//$'\n'/ }"
        # shellcheck disable=SC2086
        install_packages "$column" $lacking
    fi
    mkdir -p build
    echo "$list" >"$stamp"
}

# Sourced by the other scripts: what a bare Debian lacks to build and test Ambertide, installed by package name.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-svg-dev qt6-tools-dev qt6-l10n-tools libxcb1-dev
    libxcb-randr0-dev libsystemd-dev libglib2.0-dev libsodium-dev libwayland-dev liblcms2-dev python3)
run_packages=(dbus-daemon libqt6gui6 xvfb hicolor-icon-theme)
test_packages=("${run_packages[@]}" xserver-xorg-core xserver-xorg-video-dummy x11-xserver-utils systemd wlsunset
    sway colord openssl)
desktop_packages=(openbox xfce4-panel lxqt-panel tint2 adwaita-icon-theme at-spi2-core gir1.2-atspi-2.0 python3-gi
    imagemagick libfaketime xdotool)
picture_packages=(fonts-inter optipng util-linux)
check_packages=(clang-format git)
package_packages=(dpkg-dev lintian appstream desktop-file-utils file git)
if [ "$(. /etc/os-release && echo "${VERSION_ID:-}")" != 12 ]; then
    build_packages+=(liblayershellqtinterface-dev) # the panel beside its icon on Wayland; Debian 12 has it for Qt 5 only
    test_packages+=(kwin-wayland kwin-common) # Night Light; that of Debian 12's KWin is another
    desktop_packages+=(qt6-svg-plugins) # what draws icons in LXQt's panel; Debian 12 has it with the library
fi

# install_packages <package>...: installs those that are missing.
install_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -qq -y --no-install-recommends -o Dpkg::Options::=--force-confold "${missing[@]}" >/dev/null
}

# as_root <command>...: with sudo where this is not root.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# build <preset> [<target>...]: configures and builds it, with a job for each processor.
build() {
    local preset=$1
    shift
    cd "$repository"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}

# run_tests <preset> [<argument of ctest>...]
run_tests() {
    cd "$repository"
    ctest --preset "$1" --parallel "$(nproc)" "${@:2}"
}

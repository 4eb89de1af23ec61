#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Debian packages that the program is built, run and tested with; sourced by ./run and ./test.
# shellcheck disable=SC2034

run_packages="ffmpeg binutils file procps bc bash mawk xdg-utils"
build_packages="g++ cmake ninja-build pkg-config qt6-base-dev qt6-svg-dev qt6-multimedia-dev libgl1-mesa-dev
    libavformat-dev libavcodec-dev libavutil-dev libswscale-dev libplist-dev"
window_packages="libqt6svg6 libqt6multimediawidgets6 qt6-qpa-plugins
    qt6-translations-l10n fonts-dejavu-core"
test_packages="libgtest-dev libgmock-dev python3 git dbus-daemon clang-format clang-tidy
    shellcheck appstream desktop-file-utils mandoc"

# install_missing PACKAGE...: installs what dpkg does not know as installed, saying what; fails when it cannot.
install_missing() {
    missing=""
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null)" != "install ok installed" ]; then
            missing="$missing $package"
        fi
    done
    [ -z "$missing" ] && return 0
    echo "Installing missing packages:$missing"
    as_root=""
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null 2>&1; then
            echo "Please install these packages as root:$missing" >&2
            return 1
        fi
        as_root="sudo"
    fi
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

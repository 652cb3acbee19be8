# shellcheck shell=sh disable=SC2034
# Sourced by ./run and ./test. need PACKAGE... installs those of the given Debian or Ubuntu packages that are missing,
# or says what to type if it may not install.

need() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This is not a Debian or Ubuntu system, so I can't tell whether everything needed is installed."
        echo "The packages, by their Debian names: $*"
        return 0
    fi
    missing=
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
    done
    [ -z "$missing" ] && return 0

    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
            as_root="sudo"
        else
            echo "These packages are missing and I may not install them:$missing"
            echo "Type, as root: apt-get update && apt-get install --no-install-recommends$missing"
            return 1
        fi
    fi
    echo "Installing:$missing"
    # Try without updating the package lists first: that is much quicker if they are there already.
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing \
        >/dev/null 2>&1 && return 0
    # shellcheck disable=SC2086
    if $as_root apt-get update -qq &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing \
            >/dev/null; then
        return 0
    fi
    echo "Installing failed. Type, as root: apt-get update && apt-get install --no-install-recommends$missing"
    return 1
}

build_packages="build-essential cmake ninja-build pkg-config ccache libglfw3-dev libglew-dev libglu1-mesa-dev
    libgl1-mesa-dri libopenal-dev libsndfile1-dev libvorbis-dev libmpg123-dev libopenmpt-dev libminizip-dev libpng-dev
    libjpeg-dev zlib1g-dev"
screen_packages="xvfb imagemagick"
test_packages="libgtest-dev xvfb xdotool openbox x11-utils x11-xkb-utils x11-xserver-utils imagemagick zip sox
    libsox-fmt-mp3 vorbis-tools flac lame libfreetype-dev fonts-dejavu-core libassimp-dev ffmpeg
    assimp-testmodels unzip desktop-file-utils appstream tesseract-ocr bubblewrap faketime
    pulseaudio pulseaudio-utils"
bench_packages="libbenchmark-dev libtinyxml2-dev libpugixml-dev"
clang_packages="clang-14"
lint_packages="clang-format-14 clang-tidy-14 shellcheck git"
release_packages="debhelper git zip libassimp-dev libfreetype-dev"

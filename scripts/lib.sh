# SPDX-FileCopyrightText: The OrvCore authors
# SPDX-License-Identifier: MIT
#
# Functions that the scripts share. Source this file; do not run it.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The Debian 12 packages that the library, its examples and its tests need.
build_packages=(
    cmake ninja-build g++ pkg-config qtbase5-dev
    libassimp-dev zlib1g-dev assimp-testmodels
    libepoxy-dev libegl-dev libegl1 libegl-mesa0 libgl1-mesa-dri libgles2
    graphviz
)
package_packages=(
    cmake ninja-build g++ qtbase5-dev dpkg-dev file
    doxygen doxygen-awesome-css graphviz python3
)
test_packages=(
    libgtest-dev libgmock-dev librapidcheck-dev binutils clang libclang-rt-14-dev valgrind doxygen
    abigail-tools chromium python3-jsonschema "${package_packages[@]}"
)
m32_packages=(
    g++-multilib
)
lto_packages=(
    lld
)
check_packages=(
    git clang-format-14 clang-tidy-14
)

# install_packages PACKAGE...: installs the missing packages and prints their names.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed \
            || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing Debian packages: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# configure PRESET [-B DIRECTORY] [CMAKE_OPTION...]: configures into build/PRESET by default.
configure() {
    local preset=$1
    shift
    cmake --preset "$preset" -G Ninja "$@"
}

# build PRESET [-B DIRECTORY] [CMAKE_OPTION...]: configures and builds.
build() {
    local directory=build/$1
    [ "${2:-}" = -B ] && directory=$3
    configure "$@"
    cmake --build "$directory"
}

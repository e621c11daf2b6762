#!/bin/sh
# Installs the Debian packages the build needs, only those that are missing.
set -eu
need="cmake g++ g++-multilib make googletest libbenchmark-dev libpng-dev binutils"
# The host tools (e3d-render, e3d-view) and their tests.
need="$need pkg-config libassimp-dev assimp-testmodels libstb-dev libsdl2-dev xvfb xauth libmeshoptimizer-dev"
# The Windows DLLs (mingw-w64) and their tests (64-bit Wine).
need="$need g++-mingw-w64-i686 g++-mingw-w64-x86-64 wine wine64"
# 64-bit ARM: clang with Debian's arm64 cross libraries (not g++-aarch64-linux-gnu,
# which would remove g++-multilib), and qemu-user for the tests.
need="$need clang libstdc++-12-dev-arm64-cross libgcc-12-dev-arm64-cross libc6-dev-arm64-cross"
need="$need binutils-aarch64-linux-gnu qemu-user"
# WebAssembly: Debian's emscripten; the tests run under node, the page's test
# in headless Chromium.
need="$need emscripten chromium"
missing=""
for p in $need; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
echo "installing:$missing"
sudo_cmd=""
[ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo_cmd apt-get update -q
$sudo_cmd apt-get install -y -q $missing

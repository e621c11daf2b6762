#!/bin/sh
# Builds and runs every test in the seven builds: x86-64, i386, x86-64 with
# AddressSanitizer and UndefinedBehaviorSanitizer, the 32-bit and 64-bit
# Windows DLLs (cross-built; the 64-bit tests run under Wine, the 32-bit ones
# where 32-bit Wine is installed), 64-bit ARM (cross-built with clang, tests
# under qemu-user) and WebAssembly (emscripten, tests under node).
set -eu
cd "$(dirname "$0")/.."
tools/setup-deps.sh
presets=${E3D_PRESETS:-"x64 i386 asan win32 win64 arm64 wasm"}
for preset in $presets; do
  echo "=== $preset ==="
  cmake --preset "$preset" > /dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j2
done
echo "all tests passed: $presets"

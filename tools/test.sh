#!/bin/sh
# Builds and runs every test in the three builds: x86-64, i386 and x86-64 with
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -eu
cd "$(dirname "$0")/.."
tools/setup-deps.sh
presets=${E3D_PRESETS:-"x64 i386 asan"}
for preset in $presets; do
  echo "=== $preset ==="
  cmake --preset "$preset" > /dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j2
done
echo "all tests passed: $presets"

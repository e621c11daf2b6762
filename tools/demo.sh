#!/bin/sh
# Builds the library and the demo (x86-64) and draws the showcase into out/
# (or the directory given).
set -eu
cd "$(dirname "$0")/.."
tools/setup-deps.sh
cmake --preset x64 > /dev/null
cmake --build --preset x64 --target demo
out=${1:-out}
build/x64/tools/demo "$out"
echo "open $(cd "$out" && pwd)/demo-depth.png, demo-painter.png, demo-letterbox.png and demo-textures.png"

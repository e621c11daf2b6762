#!/bin/sh
# portable.sh BUILD_DIR: W1 and W3 natively and as WebAssembly under node, in
# the same run (the WebAssembly library is the wasm preset's build).
set -eu
dir=$1
echo "W1 and W3, native x86-64:"
"$dir/bench/e3d_portable_bench"
export NODE_PATH=/usr/share/nodejs
cmake --preset wasm > /dev/null
cmake --build --preset wasm --target engine3d_static engine3d_host > /dev/null
em++ -std=c++20 -O2 -ffp-contract=off -Iinclude -Ibench bench/portable/portable_bench.cpp bench/sphere_scene.cpp \
  bench/target.cpp build/wasm/libengine3d_static.a build/wasm/host/libengine3d_host.a \
  -sENVIRONMENT=node -sALLOW_MEMORY_GROWTH=1 -o "$dir/portable-bench.js"
echo "W1 and W3, WebAssembly under node $(node --version):"
node --no-experimental-fetch "$dir/portable-bench.js"

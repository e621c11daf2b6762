#!/bin/sh
# web.sh [--build] [PORT]: builds the web page into build/web/ (index.html,
# engine3d.js, engine3d.wasm; nothing fetched from elsewhere) from the wasm
# build's library; without --build, also serves it on 127.0.0.1 (port 8080
# unless given) with python3's http.server and prints the address.
set -eu
cd "$(dirname "$0")/.."
build_only=0
[ "${1:-}" = --build ] && build_only=1 && shift
port=${1:-8080}
tools/setup-deps.sh
export NODE_PATH=/usr/share/nodejs
cmake --preset wasm > /dev/null
cmake --build --preset wasm --target engine3d_static engine3d_host
mkdir -p build/web
em++ -std=c++20 -O2 -ffp-contract=off -Wall -Wextra -Werror -Wno-missing-field-initializers -Iinclude -Itools/common web/page.cpp \
  tools/common/model_parts.cpp \
  build/wasm/libengine3d_static.a build/wasm/host/libengine3d_host.a -o build/web/engine3d.js \
  -sENVIRONMENT=web -sALLOW_MEMORY_GROWTH=1 -sEXPORTED_RUNTIME_METHODS=HEAPU8,UTF8ToString \
  -sEXPORTED_FUNCTIONS=_PageStart,_PageShow,_PageView,_PageDraw,_PageRgba,_PageHash,_PageLoad,_PageError,_malloc,_free
cp web/index.html build/web/
echo "wrote build/web/ (index.html, engine3d.js, engine3d.wasm)"
[ $build_only = 1 ] && exit 0
echo "serving http://127.0.0.1:$port/ (Ctrl-C stops)"
exec python3 -m http.server --bind 127.0.0.1 --directory build/web "$port"

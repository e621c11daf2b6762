#!/bin/sh
# browser_test.sh SOURCE_DIR OUT_DIR HASH: builds the web page, serves it on a
# free loopback port and opens it in headless Chromium, which must draw the
# fixed frame whose 5:5:5 buffer hashes to HASH (the native build's hash of
# the same frame, pinned by WebPage.FixedFrame). Writes OUT_DIR/page.png.
# The server and the browser are stopped whatever happens.
set -eu
src=$1 out=$2 want=$3
mkdir -p "$out"
"$src/tools/web.sh" --build > "$out/web-build.log" 2>&1 || { cat "$out/web-build.log"; exit 1; }
profile=$(mktemp -d)
server=""
cleanup() {
  [ -n "$server" ] && kill "$server" 2> /dev/null || true
  rm -rf "$profile"
}
trap cleanup EXIT INT TERM
python3 -u -m http.server 0 --bind 127.0.0.1 --directory "$src/build/web" > "$out/server.log" 2>&1 &
server=$!
port=""
for i in $(seq 1 50); do
  port=$(sed -n 's/^Serving HTTP on 127.0.0.1 port \([0-9]*\).*/\1/p' "$out/server.log")
  [ -n "$port" ] && break
  sleep 0.1
done
[ -n "$port" ] || { cat "$out/server.log"; echo "the server did not start"; exit 1; }
# Off the network: no background fetches, no component updates, no sync.
browse() {
  timeout 60 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$profile" --virtual-time-budget=15000 "$@" 2> "$out/chromium.log"
}
got=$(browse --dump-dom "http://127.0.0.1:$port/index.html?test" |
  sed -n 's/.*<pre id="hash">\([0-9]*\)<\/pre>.*/\1/p')
[ "$got" = "$want" ] || { echo "page drew hash '$got', native $want"; exit 1; }
browse --window-size=720,640 --screenshot="$out/page.png" "http://127.0.0.1:$port/index.html" > /dev/null
[ -s "$out/page.png" ] || { echo "no screenshot"; exit 1; }
echo "the page drew $got, as the native build does; screenshot $out/page.png"

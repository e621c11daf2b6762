#!/bin/sh
# browser_test.sh SOURCE_DIR OUT_DIR HASH: builds the web page, serves a copy
# of it on a free loopback port and opens it in headless Chromium, which must
# draw the fixed frame whose 5:5:5 buffer hashes to HASH (the native builds'
# hash of the same frame, pinned by WebPage.FixedFrameAndEveryMode); given a
# damaged model file, the page must say so and still draw that frame. Writes
# OUT_DIR/page.png. The server and the browser are stopped whatever happens.
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
rm -rf "$out/site"
cp -r "$src/build/web" "$out/site"
printf 'v 0 0 0\nv 1 0 0\nf 1 2 3\n' > "$out/site/damaged.obj"
python3 -u -m http.server 0 --bind 127.0.0.1 --directory "$out/site" > "$out/server.log" 2>&1 &
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
hash() { sed -n 's/.*<pre id="hash">\([0-9]*\)<\/pre>.*/\1/p' "$1"; }
browse --dump-dom "http://127.0.0.1:$port/index.html?test" > "$out/fixed.html"
got=$(hash "$out/fixed.html")
[ "$got" = "$want" ] || { echo "page drew hash '$got', native $want"; exit 1; }
browse --dump-dom "http://127.0.0.1:$port/index.html?test&model=damaged.obj" > "$out/damaged.html"
grep -q '<p id="message">damaged.obj: line 3: a face corner names no vertex of the file</p>' "$out/damaged.html" ||
  { grep 'id="message"' "$out/damaged.html"; echo "no message for the damaged file"; exit 1; }
[ "$(hash "$out/damaged.html")" = "$want" ] || { echo "the page did not go on drawing"; exit 1; }
browse --window-size=720,640 --screenshot="$out/page.png" "http://127.0.0.1:$port/index.html" > /dev/null
[ -s "$out/page.png" ] || { echo "no screenshot"; exit 1; }
echo "the page drew $got, as the native builds do, and refused the damaged file; screenshot $out/page.png"

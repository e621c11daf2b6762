#!/bin/sh
# wine-run.sh [--prefix DIR] PROGRAM.exe [ARGS...]: runs a cross-built Windows
# program under Wine, quietly and without fetching Mono or Gecko. Wine keeps
# its configuration in DIR (a build passes its own, so no run depends on what
# another build left there); the first run makes it while concurrent runs
# wait. A 32-bit program where only 64-bit Wine is installed exits with 77,
# which CTest reports as skipped.
set -eu
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
if [ "${1:-}" = --prefix ]; then
  export WINEPREFIX="$2"
  shift 2
fi
export WINEPREFIX="${WINEPREFIX:-${TMPDIR:-/tmp}/engine3d-wine-$(id -u)}"
# The optional header's magic: 0x10b for a 32-bit program, 0x20b for 64-bit.
pe=$(od -An -tu4 -j60 -N4 "$1" | tr -d ' ')
magic=$(od -An -tx2 -j$((pe + 24)) -N2 "$1" | tr -d ' ')
if [ "$magic" = 010b ] && [ ! -x /usr/lib/wine/wine ]; then
  echo "skipped: 32-bit Wine (wine32:i386) is not installed, so 32-bit Windows programs cannot run here"
  exit 77
fi
if [ ! -f "$WINEPREFIX/.engine3d-ready" ]; then
  mkdir -p "$WINEPREFIX"
  flock -o "$WINEPREFIX/.engine3d-lock" sh -c 'cd "$WINEPREFIX" && [ -f .engine3d-ready ] ||
    { wineboot --init > .engine3d-init.log 2>&1 && touch .engine3d-ready; } || { cat .engine3d-init.log; exit 1; }'
fi
# One server per prefix, started under the lock and kept for 30 s after its
# last program: two programs that each start a server at once can lose the
# race ("wine client error ... Connection reset by peer"), and so can a
# program that connects while an idle server is shutting down. The second
# case cannot be locked out, so Wine's own start-up errors, which come
# before the program runs, are retried. flock -o: the server must not
# inherit the lock, or it would hold it for its whole life.
flock -o "$WINEPREFIX/.engine3d-lock" wineserver -p30 2> /dev/null || true
err=$(mktemp)
trap 'rm -f "$err"' EXIT
for attempt in 1 2 3; do
  status=0
  wine "$@" 2> "$err" || status=$?
  grep -qE "^wine( client error|:)" "$err" || break
  sleep 1
  flock -o "$WINEPREFIX/.engine3d-lock" wineserver -p30 2> /dev/null || true
done
cat "$err" >&2
exit $status

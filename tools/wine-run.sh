#!/bin/sh
# wine-run.sh PROGRAM.exe [ARGS...]: runs a cross-built Windows program under
# Wine, quietly and without fetching Mono or Gecko. A 32-bit program where only
# 64-bit Wine is installed exits with 77, which CTest reports as skipped.
set -eu
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export WINEPREFIX="${WINEPREFIX:-${TMPDIR:-/tmp}/engine3d-wine-$(id -u)}"
# The optional header's magic: 0x10b for a 32-bit program, 0x20b for 64-bit.
pe=$(od -An -tu4 -j60 -N4 "$1" | tr -d ' ')
magic=$(od -An -tx2 -j$((pe + 24)) -N2 "$1" | tr -d ' ')
if [ "$magic" = 010b ] && [ ! -x /usr/lib/wine/wine ]; then
  echo "skipped: 32-bit Wine (wine32:i386) is not installed, so 32-bit Windows programs cannot run here"
  exit 77
fi
mkdir -p "$WINEPREFIX"
exec wine "$@"

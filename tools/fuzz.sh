#!/bin/sh
# Builds the libFuzzer targets (fuzz preset: clang with AddressSanitizer and
# UndefinedBehaviorSanitizer) and fuzzes one target for a while, growing its
# corpus in a scratch directory; then merges what is new and minimal into the
# checked-in corpus. Usage: tools/fuzz.sh TARGET [SECONDS] (triangles, scenes,
# construction, importers; 600 seconds by default). E3D_FUZZ_DIR chooses the
# build directory.
set -eu
cd "$(dirname "$0")/.."
target=${1:?"usage: tools/fuzz.sh triangles|scenes|construction|importers [seconds]"}
seconds=${2:-600}
missing=""
for p in clang libclang-rt-14-dev; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
if [ -n "$missing" ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get install -y -q $missing
fi
dir=${E3D_FUZZ_DIR:-build/fuzz}
cmake --preset fuzz -B "$dir" > /dev/null
cmake --build "$dir" -j2 --target "fuzz_$target"
work="$dir/corpus-$target"
mkdir -p "$work"
# assimp loses blocks of its own on damaged files; the target counts the engine's.
leaks=1
if [ "$target" = importers ]; then
  leaks=0
  export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0"
fi
"$dir/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=2048 -timeout=10 -detect_leaks=$leaks \
  -artifact_prefix="$dir/$target-" "$work" "fuzz/corpus/$target"
# Only inputs that reach new code are checked in: counters, comparisons and
# value profiles would keep thousands of near-twins.
"$dir/fuzz/fuzz_$target" -set_cover_merge=1 -use_counters=0 -use_value_profile=0 -use_cmp=0 \
  "fuzz/corpus/$target" "$work"

#!/bin/sh
# models.sh BUILD_DIR: reading rates of our model readers and e3d-render's
# time and peak memory, in all, on generated sphere grids of one and four
# million triangles (made once, kept in BUILD_DIR/models).
set -eu
bench=$1/bench/models/e3d_model_bench
render=$1/tools/e3d-render/e3d-render
data=$1/models
mkdir -p "$data"
for n in 1 4; do
  for format in obj ply stl; do
    file=$data/sphere-${n}m.$format
    [ -f "$file" ] || "$bench" generate $format ${n}000000 "$file" > /dev/null
  done
done
echo "reading (our readers, one core, best of three):"
"$bench" read "$data"/sphere-*
echo "e3d-render, default options (both sides), 800x600, one core:"
for name in sphere-1m.obj sphere-4m.obj sphere-4m.ply sphere-4m.stl; do
  printf '%s' "$name"
  "$bench" run "$render" "$data/$name" -o "$data/$name.png" -q
done

#!/bin/sh
# batch_test.sh RENDER WORK: a batch over some of Debian's assimp test models
# in a tree of folders, one damaged file among them: the damaged one is
# reported and makes the exit code 8, every other one is drawn, each picture
# where the tree says.
set -u
render=$1 work=$2
models=/usr/share/assimp/models
rm -rf "$work" && mkdir -p "$work/in/plain" "$work/in/textured/deep"
cp "$models/PLY/cube.ply" "$models/STL/Spider_ascii.stl" "$work/in/plain/"
cp "$models/OBJ/box.obj" "$models/Collada/COLLADA.dae" "$work/in/textured/"
cp "$models/OBJ/spider.obj" "$models/OBJ/spider.mtl" "$models"/OBJ/*.jpg "$work/in/textured/deep/" 2>/dev/null
printf 'ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nend_header\n1\n' > "$work/in/plain/broken.ply"
echo "not a model" > "$work/in/readme.txt"
"$render" --batch "$work/in" -o "$work/out" -j 2 -s 64x48 > "$work/summary.txt" 2>&1
code=$?
cat "$work/summary.txt"
failed=0
[ $code -eq 8 ] || { echo "exit code $code, not 8"; failed=1; }
grep -q 'failed plain/broken.ply' "$work/summary.txt" || { echo "the damaged file is not reported"; failed=1; }
for png in plain/cube.ply plain/Spider_ascii.stl textured/box.obj textured/COLLADA.dae textured/deep/spider.obj; do
  [ -s "$work/out/$png.png" ] || { echo "$png.png not drawn"; failed=1; }
done
[ ! -e "$work/out/readme.txt.png" ] && [ ! -e "$work/out/plain/broken.ply.png" ] || { echo "a picture of what is no model"; failed=1; }
exit $failed

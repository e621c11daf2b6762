#!/bin/sh
# install_test.sh BUILD EXAMPLES WORK: installs the build into a fresh prefix
# under WORK, builds the examples against it as a user would (find_package and
# pkg-config), runs them, and checks both builds drew the same pictures.
set -eu
build=$1 examples=$2 work=$3
. "$(dirname "$0")/install_steps.sh"
mkdir -p "$work/pc"
step install.log cmake --install "$build" --prefix "$prefix"
lib=$(dirname "$(find "$prefix" -name libengine3d.so -print | head -n 1)")
test -f "$prefix/include/engine3d.h" && test -f "$lib/pkgconfig/engine3d.pc"
test -f "$lib/cmake/engine3d/engine3dConfig.cmake"
# The thumbnailer entry comes with the tools.
[ ! -x "$prefix/bin/e3d-render" ] || test -f "$prefix/share/thumbnailers/engine3d.thumbnailer"

step configure.log cmake -S "$examples" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix"
step build.log cmake --build "$work/cmake"
cp "$examples"/*.c "$examples"/*.h "$examples"/Makefile "$work/pc"
step make.log env PKG_CONFIG_PATH="$lib/pkgconfig" make -C "$work/pc"

for ex in triangle cube textured; do
  for dir in cmake pc; do
    (cd "$work/$dir" && step "$dir-$ex.log" env LD_LIBRARY_PATH="$lib" "./$ex")
    # More than the background's colour in the picture.
    colours=$(tail -c +16 "$work/$dir/$ex.ppm" | od -An -v -tx1 -w3 | sort -u | wc -l)
    test "$colours" -gt 1 || { echo "$dir/$ex drew nothing"; exit 1; }
  done
  cmp "$work/cmake/$ex.ppm" "$work/pc/$ex.ppm"
done
echo "installed into $prefix; examples built both ways and ran"

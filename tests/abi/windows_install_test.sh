#!/bin/sh
# windows_install_test.sh BUILD TRIPLE TOOLCHAIN EXAMPLES WORK LINUX_PICTURES:
# installs a Windows build into a fresh prefix, checks the tree a host ships
# from, builds the examples against it (CMake package, and a plain compiler
# call as a MinGW user would), and runs them under Wine: their pictures must
# equal the Linux build's byte for byte.
set -eu
build=$1 triple=$2 toolchain=$3 examples=$4 work=$5 linux=$6
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../../tools/tests/install_steps.sh"
mkdir -p "$work/plain"
step install.log cmake --install "$build" --prefix "$prefix"
for f in bin/engine3d.dll bin/engine3d_host.dll lib/libengine3d.dll.a lib/engine3d.def include/engine3d.h; do
  test -f "$prefix/$f" || { echo "missing from the install: $f"; exit 1; }
done

step configure.log cmake -S "$examples" -B "$work/cmake" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_EXE_LINKER_FLAGS=-static
step build.log cmake --build "$work/cmake"
for ex in triangle cube textured; do
  step "plain-$ex.log" "$triple-gcc" -std=c99 -O2 -Wall -Werror -I"$prefix/include" -o "$work/plain/$ex.exe" \
    "$examples/$ex.c" -L"$prefix/lib" -lengine3d -lengine3d_host -static-libgcc
done
# The host calls the engine by its plain exported name.
"$triple-objdump" -p "$work/plain/triangle.exe" | grep -A400 'DLL Name: engine3d.dll' | grep -q '[[:space:]]InitEngine3D$' ||
  { echo "triangle.exe does not import InitEngine3D by plain name from engine3d.dll"; exit 1; }

for dir in cmake plain; do
  cp "$prefix"/bin/*.dll "$work/$dir/"
  for ex in triangle cube textured; do
    status=0
    (cd "$work/$dir" && "$here/../../tools/wine-run.sh" --prefix "$build/wine" "./$ex.exe" > "$ex.log" 2>&1) || status=$?
    [ $status -eq 77 ] && { cat "$work/$dir/$ex.log"; exit 77; }
    [ $status -eq 0 ] || { cat "$work/$dir/$ex.log"; echo "$dir/$ex failed"; exit 1; }
  done
done
for ex in triangle cube textured; do
  cmp "$work/cmake/$ex.ppm" "$work/plain/$ex.ppm"
  if [ -f "$linux/$ex.ppm" ]; then
    cmp "$work/cmake/$ex.ppm" "$linux/$ex.ppm"
  else
    echo "skipped: no Linux pictures in $linux to compare with (the x64 suite makes them)"
    exit 77
  fi
done
echo "installed into $prefix; examples built both ways, ran under Wine, pictures equal the Linux build's"

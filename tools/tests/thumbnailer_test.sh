#!/bin/sh
# thumbnailer_test.sh BINDIR ENTRY IMAGE_CHECK WORK: runs the thumbnailer
# entry's Exec line as a file manager does (%s a size, %i the model as a
# file:// URI and as a plain path, %o the picture), with e3d-render found on
# PATH, and checks each picture: N x N with alpha, part opaque, part clear.
set -eu
bindir=$1 entry=$2 check=$3 work=$4
rm -rf "$work" && mkdir -p "$work/models dir"
printf 'v -1 -1 0\nv 1 -1 0\nv 0 1 0\nf 1 2 3\n' > "$work/models dir/tri angle.obj"
exec_line=$(sed -n 's/^Exec=//p' "$entry")
run() { # run INPUT OUTPUT: the Exec line with its fields filled in
  input=$1 output=$2
  set --
  for word in $exec_line; do
    case $word in
      %s) word=96 ;;
      %i) word=$input ;;
      %o) word=$output ;;
    esac
    set -- "$@" "$word"
  done
  PATH="$bindir:$PATH" "$@"
}
status=0
run "file://$work/models%20dir/tri%20angle.obj" "$work/uri.png" || { echo "the URI failed"; status=1; }
run "$work/models dir/tri angle.obj" "$work/path.png" || { echo "the path failed"; status=1; }
for png in "$work/uri.png" "$work/path.png"; do
  "$check" "$png" alpha 0.05 96 || status=1
done
exit $status

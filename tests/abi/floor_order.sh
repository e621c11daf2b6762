#!/bin/sh
# floor_order.sh SOURCE_DIR: the library's folders are floors, each using only
# the ones below it; any #include of a higher floor is reported as FILE:LINE.
cd "$1" || exit 1
floors="engine objects viewport raster pipeline"
rank() { i=0; for f in $floors; do [ "$f" = "$1" ] && { echo $i; return; }; i=$((i + 1)); done; echo -1; }
out=$(mktemp) || exit 1
trap 'rm -f "$out"' EXIT
status=0
for floor in $floors; do
  mine=$(rank "$floor")
  for file in "$floor"/*; do
    grep -n '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[a-z]*/' "$file" | while IFS= read -r hit; do
      line=${hit%%:*}
      target=$(echo "$hit" | sed 's/.*"\([a-z]*\)\/.*/\1/')
      theirs=$(rank "$target")
      [ "$theirs" -gt "$mine" ] && echo "$file:$line: $floor reaches up to $target"
    done
  done
done > "$out"
[ -s "$out" ] && { cat "$out"; status=1; }
[ $status -eq 0 ] && echo "every include points down: $floors"
exit $status

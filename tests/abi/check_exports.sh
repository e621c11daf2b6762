#!/bin/sh
# The shared library's dynamic symbol table must define exactly the functions
# the public header declares with E3D_API: nothing internal leaks, nothing is missing.
lib=$1 header=$2
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT
grep -E '^E3D_API ' "$header" | sed -E 's/.*E3D_CALL[[:space:]]+\**([A-Za-z0-9_]+)\(.*/\1/' | sort -u > "$tmp/want"
nm -D --defined-only "$lib" | awk '{print $NF}' | sed 's/@.*//' | sort -u > "$tmp/have"
status=0
extra=$(comm -13 "$tmp/want" "$tmp/have")
missing=$(comm -23 "$tmp/want" "$tmp/have")
if [ -n "$extra" ]; then echo "exported but not declared:"; echo "$extra"; status=1; fi
if [ -n "$missing" ]; then echo "declared but not exported:"; echo "$missing"; status=1; fi
# The engine allocates only through the host support library.
bad=$(nm -D --undefined-only "$lib" | awk '{print $NF}' | grep -E '^(malloc|calloc|realloc|free|_Znw|_Zna|_Zdl|_Zda)')
if [ -n "$bad" ]; then echo "allocates behind the host's back:"; echo "$bad"; status=1; fi
[ $status -eq 0 ] && echo "$(wc -l < "$tmp/want") exports match"
exit $status

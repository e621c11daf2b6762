#!/bin/sh
# check_pe.sh OBJDUMP DLL HEADER DEF IMPORTS...: a Windows DLL's export table
# and its module-definition file name exactly the functions the header
# declares with E3D_API, by their plain names, and the DLL imports from no
# DLL but the ones listed.
objdump=$1 dll=$2 header=$3 def=$4
shift 4
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT
"$objdump" -p "$dll" > "$tmp/dump" || exit 1
grep -E '^E3D_API ' "$header" | sed -E 's/.*E3D_CALL[[:space:]]+\**([A-Za-z0-9_]+)\(.*/\1/' | sort -u > "$tmp/want"
sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' "$tmp/dump" | sed -n 's/^[[:space:]]*\[ *[0-9]*\] //p' | sort -u > "$tmp/have"
status=0
extra=$(comm -13 "$tmp/want" "$tmp/have")
missing=$(comm -23 "$tmp/want" "$tmp/have")
if [ -n "$extra" ]; then echo "exported but not declared:"; echo "$extra"; status=1; fi
if [ -n "$missing" ]; then echo "declared but not exported:"; echo "$missing"; status=1; fi
sed -n '0,/^EXPORTS/d;s/^[[:space:]]*\([A-Za-z0-9_]*\).*/\1/p' "$def" | grep . | sort -u > "$tmp/def"
if ! cmp -s "$tmp/want" "$tmp/def"; then echo "$def differs from the header:"; diff "$tmp/want" "$tmp/def"; status=1; fi
sed -n 's/^[[:space:]]*DLL Name: //p' "$tmp/dump" | sort -u > "$tmp/imports"
printf '%s\n' "$@" | sort -u > "$tmp/allowed"
other=$(comm -23 "$tmp/imports" "$tmp/allowed")
if [ -n "$other" ]; then echo "imports from other DLLs:"; echo "$other"; status=1; fi
[ $status -eq 0 ] && echo "$(wc -l < "$tmp/want") exports by plain name; imports only: $(tr '\n' ' ' < "$tmp/imports")"
exit $status

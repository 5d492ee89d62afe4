#!/bin/sh
# Fails on any symbol the library exports that the documented list lacks, and on any C++ symbol
# outside the namespace Korel2D.
#   symbolCheck.sh LIBRARY LIST
set -e
LIBRARY="$1"; LIST="$2"
OUT=$(mktemp -d)
trap 'rm -rf "$OUT"' EXIT
nm -D --defined-only "$LIBRARY" | awk '{ print $NF }' \
  | grep -v -x -E '_edata|_end|__bss_start|_init|_fini' | sort -u > "$OUT/exported.txt"
test -s "$OUT/exported.txt"
sort -u "$LIST" > "$OUT/documented.txt"
status=0
comm -23 "$OUT/exported.txt" "$OUT/documented.txt" | grep -v '^_Z' > "$OUT/undocumented.txt" || true
if [ -s "$OUT/undocumented.txt" ]; then
  echo "exported but not documented:" >&2
  cat "$OUT/undocumented.txt" >&2
  status=1
fi
grep '^_Z' "$OUT/exported.txt" | c++filt | grep -v '^Korel2D::' > "$OUT/cxx.txt" || true
if [ -s "$OUT/cxx.txt" ]; then
  echo "C++ symbols outside Korel2D:: exported:" >&2
  cat "$OUT/cxx.txt" >&2
  status=1
fi
exit $status

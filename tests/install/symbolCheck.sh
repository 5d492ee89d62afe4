#!/bin/sh
# Fails on any symbol the library exports that the documented list lacks, and on any C++ symbol
# outside the namespace Korel2D.
#   symbolCheck.sh LIBRARY LIST
set -e
EXPORTED=$(nm -D --defined-only "$1" | awk '{ print $NF }' | grep -v -x -E '_edata|_end|__bss_start|_init|_fini')
test -n "$EXPORTED"
UNDOCUMENTED=$(echo "$EXPORTED" | grep -v '^_Z' | grep -v -x -F -f "$2" || true)
FOREIGN=$(echo "$EXPORTED" | grep '^_Z' | c++filt | grep -v '^Korel2D::' || true)
[ -z "$UNDOCUMENTED" ] || echo "exported but not documented:" "$UNDOCUMENTED" >&2
[ -z "$FOREIGN" ] || echo "C++ symbols outside Korel2D:: exported:" "$FOREIGN" >&2
[ -z "$UNDOCUMENTED$FOREIGN" ]

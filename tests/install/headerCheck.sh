#!/bin/sh
# A host that includes only Korel2D.h compiles as C89 and as C++11 with every warning an error,
# and finds in it none of the library's internal declarations.
#   headerCheck.sh C_COMPILER CXX_COMPILER INCLUDE_DIR HOST_SOURCE
set -e
CC="$1"; CXX="$2"; INCLUDE="$3"; HOST="$4"
OUT=$(mktemp -d)
trap 'rm -rf "$OUT"' EXIT
"$CC" -std=c89 -Wall -Wextra -pedantic -Werror -I"$INCLUDE" -c -o "$OUT/host.o" "$HOST"
"$CXX" -std=c++11 -Wall -Wextra -pedantic -Werror -I"$INCLUDE" -x c++ -c -o "$OUT/host.o" "$HOST"

# The lines of the library's own headers after preprocessing; system headers left out.
"$CC" -std=c89 -E -I"$INCLUDE" "$HOST" | awk '/^# [0-9]+ "/ { ours = ($3 ~ /Korel[A-Za-z0-9]*\.h"$/); next } ours' \
  > "$OUT/declared.txt"
INTERNAL='\b(fillDP|doAction|assignVariables[A-Za-z]*|errorCB|beginCB|endCB|vertexCB|combineCB|(tk|kv|mpi)[A-Z][A-Za-z0-9_]*)[[:space:]]*\('
if grep -E "$INTERNAL" "$OUT/declared.txt" >&2; then
  echo "Korel2D.h declares the internal functions above" >&2
  exit 1
fi
grep -q 'krViewLoad *(' "$OUT/declared.txt"

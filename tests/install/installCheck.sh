#!/bin/sh
# Installs the build into a scratch prefix and builds hosts against what was installed:
# a C host through pkg-config that loads a view by dlopen, and a C++ host through find_package.
set -e
BUILD="$1"; SOURCE="$2"; VIEW="$3"
PREFIX=$(mktemp -d)
trap 'rm -rf "$PREFIX"' EXIT
cmake --install "$BUILD" --prefix "$PREFIX" >/dev/null
LIBDIR=$(dirname "$(find "$PREFIX" -name libKorel2D.so.3 | head -n 1)")
test -f "$PREFIX/include/Korel2D.h"
test -f "$PREFIX/include/KorelDataSource.h"
test -L "$LIBDIR/libKorel2D.so"

export PKG_CONFIG_PATH="$LIBDIR/pkgconfig"
test "$(pkg-config --modversion korel2d)" = "3.4.1"
cc -std=c99 -Wall -Wextra -Werror -o "$PREFIX/cHost" "$SOURCE/cHost.c" $(pkg-config --cflags korel2d) -ldl
LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$VIEW"

cmake -S "$SOURCE/cmakeHost" -B "$PREFIX/cmakeHost" -DCMAKE_PREFIX_PATH="$PREFIX" >/dev/null
cmake --build "$PREFIX/cmakeHost" >/dev/null
LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cmakeHost/cmakeHost"

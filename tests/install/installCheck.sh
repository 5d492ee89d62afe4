#!/bin/sh
# Installs the build into a scratch prefix and builds hosts against what was installed:
# a C host through pkg-config that loads a view by dlopen, and a C++ host through find_package.
# The installed sample plug-in and one built here against the installed header alone are then
# found through KOREL_HOME by a view that uses them.
#   installCheck.sh BUILD SOURCE VIEW [SOURCES_VIEW]   (SOURCES_VIEW: examples/sources.k2d)
set -e
BUILD="$1"; SOURCE="$2"; VIEW="$3"
SOURCES_VIEW="${4:-$SOURCE/../../examples/sources.k2d}"
PREFIX=$(mktemp -d)
trap 'rm -rf "$PREFIX"' EXIT
cmake --install "$BUILD" --prefix "$PREFIX" >/dev/null
LIBDIR=$(dirname "$(find "$PREFIX" -name libKorel2D.so.3 | head -n 1)")
test -f "$PREFIX/include/Korel2D.h"
test -f "$PREFIX/include/KorelEdit.h"
test -f "$PREFIX/include/KorelDataSource.h"
test -L "$LIBDIR/libKorel2D.so"
test -f "$PREFIX/bin/libKrdExample.so"

export PKG_CONFIG_PATH="$LIBDIR/pkgconfig"
test "$(pkg-config --modversion korel2d)" = "3.4.1"
cc -std=c99 -Wall -Wextra -Werror -o "$PREFIX/cHost" "$SOURCE/cHost.c" $(pkg-config --cflags korel2d) -ldl
LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$VIEW"

cmake -S "$SOURCE/cmakeHost" -B "$PREFIX/cmakeHost" -DCMAKE_PREFIX_PATH="$PREFIX" >/dev/null
cmake --build "$PREFIX/cmakeHost" >/dev/null
LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cmakeHost/cmakeHost"

if [ ! -f "$SOURCES_VIEW" ]; then
  echo "missing the view of sources: $SOURCES_VIEW" >&2
  exit 1
fi
SOURCES_VIEW="$(cd "$(dirname "$SOURCES_VIEW")" && pwd)/$(basename "$SOURCES_VIEW")"
# An empty working directory, as "." is searched for plug-ins before KOREL_HOME.
mkdir "$PREFIX/run"
(cd "$PREFIX/run" && KOREL_HOME="$PREFIX" LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$SOURCES_VIEW" sources)

# A plug-in built out of the tree against the installed header alone provides the type the
# installed ones lack. Plug-ins link nothing of the library: the services come in the record.
mkdir -p "$PREFIX/outside/bin"
cc -std=c99 -Wall -Wextra -Werror -shared -fPIC -I"$PREFIX/include" \
  -o "$PREFIX/outside/bin/libKrdOutside.so" "$SOURCE/outOfTree/krdOutside.c"
for plugin in "$PREFIX/bin/libKrdExample.so" "$PREFIX/outside/bin/libKrdOutside.so"; do
  if readelf -d "$plugin" | grep NEEDED | grep -q Korel2D; then
    echo "$plugin links the library" >&2
    exit 1
  fi
done
(cd "$PREFIX/run" && KOREL_HOME="$PREFIX/outside" LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$SOURCES_VIEW" outside)

#!/bin/sh
# Installs the build into a scratch prefix and builds hosts against what was installed:
# a C++ host through find_package, and a C host through pkg-config that runs a view's sources by
# dlopen, with the installed sample plug-in and then one built here against the installed header
# alone, found through KOREL_HOME. The README's host program, built both ways as the README says,
# draws VIEW (the sample panel); the C++ host of KorelView.h, built both ways too, works the
# controls view in a window where a display is. Last, what scripts/demo.sh builds, in a build directory of its
# own, installs whole, and the installed demo host runs.
#   installCheck.sh BUILD SOURCE VIEW [SOURCES_VIEW]   (SOURCES_VIEW: examples/sources.k2d)
set -e
BUILD="$1"; SOURCE="$2"; VIEW="$3"
ROOT=$(cd "$SOURCE/../.." && pwd)
SOURCES_VIEW="${4:-$ROOT/examples/sources.k2d}"
PREFIX=$(mktemp -d)
trap 'rm -rf "$PREFIX"' EXIT
cmake --install "$BUILD" --prefix "$PREFIX" >/dev/null
LIBDIR=$(dirname "$(find "$PREFIX" -name libKorel2D.so.3 | head -n 1)")
for file in include/Korel2D.h include/KorelEdit.h include/KorelDataSource.h include/KorelView.h bin/libKrdExample.so; do
  test -f "$PREFIX/$file"
done
test -L "$LIBDIR/libKorel2D.so"
test -n "$(find "$PREFIX/share" -name LICENSE)"
# Installed programs find the installed library by themselves.
env -u LD_LIBRARY_PATH "$PREFIX/bin/korel2d-view" --help >/dev/null
env -u LD_LIBRARY_PATH "$PREFIX/bin/korel2d-convert" --help >/dev/null

export PKG_CONFIG_PATH="$LIBDIR/pkgconfig"
test "$(pkg-config --modversion korel2d)" = "3.4.1"
cc -std=c99 -Wall -Wextra -Werror -o "$PREFIX/cHost" "$SOURCE/cHost.c" $(pkg-config --cflags korel2d) -ldl

cmake -S "$SOURCE/cmakeHost" -B "$PREFIX/cmakeHost" -DCMAKE_PREFIX_PATH="$PREFIX" \
  -DMINIMAL_HOST="$ROOT/examples/host/minimalHost.c" -DPANEL_HOST="$ROOT/examples/host/panelHost.cpp" >/dev/null
cmake --build "$PREFIX/cmakeHost" >/dev/null
LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cmakeHost/cmakeHost"

# The README quotes the host program whole: the indented block under the line that names it.
awk '/minimalHost.c`\):$/ { inside = 1; next }
  inside && /^    / { if (started) for (; blanks > 0; --blanks) print ""; blanks = 0; started = 1; print substr($0, 5); next }
  inside && /^$/ { ++blanks; next }
  inside { exit }' "$ROOT/README.md" > "$PREFIX/readmeHost.c"
cmp -s "$PREFIX/readmeHost.c" "$ROOT/examples/host/minimalHost.c" ||
  { echo "the README's host program differs from examples/host/minimalHost.c" >&2; exit 1; }
# Built as the README says, it runs the panel; the pixel at the centre is a lamp bezel
# (0.45, 0.47, 0.50), not the page colour that a frame without the panel would show.
(cd "$PREFIX" && cc -o minimalHost "$ROOT/examples/host/minimalHost.c" $(pkg-config --cflags --libs korel2d) \
  -lEGL -lGL -Wl,-rpath,"$(pkg-config --variable=libdir korel2d)")
for host in "$PREFIX/minimalHost" "$PREFIX/cmakeHost/minimalHost"; do
  env -u LD_LIBRARY_PATH -u DISPLAY "$host" "$VIEW" | tee /dev/stderr |
    awk '{ exit !($(NF-2) >= 114 && $(NF-2) <= 116 && $(NF-1) >= 119 && $(NF-1) <= 121 && $NF >= 127 && $NF <= 129) }'
done

# The C++ host of KorelView.h, built as the README says and through CMake, moves the slider's
# variable of the controls view and prints it back. The header stands alone: no library header.
! grep -q '#include *["<]Korel' "$PREFIX/include/KorelView.h" ||
  { echo "KorelView.h includes another header of the library" >&2; exit 1; }
(cd "$PREFIX" && c++ -std=c++17 -o panelHost "$ROOT/examples/host/panelHost.cpp" $(pkg-config --cflags --libs korel2d) \
  -lGL -lX11 -Wl,-rpath,"$(pkg-config --variable=libdir korel2d)")
if [ -n "$DISPLAY" ]; then
  for host in "$PREFIX/panelHost" "$PREFIX/cmakeHost/panelHost"; do
    env -u LD_LIBRARY_PATH "$host" "$ROOT/examples/live.k2d" | tee /dev/stderr | grep -x "SETPOINT = 75" >/dev/null ||
      { echo "$host did not print SETPOINT = 75" >&2; exit 1; }
  done
else
  echo "install check: no DISPLAY, so panelHost is built but not run (it opens a window)"
fi

test -f "$SOURCES_VIEW"
SOURCES_VIEW="$(cd "$(dirname "$SOURCES_VIEW")" && pwd)/$(basename "$SOURCES_VIEW")"
# An empty working directory, as "." is searched for plug-ins before KOREL_HOME.
mkdir "$PREFIX/run"
(cd "$PREFIX/run" && KOREL_HOME="$PREFIX" LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$SOURCES_VIEW")

# A plug-in built out of the tree against the installed header alone provides the type the
# installed ones lack. Plug-ins link nothing of the library: the services come in the record.
mkdir -p "$PREFIX/outside/bin"
cc -std=c99 -Wall -Wextra -Werror -shared -fPIC -I"$PREFIX/include" \
  -o "$PREFIX/outside/bin/libKrdOutside.so" "$SOURCE/outOfTree/krdOutside.c"
! readelf -d "$PREFIX/bin/libKrdExample.so" "$PREFIX/outside/bin/libKrdOutside.so" | grep NEEDED | grep -q Korel2D ||
  { echo "a plug-in links the library" >&2; exit 1; }
(cd "$PREFIX/run" && KOREL_HOME="$PREFIX/outside" LD_LIBRARY_PATH="$LIBDIR" "$PREFIX/cHost" libKorel2D.so.3 "$SOURCES_VIEW" outside)

# From a fresh build directory: what scripts/demo.sh builds is all that an install copies.
TARGETS=$(sed -n 's/^TARGETS="\(.*\)"$/\1/p' "$ROOT/scripts/demo.sh")
test -n "$TARGETS"
cmake -S "$ROOT" -B "$PREFIX/demoBuild" -DKOREL2D_TESTS=OFF -DKOREL2D_BENCH=OFF >/dev/null
cmake --build "$PREFIX/demoBuild" -j"$(nproc)" --target $TARGETS >/dev/null
cmake --install "$PREFIX/demoBuild" --prefix "$PREFIX/demoInstall" >/dev/null
test -f "$PREFIX/demoInstall/bin/libKrdExample.so"
env -u LD_LIBRARY_PATH "$PREFIX/demoInstall/bin/korel2d-view" --help >/dev/null
"$PREFIX/demoInstall/bin/korel2d-feed" --help >/dev/null
env -u LD_LIBRARY_PATH "$PREFIX/demoInstall/bin/korel2d-convert" --help >/dev/null
echo "install check: the demo build installs whole and its korel2d-view, korel2d-feed and korel2d-convert run"

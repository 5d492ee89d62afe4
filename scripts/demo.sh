#!/bin/sh
# Installs what is missing, builds the library, the demo host, the feeder and the sample plug-in
# (so that `cmake --install build --prefix PREFIX` can follow), and shows the shipped live panel
# with the demo host, running: in a window when there is a display, otherwise 300 frames rendered
# off-screen, the last one written to korel2d-live.png.
set -e
cd "$(dirname "$0")/.."
sh scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
# All that an install copies, and nothing of the tests; the install test builds this same list.
TARGETS="korel2d-view korel2d-feed korel2d-convert KrdExample"
cmake --build build -j"$(nproc)" --target $TARGETS
if [ -z "$DISPLAY" ]; then
  set -- --png korel2d-live.png --frames 300 "$@"
fi
exec ./build/tools/korel2d-view/korel2d-view examples/live.k2d "$@"

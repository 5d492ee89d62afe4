#!/bin/sh
# Installs what is missing, builds, and shows the shipped sample panel with the demo host:
# in a window when there is a display, otherwise rendered off-screen into korel2d-panel.png.
set -e
cd "$(dirname "$0")/.."
sh scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target korel2d-view
if [ -z "$DISPLAY" ]; then
  set -- --png korel2d-panel.png "$@"
fi
exec ./build/tools/korel2d-view/korel2d-view examples/panel.k2d "$@"

#!/bin/sh
# Installs what is missing, builds the library twice (plain, and with AddressSanitizer and
# UBSan) and runs the whole test suite in both builds; the tests of data sources and the data
# thread also run under ThreadSanitizer. Builds the API reference when doxygen is there and,
# where clang is installed, runs each fuzzing harness for half a minute. Ends with ctest's summary.
set -e
cd "$(dirname "$0")/.."
sh scripts/setup.sh
JOBS=$(nproc)

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$JOBS"
# The API reference: a public function without its documentation fails here.
if command -v doxygen >/dev/null 2>&1; then
  cmake --build build --target docs
fi
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKOREL2D_SANITIZE=ON -DKOREL2D_BENCH=OFF >/dev/null
cmake --build build-asan -j"$JOBS"
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKOREL2D_TSAN=ON -DKOREL2D_BENCH=OFF -DKOREL2D_TOOLS=OFF >/dev/null
cmake --build build-tsan -j"$JOBS" --target korel2d_data_tests

# The rendering tests need an X display; start a virtual one when there is none.
run_suite() {
  dir="$1"; shift
  if [ -n "$DISPLAY" ]; then
    ctest --test-dir "$dir" --output-on-failure -j"$JOBS" "$@"
  else
    xvfb-run -a -s "-screen 0 1280x1024x24" ctest --test-dir "$dir" --output-on-failure -j"$JOBS" "$@"
  fi
}

echo "== test suite, AddressSanitizer + UBSan build =="
# Now and then the leak checker's own tracer dies at a test's exit ("Tracer caught signal 11")
# after the test has passed; a test that fails is run up to twice more, so a real leak or error,
# which fails every time, still fails the suite. The plain run below has no second chances.
run_suite build-asan --repeat until-pass:3
echo "== data sources and the data thread, ThreadSanitizer build =="
run_suite build-tsan -R '^data\.'
if command -v clang++ >/dev/null 2>&1; then
  echo "== fuzzing harnesses, 30 seconds each, clang with AddressSanitizer + UBSan =="
  sh scripts/fuzz.sh 30
fi
echo "== test suite, plain build =="
run_suite build

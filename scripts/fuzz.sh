#!/bin/sh
# Builds the libFuzzer harnesses with clang (build-fuzz/, only the library and the harnesses)
# and runs each harness for SECONDS, side by side, from the seed corpus that the sample
# generator writes and the regression corpus tests/fuzz/regression/ (textimage makes its views
# from any bytes, expression reads them as the text of an expression and path as an outline
# text: to these three they are merely bytes; xml reads them as an XML view file).
# g100 ... g303 read the bytes as a binary view file of the generation their name gives, after
# its header; symbols as a symbol library.
# Usage: sh scripts/fuzz.sh [SECONDS [HARNESS...]]  (default: 60 seconds, all harnesses)
# Inputs that find new code stay in build-fuzz/corpus/HARNESS/ for the next run; a crash is
# written to build-fuzz/crashes/ and makes the script fail: once fixed, copy it into the
# regression corpus.
set -e
cd "$(dirname "$0")/.."
root=$(pwd)
seconds=${1:-60}
[ $# -gt 0 ] && shift
generations="g100 g101 g102 g107 g111 g113 g201 g202 g203 g204 g301 g302 g303"
harnesses=${*:-load draw textimage expression live path xml $generations symbols}
build="$root/build-fuzz"

targets=korel2d-samples
for h in $harnesses; do targets="$targets korel2d-fuzz-$h"; done
CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKOREL2D_FUZZ=ON \
  -DKOREL2D_TESTS=OFF -DKOREL2D_BENCH=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target $targets
rm -rf "$build/seeds"
mkdir -p "$build/seeds" "$build/crashes" "$build/logs"
"$build/examples/korel2d-samples" --seeds "$build/seeds" >/dev/null
# The generation harnesses and the symbol one start from seeds of their own.
revisions=$(for h in $harnesses; do case $h in g[0-9]*) echo "${h#g}" ;; esac; done)
rm -rf "$build/reader-seeds"
"$build/examples/korel2d-samples" --reader-seeds "$build/reader-seeds" $revisions >/dev/null

# An empty working directory with no fonts beside it: the plug-in and font searches of each
# load find nothing there and cost next to nothing.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/run/work"
cd "$scratch/run/work"

# The timeout is wall-clock time: a damaged arc may take a second of software rasterization,
# and a busy machine makes that many.
# A harness with a dictionary (tests/fuzz/HARNESS.dict) gets the words of its format from it.
for h in $harnesses; do
  mkdir -p "$build/corpus/$h"
  dict=
  [ -f "$root/tests/fuzz/$h.dict" ] && dict="-dict=$root/tests/fuzz/$h.dict"
  seeds="$build/seeds $root/tests/fuzz/regression"
  limit=
  # A generation harness explores a kind's record in its first kilobyte; longer inputs only repeat
  # records, at a fraction of the executions.
  [ -d "$build/reader-seeds/$h" ] && seeds="$build/reader-seeds/$h" && limit=-max_len=1024
  "$build/tests/fuzz/korel2d-fuzz-$h" -max_total_time="$seconds" -timeout=60 -print_final_stats=1 $dict $limit \
    -artifact_prefix="$build/crashes/$h-" "$build/corpus/$h" $seeds \
    >"$build/logs/$h.log" 2>&1 &
  echo $! >"$scratch/$h.pid"
done

failed=0
for h in $harnesses; do
  if wait "$(cat "$scratch/$h.pid")"; then
    # The last status line carries coverage (cov), features (ft) and the corpus size.
    status=$(grep -E '^#[0-9]+' "$build/logs/$h.log" | tail -n 1)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/logs/$h.log")
    speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$build/logs/$h.log")
    echo "fuzz $h: $runs executions, $speed exec/s; $(echo "$status" | grep -oE 'cov: [0-9]+ ft: [0-9]+ corp: [^ ]+')"
  else
    failed=1
    echo "fuzz $h: FAILED, see $build/logs/$h.log and $build/crashes/"
    tail -n 40 "$build/logs/$h.log"
  fi
done
exit $failed

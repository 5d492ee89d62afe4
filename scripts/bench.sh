#!/bin/sh
# Builds the benchmarks (Release, build-bench/), runs them and prints the Markdown table of the
# README's performance section: medians of five repetitions, each beside its reference.
# Arguments go to every benchmark program, e.g. --benchmark_filter=Draw. Without DISPLAY the runs
# go under Xvfb (GLX, the reference setup); KOREL2D_BENCH_EGL=1 takes Mesa's surfaceless EGL instead.
# KOREL2D_BENCH_PROGRAMS names the programs to run, e.g. "xml mixed"; all of them by default.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-bench"
programs="${KOREL2D_BENCH_PROGRAMS:-rects mixed xml older live text graph latency expression calculator pick}"

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DKOREL2D_TESTS=OFF -DKOREL2D_TOOLS=OFF >/dev/null
for p in $programs; do
  cmake --build "$build" --target "korel2d_bench_$p" -j"$(nproc)" >/dev/null
done

under_display() {
  if [ -z "$DISPLAY" ] && [ -z "$KOREL2D_BENCH_EGL" ]; then
    xvfb-run -a -s "-screen 0 1280x1024x24" "$@"
  else
    "$@"
  fi
}
for p in $programs; do
  under_display "$build/bench/korel2d_bench_$p" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
    --benchmark_out="$build/$p.json" --benchmark_out_format=json "$@"
done

# One row per benchmark: its median (or its only run), its rate, and its time over that of the
# benchmark its label names as reference. Rows keep the order in which each program registered its
# benchmarks, also where it ran their repetitions in random turns.
awk '
function value(line) { sub(/^[^:]*: */, "", line); sub(/,$/, "", line); gsub(/"/, "", line); return line }
function keep() {
  if (run == "" || (type != "iteration" && agg != "median") || (median[run] && agg != "median")) return
  if (!(run in ms)) { order[++n] = run; place[run] = program * 100000 + family }
  ms[run] = real * scale[unit]; median[run] = (agg == "median")
  rate[run] = bps + 0 >= 1e9 ? sprintf("%.1f GB/s", bps / 1e9) : bps != "" ? sprintf("%.1f MB/s", bps / 1e6) : \
    ips != "" ? sprintf("%.0fk elements/s", ips / 1e3) : ""
  ref[run] = label ~ /^reference / ? substr(label, 11) : ""
}
BEGIN { scale["ns"] = 1e-6; scale["us"] = 1e-3; scale["ms"] = 1; scale["s"] = 1e3 }
FNR == 1 { ++programs }
/^ *"name":/ { keep(); run = type = agg = label = bps = ips = "" }
/^ *"family_index":/ { family = value($0); program = programs }
/^ *"run_name":/ { run = value($0); sub(/\/real_time$/, "", run); sub(/\/min_warmup_time:[0-9.]+/, "", run) }
/^ *"run_type":/ { type = value($0) }
/^ *"aggregate_name":/ { agg = value($0) }
/^ *"real_time":/ { real = value($0) }
/^ *"time_unit":/ { unit = value($0) }
/^ *"label":/ { label = value($0) }
/^ *"bytes_per_second":/ { bps = value($0) }
/^ *"items_per_second":/ { ips = value($0) }
END {
  keep()
  for (i = 2; i <= n; ++i)
    for (j = i; j > 1 && place[order[j - 1]] > place[order[j]]; --j) {
      r = order[j]; order[j] = order[j - 1]; order[j - 1] = r
    }
  print "| Benchmark | Time per iteration | Throughput | Reference | Ratio |"
  print "|---|---|---|---|---|"
  for (i = 1; i <= n; ++i) {
    r = order[i]; t = ms[r]
    time = t >= 1 ? sprintf("%.1f ms", t) : sprintf("%.0f us", t * 1e3)
    ratio = ref[r] in ms ? sprintf("%.2f", t / ms[ref[r]]) : "-"
    printf "| `%s` | %s | %s | %s | %s |\n", r, time, rate[r], ref[r] != "" ? "`" ref[r] "`" : "-", ratio
  }
}' $(for p in $programs; do echo "$build/$p.json"; done)

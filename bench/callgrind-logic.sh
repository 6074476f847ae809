#!/usr/bin/env bash
# Instructions per wave-17 logic frame: runs the Logic/wave:17 scenario of frame_bench under
# callgrind with collection on inside BenchSession::logic() only, and prints the instructions
# (Ir) of that function, callees included, divided by its calls. The warm-up frames count too:
# 720 calls, 120 of them warm-up. Unlike wall-clock time the figure holds on a busy machine.
#
#   bench/callgrind-logic.sh [BUILD_DIR [SCENARIO]]
#
# BUILD_DIR defaults to build-bench, SCENARIO to Logic/wave:17 (any scenario whose frames go
# through BenchSession::logic()); runs from anywhere.
#
# Configures and builds frame_bench there as `make bench` does (Release), installs valgrind
# when it is missing, and leaves the profile in BUILD_DIR/callgrind-logic.out for
# callgrind_annotate.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
build=${1:-build-bench}
scenario=${2:-Logic/wave:17}
out="$build/callgrind-logic.out"

tools/install-deps.sh valgrind
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DNIGHTVECTOR_BENCH=ON >/dev/null
cmake --build "$build" -j "$(nproc)" --target frame_bench >/dev/null

tests/xvfb-exec valgrind --tool=callgrind --callgrind-out-file="$out" \
    --toggle-collect='BenchSession::logic()' \
    "$build/bench/frame_bench" --benchmark_filter="^$scenario/" >/dev/null 2>"$build/callgrind-logic.log" || {
    echo "callgrind-logic: the run failed; see $build/callgrind-logic.log" >&2
    exit 1
}

# Collection is on only inside BenchSession::logic(), so the profile's total is that function's
# inclusive cost. Its calls are summed from the call arcs into it; names after their first use
# are compressed to "(id)".
awk '
    /^(fn|cfn)=\([0-9]+\) / {
        id = $1; sub(/^c?fn=/, "", id)
        name = $0; sub(/^c?fn=\([0-9]+\) /, "", name)
        names[id] = name
    }
    /^cfn=/ {
        id = $1; sub(/^cfn=/, "", id)
        callee = (id in names) ? names[id] : id
    }
    /^calls=/ {
        if (callee == "BenchSession::logic()") { n = $1; sub(/^calls=/, "", n); calls += n }
    }
    /^(summary|totals):/ { total = $2 }
    END {
        if (calls == 0 || total == "") { print "callgrind-logic: no calls of BenchSession::logic() in the profile" > "/dev/stderr"; exit 1 }
        printf "%s, BenchSession::logic(): %d Ir inclusive over %d calls = %.0f instructions per frame\n", scenario, total, calls, total / calls
    }
' scenario="$scenario" "$out"

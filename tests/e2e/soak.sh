#!/usr/bin/env bash
# Runs the input storm for a long time and watches the game's resident memory: VmRSS every 10 s
# into a CSV, then the verdict. After the first minute the samples must stay within 2048 kB of
# each other (max - min); the storm itself must pass too.
# Usage: soak.sh E2E_TESTS_BINARY [SECONDS (default 1800)] [CSV (default soak-rss.csv)]
set -u

binary=${1:?usage: soak.sh E2E_TESTS_BINARY [SECONDS] [CSV]}
seconds=${2:-1800}
csv=${3:-soak-rss.csv}
root=$(cd "$(dirname "$0")/../.." && pwd)

WARM_UP_S=60
SAMPLE_S=10
LIMIT_KB=2048

storm_log="${csv%.csv}.log"
NIGHTVECTOR_STORM_SECONDS=$seconds "$root/tests/xvfb-exec" "$binary" --gtest_filter='Storm.*' \
    >"$storm_log" 2>&1 &
runner=$!

# The game is the runner's descendant named nightvector; other runs on the machine are not.
find_game() {
    ps -eo pid=,ppid=,comm= | awk -v root="$runner" '
        { parent[$1] = $2; name[$1] = $3 }
        END {
            for (p in name) {
                if (name[p] != "nightvector") continue
                for (q = parent[p]; q > 1; q = parent[q])
                    if (q == root) { print p; exit }
            }
        }'
}

game=
for _ in $(seq 1 600); do
    game=$(find_game)
    [ -n "$game" ] && break
    kill -0 "$runner" 2>/dev/null || break
    sleep 0.1
done
if [ -z "$game" ]; then
    echo "soak: the game did not start" >&2
    cat "$storm_log" >&2
    wait "$runner"
    exit 1
fi

# Anonymous and file-backed shares beside the total, to tell heap growth from mapped libraries.
echo "seconds,vmrss_kb,rssanon_kb,rssfile_kb" >"$csv"
t=0
while sample=$(awk '/^(VmRSS|RssAnon|RssFile):/ { printf ",%s", $2 }' "/proc/$game/status" 2>/dev/null) &&
    [ -n "$sample" ]; do
    echo "$t$sample" >>"$csv"
    sleep "$SAMPLE_S"
    t=$((t + SAMPLE_S))
done

wait "$runner"
storm_status=$?

echo "VmRSS of the game (pid $game), every $SAMPLE_S s:"
cat "$csv"
verdict=$(awk -F, -v warm="$WARM_UP_S" -v limit="$LIMIT_KB" '
    NR > 1 && $1 > warm {
        if (n == 0 || $2 < min) min = $2
        if (n == 0 || $2 > max) max = $2
        ++n
    }
    END {
        if (n == 0) { print "FAIL: no samples after " warm " s"; exit 1 }
        status = max - min <= limit ? "PASS" : "FAIL"
        printf "%s: after %d s, %d samples from %d kB to %d kB, spread %d kB (limit %d kB)\n",
               status, warm, n, min, max, max - min, limit
        exit status == "PASS" ? 0 : 1
    }' "$csv")
memory_status=$?
echo "$verdict"

if [ "$storm_status" -ne 0 ]; then
    echo "FAIL: the storm ended with status $storm_status; its output:"
    cat "$storm_log"
    exit 1
fi
exit "$memory_status"

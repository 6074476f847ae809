#!/usr/bin/env bash
# How loud the effects sound against the music, as the player hears them. Plays the game twice
# through SDL's disk audio driver on a private Xvfb, the same way each time: into play, then both
# guns held while the pointer circles the ship for SECONDS. The second run has no effect files, so
# it records the music alone; lined up with the first by the music's own waveform and subtracted
# from it, it leaves the effects alone. mix_balance.py then compares the two in 100 ms windows.
#
#   bench/mix-balance.sh [BUILD_DIR [SECONDS]]
#
# BUILD_DIR defaults to build (its nightvector is used as built), SECONDS to 240. Needs xdotool,
# Xvfb and /usr/bin/python3 with numpy. Runs from anywhere; leaves nothing behind.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)

# --play DIR: one run in DIR, whose sfx/ is already in place; DISPLAY is set by xvfb-exec.
if [ "${1:-}" = --play ]; then
    dir=$2 game=$3 seconds=$4
    cd "$dir"
    HOME=$dir/home XDG_DATA_HOME=$dir/home/data XDG_CONFIG_HOME=$dir/home/config \
        SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=$dir/audio.raw SDL_DISKAUDIODELAY=23 \
        "$game" --fullscreen >"$dir/out.txt" 2>&1 &
    pid=$!
    for _ in $(seq 600); do
        grep -q megabytes "$dir/out.txt" 2>/dev/null && break
        sleep 0.1
    done
    xdotool mousemove 900 360
    sleep 0.5
    # Where the file stood as Return went down: the game's music starts about 1.5 s later.
    stat -c %s "$dir/audio.raw" >"$dir/start.txt"
    xdotool keydown Return; sleep 0.3; xdotool keyup Return
    sleep 3
    xdotool mousedown 1 mousedown 3
    end=$((SECONDS + seconds))
    step=0
    while [ $SECONDS -lt $end ]; do
        # A circle of 200 px round the screen's centre, where the ship is drawn, 72 steps a turn.
        read -r x y < <(awk -v s=$step 'BEGIN { a = s * 3.14159265 / 36; printf "%d %d\n", 640 + 200 * cos(a), 360 + 200 * sin(a) }')
        xdotool mousemove "$x" "$y"
        step=$((step + 1))
        sleep 0.05
    done
    xdotool mouseup 1 mouseup 3
    xdotool keydown Escape; sleep 3; xdotool keyup Escape
    wait "$pid" || true
    exit 0
fi

build=$(cd "${1:-$root/build}" && pwd)
seconds=${2:-240}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for run in full music; do
    dir=$work/$run
    mkdir -p "$dir/home" "$dir/sfx"
    ln -s "$root/gfx" "$dir/gfx"
    ln -s "$root/shaders" "$dir/shaders"
    if [ $run = full ]; then
        for f in "$root"/sfx/*; do ln -s "$f" "$dir/sfx/"; done
    else
        ln -s "$root/sfx/music1.ogg" "$dir/sfx/"
    fi
    "$root/tests/xvfb-exec" "$0" --play "$dir" "$build/nightvector" "$seconds"
done

/usr/bin/python3 "$root/bench/mix_balance.py" "$work/full/audio.raw" "$(cat "$work/full/start.txt")" \
    "$work/music/audio.raw" "$(cat "$work/music/start.txt")"

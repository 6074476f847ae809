#!/usr/bin/python3
"""Checks the sound effects as the game plays them: Mix_LoadWAV at 44.1 kHz, mixed on top
of the music.

Usage: effects_test.py SFX_FOLDER

Every one of the game's effects must be in the folder and decode as 16-bit PCM WAV, one
channel at 44100 Hz, last more than 0.05 s and at most 1.5 s (3 s for the two finales),
stay at or below -3 dBFS, carry no DC (|mean| at most 0.001) and not be silent (the
loudest 50 ms above -40 dBFS RMS).

A one-shot effect must start and end on silence, or it clicks each time it is played:
its first and last samples may be at most 2 steps of 16 bits from zero (what rounding
leaves of a fade that ends on 0), and its first and last millisecond must stay below
-30 dBFS. A file cut off in mid-sound, or with a click at its edge, carries the level of
the sound there, far above -30 dBFS; a fade-in of a few milliseconds that starts slowly,
or a fade-out at the end of a decay, stays well below it.

The laser's hum is looped while the beam is held, so instead of fading it must loop
cleanly, judged as the music's seam is (music_test.seam_failures: the step and the bend
across the seam no larger than 99% of those around it, and no silent end), and hold a
steady level: the RMS of its first and of its last tenth within 3 dB of each other.

Prints one line per file on success; exits with status 1 and the reasons on failure.
"""
import pathlib
import sys

import numpy as np

from music_test import RATE, read_mono, seam_failures

EFFECTS = (
    "plasma_shot", "laser_start", "laser_loop", "enemy_shot", "plasma_spark", "laser_burn",
    "explosion_small", "explosion_large", "player_hit", "player_death", "respawn",
    "powerup_appear", "powerup_collect", "meganuke", "wave_banner", "game_over",
)
LOOPS = ("laser_loop",)
FINALES = ("meganuke", "game_over")

MIN_SECONDS = 0.05
MAX_SECONDS = 1.5
MAX_FINALE_SECONDS = 3.0
PEAK_LIMIT = 10 ** (-3.0 / 20)  # -3 dBFS, 0.7079
DC_LIMIT = 0.001

# An edge sample may be this far from zero: two steps of 16 bits.
EDGE_SAMPLE = 2 / 32768
# The first and the last millisecond must stay below -30 dBFS.
EDGE_SECONDS = 0.001
EDGE_LEVEL = 10 ** (-30 / 20)

# The loudest 50 ms of a sound must be above -40 dBFS RMS.
LOUDEST_SECONDS = 0.05
SILENCE = 10 ** (-40 / 20)

# The loop's first and last tenth may differ in RMS by at most this much (dB).
LEVEL_DRIFT_DB = 3.0


def db(value):
    return 20 * np.log10(max(value, 1e-12))


def rms(x):
    return float(np.sqrt(np.mean(x * x))) if len(x) else 0.0


def loudest_rms(x):
    """RMS of the loudest stretch of LOUDEST_SECONDS (of all of x if it is shorter)."""
    span = min(len(x), int(LOUDEST_SECONDS * RATE))
    sums = np.cumsum(np.concatenate(([0.0], x * x)))
    return float(np.sqrt(np.max(sums[span:] - sums[:-span]) / span))


def edge_failures(x):
    """A one-shot sound starts and ends on silence."""
    failures = []
    span = int(EDGE_SECONDS * RATE)
    for name, sample, part in (("first", x[0], x[:span]), ("last", x[-1], x[-span:])):
        if abs(sample) > EDGE_SAMPLE:
            failures.append(f"{name} sample {sample:+.5f}, more than {EDGE_SAMPLE * 32768:g} "
                            "steps of 16 bits from zero: it clicks")
        peak = float(np.max(np.abs(part)))
        if peak >= EDGE_LEVEL:
            failures.append(f"the {name} {EDGE_SECONDS * 1000:g} ms peak at {db(peak):.1f} dBFS, "
                            f"not below {db(EDGE_LEVEL):.0f} dBFS: no fade, or a click")
    return failures


def loop_failures(x):
    """A looped sound joins cleanly and holds its level."""
    failures = seam_failures(x)
    tenth = len(x) // 10
    first, last = db(rms(x[:tenth])), db(rms(x[-tenth:]))
    if abs(first - last) > LEVEL_DRIFT_DB:
        failures.append(f"level drifts: first tenth {first:.1f} dBFS RMS, last tenth {last:.1f}, "
                        f"more than {LEVEL_DRIFT_DB:g} dB apart")
    return failures


def check(path, name):
    """The failures of one file, and its summary line."""
    if not path.is_file():
        return ["missing"], None
    try:
        failures, x, rate = read_mono(path, "WAV", "PCM_16")
    except Exception as error:  # noqa: BLE001 - any decoding failure is the finding
        return [f"does not decode: {error}"], None
    seconds = len(x) / rate
    longest = MAX_FINALE_SECONDS if name in FINALES else MAX_SECONDS
    if not MIN_SECONDS < seconds <= longest:
        failures.append(f"lasts {seconds:.3f} s, expected more than {MIN_SECONDS:g} and at most "
                        f"{longest:g} s")
    if len(x) < 2 * int(EDGE_SECONDS * RATE) + 2:
        return failures + ["too short to judge"], None

    peak = float(np.max(np.abs(x)))
    if peak > PEAK_LIMIT:
        failures.append(f"peak {peak:.4f} ({db(peak):.2f} dBFS), above -3 dBFS ({PEAK_LIMIT:.4f})")
    mean = float(np.mean(x))
    if abs(mean) > DC_LIMIT:
        failures.append(f"DC offset: mean {mean:+.5f}, more than {DC_LIMIT:g} from zero")
    loudest = loudest_rms(x)
    if loudest <= SILENCE:
        failures.append(f"silent: the loudest {LOUDEST_SECONDS * 1000:g} ms is at {db(loudest):.1f} "
                        f"dBFS RMS, not above {db(SILENCE):.0f} dBFS")
    failures += loop_failures(x) if name in LOOPS else edge_failures(x)
    return failures, f"{seconds:.3f} s, peak {db(peak):.2f} dBFS, DC {mean:+.6f}"


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip().splitlines()[3], file=sys.stderr)
        return 2
    folder = pathlib.Path(sys.argv[1])
    failed = False
    lines = []
    for name in EFFECTS:
        path = folder / f"{name}.wav"
        failures, summary = check(path, name)
        for failure in failures:
            print(f"{path}: {failure}", file=sys.stderr)
        failed = failed or bool(failures)
        lines.append(f"{path}: {summary}")
    if failed:
        return 1
    for line in lines:
        print(line)
    return 0


if __name__ == "__main__":
    sys.exit(main())

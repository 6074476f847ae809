#!/usr/bin/python3
"""Checks the music track as the game plays it: Mix_PlayMusic(music, -1) at 44.1 kHz.

Usage: music_test.py FILE.ogg

The file must decode as one channel at 44100 Hz, last 90 to 180 s, stay at or below
-1 dBFS, and loop cleanly: the step from its last sample back to its first must look like
any other step of the music around it (no click), and neither end may be silent (no gap).
Prints one line on success; exits with status 1 and the reasons on failure.
"""
import sys

import numpy as np
import soundfile

RATE = 44100
MIN_SECONDS = 90.0
MAX_SECONDS = 180.0
PEAK_LIMIT = 10 ** (-1.0 / 20)  # -1 dBFS, 0.891

# How much music on each side of the seam the seam is compared with, in seconds: short
# enough to be the same musical moment.
SEAM_CONTEXT = 0.01
# The seam may step and bend no more than this percentile of the samples around it.
SEAM_PERCENTILE = 99.0
# An end whose first or last 20 ms stays below -60 dBFS counts as a gap.
EDGE_SECONDS = 0.02
SILENCE = 10 ** (-60 / 20)


def seam_failures(x):
    """Compares the samples that meet at the loop seam with the music around it."""
    failures = []
    half = int(SEAM_CONTEXT * RATE)
    # The end of the file followed by its start, as the looping player hands it out.
    joined = np.concatenate((x[-half:], x[:half]))
    seam = half  # joined[seam - 1] is the last sample, joined[seam] the first.

    steps = np.diff(joined)
    seam_step = abs(steps[seam - 1])
    usual_step = np.percentile(np.abs(np.delete(steps, seam - 1)), SEAM_PERCENTILE)
    if seam_step > usual_step:
        failures.append(f"click at the loop seam: last sample {x[-1]:+.4f}, first {x[0]:+.4f}, "
                        f"a step of {seam_step:.4f} against {usual_step:.4f} for "
                        f"{SEAM_PERCENTILE:g}% of the steps around it")

    # A change of slope shows a kink even where the values meet.
    bends = np.diff(joined, 2)
    seam_bends = np.abs(bends[seam - 2:seam])  # centred on the last and on the first sample
    usual_bend = np.percentile(np.abs(np.delete(bends, [seam - 2, seam - 1])), SEAM_PERCENTILE)
    if np.max(seam_bends) > usual_bend:
        failures.append(f"kink at the loop seam: slope {x[-1] - x[-2]:+.4f} before it, "
                        f"{x[0] - x[-1]:+.4f} across it, {x[1] - x[0]:+.4f} after it; the change "
                        f"{np.max(seam_bends):.4f} is above {usual_bend:.4f} for "
                        f"{SEAM_PERCENTILE:g}% of the samples around it")

    edge = int(EDGE_SECONDS * RATE)
    for name, part in (("start", x[:edge]), ("end", x[-edge:])):
        if np.max(np.abs(part)) < SILENCE:
            failures.append(f"gap at the loop seam: the {name} of the file is silent")
    return failures


def read_mono(path, expected_format, expected_subtype):
    """Decodes `path`; returns the failures of its format (container and encoding, 44.1 kHz,
    one channel), its first channel's samples and its rate. Raises what the decoder raises."""
    info = soundfile.info(str(path))
    x, rate = soundfile.read(str(path), dtype="float64", always_2d=True)
    failures = []
    if info.format != expected_format or info.subtype != expected_subtype:
        failures.append(f"format {info.format}/{info.subtype}, expected {expected_format}/{expected_subtype}")
    if rate != RATE:
        failures.append(f"sample rate {rate} Hz, expected {RATE}")
    if x.shape[1] != 1:
        failures.append(f"{x.shape[1]} channels, expected 1")
    return failures, x[:, 0], rate


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    path = sys.argv[1]
    try:
        failures, x, rate = read_mono(path, "OGG", "VORBIS")
    except Exception as error:  # noqa: BLE001 - any decoding failure is the finding
        print(f"{path}: does not decode: {error}", file=sys.stderr)
        return 1
    seconds = len(x) / rate
    if not MIN_SECONDS <= seconds <= MAX_SECONDS:
        failures.append(f"lasts {seconds:.1f} s, expected {MIN_SECONDS:g} to {MAX_SECONDS:g} s")
    peak = float(np.max(np.abs(x))) if len(x) else 0.0
    peak_db = 20 * np.log10(max(peak, 1e-12))
    if peak > PEAK_LIMIT:
        failures.append(f"peak {peak:.4f} ({peak_db:.2f} dBFS), above -1 dBFS ({PEAK_LIMIT:.4f})")
    if len(x) > 2 * SEAM_CONTEXT * RATE:
        failures += seam_failures(x)
    else:
        failures.append("too short to judge the loop seam")

    if failures:
        for failure in failures:
            print(f"{path}: {failure}", file=sys.stderr)
        return 1
    print(f"{path}: {seconds:.1f} s, {rate} Hz, 1 channel, peak {peak_db:.2f} dBFS, "
          f"seam {x[-1]:+.4f} -> {x[0]:+.4f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())

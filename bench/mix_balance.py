#!/usr/bin/python3
"""The effects' level against the music's in what the player hears.

Usage: mix_balance.py FULL.raw FULL_START MUSIC.raw MUSIC_START

FULL.raw is a game recorded by SDL's disk audio driver (16-bit little-endian stereo at
44100 Hz); MUSIC.raw the same play without the effect files, so the music alone. *_START is
the byte where each file stood as the game was started: the music starts over there.

The music-alone run is lined up with the full one by cross-correlation around the game's
start and subtracted from it, which leaves the effects alone. In every 100 ms window from
the start on where the effects reach -45 dBFS RMS, the effects' RMS is compared with the
music's in dB. Prints the number of such windows, the median difference, the share of
windows where the effects are at most 6 dB under the music, and the share at most 3 dB under.
"""
import sys

import numpy as np

RATE = 44100
WINDOW = RATE // 10
SOUNDING = 10 ** (-45 / 20)


def read(path):
    x = np.fromfile(path, dtype="<i2").astype(np.float64) / 32768.0
    return x[: len(x) // 2 * 2].reshape(-1, 2)


def offset(full, full_start, music, music_start):
    """Frames to add to an index into full to find the same music in music."""
    # Ten seconds of the full run from three seconds after Return, sought within six
    # seconds of the music run's own start.
    a = full[full_start + 3 * RATE: full_start + 13 * RATE].mean(axis=1)
    b = music[music_start: music_start + 19 * RATE].mean(axis=1)
    size = 1 << int(np.ceil(np.log2(len(a) + len(b))))
    corr = np.fft.irfft(np.fft.rfft(b, size) * np.conj(np.fft.rfft(a, size)), size)
    lag = int(np.argmax(corr[: len(b) - len(a) + 1]))
    return music_start + lag - (full_start + 3 * RATE)


def main():
    full, music = read(sys.argv[1]), read(sys.argv[3])
    full_start, music_start = int(sys.argv[2]) // 4, int(sys.argv[4]) // 4
    shift = offset(full, full_start, music, music_start)
    first = full_start
    last = min(len(full), len(music) - shift)
    effects = full[first:last] - music[first + shift: last + shift]
    alone = music[first + shift: last + shift]
    n = len(effects) // WINDOW
    rms_e = np.sqrt((effects[: n * WINDOW] ** 2).reshape(n, -1).mean(axis=1))
    rms_m = np.sqrt((alone[: n * WINDOW] ** 2).reshape(n, -1).mean(axis=1))
    residue = np.sqrt(np.mean(effects[: 2 * RATE] ** 2))
    sounding = (rms_e >= SOUNDING) & (rms_m > 0)
    diff = 20 * np.log10(rms_e[sounding] / rms_m[sounding])
    print(f"lined up at {shift} frames; effects RMS over the first 2 s after Return "
          f"(the fade, no effects yet): {20 * np.log10(max(residue, 1e-9)):.1f} dBFS")
    print(f"windows of 100 ms: {n}, with effects sounding: {len(diff)}")
    print(f"effects against the music, median: {np.median(diff):+.1f} dB")
    print(f"windows with the effects at most 6 dB under the music: {100 * np.mean(diff >= -6):.1f} %")
    print(f"windows with the effects at most 3 dB under the music: {100 * np.mean(diff >= -3):.1f} %")


if __name__ == "__main__":
    main()

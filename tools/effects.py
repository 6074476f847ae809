"""Synthesises the game's sound effects, sfx/*.wav.

Sixteen short sounds in the style of the classic synthesised arcade effects: pitch
sweeps, band-limited tones and filtered noise.

    plasma_shot       the player's plasma shot: a soft, bright "pew" falling in pitch
    laser_start       the laser charging up, then the zap as it fires
    laser_loop        the beam's buzzing hum; the game loops it while the beam is held
    enemy_shot        an enemy's plasma shot: a low, round, gurgling "thup"
    plasma_spark      a plasma bolt striking a ship: a short crackle
    laser_burn        the laser burning into a hull: a sizzle
    explosion_small   fighters and probes: a noise burst over a low thump
    explosion_large   big ships: two blasts and a deep, long rumble
    player_hit        the player's ship struck: a dull metal knock and an alarm blip
    player_death      the player's ship destroyed: an explosion and a falling tone
    respawn           the ship growing in: a rising, shimmering sweep
    powerup_appear    a powerup dropping: a quick sparkling arpeggio
    powerup_collect   a powerup picked up: one chime on A5 (880 Hz)
    meganuke          the screen-clearing blast: crack, huge boom, sub rumble, long tail
    wave_banner       "wave incoming": a horn stinger rising through A minor
    game_over         a slow phrase falling to A over an A minor chord

Every file is mono, 44100 Hz, 16-bit PCM. Every sound except the loop starts and ends on
silence: a cubic fade-in of a few milliseconds keeps the first millisecond near zero and
the attack still crisp, and a quadratic fade-out takes the last samples smoothly to zero.
The loop is built from whole cycles of every partial, modulation and noise band, so its
last sample runs into its first like any other pair of samples. No sound has DC or any
partial at or above 18 kHz. Each sound is scaled to the peak given in LEVELS.

Everything comes from fixed seeds and is rounded to 16 bits, so two runs write the same
bytes. Making all sixteen takes about a second.
"""
import pathlib

import numpy as np
import soundfile

import music
from music import RATE, band_mask, filtered_noise, hz, lowpass_response, seconds

# Nothing synthesised reaches this frequency (Hz).
TOP_FREQUENCY = music.TOP_FREQUENCY
# Harmonics fade out over this band (Hz) below TOP_FREQUENCY, and the finished sound is
# cut off smoothly across it, so no sweep switches a partial on or off audibly.
TOP_BAND = 2000.0

# Below this (Hz) every finished sound is rolled off: no rumble the speakers cannot play,
# and no DC.
HIGH_PASS = 22.0

# The sound the game loops while the laser is held lasts this long; every frequency in it
# is a whole number of cycles over this length.
LOOP_SAMPLES = int(0.8 * RATE)

# Longest sound, in seconds: the big finales may ring longer than the rest.
LONGEST = 1.5
LONGEST_FINALE = 3.0
FINALES = ("meganuke", "game_over")

# No file may peak above -3 dBFS.
PEAK_CEILING = 10 ** (-3.0 / 20)

# Peak of each sound, dBFS. The music plays near full scale and the effects are mixed on
# top of it, many of the world's effects at once, so the frequent sounds are the softest
# and only the rare big events reach the ceiling (a tenth of a dB below it, so the
# rounding to 16 bits cannot cross it).
#
#     level    sounds                                          how often
#     -3.1     player_death, meganuke, game_over,              a few times a game
#              wave_banner, explosion_large
#     -6       explosion_small, respawn, powerup_appear,       now and then
#              powerup_collect, player_hit, laser_start
#     -9       laser_loop                                      held for long, and must
#                                                              carry over the music
#     -10      plasma_shot, plasma_spark                       several a second
#     -11      enemy_shot                                      many enemies
#     -12      laser_burn                                      all the while the beam bites
LEVELS = {
    "player_death": -3.1, "meganuke": -3.1, "game_over": -3.1, "wave_banner": -3.1,
    "explosion_large": -3.1,
    "explosion_small": -6.0, "respawn": -6.0, "powerup_appear": -6.0, "powerup_collect": -6.0,
    "player_hit": -6.0, "laser_start": -6.0,
    "plasma_shot": -10.0, "plasma_spark": -10.0,
    "laser_loop": -9.0,
    "enemy_shot": -11.0,
    "laser_burn": -12.0,
}

# The lift of the hum's harmonics near the middle of the ear's best range: centre and width
# (Hz) of a bell, and how much it adds to their weight at its top.
HUM_PRESENCE = (2000.0, 1200.0, 4.0)

# Attack (a cubic ramp) and release (a quadratic one) of a sound, in seconds, unless the
# sound asks for others.
ATTACK = 0.004
RELEASE = 0.03

# The music's key and tempo, for the tonal cues.
BEAT = 60.0 / music.TEMPO


# ---------------------------------------------------------------------------------------
# Signal helpers


def rng(*key):
    """A generator of its own for each sound and part of it, the same on every run."""
    return music.rng("effects", *key)


def noise(n, low=None, high=None, key=("noise",)):
    """Band-limited white noise scaled to a peak of 1 (see music.filtered_noise)."""
    return filtered_noise(n, low, high, ("effects",) + tuple(key))


def length(duration):
    """Samples in duration seconds."""
    return int(round(duration * RATE))


def phase_of(freq):
    """Phase in cycles, starting at 0, of a tone whose frequency (Hz per sample) moves."""
    return np.concatenate(([0.0], np.cumsum(freq[:-1]))) / RATE


def swept_tone(freq, weights, phase=None, offsets=None):
    """Harmonics of a tone gliding along freq (Hz per sample), weights[k - 1] for the k-th,
    each starting offsets[k - 1] cycles into its own phase (all at 0 without offsets).

    Each harmonic fades out over the TOP_BAND below TOP_FREQUENCY wherever the glide
    lifts it there, so nothing aliases and no partial appears or vanishes with a step.
    """
    if phase is None:
        phase = phase_of(freq)
    if offsets is None:
        offsets = np.zeros(len(weights))
    out = np.zeros(len(freq))
    for k, (weight, offset) in enumerate(zip(weights, offsets), 1):
        top = k * np.max(freq)
        if weight == 0.0 or k * np.min(freq) >= TOP_FREQUENCY:
            continue
        gain = weight
        if top > TOP_FREQUENCY - TOP_BAND:
            gain = weight * np.clip((TOP_FREQUENCY - k * freq) / TOP_BAND, 0.0, 1.0)
        out += gain * np.sin(2 * np.pi * (k * phase + offset))
    return out


def low_crest_offsets(count):
    """Schroeder's phases for count harmonics, in cycles: k^2 / 2count for the k-th. The
    harmonics then never all peak together, so the tone's peak sits some 6 dB nearer its
    RMS than a saw's, and it sounds louder at the same peak."""
    k = np.arange(1, count + 1)
    return k * k / (2.0 * count)


def saw_weights(count, cutoff_ratio, q=0.9, odd=0.0):
    """Weights of the first count harmonics of a saw (odd > 0 leans it towards a square)
    through a four-pole low-pass at cutoff_ratio times the fundamental."""
    k = np.arange(1, count + 1)
    amps = (1.0 / k) * np.where(k % 2 == 0, 1.0 - odd, 1.0)
    return list(amps * lowpass_response(k / cutoff_ratio, q))


def filtered(x, low=None, high=None, order=4):
    """x through band_mask. The signal is padded with silence first, so nothing of its
    end wraps round into its start."""
    size = len(x) + 8192
    spectrum = np.fft.rfft(x, size) * band_mask(np.fft.rfftfreq(size, 1.0 / RATE), low, high, order)
    return np.fft.irfft(spectrum, size)[:len(x)]


def moving_band_noise(n, low, high, key, order=2):
    """Noise through a band whose edges (Hz, a number or one value per sample; None for
    an open side) move over the sound.

    Blocks of 2048 samples overlap by half under a periodic Hann window, whose copies sum
    to one, so the filtered blocks add back up without seams. The noise starts a block
    early, so the first sample is already at full level.
    """
    block = 2048
    hop = block // 2
    total = n + 2 * block
    source = rng("band", *key).uniform(-1.0, 1.0, total)
    window = 0.5 - 0.5 * np.cos(2 * np.pi * np.arange(block) / block)
    freqs = np.fft.rfftfreq(block, 1.0 / RATE)

    def edge(curve, at):
        if curve is None or np.isscalar(curve):
            return curve
        return float(curve[min(max(at, 0), n - 1)])

    out = np.zeros(total)
    for start in range(0, total - block + 1, hop):
        centre = start + hop - block  # the block's middle, in samples of the sound
        spectrum = np.fft.rfft(source[start:start + block] * window)
        spectrum *= band_mask(freqs, edge(low, centre), edge(high, centre), order)
        out[start:start + block] += np.fft.irfft(spectrum, block)
    out = out[block:block + n]
    return out / (np.max(np.abs(out)) + 1e-12)


def crackle(n, density, low, high, key):
    """Sparse random clicks, density (per second, a number or one value per sample), each
    rung through a band so it becomes a tiny burst; scaled to a peak of 1."""
    generator = rng("crackle", *key)
    hits = generator.random(n) < np.broadcast_to(density, (n,)) / RATE
    clicks = hits * generator.uniform(0.3, 1.0, n) * generator.choice((-1.0, 1.0), n)
    out = filtered(clicks, low, high, 2)
    return out / (np.max(np.abs(out)) + 1e-12)


def decay_after(t, at, decay):
    """1 until at, then dying with time constant decay (seconds)."""
    return np.exp(-np.maximum(t - at, 0.0) / decay)


def onset(t, at, attack):
    """An envelope that is 0 before at and rises smoothly (1 - e^-t) over attack after it."""
    return np.where(t >= at, 1.0 - decay_after(t, at, attack), 0.0)


def fade(x, attack=ATTACK, release=RELEASE):
    """A cubic fade-in and a quadratic fade-out, seconds long, that start and end on 0.

    The cubic ramp stays near zero for its first quarter (at most a sixty-fourth of the
    level there) before rising steeply, so a fade-in of a few milliseconds keeps the first
    millisecond far below the sound and the attack still quick. The quadratic ramp ends
    with zero slope, so the last sample is 0 and reaches it without a corner.
    """
    a = max(2, length(attack))
    r = max(2, length(release))
    x = x.copy()
    x[:a] *= (np.arange(a) / a) ** 3
    x[-r:] *= np.linspace(1.0, 0.0, r) ** 2
    return x


def finish(x, attack=ATTACK, release=RELEASE):
    """A one-shot sound made ready for writing: no sub-sonic content, nothing near
    TOP_FREQUENCY, faded in and out, and no DC."""
    size = len(x) + 8192
    freqs = np.fft.rfftfreq(size, 1.0 / RATE)
    spectrum = np.fft.rfft(x, size) * band_mask(freqs, HIGH_PASS, None, 2) * top_cut(freqs)
    x = fade(np.fft.irfft(spectrum, size)[:len(x)], attack, release)
    # The fades leave a trace of DC; remove it under a window that is zero at both ends,
    # so the edges stay at 0.
    window = np.hanning(len(x))
    return x - window * (np.sum(x) / np.sum(window))


def top_cut(freqs):
    """1 below TOP_FREQUENCY - TOP_BAND, falling along half a cosine to 0 at TOP_FREQUENCY."""
    u = np.clip((freqs - (TOP_FREQUENCY - TOP_BAND)) / TOP_BAND, 0.0, 1.0)
    return 0.5 + 0.5 * np.cos(np.pi * u)


def soft_clip(x, drive):
    """tanh saturation that leaves a peak of 1 at 1: rounder, denser blasts."""
    return np.tanh(drive * x) / np.tanh(drive)


def whole_cycles(freq, n=LOOP_SAMPLES):
    """The frequency nearest freq that fits a whole number of cycles into n samples."""
    return max(1, round(freq * n / RATE)) * RATE / n


# ---------------------------------------------------------------------------------------
# Shots and beams


def plasma_shot():
    """A bright "pew": a glide from 2 kHz down to 520 Hz with a breath of noise on top.

    It repeats five times a second while fire is held, so it is short, its attack is
    softened, and most of it lies in the middle of the range, where it is clear without
    being shrill.
    """
    n = length(0.19)
    t = seconds(n)
    freq = 520.0 + 1480.0 * np.exp(-t / 0.045)
    tone = swept_tone(freq, [1.0, 0.3, 0.12, 0.05]) * np.exp(-t / 0.05)
    breath = noise(n, 2500, 8000, ("plasma_shot",)) * np.exp(-t / 0.01) * 0.12
    return finish(tone + breath, attack=0.006, release=0.04)


def enemy_shot():
    """A low, round "thup": a quick drop from 650 Hz to 170 Hz with a gurgle (a 38 Hz
    wobble of the pitch) and a soft puff of low noise."""
    n = length(0.2)
    t = seconds(n)
    freq = (170.0 + 480.0 * np.exp(-t / 0.03)) * (1.0 + 0.06 * np.sin(2 * np.pi * 38.0 * t))
    tone = swept_tone(freq, [1.0, 0.25, 0.11, 0.0, 0.04]) * np.exp(-t / 0.07)
    puff = noise(n, 250, 1800, ("enemy_shot",)) * np.exp(-t / 0.015) * 0.3
    return finish(tone + puff, attack=0.005, release=0.04)


def laser_hum(n):
    """The beam's buzz, n samples of a loop LOOP_SAMPLES long (tiled past it).

    A low-passed saw on A2 (110 Hz) with a slow 5 Hz vibrato, a second voice an octave
    up and 1.25 Hz sharp that beats against it once per loop, a 12.5 Hz flutter of the
    level, and a faint sizzle of noise riding on the flutter. The saw's fundamental is
    halved, its harmonics around 2.2 kHz are lifted (HUM_PRESENCE) and their phases spread
    so that the buzz is dense rather than peaky, so that it is heard above the music's
    bass and pads, where 110 Hz alone would be lost. Every one
    of these is a whole number of cycles per loop, and the noise is made circularly over
    exactly one loop, so the loop is seamless.
    """
    loop = LOOP_SAMPLES
    t = seconds(n)
    base = whole_cycles(110.0)
    vibrato_rate = whole_cycles(5.0)
    vibrato_depth = 0.6  # Hz
    phase = base * t + vibrato_depth / (2 * np.pi * vibrato_rate) \
        * np.sin(2 * np.pi * vibrato_rate * t)
    freq = np.full(n, base + vibrato_depth)  # the highest it goes, for the partial limit
    count = 70
    k = np.arange(1, count + 1)
    weights = np.array(saw_weights(count, 30.0, q=1.4, odd=0.3))
    centre, width, lift = HUM_PRESENCE
    weights *= 1.0 + lift * np.exp(-((k * base - centre) / width) ** 2)
    weights[0] *= 0.5
    buzz = swept_tone(freq, list(weights), phase=phase, offsets=low_crest_offsets(count))
    upper_freq = whole_cycles(2 * base + 1.25)
    upper = swept_tone(np.full(n, upper_freq), saw_weights(12, 4.0), phase=upper_freq * t)
    flutter = 1.0 - 0.12 * (0.5 + 0.5 * np.sin(2 * np.pi * whole_cycles(12.5) * t))
    sizzle = np.resize(noise(loop, 3000, 7000, ("laser_hum",)), n)
    return (buzz + 0.35 * upper + 0.12 * sizzle) * flutter


def laser_loop():
    """One loop of laser_hum, filtered circularly and turned to start where the hum
    crosses zero most gently: the seam's step is then one of the loop's smallest, and the
    first play, which starts from silence, does not click either."""
    x = laser_hum(LOOP_SAMPLES)
    freqs = np.fft.rfftfreq(LOOP_SAMPLES, 1.0 / RATE)
    x = np.fft.irfft(np.fft.rfft(x) * band_mask(freqs, HIGH_PASS, None, 2) * top_cut(freqs),
                     LOOP_SAMPLES)
    x -= np.mean(x)
    return np.roll(x, -gentlest_start(x))


def gentlest_start(x):
    """Where, in a loop, the samples are smallest and change least: the seam's place."""
    step = np.abs(x - np.roll(x, 1))
    bend = np.abs(np.roll(x, -1) - 2 * x + np.roll(x, 1))
    score = np.abs(x) / np.max(np.abs(x)) + step / np.max(step) + bend / np.max(bend)
    return int(np.argmin(score))


def laser_start():
    """The beam charging and firing: a saw rising three octaves from A3 with a quickening
    flutter, a band of noise rising with it, then at 0.3 s the zap (a bright glide down
    and a hiss) with the beam's hum swelling in underneath, as laser_loop takes over."""
    n = length(0.45)
    t = seconds(n)
    fire = 0.3
    u = np.minimum(t / fire, 1.0)
    freq = 220.0 * 8.0 ** u
    flutter_rate = 20.0 + 40.0 * u
    flutter = 1.0 - 0.3 * (0.5 + 0.5 * np.sin(2 * np.pi * phase_of(flutter_rate)))
    rise = u ** 1.5 * decay_after(t, fire, 0.03)
    charge = swept_tone(freq, saw_weights(24, 5.0)) * flutter * rise
    hiss_centre = 600.0 * 10.0 ** u
    hiss = moving_band_noise(n, hiss_centre / 1.5, hiss_centre * 1.5, ("laser_start",)) * rise * 0.25
    zap_freq = 300.0 + 2300.0 * decay_after(t, fire, 0.04)
    zap = swept_tone(zap_freq, [1.0, 0.4, 0.2]) * onset(t, fire, 0.002) * decay_after(t, fire, 0.05)
    burst = noise(n, 2000, 9000, ("laser_start", "burst")) * onset(t, fire, 0.001) \
        * decay_after(t, fire, 0.02) * 0.4
    hum = laser_hum(n) / 1.6 * onset(t, fire - 0.05, 0.05) * 0.6
    return finish(0.8 * charge + hiss + 0.7 * zap + burst + hum, attack=0.01, release=0.08)


# ---------------------------------------------------------------------------------------
# Hits


def plasma_spark():
    """A bolt striking a hull: a snap of noise, a dense shower of tiny crackles thinning
    out, and a short metallic zip from 4.2 kHz down to 2.4 kHz, saturated together so
    the crackles read as one spark rather than a few loud ticks."""
    n = length(0.15)
    t = seconds(n)
    snap = noise(n, 1500, 9000, ("plasma_spark", "snap")) * np.exp(-t / 0.01)
    sparks = crackle(n, 2500.0 * np.exp(-t / 0.04), 2500, 10000, ("plasma_spark",)) * np.exp(-t / 0.05)
    zip_ = swept_tone(2400.0 + 1800.0 * np.exp(-t / 0.02), [1.0, 0.2]) * np.exp(-t / 0.025)
    return finish(soft_clip(0.6 * snap + sparks + 0.4 * zip_, 2.5), attack=0.003, release=0.03)


def laser_burn():
    """The beam eating into a hull: a hiss between 2.5 and 8 kHz with a wavering level,
    crackles popping in it and a trace of the beam's hum underneath, dying away after
    a quarter of a second."""
    n = length(0.42)
    t = seconds(n)
    waver = 0.6 + 0.4 * noise(n, None, 60.0, ("laser_burn", "waver"))
    hiss = noise(n, 2500, 8000, ("laser_burn",)) * waver
    pops = crackle(n, 300.0, 1500, 9000, ("laser_burn",))
    hum = laser_hum(n) / 1.6
    env = decay_after(t, 0.22, 0.06)
    return finish((0.6 * hiss + 0.5 * pops + 0.25 * hum) * env, attack=0.012, release=0.08)


def player_hit():
    """A dull knock on the hull (five inharmonic partials of a struck plate over 280 Hz,
    damped fast, with a thud of noise) and a short alarm blip on A4 that dips in pitch."""
    n = length(0.26)
    t = seconds(n)
    knock = np.zeros(n)
    for ratio, level, decay in ((1.0, 1.0, 0.09), (1.59, 0.6, 0.06), (2.14, 0.45, 0.045),
                                (2.92, 0.3, 0.03), (3.61, 0.2, 0.02)):
        knock += level * np.sin(2 * np.pi * 280.0 * ratio * t) * np.exp(-t / decay)
    thud = noise(n, 100, 2500, ("player_hit",)) * np.exp(-t / 0.006)
    start = 0.04
    blip_freq = hz(69) * (1.0 - 0.06 * (1.0 - decay_after(t, start, 0.05)))
    blip = swept_tone(blip_freq, saw_weights(15, 3.0, odd=0.8)) \
        * onset(t, start, 0.004) * decay_after(t, start, 0.07)
    return finish(0.5 * knock + 0.4 * thud + 0.8 * blip, attack=0.003, release=0.05)


# ---------------------------------------------------------------------------------------
# Explosions


# The parts of an explosion. thump: a sine falling from `thump` Hz (its first value) to
# its second in about 60 ms, dying with time constant `thump_decay`. blast: noise under a
# low-pass falling from `cutoff` (first) to its second value with time constant `fall`,
# dying with `blast_decay`. crack: a short hiss of bright noise at the start. rumble:
# noise between 25 and 180 Hz dying with `rumble_decay`. debris: crackles thinning out
# with `debris_decay`. Each part has its level; `drive` saturates the sum.
EXPLOSIONS = {
    "small": dict(seconds=0.85, thump=(150.0, 50.0), thump_decay=0.12, thump_level=0.9,
                  cutoff=(5000.0, 400.0), fall=0.15, blast_decay=0.17, blast_level=0.9,
                  crack_level=0.4, rumble_decay=0.25, rumble_level=0.35,
                  debris=150.0, debris_decay=0.15, debris_level=0.2, drive=1.5),
    "large": dict(seconds=1.4, thump=(110.0, 32.0), thump_decay=0.3, thump_level=1.0,
                  cutoff=(3500.0, 200.0), fall=0.3, blast_decay=0.35, blast_level=0.9,
                  crack_level=0.3, rumble_decay=0.5, rumble_level=0.6,
                  debris=120.0, debris_decay=0.35, debris_level=0.18, drive=1.6),
    "death": dict(seconds=1.45, thump=(130.0, 40.0), thump_decay=0.22, thump_level=0.9,
                  cutoff=(4500.0, 250.0), fall=0.25, blast_decay=0.3, blast_level=0.8,
                  crack_level=0.4, rumble_decay=0.4, rumble_level=0.5,
                  debris=140.0, debris_decay=0.3, debris_level=0.2, drive=1.5),
    "nuke": dict(seconds=2.8, thump=(80.0, 24.0), thump_decay=0.5, thump_level=1.1,
                 cutoff=(7000.0, 90.0), fall=0.5, blast_decay=0.6, blast_level=1.0,
                 crack_level=0.6, rumble_decay=1.0, rumble_level=1.0,
                 debris=100.0, debris_decay=0.6, debris_level=0.15, drive=2.0),
}


def explosion(kind, at=0.0, n=None):
    """An explosion with the settings of EXPLOSIONS[kind], starting at seconds at."""
    s = EXPLOSIONS[kind]
    n = length(s["seconds"]) if n is None else n
    t = seconds(n)
    u = np.maximum(t - at, 0.0)
    live = onset(t, at, 0.0015)
    key = (kind, at)
    thump_from, thump_to = s["thump"]
    thump_freq = thump_to + (thump_from - thump_to) * np.exp(-u / 0.06)
    thump_phase = phase_of(thump_freq)
    thump = np.sin(2 * np.pi * (thump_phase - thump_phase[length(at)])) * np.exp(-u / s["thump_decay"])
    cut_from, cut_to = s["cutoff"]
    blast = moving_band_noise(n, 40.0, cut_to + (cut_from - cut_to) * np.exp(-u / s["fall"]), key) \
        * np.exp(-u / s["blast_decay"])
    crack = noise(n, 1500, 12000, key + ("crack",)) * np.exp(-u / 0.015)
    rumble = noise(n, 25, 180, key + ("rumble",)) * onset(t, at, 0.03) * np.exp(-u / s["rumble_decay"])
    debris = crackle(n, s["debris"] * np.exp(-u / s["debris_decay"]), 800, 7000, key) * np.exp(-u / 0.4)
    x = (s["thump_level"] * thump + s["blast_level"] * blast + s["crack_level"] * crack
         + s["rumble_level"] * rumble + s["debris_level"] * debris) * live
    return soft_clip(x / 2.0, s["drive"])


def explosion_small():
    return finish(explosion("small"), attack=0.004, release=0.2)


def explosion_large():
    """A first blast, a second one 0.16 s later as the hull gives way, and the rumble."""
    n = length(EXPLOSIONS["large"]["seconds"])
    x = explosion("large", n=n) + 0.6 * explosion("small", at=0.16, n=n)
    return finish(x, attack=0.004, release=0.35)


def player_death():
    """The ship blowing up, and under it a tone falling four octaves from A5 with a
    wobble, the arcade way of saying the ship is gone."""
    n = length(EXPLOSIONS["death"]["seconds"])
    t = seconds(n)
    wobble = 1.0 + 0.03 * np.sin(2 * np.pi * 8.0 * t)
    freq = hz(81) * 2.0 ** (-4.0 * np.minimum(t / 1.25, 1.0)) * wobble
    tone = swept_tone(freq, saw_weights(30, 5.0, odd=0.6)) * np.maximum(0.0, 1.0 - t / 1.35) ** 1.5
    return finish(explosion("death", n=n) + 0.35 * tone, attack=0.004, release=0.3)


def meganuke():
    """The whole screen going up: a crack, a huge boom with a second swell behind it,
    a sub rumble, and a long low tail of fire that takes two seconds to die."""
    s = EXPLOSIONS["nuke"]
    n = length(s["seconds"])
    t = seconds(n)
    boom = explosion("nuke", n=n) + 0.5 * explosion("large", at=0.09, n=n)
    tail = noise(n, 40, 400, ("meganuke", "tail")) * onset(t, 0.05, 0.2) * np.exp(-t / 0.9)
    sub = np.sin(2 * np.pi * phase_of(34.0 + 10.0 * np.exp(-t / 0.4))) * onset(t, 0.0, 0.01) \
        * np.exp(-t / 0.9)
    return finish(boom + 0.35 * tail + 0.3 * sub, attack=0.004, release=0.8)


# ---------------------------------------------------------------------------------------
# Tonal cues


def respawn():
    """The ship growing in: a fifth of two detuned voices sweeping three octaves up to A6,
    shimmering with a tremolo that quickens, over a rising band of noise; it swells in
    and settles out."""
    n = length(1.0)
    t = seconds(n)
    u = np.minimum(t / 0.9, 1.0)
    root = hz(57) * 8.0 ** (u * u * (3.0 - 2.0 * u))
    tone = np.zeros(n)
    for ratio, level in ((1.0, 1.0), (1.5, 0.45)):
        for cents in (-6.0, 6.0):
            freq = root * ratio * 2.0 ** (cents / 1200.0)
            tone += level * swept_tone(freq, [1.0, 0.3, 0.15, 0.06])
    shimmer = 1.0 - 0.35 * (0.5 + 0.5 * np.sin(2 * np.pi * phase_of(8.0 + 16.0 * u)))
    air_centre = 1000.0 * 8.0 ** u
    air = moving_band_noise(n, air_centre / 1.4, air_centre * 1.4, ("respawn",))
    swell = np.sin(0.5 * np.pi * np.minimum(t / 0.7, 1.0)) * decay_after(t, 0.75, 0.12)
    return finish((0.25 * tone * shimmer + 0.12 * air) * swell, attack=0.02, release=0.15)


def chime(freq, n, partials, key):
    """A struck chime on freq: partials (harmonic number, level, decay in seconds)."""
    t = seconds(n)
    phases = rng("chime", *key).uniform(0.0, 1.0, len(partials))
    out = np.zeros(n)
    for (k, level, decay), phase in zip(partials, phases):
        if k * freq < TOP_FREQUENCY - TOP_BAND:
            out += level * np.sin(2 * np.pi * (k * freq * t + phase)) * np.exp(-t / decay)
    return out


def powerup_appear():
    """A twinkle: A5, C6, E6 and A6 struck 45 ms apart, each a tiny bell, with a glint of
    high noise."""
    n = length(0.42)
    t = seconds(n)
    x = np.zeros(n)
    for i, note in enumerate((81, 84, 88, 93)):
        at = length(0.045 * i)
        bell = chime(hz(note), n - at, [(1, 1.0, 0.07), (2, 0.25, 0.04), (3, 0.1, 0.025)], ("appear", i))
        x[at:] += bell * onset(seconds(n - at), 0.0, 0.002) * (1.0 - 0.12 * i)
    glint = noise(n, 6000, 12000, ("powerup_appear",)) * onset(t, 0.0, 0.01) * np.exp(-t / 0.1) * 0.1
    return finish(0.5 * x + glint, attack=0.004, release=0.08)


# The chime of powerup_collect: harmonics of A5 (all of them, so the pitch is plain),
# each dying faster than the one below, and a quick tink two octaves and a fifth up for
# the strike. The highest lies near 5.3 kHz, so it still sits well below the top when the
# game plays the chime seven semitones higher.
COLLECT_PARTIALS = [(1, 1.0, 0.2), (2, 0.35, 0.11), (3, 0.15, 0.07), (4, 0.07, 0.045),
                    (6, 0.12, 0.012)]


def powerup_collect():
    """One chime on A5 (880 Hz), made to be played pitched from five semitones down to
    seven up: harmonic, so it stays in tune at any pitch, and bright but not piercing."""
    n = length(0.6)
    x = chime(hz(81), n, COLLECT_PARTIALS, ("collect",))
    return finish(x, attack=0.003, release=0.12)


def horn_note(note, n, held, key):
    """A brassy note: three detuned saws with an octave below, whose filter opens on the
    attack and settles; held seconds, then dying away over the rest of n samples."""
    t = seconds(n)
    generator = rng("horn", *key)
    freq = hz(note)
    out = np.zeros(n)
    bright = np.exp(-t / 0.08)
    for cents, level in ((-7.0, 1.0), (0.0, 1.0), (7.0, 1.0), (-1200.0, 0.5)):
        f = np.full(n, freq * 2.0 ** (cents / 1200.0))
        phase = phase_of(f) + generator.uniform(0.0, 1.0)
        out += level * ((1.0 - bright) * swept_tone(f, saw_weights(30, 3.0), phase=phase)
                        + bright * swept_tone(f, saw_weights(30, 7.0), phase=phase))
    env = onset(t, 0.0, 0.006) * (0.8 + 0.2 * np.exp(-t / 0.06))
    env *= decay_after(t, held, 0.08)
    return out * env


def wave_banner():
    """The alert before a wave: A4, C5, E5 on the music's eighth notes, the last held,
    brassy like a horn call."""
    n = length(1.0)
    x = np.zeros(n)
    eighth = BEAT / 2
    for i, (note, held) in enumerate(((69, 0.8 * eighth), (72, 0.8 * eighth), (76, 0.42))):
        at = length(i * eighth)
        x[at:] += horn_note(note, n - at, held, ("banner", i))
    return finish(x, attack=0.004, release=0.12)


def lament_note(note, n, held, vibrato=False, key=()):
    """A soft, hollow lead note: two detuned half-square voices behind a low filter,
    with a slow vibrato when asked; held seconds, then a gentle release."""
    t = seconds(n)
    generator = rng("lament", note, *key)
    depth = np.clip((t - 0.3) / 0.4, 0.0, 1.0) * 0.004 if vibrato else 0.0
    wobble = 1.0 + depth * np.sin(2 * np.pi * 5.0 * t)
    out = np.zeros(n)
    for cents in (-5.0, 5.0):
        f = hz(note) * 2.0 ** (cents / 1200.0) * wobble
        out += swept_tone(f, saw_weights(20, 2.5, odd=0.6), phase=phase_of(f) + generator.uniform(0, 1))
    env = onset(t, 0.0, 0.015) * np.exp(-t / 3.0)
    env *= decay_after(t, held, 0.12)
    return out * env


def game_over():
    """A phrase falling E5, C5, B4 to a long A4 on the music's beats, the last note over
    a soft A minor chord and a low A."""
    n = length(2.7)
    x = np.zeros(n)
    for i, (note, held) in enumerate(((76, 0.9 * BEAT), (72, 0.9 * BEAT), (71, 0.9 * BEAT), (69, 1.1))):
        at = length(i * BEAT)
        x[at:] += lament_note(note, n - at, held, vibrato=i == 3, key=(i,))
    at = length(3 * BEAT)
    t = seconds(n - at)
    chord = np.zeros(n - at)
    for note in (45, 57, 60, 64):
        f = np.full(n - at, hz(note))
        phase = phase_of(f) + rng("chord", note).uniform(0, 1)
        chord += swept_tone(f, saw_weights(12, 2.0), phase=phase)
    chord *= (1.0 - np.exp(-t / 0.15)) * decay_after(t, 0.9, 0.3)
    x[at:] += 0.25 * chord
    return finish(x, attack=0.01, release=0.3)


# ---------------------------------------------------------------------------------------
# Writing


SOUNDS = {
    "plasma_shot": plasma_shot,
    "laser_start": laser_start,
    "laser_loop": laser_loop,
    "enemy_shot": enemy_shot,
    "plasma_spark": plasma_spark,
    "laser_burn": laser_burn,
    "explosion_small": explosion_small,
    "explosion_large": explosion_large,
    "player_hit": player_hit,
    "player_death": player_death,
    "respawn": respawn,
    "powerup_appear": powerup_appear,
    "powerup_collect": powerup_collect,
    "meganuke": meganuke,
    "wave_banner": wave_banner,
    "game_over": game_over,
}


def write(folder, name, x):
    """Scales x to its level from LEVELS, rounds it to 16 bits and writes name.wav."""
    path = folder / f"{name}.wav"
    longest = LONGEST_FINALE if name in FINALES else LONGEST
    if len(x) > longest * RATE:
        raise RuntimeError(f"{path}: {len(x) / RATE:.2f} s, longer than {longest:g} s")
    target = 10 ** (LEVELS[name] / 20)
    pcm = np.round(x * (target / np.max(np.abs(x)) * 32767.0)).astype(np.int16)
    soundfile.write(str(path), pcm, RATE, subtype="PCM_16")
    peak = np.max(np.abs(pcm)) / 32768.0
    if peak > PEAK_CEILING:
        raise RuntimeError(f"{path}: peak {peak:.4f} above -3 dBFS")
    print(f"   {path}: {len(pcm) / RATE:.2f} s, peak {20 * np.log10(peak):.2f} dBFS")


def generate(out_root: pathlib.Path, args=None):
    folder = pathlib.Path(out_root) / "sfx"
    folder.mkdir(parents=True, exist_ok=True)
    for name, make in SOUNDS.items():
        write(folder, name, make())

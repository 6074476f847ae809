"""Light effects tinted at draw time (star, plasma bullet, laser beam) and the reticle.

Tinted art is white or grey: the game multiplies it by the tint, so a neutral
image shows the tint exactly.
"""
import numpy as np

from art_draw import F, Canvas, rgb, sd_circle, sd_ring, sd_segment, union, rotate, smoothstep


def _pixel_grid(w, h):
    ys = np.arange(h, dtype=F) + 0.5 - h * 0.5
    xs = np.arange(w, dtype=F) + 0.5 - w * 0.5
    return np.meshgrid(xs, ys)


def _white_light(intensity):
    """White light of the given strength (0..1 and above) as RGBA for additive drawing."""
    a = np.clip(intensity, 0.0, 1.0)
    out = np.zeros(a.shape + (4,), dtype=np.uint8)
    a8 = np.round(a * 255.0).astype(np.uint8)
    out[..., :3] = np.where(a8[..., None] > 0, 255, 0).astype(np.uint8)
    out[..., 3] = a8
    return out


def star():
    """32 x 16: a soft point of light, stretched sideways like the star quad (32 x 15)."""
    x, y = _pixel_grid(32, 16)
    # The quad squeezes the image 32:15, so round in screen space means 32:15 here;
    # a little extra width gives the faint horizontal streak of a distant sun.
    r2 = (x / 5.6) ** 2 + (y / 2.9) ** 2
    core = np.exp(-r2 * 1.6)
    halo = 0.32 * np.exp(-r2 * 0.45)
    streak = 0.18 * np.exp(-(x / 10.0) ** 2 - (y / 0.9) ** 2)
    edge = np.clip(1.0 - np.maximum(np.abs(x) / 16.0, np.abs(y) / 8.0), 0.0, 1.0)
    return _white_light((core + halo + streak) * smoothstep(0.0, 0.25, edge))


def plasmabullet():
    """32 x 32: a glowing ball, hot white core and a soft falloff to the border."""
    x, y = _pixel_grid(32, 32)
    r = np.hypot(x, y)
    core = np.exp(-(r / 3.4) ** 2)
    shell = 0.35 * np.exp(-((r - 4.5) / 2.2) ** 2)
    halo = 0.42 * np.exp(-(r / 7.5) ** 2)
    fade = smoothstep(16.0, 10.5, r)
    return _white_light((core + shell + halo) * fade)


def slaser():
    """64 x 32: the beam body. Across the beam is the image's height (t): a narrow
    bright core fading to nothing at the top and bottom rows; along the beam (s)
    it is constant, so it stretches to any length and repeats without a seam."""
    x, y = _pixel_grid(64, 32)
    v = np.abs(y)
    core = np.exp(-(v / 2.6) ** 2)
    halo = 0.5 * np.exp(-(v / 7.0) ** 2)
    fade = smoothstep(16.0, 12.5, v)
    return _white_light((core + halo) * fade)


RETICLE_CYAN = rgb("#7fe8ff")


def reticle():
    """64 x 64, drawn at 38 x 38: a broken ring with four inward ticks and a centre
    dot, white-cyan with a thin dark outline so it reads over bright explosions."""
    c = Canvas(64, 64, ss=4)
    x, y = c.centred()
    ring = sd_ring(x, y, 0, 0, 21.0, 1.6)
    # Gaps on the diagonals.
    ang = np.degrees(np.arctan2(y, x)) % 90.0
    gap = (np.abs(ang - 45.0) - 11.0) * np.radians(1.0) * 21.0
    ring = np.maximum(ring, -gap)
    ticks = union(*[sd_segment(x, y, *rotate(np.float32(0), np.float32(-27.5), a),
                               *rotate(np.float32(0), np.float32(-13.0), a), 1.5)
                    for a in (0, 90, 180, 270)])
    dot = sd_circle(x, y, 0, 0, 1.9)
    shape = union(ring, ticks, dot)
    c.over(np.array([0.02, 0.05, 0.09], dtype=F), 0.75 * c.cover(shape - 1.4))
    c.over(RETICLE_CYAN, c.cover(shape))
    # Bright white centre line of each stroke.
    c.over(np.array([0.93, 1.0, 1.0], dtype=F), 0.8 * c.cover(shape + 0.8))
    return c.to_rgba()


def reticle_glow():
    """64 x 64, drawn at 40 x 40 above the cross with a pulsing alpha: a soft cyan
    ring of light around the crosshair ring, clear at the centre and the border."""
    x, y = _pixel_grid(64, 64)
    r = np.hypot(x, y)
    ring = np.exp(-((r - 20.5) / 4.0) ** 2)
    inner = 0.25 * np.exp(-((r - 20.5) / 9.0) ** 2)
    a = np.clip((ring + inner) * smoothstep(31.5, 26.0, r), 0.0, 1.0)
    out = np.zeros((64, 64, 4), dtype=np.uint8)
    a8 = np.round(a * 230).astype(np.uint8)
    out[..., :3] = np.where(a8[..., None] > 0, np.round(RETICLE_CYAN * 255), 0).astype(np.uint8)
    out[..., 3] = a8
    return out

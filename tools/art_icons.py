"""The desktop icon: the player's ship with its glows over a piece of the nebula,
on a rounded square with a neon edge, at the sizes desktops ask for.

generate(out_root, args) writes out_root/packaging/icons/nightvector_N.png for
every N in SIZES. The ship is painted by the same functions as gfx/player_*.png
and the nebula by the skybox's own field, so the icon is the game's art.
"""
import contextlib
import pathlib

import numpy as np
from PIL import Image

import art_draw
import art_ships
import art_sky
from art_draw import F, rgb, sd_box, smoothstep, write_png

SIZES = (64, 128, 256)
# Everything is put together at this size, then scaled down to each icon size.
MASTER = 512
# The ship's body across, as a share of the icon; its glow reaches 72/64 of that.
SHIP_SHARE = 0.62
# Corner window of the skybox face the background shows: s, t from 0 to 1 across the face.
SKY_FACE = "right"
SKY_WINDOW = (0.08, 0.02, 0.62)
NEON_BLUE = rgb("#2f8bff")
CYAN = rgb("#6fe6ff")


@contextlib.contextmanager
def _full_samples():
    """Canvases hand back their supersamples instead of averaging them, so the ship's
    layers come out at four times their game size instead of being enlarged."""
    kept = art_draw.downsample
    art_draw.downsample = lambda img, ss: img
    try:
        yield
    finally:
        art_draw.downsample = kept


def _nebula(n):
    """The skybox's nebula over the window SKY_WINDOW of face SKY_FACE, (n, n, 3) light."""
    s0, t0, width = SKY_WINDOW
    origin, su, tv = art_sky.face_frame(SKY_FACE)
    k = np.arange(n, dtype=np.float64) / (n - 1) * width
    t, s = np.meshgrid(t0 + k, s0 + k, indexing="ij")
    p = origin + s[..., None] * su + t[..., None] * tv
    d = (p / np.linalg.norm(p, axis=-1, keepdims=True)).astype(F)
    light, _ = art_sky._nebula(d)
    return light


def _stars(n):
    """A few dozen small stars of the sky's colours, from a fixed seed."""
    rng = np.random.default_rng(0x1C0)
    yy, xx = np.mgrid[0:n, 0:n].astype(F) + 0.5
    light = np.zeros((n, n, 3), dtype=F)
    for _ in range(70):
        x, y = rng.random(2) * n
        size = n / 512 * (0.8 + 1.6 * rng.random() ** 4)
        bright = 0.4 + 1.4 * rng.random() ** 3
        warm = rng.random()
        colour = np.array([0.85 + 0.15 * warm, 0.9, 1.0 - 0.3 * warm], dtype=F)
        light += (bright * np.exp(-((xx - x) ** 2 + (yy - y) ** 2) / (2 * size * size)))[..., None] * colour
    return light


def _scaled(rgba, size, angle=0.0):
    """rgba scaled to size x size, turned by angle degrees (counter-clockwise, as PIL does)."""
    img = Image.fromarray(rgba, "RGBA").resize((size, size), Image.LANCZOS)
    if angle:
        img = img.rotate(angle, resample=Image.BICUBIC)
    return np.asarray(img).astype(F) / 255.0


def _put(rgb_layer, layer, additive=False, alpha=1.0):
    """Draws a square straight-alpha layer centred on an opaque picture, in place."""
    n, m = rgb_layer.shape[0], layer.shape[0]
    o = (n - m) // 2
    region = rgb_layer[o:o + m, o:o + m]
    a = layer[..., 3:4] * alpha
    if additive:
        region += layer[..., :3] * a
    else:
        region[:] = region * (1.0 - a) + layer[..., :3] * a


def master():
    """The icon at MASTER x MASTER, straight-alpha RGBA bytes."""
    n = MASTER
    yy, xx = np.mgrid[0:n, 0:n].astype(F) + 0.5
    cx = cy = n * 0.5
    r = np.hypot(xx - cx, yy - cy) / n

    # Background: the nebula, brightened, darker behind the ship so its rim reads.
    sky = _nebula(n) * 2.0 + _stars(n)
    sky *= (0.45 + 0.55 * smoothstep(0.18, 0.42, r))[..., None]
    picture = 1.0 - np.exp(-1.15 * sky)

    with _full_samples():
        bottom, middle, top = art_ships.player_bot(), art_ships.player_mid(), art_ships.player_top()
    body = int(round(n * SHIP_SHARE))
    # The turning layers are caught at an angle, as the game shows them in flight.
    _put(picture, _scaled(bottom, body, 40))
    _put(picture, _scaled(art_ships.player_glow_bot(), body * 60 // 64, 40), additive=True, alpha=129 / 255)
    _put(picture, _scaled(middle, body, 12))
    _put(picture, _scaled(top, body))
    _put(picture, _scaled(art_ships.player_glow_top(), body * 72 // 64), additive=True, alpha=229 / 255)

    # A rounded square with a neon edge and a soft inner glow along it.
    inset, corner = n * 0.04, n * 0.18
    d = sd_box(xx, yy, cx, cy, n * 0.5 - inset, n * 0.5 - inset, corner)
    edge = np.exp(-((d + n * 0.012) / (n * 0.005)) ** 2)
    inner = np.exp(-np.maximum(-d, 0.0) / (n * 0.03)) * (d < 0)
    picture += edge[..., None] * CYAN * 0.9 + inner[..., None] * NEON_BLUE * 0.25
    alpha = np.clip(0.5 - d, 0.0, 1.0)

    out = np.empty((n, n, 4), dtype=np.uint8)
    out[..., :3] = np.round(np.clip(picture, 0.0, 1.0) * 255.0).astype(np.uint8)
    out[..., 3] = np.round(alpha * 255.0).astype(np.uint8)
    return out


def generate(out_root: pathlib.Path, args):
    folder = pathlib.Path(out_root) / "packaging" / "icons"
    big = Image.fromarray(master(), "RGBA")
    for size in SIZES:
        icon = np.asarray(big.resize((size, size), Image.LANCZOS))
        write_png(folder / f"nightvector_{size}.png", icon)
        print(f"   nightvector_{size}.png {size:4d} x {size:<4d}", flush=True)

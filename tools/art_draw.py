"""Drawing kit for the game's art: supersampled canvases, signed distance shapes,
gradient noise, glow emission and deterministic PNG output.

Coordinates are in image pixels, x to the right and y downwards, measured at the
centres of the supersampled samples. Shapes are signed distance fields: negative
inside, positive outside, in pixels.
"""
import pathlib
import zlib
import struct

import numpy as np

F = np.float32


# ---------------------------------------------------------------------------
# Small maths

def smoothstep(e0, e1, x):
    t = np.clip((x - e0) / (e1 - e0), 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def mix(a, b, t):
    return a + (b - a) * t


def rgb(hexcode):
    """'#rrggbb' as three floats in 0..1."""
    h = hexcode.lstrip("#")
    return np.array([int(h[i:i + 2], 16) / 255.0 for i in (0, 2, 4)], dtype=F)


def rotate(x, y, deg):
    """Rotates points by deg degrees, clockwise on screen (y points down)."""
    a = np.radians(deg)
    c, s = np.cos(a), np.sin(a)
    return c * x - s * y, s * x + c * y


def downsample(img, ss):
    """Mean of ss x ss blocks; img is (H*ss, W*ss) or (H*ss, W*ss, C)."""
    if ss == 1:
        return img
    h, w = img.shape[0] // ss, img.shape[1] // ss
    if img.ndim == 2:
        return img.reshape(h, ss, w, ss).mean(axis=(1, 3))
    return img.reshape(h, ss, w, ss, img.shape[2]).mean(axis=(1, 3))


def box_blur(img, r):
    """Box blur of radius r (window 2r+1) along both axes, edges clamped."""
    if r <= 0:
        return img
    out = img
    for axis in (0, 1):
        pad = [(0, 0)] * img.ndim
        pad[axis] = (r + 1, r)
        c = np.cumsum(np.pad(out, pad, mode="edge"), axis=axis, dtype=F)
        n = out.shape[axis]
        hi = np.take(c, np.arange(2 * r + 1, 2 * r + 1 + n), axis=axis)
        lo = np.take(c, np.arange(0, n), axis=axis)
        out = ((hi - lo) / (2 * r + 1)).astype(F)
    return out


def gaussian_blur(img, sigma):
    """Three box blurs approximating a Gaussian of the given sigma (pixels)."""
    if sigma <= 0:
        return img
    r = max(1, int(round(np.sqrt(4.0 * sigma * sigma / 3.0 + 1.0) - 0.5)))
    for _ in range(3):
        img = box_blur(img, r)
    return img


# ---------------------------------------------------------------------------
# Signed distance shapes (all in pixels)

def sd_circle(x, y, cx, cy, r):
    return np.hypot(x - cx, y - cy) - r


def sd_ellipse(x, y, cx, cy, rx, ry):
    # Scaled circle: exact on the axes, close enough for anti-aliased edges.
    k = min(rx, ry)
    return (np.hypot((x - cx) / rx, (y - cy) / ry) - 1.0) * k


def sd_box(x, y, cx, cy, hw, hh, r=0.0):
    qx = np.abs(x - cx) - hw + r
    qy = np.abs(y - cy) - hh + r
    out = np.hypot(np.maximum(qx, 0), np.maximum(qy, 0))
    return out + np.minimum(np.maximum(qx, qy), 0) - r


def sd_segment(x, y, ax, ay, bx, by, r=0.0):
    px, py = x - ax, y - ay
    dx, dy = bx - ax, by - ay
    h = np.clip((px * dx + py * dy) / (dx * dx + dy * dy), 0.0, 1.0)
    return np.hypot(px - dx * h, py - dy * h) - r


def sd_polygon(x, y, pts):
    """Exact distance to a simple polygon given as [(x, y), ...]."""
    pts = [(float(a), float(b)) for a, b in pts]
    d = np.full(x.shape, np.inf, dtype=F)
    inside = np.zeros(x.shape, dtype=bool)
    n = len(pts)
    for i in range(n):
        ax, ay = pts[i]
        bx, by = pts[i - 1]
        ex, ey = bx - ax, by - ay
        wx, wy = x - ax, y - ay
        h = np.clip((wx * ex + wy * ey) / (ex * ex + ey * ey), 0.0, 1.0)
        d = np.minimum(d, (wx - ex * h) ** 2 + (wy - ey * h) ** 2)
        c1 = y >= ay
        c2 = y < by
        c3 = ex * wy > ey * wx
        flip = (c1 & c2 & c3) | (~c1 & ~c2 & ~c3)
        inside ^= flip
    d = np.sqrt(d)
    return np.where(inside, -d, d).astype(F)


def sd_ring(x, y, cx, cy, r, half_width):
    return np.abs(np.hypot(x - cx, y - cy) - r) - half_width


def sd_arc(x, y, cx, cy, r, half_width, a0, a1):
    """Ring sector from angle a0 to a1 (degrees, clockwise from +x on screen)."""
    ring = sd_ring(x, y, cx, cy, r, half_width)
    ang = np.degrees(np.arctan2(y - cy, x - cx))
    mid = 0.5 * (a0 + a1)
    half = 0.5 * (a1 - a0)
    off = np.abs((ang - mid + 180.0) % 360.0 - 180.0) - half
    # Beyond the sector's ends, distance grows with the arc length past the end.
    cap = off * np.radians(1.0) * r
    return np.maximum(ring, cap)


def union(*ds):
    out = ds[0]
    for d in ds[1:]:
        out = np.minimum(out, d)
    return out


def intersect(a, b):
    return np.maximum(a, b)


# ---------------------------------------------------------------------------
# Gradient noise

_GRAD3 = np.array([[1, 1, 0], [-1, 1, 0], [1, -1, 0], [-1, -1, 0],
                   [1, 0, 1], [-1, 0, 1], [1, 0, -1], [-1, 0, -1],
                   [0, 1, 1], [0, -1, 1], [0, 1, -1], [0, -1, -1],
                   [1, 1, 0], [-1, 1, 0], [0, -1, 1], [0, -1, -1]], dtype=F)


class Noise:
    """Classic 3D gradient noise over a seeded permutation; values about -1..1."""

    def __init__(self, seed):
        rng = np.random.default_rng(seed)
        p = rng.permutation(256).astype(np.int32)
        self.perm = np.concatenate([p, p])
        # Gradient components per hash, looked up directly from the permuted index.
        grad = _GRAD3[self.perm & 15]
        self.gx, self.gy, self.gz = (np.ascontiguousarray(grad[:, k]) for k in range(3))

    def __call__(self, x, y, z=0.0):
        x = np.asarray(x, dtype=F)
        y = np.asarray(y, dtype=F)
        z = np.broadcast_to(np.asarray(z, dtype=F), x.shape)
        fx, fy, fz = np.floor(x), np.floor(y), np.floor(z)
        ix = fx.astype(np.int32) & 255
        iy = fy.astype(np.int32) & 255
        iz = fz.astype(np.int32) & 255
        x, y, z = x - fx, y - fy, z - fz
        u = x * x * x * (x * (x * 6 - 15) + 10)
        v = y * y * y * (y * (y * 6 - 15) + 10)
        w = z * z * z * (z * (z * 6 - 15) + 10)
        p = self.perm
        # Hashes of the eight lattice corners, sharing the partial lookups.
        a0, a1 = p[ix] + iy, p[ix + 1] + iy
        b00, b01, b10, b11 = p[a0] + iz, p[a0 + 1] + iz, p[a1] + iz, p[a1 + 1] + iz
        x1, y1, z1 = x - 1, y - 1, z - 1

        def g(h, dx, dy, dz):
            return self.gx[h] * dx + self.gy[h] * dy + self.gz[h] * dz

        a = mix(g(b00, x, y, z), g(b10, x1, y, z), u)
        b = mix(g(b01, x, y1, z), g(b11, x1, y1, z), u)
        c = mix(g(b00 + 1, x, y, z1), g(b10 + 1, x1, y, z1), u)
        d = mix(g(b01 + 1, x, y1, z1), g(b11 + 1, x1, y1, z1), u)
        return mix(mix(a, b, v), mix(c, d, v), w).astype(F)

    def fbm(self, x, y, z=0.0, octaves=5, lacunarity=2.0, gain=0.5):
        total = np.zeros(np.shape(x), dtype=F)
        amp, freq, norm = 1.0, 1.0, 0.0
        for i in range(octaves):
            # Each octave is shifted so that lattice points do not line up.
            o = 17.13 * i
            total += amp * self(x * freq + o, y * freq - o, np.asarray(z) * freq + 0.5 * o)
            norm += amp
            amp *= gain
            freq *= lacunarity
        return total / norm


# ---------------------------------------------------------------------------
# Canvases

class Canvas:
    """Premultiplied RGBA layers composited at ss x ss samples per pixel."""

    def __init__(self, width, height, ss=4):
        self.width, self.height, self.ss = width, height, ss
        xs = (np.arange(width * ss, dtype=F) + 0.5) / ss
        ys = (np.arange(height * ss, dtype=F) + 0.5) / ss
        self.y, self.x = np.meshgrid(ys, xs, indexing="ij")
        self.aa = 1.0 / ss
        self.rgb = np.zeros((height * ss, width * ss, 3), dtype=F)
        self.a = np.zeros((height * ss, width * ss), dtype=F)

    def centred(self):
        """Sample coordinates relative to the image centre."""
        return self.x - self.width * 0.5, self.y - self.height * 0.5

    def cover(self, d, soft=0.0):
        """Coverage of the inside of d, anti-aliased over one sample or `soft` pixels."""
        w = max(self.aa, soft)
        return np.clip(0.5 - d / w, 0.0, 1.0).astype(F)

    def over(self, color, alpha):
        """Paints straight colour (3,) or (..., 3) with alpha over what is there."""
        alpha = np.asarray(alpha, dtype=F)
        color = np.asarray(color, dtype=F)
        k = 1.0 - alpha
        self.rgb = self.rgb * k[..., None] + color * alpha[..., None]
        self.a = self.a * k + alpha

    def add(self, color, amount):
        """Adds light inside what is already painted (emissive details)."""
        self.rgb = self.rgb + np.asarray(color, dtype=F) * (np.asarray(amount, dtype=F) * self.a)[..., None]

    def erase(self, alpha):
        k = 1.0 - np.asarray(alpha, dtype=F)
        self.rgb = self.rgb * k[..., None]
        self.a = self.a * k

    def to_rgba(self, bleed=True):
        """Straight-alpha RGBA bytes; fully transparent pixels take the colour of
        their nearest painted neighbours so that linear filtering shows no dark fringe."""
        rgb = downsample(self.rgb, self.ss)
        a = downsample(self.a, self.ss)
        return straight_rgba(rgb, a, bleed)


def straight_rgba(premult_rgb, alpha, bleed=True):
    a = np.clip(alpha, 0.0, 1.0)
    col = np.where(a[..., None] > 1e-6, premult_rgb / np.maximum(a, 1e-6)[..., None], 0.0)
    col = np.clip(col, 0.0, 1.0)
    a8 = np.round(a * 255.0).astype(np.uint8)
    if bleed:
        col = bleed_colour(col, a8 > 0)
    out = np.empty(a.shape + (4,), dtype=np.uint8)
    out[..., :3] = np.round(col * 255.0).astype(np.uint8)
    out[..., 3] = a8
    return out


def bleed_colour(col, known, steps=6):
    col = col.copy()
    known = known.copy()
    for _ in range(steps):
        if known.all():
            break
        k = known.astype(F)
        s = box_blur(col * k[..., None], 1)
        c = box_blur(k, 1)
        new = (~known) & (c > 1e-6)
        col[new] = s[new] / c[new][..., None]
        known |= new
    return col


def glow_rgba(emission):
    """Light for additive drawing: emission (H, W, 3) in linear units becomes a
    colour with a soft roll-off to white where it is hot, and alpha = its brightness,
    so that colour x alpha reproduces the tone-mapped light."""
    e = np.maximum(emission, 0.0)
    t = 1.0 - np.exp(-e)
    # Hot cores run toward white: some of the brightest channel spills into the others.
    m = t.max(axis=-1, keepdims=True)
    t = t + (m - t) * np.clip((m - 0.75) * 2.2, 0.0, 1.0) * 0.85
    a = t.max(axis=-1)
    col = np.where(a[..., None] > 1e-5, t / np.maximum(a, 1e-5)[..., None], 0.0)
    out = np.empty(a.shape + (4,), dtype=np.uint8)
    a8 = np.round(np.clip(a, 0, 1) * 255.0).astype(np.uint8)
    out[..., :3] = np.where(a8[..., None] > 0, np.round(np.clip(col, 0, 1) * 255.0), 0).astype(np.uint8)
    out[..., 3] = a8
    return out


def fade_border(img, margin):
    """Multiplies alpha by a ramp that reaches 0 at the image border."""
    h, w = img.shape[:2]
    yy = np.minimum(np.arange(h), np.arange(h)[::-1])[:, None].astype(F)
    xx = np.minimum(np.arange(w), np.arange(w)[::-1])[None, :].astype(F)
    k = np.clip(np.minimum(xx, yy) / margin, 0.0, 1.0)
    k = k * k * (3 - 2 * k)
    out = img.copy()
    out[..., 3] = np.round(out[..., 3] * k).astype(np.uint8)
    out[..., :3] = np.where(out[..., 3:4] > 0, out[..., :3], 0)
    return out


def shade_relief(d, bevel, light=(-0.45, -0.6, 0.66), strength=1.0, ss=1):
    """Lambert term of a pillow-shaped relief whose height rises over `bevel`
    pixels inside the edge of d. Returns (diffuse, specular, height)."""
    h = smoothstep(0.0, bevel, -d)
    h = np.sqrt(np.clip(h, 0.0, 1.0))
    gy, gx = np.gradient(h * bevel * strength, 1.0 / ss)
    nx, ny, nz = -gx, -gy, np.ones_like(gx)
    inv = 1.0 / np.sqrt(nx * nx + ny * ny + nz * nz)
    nx, ny, nz = nx * inv, ny * inv, nz * inv
    lx, ly, lz = light
    ln = 1.0 / np.sqrt(lx * lx + ly * ly + lz * lz)
    lx, ly, lz = lx * ln, ly * ln, lz * ln
    diff = np.clip(nx * lx + ny * ly + nz * lz, 0.0, 1.0)
    # Blinn half vector with the viewer straight above.
    hx, hy, hz = lx, ly, lz + 1.0
    hn = 1.0 / np.sqrt(hx * hx + hy * hy + hz * hz)
    specular = np.clip(nx * hx * hn + ny * hy * hn + nz * hz * hn, 0.0, 1.0) ** 40
    return diff.astype(F), specular.astype(F), h.astype(F)


# ---------------------------------------------------------------------------
# Output

def _paeth_rows(rgba):
    """PNG scanlines with the Paeth filter (type 4) on every row."""
    h, w = rgba.shape[:2]
    cur = rgba.reshape(h, w * 4).astype(np.int16)
    left = np.zeros_like(cur)
    left[:, 4:] = cur[:, :-4]
    up = np.zeros_like(cur)
    up[1:] = cur[:-1]
    upleft = np.zeros_like(cur)
    upleft[1:, 4:] = cur[:-1, :-4]
    p = left + up - upleft
    pa, pb, pc = np.abs(p - left), np.abs(p - up), np.abs(p - upleft)
    pred = np.where((pa <= pb) & (pa <= pc), left, np.where(pb <= pc, up, upleft))
    raw = np.empty((h, w * 4 + 1), dtype=np.uint8)
    raw[:, 0] = 4
    raw[:, 1:] = ((cur - pred) & 255).astype(np.uint8)
    return raw


def write_png(path, rgba):
    """Writes 8-bit RGBA with no ancillary chunks, so equal pixels give equal files."""
    rgba = np.ascontiguousarray(rgba, dtype=np.uint8)
    h, w = rgba.shape[:2]
    assert rgba.shape == (h, w, 4), rgba.shape
    raw = _paeth_rows(rgba)

    def chunk(tag, data):
        body = tag + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw.tobytes(), 6))
    png += chunk(b"IEND", b"")
    path = pathlib.Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(png)

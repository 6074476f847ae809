"""The six skybox faces: one nebula-and-stars field over all directions, sampled
through the cube exactly as the skybox draws it, so every shared edge matches.

The skybox lays each image on a cube face through fixed corner and
texture-coordinate tables (below, as the game has them). Pixel (i, j) of a face
is taken to sit at s = i / (N - 1), t = j / (N - 1), with t = 0 the image's top
row, so the outermost rows and columns of two neighbouring faces are the very
same directions. The face drawn with the `left` texture lies at x = +1.
"""
import numpy as np

from art_draw import F, Noise, smoothstep, mix

FACE_SIZE = 1024
# Resolution of the smooth nebula layers before they are enlarged to FACE_SIZE.
NEBULA_SIZE = 512
FACES = ("top", "bottom", "left", "right", "front", "back")

HORIZ_TC = [(0, 1), (1, 1), (1, 0), (0, 0)]
TOP_TC = [(1, 1), (1, 0), (0, 0), (0, 1)]
BOTTOM_TC = [(1, 0), (1, 1), (0, 1), (0, 0)]

# Corner positions and the texture coordinates given to them, per face.
CUBE = {
    "front": ([(1, -1, -1), (-1, -1, -1), (-1, 1, -1), (1, 1, -1)], HORIZ_TC),
    "left": ([(1, -1, 1), (1, -1, -1), (1, 1, -1), (1, 1, 1)], HORIZ_TC),
    "back": ([(-1, -1, 1), (1, -1, 1), (1, 1, 1), (-1, 1, 1)], HORIZ_TC),
    "right": ([(-1, -1, -1), (-1, -1, 1), (-1, 1, 1), (-1, 1, -1)], HORIZ_TC),
    "top": ([(-1, 1, -1), (-1, 1, 1), (1, 1, 1), (1, 1, -1)], TOP_TC),
    "bottom": ([(-1, -1, -1), (-1, -1, 1), (1, -1, 1), (1, -1, -1)], BOTTOM_TC),
}


def face_frame(face):
    """(origin, s axis, t axis) of a face: the cube point at (s, t) is
    origin + s * s_axis + t * t_axis."""
    corners, tcs = CUBE[face]
    at = {tc: np.array(p, dtype=np.float64) for p, tc in zip(corners, tcs)}
    origin = at[(0, 0)]
    return origin, at[(1, 0)] - origin, at[(0, 1)] - origin


def face_directions(face, n):
    """Unit directions (n, n, 3) of the pixels of a face, row j, column i."""
    origin, su, tv = face_frame(face)
    k = np.arange(n, dtype=np.float64) / (n - 1)
    t, s = np.meshgrid(k, k, indexing="ij")
    p = origin + s[..., None] * su + t[..., None] * tv
    return (p / np.linalg.norm(p, axis=-1, keepdims=True)).astype(F)


def _enlarge(img, n):
    """Bilinear enlargement that keeps the first and last rows and columns on the
    same sample positions, so face edges stay exact."""
    m = img.shape[0]
    pos = np.arange(n, dtype=np.float64) * (m - 1) / (n - 1)
    i0 = np.minimum(np.floor(pos).astype(np.int64), m - 2)
    f = (pos - i0).astype(F)
    rows = img[i0] * (1 - f)[:, None, None] + img[i0 + 1] * f[:, None, None]
    return rows[:, i0] * (1 - f)[None, :, None] + rows[:, i0 + 1] * f[None, :, None]


# Colours of the nebula, from its thin outskirts to its bright cores.
DEEP = np.array([0.05, 0.07, 0.22], dtype=F)
VIOLET = np.array([0.30, 0.10, 0.46], dtype=F)
TEAL = np.array([0.06, 0.36, 0.50], dtype=F)
ROSE = np.array([0.55, 0.16, 0.42], dtype=F)
HOT = np.array([0.70, 0.78, 1.00], dtype=F)


def _nebula(d):
    """Nebula light for unit directions d (..., 3)."""
    x, y, z = d[..., 0], d[..., 1], d[..., 2]
    warp = Noise(0x5EB1)
    dens = Noise(0x6A1A)
    dust = Noise(0xD057)
    hue = Noise(0x0C01)
    # Domain warp: the clouds curl instead of looking like plain noise.
    wx = warp.fbm(x * 1.3 + 3.1, y * 1.3, z * 1.3, octaves=3)
    wy = warp.fbm(x * 1.3, y * 1.3 + 7.7, z * 1.3, octaves=3)
    wz = warp.fbm(x * 1.3, y * 1.3, z * 1.3 + 1.9, octaves=3)
    qx, qy, qz = x + 0.55 * wx, y + 0.55 * wy, z + 0.55 * wz
    # A broad tilted band across the sky holds most of the gas, like a galaxy's plane.
    axis = np.array([0.35, 0.86, -0.37], dtype=F)
    axis /= np.linalg.norm(axis)
    lat = x * axis[0] + y * axis[1] + z * axis[2]
    band = np.exp(-(lat / 0.42) ** 2) * 0.85 + 0.15
    n = dens.fbm(qx * 2.0, qy * 2.0, qz * 2.0, octaves=6, gain=0.55)
    cloud = smoothstep(-0.28, 0.62, n + 0.25 * (band - 0.5)) * band
    cloud = cloud ** 2.0
    lanes = smoothstep(0.05, 0.45, dust.fbm(qx * 4.5, qy * 4.5, qz * 4.5, octaves=4))
    cloud = cloud * (1.0 - 0.7 * lanes * smoothstep(0.0, 0.3, cloud))
    # A wide, faint glow round the clouds so they fade into the dark.
    veil = smoothstep(-0.35, 0.5, dens.fbm(qx * 0.9 + 11.0, qy * 0.9, qz * 0.9, octaves=3)) * band
    h = hue.fbm(qx * 1.1 + 5.0, qy * 1.1, qz * 1.1, octaves=2) * 1.8 + 0.5
    h = np.clip(h, 0.0, 1.0)[..., None]
    c = cloud[..., None]
    tint = mix(mix(TEAL, VIOLET, smoothstep(0.2, 0.55, h)), ROSE, smoothstep(0.6, 0.95, h))
    light = (DEEP * smoothstep(0.0, 0.15, c) * 0.9 + tint * c * 0.8 + HOT * smoothstep(0.45, 1.0, c) * 0.35
             + mix(DEEP, VIOLET, 0.35) * (veil ** 2 * 0.22)[..., None])
    # A faint haze everywhere keeps the darkest parts from being flat black.
    haze = (0.010 + 0.018 * band)[..., None] * DEEP / DEEP.max()
    return light + haze, band


def _stars(dirs_by_face, n):
    """Faint distant stars splatted by true angular distance, so a star on an edge
    shows on both faces alike. Returns face -> (n, n, 3)."""
    rng = np.random.default_rng(0x57A85)
    count = 9000
    v = rng.normal(size=(count, 3))
    v /= np.linalg.norm(v, axis=1, keepdims=True)
    mag = rng.random(count)
    bright = 0.05 + 0.55 * mag ** 9 + 0.10 * mag ** 2
    temp = rng.random(count)
    colour = np.stack([0.80 + 0.25 * temp, 0.85 + 0.05 * temp, 1.10 - 0.35 * temp], axis=1)
    colour /= colour.max(axis=1, keepdims=True)
    texel = 2.0 / (n - 1)
    sigma = texel * (0.55 + 0.45 * mag ** 4)
    halo = np.where(mag > 0.985, 0.10 * bright, 0.0)
    out = {}
    r = 7
    offs = np.arange(-r, r + 1)
    for face, dirs in dirs_by_face.items():
        origin, su, tv = face_frame(face)
        normal = origin + 0.5 * su + 0.5 * tv
        dn = v @ normal
        img = np.zeros((n, n, 3), dtype=F)
        front = dn > 0.3
        p = v[front] / dn[front, None]
        s = (p - origin) @ su / (su @ su)
        t = (p - origin) @ tv / (tv @ tv)
        keep = (s > -0.02) & (s < 1.02) & (t > -0.02) & (t < 1.02)
        idx = np.nonzero(front)[0][keep]
        ci = np.round(s[keep] * (n - 1)).astype(np.int64)
        cj = np.round(t[keep] * (n - 1)).astype(np.int64)
        jj = cj[:, None, None] + offs[None, :, None]
        ii = ci[:, None, None] + offs[None, None, :]
        jj, ii = np.broadcast_arrays(jj, ii)
        ok = (jj >= 0) & (jj < n) & (ii >= 0) & (ii < n)
        jc, ic = np.clip(jj, 0, n - 1), np.clip(ii, 0, n - 1)
        pd = dirs[jc, ic].astype(np.float64)
        ang2 = np.sum((pd - v[idx][:, None, None, :]) ** 2, axis=-1)
        sg = sigma[idx][:, None, None]
        val = bright[idx][:, None, None] * np.exp(-0.5 * ang2 / (sg * sg))
        val += halo[idx][:, None, None] * np.exp(-0.5 * ang2 / (4.0 * texel) ** 2)
        val = np.where(ok, val, 0.0)
        lum = val[..., None] * colour[idx][:, None, None, :]
        flat = (jc * n + ic).ravel()
        for ch in range(3):
            img[..., ch] += np.bincount(flat, weights=lum[..., ch].ravel(), minlength=n * n).reshape(n, n)
        out[face] = img
    return out


def faces():
    """face name -> (FACE_SIZE, FACE_SIZE, 4) RGBA bytes, opaque."""
    n = FACE_SIZE
    dirs = {f: face_directions(f, n) for f in FACES}
    stars = _stars(dirs, n)
    out = {}
    for f in FACES:
        small = face_directions(f, NEBULA_SIZE)
        neb, band = _nebula(small)
        big = _enlarge(neb, n)
        # Fine grain on top of the enlarged clouds, from the same 3D field family.
        d = dirs[f]
        grain = Noise(0x6A1B).fbm(d[..., 0] * 40.0, d[..., 1] * 40.0, d[..., 2] * 40.0, octaves=2)
        big = big * (1.0 + 0.22 * grain[..., None])
        light = big + stars[f]
        # Soft shoulder instead of hard clipping for the brightest spots.
        light = 1.0 - np.exp(-1.15 * light)
        rgba = np.empty((n, n, 4), dtype=np.uint8)
        rgba[..., :3] = np.round(np.clip(light, 0, 1) * 255.0).astype(np.uint8)
        rgba[..., 3] = 255
        out[f] = rgba
    return out

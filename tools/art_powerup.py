"""The pickup's animation: 16 x 16 frames, row by row from the top left, played
at 25 frames per second as a 256-frame loop, each frame drawn at 48 x 48.

A green crystal turns about its upright axis inside an orbiting ring and pulses
with light. Turn, orbit and pulse all complete whole cycles in 256 frames, so
the loop has no seam. Every frame keeps an empty border so that linear
filtering never pulls in a neighbouring frame.
"""
import numpy as np

from art_draw import F, downsample, glow_rgba, fade_border, smoothstep, straight_rgba, rgb

FRAMES = 256
GRID = 16
TURNS = 2       # crystal turns per loop (it has six-fold symmetry, so it looks faster)
ORBITS = -3     # ring bead orbits per loop, against the crystal's turn
PULSES = 8      # light pulses per loop: one every 1.28 s

EMERALD = rgb("#22e070")
MINT = rgb("#b8ffd8")
RING = rgb("#9ff7ff")


def _phase(frame, cycles):
    return 2.0 * np.pi * cycles * frame / FRAMES


def _pulse(frame):
    return 0.5 + 0.5 * np.sin(_phase(frame, PULSES))


def _crystal_vertices(frame):
    """Vertices of a hexagonal bipyramid after its turn and tilt: x right, y up,
    z toward the viewer, in units of the frame's half size."""
    breathe = 1.0 + 0.035 * _pulse(frame)
    top = np.array([0.0, 0.62, 0.0])
    bottom = np.array([0.0, -0.62, 0.0])
    ring = [np.array([0.36 * np.cos(k * np.pi / 3), 0.0, 0.36 * np.sin(k * np.pi / 3)]) for k in range(6)]
    a = _phase(frame, TURNS)
    ry = np.array([[np.cos(a), 0, np.sin(a)], [0, 1, 0], [-np.sin(a), 0, np.cos(a)]])
    t = np.radians(16.0)
    rx = np.array([[1, 0, 0], [0, np.cos(t), -np.sin(t)], [0, np.sin(t), np.cos(t)]])
    m = rx @ ry
    return [m @ p * breathe for p in [top, bottom] + ring]


def _ring_points(frame, n=3):
    """Beads on an orbit seen from slightly above: (x, y, depth) per bead."""
    out = []
    for k in range(n):
        a = _phase(frame, ORBITS) + 2.0 * np.pi * k / n
        out.append((0.80 * np.cos(a), 0.22 * np.sin(a), np.sin(a)))
    return out


def _draw_frame(frame, size, ss):
    n = size * ss
    g = ((np.arange(n, dtype=F) + 0.5) / n) * 2.0 - 1.0
    y, x = np.meshgrid(g, g, indexing="ij")
    aa = 2.0 / n
    col = np.zeros((n, n, 3), dtype=F)
    alpha = np.zeros((n, n), dtype=F)
    pulse = F(_pulse(frame))

    def over(c, a):
        nonlocal col, alpha
        a = np.asarray(a, dtype=F)
        col = col * (1 - a)[..., None] + np.asarray(c, dtype=F) * a[..., None]
        alpha = alpha * (1 - a) + a

    # Orbit ring: the far half first, behind the crystal.
    ell = np.hypot(x / 0.80, y / 0.22)
    stroke = np.clip(0.5 - (np.abs(ell - 1.0) * 0.22 - 0.012) / aa, 0, 1)
    back = stroke * (y < 0)
    front = stroke * (y >= 0)
    beads = _ring_points(frame)

    def draw_beads(behind):
        for bx, by, bz in beads:
            if (bz < 0) != behind:
                continue
            r = 0.075 + 0.02 * bz
            d = np.hypot(x - bx, y - by) - r
            over(RING * (0.7 + 0.3 * pulse), np.clip(0.5 - d / aa, 0, 1))
            over(np.ones(3, dtype=F), np.clip(0.5 - (d + r * 0.5) / aa, 0, 1))

    over(RING * 0.55, back * 0.6)
    draw_beads(True)

    v = _crystal_vertices(frame)
    faces = [(0, 2 + k, 2 + (k + 1) % 6) for k in range(6)] + [(1, 2 + (k + 1) % 6, 2 + k) for k in range(6)]
    light = np.array([-0.45, 0.55, 0.70])
    light /= np.linalg.norm(light)
    half = light + np.array([0.0, 0.0, 1.0])
    half /= np.linalg.norm(half)
    for tri in faces:
        p3 = [v[q] for q in tri]
        nrm = np.cross(p3[1] - p3[0], p3[2] - p3[0])
        # Outward: the solid is convex round the origin.
        if nrm @ (p3[0] + p3[1] + p3[2]) < 0:
            nrm = -nrm
        nrm /= np.linalg.norm(nrm)
        if nrm[2] <= 1e-6:
            continue
        lit = max(0.0, float(nrm @ light))
        specular = max(0.0, float(nrm @ half)) ** 30
        # Signed distance to the projected triangle (screen y down) from its edge lines.
        pts = [(p[0], -p[1]) for p in p3]
        cx_ = sum(p[0] for p in pts) / 3.0
        cy_ = sum(p[1] for p in pts) / 3.0
        dist = None
        for a_, b_ in ((0, 1), (1, 2), (2, 0)):
            ax, ay = pts[a_]
            bx, by = pts[b_]
            ex, ey = bx - ax, by - ay
            ln = np.hypot(ex, ey)
            # Oriented so that the centroid is on the inside (negative) of every edge.
            sgn = -1.0 if ((cx_ - ax) * ey - (cy_ - ay) * ex) > 0 else 1.0
            e = sgn * ((x - ax) * ey - (y - ay) * ex) / ln
            dist = e if dist is None else np.maximum(dist, e)
        cover = np.clip(0.5 - dist / aa, 0, 1)
        edge = smoothstep(0.05, 0.0, -dist)
        # Facets shade from deep green to mint, with light running along the edges.
        depth = 0.5 + 0.5 * np.clip(y / 0.62, -1, 1)
        base = EMERALD * (0.30 + 0.85 * lit) * (0.85 + 0.3 * depth)[..., None]
        c = base + MINT * (0.35 * edge + 0.55 * specular + 0.25 * pulse)[..., None]
        over(np.clip(c, 0, 1), cover)

    # A bright heart shows through the glass.
    core = np.exp(-(x * x + y * y) / (0.16 ** 2))
    col = col + (MINT * F(0.25 + 0.45 * pulse))[None, None, :] * (core * alpha)[..., None]
    over(RING * 0.8, front * 0.75)
    draw_beads(False)
    return col, alpha


def _sheet(size, frame_fn, channels=4, dtype=np.uint8):
    out = np.zeros((GRID * size, GRID * size, channels), dtype=dtype)
    for f in range(FRAMES):
        r, c = divmod(f, GRID)
        out[r * size:(r + 1) * size, c * size:(c + 1) * size] = frame_fn(f)
    return out


def powerup_anim():
    """1024 x 1024: frames of 64 px, shown at 48 px (a mild reduction keeps edges crisp)."""
    size, ss = 64, 2

    def frame(f):
        col, alpha = _draw_frame(f, size, ss)
        out = np.zeros((size, size, 4), dtype=F)
        out[..., :3] = downsample(col * alpha[..., None], ss)
        out[..., 3] = downsample(alpha, ss)
        # Clear two pixels round the frame: nothing may bleed into a neighbour.
        out[:2], out[-2:], out[:, :2], out[:, -2:] = 0, 0, 0, 0
        return out
    sheet = _sheet(size, frame, dtype=F)
    return straight_rgba(sheet[..., :3], sheet[..., 3])


def powerup_glow_anim():
    """512 x 512: frames of 32 px, drawn at 48 px additively: a soft green halo that
    swells with the pulse and sparks that follow the ring's beads."""
    size = 32
    g = ((np.arange(size, dtype=F) + 0.5) / size) * 2.0 - 1.0
    y, x = np.meshgrid(g, g, indexing="ij")
    r2 = x * x + y * y

    def frame(f):
        pulse = _pulse(f)
        rad = 0.34 + 0.10 * pulse
        light = (0.55 + 0.55 * pulse) * np.exp(-r2 / rad ** 2)[..., None] * EMERALD
        light += (0.55 * np.exp(-r2 / 0.12 ** 2))[..., None] * MINT
        for bx, by, bz in _ring_points(f):
            q = ((x - bx) ** 2 + (y - by) ** 2) / 0.11 ** 2
            light += ((0.55 + 0.25 * bz) * np.exp(-q))[..., None] * RING
        return fade_border(glow_rgba(light), 3)
    return _sheet(size, frame)

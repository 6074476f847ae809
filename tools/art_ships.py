"""The player's ship (three stacked layers and two glows) and the enemy craft.

Enemies turn so that the image's +y (its bottom) points along their velocity:
with y down the screen, setRotation(angle + 90) maps local (0, 1) onto the
direction of flight. So every enemy is drawn nose down, engines at the top.
Each glow image is drawn additively over its body at the same size, so lights
in a glow sit exactly over the lamps painted on the body.
"""
import numpy as np

from art_draw import (F, Canvas, Noise, glow_rgba, fade_border, rgb, mix, smoothstep,
                      shade_relief, sd_circle, sd_ellipse, sd_box, sd_segment, sd_polygon,
                      sd_ring, sd_arc, union, intersect, rotate)

ENEMIES = ("fighter", "fighter2", "hammerhead", "probe", "probe2", "probe3")

ORANGE = rgb("#ff8a2a")
HOT_ORANGE = rgb("#ffb050")
GREEN = rgb("#46ff6e")
NEON_BLUE = rgb("#2f8bff")
CYAN = rgb("#6fe6ff")


def mirror(pts):
    """A left-right symmetric outline from its right half, listed nose first."""
    right = list(pts)
    left = [(-x, y) for x, y in reversed(right)]
    if right[0][0] == 0:
        left = left[:-1]
    if right[-1][0] == 0:
        left = left[1:]
    return right + left


def _grain(c, seed, scale, octaves=3):
    """Low-cost surface noise at pixel resolution, repeated up to the sample grid."""
    ys, xs = np.mgrid[0:c.height, 0:c.width].astype(F)
    n = Noise(seed).fbm(xs / scale, ys / scale, 0.37 * seed % 7, octaves=octaves)
    return np.kron(n, np.ones((c.ss, c.ss), dtype=F))


class Painter:
    """Paints metal parts, panel lines and lamps on a canvas and collects the
    matching light for the glow image."""

    def __init__(self, size, seed, grain=9.0, fine=2.5):
        """grain and fine: feature sizes in pixels of the surface wear."""
        self.c = Canvas(size, size, ss=4)
        self.x, self.y = self.c.centred()
        self.grain = _grain(self.c, seed, grain)
        self.fine = _grain(self.c, seed + 1, fine, octaves=2)
        g = np.arange(size, dtype=F) + 0.5 - size * 0.5
        self.gy, self.gx = np.meshgrid(g, g, indexing="ij")
        self.light = np.zeros((size, size, 3), dtype=F)

    def metal(self, d, base, bevel=3.0, shine=0.5, dirt=0.22, alpha=1.0):
        diff, specular, h = shade_relief(d, bevel, ss=self.c.ss)
        base = np.asarray(base, dtype=F)
        tone = (0.30 + 0.85 * diff) * (1.0 + dirt * self.grain + 0.06 * self.fine)
        col = base * tone[..., None] + (shine * specular)[..., None] * np.array([0.9, 0.95, 1.0], dtype=F)
        # A thin dark rim separates parts from each other.
        rim = smoothstep(0.0, 0.9, -d)
        col = col * (0.45 + 0.55 * rim)[..., None]
        self.c.over(col, alpha * self.c.cover(d))

    def glass(self, d, base, highlight=0.8):
        diff, specular, h = shade_relief(d, 4.0, light=(-0.6, -0.8, 0.4), ss=self.c.ss)
        col = np.asarray(base, dtype=F) * (0.5 + 0.7 * h)[..., None]
        col = col + (highlight * specular)[..., None]
        self.c.over(col, self.c.cover(d))

    def line(self, d, width=0.5, depth=0.55):
        """Engraved panel line along the zero set of d."""
        k = self.c.cover(np.abs(d) - width) * depth
        self.c.rgb *= (1.0 - k)[..., None]

    def paint(self, d, colour, alpha=1.0):
        self.c.over(colour, alpha * self.c.cover(d))

    def lamp(self, cx, cy, r, colour, glow=1.0, spread=2.6):
        """A small light: a bright dot on the hull and a soft halo in the glow."""
        d = sd_circle(self.x, self.y, cx, cy, r)
        core = mix(np.asarray(colour, dtype=F), np.ones(3, dtype=F), 0.55)
        self.c.over(np.asarray(colour, dtype=F), self.c.cover(d - 0.6))
        self.c.over(core, self.c.cover(d + 0.35 * r))
        self.halo(cx, cy, r * spread, colour, glow)

    def halo(self, cx, cy, r, colour, amount=1.0, sx=1.0, sy=1.0):
        q = ((self.gx - cx) / (r * sx)) ** 2 + ((self.gy - cy) / (r * sy)) ** 2
        self.light += (amount * np.exp(-q))[..., None] * np.asarray(colour, dtype=F)

    def plume(self, cx, cy, length, width, colour, amount=1.0):
        """Engine exhaust streaming towards -y (behind the ship)."""
        u = (cy - self.gy) / length
        v = (self.gx - cx) / width
        inside = np.clip(u, 0.0, None)
        body = np.exp(-v * v / (1.0 + 1.2 * inside)) * np.exp(-inside * 2.2) * (u > -0.15)
        body *= smoothstep(-0.25, 0.05, u)
        self.light += (amount * body)[..., None] * np.asarray(colour, dtype=F)
        self.halo(cx, cy, width * 1.2, mix(np.asarray(colour, dtype=F), np.ones(3, dtype=F), 0.4), amount * 0.9)

    def body(self):
        return self.c.to_rgba()

    def glow(self, margin=6):
        return fade_border(glow_rgba(self.light), margin)


# ---------------------------------------------------------------------------
# Enemies (128 x 128, drawn at 82 to 172 px: one size keeps detail from small to large)

HULL = rgb("#4a505e")
HULL_DARK = rgb("#2c303a")
HULL_WARM = rgb("#6b3a2c")
RUST = rgb("#8a3b1e")


def fighter():
    """Small dart interceptor: forward-swept delta, twin engines, orange canopy."""
    p = Painter(128, 11)
    x, y = p.x, p.y
    outline = mirror([(0, 58), (8, 34), (14, 20), (46, -8), (49, -20), (40, -24),
                      (20, -18), (16, -36), (8, -46), (0, -46)])
    wings = sd_polygon(x, y, outline)
    p.metal(wings, HULL, bevel=3.5)
    # Leading edge stripes in warm red.
    stripe = intersect(wings, union(sd_segment(x, y, 14, 20, 46, -8, 2.2), sd_segment(x, y, -14, 20, -46, -8, 2.2)))
    p.metal(stripe, RUST, bevel=1.5, dirt=0.1)
    # Fuselage spine on top.
    spine = sd_polygon(x, y, mirror([(0, 54), (6, 36), (9, 8), (10, -30), (6, -42), (0, -43)]))
    p.metal(spine, HULL_DARK * 1.4, bevel=4.0, shine=0.7)
    for s in (-1, 1):
        p.line(sd_segment(x, y, s * 12, 10, s * 38, -14), 0.35)
        p.line(sd_segment(x, y, s * 20, -2, s * 18, -18), 0.35)
        # Engine nacelles with hot nozzles.
        nac = sd_box(x, y, s * 13, -34, 5.5, 11, 3.5)
        p.metal(nac, HULL_DARK * 1.2, bevel=2.5, shine=0.8)
        p.paint(sd_ellipse(x, y, s * 13, -44, 4.2, 2.6), np.array([0.1, 0.05, 0.03], dtype=F))
        p.lamp(s * 13, -44.5, 2.6, HOT_ORANGE, glow=1.4, spread=1.6)
        p.plume(s * 13, -46, 13, 3.2, ORANGE, 1.6)
        # Wing tip navigation lights.
        p.lamp(s * 45, -17, 1.8, GREEN, glow=1.2, spread=3.0)
    canopy = sd_ellipse(x, y, 0, 24, 4.5, 11)
    p.glass(canopy, np.array([0.45, 0.12, 0.05], dtype=F))
    p.halo(0, 24, 6.0, ORANGE, 0.2, sx=0.8, sy=1.8)
    p.lamp(0, 51, 1.4, ORANGE, glow=0.8, spread=2.5)
    return p


def fighter2():
    """Heavy twin-prong fighter: mandible guns forward, green reactor, wing pods."""
    p = Painter(128, 23)
    x, y = p.x, p.y
    wing = sd_polygon(x, y, mirror([(0, 6), (44, -18), (54, -30), (52, -40), (18, -32), (0, -28)]))
    p.metal(wing, HULL_DARK * 1.25, bevel=3.0)
    for s in (-1, 1):
        p.line(sd_segment(x, y, s * 20, -12, s * 46, -28), 0.35)
        prong = sd_polygon(x, y, [(s * 9, 16), (s * 23, 10), (s * 21, 50), (s * 15, 58), (s * 11, 40)])
        p.metal(prong, HULL_WARM, bevel=3.0, shine=0.6)
        p.line(sd_segment(x, y, s * 12, 22, s * 18, 48), 0.3)
        p.lamp(s * 17, 53, 1.8, HOT_ORANGE, glow=1.2, spread=2.4)
        pod = sd_box(x, y, s * 50, -30, 6, 14, 5)
        p.metal(pod, HULL, bevel=3.0, shine=0.8)
        p.paint(sd_ellipse(x, y, s * 50, -43, 4.5, 2.5), np.array([0.1, 0.05, 0.03], dtype=F))
        p.lamp(s * 50, -43.5, 2.8, HOT_ORANGE, glow=1.4, spread=1.6)
        p.plume(s * 50, -45, 14, 3.6, ORANGE, 1.5)
        p.lamp(s * 50, -18, 1.4, GREEN, glow=0.9, spread=2.8)
    hull = sd_polygon(x, y, mirror([(0, 34), (13, 26), (17, 0), (15, -30), (8, -44), (0, -44)]))
    p.metal(hull, HULL, bevel=5.0, shine=0.6)
    p.line(sd_segment(x, y, -12, 12, 12, 12), 0.35)
    p.line(sd_segment(x, y, -13, -22, 13, -22), 0.35)
    # Reactor window in the hull's middle.
    ring = sd_circle(x, y, 0, -5, 9)
    p.metal(ring, HULL_DARK, bevel=2.0)
    core = sd_circle(x, y, 0, -5, 6.5)
    p.paint(core, np.array([0.05, 0.35, 0.12], dtype=F))
    p.paint(sd_circle(x, y, 0, -5, 4.2), GREEN)
    p.paint(sd_circle(x, y, 0, -5, 2.0), np.array([0.8, 1.0, 0.85], dtype=F))
    p.halo(0, -5, 9.0, GREEN, 1.1)
    canopy = sd_ellipse(x, y, 0, 22, 5, 7)
    p.glass(canopy, np.array([0.85, 0.3, 0.1], dtype=F))
    p.halo(0, 22, 5.0, ORANGE, 0.3)
    return p


def hammerhead():
    """Heavy gunship: a broad armoured hammer at the nose lined with lights, a
    long plated hull with side sponsons, three engines."""
    p = Painter(128, 37)
    x, y = p.x, p.y
    for s in (-1, 1):
        fin = sd_polygon(x, y, [(s * 14, -2), (s * 36, -24), (s * 38, -36), (s * 30, -36), (s * 14, -24)])
        p.metal(fin, HULL_DARK * 1.25, bevel=2.5)
        p.line(sd_segment(x, y, s * 18, -10, s * 33, -27), 0.3, 0.4)
    hull = sd_polygon(x, y, mirror([(0, 34), (15, 30), (18, 4), (17, -30), (13, -48), (0, -50)]))
    p.metal(hull, HULL * 1.1, bevel=6.0, shine=0.6)
    for s in (-1, 1):
        sponson = sd_box(x, y, s * 19, -8, 5, 16, 3)
        p.metal(sponson, HULL_DARK * 1.3, bevel=2.5, shine=0.7)
        p.lamp(s * 19, -22, 1.3, GREEN, glow=0.8, spread=2.6)
    for k in range(3):
        p.line(sd_segment(x, y, -15, 16 - k * 16, 15, 16 - k * 16), 0.35)
    p.line(sd_segment(x, y, 0, 28, 0, -44), 0.3, 0.35)
    hammer = sd_polygon(x, y, mirror([(0, 55), (24, 52), (50, 45), (58, 36), (57, 25), (48, 20),
                                      (22, 22), (0, 24)]))
    p.metal(hammer, HULL * 0.95, bevel=6.0, shine=0.6)
    # A warm armour plate on top of the hammer and a dark slot for the light strip.
    plate = sd_polygon(x, y, mirror([(0, 44), (22, 42), (44, 36), (50, 28), (22, 27), (0, 29)]))
    p.metal(plate, HULL_DARK * 1.35, bevel=3.0, shine=0.6)
    for s in (-1, 1):
        stripe = sd_polygon(x, y, [(s * 26, 41), (s * 34, 39), (s * 30, 28), (s * 24, 28)])
        p.metal(stripe, RUST, bevel=1.5, dirt=0.1)
        p.line(sd_segment(x, y, s * 8, 29, s * 8, 44), 0.35, 0.45)
    slot = sd_polygon(x, y, mirror([(0, 53), (24, 50.5), (48, 44), (46, 41.5), (23, 47.5), (0, 50)]))
    p.paint(slot, np.array([0.06, 0.03, 0.02], dtype=F))
    for k in range(-3, 4):
        xx = k * 12.5
        yy = 51.5 - abs(xx) * 0.2 - (xx / 48.0) ** 4 * 4.0
        p.lamp(xx, yy, 1.7, HOT_ORANGE, glow=0.8, spread=2.4)
    for s in (-1, 1):
        p.paint(sd_ellipse(x, y, s * 53, 31, 3.6, 5.0), np.array([0.03, 0.12, 0.05], dtype=F))
        p.lamp(s * 53, 31, 2.5, GREEN, glow=1.4, spread=2.4)
    for ex in (-10, 0, 10):
        nz = sd_box(x, y, ex, -47, 4.2, 6, 2.0)
        p.metal(nz, HULL_DARK * 1.3, bevel=2.0, shine=0.8)
        p.lamp(ex, -52.5, 2.3, HOT_ORANGE, glow=1.3, spread=1.5)
        p.plume(ex, -53.5, 8, 2.8, ORANGE, 1.3)
    bridge = sd_ellipse(x, y, 0, 10, 5.5, 9)
    p.glass(bridge, np.array([0.08, 0.4, 0.2], dtype=F))
    p.halo(0, 10, 6.0, GREEN, 0.3, sy=1.5)
    return p


def probe():
    """Round sensor drone with one big orange eye looking forward."""
    p = Painter(128, 41)
    x, y = p.x, p.y
    for a in (30, 150, 270):
        ax, ay = rotate(np.float32(0), np.float32(-1), a)
        tip = (float(ax) * 50, float(ay) * 50 - 4)
        base = (float(ax) * 22, float(ay) * 22 - 4)
        p.metal(sd_segment(x, y, *base, *tip, 3.0), HULL_DARK * 1.3, bevel=2.0, shine=0.8)
        p.lamp(tip[0], tip[1], 2.2, GREEN, glow=1.1, spread=2.6)
    shell = sd_circle(x, y, 0, -4, 33)
    p.metal(shell, HULL * 1.05, bevel=14.0, shine=0.9)
    p.line(sd_ring(x, y, 0, -4, 24, 0) , 0.45, 0.45)
    for a in range(0, 360, 45):
        ax, ay = rotate(np.float32(24), np.float32(0), a)
        p.line(sd_segment(x, y, float(ax), float(ay) - 4, float(ax) * 1.36, float(ay) * 1.36 - 4), 0.35, 0.4)
    socket = sd_circle(x, y, 0, 14, 13)
    p.metal(socket, HULL_DARK, bevel=3.0)
    p.paint(sd_circle(x, y, 0, 15, 10), np.array([0.25, 0.06, 0.02], dtype=F))
    p.paint(sd_circle(x, y, 0, 15, 7.5), np.array([0.95, 0.35, 0.05], dtype=F))
    p.paint(sd_circle(x, y, 0, 15, 4.5), HOT_ORANGE)
    p.paint(sd_circle(x, y, 0, 16, 2.0), np.array([1.0, 0.95, 0.8], dtype=F))
    p.halo(0, 15, 11.0, ORANGE, 1.2)
    p.halo(0, 24, 9.0, ORANGE, 0.45, sx=0.8, sy=1.6)
    return p


def probe2():
    """Four-armed drone with a green eye; a variant of the probe."""
    p = Painter(128, 53)
    x, y = p.x, p.y
    for a in (45, 135, 225, 315):
        ax, ay = rotate(np.float32(0), np.float32(-1), a)
        arm = sd_segment(x, y, 0, 0, float(ax) * 44, float(ay) * 44, 4.5)
        p.metal(arm, HULL_DARK * 1.3, bevel=2.5)
        pod = sd_circle(x, y, float(ax) * 46, float(ay) * 46, 9)
        p.metal(pod, HULL_WARM, bevel=5.0, shine=0.7)
        p.lamp(float(ax) * 46, float(ay) * 46, 3.0, ORANGE, glow=1.0, spread=2.2)
    shell = sd_circle(x, y, 0, 0, 24)
    p.metal(shell, HULL, bevel=10.0, shine=0.9)
    p.line(sd_ring(x, y, 0, 0, 17, 0), 0.4, 0.45)
    p.paint(sd_circle(x, y, 0, 12, 8.5), np.array([0.02, 0.15, 0.05], dtype=F))
    p.paint(sd_circle(x, y, 0, 12, 6.0), GREEN * 0.8)
    p.paint(sd_circle(x, y, 0, 12.5, 2.5), np.array([0.85, 1.0, 0.9], dtype=F))
    p.halo(0, 12, 9.0, GREEN, 1.2)
    return p


def probe3():
    """Bladed hunter drone: six swept blades around a green core, orange eye forward."""
    p = Painter(128, 67)
    x, y = p.x, p.y
    blades = []
    for k in range(6):
        a = k * 60 + 30
        pts = [(0, -20), (10, -24), (6, -54), (-2, -44)]
        rp = [tuple(float(v) for v in rotate(np.float32(px), np.float32(py), a)) for px, py in pts]
        blades.append(sd_polygon(x, y, rp))
        tx, ty = rotate(np.float32(4), np.float32(-50), a)
        blades_tip = (float(tx), float(ty))
        p.metal(blades[-1], HULL_WARM if k % 2 else HULL_DARK * 1.3, bevel=3.0, shine=0.7)
        p.lamp(blades_tip[0], blades_tip[1], 1.5, ORANGE if k % 2 else GREEN, glow=0.9, spread=2.6)
    hexagon = sd_polygon(x, y, [tuple(float(v) for v in rotate(np.float32(27), np.float32(0), k * 60 + 30))
                                for k in range(6)])
    p.metal(hexagon, HULL, bevel=8.0, shine=0.8)
    for k in range(6):
        ax, ay = rotate(np.float32(27), np.float32(0), k * 60 + 30)
        p.line(sd_segment(x, y, 0, 0, float(ax), float(ay)), 0.35, 0.4)
    p.paint(sd_circle(x, y, 0, -3, 11), HULL_DARK * 0.8)
    p.paint(sd_circle(x, y, 0, -3, 8.5), np.array([0.03, 0.3, 0.1], dtype=F))
    p.paint(sd_circle(x, y, 0, -3, 5.5), GREEN)
    p.paint(sd_circle(x, y, 0, -3, 2.5), np.array([0.85, 1.0, 0.9], dtype=F))
    p.halo(0, -3, 11.0, GREEN, 1.2)
    p.paint(sd_ellipse(x, y, 0, 18, 6.5, 4.0), np.array([0.2, 0.05, 0.02], dtype=F))
    p.lamp(0, 18, 3.2, HOT_ORANGE, glow=1.1, spread=2.0)
    return p


_ENEMY_PAINTERS = {"fighter": fighter, "fighter2": fighter2, "hammerhead": hammerhead,
                   "probe": probe, "probe2": probe2, "probe3": probe3}
_cache = {}


def enemy(kind, glow):
    """The drawing function of an enemy's body or glow image; both come from one painting."""
    def draw():
        if kind not in _cache:
            _cache[kind] = _ENEMY_PAINTERS[kind]()
        p = _cache[kind]
        return p.glow() if glow else p.body()
    return draw


# ---------------------------------------------------------------------------
# Player: 64 x 64 layers drawn at 64 x 64, seen from above

STEEL = rgb("#5d6f8c")
STEEL_DARK = rgb("#2a3448")


def player_bot():
    """Bottom layer (spins at -165 deg/s): a heavy outer ring with eight blue
    thruster vents round a turbine of swept blades."""
    p = Painter(64, 71, grain=6.0, fine=2.0)
    x, y = p.x, p.y
    r = np.hypot(x, y)
    ang = np.degrees(np.arctan2(y, x))
    turbine = sd_circle(x, y, 0, 0, 23.5)
    p.metal(turbine, STEEL_DARK * 0.8, bevel=2.0, shine=0.3)
    # Swept blades: a spiral pattern of raised strips.
    phase = (ang + 0.9 * np.degrees(np.log(np.maximum(r, 1.0) / 6.0))) % 30.0
    blade = (np.abs(phase - 15.0) - 5.0) * np.radians(1.0) * r
    blades = intersect(blade, intersect(r - 22.5, 7.0 - r))
    p.metal(blades, STEEL * 0.9, bevel=1.2, shine=0.9)
    hub = sd_circle(x, y, 0, 0, 7)
    p.metal(hub, STEEL, bevel=3.0, shine=0.8)
    ring = sd_ring(x, y, 0, 0, 27.0, 4.0)
    p.metal(ring, STEEL_DARK * 1.2, bevel=2.5, shine=0.6)
    p.line(sd_ring(x, y, 0, 0, 27.0, 0), 0.3, 0.4)
    for k in range(8):
        a = k * 45 + 22.5
        vx, vy = rotate(np.float32(26.6), np.float32(0), a)
        vent = sd_box(*rotate(x, y, -a), 26.6, 0, 2.6, 3.6, 1.2)
        p.paint(vent, np.array([0.02, 0.05, 0.12], dtype=F))
        p.paint(vent + 0.9, NEON_BLUE)
        p.paint(vent + 1.7, np.array([0.75, 0.9, 1.0], dtype=F))
    return p.c.to_rgba()


def player_mid():
    """Middle layer (turns at +20 deg/s): six armour segments with blue glass between
    them, so the spinning turbine below shows through."""
    p = Painter(64, 83, grain=6.0, fine=2.0)
    x, y = p.x, p.y
    glass = sd_ring(x, y, 0, 0, 18.5, 5.5)
    p.paint(glass, np.array([0.15, 0.45, 1.0], dtype=F), alpha=0.28)
    for k in range(6):
        seg = sd_arc(x, y, 0, 0, 18.5, 6.0, k * 60 + 8, k * 60 + 52)
        p.metal(seg, STEEL, bevel=2.5, shine=0.8)
        lx, ly = rotate(np.float32(20.5), np.float32(0), k * 60 + 30)
        p.paint(sd_circle(x, y, float(lx), float(ly), 1.7), NEON_BLUE)
        p.paint(sd_circle(x, y, float(lx), float(ly), 0.8), np.array([0.8, 0.95, 1.0], dtype=F))
        p.line(sd_ring(x, y, 0, 0, 15.5, 0), 0.3, 0.35)
    return p.c.to_rgba()


def player_top():
    """Top layer (fixed): the round cockpit hull with a glass canopy and four struts."""
    p = Painter(64, 97, grain=6.0, fine=2.0)
    x, y = p.x, p.y
    for a in (45, 135, 225, 315):
        ax, ay = rotate(np.float32(0), np.float32(-1), a)
        strut = sd_segment(x, y, 0, 0, float(ax) * 17.5, float(ay) * 17.5, 1.8)
        p.metal(strut, STEEL, bevel=1.5, shine=0.9)
    hull = sd_circle(x, y, 0, 0, 12.5)
    p.metal(hull, STEEL * 1.15, bevel=5.0, shine=0.9)
    p.line(sd_ring(x, y, 0, 0, 9.5, 0), 0.3, 0.4)
    canopy = sd_circle(x, y, 0, 0, 7.5)
    p.glass(canopy, np.array([0.15, 0.45, 1.0], dtype=F), highlight=1.0)
    p.paint(sd_circle(x, y, -2.2, -2.6, 1.6), np.array([0.85, 0.95, 1.0], dtype=F), alpha=0.7)
    return p.c.to_rgba()


def _light_grid(size, drawn):
    """Coordinates in screen pixels from the centre for an image of `size` drawn at `drawn`."""
    g = (np.arange(size, dtype=F) + 0.5 - size * 0.5) * (drawn / size)
    return np.meshgrid(g, g)


def player_glow_bot():
    """Drawn at 60 x 60 and turning with the bottom layer: blue light from the
    eight vents and the turbine's rim."""
    x, y = _light_grid(64, 60)
    r = np.hypot(x, y)
    light = np.zeros((64, 64, 3), dtype=F)
    for k in range(8):
        a = np.radians(k * 45 + 22.5)
        vx, vy = 26.0 * np.cos(a), 26.0 * np.sin(a)
        q = ((x - vx) ** 2 + (y - vy) ** 2) / 2.0 ** 2
        light += np.exp(-q)[..., None] * NEON_BLUE * 1.5
    light += (0.30 * np.exp(-((r - 22.5) / 1.8) ** 2))[..., None] * NEON_BLUE
    return fade_border(glow_rgba(light), 4)


def player_glow_top():
    """Drawn at 72 x 72 over everything: a cyan halo round the canopy, a blue ring
    over the glass of the middle layer and a neon rim round the whole ship."""
    x, y = _light_grid(64, 72)
    r = np.hypot(x, y)
    light = (0.55 * np.exp(-(r / 6.5) ** 2))[..., None] * CYAN
    light += (0.16 * np.exp(-(r / 15.0) ** 2))[..., None] * NEON_BLUE
    # Rings are round, so they stay in place over the turning layers below.
    light += (0.22 * np.exp(-((r - 18.5) / 2.5) ** 2))[..., None] * NEON_BLUE
    light += (0.65 * np.exp(-((r - 30.5) / 1.7) ** 2))[..., None] * NEON_BLUE
    return fade_border(glow_rgba(light), 4)

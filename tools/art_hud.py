"""Head-up display frames, their masks, and the title logo.

The boxes are drawn at half their image size, centred on fixed screen points, so
each image is twice the box it shows and its outer sides meet the screen edges:
  score box   400 x 120, centred at (100, 30)                  -> screen (0, 0)-(200, 60)
  power dials 400 x 200, centred at (100, height - 50)         -> left and bottom edges
  radar dials 520 x 520, centred at (width - 130, height - 130) -> right and bottom edges
Sides on the screen's edge are left open; the inner sides carry the neon frame.
These sizes are not powers of two; the texture loader pads them.
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

from art_draw import (F, Canvas, gaussian_blur, rgb, mix, smoothstep, shade_relief, sd_polygon,
                      sd_circle, sd_arc, sd_box, sd_segment, union, intersect)

FONT_DIR = "/usr/share/fonts/truetype/dejavu/"

NEON = rgb("#43d9ff")
NEON_SOFT = rgb("#1d7fb8")
PANEL = rgb("#06101c")
PANEL_EDGE = rgb("#0b2236")
LABEL = rgb("#8fe9ff")
PLASMA = rgb("#8071ff")
LASER = rgb("#4c4cff")
UPGRADE = rgb("#3dff66")


def text_cover(c, text, face, size, x, y, anchor="la", tracking=0.0):
    """Coverage (sample grid) of a text placed at image pixel (x, y)."""
    ss = c.ss
    img = Image.new("L", (c.width * ss, c.height * ss), 0)
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(FONT_DIR + face, int(round(size * ss)))
    if tracking == 0.0:
        draw.text((x * ss, y * ss), text, fill=255, font=font, anchor=anchor)
    else:
        widths = [font.getlength(ch) for ch in text]
        total = sum(widths) + tracking * ss * (len(text) - 1)
        cx = x * ss - (total * 0.5 if anchor[0] == "m" else 0.0)
        for ch, w in zip(text, widths):
            draw.text((cx, y * ss), ch, fill=255, font=font, anchor="l" + anchor[1])
            cx += w + tracking * ss
    return np.asarray(img, dtype=F) / 255.0


def neon_frame(c, panel_d, open_sides):
    """Dark glass panel inside panel_d with a neon line along its inner sides.
    open_sides: signed distance whose negative side marks where the frame is open
    (the screen's edge), so no line is drawn there."""
    y = c.y
    inside = c.cover(panel_d)
    shade = 0.85 + 0.15 * smoothstep(0.0, 60.0, -panel_d)
    c.over(PANEL * shade[..., None], inside * 0.78)
    # Faint horizontal bands give the glass a screen-like texture.
    bands = 0.5 + 0.5 * np.cos(y * (2 * np.pi / 8.0))
    c.over(PANEL_EDGE, inside * 0.25 * bands)
    edge_mask = smoothstep(-2.0, 6.0, open_sides)
    line = c.cover(np.abs(panel_d + 3.0) - 2.2) * edge_mask
    inner = c.cover(np.abs(panel_d + 10.0) - 0.9) * edge_mask
    glow = np.exp(-((panel_d + 3.0) / 6.0) ** 2) * edge_mask
    c.over(NEON_SOFT, np.clip(glow * 0.55, 0, 1) * (panel_d < 8))
    c.over(NEON_SOFT * 1.2, inner * 0.7)
    c.over(NEON, line)
    c.over(np.array([0.85, 0.98, 1.0], dtype=F), c.cover(np.abs(panel_d + 3.0) - 0.7) * edge_mask * 0.9)


def bracket(c, x0, y0, x1, y1, w=2.0, arm=14.0, colour=NEON, alpha=1.0):
    """Corner brackets of a rectangle."""
    x, y = c.x, c.y
    segs = []
    for cx, cy, sx, sy in ((x0, y0, 1, 1), (x1, y0, -1, 1), (x0, y1, 1, -1), (x1, y1, -1, -1)):
        segs.append(sd_segment(x, y, cx, cy, cx + sx * arm, cy, w))
        segs.append(sd_segment(x, y, cx, cy, cx, cy + sy * arm, w))
    c.over(colour, alpha * c.cover(union(*segs)))


def score():
    """400 x 120, shown as the 200 x 60 box in the top-left corner. The score is
    written at screen (15, 12), 15 px high: image (30, 24) to about (330, 54),
    inside the readout window."""
    c = Canvas(400, 120, ss=2)
    x, y = c.x, c.y
    panel = sd_polygon(x, y, [(-20, -20), (392, -20), (392, 82), (362, 112), (-20, 112)])
    neon_frame(c, panel, np.minimum(x - 6.0, y - 6.0))
    window = sd_box(x, y, 176, 40, 158, 24, 6)
    c.over(np.array([0.0, 0.02, 0.04], dtype=F), 0.85 * c.cover(window))
    c.over(NEON_SOFT, 0.8 * c.cover(np.abs(window) - 1.2))
    bracket(c, 18, 16, 334, 64, w=1.6, arm=12)
    c.over(LABEL, 0.95 * text_cover(c, "SCORE", "DejaVuSansCondensed-Bold.ttf", 19, 22, 76, tracking=3.0))
    # A row of indicator segments, the first few lit.
    for k in range(14):
        seg = sd_box(x, y, 132 + k * 15, 86, 5, 6, 1.5)
        lit = k < 5
        c.over(NEON if lit else NEON_SOFT * 0.55, (0.95 if lit else 0.7) * c.cover(seg))
    c.over(NEON, c.cover(sd_circle(x, y, 354, 40, 4)))
    return c.to_rgba()


DIALS = ((78, 96, PLASMA, "PLASMA"), (196, 96, LASER, "LASER"), (314, 96, UPGRADE, "UPGRADE"))
DIAL_R = 38.0
TRACK_HALF = 5.0
ARC = (135.0, 405.0)


def _track(c, cx, cy):
    return sd_arc(c.x, c.y, cx, cy, DIAL_R, TRACK_HALF, *ARC)


def power_dials():
    """400 x 200, shown as the 200 x 100 box in the bottom-left corner: three round
    gauges for plasma, laser and upgrades with their gauge tracks."""
    c = Canvas(400, 200, ss=2)
    x, y = c.x, c.y
    panel = sd_polygon(x, y, [(-20, 8), (358, 8), (392, 42), (392, 220), (-20, 220)])
    neon_frame(c, panel, np.minimum(x - 6.0, 194.0 - y))
    for cx, cy, colour, label in DIALS:
        body = sd_circle(x, y, cx, cy, 52)
        diff, specular, h = shade_relief(body, 6.0, ss=c.ss)
        c.over(PANEL_EDGE * (0.6 + 0.8 * diff)[..., None], c.cover(body))
        c.over(np.array([0.01, 0.03, 0.05], dtype=F), c.cover(sd_circle(x, y, cx, cy, 46)))
        # Scale ticks round the gauge.
        ang = np.degrees(np.arctan2(y - cy, x - cx))
        rel = (ang - ARC[0]) % 360.0
        step = (ARC[1] - ARC[0]) / 10.0
        tick_phase = np.abs(((rel + step / 2) % step) - step / 2) * np.radians(1.0) * 47
        ticks = intersect(np.abs(np.hypot(x - cx, y - cy) - 47.5) - 3.5, tick_phase - 1.1)
        c.over(NEON_SOFT * 1.3, c.cover(intersect(ticks, rel - (ARC[1] - ARC[0]) - 1.0)))
        track = _track(c, cx, cy)
        c.over(colour * 0.22, c.cover(track))
        c.over(colour * 0.9, 0.8 * c.cover(np.abs(track) - 0.8))
        hub = sd_circle(x, y, cx, cy, 13)
        diff, specular, h = shade_relief(hub, 5.0, ss=c.ss)
        c.over(np.array([0.16, 0.2, 0.26], dtype=F) * (0.5 + 0.8 * diff)[..., None] + specular[..., None] * 0.5,
               c.cover(hub))
        c.over(colour, c.cover(sd_circle(x, y, cx, cy, 5)))
        c.over(np.array([0.9, 0.95, 1.0], dtype=F), c.cover(sd_circle(x, y, cx, cy, 2.2)))
        c.over(LABEL, 0.95 * text_cover(c, label, "DejaVuSansCondensed-Bold.ttf", 16, cx, 172,
                                        anchor="ms", tracking=1.5))
    return c.to_rgba()


def bars_mask():
    """400 x 200, the same frame as the power dials: opaque white on the three gauge
    tracks, where a fill would be shown, transparent elsewhere."""
    c = Canvas(400, 200, ss=2)
    for cx, cy, _, _ in DIALS:
        c.over(np.ones(3, dtype=F), c.cover(_track(c, cx, cy)))
    return c.to_rgba(bleed=False)


RADAR_C = 264.0
RADAR_R = 226.0


def radar_dials():
    """520 x 520, shown as the 260 x 260 box in the bottom-right corner: a round
    scope with range rings, a bezel of bearing ticks and the ship at its centre."""
    c = Canvas(520, 520, ss=2)
    x, y = c.x, c.y
    panel = sd_polygon(x, y, [(8, 58), (58, 8), (540, 8), (540, 540), (8, 540)])
    neon_frame(c, panel, np.minimum(514.0 - x, 514.0 - y))
    dx, dy = x - RADAR_C, y - RADAR_C
    r = np.hypot(dx, dy)
    bezel = sd_circle(x, y, RADAR_C, RADAR_C, RADAR_R + 18)
    diff, specular, h = shade_relief(bezel, 10.0, ss=c.ss)
    c.over(PANEL_EDGE * (0.5 + 0.9 * diff)[..., None] + specular[..., None] * 0.3, c.cover(bezel))
    scope = sd_circle(x, y, RADAR_C, RADAR_C, RADAR_R)
    depth = smoothstep(RADAR_R, 0.0, r)
    c.over(mix(np.array([0.0, 0.02, 0.03], dtype=F), np.array([0.01, 0.09, 0.11], dtype=F),
               depth[..., None]), 0.92 * c.cover(scope))
    # Bearing ticks on the bezel: long every 30 degrees, short every 10.
    ang = (np.degrees(np.arctan2(dy, dx)) + 360.0) % 360.0
    for step, length, width in ((10.0, 8.0, 1.2), (30.0, 14.0, 2.2)):
        phase = np.abs(((ang + step / 2) % step) - step / 2) * np.radians(1.0) * r
        band = np.abs(r - (RADAR_R + 9.0 - length / 2 + 4)) - length / 2
        c.over(NEON_SOFT * 1.5, c.cover(intersect(band, phase - width)))
    c.over(NEON, c.cover(np.abs(r - RADAR_R) - 1.8))
    for k in (1, 2):
        rr = RADAR_R * k / 3.0
        c.over(NEON_SOFT, 0.75 * c.cover(np.abs(r - rr) - 1.2))
    cross = union(intersect(np.abs(dx) - 0.9, r - RADAR_R), intersect(np.abs(dy) - 0.9, r - RADAR_R))
    c.over(NEON_SOFT, 0.55 * c.cover(cross))
    # Diagonal dashes.
    dash = (np.abs(np.abs(dx) - np.abs(dy)) / np.sqrt(2.0)) - 0.8
    dash = np.maximum(dash, np.abs((r % 24.0) - 12.0) - 6.0)
    c.over(NEON_SOFT, 0.3 * c.cover(intersect(dash, r - RADAR_R)))
    # A faint static sweep trailing behind the bearing 300 degrees.
    trail = ((300.0 - ang) % 360.0)
    sweep = np.exp(-trail / 28.0) * (r < RADAR_R)
    c.over(NEON_SOFT * 1.4, np.clip(sweep * 0.35, 0, 1) * c.cover(scope))
    c.over(NEON, 0.8 * c.cover(intersect(sd_segment(x, y, RADAR_C, RADAR_C,
                                                    RADAR_C + RADAR_R * np.cos(np.radians(300)),
                                                    RADAR_C + RADAR_R * np.sin(np.radians(300)), 1.2),
                                         r - RADAR_R)))
    ship = sd_polygon(x, y, [(RADAR_C, RADAR_C - 11), (RADAR_C + 8, RADAR_C + 8),
                             (RADAR_C, RADAR_C + 3), (RADAR_C - 8, RADAR_C + 8)])
    c.over(np.array([0.8, 0.97, 1.0], dtype=F), c.cover(ship))
    c.over(LABEL, 0.9 * text_cover(c, "RADAR", "DejaVuSansCondensed-Bold.ttf", 18, 64, 44, tracking=3.0))
    return c.to_rgba()


def radar_mask():
    """520 x 520: opaque white over the radar scope's disc, transparent elsewhere."""
    c = Canvas(520, 520, ss=2)
    c.over(np.ones(3, dtype=F), c.cover(sd_circle(c.x, c.y, RADAR_C, RADAR_C, RADAR_R)))
    return c.to_rgba(bleed=False)


def title():
    """512 x 128: the "NIGHTVECTOR" logo in chrome-to-neon letters with a blue glow
    and a vector line running under it."""
    c = Canvas(512, 128, ss=2)
    x, y = c.x, c.y
    letters = text_cover(c, "NIGHTVECTOR", "DejaVuSans-Bold.ttf", 50, 256, 80, anchor="ms", tracking=4.0)
    halo = gaussian_blur(letters, 9.0 * c.ss)
    halo2 = gaussian_blur(letters, 3.0 * c.ss)
    c.over(np.array([0.1, 0.45, 1.0], dtype=F), np.clip(halo * 1.6, 0, 1) * 0.85)
    c.over(np.array([0.3, 0.8, 1.0], dtype=F), np.clip(halo2 * 1.3, 0, 1) * 0.7)
    # The vector line: a thin beam under the word ending in an arrowhead.
    beam = sd_segment(x, y, 60, 98, 436, 98, 1.6)
    head = sd_polygon(x, y, [(434, 91), (458, 98), (434, 105), (440, 98)])
    line = union(beam, head)
    fade = smoothstep(60.0, 170.0, x)
    c.over(np.array([0.35, 0.85, 1.0], dtype=F), np.clip(np.exp(-(np.maximum(line, 0) / 5.0) ** 2) * 0.6 * fade, 0, 1))
    c.over(np.array([0.85, 0.98, 1.0], dtype=F), c.cover(line) * fade)
    # Letters: dark outline, then a white-to-cyan-to-blue fill from top to bottom.
    outline = np.clip(gaussian_blur(letters, 1.2 * c.ss) * 3.0, 0, 1)
    c.over(np.array([0.01, 0.03, 0.08], dtype=F), outline)
    t = np.clip((y - 42.0) / 40.0, 0, 1)[..., None]
    fill = mix(np.array([1.0, 1.0, 1.0], dtype=F), np.array([0.35, 0.85, 1.0], dtype=F), smoothstep(0.1, 0.55, t))
    fill = mix(fill, np.array([0.1, 0.3, 0.95], dtype=F), smoothstep(0.55, 1.0, t))
    c.over(fill, letters)
    # A bright horizon line across the letters' middle.
    c.over(np.array([1.0, 1.0, 1.0], dtype=F), letters * np.exp(-((y - 61.0) / 1.4) ** 2) * 0.8)
    img = c.to_rgba()
    return img

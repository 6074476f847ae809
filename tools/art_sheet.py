"""Contact sheet: every image on a dark checker with its name and size, followed
by a mock frame of play built from the images the way the game draws them
(sizes, rotations, tints, additive glows, half-size HUD boxes), and a view of
the skybox across a cube corner so the seams can be judged.
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

import art_sky

FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
TILE = 200
LABEL_H = 30
COLUMNS = 8
SCREEN_W, SCREEN_H = 1280, 720


def _checker(w, h, n=10):
    yy, xx = np.mgrid[0:h, 0:w]
    c = ((xx // n + yy // n) % 2).astype(np.float32)
    return (0.11 + 0.05 * c)[..., None] * np.array([1.0, 1.0, 1.08], dtype=np.float32)


def _over(bg, rgba, alpha_scale=1.0):
    a = rgba[..., 3:4].astype(np.float32) / 255.0 * alpha_scale
    return bg * (1.0 - a) + rgba[..., :3].astype(np.float32) / 255.0 * a


def _tile(name, rgba):
    h, w = rgba.shape[:2]
    scale = min((TILE - 16) / w, (TILE - 16) / h)
    tw, th = max(1, int(round(w * scale))), max(1, int(round(h * scale)))
    resample = Image.NEAREST if scale >= 2 else Image.LANCZOS
    small = np.asarray(Image.fromarray(rgba, "RGBA").resize((tw, th), resample))
    cell = np.full((TILE + LABEL_H, TILE, 3), 0.06, dtype=np.float32)
    x0, y0 = (TILE - tw) // 2, (TILE - th) // 2
    bg = _checker(tw, th)
    cell[y0:y0 + th, x0:x0 + tw] = _over(bg, small)
    img = Image.fromarray((np.clip(cell, 0, 1) * 255).astype(np.uint8))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(FONT, 12)
    draw.text((TILE // 2, TILE + 4), name, fill=(220, 230, 240), font=font, anchor="mt")
    draw.text((TILE // 2, TILE + 17), f"{w} x {h}", fill=(140, 150, 165), font=font, anchor="mt")
    return np.asarray(img)


# ---------------------------------------------------------------------------
# Mock frame

def _sky_view(faces, yaw, pitch, fov=50.0, w=SCREEN_W, h=SCREEN_H):
    """Perspective view into the skybox (bilinear lookups in the face images)."""
    f = 1.0 / np.tan(np.radians(fov) / 2)
    ys, xs = np.mgrid[0:h, 0:w].astype(np.float64)
    px = (xs + 0.5 - w / 2) / (h / 2)
    py = -(ys + 0.5 - h / 2) / (h / 2)
    d = np.stack([px, py, -np.full_like(px, f)], axis=-1)
    cy, sy = np.cos(np.radians(yaw)), np.sin(np.radians(yaw))
    cp, sp = np.cos(np.radians(pitch)), np.sin(np.radians(pitch))
    ry = np.array([[cy, 0, sy], [0, 1, 0], [-sy, 0, cy]])
    rx = np.array([[1, 0, 0], [0, cp, -sp], [0, sp, cp]])
    d = d @ (ry @ rx).T
    out = np.zeros((h, w, 3), dtype=np.float32)
    n = None
    for face in art_sky.FACES:
        origin, su, tv = art_sky.face_frame(face)
        normal = origin + 0.5 * su + 0.5 * tv
        dn = d @ normal
        sel = dn > 1e-9
        p = d[sel] / dn[sel, None]
        s = (p - origin) @ su / (su @ su)
        t = (p - origin) @ tv / (tv @ tv)
        ok = (s >= 0) & (s <= 1) & (t >= 0) & (t <= 1)
        img = faces[face][..., :3].astype(np.float32) / 255.0
        n = img.shape[0]
        # Texel centres as the GL sampler sees them.
        fx = np.clip(s[ok] * n - 0.5, 0, n - 1.001)
        fy = np.clip(t[ok] * n - 0.5, 0, n - 1.001)
        ix, iy = fx.astype(np.int64), fy.astype(np.int64)
        ax, ay = (fx - ix)[:, None], (fy - iy)[:, None]
        val = (img[iy, ix] * (1 - ax) * (1 - ay) + img[iy, ix + 1] * ax * (1 - ay)
               + img[iy + 1, ix] * (1 - ax) * ay + img[iy + 1, ix + 1] * ax * ay)
        idx = np.nonzero(sel)
        rows, cols = idx[0][ok], idx[1][ok]
        out[rows, cols] = val
    return out


def _resized(rgba, w, h):
    return np.asarray(Image.fromarray(rgba, "RGBA").resize((max(1, int(round(w))), max(1, int(round(h)))),
                                                           Image.BILINEAR))


def _put(screen, rgba, cx, cy, w, h, angle=0.0, additive=False, tint=(255, 255, 255), alpha=1.0, times=1):
    img = _resized(rgba, w, h)
    if angle:
        img = np.asarray(Image.fromarray(img, "RGBA").rotate(angle, resample=Image.BILINEAR, expand=True))
    ih, iw = img.shape[:2]
    x0, y0 = int(round(cx - iw / 2)), int(round(cy - ih / 2))
    sx0, sy0 = max(0, -x0), max(0, -y0)
    x1, y1 = min(screen.shape[1], x0 + iw), min(screen.shape[0], y0 + ih)
    if x1 <= max(0, x0) or y1 <= max(0, y0):
        return
    part = img[sy0:sy0 + (y1 - max(0, y0)), sx0:sx0 + (x1 - max(0, x0))].astype(np.float32) / 255.0
    region = screen[max(0, y0):y1, max(0, x0):x1]
    col = part[..., :3] * (np.array(tint, dtype=np.float32) / 255.0)
    a = part[..., 3:4] * alpha
    if additive:
        region += col * a * times
    else:
        region[:] = region * (1 - a) + col * a


def _text(font_rgba, text, height):
    """Text drawn the way the game's GL path does: cells side by side, scaled to height."""
    fh, fw = font_rgba.shape[:2]
    ch, cw = fh // 16, fw // 16
    line = np.zeros((ch, cw * len(text), 4), dtype=np.uint8)
    for i, character in enumerate(text):
        code = ord(character)
        r, c = code // 16, code % 16
        line[:, i * cw:(i + 1) * cw] = font_rgba[r * ch:(r + 1) * ch, c * cw:(c + 1) * cw]
    w = len(text) * height * fw / fh
    return _resized(line, w, height)


def _put_text(screen, font, text, x, y, height, colour=(255, 255, 255), centred=False):
    img = _text(font, text, height)
    ih, iw = img.shape[:2]
    cx = x if centred else x + iw / 2
    _put(screen, img, cx, y + ih / 2, iw, ih, tint=colour)


def mock_frame(images):
    rng = np.random.default_rng(7)
    faces = {f: images[f"sky_{f}.png"] for f in art_sky.FACES}
    sky = _sky_view(faces, yaw=28.0, pitch=12.0)
    screen = sky * np.array([1.0, 0.82, 0.82], dtype=np.float32) * 0.82
    # Parallax stars.
    for _ in range(260):
        size = rng.uniform(0.2, 0.7)
        depth = rng.uniform(1, 30)
        bright = 1 - (depth - 1) / 29 * size
        tint = tuple(int(v) for v in rng.integers(168, 256, 3))
        _put(screen, images["star.png"], rng.uniform(0, SCREEN_W), rng.uniform(0, SCREEN_H),
             32 * size, 15 * size, additive=True, tint=tint, alpha=bright)
    # Enemies: heading angle -> setRotation(angle + 90); the angle comes from the velocity.
    def heading(vx, vy):
        a = -np.degrees(np.arctan2(vy, vx))
        if vy >= 0:
            a += 360
        return a + 90

    fleet = [("fighter", 96, 300, 200, (1, 0.4)), ("fighter", 96, 410, 150, (1, 0.6)),
             ("fighter2", 136, 930, 210, (-0.6, 1)), ("hammerhead", 136, 1030, 470, (-1, -0.2)),
             ("probe", 82, 250, 520, (0.2, -1)), ("probe", 96, 170, 330, (1, 1)),
             ("hammerhead", 172, 760, 600, (-0.3, -1)), ("probe3", 116, 1100, 120, (-1, 0.5)),
             ("fighter2", 136, 560, 120, (0.1, 1))]
    for kind, size, x, y, (vx, vy) in fleet:
        ang = heading(vx, vy)
        _put(screen, images[f"enemy_{kind}.png"], x, y, size, size, angle=ang)
        _put(screen, images[f"enemy_{kind}_glow.png"], x, y, size, size, angle=ang, additive=True)
    # Enemy shots.
    for x, y in ((860, 290), (880, 320), (300, 450)):
        _put(screen, images["plasmabullet.png"], x, y, 24, 24, additive=True, tint=(25, 255, 50), times=3)
    # Powerup.
    pu = images["powerup_anim.png"][64 * 2:64 * 3, 64 * 5:64 * 6]
    pg = images["powerup_glow_anim.png"][32 * 2:32 * 3, 32 * 5:32 * 6]
    _put(screen, pu, 470, 430, 48, 48)
    _put(screen, pg, 470, 430, 48, 48, additive=True)
    # Player at the centre with its layers turned a little.
    px, py = 640, 360
    _put(screen, images["player_bot.png"], px, py, 64, 64, angle=40)
    _put(screen, images["player_glow_bot.png"], px, py, 60, 60, angle=40, additive=True, alpha=129 / 255)
    _put(screen, images["player_mid.png"], px, py, 64, 64, angle=12)
    _put(screen, images["player_top.png"], px, py, 64, 64)
    _put(screen, images["player_glow_top.png"], px, py, 72, 72, additive=True, alpha=229 / 255)
    # Laser from the player towards the fighter2 at (930, 210), and plasma shots.
    tx, ty = 930.0, 210.0
    dx, dy = tx - px, ty - py
    length = float(np.hypot(dx, dy))
    ang = -np.degrees(np.arctan2(dy, dx))
    beam = _resized(images["slaser.png"], length, 14)
    _put(screen, beam, (px + tx) / 2, (py + ty) / 2, length, 14, angle=ang, additive=True,
         tint=(76, 76, 255), alpha=224 / 255, times=5)
    for k in range(4):
        t = 0.18 + 0.2 * k
        _put(screen, images["plasmabullet.png"], px + (380 - px) * t * 1.6, py + (150 - py) * t * 1.6,
             32, 32, additive=True, tint=(128, 113, 255), times=3)
    # HUD: boxes at half size, centred on their points.
    for name, cx, cy in (("hud_score.png", 100, 30), ("hud_power_dials.png", 100, SCREEN_H - 50),
                         ("hud_radar_dials.png", SCREEN_W - 130, SCREEN_H - 130)):
        img = images[name]
        _put(screen, img, cx, cy, img.shape[1] / 2, img.shape[0] / 2)
    _put_text(screen, images["hugefont.png"], "1240375", 15, 12, 15)
    _put_text(screen, images["medfont.png"], "Wave 3 incoming", 640, 288 - 12, 24, centred=True)
    _put_text(screen, images["medfont.png"], "+350", 930, 140, 16, colour=(255, 255, 255), centred=True)
    _put_text(screen, images["medfont.png"], "Upgrade +30", 470, 380, 16, colour=(25, 255, 38), centred=True)
    _put(screen, images["reticle.png"], 880, 250, 38, 38)
    _put(screen, images["reticle_glow.png"], 880, 250, 40, 40, alpha=0.75)
    return np.clip(screen, 0, 1)


def _label(img, text):
    """The image under a strip holding its caption."""
    strip = Image.new("RGB", (img.shape[1], 34), (15, 15, 15))
    ImageDraw.Draw(strip).text((12, 8), text, fill=(230, 235, 245), font=ImageFont.truetype(FONT, 16))
    return np.concatenate([np.asarray(strip), img], axis=0)


def composites(images, width):
    """The layered art put together, enlarged: the player's stack with its glows
    (2x), each enemy with its glow, and a few frames of the pickup (1.5x)."""
    tiles = []
    ship = np.full((160, 160, 3), 0.03, dtype=np.float32)
    c = 80
    _put(ship, images["player_bot.png"], c, c, 128, 128, angle=40)
    _put(ship, images["player_glow_bot.png"], c, c, 120, 120, angle=40, additive=True, alpha=129 / 255)
    _put(ship, images["player_mid.png"], c, c, 128, 128, angle=12)
    _put(ship, images["player_top.png"], c, c, 128, 128)
    _put(ship, images["player_glow_top.png"], c, c, 144, 144, additive=True, alpha=229 / 255)
    tiles.append(ship)
    for kind in ("fighter", "fighter2", "hammerhead", "probe", "probe2", "probe3"):
        tile = np.full((160, 160, 3), 0.03, dtype=np.float32)
        _put(tile, images[f"enemy_{kind}.png"], 80, 80, 150, 150)
        _put(tile, images[f"enemy_{kind}_glow.png"], 80, 80, 150, 150, additive=True)
        tiles.append(tile)
    row = np.concatenate([np.clip(t, 0, 1) for t in tiles], axis=1)
    frames = np.full((160, width - row.shape[1], 3), 0.03, dtype=np.float32)
    for k in range(6):
        f = k * 5
        r, col = divmod(f, 16)
        body = images["powerup_anim.png"][r * 64:(r + 1) * 64, col * 64:(col + 1) * 64]
        glow = images["powerup_glow_anim.png"][r * 32:(r + 1) * 32, col * 32:(col + 1) * 32]
        x = 50 + (k % 3) * 95
        y = 45 if k < 3 else 118
        _put(frames, body, x, y, 96 * 0.75, 96 * 0.75)
        _put(frames, glow, x, y, 96 * 0.75, 96 * 0.75, additive=True)
    row = np.concatenate([row, np.clip(frames, 0, 1)], axis=1)
    return (row * 255).astype(np.uint8)


def write(path, images):
    names = list(images)
    tiles = [_tile(n, images[n]) for n in names]
    rows = []
    for i in range(0, len(tiles), COLUMNS):
        row = tiles[i:i + COLUMNS]
        row += [np.full_like(tiles[0], 15)] * (COLUMNS - len(row))
        rows.append(np.concatenate(row, axis=1))
    grid = np.concatenate(rows, axis=0)
    width = grid.shape[1]
    frame = (mock_frame(images) * 255).astype(np.uint8)
    scale = width / SCREEN_W
    frame = np.asarray(Image.fromarray(frame).resize((width, int(SCREEN_H * scale)), Image.LANCZOS))
    frame = _label(frame, "Mock frame: sizes, turns, tints and glows as drawn in play")
    faces = {f: images[f"sky_{f}.png"] for f in art_sky.FACES}
    corner = (np.clip(_sky_view(faces, yaw=45.0, pitch=35.26, fov=70.0, w=width, h=width // 3) * 2.2, 0, 1)
              * 255).astype(np.uint8)
    corner = _label(corner, "Skybox across a cube corner (brightened 2.2x to show the seams)")
    layered = _label(composites(images, width), "Layers together: player stack and glows, enemies with glows, "
                                                "pickup frames 0, 5, 10, ... at 1.5x")
    sheet = np.concatenate([grid, layered, frame, corner], axis=0)
    path.parent.mkdir(parents=True, exist_ok=True)
    Image.fromarray(sheet, "RGB").save(path, "PNG", optimize=False)

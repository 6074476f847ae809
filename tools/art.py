"""Every image the game reads from gfx/, drawn by code from fixed seeds.

generate(out_root, args) writes the PNG files into out_root/gfx and, when
args.sheet is set, a labelled contact sheet of all of them to that path.
"""
import pathlib
import time

import numpy as np

import art_draw
import art_fonts
import art_fx
import art_hud
import art_powerup
import art_sheet
import art_ships
import art_sky

# File, size (width, height) and the function that draws it, in the game's load order.
# Sizes follow the on-screen sizes: see each drawing function for its reason.
IMAGES = [
    ("title.png", (512, 128), art_hud.title),
    ("reticle.png", (64, 64), art_fx.reticle),
    ("reticle_glow.png", (64, 64), art_fx.reticle_glow),
    ("star.png", (32, 16), art_fx.star),
    *[(f"sky_{face}.png", (art_sky.FACE_SIZE, art_sky.FACE_SIZE), None) for face in art_sky.FACES],
    ("player_top.png", (64, 64), art_ships.player_top),
    ("player_mid.png", (64, 64), art_ships.player_mid),
    ("player_bot.png", (64, 64), art_ships.player_bot),
    ("player_glow_top.png", (64, 64), art_ships.player_glow_top),
    ("player_glow_bot.png", (64, 64), art_ships.player_glow_bot),
    ("slaser.png", (64, 32), art_fx.slaser),
    ("plasmabullet.png", (32, 32), art_fx.plasmabullet),
    ("powerup_anim.png", (1024, 1024), art_powerup.powerup_anim),
    ("powerup_glow_anim.png", (512, 512), art_powerup.powerup_glow_anim),
    *[(f"enemy_{kind}{glow}.png", (128, 128), art_ships.enemy(kind, bool(glow)))
      for kind in art_ships.ENEMIES for glow in ("", "_glow")],
    ("hud_radar_dials.png", (520, 520), art_hud.radar_dials),
    ("hud_radar_mask.png", (520, 520), art_hud.radar_mask),
    ("hud_bars_mask.png", (400, 200), art_hud.bars_mask),
    ("hud_score.png", (400, 120), art_hud.score),
    ("hud_power_dials.png", (400, 200), art_hud.power_dials),
    *[(name, (w, h), art_fonts.makers()[name]) for name, (w, h, _) in art_fonts.FONTS.items()],
]


def generate(out_root: pathlib.Path, args):
    gfx = pathlib.Path(out_root) / "gfx"
    gfx.mkdir(parents=True, exist_ok=True)
    images = {}
    started = time.perf_counter()
    sky = None
    for name, size, draw in IMAGES:
        t0 = time.perf_counter()
        if draw is None:
            # The six sky faces come from one field, made once on the first face.
            sky = sky or art_sky.faces()
            rgba = sky[name[4:-4]]
        else:
            rgba = draw()
        assert rgba.dtype == np.uint8 and rgba.shape == (size[1], size[0], 4), (name, rgba.shape)
        art_draw.write_png(gfx / name, rgba)
        images[name] = rgba
        print(f"   {name:28s} {size[0]:4d} x {size[1]:<4d} {time.perf_counter() - t0:6.2f} s", flush=True)
    print(f"   {len(images)} images in {time.perf_counter() - started:.1f} s", flush=True)
    sheet = getattr(args, "sheet", None)
    if sheet:
        art_sheet.write(pathlib.Path(sheet), images)
        print(f"   contact sheet: {sheet}", flush=True)

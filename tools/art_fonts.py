"""Bitmap fonts: a 16 x 16 grid of equal cells, character code c at column c % 16
and row c // 16, white glyphs with anti-aliased alpha on transparent black.

The game draws a glyph cell with width:height equal to the image's width:height,
so each font's image size fixes both its cell size and its on-screen proportions.
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

FONT_DIR = "/usr/share/fonts/truetype/dejavu/"
FIRST, LAST = 32, 126

# file: (image width, image height, typeface)
FONTS = {
    # Cells of 16 x 32: "Game Over" at cell height (32 px) and the HUD numbers at
    # 15 px, about half size, which linear filtering still shows cleanly in bold.
    "hugefont.png": (256, 512, "DejaVuSansMono-Bold.ttf"),
    # Cells of 16 x 32: the intro screen at cell height (13 lines of 32 px with
    # 9 px spacing and 130 px of gaps fill 679 px of 720; 49 characters take
    # 784 px of 1280), banners at 24 px and floating texts at 16 px.
    "medfont.png": (256, 512, "DejaVuSansMono.ttf"),
    # Cells of 8 x 16 and 8 x 8: small print for notes and labels.
    "smallfont.png": (128, 256, "DejaVuSansMono.ttf"),
    "minifont.png": (128, 128, "DejaVuSansMono-Bold.ttf"),
}


def _glyphs(face, size, cw, ch):
    """Alpha of every printable glyph in its own cw x ch cell, laid out as the grid
    wants it: advance centred in the cell, ink centred vertically."""
    font = ImageFont.truetype(FONT_DIR + face, size)
    top, bottom = 0, 0
    for code in range(FIRST, LAST + 1):
        box = font.getbbox(chr(code), anchor="ls")
        if box[2] > box[0]:
            top = min(top, box[1])
            bottom = max(bottom, box[3])
    baseline = (ch - (bottom - top)) // 2 - top
    left = (cw - font.getlength("M")) * 0.5
    cells = {}
    for code in range(FIRST + 1, LAST + 1):
        cell = Image.new("L", (cw, ch), 0)
        ImageDraw.Draw(cell).text((left, baseline), chr(code), fill=255, font=font, anchor="ls")
        cells[code] = np.asarray(cell)
    return cells


def _fits(cells):
    """No ink on a cell's outermost pixels: linear filtering reads half a texel past
    a glyph's cell, which must find nothing of the neighbouring glyph."""
    for a in cells.values():
        if a[0].any() or a[-1].any() or a[:, 0].any() or a[:, -1].any():
            return False
    return True


def render(width, height, face):
    cw, ch = width // 16, height // 16
    # The largest size whose glyphs all keep clear of their cell's border.
    cells = None
    for size in range(2 * ch, 3, -1):
        cells = _glyphs(face, size, cw, ch)
        if _fits(cells):
            break
    alpha = np.zeros((height, width), dtype=np.uint8)
    for code, cell in cells.items():
        col, row = code % 16, code // 16
        alpha[row * ch:(row + 1) * ch, col * cw:(col + 1) * cw] = cell
    out = np.zeros((height, width, 4), dtype=np.uint8)
    out[..., :3] = np.where(alpha[..., None] > 0, 255, 0).astype(np.uint8)
    out[..., 3] = alpha
    return out


def makers():
    return {name: (lambda w=w, h=h, f=f: render(w, h, f)) for name, (w, h, f) in FONTS.items()}

#pragma once
// A fixed-grid bitmap font: one image of 16 x 16 equal cells, drawn into a Surface or with GL.

namespace orvel {

class Surface;
class Texture;

// Character code c has its glyph at column c % 16, row c / 16 of the image, row 0 at the
// top. There are no per-glyph widths: every character advances by one cell.
class Font {
public:
    // Takes ownership of `image` (null for an image that failed to load); no texture yet.
    explicit Font(Surface* image);
    // Deletes the image and the texture.
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // `text` in a new surface of (length x cell width) by cell height pixels, caller owns it;
    // null for a null image. Cells are image width / 16 by image height / 16 (integer division).
    // Characters count as signed bytes here, unlike in draw_gl, so codes 128..255 leave their
    // cell as the character before left it; kept, as this is what rendered texts look like.
    static Surface* render(const Surface* fontImage, const char* text);
    Surface* render(const char* text) const;
    // render() turned into a new Texture (caller owns it); the surface is freed.
    Texture* render_tex(const char* text) const;

    // Draws `text` at the current model-view matrix in the current GL colour: each glyph is a
    // quad (image width / image height) wide and 1 high, local y down, starting at the origin.
    // Creates the texture on first use. Characters are unsigned bytes, so all 256 cells draw.
    // Leaves GL_TEXTURE_2D, the vertex and texture-coordinate arrays and the texture on unit 0
    // enabled, and the colour array disabled.
    void draw_gl(const char* text);
    // Nothing for a null font.
    static void draw_gl(Font* font, const char* text);

    Surface* surface; // owned; the font image, null when it failed to load
    Texture* texture; // owned; the GL copy of surface, null until first needed
};

} // namespace orvel

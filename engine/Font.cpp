#include "engine/Font.h"

#include <cassert>
#include <cstring>

#include "engine/GL.h"
#include "engine/Surface.h"
#include "engine/Texture.h"

namespace orvel {

Font::Font(Surface* image) : surface(image), texture(nullptr) {}

Font::~Font() {
    delete surface;
    delete texture;
}

Surface* Font::render(const Surface* fontImage, const char* text) {
    if (!fontImage) return nullptr;
    assert(text);
    int n = (int)strlen(text);
    int cw = fontImage->width / 16;
    int ch = fontImage->height / 16;
    Surface* out = new Surface(n * cw, ch);
    for (int i = 0; i < n; ++i) {
        // Signed on purpose: codes 128..255 give a negative column or row (truncated toward
        // zero) whose source pixels the copy skips, so their cell keeps any earlier spill.
        int c = (signed char)text[i];
        int column = c % 16;
        int row = c / 16;
        // The whole-extent copy spills past the cell up to the right edge and the next
        // character overwrites the spill; kept with this left-to-right order, which relies on it.
        out->copy(fontImage, cw * column, ch * row, i * cw, 0, -1, -1);
    }
    return out;
}

Surface* Font::render(const char* text) const { return render(surface, text); }

Texture* Font::render_tex(const char* text) const {
    Surface* image = render(text);
    Texture* tex = new Texture(image);
    delete image;
    return tex;
}

void Font::draw_gl(const char* text) {
    // A font whose image failed to load has nothing to draw.
    if (!surface) return;
    assert(text);
    if (!texture) texture = new Texture(surface);

    texture->bind(GL_TEXTURE0);
    glEnable(GL_TEXTURE_2D);
    glClientActiveTexture(GL_TEXTURE0);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_VERTEX_ARRAY);
    // Colour comes from the current GL colour, never from a colour array left by another draw.
    glDisableClientState(GL_COLOR_ARRAY);

    // A sixteenth of the part of the texture that holds the image.
    float du = texture->sScale * 0.0625f;
    float dv = texture->tScale * 0.0625f;
    float a = (float)surface->width / (float)surface->height;

    // Static so that the pointers left in GL's client state never dangle.
    static float vertices[8];
    static float texcoords[8];
    float quad[8] = {0, 0, a, 0, a, 1, 0, 1};
    memcpy(vertices, quad, sizeof(quad));
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glTexCoordPointer(2, GL_FLOAT, 0, texcoords);

    for (const unsigned char* p = (const unsigned char*)text; *p; ++p) {
        unsigned c = *p;
        unsigned row = c >> 4;
        unsigned column = c & 15;
        float s0 = column * du;
        float s1 = s0 + du;
        float t0 = row * dv;
        float t1 = t0 + dv;
        // The image's top row is t = 0, so local y grows downward with the image.
        texcoords[0] = s0; texcoords[1] = t0;
        texcoords[2] = s1; texcoords[3] = t0;
        texcoords[4] = s1; texcoords[5] = t1;
        texcoords[6] = s0; texcoords[7] = t1;
        glDrawArrays(GL_QUADS, 0, 4);
        for (int k = 0; k < 8; k += 2) vertices[k] += a;
    }
}

void Font::draw_gl(Font* font, const char* text) {
    if (font) font->draw_gl(text);
}

} // namespace orvel

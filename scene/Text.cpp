#include "scene/Text.h"

#include "engine/Font.h"
#include "engine/GL.h"
#include "engine/ShaderProgram.h"
#include "engine/Surface.h"
#include "scene/SceneRoot.h"
#include "scene/Shaders.h"

using orvel::Font;

Text::Text(Font* font, const char* text) : font(font), color(1, 1, 1, 1), fontSize(0.0f) {
    // One cell of the 16 x 16 grid, in whole pixels.
    if (font && font->surface) fontSize = (float)(font->surface->height / 16);
    setText(text);
    setHotSpot(TopLeft);
}

Text::~Text() {}

void Text::setText(const char* text) {
    this->text.set(text ? text : "");
    updateTextSize();
}

void Text::updateTextSize() {
    // A glyph is as wide as the image's aspect ratio makes it; a font without an image has none.
    float aspect = 0.0f;
    if (font && font->surface) aspect = (float)font->surface->width / (float)font->surface->height;
    size.y = fontSize;
    size.x = text.length() * aspect * fontSize;
}

void Text::draw(SceneState&) {
    updateTextSize();

    // Glyphs are laid out in cells of one unit from the box's top-left corner. The scene root
    // loads the model-view matrix again for every leaf, so this is not undone.
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(hotSpot.x - size.x * 0.5f, hotSpot.y - size.y * 0.5f, 0.0f);
    glScalef(fontSize, fontSize, 1.0f);

    // Static so that the pointer left in GL's client state never dangles.
    static GLfloat colors[16];
    for (int i = 0; i < 16; i += 4) {
        colors[i + 0] = color.x;
        colors[i + 1] = color.y;
        colors[i + 2] = color.z;
        colors[i + 3] = color.w;
    }
    glColorPointer(4, GL_FLOAT, 0, colors);
    // Font::draw_gl switches the colour array off and draws in the current colour, so the
    // colour goes there as well.
    glColor4f(color.x, color.y, color.z, color.w);

    if (Shaders::texture_shader_fixed) Shaders::texture_shader_fixed->bind();
    Font::draw_gl(font, text.getCString());
    // Later leaves expect the colour array that the scene root switched on.
    glEnableClientState(GL_COLOR_ARRAY);
}

#include "scene/Sprite.h"

#include "engine/GL.h"
#include "engine/Texture.h"
#include "engine/VertexArrays.h"
#include "scene/SceneRoot.h"
#include "scene/Shaders.h"
#include "scene/SpriteClip.h"

using orvel::Texture;

Sprite::Sprite(Texture* texture, Texture* glowTexture, float w, float h) { init(texture, glowTexture, w, h); }

Sprite::Sprite(Texture* texture, float w, float h) { init(texture, nullptr, w, h); }

Sprite::~Sprite() {}

void Sprite::init(Texture* texture, Texture* glowTexture, float w, float h) {
    animated = false;
    framesX = 1;
    framesY = 1;
    frame = 0;
    this->texture = texture;
    this->glowTexture = glowTexture;
    // The image without its power-of-two padding; without a texture -1 stays, and nothing draws.
    if (w == -1.0f && texture) w = texture->width * texture->sScale;
    if (h == -1.0f && texture) h = texture->height * texture->tScale;
    size.x = w;
    size.y = h;
    flags |= VISIBLE;
}

void Sprite::draw(SceneState& state) {
    if (!texture) return;

    float x0 = hotSpot.x - size.x * 0.5f;
    float x1 = hotSpot.x + size.x * 0.5f;
    float y0 = hotSpot.y - size.y * 0.5f;
    float y1 = hotSpot.y + size.y * 0.5f;

    float s0 = 0.0f, s1 = texture->sScale;
    float t0 = 0.0f, t1 = texture->tScale;
    if (animated) {
        // A frame past the last row is not clamped: the texture's repeat wrap samples it from
        // the top rows again.
        int column = frame % framesX;
        int row = frame / framesX;
        float cellWidth = texture->sScale / framesX;
        float cellHeight = texture->tScale / framesY;
        s0 = column * cellWidth;
        s1 = (column + 1) * cellWidth;
        t0 = row * cellHeight;
        t1 = (row + 1) * cellHeight;
    }

    // Static so that the pointers left in GL's client state never dangle.
    static GLfloat vertices[8];
    static GLfloat texcoords[8];
    static GLubyte colors[16];
    const GLfloat quad[8] = {x0, y0, x1, y0, x1, y1, x0, y1};
    const GLfloat tex[8] = {s0, t0, s1, t0, s1, t1, s0, t1};
    for (int i = 0; i < 8; ++i) {
        vertices[i] = quad[i];
        texcoords[i] = tex[i];
    }
    for (int i = 0; i < 16; i += 4) {
        colors[i + 0] = state.color.r;
        colors[i + 1] = state.color.g;
        colors[i + 2] = state.color.b;
        colors[i + 3] = state.color.a;
    }

    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    Shaders::useTextureFixed();
    texture->bind(GL_TEXTURE0);
    glColor4f(1, 1, 1, 1);
    orvel::VertexArrays::bindTextured(vertices, texcoords, colors);
    // A whole image under a blend that keeps the target where alpha is 0 is drawn only around
    // its texels with alpha: the same pixels, fewer of them shaded.
    const bool clipped = !animated && SpriteClip::blendKeepsClearTexels(flags) &&
                         SpriteClip::begin(*texture, x0, y0, x1, y1);
    glDrawArrays(GL_QUADS, 0, 4);
    if (clipped) SpriteClip::end();
}

#include "engine/Skybox.h"

#include <cassert>

#include "engine/Camera.h"
#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Texture.h"
#include "engine/VertexArrays.h"

namespace orvel {

Skybox::Skybox()
    : left(nullptr), right(nullptr), front(nullptr), back(nullptr), top(nullptr), bottom(nullptr),
      brightness(1.0f), rotX(0.0f), rotY(0.0f), rotZ(0.0f) {}

void Skybox::draw(Camera* camera) {
    // Corners (x, y, z) of the cube's faces, and the (s, t) per corner the art is painted for.
    static const float front_vertices[12] = {1, -1, -1, -1, -1, -1, -1, 1, -1, 1, 1, -1};
    static const float left_vertices[12] = {1, -1, 1, 1, -1, -1, 1, 1, -1, 1, 1, 1};
    static const float back_vertices[12] = {-1, -1, 1, 1, -1, 1, 1, 1, 1, -1, 1, 1};
    static const float right_vertices[12] = {-1, -1, -1, -1, -1, 1, -1, 1, 1, -1, 1, -1};
    static const float top_vertices[12] = {-1, 1, -1, -1, 1, 1, 1, 1, 1, 1, 1, -1};
    static const float bottom_vertices[12] = {-1, -1, -1, -1, -1, 1, 1, -1, 1, 1, -1, -1};
    static const float horiz_texcoords[8] = {0, 1, 1, 1, 1, 0, 0, 0};
    static const float top_texcoords[8] = {1, 1, 1, 0, 0, 0, 0, 1};
    static const float bottom_texcoords[8] = {1, 0, 1, 1, 0, 1, 0, 0};
    // R, G, B, A per corner; static so the pointer left in GL's client state never dangles.
    static unsigned char colors[16];

    assert(camera);
    // Only the model-view matrix comes back afterwards; the projection stays the camera's.
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    // Projection and rotation but no translation: the box stays centred on the viewer.
    camera->bind(Camera::PROJECTION | Camera::ROTATION);

    // Red stays full while green, blue and alpha follow brightness: the sky's intended tint.
    unsigned char b = (unsigned char)Math::clampi((int)(255 * brightness), 0, 255);
    for (int i = 0; i < 16; i += 4) {
        colors[i] = 255;
        colors[i + 1] = b;
        colors[i + 2] = b;
        colors[i + 3] = b;
    }

    glRotatef(rotZ, 0, 0, 1);
    glRotatef(rotY, 0, 1, 0);
    glRotatef(rotX, 1, 0, 0);

    // Fixed-function texturing on unit 0; a bound shader program takes no notice of it.
    glActiveTexture(GL_TEXTURE0);
    glEnable(GL_TEXTURE_2D);
    glDisableClientState(GL_NORMAL_ARRAY);
    VertexArrays::enableTextured();
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors);
    glTexCoordPointer(2, GL_FLOAT, 0, horiz_texcoords);

    struct Face {
        Texture* texture;
        const float* vertices;
        const float* texcoords;
    };
    const Face faces[6] = {
        {front, front_vertices, horiz_texcoords}, {left, left_vertices, horiz_texcoords},
        {back, back_vertices, horiz_texcoords},   {right, right_vertices, horiz_texcoords},
        {top, top_vertices, top_texcoords},       {bottom, bottom_vertices, bottom_texcoords},
    };
    for (const Face& face : faces) {
        if (!face.texture) continue;
        face.texture->bind(GL_TEXTURE0);
        glTexCoordPointer(2, GL_FLOAT, 0, face.texcoords);
        glVertexPointer(3, GL_FLOAT, 0, face.vertices);
        glDrawArrays(GL_QUADS, 0, 4);
    }

    glPopMatrix();
}

} // namespace orvel

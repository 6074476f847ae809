#include "engine/VertexArrays.h"

#include "engine/GL.h"

namespace orvel {

void VertexArrays::enableTextured() {
    glClientActiveTexture(GL_TEXTURE0);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
}

void VertexArrays::bindTextured(const float* vertices, const float* texcoords, const uint8_t* colors, int stride) {
    enableTextured();
    glVertexPointer(2, GL_FLOAT, stride, vertices);
    glTexCoordPointer(2, GL_FLOAT, stride, texcoords);
    glColorPointer(4, GL_UNSIGNED_BYTE, stride, colors);
}

void VertexArrays::bindColored(const float* vertices, unsigned colorType, const void* colors) {
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glColorPointer(4, colorType, 0, colors);
}

} // namespace orvel

#pragma once
// Test geometry drawn the way the game's effects draw: 2D vertices in one colour through the
// shared colour shader, with the vertex and colour arrays the scene roots leave enabled.

#include "engine/GL.h"
#include "scene/Drawable.h"
#include "scene/Shaders.h"

namespace scene_test {

// Draws the first `count` (at most 8) vertices of `xy` as `mode` in `color`.
inline void drawInColour(GLenum mode, const GLfloat* xy, int count, Color4ub color) {
    // Static, so that a steady frame allocates nothing.
    static Color4ub colors[8];
    for (int i = 0; i < count; ++i) colors[i] = color;
    Shaders::color_shader_fixed->bind();
    glVertexPointer(2, GL_FLOAT, 0, xy);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors);
    glDrawArrays(mode, 0, count);
}

} // namespace scene_test

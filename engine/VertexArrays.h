#pragma once
// Which of GL's client arrays a 2D draw reads, and where they point.

#include <cstdint>

namespace orvel {

// The arrays are global GL state: they stay enabled and pointed after the draw, so what they
// point at must outlive it (static or owned memory). The normal array is never touched here.
class VertexArrays {
public:
    // Makes texture unit 0 the client unit and enables its coordinate array, the vertex array
    // and the colour array.
    static void enableTextured();
    // enableTextured(), then points the arrays at 2D vertices (x, y floats), texture coordinates
    // (s, t floats) and colours (r, g, b, a bytes). `stride` is the bytes from one vertex to the
    // next in all three, 0 for arrays packed tightly.
    static void bindTextured(const float* vertices, const float* texcoords, const uint8_t* colors, int stride = 0);
    // Untextured: disables the texture-coordinate array, so no stale one is read, enables the
    // vertex and colour arrays and points them at 2D vertices and at four colour components a
    // vertex of `colorType` (GL_UNSIGNED_BYTE or GL_FLOAT), both packed tightly.
    static void bindColored(const float* vertices, unsigned colorType, const void* colors);
};

} // namespace orvel

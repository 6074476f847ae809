#pragma once
// A batch of textured, coloured quads in one interleaved block, drawn through client arrays.

#include <cstdint>

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "scene/Drawable.h"

namespace orvel {
class Texture;
}

// Shots, beams, stars and radar blips are built into a batch every frame and drawn as GL_QUADS
// with the texture_fixed program. The block is cleared, never freed, so a batch kept in a
// function-local static allocates nothing once it has grown to the frame's size.
class QuadBatch {
public:
    // One corner: position, texture coordinates and colour, 20 bytes interleaved.
    struct Vertex {
        float x, y;
        float u, v;
        uint8_t r, g, b, a;
    };

    static const unsigned QUAD_VERTICES = 4;

    // Room for `quadCapacity` quads before the block grows.
    explicit QuadBatch(unsigned quadCapacity);

    // Forgets the quads and keeps the memory.
    void clear() { vertices.clear(); }
    bool isEmpty() const { return vertices.isEmpty(); }
    unsigned quadCount() const { return vertices.count / QUAD_VERTICES; }

    // A quad through corners a, b, c, d in that order, textured (u0, v0) at a, (u1, v0) at b,
    // (u1, v1) at c and (u0, v1) at d.
    void pushQuad(const orvel::vec2& a, const orvel::vec2& b, const orvel::vec2& c, const orvel::vec2& d,
                  const Color4ub& color);
    // The axis-aligned rectangle [x0, x1] x [y0, y1] with texture [u0, u1] x [v0, v1].
    void pushRect(float x0, float y0, float x1, float y1, float u0, float v0, float u1, float v1,
                  const Color4ub& color);
    // A square of half side `half` centred on (x, y) showing the whole image.
    void pushSquare(float x, float y, float half, const Color4ub& color) {
        pushRect(x - half, y - half, x + half, y + half, 0.0f, 0.0f, 1.0f, 1.0f, color);
    }

    // Binds `texture` to unit 0, or no texture there when it is null.
    static void bindTexture(orvel::Texture* texture);
    // Enables the vertex, texture-coordinate and colour arrays of unit 0 and points them into
    // the block.
    // Pushing past the capacity moves the block, so bind again after growing.
    void bindArrays() const;
    // Draws the bound quads `times` times (additive repeats brighten).
    void drawQuads(unsigned times = 1) const;
    // bindTexture, bindArrays and drawQuads, then clear; nothing but the clear for an empty batch.
    void flush(orvel::Texture* texture, unsigned times = 1);

    orvel::Stack<Vertex> vertices; // four per quad, in drawing order
};

static_assert(sizeof(QuadBatch::Vertex) == 20, "quad vertices are 20 bytes");

#include "scene/QuadBatch.h"

#include "engine/GL.h"
#include "engine/Texture.h"
#include "engine/VertexArrays.h"

using orvel::vec2;

QuadBatch::QuadBatch(unsigned quadCapacity) : vertices(quadCapacity * QUAD_VERTICES) {}

void QuadBatch::pushQuad(const vec2& a, const vec2& b, const vec2& c, const vec2& d, const Color4ub& k) {
    vertices.push(Vertex{a.x, a.y, 0.0f, 0.0f, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{b.x, b.y, 1.0f, 0.0f, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{c.x, c.y, 1.0f, 1.0f, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{d.x, d.y, 0.0f, 1.0f, k.r, k.g, k.b, k.a});
}

void QuadBatch::pushRect(float x0, float y0, float x1, float y1, float u0, float v0, float u1, float v1,
                         const Color4ub& k) {
    vertices.push(Vertex{x0, y0, u0, v0, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{x1, y0, u1, v0, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{x1, y1, u1, v1, k.r, k.g, k.b, k.a});
    vertices.push(Vertex{x0, y1, u0, v1, k.r, k.g, k.b, k.a});
}

void QuadBatch::bindTexture(orvel::Texture* texture) {
    if (texture) {
        texture->bind(GL_TEXTURE0);
    } else {
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}

void QuadBatch::bindArrays() const {
    orvel::VertexArrays::bindTextured(&vertices.data->x, &vertices.data->u, &vertices.data->r,
                                      (int)sizeof(Vertex));
}

void QuadBatch::drawQuads(unsigned times) const {
    for (unsigned k = 0; k < times; ++k)
        glDrawArrays(GL_QUADS, 0, (GLsizei)vertices.count);
}

void QuadBatch::flush(orvel::Texture* texture, unsigned times) {
    if (!vertices.isEmpty()) {
        bindTexture(texture);
        bindArrays();
        drawQuads(times);
    }
    clear();
}

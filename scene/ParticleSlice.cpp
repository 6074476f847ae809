#include "scene/ParticleSlice.h"

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Stack.h"
#include "engine/Texture.h"
#include "engine/VertexArrays.h"
#include "scene/ParticleSystem.h"
#include "scene/SceneRoot.h"
#include "scene/Shaders.h"

using orvel::Math;
using orvel::Orvel;
using orvel::Stack;
using orvel::Texture;
using orvel::mat4;
using orvel::vec2;
using orvel::vec3;

namespace {

// Draws the batch once per matrix and empties it.
// The loop runs over the matrix list's capacity, not its count: the extra draws load the spare
// element, kept all zero so they cover no pixel. It stays: the draws per flush are fixed by it.
void flush(Stack<mat4>& matrices, Stack<ParticleSlice::Vertex>& vertices) {
    glMatrixMode(GL_MODELVIEW);
    for (int i = (int)matrices.capacity - 1; i >= 0; --i) {
        glLoadMatrixf(matrices[(unsigned)i].m);
        glDrawArrays(GL_QUADS, 0, (GLsizei)vertices.count);
    }
    vertices.clear();
}

uint8_t toByte(float v) { return (uint8_t)(int)v; }

// One matrix per view rectangle, so the particles appear in every wrapped copy of the world.
void buildMatrices(const SceneState& s, Stack<mat4>& matrices) {
    matrices.clear();
    for (unsigned i = 0; i < s.viewRects->count; ++i) {
        const ViewRect& v = s.viewRects->data[i];
        mat4 m = s.transform2D;
        m.translate(vec3(v.offsetX, v.offsetY, 0.0f));
        matrices.push(m);
    }
    // The extra draws of a flush load the spare element; zero puts their vertices nowhere.
    for (float& e : matrices.data[matrices.capacity].m) e = 0.0f;
}

// Empties the batch, points the three arrays at it, binds the program and the texture.
// Returns the texture's (sScale, tScale), the far corner of the image in texture coordinates.
vec2 bindBatch(Stack<ParticleSlice::Vertex>& vertices, Texture* tex) {
    // A batch never holds more than BATCH_VERTICES, so the stack keeps its first block and the
    // array pointers set here stay valid until the next call.
    vertices.clear();
    orvel::VertexArrays::bindTextured(&vertices.data->x, &vertices.data->s, &vertices.data->r,
                                      (int)sizeof(ParticleSlice::Vertex));
    Shaders::useTextureFixed();
    if (!tex) {
        // No image (its file failed to load): unbind rather than sample whatever was left bound.
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, 0);
        return vec2(1.0f, 1.0f);
    }
    tex->bind(GL_TEXTURE0);
    return vec2(tex->sScale, tex->tScale);
}

} // namespace

ParticleSlice::ParticleSlice(ParticleSystem* system, bool removeWhenEmpty, bool deleteWhenEmpty)
    : system(system), head(nullptr), tail(nullptr), count(0), removeWhenEmpty(removeWhenEmpty),
      deleteWhenEmpty(deleteWhenEmpty) {
    flags |= VISIBLE | EFFECT;
    setDrawMode(system->drawMode);
}

ParticleSlice::~ParticleSlice() {
    while (head) unlink(head);
}

void ParticleSlice::append(Particle* p) {
    p->slice = this;
    p->next = nullptr;
    p->prev = tail;
    if (tail)
        tail->next = p;
    else
        head = p;
    tail = p;
    ++count;
}

void ParticleSlice::unlink(Particle* p) {
    if (p->prev)
        p->prev->next = p->next;
    else
        head = p->next;
    if (p->next)
        p->next->prev = p->prev;
    else
        tail = p->prev;
    --count;
    p->slice = nullptr;
    p->next = nullptr;
    p->prev = nullptr;
}

void ParticleSlice::updateSize() {
    size = vec3(0.0f, 0.0f, 0.0f);
    // With no particles the dirty bit stays set, so the size is asked for again next time.
    if (count == 0) return;
    vec2 lo = head->start;
    vec2 hi = head->start;
    for (Particle* p = head; p; p = p->next) {
        const vec2 points[2] = {p->start, p->end};
        for (const vec2& q : points) {
            if (q.x < lo.x) lo.x = q.x;
            if (q.y < lo.y) lo.y = q.y;
            if (q.x > hi.x) hi.x = q.x;
            if (q.y > hi.y) hi.y = q.y;
        }
    }
    size.x = Math::abs(hi.x - lo.x);
    size.y = Math::abs(hi.y - lo.y);
    // The hot spot comes from the size alone, not from where the particles are; a slice is
    // never culled, so nothing depends on it.
    hotSpot = vec3(-size.x * 0.5f, -size.y * 0.5f, 0.0f);
    flags &= ~DIRTY;
}

void ParticleSlice::draw(SceneState& s) {
    if (count == 0) {
        head = tail = nullptr;
        if (removeWhenEmpty) remove();
        // Safe inside draw: the scene walk has already read this node's next link.
        if (deleteWhenEmpty) delete this;
        return;
    }

    static Stack<mat4> matrices(8);
    static Stack<Vertex> vertices(1024);
    buildMatrices(s, matrices);
    vec2 st = bindBatch(vertices, system->texture);
    float S = st.x;
    float T = st.y;

    uint32_t now = Orvel::currentTime;
    Particle* p = head;
    while (p) {
        Particle* next = p->next;
        if (p->deathTime < now) {
            unlink(p);
            p = next;
            continue;
        }
        // A particle given no lifetime at all is drawn as at its birth instead of dividing by 0.
        uint32_t life = p->deathTime - p->birthTime;
        float f = life ? (float)(now - p->birthTime) / (float)life : 0.0f;
        vec2 c = Math::lerp(f, p->start, p->end);
        float r = Math::lerp(f, p->sizeStart, p->sizeEnd);
        uint8_t cr = toByte(p->color.r * 255.0f);
        uint8_t cg = toByte(p->color.g * 255.0f);
        uint8_t cb = toByte(p->color.b * 255.0f);
        uint8_t ca = toByte((1.0f - f) * p->color.a * 255.0f);
        vertices.push(Vertex{c.x - r, c.y - r, 0.0f, 0.0f, cr, cg, cb, ca, {}});
        vertices.push(Vertex{c.x + r, c.y - r, S, 0.0f, cr, cg, cb, ca, {}});
        vertices.push(Vertex{c.x + r, c.y + r, S, T, cr, cg, cb, ca, {}});
        vertices.push(Vertex{c.x - r, c.y + r, 0.0f, T, cr, cg, cb, ca, {}});
        if (vertices.count > BATCH_VERTICES - 1) flush(matrices, vertices);
        p = next;
    }
    if (vertices.count > 0) flush(matrices, vertices);
}

#include "scene/ParticleSystem.h"

#include <cassert>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec4;

orvel::Random ParticleSystem::random((int)0xd34db33f);

ParticleSystem::ParticleSystem(unsigned capacity)
    : particles(new Particle[capacity + 1]()), capacity(capacity), emitters(EMITTER_CAPACITY),
      texture(nullptr), wind(0.0f, 0.0f), defaultSlice(nullptr), drawMode(BlendAdd), cursor(0),
      userFlag(0) {
    // The ring cursor advances modulo the capacity.
    assert(capacity > 0 && "a particle system needs at least one slot");
    // The spare record stays zeroed; only the usable slots get the initial values.
    for (unsigned i = 0; i < capacity; ++i) {
        Particle& p = particles[i];
        p.color.r = p.color.g = p.color.b = p.color.a = 1.0f;
        p.sizeStart = 16.0f;
        p.sizeEnd = 16.0f;
    }
    defaultSlice = createSlice(false, false);
}

ParticleSystem::~ParticleSystem() {
    // Every slice that still draws one of our particles is left empty, so none of them
    // reaches into the freed pool.
    for (unsigned i = 0; i <= capacity; ++i) {
        ParticleSlice* s = particles[i].slice;
        if (s) {
            s->head = s->tail = nullptr;
            s->count = 0;
        }
    }
    delete defaultSlice;
    for (unsigned i = 0; i < emitters.count; ++i) delete emitters.data[i];
    delete[] particles;
}

ParticleEmitter* ParticleSystem::createEmitter(ParticleSlice* slice) {
    ParticleEmitter* e = new ParticleEmitter();
    e->slice = slice ? slice : defaultSlice;
    emitters.push(e);
    return e;
}

void ParticleSystem::destroyEmitter(ParticleEmitter* e) {
    emitters.remove(e);
    delete e;
}

ParticleSlice* ParticleSystem::createSlice(bool removeWhenEmpty, bool deleteWhenEmpty) {
    return new ParticleSlice(this, removeWhenEmpty, deleteWhenEmpty);
}

// The pool is a ring: emit always takes the slot under the cursor, whatever its state. When
// every slot is busy the oldest particle therefore gives its slot to the newest and leaves its
// slice at once; heavy emission shortens older particles' lives instead of failing.
void ParticleSystem::emit(ParticleSlice* slice, const ParticleBurst& b, const vec2& position, const vec2& direction) {
    emit(slice, b.count, b.lifeMin, b.lifeMax, position, b.radius, b.sizeStartMin, b.sizeStartMax, b.sizeEndMin,
         b.sizeEndMax, direction, b.speedMin, b.speedMax, b.spread, b.colorA, b.colorB);
}

void ParticleSystem::emit(ParticleSlice* slice, unsigned count, unsigned lifeMin, unsigned lifeMax,
                          const vec2& position, float radius, float sizeStartMin, float sizeStartMax,
                          float sizeEndMin, float sizeEndMax, const vec2& direction, float speedMin,
                          float speedMax, float spread, const vec4& colorA, const vec4& colorB) {
    ParticleSlice* target = slice ? slice : defaultSlice;
    uint32_t now = Orvel::currentTime;
    vec2 d = direction;
    d.normalize();
    float h = Math::toRadian(spread * 0.5f);
    vec4 ca = colorA;
    vec4 cb = colorB;
    ca.clamp(0.0f, 1.0f);
    cb.clamp(0.0f, 1.0f);

    // The random draws come in a fixed order (offset x, y, length; blue, green, red; speed;
    // angle; lifetime; start size; end size): with the fixed seed it fixes every pattern.
    vec2 offset(0.0f, 0.0f);
    for (unsigned n = 0; n < count; ++n) {
        // With radius 0 the offset keeps its last value, which stays (0, 0) for this call.
        if (radius != 0.0f) {
            float ox = random.randf(-1.0f, 1.0f);
            float oy = random.randf(-1.0f, 1.0f);
            vec2 jitter(ox, oy);
            jitter.normalize();
            offset = jitter * random.randf(radius);
        }
        Particle* p = &slot(cursor);

        p->color.b = random.randf(ca.z, cb.z);
        p->color.g = random.randf(ca.y, cb.y);
        p->color.r = random.randf(ca.x, cb.x);
        p->color.a = 1.0f;

        p->start = position + offset;
        float speed = random.randf(speedMin, speedMax);
        float angle = random.randf(-h, h);
        vec2 v = Math::rotate(d, angle) * speed;
        // The offset counts twice, so particles born away from the centre also fly outward.
        p->end = p->start + offset + v;

        p->birthTime = now;
        p->deathTime = (uint32_t)random.randi((int)(lifeMin + now), (int)(lifeMax + now));
        p->sizeStart = random.randf(sizeStartMin, sizeStartMax);
        p->sizeEnd = random.randf(sizeEndMin, sizeEndMax);

        cursor = (cursor + 1) % capacity;

        if (p->slice) p->slice->unlink(p);
        target->append(p);
    }
}

void ParticleSystem::update() {
    applyWind();
    runEmitters();
}

void ParticleSystem::applyWind() {
    if (wind.length() > 0.0f) {
        // Free slots drift too; emit overwrites both points anyway.
        vec2 delta = wind * Orvel::sync;
        for (unsigned i = 0; i < capacity; ++i) particles[i].end += delta;
    }
}

void ParticleSystem::runEmitters() {
    uint32_t now = Orvel::currentTime;
    for (unsigned i = 0; i < emitters.count; ++i) {
        ParticleEmitter* e = emitters.data[i];
        if (e->rate == 0) {
            e->lastEmit = now;
            continue;
        }
        unsigned n = (unsigned)(e->rate * (now - e->lastEmit) * 0.001);
        // Until a whole particle is due, lastEmit stays put and the time accumulates.
        if (n == 0) continue;
        emit(e->slice, n, (unsigned)e->lifeMin, (unsigned)e->lifeMax, e->position, e->radius,
             e->sizeStartMin, e->sizeStartMax, e->sizeEndMin, e->sizeEndMax, e->direction,
             e->speedMin, e->speedMax, e->spread, e->colorA, e->colorB);
        e->lastEmit = now;
    }
}

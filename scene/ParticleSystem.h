#pragma once
// A fixed pool of particles shared by explosions, engine trails and hits, and the emitters that feed it.

#include <cstdint>

#include "engine/Random.h"
#include "engine/Stack.h"
#include "engine/Vector.h"

namespace orvel {
class Texture;
}
class ParticleEmitter;
class ParticleSlice;

// One slot of the pool. A particle does not integrate a velocity: it travels in a straight
// line from start to end over its life, its half-extent goes from sizeStart to sizeEnd and
// its alpha fades linearly to 0.
struct Particle {
    ParticleSlice* slice; // the slice that draws it; null = free slot
    Particle* next;       // links in the slice's list, toward the tail
    Particle* prev;
    struct {
        float r, g, b, a; // 0..1; a is set to 1 at emission
    } color;
    orvel::vec2 start;  // position at birth, world units
    orvel::vec2 end;    // position at death
    float sizeStart;    // half-extent of the quad at birth
    float sizeEnd;      // half-extent at death
    uint32_t birthTime; // ms of Orvel::currentTime
    uint32_t deathTime; // ms of Orvel::currentTime; drawn while deathTime >= now
};

// What one call of ParticleSystem::emit throws, but for where and which way: a named
// description instead of a row of numbers at every call.
struct ParticleBurst {
    unsigned count;
    unsigned lifeMin, lifeMax;  // ms, [lifeMin, lifeMax)
    float radius;               // births scatter this far from the position
    float sizeStartMin, sizeStartMax;
    float sizeEndMin, sizeEndMax;
    float speedMin, speedMax;   // distance travelled over the whole life
    float spread;               // full cone angle, degrees
    orvel::vec4 colorA, colorB; // each particle's colour lies between the two
};

class ParticleSystem {
public:
    // Initial room of the emitter list; it doubles when full.
    static const unsigned EMITTER_CAPACITY = 128;

    // Shared by every system and never reseeded, so particle patterns repeat from run to run.
    static orvel::Random random;

    // A pool of `capacity` usable slots (at least 1) plus one spare, and the default slice.
    explicit ParticleSystem(unsigned capacity);
    // Deletes the default slice and the emitters still listed; slices created by createSlice
    // stay with their owners, emptied, since the particles they drew are gone.
    ~ParticleSystem();
    ParticleSystem(const ParticleSystem&) = delete;
    ParticleSystem& operator=(const ParticleSystem&) = delete;

    // A new emitter with default settings feeding `slice` (the default slice when null),
    // appended to the emitter list. The caller owns it until destroyEmitter.
    ParticleEmitter* createEmitter(ParticleSlice* slice);
    // Takes `e` off the list (the last emitter fills its place) and deletes it, listed or
    // not; null is allowed.
    void destroyEmitter(ParticleEmitter* e);
    // A new slice drawing this system's particles; the caller adds it to a scene and owns it.
    ParticleSlice* createSlice(bool removeWhenEmpty, bool deleteWhenEmpty);

    // Emits `count` particles at once into `slice` (the default slice when null). Lifetimes
    // in ms, [lifeMin, lifeMax); sizes are half-extents; speed is the distance travelled along
    // `direction` over the whole life; spread is the full cone angle in degrees; the colour of
    // each particle lies between colorA and colorB (each clamped to 0..1, alpha ignored).
    void emit(ParticleSlice* slice, unsigned count, unsigned lifeMin, unsigned lifeMax,
              const orvel::vec2& position, float radius, float sizeStartMin, float sizeStartMax,
              float sizeEndMin, float sizeEndMax, const orvel::vec2& direction, float speedMin,
              float speedMax, float spread, const orvel::vec4& colorA, const orvel::vec4& colorB);

    // The same with the burst's settings.
    void emit(ParticleSlice* slice, const ParticleBurst& burst, const orvel::vec2& position,
              const orvel::vec2& direction);

    // Once per frame: wind drift, then the output of every emitter.
    void update();

    // Slot i for i < capacity, otherwise the spare record.
    Particle& slot(unsigned i) { return particles[i < capacity ? i : capacity]; }

    Particle* particles;                       // owned; capacity + 1 records, the last one spare
    unsigned capacity;                         // usable slots
    orvel::Stack<ParticleEmitter*> emitters;   // updated in list order; the emitters are the callers'
    orvel::Texture* texture;                   // image of every quad; not owned, set by the owner
    orvel::vec2 wind;                          // world units per second added to every end point
    ParticleSlice* defaultSlice;               // owned; both flags false
    unsigned drawMode;                         // draw mode given to each slice at its creation
    // Full pool: emit takes the slot under the cursor whatever its state, so once every slot
    // is busy the oldest particle gives its slot to the newest and leaves its slice at once.
    unsigned cursor;                           // next slot emit takes, 0..capacity - 1
    unsigned userFlag;                         // set by the game on its explosion system; nothing reads it

private:
    // The steps of update().
    void applyWind();
    void runEmitters();
};

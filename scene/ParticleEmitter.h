#pragma once
// The settings of a steady stream of particles; ParticleSystem::update turns them into particles.

#include <cstdint>

#include "engine/Vector.h"

class ParticleSlice;
struct ParticleBurst;

class ParticleEmitter {
public:
    // Default settings: white, one second of life, size 16, no speed, idle (rate 0).
    ParticleEmitter();

    // Takes the burst's lives, speeds, sizes, spread, radius and colours. Its count is not used:
    // an emitter's output is set by its rate.
    void setParticles(const ParticleBurst& burst);

    orvel::vec4 colorA;        // one end of the colour range, 0..1; alpha ignored
    orvel::vec4 colorB;        // the other end
    orvel::vec2 position;      // emission point, world units
    orvel::vec2 direction;     // main direction of travel; any length
    float lifeMin, lifeMax;    // ms, [lifeMin, lifeMax); truncated to whole ms at emission
    float speedMin, speedMax;  // distance travelled along direction over the whole life
    float sizeStartMin, sizeStartMax; // half-extent at birth
    float sizeEndMin, sizeEndMax;     // half-extent at death
    float spread;              // degrees, full opening angle of the cone around direction
    float radius;              // particles start within this distance of position
    unsigned rate;             // particles per second; 0 = idle
    ParticleSlice* slice;      // receives the particles; not owned
    uint32_t reserved[2];      // zeroed; nothing reads them
    uint32_t lastEmit;         // ms of Orvel::currentTime of the last emission or idle update
};

#pragma once
// Explosions: the bursts that actors throw when they are destroyed, and named entry points for
// explosions of four sizes.

#include "engine/Vector.h"

class ParticleSlice;
class ParticleSystem;

// One explosion burst, thrown into g_game's explosionSlice. Per burst, in this order, g_rand
// draws the reach (9 to 12 radii), the longest life and the shortest life; the particles are
// born within radiusFactor radii of the centre and fly out in every direction.
struct ExplosionBurst {
    unsigned count;
    int longestLifeMin, longestLifeMax;   // ms, [min, max) of the burst's longest particle life
    int shortestLifeMin, shortestLifeMax; // ms, [min, max) of its shortest
    float radiusFactor;                   // birth scatter in radii of the exploding actor
    orvel::vec4 colorA, colorB;
};

// A fighter, probe or hammerhead: 192 fire particles.
extern const ExplosionBurst ENEMY_EXPLOSION;
// The player's ship: a blue burst followed by a larger fire burst.
extern const ExplosionBurst PLAYER_BLUE_BURST;
extern const ExplosionBurst PLAYER_FIRE_BURST;

// Throws `burst` around `position` for an actor of `radius` into `slice` of `system`.
void emitExplosion(ParticleSystem& system, ParticleSlice* slice, const ExplosionBurst& burst,
                   const orvel::vec2& position, float radius);
// The same into g_game's explosion slice. The caller puts the slice back into the world, which
// it leaves whenever it empties.
void emitExplosion(const ExplosionBurst& burst, const orvel::vec2& position, float radius);

// Each takes a world position and a radius and, for now, does nothing.
void createSmallExplosion(const orvel::vec2& position, float radius);
void createMediumExplosion(const orvel::vec2& position, float radius);
void createBigExplosion(const orvel::vec2& position, float radius);
void createHugeExplosion(const orvel::vec2& position, float radius);

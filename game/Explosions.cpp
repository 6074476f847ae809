#include "game/Explosions.h"

#include "engine/Random.h"
#include "game/Game.h"
#include "game/Main.h"
#include "scene/ParticleSystem.h"

using orvel::vec2;
using orvel::vec4;

namespace {

const vec4 FIRE_MIN(0.6f, 0.2f, 0.05f, 1.0f);
const vec4 FIRE_MAX(0.9f, 0.3f, 0.1f, 1.0f);
const vec4 BLUE_MIN(0.1f, 0.1f, 0.7f, 0.87f);
const vec4 BLUE_MAX(0.2f, 0.1f, 0.9f, 1.0f);

// What every explosion shares: sizes from 26..40 down to 0..8, no speed floor, a full circle.
// Each burst fills in its count, lives, scatter, reach and colours.
const ParticleBurst SHARED = {0, 0, 0, 0.0f, 26.0f, 40.0f, 0.0f, 8.0f, 0.0f, 0.0f, 360.0f, vec4(), vec4()};
// The reach of a burst, in radii of the exploding actor.
const float REACH_MIN = 9.0f;
const float REACH_MAX = 12.0f;

// The four sizes share one empty body until explosions move out of the actors' destroy().
void createExplosion(const vec2&, float) {}

} // namespace

const ExplosionBurst ENEMY_EXPLOSION = {192, 1000, 1200, 500, 600, 1.0f, FIRE_MIN, FIRE_MAX};
const ExplosionBurst PLAYER_BLUE_BURST = {256, 2899, 3125, 1233, 1655, 1.43f, BLUE_MIN, BLUE_MAX};
const ExplosionBurst PLAYER_FIRE_BURST = {512, 5622, 6234, 500, 600, 1.22f, FIRE_MIN, FIRE_MAX};

void emitExplosion(ParticleSystem& system, ParticleSlice* slice, const ExplosionBurst& burst,
                   const vec2& position, float radius) {
    const float reach = g_rand.randf(REACH_MIN * radius, REACH_MAX * radius);
    const int longest = g_rand.randi(burst.longestLifeMin, burst.longestLifeMax);
    const int shortest = g_rand.randi(burst.shortestLifeMin, burst.shortestLifeMax);
    ParticleBurst particles = SHARED;
    particles.count = burst.count;
    particles.lifeMin = (unsigned)shortest;
    particles.lifeMax = (unsigned)longest;
    particles.radius = radius * burst.radiusFactor;
    particles.speedMax = reach;
    particles.colorA = burst.colorA;
    particles.colorB = burst.colorB;
    system.emit(slice, particles, position, vec2(0.0f, 0.0f));
}

void emitExplosion(const ExplosionBurst& burst, const vec2& position, float radius) {
    emitExplosion(*g_game->explosionParticles, g_game->explosionSlice, burst, position, radius);
}

void createSmallExplosion(const vec2& position, float radius) { createExplosion(position, radius); }
void createMediumExplosion(const vec2& position, float radius) { createExplosion(position, radius); }
void createBigExplosion(const vec2& position, float radius) { createExplosion(position, radius); }
void createHugeExplosion(const vec2& position, float radius) { createExplosion(position, radius); }

#include "game/ProjectileRing.h"

#include <cstring>

#include "engine/GL.h"
#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "game/Actor.h"
#include "game/Game.h"
#include "game/Gun.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/ParticleSlice.h"
#include "scene/QuadBatch.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

using orvel::mat4;
using orvel::Orvel;
using orvel::Stack;
using orvel::vec2;
using orvel::vec4;

namespace {

const float SHOT_SPEED = 750.0f;
const int SHOT_LIFE = 1500;
const unsigned OVERDRAW = 3;
// Matrices the draw loop walks: room for the four view rectangles of a camera near a corner.
const unsigned MATRIX_SLOTS = 8;

// Sparks of a hit: 52 particles for 300 to 450 ms that shrink from 10..16 to 4..6 and fly 5 to
// 85 units back along the shot's path within 60 degrees. Each gun gives the colours.
const ParticleBurst SPARKS = {52, 300, 450, 1.0f, 10.0f, 16.0f, 4.0f, 6.0f, 5.0f, 85.0f, 60.0f, vec4(), vec4()};

// A zero-filled block of n + 1 slots; the last one is spare.
ProjectileRing::Shot* newShots(unsigned n) {
    return new ProjectileRing::Shot[n + 1]();
}

} // namespace

ProjectileRing::ProjectileRing(unsigned initialShots, const Color4ub& color, float shotRadius,
                               const vec4& sparkMin, const vec4& sparkMax)
    : shots(newShots(initialShots)), shotCapacity(initialShots), slices(initialShots),
      texture(Resources::plasmabullet_tex), color(color), shotCursor(0), shotRadius(shotRadius),
      shotSpeed(SHOT_SPEED), shotLife(SHOT_LIFE), overdraw(OVERDRAW), sparks(SPARKS), hitSound(SFX_NONE) {
    sparks.colorA = sparkMin;
    sparks.colorB = sparkMax;
    for (unsigned i = 0; i < shotCapacity; ++i) slices.push(g_game->particles->createSlice(true, false));
}

ProjectileRing::~ProjectileRing() {
    for (unsigned i = 0; i < slices.count; ++i)
        delete slices.data[i];
    delete[] shots;
}

void ProjectileRing::fire(const vec2& muzzle, const vec2& dir) {
    const uint32_t now = Orvel::currentTime;
    // Full ring: the shot is never refused; the ring doubles and the search goes on there.
    const unsigned begin = shotCursor;
    while (shots[shotCursor].finish > now) {
        shotCursor = (shotCursor + 1) % shotCapacity;
        if (shotCursor == begin) {
            grow();
            shotCursor = (begin + 1) % shotCapacity;
            while (shots[shotCursor].finish > now)
                shotCursor = (shotCursor + 1) % shotCapacity;
            break;
        }
    }
    Shot& shot = shots[shotCursor];
    vec2 velocity = dir;
    velocity.normalize();
    shot.velocity = velocity * shotSpeed;
    shot.position = muzzle;
    shot.start = now;
    shot.finish = now + (uint32_t)shotLife;
}

void ProjectileRing::grow() {
    const unsigned n = shotCapacity;
    for (unsigned i = 0; i < n; ++i)
        slices.push(g_game->particles->createSlice(true, false));
    Shot* grown = newShots(2 * n);
    std::memcpy(grown, shots, n * sizeof(Shot));
    delete[] shots;
    shots = grown;
    shotCapacity = 2 * n;
}

void ProjectileRing::update(Gun& gun) {
    const uint32_t now = Orvel::currentTime;
    for (unsigned i = 0; i < shotCapacity; ++i) {
        Shot& shot = shots[i];
        if (!(now < shot.finish)) continue;
        const vec2 step = shot.velocity * Orvel::sync;
        const hit_struct h = gun.findHit(shot.position, shot.position + step, shotRadius);
        if (h.actor) {
            shot.start = shot.finish = 0;
            // A false return means the target is gone: no sparks on a deleted node.
            if (gun.damageTarget(h.actor, g_rand.randf(gun.damageMin, gun.damageMax))) {
                slices.data[i]->insertAfter(h.actor->drawable);
                g_game->particles->emit(slices.data[i], sparks, h.point, h.point - shot.position);
                g_sound.playAt(hitSound, h.point);
            }
        }
        shot.position += step;
    }
}

void ProjectileRing::draw(SceneState& state) {
    // Both guns' batches: filled, drawn and emptied within one call, never freed.
    static QuadBatch batch(64);
    static Stack<mat4> mstack(MATRIX_SLOTS);
    batch.clear();
    const uint32_t now = Orvel::currentTime;
    for (unsigned i = 0; i < shotCapacity; ++i) {
        const Shot& shot = shots[i];
        if (now < shot.finish) batch.pushSquare(shot.position.x, shot.position.y, shotRadius, color);
    }
    if (batch.isEmpty()) return;

    // One matrix per view rectangle, so shots show in every wrapped copy of the world.
    mstack.clear();
    for (unsigned i = 0; i < state.viewRects->count; ++i) {
        const ViewRect& v = state.viewRects->data[i];
        mat4 m = state.transform2D;
        m.translate(orvel::vec3(v.offsetX, v.offsetY, 0.0f));
        mstack.push(m);
    }
    // The loop below runs to the capacity, not the count, and past the count loads the spare
    // matrix, which is kept zero so those extra draws cover no pixel.
    for (float& e : mstack.data[mstack.capacity].m)
        e = 0.0f;

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    Shaders::useTextureFixed();
    QuadBatch::bindTexture(texture);
    batch.bindArrays();
    glMatrixMode(GL_MODELVIEW);
    for (unsigned i = 0; i < mstack.capacity; ++i) {
        glLoadMatrixf(mstack[i].m);
        batch.drawQuads(overdraw);
    }
}

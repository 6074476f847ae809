#pragma once
// The projectile ring shared by the player's and the enemies' plasma guns: firing into a free
// slot, growing the ring, moving and resolving shots, and drawing them in one batch per view.
// Each gun keeps its own fields, constants and draw buffers; these templates hold the one body.

#include <cstdint>
#include <cstring>

#include "engine/GL.h"
#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/ShaderProgram.h"
#include "engine/Stack.h"
#include "engine/Texture.h"
#include "game/Game.h"
#include "game/Main.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

namespace plasma_shots {

// A zero-filled block of n + 1 slots; the last one is spare.
template <typename Shot>
Shot* newShots(unsigned n) {
    return new Shot[n + 1]();
}

// Doubles the ring: shotCapacity more slices, a zero-filled block holding the old slots.
template <typename Gun>
void grow(Gun& gun) {
    const unsigned n = gun.shotCapacity;
    for (unsigned i = 0; i < n; ++i) gun.slices.push(g_game->particles->createSlice(true, false));
    auto* grown = newShots<typename Gun::Shot>(2 * n);
    std::memcpy(grown, gun.shots, n * sizeof(typename Gun::Shot));
    delete[] gun.shots;
    gun.shots = grown;
    gun.shotCapacity = 2 * n;
}

// Puts a shot allowed by the rate gate into a free slot from the gun's position along `dir`.
template <typename Gun>
float fire(Gun& gun, const orvel::vec2& dir, float allowed) {
    if (allowed == 0.0f) return allowed;
    const uint32_t now = orvel::Orvel::currentTime;
    // Full ring: the shot is never refused; the ring doubles and the search goes on there.
    const unsigned begin = gun.shotCursor;
    while (gun.shots[gun.shotCursor].finish > now) {
        gun.shotCursor = (gun.shotCursor + 1) % gun.shotCapacity;
        if (gun.shotCursor == begin) {
            gun.growArray();
            gun.shotCursor = (begin + 1) % gun.shotCapacity;
            while (gun.shots[gun.shotCursor].finish > now) gun.shotCursor = (gun.shotCursor + 1) % gun.shotCapacity;
            break;
        }
    }
    auto& shot = gun.shots[gun.shotCursor];
    orvel::vec2 velocity = dir;
    velocity.normalize();
    shot.velocity = velocity * gun.shotSpeed;
    shot.position = orvel::vec2(gun.position.x, gun.position.y);
    shot.start = now;
    shot.finish = now + (uint32_t)gun.shotLife;
    return allowed;
}

// Moves every live shot; a shot that hits ends, damages its `Target` and sparks in
// [sparkMin, sparkMax] on the slot's slice, placed just after the target's node.
template <typename Target, typename Gun>
void update(Gun& gun, const orvel::vec4& sparkMin, const orvel::vec4& sparkMax) {
    const uint32_t now = orvel::Orvel::currentTime;
    for (unsigned i = 0; i < gun.shotCapacity; ++i) {
        auto& shot = gun.shots[i];
        if (!(now < shot.finish)) continue;
        const orvel::vec2 step = shot.velocity * orvel::Orvel::sync;
        const hit_struct h = gun.findHit(shot.position, shot.position + step, gun.shotRadius);
        if (h.actor) {
            shot.start = shot.finish = 0;
            Target* target = static_cast<Target*>(h.actor);
            // A false return means the target is gone: no sparks on a deleted node.
            if (target->damage(g_rand.randf(gun.damageMin, gun.damageMax))) {
                gun.slices.data[i]->insertAfter(target->drawable);
                g_game->particles->emit(gun.slices.data[i], 52, 300, 450, h.point, 1.0f, 10.0f, 16.0f, 4.0f, 6.0f,
                                        h.point - shot.position, 5.0f, 85.0f, 60.0f, sparkMin, sparkMax);
            }
        }
        shot.position += step;
    }
}

// One square per live shot, once per view rectangle, additively, `overdraw` times per matrix.
// `vertices` and `mstack` are the gun's own per-frame buffers, cleared here and never freed.
template <typename Gun>
void draw(Gun& gun, SceneState& state, orvel::Stack<typename Gun::Vertex>& vertices,
          orvel::Stack<orvel::mat4>& mstack) {
    using Vertex = typename Gun::Vertex;
    vertices.clear();
    const uint32_t now = orvel::Orvel::currentTime;
    const float r = gun.shotRadius;
    const Color4ub color = gun.color;
    for (unsigned i = 0; i < gun.shotCapacity; ++i) {
        const auto& shot = gun.shots[i];
        if (!(now < shot.finish)) continue;
        const float x = shot.position.x;
        const float y = shot.position.y;
        vertices.push(Vertex{x - r, y - r, 0.0f, 0.0f, color.r, color.g, color.b, color.a});
        vertices.push(Vertex{x + r, y - r, 1.0f, 0.0f, color.r, color.g, color.b, color.a});
        vertices.push(Vertex{x + r, y + r, 1.0f, 1.0f, color.r, color.g, color.b, color.a});
        vertices.push(Vertex{x - r, y + r, 0.0f, 1.0f, color.r, color.g, color.b, color.a});
    }
    if (vertices.count == 0) return;

    // One matrix per view rectangle, so shots show in every wrapped copy of the world.
    mstack.clear();
    for (unsigned i = 0; i < state.viewRects->count; ++i) {
        const ViewRect& v = state.viewRects->data[i];
        orvel::mat4 m = state.transform2D;
        m.translate(orvel::vec3(v.offsetX, v.offsetY, 0.0f));
        mstack.push(m);
    }
    // The loop below runs to the capacity, not the count; the spare matrix is kept zero so
    // those extra draws cover no pixel.
    for (float& e : mstack.data[mstack.capacity].m) e = 0.0f;

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    if (Shaders::texture_shader_fixed) {
        Shaders::texture_shader_fixed->bind();
        Shaders::texture_shader_fixed->setUniform("texture", 0);
    }
    if (gun.texture) {
        gun.texture->bind(GL_TEXTURE0);
    } else {
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    const GLsizei stride = sizeof(Vertex);
    glVertexPointer(2, GL_FLOAT, stride, &vertices.data->x);
    glTexCoordPointer(2, GL_FLOAT, stride, &vertices.data->u);
    glColorPointer(4, GL_UNSIGNED_BYTE, stride, &vertices.data->r);
    glMatrixMode(GL_MODELVIEW);
    for (unsigned i = 0; i < mstack.capacity; ++i) {
        glLoadMatrixf(mstack.data[i].m);
        for (unsigned k = 0; k < gun.overdraw; ++k) glDrawArrays(GL_QUADS, 0, (GLsizei)vertices.count);
    }
}

} // namespace plasma_shots

#include "game/EnemyPlasma.h"

#include <cstring>

#include "engine/GL.h"
#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/ShaderProgram.h"
#include "engine/Texture.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

using orvel::Orvel;
using orvel::Stack;
using orvel::mat4;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

namespace {

// Colour range of the sparks a hit throws.
const vec4 SPARK_MIN(0.6f, 0.2f, 0.05f, 1.0f);
const vec4 SPARK_MAX(0.9f, 0.3f, 0.1f, 1.0f);

// A zero-filled block of n + 1 slots; the last one is spare.
EnemyPlasma::Shot* newShots(unsigned n) { return new EnemyPlasma::Shot[n + 1](); }

} // namespace

EnemyPlasma::EnemyPlasma()
    : shots(newShots(INITIAL_SHOTS)), shotCapacity(INITIAL_SHOTS), slices(INITIAL_SHOTS),
      texture(Resources::plasmabullet_tex), color{25, 255, 50, 255}, shotCursor(0),
      shotRadius(12.0f), shotSpeed(750.0f), shotLife(1500), overdraw(3) {
    damageMin = 2.0f;
    damageMax = 7.0f;
    rate = 0.7f;
    energyCost = 1.0f;
    setDrawMode(BlendAdd);
    for (unsigned i = 0; i < shotCapacity; ++i) slices.push(g_game->particles->createSlice(true, false));
}

EnemyPlasma::~EnemyPlasma() {
    for (unsigned i = 0; i < slices.count; ++i) delete slices.data[i];
    delete[] shots;
}

float EnemyPlasma::shoot(const vec2& dir) {
    const float allowed = EnemyWeapon::shoot(dir);
    if (allowed == 0.0f) return allowed;
    const uint32_t now = Orvel::currentTime;
    // Full ring: the shot is never refused; the ring doubles and the search goes on there.
    const unsigned begin = shotCursor;
    while (shots[shotCursor].finish > now) {
        shotCursor = (shotCursor + 1) % shotCapacity;
        if (shotCursor == begin) {
            growArray();
            shotCursor = (begin + 1) % shotCapacity;
            while (shots[shotCursor].finish > now) shotCursor = (shotCursor + 1) % shotCapacity;
            break;
        }
    }
    Shot& shot = shots[shotCursor];
    vec2 velocity = dir;
    velocity.normalize();
    shot.velocity = velocity * shotSpeed;
    shot.position = vec2(position.x, position.y);
    shot.start = now;
    shot.finish = now + (uint32_t)shotLife;
    return allowed;
}

void EnemyPlasma::growArray() {
    const unsigned n = shotCapacity;
    for (unsigned i = 0; i < n; ++i) slices.push(g_game->particles->createSlice(true, false));
    Shot* grown = newShots(2 * n);
    std::memcpy(grown, shots, n * sizeof(Shot));
    delete[] shots;
    shots = grown;
    shotCapacity = 2 * n;
}

void EnemyPlasma::update() {
    const uint32_t now = Orvel::currentTime;
    for (unsigned i = 0; i < shotCapacity; ++i) {
        Shot& shot = shots[i];
        if (!(now < shot.finish)) continue;
        const vec2 step = shot.velocity * Orvel::sync;
        const hit_struct h = findHit(shot.position, shot.position + step, shotRadius);
        if (h.actor) {
            shot.start = shot.finish = 0;
            Friend* target = static_cast<Friend*>(h.actor);
            // A false return means the friend is down: no sparks on a deleted node.
            if (target->damage(g_rand.randf(damageMin, damageMax))) {
                slices.data[i]->insertAfter(target->drawable);
                g_game->particles->emit(slices.data[i], 52, 300, 450, h.point, 1.0f, 10.0f, 16.0f, 4.0f,
                                        6.0f, h.point - shot.position, 5.0f, 85.0f, 60.0f, SPARK_MIN, SPARK_MAX);
            }
        }
        shot.position += step;
    }
}

void EnemyPlasma::draw(SceneState& state) {
    static Stack<Vertex> vertices(256);
    static Stack<mat4> mstack(8);
    vertices.clear();
    const uint32_t now = Orvel::currentTime;
    const float r = shotRadius;
    for (unsigned i = 0; i < shotCapacity; ++i) {
        const Shot& shot = shots[i];
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
        mat4 m = state.transform2D;
        m.translate(vec3(v.offsetX, v.offsetY, 0.0f));
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
    if (texture) {
        texture->bind(GL_TEXTURE0);
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
        for (unsigned k = 0; k < overdraw; ++k) glDrawArrays(GL_QUADS, 0, (GLsizei)vertices.count);
    }
}

#include "game/Laser.h"

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/ShaderProgram.h"
#include "engine/Texture.h"
#include "game/Enemy.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

using orvel::Orvel;
using orvel::Stack;
using orvel::Texture;
using orvel::vec2;
using orvel::vec4;

namespace {

// Half side of a glow square per unit of beam width.
const float GLOW_SCALE = 20.0f;

// Pushes a square of half side `half` centred on `c`, the whole image, in colour `k`.
void pushSquare(Stack<Laser::Vertex>& v, const vec2& c, float half, const Color4ub& k) {
    v.push(Laser::Vertex{c.x - half, c.y - half, 0.0f, 0.0f, k.r, k.g, k.b, k.a});
    v.push(Laser::Vertex{c.x + half, c.y - half, 1.0f, 0.0f, k.r, k.g, k.b, k.a});
    v.push(Laser::Vertex{c.x + half, c.y + half, 1.0f, 1.0f, k.r, k.g, k.b, k.a});
    v.push(Laser::Vertex{c.x - half, c.y + half, 0.0f, 1.0f, k.r, k.g, k.b, k.a});
}

// Draws the batch `times` times with `tex` and empties it.
void flush(Stack<Laser::Vertex>& v, Texture* tex, unsigned times) {
    if (v.count > 0) {
        if (tex) {
            tex->bind(GL_TEXTURE0);
        } else {
            glActiveTexture(GL_TEXTURE0);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        const GLsizei stride = sizeof(Laser::Vertex);
        glVertexPointer(2, GL_FLOAT, stride, &v.data->x);
        glTexCoordPointer(2, GL_FLOAT, stride, &v.data->u);
        glColorPointer(4, GL_UNSIGNED_BYTE, stride, &v.data->r);
        for (unsigned k = 0; k < times; ++k) glDrawArrays(GL_QUADS, 0, (GLsizei)v.count);
    }
    v.clear();
}

} // namespace

Laser::Laser()
    : glowTexture(Resources::proc_particle1_tex), impactTexture(Resources::proc_particle1_tex),
      beamTexture(Resources::laser_tex), beams(new Beam[BEAMS + 1]()), emitters(BEAMS), slices(BEAMS),
      nextBeam(0), color{76, 76, 255, 224}, overdraw(4), beamWidth(7.0f), beamLife(650.0f) {
    damageMin = 65.0f;
    damageMax = 85.0f;
    rate = 4.0f;
    energyCost = 8.0f;
    setDrawMode(BlendAdd);
    for (unsigned i = 0; i < BEAMS; ++i) {
        ParticleSlice* slice = g_game->particles->createSlice(true, false);
        ParticleEmitter* e = g_game->particles->createEmitter(slice);
        e->colorA = vec4(0.6f, 0.2f, 0.05f, 0.0f);
        e->colorB = vec4(0.9f, 0.3f, 0.1f, 0.0f);
        e->lifeMin = 300.0f;
        e->lifeMax = 450.0f;
        e->speedMin = 5.0f;
        e->speedMax = 90.0f;
        e->sizeEndMin = 5.0f;
        e->sizeEndMax = 8.0f;
        e->spread = 40.0f;
        e->radius = 4.0f;
        e->rate = 0;
        slices.push(slice);
        emitters.push(e);
    }
}

Laser::~Laser() {
    for (unsigned i = 0; i < emitters.count; ++i) {
        if (g_game && g_game->particles)
            g_game->particles->destroyEmitter(emitters.data[i]);
        else
            delete emitters.data[i];
    }
    for (unsigned i = 0; i < slices.count; ++i) delete slices.data[i];
    delete[] beams;
}

float Laser::shoot(const vec2& dir) {
    const float allowed = Weapon::shoot(dir);
    if (allowed == 0.0f) return allowed;
    // The ring takes the next beam whatever its state: a 33rd live beam replaces the oldest.
    Beam& b = beams[nextBeam];
    nextBeam = (nextBeam + 1) % BEAMS;
    const float now = (float)Orvel::currentTime;
    b.color = color;
    b.width = beamWidth;
    b.start = now;
    b.finish = now + beamLife;
    return allowed;
}

void Laser::update() {
    const vec2 muzzle(position.x, position.y);
    const vec2 mouse((float)Orvel::mouseX(), (float)Orvel::mouseY());
    const vec2 m = g_world ? g_world->screenToWorld(mouse) : mouse;
    vec2 aim = m - muzzle;
    aim.normalize();
    const vec2 aimEnd = muzzle + aim * (float)BEAM_REACH;
    const float now = (float)Orvel::currentTime;

    for (unsigned i = 0; i < BEAMS; ++i) {
        Beam& b = beams[i];
        ParticleEmitter* e = emitters.data[i];
        if (b.finish <= now) {
            b.end = aimEnd;
            e->rate = 0;
            continue;
        }
        const hit_struct h = findHit(muzzle, aimEnd, b.width);
        b.end = aimEnd;
        if (!h.actor) {
            e->rate = 0;
        } else {
            b.end = h.point;
            Enemy* target = static_cast<Enemy*>(h.actor);
            // Damage is per second of contact. A false return means the enemy is gone.
            if (target->damage(g_rand.randf(damageMin, damageMax) * Orvel::sync)) {
                slices.data[i]->insertAfter(target->drawable);
                e->rate = 300;
                e->position = h.point;
                // Sparks fly back towards the ship and shrink as the beam thins.
                e->direction = muzzle - h.point;
                e->sizeStartMin = b.width * 5.0f;
                e->sizeStartMax = b.width * 6.0f;
            }
        }
        // Linear fade of width and alpha over the beam's life.
        const float f = 1.0f - (now - b.start) / (b.finish - b.start);
        b.width = beamWidth * f;
        b.color.a = (uint8_t)(int)((float)color.a * f);
    }
}

void Laser::draw(SceneState&) {
    static Stack<Vertex> vertices(BEAMS * 4);
    vertices.clear();
    const float now = (float)Orvel::currentTime;
    const vec2 muzzle(position.x, position.y);
    // Additive repeats make the beams brighter.
    const unsigned times = overdraw + 1;

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    if (Shaders::texture_shader_fixed) {
        Shaders::texture_shader_fixed->bind();
        Shaders::texture_shader_fixed->setUniform("texture", 0);
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);

    // Muzzle glows.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (b.finish > now) pushSquare(vertices, muzzle, GLOW_SCALE * b.width, b.color);
    }
    flush(vertices, glowTexture, times);

    // Beam bodies: the muzzle-to-end segment widened by `width` to each side.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (!(b.finish > now)) continue;
        vec2 across(-(b.end.y - muzzle.y), b.end.x - muzzle.x);
        across.normalize();
        across *= b.width;
        const Color4ub& k = b.color;
        vertices.push(Vertex{muzzle.x + across.x, muzzle.y + across.y, 0.0f, 0.0f, k.r, k.g, k.b, k.a});
        vertices.push(Vertex{b.end.x + across.x, b.end.y + across.y, 1.0f, 0.0f, k.r, k.g, k.b, k.a});
        vertices.push(Vertex{b.end.x - across.x, b.end.y - across.y, 1.0f, 1.0f, k.r, k.g, k.b, k.a});
        vertices.push(Vertex{muzzle.x - across.x, muzzle.y - across.y, 0.0f, 1.0f, k.r, k.g, k.b, k.a});
    }
    flush(vertices, beamTexture, times);

    // Impact glows at the far ends.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (b.finish > now) pushSquare(vertices, b.end, GLOW_SCALE * b.width, b.color);
    }
    flush(vertices, impactTexture, times);
}

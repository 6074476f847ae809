#include "game/Laser.h"

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "game/Actor.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/SoundEffects.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

using orvel::Orvel;
using orvel::vec2;
using orvel::vec4;

namespace {

// Half side of a glow square per unit of beam width.
const float GLOW_SCALE = 20.0f;

// The sparks a burning beam throws back towards the ship; a hit sets their start size from the
// beam's width, so the emitter's default stands until then.
const ParticleBurst SPARKS = {0, 300, 450, 4.0f, 16.0f, 16.0f, 5.0f, 8.0f, 5.0f, 90.0f, 40.0f,
                             vec4(0.6f, 0.2f, 0.05f, 0.0f), vec4(0.9f, 0.3f, 0.1f, 0.0f)};

// One channel of the beam colour: a fraction of full scale clamped to a byte and truncated.
uint8_t channel(float scaled) {
    return (uint8_t)(int)orvel::Math::clampf(scaled, 0.0f, 255.0f);
}

bool anyBeamAlive(const Laser::Beam* beams, float now) {
    for (unsigned i = 0; i < Laser::BEAMS; ++i) {
        if (beams[i].finish > now) return true;
    }
    return false;
}

} // namespace

const Color4ub Laser::BEAM_COLOR = {channel(0.3f * 255.0f), channel(0.3f * 255.0f), channel(255.0f),
                                    channel(0.88f * 255.0f)};

Laser::Laser()
    : glowTexture(Resources::proc_particle1_tex), impactTexture(Resources::proc_particle1_tex),
      beamTexture(Resources::laser_tex), beams(new Beam[BEAMS + 1]()), emitters(BEAMS), slices(BEAMS),
      nextBeam(0), color(BEAM_COLOR), overdraw(4), beamWidth(7.0f), beamLife(650.0f) {
    damageMin = 65.0f;
    damageMax = 85.0f;
    rate = 4.0f;
    energyCost = 8.0f;
    setDrawMode(BlendAdd);
    for (unsigned i = 0; i < BEAMS; ++i) {
        ParticleSlice* slice = g_game->particles->createSlice(true, false);
        ParticleEmitter* e = g_game->particles->createEmitter(slice);
        e->setParticles(SPARKS);
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
    const float now = (float)Orvel::currentTime;
    // The ignition sounds when a beam starts with none alive; the hum carries a held beam.
    if (!anyBeamAlive(beams, now)) g_sound.play(SFX_LASER_START);
    // The ring takes the next beam whatever its state: a 33rd live beam replaces the oldest.
    Beam& b = beams[nextBeam];
    nextBeam = (nextBeam + 1) % BEAMS;
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
            // Damage is per second of contact. A false return means the enemy is gone.
            if (damageTarget(h.actor, g_rand.randf(damageMin, damageMax) * Orvel::sync)) {
                // A beam that was not burning starts to: the burn sounds where it touches.
                if (e->rate == 0) g_sound.playAt(SFX_LASER_BURN, h.point);
                slices.data[i]->insertAfter(h.actor->drawable);
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
    g_sound.hum(anyBeamAlive(beams, now));
}

void Laser::draw(SceneState&) {
    static QuadBatch batch(BEAMS);
    batch.clear();
    const float now = (float)Orvel::currentTime;
    const vec2 muzzle(position.x, position.y);
    // Additive repeats make the beams brighter.
    const unsigned times = overdraw + 1;

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    Shaders::useTextureFixed();

    // Muzzle glows.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (b.finish > now) batch.pushSquare(muzzle.x, muzzle.y, GLOW_SCALE * b.width, b.color);
    }
    batch.flush(glowTexture, times);

    // Beam bodies: the muzzle-to-end segment widened by `width` to each side.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (!(b.finish > now)) continue;
        vec2 across(-(b.end.y - muzzle.y), b.end.x - muzzle.x);
        across.normalize();
        across *= b.width;
        batch.pushQuad(muzzle + across, b.end + across, b.end - across, muzzle - across, b.color);
    }
    batch.flush(beamTexture, times);

    // Impact glows at the far ends.
    for (unsigned i = 0; i < BEAMS; ++i) {
        const Beam& b = beams[i];
        if (b.finish > now) batch.pushSquare(b.end.x, b.end.y, GLOW_SCALE * b.width, b.color);
    }
    batch.flush(impactTexture, times);
}

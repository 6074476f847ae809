#pragma once
// The player's laser: short-lived beams that follow the mouse and burn what they touch.

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "game/Weapon.h"
#include "scene/QuadBatch.h"

class ParticleEmitter;
class ParticleSlice;
namespace orvel {
class Texture;
}

class Laser : public Weapon {
public:
    // Beams in the ring; firing takes the next one whatever its state.
    static const unsigned BEAMS = 32;
    // World units from the muzzle to the far end of an unblocked beam.
    static const unsigned BEAM_REACH = 1280;

    // One beam; live while finish > now.
    struct Beam {
        orvel::vec2 end; // current far end, world units
        Color4ub color;  // faded with the beam
        float width;     // half width across the beam, world units
        float start;     // ms of Orvel::currentTime
        float finish;    // ms
    };

    // One corner of a quad, 20 bytes interleaved.
    using Vertex = QuadBatch::Vertex;

    // A fresh beam's colour: 0.3, 0.3, 1 and 0.88 of full scale, each clamped to a byte and
    // truncated: (76, 76, 255, 224).
    static const Color4ub BEAM_COLOR;

    // 32 idle beams, each with a spark slice and emitter on g_game's particle system.
    Laser();
    // Frees the beams, the emitters and the slices.
    ~Laser() override;
    Laser(const Laser&) = delete;
    Laser& operator=(const Laser&) = delete;

    // The rate gate, then starts the beam under the cursor. The direction is not used: beams
    // aim at the mouse while they live.
    float shoot(const orvel::vec2& dir) override;
    // Aims every live beam at the mouse, burns the first enemy on it per second of contact,
    // and fades the beams.
    void update() override;
    // Muzzle glows, beam bodies and impact glows, each batch overdraw + 1 times, additively.
    void draw(SceneState& state) override;

    orvel::Texture* glowTexture;   // proc_particle1; not owned
    orvel::Texture* impactTexture; // proc_particle1; not owned
    orvel::Texture* beamTexture;   // laser; not owned
    Beam* beams;                   // owned; BEAMS + 1 records, zero-filled
    orvel::Stack<ParticleEmitter*> emitters; // one per beam; owned
    orvel::Stack<ParticleSlice*> slices;     // one per beam; owned
    unsigned nextBeam;             // ring cursor
    Color4ub color;                // of a fresh beam
    unsigned overdraw;             // extra draws of each batch
    float beamWidth;               // width of a fresh beam
    float beamLife;                // ms
};

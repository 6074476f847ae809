#pragma once
// The enemies' plasma gun: projectiles that spark on the friend they hit.

#include <cstdint>

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "game/EnemyWeapon.h"

class ParticleSlice;
namespace orvel {
class Texture;
}

class EnemyPlasma : public EnemyWeapon {
public:
    // One projectile slot; free once finish <= now.
    struct Shot {
        orvel::vec2 position; // world units
        orvel::vec2 velocity; // units per second
        uint32_t start;       // ms of Orvel::currentTime
        uint32_t finish;      // ms
    };

    // One corner of a projectile quad, 20 bytes interleaved.
    struct Vertex {
        float x, y;
        float u, v;
        uint8_t r, g, b, a;
    };

    // Slots and spark slices the ring starts with.
    static const unsigned INITIAL_SHOTS = 16;

    // 16 slots and slices on g_game's particle system, which must exist.
    EnemyPlasma();
    // Frees the slots and the slices.
    ~EnemyPlasma() override;
    EnemyPlasma(const EnemyPlasma&) = delete;
    EnemyPlasma& operator=(const EnemyPlasma&) = delete;

    // The rate gate, then a free slot from the weapon's position along `dir`. A full ring
    // doubles (growArray) instead of refusing the shot.
    float shoot(const orvel::vec2& dir) override;
    // Moves every live shot; a shot that hits a friend ends, damages it and sparks.
    void update() override;
    // One square per live shot, once per view rectangle, additively.
    void draw(SceneState& state) override;
    // Doubles the ring: shotCapacity more slices, a zero-filled block holding the old slots.
    void growArray();

    Shot* shots;                           // owned; shotCapacity + 1 records
    unsigned shotCapacity;
    orvel::Stack<ParticleSlice*> slices;   // one per slot; owned
    orvel::Texture* texture;               // plasmabullet; not owned
    Color4ub color;                        // of every projectile
    unsigned shotCursor;                   // ring cursor; stays on the slot last used
    float shotRadius;                      // passed to findHit; half side of the drawn square
    float shotSpeed;                       // units per second
    int shotLife;                          // ms
    unsigned overdraw;                     // times the batch is drawn per matrix
};

static_assert(sizeof(EnemyPlasma::Vertex) == 20, "plasma vertices are 20 bytes");

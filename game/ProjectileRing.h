#pragma once
// The projectiles of a plasma gun: shots in reusable slots, a spark slice per slot, and one batch
// of squares drawn once per view rectangle.

#include <cstdint>

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "game/SoundEffects.h"
#include "scene/Drawable.h"
#include "scene/ParticleSystem.h"

class Gun;
class ParticleSlice;
struct SceneState;
namespace orvel {
class Texture;
}

// Held by the player's and the enemies' plasma guns. A slot is free once its shot's finish time
// has passed; a full ring doubles instead of refusing a shot.
class ProjectileRing {
public:
    // One projectile slot; free once finish <= now.
    struct Shot {
        orvel::vec2 position; // world units
        orvel::vec2 velocity; // units per second
        uint32_t start;       // ms of Orvel::currentTime
        uint32_t finish;      // ms
    };

    // `initialShots` zero-filled slots, each with a spark slice on g_game's particle system,
    // which must exist. Shots are squares of half side `shotRadius` in `color`; a hit throws
    // sparks coloured between sparkMin and sparkMax back along the shot's flight.
    ProjectileRing(unsigned initialShots, const Color4ub& color, float shotRadius,
                   const orvel::vec4& sparkMin, const orvel::vec4& sparkMax);
    // Frees the slots and the slices.
    ~ProjectileRing();
    ProjectileRing(const ProjectileRing&) = delete;
    ProjectileRing& operator=(const ProjectileRing&) = delete;

    // A shot from `muzzle` along `dir` in the first free slot from the cursor on.
    void fire(const orvel::vec2& muzzle, const orvel::vec2& dir);
    // Doubles the ring: shotCapacity more slices, a zero-filled block holding the old slots.
    void grow();
    // Moves every live shot; one that `gun` finds a hit for ends, deals a random damage in the
    // gun's range and, when the target lives on, sparks just above the target's node.
    void update(Gun& gun);
    // One square per live shot, once per view rectangle, additively, `overdraw` times per matrix.
    void draw(SceneState& state);

    Shot* shots; // owned; shotCapacity + 1 records
    unsigned shotCapacity;
    orvel::Stack<ParticleSlice*> slices; // one per slot; owned
    orvel::Texture* texture;             // plasmabullet; not owned
    Color4ub color;                      // of every projectile
    unsigned shotCursor;                 // ring cursor; stays on the slot last used
    float shotRadius;                    // passed to findHit; half side of the drawn square
    float shotSpeed;                     // units per second
    int shotLife;                        // ms
    unsigned overdraw;                   // times the batch is drawn per matrix
    ParticleBurst sparks;                // thrown on a hit that the target survives
    SoundEffect hitSound;                // played there too; SFX_NONE by default
};

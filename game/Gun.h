#pragma once
// What every gun has: the rate gate, the damage range and the energy a shot costs.

#include "engine/Vector.h"
#include "scene/Effect.h"

class Actor;

// One candidate or the result of a hit test.
struct hit_struct {
    Actor* actor;      // the actor hit; null for no hit
    orvel::vec2 point; // candidate: the wrapped copy of the actor's position near the segment;
                       // result: where the segment's ray enters the actor's circle
};

// A gun draws its live shots itself and keeps them itself; shots are not scene nodes. The muzzle
// is the gun's own `position`, which the owner keeps at the ship. Weapon aims at the enemies,
// EnemyWeapon at the friends; each supplies findHit.
class Gun : public Effect {
public:
    // Enabled, damage 0..0, rate 0 (never fires), energy cost 0, last shot at 0 ms.
    Gun();
    ~Gun() override;

    void draw(SceneState& state) override = 0;
    // The rate gate: energyCost when a shot is allowed now (and lastShot becomes now), else 0.
    // Rate 0 never allows a shot, rate -1 always does.
    virtual float shoot(const orvel::vec2& dir);
    // The first target the segment from -> to meets on the wrapping world; {null, (0, 0)} when
    // none. The third argument is ignored: each actor's own radius counts.
    virtual hit_struct findHit(const orvel::vec2& from, const orvel::vec2& to, float radius) = 0;
    // Once per frame; the base gun has no shots to move.
    virtual void update();
    // Deals `amount` to a target that findHit returned; false once the target is gone.
    virtual bool damageTarget(Actor* target, float amount) = 0;

    int enabled;     // 1 after construction
    float damageMin; // range of one random damage value
    float damageMax;
    float rate;       // shots per second; 0 never fires, -1 has no limit
    float energyCost; // energy one shot costs; returned by shoot when allowed
    float lastShot;   // ms of Orvel::currentTime of the last allowed shot
};

#pragma once
// Base of the player's weapons: the rate gate and the segment hit test against the enemies.

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "scene/Effect.h"

class Actor;

// One candidate or the result of a hit test.
struct hit_struct {
    Actor* actor;      // the actor hit; null for no hit
    orvel::vec2 point; // candidate: the wrapped copy of the actor's position near the segment;
                       // result: where the segment's ray enters the actor's circle
};

// The segment hit test that Weapon and EnemyWeapon share: the first actor of `targets` that
// the segment from -> to meets, each actor tested at its position and its eight copies shifted
// by the world's width and height. Defined for Stack<Enemy*> and Stack<Friend*>; each keeps
// its own scratch stacks.
template <typename T>
hit_struct findHitAmong(const orvel::Stack<T*>& targets, const orvel::vec2& from, const orvel::vec2& to);

// The rate gate of every gun: `energyCost` when a shot is allowed now (and lastShot becomes
// now, ms of Orvel::currentTime), else 0. Rate 0 never allows a shot, rate -1 always does.
float passRateGate(float rate, float& lastShot, float energyCost);

// A weapon draws its live shots itself and keeps them itself; shots are not scene nodes.
// The muzzle is the weapon's own `position`, which the owner keeps at the ship.
class Weapon : public Effect {
public:
    // Enabled, damage 0..0, rate 0 (never fires), energy cost 0, last shot at 0 ms.
    Weapon();
    ~Weapon() override;

    void draw(SceneState& state) override = 0;
    // The rate gate: energyCost when a shot is allowed now (and lastShot becomes now), else 0.
    // Rate 0 never allows a shot, rate -1 always does.
    virtual float shoot(const orvel::vec2& dir);
    // The first enemy the segment from -> to meets on the wrapping world; {null, (0, 0)} when
    // none. The third argument is ignored: each actor's own radius counts.
    virtual hit_struct findHit(const orvel::vec2& from, const orvel::vec2& to, float radius);
    // Once per frame; the base weapon has no shots to move.
    virtual void update();

    int enabled;     // 1 after construction
    float damageMin; // range of one random damage value
    float damageMax;
    float rate;      // shots per second; 0 never fires, -1 has no limit
    float energyCost; // energy one shot costs; returned by shoot when allowed
    float lastShot;  // ms of Orvel::currentTime of the last allowed shot
};

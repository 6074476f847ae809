#pragma once
// Base of the enemies' weapons: the rate gate and the segment hit test against the friends.

#include "engine/Vector.h"
#include "game/Weapon.h"
#include "scene/Effect.h"

// The same gate and hit test as Weapon, aimed at g_game's friends instead of its enemies.
class EnemyWeapon : public Effect {
public:
    // Enabled, damage 0..0, rate 0 (never fires), energy cost 0, last shot at 0 ms.
    EnemyWeapon();
    ~EnemyWeapon() override;

    void draw(SceneState& state) override = 0;
    // The rate gate: energyCost when a shot is allowed now (and lastShot becomes now), else 0.
    // Rate 0 never allows a shot, rate -1 always does.
    virtual float shoot(const orvel::vec2& dir);
    // The first friend the segment from -> to meets on the wrapping world; {null, (0, 0)}
    // when none. The third argument is ignored: each actor's own radius counts.
    virtual hit_struct findHit(const orvel::vec2& from, const orvel::vec2& to, float radius);
    // Once per frame; the base weapon has no shots to move.
    virtual void update();

    int enabled;      // 1 after construction
    float damageMin;  // range of one random damage value
    float damageMax;
    float rate;       // shots per second; 0 never fires, -1 has no limit
    float energyCost; // returned by shoot when allowed
    float lastShot;   // ms of Orvel::currentTime of the last allowed shot
};

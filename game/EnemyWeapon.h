#pragma once
// Base of the enemies' weapons: the segment hit test against the friends.

#include "engine/Vector.h"
#include "game/Gun.h"

// The same gate and hit test as Weapon, aimed at g_game's friends instead of its enemies.
class EnemyWeapon : public Gun {
public:
    // The first friend the segment from -> to meets on the wrapping world; {null, (0, 0)}
    // when none. The third argument is ignored: each actor's own radius counts.
    hit_struct findHit(const orvel::vec2& from, const orvel::vec2& to, float radius) override;
    // Friend::damage.
    bool damageTarget(Actor* target, float amount) override;
};

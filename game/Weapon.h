#pragma once
// Base of the player's weapons: the segment hit test against the enemies, shared with EnemyWeapon.

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "game/Gun.h"

class Actor;

// The segment hit test that Weapon and EnemyWeapon share: the first actor of `targets` that
// the segment from -> to meets, each actor tested at its position and its eight copies across
// the world's wrap. Defined for Stack<Enemy*> and Stack<Friend*>; each keeps its own scratch
// stacks.
template <typename T>
hit_struct findHitAmong(const orvel::Stack<T*>& targets, const orvel::vec2& from, const orvel::vec2& to);

// The player's weapons: their shots hit g_game's enemies.
class Weapon : public Gun {
public:
    // The first enemy the segment from -> to meets on the wrapping world; {null, (0, 0)} when
    // none. The third argument is ignored: each actor's own radius counts.
    hit_struct findHit(const orvel::vec2& from, const orvel::vec2& to, float radius) override;
    // Enemy::damage.
    bool damageTarget(Actor* target, float amount) override;
};

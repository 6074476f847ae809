#include "game/EnemyWeapon.h"

#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Weapon.h"

using orvel::vec2;

hit_struct EnemyWeapon::findHit(const vec2& from, const vec2& to, float) {
    if (!g_game) return hit_struct{nullptr, vec2()};
    return findHitAmong(g_game->friends, from, to);
}

bool EnemyWeapon::damageTarget(Actor* target, float amount) {
    return static_cast<Friend*>(target)->damage(amount);
}

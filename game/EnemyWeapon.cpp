#include "game/EnemyWeapon.h"

#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"

using orvel::vec2;

EnemyWeapon::EnemyWeapon()
    : enabled(1), damageMin(0.0f), damageMax(0.0f), rate(0.0f), energyCost(0.0f), lastShot(0.0f) {}

EnemyWeapon::~EnemyWeapon() {}

float EnemyWeapon::shoot(const vec2&) {
    return passRateGate(rate, lastShot, energyCost);
}

hit_struct EnemyWeapon::findHit(const vec2& from, const vec2& to, float) {
    if (!g_game) return hit_struct{nullptr, vec2()};
    return findHitAmong(g_game->friends, from, to);
}

void EnemyWeapon::update() {}

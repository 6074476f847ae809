#include "game/Friend.h"

#include "engine/Stack.h"
#include "game/Game.h"
#include "game/Main.h"

Friend::Friend()
    : spareFactor(1.0f), spareA(100.0f), spareB(100.0f), pickupRadius(75.0f), hull(100.0f), maxHull(100.0f),
      shield(0.0f), maxShield(0.0f) {}

// A deleted friend must not stay where enemies and the frame loop would still reach it.
Friend::~Friend() {
    if (!g_game) return;
    g_game->friends.remove(this);
    g_game->actors.remove(static_cast<Actor*>(this));
}

void Friend::update() {}

void Friend::powerup(Powerup*) {}

bool Friend::damage(float) { return true; }

void Friend::spawn() {}

void Friend::attack() {}

void Friend::destroy() {}

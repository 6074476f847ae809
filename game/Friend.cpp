#include "game/Friend.h"

#include "engine/Stack.h"
#include "game/Game.h"
#include "game/Main.h"

namespace {

// Takes `item` out of `list` by moving the last element into its place.
template <typename T, typename U>
void removeSwapLast(orvel::Stack<T*>& list, U* item) {
    for (unsigned i = 0; i < list.count; ++i) {
        if (list.data[i] == item) {
            list.data[i] = list.data[--list.count];
            return;
        }
    }
}

} // namespace

Friend::Friend()
    : spareFactor(1.0f), spareA(100.0f), spareB(100.0f), pickupRadius(75.0f), hull(100.0f), maxHull(100.0f),
      shield(0.0f), maxShield(0.0f) {}

// A deleted friend must not stay where enemies and the frame loop would still reach it.
Friend::~Friend() {
    if (!g_game) return;
    removeSwapLast(g_game->friends, this);
    removeSwapLast(g_game->actors, static_cast<Actor*>(this));
}

void Friend::update() {}

void Friend::powerup(Powerup*) {}

bool Friend::damage(float) { return true; }

void Friend::spawn() {}

void Friend::attack() {}

void Friend::destroy() {}

#pragma once
// The player's plasma gun: fast projectiles that spark on the enemy they hit.

#include "game/PlasmaGun.h"
#include "game/Weapon.h"

class Plasma : public PlasmaGun<Weapon> {
public:
    // Slots and spark slices the ring starts with.
    static const unsigned INITIAL_SHOTS = 64;

    // Damage 5..15, 5 shots a second for 2 energy each, violet shots of radius 16.
    Plasma();
};

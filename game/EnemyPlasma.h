#pragma once
// The enemies' plasma gun: projectiles that spark on the friend they hit.

#include "game/EnemyWeapon.h"
#include "game/PlasmaGun.h"

class EnemyPlasma : public PlasmaGun<EnemyWeapon> {
public:
    // Slots and spark slices the ring starts with.
    static const unsigned INITIAL_SHOTS = 16;

    // Damage 2..7, 0.7 shots a second for 1 energy each, green shots of radius 12.
    EnemyPlasma();
};

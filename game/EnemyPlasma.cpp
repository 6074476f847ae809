#include "game/EnemyPlasma.h"

// Green shots with fire-coloured sparks. A hit on the ship sounds through the ship itself.
EnemyPlasma::EnemyPlasma()
    : PlasmaGun(PlasmaSettings{INITIAL_SHOTS, 2.0f, 7.0f, 0.7f, 1.0f, 12.0f, Color4ub{25, 255, 50, 255},
                               orvel::vec4(0.6f, 0.2f, 0.05f, 1.0f), orvel::vec4(0.9f, 0.3f, 0.1f, 1.0f),
                               SFX_ENEMY_SHOT, SFX_NONE}) {}

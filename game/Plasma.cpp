#include "game/Plasma.h"

// Violet shots whose sparks run from violet to orange; a hit crackles.
Plasma::Plasma()
    : PlasmaGun(PlasmaSettings{INITIAL_SHOTS, 5.0f, 15.0f, 5.0f, 2.0f, 16.0f, Color4ub{128, 113, 255, 255},
                               orvel::vec4(0.5f, 0.42f, 1.0f, 0.0f), orvel::vec4(0.9f, 0.3f, 0.1f, 0.0f),
                               SFX_PLASMA_SHOT, SFX_PLASMA_SPARK}) {}

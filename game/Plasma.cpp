#include "game/Plasma.h"

using orvel::vec4;

namespace {

// Violet shots with violet-to-orange sparks.
const PlasmaSettings SETTINGS = {Plasma::INITIAL_SHOTS, 5.0f, 15.0f, 5.0f, 2.0f, 16.0f, Color4ub{128, 113, 255, 255},
                                   vec4(0.5f, 0.42f, 1.0f, 0.0f), vec4(0.9f, 0.3f, 0.1f, 0.0f)};

} // namespace

Plasma::Plasma() : PlasmaGun(SETTINGS) {}

#pragma once
// Named entry points for explosions of four sizes; actors make their explosions in destroy().

#include "engine/Vector.h"

// Each takes a world position and a radius and, for now, does nothing.
void createSmallExplosion(const orvel::vec2& position, float radius);
void createMediumExplosion(const orvel::vec2& position, float radius);
void createBigExplosion(const orvel::vec2& position, float radius);
void createHugeExplosion(const orvel::vec2& position, float radius);

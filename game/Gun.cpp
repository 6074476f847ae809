#include "game/Gun.h"

#include "engine/Orvel.h"

Gun::Gun() : enabled(1), damageMin(0.0f), damageMax(0.0f), rate(0.0f), energyCost(0.0f), lastShot(0.0f) {}

Gun::~Gun() {}

float Gun::shoot(const orvel::vec2&) {
    if (rate == 0.0f) return 0.0f;
    const float now = (float)orvel::Orvel::currentTime;
    if (rate == -1.0f || now - lastShot >= 1000.0f / rate) {
        lastShot = now;
        return energyCost;
    }
    return 0.0f;
}

void Gun::update() {}

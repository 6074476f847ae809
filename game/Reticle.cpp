#include "game/Reticle.h"

#include <cmath>

#include "engine/Orvel.h"
#include "engine/Vector.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Sprite.h"

using orvel::Orvel;
using orvel::vec2;

namespace {

const float CROSS_SIZE = 38.0f;
const float GLOW_SIZE = 40.0f;

} // namespace

Reticle::Reticle() {
    cross = new Sprite(Resources::reticle_tex, -1, -1);
    cross->size = orvel::vec3(CROSS_SIZE, CROSS_SIZE, 0);
    glow = new Sprite(Resources::reticle_glow_tex, GLOW_SIZE, GLOW_SIZE);
    glow->size = orvel::vec3(GLOW_SIZE, GLOW_SIZE, 0);
    // The cross first, so the glow draws above it.
    add(cross);
    add(glow);
    setVisible(true);
}

Reticle::~Reticle() {
    delete cross;
    delete glow;
}

void Reticle::update() {
    if (g_hud) {
        vec2 p = g_hud->screenToWorld(vec2((float)Orvel::mouseX(), (float)Orvel::mouseY()));
        position = orvel::vec3(p.x, p.y, 0);
    }
    // Pulses between 64 and 192 with a period of 2 pi / 0.005 ms, about 1.26 s.
    glow->blendColor.a = (uint8_t)(int)(std::sin(Orvel::currentTime * 0.005) * 64 + 128);
}

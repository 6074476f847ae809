#include "game/RadarDisplay.h"

#include <cmath>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Texture.h"
#include "game/Enemy.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/Resources.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "scene/QuadBatch.h"

using orvel::Math;
using orvel::Stack;
using orvel::vec2;

namespace {

// The radar art in its own pixels: hud_radar_dials and hud_radar_mask are 520 x 520, the dial's
// disc is centred at (264, 264) with radius 226. The box shows them at half size.
const float ART_SIZE = 520.0f;
const float DIAL_CENTRE = 264.0f;
const float DIAL_RADIUS = 226.0f;
const float ART_SCALE = 0.5f;
// Half the world: the whole torus fits on the dial but for its far corners.
const float DEFAULT_RANGE = 2048.0f;
const float DEFAULT_WORLD = 4096.0f;
// Art pixels across a blip: 5 screen pixels.
const float BLIP_SIZE = 10.0f;
// Red for enemies, green for powerups, both clear of the dial's blues.
const uint32_t ENEMY_COLOR = 0xff3c46ffu;   // R 255, G 70, B 60
const uint32_t POWERUP_COLOR = 0xff78ff5au; // R 90, G 255, B 120

// Byte `shift` / 8 of a packed colour (red in the low byte) scaled by factor / 255.
uint8_t scaledChannel(uint32_t color, int shift, uint8_t factor) {
    return (uint8_t)(((color >> shift) & 0xffu) * factor / 255u);
}

} // namespace

RadarDisplay::RadarDisplay()
    : blips(BLIP_CAPACITY), centre(0, 0), worldSize(DEFAULT_WORLD, DEFAULT_WORLD), range(DEFAULT_RANGE),
      dialRadius(DIAL_RADIUS), blipSize(BLIP_SIZE), enemyColor(ENEMY_COLOR), powerupColor(POWERUP_COLOR),
      followsGame(true) {
    size = orvel::vec3(ART_SIZE, ART_SIZE, 0);
    setScale(ART_SCALE);
    setVisible(true);
}

RadarDisplay::~RadarDisplay() {}

vec2 RadarDisplay::wrappedOffset(vec2 from, vec2 to, float w, float h) {
    float dx = to.x - from.x;
    float dy = to.y - from.y;
    if (w > 0.0f) dx = Math::wrapf(dx, -0.5f * w, 0.5f * w);
    if (h > 0.0f) dy = Math::wrapf(dy, -0.5f * h, 0.5f * h);
    return vec2(dx, dy);
}

void RadarDisplay::addBlip(vec2 p, BlipKind kind) {
    vec2 d = wrappedOffset(centre, p, worldSize.x, worldSize.y);
    blips.push({d.x, d.y, (uint8_t)kind});
}

void RadarDisplay::gather() {
    if (!g_game || !g_game->player) return;
    blips.clear();
    if (g_world) worldSize = vec2(g_world->worldWidth, g_world->worldHeight);
    centre = g_game->player->position;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        if (g_game->enemies.data[i]) addBlip(g_game->enemies.data[i]->position, BLIP_ENEMY);
    }
    for (unsigned i = 0; i < g_game->powerups.count; ++i) {
        if (g_game->powerups.data[i]) addBlip(g_game->powerups.data[i]->position, BLIP_POWERUP);
    }
}

vec2 RadarDisplay::dialPoint(float dx, float dy) const {
    float k = range > 0.0f ? dialRadius / range : 0.0f;
    return vec2(dx * k, dy * k);
}

void RadarDisplay::draw(SceneState& state) {
    if (followsGame) gather();
    orvel::Texture* mask = Resources::hud_radar_mask_tex;
    if (!mask || blips.isEmpty()) return;

    // Grows with the first crowded frames, then is only emptied. The client arrays point into
    // it during the single draw below.
    static QuadBatch batch(BLIP_CAPACITY);
    batch.clear();

    // Blips are squares of the mask itself, sampled where they lie on the dial: the mask's
    // alpha is what clips them to the disc, and its white colour takes the vertex colour.
    float su = mask->sScale / ART_SIZE;
    float tv = mask->tScale / ART_SIZE;
    float half = 0.5f * blipSize;
    float reach = dialRadius + blipSize;
    // Local space is the art's, centred on the node's hot spot.
    float ox = hotSpot.x - 0.5f * ART_SIZE;
    float oy = hotSpot.y - 0.5f * ART_SIZE;
    for (unsigned i = 0; i < blips.count; ++i) {
        const Blip& b = blips.data[i];
        vec2 p = dialPoint(b.dx, b.dy);
        // Past the rim the mask is empty anyway; far past it the texture's padding would wrap.
        if (p.x * p.x + p.y * p.y > reach * reach) continue;
        uint32_t c = b.kind == BLIP_POWERUP ? powerupColor : enemyColor;
        uint8_t r = scaledChannel(c, 0, state.color.r);
        uint8_t g = scaledChannel(c, 8, state.color.g);
        uint8_t bl = scaledChannel(c, 16, state.color.b);
        uint8_t a = scaledChannel(c, 24, state.color.a);
        float ax = DIAL_CENTRE + p.x - half, bx = DIAL_CENTRE + p.x + half;
        float ay = DIAL_CENTRE + p.y - half, by = DIAL_CENTRE + p.y + half;
        batch.pushRect(ox + ax, oy + ay, ox + bx, oy + by, ax * su, ay * tv, bx * su, by * tv,
                       Color4ub{r, g, bl, a});
    }
    if (batch.isEmpty()) return;

    Shaders::useTextureFixed();
    batch.flush(mask);
}

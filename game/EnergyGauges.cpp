#include "game/EnergyGauges.h"

#include <cmath>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Texture.h"
#include "engine/VertexArrays.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/Resources.h"
#include "scene/SceneRoot.h"
#include "scene/Shaders.h"

using orvel::Math;

namespace {

// The weapon box's art in its own pixels: hud_power_dials and hud_bars_mask are 400 x 200. The
// mask holds three rings of radius 33 to 43 around the dials, open at the bottom over 90
// degrees; the first dial shows energy, the second the hull. The box shows them at half size.
const float ART_WIDTH = 400.0f;
const float ART_HEIGHT = 200.0f;
const float ART_SCALE = 0.5f;
const float ENERGY_X = 78.0f;
const float HULL_X = 196.0f;
const float DIAL_Y = 96.0f;
// Covers the ring's outer edge between the corners of the fan's segments.
const float FAN_RADIUS = 46.0f;
// The rings run clockwise on screen (y down) from the lower left to the lower right.
const float START_DEGREES = 135.0f;
const float SWEEP_DEGREES = 270.0f;
const int SEGMENTS = 54;
const int GAUGES = 2;
const int MAX_VERTICES = GAUGES * SEGMENTS * 3;
// Amber energy and a red hull: both stand out from the dials' blues, violets and green.
const uint32_t ENERGY_COLOR = 0xff3cc8ffu; // R 255, G 200, B 60
const uint32_t HULL_COLOR = 0xff7860ffu;   // R 255, G 96, B 120

uint8_t scaledChannel(uint32_t color, int shift, uint8_t factor) {
    return (uint8_t)(((color >> shift) & 0xffu) * factor / 255u);
}

} // namespace

EnergyGauges::EnergyGauges()
    : energy(0), maxEnergy(0), hull(0), maxHull(0), energyColor(ENERGY_COLOR), hullColor(HULL_COLOR),
      followsGame(true) {
    size = orvel::vec3(ART_WIDTH, ART_HEIGHT, 0);
    setScale(ART_SCALE);
    setVisible(true);
}

EnergyGauges::~EnergyGauges() {}

float EnergyGauges::fillFraction(float v, float max) {
    if (!(max > 0.0f)) return 0.0f;
    return Math::clampf(v / max, 0.0f, 1.0f);
}

void EnergyGauges::sample() {
    if (!g_game || !g_game->player) return;
    energy = g_game->player->energy;
    maxEnergy = g_game->player->maxEnergy;
    hull = g_game->player->hull;
    maxHull = g_game->player->maxHull;
}

void EnergyGauges::draw(SceneState& state) {
    if (followsGame) sample();
    orvel::Texture* mask = Resources::hud_bars_mask_tex;
    if (!mask) return;

    // Fixed arrays: the client pointers stay valid and nothing is allocated.
    static GLfloat vertices[MAX_VERTICES * 2];
    static GLfloat texcoords[MAX_VERTICES * 2];
    static GLubyte colors[MAX_VERTICES * 4];

    const float centresX[GAUGES] = {ENERGY_X, HULL_X};
    const float fractions[GAUGES] = {fillFraction(energy, maxEnergy), fillFraction(hull, maxHull)};
    const uint32_t gaugeColors[GAUGES] = {energyColor, hullColor};
    float su = mask->sScale / ART_WIDTH;
    float tv = mask->tScale / ART_HEIGHT;
    float ox = hotSpot.x - 0.5f * ART_WIDTH;
    float oy = hotSpot.y - 0.5f * ART_HEIGHT;
    const float segmentDegrees = SWEEP_DEGREES / SEGMENTS;

    int n = 0;
    for (int g = 0; g < GAUGES; ++g) {
        // A pie of the fan radius over the filled part of the sweep; the ring mask's alpha cuts
        // the ring out of it.
        float end = START_DEGREES + SWEEP_DEGREES * fractions[g];
        uint8_t rgba[4] = {scaledChannel(gaugeColors[g], 0, state.color.r),
                           scaledChannel(gaugeColors[g], 8, state.color.g),
                           scaledChannel(gaugeColors[g], 16, state.color.b),
                           scaledChannel(gaugeColors[g], 24, state.color.a)};
        for (int s = 0; s < SEGMENTS; ++s) {
            float a0 = START_DEGREES + s * segmentDegrees;
            if (a0 >= end) break;
            float a1 = std::fmin(a0 + segmentDegrees, end);
            const float px[3] = {centresX[g], centresX[g] + FAN_RADIUS * std::cos(Math::toRadian(a0)),
                                 centresX[g] + FAN_RADIUS * std::cos(Math::toRadian(a1))};
            const float py[3] = {DIAL_Y, DIAL_Y + FAN_RADIUS * std::sin(Math::toRadian(a0)),
                                 DIAL_Y + FAN_RADIUS * std::sin(Math::toRadian(a1))};
            for (int k = 0; k < 3; ++k) {
                vertices[n * 2 + 0] = ox + px[k];
                vertices[n * 2 + 1] = oy + py[k];
                texcoords[n * 2 + 0] = px[k] * su;
                texcoords[n * 2 + 1] = py[k] * tv;
                for (int c = 0; c < 4; ++c)
                    colors[n * 4 + c] = rgba[c];
                ++n;
            }
        }
    }
    if (n == 0) return;

    Shaders::useTextureFixed();
    mask->bind(GL_TEXTURE0);
    orvel::VertexArrays::bindTextured(vertices, texcoords, colors);
    glDrawArrays(GL_TRIANGLES, 0, n);
}

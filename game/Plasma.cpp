#include "game/Plasma.h"

#include "game/Enemy.h"
#include "game/PlasmaShots.h"
#include "game/Resources.h"

using orvel::Stack;
using orvel::mat4;
using orvel::vec2;
using orvel::vec4;

namespace {

// Colour range of the sparks a hit throws.
const vec4 SPARK_MIN(0.5f, 0.42f, 1.0f, 0.0f);
const vec4 SPARK_MAX(0.9f, 0.3f, 0.1f, 0.0f);

} // namespace

Plasma::Plasma()
    : shots(plasma_shots::newShots<Shot>(INITIAL_SHOTS)), shotCapacity(INITIAL_SHOTS), slices(INITIAL_SHOTS),
      texture(Resources::plasmabullet_tex), color{128, 113, 255, 255}, shotCursor(0),
      shotRadius(16.0f), shotSpeed(750.0f), shotLife(1500), overdraw(3) {
    damageMin = 5.0f;
    damageMax = 15.0f;
    rate = 5.0f;
    energyCost = 2.0f;
    setDrawMode(BlendAdd);
    for (unsigned i = 0; i < shotCapacity; ++i) slices.push(g_game->particles->createSlice(true, false));
}

Plasma::~Plasma() {
    for (unsigned i = 0; i < slices.count; ++i) delete slices.data[i];
    delete[] shots;
}

float Plasma::shoot(const vec2& dir) { return plasma_shots::fire(*this, dir, Weapon::shoot(dir)); }

void Plasma::growArray() { plasma_shots::grow(*this); }

void Plasma::update() { plasma_shots::update<Enemy>(*this, SPARK_MIN, SPARK_MAX); }

void Plasma::draw(SceneState& state) {
    static Stack<Vertex> vertices(256);
    static Stack<mat4> mstack(8);
    plasma_shots::draw(*this, state, vertices, mstack);
}

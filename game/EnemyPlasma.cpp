#include "game/EnemyPlasma.h"

#include "game/Friend.h"
#include "game/PlasmaShots.h"
#include "game/Resources.h"

using orvel::Stack;
using orvel::mat4;
using orvel::vec2;
using orvel::vec4;

namespace {

// Colour range of the sparks a hit throws.
const vec4 SPARK_MIN(0.6f, 0.2f, 0.05f, 1.0f);
const vec4 SPARK_MAX(0.9f, 0.3f, 0.1f, 1.0f);

} // namespace

EnemyPlasma::EnemyPlasma()
    : shots(plasma_shots::newShots<Shot>(INITIAL_SHOTS)), shotCapacity(INITIAL_SHOTS), slices(INITIAL_SHOTS),
      texture(Resources::plasmabullet_tex), color{25, 255, 50, 255}, shotCursor(0),
      shotRadius(12.0f), shotSpeed(750.0f), shotLife(1500), overdraw(3) {
    damageMin = 2.0f;
    damageMax = 7.0f;
    rate = 0.7f;
    energyCost = 1.0f;
    setDrawMode(BlendAdd);
    for (unsigned i = 0; i < shotCapacity; ++i) slices.push(g_game->particles->createSlice(true, false));
}

EnemyPlasma::~EnemyPlasma() {
    for (unsigned i = 0; i < slices.count; ++i) delete slices.data[i];
    delete[] shots;
}

float EnemyPlasma::shoot(const vec2& dir) { return plasma_shots::fire(*this, dir, EnemyWeapon::shoot(dir)); }

void EnemyPlasma::growArray() { plasma_shots::grow(*this); }

void EnemyPlasma::update() { plasma_shots::update<Friend>(*this, SPARK_MIN, SPARK_MAX); }

void EnemyPlasma::draw(SceneState& state) {
    static Stack<Vertex> vertices(256);
    static Stack<mat4> mstack(8);
    plasma_shots::draw(*this, state, vertices, mstack);
}

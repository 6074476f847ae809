#include "bench/BenchSession.h"

#include <cmath>
#include <cstdio>

#include <SDL/SDL.h>
#include <fcntl.h>
#include <unistd.h>

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "game/Enemy.h"
#include "game/EnemyWeapon.h"
#include "game/EnergyGauges.h"
#include "game/Game.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Laser.h"
#include "game/Main.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/RadarDisplay.h"
#include "game/Resources.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "game/Starfield.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "scene/Sprite.h"
#include "scene/Text.h"

using orvel::Orvel;
using orvel::vec2;

namespace {

const int SCREEN_WIDTH = 1280;
const int SCREEN_HEIGHT = 720;
// The world of the game: a 4096 x 4096 torus.
const float WORLD = 4096.0f;
// SDL mouse buttons: left fires plasma, right the laser.
const uint32_t BOTH_BUTTONS = (1u << 1) | (1u << 3);
// World units: how far from the ship an enemy counts as in view, and how near another enemy
// must be to count as its neighbour when the pointer looks for the densest spot.
const float VIEW_RADIUS = 700.0f;
const float CLUSTER_RADIUS = 250.0f;
// World units: the neighbourhood that decides where the ship starts.
const float SWARM_RADIUS = 600.0f;

float wrappedDistance(const vec2& a, const vec2& b) {
    return wrappedDelta(a, b).length();
}

int neighbours(const Enemy* e, float radius) {
    int n = 0;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        if (wrappedDistance(e->position, g_game->enemies.data[i]->position) < radius) ++n;
    }
    return n;
}

// The screen point of world point p: of its copies across the wrap, the one nearest the
// screen centre, clamped to the screen.
vec2 onScreen(const vec2& p) {
    const vec2 centre(SCREEN_WIDTH * 0.5f, SCREEN_HEIGHT * 0.5f);
    vec2 best = g_world->worldToScreen(p);
    for (int sx = -1; sx <= 1; ++sx) {
        for (int sy = -1; sy <= 1; ++sy) {
            const vec2 s = g_world->worldToScreen(vec2(p.x + sx * WORLD, p.y + sy * WORLD));
            if ((s - centre).length() < (best - centre).length()) best = s;
        }
    }
    best.x = std::fmin(std::fmax(best.x, 0.0f), SCREEN_WIDTH - 1.0f);
    best.y = std::fmin(std::fmax(best.y, 0.0f), SCREEN_HEIGHT - 1.0f);
    return best;
}

void setInput(uint32_t buttons, int mouseX, int mouseY) {
    Orvel::GEvent* e = Orvel::events;
    for (uint32_t& w : e->keysLive) w = 0;
    e->buttonsLive = buttons;
    e->mouseLiveX = mouseX;
    e->mouseLiveY = mouseY;
    e->update();
}

} // namespace

vec2 wrappedDelta(const vec2& a, const vec2& b) {
    float dx = b.x - a.x;
    float dy = b.y - a.y;
    dx -= WORLD * std::round(dx / WORLD);
    dy -= WORLD * std::round(dy / WORLD);
    return vec2(dx, dy);
}

void BenchSession::openWindow() {
    Orvel::init(SCREEN_WIDTH, SCREEN_HEIGHT, "nightvector bench", false, false);
    if (!Orvel::window) {
        fprintf(stderr, "frame_bench: no window\n");
        return;
    }
    glViewport(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    Shaders::wasInit = false;
    // The loader's progress lines would break up the table on standard output.
    fflush(stdout);
    const int savedOut = dup(STDOUT_FILENO);
    const int devNull = open("/dev/null", O_WRONLY);
    if (devNull >= 0) dup2(devNull, STDOUT_FILENO);
    Resources::load();
    fflush(stdout);
    if (savedOut >= 0) dup2(savedOut, STDOUT_FILENO);
    if (devNull >= 0) close(devNull);
    if (savedOut >= 0) close(savedOut);
}

BenchSession::BenchSession(int wave, bool explosive) : frame(0), explosive(explosive) {
    g_world = new Scene2D(-1, -1);
    g_world->worldWidth = WORLD;
    g_world->worldHeight = WORLD;
    g_world->debugDraw = false;
    // As in the game, whose frame clears the screen before the world's copy.
    g_world->copyOverBlack = true;
    g_hud = new DirectScene2D(-1, -1);
    g_hud->debugDraw = false;
    g_fader = new Fader();
    g_rand.init(1234);
    ParticleSystem::random.init((int)0xd34db33f);
    Orvel::currentTime = START;
    Orvel::sync = 1.0f / 60.0f;
    setInput(0, SCREEN_WIDTH / 2, SCREEN_HEIGHT / 2);

    g_game = new Game();
    g_game->init();
    recorder.begin(1234);
    // Each wave's enemies go before the next wave comes, so only wave `wave`'s are listed.
    while (g_game->wave < wave) {
        while (g_game->enemies.count > 0) delete g_game->enemies.data[0];
        g_game->nextWave();
    }

    const Enemy* centre = nullptr;
    int most = -1;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        const int n = neighbours(g_game->enemies.data[i], SWARM_RADIUS);
        if (n > most) {
            most = n;
            centre = g_game->enemies.data[i];
        }
    }
    if (centre) g_game->player->position = centre->position;
}

BenchSession::~BenchSession() {
    delete g_world;
    g_world = nullptr;
    delete g_hud;
    g_hud = nullptr;
    g_game = nullptr;
}

Enemy* BenchSession::densestEnemyInView() const {
    const vec2 ship = g_game->player->position;
    Enemy* best = nullptr;
    int most = -1;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        Enemy* e = g_game->enemies.data[i];
        if (wrappedDistance(ship, e->position) >= VIEW_RADIUS) continue;
        int n = 0;
        for (unsigned j = 0; j < g_game->enemies.count; ++j) {
            const Enemy* other = g_game->enemies.data[j];
            if (wrappedDistance(ship, other->position) < VIEW_RADIUS &&
                wrappedDistance(e->position, other->position) < CLUSTER_RADIUS)
                ++n;
        }
        if (n > most) {
            most = n;
            best = e;
        }
    }
    return best;
}

Enemy* BenchSession::nearestEnemy() const {
    const vec2 ship = g_game->player ? g_game->player->position : vec2(0.0f, 0.0f);
    Enemy* best = nullptr;
    float nearest = 0.0f;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        Enemy* e = g_game->enemies.data[i];
        const float d = wrappedDistance(ship, e->position);
        if (!best || d < nearest) {
            best = e;
            nearest = d;
        }
    }
    return best;
}

void BenchSession::prepareFrame() {
    ++frame;
    // 60 frames per second on the integer ms clock.
    Orvel::currentTime = START + (uint32_t)(frame * 1000 / 60);
    Orvel::sync = 1.0f / 60.0f;

    vec2 pointer(SCREEN_WIDTH * 0.5f, SCREEN_HEIGHT * 0.5f);
    if (Player* player = g_game->player) {
        player->hull = player->maxHull;
        player->energy = player->maxEnergy;
        if (const Enemy* target = densestEnemyInView()) pointer = onScreen(target->position);
    }
    if (explosive && frame % KILL_INTERVAL == 0) {
        if (Enemy* victim = nearestEnemy()) victim->damage(victim->hitPoints + 1.0f);
    }
    setInput(BOTH_BUTTONS, (int)pointer.x, (int)pointer.y);
    if (hidden != HIDE_NOTHING) hideKind();
}

const char* BenchSession::hiddenName(Hidden kind) {
    static const char* const NAMES[HIDDEN_KINDS] = {
        "nothing",     "sky and stars", "enemy bodies",  "enemy glows", "enemy shots",
        "player",      "plasma",        "laser",         "particles",   "floating text",
        "HUD boxes",   "radar",         "gauges",        "score and reticle",
    };
    return kind >= 0 && kind < HIDDEN_KINDS ? NAMES[kind] : "?";
}

namespace {

// Hides every child of the world that is a T.
template <typename T> void hideWorldChildren() {
    for (Drawable* d = g_world->first; d; d = d->next)
        if (dynamic_cast<T*>(d)) d->setVisible(false);
}

void hide(Drawable* d) {
    if (d) d->setVisible(false);
}

} // namespace

void BenchSession::hideKind() {
    Game& game = *g_game;
    switch (hidden) {
    case HIDE_NOTHING:
    case HIDDEN_KINDS: break;
    case HIDE_SKY_AND_STARS: hide(game.starfield); break;
    case HIDE_ENEMY_BODIES:
    case HIDE_ENEMY_GLOWS:
        for (unsigned i = 0; i < game.enemies.count; ++i)
            if (EnemyShip* ship = dynamic_cast<EnemyShip*>(game.enemies.data[i]))
                hide(hidden == HIDE_ENEMY_BODIES ? ship->sprite : ship->glow);
        break;
    case HIDE_ENEMY_SHOTS: hideWorldChildren<EnemyWeapon>(); break;
    case HIDE_PLAYER:
        if (game.player) hide(game.player->drawable);
        break;
    case HIDE_PLASMA:
        if (game.player) hide(game.player->plasma);
        break;
    case HIDE_LASER:
        if (game.player) hide(game.player->laser);
        break;
    case HIDE_PARTICLES: hideWorldChildren<ParticleSlice>(); break;
    case HIDE_FLOATING_TEXT: hideWorldChildren<Text>(); break;
    case HIDE_HUD_BOXES:
        hide(game.scoreBox ? game.scoreBox->frame : nullptr);
        hide(game.weaponBox ? game.weaponBox->frame : nullptr);
        hide(game.radarBox ? game.radarBox->frame : nullptr);
        break;
    case HIDE_RADAR: hide(game.radarDisplay); break;
    case HIDE_GAUGES: hide(game.energyGauges); break;
    case HIDE_SCORE_AND_RETICLE:
        hide(game.scoreCounter ? game.scoreCounter->drawable : nullptr);
        hide(game.reticle);
        break;
    }
}

void BenchSession::logic() {
    g_game->update();
}

void BenchSession::recordedLogic() {
    recorder.beforeUpdate();
    g_game->update();
    recorder.afterUpdate(*g_game);
}

void BenchSession::fullFrame() {
    clearForFrame();
    g_world->draw();
    g_hud->draw();
    g_fader->draw();
    SDL_GL_SwapBuffers();
    g_game->update();
    glFinish();
}

int BenchSession::liveExplosionParticles() const {
    const ParticleSystem* system = g_game->explosionParticles;
    int n = 0;
    for (unsigned i = 0; i < system->capacity; ++i) {
        const Particle& p = system->particles[i];
        if (p.slice && p.deathTime >= Orvel::currentTime) ++n;
    }
    return n;
}

int BenchSession::enemiesOnScreen() const {
    int n = 0;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        const vec2 p = g_world->drawnPosition(g_game->enemies.data[i]->position);
        if (p.x >= 0.0f && p.x < SCREEN_WIDTH && p.y >= 0.0f && p.y < SCREEN_HEIGHT) ++n;
    }
    return n;
}

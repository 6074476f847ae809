#include "game/Game.h"

#include <cmath>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/Recycler.h"
#include "engine/String.h"
#include "game/Enemy.h"
#include "game/EnergyGauges.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Laser.h"
#include "game/Main.h"
#include "game/Plasma.h"
#include "game/Powerup.h"
#include "game/RadarDisplay.h"
#include "game/Player.h"
#include "game/Resources.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "game/SoundEffects.h"
#include "game/Starfield.h"
#include "game/TextIndicator.h"
#include "game/WorldWrap.h"
#include "game/desktop/Settings.h"
#include "scene/DirectScene2D.h"
#include "scene/Group.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Sprite.h"
#include "scene/Text.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;

namespace {

// Particles of the hit-and-spark system and of the explosion system.
const unsigned PARTICLES = 1024;
const unsigned EXPLOSION_PARTICLES = 4096;
// Stars of the starfield.
const int STARS = 512;
// Score popups and powerups that may be alive at once before the heap is asked for more.
const unsigned RESERVED_POPUPS = 64;
const unsigned RESERVED_POWERUPS = 64;
// ms from init to the first wave, from a wave to the next one while enemies are left, and of
// the game-over fade.
const float FIRST_WAVE_DELAY = 5000.0f;
const float WAVE_INTERVAL = 90000.0f;
const float GAME_OVER_FADE = 1500.0f;

float now() {
    return (float)Orvel::currentTime;
}

// Constructs n + 1 enemies of type T (the loop runs from n down to 0; the extra one is meant)
// and lists each on enemies, then actors. Construction spawns the enemy.
template <typename T> void spawnGroup(Game& game, int n) {
    for (int i = n; i >= 0; --i) {
        T* enemy = new T();
        game.enemies.push(enemy);
        game.actors.push(enemy);
    }
}

// The count formula of a group, computed in double and truncated.
int groupSize(double value) {
    return (int)value;
}


// Memory for what kills and pickups make during play (a popup: its actor, text and the strings of
// the number; a powerup: its actor, group and two sprites), so that fights never wait on the heap.
// Topped up after every spawn, whose enemies take blocks of the same sizes.
void reserveForPlay() {
    using orvel::Recycler;
    Recycler::reserve(sizeof(TextIndicator), RESERVED_POPUPS);
    Recycler::reserve(sizeof(Text), RESERVED_POPUPS);
    Recycler::reserve(sizeof(char), 2 * RESERVED_POPUPS);
    Recycler::reserve(sizeof(Powerup), RESERVED_POWERUPS);
    Recycler::reserve(sizeof(Group), RESERVED_POWERUPS);
    Recycler::reserve(sizeof(Sprite), 2 * RESERVED_POWERUPS);
}

} // namespace

Game::Game()
    : actors(LIST_CAPACITY), enemies(LIST_CAPACITY), friends(LIST_CAPACITY), spareList(LIST_CAPACITY),
      powerups(LIST_CAPACITY), player(nullptr), reticle(nullptr), particles(new ParticleSystem(PARTICLES)),
      explosionParticles(new ParticleSystem(EXPLOSION_PARTICLES)), explosionSlice(nullptr),
      starfield(nullptr), scoreCounter(nullptr), weaponCounter(nullptr), scoreBox(nullptr),
      weaponBox(nullptr), radarBox(nullptr), radarDisplay(nullptr), energyGauges(nullptr),
      gameOverText(new Text(Resources::font_big, "Game Over")), gameOverStart(0.0f), gameOverEnd(0.0f),
      shakeMagnitude(0.0f), shakeStart(0.0f), shakeEnd(0.0f), difficulty(1.0f), growthA(1.0f), growthB(1.0f),
      wave(0), nextWaveTime(0.0f), running(false), lives(0), upgradePoints(0) {
    particles->texture = Resources::proc_particle0_tex;
    explosionParticles->texture = Resources::proc_particle0_tex;
    explosionParticles->userFlag = 1;
    // Removed from the scene when empty but never deleted: every explosion adds it back.
    explosionSlice = explosionParticles->createSlice(true, false);
    starfield = new Starfield(STARS);
}

// The objects on the lists are not deleted here: each owns its own end.
Game::~Game() {}

void Game::init() {
    reserveForPlay();
    g_world->clear();
    g_hud->clear();
    g_world->add(starfield);
    // First on the world's freshly cleared target (the border outline of debugDraw aside).
    starfield->skyFirst = true;

    buildHud();
    buildPlayer();

    g_hud->add(scoreCounter->drawable);
    scoreCounter->position = vec2(15.0f, 12.0f);
    scoreCounter->value = 0;
    scoreCounter->shownFrom = 0;
    scoreCounter->rollStart = 0;
    scoreCounter->rollEnd = 0;

    g_world->add(explosionSlice);
    player->position = vec2(g_world->worldWidth * 0.5f, g_world->worldHeight * 0.5f);

    shakeMagnitude = 0.0f;
    shakeStart = 0.0f;
    shakeEnd = 0.0f;
    difficulty = 1.0f;
    wave = 0;
    upgradePoints = 0;
    lives = 3;
    running = true;
    gameOverStart = 0.0f;
    gameOverEnd = 0.0f;
    nextWaveTime = now() + FIRST_WAVE_DELAY;
}

// The three framed boxes and the reticle. Only the score box's counter goes on the actors list.
void Game::buildHud() {
    scoreBox = new HUD_ScoreBox();
    actors.push(scoreBox->counter);
    scoreBox->setHotSpot(TopLeft);
    scoreBox->position = orvel::vec3(100.0f, 30.0f, 0.0f);

    weaponBox = new HUD_WeaponBox();
    weaponBox->position = orvel::vec3(100.0f, Orvel::getScreenHeight() - 50.0f, 0.0f);

    radarBox = new HUD_RadarBox();
    radarBox->position =
        orvel::vec3(Orvel::getScreenWidth() - 130.0f, Orvel::getScreenHeight() - 130.0f, 0.0f);

    g_hud->add(scoreBox);
    g_hud->add(weaponBox);
    g_hud->add(radarBox);
    radarDisplay = new RadarDisplay();
    radarBox->add(radarDisplay);
    energyGauges = new EnergyGauges();
    weaponBox->add(energyGauges);
    reticle = new Reticle();
    g_hud->add(reticle);

    scoreCounter = scoreBox->counter;
    weaponCounter = weaponBox->counter3;
}

void Game::buildPlayer() {
    player = new Player();
    friends.push(player);
    actors.push(player);
    g_world->add(player->drawable);
    player->position = vec2(400.0f, 300.0f);
    g_world->add(player->plasma);
    g_world->add(player->laser);
}

void Game::update() {
    if (reticle) reticle->update();
    updateActors();
    particles->update();
    explosionParticles->update();
    if (running) updateWaves();
    if (!running) updateGameOver();
    updateCamera();
}

// An actor that deletes itself during its update is replaced by the last one, which is skipped
// this frame; actors added during the loop are updated in the same frame.
void Game::updateActors() {
    for (unsigned i = 0; i < actors.count; ++i)
        actors.data[i]->update();
}

void Game::updateWaves() {
    if (!player) return;
    if (player->hull <= 0.0f && lives == 0) {
        running = false;
        gameOverStart = now();
        gameOverEnd = now() + GAME_OVER_FADE;
        gameOverText->setHotSpot(Center);
        gameOverText->position =
            orvel::vec3(Orvel::getScreenWidth() * 0.5f, Orvel::getScreenHeight() * 0.4f, 0.0f);
        gameOverText->color.w = 0.0f;
        g_hud->add(gameOverText);
        g_sound.play(SFX_GAME_OVER);
    } else if (player->hull > 0.0f) {
        // A dead player with lives left waits for its own respawn: no wave meanwhile.
        if (wave <= 0 || enemies.count > 0) {
            if (now() > nextWaveTime) nextWave();
        } else {
            nextWave();
        }
    }
}

void Game::updateGameOver() {
    if (now() < gameOverEnd) {
        gameOverText->color.w =
            Math::sin_lerp((now() - gameOverStart) / (gameOverEnd - gameOverStart), 0.0f, 1.0f);
    } else {
        gameOverText->color.w = 1.0f;
    }
}

// The camera leads the ship by its momentum and zooms out with it; the shake goes on top.
// The starfield moves by the camera's movement, less any jump across the world's wrap.
void Game::updateCamera() {
    if (!player) return;
    Camera2D* camera = g_world->camera ? g_world->camera : &g_world->defaultCamera;
    const vec2 old = camera->position;
    const vec2 lead = player->cameraLead;
    camera->position = vec2(player->position.x + lead.x * 0.3f, player->position.y + lead.y * 0.3f);
    camera->zoom = 1.0f - (lead.length() / player->maxLead) * 0.2f;
    vec2 delta(camera->position.x - old.x, camera->position.y - old.y);

    if (shakeEnd > now()) {
        const float first = g_rand.randf(-1.0f, 1.0f);
        const float second = g_rand.randf(-1.0f, 1.0f);
        const float magnitude =
            Math::sinh_lerp((now() - shakeStart) / (shakeEnd - shakeStart), shakeMagnitude, 0.0f);
        camera->position.x += second * magnitude;
        camera->position.y += first * magnitude;
    }

    const float screenWidth = (float)Orvel::getScreenWidth();
    const float screenHeight = (float)Orvel::getScreenHeight();
    if (delta.x > screenWidth) delta.x -= g_world->worldWidth;
    if (delta.x < -screenWidth) delta.x += g_world->worldWidth;
    if (delta.y > screenHeight) delta.y -= g_world->worldHeight;
    if (delta.y < -screenHeight) delta.y += g_world->worldHeight;
    starfield->move(delta);
}

void Game::nextWave() {
    wave += 1;
    nextWaveTime = now() + WAVE_INTERVAL + 10.0f * (float)(wave - 1);

    orvel::String line = "Wave " + orvel::strInt(wave);
    line += " incoming";
    TextIndicator::showBanner(line.getCString());
    g_sound.play(SFX_WAVE_BANNER);

    growthA = (float)((double)growthA * 1.07);
    growthB = (float)((double)growthB * 1.002);
    difficulty = (float)((double)difficulty * 1.1);

    const int w = wave;
    spawnGroup<Fighter>(*this, groupSize(w * 2.4 + 10));
    if (w > 2) spawnGroup<Fighter2>(*this, groupSize((w - 3) * 2.2 + 3));
    if (w > 5) spawnGroup<Hammerhead>(*this, groupSize((w - 5) * 2.5 + 2));
    if (w > 8) spawnGroup<Probe>(*this, groupSize((w - 8) * 2.9 + 20));
    if (w > 12) spawnGroup<Probe2>(*this, groupSize((w - 12) * 2.9 + 20));
    // Counts from w - 15 under the condition w > 14: wave 15 brings three.
    if (w > 14) spawnGroup<Hammerhead2>(*this, groupSize((w - 15) * 2.5 + 2));
    if (w > 16) spawnGroup<Probe3>(*this, groupSize((w - 16) * 2.9 + 20));
    reserveForPlay();

    for (unsigned i = 0; i < enemies.count; ++i)
        g_world->add(enemies.data[i]->drawable);
    if (player) {
        g_world->add(player->plasma);
        g_world->add(player->laser);
        player->drawable->bringToFront();
        player->trail->defaultSlice->insertBefore(player->drawable);
    }
}

void Game::killEnemiesInRadius(vec2& centre, float radius) {
    vec2 shifts[WorldWrap::COPIES];
    WorldWrap::copyOffsets(g_world->worldWidth, g_world->worldHeight, shifts);
    // The enemy swapped into a destroyed one's slot is not examined again this call.
    for (unsigned i = 0; i < enemies.count; ++i) {
        Enemy* enemy = enemies.data[i];
        for (const vec2& shift : shifts) {
            const float dx = enemy->position.x + shift.x - centre.x;
            const float dy = enemy->position.y + shift.y - centre.y;
            if (std::sqrt(dx * dx + dy * dy) < radius) {
                enemy->destroy();
                break;
            }
        }
    }
}

void Game::screenShake(float duration, float magnitude) {
    // With the shake turned off the camera keeps still; the timing stays for whatever reads it.
    shakeMagnitude = g_settings.screenShake ? magnitude : 0.0f;
    shakeStart = now();
    shakeEnd = now() + duration;
}

void Game::removeActor(Actor* actor) {
    actors.remove(actor);
}

void Game::end() {
    delete reticle;
    reticle = nullptr;
    delete scoreCounter;
    scoreCounter = nullptr;
    delete player;
    player = nullptr;
}

#include "game/GameSessions.h"

#include <malloc.h>

#include "engine/Stack.h"
#include "game/EnergyGauges.h"
#include "game/Enemy.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/GamepadControl.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/RadarDisplay.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "game/SoundEffects.h"
#include "game/Starfield.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Text.h"

namespace {

// Deletes the entries of `list` from the last; an entry whose destructor does not take it off
// the list is taken off here.
template <typename T> void deleteAll(orvel::Stack<T*>& list) {
    while (list.count > 0) {
        T* last = list.data[list.count - 1];
        delete last;
        if (list.count > 0 && list.data[list.count - 1] == last) list.pop();
    }
}

} // namespace

void GameSessions::end() {
    Game* game = g_game;
    if (!game) return;
    // Game::end deletes the score counter without taking it off the actors or out of its box.
    if (!game->scoreCounter && game->scoreBox) {
        game->removeActor(game->scoreBox->counter);
        game->scoreBox->counter = nullptr;
    }
    // A score counter without its box.
    if (game->scoreCounter && !game->scoreBox) {
        game->removeActor(game->scoreCounter);
        delete game->scoreCounter;
    }
    // The boxes delete their counters, taking them off the actors; the radar and the gauges sit
    // inside the boxes, which do not delete their children.
    delete game->scoreBox;
    delete game->weaponBox;
    delete game->radarBox;
    delete game->radarDisplay;
    delete game->energyGauges;
    delete game->reticle;
    // The player is off the lists while it waits to respawn and after the game is over. It goes
    // before the particle systems, which its guns take their slices from.
    delete game->player;
    game->player = nullptr;
    // Enemies, friends and powerups take themselves off every list; slices and emitters of their
    // weapons go back to the particle systems, so those stay until the end.
    deleteAll(game->actors);
    deleteAll(game->enemies);
    deleteAll(game->friends);
    deleteAll(game->powerups);
    delete game->explosionSlice;
    delete game->particles;
    delete game->explosionParticles;
    delete game->starfield;
    delete game->gameOverText;
    g_game = nullptr;
    delete game;
    // The pages the session's objects held go back to the system instead of staying resident
    // until the next session reuses some of them; the screen is black meanwhile.
    malloc_trim(0);
}

void GameSessions::begin(int seed) {
    g_rand.init(seed);
    ParticleSystem::random.init(seed);
    if (g_world) {
        // Where the intro's frames leave the camera before the first game: at the screen's centre.
        Camera2D start(orvel::vec2((float)(g_world->screenWidth / 2), (float)(g_world->screenHeight / 2)), 1.0f, 0.0f);
        g_world->defaultCamera = start;
        g_world->setCamera(nullptr);
        g_world->previousCamera = start;
    }
    g_sound.fadeOutAll(VOICE_FADE_MS);
    g_sound.reset();
    g_gamepad = GamepadControl();
    // The guns of the new player take their particles from the new game, so it is g_game first.
    g_game = new Game();
    g_game->init();
}

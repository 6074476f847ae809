#pragma once
// One game session: the lists of live objects, the waves, the camera and the HUD.

#include "engine/Stack.h"
#include "engine/Vector.h"

class Actor;
class Enemy;
class Friend;
class Powerup;
class Player;
class Reticle;
class ParticleSystem;
class ParticleSlice;
class Starfield;
class ScoreCounter;
class HUD_ScoreBox;
class HUD_WeaponBox;
class HUD_RadarBox;
class RadarDisplay;
class EnergyGauges;
class Text;

// The single instance is g_game. Live objects sit in the lists as raw pointers; each object
// deletes itself at the end of its life and its destructor takes it out of the lists by
// swapping in the last element, so list order is not stable.
class Game {
public:
    // Room the five lists start with; each doubles when full.
    static const unsigned LIST_CAPACITY = 128;

    // The lists, both particle systems, the explosion slice, the starfield and the game-over
    // text. Everything else is made by init(). The session lives to the end of the program, so
    // nothing it makes is ever freed by it; whoever deletes a Game deletes those first.
    Game();
    // Frees the storage of the five lists only.
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    // Starts a new game: rebuilds the world and HUD content; the first wave comes 5 s later.
    void init();
    // One frame: actors, particles, waves, game over, camera, shake and starfield.
    void update();
    // Deletes the reticle, the score counter and the player, each when present.
    void end();
    // Takes the first occurrence of `actor` off `actors` by moving the last entry into its place;
    // nothing when it is not listed.
    void removeActor(Actor* actor);
    // Starts the next wave: banner, growth of the difficulty, the enemies of the wave.
    void nextWave();
    // Destroys every enemy strictly nearer than `radius` to `centre` on the wrapping world.
    // The enemy moved into a destroyed one's slot is not examined in the same call.
    void killEnemiesInRadius(orvel::vec2& centre, float radius);
    // Shakes the camera for `duration` ms, starting at `magnitude` world units.
    void screenShake(float duration, float magnitude);

    orvel::Stack<Actor*> actors;        // every live actor; updated once a frame in list order
    orvel::Stack<Enemy*> enemies;       // live enemies
    orvel::Stack<Friend*> friends;      // the player side, what enemies hunt
    orvel::Stack<Actor*> spareList;     // kept for later use; nothing fills it
    orvel::Stack<Powerup*> powerups;    // live powerups
    Player* player;                     // made by init()
    Reticle* reticle;                   // on the HUD; made by init()
    ParticleSystem* particles;          // 1024 particles for hits and sparks
    ParticleSystem* explosionParticles; // 4096 particles for explosions
    ParticleSlice* explosionSlice;      // every explosion goes here; leaves the scene when empty
    Starfield* starfield;               // drawn first in the world
    ScoreCounter* scoreCounter;         // the score box's counter; holds the score
    ScoreCounter* weaponCounter;        // the weapon box's third counter; shows the upgrade points
    HUD_ScoreBox* scoreBox;
    HUD_WeaponBox* weaponBox;
    HUD_RadarBox* radarBox;
    // The working radar and the energy and hull gauges, inside the radar and weapon boxes for
    // the life of the session.
    RadarDisplay* radarDisplay;
    EnergyGauges* energyGauges;
    Text* gameOverText;  // "Game Over", on the HUD once the game is over
    float gameOverStart; // ms of Orvel::currentTime; fade-in interval of the game-over text
    float gameOverEnd;
    float shakeMagnitude; // world units at the start of the shake, easing out to 0
    float shakeStart;     // ms
    float shakeEnd;       // ms; no shake once passed
    float difficulty;     // strength factor of new enemies: 1 after init, x1.1 every wave
    float growthA;        // x1.07 every wave; nothing reads it
    float growthB;        // x1.002 every wave; nothing reads it
    int wave;             // current wave; 0 before the first
    float nextWaveTime;   // ms; the next wave comes then even with enemies left
    bool running;         // false once the game is over
    int lives;            // lives left; 3 after init
    int upgradePoints;    // upgrade points collected from powerups

private:
    // The steps of update().
    void updateActors();
    void updateWaves();
    void updateGameOver();
    void updateCamera();
    // The steps of init().
    void buildHud();
    void buildPlayer();
};

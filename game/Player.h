#pragma once
// The player's ship: flight, energy, both weapons, damage, death and the respawn flight.

#include "engine/Vector.h"
#include "game/Friend.h"

class Group;
class Laser;
class ParticleEmitter;
class ParticleSystem;
class Plasma;
class Sprite;
class Text;

// Steered with W, A, S, D, aimed with the mouse; the left button fires plasma, the right one
// the laser, both from the energy pool that thrust also drains. Created by Game::init.
class Player : public Friend {
public:
    // Top speed and camera-lead limit, units per second.
    static constexpr float MAX_SPEED = 350.0f;

    // Trail, weapons, sprites and energy text; g_game's particle systems must exist. Adds the
    // trail's slice to the world; the owner adds the group and the weapons.
    Player();
    // Deletes the trail, the weapons, the sprites, the group and the energy text.
    ~Player() override;

    // One frame: energy, grow-in or control or respawn flight, weapons, physics, looks.
    void update() override;
    // Comes back after a death: one life less, a banner, one second of invulnerable grow-in.
    void spawn() override;
    // True while the ship lives. During the grow-in nothing happens; a lethal hit leaves
    // hull at 1 for the moment destroy() starts and returns false.
    bool damage(float amount) override;
    // Two bursts, then the wait for the respawn flight, or gone for good with no lives left.
    void destroy() override;

    ParticleSystem* trail;         // exhaust particles; owned
    ParticleEmitter* trailEmitter; // the trail's emitter
    Plasma* plasma;                // left button; owned
    Laser* laser;                  // right button; owned
    Group* group;                  // the drawable; owned
    Sprite* bottomSprite;          // owned, like the four below
    Sprite* middleSprite;
    Sprite* topSprite;
    Sprite* bottomGlow;
    Sprite* topGlow;
    Text* energyText;              // "Energy: n"; owned, placed on the HUD by nobody
    orvel::vec2 velocity;          // units per second
    orvel::vec2 cameraLead;        // smoothed momentum the camera leads by
    float energy;                  // shared weapon and thrust pool
    float maxEnergy;
    float energyRegen;             // per second
    float spareC;                  // not read
    float thrustCost;              // per second while a direction key is held
    float maxLead;                 // length of (500, 500)
    bool speedBoost;               // set by "Speed boost"; nothing reads it
    float speedBoostStart;         // ms; nothing reads it
    float speedBoostEnd;           // ms; nothing reads it
    float respawnStart;            // ms; the respawn flight's interval; respawnEnd 0 = alive
    float respawnEnd;
    float spawnStart;              // ms; grow-in interval, invulnerable before spawnEnd
    float spawnEnd;
    orvel::vec2 deathPosition;     // where the ship died
    orvel::vec2 respawnPosition;   // where it comes back

private:
    // The steps of update().
    void updateControl();
    void updateRespawnFlight(float now);
    void updatePhysics();
    void updateLooks(float now);
};

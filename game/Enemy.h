#pragma once
// The hostile actors: the Enemy behaviour and its seven types, which differ in art and numbers.

#include "game/Actor.h"
#include "game/SoundEffects.h"

class EnemyWeapon;
class Group;
class Sprite;
namespace orvel {
class Texture;
}

// Fades in at a random place, wanders the wrapping world, chases and circles a friend in
// sight, fires when in range, and on death explodes, pays its score and may drop a powerup.
// Created by Game::nextWave, which pushes it onto g_game's enemies and actors; the destructor
// takes it off both lists.
class Enemy : public Actor {
public:
    // ms the fade-in lasts.
    static const unsigned FADE_TIME = 750;

    // A new EnemyPlasma weapon, radius 100, the default numbers below; not yet placed.
    Enemy();
    // Deletes the weapon and leaves g_game's enemies, then actors (swap-with-last).
    ~Enemy() override;

    // One frame: fade-in, target search, steering, weapon, synchronisation.
    void update() override;
    // Subtracts `amount` from the hit points. True while the enemy lives; false when this
    // hit destroyed it (the enemy is deleted and its score floats up as text).
    virtual bool damage(float amount);
    // Adds the weapon to the world, places the enemy at a random spot away from the friends
    // and starts the fade-in.
    virtual void spawn();
    // Fires the weapon toward `target`; the weapon decides whether it fires.
    virtual void attack();
    // Explosion, score, maybe a powerup; hides the drawable and deletes the enemy.
    virtual void destroy();
    // The explosion an enemy of this type sounds: small, the big ships' large.
    virtual SoundEffect explosionSound() const;

    EnemyWeapon* weapon;   // owned
    orvel::vec2 target;    // the point the enemy steers to, world units
    orvel::vec2 velocity;  // units per second
    float factor;          // set, not read by the enemy logic
    float maxSpeed;        // per-component speed limit; acceleration is 3 x maxSpeed
    float hitPoints;
    int score;             // points paid on death
    float fadeStart;       // ms of Orvel::currentTime
    float fadeEnd;         // ms; 0 when no fade runs
    float sightRange;      // friends nearer than this become the target
    float attackRange;     // friends nearer than this are attacked
    float dropChance;      // probability of leaving a powerup, [0, 1]

private:
    // The steps of update().
    void updateFade();
    bool searchFriends();
    void steer();
};

// The part every type shares: a group holding a body sprite and an additive glow sprite, and
// the type's numbers. Each type is a thin subclass naming its art and numbers.
class EnemyShip : public Enemy {
public:
    // The numbers of one type; hit points and score are multiplied by the difficulty.
    struct Stats {
        float radius;
        float maxSpeed;
        float dropChance;
        float hitPoints; // at difficulty 1
        float score;     // at difficulty 1
    };

    // Builds the group with both sprites (size x size), makes it the drawable. spawn() is
    // left to the type's constructor, once the type's numbers are known.
    EnemyShip(orvel::Texture* bodyTexture, orvel::Texture* glowTexture, float size,
              const Stats& stats);
    // Deletes sprite, glow and group, then the Enemy destructor runs.
    ~EnemyShip() override;

    // Enemy::update, then turns the group to the heading.
    void update() override;
    // Enemy::spawn, then the type's numbers scaled by g_game's difficulty.
    void spawn() override;

    Group* group;   // owned; the drawable
    Sprite* sprite; // owned; the body
    Sprite* glow;   // owned; drawn additively above the body
    Stats stats;    // the type's numbers
};

class Fighter : public EnemyShip {
public:
    Fighter();
};

class Fighter2 : public EnemyShip {
public:
    Fighter2();
};

class Hammerhead : public EnemyShip {
public:
    Hammerhead();
    SoundEffect explosionSound() const override;
};

class Probe : public EnemyShip {
public:
    Probe();
};

// Drawn with the plain probe's art at a larger size; the loaded probe2 art stays unused.
class Probe2 : public EnemyShip {
public:
    Probe2();
};

class Hammerhead2 : public EnemyShip {
public:
    Hammerhead2();
    SoundEffect explosionSound() const override;
};

class Probe3 : public EnemyShip {
public:
    Probe3();
};

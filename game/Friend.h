#pragma once
// The base of the player side: the actors enemies hunt and that collect powerups.

#include "game/Actor.h"

class Powerup;

// Listed in g_game's friends while enemies may see it. The base bodies do nothing.
class Friend : public Actor {
public:
    Friend();
    ~Friend() override;

    void update() override;
    virtual void powerup(Powerup* p);
    // Takes `amount` hit points; true while the friend lives. The base always lives.
    virtual bool damage(float amount);
    virtual void spawn();
    virtual void attack();
    virtual void destroy();

    float spareFactor;  // not read
    float spareA;       // not read
    float spareB;       // not read
    float pickupRadius; // powerups nearer than this are collected, world units
    float hull;         // hit points; 0 or less is dead
    float maxHull;      // what "Hull restored" refills to
    float shield;       // "Shield restored" copies maxShield here; nothing else reads it
    float maxShield;
};

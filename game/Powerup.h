#pragma once
// A pickup an enemy may drop: it drifts, is pulled into a friend close by and takes effect.

#include "engine/Vector.h"
#include "game/Actor.h"

class Friend;
class Group;
class Sprite;

class Powerup : public Actor {
public:
    // The effects `kind` selects.
    enum Kind {
        UPGRADE = 0,
        ENERGY = 1,
        SHIELD = 2,
        EXTRA_SCORE = 3,
        HULL = 4,
        SPEED_BOOST = 5,
        MEGA_NUKE = 6,
    };

    // ms the pull into the collector takes.
    static const unsigned COLLECT_TIME = 500;

    // Random drift, then a random kind (g_rand). The creator places it and lists it in
    // g_game's powerups and actors and adds the drawable to the world.
    Powerup();
    // Leaves g_game's powerups and actors (swap-with-last) and deletes the nodes.
    ~Powerup() override;

    // Animation, drift or pull; a finished pull collects and deletes the powerup.
    void update() override;
    // Applies the effect to g_game's player and floats the green message.
    virtual void collect();

    int kind;              // 0..6, see Kind
    Group* group;          // the drawable; owned
    Sprite* sprite;        // owned, animated 16 x 16 frames
    Sprite* glow;          // owned, additive, same animation
    orvel::vec2 velocity;  // units per second
    float animFrame;       // current frame
    float animSpeed;       // frames per second
    bool collecting;       // being pulled into `collector`
    float collectStart;    // ms of Orvel::currentTime
    float collectEnd;      // ms
    orvel::vec2 collectFrom; // position when the pull began
    Friend* collector;     // not owned

    // The colour of every powerup message.
    static orvel::vec4 ic;
};

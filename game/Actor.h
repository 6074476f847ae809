#pragma once
// The base of every game object that lives in the world and is updated once a frame.

#include "engine/Recycler.h"
#include "engine/Vector.h"

class Drawable;

// Game::update calls update() on every actor of g_game's `actors` list. Each actor deletes
// itself at the end of its life; its destructor takes it out of the lists it is in. Actors come
// and go during play (enemies, powerups, score popups), so their memory is recycled.
class Actor : public orvel::Recycled {
public:
    // At the origin, radius 0, rotation 0, scale 1, no drawable.
    Actor();
    virtual ~Actor();
    Actor(const Actor&) = delete;
    Actor& operator=(const Actor&) = delete;

    // Wraps `position` into the world and copies position, scale and rotation to `drawable`.
    virtual void update();

    Drawable* drawable;    // the scene node that shows the actor; not owned
    orvel::vec2 position;  // centre in world coordinates, kept in [0, W) x [0, H)
    float radius;          // size for hit tests and explosions; an enemy's arrival distance
    float rotation;        // degrees, copied to the drawable's rotation about z
    float scale;           // copied to the drawable's scale

protected:
    // The synchronisation every update ends with: wrap, then copy to the drawable.
    void syncDrawable();
};

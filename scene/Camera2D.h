#pragma once
// The 2D camera of a scene root: which world point is at the centre of the screen, and how.

#include "engine/Vector.h"

// A plain record; scene roots read it every draw() and repair a zoom at or below 0.01 in place.
struct Camera2D {
    // At the world origin, zoom 1, not rotated.
    Camera2D();
    Camera2D(const orvel::vec2& position, float zoom, float rotation);

    orvel::vec2 position; // world units, shown at the centre of the screen
    float zoom;           // 1 = one world unit per pixel
    float rotation;       // degrees
};

#pragma once
// The HUD scene root: draws its tree straight to the screen, after the world scene.

#include "scene/SceneRoot.h"

// The same walk as Scene2D (culling, wrap, colours, debug outlines), without the offscreen
// target. Created once at start-up and kept; the main program calls draw() once a frame.
class DirectScene2D : public SceneRoot {
public:
    // -1 for either size means the engine's screen width or height. Loads the shared shaders.
    DirectScene2D(int width, int height);

    // Renders the tree into whatever target is bound, normally the screen.
    void draw();
};

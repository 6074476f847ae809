#pragma once
// The HUD scene root: draws its tree straight to the screen, after the world scene.

#include <cstdint>

#include "engine/Matrix.h"
#include "engine/Vector.h"
#include "scene/Camera2D.h"
#include "scene/Container.h"
#include "scene/Drawable.h"
#include "scene/Scene2D.h"

// The same walk as Scene2D (culling, wrap, colours, debug outlines), without the offscreen
// target. Created once at start-up and kept; the main program calls draw() once a frame.
class DirectScene2D : public Container {
public:
    // -1 for either size means the engine's screen width or height. Loads the shared shaders.
    DirectScene2D(int width, int height);
    // Unlinks the children (not deleted).
    ~DirectScene2D() override;

    // Renders the tree into whatever target is bound, normally the screen.
    void draw();
    // Null restores the default camera. The camera must stay valid while it is set.
    void setCamera(Camera2D* camera);
    Camera2D* getCamera() const { return camera; }

    // As Scene2D's: worldToScreen turns by +rotation where worldToScreenMatrix turns by
    // -rotation; they agree at rotation 0. Kept as it is.
    orvel::mat2 worldToScreenMatrix() const;
    orvel::mat2 screenToWorldMatrix() const;
    orvel::vec2 worldToScreen(const orvel::vec2& p) const;
    orvel::vec2 screenToWorld(const orvel::vec2& p) const;

    Camera2D defaultCamera;  // at the centre of the screen; used while no camera is set
    Camera2D previousCamera; // the camera as the previous draw() used it; (0, 0) before the first
    Camera2D* camera;        // not owned
    float worldWidth;        // the world wraps at worldWidth x worldHeight
    float worldHeight;
    int32_t screenWidth; // size of the output, pixels
    int32_t screenHeight;
    // Post-processing settings that nothing reads yet.
    float tuning[4];
    Color4ub tuningColor;
    float tuningFactor;
    bool enabled;         // not read by draw()
    bool debugDraw;       // outline the world border and every node's bounds
    bool wrap;            // the world wraps around at its edges
    bool skipTransparent; // a node whose combined alpha is 0 is skipped with its subtree
};

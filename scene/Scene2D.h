#pragma once
// The world scene root: draws its tree into an offscreen target, then copies that to the screen.

#include <cstdint>

#include "engine/Matrix.h"
#include "engine/Stack.h"
#include "engine/Vector.h"
#include "scene/Camera2D.h"
#include "scene/Container.h"
#include "scene/Drawable.h"

namespace orvel {
class Framebuffer;
class Texture;
} // namespace orvel

// A rectangle of view space (world units relative to the camera, not rotated) that a node's
// bounds are tested against, and the shift in world units given to every node drawn through it:
// with a wrapping world the view sees the far side of the world through the extra rectangles.
struct ViewRect {
    float x, y, width, height;
    float offsetX, offsetY;
};

// The render state a scene root hands to every draw(SceneState&).
struct SceneState {
    // This frame's view rectangles (the root's, valid during draw()). Nodes that draw at world
    // positions of their own repeat their drawing once per rectangle, shifted by its offset.
    orvel::Stack<ViewRect>* viewRects;
    Color4ub color;            // product of the blend colours from the root down to this node
    orvel::mat4* projection2D; // orthographic, y down, origin at the centre of the screen
    orvel::mat4* projection3D; // perspective
    orvel::mat2 transform2D;   // world to view, this node's own transform included (not for effects)
    orvel::mat4 transform3D;   // the same for 3D nodes
    orvel::vec3 position;      // the node's position plus its rectangle's offset (z unchanged)
    orvel::vec2 cameraMotion;  // camera position now minus at the previous draw()
};

// Created once at start-up and kept; the main program calls draw() once a frame, before the HUD.
class Scene2D : public Container {
public:
    // -1 for either size means the engine's screen width or height. Loads the shared shaders
    // and creates a framebuffer of that size with all four colour targets and depth.
    Scene2D(int width, int height);
    // Unlinks the children (not deleted) and deletes the framebuffer.
    ~Scene2D() override;

    // Renders the tree into the framebuffer, then covers the screen with its colour texture.
    void draw();
    // Null restores the default camera. The camera must stay valid while it is set.
    void setCamera(Camera2D* camera);
    Camera2D* getCamera() const { return camera; }

    // World to screen pixels and back, with the camera wrapped into the world. These scale last,
    // while draw() scales first; both are what callers are built on.
    orvel::mat2 worldToScreenMatrix() const;
    orvel::mat2 screenToWorldMatrix() const;
    // As the matrices, except that worldToScreen turns by +rotation where the matrix turns by
    // -rotation; the two agree at rotation 0, which is all the game uses. Kept as it is.
    orvel::vec2 worldToScreen(const orvel::vec2& p) const;
    orvel::vec2 screenToWorld(const orvel::vec2& p) const;

    orvel::Framebuffer* framebuffer; // owned
    // Copies of the framebuffer's colour targets (owned by it); color0 is copied to the screen.
    orvel::Texture* color0;
    orvel::Texture* color1;
    orvel::Texture* color2;
    orvel::Texture* color3;
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

// The walk and the conversions shared by Scene2D and DirectScene2D; Root is one of them.
// drawSceneTree runs everything of draw() but the offscreen target: the scratch stacks it keeps
// are function-local statics, one set per root class, cleared each call and never freed.
template <typename Root> void drawSceneTree(Root& root);
template <typename Root> orvel::mat2 rootWorldToScreenMatrix(const Root& root);
template <typename Root> orvel::mat2 rootScreenToWorldMatrix(const Root& root);
template <typename Root> orvel::vec2 rootWorldToScreen(const Root& root, const orvel::vec2& p);

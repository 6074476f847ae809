#pragma once
// What both scene roots are: a child list, a 2D camera and the settings of one walk of the tree.

#include <cstdint>

#include "engine/Matrix.h"
#include "engine/Stack.h"
#include "engine/Vector.h"
#include "scene/Camera2D.h"
#include "scene/Container.h"
#include "scene/Drawable.h"

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

// The walk of the tree and the screen/world conversions, shared by Scene2D (the world, drawn
// offscreen) and DirectScene2D (the HUD, drawn to the screen). Only those two are made.
class SceneRoot : public Container {
public:
    // Unlinks the children (not deleted).
    ~SceneRoot() override;

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
    // Where draw() puts the world point `p`. When the world wraps, `p` is taken at its copy
    // nearest the camera, and this is the inverse of screenToWorld, which scales as draw() does.
    orvel::vec2 drawnPosition(const orvel::vec2& p) const;

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

protected:
    // The memory a walk works in: each root class keeps one as a static of its draw(), made on
    // the first call and kept for the life of the program; every walk empties it, never frees it.
    struct Scratch {
        Scratch();

        orvel::Stack<SceneState> stateStack; // saved parent states
        orvel::Stack<Drawable*> drawStack;   // siblings still to visit after a subtree
        orvel::Stack<ViewRect> viewRects;    // this frame's, in the order they are tried
        Bounds bounds;                       // the node last tested for culling, across frames too
        orvel::mat4 projection2D;
        orvel::mat4 projection3D;
    };

    // -1 for either size means the engine's screen width or height. Loads the shared shaders.
    SceneRoot(int width, int height);

    // One walk of the tree into whatever target is bound: every step of draw() but the
    // offscreen target.
    void drawTree(Scratch& scratch);

private:
    SceneState startState(Scratch& scratch) const;
    Camera2D& repairedCamera();
    orvel::vec2 wrappedCamera() const;
    orvel::vec2 viewCentre() const;
    void pushViewRects(orvel::Stack<ViewRect>& rects, orvel::vec2 centre) const;
    void setProjections(Scratch& scratch) const;
    orvel::vec2 takeCameraMotion();
    void drawWorldBorder(const orvel::mat2& view, const orvel::mat4& projection) const;
    void walk(Scratch& scratch, SceneState& state) const;
    orvel::mat2 worldToScreenTurning(float degrees) const;
};

#pragma once
// A perspective camera that loads the GL projection and model-view matrices.

#include "engine/Vector.h"

namespace orvel {

class Camera {
public:
    // Flags for bind(), combined with |.
    static const char PROJECTION = 4;
    static const char ROTATION = 2;
    static const char TRANSLATION = 1;

    // Looks nowhere (direction zero) from the origin, up +y, 45 degrees, depth 0.1 .. 100.
    Camera();

    // direction = normalised (target - eye).
    void lookAt(const vec3& target);
    // Loads the matrices that `flags` asks for and leaves GL in model-view mode:
    // PROJECTION: the frustum of fov, zNear, zFar and the screen's aspect (fov clamped to
    // [0.5, 100] and stored back); ROTATION: the view turned along direction and up (otherwise
    // none); TRANSLATION: moved to eye (otherwise the view stays at the origin). The model-view
    // matrix is always replaced by view; the projection only with PROJECTION. Normalises up and
    // direction in place.
    void bind(char flags);
    // Replaces the model-view matrix by one that keeps only its translation (column 3), for
    // sprites that face the camera. Leaves GL in model-view mode.
    static void loadBlobMatrix();

    vec3 anchor;     // (0, 1, 10); read by nothing, kept with the camera
    float view[16];  // model-view matrix, column-major, rebuilt by bind()
    vec3 up;         // need not be normalised; bind() normalises it
    vec3 direction;  // viewing direction; need not be normalised; bind() normalises it
    vec3 eye;        // position
    float zNear;     // near clipping distance
    float zFar;      // far clipping distance
    float fov;       // vertical field of view, degrees
};

} // namespace orvel

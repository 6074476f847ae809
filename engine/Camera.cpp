#include "engine/Camera.h"

#include <cmath>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"

namespace orvel {

namespace {

constexpr double PI = 3.14159265358979323846;

} // namespace

Camera::Camera()
    : anchor(0, 1, 10), view{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, up(0, 1, 0), direction(0, 0, 0),
      eye(0, 0, 0), zNear(0.1f), zFar(100.0f), fov(45.0f) {}

void Camera::lookAt(const vec3& target) {
    direction = target - eye;
    direction.normalize();
}

void Camera::bind(char flags) {
    if (flags & PROJECTION) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        fov = Math::clampf(fov, 0.5f, 100.0f);
        float top = (float)(zNear * std::tan(fov * PI / 360.0));
        float right = ((float)Orvel::getScreenWidth() / (float)Orvel::getScreenHeight()) * top;
        glFrustum(-right, right, -top, top, zNear, zFar);
    }

    up.normalize();
    direction.normalize();
    vec3 side = Math::cross(direction, up);
    side.normalize();
    vec3 u = Math::cross(side, direction);
    u.normalize();

    for (float& v : view) v = 0;
    if (flags & ROTATION) {
        // Rows side, u and -direction: the inverse (transpose) of the camera's own axes.
        view[0] = side.x;
        view[4] = side.y;
        view[8] = side.z;
        view[1] = u.x;
        view[5] = u.y;
        view[9] = u.z;
        view[2] = -direction.x;
        view[6] = -direction.y;
        view[10] = -direction.z;
    } else {
        view[0] = view[5] = view[10] = 1;
    }
    if (flags & TRANSLATION) {
        vec3 e(-eye.x, -eye.y, -eye.z);
        view[12] = view[0] * e.x + view[4] * e.y + view[8] * e.z;
        view[13] = view[1] * e.x + view[5] * e.y + view[9] * e.z;
        view[14] = view[2] * e.x + view[6] * e.y + view[10] * e.z;
    }
    view[15] = 1;
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(view);
}

void Camera::loadBlobMatrix() {
    static float m[16];
    // The model-view matrix whatever mode the caller left GL in.
    glMatrixMode(GL_MODELVIEW);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    for (int i = 0; i < 12; ++i) m[i] = (i == 0 || i == 5 || i == 10) ? 1.0f : 0.0f;
    glLoadMatrixf(m);
}

} // namespace orvel

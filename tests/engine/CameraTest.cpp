#include "engine/Camera.h"

#include <array>

#include "engine/Color.h"
#include "engine/Vector.h"
#include "tests/support/GLFixture.h"

using orvel::Camera;
using orvel::Color;
using orvel::vec3;
using testing_support::GLTest;

namespace {

const float EPS = 1e-5f;
const float R = 0.70710678f; // 1 / sqrt(2)

// The fixture's window is 320 x 240, an aspect of 4 / 3.
class CameraTest : public GLTest {
protected:
    static void getMatrix(GLenum which, float* m) { glGetFloatv(which, m); }

    static void expectMatrix(const float* actual, const float* expected, float eps = EPS) {
        for (int i = 0; i < 16; ++i) EXPECT_NEAR(actual[i], expected[i], eps) << "element " << i;
    }
    static void expectModelView(const float* expected) {
        float m[16];
        getMatrix(GL_MODELVIEW_MATRIX, m);
        expectMatrix(m, expected);
    }
    // Binds `c` with the projection flag and field of view `fov`; the projection it loaded.
    static std::array<float, 16> projectionWithFov(Camera& c, float fov) {
        c.fov = fov;
        c.bind(4);
        std::array<float, 16> m;
        getMatrix(GL_PROJECTION_MATRIX, m.data());
        return m;
    }
    // Binds a camera at `eye` looking along `direction` with `flags`: both the view it keeps and
    // the model-view it loads are `expected`.
    static void expectBoundView(const vec3& eye, const vec3& direction, int flags, const float* expected) {
        Camera c;
        c.eye = eye;
        c.direction = direction;
        c.bind(flags);
        expectMatrix(c.view, expected);
        expectModelView(expected);
    }
    static void expectVec(const vec3& v, float x, float y, float z) {
        EXPECT_NEAR(v.x, x, EPS);
        EXPECT_NEAR(v.y, y, EPS);
        EXPECT_NEAR(v.z, z, EPS);
    }
};

} // namespace

TEST_F(CameraTest, ConstructsWithItsDefaults) {
    Camera c;
    expectVec(c.anchor, 0, 1, 10);
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    expectMatrix(c.view, identity, 0);
    expectVec(c.up, 0, 1, 0);
    expectVec(c.direction, 0, 0, 0);
    expectVec(c.eye, 0, 0, 0);
    EXPECT_EQ(c.zNear, 0.1f);
    EXPECT_EQ(c.zFar, 100.0f);
    EXPECT_EQ(c.fov, 45.0f);
}

TEST_F(CameraTest, LookAtPointsDirectionFromEyeToTargetNormalised) {
    Camera c;
    c.eye = vec3(1, 1, 1);
    c.lookAt(vec3(4, 5, 1)); // (3, 4, 0) has length 5
    expectVec(c.direction, 0.6f, 0.8f, 0);
    expectVec(c.eye, 1, 1, 1);
}

TEST_F(CameraTest, ProjectionFlagLoadsTheFrustumOfFovAndScreenAspect) {
    Camera c;
    std::array<float, 16> m = projectionWithFov(c, 90);
    // top = 0.1 tan 45 = 0.1, right = 4/3 * 0.1; frustum: n / right = 0.75, n / top = 1,
    // -(f + n) / (f - n) = -100.1 / 99.9, -2 f n / (f - n) = -20 / 99.9.
    const float expected[16] = {0.75f, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1.0020020f, -1, 0, 0, -0.2002002f, 0};
    expectMatrix(m.data(), expected);
}

TEST_F(CameraTest, Fov200IsClampedTo100AndKeptInTheField) {
    Camera c;
    std::array<float, 16> m = projectionWithFov(c, 200);
    EXPECT_EQ(c.fov, 100.0f);
    // n / top = 1 / tan 50 = 0.83909963; n / right = that * 3/4 = 0.62932472.
    EXPECT_NEAR(m[0], 0.62932472f, EPS);
    EXPECT_NEAR(m[5], 0.83909963f, EPS);
}

TEST_F(CameraTest, FovBelowHalfADegreeIsClampedToHalf) {
    Camera c;
    std::array<float, 16> m = projectionWithFov(c, 0.1f);
    EXPECT_EQ(c.fov, 0.5f);
    // 1 / tan 0.25 degrees = 229.18166.
    EXPECT_NEAR(m[5], 229.18166f, 0.01f);
}

TEST_F(CameraTest, WithoutProjectionFlagTheProjectionAndFovStay) {
    glMatrixMode(GL_PROJECTION);
    const float known[16] = {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 5, 6, 7, 1};
    glLoadMatrixf(known);
    Camera c;
    c.fov = 200;
    c.direction = vec3(0, 0, -1);
    c.bind(3);
    float m[16];
    getMatrix(GL_PROJECTION_MATRIX, m);
    expectMatrix(m, known, 0);
    EXPECT_EQ(c.fov, 200.0f);
}

TEST_F(CameraTest, BindSevenTurnsAlongDirectionAndMovesToEye) {
    // side = direction x up = (0, 0, 1), u = side x direction = (0, 1, 0); rows side, u and
    // -direction; translation = rows . (-1, -2, -3) = (-3, -2, 1).
    const float expected[16] = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, -3, -2, 1, 1};
    expectBoundView(vec3(1, 2, 3), vec3(1, 0, 0), 7, expected);
}

TEST_F(CameraTest, BindSixHasNoTranslationEvenFarFromTheOrigin) {
    // direction (R, 0, -R); side = (R, 0, R); u = (0, 1, 0).
    const float expected[16] = {R, 0, -R, 0, 0, 1, 0, 0, R, 0, R, 0, 0, 0, 0, 1};
    expectBoundView(vec3(500, -300, 1000), vec3(1, 0, -1), 6, expected);
}

TEST_F(CameraTest, TranslationFlagAloneMovesWithoutTurning) {
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1};
    expectBoundView(vec3(1, 2, 3), vec3(1, 0, 0), 1, expected);
}

TEST_F(CameraTest, ProjectionFlagAloneLoadsIdentityViewInModelViewMode) {
    Camera c;
    c.eye = vec3(1, 2, 3);
    c.direction = vec3(1, 0, 0);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(9, 9, 9);
    c.bind(4);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    expectModelView(identity);
}

TEST_F(CameraTest, BindNormalisesUpAndDirectionInPlace) {
    Camera c;
    c.up = vec3(0, 3, 0);
    c.direction = vec3(0, 0, -2);
    c.bind(2);
    expectVec(c.up, 0, 1, 0);
    expectVec(c.direction, 0, 0, -1);
}

TEST_F(CameraTest, UpTiltedTowardsDirectionStillGivesAnUprightView) {
    Camera c;
    c.up = vec3(0, 1, 1);
    c.direction = vec3(0, 0, -1);
    c.bind(2);
    // side = (0, 0, -1) x (0, R, R) = (R, 0, 0), normalised (1, 0, 0); u = (0, 1, 0).
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    expectMatrix(c.view, identity);
    // The field is normalised, not straightened.
    expectVec(c.up, 0, R, R);
}

TEST_F(CameraTest, BoundCameraShowsItsTargetAtTheScreenCentre) {
    Camera c;
    c.eye = vec3(1, 2, 3);
    c.lookAt(vec3(4, 2, -1));
    c.bind(7);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glPointSize(4);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_POINTS);
    glVertex3f(4, 2, -1);
    glEnd();
    Pixels p = readScreen();
    const uint32_t white = Color::getColor(255, 255, 255, 255);
    // A 4-pixel point centred on the pixel corner (160, 120).
    EXPECT_EQ(p.at(159, 119), white);
    EXPECT_EQ(p.at(160, 120), white);
    EXPECT_EQ(p.at(158, 118), white);
    EXPECT_EQ(p.at(161, 121), white);
    EXPECT_EQ(p.at(163, 120), 0u);
    EXPECT_EQ(p.at(156, 120), 0u);
}

TEST_F(CameraTest, LoadBlobMatrixKeepsOnlyTheTranslation) {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(5, 6, 7);
    glRotatef(30, 0, 0, 1);
    glScalef(2, 3, 4);
    Camera::loadBlobMatrix();
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    expectModelView(expected);
}

TEST_F(CameraTest, LoadBlobMatrixKeepsTheWholeLastColumn) {
    glMatrixMode(GL_MODELVIEW);
    // Row 3 of the first three columns is cleared; elements 12..15 stay as they are.
    const float m[16] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, -2, -3, 2};
    glLoadMatrixf(m);
    Camera::loadBlobMatrix();
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 2};
    expectModelView(expected);
}

TEST_F(CameraTest, LoadBlobMatrixActsOnModelViewWhateverTheMatrixMode) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(1, 2, 3);
    glScalef(5, 5, 5);
    glMatrixMode(GL_PROJECTION);
    Camera::loadBlobMatrix();
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float m[16];
    getMatrix(GL_PROJECTION_MATRIX, m);
    expectMatrix(m, identity, 0);
    const float expected[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    expectModelView(expected);
}

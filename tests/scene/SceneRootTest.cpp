// What both scene roots share outside the walk: construction, an empty frame and the
// screen/world conversions.

#include <gtest/gtest.h>

#include "engine/Matrix.h"
#include "scene/DirectScene2D.h"
#include "scene/Scene2D.h"
#include "scene/SceneRoot.h"
#include "scene/Shaders.h"
#include "tests/scene/SceneGLTest.h"
#include "tests/scene/TestNodes.h"
#include "tests/support/MathChecks.h"

using orvel::mat2;
using orvel::vec2;
using testing_support::expectMat2Near;

namespace {

void expectVec2(const vec2& v, float x, float y) {
    EXPECT_NEAR(v.x, x, 1e-3f);
    EXPECT_NEAR(v.y, y, 1e-3f);
}

// A root's screen and world are both w x h, and its default camera looks at their centre.
void expectScreenWorldAndCamera(const ::SceneRoot& root, int w, int h, float cameraX, float cameraY) {
    EXPECT_EQ(root.screenWidth, w);
    EXPECT_EQ(root.screenHeight, h);
    EXPECT_FLOAT_EQ(root.worldWidth, w);
    EXPECT_FLOAT_EQ(root.worldHeight, h);
    EXPECT_FLOAT_EQ(root.defaultCamera.position.x, cameraX);
    EXPECT_FLOAT_EQ(root.defaultCamera.position.y, cameraY);
}

} // namespace

// The fixture takes the name of the class under test, so it and its tests live in scene_test.
namespace scene_test {

template <typename Root> class SceneRoot : public SceneGLTest {
protected:
    // A 1280 x 720 root over the game's 4096 x 4096 world, looking through `camera`.
    Root* gameWorld(vec2 position, float zoom, float rotation) {
        Root* root = new Root(-1, -1);
        root->worldWidth = 4096;
        root->worldHeight = 4096;
        camera = Camera2D(position, zoom, rotation);
        root->setCamera(&camera);
        return root;
    }

    Camera2D camera;
};

using Roots = ::testing::Types<Scene2D, DirectScene2D>;
TYPED_TEST_SUITE(SceneRoot, Roots);

TYPED_TEST(SceneRoot, MinusOneTakesTheEngineScreenSize) {
    TypeParam root(-1, -1);
    expectScreenWorldAndCamera(root, 1280, 720, 640, 360);
}

TYPED_TEST(SceneRoot, GivenSizesSetScreenWorldAndDefaultCamera) {
    TypeParam root(800, -1);
    expectScreenWorldAndCamera(root, 800, 720, 400, 360);
    EXPECT_FLOAT_EQ(root.defaultCamera.zoom, 1);
    EXPECT_FLOAT_EQ(root.defaultCamera.rotation, 0);
}

TYPED_TEST(SceneRoot, StartsWithTheDefaultCameraAndEverySwitchOn) {
    TypeParam root(-1, -1);
    EXPECT_EQ(root.camera, &root.defaultCamera);
    EXPECT_EQ(root.getCamera(), &root.defaultCamera);
    EXPECT_FLOAT_EQ(root.previousCamera.position.x, 0);
    EXPECT_FLOAT_EQ(root.previousCamera.position.y, 0);
    EXPECT_FLOAT_EQ(root.previousCamera.zoom, 1);
    EXPECT_FLOAT_EQ(root.previousCamera.rotation, 0);
    EXPECT_TRUE(root.enabled);
    EXPECT_TRUE(root.debugDraw);
    EXPECT_TRUE(root.wrap);
    EXPECT_TRUE(root.skipTransparent);
    EXPECT_EQ(root.count, 0);
    EXPECT_EQ(root.first, nullptr);
}

TYPED_TEST(SceneRoot, KeepsItsUnreadTuningValues) {
    TypeParam root(-1, -1);
    EXPECT_FLOAT_EQ(root.tuning[0], 80);
    EXPECT_FLOAT_EQ(root.tuning[1], 2);
    EXPECT_FLOAT_EQ(root.tuning[2], 10);
    EXPECT_FLOAT_EQ(root.tuning[3], 0.5f);
    EXPECT_EQ(root.tuningColor.r, 255);
    EXPECT_EQ(root.tuningColor.a, 255);
    EXPECT_FLOAT_EQ(root.tuningFactor, 0.1f);
}

TYPED_TEST(SceneRoot, ConstructionLoadsTheSharedShadersOnce) {
    TypeParam first(-1, -1);
    EXPECT_TRUE(Shaders::wasInit);
    ASSERT_NE(Shaders::color_shader_fixed, nullptr);
    ASSERT_NE(Shaders::texture_shader_fixed, nullptr);
    orvel::ShaderProgram* program = Shaders::texture_shader_fixed;
    TypeParam second(-1, -1);
    EXPECT_EQ(Shaders::texture_shader_fixed, program);
}

TYPED_TEST(SceneRoot, DeletingARootUnlinksButKeepsItsNodes) {
    RecordingNode a, b;
    expectDeletingUnlinksBoth(new TypeParam(-1, -1), a, b);
}

TYPED_TEST(SceneRoot, AnEmptyRootWithoutOutlinesLeavesTheScreenAsItWas) {
    TypeParam root(-1, -1);
    root.debugDraw = false;
    auto p = this->drawOver(root, 10, 20, 30);
    for (int y = 0; y < 720; y += 37) {
        for (int x = 0; x < 1280; x += 41)
            ASSERT_EQ(this->rgbAt(p, x, y), rgb(10, 20, 30)) << x << ", " << y;
    }
}

TYPED_TEST(SceneRoot, WorldToScreenMatrixWrapsTheCameraAndScalesLast) {
    TypeParam* root = this->gameWorld(vec2(5000, -100), 2, 0);
    // Camera wrapped to (904, 3996). Screen centre, then the camera moved to the origin, then
    // scaled: p -> 2 p + (640 - 904, 360 - 3996).
    expectMat2Near(root->worldToScreenMatrix(), 2, 0, 0, 2, -264, -3636);
    delete root;
}

TYPED_TEST(SceneRoot, ScreenToWorldMatrixUndoesTheZoom) {
    TypeParam* root = this->gameWorld(vec2(5000, -100), 2, 0);
    // p -> 0.5 (p - (640, 360)) + (904, 3996).
    expectMat2Near(root->screenToWorldMatrix(), 0.5f, 0, 0, 0.5f, 584, 3816);
    expectVec2(root->screenToWorld(vec2(640, 360)), 904, 3996);
    delete root;
}

TYPED_TEST(SceneRoot, ScreenToWorldMatrixAtZoomZeroCollapsesToTheCamera) {
    TypeParam* root = this->gameWorld(vec2(5000, -100), 0, 0);
    expectMat2Near(root->screenToWorldMatrix(), 0, 0, 0, 0, 904, 3996);
    delete root;
}

TYPED_TEST(SceneRoot, ScreenToWorldOfWorldToScreenIsTheIdentityUnzoomedAndUnturned) {
    TypeParam* root = this->gameWorld(vec2(100, 100), 1, 0);
    vec2 p(150, 120);
    vec2 s = root->worldToScreen(p);
    expectVec2(s, 690, 380);
    expectVec2(root->screenToWorld(s), 150, 120);
    delete root;
}

TYPED_TEST(SceneRoot, WorldToScreenTurnsTheOtherWayFromItsMatrix) {
    TypeParam* root = this->gameWorld(vec2(100, 200), 1, 90);
    // The matrix turns by -90 degrees: [0, 1, -1, 0, 640, 360], then moves by (-100, -200).
    mat2 m = root->worldToScreenMatrix();
    expectMat2Near(m, 0, 1, -1, 0, 840, 260);
    expectVec2(m * vec2(110, 200), 640, 370);
    // worldToScreen turns by +90 degrees: [0, -1, 1, 0, 640, 360], moved: (440, 460).
    expectVec2(root->worldToScreen(vec2(110, 200)), 640, 350);
    // Both send the camera itself to the centre.
    expectVec2(root->worldToScreen(vec2(100, 200)), 640, 360);
    delete root;
}

} // namespace scene_test

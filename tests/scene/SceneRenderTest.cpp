// The walk both scene roots share: order, transforms, colours, visibility, culling against the
// wrap rectangles, GL state per leaf, and no allocation in the steady state. Every test runs
// once through Scene2D and once through DirectScene2D.

#include <vector>

#include <gtest/gtest.h>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Matrix.h"
#include "engine/ShaderProgram.h"
#include "scene/DirectScene2D.h"
#include "scene/Group.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/support/AllocationCounter.h"
#include "tests/scene/SceneGLTest.h"
#include "tests/support/MathChecks.h"

using orvel::mat2;
using orvel::mat4;
using orvel::vec2;
using orvel::vec3;
using scene_test::g_drawLog;
using scene_test::RecordingEffect;
using scene_test::RecordingNode;
using scene_test::rgb;
using testing_support::expectMat2Near;

namespace {

void expectColor(const Color4ub& c, int r, int g, int b, int a) {
    EXPECT_EQ(c.r, r);
    EXPECT_EQ(c.g, g);
    EXPECT_EQ(c.b, b);
    EXPECT_EQ(c.a, a);
}

void expectRect(const ViewRect& r, float x, float y, float w, float h, float ox, float oy) {
    EXPECT_FLOAT_EQ(r.x, x);
    EXPECT_FLOAT_EQ(r.y, y);
    EXPECT_FLOAT_EQ(r.width, w);
    EXPECT_FLOAT_EQ(r.height, h);
    EXPECT_FLOAT_EQ(r.offsetX, ox);
    EXPECT_FLOAT_EQ(r.offsetY, oy);
}

std::vector<const Drawable*> drawOrder() {
    return std::vector<const Drawable*>(g_drawLog.entries, g_drawLog.entries + g_drawLog.count);
}

} // namespace

// A root of the screen's size with debug outlines and wrapping off, so the default camera
// shows world point (x, y) at pixel (x, y). Tests switch either on where they need it.
template <typename Root> class SceneRender : public scene_test::SceneGLTest {
protected:
    void SetUp() override {
        SceneGLTest::SetUp();
        root = new Root(-1, -1);
        root->debugDraw = false;
        root->wrap = false;
    }
    void TearDown() override {
        delete root;
        SceneGLTest::TearDown();
    }

    // The world of the game: 4096 x 4096 units, wrapping, seen through `camera` at zoom 1.
    void useWrappingWorld(float cx, float cy) {
        root->worldWidth = 4096;
        root->worldHeight = 4096;
        root->wrap = true;
        camera = Camera2D(vec2(cx, cy), 1, 0);
        root->setCamera(&camera);
    }

    // Draws once with a probe at the camera's place in the world; the rectangles of that frame.
    std::vector<ViewRect> viewRectsSeenFrom(float cx, float cy) {
        useWrappingWorld(cx, cy);
        RecordingNode probe;
        probe.position = vec3(orvel::Math::wrapf(cx, 0, 4096), orvel::Math::wrapf(cy, 0, 4096), 0);
        root->add(&probe);
        root->draw();
        EXPECT_EQ(probe.drawCount, 1);
        const orvel::Stack<ViewRect>& rects = *probe.state.viewRects;
        return std::vector<ViewRect>(rects.data, rects.data + rects.count);
    }

    Root* root = nullptr;
    Camera2D camera;
};

using Roots = ::testing::Types<Scene2D, DirectScene2D>;
TYPED_TEST_SUITE(SceneRender, Roots);

// ---- Order, transforms and colours ----

TYPED_TEST(SceneRender, LeavesAreDrawnBackToFrontThroughGroups) {
    RecordingNode l1, l2, l3, l4;
    Group g;
    l1.position = vec3(640, 360, 0);
    l4.position = vec3(640, 360, 0);
    g.position = vec3(640, 360, 0);
    this->root->add(&l1);
    this->root->add(&g);
    g.add(&l2);
    g.add(&l3);
    this->root->add(&l4);
    this->root->draw();
    EXPECT_EQ(drawOrder(), (std::vector<const Drawable*>{&l1, &l2, &l3, &l4}));
}

TYPED_TEST(SceneRender, ALeafIsDrawnWithTheViewTimesItsOwnTransform) {
    this->camera = Camera2D(vec2(300, 200), 2, 0);
    this->root->setCamera(&this->camera);
    RecordingNode leaf;
    leaf.position = vec3(310, 200, 0);
    this->root->add(&leaf);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    // View: scale 2, then translate by (-300, -200): [2, 0, 0, 2, -600, -400]; the leaf's
    // translation by (310, 200) adds (620, 400).
    expectMat2Near(leaf.state.transform2D, 2, 0, 0, 2, 20, 0);
    // A 2D leaf keeps the root's 3D transform: the view widened, moved by (0, 0, 2).
    EXPECT_FLOAT_EQ(leaf.state.transform3D.m[0], 2);
    EXPECT_FLOAT_EQ(leaf.state.transform3D.m[12], -600);
    EXPECT_FLOAT_EQ(leaf.state.transform3D.m[13], -400);
    EXPECT_FLOAT_EQ(leaf.state.transform3D.m[14], 2);
    EXPECT_FLOAT_EQ(leaf.state.position.x, 310);
    EXPECT_FLOAT_EQ(leaf.state.position.y, 200);
}

TYPED_TEST(SceneRender, ALeafInsideAGroupComposesBothTransforms) {
    Group g;
    g.position = vec3(600, 300, 0);
    g.setRotation(90);
    g.setScale(2);
    RecordingNode leaf;
    leaf.position = vec3(10, 0, 0);
    g.add(&leaf);
    this->root->add(&g);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    // View [1, 0, 0, 1, -640, -360]; the group moves by (600, 300), turns by 90 degrees
    // (x axis to (0, -1), y axis to (1, 0)) and doubles: [0, -2, 2, 0, -40, -60]. The leaf's
    // (10, 0) lands at (-40, -60) + 10 * (0, -2).
    expectMat2Near(leaf.state.transform2D, 0, -2, 2, 0, -40, -80);
}

TYPED_TEST(SceneRender, ColoursMultiplyDownTheTree) {
    Group g;
    g.position = vec3(640, 360, 0);
    g.blendColor = Color4ub{100, 200, 255, 255};
    RecordingNode leaf;
    leaf.blendColor = Color4ub{50, 200, 0, 200};
    g.add(&leaf);
    this->root->add(&g);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    // Group under white: ((100 + 1) * 255) >> 8 = 100, ((200 + 1) * 255) >> 8 = 200, 255, 255.
    // Leaf: (51 * 100) >> 8 = 19, (201 * 200) >> 8 = 157, (1 * 255) >> 8 = 0,
    // (201 * 255) >> 8 = 200. (A product over 255 would give 156 for green.)
    expectColor(leaf.state.color, 19, 157, 0, 200);
}

TYPED_TEST(SceneRender, WhiteOverWhiteStaysWhite) {
    RecordingNode leaf;
    leaf.position = vec3(640, 360, 0);
    this->root->add(&leaf);
    this->root->draw();
    expectColor(leaf.state.color, 255, 255, 255, 255);
}

TYPED_TEST(SceneRender, ALeafPaintsAtItsScreenPositionInItsColour) {
    RecordingNode leaf(40, 20);
    leaf.position = vec3(200, 100, 0);
    leaf.setBlendColor(0xFF0080FFu); // r 255, g 128, b 0, a 255
    this->root->add(&leaf);
    this->root->draw();
    auto p = this->readScreen();
    // The box spans pixels 180..219 across and 90..109 down.
    EXPECT_EQ(this->rgbAt(p, 200, 100), rgb(255, 128, 0));
    EXPECT_EQ(this->rgbAt(p, 180, 90), rgb(255, 128, 0));
    EXPECT_EQ(this->rgbAt(p, 219, 109), rgb(255, 128, 0));
    EXPECT_EQ(this->rgbAt(p, 179, 100), rgb(0, 0, 0));
    EXPECT_EQ(this->rgbAt(p, 220, 100), rgb(0, 0, 0));
    EXPECT_EQ(this->rgbAt(p, 200, 89), rgb(0, 0, 0));
    EXPECT_EQ(this->rgbAt(p, 200, 110), rgb(0, 0, 0));
}

// ---- The two stacks out of step ----

TYPED_TEST(SceneRender, ASiblingAfterAGroupWhoseLastChildIsAGroupGetsThatGroupsState) {
    // root -> A (children: A1, last, holding S1), then B.
    Group a, a1;
    RecordingNode s1, b;
    a.position = vec3(100, 50, 0);
    a.blendColor = Color4ub{128, 255, 255, 255};
    a1.add(&s1);
    a.add(&a1);
    this->root->add(&a);
    b.position = vec3(300, 200, 0);
    this->root->add(&b);
    this->root->draw();

    ASSERT_EQ(b.drawCount, 1);
    ASSERT_EQ(s1.drawCount, 1);
    EXPECT_EQ(drawOrder(), (std::vector<const Drawable*>{&s1, &b}));
    // A's colour under white: ((128 + 1) * 255) >> 8 = 128; B multiplies it by (255 + 1) >> 8.
    expectColor(b.state.color, 128, 255, 255, 255);
    // View (-640, -360), A's (100, 50), B's (300, 200).
    expectMat2Near(b.state.transform2D, 1, 0, 0, 1, -240, -110);

    // B's box shows at (400, 250) in A's colour, not at (300, 200).
    auto p = this->readScreen();
    EXPECT_EQ(this->rgbAt(p, 400, 250), rgb(128, 255, 255));
    EXPECT_EQ(this->rgbAt(p, 300, 200), rgb(0, 0, 0));
}

TYPED_TEST(SceneRender, ASiblingAfterAGroupOfLeavesGetsItsParentsState) {
    Group a;
    RecordingNode inside, b;
    a.position = vec3(100, 50, 0);
    a.blendColor = Color4ub{128, 255, 255, 255};
    a.add(&inside);
    this->root->add(&a);
    b.position = vec3(300, 200, 0);
    this->root->add(&b);
    this->root->draw();
    ASSERT_EQ(b.drawCount, 1);
    expectColor(b.state.color, 255, 255, 255, 255);
    expectMat2Near(b.state.transform2D, 1, 0, 0, 1, -340, -160);
}

// ---- Visibility and transparency ----

TYPED_TEST(SceneRender, AHiddenChildIsSkippedWhileItsSiblingsAreDrawn) {
    Group g;
    g.position = vec3(640, 360, 0);
    RecordingNode hidden, shown;
    hidden.setVisible(false);
    g.add(&hidden);
    g.add(&shown);
    this->root->add(&g);
    this->root->draw();
    EXPECT_EQ(hidden.drawCount, 0);
    EXPECT_EQ(shown.drawCount, 1);
}

TYPED_TEST(SceneRender, AHiddenGroupHidesItsWholeSubtree) {
    Group g, inner;
    g.position = vec3(640, 360, 0);
    RecordingNode a, b;
    g.add(&a);
    inner.add(&b);
    g.add(&inner);
    g.setVisible(false);
    this->root->add(&g);
    this->root->draw();
    EXPECT_EQ(a.drawCount, 0);
    EXPECT_EQ(b.drawCount, 0);
    EXPECT_EQ(g_drawLog.count, 0);
}

TYPED_TEST(SceneRender, ZeroAlphaSkipsTheSubtreeWhenSkippingTransparentNodes) {
    Group g;
    g.position = vec3(640, 360, 0);
    g.blendColor.a = 0;
    RecordingNode child;
    g.add(&child);
    RecordingNode clear;
    clear.position = vec3(100, 100, 0);
    clear.blendColor.a = 0;
    this->root->add(&g);
    this->root->add(&clear);
    this->root->draw();
    EXPECT_EQ(child.drawCount, 0);
    EXPECT_EQ(clear.drawCount, 0);
}

TYPED_TEST(SceneRender, ZeroAlphaIsDrawnInvisiblyWhenNotSkipping) {
    this->root->skipTransparent = false;
    Group g;
    g.position = vec3(640, 360, 0);
    g.blendColor.a = 0;
    RecordingNode child(40, 40);
    g.add(&child);
    this->root->add(&g);
    this->root->draw();
    ASSERT_EQ(child.drawCount, 1);
    expectColor(child.state.color, 255, 255, 255, 0);
    auto p = this->readScreen();
    EXPECT_EQ(this->rgbAt(p, 640, 360), rgb(0, 0, 0));
}

// ---- Culling ----

TYPED_TEST(SceneRender, NodesOutsideTheViewAreCulled) {
    RecordingNode inside, outside, groupChild;
    inside.position = vec3(640, 360, 0);
    outside.position = vec3(2000, 360, 0);
    Group far;
    far.position = vec3(640, 3000, 0);
    far.add(&groupChild);
    this->root->add(&inside);
    this->root->add(&outside);
    this->root->add(&far);
    this->root->draw();
    EXPECT_EQ(inside.drawCount, 1);
    EXPECT_EQ(outside.drawCount, 0);
    EXPECT_EQ(groupChild.drawCount, 0);
}

TYPED_TEST(SceneRender, ACornerOnTheViewEdgeCounts) {
    // A 10 x 10 box at x 1285 has its left edge at view x 640, the view's right edge.
    RecordingNode onEdge, past;
    onEdge.position = vec3(1285, 360, 0);
    past.position = vec3(1285.5f, 360, 0);
    this->root->add(&onEdge);
    this->root->add(&past);
    this->root->draw();
    EXPECT_EQ(onEdge.drawCount, 1);
    EXPECT_EQ(past.drawCount, 0);
}

TYPED_TEST(SceneRender, ANodeLargerThanTheViewWithNoCornerInsideIsCulled) {
    RecordingNode huge(4000, 4000);
    huge.position = vec3(640, 360, 0);
    this->root->add(&huge);
    this->root->draw();
    EXPECT_EQ(huge.drawCount, 0);
}

TYPED_TEST(SceneRender, DirtyNodesAreMeasuredBeforeCulling) {
    RecordingNode leaf;
    leaf.position = vec3(640, 360, 0);
    leaf.markDirty();
    Group g;
    g.position = vec3(640, 360, 0);
    RecordingNode child;
    g.add(&child);
    this->root->add(&leaf);
    this->root->add(&g);
    this->root->draw();
    EXPECT_EQ(leaf.updateCalls, 1);
    EXPECT_EQ(leaf.flags & Drawable::DIRTY, 0u);
    EXPECT_EQ(g.flags & Drawable::DIRTY, 0u);
    EXPECT_FLOAT_EQ(g.size.x, 10);
    this->root->draw();
    EXPECT_EQ(leaf.updateCalls, 1);
}

TYPED_TEST(SceneRender, EffectNodesAreNeverCulled) {
    RecordingEffect effect;
    effect.position = vec3(9000, -9000, 0);
    this->root->add(&effect);
    this->root->draw();
    ASSERT_EQ(effect.drawCount, 1);
    expectMat2Near(effect.state.transform2D, 1, 0, 0, 1, -640, -360);
    EXPECT_FLOAT_EQ(effect.state.position.x, 9000);
    EXPECT_FLOAT_EQ(effect.state.position.y, -9000);
}

TYPED_TEST(SceneRender, EffectNodesDrawInTheirParentsSpace) {
    Group g;
    g.position = vec3(600, 300, 0);
    RecordingEffect effect;
    effect.position = vec3(5, 5, 0);
    effect.setRotation(45);
    effect.setScale(3);
    g.add(&effect);
    this->root->add(&g);
    this->root->draw();
    ASSERT_EQ(effect.drawCount, 1);
    // The group's transform: view (-640, -360) plus (600, 300); nothing of the effect's own.
    expectMat2Near(effect.state.transform2D, 1, 0, 0, 1, -40, -60);
    EXPECT_FLOAT_EQ(effect.state.position.x, 5);
    EXPECT_FLOAT_EQ(effect.state.position.y, 5);
}

// ---- Camera ----

TYPED_TEST(SceneRender, AZoomOfZeroIsRepairedToTheMinimum) {
    this->camera = Camera2D(vec2(640, 360), 0, 0);
    this->root->setCamera(&this->camera);
    this->root->draw();
    EXPECT_FLOAT_EQ(this->camera.zoom, 0.01f);

    this->camera.zoom = -3;
    this->root->draw();
    EXPECT_FLOAT_EQ(this->camera.zoom, 0.01f);
}

TYPED_TEST(SceneRender, CameraMotionIsMeasuredFromThePreviousDraw) {
    RecordingNode leaf(2000, 2000);
    this->camera = Camera2D(vec2(640, 360), 1, 0);
    this->root->setCamera(&this->camera);
    // Anchored at its top-left corner, which stays in view for both camera positions.
    leaf.setHotSpot(TopLeft);
    leaf.position = vec3(640, 360, 0);
    this->root->add(&leaf);

    this->root->draw();
    // The first draw measures from (0, 0).
    EXPECT_FLOAT_EQ(leaf.state.cameraMotion.x, 640);
    EXPECT_FLOAT_EQ(leaf.state.cameraMotion.y, 360);
    EXPECT_FLOAT_EQ(this->root->previousCamera.position.x, 640);

    this->camera.position = vec2(650, 355);
    this->camera.zoom = 1.5f;
    this->root->draw();
    EXPECT_FLOAT_EQ(leaf.state.cameraMotion.x, 10);
    EXPECT_FLOAT_EQ(leaf.state.cameraMotion.y, -5);
    EXPECT_FLOAT_EQ(this->root->previousCamera.position.x, 650);
    EXPECT_FLOAT_EQ(this->root->previousCamera.position.y, 355);
    EXPECT_FLOAT_EQ(this->root->previousCamera.zoom, 1.5f);
}

TYPED_TEST(SceneRender, SetCameraNullRestoresTheDefaultCamera) {
    Camera2D other(vec2(1, 2), 1, 0);
    this->root->setCamera(&other);
    EXPECT_EQ(this->root->getCamera(), &other);
    this->root->setCamera(nullptr);
    EXPECT_EQ(this->root->getCamera(), &this->root->defaultCamera);
}

// ---- Projections and per-leaf GL state ----

TYPED_TEST(SceneRender, ProjectionsCoverTheScreenAroundItsCentreWithYDown) {
    RecordingNode leaf;
    leaf.position = vec3(640, 360, 0);
    this->root->add(&leaf);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    const mat4& p2 = *leaf.state.projection2D;
    // Ortho over x -640..640, y -360..360 top to bottom, z -10..10.
    EXPECT_FLOAT_EQ(p2.m[0], 2.0f / 1280);
    EXPECT_FLOAT_EQ(p2.m[5], -2.0f / 720);
    EXPECT_FLOAT_EQ(p2.m[10], -0.1f);
    EXPECT_FLOAT_EQ(p2.m[12], 0);
    EXPECT_FLOAT_EQ(p2.m[13], 0);
    EXPECT_FLOAT_EQ(p2.m[15], 1);
    const mat4& p3 = *leaf.state.projection3D;
    // Frustum over x -320..320, y -180..180 top to bottom, near 1, far 10.
    EXPECT_FLOAT_EQ(p3.m[0], 2.0f / 640);
    EXPECT_FLOAT_EQ(p3.m[5], -2.0f / 360);
    EXPECT_FLOAT_EQ(p3.m[10], -11.0f / 9);
    EXPECT_FLOAT_EQ(p3.m[11], -1);
    EXPECT_FLOAT_EQ(p3.m[14], -20.0f / 9);
}

TYPED_TEST(SceneRender, ALeafDrawsUnderTheTextureProgramWithItsMatricesLoaded) {
    RecordingNode leaf;
    leaf.position = vec3(650, 370, 0);
    this->root->add(&leaf);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    EXPECT_EQ(leaf.program, (GLint)Shaders::texture_shader_fixed->id);
    EXPECT_TRUE(leaf.isTexcoordArrayOn);
    mat4 modelView(leaf.state.transform2D);
    for (int i = 0; i < 16; ++i) {
        EXPECT_FLOAT_EQ(leaf.modelView[i], modelView.m[i]) << i;
        EXPECT_FLOAT_EQ(leaf.projection[i], leaf.state.projection2D->m[i]) << i;
    }
    EXPECT_FLOAT_EQ(leaf.modelView[12], 10);
    EXPECT_FLOAT_EQ(leaf.modelView[13], 10);
}

TYPED_TEST(SceneRender, AThreeDimensionalLeafDrawsUnderThePerspective) {
    RecordingNode leaf;
    leaf.flags |= Drawable::NODE_3D;
    leaf.size = vec3(10, 10, 10);
    leaf.position = vec3(640, 360, 1);
    this->root->add(&leaf);
    this->root->draw();
    ASSERT_EQ(leaf.drawCount, 1);
    for (int i = 0; i < 16; ++i) {
        EXPECT_FLOAT_EQ(leaf.projection[i], leaf.state.projection3D->m[i]) << i;
        EXPECT_FLOAT_EQ(leaf.modelView[i], leaf.state.transform3D.m[i]) << i;
    }
    // View (-640, -360, 2) plus the leaf's (640, 360, 1).
    EXPECT_NEAR(leaf.modelView[12], 0, 1e-4f);
    EXPECT_NEAR(leaf.modelView[13], 0, 1e-4f);
    EXPECT_NEAR(leaf.modelView[14], 3, 1e-4f);
}

TYPED_TEST(SceneRender, DrawModesChooseTheirBlendFactorsInBitOrder) {
    struct Case {
        unsigned mode;
        GLint src, dst;
    };
    const Case cases[] = {
        {0x100, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA}, {0x200, GL_SRC_ALPHA, GL_ONE},
        {0x400, GL_SRC_ALPHA, GL_SRC_COLOR},           {0x000, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
        {0x300, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA}, {0x600, GL_SRC_ALPHA, GL_ONE},
        {0x800, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA},
    };
    for (const Case& c : cases) {
        RecordingNode leaf;
        leaf.position = vec3(640, 360, 0);
        leaf.setDrawMode(c.mode);
        this->root->add(&leaf);
        this->root->draw();
        EXPECT_EQ(leaf.blendSrc, c.src) << "mode " << c.mode;
        EXPECT_EQ(leaf.blendDst, c.dst) << "mode " << c.mode;
    }
}

TYPED_TEST(SceneRender, AdditiveLeavesAddToWhatIsBelow) {
    RecordingNode below(40, 40), above(20, 20);
    below.position = vec3(300, 300, 0);
    below.setBlendColor(0xFF000064u); // (100, 0, 0)
    above.position = vec3(300, 300, 0);
    above.setBlendColor(0xFF003200u); // (0, 50, 0)
    above.setDrawMode(BlendAdd);
    this->root->add(&below);
    this->root->add(&above);
    this->root->draw();
    auto p = this->readScreen();
    EXPECT_EQ(this->rgbAt(p, 300, 300), rgb(100, 50, 0));
    EXPECT_EQ(this->rgbAt(p, 285, 300), rgb(100, 0, 0));
}

// ---- View rectangles of the wrapping world ----

namespace {

// The rectangles for a 1280 x 720 view at zoom 1 of a 4096 x 4096 world: vw = 1280, vh = 720.
const ViewRect CENTRE = {-640, -360, 1280, 720, 0, 0};
const ViewRect TOP = {-640, 4096 - 1440, 1280, 2880, 0, -4096};
const ViewRect TOP_LEFT = {4096 - 1280, 4096 - 1440, 2560, 2880, -4096, -4096};
const ViewRect LEFT = {4096 - 1280, -360, 2560, 720, -4096, 0};
const ViewRect TOP_RIGHT = {-640 - 4096, 4096 - 1440, 2560, 2880, 4096, -4096};
const ViewRect RIGHT = {-640 - 4096, -360, 2560, 720, 4096, 0};
const ViewRect BOTTOM = {-640, -360 - 4096, 1280, 1440, 0, 4096};
const ViewRect BOTTOM_LEFT = {4096 - 1280, -360 - 4096, 2560, 1440, -4096, 4096};
const ViewRect BOTTOM_RIGHT = {-640 - 4096, -360 - 4096, 2560, 1440, 4096, 4096};

void expectRects(const std::vector<ViewRect>& actual, const std::vector<ViewRect>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < actual.size(); ++i) {
        SCOPED_TRACE(::testing::Message() << "rectangle " << i);
        const ViewRect& e = expected[i];
        expectRect(actual[i], e.x, e.y, e.width, e.height, e.offsetX, e.offsetY);
    }
}

} // namespace

TYPED_TEST(SceneRender, WithoutWrapThereIsOnlyTheView) {
    RecordingNode probe;
    probe.position = vec3(640, 360, 0);
    this->root->add(&probe);
    this->root->draw();
    ASSERT_EQ(probe.drawCount, 1);
    expectRects(std::vector<ViewRect>(probe.state.viewRects->data,
                                      probe.state.viewRects->data + probe.state.viewRects->count),
                {CENTRE});
}

TYPED_TEST(SceneRender, AViewInsideTheWorldHasOnlyItsOwnRectangle) {
    expectRects(this->viewRectsSeenFrom(2048, 2048), {CENTRE});
}

TYPED_TEST(SceneRender, AViewAtTheTopEdgeAddsTheTopBand) {
    expectRects(this->viewRectsSeenFrom(2048, 100), {CENTRE, TOP});
}

TYPED_TEST(SceneRender, AViewAtTheLeftEdgeAddsTheLeftBand) {
    expectRects(this->viewRectsSeenFrom(100, 2048), {CENTRE, LEFT});
}

TYPED_TEST(SceneRender, TouchingAnEdgeCountsAsReachingIt) {
    // cx - vw / 2 = 0 exactly.
    expectRects(this->viewRectsSeenFrom(640, 2048), {CENTRE, LEFT});
    expectRects(this->viewRectsSeenFrom(641, 2048), {CENTRE});
}

TYPED_TEST(SceneRender, AViewAtTheRightEdgeAddsTheRightBand) {
    expectRects(this->viewRectsSeenFrom(4000, 2048), {CENTRE, RIGHT});
}

TYPED_TEST(SceneRender, AViewAtTheBottomEdgeAddsTheBottomBand) {
    expectRects(this->viewRectsSeenFrom(2048, 4000), {CENTRE, BOTTOM});
}

TYPED_TEST(SceneRender, AViewAtTheTopLeftCornerAddsThreeRectanglesInOrder) {
    expectRects(this->viewRectsSeenFrom(100, 100), {CENTRE, TOP, TOP_LEFT, LEFT});
}

TYPED_TEST(SceneRender, AViewAtTheTopRightCornerAddsThreeRectanglesInOrder) {
    expectRects(this->viewRectsSeenFrom(4000, 100), {CENTRE, TOP, TOP_RIGHT, RIGHT});
}

TYPED_TEST(SceneRender, AViewAtTheBottomLeftCornerAddsThreeRectanglesInOrder) {
    expectRects(this->viewRectsSeenFrom(100, 4000), {CENTRE, LEFT, BOTTOM, BOTTOM_LEFT});
}

TYPED_TEST(SceneRender, AViewAtTheBottomRightCornerAddsThreeRectanglesInOrder) {
    expectRects(this->viewRectsSeenFrom(4000, 4000), {CENTRE, RIGHT, BOTTOM, BOTTOM_RIGHT});
}

TYPED_TEST(SceneRender, TheCameraIsWrappedIntoTheWorldFirst) {
    // -100 wraps to 3996, at the right edge.
    expectRects(this->viewRectsSeenFrom(-100, 2048), {CENTRE, RIGHT});
}

TYPED_TEST(SceneRender, RectanglesAreSizedByTheZoomedView) {
    this->useWrappingWorld(2048, 2048);
    this->camera.zoom = 0.5f;
    RecordingNode probe;
    probe.position = vec3(2048, 2048, 0);
    this->root->add(&probe);
    this->root->draw();
    ASSERT_EQ(probe.drawCount, 1);
    ASSERT_EQ(probe.state.viewRects->count, 1u);
    // vw = 1280 / 0.5, vh = 720 / 0.5.
    expectRect(probe.state.viewRects->data[0], -1280, -720, 2560, 1440, 0, 0);
}

TYPED_TEST(SceneRender, ANodeBeyondTheTopLeftCornerIsDrawnOnceShiftedByTheWorld) {
    this->useWrappingWorld(100, 100);
    RecordingNode node(64, 64);
    node.position = vec3(4000, 4000, 0);
    this->root->add(&node);
    this->root->draw();
    ASSERT_EQ(node.drawCount, 1);
    // Through the top-left corner rectangle: (4000, 4000) - (4096, 4096).
    EXPECT_FLOAT_EQ(node.state.position.x, -96);
    EXPECT_FLOAT_EQ(node.state.position.y, -96);
    // View: -(100, 100); so (-196, -196) from the centre of the screen.
    expectMat2Near(node.state.transform2D, 1, 0, 0, 1, -196, -196);
}

TYPED_TEST(SceneRender, TheFirstRectangleHoldingACornerWins) {
    // A 1000 x 1000 world seen from its centre: the view reaches the left and right edges, so
    // the rectangles are the view, the left band (-280, -360, 2560, 720; offset -1000, 0) and
    // the right band (-1640, -360, 2560, 720; offset 1000, 0).
    this->root->worldWidth = 1000;
    this->root->worldHeight = 1000;
    this->root->wrap = true;
    this->camera = Camera2D(vec2(500, 500), 1, 0);
    this->root->setCamera(&this->camera);
    RecordingNode inView, inBothBands;
    inView.position = vec3(600, 500, 0);       // view x 100: in all three, the view first
    inBothBands.position = vec3(1300, 500, 0); // view x 795..805: both bands, the left one first
    this->root->add(&inView);
    this->root->add(&inBothBands);
    this->root->draw();
    ASSERT_EQ(inView.drawCount, 1);
    ASSERT_EQ(inBothBands.drawCount, 1);
    EXPECT_EQ(inView.state.viewRects->count, 3u);
    EXPECT_FLOAT_EQ(inView.state.position.x, 600);
    EXPECT_FLOAT_EQ(inBothBands.state.position.x, 300);
}

// ---- Memory ----

TYPED_TEST(SceneRender, ASteadyStateFrameAllocatesNothing) {
    this->root->debugDraw = true;
    this->useWrappingWorld(100, 100);
    // Deeper than the stacks' first capacity of 128: each group holds the next group and then
    // a leaf, so every level pushes a state and a pending sibling.
    const int DEPTH = 200;
    std::vector<Group*> groups;
    std::vector<RecordingNode*> leaves;
    Container* parent = this->root;
    for (int i = 0; i < DEPTH; ++i) {
        Group* g = new Group;
        RecordingNode* leaf = new RecordingNode(8, 8);
        if (i == 0) g->position = vec3(120, 110, 0);
        parent->add(g);
        g->add(leaf);
        groups.push_back(g);
        leaves.push_back(leaf);
        parent = g;
    }
    for (int i = 0; i < 50; ++i) {
        RecordingNode* leaf = new RecordingNode(8, 8);
        leaf->position = vec3(4000 + i, 4000, 0);
        this->root->add(leaf);
        leaves.push_back(leaf);
    }
    // Each group holds its leaf first and the next group last: reorder to put the group first.
    for (int i = 0; i + 1 < DEPTH; ++i)
        groups[i]->sendToBack(groups[i + 1]);

    this->root->draw();
    this->root->draw();
    glFinish();
    size_t before = testing_support::allocationCount();
    this->root->draw();
    size_t after = testing_support::allocationCount();
    glFinish();

    EXPECT_EQ(after - before, 0u);
    EXPECT_EQ(leaves.front()->drawCount, 3);
    EXPECT_EQ(leaves.back()->drawCount, 3);
    EXPECT_EQ(leaves[DEPTH - 1]->drawCount, 3);

    for (RecordingNode* leaf : leaves)
        delete leaf;
    for (int i = DEPTH - 1; i >= 0; --i)
        delete groups[i];
}

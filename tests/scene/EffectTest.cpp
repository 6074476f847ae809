#include "scene/Effect.h"

#include "engine/GL.h"
#include "engine/ShaderProgram.h"
#include "scene/Group.h"
#include "scene/Scene2D.h"
#include "tests/scene/ColourDraw.h"
#include "tests/scene/TestNodes.h"
#include "tests/scene/VisualsFixture.h"

using orvel::vec3;
using testing_support::VisualsTest;

namespace {

// Draws a 10 x 10 square from its local origin in the state's colour and remembers what it got.
class SquareEffect : public Effect {
public:
    void draw(SceneState& state) override {
        ++draws;
        seenPosition = state.position;
        static GLfloat vertices[8] = {0, 0, 10, 0, 10, 10, 0, 10};
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        scene_test::drawInColour(GL_QUADS, vertices, 4, state.color);
    }

    int draws = 0;
    vec3 seenPosition;
};

class EffectTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        root = makeRoot();
    }
    void TearDown() override {
        delete root;
        VisualsTest::TearDown();
    }

    DirectScene2D* root = nullptr;
};

} // namespace

TEST(Effect, ConstructorMarksAVisibleEffectNode) {
    SquareEffect e;
    // Visible, effect, draw mode BlendAlpha; nothing else.
    EXPECT_EQ(e.flags, 0x103u);
    EXPECT_EQ(e.size.x, 0.0f);
    EXPECT_EQ(e.position.x, 0.0f);
}

TEST(Effect, UpdateSizeOnlyClearsTheDirtyBit) {
    SquareEffect e;
    scene_test::expectUpdateSizeOnlyClearsTheDirtyBit(e, 5, 7, 0x103u);
}

TEST_F(EffectTest, DrawsInItsParentsSpaceIgnoringItsOwnTransform) {
    Group* group = new Group();
    SquareEffect* e = new SquareEffect();
    // None of these move the square: only the group's transform applies.
    e->position = vec3(30, 20, 0);
    e->setRotation(45);
    e->setScale(3);
    group->add(e);
    drawAt(*root, *group, 100, 50);

    Pixels p = readScreen();
    EXPECT_EQ(e->draws, 1);
    EXPECT_TRUE(blockIs(p, 100, 50, 10, 10, pack(255, 255, 255)));
    EXPECT_EQ(rgb(p.at(99, 55)), 0u);
    EXPECT_EQ(rgb(p.at(110, 55)), 0u);
    EXPECT_EQ(rgb(p.at(105, 60)), 0u);
    EXPECT_EQ(rgb(p.at(135, 75)), 0u);
    // The node's own position comes with the state, for the effect to place itself.
    EXPECT_EQ(e->seenPosition.x, 30.0f);
    EXPECT_EQ(e->seenPosition.y, 20.0f);
    delete e;
    delete group;
}

TEST_F(EffectTest, FollowsARotatedParent) {
    Group* group = new Group();
    group->setRotation(90);
    SquareEffect* e = new SquareEffect();
    group->add(e);
    drawAt(*root, *group, 100, 100);

    // A rotation by a maps (x, y) to (cos a x + sin a y, -sin a x + cos a y); at 90 degrees
    // that is (y, -x), so local (0..10, 0..10) lands on window x 100..109, y 90..99.
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 100, 90, 10, 10, pack(255, 255, 255)));
    EXPECT_EQ(rgb(p.at(105, 105)), 0u);
    EXPECT_EQ(rgb(p.at(95, 105)), 0u);
    delete e;
    delete group;
}

TEST_F(EffectTest, IsNeverCulled) {
    SquareEffect* e = new SquareEffect();
    // Far outside the view with a box of its own: a sprite there would be culled.
    e->setSize(10, 10);
    drawAt(*root, *e, 5000, 5000);

    EXPECT_EQ(e->draws, 1);
    // At the root the parent's space is the world: the square sits at the world origin.
    EXPECT_TRUE(blockIs(readScreen(), 0, 0, 10, 10, pack(255, 255, 255)));
    delete e;
}

TEST_F(EffectTest, GetsTheCombinedSceneColour) {
    SquareEffect* e = new SquareEffect();
    // ((node + 1) * 255) >> 8 per channel: 0, 128 and 255.
    e->setBlendColor(pack(0, 128, 255, 255));
    root->add(e);
    drawFrame(*root);
    EXPECT_TRUE(blockIs(readScreen(), 0, 0, 10, 10, pack(0, 128, 255)));
    delete e;
}

TEST_F(EffectTest, AWorldPointIsDrawnWhereTheRootSaysWithTheCameraZoomedOut) {
    // Zoomed out, as the game's camera is when the ship flies fast.
    Camera2D camera(orvel::vec2(1000, 1000), 0.8f, 0);
    root->setCamera(&camera);
    Group* group = new Group();
    SquareEffect* e = new SquareEffect();
    group->add(e);
    drawAt(*root, *group, 1100, 950);

    // 100 units right of the camera and 50 up, at 0.8, from the centre of the 320 x 240 window:
    // (160 + 80, 120 - 40).
    const orvel::vec2 at = root->drawnPosition(orvel::vec2(1100, 950));
    EXPECT_FLOAT_EQ(at.x, 240.0f);
    EXPECT_FLOAT_EQ(at.y, 80.0f);
    // The square's 10 units are 8 pixels there.
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 240, 80, 8, 8, pack(255, 255, 255)));
    EXPECT_EQ(rgb(p.at(239, 84)), 0u);
    EXPECT_EQ(rgb(p.at(248, 84)), 0u);
    EXPECT_EQ(rgb(p.at(244, 79)), 0u);
    EXPECT_EQ(rgb(p.at(244, 88)), 0u);
    root->setCamera(nullptr);
    delete e;
    delete group;
}

TEST_F(EffectTest, TheDrawnPositionOfAPointAcrossTheWrapIsItsCopyNearestTheCamera) {
    root->worldWidth = 4096;
    root->worldHeight = 4096;
    root->wrap = true;
    Camera2D camera(orvel::vec2(4050, -30), 0.8f, 0);
    root->setCamera(&camera);
    // 100 units right of the camera across the right edge, 50 up across the top one.
    const orvel::vec2 at = root->drawnPosition(orvel::vec2(54, 4016));
    EXPECT_FLOAT_EQ(at.x, 240.0f);
    EXPECT_FLOAT_EQ(at.y, 80.0f);
    // And back.
    const orvel::vec2 back = root->screenToWorld(at);
    EXPECT_FLOAT_EQ(back.x, 4150.0f);
    EXPECT_FLOAT_EQ(back.y, 4016.0f);
    root->setCamera(nullptr);
}

#include "scene/Scene2D.h"

#include <gtest/gtest.h>

#include "engine/Framebuffer.h"
#include "engine/GL.h"
#include "engine/Renderbuffer.h"
#include "engine/Texture.h"
#include "tests/scene/SceneGLTest.h"

using orvel::vec2;
using orvel::vec3;
using scene_test::RecordingNode;
using scene_test::rgb;

namespace {

class Scene2DTest : public scene_test::SceneGLTest {
protected:
    // The pixels of the scene's offscreen target, read like the screen.
    static Pixels readFramebuffer(const Scene2D& scene) {
        scene.framebuffer->bind();
        Pixels p = readPixels(0, 0, scene.screenWidth, scene.screenHeight);
        orvel::Framebuffer::unbindFB();
        return p;
    }

    // A root without outlines holding a 40 x 40 leaf at (300, 200) that paints its box in
    // `color` (packed, red in the low byte).
    // Pixels whose colours differ, the window's own alpha left out.
    static int differingColours(const Pixels& a, const Pixels& b) {
        int n = 0;
        for (size_t i = 0; i < a.data.size(); ++i) n += (a.data[i] & 0xFFFFFFu) != (b.data[i] & 0xFFFFFFu);
        return n;
    }

    struct OneLeaf {
        Scene2D scene{-1, -1};
        RecordingNode node{40, 40};
        explicit OneLeaf(uint32_t color) {
            scene.debugDraw = false;
            node.position = vec3(300, 200, 0);
            node.setBlendColor(color);
            scene.add(&node);
        }
    };
};

} // namespace

TEST_F(Scene2DTest, CreatesAFramebufferWithTheColourTargetItDrawsToAndDepth) {
    Scene2D scene(-1, -1);
    ASSERT_NE(scene.framebuffer, nullptr);
    EXPECT_EQ(scene.framebuffer->width, 1280u);
    EXPECT_EQ(scene.framebuffer->height, 720u);
    EXPECT_NE(scene.framebuffer->color0, nullptr);
    EXPECT_EQ(scene.framebuffer->color1, nullptr);
    EXPECT_EQ(scene.framebuffer->color2, nullptr);
    EXPECT_EQ(scene.framebuffer->color3, nullptr);
    EXPECT_NE(scene.framebuffer->depth, nullptr);
    EXPECT_EQ(scene.color0, scene.framebuffer->color0);
    EXPECT_EQ(scene.color1, nullptr);
    EXPECT_EQ(scene.color2, nullptr);
    EXPECT_EQ(scene.color3, nullptr);
}

TEST_F(Scene2DTest, TheFramebufferHasTheGivenSize) {
    Scene2D scene(640, 480);
    EXPECT_EQ(scene.framebuffer->width, 640u);
    EXPECT_EQ(scene.framebuffer->height, 480u);
}

TEST_F(Scene2DTest, DrawsIntoItsFramebufferAndCopiesItToTheScreen) {
    OneLeaf leaf(0xFF00FF00u); // green
    leaf.scene.draw();

    auto screen = readScreen();
    EXPECT_EQ(rgbAt(screen, 300, 200), rgb(0, 255, 0));
    EXPECT_EQ(rgbAt(screen, 600, 400), rgb(0, 0, 0));
    auto target = readFramebuffer(leaf.scene);
    EXPECT_EQ(target.at(300, 200), 0xFF00FF00u);
    // Cleared to transparent black around it.
    EXPECT_EQ(target.at(600, 400), 0u);
    EXPECT_EQ(GLint(0), [] {
        GLint bound = -1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &bound);
        return bound;
    }());
}

TEST_F(Scene2DTest, EachDrawClearsTheFramebufferFirst) {
    OneLeaf leaf(0xFFFFFFFFu); // white, as a new node starts
    leaf.scene.draw();
    leaf.node.setVisible(false);
    leaf.scene.draw();
    EXPECT_EQ(readFramebuffer(leaf.scene).at(300, 200), 0u);
}

TEST_F(Scene2DTest, TheCopyLeavesTheScreenWhereTheSceneIsTransparent) {
    OneLeaf leaf(0xFF0000FFu); // red
    auto p = drawOver(leaf.scene, 0, 0, 255);
    EXPECT_EQ(rgbAt(p, 300, 200), rgb(255, 0, 0));
    EXPECT_EQ(rgbAt(p, 100, 600), rgb(0, 0, 255));
}

TEST_F(Scene2DTest, TheCopyBlendsOverTheScreenUnlessToldItIsBlack) {
    Scene2D scene(-1, -1);
    EXPECT_FALSE(scene.copyOverBlack);
}

TEST_F(Scene2DTest, ACopyOverBlackReplacesTheScreen) {
    OneLeaf leaf(0xFF0000FFu); // red
    leaf.scene.copyOverBlack = true;
    auto p = drawOver(leaf.scene, 0, 0, 255);
    EXPECT_EQ(rgbAt(p, 300, 200), rgb(255, 0, 0));
    // The blue beneath is gone: the transparent target's black took its place.
    EXPECT_EQ(rgbAt(p, 100, 600), rgb(0, 0, 0));
}

TEST_F(Scene2DTest, ACopyOverBlackGivesTheBlendedCopysPixelsOnABlackScreen) {
    // Half-transparent orange: the copy weights it by its alpha, and the weights must agree.
    OneLeaf blended(0x80208CF0u);
    auto expected = drawOver(blended.scene, 0, 0, 0);
    OneLeaf replaced(0x80208CF0u);
    replaced.scene.copyOverBlack = true;
    auto got = drawOver(replaced.scene, 0, 0, 0);
    EXPECT_EQ(rgbAt(expected, 300, 200), rgb(30, 18, 4));
    // Every pixel's colour agrees; the window's own alpha, which nobody sees, may not.
    int differing = 0;
    for (size_t i = 0; i < got.data.size(); ++i) {
        if ((got.data[i] & 0xFFFFFFu) != (expected.data[i] & 0xFFFFFFu)) ++differing;
    }
    EXPECT_EQ(differing, 0);
}

TEST_F(Scene2DTest, AnEmptyWorldOverBlackGivesTheScreenWhatItsCopyWould) {
    Scene2D empty(-1, -1);
    empty.debugDraw = false;
    empty.copyOverBlack = true;
    // The same world with a child that draws nothing takes the copy.
    OneLeaf hidden(0xFF0000FFu);
    hidden.node.setVisible(false);
    hidden.scene.copyOverBlack = true;
    auto copied = drawOver(hidden.scene, 0, 0, 255);
    auto cleared = drawOver(empty, 0, 0, 255);
    EXPECT_EQ(rgbAt(cleared, 300, 200), rgb(0, 0, 0));
    EXPECT_EQ(differingColours(cleared, copied), 0);
    // Under another clear colour the copy weights it by its alpha, and so does the clear.
    clearScreen(0, 0, 255);
    glClearColor(0.4f, 0.8f, 0.2f, 0.5f);
    hidden.scene.draw();
    copied = readScreen();
    clearScreen(0, 0, 255);
    glClearColor(0.4f, 0.8f, 0.2f, 0.5f);
    empty.draw();
    cleared = readScreen();
    GLfloat after[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, after);
    glClearColor(0, 0, 0, 0);
    EXPECT_EQ(rgbAt(cleared, 300, 200), rgb(51, 102, 26));
    EXPECT_EQ(differingColours(cleared, copied), 0);
    // The clear colour is left as it was.
    EXPECT_FLOAT_EQ(after[0], 0.4f);
    EXPECT_FLOAT_EQ(after[3], 0.5f);
}

TEST_F(Scene2DTest, AnEmptyWorldThatBlendsOrShowsItsBorderStillTakesTheCopy) {
    Scene2D blending(-1, -1);
    blending.debugDraw = false;
    auto p = drawOver(blending, 0, 0, 255);
    // The transparent target leaves the blue.
    EXPECT_EQ(rgbAt(p, 300, 200), rgb(0, 0, 255));
    Scene2D outlined(-1, -1);
    outlined.copyOverBlack = true;
    outlined.wrap = false;
    outlined.worldWidth = 400;
    outlined.worldHeight = 300;
    p = drawOver(outlined, 0, 0, 255);
    int lit = 0;
    for (int d = -2; d <= 2; ++d) lit += (rgbAt(p, 400 + d, 150) & 0xFF) > 100;
    EXPECT_GT(lit, 0);
    EXPECT_EQ(rgbAt(p, 200, 150), rgb(0, 0, 0));
}

TEST_F(Scene2DTest, TheTargetIsSampledWithoutFilteringForItsOneToOneCopy) {
    Scene2D scene(-1, -1);
    scene.color0->bind(GL_TEXTURE0);
    GLint minFilter = 0, magFilter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &minFilter);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &magFilter);
    EXPECT_EQ(minFilter, GL_NEAREST);
    EXPECT_EQ(magFilter, GL_NEAREST);
}

TEST_F(Scene2DTest, AnEmptyRootDrawsOnlyTheWorldBorder) {
    Scene2D scene(-1, -1);
    auto p = drawWorldBorder(scene, 0, 0, 255);
    // With the default camera, world (x, y) is pixel (x, y): the border runs along x = 400 and
    // y = 300 on screen, three pixels wide.
    bool isRightEdgeLit = false;
    bool isBottomEdgeLit = false;
    for (int d = -2; d <= 2; ++d) {
        if ((rgbAt(p, 400 + d, 150) & 0xFF) > 100) isRightEdgeLit = true;
        if ((rgbAt(p, 200, 300 + d) & 0xFF) > 100) isBottomEdgeLit = true;
    }
    EXPECT_TRUE(isRightEdgeLit);
    EXPECT_TRUE(isBottomEdgeLit);
    EXPECT_EQ(rgbAt(p, 200, 150), rgb(0, 0, 255));
    EXPECT_EQ(rgbAt(p, 800, 500), rgb(0, 0, 255));
    EXPECT_EQ(rgbAt(p, 396, 150), rgb(0, 0, 255));
}

TEST_F(Scene2DTest, ASpriteBeyondTheTopLeftCornerShowsOnceInTheUpperLeftQuarter) {
    Scene2D scene(-1, -1);
    scene.debugDraw = false;
    scene.worldWidth = 4096;
    scene.worldHeight = 4096;
    Camera2D camera(vec2(100, 100), 1, 0);
    scene.setCamera(&camera);
    RecordingNode sprite(64, 64);
    sprite.position = vec3(4000, 4000, 0);
    sprite.setBlendColor(0xFF0000FFu); // red
    scene.add(&sprite);
    scene.draw();
    ASSERT_EQ(sprite.drawCount, 1);

    // Shifted by (-4096, -4096) to (-96, -96), 196 units up and left of the camera: centred on
    // pixel (640 - 196, 360 - 196) = (444, 164), covering x 412..475 and y 132..195.
    auto p = readScreen();
    int redPixels = 0;
    int minX = 1280, minY = 720, maxX = -1, maxY = -1;
    for (int y = 0; y < 720; ++y) {
        for (int x = 0; x < 1280; ++x) {
            if (rgbAt(p, x, y) != rgb(255, 0, 0)) continue;
            ++redPixels;
            minX = std::min(minX, x);
            maxX = std::max(maxX, x);
            minY = std::min(minY, y);
            maxY = std::max(maxY, y);
        }
    }
    EXPECT_EQ(redPixels, 64 * 64);
    EXPECT_EQ(minX, 412);
    EXPECT_EQ(maxX, 475);
    EXPECT_EQ(minY, 132);
    EXPECT_EQ(maxY, 195);
    EXPECT_LT(maxX, 640);
    EXPECT_LT(maxY, 360);
}

#include "scene/DirectScene2D.h"

#include <gtest/gtest.h>

#include "engine/Framebuffer.h"
#include "engine/GL.h"
#include "tests/scene/SceneGLTest.h"

using orvel::vec2;
using orvel::vec3;
using scene_test::RecordingEffect;
using scene_test::RecordingNode;
using scene_test::rgb;

namespace {

class DirectScene2DTest : public scene_test::SceneGLTest {
protected:
    // Whether any pixel of the block from (x0, y0) to (x1, y1) has a green channel above 100
    // and no red: the outline colour over black.
    static bool hasGreenOutline(const Pixels& p, int x0, int y0, int x1, int y1) {
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                uint32_t c = p.at(x, y);
                if (((c >> 8) & 0xFF) > 100 && (c & 0xFF) == 0) return true;
            }
        }
        return false;
    }

    // A root without wrap holding a 40 x 20 leaf at (600, 200) that paints nothing, so only its
    // outline can show: its bounds run x 580..620, y 190..210.
    struct OutlinedLeaf {
        DirectScene2D hud{-1, -1};
        RecordingNode node{40, 20, false};
        OutlinedLeaf() {
            hud.wrap = false;
            node.position = vec3(600, 200, 0);
            hud.add(&node);
        }
    };
};

} // namespace

TEST_F(DirectScene2DTest, DrawsStraightIntoTheBoundTarget) {
    DirectScene2D hud(-1, -1);
    hud.debugDraw = false;
    RecordingNode node(20, 20);
    node.position = vec3(50, 60, 0);
    node.setBlendColor(0xFFFFFFFFu);
    hud.add(&node);
    auto p = drawOver(hud, 10, 20, 30);
    EXPECT_EQ(rgbAt(p, 50, 60), rgb(255, 255, 255));
    EXPECT_EQ(rgbAt(p, 100, 100), rgb(10, 20, 30));
}

TEST_F(DirectScene2DTest, TheWorldBorderIsAGreyLineThreePixelsWide) {
    DirectScene2D hud(-1, -1);
    auto p = drawWorldBorder(hud, 0, 0, 0);
    // White at alpha 192 over black: 192 in each channel, along x = 400 (pixels 398..401).
    int litColumns = 0;
    for (int x = 396; x <= 404; ++x) {
        uint32_t c = rgbAt(p, x, 150);
        if (c != 0) {
            ++litColumns;
            EXPECT_EQ(c, rgb(192, 192, 192)) << "x " << x;
        }
    }
    EXPECT_GE(litColumns, 2);
    EXPECT_LE(litColumns, 4);
    EXPECT_EQ(rgbAt(p, 200, 150), 0u);
}

TEST_F(DirectScene2DTest, DebugOutlinesTraceEachNodesBounds) {
    OutlinedLeaf scene;
    scene.hud.draw();
    auto p = readScreen();
    EXPECT_TRUE(hasGreenOutline(p, 600, 189, 600, 190));
    EXPECT_TRUE(hasGreenOutline(p, 600, 209, 600, 210));
    EXPECT_TRUE(hasGreenOutline(p, 579, 200, 580, 200));
    EXPECT_TRUE(hasGreenOutline(p, 619, 200, 620, 200));
    EXPECT_EQ(rgbAt(p, 600, 200), 0u);
}

TEST_F(DirectScene2DTest, WithoutDebugDrawThereAreNoOutlines) {
    OutlinedLeaf scene;
    scene.hud.debugDraw = false;
    scene.hud.draw();
    EXPECT_FALSE(hasGreenOutline(readScreen(), 570, 180, 630, 220));
}

TEST_F(DirectScene2DTest, AnEffectNodeOutlinesTheBoundsLastTested) {
    OutlinedLeaf scene;
    RecordingEffect effect;
    effect.position = vec3(100, 100, 0);
    scene.hud.add(&effect);
    scene.hud.draw();

    // The leaf is skipped before it is tested, so the effect outlines the box of the previous
    // frame's leaf, and nothing around its own position.
    scene.node.setVisible(false);
    clearScreen(0, 0, 0);
    scene.hud.draw();
    ASSERT_EQ(effect.drawCount, 2);
    auto p = readScreen();
    EXPECT_TRUE(hasGreenOutline(p, 600, 189, 600, 190));
    EXPECT_TRUE(hasGreenOutline(p, 579, 200, 580, 200));
    EXPECT_FALSE(hasGreenOutline(p, 80, 80, 120, 120));
}

#pragma once
// GL tests of the scene's leaf nodes: a fresh window with the shared shader set built in it,
// an HUD root that maps world units 1:1 onto window pixels, and pixel checks.

#include <cstdint>
#include <cstdlib>

#include <gtest/gtest.h>

#include "engine/Color.h"
#include "engine/Orvel.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "scene/DirectScene2D.h"
#include "scene/Shaders.h"
#include "tests/support/GLFixture.h"

namespace testing_support {

class VisualsTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        orvel::Orvel::currentTime = 0;
        // The programs of an earlier test went away with its window; build them in this one.
        Shaders::wasInit = false;
    }

    // A root with the default camera at the window's centre, so world (x, y) is window pixel
    // (x, y) from the top-left. No outlines and no wrap, so only the tree under test is drawn.
    static DirectScene2D* makeRoot() {
        DirectScene2D* root = new DirectScene2D(-1, -1);
        root->debugDraw = false;
        root->wrap = false;
        return root;
    }

    // Draws the root into a black window.
    static void drawFrame(DirectScene2D& root) {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        root.draw();
    }

    // Puts `node` at world (x, y) on `root` and draws the root into a black window.
    static void drawAt(DirectScene2D& root, Drawable& node, float x, float y) {
        node.position = orvel::vec3(x, y, 0);
        root.add(&node);
        drawFrame(root);
    }

    // A texture of w x h whose pixel (x, y) is color(x, y). The caller owns it.
    template <typename F> static orvel::Texture* makeTexture(int w, int h, F color) {
        orvel::Surface image(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) image.setPixel(x, y, color(x, y));
        return new orvel::Texture(&image);
    }

    static uint32_t rgb(uint32_t c) { return c & 0x00ffffffu; }

    // Packed colour from channels, for expected values.
    static uint32_t pack(int r, int g, int b, int a = 255) { return orvel::Color::getColor(r, g, b, a); }

    // Red, green and blue of `actual` each within `tolerance` of the expected channel values.
    static ::testing::AssertionResult nearRgb(uint32_t actual, int r, int g, int b, int tolerance) {
        int ar = actual & 0xff, ag = (actual >> 8) & 0xff, ab = (actual >> 16) & 0xff;
        if (std::abs(ar - r) <= tolerance && std::abs(ag - g) <= tolerance && std::abs(ab - b) <= tolerance)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "got (" << ar << ", " << ag << ", " << ab << "), expected (" << r
                                             << ", " << g << ", " << b << ") +- " << tolerance;
    }

    // Every pixel of the w x h block at window (x, y) (from the top) has the RGB of `color`.
    static ::testing::AssertionResult blockIs(const Pixels& p, int x, int y, int w, int h, uint32_t color) {
        for (int j = y; j < y + h; ++j)
            for (int i = x; i < x + w; ++i)
                if (rgb(p.at(i, j)) != rgb(color))
                    return ::testing::AssertionFailure() << "pixel " << i << ", " << j << " is " << std::hex
                                                         << rgb(p.at(i, j)) << ", expected " << rgb(color);
        return ::testing::AssertionSuccess();
    }
};

} // namespace testing_support

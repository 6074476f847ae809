#pragma once
// A real GL context for tests: opens the engine's window and reads back what was drawn.

#include <cstdint>
#include <cstdio>
#include <vector>

#include <gtest/gtest.h>

#include "engine/GL.h"
#include "engine/Orvel.h"

namespace testing_support {

// Packed colour as glReadPixels gives it: red in the low byte.
constexpr uint32_t rgba(uint32_t r, uint32_t g, uint32_t b, uint32_t a) {
    return r | g << 8 | b << 16 | a << 24;
}

// The engine window, windowed, without vertical sync; closed again after each test.
class GLTest : public ::testing::Test {
protected:
    static const int WIDTH = 320;
    static const int HEIGHT = 240;

    void SetUp() override { openWindow(WIDTH, HEIGHT); }
    void TearDown() override {
        if (orvel::Orvel::window) orvel::Orvel::quit();
    }

    // Reopens the window at another size; the viewport covers it and the colour is cleared.
    static void openWindow(int width, int height) {
        if (orvel::Orvel::window) orvel::Orvel::quit();
        orvel::Orvel::init(width, height, "test", false, false);
        ASSERT_NE(orvel::Orvel::window, nullptr);
        glViewport(0, 0, width, height);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    // The back buffer's pixels as packed colours (red in the low byte), bottom row first as GL
    // reads them; at(x, y) below counts y from the top.
    struct Pixels {
        int width, height;
        std::vector<uint32_t> data;
        uint32_t at(int x, int y) const { return data[(size_t)(height - 1 - y) * width + x]; }
    };

    static Pixels readPixels(int x, int y, int width, int height) {
        Pixels p{width, height, std::vector<uint32_t>((size_t)width * height)};
        glFinish();
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, p.data.data());
        return p;
    }
    static Pixels readScreen() {
        return readPixels(0, 0, orvel::Orvel::getScreenWidth(), orvel::Orvel::getScreenHeight());
    }

    // Writes `p` to `path` as a binary PPM, top row first: a picture for people, not part of any
    // check. Nothing when the file cannot be opened.
    static void savePicture(const Pixels& p, const char* path) {
        FILE* f = std::fopen(path, "wb");
        if (!f) return;
        std::fprintf(f, "P6\n%d %d\n255\n", p.width, p.height);
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                const uint32_t c = p.at(x, y);
                const unsigned char rgb[3] = {(unsigned char)(c & 0xff), (unsigned char)((c >> 8) & 0xff),
                                              (unsigned char)((c >> 16) & 0xff)};
                std::fwrite(rgb, 1, 3, f);
            }
        }
        std::fclose(f);
    }

    // Pixel-exact drawing: projection maps window pixels 1:1 with y down, nothing else enabled.
    static void pixelProjection() {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, orvel::Orvel::getScreenWidth(), orvel::Orvel::getScreenHeight(), 0, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_TEXTURE_2D);
    }

    // An axis-aligned quad in window pixels with one texture-coordinate rectangle.
    static void drawQuad(float x0, float y0, float x1, float y1, float s0 = 0, float t0 = 0, float s1 = 1,
                         float t1 = 1) {
        glBegin(GL_QUADS);
        glTexCoord2f(s0, t0);
        glVertex2f(x0, y0);
        glTexCoord2f(s1, t0);
        glVertex2f(x1, y0);
        glTexCoord2f(s1, t1);
        glVertex2f(x1, y1);
        glTexCoord2f(s0, t1);
        glVertex2f(x0, y1);
        glEnd();
    }
};

} // namespace testing_support

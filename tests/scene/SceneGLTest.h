#pragma once
// One real GL window for all scene-root tests of a process, and leaves that record what the
// renderer hands them and paint their box so the result can be read back.

#include <cstdint>

#include <gtest/gtest.h>

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/ShaderProgram.h"
#include "scene/Drawable.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/scene/ColourDraw.h"
#include "tests/support/GLFixture.h"

namespace scene_test {

const int SCREEN_W = 1280;
const int SCREEN_H = 720;

// Packed as glReadPixels gives it, red in the low byte; alpha is left out of comparisons.
constexpr uint32_t rgb(uint32_t r, uint32_t g, uint32_t b) {
    return r | g << 8 | b << 16;
}

// The order in which recording leaves were drawn since the last reset.
struct DrawLog {
    static const int CAPACITY = 512;
    const Drawable* entries[CAPACITY];
    int count;
};
inline DrawLog g_drawLog;

// A leaf that keeps a copy of the state and of the GL settings it is drawn with, and (unless
// told otherwise) fills its box hotSpot +- size / 2 with the state's colour.
class RecordingNode : public Drawable {
public:
    explicit RecordingNode(float w = 10, float h = 10, bool paints = true) : isPainting(paints) {
        setSize(w, h);
    }

    void updateSize() override {
        ++updateCalls;
        Drawable::updateSize();
    }

    void draw(SceneState& s) override {
        ++drawCount;
        state = s;
        if (g_drawLog.count < DrawLog::CAPACITY) g_drawLog.entries[g_drawLog.count++] = this;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_BLEND_SRC_RGB, &blendSrc);
        glGetIntegerv(GL_BLEND_DST_RGB, &blendDst);
        glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
        glGetFloatv(GL_PROJECTION_MATRIX, projection);
        isTexcoordArrayOn = glIsEnabled(GL_TEXTURE_COORD_ARRAY);
        if (isPainting) paint(s);
    }

    int drawCount = 0;
    int updateCalls = 0;
    SceneState state{};
    GLint program = 0;
    GLint blendSrc = 0;
    GLint blendDst = 0;
    float modelView[16] = {};
    float projection[16] = {};
    GLboolean isTexcoordArrayOn = GL_FALSE;
    bool isPainting;

private:
    void paint(const SceneState& s) {
        float x0 = hotSpot.x - size.x / 2, x1 = hotSpot.x + size.x / 2;
        float y0 = hotSpot.y - size.y / 2, y1 = hotSpot.y + size.y / 2;
        const float vertices[8] = {x0, y0, x1, y0, x1, y1, x0, y1};
        drawInColour(GL_QUADS, vertices, 4, s.color);
    }
};

// An effect node (drawn in its parent's space, never culled) that records like a leaf.
class RecordingEffect : public RecordingNode {
public:
    RecordingEffect() : RecordingNode(10, 10, false) { flags |= EFFECT; }
};

// Opens a 1280 x 720 window on the first test and keeps it: the shared shader programs are
// built once per GL context, so the context stays for the whole process.
class SceneGLTest : public testing_support::GLTest {
protected:
    void SetUp() override {
        if (!orvel::Orvel::window) {
            openWindow(SCREEN_W, SCREEN_H);
            Shaders::wasInit = false;
        }
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        glViewport(0, 0, SCREEN_W, SCREEN_H);
        clearScreen(0, 0, 0);
        g_drawLog.count = 0;
    }
    void TearDown() override {}

    // Fills the screen with one colour; the clear colour is transparent black afterwards.
    static void clearScreen(int r, int g, int b) {
        glClearColor(r / 255.0f, g / 255.0f, b / 255.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(0, 0, 0, 0);
    }

    static uint32_t rgbAt(const Pixels& p, int x, int y) { return p.at(x, y) & 0xFFFFFFu; }

    // Draws `root` over a screen filled with (r, g, b) and reads the screen back.
    template <typename Root> static Pixels drawOver(Root& root, int r, int g, int b) {
        clearScreen(r, g, b);
        root.draw();
        return readScreen();
    }

    // Draws `root`, empty and with outlines on, over a 400 x 300 world without wrap on a screen
    // filled with (r, g, b), and reads the screen back.
    template <typename Root> static Pixels drawWorldBorder(Root& root, int r, int g, int b) {
        root.wrap = false;
        root.worldWidth = 400;
        root.worldHeight = 300;
        return drawOver(root, r, g, b);
    }
};

// Closes the shared window once every test has run.
class WindowEnvironment : public ::testing::Environment {
public:
    void TearDown() override {
        if (orvel::Orvel::window) orvel::Orvel::quit();
    }
};
inline ::testing::Environment* const g_windowEnvironment =
    ::testing::AddGlobalTestEnvironment(new WindowEnvironment);

} // namespace scene_test

// The plasma guns' projectile ring: the matrices its draw loads, seen through a link-time wrapper
// of glLoadMatrixf.

#include "game/ProjectileRing.h"

#include <array>
#include <vector>

#include "engine/GL.h"
#include "engine/Matrix.h"
#include "game/Plasma.h"
#include "scene/Scene2D.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;
using orvel::vec3;

namespace {

std::vector<std::array<float, 16>> loadedMatrices;
bool recording = false;

} // namespace

extern "C" {
void __real_glLoadMatrixf(const GLfloat* m);
void __wrap_glLoadMatrixf(const GLfloat* m) {
    if (recording) {
        std::array<float, 16> copy;
        for (int i = 0; i < 16; ++i) copy[i] = m[i];
        loadedMatrices.push_back(copy);
    }
    __real_glLoadMatrixf(m);
}
}

namespace {

class ProjectileRingTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        projection = orvel::mat4::createOrthoMatrix(-640, 640, -360, 360, -10, 10);
        state.projection2D = &projection;
        state.projection3D = &projection;
        state.color = Color4ub{255, 255, 255, 255};
        state.viewRects = &rects;
        gun = keep(new Plasma());
        gun->position = vec3(1000, 1000, 0);
        gun->rate = -1.0f;
        gun->shoot(vec2(1, 0));
    }

    // The view rectangles of a frame, one per offset; only the offsets matter to the ring.
    void setOffsets(std::initializer_list<vec2> offsets) {
        rects.clear();
        for (const vec2& o : offsets) rects.push(ViewRect{0, 0, 1280, 720, o.x, o.y});
    }

    std::vector<std::array<float, 16>> drawnMatrices() {
        loadedMatrices.clear();
        recording = true;
        gun->ring.draw(state);
        recording = false;
        return loadedMatrices;
    }

    // The identity translated by (x, y): the view matrix of a rectangle with that offset.
    static std::array<float, 16> translation(float x, float y) {
        return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, 0, 1};
    }
    static std::array<float, 16> zero() { return {}; }

    orvel::mat4 projection;
    orvel::Stack<ViewRect> rects{8};
    SceneState state{};
    Plasma* gun = nullptr;
};

} // namespace

TEST_F(ProjectileRingTest, DrawLoadsOneMatrixPerViewRectangleThenTheZeroSpare) {
    setOffsets({vec2(0, 0), vec2(-4096, 0), vec2(0, -4096), vec2(-4096, -4096)});
    const auto loaded = drawnMatrices();
    ASSERT_EQ(loaded.size(), 8u);
    EXPECT_EQ(loaded[0], translation(0, 0));
    EXPECT_EQ(loaded[1], translation(-4096, 0));
    EXPECT_EQ(loaded[2], translation(0, -4096));
    EXPECT_EQ(loaded[3], translation(-4096, -4096));
    for (unsigned i = 4; i < 8; ++i) EXPECT_EQ(loaded[i], zero()) << i;
}

TEST_F(ProjectileRingTest, FrameWithOneRectangleLoadsNoneOfThePreviousFramesMatrices) {
    setOffsets({vec2(0, 0), vec2(-4096, 0), vec2(0, -4096), vec2(-4096, -4096)});
    drawnMatrices();
    setOffsets({vec2(0, 4096)});
    const auto loaded = drawnMatrices();
    ASSERT_EQ(loaded.size(), 8u);
    EXPECT_EQ(loaded[0], translation(0, 4096));
    for (unsigned i = 1; i < 8; ++i) EXPECT_EQ(loaded[i], zero()) << i;
}

TEST_F(ProjectileRingTest, DrawWithoutLiveShotsLoadsNothing) {
    gun->ring.shots[0].finish = 0;
    setOffsets({vec2(0, 0)});
    EXPECT_TRUE(drawnMatrices().empty());
}

// Particle slices on a real GL context: the quads they build, the draws they issue, the pixels
// that come out of a scene root, their clean-up when empty, and no allocation once warm.

#include "scene/ParticleSlice.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Stack.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "scene/DirectScene2D.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GLFixture.h"

using orvel::Orvel;
using orvel::Stack;
using orvel::Surface;
using orvel::Texture;
using orvel::vec2;
using orvel::vec4;

// Every glDrawArrays of the program passes through here (the test binary links with
// --wrap=glDrawArrays): the first calls are recorded with the model-view matrix they drew with.
namespace {

struct DrawRecord {
    GLsizei count;
    float modelView[16];
};

struct DrawLog {
    static const int MAX_RECORDS = 64;
    bool isRecording = false;
    int calls = 0;
    DrawRecord records[MAX_RECORDS];

    void start() {
        isRecording = true;
        calls = 0;
    }
    void stop() { isRecording = false; }
};

DrawLog g_draws;

} // namespace

extern "C" void __real_glDrawArrays(GLenum mode, GLint first, GLsizei count);

extern "C" void __wrap_glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    if (g_draws.isRecording && mode == GL_QUADS) {
        if (g_draws.calls < DrawLog::MAX_RECORDS) {
            DrawRecord& r = g_draws.records[g_draws.calls];
            r.count = count;
            glGetFloatv(GL_MODELVIEW_MATRIX, r.modelView);
        }
        ++g_draws.calls;
    }
    __real_glDrawArrays(mode, first, count);
}

namespace {

const vec4 WHITE(1, 1, 1, 1);
const uint32_t RGB = 0x00ffffff;

bool isZero(const float* m) {
    for (int i = 0; i < 16; ++i) {
        if (m[i] != 0.0f) return false;
    }
    return true;
}

// A slice that reports its own deletion.
class WatchedSlice : public ParticleSlice {
public:
    WatchedSlice(ParticleSystem* system, bool removeWhenEmpty, bool deleteWhenEmpty, bool* deleted)
        : ParticleSlice(system, removeWhenEmpty, deleteWhenEmpty), deleted(deleted) {}
    ~WatchedSlice() override { *deleted = true; }

    bool* deleted;
};

class ParticleSliceTest : public testing_support::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        // The programs of an earlier test died with its context.
        Shaders::wasInit = false;
        Shaders::init();
        Orvel::currentTime = 0;
        Orvel::sync = 0;
        Surface white(8, 8);
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 8; ++x) white.setPixel(x, y, 0xffffffff);
        }
        whiteTex = new Texture(&white);
        // One rectangle covering the 320 x 240 view, no offset; identity transform.
        rects.push(ViewRect{-160, -120, 320, 240, 0, 0});
        state.viewRects = &rects;
        state.color = Color4ub{255, 255, 255, 255};
        state.projection2D = nullptr;
        state.projection3D = nullptr;
    }
    void TearDown() override {
        g_draws.stop();
        delete whiteTex;
        GLTest::TearDown();
    }

    // The vertices of the last batch, read back through the array pointer the slice set.
    static const ParticleSlice::Vertex* lastVertices() {
        void* p = nullptr;
        glGetPointerv(GL_VERTEX_ARRAY_POINTER, &p);
        return static_cast<const ParticleSlice::Vertex*>(p);
    }

    // A scene root drawing to the screen, where world units are window pixels.
    static DirectScene2D* makeRoot() {
        DirectScene2D* root = new DirectScene2D(-1, -1);
        root->debugDraw = false;
        root->wrap = false;
        return root;
    }

    static void clearScreen() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    Texture* whiteTex = nullptr;
    Stack<ViewRect> rects{8};
    SceneState state;
};

} // namespace

TEST(ParticleSlice, Is32BytesWithColourAfterTheTextureCoordinates) {
    EXPECT_EQ(sizeof(ParticleSlice::Vertex), 32u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, x), 0u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, y), 4u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, s), 8u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, t), 12u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, r), 16u);
    EXPECT_EQ(offsetof(ParticleSlice::Vertex, a), 19u);
}

TEST(ParticleSlice, IsAVisibleEffectNodeWithTheSystemsDrawMode) {
    ParticleSystem ps(4);
    ps.drawMode = BlendColor;
    ParticleSlice* s = ps.createSlice(false, false);
    EXPECT_EQ(s->flags & (Drawable::VISIBLE | Drawable::EFFECT), Drawable::VISIBLE | Drawable::EFFECT);
    EXPECT_EQ(s->getDrawMode(), 0x400u);
    EXPECT_EQ(ps.defaultSlice->getDrawMode(), 0x200u);
    delete s;
}

TEST(ParticleSlice, EmptySliceHasSizeZeroAndStaysDirty) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.defaultSlice;
    s->size = orvel::vec3(5, 6, 7);
    s->flags |= Drawable::DIRTY;
    s->updateSize();
    EXPECT_EQ(s->size.x, 0.0f);
    EXPECT_EQ(s->size.y, 0.0f);
    EXPECT_EQ(s->size.z, 0.0f);
    EXPECT_NE(s->flags & Drawable::DIRTY, 0u);
}

TEST(ParticleSlice, BoxCoversStartAndEndPointsWithHotSpotAtMinusHalf) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.defaultSlice;
    Orvel::currentTime = 0;
    ps.emit(s, 2, 1000, 1000, vec2(0, 0), 0, 16, 16, 16, 16, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    ps.particles[0].start = vec2(10, 20);
    ps.particles[0].end = vec2(50, -10);
    ps.particles[1].start = vec2(-5, 0);
    ps.particles[1].end = vec2(0, 40);
    s->flags |= Drawable::DIRTY;
    s->updateSize();
    // x from -5 to 50, y from -10 to 40.
    EXPECT_FLOAT_EQ(s->size.x, 55.0f);
    EXPECT_FLOAT_EQ(s->size.y, 50.0f);
    EXPECT_EQ(s->size.z, 0.0f);
    EXPECT_FLOAT_EQ(s->hotSpot.x, -27.5f);
    EXPECT_FLOAT_EQ(s->hotSpot.y, -25.0f);
    EXPECT_EQ(s->hotSpot.z, 0.0f);
    EXPECT_EQ(s->flags & Drawable::DIRTY, 0u);
}

TEST_F(ParticleSliceTest, HalfwayThroughItsLifeAParticleSitsHalfwayWithAlpha127) {
    ParticleSystem ps(4);
    // 100 x 60 pads to 128 x 64: S = 0.78125, T = 0.9375.
    Surface image(100, 60);
    Texture padded(&image);
    ps.texture = &padded;
    Orvel::currentTime = 1000;
    // From (0, 0) to (100, 0) over 500 ms; half-extent 10 at birth, 20 at death.
    ps.emit(nullptr, 1, 500, 500, vec2(0, 0), 0, 10, 10, 20, 20, vec2(1, 0), 100, 100, 0, WHITE, WHITE);

    Orvel::currentTime = 1250;
    ps.defaultSlice->draw(state);

    const ParticleSlice::Vertex* v = lastVertices();
    ASSERT_NE(v, nullptr);
    // Centre (50, 0), half-extent 15.
    EXPECT_FLOAT_EQ(v[0].x, 35.0f);
    EXPECT_FLOAT_EQ(v[0].y, -15.0f);
    EXPECT_EQ(v[0].s, 0.0f);
    EXPECT_EQ(v[0].t, 0.0f);
    EXPECT_FLOAT_EQ(v[1].x, 65.0f);
    EXPECT_FLOAT_EQ(v[1].y, -15.0f);
    EXPECT_EQ(v[1].s, 0.78125f);
    EXPECT_EQ(v[1].t, 0.0f);
    EXPECT_FLOAT_EQ(v[2].x, 65.0f);
    EXPECT_FLOAT_EQ(v[2].y, 15.0f);
    EXPECT_EQ(v[2].s, 0.78125f);
    EXPECT_EQ(v[2].t, 0.9375f);
    EXPECT_FLOAT_EQ(v[3].x, 35.0f);
    EXPECT_FLOAT_EQ(v[3].y, 15.0f);
    EXPECT_EQ(v[3].s, 0.0f);
    EXPECT_EQ(v[3].t, 0.9375f);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(v[i].r, 255) << i;
        EXPECT_EQ(v[i].g, 255) << i;
        EXPECT_EQ(v[i].b, 255) << i;
        // trunc((1 - 0.5) * 1 * 255) = trunc(127.5)
        EXPECT_EQ(v[i].a, 127) << i;
    }
    ps.texture = nullptr;
}

TEST_F(ParticleSliceTest, ColourBytesAreTruncated) {
    ParticleSystem ps(4);
    ps.texture = whiteTex;
    Orvel::currentTime = 0;
    vec4 c(0.5f, 0.25f, 0.1f, 1.0f);
    ps.emit(nullptr, 1, 1000, 1000, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, c, c);
    ps.defaultSlice->draw(state);
    const ParticleSlice::Vertex* v = lastVertices();
    EXPECT_EQ(v[0].r, 127); // 127.5
    EXPECT_EQ(v[0].g, 63);  // 63.75
    EXPECT_EQ(v[0].b, 25);  // 25.5
    EXPECT_EQ(v[0].a, 255); // f = 0
}

TEST_F(ParticleSliceTest, DrawUnlinksDeadParticlesAndKeepsOnesDyingThisMillisecond) {
    ParticleSystem ps(4);
    ps.texture = whiteTex;
    ParticleSlice* s = ps.defaultSlice;
    Orvel::currentTime = 0;
    ps.emit(s, 1, 100, 100, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    ps.emit(s, 1, 500, 500, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    ps.emit(s, 1, 900, 900, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    Orvel::currentTime = 500;
    s->draw(state);
    EXPECT_EQ(s->count, 2u);
    EXPECT_EQ(s->head, &ps.particles[1]);
    EXPECT_EQ(s->tail, &ps.particles[2]);
    EXPECT_EQ(ps.particles[1].prev, nullptr);
    EXPECT_EQ(ps.particles[0].slice, nullptr);
    EXPECT_EQ(ps.particles[0].next, nullptr);
    EXPECT_EQ(ps.particles[0].prev, nullptr);
}

TEST_F(ParticleSliceTest, FlushDrawsOncePerMatrixListCapacityWithTheSpareAllZero) {
    ParticleSystem ps(4);
    ps.texture = whiteTex;
    state.transform2D.translate(3, 4);
    Orvel::currentTime = 0;
    ps.emit(nullptr, 1, 1000, 1000, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    g_draws.start();
    ps.defaultSlice->draw(state);
    g_draws.stop();

    // One view rectangle, matrix list capacity 8: seven draws with the spare, then matrix 0.
    ASSERT_EQ(g_draws.calls, 8);
    for (int i = 0; i < 7; ++i) {
        EXPECT_TRUE(isZero(g_draws.records[i].modelView)) << i;
        EXPECT_EQ(g_draws.records[i].count, 4) << i;
    }
    const float* m = g_draws.records[7].modelView;
    EXPECT_EQ(m[0], 1.0f);
    EXPECT_EQ(m[5], 1.0f);
    EXPECT_EQ(m[12], 3.0f);
    EXPECT_EQ(m[13], 4.0f);
    EXPECT_EQ(g_draws.records[7].count, 4);
}

TEST_F(ParticleSliceTest, EachViewRectangleGetsItsOwnMatrixShiftedByItsOffset) {
    ParticleSystem ps(4);
    ps.texture = whiteTex;
    rects.push(ViewRect{0, 0, 10, 10, 100, 50});
    state.transform2D.translate(3, 4);
    Orvel::currentTime = 0;
    ps.emit(nullptr, 1, 1000, 1000, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    g_draws.start();
    ps.defaultSlice->draw(state);
    g_draws.stop();

    // Matrices 7..2 are the spare; 1 is the second rectangle's, 0 the first's.
    ASSERT_EQ(g_draws.calls, 8);
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(isZero(g_draws.records[i].modelView)) << i;
    EXPECT_EQ(g_draws.records[6].modelView[12], 103.0f);
    EXPECT_EQ(g_draws.records[6].modelView[13], 54.0f);
    EXPECT_EQ(g_draws.records[7].modelView[12], 3.0f);
    EXPECT_EQ(g_draws.records[7].modelView[13], 4.0f);
}

TEST_F(ParticleSliceTest, BatchesHoldAtMost512Vertices) {
    ParticleSystem ps(256);
    ps.texture = whiteTex;
    Orvel::currentTime = 0;
    ps.emit(nullptr, 129, 1000, 1000, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    g_draws.start();
    ps.defaultSlice->draw(state);
    g_draws.stop();

    // 128 particles fill one batch of 512; the 129th goes in a second flush of 4.
    ASSERT_EQ(g_draws.calls, 16);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(g_draws.records[i].count, 512) << i;
    for (int i = 8; i < 16; ++i) EXPECT_EQ(g_draws.records[i].count, 4) << i;
}

TEST_F(ParticleSliceTest, NullTextureStillDrawsWithFullTextureCoordinates) {
    ParticleSystem ps(4);
    Orvel::currentTime = 0;
    ps.emit(nullptr, 1, 1000, 1000, vec2(0, 0), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    g_draws.start();
    ps.defaultSlice->draw(state);
    g_draws.stop();
    EXPECT_EQ(g_draws.calls, 8);
    const ParticleSlice::Vertex* v = lastVertices();
    EXPECT_EQ(v[2].s, 1.0f);
    EXPECT_EQ(v[2].t, 1.0f);
}

TEST_F(ParticleSliceTest, EmptySliceDrawsNothing) {
    ParticleSystem ps(4);
    ps.texture = whiteTex;
    g_draws.start();
    ps.defaultSlice->draw(state);
    g_draws.stop();
    EXPECT_EQ(g_draws.calls, 0);
}

TEST_F(ParticleSliceTest, ParticlesReadBackAsPixelsThroughASceneRoot) {
    DirectScene2D* root = makeRoot();
    ParticleSystem ps(8);
    ps.texture = whiteTex;
    root->add(ps.defaultSlice);
    Orvel::currentTime = 1000;
    // A still particle at (100, 80), half-extent 10, and one at (200, 80) at half life below.
    ps.emit(nullptr, 1, 5000, 5000, vec2(100, 80), 0, 10, 10, 10, 10, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    ps.emit(nullptr, 1, 500, 500, vec2(200, 80), 0, 10, 10, 10, 10, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    Orvel::currentTime = 1250;
    clearScreen();
    root->draw();
    Pixels px = readScreen();
    // Additive blending over black gives the alpha: at 1250 the first particle is 250 of its
    // 5000 ms old, trunc((1 - 0.05) * 255) = 242; the second is at half life, 127.
    EXPECT_EQ(px.at(100, 80) & RGB, 0xf2f2f2u);
    EXPECT_EQ(px.at(92, 72) & RGB, 0xf2f2f2u);
    EXPECT_EQ(px.at(80, 80) & RGB, 0u);
    EXPECT_EQ(px.at(100, 100) & RGB, 0u);
    EXPECT_NEAR((int)(px.at(200, 80) & 0xff), 127, 1);
    EXPECT_EQ(px.at(150, 80) & RGB, 0u);
    delete root;
}

TEST_F(ParticleSliceTest, ParticlesShowInTheWrappedCopyOfTheWorld) {
    DirectScene2D* root = makeRoot();
    root->wrap = true;
    root->worldWidth = 4096;
    root->worldHeight = 4096;
    // Near the left edge only: the view and the rectangle of the world's right side.
    Camera2D camera(vec2(100, 2000), 1.0f, 0.0f);
    root->setCamera(&camera);
    ParticleSystem ps(8);
    ps.texture = whiteTex;
    root->add(ps.defaultSlice);
    Orvel::currentTime = 0;
    ps.emit(nullptr, 1, 5000, 5000, vec2(4076, 2000), 0, 5, 5, 5, 5, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    clearScreen();
    root->draw();
    Pixels px = readScreen();
    // 4076 - 4096 = -20 world units, 120 left of the camera: window x 40, y 120.
    EXPECT_EQ(px.at(40, 120) & RGB, 0xffffffu);
    EXPECT_EQ(px.at(60, 120) & RGB, 0u);
    root->setCamera(nullptr);
    delete root;
}

TEST_F(ParticleSliceTest, SliceWithBothFlagsLeavesTheTreeAndIsDeletedAtTheFirstDrawFindingItEmpty) {
    DirectScene2D* root = makeRoot();
    ParticleSystem ps(8);
    ps.texture = whiteTex;
    bool deleted = false;
    ParticleSlice* slice = new WatchedSlice(&ps, true, true, &deleted);
    root->add(slice);
    Orvel::currentTime = 0;
    ps.emit(slice, 1, 100, 100, vec2(50, 50), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);

    Orvel::currentTime = 50;
    root->draw();
    EXPECT_EQ(slice->count, 1u);

    // The first draw after the death drops the particle; the slice is still in the tree.
    Orvel::currentTime = 150;
    root->draw();
    EXPECT_FALSE(deleted);
    EXPECT_EQ(slice->count, 0u);
    EXPECT_EQ(root->getNumDrawables(), 1);

    // The next draw finds it empty: out of the tree and deleted.
    Orvel::currentTime = 166;
    root->draw();
    EXPECT_TRUE(deleted);
    EXPECT_EQ(root->getNumDrawables(), 0);
    EXPECT_EQ(root->first, nullptr);
    EXPECT_EQ(ps.particles[0].slice, nullptr);
    delete root;
}

TEST_F(ParticleSliceTest, SliceThatOnlyRemovesItselfLeavesTheTreeAndLives) {
    DirectScene2D* root = makeRoot();
    ParticleSystem ps(8);
    ps.texture = whiteTex;
    bool deleted = false;
    ParticleSlice* slice = new WatchedSlice(&ps, true, false, &deleted);
    root->add(slice);
    root->draw();
    EXPECT_FALSE(deleted);
    EXPECT_EQ(slice->parent, nullptr);
    EXPECT_EQ(root->getNumDrawables(), 0);
    // Added again, it draws what it is given.
    Orvel::currentTime = 0;
    ps.emit(slice, 1, 100, 100, vec2(50, 50), 0, 4, 4, 4, 4, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    root->add(slice);
    clearScreen();
    root->draw();
    EXPECT_EQ(readScreen().at(50, 50) & RGB, 0xffffffu);
    EXPECT_EQ(slice->parent, (Container*)root);
    delete slice;
    EXPECT_TRUE(deleted);
    delete root;
}

TEST_F(ParticleSliceTest, SliceWithoutFlagsStaysWhenEmpty) {
    DirectScene2D* root = makeRoot();
    ParticleSystem ps(8);
    ps.texture = whiteTex;
    root->add(ps.defaultSlice);
    root->draw();
    EXPECT_EQ(ps.defaultSlice->parent, (Container*)root);
    EXPECT_EQ(ps.defaultSlice->head, nullptr);
    EXPECT_EQ(ps.defaultSlice->tail, nullptr);
    delete root;
}

TEST_F(ParticleSliceTest, SteadyStateAllocatesNothing) {
    DirectScene2D* root = makeRoot();
    root->wrap = true;
    root->worldWidth = 4096;
    root->worldHeight = 4096;
    Camera2D camera(vec2(100, 2000), 1.0f, 0.0f);
    root->setCamera(&camera);
    ParticleSystem ps(256);
    ps.texture = whiteTex;
    ps.wind = vec2(5, 3);
    root->add(ps.defaultSlice);
    ParticleSlice* sparks = ps.createSlice(true, false);
    ParticleEmitter* trail = ps.createEmitter(nullptr);
    trail->rate = 200;
    trail->position = vec2(60, 2000);
    trail->direction = vec2(1, 0);
    trail->speedMax = 80;
    trail->spread = 50;
    trail->radius = 3;

    auto frame = [&](unsigned i) {
        Orvel::currentTime = 10000 + i * 16;
        Orvel::sync = 0.016f;
        ps.emit(sparks, 8, 300, 600, vec2(100, 2000), 2, 4, 8, 0, 2, vec2(0, -1), 5, 85, 60, WHITE, WHITE);
        if (!sparks->parent) root->add(sparks);
        ps.update();
        clearScreen();
        root->draw();
    };
    for (unsigned i = 0; i < 30; ++i) frame(i);
    ASSERT_GT(ps.defaultSlice->count + sparks->count, 128u); // more than one batch per frame

    std::size_t before = testing_support::allocationCount();
    for (unsigned i = 30; i < 230; ++i) frame(i);
    EXPECT_EQ(testing_support::allocationCount() - before, 0u);

    root->setCamera(nullptr);
    delete sparks;
    delete root;
}

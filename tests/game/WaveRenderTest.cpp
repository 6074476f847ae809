// A wave-17 world drawn once: the enemies near the camera show at their sizes, the rest of the
// 231 are culled and leave the screen black.

#include <cstdint>

#include "engine/Surface.h"
#include "engine/Texture.h"
#include "game/Player.h"
#include "game/Starfield.h"
#include "scene/Group.h"
#include "scene/Sprite.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

class WaveRenderTest : public SessionTest {
protected:
    // The art of a fresh window.
    WaveRenderTest() { reloadResources = true; }

    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
        while (g_game->wave < 17) {
            clearEnemies();
            g_game->nextWave();
        }
        orvel::Surface image(8, 8);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) image.setPixel(x, y, 0xFFFFFFFFu);
        white = new orvel::Texture(&image);
    }
    void TearDown() override {
        delete white;
        SessionTest::TearDown();
    }

    // Shows `e` fully faded in, unrotated, at world point `at`, as a solid white square of its
    // sprite size (the glow left out), so its extent can be measured exactly.
    void show(EnemyShip* e, vec2 at) {
        e->position = at;
        e->drawable->position = orvel::vec3(at.x, at.y, 0.0f);
        e->drawable->setScale(1.0f);
        e->drawable->setRotation(0.0f);
        e->drawable->blendColor.a = 255;
        e->drawable->markDirty();
        e->sprite->texture = white;
        e->glow->texture = nullptr;
    }

    template <typename T> static T* firstOf() {
        for (unsigned i = 0; i < g_game->enemies.count; ++i) {
            if (T* e = dynamic_cast<T*>(g_game->enemies.data[i])) return e;
        }
        return nullptr;
    }

    static bool lit(const Pixels& p, int x, int y) { return (p.at(x, y) & 0x00FFFFFFu) != 0; }

    orvel::Texture* white = nullptr;
};

} // namespace

TEST_F(WaveRenderTest, EnemiesNearTheCameraShowAtTheirSizesAndTheCulledOnesNotAtAll) {
    ASSERT_EQ(g_game->enemies.count, 231u);
    g_game->starfield->skyOn = 0;
    g_game->starfield->starsOn = 0;
    g_game->player->drawable->setVisible(false);
    Camera2D* camera = g_world->getCamera();
    camera->position = vec2(2048.0f, 2048.0f);
    camera->zoom = 1.0f;

    // Every enemy far outside the view (world x and y in [100, 1000])...
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        EnemyShip* e = static_cast<EnemyShip*>(g_game->enemies.data[i]);
        show(e, vec2(100.0f + (i % 20) * 45.0f, 100.0f + (i / 20) * 45.0f));
    }
    // ...but three, placed on screen: the camera's point is the screen centre (640, 360).
    Hammerhead2* big = firstOf<Hammerhead2>();
    Probe* small = firstOf<Probe>();
    Probe3* probe3 = firstOf<Probe3>();
    ASSERT_TRUE(big && small && probe3);
    show(big, vec2(2048.0f - 400.0f, 2048.0f));            // screen (240, 360), 172 wide
    show(small, vec2(2048.0f + 300.0f, 2048.0f - 100.0f)); // screen (940, 260), 82 wide
    show(probe3, vec2(2048.0f, 2048.0f + 200.0f));         // screen (640, 560), 116 wide

    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    g_world->draw();
    const Pixels p = readScreen();

    struct Box {
        int x, y, half;
    };
    const Box boxes[] = {{240, 360, 86}, {940, 260, 41}, {640, 560, 58}};
    long expectedLit = 0;
    for (const Box& b : boxes) {
        SCOPED_TRACE(b.half);
        expectedLit += 4L * b.half * b.half;
        // Inside the edges on all four sides, and just outside them.
        EXPECT_TRUE(lit(p, b.x - b.half + 1, b.y));
        EXPECT_TRUE(lit(p, b.x + b.half - 2, b.y));
        EXPECT_TRUE(lit(p, b.x, b.y - b.half + 1));
        EXPECT_TRUE(lit(p, b.x, b.y + b.half - 2));
        EXPECT_FALSE(lit(p, b.x - b.half - 2, b.y));
        EXPECT_FALSE(lit(p, b.x + b.half + 1, b.y));
        EXPECT_FALSE(lit(p, b.x, b.y - b.half - 2));
        EXPECT_FALSE(lit(p, b.x, b.y + b.half + 1));
    }
    // Nothing else on the screen: the 228 enemies out of view drew nothing.
    long litCount = 0;
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) litCount += lit(p, x, y) ? 1 : 0;
    EXPECT_NEAR((double)litCount, (double)expectedLit, 4.0 * (172 + 82 + 116));
}

// The reticle: its two sprites, its place under the mouse and the glow's pulse.

#include "game/Reticle.h"

#include "engine/Orvel.h"
#include "game/Resources.h"
#include "scene/Camera2D.h"
#include "scene/Sprite.h"
#include "tests/support/GameSession.h"

using orvel::Orvel;
using testing_support::HudScene;

namespace {

class ReticleTest : public HudScene {};

} // namespace

TEST_F(ReticleTest, BuildsTheCrossThenTheGlowAbove) {
    Reticle r;
    ASSERT_NE(r.cross, nullptr);
    ASSERT_NE(r.glow, nullptr);
    EXPECT_EQ(r.cross->texture, Resources::reticle_tex);
    EXPECT_EQ(r.glow->texture, Resources::reticle_glow_tex);
    EXPECT_EQ(r.cross->size.x, 38.0f);
    EXPECT_EQ(r.cross->size.y, 38.0f);
    EXPECT_EQ(r.cross->size.z, 0.0f);
    EXPECT_EQ(r.glow->size.x, 40.0f);
    EXPECT_EQ(r.glow->size.y, 40.0f);
    EXPECT_EQ(r.glow->size.z, 0.0f);
    EXPECT_EQ(r.first, r.cross);
    EXPECT_EQ(r.last, r.glow);
    EXPECT_EQ(r.count, 2);
    EXPECT_TRUE(r.isVisible());
}

TEST_F(ReticleTest, SitsExactlyUnderTheMouseWhateverTheWorldCameraDoes) {
    Reticle r;
    Camera2D far(orvel::vec2(3000, 1700), 2.5f, 0.0f);
    g_world->setCamera(&far);
    setMouse(37, 601);
    r.update();
    EXPECT_FLOAT_EQ(r.position.x, 37.0f);
    EXPECT_FLOAT_EQ(r.position.y, 601.0f);
    EXPECT_EQ(r.position.z, 0.0f);

    far.position = orvel::vec2(10, 4000);
    far.zoom = 0.4f;
    setMouse(1279, 0);
    r.update();
    EXPECT_FLOAT_EQ(r.position.x, 1279.0f);
    EXPECT_FLOAT_EQ(r.position.y, 0.0f);
    g_world->setCamera(nullptr);
}

TEST_F(ReticleTest, TheGlowAlphaPulsesBetween64And192) {
    Reticle r;
    setMouse(0, 0);
    // The glow's alpha after an update at `ms`.
    auto glowAlphaAt = [&r](uint32_t ms) {
        Orvel::currentTime = ms;
        r.update();
        return r.glow->blendColor.a;
    };
    // sin(0) * 64 + 128.
    EXPECT_EQ(glowAlphaAt(0), 128);
    // sin(0.5) = 0.4794: 158.68.
    EXPECT_EQ(glowAlphaAt(100), 158);
    // sin(1.57) = 0.9999997: 191.99998.
    EXPECT_EQ(glowAlphaAt(314), 191);
    // sin(4.71) = -0.9999997: 64.00002.
    EXPECT_EQ(glowAlphaAt(942), 64);
    // The cross keeps its colour.
    EXPECT_EQ(r.cross->blendColor.a, 255);
}

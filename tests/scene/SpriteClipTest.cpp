#include "scene/SpriteClip.h"

#include <cmath>
#include <cstdlib>

#include "engine/GL.h"
#include "engine/Texture.h"
#include "scene/Sprite.h"
#include "tests/scene/VisualsFixture.h"

using orvel::Texture;
using testing_support::VisualsTest;

namespace {

// Column-major matrices: an orthographic projection that maps (0..128, 0..128) onto a viewport
// of the same size, so that window coordinates equal local ones.
const float ORTHO_128[16] = {2.0f / 128, 0, 0, 0, 0, 2.0f / 128, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1};
const float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
const int VIEWPORT_128[4] = {0, 0, 128, 128};

class SpriteClipTest : public VisualsTest {
protected:
    void TearDown() override {
        SpriteClip::enabled = true;
        VisualsTest::TearDown();
    }

    // A w x h texture whose only texels with alpha are the given ones (x, y pairs, `count` of them).
    static Texture* texelsAt(int w, int h, const int* points, int count) {
        return makeTexture(w, h, [points, count](int x, int y) {
            for (int i = 0; i < count; ++i)
                if (points[2 * i] == x && points[2 * i + 1] == y) return pack(200, 100, 50, 255);
            return pack(255, 255, 255, 0);
        });
    }

    static WindowRect rectOf(const Texture& t, float x0, float y0, float x1, float y1,
                             const float* modelView = IDENTITY, const float* projection = ORTHO_128) {
        WindowRect r{-99, -99, -99, -99};
        EXPECT_TRUE(SpriteClip::windowRect(t, x0, y0, x1, y1, modelView, projection, VIEWPORT_128, r));
        return r;
    }

    static void expectRect(const WindowRect& r, int x, int y, int width, int height) {
        EXPECT_EQ(r.x, x);
        EXPECT_EQ(r.y, y);
        EXPECT_EQ(r.width, width);
        EXPECT_EQ(r.height, height);
    }
};

// Texels with alpha from (20, 10) to (29, 19) of a 64 x 64 texture.
const int MIDDLE_BLOCK[4] = {20, 10, 29, 19};

} // namespace

TEST_F(SpriteClipTest, OnlyBlendsThatKeepTheTargetUnderClearTexelsAreClipped) {
    EXPECT_TRUE(SpriteClip::blendKeepsClearTexels(BlendAlpha));
    EXPECT_TRUE(SpriteClip::blendKeepsClearTexels(BlendAdd));
    EXPECT_TRUE(SpriteClip::blendKeepsClearTexels(0));
    EXPECT_TRUE(SpriteClip::blendKeepsClearTexels(BlendColor | BlendAdd));
    EXPECT_TRUE(SpriteClip::blendKeepsClearTexels(BlendColor | BlendAlpha));
    EXPECT_FALSE(SpriteClip::blendKeepsClearTexels(BlendColor));
}

TEST_F(SpriteClipTest, TheRectangleIsTheTexelsWithAlphaOneTexelAndOnePixelWider) {
    Texture* t = texelsAt(64, 64, MIDDLE_BLOCK, 2);
    // Texels 19 to 31 in x and 9 to 21 in y, one texel per unit; then a pixel more each way.
    expectRect(rectOf(*t, 0, 0, 64, 64), 18, 8, 14, 14);
    delete t;
}

TEST_F(SpriteClipTest, TheRectangleFollowsTheQuadsScaleAndTheModelView) {
    Texture* t = texelsAt(64, 64, MIDDLE_BLOCK, 2);
    expectRect(rectOf(*t, 0, 0, 128, 128), 37, 17, 26, 26);
    const float moved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 0, 1};
    expectRect(rectOf(*t, 0, 0, 64, 64, moved), 28, 28, 14, 14);
    // Turned a quarter: x' = 100 - y, y' = x.
    const float turned[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 100, 0, 0, 1};
    expectRect(rectOf(*t, 0, 0, 64, 64, turned), 78, 18, 14, 14);
    delete t;
}

TEST_F(SpriteClipTest, AnAxisWhoseEdgeTexelsHoldAlphaIsNotCut) {
    // Column 0 wraps into the far edge and row 63 into the near one: both axes stay whole.
    const int edges[4] = {0, 30, 40, 63};
    Texture* t = texelsAt(64, 64, edges, 2);
    expectRect(rectOf(*t, 0, 0, 64, 64), -1, -1, 66, 66);
    delete t;
    const int farEdge[4] = {63, 30, 40, 30};
    t = texelsAt(64, 64, farEdge, 2);
    const WindowRect r = rectOf(*t, 0, 0, 64, 64);
    EXPECT_EQ(r.x, -1);
    EXPECT_EQ(r.width, 66);
    EXPECT_EQ(r.y, 28);
    EXPECT_EQ(r.height, 5);
    delete t;
}

TEST_F(SpriteClipTest, APaddedImageIsCutUpToItsOwnLastTexelsSinceThePaddingIsClear) {
    // A 40 x 24 image in a 64 x 32 texture, with alpha in its last column and row.
    const int points[4] = {5, 3, 39, 23};
    Texture* t = texelsAt(40, 24, points, 2);
    ASSERT_EQ(t->width, 64);
    ASSERT_EQ(t->height, 32);
    expectRect(rectOf(*t, 0, 0, 40, 24), 3, 1, 39, 25);
    delete t;
}

TEST_F(SpriteClipTest, AnImageWithoutAlphaGivesAnEmptyRectangle) {
    Texture* t = texelsAt(16, 16, nullptr, 0);
    expectRect(rectOf(*t, 0, 0, 64, 64), 0, 0, 0, 0);
    delete t;
}

TEST_F(SpriteClipTest, UnknownTexelsAndCornersBehindTheEyeGiveNoRectangle) {
    WindowRect r{};
    Texture target(64, 64, 0, GL_TEXTURE_2D, GL_RGBA8);
    EXPECT_FALSE(SpriteClip::windowRect(target, 0, 0, 64, 64, IDENTITY, ORTHO_128, VIEWPORT_128, r));
    Texture* t = texelsAt(64, 64, MIDDLE_BLOCK, 2);
    float behind[16];
    for (int i = 0; i < 16; ++i) behind[i] = ORTHO_128[i];
    behind[15] = -1;
    EXPECT_FALSE(SpriteClip::windowRect(*t, 0, 0, 64, 64, IDENTITY, behind, VIEWPORT_128, r));
    delete t;
}

TEST_F(SpriteClipTest, FarCornersAreHeldNearTheViewport) {
    Texture* t = texelsAt(64, 64, MIDDLE_BLOCK, 2);
    const float far[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1e20f, -1e20f, 0, 1};
    expectRect(rectOf(*t, 0, 0, 64, 64, far), 129, -3, 2, 2);
    delete t;
}

namespace {

// A soft, coloured blob in the middle of a 64 x 64 image, clear around it.
uint32_t blob(int x, int y) {
    const int dx = x - 30, dy = y - 34;
    const int d2 = dx * dx + dy * dy;
    if (d2 >= 15 * 15) return orvel::Color::getColor(90, 200, 255, 0);
    return orvel::Color::getColor(40 + 5 * x % 200, 250 - 3 * y, 120, 255 - d2 * 255 / 225);
}

// A busy background: a different colour in every texel.
uint32_t noise(int x, int y) {
    return orvel::Color::getColor((x * 37 + y * 11) & 255, (x * 5 + y * 71) & 255, (x * y * 13) & 255, 255);
}

} // namespace

TEST_F(SpriteClipTest, ClippedSpritesGiveTheSamePixelsTurnedScaledAndMovedBySubpixels) {
    Texture* ground = makeTexture(64, 64, noise);
    Texture* image = makeTexture(64, 64, blob);
    DirectScene2D* root = makeRoot();
    Sprite back(ground, (float)WIDTH, (float)HEIGHT);
    back.position = orvel::vec3(WIDTH / 2.0f, HEIGHT / 2.0f, 0);
    root->add(&back);
    Sprite sprite(image, 64, 64);
    root->add(&sprite);
    srand(7);
    for (int i = 0; i < 60; ++i) {
        sprite.position = orvel::vec3(20 + rand() % 2800 / 10.0f, 20 + rand() % 2000 / 10.0f, 0);
        const float degrees = (float)(rand() % 3600) / 10.0f;
        // Up to 2.5 times: even turned, the quad stays inside the 320 x 240 window.
        const float scale = 0.25f + (float)(rand() % 225) / 100.0f;
        sprite.setRotation(degrees);
        sprite.setScale(scale);
        sprite.flags = (sprite.flags & ~(uint32_t)(BlendAlpha | BlendAdd | BlendColor)) |
                       (i % 2 ? (uint32_t)BlendAdd : (uint32_t)BlendAlpha);
        SpriteClip::enabled = false;
        drawFrame(*root);
        const Pixels plain = readScreen();
        SpriteClip::enabled = true;
        glScissor(0, 0, 1, 1);
        drawFrame(*root);
        const Pixels cut = readScreen();
        ASSERT_EQ(plain.data, cut.data) << "sprite " << i;
        // The blob's draw, the last, was cut to a box narrower than its turned quad.
        const double radians = degrees * M_PI / 180.0;
        const double side = 64.0 * scale * (std::fabs(std::cos(radians)) + std::fabs(std::sin(radians)));
        GLint box[4];
        glGetIntegerv(GL_SCISSOR_BOX, box);
        EXPECT_LT(box[2], side) << "sprite " << i;
        EXPECT_LT(box[3], side) << "sprite " << i;
        EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    }
    root->remove(&back);
    root->remove(&sprite);
    delete root;
    delete image;
    delete ground;
}

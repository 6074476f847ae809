#include "engine/Texture.h"

#include <vector>

#include "engine/Color.h"
#include "engine/Surface.h"
#include "tests/support/GLFixture.h"

using orvel::Color;
using orvel::Surface;
using orvel::Texture;
using testing_support::GLTest;

namespace {

class TextureTest : public GLTest {
protected:
    static std::vector<uint32_t> texels(const Texture& t) {
        std::vector<uint32_t> out((size_t)t.width * t.height);
        glBindTexture(GL_TEXTURE_2D, t.id);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, out.data());
        return out;
    }
    static GLint parameter(GLenum target, GLenum name) {
        GLint v = 0;
        glGetTexParameteriv(target, name, &v);
        return v;
    }
    // Uploads `image` and checks the texture it makes: w x h, the image covering the fraction
    // sScale x tScale of it, and w * h * 4 bytes more counted memory. Its texels, read back.
    static std::vector<uint32_t> uploadedTexels(const Surface& image, int w, int h, float sScale, float tScale) {
        uint32_t before = Texture::usedMemory;
        Texture t(&image);
        EXPECT_EQ(t.width, w);
        EXPECT_EQ(t.height, h);
        EXPECT_EQ(t.sScale, sScale);
        EXPECT_EQ(t.tScale, tScale);
        EXPECT_EQ(Texture::usedMemory, before + (uint32_t)(w * h * 4));
        return texels(t);
    }
    // A parameter of mipmap level 0 of `t`, which is left bound to `target`.
    static GLint levelParameter(const Texture& t, GLenum target, GLenum name) {
        GLint v = 0;
        glBindTexture(target, t.id);
        glGetTexLevelParameteriv(target, 0, name, &v);
        return v;
    }
    // A w x h image whose pixel (x, y) is opaque with red x, green y, blue 77.
    static Surface gradient(int w, int h) {
        Surface s(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) s.setPixel(x, y, Color::getColor(x, y, 77, 255));
        return s;
    }
};

} // namespace

TEST_F(TextureTest, ImageOfNonPowerOfTwoSizeIsPaddedWithTransparentBlack) {
    Surface image = gradient(100, 50);
    // 100 / 128 = 0.78125 and 50 / 64 = 0.78125.
    std::vector<uint32_t> data = uploadedTexels(image, 128, 64, 0.78125f, 0.78125f);
    EXPECT_EQ(data[0], image.getPixel(0, 0));
    EXPECT_EQ(data[49 * 128 + 99], image.getPixel(99, 49));
    EXPECT_EQ(data[49 * 128 + 100], 0u);
    EXPECT_EQ(data[50 * 128 + 0], 0u);
    EXPECT_EQ(data[63 * 128 + 127], 0u);
}

TEST_F(TextureTest, PowerOfTwoImageIsUploadedAsIs) {
    Surface image = gradient(64, 64);
    std::vector<uint32_t> data = uploadedTexels(image, 64, 64, 1.0f, 1.0f);
    for (int i = 0; i < 64 * 64; ++i) ASSERT_EQ(data[i], image.pixels[i]) << i;
}

TEST_F(TextureTest, ImageTextureSettingsAreRgba8LinearRepeatOnUnitZero) {
    Surface image(4, 4);
    Texture t(&image);
    EXPECT_NE(t.id, 0u);
    EXPECT_EQ(t.unit, (unsigned)GL_TEXTURE0);
    EXPECT_EQ(t.target, (unsigned)GL_TEXTURE_2D);
    EXPECT_EQ(t.internalFormat, (unsigned)GL_RGBA8);
    EXPECT_EQ(t.spare, 0u);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ((unsigned)bound, t.id);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
}

TEST_F(TextureTest, NullImageGivesEmptyTextureWithoutMemory) {
    uint32_t before = Texture::usedMemory;
    Texture t(nullptr);
    EXPECT_NE(t.id, 0u);
    EXPECT_EQ(t.width, 0);
    EXPECT_EQ(t.height, 0);
    EXPECT_EQ(Texture::usedMemory, before);
}

TEST_F(TextureTest, AnImageTextureKnowsItsTexelsWithAlphaInsideThePadding) {
    Surface image(100, 50);
    image.setPixel(12, 40, 0xff000000);
    image.setPixel(99, 7, 0x01000000);
    Texture t(&image);
    EXPECT_TRUE(t.visible.known);
    EXPECT_EQ(t.visible.x0, 12);
    EXPECT_EQ(t.visible.y0, 7);
    EXPECT_EQ(t.visible.x1, 99);
    EXPECT_EQ(t.visible.y1, 40);
}

TEST_F(TextureTest, NullImagesAndRenderTargetsDoNotKnowTheirTexels) {
    Texture empty(nullptr);
    EXPECT_FALSE(empty.visible.known);
    Texture target(64, 32, 0, GL_TEXTURE_2D, GL_RGBA8);
    EXPECT_FALSE(target.visible.known);
}

TEST_F(TextureTest, DestructionReturnsPaddedMemory) {
    uint32_t before = Texture::usedMemory;
    Surface image(100, 50);
    Texture* t = new Texture(&image);
    EXPECT_EQ(Texture::usedMemory, before + 32768);
    GLuint id = t->id;
    delete t;
    EXPECT_EQ(Texture::usedMemory, before);
    EXPECT_FALSE(glIsTexture(id));
}

TEST_F(TextureTest, RenderTargetOfTinySizeAllocatesEightByEight) {
    uint32_t before = Texture::usedMemory;
    Texture t(4, 4, 0, GL_TEXTURE_2D, GL_RGBA8);
    EXPECT_EQ(t.width, 8);
    EXPECT_EQ(t.height, 8);
    EXPECT_EQ(t.depth, 2);
    EXPECT_EQ(Texture::usedMemory, before + 256);
    EXPECT_EQ(levelParameter(t, GL_TEXTURE_2D, GL_TEXTURE_WIDTH), 8);
    EXPECT_EQ(levelParameter(t, GL_TEXTURE_2D, GL_TEXTURE_HEIGHT), 8);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
}

TEST_F(TextureTest, RenderTargetLeavesTextureZeroBound) {
    Texture t(32, 16, 1, GL_TEXTURE_2D, GL_RGBA8);
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
    EXPECT_EQ(t.width, 32);
    EXPECT_EQ(t.height, 16);
}

TEST_F(TextureTest, ThreeDimensionalTargetCountsOneLayerOfMemory) {
    uint32_t before = Texture::usedMemory;
    Texture t(16, 16, 4, GL_TEXTURE_3D, GL_RGBA8);
    EXPECT_EQ(t.depth, 4);
    EXPECT_EQ(Texture::usedMemory, before + 16 * 16 * 4);
    EXPECT_EQ(levelParameter(t, GL_TEXTURE_3D, GL_TEXTURE_DEPTH), 4);
    EXPECT_EQ(parameter(GL_TEXTURE_3D, GL_TEXTURE_WRAP_R), GL_CLAMP_TO_EDGE);
}

TEST_F(TextureTest, OneDimensionalTargetCountsWidthTimesHeight) {
    uint32_t before = Texture::usedMemory;
    Texture t(16, 1, 0, GL_TEXTURE_1D, GL_RGBA8);
    EXPECT_EQ(t.height, 8);
    EXPECT_EQ(Texture::usedMemory, before + 16 * 8 * 4);
    EXPECT_EQ(levelParameter(t, GL_TEXTURE_1D, GL_TEXTURE_WIDTH), 16);
}

TEST_F(TextureTest, BindActivatesUnitAndUnbindClearsIt) {
    Surface image(8, 8);
    Texture t(&image);
    t.bind(GL_TEXTURE0 + 1);
    EXPECT_EQ(t.unit, (unsigned)GL_TEXTURE1);
    GLint active = 0, bound = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(active, GL_TEXTURE1);
    EXPECT_EQ((unsigned)bound, t.id);
    glActiveTexture(GL_TEXTURE0);
    t.unbind();
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(active, GL_TEXTURE1);
    EXPECT_EQ(bound, 0);
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(TextureTest, PaddedTextureDrawnWithItsScalesShowsOnlyTheImage) {
    Surface image = gradient(100, 50);
    Texture t(&image);
    pixelProjection();
    glViewport(0, 0, 100, 50);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, 100, 50, 0, -1, 1);
    glEnable(GL_TEXTURE_2D);
    t.bind(GL_TEXTURE0);
    glColor4f(1, 1, 1, 1);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    // Texture row 0 is the image's top row; the quad's top edge takes t = 0.
    drawQuad(0, 0, 100, 50, 0, 0, t.sScale, t.tScale);
    Pixels p = readPixels(0, 0, 100, 50);
    for (int y = 0; y < 50; ++y)
        for (int x = 0; x < 100; ++x) ASSERT_EQ(p.at(x, y), image.getPixel(x, y)) << x << "," << y;
}

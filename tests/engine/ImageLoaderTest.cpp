#include "engine/ImageLoader.h"

#include <cstdio>
#include <string>

#include <SDL/SDL.h>
#include <unistd.h>

#include "engine/Surface.h"
#include "engine/Texture.h"
#include "tests/support/GLFixture.h"

using orvel::ImageLoader;
using orvel::Surface;
using orvel::Texture;
using testing_support::GLTest;

namespace {

// A 3 x 2 RGBA PNG; top row (255,0,0,255) (0,255,0,128) (0,0,255,0),
// bottom row (10,20,30,40) (255,255,255,255) (1,2,3,4).
const unsigned char PNG_3X2[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00, 0x00,
    0x03, 0x00, 0x00, 0x00, 0x02, 0x08, 0x06, 0x00, 0x00, 0x00, 0x9d, 0x74, 0x66, 0x1a, 0x00, 0x00, 0x00, 0x23, 0x49,
    0x44, 0x41, 0x54, 0x78, 0x9c, 0x63, 0xf8, 0xcf, 0xc0, 0xf0, 0x9f, 0xe1, 0x3f, 0x43, 0x03, 0x03, 0xc3, 0x7f, 0x06,
    0x06, 0x2e, 0x11, 0x39, 0x8d, 0xff, 0xff, 0xff, 0xff, 0x67, 0x64, 0x62, 0x66, 0x01, 0x00, 0x78, 0xaa, 0x08, 0xe7,
    0x11, 0x50, 0xb3, 0xb6, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

const uint32_t PNG_3X2_PIXELS[6] = {0xFF0000FF, 0x8000FF00, 0x00FF0000, 0x281E140A, 0xFFFFFFFF, 0x04030201};

class TempFile {
public:
    explicit TempFile(const void* data, size_t size) {
        char name[] = "/tmp/imageloaderXXXXXX";
        int fd = mkstemp(name);
        if (fd >= 0) {
            if (write(fd, data, size) != (ssize_t)size) path.clear();
            close(fd);
        }
        path = name;
    }
    ~TempFile() { unlink(path.c_str()); }
    std::string path;
};

void expectPngPixels(const Surface* s) {
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->width, 3);
    EXPECT_EQ(s->height, 2);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(s->pixels[i], PNG_3X2_PIXELS[i]) << i;
}

// A 4 x 4 opaque BMP, magenta except a green cross on row 1 and column 2.
std::string writeMagentaBmp() {
    SDL_Surface* image = SDL_CreateRGBSurface(SDL_SWSURFACE, 4, 4, 32, 0xFF0000, 0xFF00, 0xFF, 0);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            ((Uint32*)((Uint8*)image->pixels + y * image->pitch))[x] = (y == 1 || x == 2) ? 0x00FF00 : 0xFF00FF;
    std::string path = "/tmp/imageloader_magenta_" + std::to_string(getpid()) + ".bmp";
    SDL_SaveBMP(image, path.c_str());
    SDL_FreeSurface(image);
    return path;
}

} // namespace

// Tests run on a real GL context.
class ImageLoaderTest : public GLTest {};

TEST_F(ImageLoaderTest, LoadKeepsEveryChannelIncludingAlpha) {
    TempFile file(PNG_3X2, sizeof PNG_3X2);
    ImageLoader::lastError = 5;
    Surface* s = ImageLoader::load(file.path.c_str(), false);
    expectPngPixels(s);
    EXPECT_EQ(ImageLoader::lastError, 0);
    delete s;
}

TEST_F(ImageLoaderTest, LoadOfMissingFileGivesNullAndError2) {
    EXPECT_EQ(ImageLoader::load("/nonexistent/none.png", false), nullptr);
    EXPECT_EQ(ImageLoader::lastError, 2);
}

TEST_F(ImageLoaderTest, LoadOfNonImageGivesNullAndError2) {
    const char text[] = "this is not an image, only some words\n";
    TempFile file(text, sizeof text - 1);
    EXPECT_EQ(ImageLoader::load(file.path.c_str(), false), nullptr);
    EXPECT_EQ(ImageLoader::lastError, 2);
}

TEST_F(ImageLoaderTest, LoadOfTruncatedPngGivesNullAndError2) {
    TempFile file(PNG_3X2, 50);
    EXPECT_EQ(ImageLoader::load(file.path.c_str(), false), nullptr);
    EXPECT_EQ(ImageLoader::lastError, 2);
}

TEST_F(ImageLoaderTest, LoadBufDecodesMemoryAndLeavesErrorAsItWas) {
    ImageLoader::lastError = 2;
    Surface* s = ImageLoader::loadBuf(PNG_3X2, sizeof PNG_3X2, false);
    expectPngPixels(s);
    EXPECT_EQ(ImageLoader::lastError, 2);
    delete s;
}

TEST_F(ImageLoaderTest, LoadBufOfTruncatedPngGivesNullAndError1) {
    ImageLoader::lastError = 0;
    EXPECT_EQ(ImageLoader::loadBuf(PNG_3X2, 50, false), nullptr);
    EXPECT_EQ(ImageLoader::lastError, 1);
}

TEST_F(ImageLoaderTest, LoadTextureOfMissingFileGivesEmptyTextureAndError2) {
    uint32_t before = Texture::usedMemory;
    Texture* t = ImageLoader::loadTexture("/nonexistent/none.png", false);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->width, 0);
    EXPECT_NE(t->id, 0u);
    EXPECT_EQ(ImageLoader::lastError, 2);
    EXPECT_EQ(Texture::usedMemory, before);
    delete t;
}

TEST_F(ImageLoaderTest, LoadTextureUploadsPaddedImage) {
    TempFile file(PNG_3X2, sizeof PNG_3X2);
    Texture* t = ImageLoader::loadTexture(file.path.c_str(), false);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->width, 4);
    EXPECT_EQ(t->height, 2);
    EXPECT_EQ(t->sScale, 0.75f);
    EXPECT_EQ(t->tScale, 1.0f);
    uint32_t texels[8];
    glBindTexture(GL_TEXTURE_2D, t->id);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    EXPECT_EQ(texels[0], PNG_3X2_PIXELS[0]);
    EXPECT_EQ(texels[5], PNG_3X2_PIXELS[4]);
    EXPECT_EQ(texels[3], 0u);
    delete t;
}

TEST_F(ImageLoaderTest, LoadBufTextureOfGarbageGivesEmptyTextureAndError1) {
    const char garbage[] = "\x89PNG but not really";
    Texture* t = ImageLoader::loadBufTexture(garbage, sizeof garbage, false);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->width, 0);
    EXPECT_EQ(ImageLoader::lastError, 1);
    delete t;
}

TEST_F(ImageLoaderTest, ColorKeyTurnsEveryTopLeftColouredPixelTransparentBlack) {
    std::string path = writeMagentaBmp();
    Surface* s = ImageLoader::load(path.c_str(), true);
    unlink(path.c_str());
    ASSERT_NE(s, nullptr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            uint32_t expected = (y == 1 || x == 2) ? 0xFF00FF00u : 0u;
            EXPECT_EQ(s->getPixel(x, y), expected) << x << "," << y;
        }
    delete s;
}

TEST_F(ImageLoaderTest, PrepareImageWithoutAlphaMakesEveryPixelOpaque) {
    SDL_Surface* image = SDL_CreateRGBSurface(SDL_SWSURFACE, 2, 1, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000);
    ((Uint32*)image->pixels)[0] = 0x00332211;
    ((Uint32*)image->pixels)[1] = 0x80665544;
    Surface* s = ImageLoader::prepareImage(image, false, false);
    EXPECT_EQ(s->getPixel(0, 0), 0xFF332211u);
    EXPECT_EQ(s->getPixel(1, 0), 0xFF665544u);
    delete s;
}

TEST_F(ImageLoaderTest, PrepareImageReadsThroughTheSourceFormat) {
    // Blue in the low byte and no alpha channel: channels move to the engine's layout.
    SDL_Surface* image = SDL_CreateRGBSurface(SDL_SWSURFACE, 1, 1, 32, 0xFF0000, 0xFF00, 0xFF, 0);
    ((Uint32*)image->pixels)[0] = 0x00112233;
    Surface* s = ImageLoader::prepareImage(image, true, false);
    EXPECT_EQ(s->getPixel(0, 0), 0x00332211u);
    delete s;
}

TEST(ImageLoader, LoadStillDecodesIntoEngineLayout) {
    TempFile file(PNG_3X2, sizeof PNG_3X2);
    Surface* s = ImageLoader::load(file.path.c_str(), false);
    expectPngPixels(s);
    delete s;
}

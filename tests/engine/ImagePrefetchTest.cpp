// Decoding ahead on a thread of its own, and the same images when the system refuses that thread.
// This program stands in for pthread_create, so that a test can have a thread refused.

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include "engine/ImageLoader.h"
#include "engine/Surface.h"

namespace {

bool refuseThreads = false;
int threadsAsked = 0;

} // namespace

// Every thread of this program starts here: refused with EAGAIN, as a process limit does, while a
// test asks for that, otherwise passed on to the C library.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*), void* arg) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static Create real = (Create)dlsym(RTLD_NEXT, "pthread_create");
    ++threadsAsked;
    if (refuseThreads) return EAGAIN;
    return real(thread, attr, start, arg);
}

namespace {

using orvel::ImageLoader;
using orvel::Surface;

// Three 2 x 1 BMP files, each filled with its own colour; removed again at the end.
class ImagePrefetchTest : public ::testing::Test {
protected:
    void SetUp() override {
        threadsAsked = 0;
        for (int i = 0; i < 3; ++i) {
            SDL_Surface* image = SDL_CreateRGBSurface(SDL_SWSURFACE, 2, 1, 32, 0xFF0000, 0xFF00, 0xFF, 0);
            ((Uint32*)image->pixels)[0] = ((Uint32*)image->pixels)[1] = COLOURS[i];
            files[i] = "/tmp/imageprefetch_" + std::to_string(getpid()) + "_" + std::to_string(i) + ".bmp";
            SDL_SaveBMP(image, files[i].c_str());
            SDL_FreeSurface(image);
            paths[i] = files[i].c_str();
        }
    }
    void TearDown() override {
        refuseThreads = false;
        for (const std::string& file : files) unlink(file.c_str());
    }
    // Loads the three files in order after asking for them ahead; each must come out whole.
    void loadAllAfterPrefetch() {
        ImageLoader::prefetch(paths, 3);
        for (int i = 0; i < 3; ++i) {
            Surface* image = ImageLoader::load(paths[i], false);
            ASSERT_NE(image, nullptr) << i;
            EXPECT_EQ(image->width, 2);
            EXPECT_EQ(image->getPixel(0, 0), image->getPixel(1, 0));
            EXPECT_EQ(image->getPixel(0, 0) & 0xFFFFFF, SURFACE_COLOURS[i]) << i;
            delete image;
        }
        ImageLoader::finishPrefetch();
    }

    // Red, green, blue as the files hold them, and as the engine's surfaces keep them.
    static constexpr Uint32 COLOURS[3] = {0xFF0000, 0x00FF00, 0x0000FF};
    static constexpr uint32_t SURFACE_COLOURS[3] = {0x0000FF, 0x00FF00, 0xFF0000};
    std::string files[3];
    const char* paths[3];
};

TEST_F(ImagePrefetchTest, FilesAskedForAheadAreDecodedOnAThreadOfTheirOwn) {
    loadAllAfterPrefetch();
    EXPECT_EQ(threadsAsked, 1);
}

TEST_F(ImagePrefetchTest, WithoutAThreadEveryFileIsDecodedWhenAskedFor) {
    refuseThreads = true;
    loadAllAfterPrefetch();
    EXPECT_EQ(threadsAsked, 1);
}

} // namespace

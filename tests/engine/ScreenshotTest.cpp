#include "engine/Screenshot.h"

#include <string>

#include <SDL/SDL.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/GLFixture.h"

using orvel::Orvel;
using orvel::Screenshot;
using testing_support::GLTest;

namespace {

// Red in the top quarter, blue in the bottom quarter, green in between, and one white pixel
// at the top-left corner, drawn in window pixels with y down.
void drawOrientationPattern(int w, int h) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, w, h, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_TEXTURE_2D);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glBegin(GL_QUADS);
    glColor3ub(255, 0, 0);
    glVertex2i(0, 0), glVertex2i(w, 0), glVertex2i(w, h / 4), glVertex2i(0, h / 4);
    glColor3ub(0, 0, 255);
    glVertex2i(0, 3 * h / 4), glVertex2i(w, 3 * h / 4), glVertex2i(w, h), glVertex2i(0, h);
    glColor3ub(255, 255, 255);
    glVertex2i(0, 0), glVertex2i(1, 0), glVertex2i(1, 1), glVertex2i(0, 1);
    glEnd();
}

Uint32 bmpPixel(SDL_Surface* s, int x, int y) {
    Uint8* p = (Uint8*)s->pixels + y * s->pitch + x * s->format->BytesPerPixel;
    Uint8 r, g, b;
    SDL_GetRGB(p[0] | p[1] << 8 | p[2] << 16, s->format, &r, &g, &b);
    return r << 16 | g << 8 | b;
}

class ScreenshotTest : public GLTest, public ::testing::WithParamInterface<std::pair<int, int>> {};

// What a call wrote on standard error.
template <typename Call> std::string errorsOf(Call call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST_P(ScreenshotTest, SavedAfterSwapMatchesTheFrameRightWayUp) {
    const int w = GetParam().first, h = GetParam().second;
    openWindow(w, h);
    drawOrientationPattern(w, h);
    Orvel::update();
    std::string path = "/tmp/screenshot_test_" + std::to_string(getpid()) + ".bmp";
    Screenshot::saveScreenshot(path.c_str());
    SDL_Surface* bmp = SDL_LoadBMP(path.c_str());
    unlink(path.c_str());
    ASSERT_NE(bmp, nullptr);
    EXPECT_EQ(bmp->w, w);
    EXPECT_EQ(bmp->h, h);
    EXPECT_EQ(bmpPixel(bmp, 0, 0), 0xFFFFFFu);
    EXPECT_EQ(bmpPixel(bmp, 1, 0), 0xFF0000u);
    EXPECT_EQ(bmpPixel(bmp, w - 1, 0), 0xFF0000u);
    EXPECT_EQ(bmpPixel(bmp, w / 2, h / 2), 0x00FF00u);
    EXPECT_EQ(bmpPixel(bmp, 0, h - 1), 0x0000FFu);
    EXPECT_EQ(bmpPixel(bmp, w - 1, h - 1), 0x0000FFu);
    SDL_FreeSurface(bmp);
}

INSTANTIATE_TEST_SUITE_P(ScreenSizes, ScreenshotTest,
                         ::testing::Values(std::make_pair(1280, 720), std::make_pair(640, 480)));

// Tests run on a real GL context.
class ScreenshotWindowTest : public GLTest {};

TEST_F(ScreenshotWindowTest, ToAMissingFolderWritesNothingAndSaysWhy) {
    Orvel::update();
    std::string errors = errorsOf([] { Screenshot::saveScreenshot("/nonexistent/dir/shot.bmp"); });
    EXPECT_EQ(errors, "Could not write /nonexistent/dir/shot.bmp: No such file or directory\n");
    EXPECT_NE(access("/nonexistent/dir/shot.bmp", F_OK), 0);
}

TEST_F(ScreenshotWindowTest, ToAFullDeviceSaysNoSpaceIsLeftAndKeepsTheLink) {
    Orvel::update();
    char dir[] = "/tmp/screenshot_full_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string link = std::string(dir) + "/shot.bmp";
    ASSERT_EQ(symlink("/dev/full", link.c_str()), 0);
    std::string errors = errorsOf([&] { Screenshot::saveScreenshot(link.c_str()); });
    EXPECT_EQ(errors, "Could not write " + link + ": No space left on device\n");
    struct stat st;
    EXPECT_EQ(lstat(link.c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    unlink(link.c_str());
    rmdir(dir);
}

TEST_F(ScreenshotWindowTest, SuccessSaysNothingEvenAfterAnEarlierSdlError) {
    Orvel::update();
    SDL_SetError("an error left over from elsewhere");
    std::string path = "/tmp/screenshot_quiet_" + std::to_string(getpid()) + ".bmp";
    std::string errors = errorsOf([&] { Screenshot::saveScreenshot(path.c_str()); });
    SDL_Surface* bmp = SDL_LoadBMP(path.c_str());
    unlink(path.c_str());
    EXPECT_EQ(errors, "");
    ASSERT_NE(bmp, nullptr);
    EXPECT_EQ(bmp->w, Orvel::getScreenWidth());
    SDL_FreeSurface(bmp);
}

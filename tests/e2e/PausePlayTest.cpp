// Pausing the real program: P shows "Paused" over a still picture and resumes, a second window
// taking the focus pauses, Escape quits from the pause; the CPU a pause uses is measured.

#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "tests/e2e/PlaySession.h"
#include "tests/support/GameProcess.h"
#include "tests/support/Processes.h"
#include "tests/support/XDriver.h"

// After GoogleTest: Xlib's macros (None, Bool, ...) would break its headers.
#include <X11/Xlib.h>

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;

namespace {

const int SCREEN_W = 1280, SCREEN_H = 720;

// The hint line sits 60 pixels below the screen's centre; white glyphs at its scale.
bool isHintInk(unsigned p) {
    return (p >> 16 & 0xff) >= 200 && (p >> 8 & 0xff) >= 200 && (p & 0xff) >= 200;
}

int hintInk(const Image& image) {
    int n = 0;
    for (int y = SCREEN_H / 2 + 45; y < SCREEN_H / 2 + 75; ++y)
        for (int x = SCREEN_W / 2 - 220; x < SCREEN_W / 2 + 220; ++x) n += isHintInk(image.at(x, y));
    return n;
}

// Sum of the three channels over a band across the top of the screen, clear of the HUD boxes.
long long brightness(const Image& image) {
    long long sum = 0;
    for (int y = 100; y < 300; ++y)
        for (int x = 300; x < 980; ++x) {
            const unsigned p = image.at(x, y);
            sum += (p >> 16 & 0xff) + (p >> 8 & 0xff) + (p & 0xff);
        }
    return sum;
}

// Into play with the pointer clear of the centre; the first wave comes five seconds after the
// game starts, so enemies are there after seven.
void startPlaying(GameProcess& game) {
    e2e::enterPlay(game, 900, 200, 7000);
}

} // namespace

TEST(PausePlay, PShowsPausedOverAStillPictureAndPResumes) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(startPlaying(game));
    int number = 0;
    Image playing, first, second, resumed;
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, playing));
    game.holdKey("p");
    e2e::pause(500);
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, first));
    const double before = processes::cpuSeconds(game.processId());
    e2e::pause(2000);
    const double after = processes::cpuSeconds(game.processId());
    ASSERT_GE(before, 0.0);
    ASSERT_GE(after, 0.0);
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, second));
    // Stars, enemies and shots stand still: the two pictures are the same, pixel for pixel.
    EXPECT_TRUE(first.pixels == second.pixels);
    // The hint line is there, and the picture under it is dimmed.
    EXPECT_GT(hintInk(first), 100);
    EXPECT_LT(hintInk(playing), 20);
    EXPECT_LT(brightness(first) * 10, brightness(playing) * 6);
    const double share = (after - before) / 2.0;
    std::cout << "CPU while paused: " << share * 100.0 << " % of one core over 2 s\n";
    RecordProperty("paused_cpu_percent", std::to_string(share * 100.0));

    game.holdKey("p");
    e2e::pause(1000);
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, resumed));
    EXPECT_LT(hintInk(resumed), 20);
    EXPECT_FALSE(resumed.pixels == second.pixels);
    e2e::quitWithEscape(game);
}

TEST(PausePlay, ASecondWindowTakingTheFocusPausesAndEscapeQuitsFromThePause) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(startPlaying(game));
    Display* display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    const Window other = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 200, 100, 0, 0, 0);
    XMapRaised(display, other);
    XSync(display, False);
    e2e::pause(300);
    // No window manager runs: the game's window has the focus only once it is given to it.
    const unsigned long gameWindow = game.window();
    ASSERT_NE(gameWindow, 0ul);
    ASSERT_TRUE(xdriver::xdotool("windowfocus " + std::to_string(gameWindow)));
    e2e::pause(300);
    ASSERT_TRUE(xdriver::xdotool("windowfocus " + std::to_string(other)));
    e2e::pause(1000);
    // Focus back to the game, for the keys: it stays paused.
    ASSERT_TRUE(xdriver::xdotool("windowfocus " + std::to_string(gameWindow)));
    e2e::pause(500);
    int number = 0;
    Image paused;
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, paused));
    EXPECT_GT(hintInk(paused), 100);
    XDestroyWindow(display, other);
    XCloseDisplay(display);
    // Escape leaves from the pause.
    e2e::quitWithEscape(game);
}

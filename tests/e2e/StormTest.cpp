// The real program under a long storm of random input from a fixed seed: steering keys, pointer
// moves, all three mouse buttons, Return now and then and a screenshot every 10 to 20 seconds.
// It must stay up throughout, write every screenshot whole, and still quit cleanly on Escape.
// NIGHTVECTOR_STORM_SECONDS sets the storm's length (default 120); the soak run reuses it.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/GameProcess.h"

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;

namespace {

const int SCREEN_W = 1280, SCREEN_H = 720;
const int DEFAULT_STORM_SECONDS = 120;
const std::uint32_t STORM_SEED = 0x4e564d31u;

const char* const STEERING_KEYS[] = {"w", "a", "s", "d"};
const int BUTTONS[] = {1, 2, 3};

int stormSeconds() { return e2e::positiveSetting("NIGHTVECTOR_STORM_SECONDS", DEFAULT_STORM_SECONDS); }

std::string screenshotName(int number) { return "screenshot_" + std::to_string(number) + ".bmp"; }

// The random player: which keys and buttons it holds, and when the next screenshot and Return are due.
class Storm {
public:
    Storm(GameProcess& game, const Surroundings& dir) : game(game), dir(dir), rng(STORM_SEED) {}

    // One random action followed by a random pause of 20 to 119 ms. Returns false when a
    // screenshot the game was asked for did not appear.
    bool step(double elapsedSeconds) {
        if (elapsedSeconds >= nextScreenshot) {
            nextScreenshot = elapsedSeconds + 10 + rng() % 11;
            if (!takeScreenshot()) return false;
        } else if (elapsedSeconds >= nextReturn) {
            nextReturn = elapsedSeconds + 15 + rng() % 16;
            game.holdKey("Return");
        } else {
            switch (rng() % 8) {
            case 0: case 1: case 2: toggleKey(rng() % 4); break;
            case 3: case 4: case 5: game.moveMouse(rng() % SCREEN_W, rng() % SCREEN_H); break;
            default: toggleButton(rng() % 3); break;
            }
        }
        e2e::pause(20 + rng() % 100);
        return true;
    }

    // Lets go of every key and button still held.
    void releaseAll() {
        for (int i = 0; i < 4; ++i)
            if (keyDown[i]) toggleKey(i);
        for (int i = 0; i < 3; ++i)
            if (buttonDown[i]) toggleButton(i);
    }

    // Screenshots written so far, numbered from 1 without gaps.
    int screenshots() const { return number; }
    int screenshotRequests() const { return requests; }

private:
    GameProcess& game;
    const Surroundings& dir;
    std::mt19937 rng;
    bool keyDown[4] = {};
    bool buttonDown[3] = {};
    double nextScreenshot = 10, nextReturn = 15;
    int number = 0, requests = 0;

    void toggleKey(int i) {
        if (keyDown[i])
            game.releaseKey(STEERING_KEYS[i]);
        else
            game.pressKey(STEERING_KEYS[i]);
        keyDown[i] = !keyDown[i];
    }

    void toggleButton(int i) {
        if (buttonDown[i])
            game.releaseButton(BUTTONS[i]);
        else
            game.pressButton(BUTTONS[i]);
        buttonDown[i] = !buttonDown[i];
    }

    // F1, then waits for the next numbered file to appear. A press the game missed is repeated;
    // files from earlier presses that were only slow are counted too.
    bool takeScreenshot() {
        ++requests;
        for (int press = 0; press < 3; ++press) {
            game.holdKey("F1");
            for (int waited = 0; waited < 10000; waited += 50) {
                if (!game.isRunning()) return false;
                if (dir.exists(screenshotName(number + 1))) {
                    while (dir.exists(screenshotName(number + 1))) ++number;
                    return true;
                }
                e2e::pause(50);
            }
        }
        return false;
    }
};

} // namespace

TEST(Storm, RandomInputKeepsTheGameRunningWritesEveryScreenshotAndEscapeEndsWithStatusZero) {
    Surroundings dir;
    dir.linkFolder("gfx");
    dir.linkFolder("sfx");
    dir.linkFolder("shaders");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
    e2e::pause(300);
    game.holdKey("Return");
    e2e::pause(2000);
    ASSERT_TRUE(game.isRunning()) << game.errors();

    const int seconds = stormSeconds();
    Storm storm(game, dir);
    auto start = std::chrono::steady_clock::now();
    for (;;) {
        double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (elapsed >= seconds) break;
        ASSERT_TRUE(game.isRunning()) << "ended after " << elapsed << " s\n" << game.errors();
        ASSERT_TRUE(storm.step(elapsed)) << "no screenshot at " << elapsed << " s\n" << game.errors();
    }
    ASSERT_TRUE(game.isRunning()) << game.errors();
    storm.releaseAll();

    // Escape is ignored while a fade runs; a Return just before may have started one.
    e2e::pause(1500);
    game.holdKey("Escape");
    EXPECT_EQ(game.waitForExit(), 0) << game.errors();

    // A screenshot every 10 to 20 s; every file from 1 up is whole and screen-sized, and none follows.
    ASSERT_GT(storm.screenshotRequests(), 0);
    EXPECT_GE(storm.screenshots(), storm.screenshotRequests());
    for (int n = 1; n <= storm.screenshots(); ++n) {
        SCOPED_TRACE(screenshotName(n));
        Image shot;
        ASSERT_TRUE(e2e::loadBmp(dir.path() + "/" + screenshotName(n), shot));
        EXPECT_EQ(shot.width, SCREEN_W);
        EXPECT_EQ(shot.height, SCREEN_H);
    }
    EXPECT_FALSE(dir.exists(screenshotName(storm.screenshots() + 1)));
}

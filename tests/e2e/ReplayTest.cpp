// Every game is kept as a replay: the real program, played and left with Escape or by closing
// its window, leaves last.nvr in its data home, a whole file that reads back.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "game/replay/ReplayFormat.h"
#include "tests/e2e/PlaySession.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameProcess.h"
#include "tests/support/XDriver.h"

using e2e::GameProcess;
using e2e::Surroundings;

namespace {

// Plays three seconds: steering right with the plasma gun held, then left with both guns.
void playAWhile(GameProcess& game) {
    ASSERT_NO_FATAL_FAILURE(e2e::enterPlay(game, 900, 300, 2000));
    game.pressKey("d");
    game.pressButton(1);
    e2e::pause(1500);
    game.releaseKey("d");
    game.pressKey("a");
    game.pressButton(3);
    e2e::pause(1500);
    game.releaseButton(3);
    game.releaseButton(1);
    game.releaseKey("a");
}

// The replay the run in `dir` kept; fails the test when it does not read.
replay::Replay keptReplay(const Surroundings& dir) {
    const std::string bytes = testing_support::fileContents(dir.path() + "/home/data/nightvector/replays/last.nvr");
    replay::Replay r;
    std::string error;
    EXPECT_TRUE(replay::read((const uint8_t*)bytes.data(), bytes.size(), r, error)) << error;
    return r;
}

void expectAGameOfAFewSeconds(const replay::Replay& r) {
    EXPECT_EQ(r.header.screenWidth, 1280);
    EXPECT_EQ(r.header.screenHeight, 720);
    EXPECT_EQ(r.header.gameVersion, NIGHTVECTOR_VERSION);
    // At least a frame every 50 ms of the three seconds played; the frames' times add up.
    ASSERT_GT(r.frames.size(), 60u);
    EXPECT_GE(r.frames.back().time - r.frames.front().time, 3000u);
    bool steeredRight = false, firedBoth = false;
    for (const replay::Frame& f : r.frames) {
        steeredRight = steeredRight || f.keys == replay::KEY_D;
        firedBoth = firedBoth || f.buttons == (1u << 1 | 1u << 3);
    }
    EXPECT_TRUE(steeredRight);
    EXPECT_TRUE(firedBoth);
    EXPECT_EQ(r.result.lives, 3);
}

} // namespace

TEST(Replay, AGameLeftWithEscapeIsKeptAsTheLastReplay) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(playAWhile(game));
    e2e::quitWithEscape(game);
    EXPECT_EQ(game.errors(), "");
    expectAGameOfAFewSeconds(keptReplay(dir));
}

TEST(Replay, AGameWhoseWindowIsClosedIsKeptAsTheLastReplay) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(playAWhile(game));
    const unsigned long window = game.window();
    ASSERT_NE(window, 0ul);
    xdriver::requestClose(window);
    EXPECT_EQ(game.waitForExit(), 0);
    expectAGameOfAFewSeconds(keptReplay(dir));
}

TEST(Replay, NoGameLeavesNoReplay) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::quitWithEscape(game);
    EXPECT_FALSE(dir.exists("home/data/nightvector/replays/last.nvr"));
}

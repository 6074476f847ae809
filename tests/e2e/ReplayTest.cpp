// Every game is kept as a replay: the real program, played and left with Escape, by closing its
// window or by the terminate signal, leaves last.nvr in its data home, a whole file that reads
// back.

#include <cmath>
#include <csignal>
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

// A desktop that logs out sends the terminate signal, which SDL turns into the window's close.
TEST(Replay, AGameEndedByTheTerminateSignalIsKeptAsTheLastReplay) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(playAWhile(game));
    ASSERT_EQ(kill(game.processId(), SIGTERM), 0);
    EXPECT_EQ(game.waitForExit(), 0);
    EXPECT_EQ(game.signal(), 0);
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

namespace {

// The replay a played game left, for the runs that play it.
std::string recordAGame(Surroundings& dir) {
    GameProcess game(dir.path());
    playAWhile(game);
    e2e::quitWithEscape(game);
    return dir.path() + "/home/data/nightvector/replays/last.nvr";
}

} // namespace

TEST(Replay, TheLastReplayPlaysToItsEndAndExitsWithStatusZero) {
    Surroundings dir;
    dir.linkData();
    const std::string file = recordAGame(dir);
    ASSERT_FALSE(testing_support::fileContents(file).empty());
    GameProcess viewer(dir.path(), {}, {"--replay", file});
    ASSERT_TRUE(viewer.waitForOutput("megabytes\n")) << viewer.errors();
    // The game played for about seven seconds; the replay takes as long.
    EXPECT_EQ(viewer.waitForExit(60000), 0);
    EXPECT_EQ(viewer.errors(), "");
}

TEST(Replay, EscapeLeavesAReplayWithStatusZero) {
    Surroundings dir;
    dir.linkData();
    const std::string file = recordAGame(dir);
    GameProcess viewer(dir.path(), {}, {"--replay", file});
    ASSERT_TRUE(viewer.waitForOutput("megabytes\n")) << viewer.errors();
    e2e::pause(1000);
    e2e::quitWithEscape(viewer);
}

TEST(Replay, AFileThatCannotBePlayedExitsWithStatusTwoAndStartsNothing) {
    Surroundings dir;
    dir.linkData();
    const std::string whole = testing_support::fileContents(recordAGame(dir));
    ASSERT_GT(whole.size(), 40u);
    dir.writeFile("cut.nvr", whole.substr(0, whole.size() - 9));
    dir.writeFile("text.nvr", "nightvector settings 1\n");
    std::string newer = whole;
    newer[6] = 2; // the header's format, after "NVRP", the tag and the length
    dir.writeFile("newer.nvr", newer);
    const struct {
        const char* file;
        const char* why;
    } cases[] = {
        {"cut.nvr", "cut short"},
        {"text.nvr", "not a Nightvector replay"},
        {"newer.nvr", "made in replay format 2, and this game reads format 1"},
        {"missing.nvr", "No such file or directory"},
    };
    for (const auto& c : cases) {
        const std::string path = dir.path() + "/" + c.file;
        GameProcess viewer(dir.path(), {}, {"--replay", path});
        EXPECT_EQ(viewer.waitForExit(), 2) << c.file;
        EXPECT_EQ(viewer.errors(), "nightvector: cannot play " + path + ": " + c.why + "\n");
        // Nothing was loaded and no window opened.
        EXPECT_EQ(viewer.output(), "") << c.file;
    }
}

TEST(Replay, AReplayThatRunsOtherwiseSaysWhereAndLeaves) {
    Surroundings dir;
    dir.linkData();
    const std::string bytes = testing_support::fileContents(recordAGame(dir));
    replay::Replay r;
    std::string error;
    ASSERT_TRUE(replay::read((const uint8_t*)bytes.data(), bytes.size(), r, error)) << error;
    // The second recorded hash made wrong, in a file that is otherwise whole.
    size_t hashed = 0, changed = 0;
    for (size_t i = 0; i < r.frames.size(); ++i)
        if (r.frames[i].hasHash && ++hashed == 2) {
            r.frames[i].hash ^= 1;
            changed = i;
        }
    ASSERT_EQ(hashed >= 2, true) << hashed;
    const std::vector<uint8_t> wrong = replay::write(r);
    dir.writeFile("wrong.nvr", std::string(wrong.begin(), wrong.end()));
    GameProcess viewer(dir.path(), {}, {"--replay", dir.path() + "/wrong.nvr"});
    EXPECT_EQ(viewer.waitForExit(60000), 0);
    EXPECT_EQ(viewer.errors(), "Replay diverged at frame " + std::to_string(changed) + "\n");
}

namespace {

// The frames at which both runs below take a screenshot: every two seconds at 60 frames a second.
const char* const SHOT_FRAMES = "NIGHTVECTOR_SHOT_AT_FRAMES=240,480,720,960,1200,1440,1680,1920";
// The replay's label in the top right corner: the one place where the pictures may differ.
const int LABEL_LEFT = 1000, LABEL_BOTTOM = 50;

std::string shotPath(const Surroundings& dir, int number) {
    return dir.path() + "/screenshot_" + std::to_string(number) + ".bmp";
}

int shotsIn(const Surroundings& dir) {
    int n = 0;
    while (dir.exists("screenshot_" + std::to_string(n + 1) + ".bmp")) ++n;
    return n;
}

// Pixels of `a` and `b` that differ, the replay's label left out.
long differingPixels(const e2e::Image& a, const e2e::Image& b) {
    if (a.width != b.width || a.height != b.height) return -1;
    long differ = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            if (!(x >= LABEL_LEFT && y < LABEL_BOTTOM) && a.at(x, y) != b.at(x, y)) ++differ;
    return differ;
}

} // namespace

TEST(Replay, TheReplayShowsTheGamesPicturesAtTheSameFramesAndEndsWithItsScore) {
    Surroundings dir;
    dir.linkData();
    {
        // Thirty seconds: steering, both guns, the pointer circling, and one pause.
        GameProcess game(dir.path(), {SHOT_FRAMES});
        ASSERT_NO_FATAL_FAILURE(e2e::enterPlay(game, 900, 300, 1000));
        game.pressButton(1);
        game.pressButton(3);
        const char* const keys[] = {"d", "w", "a", "s"};
        for (int step = 0; step < 280; ++step) {
            if (step % 70 == 0) game.pressKey(keys[step / 70]);
            if (step % 70 == 35) game.releaseKey(keys[step / 70]);
            if (step == 140) {
                game.holdKey("p");
                e2e::pause(1500);
                game.holdKey("p");
            }
            const double angle = step * 0.1;
            game.moveMouse(640 + (int)(250 * std::cos(angle)), 360 + (int)(250 * std::sin(angle)));
            e2e::pause(100);
        }
        game.releaseButton(3);
        game.releaseButton(1);
        e2e::quitWithEscape(game);
        EXPECT_EQ(game.errors(), "");
    }
    const int live = shotsIn(dir);
    const replay::Replay kept = keptReplay(dir);
    // How many of the frames asked for the game reached, at its pace.
    int reached = 0;
    for (size_t frame = 240; frame <= 1920 && frame <= kept.frames.size(); frame += 240) ++reached;
    ASSERT_GE(reached, 3) << kept.frames.size() << " frames";
    // A frame that began paused takes none; the pause lasted many frames, but took a frame of its
    // own at most.
    EXPECT_GE(live, reached - 1);
    EXPECT_LE(live, reached);

    GameProcess viewer(dir.path(), {SHOT_FRAMES}, {"--replay", dir.path() + "/home/data/nightvector/replays/last.nvr"});
    EXPECT_EQ(viewer.waitForExit(120000), 0);
    EXPECT_EQ(viewer.errors(), "");
    // The replay ends with the score and wave the game was left with.
    EXPECT_NE(viewer.output().find("Replay ended: score " + std::to_string(kept.result.score) + ", wave " +
                                   std::to_string(kept.result.wave) + "\n"),
              std::string::npos)
        << viewer.output();
    ASSERT_EQ(shotsIn(dir), live + reached);

    // The game's pictures, each against the replay's at the same frame.
    for (int played = 1, replayed = 1; played <= live; ++played, ++replayed) {
        e2e::Image a, b;
        ASSERT_TRUE(e2e::loadBmp(shotPath(dir, played), a));
        ASSERT_TRUE(e2e::loadBmp(shotPath(dir, live + replayed), b));
        long differ = differingPixels(a, b);
        // The frame the game missed in its pause, if it missed one: its next picture is the
        // replay's next one.
        if (differ != 0 && live < reached && replayed == played) {
            ASSERT_TRUE(e2e::loadBmp(shotPath(dir, live + ++replayed), b));
            differ = differingPixels(a, b);
        }
        EXPECT_EQ(differ, 0) << "game picture " << played << " against replay picture " << replayed;
    }
}

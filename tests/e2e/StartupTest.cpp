// The real program from the outside: what it prints at start-up, what its intro screen shows,
// and how it ends, a fatal signal included.

#include <csignal>
#include <cstdio>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/e2e/PlaySession.h"
#include "tests/support/ResourceFiles.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameProcess.h"
#include "tests/support/StartupReport.h"
#include "tests/support/XDriver.h"

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;
using testing_support::FONT_FILES;
using testing_support::TEXTURE_FILES;
using e2e::memoryLine;
using testing_support::loadingLines;

namespace {

// The score box's corner, where the intro shows nothing and the game its HUD frame.
const int SCORE_BOX_RIGHT = 200, SCORE_BOX_BOTTOM = 60;
// Screenshots taken while waiting for play before giving up; each takes half a second or more.
const int PLAY_WAIT_SHOTS = 40;

// Takes screenshots until one shows the game's HUD; false when none did or the game is gone.
// Waits for what the player would see, not for a span of time, so a busy machine only makes it
// take more screenshots.
bool waitForPlay(GameProcess& game, const Surroundings& dir, int& number) {
    Image shot;
    for (int i = 0; i < PLAY_WAIT_SHOTS && game.isRunning(); ++i)
        if (e2e::nextScreenshot(game, dir, number, shot) && shot.hasInk(0, 0, SCORE_BOX_RIGHT, SCORE_BOX_BOTTOM))
            return true;
    return false;
}

} // namespace

TEST(Startup, PrintsLoadingLinesThenTextureMemoryAndQuitsOnEscape) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
    EXPECT_EQ(game.output(), loadingLines() + memoryLine());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Startup, ClosingTheWindowEndsWithStatusZero) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    unsigned long window = game.window();
    ASSERT_NE(window, 0ul);
    xdriver::requestClose(window);
    EXPECT_EQ(game.waitForExit(), 0);
}

TEST(Startup, WithoutDisplayReportsSdlErrorAndExitsWithStatusOne) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"DISPLAY="});
    EXPECT_EQ(game.waitForExit(), 1);
    EXPECT_EQ(game.errors().rfind("Error initializing SDL: ", 0), 0u) << game.errors();
    EXPECT_EQ(game.output(), "");
}

TEST(Startup, AFatalSignalLeavesItsReportAndStackOnStandardErrorAndStillEndsTheGame) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    game.expectDeathBy(SIGSEGV);
    kill(game.processId(), SIGSEGV);
    EXPECT_EQ(game.waitForExit(), -1);
    EXPECT_EQ(game.signal(), SIGSEGV);
    // Sent, not met at an address; whichever thread took it names itself and its stack.
    const std::regex report(
        "nightvector: fatal signal 11 \\(SIGSEGV\\) in thread [0-9]+ \"[^\"]*\" after [0-9]+\\.[0-9]{3} s; "
        "its stack:\n"
        "(.*\\[0x[0-9a-f]+\\]\n){3,}");
    EXPECT_TRUE(std::regex_search(game.errors(), report)) << game.errors();
}

TEST(Intro, ScreenshotShowsCentredLinesAndCreditFromTheCentre) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(500);
    Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    EXPECT_EQ(shot.width, 1280);
    EXPECT_EQ(shot.height, 720);

    // The title's band starts at y = 25; its ink is centred on x = 640.
    std::pair<int, int> title = shot.inkColumns(25, 40);
    ASSERT_GE(title.first, 0);
    EXPECT_NEAR((title.first + title.second) / 2.0, 640, 12);
    EXPECT_EQ(shot.inkColumns(0, 24).first, -1);

    ASSERT_TRUE(game.screenshot("screenshot_2.bmp"));
    EXPECT_TRUE(dir.exists("screenshot_2.bmp"));
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Intro, CreditLineStartsAtTheCentreWhileTheOthersAreCentred) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(500);
    Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    // Line 11 ("-- Pale Orbit --") has its top at y = 530, line 12 at 606; cells are 32 px high.
    std::pair<int, int> credit = shot.inkColumns(530, 562);
    ASSERT_GE(credit.first, 0);
    EXPECT_GE(credit.first, 640);
    EXPECT_LT(credit.first, 640 + 16);
    std::pair<int, int> line12 = shot.inkColumns(606, 638);
    EXPECT_NEAR((line12.first + line12.second) / 2.0, 640, 12);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Intro, ReturnFadesTheIntroAwayIntoTheGameAndEscapeThenQuits) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(300);
    Image intro;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", intro));
    EXPECT_FALSE(intro.hasInk(0, 0, SCORE_BOX_RIGHT, SCORE_BOX_BOTTOM));
    // Held until play shows: the fade to black takes a second, the fade into the game half a
    // second more, and a key held in play does nothing.
    game.pressKey("Return");
    int number = 1;
    EXPECT_TRUE(waitForPlay(game, dir, number));
    game.releaseKey("Return");
    EXPECT_TRUE(game.isRunning());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Intro, EscapeDuringTheFadeToBlackIsIgnored) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(300);
    // Both go down at once and stay down: Escape is first seen in the frame that starts the fade
    // to black or in a later one, always while the fade runs. Had it counted, the game would fade
    // out and end instead of showing play.
    xdriver::xdotool("keydown Return keydown Escape");
    int number = 0;
    EXPECT_TRUE(waitForPlay(game, dir, number));
    xdriver::xdotool("keyup Return keyup Escape");
    EXPECT_TRUE(game.isRunning());
    // Up for some frames before it goes down again: a frame that spans both would see Escape held
    // all along, and no new press.
    e2e::pause(300);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Intro, HeldMouseButtonStartsTheGame) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(300);
    // Held until play shows, however long the frames take.
    game.pressButton(1);
    int number = 0;
    EXPECT_TRUE(waitForPlay(game, dir, number));
    game.releaseButton(1);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(BadSurroundings, MissingImageEndsItsLineInErrorAndTheIntroStillShows) {
    Surroundings dir;
    dir.linkFolderExcept("gfx", "star.png");
    dir.linkFolder("sfx");
    dir.linkFolder("shaders");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    EXPECT_EQ(game.output().rfind(loadingLines({"gfx/star.png"}), 0), 0u) << game.output();
    e2e::pause(300);
    Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    EXPECT_GE(shot.inkColumns(25, 57).first, 0);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(BadSurroundings, CorruptPngEndsItsLineInErrorAndTheIntroStillShows) {
    Surroundings dir;
    dir.linkFolderExcept("gfx", "reticle.png");
    std::ifstream real(std::string(REPOSITORY_ROOT) + "/gfx/reticle.png", std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(real)), std::istreambuf_iterator<char>());
    dir.writeFile("gfx/reticle.png", bytes.substr(0, bytes.size() / 2));
    dir.linkFolder("sfx");
    dir.linkFolder("shaders");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    EXPECT_EQ(game.output().rfind(loadingLines({"gfx/reticle.png"}), 0), 0u) << game.output();
    e2e::pause(300);
    Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    EXPECT_GE(shot.inkColumns(25, 57).first, 0);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(BadSurroundings, WithoutShadersTheGameStillRunsAndQuitsCleanly) {
    Surroundings dir;
    dir.linkFolder("gfx");
    dir.linkFolder("sfx");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(500);
    EXPECT_TRUE(game.isRunning());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(BadSurroundings, WithoutMusicTheGameRunsSilently) {
    Surroundings dir;
    dir.linkFolder("gfx");
    dir.linkFolder("shaders");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(300);
    game.tapKey("Return");
    e2e::pause(2000);
    EXPECT_TRUE(game.isRunning());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(BadSurroundings, WithoutAnAudioDeviceTheGameRunsSilently) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"SDL_AUDIODRIVER=nosuchdevice"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    e2e::pause(300);
    game.tapKey("Return");
    e2e::pause(2000);
    EXPECT_TRUE(game.isRunning());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Screenshots, ASecondRunInTheSameDirectoryKeepsTheFirstRunsFilesAndTakesTheNextNumbers) {
    Surroundings dir;
    dir.linkData();
    std::string firstRun[2];
    {
        GameProcess game(dir.path());
        ASSERT_TRUE(game.waitForOutput("megabytes\n"));
        e2e::pause(300);
        ASSERT_TRUE(game.screenshot("screenshot_1.bmp"));
        ASSERT_TRUE(game.screenshot("screenshot_2.bmp"));
        EXPECT_EQ(game.escapeAndWaitForExit(), 0);
        for (int i = 0; i < 2; ++i)
            firstRun[i] = testing_support::fileContents(dir.path() + "/screenshot_" + std::to_string(i + 1) + ".bmp");
    }
    GameProcess again(dir.path());
    ASSERT_TRUE(again.waitForOutput("megabytes\n"));
    e2e::pause(300);
    Image third;
    ASSERT_TRUE(again.screenshot("screenshot_3.bmp", third));
    EXPECT_EQ(third.width, 1280);
    EXPECT_EQ(again.escapeAndWaitForExit(), 0);
    for (int i = 0; i < 2; ++i) {
        const std::string now = testing_support::fileContents(dir.path() + "/screenshot_" + std::to_string(i + 1) + ".bmp");
        EXPECT_EQ(now.size(), (size_t)(54 + 1280 * 720 * 3));
        EXPECT_TRUE(now == firstRun[i]) << "screenshot_" << i + 1 << ".bmp changed";
    }
    EXPECT_FALSE(dir.exists("screenshot_4.bmp"));
}

// The real program's command line: --help and --version answer and exit, a mistake exits 2 with
// the usage on standard error and starts nothing, --window plays in a window on a larger screen.
// Its settings: the file's display choice, Alt+Return kept in the file, a damaged file, full
// screen on a screen too small for it, a 30-bit screen, and a display without OpenGL.

#include <csignal>
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/DamageCounter.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameProcess.h"
#include "tests/support/XDriver.h"

using e2e::GameProcess;
using e2e::Surroundings;

namespace {

const char* const USAGE_START = "Usage: nightvector [OPTION]...\n";

std::string runOn(const std::string& display, const std::string& command);

// An X server of its own with a screen of `width` x `height` at `depth` bits a pixel, with or
// without OpenGL (GLX), for as long as the object lives.
class OwnScreen {
public:
    OwnScreen(int width, int height, bool withGl = true, int depth = 24) {
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        const std::string geometry = std::to_string(width) + " " + std::to_string(height) + "\n";
        int fds[2];
        if (pipe(fds) != 0) return;
        pid = fork();
        if (pid == 0) {
            close(fds[0]);
            const int quiet = open("/dev/null", O_WRONLY);
            dup2(quiet, 2);
            const std::string fd = std::to_string(fds[1]);
            // -noreset: without it the server starts over whenever its last client leaves, and a
            // client that comes meanwhile is turned away.
            const std::string screen = size + "x" + std::to_string(depth);
            const char* glSwitch = withGl ? "+extension" : "-extension";
            execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(), "-nolisten", "tcp",
                   "-noreset", glSwitch, "GLX", (char*)nullptr);
            _exit(127);
        }
        close(fds[1]);
        // Xvfb writes its display number once it takes connections.
        char number[16] = {};
        FILE* in = fdopen(fds[0], "r");
        if (in && fgets(number, sizeof number, in)) display = ":" + std::string(number, strcspn(number, "\n"));
        if (in) fclose(in);
        // Taken as ready once a client sees its screen.
        for (int tries = 0; !display.empty() && tries < 50; ++tries) {
            if (runOn(display, "xdotool getdisplaygeometry 2>/dev/null") == geometry) return;
            e2e::pause(100);
        }
        display.clear();
    }
    ~OwnScreen() {
        if (pid > 0) {
            kill(pid, SIGTERM);
            waitpid(pid, nullptr, 0);
        }
    }
    // ":N", or "" when the server did not start.
    std::string display;

private:
    pid_t pid = -1;
};

// What `command` prints, run with DISPLAY set to `display` for each of its commands.
std::string runOn(const std::string& display, const std::string& command) {
    return e2e::commandOutput(xdriver::commandOn(display, command));
}

// The size of the game's window on `display` as xdotool reports it ("1280x720"), "" if none.
std::string windowSize(const std::string& display) {
    std::string size = runOn(display, "xdotool search --name '^Nightvector' getwindowgeometry 2>/dev/null"
                                      " | sed -n 's/^ *Geometry: //p' | head -n 1");
    if (!size.empty() && size.back() == '\n') size.pop_back();
    return size;
}

} // namespace

TEST(CommandLine, HelpPrintsTheUsageAndExitsWithoutStarting) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {}, {"--help"});
    EXPECT_EQ(game.waitForExit(), 0);
    EXPECT_EQ(game.output().rfind(USAGE_START, 0), 0u) << game.output();
    EXPECT_NE(game.output().find("  --window "), std::string::npos);
    EXPECT_EQ(game.errors(), "");
}

TEST(CommandLine, VersionPrintsTheVersionAndExits) {
    Surroundings dir;
    GameProcess game(dir.path(), {}, {"--version"});
    EXPECT_EQ(game.waitForExit(), 0);
    EXPECT_EQ(game.output(), std::string("nightvector ") + NIGHTVECTOR_VERSION + "\n");
    EXPECT_EQ(game.errors(), "");
}

TEST(CommandLine, AnUnknownOptionExitsWithStatusTwoAndTheUsageOnStandardError) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {}, {"--fly"});
    EXPECT_EQ(game.waitForExit(), 2);
    EXPECT_EQ(game.errors().rfind(std::string("nightvector: invalid option '--fly'\n") + USAGE_START, 0), 0u)
        << game.errors();
    // Nothing was loaded.
    EXPECT_EQ(game.output(), "");
}

TEST(CommandLine, AStrayArgumentExitsWithStatusTwo) {
    Surroundings dir;
    GameProcess game(dir.path(), {}, {"--window", "extra"});
    EXPECT_EQ(game.waitForExit(), 2);
    EXPECT_EQ(game.errors().rfind("nightvector: unexpected argument 'extra'\n", 0), 0u) << game.errors();
}

TEST(CommandLine, WindowPlaysIn1280By720OnALargerScreenAndFullScreenCoversTheScreen) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    for (const char* option : {"--window", "--fullscreen"}) {
        Surroundings dir;
        dir.linkData();
        GameProcess game(dir.path(), {"DISPLAY=" + screen.display}, {option});
        ASSERT_TRUE(game.waitForOutput("megabytes\n")) << option << game.errors();
        const bool window = option == std::string("--window");
        // The game's window is 1280 x 720 either way; full screen puts a window over the whole
        // screen around it, where the picture sits centred in black.
        EXPECT_EQ(windowSize(screen.display), "1280x720") << option;
        const std::string covering = runOn(screen.display, "xwininfo -root -children | grep -c ' 1920x1080+0+0 '");
        EXPECT_EQ(covering, window ? "0\n" : "1\n") << option;
        EXPECT_EQ(game.escapeAndWaitForExit(), 0) << option;
    }
}

TEST(Settings, FullScreenOnAScreenSmallerThanThePicturePlaysInAWindowAndKeepsTheChoice) {
    OwnScreen screen(1024, 768);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    // No settings file: full screen, as a new player starts.
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_NE(game.errors().find("Could not start in full screen: the display refused (No video mode large enough "
                                 "for 1280x720); playing in a window\n"),
              std::string::npos)
        << game.errors();
    EXPECT_EQ(windowSize(screen.display), "1280x720");
    EXPECT_EQ(runOn(screen.display, "xwininfo -root -children | grep -c ' 1024x768+0+0 '"), "0\n");
    // The intro is drawn in the window.
    e2e::Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    ASSERT_EQ(shot.width, 1280);
    ASSERT_EQ(shot.height, 720);
    EXPECT_TRUE(shot.hasInk(0, 0, 1280, 720));
    EXPECT_EQ(game.escapeAndWaitForExit(), 0) << game.errors();
    // The choice stays full screen for a display that can give it.
    EXPECT_FALSE(dir.exists("home/config/nightvector/settings"));
}

TEST(Settings, ADisplayWithoutOpenGLSaysSoAndExitsWithStatusOne) {
    OwnScreen screen(1280, 720, false);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display});
    EXPECT_EQ(game.waitForExit(), 1);
    EXPECT_EQ(game.errors(), "Could not start in full screen: the display refused (Couldn't find matching GLX visual); "
                             "playing in a window\n"
                             "nightvector: cannot open a 1280 x 720 OpenGL window: Couldn't find matching GLX visual\n");
    EXPECT_EQ(game.output(), "");
}

// A deep-colour desktop: 10 bits a channel. Its 30-bit visuals keep no 8-bit alpha, so the game's
// window takes the 32-bit one; on a 30-bit DirectColor visual it would die in SDL's gamma set-up.
TEST(Settings, AThirtyBitScreenShowsTheIntroAndEscapeLeavesCleanly) {
    OwnScreen screen(1280, 720, true, 30);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    e2e::Image shot;
    ASSERT_TRUE(game.screenshot("screenshot_1.bmp", shot));
    ASSERT_EQ(shot.width, 1280);
    ASSERT_EQ(shot.height, 720);
    // The title's row of the intro holds its ink.
    EXPECT_GE(shot.inkColumns(25, 57).first, 0);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0) << game.errors();
    EXPECT_EQ(game.errors(), "");
}

namespace {

// Whether a window covers the whole 1920 x 1080 screen: full screen, which surrounds the game's
// 1280 x 720 window with black.
bool screenCovered(const std::string& display) {
    return runOn(display, "xwininfo -root -children | grep -c ' 1920x1080+0+0 '") == "1\n";
}

// Writes `text` as the settings file of the run in `dir`.
void putSettings(Surroundings& dir, const std::string& text) {
    for (const char* folder : {"home", "home/config", "home/config/nightvector"})
        mkdir((dir.path() + "/" + folder).c_str(), 0700);
    dir.writeFile("home/config/nightvector/settings", text);
}

const char* const WINDOWED = "nightvector settings 1\ndisplay = window\n";

// Holds Alt+Return, the display switch, for half a second.
void holdAltReturn(GameProcess& game) {
    game.pressKey("alt");
    game.holdKey("Return");
    game.releaseKey("alt");
}

} // namespace

TEST(Settings, TheFilesWindowIsUsedAndAltReturnSwitchesToFullScreenAndKeepsIt) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    putSettings(dir, WINDOWED);
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_FALSE(screenCovered(screen.display));
    holdAltReturn(game);
    bool covered = false;
    for (int waited = 0; waited < 5000 && !covered; waited += 100) {
        covered = screenCovered(screen.display);
        if (!covered) e2e::pause(100);
    }
    EXPECT_TRUE(covered);
    // Still on the intro: Alt+Return started nothing.
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    EXPECT_EQ(testing_support::fileContents(dir.path() + "/home/config/nightvector/settings"),
              "nightvector settings 1\n"
              "music-volume = 10\n"
              "effects-volume = 10\n"
              "display = fullscreen\n"
              "screen-shake = on\n"
              "flashes = full\n"
              "frame-cap = display\n");
    EXPECT_EQ(game.errors(), "");
}

TEST(Settings, TheCommandLineOverridesTheFileForThisRunOnly) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    putSettings(dir, WINDOWED);
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display}, {"--fullscreen"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_TRUE(screenCovered(screen.display));
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    EXPECT_EQ(testing_support::fileContents(dir.path() + "/home/config/nightvector/settings"), WINDOWED);
}

TEST(Settings, AChangeSavedDuringARunDoesNotKeepTheCommandLinesChoices) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    putSettings(dir, "nightvector settings 1\nmusic-volume = 4\n");
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display}, {"--window", "--frame-cap", "30"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_FALSE(screenCovered(screen.display));
    // The player's own choice is saved, with the rest as the file had it.
    holdAltReturn(game);
    const std::string file = dir.path() + "/home/config/nightvector/settings";
    std::string saved;
    for (int waited = 0; waited < 5000 && saved.empty(); waited += 100) {
        saved = testing_support::fileContents(file);
        if (saved.find("display") == std::string::npos) saved.clear();
        if (saved.empty()) e2e::pause(100);
    }
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    EXPECT_EQ(saved, "nightvector settings 1\n"
                     "music-volume = 4\n"
                     "effects-volume = 10\n"
                     "display = fullscreen\n"
                     "screen-shake = on\n"
                     "flashes = full\n"
                     "frame-cap = display\n");
}

TEST(Settings, ADamagedFileSaysWhyAndTheGameStartsWithTheDefaults) {
    Surroundings dir;
    dir.linkData();
    putSettings(dir, "nightvector settings 1\nmusic-volume = loud\n");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    EXPECT_EQ(game.errors(), "Settings file " + dir.path() +
                                 "/home/config/nightvector/settings: line 2: bad value 'loud' for music-volume, the "
                                 "default is kept\n");
}

TEST(FrameCap, WithoutVerticalSyncTheIntroComesAtMostAtTheCap) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {}, {"--frame-cap", "30"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    // Past the intro's fade-in from white, and past the frames that show the pacer the swap
    // does not wait.
    e2e::pause(1500);
    e2e::DamageCounter counter;
    ASSERT_TRUE(counter.ok());
    const int frames = counter.countFor(3000);
    // 30 a second for 3 s, and 5 % more.
    EXPECT_LE(frames, 94) << frames;
    // A game that draws nothing would pass the bound too.
    EXPECT_GE(frames, 10) << frames;
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    printf("%d frames in 3 s at a cap of 30\n", frames);
}

TEST(FrameCap, AtACapOfZeroTheFramesAreNotHeld) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {}, {"--frame-cap", "0"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    e2e::pause(1500);
    e2e::DamageCounter counter;
    ASSERT_TRUE(counter.ok());
    const int frames = counter.countFor(3000);
    // How many depends on the machine; only that it draws is certain.
    EXPECT_GE(frames, 10) << frames;
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    printf("%d frames in 3 s without a cap\n", frames);
}

namespace {

// Where the pointer is on `display` after xdotool tried to move it to (x, y): "x y".
std::string pointerAfterMoveTo(const std::string& display, int x, int y) {
    runOn(display, "xdotool mousemove " + std::to_string(x) + " " + std::to_string(y));
    e2e::pause(300);
    std::string place = runOn(display, "xdotool getmouselocation | sed 's/x:\\([0-9]*\\) y:\\([0-9]*\\).*/\\1 \\2/'");
    if (!place.empty() && place.back() == '\n') place.pop_back();
    return place;
}

// Whether "x y" lies on the 1280 x 720 picture centred on the 1920 x 1080 screen.
bool onThePicture(const std::string& place) {
    int x = -1, y = -1;
    if (sscanf(place.c_str(), "%d %d", &x, &y) != 2) return false;
    return x >= 320 && x < 1600 && y >= 180 && y < 900;
}

// Whether the pointer on `display`, sent to the screen's corner, stays on the picture; asked
// again for up to five seconds, as the game grabs it in a frame after the intro's first.
bool pointerHeldOnThePicture(const std::string& display) {
    for (int waited = 0; waited < 5000; waited += 300)
        if (onThePicture(pointerAfterMoveTo(display, 10, 10))) return true;
    return false;
}

} // namespace

TEST(Display, FullScreenKeepsThePointerOnThePictureAndLetsItGoWhilePaused) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display}, {"--fullscreen"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    EXPECT_TRUE(pointerHeldOnThePicture(screen.display));
    // Into play, then paused: the pointer may leave the picture.
    pointerAfterMoveTo(screen.display, 900, 500);
    game.tapKey("Return");
    e2e::pause(3000);
    EXPECT_TRUE(onThePicture(pointerAfterMoveTo(screen.display, 1900, 1070)));
    game.tapKey("p");
    e2e::pause(500);
    EXPECT_EQ(pointerAfterMoveTo(screen.display, 10, 10), "10 10");
    EXPECT_EQ(pointerAfterMoveTo(screen.display, 1900, 1070), "1900 1070");
    // Resumed with P, typed with the pointer back on the picture: confined again.
    pointerAfterMoveTo(screen.display, 900, 500);
    game.tapKey("p");
    e2e::pause(500);
    EXPECT_TRUE(pointerHeldOnThePicture(screen.display));
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
    EXPECT_EQ(game.errors(), "");
}

TEST(Display, AWindowNeverHoldsThePointer) {
    OwnScreen screen(1920, 1080);
    ASSERT_FALSE(screen.display.empty()) << "no Xvfb";
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path(), {"DISPLAY=" + screen.display}, {"--window"});
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.errors();
    pointerAfterMoveTo(screen.display, 600, 300);
    game.tapKey("Return");
    e2e::pause(3000);
    EXPECT_EQ(pointerAfterMoveTo(screen.display, 1900, 1070), "1900 1070");
    EXPECT_EQ(pointerAfterMoveTo(screen.display, 10, 10), "10 10");
    pointerAfterMoveTo(screen.display, 600, 300);
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

// The engine core against a real X server: window, clock, input through X, exit paths.

#include "engine/Orvel.h"

#include <cstdio>
#include <cstring>
#include <deque>
#include <string>
#include <thread>
#include <vector>
#include <sys/wait.h>

#include <gtest/gtest.h>
#include <SDL/SDL.h>
#include <GL/gl.h>

#include "engine/Gamepad.h"
#include "engine/PauseClock.h"
#include "engine/TypedKeys.h"
#include "engine/WindowState.h"
#include "tests/support/XDriver.h"

using orvel::Orvel;
using orvel::Gamepad;
using orvel::PauseClock;
using orvel::TypedKeys;
using orvel::WindowState;

// SDL calls made by the engine pass through these wrappers (linked with --wrap), so tests can
// script the clock and see the order of shutdown calls. Unscripted calls go to SDL.
namespace {
std::deque<Uint32> g_scriptedTicks;
std::vector<std::string> g_calls;
bool g_recording = false;
// The engine's event thread sleeps through SDL_Delay too; only the test's own thread is recorded.
const std::thread::id g_testThread = std::this_thread::get_id();
} // namespace

extern "C" {
Uint32 __real_SDL_GetTicks(void);
void __real_SDL_Delay(Uint32 ms);
int __real_SDL_WM_ToggleFullScreen(SDL_Surface* surface);
void __real_SDL_Quit(void);

Uint32 __wrap_SDL_GetTicks(void) {
    if (g_scriptedTicks.empty()) return __real_SDL_GetTicks();
    Uint32 t = g_scriptedTicks.front();
    g_scriptedTicks.pop_front();
    return t;
}

void __wrap_SDL_Delay(Uint32 ms) {
    if (g_recording && std::this_thread::get_id() == g_testThread)
        g_calls.push_back("SDL_Delay(" + std::to_string(ms) + ")");
    __real_SDL_Delay(ms);
}

int __wrap_SDL_WM_ToggleFullScreen(SDL_Surface* surface) {
    if (g_recording) g_calls.push_back(std::string("SDL_WM_ToggleFullScreen:") + (surface ? "window" : "null"));
    return __real_SDL_WM_ToggleFullScreen(surface);
}

void __wrap_SDL_Quit(void) {
    if (g_recording) g_calls.push_back("SDL_Quit");
    __real_SDL_Quit();
}
}

namespace {


class OrvelWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_scriptedTicks.clear();
        g_calls.clear();
        g_recording = false;
    }
    void TearDown() override {
        if (Orvel::window) Orvel::quit();
    }

    static void openWindow() {
        Orvel::init(320, 240, "Input", false, false);
        ASSERT_NE(Orvel::window, nullptr);
        // No window manager runs: keys go to the window under the pointer.
        ASSERT_TRUE(xdriver::xdotool("mousemove --window " + std::to_string(xdriver::sdlWindow()) + " 10 10"));
        ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->mouseLiveX == 10; }));
    }

    static bool liveKey(int k) { return (Orvel::events->keysLive[k / 32] >> (k % 32)) & 1; }
};

// Runs a shell command and returns its exit status and everything it printed.
struct ProcessResult {
    int status;
    std::string output;
};

ProcessResult runCommand(const std::string& command) {
    ProcessResult result{-1, ""};
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return result;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe)) result.output += buffer;
    int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

} // namespace

TEST_F(OrvelWindowTest, InitWithoutSizeOrTitleOpens640By480CaptionedDemo) {
    Orvel::init(0, -5, nullptr, false, true);
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_EQ(Orvel::getScreenWidth(), 640);
    EXPECT_EQ(Orvel::getScreenHeight(), 480);
    EXPECT_EQ(Orvel::window->w, 640);
    EXPECT_EQ(Orvel::window->h, 480);
    EXPECT_STREQ(Orvel::title, "Demo");
    EXPECT_EQ(xdriver::windowName(xdriver::sdlWindow()), "Demo");
}

TEST_F(OrvelWindowTest, InitOpensGlWindowWithCaptionAndStartsEventThread) {
    Orvel::init(800, 600, "Nightvector - test", false, true);
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_TRUE(Orvel::window->flags & SDL_OPENGL);
    EXPECT_FALSE(Orvel::window->flags & SDL_FULLSCREEN);
    EXPECT_EQ(Orvel::window->w, 800);
    EXPECT_EQ(Orvel::window->h, 600);
    EXPECT_EQ(xdriver::windowName(xdriver::sdlWindow()), "Nightvector - test");
    ASSERT_NE(Orvel::events, nullptr);
    EXPECT_NE(Orvel::events->thread, nullptr);
    int stencil = 0;
    SDL_GL_GetAttribute(SDL_GL_STENCIL_SIZE, &stencil);
    EXPECT_EQ(stencil, 8);
    GLint hint = 0;
    glGetIntegerv(GL_PERSPECTIVE_CORRECTION_HINT, &hint);
    EXPECT_EQ(hint, GL_NICEST);
}

TEST_F(OrvelWindowTest, KeyThroughXIsPressedForOneUpdateDownWhileHeldReleasedForOne) {
    openWindow();
    Orvel::update();
    ASSERT_TRUE(xdriver::xdotool("keydown a"));
    ASSERT_TRUE(xdriver::waitFor([] { return liveKey(SDLK_a); }));
    Orvel::update();
    EXPECT_TRUE(Orvel::keyPressed(SDLK_a));
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    EXPECT_FALSE(Orvel::keyReleased(SDLK_a));
    Orvel::update();
    EXPECT_FALSE(Orvel::keyPressed(SDLK_a));
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    Orvel::update();
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));

    ASSERT_TRUE(xdriver::xdotool("keyup a"));
    ASSERT_TRUE(xdriver::waitFor([] { return !liveKey(SDLK_a); }));
    Orvel::update();
    EXPECT_TRUE(Orvel::keyReleased(SDLK_a));
    EXPECT_FALSE(Orvel::keyDown(SDLK_a));
    Orvel::update();
    EXPECT_FALSE(Orvel::keyReleased(SDLK_a));
}

TEST_F(OrvelWindowTest, KeysTypedThroughXArriveInOrderWithTheCharactersTheyType) {
    openWindow();
    TypedKeys::enable(true);
    // Typed faster than frames come: not one update runs meanwhile.
    ASSERT_TRUE(xdriver::xdotool("type --delay 1 'aB-7'"));
    ASSERT_TRUE(xdriver::xdotool("key BackSpace"));
    std::string typed;
    int characters = 0;
    ASSERT_TRUE(xdriver::waitFor([&typed, &characters] {
        TypedKeys::Key key;
        while (TypedKeys::take(key)) {
            // Shift goes down for the capital: a key press that types nothing.
            if (key.character == 0) continue;
            typed += std::to_string(key.sym) + ":" + std::to_string(key.character) + " ";
            ++characters;
        }
        return characters == 5;
    }));
    TypedKeys::enable(false);
    EXPECT_EQ(typed, "97:97 98:66 45:45 55:55 8:8 ");
}

TEST_F(OrvelWindowTest, MouseButtonThroughXIsPressedForOneUpdateAndReleasedForOne) {
    openWindow();
    Orvel::update();
    ASSERT_TRUE(xdriver::xdotool("mousedown 3"));
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->buttonsLive == (1u << 3); }));
    Orvel::update();
    EXPECT_TRUE(Orvel::mousePressed(3));
    EXPECT_TRUE(Orvel::mouseDown(3));
    EXPECT_FALSE(Orvel::mouseDown(1));
    Orvel::update();
    EXPECT_FALSE(Orvel::mousePressed(3));
    EXPECT_TRUE(Orvel::mouseDown(3));

    ASSERT_TRUE(xdriver::xdotool("mouseup 3"));
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->buttonsLive == 0; }));
    Orvel::update();
    EXPECT_TRUE(Orvel::mouseReleased(3));
    EXPECT_FALSE(Orvel::mouseDown(3));
    Orvel::update();
    EXPECT_FALSE(Orvel::mouseReleased(3));
}

TEST_F(OrvelWindowTest, PointerMotionThroughXReachesTheNextFrame) {
    openWindow();
    Orvel::update();
    ASSERT_TRUE(xdriver::xdotool("mousemove --window " + std::to_string(xdriver::sdlWindow()) + " 123 45"));
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->mouseLiveX == 123; }));
    EXPECT_EQ(Orvel::mouseX(), 10);
    Orvel::update();
    EXPECT_EQ(Orvel::mouseX(), 123);
    EXPECT_EQ(Orvel::mouseY(), 45);
    EXPECT_EQ(Orvel::events->mousePrevX, 10);
    EXPECT_EQ(Orvel::events->mousePrevY, 10);
}

TEST_F(OrvelWindowTest, ButtonNumbersWrapIntoThe32BitSet) {
    openWindow();
    SDL_Event event;
    memset(&event, 0, sizeof event);
    event.type = SDL_MOUSEBUTTONDOWN;
    event.button.button = 33;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->buttonsLive == (1u << 1); }));
    event.type = SDL_MOUSEBUTTONUP;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->buttonsLive == 0; }));
}

TEST_F(OrvelWindowTest, UpdateOfSameMillisecondWaitsOneMillisecondAndReadsClockAgain) {
    openWindow();
    g_scriptedTicks = {5000};
    Orvel::update();
    g_recording = true;
    g_scriptedTicks = {5000, 5001};
    Orvel::update();
    EXPECT_EQ(g_calls, std::vector<std::string>{"SDL_Delay(1)"});
    EXPECT_EQ(Orvel::currentTime, 5001u);
    EXPECT_EQ(Orvel::lastTime, 5000u);
    EXPECT_EQ(Orvel::sync, 0.001f);
    EXPECT_EQ(Orvel::sync16, 65);
}

TEST_F(OrvelWindowTest, ClockStandingStillThroughTheWaitGivesZeroFrame) {
    openWindow();
    g_scriptedTicks = {7000};
    Orvel::update();
    g_scriptedTicks = {7000, 7000};
    Orvel::update();
    EXPECT_TRUE(g_scriptedTicks.empty());
    EXPECT_EQ(Orvel::sync, 0.0f);
    EXPECT_EQ(Orvel::sync16, 0);
}

TEST_F(OrvelWindowTest, SixteenMillisecondUpdateGivesSync16Of1048AndCountsTheFrame) {
    openWindow();
    g_scriptedTicks = {9000};
    Orvel::update();
    uint32_t frames = Orvel::framenum;
    g_recording = true;
    g_scriptedTicks = {9016};
    Orvel::update();
    EXPECT_TRUE(g_calls.empty());
    EXPECT_EQ(Orvel::currentTime, 9016u);
    EXPECT_EQ(Orvel::lastTime, 9000u);
    EXPECT_EQ(Orvel::tm_current, 9016u);
    EXPECT_EQ(Orvel::tm_last, 9000u);
    EXPECT_EQ(Orvel::sync, 0.001f * 16.0f);
    EXPECT_EQ(Orvel::sync16, 1048);
    EXPECT_EQ(Orvel::framenum, frames + 1);
}

TEST_F(OrvelWindowTest, QuitAfterFullScreenInitLeavesFullScreenBeforeShuttingSdlDown) {
    Orvel::init(640, 480, "Full", true, true);
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_TRUE(Orvel::fullscreen);
    g_recording = true;
    Orvel::quit();
    EXPECT_EQ(g_calls, (std::vector<std::string>{"SDL_WM_ToggleFullScreen:window", "SDL_Quit"}));
}

TEST_F(OrvelWindowTest, QuitAfterWindowedInitDoesNotToggle) {
    Orvel::init(640, 480, "Windowed", false, true);
    g_recording = true;
    Orvel::quit();
    EXPECT_EQ(g_calls, std::vector<std::string>{"SDL_Quit"});
}

TEST_F(OrvelWindowTest, ToggleFullscreenSwitchesTheModeBothWaysAndQuitLeavesFullScreen) {
    Orvel::init(640, 480, "Toggle", false, true);
    g_recording = true;
    ASSERT_TRUE(Orvel::toggleFullscreen());
    EXPECT_TRUE(Orvel::fullscreen);
    EXPECT_TRUE(SDL_GetVideoSurface()->flags & SDL_FULLSCREEN);
    ASSERT_TRUE(Orvel::toggleFullscreen());
    EXPECT_FALSE(Orvel::fullscreen);
    EXPECT_FALSE(SDL_GetVideoSurface()->flags & SDL_FULLSCREEN);
    ASSERT_TRUE(Orvel::toggleFullscreen());
    // Still drawable: a cleared frame shows.
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    unsigned char pixel[4] = {};
    glReadPixels(10, 10, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(pixel[1], 255);
    Orvel::quit();
    EXPECT_EQ(g_calls, (std::vector<std::string>{"SDL_WM_ToggleFullScreen:window", "SDL_WM_ToggleFullScreen:window",
                                                 "SDL_WM_ToggleFullScreen:window", "SDL_WM_ToggleFullScreen:window",
                                                 "SDL_Quit"}));
}

TEST(OrvelToggle, WithoutAWindowThereIsNothingToToggle) {
    const bool before = Orvel::fullscreen;
    EXPECT_FALSE(Orvel::toggleFullscreen());
    EXPECT_EQ(Orvel::fullscreen, before);
}

TEST_F(OrvelWindowTest, QuitResetsStateButKeepsFullScreenFlagAndFrameCount) {
    Orvel::init(640, 480, "Reset", false, true);
    Orvel::update();
    Orvel::update();
    uint32_t frames = Orvel::framenum;
    Orvel::setAutoExit(false);
    Orvel::quit();
    EXPECT_EQ(Orvel::window, nullptr);
    EXPECT_EQ(Orvel::title, nullptr);
    EXPECT_EQ(Orvel::events, nullptr);
    EXPECT_EQ(Orvel::width, 0);
    EXPECT_EQ(Orvel::height, 0);
    EXPECT_EQ(Orvel::sync, 0.0f);
    EXPECT_EQ(Orvel::sync16, 0);
    EXPECT_EQ(Orvel::currentTime, 0u);
    EXPECT_EQ(Orvel::lastTime, 0u);
    EXPECT_EQ(Orvel::tm_current, 0u);
    EXPECT_EQ(Orvel::tm_last, 0u);
    EXPECT_TRUE(Orvel::autoexit);
    EXPECT_FALSE(Orvel::fullscreen);
    EXPECT_EQ(Orvel::framenum, frames);
    EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0u);
}

TEST_F(OrvelWindowTest, InitAgainAfterQuitOpensFreshWindowAndInput) {
    Orvel::init(640, 480, "First", false, true);
    Orvel::quit();
    openWindow();
    EXPECT_EQ(xdriver::windowName(xdriver::sdlWindow()), "Input");
    ASSERT_NE(Orvel::events, nullptr);
    EXPECT_NE(Orvel::events->thread, nullptr);
    ASSERT_TRUE(xdriver::xdotool("keydown a"));
    ASSERT_TRUE(xdriver::waitFor([] { return liveKey(SDLK_a); }));
    Orvel::update();
    EXPECT_TRUE(Orvel::keyPressed(SDLK_a));
    ASSERT_TRUE(xdriver::xdotool("keyup a"));
}

TEST_F(OrvelWindowTest, CloseRequestWithoutAutoExitOnlySetsTheFlag) {
    openWindow();
    Orvel::setAutoExit(false);
    xdriver::requestClose(xdriver::sdlWindow());
    ASSERT_TRUE(xdriver::waitFor([] { return Orvel::events->closeRequested; }));
    Orvel::update();
    EXPECT_TRUE(Orvel::events->closeRequested);
    EXPECT_NE(Orvel::window, nullptr);
}

TEST_F(OrvelWindowTest, FillScreenCoversTheViewportWithWhite) {
    Orvel::init(64, 48, "Fill", false, false);
    glViewport(0, 0, 64, 48);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glScalef(0.25f, 0.25f, 1);
    Orvel::fillScreen();
    glFinish();
    std::vector<GLubyte> pixels(64 * 48 * 4);
    glReadPixels(0, 0, 64, 48, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (int i = 0; i < 64 * 48; ++i) {
        ASSERT_EQ(pixels[4 * i + 0], 255) << i;
        ASSERT_EQ(pixels[4 * i + 1], 255) << i;
        ASSERT_EQ(pixels[4 * i + 2], 255) << i;
    }
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    GLfloat projection[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    EXPECT_EQ(projection[0], 1.0f);
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
}

TEST(Orvel, StoppedGEventCannotStartUsefully) {
    Orvel::GEvent events;
    events.start();
    ASSERT_NE(events.thread, nullptr);
    events.stop();
    EXPECT_EQ(events.thread, nullptr);
    EXPECT_FALSE(events.running);
    // The new thread sees running == false and returns at once, so the join below ends.
    events.start();
    EXPECT_NE(events.thread, nullptr);
    events.stop();
    EXPECT_EQ(events.thread, nullptr);
}

TEST(Orvel, ClosingTheWindowEndsTheProgramInsideUpdateWithStatusZero) {
    FILE* probe = popen(ORVEL_PROBE, "r");
    ASSERT_NE(probe, nullptr);
    unsigned long window = 0;
    ASSERT_EQ(fscanf(probe, "%lu", &window), 1);
    ASSERT_NE(window, 0ul);
    xdriver::requestClose(window);
    int status = pclose(probe);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(Orvel, InitWithoutDisplayReportsSdlErrorAndExitsWithStatusOne) {
    ProcessResult result = runCommand(std::string("env -u DISPLAY SDL_VIDEODRIVER=x11 ") + ORVEL_PROBE + " 2>&1");
    EXPECT_EQ(result.status, 1);
    const std::string prefix = "Error initializing SDL: ";
    ASSERT_EQ(result.output.compare(0, prefix.size(), prefix), 0) << result.output;
    EXPECT_EQ(result.output, prefix + "No available video device\n");
}

// --- The clock held through a pause ---

TEST(PauseClock, GameTicksAreRealTicksLessEveryHeldSpan) {
    PauseClock::reset();
    EXPECT_EQ(PauseClock::gameTicks(5000), 5000u);
    PauseClock::hold(5000);
    EXPECT_TRUE(PauseClock::held());
    EXPECT_EQ(PauseClock::gameTicks(5001), 5000u);
    EXPECT_EQ(PauseClock::gameTicks(15000), 5000u);
    // A second hold while held changes nothing.
    PauseClock::hold(9000);
    PauseClock::release(15000);
    EXPECT_FALSE(PauseClock::held());
    EXPECT_EQ(PauseClock::heldSpan(), 10000u);
    EXPECT_EQ(PauseClock::gameTicks(15016), 5016u);
    // Releasing again changes nothing; a second pause adds its span.
    PauseClock::release(16000);
    PauseClock::hold(16000);
    PauseClock::release(16500);
    EXPECT_EQ(PauseClock::gameTicks(17000), 6500u);
    PauseClock::reset();
    EXPECT_EQ(PauseClock::gameTicks(17000), 17000u);
}

TEST_F(OrvelWindowTest, HeldClockKeepsThePausedSpanOutOfTheTimeAndOfTheNextFrame) {
    openWindow();
    PauseClock::reset();
    g_scriptedTicks = {10000};
    Orvel::update();
    g_scriptedTicks = {10016};
    Orvel::update();
    PauseClock::hold(10020);
    g_recording = true;
    // Paused frames: the time stands at the hold; the first frame ends at it, the others are
    // zero frames without the usual wait.
    g_scriptedTicks = {10040};
    Orvel::update();
    EXPECT_EQ(Orvel::currentTime, 10020u);
    EXPECT_EQ(Orvel::sync, 0.001f * 4.0f);
    g_scriptedTicks = {15000};
    Orvel::update();
    EXPECT_EQ(Orvel::currentTime, 10020u);
    EXPECT_EQ(Orvel::lastTime, 10020u);
    EXPECT_EQ(Orvel::sync, 0.0f);
    EXPECT_TRUE(g_calls.empty());
    // Ten seconds later: the next frame is an ordinary one.
    PauseClock::release(20020);
    g_scriptedTicks = {20036};
    Orvel::update();
    EXPECT_EQ(Orvel::currentTime, 10036u);
    EXPECT_EQ(Orvel::lastTime, 10020u);
    EXPECT_EQ(Orvel::sync, 0.001f * 16.0f);
    EXPECT_EQ(Orvel::sync16, 1048);
    PauseClock::reset();
}

TEST_F(OrvelWindowTest, IdleFrameSnapshotsInputWithoutSwappingAndKeepsItsPace) {
    openWindow();
    g_scriptedTicks = {30000};
    Orvel::update();
    const uint32_t frames = Orvel::framenum;
    PauseClock::hold(30000);
    Orvel::events->keysLive['p' / 32] |= 1u << ('p' % 32);
    g_recording = true;
    // 20 ms after the last idle frame began: 30 ms more to wait for a 50 ms frame.
    g_scriptedTicks = {30020, 30050};
    PauseClock::idleFrame(50);
    EXPECT_EQ(g_calls, std::vector<std::string>{"SDL_Delay(30)"});
    EXPECT_TRUE(Orvel::keyPressed('p'));
    EXPECT_EQ(Orvel::framenum, frames);
    EXPECT_EQ(Orvel::currentTime, 30000u);
    PauseClock::reset();
}

// --- Window focus and the gamepad through the event thread ---

namespace {

// Snapshots of the window state, taken until one shows a loss (or, with `exposure`, an
// uncovering); false when none does within the usual wait.
bool windowStateShows(bool exposure) {
    return xdriver::waitFor([exposure] {
        WindowState::update();
        return exposure ? WindowState::exposed() : WindowState::focusLost();
    });
}

} // namespace

TEST_F(OrvelWindowTest, LostFocusAndUncoveringReachTheNextFrame) {
    openWindow();
    WindowState::reset();
    SDL_Event event;
    memset(&event, 0, sizeof event);
    event.type = SDL_ACTIVEEVENT;
    event.active.gain = 0;
    event.active.state = SDL_APPINPUTFOCUS;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(windowStateShows(false));
    WindowState::update();
    EXPECT_FALSE(WindowState::focusLost());
    // Mouse focus alone is no loss; minimising is.
    event.active.state = SDL_APPMOUSEFOCUS;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    event.active.state = SDL_APPACTIVE;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(windowStateShows(false));
    EXPECT_FALSE(WindowState::exposed());
    // Focus back, or an expose, asks for the picture again.
    event.active.gain = 1;
    event.active.state = SDL_APPINPUTFOCUS;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(windowStateShows(true));
    event.type = SDL_VIDEOEXPOSE;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(windowStateShows(true));
    EXPECT_FALSE(WindowState::focusLost());
    WindowState::reset();
}

TEST_F(OrvelWindowTest, JoystickEventsReachTheNextFrameThroughUpdate) {
    openWindow();
    Gamepad::close();
    SDL_Event event;
    memset(&event, 0, sizeof event);
    event.type = SDL_JOYAXISMOTION;
    event.jaxis.axis = 3;
    event.jaxis.value = -20000;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    event.type = SDL_JOYBUTTONDOWN;
    event.jbutton.button = 7;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(xdriver::waitFor([] { return Gamepad::used(); }));
    ASSERT_TRUE(xdriver::waitFor([] {
        Orvel::update();
        return Gamepad::buttonDown(7);
    }));
    EXPECT_EQ(Gamepad::axis(3), -20000);
    Orvel::update();
    EXPECT_TRUE(Gamepad::buttonDown(7));
    EXPECT_FALSE(Gamepad::buttonPressed(7));
    // Another joystick's events and axes and buttons past the kept ones are ignored.
    event.jbutton.which = 1;
    event.jbutton.button = 2;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    event.jbutton.which = 0;
    event.jbutton.button = 40;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    event.type = SDL_JOYBUTTONUP;
    event.jbutton.button = 7;
    ASSERT_EQ(SDL_PushEvent(&event), 0);
    ASSERT_TRUE(xdriver::waitFor([] {
        Orvel::update();
        return !Gamepad::buttonDown(7);
    }));
    for (int b = 0; b < Gamepad::BUTTONS; ++b) EXPECT_FALSE(Gamepad::buttonDown(b)) << b;
    EXPECT_EQ(Gamepad::axis(3), -20000);
    EXPECT_EQ(Gamepad::axis(-1), 0);
    EXPECT_EQ(Gamepad::axis(Gamepad::AXES), 0);
    Gamepad::close();
}

TEST_F(OrvelWindowTest, TheGamepadOpensBeforeTheWindowAndKeepsItsSubsystemThroughInit) {
    ASSERT_EQ(SDL_WasInit(SDL_INIT_EVERYTHING), 0u);
    testing::internal::CaptureStderr();
    Gamepad::open();
    EXPECT_EQ(SDL_WasInit(SDL_INIT_EVERYTHING), (Uint32)SDL_INIT_JOYSTICK);
    Orvel::init(320, 240, "Pad first", false, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_EQ(SDL_WasInit(SDL_INIT_JOYSTICK | SDL_INIT_VIDEO), (Uint32)(SDL_INIT_JOYSTICK | SDL_INIT_VIDEO));
    Gamepad::close();
    EXPECT_EQ(SDL_WasInit(SDL_INIT_JOYSTICK), 0u);
}

TEST_F(OrvelWindowTest, WithoutAJoystickOpeningSaysNothingAndFindsNone) {
    openWindow();
    testing::internal::CaptureStderr();
    Gamepad::open();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(Gamepad::present());
    EXPECT_EQ(Gamepad::axisCount(), 0);
    Gamepad::close();
}

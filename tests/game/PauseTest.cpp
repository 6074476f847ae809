// Pausing: P and a lost focus pause play, P or a mouse button resumes; the held clock keeps every
// game timer as if the pause had not been; sound pauses with the game; the paused picture.

#include <vector>

#include <SDL/SDL.h>
#include <SDL/SDL_keysym.h>

#include "engine/PauseClock.h"
#include "engine/WindowState.h"
#include "game/Pause.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/SoundEffects.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::PauseClock;
using orvel::vec2;

namespace {

// A sound output that only counts pauses and resumes.
class PauseCounter : public SoundOutput {
public:
    uint32_t length(SoundEffect, int) const override { return 500; }
    void play(const SoundPlay&) override {}
    void stop(int, int) override {}
    void fadeOutAll(int ms) override { fades.push_back(ms); }
    void pauseAll() override { ++pauses; }
    void resumeAll() override { ++resumes; }
    int pauses = 0, resumes = 0;
    std::vector<int> fades;
};

// A session whose frames run as the main loop runs them, on a scripted SDL tick count: the clock
// read through PauseClock as Orvel::update reads it, then the input, then the pause, then the
// game's logic unless paused.
class PauseTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        PauseClock::reset();
        orvel::WindowState::reset();
        Orvel::tm_current = START;
        g_sound.setOutput(&sound);
        g_game->init();
        runlevel = RUNLEVEL_GAME;
    }
    void TearDown() override {
        g_pause.leave(real);
        PauseClock::reset();
        g_sound.setOutput(nullptr);
        runlevel = RUNLEVEL_MENU;
        SessionTest::TearDown();
    }

    void frame(int key = -1, uint32_t buttons = 0) {
        real += 16;
        Orvel::tm_last = Orvel::tm_current;
        Orvel::tm_current = PauseClock::gameTicks(real);
        Orvel::setFrameTime(Orvel::tm_last, Orvel::tm_current);
        setInput(buttons, 640, 360, key);
        orvel::WindowState::update();
        g_pause.update(real);
        if (!g_pause.paused) g_game->update();
    }
    void framesUntilReal(uint32_t until) {
        while (real < until) frame();
    }
    // Tap P: one frame with it down, one without.
    void tapP() {
        frame(SDLK_p);
        frame();
    }

    uint32_t real = START;
    PauseCounter sound;
};

} // namespace

TEST_F(PauseTest, TenSecondsPausedLeaveTheWaveTimerAndAShotAsIfTheyHadNotPassed) {
    // The first wave is due 5 s after init, at game time START + 5000.
    framesUntilReal(START + 2000);
    Player* player = g_game->player;
    frame(-1, LEFT_BUTTON);
    ProjectileRing& ring = player->plasma->ring;
    const ProjectileRing::Shot shot = ring.shots[ring.shotCursor];
    ASSERT_GT(shot.finish, Orvel::currentTime);
    framesUntilReal(START + 2500);
    const vec2 before = ring.shots[ring.shotCursor].position;
    const uint32_t heldAt = real + 16;
    tapP();
    ASSERT_TRUE(g_pause.paused);
    EXPECT_EQ(sound.pauses, 1);
    // Ten seconds paused: nothing moves, no wave comes, the game time stands.
    const uint32_t gameTime = Orvel::currentTime;
    framesUntilReal(heldAt + 10000);
    EXPECT_EQ(Orvel::currentTime, gameTime);
    EXPECT_EQ(g_game->wave, 0);
    EXPECT_EQ(ring.shots[ring.shotCursor].position.x, before.x);
    EXPECT_EQ(ring.shots[ring.shotCursor].position.y, before.y);
    const uint32_t releasedAt = real + 16;
    tapP();
    ASSERT_FALSE(g_pause.paused);
    EXPECT_EQ(sound.resumes, 1);
    EXPECT_EQ(PauseClock::heldSpan(), releasedAt - heldAt);
    // The first frame after resuming is an ordinary one, of 16 ms.
    EXPECT_EQ(Orvel::sync, 0.016f);
    EXPECT_EQ(Orvel::currentTime, real - PauseClock::heldSpan());
    // The shot flies on and ends at its own finish on the game clock.
    while (Orvel::currentTime + 16 < shot.finish) {
        frame();
        ASSERT_GT(ring.shots[ring.shotCursor].finish, Orvel::currentTime);
    }
    // The wave comes with the first frame past its time on the game clock.
    while (g_game->wave == 0) {
        ASSERT_LE(Orvel::currentTime, START + 5000u);
        frame();
    }
    EXPECT_GT(Orvel::currentTime, START + 5000u);
    EXPECT_LE(Orvel::currentTime, START + 5016u);
    EXPECT_EQ(real - Orvel::currentTime, releasedAt - heldAt);
}

TEST_F(PauseTest, ARespawnFlightPausedHalfwayEndsOnTheGameClock) {
    framesUntilReal(START + 2000);
    Player* player = g_game->player;
    player->damage(1000.0f);
    const float respawnEnd = player->respawnEnd;
    // 2.5 s of waiting and 3.5 s of flight; pause halfway through the flight.
    while ((float)Orvel::currentTime < player->respawnStart + 1750.0f) frame();
    const vec2 halfway = player->position;
    const uint32_t heldAt = real + 16;
    tapP();
    framesUntilReal(heldAt + 10000);
    EXPECT_EQ(player->position.x, halfway.x);
    EXPECT_EQ(player->position.y, halfway.y);
    EXPECT_EQ(player->hull, 0.0f);
    tapP();
    while (player->hull <= 0.0f) {
        ASSERT_LT((float)Orvel::currentTime, respawnEnd + 17.0f);
        frame();
    }
    EXPECT_GE((float)Orvel::currentTime, respawnEnd);
    EXPECT_EQ(real - Orvel::currentTime, PauseClock::heldSpan());
}

TEST_F(PauseTest, LosingFocusPausesAndOnlyPOrAMouseButtonResumes) {
    framesUntilReal(START + 1200);
    SDL_Event lost;
    lost.type = SDL_ACTIVEEVENT;
    lost.active.gain = 0;
    lost.active.state = SDL_APPINPUTFOCUS;
    orvel::WindowState::handle(lost);
    frame();
    ASSERT_TRUE(g_pause.paused);
    EXPECT_TRUE(PauseClock::held());
    // Focus back: the picture is drawn again, the game stays paused.
    SDL_Event back = lost;
    back.active.gain = 1;
    orvel::WindowState::handle(back);
    frame();
    EXPECT_TRUE(g_pause.paused);
    EXPECT_TRUE(g_pause.pictureDue());
    frame(-1, RIGHT_BUTTON);
    EXPECT_FALSE(g_pause.paused);
    EXPECT_FALSE(PauseClock::held());
}

TEST_F(PauseTest, TheGameOverScreenDoesNotPause) {
    g_game->lives = 0;
    framesUntilReal(START + 1200);
    g_game->player->damage(1000.0f);
    frame();
    ASSERT_FALSE(g_game->running);
    tapP();
    EXPECT_FALSE(g_pause.paused);
    EXPECT_FALSE(PauseClock::held());
}

TEST_F(PauseTest, PInTheMainLoopsLogicPausesAndEscapeWhilePausedQuitsWithTheFades) {
    framesUntilReal(START + 1200);
    setInput(0, 640, 360, SDLK_p);
    runFrameLogic();
    ASSERT_TRUE(g_pause.paused);
    ASSERT_TRUE(g_fader->done());
    setInput(0, 640, 360);
    runFrameLogic();
    setInput(0, 640, 360, SDLK_ESCAPE);
    runFrameLogic();
    EXPECT_FALSE(g_pause.paused);
    EXPECT_FALSE(PauseClock::held());
    EXPECT_EQ(runlevel, RUNLEVEL_FADING_OUT);
    EXPECT_EQ(sound.resumes, 1);
    EXPECT_EQ(sound.fades, std::vector<int>{950});
}

namespace {

// Drawing needs the art loaded for this test's window.
class PausePictureTest : public PauseTest {
protected:
    PausePictureTest() { reloadResources = true; }
};

} // namespace

TEST_F(PausePictureTest, ThePausedPictureIsDimmedWithTheLinesOnTop) {
    glClearColor(1.0f, 1.0f, 1.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    g_pause.drawOverlay();
    glFinish();
    const Pixels p = readPixels(0, 0, SCREEN_WIDTH, SCREEN_HEIGHT);
    // White under 60 % black: 102 in every channel, away from the lines.
    EXPECT_EQ(p.at(100, 100) & 0xffffffu, 0x666666u);
    // "Paused" at the centre: some of its glyph pixels are brighter than the dimmed white.
    int bright = 0;
    for (int y = SCREEN_HEIGHT / 2 - 20; y < SCREEN_HEIGHT / 2 + 20; ++y)
        for (int x = SCREEN_WIDTH / 2 - 60; x < SCREEN_WIDTH / 2 + 60; ++x) bright += (p.at(x, y) & 0xff) > 200;
    EXPECT_GT(bright, 50);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
}

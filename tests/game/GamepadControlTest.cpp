// Twin-stick play: pad layouts, the left stick's keys, and pad events pushed into SDL's queue
// moving the ship, aiming the reticle and firing as the keyboard and mouse would.

#include <cmath>
#include <cstring>
#include <initializer_list>

#include <SDL/SDL.h>
#include <SDL/SDL_keysym.h>

#include "engine/Gamepad.h"
#include "engine/Orvel.h"
#include "engine/PauseClock.h"
#include "game/GameSessions.h"
#include "game/Main.h"
#include "game/GamepadControl.h"
#include "game/Pause.h"
#include "game/desktop/Settings.h"
#include "game/desktop/SettingsPanel.h"
#include "game/Laser.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"
#include "tests/support/XDriver.h"

using namespace testing_support;
using orvel::Gamepad;
using orvel::Orvel;
using orvel::vec2;

namespace {

const int16_t XBOX_REST[8] = {0, 0, -32768, 0, 0, -32768, 0, 0};
const int16_t CENTRED[8] = {0, 0, 0, 0, 0, 0, 0, 0};

void expectLayout(const GamepadLayout& l, std::initializer_list<int> expected) {
    const int got[] = {l.leftX, l.leftY, l.rightX, l.rightY, l.leftTriggerAxis, l.rightTriggerAxis,
                       l.leftShoulder, l.rightShoulder, l.leftTriggerButton, l.rightTriggerButton, l.back, l.start};
    ASSERT_EQ(expected.size(), sizeof got / sizeof got[0]);
    int i = 0;
    for (int e : expected) {
        EXPECT_EQ(got[i], e) << "field " << i;
        ++i;
    }
}

// A session of a pad like an Xbox pad (six axes, the triggers resting at -32768, eleven
// buttons); its events go through SDL's queue and the engine's event thread.
class GamepadControlTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        Gamepad::close();
        g_gamepad = GamepadControl();
        g_game->init();
    }
    void TearDown() override {
        Gamepad::close();
        g_gamepad = GamepadControl();
        SessionTest::TearDown();
    }

    static void describeXbox() { Gamepad::describe(6, 11, XBOX_REST); }
    // Pushes an axis or button event and waits until the event thread has taken it in.
    static void axis(int i, int16_t value) {
        SDL_Event e;
        memset(&e, 0, sizeof e);
        e.type = SDL_JOYAXISMOTION;
        e.jaxis.axis = (Uint8)i;
        e.jaxis.value = value;
        const uint32_t seen = seenEvents();
        ASSERT_EQ(SDL_PushEvent(&e), 0);
        ASSERT_TRUE(xdriver::waitFor([seen] { return seenEvents() > seen; }));
    }
    static void button(int b, bool down) {
        SDL_Event e;
        memset(&e, 0, sizeof e);
        e.type = down ? SDL_JOYBUTTONDOWN : SDL_JOYBUTTONUP;
        e.jbutton.button = (Uint8)b;
        const uint32_t seen = seenEvents();
        ASSERT_EQ(SDL_PushEvent(&e), 0);
        ASSERT_TRUE(xdriver::waitFor([seen] { return seenEvents() > seen; }));
    }
    static void hat(uint8_t value) {
        SDL_Event e;
        memset(&e, 0, sizeof e);
        e.type = SDL_JOYHATMOTION;
        e.jhat.value = value;
        const uint32_t seen = seenEvents();
        ASSERT_EQ(SDL_PushEvent(&e), 0);
        ASSERT_TRUE(xdriver::waitFor([seen] { return seenEvents() > seen; }));
    }
    static uint32_t seenEvents() { return Gamepad::eventCount(); }

    // One frame of input as the main loop reads it: the snapshot, the pad's, then the pad applied.
    static void readInput(uint32_t realNow, uint32_t buttons = 0, int mouseX = 640, int mouseY = 360,
                          int key = -1, int key2 = -1) {
        setInput(buttons, mouseX, mouseY, key, key2);
        Gamepad::update();
        g_gamepad.apply(realNow);
    }
};

} // namespace

TEST(GamepadLayouts, TriggersRestingAtTheBottomMarkXboxAndPlayStationPads) {
    // Xbox: eleven buttons, Back 6 and Start 7.
    expectLayout(GamepadControl::detectLayout(6, 11, XBOX_REST), {0, 1, 3, 4, 2, 5, 4, 5, -1, -1, 6, 7});
    // PlayStation: thirteen buttons with the triggers as buttons 6 and 7 too, Share 8, Options 9.
    expectLayout(GamepadControl::detectLayout(6, 13, XBOX_REST), {0, 1, 3, 4, 2, 5, 4, 5, 6, 7, 8, 9});
}

TEST(GamepadLayouts, WithoutTriggerAxesTheRightStickIsOnAxesTwoAndThree) {
    expectLayout(GamepadControl::detectLayout(4, 12, CENTRED), {0, 1, 2, 3, -1, -1, 4, 5, 6, 7, 8, 9});
    // Six axes that rest in the middle are sticks, not triggers.
    expectLayout(GamepadControl::detectLayout(6, 12, CENTRED), {0, 1, 2, 3, -1, -1, 4, 5, 6, 7, 8, 9});
    // One trigger at rest is not enough.
    const int16_t oneDown[8] = {0, 0, -32768, 0, 0, 0, 0, 0};
    expectLayout(GamepadControl::detectLayout(6, 11, oneDown), {0, 1, 2, 3, -1, -1, 4, 5, 6, 7, 8, 9});
    // Two axes: no right stick.
    expectLayout(GamepadControl::detectLayout(2, 10, CENTRED), {0, 1, -1, -1, -1, -1, 4, 5, 6, 7, 8, 9});
}

TEST(GamepadSticks, DeadZoneThenTheKeysOfTheNearestOfEightDirections) {
    const unsigned W = 1, A = 2, S = 4, D = 8;
    EXPECT_EQ(GamepadControl::stickKeys(0, 0), 0u);
    // 8000 of 32767 is inside a quarter; 9000 is past it.
    EXPECT_EQ(GamepadControl::stickKeys(8000, 0), 0u);
    EXPECT_EQ(GamepadControl::stickKeys(-5000, 5000), 0u);
    EXPECT_EQ(GamepadControl::stickKeys(9000, 0), D);
    EXPECT_EQ(GamepadControl::stickKeys(32767, 0), D);
    EXPECT_EQ(GamepadControl::stickKeys(0, 32767), S);
    EXPECT_EQ(GamepadControl::stickKeys(-32768, 0), A);
    EXPECT_EQ(GamepadControl::stickKeys(0, -32768), W);
    EXPECT_EQ(GamepadControl::stickKeys(23170, 23170), D | S);
    EXPECT_EQ(GamepadControl::stickKeys(-23170, 23170), S | A);
    EXPECT_EQ(GamepadControl::stickKeys(-23170, -23170), A | W);
    EXPECT_EQ(GamepadControl::stickKeys(23170, -23170), W | D);
    // 22 degrees below the right is still right; 23 is down-right.
    EXPECT_EQ(GamepadControl::stickKeys(30381, 12275), D);
    EXPECT_EQ(GamepadControl::stickKeys(30162, 12803), D | S);
}

TEST(GamepadSticks, TheDpadHoldsTheKeysOfItsOneOrTwoDirections) {
    const unsigned W = 1, A = 2, S = 4, D = 8;
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_CENTERED), 0u);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_UP), W);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_RIGHT), D);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_DOWN), S);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_LEFT), A);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_RIGHTDOWN), D | S);
    EXPECT_EQ(GamepadControl::hatKeys(SDL_HAT_LEFTUP), A | W);
}

TEST_F(GamepadControlTest, WithoutAPadTheInputIsLeftAlone) {
    readInput(1000, LEFT_BUTTON, 700, 300, SDLK_a);
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    EXPECT_FALSE(Orvel::keyDown(SDLK_d));
    EXPECT_TRUE(Orvel::mouseDown(1));
    EXPECT_FALSE(Orvel::mouseDown(3));
    EXPECT_EQ(Orvel::mouseX(), 700);
    EXPECT_EQ(Orvel::mouseY(), 300);
    EXPECT_FALSE(Gamepad::used());
}

TEST_F(GamepadControlTest, TriggersAtRestFireNothingPulledTheyFireBothWeapons) {
    describeXbox();
    axis(2, -32768);
    axis(5, -32768);
    readInput(1000);
    EXPECT_FALSE(Orvel::mouseDown(1));
    EXPECT_FALSE(Orvel::mouseDown(3));
    axis(5, 0);
    readInput(1016);
    EXPECT_TRUE(Orvel::mouseDown(1));
    EXPECT_FALSE(Orvel::mouseDown(3));
    axis(2, 32767);
    readInput(1032);
    EXPECT_TRUE(Orvel::mouseDown(1));
    EXPECT_TRUE(Orvel::mouseDown(3));
    // The shoulders fire as well.
    axis(2, -32768);
    axis(5, -32768);
    button(4, true);
    readInput(1048);
    EXPECT_FALSE(Orvel::mouseDown(1));
    EXPECT_TRUE(Orvel::mouseDown(3));
}

TEST_F(GamepadControlTest, TheLeftStickSteersAndTheRightStickAimsFromTheShip) {
    describeXbox();
    // After a flight: the camera leads the ship and has zoomed out with its speed.
    Camera2D* camera = g_world->camera;
    camera->position = orvel::vec2(g_game->player->position.x + 150.0f, g_game->player->position.y - 50.0f);
    camera->zoom = 0.8f;
    axis(0, -32768);
    axis(1, 32767);
    axis(3, 32767);
    readInput(1000);
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    EXPECT_TRUE(Orvel::keyDown(SDLK_s));
    EXPECT_FALSE(Orvel::keyDown(SDLK_w));
    EXPECT_FALSE(Orvel::keyDown(SDLK_d));
    // Full tilt to the right: the far reach from where the ship is drawn, 150 units left of the
    // camera and 50 below it at a zoom of 0.8: (640 - 120, 360 + 40).
    const vec2 ship(520.0f, 400.0f);
    EXPECT_EQ(Orvel::mouseX(), (int)std::lround(ship.x + GamepadControl::AIM_FAR));
    EXPECT_EQ(Orvel::mouseY(), (int)std::lround(ship.y));
    // Just past the dead zone, straight up: the near reach.
    axis(3, 0);
    axis(4, -8192);
    readInput(1016);
    EXPECT_EQ(Orvel::mouseX(), (int)std::lround(ship.x));
    EXPECT_EQ(Orvel::mouseY(), (int)std::lround(ship.y - GamepadControl::AIM_NEAR));
    // The stick let go: the aim stays where it was.
    axis(4, 0);
    readInput(1032);
    EXPECT_EQ(Orvel::mouseY(), (int)std::lround(ship.y - GamepadControl::AIM_NEAR));
    // The mouse moves: it owns the reticle again.
    readInput(1048, 0, 100, 200);
    EXPECT_EQ(Orvel::mouseX(), 100);
    EXPECT_EQ(Orvel::mouseY(), 200);
}

TEST_F(GamepadControlTest, StartHoldsReturnAndPBackHeldOneSecondPressesEscapeOnce) {
    describeXbox();
    button(7, true);
    readInput(1000);
    EXPECT_TRUE(Orvel::keyPressed(SDLK_RETURN));
    EXPECT_TRUE(Orvel::keyPressed(SDLK_p));
    readInput(1016);
    EXPECT_TRUE(Orvel::keyDown(SDLK_p));
    EXPECT_FALSE(Orvel::keyPressed(SDLK_p));
    button(7, false);
    button(6, true);
    readInput(2000);
    EXPECT_FALSE(Orvel::keyDown(SDLK_ESCAPE));
    readInput(2999);
    EXPECT_FALSE(Orvel::keyDown(SDLK_ESCAPE));
    readInput(3000);
    EXPECT_TRUE(Orvel::keyPressed(SDLK_ESCAPE));
    readInput(3016);
    EXPECT_FALSE(Orvel::keyDown(SDLK_ESCAPE));
    readInput(5000);
    EXPECT_FALSE(Orvel::keyDown(SDLK_ESCAPE));
    // Let go and held again: another full second.
    button(6, false);
    readInput(5016);
    button(6, true);
    readInput(5032);
    readInput(6000);
    EXPECT_FALSE(Orvel::keyDown(SDLK_ESCAPE));
    readInput(6032);
    EXPECT_TRUE(Orvel::keyPressed(SDLK_ESCAPE));
}

TEST_F(GamepadControlTest, ThePadPlaysTheShipExactlyAsKeysAndMouseDo) {
    Player* player = g_game->player;
    const vec2 start = player->position;
    // Keyboard and mouse: D held, both buttons held, the pointer straight right of the centre.
    uint32_t t = START + 1100;
    for (int i = 0; i < 90; ++i, t += 16) {
        setTime(t);
        readInput(t, LEFT_BUTTON | RIGHT_BUTTON, 640 + 300, 360, SDLK_d);
        g_game->update();
    }
    const vec2 keyboardMove = player->position - start;
    const float keyboardEnergy = player->energy;
    const uint32_t plasmaShot = (uint32_t)player->plasma->lastShot;
    const uint32_t laserShot = (uint32_t)player->laser->lastShot;
    ASSERT_GT(keyboardMove.x, 0.0f);

    // The same with the pad in a fresh session: left stick right, both triggers, aim right.
    GameSessions::end();
    g_rand.init(1234);
    ParticleSystem::random.init((int)0xd34db33f);
    g_game = new Game();
    setTime(START);
    g_game->init();
    player = g_game->player;
    describeXbox();
    axis(0, 32767);
    axis(2, 32767);
    axis(5, 32767);
    axis(3, 32767);
    t = START + 1100;
    for (int i = 0; i < 90; ++i, t += 16) {
        setTime(t);
        readInput(t);
        g_game->update();
    }
    const vec2 padMove = player->position - start;
    EXPECT_EQ(padMove.x, keyboardMove.x);
    EXPECT_EQ(padMove.y, keyboardMove.y);
    EXPECT_EQ(player->energy, keyboardEnergy);
    EXPECT_EQ((uint32_t)player->plasma->lastShot, plasmaShot);
    EXPECT_EQ((uint32_t)player->laser->lastShot, laserShot);
}

TEST_F(GamepadControlTest, APulledTriggerDoesNotEndAPauseAndAClickDoes) {
    describeXbox();
    axis(2, -32768);
    axis(5, -32768);
    readInput(1000);
    g_pause.enter(1000);
    // The right trigger holds the left button in the snapshot.
    axis(5, 32767);
    readInput(1016);
    ASSERT_TRUE(Orvel::mousePressed(1));
    EXPECT_TRUE(g_gamepad.holdsButton(1));
    g_pause.update(1016);
    EXPECT_TRUE(g_pause.paused);
    axis(5, -32768);
    readInput(1032);
    g_pause.update(1032);
    EXPECT_TRUE(g_pause.paused);
    // A click of the mouse's own left button.
    readInput(1048, LEFT_BUTTON);
    EXPECT_FALSE(g_gamepad.holdsButton(1));
    g_pause.update(1048);
    EXPECT_FALSE(g_pause.paused);
    g_pause.leave(1048);
}

TEST_F(GamepadControlTest, StartStillEndsAPause) {
    describeXbox();
    readInput(1000);
    g_pause.enter(1000);
    button(7, true);
    readInput(1016);
    g_pause.update(1016);
    EXPECT_FALSE(g_pause.paused);
    g_pause.leave(1016);
}

TEST_F(GamepadControlTest, ThePauseNamesThePadsButtonsWhenThePadWasUsedLast) {
    describeXbox();
    // Both triggers at rest.
    axis(2, -32768);
    axis(5, -32768);
    readInput(1000);
    EXPECT_FALSE(g_gamepad.padLast);
    g_pause.drawOverlay();
    EXPECT_STREQ(g_pause.hintLine()->text.getCString(), "P to resume, Escape to quit");
    // The left stick steers.
    axis(0, -32768);
    readInput(1016);
    EXPECT_TRUE(g_gamepad.padLast);
    g_pause.drawOverlay();
    EXPECT_STREQ(g_pause.hintLine()->text.getCString(), "Start to resume, hold Back to quit");
    // The stick at rest changes nothing; a key pressed does.
    axis(0, 0);
    readInput(1032);
    EXPECT_TRUE(g_gamepad.padLast);
    readInput(1048, 0, 640, 360, SDLK_w);
    EXPECT_FALSE(g_gamepad.padLast);
    g_pause.drawOverlay();
    EXPECT_STREQ(g_pause.hintLine()->text.getCString(), "P to resume, Escape to quit");
    // The pad's trigger, then the mouse moved.
    axis(5, 32767);
    readInput(1064);
    EXPECT_TRUE(g_gamepad.padLast);
    axis(5, -32768);
    readInput(1080, 0, 700, 300);
    EXPECT_FALSE(g_gamepad.padLast);
}

TEST_F(GamepadControlTest, TheDpadSteersAsTheLeftStickDoes) {
    describeXbox();
    hat(SDL_HAT_LEFTDOWN);
    readInput(1000);
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    EXPECT_TRUE(Orvel::keyDown(SDLK_s));
    EXPECT_FALSE(Orvel::keyDown(SDLK_w));
    EXPECT_FALSE(Orvel::keyDown(SDLK_d));
    EXPECT_TRUE(g_gamepad.padLast);
    // The stick and the d-pad together hold the keys of both.
    axis(0, 32767);
    readInput(1016);
    EXPECT_TRUE(Orvel::keyDown(SDLK_d));
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    axis(0, 0);
    hat(SDL_HAT_CENTERED);
    readInput(1032);
    for (int key : {SDLK_w, SDLK_a, SDLK_s, SDLK_d}) EXPECT_FALSE(Orvel::keyDown(key)) << key;
}

TEST_F(GamepadControlTest, TheDpadChoosesAndChangesTheSettingsWhilePaused) {
    describeXbox();
    const Settings before = g_settings;
    g_settings = Settings();
    SettingsPanel panel(nullptr);
    g_pause.panel = &panel;
    readInput(1000);
    g_pause.enter(1000);
    hat(SDL_HAT_DOWN);
    readInput(1050);
    g_pause.update(1050);
    EXPECT_EQ(panel.chosen(), SettingsPanel::EFFECTS_VOLUME);
    hat(SDL_HAT_CENTERED);
    readInput(1100);
    g_pause.update(1100);
    hat(SDL_HAT_LEFT);
    readInput(1150);
    g_pause.update(1150);
    EXPECT_EQ(g_settings.effectsVolume, Settings::VOLUME_MAX - 1);
    EXPECT_TRUE(g_pause.paused);
    g_pause.leave(1150);
    g_pause.panel = nullptr;
    g_settings = before;
    applyVolumes();
}

// The settings under "Paused": lines chosen and changed with the keys, the mouse and the pad's
// stick, every change applied and saved at once; P, Start or a click off the panel resumes.

#include "game/desktop/SettingsPanel.h"

#include <SDL/SDL_keysym.h>
#include <SDL/SDL_mixer.h>

#include "engine/PauseClock.h"
#include "game/Pause.h"
#include "game/SoundEffects.h"
#include "game/desktop/Settings.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameSession.h"
#include "tests/support/PlayerHome.h"

using namespace testing_support;
using orvel::Orvel;

namespace {

class SettingsPanelTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
        saved = g_settings;
        g_settings = Settings();
        orvel::PauseClock::reset();
        g_pause.panel = &panel;
        runlevel = RUNLEVEL_GAME;
        g_pause.enter(real);
    }
    void TearDown() override {
        g_pause.leave(real);
        g_pause.panel = nullptr;
        orvel::PauseClock::reset();
        runlevel = RUNLEVEL_MENU;
        g_settings = saved;
        Mix_VolumeMusic(MIX_MAX_VOLUME);
        SessionTest::TearDown();
    }
    // One paused frame with `key` down (-1 none), `buttons` and the pointer at (x, y); then a
    // frame with nothing pressed, so that the next press is a new one.
    void tap(int key, uint32_t buttons = 0, int x = 100, int y = 100) {
        frame(key, buttons, x, y);
        frame(-1, 0, x, y);
    }
    void frame(int key, uint32_t buttons, int x, int y) {
        real += 50;
        setInput(buttons, x, y, key);
        g_pause.update(real);
    }
    std::string savedFile() const { return fileContents(home.configHome() + "/nightvector/settings"); }
    // The panel's line `line`, at its middle.
    static int lineY(int line) {
        return (int)(SettingsPanel::TOP + SettingsPanel::LINE_STEP * (float)line + SettingsPanel::LINE_STEP / 2);
    }

    PlayerHome home;
    SettingsFile file{home.configHome() + "/nightvector/settings"};
    SettingsPanel panel{&file};
    Settings saved;
    uint32_t real = START;
};

} // namespace

TEST_F(SettingsPanelTest, UpAndDownChooseTheLineAndGoRound) {
    EXPECT_EQ(panel.chosen(), SettingsPanel::MUSIC_VOLUME);
    tap(SDLK_DOWN);
    EXPECT_EQ(panel.chosen(), SettingsPanel::EFFECTS_VOLUME);
    tap(SDLK_s);
    EXPECT_EQ(panel.chosen(), SettingsPanel::DISPLAY);
    tap(SDLK_w);
    tap(SDLK_UP);
    tap(SDLK_UP);
    EXPECT_EQ(panel.chosen(), SettingsPanel::FLASHES);
    tap(SDLK_DOWN);
    EXPECT_EQ(panel.chosen(), SettingsPanel::MUSIC_VOLUME);
    EXPECT_TRUE(g_pause.paused);
}

TEST_F(SettingsPanelTest, LeftAndRightMoveAVolumeWithinZeroToTenAndTheMixerHearsItAtOnce) {
    tap(SDLK_LEFT);
    EXPECT_EQ(g_settings.musicVolume, 9);
    // 9 of 10 of the music's level, 0.4 of the mixer's 128: 46.08.
    EXPECT_EQ(Mix_VolumeMusic(-1), 46);
    for (int i = 0; i < 12; ++i) tap(SDLK_a);
    EXPECT_EQ(g_settings.musicVolume, 0);
    EXPECT_EQ(Mix_VolumeMusic(-1), 0);
    tap(SDLK_d);
    tap(SDLK_RIGHT);
    EXPECT_EQ(g_settings.musicVolume, 2);
    tap(SDLK_DOWN);
    tap(SDLK_LEFT);
    EXPECT_EQ(g_settings.effectsVolume, 9);
    EXPECT_TRUE(g_pause.paused);
}

TEST_F(SettingsPanelTest, EveryChangeIsSavedAtOnce) {
    tap(SDLK_LEFT);
    EXPECT_EQ(savedFile(), "nightvector settings 1\n"
                           "music-volume = 9\n"
                           "effects-volume = 10\n"
                           "display = fullscreen\n"
                           "screen-shake = on\n"
                           "flashes = full\n"
                           "frame-cap = display\n");
    tap(SDLK_DOWN);
    tap(SDLK_DOWN);
    tap(SDLK_DOWN);
    tap(SDLK_RETURN);
    tap(SDLK_DOWN);
    tap(SDLK_RIGHT);
    EXPECT_FALSE(g_settings.screenShake);
    EXPECT_TRUE(g_settings.softFlashes);
    EXPECT_EQ(savedFile(), "nightvector settings 1\n"
                           "music-volume = 9\n"
                           "effects-volume = 10\n"
                           "display = fullscreen\n"
                           "screen-shake = off\n"
                           "flashes = soft\n"
                           "frame-cap = display\n");
}

TEST_F(SettingsPanelTest, ThePointerChoosesTheLineUnderItAndClicksChangeIt) {
    const int x = (int)SettingsPanel::VALUE_X;
    // Moved onto the flashes line.
    frame(-1, 0, x, lineY(SettingsPanel::FLASHES));
    EXPECT_EQ(panel.chosen(), SettingsPanel::FLASHES);
    // A left click on the effects line: chosen, and onwards (10 stays 10).
    tap(-1, LEFT_BUTTON, x, lineY(SettingsPanel::EFFECTS_VOLUME));
    EXPECT_EQ(panel.chosen(), SettingsPanel::EFFECTS_VOLUME);
    EXPECT_EQ(g_settings.effectsVolume, 10);
    // A right click: back.
    tap(-1, RIGHT_BUTTON, x, lineY(SettingsPanel::EFFECTS_VOLUME));
    EXPECT_EQ(g_settings.effectsVolume, 9);
    tap(-1, LEFT_BUTTON, x, lineY(SettingsPanel::SCREEN_SHAKE));
    EXPECT_FALSE(g_settings.screenShake);
    // Clicks on the panel do not resume.
    EXPECT_TRUE(g_pause.paused);
}

TEST_F(SettingsPanelTest, AClickOffThePanelResumes) {
    tap(-1, LEFT_BUTTON, 640, 200);
    EXPECT_FALSE(g_pause.paused);
    EXPECT_TRUE(g_settings == Settings());
}

TEST_F(SettingsPanelTest, PResumesAndThePadsStartResumesWithoutChangingTheChosenLine) {
    tap(SDLK_DOWN);
    tap(SDLK_DOWN);
    tap(SDLK_DOWN);
    // Start holds Return and P together.
    real += 50;
    orvel::Orvel::GEvent* e = orvel::Orvel::events;
    for (uint32_t& w : e->keysLive) w = 0;
    e->keysLive[SDLK_RETURN / 32] |= 1u << (SDLK_RETURN % 32);
    e->keysLive[SDLK_p / 32] |= 1u << (SDLK_p % 32);
    e->update();
    g_pause.update(real);
    EXPECT_FALSE(g_pause.paused);
    EXPECT_TRUE(g_settings.screenShake);
}

TEST_F(SettingsPanelTest, TheLinesShowTheirValues) {
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::MUSIC_VOLUME), "< 10 >");
    // The mode the window is in: the test's window is no full screen.
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::DISPLAY), "Window");
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::SCREEN_SHAKE), "On");
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::FLASHES), "Full");
    g_settings.fullscreen = false;
    g_settings.screenShake = false;
    g_settings.softFlashes = true;
    g_settings.effectsVolume = 0;
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::EFFECTS_VOLUME), "< 0 >");
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::SCREEN_SHAKE), "Off");
    EXPECT_EQ(SettingsPanel::valueText(SettingsPanel::FLASHES), "Soft");
    EXPECT_STREQ(SettingsPanel::label(SettingsPanel::EFFECTS_VOLUME), "Effects volume");
}

TEST_F(SettingsPanelTest, AChangeAsksForThePictureAgain) {
    g_pause.pictureShown();
    EXPECT_FALSE(g_pause.pictureDue());
    tap(SDLK_DOWN);
    EXPECT_TRUE(g_pause.pictureDue());
    g_pause.pictureShown();
    frame(-1, 0, 100, 100);
    EXPECT_FALSE(g_pause.pictureDue());
}

namespace {

// Counts the effects started.
class ChimeCounter : public SoundOutput {
public:
    uint32_t length(SoundEffect, int) const override { return 400; }
    void play(const SoundPlay& p) override {
        if (p.effect == SFX_POWERUP_COLLECTED) ++chimes;
    }
    void stop(int, int) override {}
    void fadeOutAll(int) override {}
    void pauseAll() override {}
    void resumeAll() override {}
    int chimes = 0;
};

} // namespace

TEST_F(SettingsPanelTest, EachChangeOfTheEffectsVolumeIsHeardAsAChime) {
    ChimeCounter sound;
    g_sound.setOutput(&sound);
    tap(SDLK_LEFT);
    EXPECT_EQ(sound.chimes, 0);
    tap(SDLK_DOWN);
    EXPECT_EQ(sound.chimes, 0);
    tap(SDLK_LEFT);
    tap(SDLK_LEFT);
    tap(SDLK_RIGHT);
    EXPECT_EQ(sound.chimes, 3);
    EXPECT_EQ(g_settings.effectsVolume, 9);
    g_sound.setOutput(nullptr);
}

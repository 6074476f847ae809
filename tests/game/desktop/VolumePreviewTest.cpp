// A volume heard while it is set under "Paused": the held music plays on for 1500 ms of real time
// after the last change of its volume, and a change of the effects' volume plays one chime.

#include "game/desktop/VolumePreview.h"

#include <vector>

#include <SDL/SDL_mixer.h>

#include "game/Main.h"
#include "game/SoundEffects.h"
#include "tests/support/AudioDirectory.h"

namespace {

// Keeps every effect started.
class PlayRecorder : public SoundOutput {
public:
    uint32_t length(SoundEffect, int) const override { return 400; }
    void play(const SoundPlay& p) override { plays.push_back(p); }
    void stop(int, int) override {}
    void fadeOutAll(int) override {}
    void pauseAll() override {}
    void resumeAll() override {}
    std::vector<SoundPlay> plays;
};

// The music loaded on SDL's dummy device, playing, then held as a pause holds it.
class VolumePreviewTest : public testing_support::AudioDirectoryTest {
protected:
    void SetUp() override {
        AudioDirectoryTest::SetUp();
        linkSound("music1.ogg");
        ASSERT_TRUE(loadMusic());
        ASSERT_NE(music, nullptr);
        ASSERT_EQ(Mix_PlayMusic(music, -1), 0);
        Mix_PauseMusic();
        ASSERT_EQ(Mix_PausedMusic(), 1);
    }
};

} // namespace

TEST_F(VolumePreviewTest, TheHeldMusicPlaysOnUntil1500msAfterTheLastChange) {
    VolumePreview preview;
    preview.update(1000);
    EXPECT_EQ(Mix_PausedMusic(), 1);
    preview.musicChanged(1000);
    EXPECT_TRUE(preview.musicPlaying());
    EXPECT_EQ(Mix_PausedMusic(), 0);
    preview.update(2000);
    EXPECT_EQ(Mix_PausedMusic(), 0);
    // A second change starts the time over.
    preview.musicChanged(2000);
    preview.update(3499);
    EXPECT_EQ(Mix_PausedMusic(), 0);
    preview.update(3500);
    EXPECT_EQ(Mix_PausedMusic(), 1);
    EXPECT_FALSE(preview.musicPlaying());
}

TEST_F(VolumePreviewTest, AfterThePauseEndedNothingHoldsTheMusicAgain) {
    VolumePreview preview;
    preview.musicChanged(1000);
    // The pause ends: it resumes the music itself.
    preview.stop();
    preview.update(5000);
    EXPECT_EQ(Mix_PausedMusic(), 0);
}

TEST_F(VolumePreviewTest, WithoutMusicAChangeDoesNothing) {
    Mix_HaltMusic();
    Mix_FreeMusic(music);
    music = nullptr;
    VolumePreview preview;
    preview.musicChanged(1000);
    EXPECT_FALSE(preview.musicPlaying());
    preview.update(3000);
}

TEST_F(VolumePreviewTest, AnEffectsChangePlaysOneChimeCentred) {
    PlayRecorder recorder;
    g_sound.setOutput(&recorder);
    VolumePreview preview;
    preview.effectsChanged();
    ASSERT_EQ(recorder.plays.size(), 1u);
    EXPECT_EQ(recorder.plays[0].effect, SFX_POWERUP_COLLECTED);
    EXPECT_EQ(recorder.plays[0].variant, 0);
    EXPECT_FALSE(recorder.plays[0].loop);
    EXPECT_EQ(recorder.plays[0].left, 255);
    EXPECT_EQ(recorder.plays[0].right, 255);
    // Again for every change, though the game's clock stands still while paused.
    preview.effectsChanged();
    preview.effectsChanged();
    preview.effectsChanged();
    EXPECT_EQ(recorder.plays.size(), 4u);
    g_sound.setOutput(nullptr);
}

// The effects on SDL_mixer: loading from sfx/ (silently, or one line per broken file), the pitched
// copies, the channel calls, and no mixer call at all without an audio device. Runs on SDL's
// dummy audio driver.

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "game/Main.h"
#include "game/MixerOutput.h"
#include "game/SoundEffects.h"
#include "game/desktop/Settings.h"
#include "tests/support/AudioDirectory.h"

namespace {

// Calls into the mixer that the effects make, counted at link time.
int mixerCalls = 0;

} // namespace

extern "C" {
int __real_Mix_QuerySpec(int* frequency, Uint16* format, int* channels);
int __wrap_Mix_QuerySpec(int* frequency, Uint16* format, int* channels) {
    ++mixerCalls;
    return __real_Mix_QuerySpec(frequency, format, channels);
}
int __real_Mix_AllocateChannels(int n);
int __wrap_Mix_AllocateChannels(int n) {
    ++mixerCalls;
    return __real_Mix_AllocateChannels(n);
}
Mix_Chunk* __real_Mix_LoadWAV_RW(SDL_RWops* src, int freesrc);
Mix_Chunk* __wrap_Mix_LoadWAV_RW(SDL_RWops* src, int freesrc) {
    ++mixerCalls;
    return __real_Mix_LoadWAV_RW(src, freesrc);
}
int __real_Mix_PlayChannelTimed(int channel, Mix_Chunk* chunk, int loops, int ticks);
int __wrap_Mix_PlayChannelTimed(int channel, Mix_Chunk* chunk, int loops, int ticks) {
    ++mixerCalls;
    return __real_Mix_PlayChannelTimed(channel, chunk, loops, ticks);
}
int __real_Mix_FadeOutChannel(int channel, int ms);
int __wrap_Mix_FadeOutChannel(int channel, int ms) {
    ++mixerCalls;
    return __real_Mix_FadeOutChannel(channel, ms);
}
int __real_Mix_SetPanning(int channel, Uint8 left, Uint8 right);
int __wrap_Mix_SetPanning(int channel, Uint8 left, Uint8 right) {
    ++mixerCalls;
    return __real_Mix_SetPanning(channel, left, right);
}
}

namespace {

const char* const EFFECT_FILES[] = {
    "plasma_shot.wav",    "laser_start.wav",     "laser_loop.wav",      "enemy_shot.wav",
    "plasma_spark.wav",   "laser_burn.wav",      "explosion_small.wav", "explosion_large.wav",
    "player_hit.wav",     "player_death.wav",    "respawn.wav",         "powerup_appear.wav",
    "powerup_collect.wav", "meganuke.wav",       "wave_banner.wav",     "game_over.wav",
};

// Sample frames in the data chunk of a mono 16-bit WAV file, read from its header.
uint32_t wavFrames(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    char tag[4];
    uint32_t size = 0;
    in.seekg(12);
    while (in.read(tag, 4) && in.read(reinterpret_cast<char*>(&size), 4)) {
        if (std::string(tag, 4) == "data") return size / 2;
        in.seekg(size + (size & 1), std::ios::cur);
    }
    return 0;
}

// ms of `frames` at 44.1 kHz, rounded up.
uint32_t millis(uint64_t frames) {
    return (uint32_t)((frames * 1000 + 44099) / 44100);
}

// Audio in a working directory of its own (see AudioDirectoryTest), a fresh MixerOutput, and a
// count of the mixer calls made from the start of each test.
class MixerOutputTest : public testing_support::AudioDirectoryTest {
protected:
    void SetUp() override {
        AudioDirectoryTest::SetUp();
        mixerCalls = 0;
    }
    void TearDown() override {
        delete output;
        AudioDirectoryTest::TearDown();
    }

    static void openAudio() {
        ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_AUDIO), 0);
        ASSERT_EQ(Mix_OpenAudio(44100, AUDIO_S16LSB, 2, 1024), 0);
    }
    // Links the repository's effects into sfx/, all but `except`.
    void linkEffects(const std::string& except = "") {
        for (const char* name : EFFECT_FILES)
            if (except != name) linkSound(name);
    }
    // What load wrote on standard error.
    std::string errorsOfLoad() {
        output = new MixerOutput();
        testing::internal::CaptureStderr();
        output->load("sfx");
        return testing::internal::GetCapturedStderr();
    }

    MixerOutput* output = nullptr;
};

} // namespace

TEST_F(MixerOutputTest, EveryEffectLoadsWithoutAWordAtTheLengthOfItsFile) {
    openAudio();
    linkEffects();
    EXPECT_EQ(errorsOfLoad(), "");
    EXPECT_EQ(Mix_AllocateChannels(-1), SoundEffects::CHANNELS);
    for (int e = 0; e < SFX_COUNT; ++e) {
        const uint32_t frames = wavFrames(repository + "/sfx/" + EFFECT_FILES[e]);
        ASSERT_GT(frames, 0u) << EFFECT_FILES[e];
        // The variant at the file's own speed.
        const EffectSettings& s = SoundEffects::settings((SoundEffect)e);
        int own = 0;
        while (s.pitches[own] != 1.0f) ++own;
        EXPECT_EQ(output->length((SoundEffect)e, own), millis(frames)) << EFFECT_FILES[e];
        ASSERT_NE(output->chunk((SoundEffect)e, own), nullptr);
        // Stereo 16-bit on the device: four bytes a frame.
        EXPECT_EQ(output->chunk((SoundEffect)e, own)->alen, frames * 4) << EFFECT_FILES[e];
    }
}

TEST_F(MixerOutputTest, PitchedCopiesAreTheFileResampledLinearly) {
    openAudio();
    linkEffects();
    EXPECT_EQ(errorsOfLoad(), "");
    const EffectSettings& s = SoundEffects::settings(SFX_POWERUP_COLLECTED);
    const Mix_Chunk* file = output->chunk(SFX_POWERUP_COLLECTED, 1);
    ASSERT_EQ(s.pitches[1], 1.0f);
    const uint32_t frames = file->alen / 4;
    const Sint16* in = reinterpret_cast<const Sint16*>(file->abuf);
    for (unsigned v = 0; v < s.variants; ++v) {
        const Mix_Chunk* c = output->chunk(SFX_POWERUP_COLLECTED, (int)v);
        const double ratio = s.pitches[v];
        const uint32_t expectedFrames = ratio == 1.0 ? frames : (uint32_t)((double)(frames - 1) / ratio);
        ASSERT_EQ(c->alen, expectedFrames * 4) << v;
        EXPECT_EQ(output->length(SFX_POWERUP_COLLECTED, (int)v), millis(expectedFrames)) << v;
        const Sint16* pitched = reinterpret_cast<const Sint16*>(c->abuf);
        for (uint32_t i = 0; i < expectedFrames; i += 997) {
            const double at = i * ratio;
            const uint32_t j = (uint32_t)at;
            for (int side = 0; side < 2; ++side) {
                const double a = in[2 * j + side], b = in[2 * (j + 1) + side];
                EXPECT_EQ(pitched[2 * i + side], (Sint16)std::lround(a + (b - a) * (at - j))) << v << " " << i;
            }
        }
    }
    // Explosions: the file and three other speeds.
    EXPECT_EQ(output->chunk(SFX_SMALL_EXPLOSION, 0)->alen, wavFrames(repository + "/sfx/explosion_small.wav") * 4);
    EXPECT_NE(output->chunk(SFX_SMALL_EXPLOSION, 1), output->chunk(SFX_SMALL_EXPLOSION, 0));
    EXPECT_GT(output->length(SFX_SMALL_EXPLOSION, 3), output->length(SFX_SMALL_EXPLOSION, 0));
    EXPECT_LT(output->length(SFX_SMALL_EXPLOSION, 2), output->length(SFX_SMALL_EXPLOSION, 0));
}

TEST_F(MixerOutputTest, MissingEffectIsReportedAndStaysSilent) {
    openAudio();
    linkEffects("plasma_shot.wav");
    EXPECT_EQ(errorsOfLoad(), "Could not load sfx/plasma_shot.wav: No such file or directory\n");
    EXPECT_EQ(output->length(SFX_PLASMA_SHOT, 0), 0u);
    EXPECT_EQ(output->chunk(SFX_PLASMA_SHOT, 0), nullptr);
    EXPECT_GT(output->length(SFX_LASER_START, 0), 0u);
    // Asked anyway, it starts nothing.
    output->play(SoundPlay{3, SFX_PLASMA_SHOT, 0, false, 128, 255, 255});
    EXPECT_EQ(Mix_Playing(3), 0);
}

TEST_F(MixerOutputTest, CorruptEffectsAreReportedOneLineEachAndStaySilent) {
    openAudio();
    linkEffects("explosion_small.wav");
    // Random bytes, and a WAV header whose format chunk claims a codec that does not exist.
    std::mt19937 random(20261123);
    std::string noise(8192, '\0');
    for (char& c : noise) c = (char)(random() & 0xff);
    std::ofstream("sfx/explosion_small.wav", std::ios::binary) << noise;
    ASSERT_EQ(unlink("sfx/game_over.wav"), 0);
    std::string header("RIFF\x24\x00\x00\x00WAVEfmt \x10\x00\x00\x00\x63\x00\x01\x00\x44\xac\x00\x00\x88\x58\x01\x00"
                       "\x02\x00\x10\x00" "data" "\x00\x00\x00\x00",
                       44);
    std::ofstream("sfx/game_over.wav", std::ios::binary) << header;
    const std::string errors = errorsOfLoad();
    EXPECT_EQ(errors, "Could not load sfx/explosion_small.wav: Unrecognized sound file type\n"
                      "Could not load sfx/game_over.wav: Unknown WAVE data format: 0x0063\n");
    EXPECT_EQ(output->length(SFX_SMALL_EXPLOSION, 0), 0u);
    EXPECT_EQ(output->length(SFX_SMALL_EXPLOSION, 3), 0u);
    EXPECT_EQ(output->length(SFX_GAME_OVER, 0), 0u);
    EXPECT_GT(output->length(SFX_LARGE_EXPLOSION, 0), 0u);
}

TEST_F(MixerOutputTest, PlaysStopsAndFadesOnTheChannelsItIsGiven) {
    openAudio();
    // No mixing from here on: a fade advances only as the device mixes, so a fade begun on one
    // line is still running on the next however busy the machine is.
    SDL_PauseAudio(1);
    linkEffects();
    EXPECT_EQ(errorsOfLoad(), "");
    output->play(SoundPlay{9, SFX_LARGE_EXPLOSION, 2, false, 77, 64, 255});
    EXPECT_EQ(Mix_Playing(9), 1);
    EXPECT_EQ(Mix_Volume(9, -1), 77);
    EXPECT_EQ(Mix_GetChunk(9), output->chunk(SFX_LARGE_EXPLOSION, 2));
    output->play(SoundPlay{0, SFX_LASER_HUM, 0, true, 58, 255, 255});
    EXPECT_EQ(Mix_Playing(0), 1);
    output->stop(0, 120);
    EXPECT_EQ(Mix_FadingChannel(0), MIX_FADING_OUT);
    EXPECT_EQ(Mix_FadingChannel(9), MIX_NO_FADING);
    // A new sound on a busy channel replaces the old one.
    output->play(SoundPlay{9, SFX_PLAYER_HIT, 0, false, 128, 255, 255});
    EXPECT_EQ(Mix_GetChunk(9), output->chunk(SFX_PLAYER_HIT, 0));
    EXPECT_EQ(Mix_Volume(9, -1), 128);
    output->fadeOutAll(950);
    EXPECT_EQ(Mix_FadingChannel(9), MIX_FADING_OUT);
}

TEST_F(MixerOutputTest, StartingWithADeviceLoadsTheEffectsSilently) {
    linkEffects();
    linkSound("music1.ogg");
    testing::internal::CaptureStderr();
    startAudio();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(g_sound.output(), nullptr);
    EXPECT_GT(g_sound.output()->length(SFX_GAME_OVER, 0), 0u);
    EXPECT_EQ(Mix_AllocateChannels(-1), SoundEffects::CHANNELS);
    int frequency = 0, channels = 0;
    Uint16 format = 0;
    ASSERT_EQ(Mix_QuerySpec(&frequency, &format, &channels), 1);
    EXPECT_EQ(frequency, 44100);
    EXPECT_EQ(format, AUDIO_S16LSB);
    EXPECT_EQ(channels, 2);
}

TEST_F(MixerOutputTest, TheEffectsGainScalesEveryVolumePlayedFromThen) {
    openAudio();
    SDL_PauseAudio(1);
    linkEffects();
    EXPECT_EQ(errorsOfLoad(), "");
    EXPECT_EQ(output->gain(), 1.0f);
    output->setGain(0.5f);
    output->play(SoundPlay{9, SFX_LARGE_EXPLOSION, 0, false, 77, 255, 255});
    // 38.5 rounds away from zero.
    EXPECT_EQ(Mix_Volume(9, -1), 39);
    output->setGain(0.0f);
    output->play(SoundPlay{9, SFX_PLAYER_HIT, 0, false, 128, 255, 255});
    EXPECT_EQ(Mix_Volume(9, -1), 0);
}

TEST_F(MixerOutputTest, StartingTheAudioSetsTheVolumesTheSettingsHold) {
    linkEffects();
    linkSound("music1.ogg");
    const Settings saved = g_settings;
    g_settings.musicVolume = 5;
    g_settings.effectsVolume = 3;
    startAudio();
    g_settings = saved;
    // Half of the music's level, 0.4 of the mixer's 128: 25.6.
    EXPECT_EQ(Mix_VolumeMusic(-1), 26);
    ASSERT_NE(g_sound.output(), nullptr);
    EXPECT_FLOAT_EQ(static_cast<MixerOutput*>(g_sound.output())->gain(), 0.3f);
}

TEST_F(MixerOutputTest, AtTheDefaultVolumesTheEffectsPlayAsLoadedAndTheMusic8dBUnder) {
    linkEffects();
    linkSound("music1.ogg");
    ASSERT_TRUE(g_settings == Settings());
    startAudio();
    // 0.4 of the mixer's 128: 51.2.
    EXPECT_EQ(Mix_VolumeMusic(-1), 51);
    EXPECT_EQ(static_cast<MixerOutput*>(g_sound.output())->gain(), 1.0f);
}

TEST_F(MixerOutputTest, WithoutADeviceNoMixerCallIsMadeForEffects) {
    linkEffects();
    linkSound("music1.ogg");
    setenv("SDL_AUDIODRIVER", "nosuchdevice", 1);
    testing::internal::CaptureStderr();
    startAudio();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not open audio: No available audio device\n");
    EXPECT_EQ(g_sound.output(), nullptr);
    // Events go nowhere.
    g_sound.play(SFX_WAVE_BANNER);
    g_sound.playAt(SFX_SMALL_EXPLOSION, orvel::vec2(0, 0));
    g_sound.hum(true);
    g_sound.fadeOutAll(950);
    EXPECT_EQ(mixerCalls, 0);
}

#include "game/MixerOutput.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>

#include "engine/String.h"

MixerOutput::MixerOutput()
    : files(), pitched(), buffers(), lengths(), frequency(MIX_DEFAULT_FREQUENCY), channelsPerFrame(2),
      sixteenBit(false), effectGain(1.0f) {}

MixerOutput::~MixerOutput() {
    freeAll();
}

void MixerOutput::freeAll() {
    for (int e = 0; e < SFX_COUNT; ++e) {
        for (unsigned v = 0; v < SoundEffects::MAX_VARIANTS; ++v) {
            if (pitched[e][v]) Mix_FreeChunk(pitched[e][v]);
            std::free(buffers[e][v]);
            pitched[e][v] = nullptr;
            buffers[e][v] = nullptr;
            lengths[e][v] = 0;
        }
        if (files[e]) Mix_FreeChunk(files[e]);
        files[e] = nullptr;
    }
}

void MixerOutput::load(const char* folder) {
    freeAll();
    Uint16 format = 0;
    if (!Mix_QuerySpec(&frequency, &format, &channelsPerFrame)) return;
    sixteenBit = format == AUDIO_S16SYS;
    Mix_AllocateChannels(SoundEffects::CHANNELS);

    for (int e = 0; e < SFX_COUNT; ++e) {
        const EffectSettings& s = SoundEffects::settings((SoundEffect)e);
        orvel::String path = folder;
        path += "/";
        path += s.file;
        // Opened here so that a file that cannot be opened is reported with the system's reason;
        // the mixer would only say that it got no source.
        FILE* file = fopen(path.getCString(), "rb");
        if (!file) {
            fprintf(stderr, "Could not load %s: %s\n", path.getCString(), strerror(errno));
            continue;
        }
        files[e] = Mix_LoadWAV_RW(SDL_RWFromFP(file, 1), 1);
        if (!files[e]) {
            fprintf(stderr, "Could not load %s: %s\n", path.getCString(), Mix_GetError());
            continue;
        }
        for (unsigned v = 0; v < s.variants; ++v) {
            // Without a 16-bit device every pitch plays the file as it is.
            if (s.pitches[v] != 1.0f && sixteenBit) pitched[e][v] = resampled(files[e], s.pitches[v], buffers[e][v]);
            lengths[e][v] = lengthOf(chunk((SoundEffect)e, (int)v));
        }
    }
}

uint32_t MixerOutput::lengthOf(const Mix_Chunk* c) const {
    const uint64_t frameBytes = (sixteenBit ? 2u : 1u) * (uint64_t)channelsPerFrame;
    const uint64_t frames = c->alen / frameBytes;
    return (uint32_t)((frames * 1000 + (uint64_t)frequency - 1) / (uint64_t)frequency);
}

Mix_Chunk* MixerOutput::resampled(const Mix_Chunk* source, float ratio, uint8_t*& buffer) const {
    const int width = channelsPerFrame;
    const Sint16* in = reinterpret_cast<const Sint16*>(source->abuf);
    const uint32_t inFrames = source->alen / (2u * (unsigned)width);
    if (inFrames < 2) return nullptr;
    // The last output frame still has a frame after it to lean towards.
    const uint32_t outFrames = (uint32_t)((double)(inFrames - 1) / ratio);
    if (outFrames == 0) return nullptr;
    const size_t bytes = (size_t)outFrames * 2u * (size_t)width;
    buffer = static_cast<uint8_t*>(std::malloc(bytes));
    if (!buffer) return nullptr;
    Sint16* out = reinterpret_cast<Sint16*>(buffer);
    for (uint32_t i = 0; i < outFrames; ++i) {
        const double at = (double)i * ratio;
        const uint32_t j = (uint32_t)at;
        const double f = at - (double)j;
        for (int c = 0; c < width; ++c) {
            const double a = in[j * width + c];
            const double b = in[(j + 1) * width + c];
            out[i * width + c] = (Sint16)std::lround(a + (b - a) * f);
        }
    }
    Mix_Chunk* c = Mix_QuickLoad_RAW(buffer, (Uint32)bytes);
    if (!c) {
        std::free(buffer);
        buffer = nullptr;
    }
    return c;
}

uint32_t MixerOutput::length(SoundEffect effect, int variant) const {
    return lengths[effect][variant];
}

void MixerOutput::play(const SoundPlay& p) {
    Mix_Chunk* c = chunk(p.effect, p.variant);
    if (!c) return;
    // Halting first also drops the channel's old panning; a sound at the centre needs none, so
    // the mixer's panning effect is only set up for placed sounds.
    Mix_HaltChannel(p.channel);
    Mix_Volume(p.channel, effectGain == 1.0f ? p.volume : (int)std::lround((float)p.volume * effectGain));
    if (p.left != 255 || p.right != 255) Mix_SetPanning(p.channel, p.left, p.right);
    Mix_PlayChannel(p.channel, c, p.loop ? -1 : 0);
}

void MixerOutput::stop(int channel, int ms) {
    Mix_FadeOutChannel(channel, ms);
}

void MixerOutput::fadeOutAll(int ms) {
    Mix_FadeOutChannel(-1, ms);
}

void MixerOutput::pauseAll() {
    Mix_Pause(-1);
}

void MixerOutput::resumeAll() {
    Mix_Resume(-1);
}

#include "game/desktop/VolumePreview.h"

#include <SDL/SDL_mixer.h>

#include "game/Main.h"
#include "game/SoundEffects.h"

VolumePreview::VolumePreview() : playing(false), since(0) {}

void VolumePreview::musicChanged(uint32_t realNow) {
    if (!music) return;
    if (!playing) Mix_ResumeMusic();
    playing = true;
    since = realNow;
}

void VolumePreview::effectsChanged() {
    // A short chime: heard at once, over before the next change would play it again.
    g_sound.play(SFX_POWERUP_COLLECTED, 0);
}

void VolumePreview::update(uint32_t realNow) {
    if (!playing || realNow - since < MUSIC_MS) return;
    playing = false;
    if (music) Mix_PauseMusic();
}

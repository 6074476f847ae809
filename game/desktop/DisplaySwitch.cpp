#include "game/desktop/DisplaySwitch.h"

#include <cstdio>

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"
#include "game/desktop/Settings.h"

using orvel::Orvel;

bool DisplaySwitch::altHeld() { return Orvel::keyDown(SDLK_LALT) || Orvel::keyDown(SDLK_RALT); }

bool DisplaySwitch::plainReturnPressed() { return Orvel::keyPressed(SDLK_RETURN) && !altHeld(); }

bool DisplaySwitch::requested() { return Orvel::keyPressed(SDLK_RETURN) && altHeld(); }

bool DisplaySwitch::toggle(SettingsFile* file) {
    const bool wanted = !Orvel::fullscreen;
    if (!Orvel::toggleFullscreen()) {
        fprintf(stderr, "Could not switch to %s: the display refused; staying %s\n",
                wanted ? "full screen" : "a window", wanted ? "in a window" : "in full screen");
        return false;
    }
    g_settings.fullscreen = Orvel::fullscreen;
    if (file) file->save(g_settings);
    return true;
}

// Opens the engine's window, prints its X window id on standard output, then runs frames
// until the engine ends the process. Exits with status 3 if that has not happened after
// about twenty seconds.

#include <cstdio>

#include <SDL/SDL.h>

#include "engine/Orvel.h"
#include "tests/support/XDriver.h"

using orvel::Orvel;

int main() {
    Orvel::init(0, 0, nullptr, false, true);
    printf("%lu\n", xdriver::sdlWindow());
    fflush(stdout);
    for (int frame = 0; frame < 2000; ++frame) {
        Orvel::update();
        SDL_Delay(10);
    }
    return 3;
}

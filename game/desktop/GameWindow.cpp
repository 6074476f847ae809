#include "game/desktop/GameWindow.h"

#include <cstdio>

#include <SDL/SDL.h>

#include "engine/Orvel.h"

using orvel::Orvel;

bool GameWindow::open(int width, int height, const char* caption, bool fullscreen) {
    Orvel::init(width, height, caption, fullscreen, true);
    if (!Orvel::window && fullscreen) {
        fprintf(stderr, "Could not start in full screen: the display refused (%s); playing in a window\n",
                SDL_GetError());
        // A second call opens only the window: SDL and the event thread are running already.
        Orvel::init(width, height, caption, false, true);
    }
    if (Orvel::window) return true;
    fprintf(stderr, "nightvector: cannot open a %d x %d OpenGL window: %s\n", Orvel::getScreenWidth(),
            Orvel::getScreenHeight(), SDL_GetError());
    return false;
}

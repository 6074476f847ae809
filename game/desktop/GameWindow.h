#pragma once
// The game's window: full screen where the display can give it, a window where it cannot.

class GameWindow {
public:
    GameWindow() = delete;

    // Opens the window through Orvel::init. Full screen that the display refuses (a screen
    // smaller than the picture) becomes a window, with one line on standard error; the settings
    // keep the player's choice for a display that can give it. False, with one line, when no
    // OpenGL window opens at all.
    static bool open(int width, int height, const char* caption, bool fullscreen);
};

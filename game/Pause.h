#pragma once
// Pausing play: P pauses a running game and P or a mouse click off the settings panel resumes
// it; losing input focus or being minimised pauses too, and getting focus back does not resume.
// While paused the game clock is held (engine PauseClock), the game's logic does not run, the
// music and the sound effects are paused (a volume being set is heard all the same), and the
// frozen picture stays on screen under a dim layer with "Paused", a hint and the settings. The
// main loop then draws only when the picture may be gone or the settings changed, and otherwise
// waits, about twenty times a second, for input.

#include <cstdint>

#include "scene/Fader.h"

class DirectScene2D;
class SettingsPanel;
class Text;

class Pause {
public:
    // ms per frame while paused: about 20 frames a second.
    static const uint32_t PAUSED_FRAME_MS = 50;
    // Opacity of the black layer over the frozen picture.
    static constexpr float DIM = 0.6f;
    // The hint under "Paused": the keys, or the pad's buttons when the pad was used last.
    static const char* const KEYBOARD_HINT;
    static const char* const PAD_HINT;

    Pause();

    // Once a frame in play (runlevel 2), after Orvel's update and before the game's logic:
    // pauses a running game on P or on a loss of focus, resumes on P or a mouse click off the
    // settings panel (a button the pad holds for a trigger is none); the panel takes the rest of
    // the input. The intro and the game-over screen never pause.
    // `realNow` is SDL's tick count, which runs on through a pause.
    void update(uint32_t realNow);
    // Holds the clock, pauses the music and the effects and asks for the paused picture.
    void enter(uint32_t realNow);
    // Lets the clock run on and resumes the music and the effects.
    void leave(uint32_t realNow);

    // The hint as the overlay last drew it; null before the first pause.
    const Text* hintLine() const { return hint; }
    // The paused picture has to be drawn this frame: just paused, or the window was uncovered
    // or got its focus back.
    bool pictureDue() const { return paused && redraw; }
    // Draws the dim layer and the two lines over whatever the frame drew so far.
    void drawOverlay();
    // The picture was drawn and shown.
    void pictureShown() { redraw = false; }

    // The settings under the lines; none until the program gives it one (tests pause without).
    SettingsPanel* panel;
    bool paused;

private:
    // The overlay's own scene root and its lines, made at the first pause (the fonts are loaded
    // by then) and kept for the next ones.
    void buildOverlay();

    bool redraw;
    Fader dim;
    DirectScene2D* overlay;
    Text* title;
    Text* hint;
};

extern Pause g_pause;

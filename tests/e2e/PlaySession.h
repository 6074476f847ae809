#pragma once
// Steps the end-to-end play tests share: into play, a screenshot read back, out with Escape.

#include "tests/support/GameProcess.h"

namespace e2e {

// Waits for the start-up, puts the pointer at (mouseX, mouseY), leaves the intro with Return and
// waits `settleMs` (one second to black and half a second into the game take 1.5 s of it). A
// fatal failure when the game is gone.
void enterPlay(GameProcess& game, int mouseX, int mouseY, int settleMs = 2000);
// Holds Escape and expects the game to end with status 0.
void quitWithEscape(GameProcess& game);
// Takes the next screenshot with F1 and reads it back; false unless it is a whole 1280 x 720
// screen. `number` is the last screenshot's number; a press the game missed is repeated, and
// whichever file appears first is taken. Files from earlier presses that were only slow are
// skipped.
bool nextScreenshot(GameProcess& game, const Surroundings& dir, int& number, Image& image);

} // namespace e2e

#pragma once
// A fingerprint of the game's state after an update, for telling whether a replay runs as the
// game ran: every actor's place, turn, size and hit points in list order, the player's motion,
// energy and timers, the score, the wave, the lives and the wave timer, and where both random
// generators stand. The scene's drawing, the particles and the sound stay out of it: they do
// not change what happens next.

#include <cstdint>

class Game;

uint64_t stateHash(const Game& game);

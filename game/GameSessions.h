#pragma once
// One game after another in the same run: the whole of a session taken down, and a fresh one
// started as the first game of a run starts.

class GameSessions {
public:
    GameSessions() = delete;

    // ms over which the voices of the session that ends fade out when the next one begins.
    static const int VOICE_FADE_MS = 200;

    // Deletes g_game and everything its session made: the HUD pieces, every object on its lists
    // (each takes itself off them), its particle systems, starfield and texts; sets g_game to
    // null. Nothing when there is no game. g_game is the session being ended while the objects
    // go, since their destructors reach it.
    static void end();

    // Starts a new session in place of none: both random generators seeded from `seed`, the
    // world's camera back where it stands before the first game, the sound's voices faded and
    // forgotten, the gamepad's aim and Back timer reset; then a new g_game, initialised, whose
    // guns take their particles from it. The pause and the held clock are left as they are.
    static void begin(int seed);
};

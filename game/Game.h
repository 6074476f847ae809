#pragma once
// One game session: its actors, waves, camera and HUD.

class Game {
public:
    Game();
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    // Builds the session's world and HUD.
    void init();
    // One frame of play.
    void update();
};

#pragma once
// A number on the HUD that rolls up to its value with an ease-out whenever points are added.

#include <cstdint>

#include "engine/String.h"
#include "game/Actor.h"

class Text;

// An actor only so that Game::update animates it; its drawable is its own Text node.
// The score box's counter holds the game's score: enemies and powerups call addValue().
class ScoreCounter : public Actor {
public:
    // Position, radius and rotation 0, scale 1; the text shows "0" in font_big at size 15.
    ScoreCounter();
    // Deletes the text node (which unlinks itself from the scene).
    ~ScoreCounter() override;

    // Adds v to the value. A roll already running is stretched by a shrinking step instead of
    // restarting; otherwise a 500 ms roll starts from the current value.
    void addValue(int v);
    // Actor housekeeping, then the text shows the rolled value; hot spot TopLeft.
    void update() override;

    orvel::String prefix; // put before the number; empty
    Text* text;           // owned; also the actor's drawable
    int value;            // the true value (the score)
    int shownFrom;        // the value the running roll started from
    uint32_t rollStart;   // ms of Orvel::currentTime; 0 when no roll is running
    uint32_t rollEnd;     // ms of Orvel::currentTime; 0 when no roll is running
};

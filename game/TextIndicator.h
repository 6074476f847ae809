#pragma once
// A short-lived floating text: the score of a kill, a wave banner, a powerup message.

#include <cstdint>

#include "game/Actor.h"

class Text;

// Rises at `speed` and fades out over `lifeTime`, then deletes itself. The owner sets the
// string, colour and position, adds `text` to a scene and pushes the indicator onto
// g_game's actors.
class TextIndicator : public Actor {
public:
    // Units per second, upward. Writable: shared by every indicator.
    static float speed;
    // ms from startTime to deletion. Writable: shared by every indicator.
    static uint32_t lifeTime;

    // A Text in font_medium with no string, white, size 16, hot spot Center; it is the drawable.
    TextIndicator();
    // Leaves g_game's actors (swap-with-last) and deletes the text.
    ~TextIndicator() override;

    // Rises, fades, synchronises the text and deletes the indicator once its life is over.
    void update() override;

    Text* text;         // owned; the drawable
    uint32_t startTime; // ms of Orvel::currentTime
};

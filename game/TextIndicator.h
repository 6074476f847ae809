#pragma once
// A short-lived floating text: the score of a kill, a wave banner, a powerup message.

#include <cstdint>

#include "engine/Vector.h"
#include "game/Actor.h"

class Container;
class Text;

// Rises at `speed` and fades out over `lifeTime`, then deletes itself. show() makes one; it
// lives on g_game's actors list.
class TextIndicator : public Actor {
public:
    // Units per second, upward. Writable: shared by every indicator.
    static float speed;
    // ms from startTime to deletion. Writable: shared by every indicator.
    static uint32_t lifeTime;

    // A Text in font_medium with no string, white, size 16, hot spot Center; it is the drawable.
    TextIndicator();
    // A new indicator of `line` (copied) at `position`, starting now at `scale`, with its text
    // added to `scene` (none when null) and the indicator pushed onto g_game's actors. The text
    // takes the position, scale and fade at the indicator's first update.
    static TextIndicator* show(Container* scene, const char* line, const orvel::vec2& position, float scale = 1.0f);

    // A banner (waves, lives): `line` on the HUD, centred at 40 % of the screen's height, 1.5
    // times the size.
    static TextIndicator* showBanner(const char* line);

    // Leaves g_game's actors (swap-with-last) and deletes the text.
    ~TextIndicator() override;

    // Rises, fades, synchronises the text and deletes the indicator once its life is over.
    void update() override;

    Text* text;         // owned; the drawable
    uint32_t startTime; // ms of Orvel::currentTime
};

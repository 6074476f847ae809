#include "game/ScoreCounter.h"

#include <cstdio>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "game/Resources.h"
#include "scene/Text.h"

using orvel::Math;
using orvel::Orvel;

namespace {

// Length of a roll started from rest, ms.
const uint32_t ROLL_LENGTH = 500;
// Pixel height of the digits.
const float TEXT_SIZE = 15.0f;
// Room for the prefix the game uses and an int.
const int TEXT_BUFFER = 128;

} // namespace

ScoreCounter::ScoreCounter() : text(nullptr), value(0), shownFrom(0), rollStart(0), rollEnd(0) {
    text = new Text(Resources::font_big, "0");
    text->fontSize = TEXT_SIZE;
    text->setText("0");
    drawable = text;
}

ScoreCounter::~ScoreCounter() {
    drawable = nullptr;
    delete text;
}

void ScoreCounter::addValue(int v) {
    // Steps that stretch a running roll, ms: every kill during a roll adds the next, smaller one.
    // Shared by every counter; the index restarts with each roll that starts from rest.
    static const int tadd[20] = {450, 425, 400, 375, 350, 325, 300, 275, 250, 225,
                                 200, 175, 150, 125, 100, 75,  50,  25,  10,  5};
    static int taddp = 0;

    uint32_t now = Orvel::currentTime;
    if (rollEnd > now) {
        rollEnd += tadd[taddp];
        taddp = Math::mini(taddp + 1, 19);
    } else {
        rollStart = now;
        shownFrom = value;
        rollEnd = now + ROLL_LENGTH;
        taddp = 0;
    }
    value += v;
}

void ScoreCounter::update() {
    syncDrawable();

    uint32_t now = Orvel::currentTime;
    int shown = value;
    if (rollEnd < now) {
        shownFrom = value;
        rollStart = 0;
        rollEnd = 0;
    } else if (rollEnd != now) {
        float t = (float)(now - rollStart) / (float)(rollEnd - rollStart);
        shown = (int)Math::sinh_lerp(t, (float)shownFrom, (float)value);
        // Rounds the already truncated value: a no-op above zero, one step up below it. Kept.
        shown = (int)(shown + 0.5);
    }

    // Formatted in place: a new string every frame would allocate.
    char buffer[TEXT_BUFFER];
    std::snprintf(buffer, sizeof buffer, "%s%i", prefix.getCString() ? prefix.getCString() : "", shown);
    if (text) {
        text->setText(buffer);
        text->setHotSpot(TopLeft);
    }
}

#pragma once
// The working radar inside the radar box's dial: a blip for every live enemy and powerup.

#include <cstdint>

#include "engine/Stack.h"
#include "engine/Vector.h"
#include "scene/Drawable.h"

struct SceneState;

// A child of the radar box, added after the frame (radarBox->add(new RadarDisplay)) and owned by
// whoever creates it; the box's destructor only unlinks it.
// Every draw() it reads g_game's player, enemies and powerups (when g_game and its player are
// set), places each at its nearest wrapped offset from the ship, scales the offsets so that
// `range` world units reach the dial's rim, and draws all blips in one batch clipped to the
// dial by hud_radar_mask. The blip list keeps its memory, so steady play allocates nothing.
class RadarDisplay : public Drawable {
public:
    // What a blip shows.
    enum BlipKind : uint8_t { BLIP_ENEMY = 0, BLIP_POWERUP = 1 };
    // An offset from the ship in world units, and its kind.
    struct Blip {
        float dx, dy;
        uint8_t kind;
    };

    // Blips reserved at start-up; more grow the list once.
    static const unsigned BLIP_CAPACITY = 512;

    // Centred on its position (hot spot at the middle), the dial's size, reading g_game.
    RadarDisplay();
    ~RadarDisplay() override;

    // The offset from `from` to the nearest of `to`'s wrapped copies on a w x h torus:
    // each component in [-w/2, w/2) and [-h/2, h/2).
    static orvel::vec2 wrappedOffset(orvel::vec2 from, orvel::vec2 to, float w, float h);

    // Forgets the blips.
    void clearBlips() { blips.clear(); }
    // Adds a blip for something at world position p, seen from `centre` on the world torus.
    void addBlip(orvel::vec2 p, BlipKind kind);
    // Replaces the blips with g_game's enemies and powerups around its player; nothing
    // when g_game or its player is null.
    void gather();
    // The dial-space point (pixels from the dial's centre) where an offset is shown.
    orvel::vec2 dialPoint(float dx, float dy) const;

    // gather() when followsGame, then one batch of blip quads masked by the dial.
    void draw(SceneState& state) override;

    orvel::Stack<Blip> blips; // this frame's blips; cleared, never freed
    orvel::vec2 centre;       // world position at the dial's centre (the ship)
    orvel::vec2 worldSize;    // the torus the offsets wrap on; g_world's size by default
    float range;              // world units shown at the dial's rim
    float dialRadius;         // art pixels in the node's own space, shown at half size
    float blipSize;           // art pixels across a blip
    uint32_t enemyColor;      // orvel::Color layout (red in the low byte)
    uint32_t powerupColor;
    bool followsGame; // gather from g_game every draw()
};

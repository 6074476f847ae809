#pragma once
// The world's background: a swaying skybox and a layer of parallax stars that wrap on screen.

#include <cstdint>

#include "engine/Camera.h"
#include "engine/Skybox.h"
#include "engine/Vector.h"
#include "scene/Effect.h"
#include "scene/QuadBatch.h"

namespace orvel {
class Texture;
}
struct SceneState;

// Added first to the world scene so it draws behind everything. The stars live in screen
// pixels and follow the world camera only through move().
class Starfield : public Effect {
public:
    // One star: screen position, depth in [minDepth, maxDepth], tint and the size factor.
    struct Star {
        float x, y;       // screen pixels, top-left origin
        float depth;      // 1 is nearest and moves most
        uint8_t color[4]; // R, G, B, A
        float brightness; // alpha factor, 0..1
        float size;       // quad scale, [0.2, 0.7]
    };
    // One interleaved vertex of the star batch: 20 bytes.
    using Vertex = QuadBatch::Vertex;

    // Stars drawn per batch, and the batch's room in stars.
    static const unsigned STARS_PER_BATCH = 128;
    static const unsigned BATCH_CAPACITY = 256;

    // `count` stars scattered with g_rand; the skybox with the game's six faces at brightness
    // 0.82 and rotation (7, 0, 56) degrees. Needs Resources loaded for the textures.
    explicit Starfield(int count);
    // Frees the star array.
    ~Starfield() override;
    Starfield(const Starfield&) = delete;
    Starfield& operator=(const Starfield&) = delete;

    // Scatters every star again, from the last record down to the first, with g_rand.
    void init();
    // The camera moved by delta world units: stars move by -delta * parallax / depth and wrap
    // into the screen widened by margin on every side.
    void move(orvel::vec2& delta);
    void move(float dx, float dy);
    // Adds degrees to the skybox's rotations, each wrapped into [0, 360).
    void rotateSky(float ax, float ay, float az);
    // The sky through its own slowly swaying camera, then the stars in at most four batches.
    void draw(SceneState& state) override;

    orvel::Texture* starTexture; // not owned
    Star* stars;                 // owned; starCount + 1 records
    unsigned starCount;
    float parallax; // how strongly the stars follow the camera
    float minDepth;
    float maxDepth;
    float margin;    // pixels beyond each screen edge where stars still live
    float starWidth; // a star's quad is starWidth x size by starHeight x size
    float starHeight;
    uint8_t skyOn;        // draw the skybox
    uint8_t starsOn;      // draw the stars
    // Set when the starfield is the first thing drawn on a target cleared to black, as
    // Game::init places it: the sky then replaces the black instead of adding to it, the same
    // pixels without reading the target back. False by default: the sky adds.
    bool skyFirst;
    orvel::Camera camera; // the sky's own camera
    orvel::Skybox sky;

private:
    void drawSky();
    void drawStars(SceneState& state);
};

#pragma once
// A scene node that draws the particles a ParticleSystem has assigned to it, as one batch of quads.

#include <cstdint>

#include "scene/Drawable.h"

struct Particle;
class ParticleSystem;

class ParticleSlice : public Drawable {
public:
    // One corner of a particle quad; 32 bytes, the stride of all three client arrays.
    struct Vertex {
        float x, y;          // world units
        float s, t;          // texture coordinates
        uint8_t r, g, b, a;  // colour
        uint8_t padding[12]; // up to the 32-byte stride; never read
    };

    // Vertices go to GL in batches of at most this many (128 quads).
    static const unsigned BATCH_VERTICES = 512;

    // Visible and an effect node (drawn in its parent's space, never culled), with the
    // system's draw mode. `system` is not owned and must outlive the slice's particles.
    ParticleSlice(ParticleSystem* system, bool removeWhenEmpty, bool deleteWhenEmpty);
    // Frees the particles still linked here, so the pool never points at a deleted slice.
    ~ParticleSlice() override;
    ParticleSlice(const ParticleSlice&) = delete;
    ParticleSlice& operator=(const ParticleSlice&) = delete;

    // Box around the start and end points of the particles; with none, size 0 and still dirty.
    void updateSize() override;
    // Drops dead particles and draws the live ones once per view rectangle. An empty slice
    // draws nothing and takes itself out of the tree (removeWhenEmpty) and deletes itself
    // (deleteWhenEmpty).
    void draw(SceneState& s) override;

    // Appends `p` at the tail (count + 1) and makes this its slice.
    void append(Particle* p);
    // Takes `p`, which must be one of ours, out of the list (count - 1) and clears its links.
    void unlink(Particle* p);

    ParticleSystem* system; // not owned
    Particle* head;         // oldest particle, drawn first; null when empty
    Particle* tail;         // newest
    unsigned count;         // particles linked here, dead or alive
    bool removeWhenEmpty;   // leave the container at the first draw that finds no particles
    bool deleteWhenEmpty;   // then delete this slice
};

static_assert(sizeof(ParticleSlice::Vertex) == 32, "particle vertices are 32 bytes");

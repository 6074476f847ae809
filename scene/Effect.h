#pragma once
// Base of nodes that draw their own geometry in their parent's space: weapons, starfield, beams.

#include "scene/Drawable.h"

struct SceneState;

// The scene root gives an effect node no transform of its own and never culls it: draw() gets
// the parent's model-view matrix and does its own placing (state.position is the node's position).
class Effect : public Drawable {
public:
    // Sets the EFFECT bit; everything else as for any Drawable.
    Effect();
    ~Effect() override;

    void draw(SceneState& state) override = 0;
};

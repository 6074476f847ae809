#pragma once
// A grappling-beam effect node; abstract, nothing creates one.

#include "scene/Effect.h"

class GrappleEffect : public Effect {
public:
    GrappleEffect();
    ~GrappleEffect() override;

    void draw(SceneState& state) override = 0;
};

#include "scene/ParticleEmitter.h"

ParticleEmitter::ParticleEmitter()
    : colorA(1.0f, 1.0f, 1.0f, 1.0f), colorB(1.0f, 1.0f, 1.0f, 1.0f), position(0.0f, 0.0f),
      direction(0.0f, 0.0f), lifeMin(1000.0f), lifeMax(1000.0f), speedMin(0.0f), speedMax(1.0f),
      sizeStartMin(16.0f), sizeStartMax(16.0f), sizeEndMin(16.0f), sizeEndMax(16.0f), spread(0.0f),
      radius(0.0f), rate(0), slice(nullptr), reserved{0, 0}, lastEmit(0) {}

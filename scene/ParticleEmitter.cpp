#include "scene/ParticleEmitter.h"

#include "scene/ParticleSystem.h"

ParticleEmitter::ParticleEmitter()
    : colorA(1.0f, 1.0f, 1.0f, 1.0f), colorB(1.0f, 1.0f, 1.0f, 1.0f), position(0.0f, 0.0f),
      direction(0.0f, 0.0f), lifeMin(1000.0f), lifeMax(1000.0f), speedMin(0.0f), speedMax(1.0f),
      sizeStartMin(16.0f), sizeStartMax(16.0f), sizeEndMin(16.0f), sizeEndMax(16.0f), spread(0.0f),
      radius(0.0f), rate(0), slice(nullptr), reserved{0, 0}, lastEmit(0) {}

void ParticleEmitter::setParticles(const ParticleBurst& b) {
    colorA = b.colorA;
    colorB = b.colorB;
    lifeMin = (float)b.lifeMin;
    lifeMax = (float)b.lifeMax;
    speedMin = b.speedMin;
    speedMax = b.speedMax;
    sizeStartMin = b.sizeStartMin;
    sizeStartMax = b.sizeStartMax;
    sizeEndMin = b.sizeEndMin;
    sizeEndMax = b.sizeEndMax;
    spread = b.spread;
    radius = b.radius;
}

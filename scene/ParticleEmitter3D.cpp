#include "scene/ParticleEmitter3D.h"

ParticleEmitter3D::ParticleEmitter3D() {}

ParticleEmitter3D::~ParticleEmitter3D() {}

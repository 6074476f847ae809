#include "scene/ParticleSlice3D.h"

ParticleSlice3D::ParticleSlice3D() {}

ParticleSlice3D::~ParticleSlice3D() {}

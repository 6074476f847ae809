#include "scene/ParticleSystem3D.h"

ParticleSystem3D::ParticleSystem3D() {}

ParticleSystem3D::~ParticleSystem3D() {}

#pragma once
// A particle system in 3D: a place kept for 3D content; it has no fields and draws nothing.

class ParticleSystem3D {
public:
    ParticleSystem3D();
    virtual ~ParticleSystem3D();
};

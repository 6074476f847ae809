#pragma once
// A 3D slice of particles: a place kept for 3D content; it has no fields and draws nothing.

class ParticleSlice3D {
public:
    ParticleSlice3D();
    virtual ~ParticleSlice3D();
};

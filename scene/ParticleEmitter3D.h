#pragma once
// A particle emitter in 3D: a place kept for 3D content; it has no fields and draws nothing.

class ParticleEmitter3D {
public:
    ParticleEmitter3D();
    virtual ~ParticleEmitter3D();
};

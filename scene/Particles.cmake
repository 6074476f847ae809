# The particle system: the shared pool with its emitters, and the slices that draw it.
target_sources(scene PRIVATE
    ParticleSystem.cpp
    ParticleSlice.cpp
    ParticleEmitter.cpp
)

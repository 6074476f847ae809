# Sprites, text, effects, the fader, the shader set, and the shells kept for post-processing
# and 3D content.
target_sources(scene PRIVATE
    Shaders.cpp
    Effect.cpp
    Sprite.cpp
    Text.cpp
    Fader.cpp
    Postprocess.cpp
    Model3D.cpp
    Object3D.cpp
    ParticleSystem3D.cpp
    ParticleSlice3D.cpp
    ParticleEmitter3D.cpp
)

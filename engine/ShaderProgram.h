#pragma once
// A linked GLSL program; stages that are not supplied fall back to a pass-through default.

#include "engine/Matrix.h"
#include "engine/Vector.h"

namespace orvel {

class Shader;

class ShaderProgram {
public:
    // Creates the default stages on the first construction of any program, then an empty
    // GL program with no stages recorded.
    ShaderProgram();
    // Detaches the recorded stages (vertex, fragment, geometry) and deletes the program.
    // The stages themselves stay alive: they belong to whoever created them.
    ~ShaderProgram();
    ShaderProgram(const ShaderProgram&) = delete;
    ShaderProgram& operator=(const ShaderProgram&) = delete;

    // Attaches `s` and records it by its stage; null does nothing, and a stage of an unknown
    // code is attached without being recorded. A stage that did not compile (it has said so)
    // is left out, so that link() puts the default in its place.
    void attach(Shader* s);
    // Attaches default_vs and default_fs where no vertex or fragment stage is recorded, then
    // links. The defaults are not recorded; there is no default geometry stage. A failed link
    // is reported in one line on standard error, "Could not link shader program <id>: <reason>".
    void link();

    void bind() const;   // glUseProgram(id)
    void unbind() const; // glUseProgram(0)

    int getUniformLocation(const char* name) const;   // -1 when the program has no such uniform
    int getAttributeLocation(const char* name) const; // -1 when the program has no such attribute

    // Each call looks the location up by name (nothing is cached) and sets it on the program
    // that is bound, which has to be this one. Array forms send `count` elements.
    void setUniform(const char* name, int value) const;
    void setUniform(const char* name, float value) const;
    void setUniform(const char* name, const vec2& value) const;
    void setUniform(const char* name, const vec3& value) const;
    void setUniform(const char* name, const vec4& value) const;
    void setUniform(const char* name, const int* values, int count) const;
    void setUniform(const char* name, const float* values, int count) const;
    void setUniform(const char* name, const vec2* values, int count) const;
    void setUniform(const char* name, const vec3* values, int count) const;
    void setUniform(const char* name, const vec4* values, int count) const;
    // A mat2 is six floats, column by column, so the GLSL side declares it as a mat3x2.
    void setUniform(const char* name, const mat2& value) const;
    void setUniform(const char* name, const mat2* values, int count) const;
    void setUniform(const char* name, const mat4& value) const;
    void setUniform(const char* name, const mat4* values, int count) const;

    unsigned id;       // GL program object
    Shader* vertex;    // recorded stages, not owned; null when none was attached
    Shader* fragment;
    Shader* geometry;

    // Pass-through stages (transformed position, texture coordinate 0 and vertex colour),
    // created once and kept for the life of the process.
    static Shader* default_vs;
    static Shader* default_fs;
};

} // namespace orvel

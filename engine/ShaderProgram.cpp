#include "engine/ShaderProgram.h"

#include <cstdio>
#include <cstring>

#include "engine/GL.h"
#include "engine/Shader.h"

namespace orvel {

Shader* ShaderProgram::default_vs = nullptr;
Shader* ShaderProgram::default_fs = nullptr;

namespace {

const char* DEFAULT_VERTEX_SOURCE =
    "void main() { gl_TexCoord[0] = gl_MultiTexCoord0; gl_FrontColor = gl_Color; gl_BackColor = gl_Color; "
    "gl_Position = ftransform(); }";
const char* DEFAULT_FRAGMENT_SOURCE = "void main() { gl_FragColor = gl_Color; }";

// One line for a program that did not link: the first line of GL's log says why.
void reportLinkFailure(unsigned id) {
    const int LOG_SIZE = 512;
    char log[LOG_SIZE] = "";
    glGetProgramInfoLog(id, LOG_SIZE, nullptr, log);
    log[strcspn(log, "\r\n")] = 0;
    fprintf(stderr, "Could not link shader program %u: %s\n", id, log[0] ? log : "no reason given");
}

} // namespace

ShaderProgram::ShaderProgram() {
    if (!default_vs) default_vs = new Shader(Shader::VERTEX, DEFAULT_VERTEX_SOURCE, 0);
    if (!default_fs) default_fs = new Shader(Shader::FRAGMENT, DEFAULT_FRAGMENT_SOURCE, 0);
    vertex = nullptr;
    fragment = nullptr;
    geometry = nullptr;
    id = glCreateProgram();
}

ShaderProgram::~ShaderProgram() {
    if (vertex) glDetachShader(id, vertex->id);
    if (fragment) glDetachShader(id, fragment->id);
    if (geometry) glDetachShader(id, geometry->id);
    glDeleteProgram(id);
}

void ShaderProgram::attach(Shader* s) {
    if (!s || !s->isCompiled()) return;
    switch (s->type) {
    case Shader::FRAGMENT: fragment = s; break;
    case Shader::GEOMETRY: geometry = s; break;
    case Shader::VERTEX: vertex = s; break;
    default: break;
    }
    glAttachShader(id, s->id);
}

void ShaderProgram::link() {
    if (!vertex) glAttachShader(id, default_vs->id);
    if (!fragment) glAttachShader(id, default_fs->id);
    glLinkProgram(id);
    GLint status = GL_FALSE;
    glGetProgramiv(id, GL_LINK_STATUS, &status);
    if (status != GL_TRUE) reportLinkFailure(id);
}

void ShaderProgram::bind() const {
    glUseProgram(id);
}

void ShaderProgram::unbind() const {
    glUseProgram(0);
}

int ShaderProgram::getUniformLocation(const char* name) const {
    return glGetUniformLocation(id, name);
}

int ShaderProgram::getAttributeLocation(const char* name) const {
    return glGetAttribLocation(id, name);
}

void ShaderProgram::setUniform(const char* name, int value) const {
    glUniform1i(getUniformLocation(name), value);
}

void ShaderProgram::setUniform(const char* name, float value) const {
    glUniform1f(getUniformLocation(name), value);
}

void ShaderProgram::setUniform(const char* name, const vec2& value) const {
    glUniform2fv(getUniformLocation(name), 1, &value.x);
}

void ShaderProgram::setUniform(const char* name, const vec3& value) const {
    glUniform3fv(getUniformLocation(name), 1, &value.x);
}

void ShaderProgram::setUniform(const char* name, const vec4& value) const {
    glUniform4fv(getUniformLocation(name), 1, &value.x);
}

void ShaderProgram::setUniform(const char* name, const int* values, int count) const {
    glUniform1iv(getUniformLocation(name), count, values);
}

void ShaderProgram::setUniform(const char* name, const float* values, int count) const {
    glUniform1fv(getUniformLocation(name), count, values);
}

// The vector and matrix types are packed floats, so arrays of them go to GL as they are.
void ShaderProgram::setUniform(const char* name, const vec2* values, int count) const {
    glUniform2fv(getUniformLocation(name), count, &values->x);
}

void ShaderProgram::setUniform(const char* name, const vec3* values, int count) const {
    glUniform3fv(getUniformLocation(name), count, &values->x);
}

void ShaderProgram::setUniform(const char* name, const vec4* values, int count) const {
    glUniform4fv(getUniformLocation(name), count, &values->x);
}

void ShaderProgram::setUniform(const char* name, const mat2& value) const {
    glUniformMatrix3x2fv(getUniformLocation(name), 1, GL_FALSE, value.m);
}

void ShaderProgram::setUniform(const char* name, const mat2* values, int count) const {
    glUniformMatrix3x2fv(getUniformLocation(name), count, GL_FALSE, values->m);
}

void ShaderProgram::setUniform(const char* name, const mat4& value) const {
    glUniformMatrix4fv(getUniformLocation(name), 1, GL_FALSE, value.m);
}

void ShaderProgram::setUniform(const char* name, const mat4* values, int count) const {
    glUniformMatrix4fv(getUniformLocation(name), count, GL_FALSE, values->m);
}

} // namespace orvel

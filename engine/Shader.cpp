#include "engine/Shader.h"

#include <cstdio>
#include <cstring>

#include "engine/GL.h"

namespace orvel {

namespace {

const char* stageName(char stage) {
    switch (stage) {
    case Shader::VERTEX: return "vertex shader";
    case Shader::FRAGMENT: return "fragment shader";
    default: return "geometry shader";
    }
}

// One line for a stage that did not compile: the first line of GL's log says where and why.
void reportCompileFailure(unsigned id, const char* name, int length) {
    const int LOG_SIZE = 512;
    char log[LOG_SIZE] = "";
    glGetShaderInfoLog(id, LOG_SIZE, nullptr, log);
    log[strcspn(log, "\r\n")] = 0;
    const char* reason = length == 0 ? "empty source" : log[0] ? log : "no reason given";
    fprintf(stderr, "Could not compile %s: %s\n", name, reason);
}

} // namespace

Shader::Shader(char stage, const char* source, int length, const char* name) : id(0), type(0) {
    GLenum kind;
    switch (stage) {
    case VERTEX: kind = GL_VERTEX_SHADER; break;
    case FRAGMENT: kind = GL_FRAGMENT_SHADER; break;
    case GEOMETRY: kind = GL_GEOMETRY_SHADER_EXT; break;
    // Callers only pass 1, 2 and 4; anything else leaves id 0, which the destructor ignores.
    default: return;
    }
    id = glCreateShader(kind);
    type = stage;
    GLint size = length != 0 ? length : (GLint)std::strlen(source);
    glShaderSource(id, 1, &source, &size);
    glCompileShader(id);
    if (!isCompiled()) reportCompileFailure(id, name ? name : stageName(stage), size);
}

bool Shader::isCompiled() const {
    if (!id) return false;
    GLint status = GL_FALSE;
    glGetShaderiv(id, GL_COMPILE_STATUS, &status);
    return status == GL_TRUE;
}

Shader::~Shader() {
    glDeleteShader(id);
}

} // namespace orvel

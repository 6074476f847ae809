#include "engine/Shader.h"

#include <cstring>

#include "engine/GL.h"

namespace orvel {

Shader::Shader(char stage, const char* source, int length) : id(0), type(0) {
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
}

Shader::~Shader() {
    glDeleteShader(id);
}

} // namespace orvel

#pragma once
// One compiled GLSL stage, ready to be attached to ShaderProgram objects.

namespace orvel {

class Shader {
public:
    // Stage codes for `type`.
    static const char VERTEX = 1;   // GL_VERTEX_SHADER
    static const char FRAGMENT = 2; // GL_FRAGMENT_SHADER
    static const char GEOMETRY = 4; // GL_GEOMETRY_SHADER_EXT

    // Creates and compiles a stage of code `type` from `length` characters of `source`
    // (length 0: up to the first NUL). A source that does not compile is reported in one line
    // on standard error, "Could not compile <name>: <reason>", where `name` says where the
    // source came from (null: the stage's kind) and the reason is the first line of GL's log,
    // or "empty source". An unknown code creates no GL object.
    Shader(char type, const char* source, int length, const char* name = nullptr);
    // Deletes the GL shader; GL keeps it until every program it is attached to lets go.
    ~Shader();
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    // Whether GL compiled the stage; false for an unknown code.
    bool isCompiled() const;

    unsigned id; // GL shader object
    char type;   // stage code
};

} // namespace orvel

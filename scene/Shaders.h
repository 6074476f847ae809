#pragma once
// The shader programs that all drawing shares, built once from the files under "shaders".

namespace orvel {
class ShaderProgram;
}

// A static-only holder: there are no instances. Both scene roots call init() when they are
// built, so the programs exist before the first frame draws.
class Shaders {
public:
    // Loads the seven programs below, in the order they are declared, on the first call only;
    // later calls do nothing. Needs the GL context.
    static void init();

    // Binds texture_fixed with its sampler on texture unit 0; nothing before init().
    static void useTextureFixed();

    // Owned here and kept for the life of the program; null until init().
    static orvel::ShaderProgram* color_shader_fixed;   // "color_fixed": the vertex colour
    static orvel::ShaderProgram* texture_shader_fixed; // "texture_fixed": texel times vertex colour
    static orvel::ShaderProgram* color_shader;         // "color"
    static orvel::ShaderProgram* texture_shader;       // "texture"
    static orvel::ShaderProgram* color_extract_shader; // "color_extract"
    static orvel::ShaderProgram* hblur_shader;         // "hblur"
    static orvel::ShaderProgram* vblur_shader;         // "vblur"

    // Set by the first init(). Whoever opens a fresh GL context clears it so that the next
    // init() builds the programs there; the old ones went away with their context.
    static bool wasInit;
};

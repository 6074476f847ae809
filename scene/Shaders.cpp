#include "scene/Shaders.h"

#include "engine/GfxUtil.h"
#include "engine/ShaderProgram.h"

using orvel::GfxUtil;
using orvel::ShaderProgram;

ShaderProgram* Shaders::color_shader_fixed = nullptr;
ShaderProgram* Shaders::texture_shader_fixed = nullptr;
ShaderProgram* Shaders::color_shader = nullptr;
ShaderProgram* Shaders::texture_shader = nullptr;
ShaderProgram* Shaders::color_extract_shader = nullptr;
ShaderProgram* Shaders::hblur_shader = nullptr;
ShaderProgram* Shaders::vblur_shader = nullptr;
bool Shaders::wasInit = false;

void Shaders::init() {
    if (wasInit) return;
    wasInit = true;

    // Sources are read relative to the working directory, as all of the game's data.
    const char* dir = "shaders";
    color_shader_fixed = GfxUtil::loadShaderFromDisk(dir, "color_fixed");
    texture_shader_fixed = GfxUtil::loadShaderFromDisk(dir, "texture_fixed");
    color_shader = GfxUtil::loadShaderFromDisk(dir, "color");
    texture_shader = GfxUtil::loadShaderFromDisk(dir, "texture");
    color_extract_shader = GfxUtil::loadShaderFromDisk(dir, "color_extract");
    hblur_shader = GfxUtil::loadShaderFromDisk(dir, "hblur");
    vblur_shader = GfxUtil::loadShaderFromDisk(dir, "vblur");
}

void Shaders::useTextureFixed() {
    if (!texture_shader_fixed) return;
    texture_shader_fixed->bind();
    texture_shader_fixed->setUniform("texture", 0);
}

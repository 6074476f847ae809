#include "scene/Shaders.h"

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "engine/GL.h"
#include "engine/ShaderProgram.h"
#include "scene/DirectScene2D.h"
#include "scene/Scene2D.h"
#include "tests/support/AllocationCounter.h"
#include "tests/scene/VisualsFixture.h"

using orvel::ShaderProgram;
using testing_support::VisualsTest;

namespace {

struct Named {
    ShaderProgram** program;
    const char* name;
};

// The programs in the order they are declared, with the file names they must come from.
const Named PROGRAMS[7] = {
    {&Shaders::color_shader_fixed, "color_fixed"},
    {&Shaders::texture_shader_fixed, "texture_fixed"},
    {&Shaders::color_shader, "color"},
    {&Shaders::texture_shader, "texture"},
    {&Shaders::color_extract_shader, "color_extract"},
    {&Shaders::hblur_shader, "hblur"},
    {&Shaders::vblur_shader, "vblur"},
};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The source of the stage of `type` attached to `program`, or "" when there is none.
std::string attachedSource(unsigned program, GLenum type) {
    GLuint shaders[8];
    GLsizei n = 0;
    glGetAttachedShaders(program, 8, &n, shaders);
    for (GLsizei i = 0; i < n; ++i) {
        GLint t = 0;
        glGetShaderiv(shaders[i], GL_SHADER_TYPE, &t);
        if ((GLenum)t != type) continue;
        GLint length = 0;
        glGetShaderiv(shaders[i], GL_SHADER_SOURCE_LENGTH, &length);
        std::vector<char> text(length + 1);
        glGetShaderSource(shaders[i], length + 1, nullptr, text.data());
        return std::string(text.data());
    }
    return "";
}

class ShadersTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        for (const Named& p : PROGRAMS) *p.program = nullptr;
    }
};

} // namespace

TEST_F(ShadersTest, InitLoadsSevenLinkedPrograms) {
    Shaders::init();
    for (const Named& p : PROGRAMS) {
        ASSERT_NE(*p.program, nullptr) << p.name;
        GLint linked = 0;
        glGetProgramiv((*p.program)->id, GL_LINK_STATUS, &linked);
        EXPECT_EQ(linked, GL_TRUE) << p.name;
    }
    EXPECT_TRUE(Shaders::wasInit);
}

TEST_F(ShadersTest, EachProgramIsBuiltFromItsOwnFilesUnderShaders) {
    Shaders::init();
    for (const Named& p : PROGRAMS) {
        std::string base = std::string("shaders/") + p.name;
        EXPECT_EQ(attachedSource((*p.program)->id, GL_VERTEX_SHADER), readFile(base + ".vert")) << p.name;
        EXPECT_EQ(attachedSource((*p.program)->id, GL_FRAGMENT_SHADER), readFile(base + ".frag")) << p.name;
    }
}

TEST_F(ShadersTest, ProgramsAreSevenDistinctObjects) {
    Shaders::init();
    for (int i = 0; i < 7; ++i)
        for (int j = i + 1; j < 7; ++j) {
            EXPECT_NE(*PROGRAMS[i].program, *PROGRAMS[j].program) << PROGRAMS[i].name << " " << PROGRAMS[j].name;
            EXPECT_NE((*PROGRAMS[i].program)->id, (*PROGRAMS[j].program)->id);
        }
}

TEST_F(ShadersTest, SecondInitChangesNothing) {
    Shaders::init();
    ShaderProgram* first[7];
    for (int i = 0; i < 7; ++i) first[i] = *PROGRAMS[i].program;

    std::size_t before = testing_support::allocationCount();
    Shaders::init();
    EXPECT_EQ(testing_support::allocationCount(), before);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(*PROGRAMS[i].program, first[i]) << PROGRAMS[i].name;
}

TEST_F(ShadersTest, BothSceneRootsShareOneLoad) {
    DirectScene2D hud(-1, -1);
    ShaderProgram* first[7];
    for (int i = 0; i < 7; ++i) {
        first[i] = *PROGRAMS[i].program;
        ASSERT_NE(first[i], nullptr) << PROGRAMS[i].name;
    }

    Scene2D world(-1, -1);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(*PROGRAMS[i].program, first[i]) << PROGRAMS[i].name;
}

TEST_F(ShadersTest, ColorFixedOutputsTheVertexColour) {
    Shaders::init();
    pixelProjection();
    Shaders::color_shader_fixed->bind();
    glColor4ub(30, 140, 220, 255);
    drawQuad(10, 10, 20, 20);
    glUseProgram(0);
    EXPECT_EQ(rgb(readScreen().at(15, 15)), rgb(pack(30, 140, 220)));
}

TEST_F(ShadersTest, TextureFixedMultipliesTexelByVertexColour) {
    Shaders::init();
    orvel::Texture* texture = makeTexture(8, 8, [](int, int) { return pack(200, 100, 40); });
    pixelProjection();
    texture->bind(GL_TEXTURE0);
    Shaders::texture_shader_fixed->bind();
    Shaders::texture_shader_fixed->setUniform("texture", 0);
    // Half red, full green, quarter blue: 200 * 0.5, 100 * 1, 40 * 0.25.
    glColor4f(0.5f, 1.0f, 0.25f, 1.0f);
    drawQuad(10, 10, 20, 20);
    glUseProgram(0);
    EXPECT_TRUE(nearRgb(readScreen().at(15, 15), 100, 100, 10, 1));
    delete texture;
}

#include "engine/Shader.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/GfxUtil.h"
#include "engine/Matrix.h"
#include "engine/ShaderProgram.h"
#include "engine/Vector.h"
#include "tests/support/GLFixture.h"

using orvel::GfxUtil;
using orvel::mat2;
using orvel::mat4;
using orvel::Shader;
using orvel::ShaderProgram;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;
using testing_support::GLTest;
using testing_support::rgba;

namespace {

// The pass-through stages, as the program must create them.
const char* DEFAULT_VS = "void main() { gl_TexCoord[0] = gl_MultiTexCoord0; gl_FrontColor = gl_Color; "
                         "gl_BackColor = gl_Color; gl_Position = ftransform(); }";
const char* DEFAULT_FS = "void main() { gl_FragColor = gl_Color; }";

// Stages used across the tests.
const char* VS_SOURCE = "void main() { gl_FrontColor = gl_Color; gl_Position = ftransform(); }";
const char* VS_MOVED_RIGHT = "void main() { gl_FrontColor = gl_Color; "
                             "gl_Position = ftransform() + vec4(0.5, 0.0, 0.0, 0.0); }";
const char* FS_GREEN = "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }\n";
// 0.2, 0.4 and 0.6 of 255 are 51, 102 and 153.
const char* FS_FIXED = "void main() { gl_FragColor = vec4(0.2, 0.4, 0.6, 1.0); }\n";
// Replaces every vertex colour with magenta on its way through.
const char* GS_MAGENTA = "#version 150 compatibility\n"
                         "layout(triangles) in;\n"
                         "layout(triangle_strip, max_vertices = 3) out;\n"
                         "void main() {\n"
                         "    for (int i = 0; i < 3; ++i) {\n"
                         "        gl_Position = gl_in[i].gl_Position;\n"
                         "        gl_FrontColor = vec4(1.0, 0.0, 1.0, 1.0);\n"
                         "        EmitVertex();\n"
                         "    }\n"
                         "    EndPrimitive();\n"
                         "}\n";

GLint shaderParameter(unsigned shader, GLenum name) {
    GLint v = -1;
    glGetShaderiv(shader, name, &v);
    return v;
}

GLint programParameter(unsigned program, GLenum name) {
    GLint v = -1;
    glGetProgramiv(program, name, &v);
    return v;
}

// The source text GL holds for a shader (without its terminating NUL).
std::string sourceOf(unsigned shader) {
    GLint size = shaderParameter(shader, GL_SHADER_SOURCE_LENGTH);
    if (size <= 0) return std::string();
    std::vector<char> text((size_t)size);
    GLsizei written = 0;
    glGetShaderSource(shader, size, &written, text.data());
    return std::string(text.data(), (size_t)written);
}

// The shaders attached to a program, in GL's order.
std::vector<GLuint> attachedTo(unsigned program) {
    GLuint ids[8] = {};
    GLsizei count = 0;
    glGetAttachedShaders(program, 8, &count, ids);
    return std::vector<GLuint>(ids, ids + count);
}

bool contains(const std::vector<GLuint>& ids, unsigned id) {
    for (GLuint i : ids)
        if (i == id) return true;
    return false;
}

bool geometryShadersSupported() {
    const char* version = (const char*)glGetString(GL_VERSION);
    int major = 0, minor = 0;
    if (version && std::sscanf(version, "%d.%d", &major, &minor) == 2 && (major > 3 || (major == 3 && minor >= 2)))
        return true;
    const char* extensions = (const char*)glGetString(GL_EXTENSIONS);
    return extensions && (std::strstr(extensions, "GL_ARB_geometry_shader4") ||
                          std::strstr(extensions, "GL_EXT_geometry_shader4"));
}

// Every test owns a fresh window and GL context. The default stages outlive any one program,
// so they are deleted with the context they were made in and rebuilt by the next test.
class ShaderTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        pixelProjection();
    }
    void TearDown() override {
        glUseProgram(0);
        delete ShaderProgram::default_vs;
        delete ShaderProgram::default_fs;
        ShaderProgram::default_vs = nullptr;
        ShaderProgram::default_fs = nullptr;
        GLTest::TearDown();
    }

    // Two triangles covering [x0, x1) x [y0, y1) in window pixels, in one vertex colour.
    static void fillRect(float x0, float y0, float x1, float y1, GLubyte r, GLubyte g, GLubyte b) {
        glColor4ub(r, g, b, 255);
        glBegin(GL_TRIANGLES);
        glVertex2f(x0, y0);
        glVertex2f(x1, y0);
        glVertex2f(x1, y1);
        glVertex2f(x0, y0);
        glVertex2f(x1, y1);
        glVertex2f(x0, y1);
        glEnd();
    }
};

// A temporary folder for shader files, removed with the test.
class LoadShaderTest : public ShaderTest {
protected:
    void SetUp() override {
        ShaderTest::SetUp();
        char pattern[] = "/tmp/nightvector-shaders-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }
    void TearDown() override {
        // The loaded stages belong to nobody; the test cleans them up with the program.
        if (program) {
            Shader* stages[3] = {program->vertex, program->geometry, program->fragment};
            delete program;
            for (Shader* s : stages) delete s;
        }
        std::error_code ignored;
        std::filesystem::remove_all(dir, ignored);
        ShaderTest::TearDown();
    }

    // Writes `text` byte for byte, NUL bytes included.
    void write(const std::string& fileName, const std::string& text) {
        FILE* f = std::fopen((dir + "/" + fileName).c_str(), "wb");
        ASSERT_NE(f, nullptr);
        ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), f), text.size());
        std::fclose(f);
    }

    void load(const char* name) {
        program = GfxUtil::loadShaderFromDisk(dir.c_str(), name);
        ASSERT_NE(program, nullptr);
    }

    std::string dir;
    ShaderProgram* program = nullptr;
};

} // namespace

// --- Shader ---

TEST_F(ShaderTest, VertexCodeCompilesAVertexShader) {
    Shader s(1, VS_SOURCE, 0);
    EXPECT_EQ(s.type, 1);
    EXPECT_EQ(glIsShader(s.id), GL_TRUE);
    EXPECT_EQ(shaderParameter(s.id, GL_SHADER_TYPE), GL_VERTEX_SHADER);
    EXPECT_EQ(shaderParameter(s.id, GL_COMPILE_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, FragmentCodeCompilesAFragmentShader) {
    Shader s(2, FS_GREEN, 0);
    EXPECT_EQ(s.type, 2);
    EXPECT_EQ(shaderParameter(s.id, GL_SHADER_TYPE), GL_FRAGMENT_SHADER);
    EXPECT_EQ(shaderParameter(s.id, GL_COMPILE_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, GeometryCodeCompilesAGeometryShader) {
    if (!geometryShadersSupported()) GTEST_SKIP() << "no geometry shaders in this GL";
    Shader s(4, GS_MAGENTA, 0);
    EXPECT_EQ(s.type, 4);
    EXPECT_EQ(shaderParameter(s.id, GL_SHADER_TYPE), GL_GEOMETRY_SHADER_EXT);
    EXPECT_EQ(shaderParameter(s.id, GL_COMPILE_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, ZeroLengthTakesTheSourceUpToItsNul) {
    Shader s(2, FS_GREEN, 0);
    EXPECT_EQ(sourceOf(s.id), std::string(FS_GREEN));
}

TEST_F(ShaderTest, LengthLimitsTheSource) {
    // The tail after the first 56 characters would not compile.
    const char* text = "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); } this is not GLSL";
    Shader s(2, text, 56);
    EXPECT_EQ(sourceOf(s.id), "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }");
    EXPECT_EQ(shaderParameter(s.id, GL_COMPILE_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, BrokenSourceStillMakesAShaderObject) {
    Shader s(2, "void main() { this is not GLSL }", 0);
    EXPECT_EQ(glIsShader(s.id), GL_TRUE);
    EXPECT_EQ(shaderParameter(s.id, GL_COMPILE_STATUS), GL_FALSE);
}

TEST_F(ShaderTest, DestructorDeletesTheShader) {
    Shader* s = new Shader(1, VS_SOURCE, 0);
    unsigned id = s->id;
    delete s;
    EXPECT_EQ(glIsShader(id), GL_FALSE);
}

// --- ShaderProgram: construction, attach and link ---

TEST_F(ShaderTest, FirstProgramCreatesTheDefaultStagesFromTheirOneLineSources) {
    ASSERT_EQ(ShaderProgram::default_vs, nullptr);
    ShaderProgram p;
    ASSERT_NE(ShaderProgram::default_vs, nullptr);
    ASSERT_NE(ShaderProgram::default_fs, nullptr);
    EXPECT_EQ(ShaderProgram::default_vs->type, 1);
    EXPECT_EQ(ShaderProgram::default_fs->type, 2);
    EXPECT_EQ(sourceOf(ShaderProgram::default_vs->id), DEFAULT_VS);
    EXPECT_EQ(sourceOf(ShaderProgram::default_fs->id), DEFAULT_FS);
    EXPECT_EQ(shaderParameter(ShaderProgram::default_vs->id, GL_COMPILE_STATUS), GL_TRUE);
    EXPECT_EQ(shaderParameter(ShaderProgram::default_fs->id, GL_COMPILE_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, LaterProgramsReuseTheDefaultStages) {
    ShaderProgram first;
    Shader* vs = ShaderProgram::default_vs;
    Shader* fs = ShaderProgram::default_fs;
    ShaderProgram second;
    EXPECT_EQ(ShaderProgram::default_vs, vs);
    EXPECT_EQ(ShaderProgram::default_fs, fs);
}

TEST_F(ShaderTest, NewProgramHasNoStagesAndAFreshProgramObject) {
    ShaderProgram p;
    EXPECT_EQ(p.vertex, nullptr);
    EXPECT_EQ(p.fragment, nullptr);
    EXPECT_EQ(p.geometry, nullptr);
    EXPECT_EQ(glIsProgram(p.id), GL_TRUE);
    EXPECT_TRUE(attachedTo(p.id).empty());
}

TEST_F(ShaderTest, AttachRecordsEachStageByItsCode) {
    if (!geometryShadersSupported()) GTEST_SKIP() << "no geometry shaders in this GL";
    Shader vs(1, VS_SOURCE, 0), gs(4, GS_MAGENTA, 0), fs(2, FS_GREEN, 0);
    ShaderProgram p;
    p.attach(&fs);
    p.attach(&gs);
    p.attach(&vs);
    EXPECT_EQ(p.vertex, &vs);
    EXPECT_EQ(p.geometry, &gs);
    EXPECT_EQ(p.fragment, &fs);
    std::vector<GLuint> ids = attachedTo(p.id);
    EXPECT_EQ(ids.size(), 3u);
    EXPECT_TRUE(contains(ids, vs.id) && contains(ids, gs.id) && contains(ids, fs.id));
}

TEST_F(ShaderTest, AttachNullDoesNothing) {
    ShaderProgram p;
    p.attach(nullptr);
    EXPECT_EQ(p.vertex, nullptr);
    EXPECT_EQ(p.fragment, nullptr);
    EXPECT_TRUE(attachedTo(p.id).empty());
}

TEST_F(ShaderTest, AttachOfAnUnknownStageCodeAttachesWithoutRecording) {
    Shader vs(1, VS_SOURCE, 0);
    vs.type = 3;
    ShaderProgram p;
    p.attach(&vs);
    EXPECT_EQ(p.vertex, nullptr);
    EXPECT_EQ(p.fragment, nullptr);
    EXPECT_EQ(p.geometry, nullptr);
    EXPECT_EQ(attachedTo(p.id), std::vector<GLuint>{vs.id});
}

TEST_F(ShaderTest, LinkWithoutStagesAttachesBothDefaultsWithoutRecordingThem) {
    ShaderProgram p;
    p.link();
    std::vector<GLuint> ids = attachedTo(p.id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_vs->id));
    EXPECT_TRUE(contains(ids, ShaderProgram::default_fs->id));
    EXPECT_EQ(p.vertex, nullptr);
    EXPECT_EQ(p.fragment, nullptr);
    EXPECT_EQ(programParameter(p.id, GL_LINK_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, LinkKeepsRecordedStagesAndAddsNoDefaults) {
    Shader vs(1, VS_SOURCE, 0), fs(2, FS_GREEN, 0);
    ShaderProgram p;
    p.attach(&vs);
    p.attach(&fs);
    p.link();
    std::vector<GLuint> ids = attachedTo(p.id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, vs.id) && contains(ids, fs.id));
    EXPECT_EQ(programParameter(p.id, GL_LINK_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, LinkWithOnlyAFragmentStageAddsTheDefaultVertexStage) {
    Shader fs(2, FS_GREEN, 0);
    ShaderProgram p;
    p.attach(&fs);
    p.link();
    std::vector<GLuint> ids = attachedTo(p.id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_vs->id) && contains(ids, fs.id));
}

TEST_F(ShaderTest, DefaultProgramDrawsVertexColours) {
    ShaderProgram p;
    p.link();
    p.bind();
    fillRect(10, 10, 30, 30, 10, 200, 30);
    fillRect(40, 10, 60, 30, 255, 0, 128);
    p.unbind();
    Pixels px = readScreen();
    EXPECT_EQ(px.at(20, 20), rgba(10, 200, 30, 255));
    EXPECT_EQ(px.at(50, 20), rgba(255, 0, 128, 255));
    EXPECT_EQ(px.at(35, 20), rgba(0, 0, 0, 0));
}

TEST_F(ShaderTest, LinkedStagesDecideWhatIsDrawn) {
    // The vertex stage moves everything right by a quarter of the 320-pixel window (80 pixels).
    Shader vs(1, VS_MOVED_RIGHT, 0), fs(2, FS_GREEN, 0);
    ShaderProgram p;
    p.attach(&vs);
    p.attach(&fs);
    p.link();
    p.bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    p.unbind();
    Pixels px = readScreen();
    EXPECT_EQ(px.at(100, 20), rgba(0, 255, 0, 255));
    EXPECT_EQ(px.at(20, 20), rgba(0, 0, 0, 0));
}

TEST_F(ShaderTest, BindMakesTheProgramCurrentAndUnbindClearsIt) {
    ShaderProgram p;
    p.link();
    GLint current = -1;
    p.bind();
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ((unsigned)current, p.id);
    p.unbind();
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(current, 0);
}

TEST_F(ShaderTest, AttributeLocationFindsActiveAttributesOnly) {
    Shader vs(1, "attribute vec4 weight; void main() { gl_FrontColor = gl_Color * weight; gl_Position = ftransform(); }",
              0);
    ShaderProgram p;
    p.attach(&vs);
    p.link();
    EXPECT_GE(p.getAttributeLocation("weight"), 0);
    EXPECT_EQ(p.getAttributeLocation("missing"), -1);
}

TEST_F(ShaderTest, UniformLocationFindsActiveUniformsOnly) {
    Shader fs(2, "uniform vec4 tint; void main() { gl_FragColor = tint; }", 0);
    ShaderProgram p;
    p.attach(&fs);
    p.link();
    EXPECT_GE(p.getUniformLocation("tint"), 0);
    EXPECT_EQ(p.getUniformLocation("missing"), -1);
}

// --- ShaderProgram: destruction ---

TEST_F(ShaderTest, DestroyingAProgramDetachesItsStagesAndLeavesThemAlive) {
    Shader vs(1, VS_SOURCE, 0), fs(2, FS_GREEN, 0);
    ShaderProgram* p = new ShaderProgram();
    p->attach(&vs);
    p->attach(&fs);
    p->link();
    // While current, a deleted program lingers (flagged for deletion) and can still be asked.
    p->bind();
    unsigned id = p->id;
    delete p;
    EXPECT_EQ(programParameter(id, GL_DELETE_STATUS), GL_TRUE);
    EXPECT_EQ(programParameter(id, GL_ATTACHED_SHADERS), 0);
    glUseProgram(0);
    EXPECT_EQ(glIsProgram(id), GL_FALSE);
    EXPECT_EQ(glIsShader(vs.id), GL_TRUE);
    EXPECT_EQ(glIsShader(fs.id), GL_TRUE);
    EXPECT_EQ(shaderParameter(vs.id, GL_DELETE_STATUS), GL_FALSE);
    EXPECT_EQ(shaderParameter(fs.id, GL_DELETE_STATUS), GL_FALSE);
}

TEST_F(ShaderTest, StagesOfADestroyedProgramServeAnotherProgram) {
    Shader vs(1, VS_SOURCE, 0), fs(2, FS_GREEN, 0);
    ShaderProgram* first = new ShaderProgram();
    first->attach(&vs);
    first->attach(&fs);
    first->link();
    delete first;
    ShaderProgram second;
    second.attach(&vs);
    second.attach(&fs);
    second.link();
    EXPECT_EQ(programParameter(second.id, GL_LINK_STATUS), GL_TRUE);
    second.bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    second.unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(0, 255, 0, 255));
}

TEST_F(ShaderTest, DestroyingAProgramKeepsTheDefaultStages) {
    ShaderProgram* p = new ShaderProgram();
    p->link();
    delete p;
    EXPECT_EQ(glIsShader(ShaderProgram::default_vs->id), GL_TRUE);
    EXPECT_EQ(glIsShader(ShaderProgram::default_fs->id), GL_TRUE);
}

// --- ShaderProgram::setUniform ---

namespace {

// One uniform of every kind the overloads send; all of them feed the colour so none is
// optimised away, and GL reports each element back through glGetUniform.
const char* UNIFORMS_FS = "#version 120\n"
                          "uniform int i1;\n"
                          "uniform float f1;\n"
                          "uniform vec2 v2;\n"
                          "uniform vec3 v3;\n"
                          "uniform vec4 v4;\n"
                          "uniform int ia[3];\n"
                          "uniform float fa[3];\n"
                          "uniform vec2 v2a[2];\n"
                          "uniform vec3 v3a[2];\n"
                          "uniform vec4 v4a[2];\n"
                          "uniform mat3x2 m2;\n"
                          "uniform mat3x2 m2a[2];\n"
                          "uniform mat4 m4;\n"
                          "uniform mat4 m4a[2];\n"
                          "void main() {\n"
                          "    float s = float(i1) + f1 + v2.x + v2.y + dot(v3, vec3(1.0)) + dot(v4, vec4(1.0));\n"
                          "    s += float(ia[0] + ia[1] + ia[2]) + fa[0] + fa[1] + fa[2];\n"
                          "    s += dot(v2a[0] + v2a[1], vec2(1.0)) + dot(v3a[0] + v3a[1], vec3(1.0));\n"
                          "    s += dot(v4a[0] + v4a[1], vec4(1.0));\n"
                          "    s += dot(m2 * vec3(1.0) + m2a[0] * vec3(1.0) + m2a[1] * vec3(1.0), vec2(1.0));\n"
                          "    s += dot(m4 * vec4(1.0) + m4a[0] * vec4(1.0) + m4a[1] * vec4(1.0), vec4(1.0));\n"
                          "    gl_FragColor = vec4(s);\n"
                          "}\n";

class UniformTest : public ShaderTest {
protected:
    void SetUp() override {
        ShaderTest::SetUp();
        fs = new Shader(2, UNIFORMS_FS, 0);
        program = new ShaderProgram();
        program->attach(fs);
        program->link();
        ASSERT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);
        program->bind();
    }
    void TearDown() override {
        delete program;
        delete fs;
        ShaderTest::TearDown();
    }

    std::vector<float> floats(const char* name, int n) const {
        std::vector<float> v((size_t)n, -1000.0f);
        glGetUniformfv(program->id, glGetUniformLocation(program->id, name), v.data());
        return v;
    }
    std::vector<int> ints(const char* name, int n) const {
        std::vector<int> v((size_t)n, -1000);
        glGetUniformiv(program->id, glGetUniformLocation(program->id, name), v.data());
        return v;
    }

    Shader* fs = nullptr;
    ShaderProgram* program = nullptr;
};

using Floats = std::vector<float>;
using Ints = std::vector<int>;

} // namespace

TEST_F(UniformTest, IntReachesTheUniform) {
    program->setUniform("i1", 7);
    EXPECT_EQ(ints("i1", 1), Ints{7});
}

TEST_F(UniformTest, FloatReachesTheUniform) {
    program->setUniform("f1", 2.5f);
    EXPECT_EQ(floats("f1", 1), Floats{2.5f});
}

TEST_F(UniformTest, Vec2ReachesTheUniform) {
    program->setUniform("v2", vec2(1.5f, -2.0f));
    EXPECT_EQ(floats("v2", 2), (Floats{1.5f, -2.0f}));
}

TEST_F(UniformTest, Vec3ReachesTheUniform) {
    program->setUniform("v3", vec3(0.25f, 8.0f, -3.5f));
    EXPECT_EQ(floats("v3", 3), (Floats{0.25f, 8.0f, -3.5f}));
}

TEST_F(UniformTest, Vec4ReachesTheUniform) {
    program->setUniform("v4", vec4(1.0f, 2.0f, 3.0f, 4.0f));
    EXPECT_EQ(floats("v4", 4), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
}

TEST_F(UniformTest, IntArrayReachesEveryElement) {
    const int values[3] = {4, -5, 6};
    program->setUniform("ia", values, 3);
    EXPECT_EQ(ints("ia[0]", 1), Ints{4});
    EXPECT_EQ(ints("ia[1]", 1), Ints{-5});
    EXPECT_EQ(ints("ia[2]", 1), Ints{6});
}

TEST_F(UniformTest, IntArrayCountLimitsTheElementsSent) {
    const int zeros[3] = {0, 0, 0};
    program->setUniform("ia", zeros, 3);
    const int values[3] = {9, 9, 9};
    program->setUniform("ia", values, 2);
    EXPECT_EQ(ints("ia[1]", 1), Ints{9});
    EXPECT_EQ(ints("ia[2]", 1), Ints{0});
}

TEST_F(UniformTest, FloatArrayReachesEveryElement) {
    const float values[3] = {0.5f, 1.5f, -7.0f};
    program->setUniform("fa", values, 3);
    EXPECT_EQ(floats("fa[0]", 1), Floats{0.5f});
    EXPECT_EQ(floats("fa[1]", 1), Floats{1.5f});
    EXPECT_EQ(floats("fa[2]", 1), Floats{-7.0f});
}

TEST_F(UniformTest, Vec2ArrayReachesEveryElement) {
    const vec2 values[2] = {vec2(1.0f, 2.0f), vec2(3.0f, 4.0f)};
    program->setUniform("v2a", values, 2);
    EXPECT_EQ(floats("v2a[0]", 2), (Floats{1.0f, 2.0f}));
    EXPECT_EQ(floats("v2a[1]", 2), (Floats{3.0f, 4.0f}));
}

TEST_F(UniformTest, Vec3ArrayReachesEveryElement) {
    const vec3 values[2] = {vec3(1.0f, 2.0f, 3.0f), vec3(-4.0f, -5.0f, -6.0f)};
    program->setUniform("v3a", values, 2);
    EXPECT_EQ(floats("v3a[0]", 3), (Floats{1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(floats("v3a[1]", 3), (Floats{-4.0f, -5.0f, -6.0f}));
}

TEST_F(UniformTest, Vec4ArrayReachesEveryElement) {
    const vec4 values[2] = {vec4(1.0f, 2.0f, 3.0f, 4.0f), vec4(0.5f, 0.25f, 0.125f, 0.0625f)};
    program->setUniform("v4a", values, 2);
    EXPECT_EQ(floats("v4a[0]", 4), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_EQ(floats("v4a[1]", 4), (Floats{0.5f, 0.25f, 0.125f, 0.0625f}));
}

TEST_F(UniformTest, Mat2ArrivesAsAMat3x2ColumnByColumn) {
    // Columns: image of x (1, 2), image of y (3, 4), translation (5, 6).
    program->setUniform("m2", mat2(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f));
    EXPECT_EQ(floats("m2", 6), (Floats{1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f}));
}

TEST_F(UniformTest, Mat2ArrayReachesEveryElement) {
    const mat2 values[2] = {mat2(1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f), mat2(-1.0f, -2.0f, -3.0f, -4.0f, -5.0f, -6.0f)};
    program->setUniform("m2a", values, 2);
    EXPECT_EQ(floats("m2a[0]", 6), (Floats{1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f}));
    EXPECT_EQ(floats("m2a[1]", 6), (Floats{-1.0f, -2.0f, -3.0f, -4.0f, -5.0f, -6.0f}));
}

TEST_F(UniformTest, Mat4ArrivesUntransposed) {
    float values[16];
    for (int i = 0; i < 16; ++i) values[i] = (float)(i + 1);
    program->setUniform("m4", mat4(values));
    EXPECT_EQ(floats("m4", 16), (Floats{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
}

TEST_F(UniformTest, Mat4ArrayReachesEveryElement) {
    float a[16], b[16];
    for (int i = 0; i < 16; ++i) {
        a[i] = (float)i;
        b[i] = (float)(100 + i);
    }
    const mat4 values[2] = {mat4(a), mat4(b)};
    program->setUniform("m4a", values, 2);
    EXPECT_EQ(floats("m4a[0]", 16), (Floats{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(floats("m4a[1]", 16),
              (Floats{100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115}));
}

TEST_F(UniformTest, UniformSetsTheColourThatIsDrawn) {
    ShaderProgram tinted;
    Shader fs2(2, "uniform vec4 tint; void main() { gl_FragColor = tint; }", 0);
    tinted.attach(&fs2);
    tinted.link();
    tinted.bind();
    // 0.2 of 255 is 51, 0.6 of 255 is 153.
    tinted.setUniform("tint", vec4(0.2f, 1.0f, 0.6f, 1.0f));
    fillRect(10, 10, 30, 30, 0, 0, 0);
    tinted.unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(51, 255, 153, 255));
}

// --- GfxUtil::loadShaderFromDisk ---

TEST_F(LoadShaderTest, OnlyAFragmentFileLinksTheDefaultVertexStageWithIt) {
    write("only.frag", FS_FIXED);
    load("only");
    EXPECT_EQ(program->vertex, nullptr);
    EXPECT_EQ(program->geometry, nullptr);
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(program->fragment->type, 2);
    EXPECT_EQ(sourceOf(program->fragment->id), FS_FIXED);
    std::vector<GLuint> ids = attachedTo(program->id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_vs->id));
    EXPECT_TRUE(contains(ids, program->fragment->id));
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 255, 255);
    program->unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(51, 102, 153, 255));
}

TEST_F(LoadShaderTest, NoFilesGiveTheDefaultProgramDrawingVertexColours) {
    load("absent");
    EXPECT_EQ(program->vertex, nullptr);
    EXPECT_EQ(program->geometry, nullptr);
    EXPECT_EQ(program->fragment, nullptr);
    std::vector<GLuint> ids = attachedTo(program->id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_vs->id));
    EXPECT_TRUE(contains(ids, ShaderProgram::default_fs->id));

    program->bind();
    fillRect(10, 10, 30, 30, 10, 200, 30);
    fillRect(40, 10, 60, 30, 200, 40, 250);
    program->unbind();
    Pixels px = readScreen();
    EXPECT_EQ(px.at(20, 20), rgba(10, 200, 30, 255));
    EXPECT_EQ(px.at(50, 20), rgba(200, 40, 250, 255));
}

TEST_F(LoadShaderTest, MissingDirectoryGivesTheDefaultProgram) {
    program = GfxUtil::loadShaderFromDisk((dir + "/nowhere").c_str(), "color");
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(attachedTo(program->id).size(), 2u);
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);
}

TEST_F(LoadShaderTest, OnlyAVertexFileGetsTheDefaultFragmentStage) {
    write("moved.vert", VS_MOVED_RIGHT);
    load("moved");
    ASSERT_NE(program->vertex, nullptr);
    EXPECT_EQ(program->vertex->type, 1);
    EXPECT_EQ(program->fragment, nullptr);
    std::vector<GLuint> ids = attachedTo(program->id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_fs->id));

    program->bind();
    fillRect(10, 10, 30, 30, 10, 200, 30);
    program->unbind();
    // Moved right by 80 pixels, still in its vertex colour.
    Pixels px = readScreen();
    EXPECT_EQ(px.at(100, 20), rgba(10, 200, 30, 255));
    EXPECT_EQ(px.at(20, 20), rgba(0, 0, 0, 0));
}

TEST_F(LoadShaderTest, FilesOfOtherNamesAreIgnored) {
    write("other.frag", FS_GREEN);
    write("colour.frag.bak", FS_GREEN);
    load("colour");
    EXPECT_EQ(program->fragment, nullptr);
}

TEST_F(LoadShaderTest, VertexAndFragmentFilesAreBothUsed) {
    write("pair.vert", VS_MOVED_RIGHT);
    write("pair.frag", FS_GREEN);
    load("pair");
    ASSERT_NE(program->vertex, nullptr);
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(sourceOf(program->vertex->id), VS_MOVED_RIGHT);
    EXPECT_EQ(sourceOf(program->fragment->id), FS_GREEN);
    EXPECT_EQ(attachedTo(program->id).size(), 2u);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    program->unbind();
    EXPECT_EQ(readScreen().at(100, 20), rgba(0, 255, 0, 255));
}

TEST_F(LoadShaderTest, GeometryFileIsAttachedAsAGeometryStage) {
    if (!geometryShadersSupported()) GTEST_SKIP() << "no geometry shaders in this GL";
    write("magenta.geom", GS_MAGENTA);
    load("magenta");
    EXPECT_EQ(program->vertex, nullptr);
    EXPECT_EQ(program->fragment, nullptr);
    ASSERT_NE(program->geometry, nullptr);
    EXPECT_EQ(program->geometry->type, 4);
    EXPECT_EQ(shaderParameter(program->geometry->id, GL_SHADER_TYPE), GL_GEOMETRY_SHADER_EXT);
    std::vector<GLuint> ids = attachedTo(program->id);
    EXPECT_EQ(ids.size(), 3u);
    EXPECT_TRUE(contains(ids, program->geometry->id));
    EXPECT_TRUE(contains(ids, ShaderProgram::default_vs->id));
    EXPECT_TRUE(contains(ids, ShaderProgram::default_fs->id));
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 10, 200, 30);
    program->unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(255, 0, 255, 255));
}

TEST_F(LoadShaderTest, AllThreeFilesMakeTheWholeProgram) {
    if (!geometryShadersSupported()) GTEST_SKIP() << "no geometry shaders in this GL";
    write("full.vert", VS_MOVED_RIGHT);
    write("full.geom", GS_MAGENTA);
    write("full.frag", FS_GREEN);
    load("full");
    ASSERT_NE(program->vertex, nullptr);
    ASSERT_NE(program->geometry, nullptr);
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(sourceOf(program->vertex->id), VS_MOVED_RIGHT);
    EXPECT_EQ(sourceOf(program->geometry->id), GS_MAGENTA);
    EXPECT_EQ(sourceOf(program->fragment->id), FS_GREEN);
    EXPECT_EQ(attachedTo(program->id).size(), 3u);
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    program->unbind();
    // Moved by the vertex stage; the fragment stage has the last word on colour.
    EXPECT_EQ(readScreen().at(100, 20), rgba(0, 255, 0, 255));
}

TEST_F(LoadShaderTest, FileLongerThanTheReservedBufferLoadsWhole) {
    // "// " + 10000 x's + "\n" + the 57-byte main line: 10061 bytes, three reads of up to 4095.
    std::string text = "// " + std::string(10000, 'x') + "\n" + FS_FIXED;
    ASSERT_EQ(text.size(), 10061u);
    write("long.frag", text);
    load("long");
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(shaderParameter(program->fragment->id, GL_SHADER_SOURCE_LENGTH), 10062);
    EXPECT_EQ(sourceOf(program->fragment->id), text);
    EXPECT_EQ(shaderParameter(program->fragment->id, GL_COMPILE_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 255, 255);
    program->unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(51, 102, 153, 255));
}

TEST_F(LoadShaderTest, EachStageStartsFromAnEmptyBuffer) {
    // A long vertex file read first must leave nothing behind in the fragment text.
    std::string vertexText = "// " + std::string(9000, 'v') + "\n" + VS_SOURCE;
    write("two.vert", vertexText);
    write("two.frag", FS_GREEN);
    load("two");
    ASSERT_NE(program->vertex, nullptr);
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(sourceOf(program->vertex->id), vertexText);
    EXPECT_EQ(sourceOf(program->fragment->id), FS_GREEN);
}

TEST_F(LoadShaderTest, FileOfExactlyOneChunkLoadsWhole) {
    // 4095 bytes: one full read, then end of file.
    std::string body = FS_GREEN;
    std::string text = "//" + std::string(4095 - 2 - 1 - body.size(), '-') + "\n" + body;
    ASSERT_EQ(text.size(), 4095u);
    write("exact.frag", text);
    load("exact");
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(sourceOf(program->fragment->id), text);
}

TEST_F(LoadShaderTest, NulByteEndsTheTextOfItsChunkOnly) {
    // Bytes 0..4094 are the first read: a comment line, a NUL, then junk up to the chunk's
    // end. The second read starts at byte 4095 with the real program.
    std::string head = "// first chunk\n";
    std::string junk(4095 - head.size() - 1, '#');
    std::string tail = std::string("\n") + FS_GREEN;
    std::string text = head + std::string(1, '\0') + junk + tail;
    write("nul.frag", text);
    load("nul");
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(sourceOf(program->fragment->id), head + tail);
    EXPECT_EQ(shaderParameter(program->fragment->id, GL_COMPILE_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    program->unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(0, 255, 0, 255));
}

TEST_F(LoadShaderTest, LoadedStagesOutliveTheProgram) {
    write("kept.vert", VS_SOURCE);
    write("kept.frag", FS_GREEN);
    load("kept");
    Shader* vs = program->vertex;
    Shader* fs = program->fragment;
    ASSERT_NE(vs, nullptr);
    ASSERT_NE(fs, nullptr);
    delete program;
    program = nullptr;
    EXPECT_EQ(glIsShader(vs->id), GL_TRUE);
    EXPECT_EQ(glIsShader(fs->id), GL_TRUE);
    delete vs;
    delete fs;
}

// --- Reports of stages that do not compile and programs that do not link ---

namespace {

const char* FS_BROKEN = "void main() { this is not GLSL }";
// Compiles, but names a function that no stage defines, so the program cannot link.
const char* FS_UNRESOLVED = "void paint(); void main() { paint(); }";

// What a call wrote on standard error.
template <typename Call> std::string errorsOf(Call call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

// Whether `text` is exactly one line starting with `prefix` and going on after it.
bool isOneLineAfter(const std::string& text, const std::string& prefix) {
    bool isOneLine = text.find('\n') == text.size() - 1;
    return text.rfind(prefix, 0) == 0 && text.size() > prefix.size() + 1 && isOneLine;
}

} // namespace

TEST_F(ShaderTest, SourceThatDoesNotCompileIsReportedInOneLineUnderItsName) {
    std::string errors = errorsOf([] {
        Shader s(2, FS_BROKEN, 0, "shaders/broken.frag");
        EXPECT_FALSE(s.isCompiled());
    });
    EXPECT_TRUE(isOneLineAfter(errors, "Could not compile shaders/broken.frag: ")) << errors;
}

TEST_F(ShaderTest, SourceWithoutANameIsReportedByItsStage) {
    std::string errors = errorsOf([] { Shader s(1, FS_BROKEN, 0); });
    EXPECT_TRUE(isOneLineAfter(errors, "Could not compile vertex shader: ")) << errors;
}

TEST_F(ShaderTest, EmptySourceIsReportedAsEmpty) {
    std::string errors = errorsOf([] {
        Shader s(1, "", 0, "shaders/empty.vert");
        EXPECT_FALSE(s.isCompiled());
    });
    EXPECT_EQ(errors, "Could not compile shaders/empty.vert: empty source\n");
}

TEST_F(ShaderTest, SourceThatCompilesIsNotReported) {
    std::string errors = errorsOf([] {
        Shader s(2, FS_GREEN, 0, "shaders/green.frag");
        EXPECT_TRUE(s.isCompiled());
    });
    EXPECT_EQ(errors, "");
}

TEST_F(ShaderTest, UnknownStageCodeIsNotCompiled) {
    Shader s(3, VS_SOURCE, 0);
    EXPECT_FALSE(s.isCompiled());
}

TEST_F(ShaderTest, AttachLeavesOutAStageThatDidNotCompileAndLinkUsesTheDefault) {
    testing::internal::CaptureStderr();
    Shader broken(2, FS_BROKEN, 0);
    testing::internal::GetCapturedStderr();
    ShaderProgram p;
    p.attach(&broken);
    EXPECT_EQ(p.fragment, nullptr);
    EXPECT_TRUE(attachedTo(p.id).empty());
    std::string errors = errorsOf([&] { p.link(); });
    EXPECT_EQ(errors, "");
    std::vector<GLuint> ids = attachedTo(p.id);
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(contains(ids, ShaderProgram::default_fs->id));
    EXPECT_EQ(programParameter(p.id, GL_LINK_STATUS), GL_TRUE);
}

TEST_F(ShaderTest, ProgramThatDoesNotLinkIsReportedInOneLine) {
    Shader fs(2, FS_UNRESOLVED, 0);
    ASSERT_TRUE(fs.isCompiled());
    ShaderProgram p;
    p.attach(&fs);
    std::string errors = errorsOf([&] { p.link(); });
    EXPECT_EQ(programParameter(p.id, GL_LINK_STATUS), GL_FALSE);
    std::string prefix = "Could not link shader program " + std::to_string(p.id) + ": ";
    EXPECT_TRUE(isOneLineAfter(errors, prefix)) << errors;
}

TEST_F(LoadShaderTest, FileThatDoesNotCompileIsReportedByItsPathAndTheDefaultStageDraws) {
    write("broken.frag", FS_BROKEN);
    std::string errors = errorsOf([&] { load("broken"); });
    EXPECT_TRUE(isOneLineAfter(errors, "Could not compile " + dir + "/broken.frag: ")) << errors;
    EXPECT_EQ(program->fragment, nullptr);
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 10, 200, 30);
    program->unbind();
    EXPECT_EQ(readScreen().at(20, 20), rgba(10, 200, 30, 255));
}

TEST_F(LoadShaderTest, EmptyFileIsReportedAsEmptyAndTheDefaultStageDraws) {
    write("hollow.vert", "");
    write("hollow.frag", FS_GREEN);
    std::string errors = errorsOf([&] { load("hollow"); });
    EXPECT_EQ(errors, "Could not compile " + dir + "/hollow.vert: empty source\n");
    EXPECT_EQ(program->vertex, nullptr);
    ASSERT_NE(program->fragment, nullptr);
    EXPECT_EQ(programParameter(program->id, GL_LINK_STATUS), GL_TRUE);

    program->bind();
    fillRect(10, 10, 30, 30, 255, 0, 0);
    program->unbind();
    // The default vertex stage leaves the square where it was drawn.
    EXPECT_EQ(readScreen().at(20, 20), rgba(0, 255, 0, 255));
}

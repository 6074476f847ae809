// The programs under shaders/ compile and link under Mesa, and the ones the renderer draws
// with give the fixed-function results pixel for pixel.
#define GL_GLEXT_PROTOTYPES

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <SDL/SDL.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

namespace {

const char* const PROGRAM_NAMES[] = {
    "color_fixed", "texture_fixed", "color", "texture", "color_extract", "hblur", "vblur",
};

// Programs that sample the image bound to texture unit 0 through the uniform "texture".
const char* const TEXTURED_PROGRAM_NAMES[] = {
    "texture_fixed", "texture", "color_extract", "hblur", "vblur",
};

// Pixels of the test window.
const int WINDOW_SIZE = 64;

// The blur kernel the blur programs promise: sigma 2 texels, taps at -5..5.
const double BLUR_SIGMA = 2.0;
const int BLUR_RADIUS = 5;

struct Pixel {
    int r, g, b, a;
};

struct Vertex {
    float x, y;
    float s, t;
    unsigned char r, g, b, a;
};

std::string stagePath(const char* name, const char* suffix)
{
    return std::string(ASSET_ROOT) + "/shaders/" + name + suffix;
}

// Returns false when the file does not open.
bool readText(const std::string& path, std::string* text)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    std::ostringstream buffer;
    buffer << file.rdbuf();
    *text = buffer.str();
    return true;
}

// The compiled stage, or 0 with the reason in *log.
GLuint compileStage(GLenum type, const std::string& path, std::string* log)
{
    std::string source;
    if (!readText(path, &source)) {
        *log = path + ": cannot open";
        return 0;
    }
    GLuint shader = glCreateShader(type);
    const char* text = source.c_str();
    GLint length = static_cast<GLint>(source.size());
    glShaderSource(shader, 1, &text, &length);
    glCompileShader(shader);
    GLint status = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status != GL_TRUE) {
        char info[4096] = "";
        glGetShaderInfoLog(shader, sizeof info, nullptr, info);
        *log = path + " does not compile:\n" + info;
        glDeleteShader(shader);
        return 0;
    }
    return shader;
}

// Builds a program from its vertex and fragment files, as the game's loader finds them.
// Returns 0 with the compile or link log in *log on failure.
GLuint buildProgram(const char* name, std::string* log)
{
    GLuint vertex = compileStage(GL_VERTEX_SHADER, stagePath(name, ".vert"), log);
    if (vertex == 0) {
        return 0;
    }
    GLuint fragment = compileStage(GL_FRAGMENT_SHADER, stagePath(name, ".frag"), log);
    if (fragment == 0) {
        glDeleteShader(vertex);
        return 0;
    }
    GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    // The program keeps its stages alive until it is deleted.
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint status = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    if (status != GL_TRUE) {
        char info[4096] = "";
        glGetProgramInfoLog(program, sizeof info, nullptr, info);
        *log = std::string(name) + " does not link:\n" + info;
        glDeleteProgram(program);
        return 0;
    }
    return program;
}

// One window and GL context for every test of the process.
class ShaderAssetTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        ASSERT_NE(SDL_SetVideoMode(WINDOW_SIZE, WINDOW_SIZE, 32, SDL_OPENGL), nullptr) << SDL_GetError();
    }

    static void TearDownTestSuite() { SDL_Quit(); }

    void SetUp() override
    {
        glViewport(0, 0, WINDOW_SIZE, WINDOW_SIZE);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_CULL_FACE);
        glDisable(GL_DITHER);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    void TearDown() override
    {
        glUseProgram(0);
        if (program != 0) {
            glDeleteProgram(program);
        }
        if (texture != 0) {
            glDeleteTextures(1, &texture);
        }
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }

    // Builds and binds the named program with "texture" on unit 0; fails the test on error.
    void useProgram(const char* name)
    {
        std::string log;
        program = buildProgram(name, &log);
        ASSERT_NE(program, 0u) << log;
        glUseProgram(program);
        GLint location = glGetUniformLocation(program, "texture");
        if (location >= 0) {
            glUniform1i(location, 0);
        }
    }

    // An RGBA image of width x height texels, rows from the bottom, nearest filtering.
    void makeTexture(int width, int height, const unsigned char* texels)
    {
        glGenTextures(1, &texture);
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    }

    // Draws the quad (x0, y0)-(x1, y1) through client arrays, as the renderer does, with the
    // whole texture stretched over it and one colour at every corner.
    static void drawQuad(float x0, float y0, float x1, float y1, Pixel color)
    {
        auto r = static_cast<unsigned char>(color.r);
        auto g = static_cast<unsigned char>(color.g);
        auto b = static_cast<unsigned char>(color.b);
        auto a = static_cast<unsigned char>(color.a);
        const Vertex quad[4] = {
            {x0, y0, 0, 0, r, g, b, a},
            {x1, y0, 1, 0, r, g, b, a},
            {x1, y1, 1, 1, r, g, b, a},
            {x0, y1, 0, 1, r, g, b, a},
        };
        // The current colour must not leak into the result: the array colour wins.
        glColor4f(0.25f, 0.5f, 0.75f, 1.0f);
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &quad[0].x);
        glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), &quad[0].s);
        glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), &quad[0].r);
        glDrawArrays(GL_QUADS, 0, 4);
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }

    // Draws the texture over the bottom-left width x height pixels, one texel per pixel.
    static void drawTexelsOneToOne(int width, int height)
    {
        glViewport(0, 0, width, height);
        drawQuad(-1, -1, 1, 1, {255, 255, 255, 255});
        glViewport(0, 0, WINDOW_SIZE, WINDOW_SIZE);
    }

    // Projection in window pixels, model-view shifted right by dx pixels, both through the
    // fixed-function matrix stacks the renderer loads.
    static void placeInWindowPixelsShifted(float dx)
    {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, WINDOW_SIZE, 0, WINDOW_SIZE, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslatef(dx, 0, 0);
    }

    // Window pixel (x, y), counted from the bottom-left corner.
    static Pixel readPixel(int x, int y)
    {
        unsigned char rgba[4] = {0, 0, 0, 0};
        glFinish();
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        return {rgba[0], rgba[1], rgba[2], rgba[3]};
    }

    GLuint program = 0;
    GLuint texture = 0;
};

::testing::AssertionResult rgbEquals(Pixel expected, Pixel actual, int tolerance = 0)
{
    if (std::abs(expected.r - actual.r) <= tolerance && std::abs(expected.g - actual.g) <= tolerance &&
        std::abs(expected.b - actual.b) <= tolerance) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "expected rgb (" << expected.r << ", " << expected.g << ", " << expected.b << ") within "
           << tolerance << ", got (" << actual.r << ", " << actual.g << ", " << actual.b << ")";
}

// exp(-i^2 / (2 sigma^2)) over the taps -BLUR_RADIUS..BLUR_RADIUS, scaled to sum to 1.
double blurWeight(int offset)
{
    double total = 0;
    for (int i = -BLUR_RADIUS; i <= BLUR_RADIUS; i++) {
        total += std::exp(-i * i / (2 * BLUR_SIGMA * BLUR_SIGMA));
    }
    return std::exp(-offset * offset / (2 * BLUR_SIGMA * BLUR_SIGMA)) / total;
}

// A black 16 x 16 image with one white line: column 8 when vertical, else row 8.
const int LINE_IMAGE_SIZE = 16;
const int LINE_POSITION = 8;

void makeLineTexels(bool vertical, unsigned char* texels)
{
    for (int y = 0; y < LINE_IMAGE_SIZE; y++) {
        for (int x = 0; x < LINE_IMAGE_SIZE; x++) {
            unsigned char* texel = texels + 4 * (y * LINE_IMAGE_SIZE + x);
            bool onLine = (vertical ? x : y) == LINE_POSITION;
            texel[0] = texel[1] = texel[2] = onLine ? 255 : 0;
            texel[3] = 255;
        }
    }
}

// Builds, compiles and links one program per test so that a failure names the program.
class ShaderProgramBuild : public ShaderAssetTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ShaderProgramBuild, HasVertexAndFragmentFilesTargetingGlsl120OrEarlier)
{
    for (const char* suffix : {".vert", ".frag"}) {
        std::string path = stagePath(GetParam(), suffix);
        std::string source;
        ASSERT_TRUE(readText(path, &source)) << path << " is missing";
        size_t at = source.find("#version");
        if (at != std::string::npos) {
            int version = std::atoi(source.c_str() + at + 8);
            EXPECT_LE(version, 120) << path << " asks for GLSL " << version << ", beyond OpenGL 2.1";
        }
    }
}

TEST_P(ShaderProgramBuild, CompilesAndLinks)
{
    std::string log;
    program = buildProgram(GetParam(), &log);
    EXPECT_NE(program, 0u) << log;
}

INSTANTIATE_TEST_SUITE_P(EveryProgram, ShaderProgramBuild, ::testing::ValuesIn(PROGRAM_NAMES),
                         [](const ::testing::TestParamInfo<const char*>& info) { return std::string(info.param); });

TEST_F(ShaderAssetTest, TexturedProgramsReadTheUniformNamedTexture)
{
    for (const char* name : TEXTURED_PROGRAM_NAMES) {
        std::string log;
        GLuint built = buildProgram(name, &log);
        ASSERT_NE(built, 0u) << log;
        EXPECT_GE(glGetUniformLocation(built, "texture"), 0) << name;
        glDeleteProgram(built);
    }
}

TEST_F(ShaderAssetTest, ColorFixedOutputsTheVertexColour)
{
    useProgram("color_fixed");
    drawQuad(-1, -1, 1, 1, {200, 100, 37, 255});
    EXPECT_TRUE(rgbEquals({200, 100, 37, 255}, readPixel(5, 7)));
    EXPECT_TRUE(rgbEquals({200, 100, 37, 255}, readPixel(60, 50)));
}

TEST_F(ShaderAssetTest, ColorFixedPlacesVerticesThroughTheFixedFunctionMatrices)
{
    useProgram("color_fixed");
    // The quad 0..16 lands on the pixel columns 16..31.
    placeInWindowPixelsShifted(16);
    drawQuad(0, 0, 16, WINDOW_SIZE, {0, 255, 0, 255});
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(15, 32)));
    EXPECT_TRUE(rgbEquals({0, 255, 0, 255}, readPixel(16, 32)));
    EXPECT_TRUE(rgbEquals({0, 255, 0, 255}, readPixel(31, 32)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(32, 32)));
}

TEST_F(ShaderAssetTest, TextureFixedMultipliesTexelByVertexColour)
{
    // Bottom row: (204, 51, 255) and white; top row: (0, 128, 204) and (51, 102, 153).
    const unsigned char texels[] = {
        204, 51, 255, 255,   255, 255, 255, 255,
        0, 128, 204, 255,    51, 102, 153, 255,
    };
    makeTexture(2, 2, texels);
    useProgram("texture_fixed");
    // The colour is (0.6, 1.0, 0.4); each channel is texel / 255 * colour rounded to bytes.
    drawQuad(-1, -1, 1, 1, {153, 255, 102, 255});
    EXPECT_TRUE(rgbEquals({122, 51, 102, 255}, readPixel(16, 16)));  // 0.8 * 0.6 = 0.48 -> 122.4
    EXPECT_TRUE(rgbEquals({153, 255, 102, 255}, readPixel(48, 16)));
    EXPECT_TRUE(rgbEquals({0, 128, 82, 255}, readPixel(16, 48)));    // 0.8 * 0.4 = 0.32 -> 81.6
    EXPECT_TRUE(rgbEquals({31, 102, 61, 255}, readPixel(48, 48)));   // 0.12 -> 30.6, 0.24 -> 61.2
}

TEST_F(ShaderAssetTest, TextureFixedMultipliesTexelAlphaByVertexAlpha)
{
    const unsigned char texel[] = {255, 255, 255, 204};
    makeTexture(1, 1, texel);
    useProgram("texture_fixed");
    // Blending by source alpha alone writes the product of the alphas into every channel.
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ZERO);
    drawQuad(-1, -1, 1, 1, {255, 255, 255, 153});
    EXPECT_TRUE(rgbEquals({122, 122, 122, 255}, readPixel(32, 32)));  // 0.8 * 0.6 = 0.48 -> 122.4
}

TEST_F(ShaderAssetTest, TextureProgramMatchesTextureFixed)
{
    const unsigned char texel[] = {204, 51, 255, 255};
    makeTexture(1, 1, texel);
    useProgram("texture");
    placeInWindowPixelsShifted(16);
    drawQuad(0, 0, 16, WINDOW_SIZE, {153, 255, 102, 255});
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(15, 32)));
    EXPECT_TRUE(rgbEquals({122, 51, 102, 255}, readPixel(16, 32)));
    EXPECT_TRUE(rgbEquals({122, 51, 102, 255}, readPixel(31, 32)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(32, 32)));
}

TEST_F(ShaderAssetTest, ColorProgramMatchesColorFixed)
{
    useProgram("color");
    placeInWindowPixelsShifted(16);
    drawQuad(0, 0, 16, WINDOW_SIZE, {200, 100, 37, 255});
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(15, 32)));
    EXPECT_TRUE(rgbEquals({200, 100, 37, 255}, readPixel(16, 32)));
    EXPECT_TRUE(rgbEquals({200, 100, 37, 255}, readPixel(31, 32)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(32, 32)));
}

TEST_F(ShaderAssetTest, ColorExtractKeepsOnlyLightAboveTheThreshold)
{
    // Left to right: white, grey 0.4 (below the 0.6 threshold), grey 0.8.
    const unsigned char texels[] = {
        255, 255, 255, 255,   102, 102, 102, 255,   204, 204, 204, 255,   0, 0, 0, 255,
    };
    makeTexture(4, 1, texels);
    useProgram("color_extract");
    drawQuad(-1, -1, 1, 1, {255, 255, 255, 255});
    EXPECT_TRUE(rgbEquals({255, 255, 255, 255}, readPixel(8, 32)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(24, 32)));
    // 0.8 keeps (0.8 - 0.6) / (1 - 0.6) = half of itself: 0.4 -> 102.
    EXPECT_TRUE(rgbEquals({102, 102, 102, 255}, readPixel(40, 32)));
}

TEST_F(ShaderAssetTest, HBlurKeepsAnEvenImage)
{
    unsigned char texels[16 * 16 * 4];
    for (int i = 0; i < 16 * 16; i++) {
        texels[4 * i + 0] = 200;
        texels[4 * i + 1] = 120;
        texels[4 * i + 2] = 40;
        texels[4 * i + 3] = 255;
    }
    makeTexture(16, 16, texels);
    useProgram("hblur");
    glUniform1f(glGetUniformLocation(program, "texelSize"), 1.0f / 16);
    drawTexelsOneToOne(16, 16);
    EXPECT_TRUE(rgbEquals({200, 120, 40, 255}, readPixel(0, 0)));
    EXPECT_TRUE(rgbEquals({200, 120, 40, 255}, readPixel(8, 8)));
    EXPECT_TRUE(rgbEquals({200, 120, 40, 255}, readPixel(15, 3)));
}

TEST_F(ShaderAssetTest, HBlurSpreadsAVerticalLineAlongRowsByTheGaussianWeights)
{
    unsigned char texels[LINE_IMAGE_SIZE * LINE_IMAGE_SIZE * 4];
    makeLineTexels(true, texels);
    makeTexture(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE, texels);
    useProgram("hblur");
    glUniform1f(glGetUniformLocation(program, "texelSize"), 1.0f / LINE_IMAGE_SIZE);
    drawTexelsOneToOne(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE);
    for (int offset = -BLUR_RADIUS; offset <= BLUR_RADIUS; offset++) {
        int level = static_cast<int>(std::lround(255 * blurWeight(offset)));
        for (int y : {2, 8, 13}) {
            EXPECT_TRUE(rgbEquals({level, level, level, 255}, readPixel(LINE_POSITION + offset, y), 1))
                << "offset " << offset << ", row " << y;
        }
    }
    // Beyond the kernel nothing arrives.
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(LINE_POSITION - BLUR_RADIUS - 1, 8)));
}

TEST_F(ShaderAssetTest, HBlurLeavesAHorizontalLineSharp)
{
    unsigned char texels[LINE_IMAGE_SIZE * LINE_IMAGE_SIZE * 4];
    makeLineTexels(false, texels);
    makeTexture(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE, texels);
    useProgram("hblur");
    glUniform1f(glGetUniformLocation(program, "texelSize"), 1.0f / LINE_IMAGE_SIZE);
    drawTexelsOneToOne(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE);
    EXPECT_TRUE(rgbEquals({255, 255, 255, 255}, readPixel(5, LINE_POSITION)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(5, LINE_POSITION + 1)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(5, LINE_POSITION - 1)));
}

TEST_F(ShaderAssetTest, VBlurSpreadsAHorizontalLineAlongColumnsByTheGaussianWeights)
{
    unsigned char texels[LINE_IMAGE_SIZE * LINE_IMAGE_SIZE * 4];
    makeLineTexels(false, texels);
    makeTexture(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE, texels);
    useProgram("vblur");
    glUniform1f(glGetUniformLocation(program, "texelSize"), 1.0f / LINE_IMAGE_SIZE);
    drawTexelsOneToOne(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE);
    for (int offset = -BLUR_RADIUS; offset <= BLUR_RADIUS; offset++) {
        int level = static_cast<int>(std::lround(255 * blurWeight(offset)));
        for (int x : {2, 8, 13}) {
            EXPECT_TRUE(rgbEquals({level, level, level, 255}, readPixel(x, LINE_POSITION + offset), 1))
                << "offset " << offset << ", column " << x;
        }
    }
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(8, LINE_POSITION + BLUR_RADIUS + 1)));
}

TEST_F(ShaderAssetTest, VBlurLeavesAVerticalLineSharp)
{
    unsigned char texels[LINE_IMAGE_SIZE * LINE_IMAGE_SIZE * 4];
    makeLineTexels(true, texels);
    makeTexture(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE, texels);
    useProgram("vblur");
    glUniform1f(glGetUniformLocation(program, "texelSize"), 1.0f / LINE_IMAGE_SIZE);
    drawTexelsOneToOne(LINE_IMAGE_SIZE, LINE_IMAGE_SIZE);
    EXPECT_TRUE(rgbEquals({255, 255, 255, 255}, readPixel(LINE_POSITION, 5)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(LINE_POSITION + 1, 5)));
    EXPECT_TRUE(rgbEquals({0, 0, 0, 255}, readPixel(LINE_POSITION - 1, 5)));
}

}  // namespace

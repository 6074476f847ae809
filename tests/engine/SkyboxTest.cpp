#include "engine/Skybox.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "engine/Camera.h"
#include "engine/Color.h"
#include "engine/ImageLoader.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "engine/Vector.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GLFixture.h"

using orvel::Camera;
using orvel::Color;
using orvel::ImageLoader;
using orvel::Skybox;
using orvel::Surface;
using orvel::Texture;
using orvel::vec3;
using testing_support::GLTest;

namespace {

const uint32_t RED = Color::getColor(255, 0, 0, 255);
const uint32_t GREEN = Color::getColor(0, 255, 0, 255);
const uint32_t BLUE = Color::getColor(0, 0, 255, 255);
const uint32_t YELLOW = Color::getColor(255, 255, 0, 255);
const uint32_t MAGENTA = Color::getColor(255, 0, 255, 255);
const uint32_t CYAN = Color::getColor(0, 255, 255, 255);
const uint32_t WHITE = Color::getColor(255, 255, 255, 255);
const uint32_t BACKGROUND = 0;

std::unique_ptr<Texture> solidTexture(uint32_t color) {
    Surface s(8, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) s.setPixel(x, y, color);
    return std::unique_ptr<Texture>(new Texture(&s));
}

// 64 x 64, one colour per quarter of the image (top is the image's first row):
// top-left red, top-right green, bottom-left blue, bottom-right white.
std::unique_ptr<Texture> quarterTexture() {
    Surface s(64, 64);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) s.setPixel(x, y, y < 32 ? (x < 32 ? RED : GREEN) : (x < 32 ? BLUE : WHITE));
    return std::unique_ptr<Texture>(new Texture(&s));
}

// A square window, so the view is as wide as it is high.
class SkyboxTest : public GLTest {
protected:
    static const int SIZE = 256;

    void SetUp() override {
        openWindow(SIZE, SIZE);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glColor4f(1, 1, 1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }

    // A camera at the origin looking along `direction` with `up` towards the top of the screen.
    static Camera looking(const vec3& direction, const vec3& up = vec3(0, 1, 0)) {
        Camera c;
        c.direction = direction;
        c.up = up;
        return c;
    }

    // Clears the screen, draws `sky` seen along `direction` and reads the result back.
    static Pixels drawSeen(Skybox& sky, const vec3& direction, const vec3& up = vec3(0, 1, 0)) {
        glClear(GL_COLOR_BUFFER_BIT);
        Camera c = looking(direction, up);
        sky.draw(&c);
        return readScreen();
    }

    // The centre pixel of a sky with a plain white front face at `brightness`, seen head on.
    static uint32_t whiteFrontAt(float brightness) {
        std::unique_ptr<Texture> white = solidTexture(WHITE);
        Skybox sky;
        sky.front = white.get();
        sky.brightness = brightness;
        return drawSeen(sky, vec3(0, 0, -1)).at(128, 128);
    }

    // One distinctly coloured texture per face.
    void giveEachFaceItsColour(Skybox& sky) {
        front = solidTexture(RED);
        left = solidTexture(GREEN);
        back = solidTexture(BLUE);
        right = solidTexture(YELLOW);
        top = solidTexture(MAGENTA);
        bottom = solidTexture(CYAN);
        sky.front = front.get();
        sky.left = left.get();
        sky.back = back.get();
        sky.right = right.get();
        sky.top = top.get();
        sky.bottom = bottom.get();
    }

    std::unique_ptr<Texture> front, left, back, right, top, bottom;
};

} // namespace

TEST_F(SkyboxTest, ConstructsWithoutTexturesAtFullBrightnessUnrotated) {
    Skybox sky;
    EXPECT_EQ(sky.left, nullptr);
    EXPECT_EQ(sky.right, nullptr);
    EXPECT_EQ(sky.front, nullptr);
    EXPECT_EQ(sky.back, nullptr);
    EXPECT_EQ(sky.top, nullptr);
    EXPECT_EQ(sky.bottom, nullptr);
    EXPECT_EQ(sky.brightness, 1.0f);
    EXPECT_EQ(sky.rotX, 0.0f);
    EXPECT_EQ(sky.rotY, 0.0f);
    EXPECT_EQ(sky.rotZ, 0.0f);
}

TEST_F(SkyboxTest, EachTextureLiesOnItsOwnFace) {
    Skybox sky;
    giveEachFaceItsColour(sky);
    // The face drawn with `left` is at x = +1, the one with `right` at x = -1.
    EXPECT_EQ(drawSeen(sky, vec3(0, 0, -1)).at(128, 128), RED);
    EXPECT_EQ(drawSeen(sky, vec3(1, 0, 0)).at(128, 128), GREEN);
    EXPECT_EQ(drawSeen(sky, vec3(0, 0, 1)).at(128, 128), BLUE);
    EXPECT_EQ(drawSeen(sky, vec3(-1, 0, 0)).at(128, 128), YELLOW);
    EXPECT_EQ(drawSeen(sky, vec3(0, 1, 0), vec3(0, 0, -1)).at(128, 128), MAGENTA);
    EXPECT_EQ(drawSeen(sky, vec3(0, -1, 0), vec3(0, 0, -1)).at(128, 128), CYAN);
}

TEST_F(SkyboxTest, FacesLayTheirImagesOutByTheirCoordinateTables) {
    std::unique_ptr<Texture> quarters = quarterTexture();
    Skybox sky;
    sky.front = sky.left = sky.back = sky.right = sky.top = sky.bottom = quarters.get();

    // Screen points 40 pixels up-left, up-right, down-left and down-right of the centre.
    struct View {
        const char* face;
        vec3 direction, up;
        uint32_t upperLeft, upperRight, lowerLeft, lowerRight;
    };
    // Worked out from the corner tables: seen from inside, the four side faces and the bottom
    // show their images mirrored left to right (s grows towards the screen's left); the top,
    // seen with the front face above, shows it upside down (t grows towards the screen's top).
    const View views[] = {
        {"front", vec3(0, 0, -1), vec3(0, 1, 0), GREEN, RED, WHITE, BLUE},
        {"left", vec3(1, 0, 0), vec3(0, 1, 0), GREEN, RED, WHITE, BLUE},
        {"back", vec3(0, 0, 1), vec3(0, 1, 0), GREEN, RED, WHITE, BLUE},
        {"right", vec3(-1, 0, 0), vec3(0, 1, 0), GREEN, RED, WHITE, BLUE},
        {"top", vec3(0, 1, 0), vec3(0, 0, -1), BLUE, WHITE, RED, GREEN},
        {"bottom", vec3(0, -1, 0), vec3(0, 0, -1), GREEN, RED, WHITE, BLUE},
    };
    for (const View& v : views) {
        Pixels p = drawSeen(sky, v.direction, v.up);
        EXPECT_EQ(p.at(88, 88), v.upperLeft) << v.face;
        EXPECT_EQ(p.at(168, 88), v.upperRight) << v.face;
        EXPECT_EQ(p.at(88, 168), v.lowerLeft) << v.face;
        EXPECT_EQ(p.at(168, 168), v.lowerRight) << v.face;
    }
}

TEST_F(SkyboxTest, BrightnessHalfDrawsColourBytes255And127) {
    // (int)(255 * 0.5) = 127 for green, blue and alpha; red stays 255. Blending is off, so
    // the white texture passes the vertex colour to the screen unchanged, alpha included.
    EXPECT_EQ(whiteFrontAt(0.5f), Color::getColor(255, 127, 127, 127));
}

TEST_F(SkyboxTest, BrightnessOfTheGameTintsGreenBlueAndAlphaTo209) {
    // 255 * 0.82 = 209.1
    EXPECT_EQ(whiteFrontAt(0.82f), Color::getColor(255, 209, 209, 209));
}

TEST_F(SkyboxTest, BrightnessIsClampedToTheByteRange) {
    EXPECT_EQ(whiteFrontAt(2.0f), Color::getColor(255, 255, 255, 255));
    EXPECT_EQ(whiteFrontAt(-1.0f), Color::getColor(255, 0, 0, 0));
}

TEST_F(SkyboxTest, FacesAreDrawnFrontLeftBackRightThenTopAndBottom) {
    // Drawn as points, the three faces meeting at a cube corner put their corner on the same
    // pixel, and the face drawn last keeps it.
    Skybox sky;
    giveEachFaceItsColour(sky);
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    glPointSize(4);

    // The top and the bottom come after every side face.
    EXPECT_EQ(drawSeen(sky, vec3(1, 1, -1)).at(127, 127), MAGENTA);
    EXPECT_EQ(drawSeen(sky, vec3(-1, 1, 1)).at(127, 127), MAGENTA);
    EXPECT_EQ(drawSeen(sky, vec3(1, -1, 1)).at(127, 127), CYAN);
    EXPECT_EQ(drawSeen(sky, vec3(-1, -1, -1)).at(127, 127), CYAN);

    // Among the side faces: left after front, back after left, right after back and front.
    sky.top = sky.bottom = nullptr;
    EXPECT_EQ(drawSeen(sky, vec3(1, 1, -1)).at(127, 127), GREEN);
    EXPECT_EQ(drawSeen(sky, vec3(1, 1, 1)).at(127, 127), BLUE);
    EXPECT_EQ(drawSeen(sky, vec3(-1, 1, 1)).at(127, 127), YELLOW);
    EXPECT_EQ(drawSeen(sky, vec3(-1, 1, -1)).at(127, 127), YELLOW);
}

TEST_F(SkyboxTest, BottomIsDrawnAfterTopAndKeepsTheBinding) {
    Skybox sky;
    giveEachFaceItsColour(sky);
    Camera c = looking(vec3(0, 0, -1));
    GLint bound = 0;
    sky.draw(&c);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ((unsigned)bound, bottom->id);
    sky.bottom = nullptr;
    sky.draw(&c);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ((unsigned)bound, top->id);
}

TEST_F(SkyboxTest, OnlyFacesWithATextureAreDrawn) {
    std::unique_ptr<Texture> red = solidTexture(RED);
    Skybox sky;
    EXPECT_EQ(drawSeen(sky, vec3(0, 0, -1)).at(128, 128), BACKGROUND);
    sky.front = red.get();
    EXPECT_EQ(drawSeen(sky, vec3(0, 0, -1)).at(128, 128), RED);
    EXPECT_EQ(drawSeen(sky, vec3(1, 0, 0)).at(128, 128), BACKGROUND);
}

TEST_F(SkyboxTest, RotatesAboutZThenYThenX) {
    Skybox sky;
    giveEachFaceItsColour(sky);
    sky.rotX = sky.rotY = sky.rotZ = 90;
    // A corner v ends up at Rz(Ry(Rx v)): the left face's centre (1, 0, 0) goes to (1, 0, 0),
    // (0, 0, -1), (0, 0, -1); the front's (0, 0, -1) to (0, 1, 0), (0, 1, 0), (-1, 0, 0); the
    // top's (0, 1, 0) to (0, 0, 1), (1, 0, 0), (0, 1, 0).
    EXPECT_EQ(drawSeen(sky, vec3(0, 0, -1)).at(128, 128), GREEN);
    EXPECT_EQ(drawSeen(sky, vec3(-1, 0, 0)).at(128, 128), RED);
    EXPECT_EQ(drawSeen(sky, vec3(0, 1, 0), vec3(0, 0, -1)).at(128, 128), MAGENTA);
}

TEST_F(SkyboxTest, BoxStaysCentredOnTheViewerWhereverTheEyeIs) {
    std::unique_ptr<Texture> red = solidTexture(RED);
    Skybox sky;
    sky.front = red.get();
    Camera c = looking(vec3(0, 0, -1));
    c.eye = vec3(0, 0, 500); // beyond zFar, were the box moved away from the eye
    sky.draw(&c);
    EXPECT_EQ(readScreen().at(128, 128), RED);
}

TEST_F(SkyboxTest, DrawRestoresModelViewAndLeavesTheCamerasProjection) {
    std::unique_ptr<Texture> red = solidTexture(RED);
    Skybox sky;
    sky.front = red.get();
    sky.rotZ = 30;
    const float known[16] = {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 5, 6, 7, 1};
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(known);
    Camera c = looking(vec3(0, 0, -1));
    sky.draw(&c);

    float m[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m[i], known[i]) << "element " << i;
    // Square window, 45 degrees: n / top = n / right = 1 / tan 22.5 = 2.4142136.
    glGetFloatv(GL_PROJECTION_MATRIX, m);
    EXPECT_NEAR(m[0], 2.4142136f, 1e-5f);
    EXPECT_NEAR(m[5], 2.4142136f, 1e-5f);
    EXPECT_EQ(m[11], -1.0f);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
}

TEST_F(SkyboxTest, DrawLeavesItsArraysAndTexturingEnabledAndNormalsOff) {
    std::unique_ptr<Texture> red = solidTexture(RED);
    Skybox sky;
    sky.front = red.get();
    sky.brightness = 0.5f;
    glEnableClientState(GL_NORMAL_ARRAY);
    glDisable(GL_TEXTURE_2D);
    Camera c = looking(vec3(0, 0, -1));
    sky.draw(&c);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
    // The colour array left behind still holds the four corners' bytes.
    void* pointer = nullptr;
    glGetPointerv(GL_COLOR_ARRAY_POINTER, &pointer);
    ASSERT_NE(pointer, nullptr);
    const unsigned char* bytes = (const unsigned char*)pointer;
    for (int corner = 0; corner < 4; ++corner) {
        EXPECT_EQ(bytes[corner * 4 + 0], 255);
        EXPECT_EQ(bytes[corner * 4 + 1], 127);
        EXPECT_EQ(bytes[corner * 4 + 2], 127);
        EXPECT_EQ(bytes[corner * 4 + 3], 127);
    }
}

TEST_F(SkyboxTest, DrawAllocatesNothing) {
    Skybox sky;
    giveEachFaceItsColour(sky);
    Camera c = looking(vec3(0, 0, -1));
    sky.draw(&c);
    std::size_t before = testing_support::allocationCount();
    sky.draw(&c);
    EXPECT_EQ(testing_support::allocationCount(), before);
}

// ---- The committed sky art ----

namespace {

// A path inside the repository, found from this file's own path (absolute in the build, or
// relative to the repository root when compiled from there).
std::string repositoryPath(const char* relative) {
    std::string file = __FILE__;
    size_t at = file.rfind("tests/engine/SkyboxTest.cpp");
    std::string root = at == std::string::npos ? std::string() : file.substr(0, at);
    return (root.empty() ? std::string("./") : root) + relative;
}

bool fileExists(const std::string& path) {
    FILE* f = fopen(path.c_str(), "rb");
    if (f) fclose(f);
    return f != nullptr;
}

// Sum of the absolute red, green and blue differences, 0..765.
int colourDistance(uint32_t a, uint32_t b) {
    return std::abs((int)Color::getR(a) - (int)Color::getR(b)) + std::abs((int)Color::getG(a) - (int)Color::getG(b)) +
           std::abs((int)Color::getB(a) - (int)Color::getB(b));
}

// A larger square window, to see more of the art at each edge.
class SkyboxArtTest : public SkyboxTest {
protected:
    static const int ART_SIZE = 512;

    void SetUp() override {
        openWindow(ART_SIZE, ART_SIZE);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glColor4f(1, 1, 1, 1);
    }
};

} // namespace

TEST_F(SkyboxArtTest, CommittedFacesShowNoSeamAcrossAnyCubeEdge) {
    const char* names[6] = {"top", "bottom", "left", "right", "front", "back"};
    std::unique_ptr<Texture> faces[6];
    for (int i = 0; i < 6; ++i) {
        std::string path = repositoryPath((std::string("gfx/sky_") + names[i] + ".png").c_str());
        ASSERT_TRUE(fileExists(path)) << path << " is missing";
        faces[i].reset(ImageLoader::loadTexture(path.c_str(), false));
        ASSERT_GT(faces[i]->width, 0) << path << " did not load";
    }
    Skybox sky;
    sky.top = faces[0].get();
    sky.bottom = faces[1].get();
    sky.left = faces[2].get();
    sky.right = faces[3].get();
    sky.front = faces[4].get();
    sky.back = faces[5].get();

    // Each edge is seen from the centre of the box, looking at the edge's midpoint with the
    // edge itself as the screen's up: it then runs down the screen between columns 255 and 256,
    // one face on each side.
    struct Edge {
        const char* faces;
        vec3 midpoint, along;
    };
    const Edge edges[12] = {
        {"top | front", vec3(0, 1, -1), vec3(1, 0, 0)},    {"top | back", vec3(0, 1, 1), vec3(1, 0, 0)},
        {"bottom | front", vec3(0, -1, -1), vec3(1, 0, 0)}, {"bottom | back", vec3(0, -1, 1), vec3(1, 0, 0)},
        {"left | top", vec3(1, 1, 0), vec3(0, 0, 1)},       {"right | top", vec3(-1, 1, 0), vec3(0, 0, 1)},
        {"left | bottom", vec3(1, -1, 0), vec3(0, 0, 1)},   {"right | bottom", vec3(-1, -1, 0), vec3(0, 0, 1)},
        {"left | front", vec3(1, 0, -1), vec3(0, 1, 0)},    {"left | back", vec3(1, 0, 1), vec3(0, 1, 0)},
        {"right | front", vec3(-1, 0, -1), vec3(0, 1, 0)},  {"right | back", vec3(-1, 0, 1), vec3(0, 1, 0)},
    };
    const int cx = ART_SIZE / 2;
    for (const Edge& e : edges) {
        Pixels p = drawSeen(sky, e.midpoint, e.along);
        // Neighbours across the edge against neighbours within each face, row by row.
        double across = 0, within = 0;
        int rows = 0;
        for (int y = 0; y < ART_SIZE; ++y) {
            uint32_t a = p.at(cx - 2, y), b = p.at(cx - 1, y), c = p.at(cx, y), d = p.at(cx + 1, y);
            across += colourDistance(b, c);
            within += 0.5 * (colourDistance(a, b) + colourDistance(c, d));
            ++rows;
        }
        across /= rows;
        within /= rows;
        printf("sky edge %-15s across %6.2f  within %6.2f\n", e.faces, across, within);
        // A seam shows as a jump between the two faces well above the pixel-to-pixel change
        // inside either face.
        EXPECT_LE(across, 2.0 * within + 3.0) << "seam between " << e.faces;
    }
}

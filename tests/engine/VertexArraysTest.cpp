#include "engine/VertexArrays.h"

#include <cstdint>

#include "engine/GL.h"
#include "tests/support/GLFixture.h"

using orvel::VertexArrays;
using testing_support::GLTest;

namespace {

class VertexArraysTest : public GLTest {
protected:
    static const void* pointerOf(GLenum which) {
        void* p = nullptr;
        glGetPointerv(which, &p);
        return p;
    }
    static GLint integer(GLenum which) {
        GLint v = -1;
        glGetIntegerv(which, &v);
        return v;
    }
    // Every client array off, and unit 1 the client unit.
    static void disableAll() {
        glClientActiveTexture(GL_TEXTURE0);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glClientActiveTexture(GL_TEXTURE1);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
    }

    float vertices[8] = {0, 0, 1, 0, 1, 1, 0, 1};
    float texcoords[8] = {0, 0, 1, 0, 1, 1, 0, 1};
    uint8_t colors[16] = {};
};

TEST_F(VertexArraysTest, EnableTexturedTurnsOnTheThreeArraysOfUnitZero) {
    disableAll();
    VertexArrays::enableTextured();
    EXPECT_EQ(integer(GL_CLIENT_ACTIVE_TEXTURE), GL_TEXTURE0);
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    glClientActiveTexture(GL_TEXTURE1);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
}

TEST_F(VertexArraysTest, BindTexturedPointsTheArraysAtPackedData) {
    disableAll();
    VertexArrays::bindTextured(vertices, texcoords, colors);
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_EQ(pointerOf(GL_VERTEX_ARRAY_POINTER), vertices);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_SIZE), 2);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_TYPE), GL_FLOAT);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_STRIDE), 0);
    EXPECT_EQ(pointerOf(GL_TEXTURE_COORD_ARRAY_POINTER), texcoords);
    EXPECT_EQ(integer(GL_TEXTURE_COORD_ARRAY_SIZE), 2);
    EXPECT_EQ(integer(GL_TEXTURE_COORD_ARRAY_TYPE), GL_FLOAT);
    EXPECT_EQ(integer(GL_TEXTURE_COORD_ARRAY_STRIDE), 0);
    EXPECT_EQ(pointerOf(GL_COLOR_ARRAY_POINTER), colors);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_SIZE), 4);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_TYPE), GL_UNSIGNED_BYTE);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_STRIDE), 0);
}

TEST_F(VertexArraysTest, BindTexturedGivesInterleavedVerticesOneStride) {
    struct Vertex {
        float x, y, s, t;
        uint8_t r, g, b, a;
    };
    Vertex interleaved[4] = {};
    const int stride = (int)sizeof(Vertex);
    VertexArrays::bindTextured(&interleaved[0].x, &interleaved[0].s, &interleaved[0].r, stride);
    EXPECT_EQ(pointerOf(GL_VERTEX_ARRAY_POINTER), &interleaved[0].x);
    EXPECT_EQ(pointerOf(GL_TEXTURE_COORD_ARRAY_POINTER), &interleaved[0].s);
    EXPECT_EQ(pointerOf(GL_COLOR_ARRAY_POINTER), &interleaved[0].r);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_STRIDE), stride);
    EXPECT_EQ(integer(GL_TEXTURE_COORD_ARRAY_STRIDE), stride);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_STRIDE), stride);
}

TEST_F(VertexArraysTest, BindTexturedLeavesTheNormalArrayAsItIs) {
    glEnableClientState(GL_NORMAL_ARRAY);
    VertexArrays::bindTextured(vertices, texcoords, colors);
    EXPECT_TRUE(glIsEnabled(GL_NORMAL_ARRAY));
    glDisableClientState(GL_NORMAL_ARRAY);
    VertexArrays::bindTextured(vertices, texcoords, colors);
    EXPECT_FALSE(glIsEnabled(GL_NORMAL_ARRAY));
}

TEST_F(VertexArraysTest, BindColoredTurnsTheTextureCoordinateArrayOff) {
    glClientActiveTexture(GL_TEXTURE0);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    VertexArrays::bindColored(vertices, GL_UNSIGNED_BYTE, colors);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_EQ(pointerOf(GL_VERTEX_ARRAY_POINTER), vertices);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_SIZE), 2);
    EXPECT_EQ(pointerOf(GL_COLOR_ARRAY_POINTER), colors);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_TYPE), GL_UNSIGNED_BYTE);
}

TEST_F(VertexArraysTest, BindColoredTakesFloatColors) {
    const float floatColors[16] = {};
    VertexArrays::bindColored(vertices, GL_FLOAT, floatColors);
    EXPECT_EQ(pointerOf(GL_COLOR_ARRAY_POINTER), floatColors);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_SIZE), 4);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_TYPE), GL_FLOAT);
    EXPECT_EQ(integer(GL_COLOR_ARRAY_STRIDE), 0);
}

} // namespace

#include "engine/Framebuffer.h"

#include "engine/Orvel.h"
#include "engine/Renderbuffer.h"
#include "engine/Texture.h"
#include "tests/support/GLFixture.h"

using orvel::Framebuffer;
using orvel::Orvel;
using orvel::Renderbuffer;
using orvel::Texture;
using testing_support::GLTest;
using testing_support::rgba;

namespace {

struct Viewport {
    GLint x, y, width, height;
    bool operator==(const Viewport& o) const {
        return x == o.x && y == o.y && width == o.width && height == o.height;
    }
};

std::ostream& operator<<(std::ostream& out, const Viewport& v) {
    return out << "(" << v.x << ", " << v.y << ", " << v.width << ", " << v.height << ")";
}

Viewport viewport() {
    Viewport v{-1, -1, -1, -1};
    glGetIntegerv(GL_VIEWPORT, &v.x);
    return v;
}

GLint integer(GLenum name) {
    GLint v = -1;
    glGetIntegerv(name, &v);
    return v;
}

GLint textureLevelParameter(unsigned texture, GLenum name) {
    GLint v = -1;
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &v);
    glBindTexture(GL_TEXTURE_2D, 0);
    return v;
}

GLint renderbufferParameter(unsigned renderbuffer, GLenum name) {
    GLint v = -1;
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, renderbuffer);
    glGetRenderbufferParameterivEXT(GL_RENDERBUFFER_EXT, name, &v);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, 0);
    return v;
}

// What is attached at `attachment` of framebuffer `fbo`: its object type and name.
GLint attachmentParameter(unsigned fbo, GLenum attachment, GLenum name) {
    GLint v = -1;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fbo);
    glGetFramebufferAttachmentParameterivEXT(GL_FRAMEBUFFER_EXT, attachment, name, &v);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
    return v;
}

class FramebufferTest : public GLTest {
protected:
    void TearDown() override {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        GLTest::TearDown();
    }

    // Pixel coordinates with y down over a target of w x h.
    static void projection(int w, int h) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, w, h, 0, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_TEXTURE_2D);
    }

    static void fillRect(float x0, float y0, float x1, float y1, float z, GLubyte r, GLubyte g, GLubyte b) {
        glColor4ub(r, g, b, 255);
        glBegin(GL_QUADS);
        glVertex3f(x0, y0, z);
        glVertex3f(x1, y0, z);
        glVertex3f(x1, y1, z);
        glVertex3f(x0, y1, z);
        glEnd();
    }

    // Into the 64 x 64 target `fb`, with the depth test on: red over the whole target at eye
    // z 0.5, then blue at eye z -0.5, which is farther (glOrtho(.., -1, 1)). The colour left
    // at (10, 10).
    static uint32_t nearRedThenFarBlue(Framebuffer& fb) {
        fb.bind();
        projection(64, 64);
        glClearDepth(1.0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LESS);
        fillRect(0, 0, 64, 64, 0.5f, 255, 0, 0);
        fillRect(0, 0, 64, 64, -0.5f, 0, 0, 255);
        glDisable(GL_DEPTH_TEST);
        uint32_t color = readPixels(10, 10, 1, 1).at(0, 0);
        fb.unbind();
        return color;
    }

    // A 64 x 64 picture: top half red, bottom left green, bottom right blue.
    static void drawPicture() {
        projection(64, 64);
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        fillRect(0, 0, 64, 32, 0, 255, 0, 0);
        fillRect(0, 32, 32, 64, 0, 0, 255, 0);
        fillRect(32, 32, 64, 64, 0, 0, 0, 255);
    }
};

} // namespace

// --- Framebuffer: construction ---

TEST_F(FramebufferTest, SmallTargetGetsAnEightByEightTextureButAnExactDepthBuffer) {
    Framebuffer fb(4, 4, 1 | 16);
    EXPECT_EQ(fb.width, 4u);
    EXPECT_EQ(fb.height, 4u);
    ASSERT_NE(fb.color0, nullptr);
    EXPECT_EQ(fb.color0->width, 8);
    EXPECT_EQ(fb.color0->height, 8);
    EXPECT_EQ(textureLevelParameter(fb.color0->id, GL_TEXTURE_WIDTH), 8);
    EXPECT_EQ(textureLevelParameter(fb.color0->id, GL_TEXTURE_HEIGHT), 8);
    ASSERT_NE(fb.depth, nullptr);
    EXPECT_EQ(fb.depth->width, 4u);
    EXPECT_EQ(fb.depth->height, 4u);
    EXPECT_EQ(renderbufferParameter(fb.depth->id, GL_RENDERBUFFER_WIDTH_EXT), 4);
    EXPECT_EQ(renderbufferParameter(fb.depth->id, GL_RENDERBUFFER_HEIGHT_EXT), 4);
}

TEST_F(FramebufferTest, ColourTexturesAreRgba8AndDepthIsADepthComponentBuffer) {
    Framebuffer fb(16, 16, 1 | 16);
    EXPECT_EQ(fb.color0->target, (unsigned)GL_TEXTURE_2D);
    EXPECT_EQ(textureLevelParameter(fb.color0->id, GL_TEXTURE_INTERNAL_FORMAT), GL_RGBA8);
    EXPECT_EQ(renderbufferParameter(fb.depth->id, GL_RENDERBUFFER_INTERNAL_FORMAT_EXT), GL_DEPTH_COMPONENT);
    EXPECT_GT(renderbufferParameter(fb.depth->id, GL_RENDERBUFFER_DEPTH_SIZE_EXT), 0);
}

TEST_F(FramebufferTest, EveryFlagAttachesItsBuffer) {
    Framebuffer fb(16, 16, 31);
    ASSERT_TRUE(fb.color0 && fb.color1 && fb.color2 && fb.color3 && fb.depth);
    EXPECT_EQ(fb.aux, nullptr);
    const GLenum attachments[4] = {GL_COLOR_ATTACHMENT0_EXT, GL_COLOR_ATTACHMENT1_EXT, GL_COLOR_ATTACHMENT2_EXT,
                                   GL_COLOR_ATTACHMENT3_EXT};
    const Texture* textures[4] = {fb.color0, fb.color1, fb.color2, fb.color3};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(attachmentParameter(fb.id, attachments[i], GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE_EXT), GL_TEXTURE)
            << "colour " << i;
        EXPECT_EQ((unsigned)attachmentParameter(fb.id, attachments[i], GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT),
                  textures[i]->id)
            << "colour " << i;
        EXPECT_EQ(attachmentParameter(fb.id, attachments[i], GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LEVEL_EXT), 0)
            << "colour " << i;
    }
    EXPECT_EQ(attachmentParameter(fb.id, GL_DEPTH_ATTACHMENT_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE_EXT),
              GL_RENDERBUFFER_EXT);
    EXPECT_EQ((unsigned)attachmentParameter(fb.id, GL_DEPTH_ATTACHMENT_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT),
              fb.depth->id);
}

TEST_F(FramebufferTest, UnsetFlagsLeaveTheirPointersNullAndAttachmentsEmpty) {
    Framebuffer fb(16, 16, 2 | 8);
    EXPECT_EQ(fb.color0, nullptr);
    EXPECT_NE(fb.color1, nullptr);
    EXPECT_EQ(fb.color2, nullptr);
    EXPECT_NE(fb.color3, nullptr);
    EXPECT_EQ(fb.depth, nullptr);
    EXPECT_EQ(fb.aux, nullptr);
    EXPECT_EQ(attachmentParameter(fb.id, GL_COLOR_ATTACHMENT0_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE_EXT), GL_NONE);
    EXPECT_EQ(attachmentParameter(fb.id, GL_COLOR_ATTACHMENT2_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE_EXT), GL_NONE);
    EXPECT_EQ(attachmentParameter(fb.id, GL_DEPTH_ATTACHMENT_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE_EXT), GL_NONE);
    EXPECT_EQ((unsigned)attachmentParameter(fb.id, GL_COLOR_ATTACHMENT1_EXT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT),
              fb.color1->id);
}

TEST_F(FramebufferTest, ConstructionLeavesTheScreenBoundAndTheViewportAlone) {
    glViewport(1, 2, 3, 4);
    Framebuffer fb(64, 32, 1 | 16);
    EXPECT_EQ(glIsFramebufferEXT(fb.id), GL_TRUE);
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING_EXT), 0);
    EXPECT_EQ(integer(GL_RENDERBUFFER_BINDING_EXT), 0);
    EXPECT_EQ(viewport(), (Viewport{1, 2, 3, 4}));
}

// --- Framebuffer: binding ---

TEST_F(FramebufferTest, BindSetsAViewportOfTheRequestedSize) {
    Framebuffer fb(4, 4, 1 | 16);
    fb.bind();
    EXPECT_EQ((unsigned)integer(GL_FRAMEBUFFER_BINDING_EXT), fb.id);
    EXPECT_EQ(viewport(), (Viewport{0, 0, 4, 4}));
}

TEST_F(FramebufferTest, UnbindFBRestoresTheWholeScreenViewport) {
    Framebuffer fb(64, 32, 1);
    fb.bind();
    Framebuffer::unbindFB();
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING_EXT), 0);
    EXPECT_EQ(viewport(), (Viewport{0, 0, 320, 240}));
}

TEST_F(FramebufferTest, UnbindFBFollowsTheWindowSize) {
    openWindow(200, 150);
    Framebuffer fb(64, 32, 1);
    fb.bind();
    Framebuffer::unbindFB();
    EXPECT_EQ(viewport(), (Viewport{0, 0, 200, 150}));
}

TEST_F(FramebufferTest, UnbindIsUnbindFB) {
    Framebuffer fb(16, 16, 1);
    fb.bind();
    fb.unbind();
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING_EXT), 0);
    EXPECT_EQ(viewport(), (Viewport{0, 0, 320, 240}));
}

// --- Framebuffer: drawing ---

TEST_F(FramebufferTest, DrawingWhileBoundLandsInTheTarget) {
    Framebuffer fb(64, 64, 1 | 16);
    fb.bind();
    drawPicture();
    // GL rows count from the bottom: row 63 is the picture's top.
    Pixels px = readPixels(0, 0, 64, 64);
    EXPECT_EQ(px.at(5, 5), rgba(255, 0, 0, 255));
    EXPECT_EQ(px.at(5, 50), rgba(0, 255, 0, 255));
    EXPECT_EQ(px.at(50, 50), rgba(0, 0, 255, 255));
    fb.unbind();
    // The screen saw none of it.
    EXPECT_EQ(readPixels(5, 5, 1, 1).at(0, 0), rgba(0, 0, 0, 0));
}

TEST_F(FramebufferTest, ColourTextureReproducesThePictureOnScreen) {
    Framebuffer fb(64, 64, 1 | 16);
    fb.bind();
    drawPicture();
    fb.unbind();

    pixelProjection();
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    fb.color0->bind(GL_TEXTURE0);
    // Texel row 0 is the picture's bottom, so t runs from 1 at the top of the quad to 0.
    drawQuad(100, 50, 164, 114, 0, 1, 1, 0);
    fb.color0->unbind();
    glDisable(GL_TEXTURE_2D);

    Pixels px = readScreen();
    EXPECT_EQ(px.at(105, 55), rgba(255, 0, 0, 255));
    EXPECT_EQ(px.at(160, 80), rgba(255, 0, 0, 255));
    EXPECT_EQ(px.at(105, 110), rgba(0, 255, 0, 255));
    EXPECT_EQ(px.at(160, 110), rgba(0, 0, 255, 255));
    EXPECT_EQ(px.at(95, 55), rgba(0, 0, 0, 0));
    EXPECT_EQ(px.at(170, 110), rgba(0, 0, 0, 0));
}

TEST_F(FramebufferTest, DepthBufferHidesFartherDrawing) {
    Framebuffer fb(64, 64, 1 | 16);
    EXPECT_EQ(nearRedThenFarBlue(fb), rgba(255, 0, 0, 255));
}

TEST_F(FramebufferTest, WithoutTheDepthFlagLaterDrawingWins) {
    Framebuffer fb(64, 64, 1);
    EXPECT_EQ(nearRedThenFarBlue(fb), rgba(0, 0, 255, 255));
}

// --- Framebuffer: destruction ---

TEST_F(FramebufferTest, DestructorDeletesTheObjectAndEveryAttachment) {
    Framebuffer* fb = new Framebuffer(16, 16, 31);
    unsigned fbo = fb->id;
    unsigned textures[4] = {fb->color0->id, fb->color1->id, fb->color2->id, fb->color3->id};
    unsigned depth = fb->depth->id;
    delete fb;
    EXPECT_EQ(glIsFramebufferEXT(fbo), GL_FALSE);
    for (unsigned t : textures) EXPECT_EQ(glIsTexture(t), GL_FALSE);
    EXPECT_EQ(glIsRenderbufferEXT(depth), GL_FALSE);
}

TEST_F(FramebufferTest, DestructorDeletesAnAuxBufferWhenOneIsSet) {
    Framebuffer* fb = new Framebuffer(16, 16, 1);
    fb->aux = new Renderbuffer(16, 16, GL_RGBA8);
    unsigned aux = fb->aux->id;
    ASSERT_EQ(glIsRenderbufferEXT(aux), GL_TRUE);
    delete fb;
    EXPECT_EQ(glIsRenderbufferEXT(aux), GL_FALSE);
}

TEST_F(FramebufferTest, TextureMemoryComesBackOnDestruction) {
    uint32_t before = Texture::usedMemory;
    Framebuffer* fb = new Framebuffer(4, 4, 1 | 2 | 16);
    // Two 8 x 8 RGBA textures: 2 * 8 * 8 * 4 bytes; the depth buffer is not counted.
    EXPECT_EQ(Texture::usedMemory, before + 512);
    delete fb;
    EXPECT_EQ(Texture::usedMemory, before);
}

// --- Renderbuffer ---

TEST_F(FramebufferTest, RenderbufferStorageHasTheRequestedSizeAndFormat) {
    Renderbuffer rb(16, 8, GL_RGBA8);
    EXPECT_EQ(rb.width, 16u);
    EXPECT_EQ(rb.height, 8u);
    EXPECT_EQ(glIsRenderbufferEXT(rb.id), GL_TRUE);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_WIDTH_EXT), 16);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_HEIGHT_EXT), 8);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_INTERNAL_FORMAT_EXT), GL_RGBA8);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_RED_SIZE_EXT), 8);
}

TEST_F(FramebufferTest, RenderbufferSizeIsNotRoundedUp) {
    Renderbuffer rb(5, 3, GL_DEPTH_COMPONENT);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_WIDTH_EXT), 5);
    EXPECT_EQ(renderbufferParameter(rb.id, GL_RENDERBUFFER_HEIGHT_EXT), 3);
    EXPECT_GT(renderbufferParameter(rb.id, GL_RENDERBUFFER_DEPTH_SIZE_EXT), 0);
}

TEST_F(FramebufferTest, RenderbufferConstructionLeavesNoneBound) {
    Renderbuffer rb(16, 16, GL_RGBA8);
    EXPECT_EQ(integer(GL_RENDERBUFFER_BINDING_EXT), 0);
}

TEST_F(FramebufferTest, RenderbufferBindBindsIt) {
    Renderbuffer rb(16, 16, GL_RGBA8);
    rb.bind();
    EXPECT_EQ((unsigned)integer(GL_RENDERBUFFER_BINDING_EXT), rb.id);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, 0);
}

TEST_F(FramebufferTest, RenderbufferDestructorDeletesIt) {
    Renderbuffer* rb = new Renderbuffer(16, 16, GL_RGBA8);
    unsigned id = rb->id;
    delete rb;
    EXPECT_EQ(glIsRenderbufferEXT(id), GL_FALSE);
}

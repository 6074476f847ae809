#include "engine/Framebuffer.h"

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Renderbuffer.h"
#include "engine/Texture.h"

namespace orvel {

namespace {

// Creates a colour texture and attaches it at `attachment` when `flag` is in `flags`.
Texture* attachColor(unsigned flags, unsigned flag, GLenum attachment, unsigned width, unsigned height) {
    if (!(flags & flag)) return nullptr;
    Texture* texture = new Texture((int)width, (int)height, 0, GL_TEXTURE_2D, GL_RGBA8);
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, attachment, GL_TEXTURE_2D, texture->id, 0);
    return texture;
}

} // namespace

Framebuffer::Framebuffer(unsigned w, unsigned h, unsigned flags)
    : id(0), width(w), height(h), depth(nullptr), aux(nullptr) {
    glGenFramebuffersEXT(1, &id);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    color0 = attachColor(flags, COLOR0, GL_COLOR_ATTACHMENT0_EXT, width, height);
    color1 = attachColor(flags, COLOR1, GL_COLOR_ATTACHMENT1_EXT, width, height);
    color2 = attachColor(flags, COLOR2, GL_COLOR_ATTACHMENT2_EXT, width, height);
    color3 = attachColor(flags, COLOR3, GL_COLOR_ATTACHMENT3_EXT, width, height);
    if (flags & DEPTH) {
        depth = new Renderbuffer(width, height, GL_DEPTH_COMPONENT);
        glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT, GL_RENDERBUFFER_EXT, depth->id);
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
}

Framebuffer::~Framebuffer() {
    glDeleteFramebuffersEXT(1, &id);
    delete color0;
    delete color1;
    delete color2;
    delete color3;
    delete depth;
    delete aux;
}

void Framebuffer::bind() const {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, id);
    glViewport(0, 0, width, height);
}

void Framebuffer::unbindFB() {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
    glViewport(0, 0, Orvel::width, Orvel::height);
}

} // namespace orvel

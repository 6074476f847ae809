#include "engine/Renderbuffer.h"

#include "engine/GL.h"

namespace orvel {

Renderbuffer::Renderbuffer(unsigned w, unsigned h, unsigned format) : id(0), width(w), height(h) {
    glGenRenderbuffersEXT(1, &id);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, id);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, format, width, height);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, 0);
}

Renderbuffer::~Renderbuffer() {
    glDeleteRenderbuffersEXT(1, &id);
    id = 0;
}

void Renderbuffer::bind() const {
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, id);
}

} // namespace orvel

#pragma once
// A GL renderbuffer (framebuffer-object extension): storage a Framebuffer can draw into
// without sampling it later, such as a depth buffer.

namespace orvel {

class Renderbuffer {
public:
    // Allocates width x height of `format` (GL_DEPTH_COMPONENT, GL_RGBA8, ...); the size is
    // used as given. Leaves no renderbuffer bound.
    Renderbuffer(unsigned width, unsigned height, unsigned format);
    // Deletes the renderbuffer; id becomes 0.
    ~Renderbuffer();
    Renderbuffer(const Renderbuffer&) = delete;
    Renderbuffer& operator=(const Renderbuffer&) = delete;

    // Binds it as GL_RENDERBUFFER_EXT.
    void bind() const;

    unsigned id; // GL renderbuffer object
    unsigned width;
    unsigned height;
};

} // namespace orvel

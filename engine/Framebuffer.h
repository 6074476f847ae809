#pragma once
// An offscreen render target (framebuffer-object extension): up to four colour textures and
// a depth buffer.

namespace orvel {

class Renderbuffer;
class Texture;

class Framebuffer {
public:
    // Attachment flags for the constructor, combined with |.
    static const unsigned COLOR0 = 1; // color0, a GL_RGBA8 texture at GL_COLOR_ATTACHMENT0_EXT
    static const unsigned COLOR1 = 2; // color1 at GL_COLOR_ATTACHMENT1_EXT
    static const unsigned COLOR2 = 4; // color2 at GL_COLOR_ATTACHMENT2_EXT
    static const unsigned COLOR3 = 8; // color3 at GL_COLOR_ATTACHMENT3_EXT
    static const unsigned DEPTH = 16; // depth, a GL_DEPTH_COMPONENT renderbuffer

    // Creates the attachments that `flags` asks for. Textures are at least 8 x 8, while the
    // depth buffer has exactly width x height; completeness is not checked. Leaves the
    // screen's framebuffer bound and the viewport as it was.
    Framebuffer(unsigned width, unsigned height, unsigned flags);
    // Deletes the framebuffer object, then every attachment it owns.
    ~Framebuffer();
    Framebuffer(const Framebuffer&) = delete;
    Framebuffer& operator=(const Framebuffer&) = delete;

    // Draws into this target from now on, over a viewport of (0, 0, width, height).
    void bind() const;
    // Draws to the screen again, over a viewport of the whole window (Orvel's width and height).
    static void unbindFB();
    void unbind() const { unbindFB(); }

    unsigned id;     // GL framebuffer object
    unsigned width;  // as requested, whatever size the textures got
    unsigned height;
    Texture* color0; // owned; null unless requested
    Texture* color1;
    Texture* color2;
    Texture* color3;
    Renderbuffer* depth; // owned; null unless requested
    Renderbuffer* aux;   // owned; nothing creates it, but the destructor deletes it when set
};

} // namespace orvel

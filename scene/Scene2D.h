#pragma once
// The world scene root: draws its tree into an offscreen target, then copies that to the screen.

#include "scene/SceneRoot.h"

namespace orvel {
class Framebuffer;
class Texture;
} // namespace orvel

// Created once at start-up and kept; the main program calls draw() once a frame, before the HUD.
class Scene2D : public SceneRoot {
public:
    // -1 for either size means the engine's screen width or height. Loads the shared shaders
    // and creates a framebuffer of that size with one colour target and depth.
    Scene2D(int width, int height);
    // Unlinks the children (not deleted) and deletes the framebuffer.
    ~Scene2D() override;

    // Renders the tree into the framebuffer, then covers the screen with its colour texture. A
    // world with nothing in it and a copy that replaces the screen clears the screen instead.
    void draw();

    orvel::Framebuffer* framebuffer; // owned
    // Copies of the framebuffer's colour targets (owned by it); color0 is copied to the screen.
    // The other three are null: the framebuffer is made without them.
    orvel::Texture* color0;
    orvel::Texture* color1;
    orvel::Texture* color2;
    orvel::Texture* color3;
    // Set by an owner whose screen would otherwise be black under the copy, as the game's is: the
    // copy then replaces the screen instead of blending over it, which gives the same pixels
    // without reading the screen back, and the screen's colour needs no clearing first. False by
    // default: the copy blends.
    bool copyOverBlack;

private:
    void copyToScreen();
};

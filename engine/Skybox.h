#pragma once
// Six textured faces of a cube drawn around the viewer as the far background.

namespace orvel {

class Camera;
class Texture;

class Skybox {
public:
    // No textures, brightness 1, no rotation.
    Skybox();

    // Draws the faces that have a texture with camera's projection and rotation but not its
    // position, so the box stays centred on the viewer; then rotated by rotZ, rotY, rotX.
    // Depth test and depth writes are the caller's; so is blending. Leaves GL_TEXTURE_2D and
    // the vertex, texture-coordinate and colour arrays enabled, the normal array disabled, the
    // last face's texture bound on unit 0, and camera's projection loaded.
    void draw(Camera* camera);

    // Not owned. The face drawn with `left` lies at x = +1 and the one with `right` at x = -1;
    // the art is made for exactly this layout.
    Texture* left;
    Texture* right;
    Texture* front;
    Texture* back;
    Texture* top;
    Texture* bottom;
    float brightness; // 0..1; scales green, blue and alpha of the faces, never red
    float rotX;       // degrees
    float rotY;
    float rotZ;
};

} // namespace orvel

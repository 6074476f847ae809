#pragma once
// A scene leaf drawing one textured quad: a whole image or one cell of a sprite sheet.

#include "scene/Drawable.h"

namespace orvel {
class Texture;
}
struct SceneState;

// Centred on its position (hot spot (0, 0)) unless the owner moves the hot spot.
class Sprite : public Drawable {
public:
    // A width or height of exactly -1 means the image's own (unpadded) width or height.
    Sprite(orvel::Texture* texture, orvel::Texture* glowTexture, float w, float h);
    Sprite(orvel::Texture* texture, float w, float h);
    ~Sprite() override;

    // Back to a whole, unanimated image with these textures and size; makes the sprite visible.
    // Width and height as for the constructors.
    void init(orvel::Texture* texture, orvel::Texture* glowTexture, float w, float h);

    // One quad in the scene's model-view matrix, texel times the state's colour. Nothing
    // without a texture. A whole image under a blend that keeps the target where alpha is 0 is
    // rasterised only around its texels with alpha (SpriteClip), at the same pixels.
    void draw(SceneState& state) override;

    orvel::Texture* texture;     // not owned; null draws nothing
    orvel::Texture* glowTexture; // not owned, may be null; kept for the owner, draw() ignores it
    bool animated;               // draw cell `frame` of a framesX x framesY sheet
    int framesX;                 // columns of the sheet
    int framesY;                 // rows of the sheet
    int frame;                   // cell, row-major from the top-left; [0, framesX * framesY)
};

#pragma once
// A scene leaf drawing one line of text with a bitmap font.

#include "engine/String.h"
#include "engine/Vector.h"
#include "scene/Drawable.h"

namespace orvel {
class Font;
}
struct SceneState;

// Anchored at its top-left corner. Width is length x (font image width / height) x fontSize,
// height is fontSize; draw() recomputes both, so a new fontSize or text shows on the next frame.
// The hot spot is not recomputed with them, as for every node: Center stays centred whatever the
// text, while TopLeft taken from a longer text leaves a shorter one shifted right.
class Text : public Drawable {
public:
    // A null text is taken as "". fontSize starts at one glyph cell's height in pixels.
    Text(orvel::Font* font, const char* text);
    ~Text() override;

    // Replaces the string (null is "") and sets the size from it and fontSize.
    void setText(const char* text);

    // The glyphs in `color`; the scene's combined blend colour is not applied to text.
    void draw(SceneState& state) override;

    orvel::Font* font;   // not owned; null or a font without an image draws nothing
    orvel::String text;  // the string drawn; its buffer only grows, so per-frame changes of
                         // similar length stop allocating
    orvel::vec4 color;   // (r, g, b, a) in x, y, z, w, each 0..1
    float fontSize;      // height of a glyph in node units

private:
    // size = (length x image aspect x fontSize, fontSize).
    void updateTextSize();
};

#pragma once
// A node of the scene tree: transform, size, hot spot, colour, visibility and draw mode.

#include <cstdint>

#include "engine/Recycler.h"
#include "engine/Vector.h"

class Container;
struct SceneState;

// Which point of a node's box sits at its origin, and so is the pivot of rotation and scale.
// The numbering is the program's own, not a reading order; it stays because callers store it.
enum HotSpotLocation {
    TopLeft = 0,
    TopRight = 1,
    Left = 2,
    Top = 3,
    Center = 4,
    Right = 5,
    Bottom = 6,
    BottomLeft = 7,
    BottomRight = 8,
};

// Values of the draw-mode field (flags & 0xF00). The renderer tests the bits in this order and
// takes the first one set; none of them blends like BlendAlpha.
enum DrawMode : uint32_t {
    BlendAlpha = 0x100, // source alpha, one minus source alpha
    BlendAdd = 0x200,   // source alpha, one
    BlendColor = 0x400, // source alpha, source colour
};

// The mode a node with these flags is drawn with: the first one set in the order above, and
// BlendAlpha when none is.
DrawMode blendOf(uint32_t flags);

// Four channels of 0..255.
struct Color4ub {
    uint8_t r, g, b, a;
};

// An axis-aligned rectangle: the corner with the smallest coordinates, then the extent.
struct Bounds {
    float x, y, width, height;
};

// Every visible thing derives from this. Nodes are linked into one Container (not owned by it)
// and drawn by a scene root, which walks the tree and calls draw() on the leaves.
// Coordinates have y down, angles are degrees, sizes world units (pixels on the HUD).
// Nodes come and go during play, so their memory is recycled.
class Drawable : public orvel::Recycled {
public:
    // Bits of `flags`.
    static const uint32_t VISIBLE = 0x1;
    static const uint32_t EFFECT = 0x2;    // no transform of its own, never culled
    static const uint32_t CONTAINER = 0x4; // a Group: the renderer descends into its children
    static const uint32_t DIRTY = 0x8;     // updateSize() must run before the size is used
    static const uint32_t NODE_3D = 0x10;  // 4 x 4 transform under the perspective projection
    static const uint32_t DRAW_MODE_MASK = 0xF00;

    // Detached, visible, BlendAlpha, white, at the origin, size 0, scale 1.
    Drawable();
    // A node deleted while in a tree unlinks itself.
    virtual ~Drawable();
    // Links would be shared by two nodes.
    Drawable(const Drawable&) = delete;
    Drawable& operator=(const Drawable&) = delete;

    // Recomputes `size` from the content and clears DIRTY; this default only clears DIRTY.
    virtual void updateSize();
    // Draws the node's own content in the GL state the scene prepared for it.
    virtual void draw(SceneState& state) = 0;

    // Sets DIRTY and tells the parent that a child's size changed. Nothing is recomputed here.
    void markDirty();

    // ---- Place in the parent's child list; each forwards to the container concerned ----
    // Through the own parent; nothing when detached.
    void remove();
    // Moves this node right after / before `other`, into other's container; nothing when
    // `other` is null or detached.
    void insertAfter(Drawable* other);
    void insertBefore(Drawable* other);
    // Drawn last / first among its siblings. Never call on a node already front-most /
    // back-most: see Container::bringToFront.
    void bringToFront();
    void sendToBack();

    // ---- Appearance ----
    // Each channel is (rgba & mask) >> shift with orvel::Color's layout.
    void setBlendColor(unsigned int rgba);
    // Each value is clamped to [0, 1] and truncated to a byte without scaling by 255, so only
    // exactly 1.0 gives 1. Callers rely on this form being unlike the packed one; it stays.
    void setBlendColor(float r, float g, float b, float a);
    void setVisible(bool visible);
    bool isVisible() const { return (flags & VISIBLE) != 0; }
    // The draw-mode field takes mode & 0xF00; every other flag bit is kept.
    void setDrawMode(unsigned int mode);
    unsigned int getDrawMode() const { return flags & DRAW_MODE_MASK; }

    // ---- Transform and box ----
    // The node's axis-aligned box in its parent's space, rotation and scale applied.
    Bounds getBounds() const;
    // Stored as |s|.
    void setScale(float s);
    // Width and height only; neither marks the node dirty nor moves the hot spot.
    void setSize(float w, float h);
    // Degrees, wrapped into [0, 360).
    void setRotation(float deg);
    void rotate(float deg);
    void centerHotSpot();
    // From the size at the time of the call (a later size change does not move it); hotSpot.z
    // is kept, and a value outside the enumeration leaves the hot spot as it is.
    void setHotSpot(HotSpotLocation location);
    void setHotSpot(float x, float y);

    Container* parent;    // the container whose child list holds this node; null when detached
    Drawable* next;       // sibling toward the front (drawn later)
    Drawable* prev;       // sibling toward the back (drawn earlier)
    uint32_t flags;       // the bits above, draw mode in 0xF00
    Color4ub blendColor;  // multiplied into the node and its subtree
    orvel::vec3 position; // origin in the parent's space; z only for 3D nodes
    orvel::vec3 hotSpot;  // centre of the box relative to the origin, unrotated local space
    orvel::vec3 size;     // width, height (and depth for 3D nodes)
    orvel::vec3 rotation; // degrees about x, y and z; 2D nodes use z only
    orvel::vec3 reserved; // never read by the scene graph; kept zero
    float scale;          // uniform, never negative
};

// Placeholders: both ignore their argument and return (0, 0).
orvel::vec2 localToGlobal(const orvel::vec2& p);
orvel::vec2 globalToLocal(const orvel::vec2& p);

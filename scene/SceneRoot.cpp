#include "scene/SceneRoot.h"

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/ShaderProgram.h"
#include "engine/VertexArrays.h"
#include "scene/Group.h"
#include "scene/Shaders.h"

using orvel::mat2;
using orvel::mat4;
using orvel::Math;
using orvel::Orvel;
using orvel::Stack;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

namespace {

// Initial capacity of every scratch stack of the walk; they double when a frame needs more.
const unsigned SCRATCH_CAPACITY = 128;
// Vertices covered by the default colour and texture-coordinate arrays bound before a leaf draws.
const unsigned DEFAULT_VERTICES = 256;

const Color4ub WHITE = {255, 255, 255, 255};
const Color4ub BORDER_COLOR = {255, 255, 255, 192};
const Color4ub BOUNDS_COLOR = {0, 255, 0, 192};

// For leaves that supply only vertices: opaque white, and (0,0) (1,0) (1,1) (0,1) per quad.
struct DefaultArrays {
    Color4ub colors[DEFAULT_VERTICES];
    float texcoords[DEFAULT_VERTICES * 2];
};

DefaultArrays buildDefaultArrays() {
    static const float QUAD[8] = {0, 0, 1, 0, 1, 1, 0, 1};
    DefaultArrays d;
    for (unsigned i = 0; i < DEFAULT_VERTICES; ++i) {
        d.colors[i] = WHITE;
        d.texcoords[2 * i] = QUAD[(2 * i) % 8];
        d.texcoords[2 * i + 1] = QUAD[(2 * i + 1) % 8];
    }
    return d;
}

// parent * (own + 1) >> 8 per channel: white over white stays white, alpha limited to 255.
Color4ub combineColors(const Color4ub& own, const Color4ub& parent) {
    Color4ub c;
    c.r = (uint8_t)(((own.r + 1) * parent.r) >> 8);
    c.g = (uint8_t)(((own.g + 1) * parent.g) >> 8);
    c.b = (uint8_t)(((own.b + 1) * parent.b) >> 8);
    unsigned a = ((own.a + 1) * parent.a) >> 8;
    c.a = (uint8_t)(a > 255 ? 255 : a);
    return c;
}

// The node's own 2D transform after m: translate, rotate by rotation.z, scale.
mat2& composeNode2D(mat2& m, float x, float y, const Drawable& node) {
    return m.translate(x, y).rotate(Math::toRadian(node.rotation.z)).scale(node.scale);
}

// The node's own 3D transform after m: translate, rotate about z, y, then x, scale.
mat4& composeNode3D(mat4& m, const vec3& translation, const Drawable& node) {
    float s = node.scale;
    return m.translate(translation)
        .rotate(vec4(0, 0, 1, Math::toRadian(node.rotation.z)))
        .rotate(vec4(0, 1, 0, Math::toRadian(node.rotation.y)))
        .rotate(vec4(1, 0, 0, Math::toRadian(node.rotation.x)))
        .scale(vec3(s, s, s));
}

// Min/max accumulation of view-space points into a rectangle.
struct BoxBuilder {
    float minX, minY, maxX, maxY;
    bool isEmpty = true;

    void add(const vec2& p) {
        if (isEmpty || p.x < minX) minX = p.x;
        if (isEmpty || p.x > maxX) maxX = p.x;
        if (isEmpty || p.y < minY) minY = p.y;
        if (isEmpty || p.y > maxY) maxY = p.y;
        isEmpty = false;
    }
    Bounds bounds() const { return Bounds{minX, minY, maxX - minX, maxY - minY}; }
};

// The node's box (hotSpot +- size / 2) through m, as a view-space rectangle.
Bounds viewBounds2D(const Drawable& node, const mat2& m) {
    float hx = node.size.x * 0.5f;
    float hy = node.size.y * 0.5f;
    BoxBuilder box;
    box.add(m * vec2(node.hotSpot.x - hx, node.hotSpot.y - hy));
    box.add(m * vec2(node.hotSpot.x + hx, node.hotSpot.y - hy));
    box.add(m * vec2(node.hotSpot.x + hx, node.hotSpot.y + hy));
    box.add(m * vec2(node.hotSpot.x - hx, node.hotSpot.y + hy));
    return box.bounds();
}

// The eight corners of a 3D node's box through m4; x and y make the rectangle.
Bounds viewBounds3D(const Drawable& node, const mat4& m4) {
    vec3 half = node.size * 0.5f;
    BoxBuilder box;
    for (int i = 0; i < 8; ++i) {
        vec3 corner(node.hotSpot.x + ((i & 1) ? half.x : -half.x),
                    node.hotSpot.y + ((i & 2) ? half.y : -half.y),
                    node.hotSpot.z + ((i & 4) ? half.z : -half.z));
        vec3 p = m4 * corner;
        box.add(vec2(p.x, p.y));
    }
    return box.bounds();
}

// A node's view-space bounds under its parent's transforms, after bringing its size up to date.
Bounds nodeViewBounds(Drawable& node, bool is3D, const SceneState& parent) {
    mat2 m = parent.transform2D;
    composeNode2D(m, node.position.x, node.position.y, node);
    mat4 m4;
    // Containers get the 4 x 4 form too, which only 3D bounds read (effects never get here).
    if (node.flags & (Drawable::NODE_3D | Drawable::CONTAINER | Drawable::EFFECT)) {
        m4 = parent.transform3D;
        composeNode3D(m4, node.position, node);
    }
    if (node.flags & Drawable::DIRTY) node.updateSize();
    return is3D ? viewBounds3D(node, m4) : viewBounds2D(node, m);
}

void pushViewRect(Stack<ViewRect>& rects, float x, float y, float w, float h, float offsetX, float offsetY) {
    rects.push(ViewRect{x, y, w, h, offsetX, offsetY});
}

bool contains(const ViewRect& r, float x, float y) {
    return x >= r.x && x <= r.x + r.width && y >= r.y && y <= r.y + r.height;
}

// The first rectangle holding any corner of b (edges inclusive), or null. Only corners count,
// so a node larger than the view with every corner outside is culled; kept as the cheap test
// that scene content is sized for.
const ViewRect* findViewRect(const Stack<ViewRect>& rects, const Bounds& b) {
    const float xs[4] = {b.x, b.x + b.width, b.x, b.x + b.width};
    const float ys[4] = {b.y, b.y + b.height, b.y + b.height, b.y};
    for (unsigned i = 0; i < rects.count; ++i) {
        for (int k = 0; k < 4; ++k) {
            if (contains(rects.data[i], xs[k], ys[k])) return &rects.data[i];
        }
    }
    return nullptr;
}

// Where the node is drawn this frame, in state.position. An effect keeps its own position and
// is never culled; any other node goes through the first view rectangle that holds a corner of
// its bounds (left in `bounds`), shifted by that rectangle's offset. False when it is culled.
bool placeNode(Drawable& node, bool isEffect, bool is3D, const Stack<ViewRect>& rects, Bounds& bounds,
               SceneState& state) {
    if (isEffect) {
        state.position = node.position;
        return true;
    }
    bounds = nodeViewBounds(node, is3D, state);
    const ViewRect* rect = findViewRect(rects, bounds);
    if (!rect) return false;
    state.position = vec3(node.position.x + rect->offsetX, node.position.y + rect->offsetY, node.position.z);
    return true;
}

// The node's colour, and its own transform after its parent's; an effect keeps its parent's.
void enterNode(const Drawable& node, const Color4ub& color, bool isEffect, bool is3D, SceneState& state) {
    state.color = color;
    if (isEffect) return;
    composeNode2D(state.transform2D, state.position.x, state.position.y, node);
    if (is3D) composeNode3D(state.transform3D, state.position, node);
}

void applyDrawMode(uint32_t flags) {
    switch (blendOf(flags)) {
    case BlendAdd: glBlendFunc(GL_SRC_ALPHA, GL_ONE); break;
    case BlendColor: glBlendFunc(GL_SRC_ALPHA, GL_SRC_COLOR); break;
    case BlendAlpha: glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA); break;
    }
}

// Leaves GL_MODELVIEW the current matrix mode.
void loadMatrices(const mat4& projection, const mat4& modelView) {
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection.m);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(modelView.m);
}

// Face culling and depth test off, texturing and blending on; the vertex, colour and
// texture-coordinate arrays on, the normal array off.
void setWalkGLState() {
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    orvel::VertexArrays::enableTextured();
    glDisableClientState(GL_NORMAL_ARRAY);
}

// A closed outline through four points (x, y pairs) with the color_fixed program. Leaves the
// texture-coordinate array disabled; a leaf enables it again before it draws.
void drawOutline(const float* points, const mat4& projection, const mat4& modelView, float width,
                 const Color4ub& color) {
    const Color4ub colors[4] = {color, color, color, color};
    loadMatrices(projection, modelView);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(width);
    orvel::VertexArrays::bindColored(points, GL_UNSIGNED_BYTE, colors);
    Shaders::color_shader_fixed->bind();
    glDrawArrays(GL_LINE_LOOP, 0, 4);
}

// Bounds are in view space already, so the model-view matrix is the identity.
void drawBoundsOutline(const Bounds& b, const mat4& projection) {
    const float points[8] = {b.x, b.y,           b.x + b.width, b.y, b.x + b.width, b.y + b.height,
                             b.x, b.y + b.height};
    drawOutline(points, projection, mat4(), 1.0f, BOUNDS_COLOR);
}

// The leaf's matrices, the texture-coordinate array, the blend function of its draw mode, the
// default colour and texture-coordinate arrays and the texture_fixed program; then its draw().
void drawLeaf(Drawable& node, bool is3D, SceneState& state) {
    static const DefaultArrays defaults = buildDefaultArrays();

    if (is3D) {
        loadMatrices(*state.projection3D, state.transform3D);
    } else {
        loadMatrices(*state.projection2D, mat4(state.transform2D));
    }
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    applyDrawMode(node.flags);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, defaults.colors);
    glTexCoordPointer(2, GL_FLOAT, 0, defaults.texcoords);
    Shaders::useTextureFixed();
    node.draw(state);
}

// Scale first, then turn, then move the camera centre to the origin.
mat2 viewMatrix(const Camera2D& camera, vec2 centre) {
    mat2 m;
    m.scale(camera.zoom).rotate(Math::toRadian(-camera.rotation)).translate(-centre.x, -centre.y);
    return m;
}

// 1 / zoom, or 0 for a zoom of exactly 0.
float inverseZoom(float zoom) {
    return zoom == 0.0f ? 0.0f : 1.0f / zoom;
}

} // namespace

SceneRoot::Scratch::Scratch()
    : stateStack(SCRATCH_CAPACITY), drawStack(SCRATCH_CAPACITY), viewRects(SCRATCH_CAPACITY),
      bounds{0, 0, 0, 0} {}

SceneRoot::SceneRoot(int width, int height)
    : previousCamera(vec2(0, 0), 1.0f, 0.0f), camera(&defaultCamera), tuning{80.0f, 2.0f, 10.0f, 0.5f},
      tuningColor(WHITE), tuningFactor(0.1f), enabled(true), debugDraw(true), wrap(true),
      skipTransparent(true) {
    screenWidth = width == -1 ? Orvel::getScreenWidth() : width;
    screenHeight = height == -1 ? Orvel::getScreenHeight() : height;
    defaultCamera = Camera2D(vec2((float)(screenWidth / 2), (float)(screenHeight / 2)), 1.0f, 0.0f);
    worldWidth = (float)screenWidth;
    worldHeight = (float)screenHeight;

    Shaders::init();
}

SceneRoot::~SceneRoot() {
    clear();
}

void SceneRoot::setCamera(Camera2D* c) {
    camera = c ? c : &defaultCamera;
}

void SceneRoot::drawTree(Scratch& scratch) {
    SceneState state = startState(scratch);
    setWalkGLState();
    const Camera2D& view = repairedCamera();
    vec2 centre = viewCentre();
    pushViewRects(scratch.viewRects, centre);
    setProjections(scratch);
    state.transform2D = viewMatrix(view, centre);
    state.transform3D = mat4(state.transform2D);
    state.transform3D.translate(vec3(0, 0, 2));
    state.cameraMotion = takeCameraMotion();
    if (debugDraw) drawWorldBorder(state.transform2D, scratch.projection2D);
    walk(scratch, state);
}

// Empties the stacks; the state at the root is white, untransformed, at the origin.
SceneState SceneRoot::startState(Scratch& scratch) const {
    scratch.stateStack.clear();
    scratch.drawStack.clear();
    scratch.viewRects.clear();
    SceneState state;
    state.viewRects = &scratch.viewRects;
    state.color = WHITE;
    state.projection2D = &scratch.projection2D;
    state.projection3D = &scratch.projection3D;
    state.transform2D = mat2();
    state.transform3D = mat4();
    state.position = vec3(0, 0, 0);
    return state;
}

// A zoom at or below 0.01 is repaired in the camera record itself.
Camera2D& SceneRoot::repairedCamera() {
    if (!(camera->zoom > 0.01f)) camera->zoom = 0.01f;
    return *camera;
}

// The camera position, wrapped into [0, worldWidth) x [0, worldHeight).
vec2 SceneRoot::wrappedCamera() const {
    return vec2(Math::wrapf(camera->position.x, 0, worldWidth), Math::wrapf(camera->position.y, 0, worldHeight));
}

// The world point at the centre of the view: wrapped into the world when it wraps.
vec2 SceneRoot::viewCentre() const {
    return wrap ? wrappedCamera() : camera->position;
}

// The rectangles of this frame, in the order they are tried, for a view of screen / zoom world
// units around `centre`.
void SceneRoot::pushViewRects(Stack<ViewRect>& rects, vec2 centre) const {
    const float vw = screenWidth / camera->zoom;
    const float vh = screenHeight / camera->zoom;
    const float W = worldWidth;
    const float H = worldHeight;
    pushViewRect(rects, -vw / 2, -vh / 2, vw, vh, 0, 0);
    if (!wrap) return;

    // The bands are generous and not symmetric (4 vh at the top, 2 vh at the bottom); what
    // is culled at the seams is tuned to exactly these, so they stay.
    bool top = centre.y - vh / 2 <= 0;
    bool left = centre.x - vw / 2 <= 0;
    bool right = centre.x + vw / 2 >= W;
    bool bottom = centre.y + vh / 2 >= H;
    if (top) pushViewRect(rects, -vw / 2, H - 2 * vh, vw, 4 * vh, 0, -H);
    if (left) {
        if (top) pushViewRect(rects, W - vw, H - 2 * vh, 2 * vw, 4 * vh, -W, -H);
        pushViewRect(rects, W - vw, -vh / 2, 2 * vw, vh, -W, 0);
    }
    if (right) {
        if (top) pushViewRect(rects, -vw / 2 - W, H - 2 * vh, 2 * vw, 4 * vh, W, -H);
        pushViewRect(rects, -vw / 2 - W, -vh / 2, 2 * vw, vh, W, 0);
    }
    if (bottom) pushViewRect(rects, -vw / 2, -vh / 2 - H, vw, 2 * vh, 0, H);
    if (left && bottom) pushViewRect(rects, W - vw, -vh / 2 - H, 2 * vw, 2 * vh, -W, H);
    if (right && bottom) pushViewRect(rects, -vw / 2 - W, -vh / 2 - H, 2 * vw, 2 * vh, W, H);
}

// Orthographic with the origin at the centre of the screen (its third and fourth arguments,
// top and bottom, make y grow downward), and a perspective one.
void SceneRoot::setProjections(Scratch& scratch) const {
    int halfWidth = screenWidth / 2;
    int halfHeight = screenHeight / 2;
    scratch.projection2D = mat4::createOrthoMatrix(-halfWidth, halfWidth, -halfHeight, halfHeight, -10, 10);
    scratch.projection3D = mat4::createProjectionMatrix(-screenWidth / 4, screenWidth / 4, -screenHeight / 4,
                                                        screenHeight / 4, 1, 10);
}

// How far the camera moved since the previous draw(), which this one becomes.
vec2 SceneRoot::takeCameraMotion() {
    vec2 motion = camera->position - previousCamera.position;
    previousCamera = *camera;
    return motion;
}

void SceneRoot::drawWorldBorder(const mat2& view, const mat4& projection) const {
    const float W = worldWidth;
    const float H = worldHeight;
    const float border[8] = {0, 0, W, 0, W, H, 0, H};
    drawOutline(border, projection, mat4(view), 3.0f, BORDER_COLOR);
}

// Depth first without recursion, from the first child. A container pushes its parent's state
// whether or not it pushes a next sibling, while each popped sibling pops one state: after a
// container that is last among its siblings, the enclosing container's later siblings are drawn
// one level too deep. Scenes are built around exactly this, so it stays.
void SceneRoot::walk(Scratch& scratch, SceneState& state) const {
    Drawable* node = first;
    for (;;) {
        if (!node) {
            // A subtree is done: on to the sibling saved for later, under the state saved with it.
            if (scratch.drawStack.isEmpty()) return;
            node = scratch.drawStack.pop();
            state = scratch.stateStack.pop();
            continue;
        }

        // Hidden or see-through nodes and culled ones are skipped with their subtrees.
        Drawable* next = node->next;
        if (!(node->flags & Drawable::VISIBLE)) {
            node = next;
            continue;
        }
        Color4ub color = combineColors(node->blendColor, state.color);
        if (skipTransparent && color.a == 0) {
            node = next;
            continue;
        }
        bool isEffect = (node->flags & Drawable::EFFECT) != 0;
        bool is3D = (node->flags & Drawable::NODE_3D) != 0;
        if (!placeNode(*node, isEffect, is3D, scratch.viewRects, scratch.bounds, state)) {
            node = next;
            continue;
        }

        scratch.stateStack.push(state);
        enterNode(*node, color, isEffect, is3D, state);
        // An effect node computes no bounds of its own and outlines the last ones tested.
        if (debugDraw) drawBoundsOutline(scratch.bounds, scratch.projection2D);

        if (node->flags & Drawable::CONTAINER) {
            // Only Group sets CONTAINER. Its state stays pushed as its children's parent state.
            if (next) scratch.drawStack.push(next);
            node = static_cast<Group*>(node)->first;
            continue;
        }
        drawLeaf(*node, is3D, state);
        state = scratch.stateStack.pop();
        node = next;
    }
}

// The world-to-screen matrix turned by `degrees`.
mat2 SceneRoot::worldToScreenTurning(float degrees) const {
    vec2 c = wrappedCamera();
    mat2 m;
    m.translate((float)(screenWidth / 2), (float)(screenHeight / 2))
        .rotate(Math::toRadian(degrees))
        .translate(-c.x, -c.y)
        .scale(camera->zoom);
    return m;
}

mat2 SceneRoot::worldToScreenMatrix() const {
    return worldToScreenTurning(-camera->rotation);
}

mat2 SceneRoot::screenToWorldMatrix() const {
    vec2 c = wrappedCamera();
    mat2 m;
    m.translate(c.x, c.y)
        .rotate(Math::toRadian(camera->rotation))
        .scale(inverseZoom(camera->zoom))
        .translate(-(float)(screenWidth / 2), -(float)(screenHeight / 2));
    return m;
}

// The sign of the turn differs from worldToScreenMatrix's on purpose; see the header.
vec2 SceneRoot::worldToScreen(const vec2& p) const {
    return worldToScreenTurning(camera->rotation) * p;
}

vec2 SceneRoot::screenToWorld(const vec2& p) const {
    return screenToWorldMatrix() * p;
}

vec2 SceneRoot::drawnPosition(const vec2& p) const {
    const vec2 c = viewCentre();
    vec2 near = p;
    if (wrap) {
        near.x = c.x + Math::wrapf(p.x - c.x + worldWidth * 0.5f, 0, worldWidth) - worldWidth * 0.5f;
        near.y = c.y + Math::wrapf(p.y - c.y + worldHeight * 0.5f, 0, worldHeight) - worldHeight * 0.5f;
    }
    mat2 m;
    m.translate((float)(screenWidth / 2), (float)(screenHeight / 2))
        .scale(camera->zoom)
        .rotate(-Math::toRadian(camera->rotation))
        .translate(-c.x, -c.y);
    return m * near;
}

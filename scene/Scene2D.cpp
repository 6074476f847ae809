#include "scene/Scene2D.h"

#include "engine/Framebuffer.h"
#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/ShaderProgram.h"
#include "engine/Texture.h"
#include "scene/DirectScene2D.h"
#include "scene/Group.h"
#include "scene/Shaders.h"

using orvel::Framebuffer;
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
// Attachment flags of the world scene's framebuffer: four colour targets and depth.
const unsigned FRAMEBUFFER_FLAGS = 31;

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

// Takes the top element off. An empty stack yields its spare element data[capacity] unchecked;
// the walk's pushes and pops never get there.
template <typename T> T& pop(Stack<T>& s) {
    if (s.count == 0) return s.data[s.capacity];
    return s.data[--s.count];
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

void pushViewRect(Stack<ViewRect>& rects, float x, float y, float w, float h, float offsetX, float offsetY) {
    rects.push(ViewRect{x, y, w, h, offsetX, offsetY});
}

// The rectangles of this frame, in the order they are tried. (cx, cy) is the camera position,
// already wrapped into the world when wrapping; vw x vh the view size in world units.
void pushViewRects(Stack<ViewRect>& rects, bool wrap, float cx, float cy, float vw, float vh, float W,
                   float H) {
    pushViewRect(rects, -vw / 2, -vh / 2, vw, vh, 0, 0);
    if (!wrap) return;

    // The bands are generous and not symmetric (4 vh at the top, 2 vh at the bottom); what
    // is culled at the seams is tuned to exactly these, so they stay.
    bool top = cy - vh / 2 <= 0;
    bool left = cx - vw / 2 <= 0;
    bool right = cx + vw / 2 >= W;
    bool bottom = cy + vh / 2 >= H;
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

void applyDrawMode(uint32_t flags) {
    if (flags & BlendAlpha) {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    } else if (flags & BlendAdd) {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    } else if (flags & BlendColor) {
        glBlendFunc(GL_SRC_ALPHA, GL_SRC_COLOR);
    } else {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
}

// A closed outline through four points (x, y pairs) with the color_fixed program. Leaves the
// texture-coordinate array disabled; a leaf enables it again before it draws.
void drawOutline(const float* points, const mat4& projection, const mat4& modelView, float width,
                 const Color4ub& color) {
    const Color4ub colors[4] = {color, color, color, color};
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection.m);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(modelView.m);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(width);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, points);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors);
    Shaders::color_shader_fixed->bind();
    glDrawArrays(GL_LINE_LOOP, 0, 4);
}

void drawBoundsOutline(const Bounds& b, const mat4& projection, const mat4& identity) {
    const float points[8] = {b.x, b.y,           b.x + b.width, b.y, b.x + b.width, b.y + b.height,
                             b.x, b.y + b.height};
    drawOutline(points, projection, identity, 1.0f, BOUNDS_COLOR);
}

// The camera position, wrapped into [0, worldWidth) x [0, worldHeight).
template <typename Root> vec2 wrappedCamera(const Root& root) {
    return vec2(Math::wrapf(root.camera->position.x, 0, root.worldWidth),
                Math::wrapf(root.camera->position.y, 0, root.worldHeight));
}

// 1 / zoom, or 0 for a zoom of exactly 0.
float inverseZoom(float zoom) {
    return zoom == 0.0f ? 0.0f : 1.0f / zoom;
}

} // namespace

template <typename Root> void drawSceneTree(Root& root) {
    static Stack<SceneState> stateStack(SCRATCH_CAPACITY); // saved parent states
    static Stack<Drawable*> drawStack(SCRATCH_CAPACITY);   // siblings still to visit after a subtree
    static Stack<ViewRect> viewRects(SCRATCH_CAPACITY);
    // Emptied every frame and otherwise unused: room kept for later 3D work.
    static Stack<mat2> mat2stack(SCRATCH_CAPACITY);
    static Stack<mat4> mat4stack(SCRATCH_CAPACITY);
    static Stack<vec3> sizeStack(SCRATCH_CAPACITY);
    // The rectangle of the node last tested for culling, across frames too.
    static Bounds bounds = {0, 0, 0, 0};
    static const mat2 mat2id;
    static const mat4 mat4id;
    static mat4 projection2D;
    static mat4 projection3D;
    static const DefaultArrays defaults = buildDefaultArrays();

    // Reset.
    stateStack.clear();
    drawStack.clear();
    viewRects.clear();
    mat2stack.clear();
    mat4stack.clear();
    sizeStack.clear();
    SceneState state;
    state.viewRects = &viewRects;
    state.color = WHITE;
    state.projection2D = &projection2D;
    state.projection3D = &projection3D;
    state.transform2D = mat2id;
    state.transform3D = mat4id;
    state.position = vec3(0, 0, 0);

    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);

    // Camera: a zoom at or below 0.01 is repaired in the camera record itself.
    Camera2D& camera = *root.camera;
    if (!(camera.zoom > 0.01f)) camera.zoom = 0.01f;
    float vw = root.screenWidth / camera.zoom;
    float vh = root.screenHeight / camera.zoom;
    float cx = camera.position.x;
    float cy = camera.position.y;
    if (root.wrap) {
        cx = Math::wrapf(cx, 0, root.worldWidth);
        cy = Math::wrapf(cy, 0, root.worldHeight);
    }
    pushViewRects(viewRects, root.wrap, cx, cy, vw, vh, root.worldWidth, root.worldHeight);

    // The third and fourth arguments (top, bottom) make y grow downward on screen.
    int halfWidth = root.screenWidth / 2;
    int halfHeight = root.screenHeight / 2;
    projection2D = mat4::createOrthoMatrix(-halfWidth, halfWidth, -halfHeight, halfHeight, -10, 10);
    projection3D = mat4::createProjectionMatrix(-root.screenWidth / 4, root.screenWidth / 4,
                                                -root.screenHeight / 4, root.screenHeight / 4, 1, 10);

    // View matrix: scale first, then turn, then move the camera to the origin.
    state.transform2D.scale(camera.zoom).rotate(Math::toRadian(-camera.rotation)).translate(-cx, -cy);
    state.transform3D = mat4(state.transform2D);
    state.transform3D.translate(vec3(0, 0, 2));

    state.cameraMotion = camera.position - root.previousCamera.position;
    root.previousCamera = camera;

    if (root.debugDraw) {
        const float W = root.worldWidth;
        const float H = root.worldHeight;
        const float border[8] = {0, 0, W, 0, W, H, 0, H};
        drawOutline(border, projection2D, mat4(state.transform2D), 3.0f, BORDER_COLOR);
    }

    // Walk without recursion. A container pushes its parent's state whether or not it pushes a
    // next sibling, while each popped sibling pops one state: after a container that is last
    // among its siblings, the enclosing container's later siblings are drawn one level too
    // deep. Scenes are built around exactly this, so it stays.
    Drawable* node = root.first;
    for (;;) {
        if (!node) {
            if (drawStack.isEmpty()) break;
            node = pop(drawStack);
            state = pop(stateStack);
            continue;
        }

        Drawable* next = node->next;
        if (!(node->flags & Drawable::VISIBLE)) {
            node = next;
            continue;
        }

        Color4ub color = combineColors(node->blendColor, state.color);
        if (root.skipTransparent && color.a == 0) {
            node = next;
            continue;
        }

        bool isEffect = (node->flags & Drawable::EFFECT) != 0;
        bool is3D = (node->flags & Drawable::NODE_3D) != 0;
        if (isEffect) {
            // Drawn in its parent's space, never culled.
            state.position = node->position;
        } else {
            mat2 m = state.transform2D;
            composeNode2D(m, node->position.x, node->position.y, *node);
            mat4 m4;
            // Containers get the 4 x 4 form too (effects never reach this test).
            if (node->flags & (Drawable::NODE_3D | Drawable::CONTAINER | Drawable::EFFECT)) {
                m4 = state.transform3D;
                composeNode3D(m4, node->position, *node);
            }
            if (node->flags & Drawable::DIRTY) node->updateSize();
            bounds = is3D ? viewBounds3D(*node, m4) : viewBounds2D(*node, m);

            const ViewRect* rect = findViewRect(viewRects, bounds);
            if (!rect) {
                node = next;
                continue;
            }
            state.position =
                vec3(node->position.x + rect->offsetX, node->position.y + rect->offsetY, node->position.z);
        }

        stateStack.push(state);
        state.color = color;
        if (!isEffect) {
            composeNode2D(state.transform2D, state.position.x, state.position.y, *node);
            if (is3D) composeNode3D(state.transform3D, state.position, *node);
        }

        // An effect node computes no bounds of its own and outlines the last ones tested.
        if (root.debugDraw) drawBoundsOutline(bounds, projection2D, mat4id);

        if (node->flags & Drawable::CONTAINER) {
            // Only Group sets CONTAINER. Its state stays pushed as its children's parent state.
            if (next) drawStack.push(next);
            node = static_cast<Group*>(node)->first;
            continue;
        }

        glMatrixMode(GL_PROJECTION);
        glLoadMatrixf(is3D ? state.projection3D->m : state.projection2D->m);
        glMatrixMode(GL_MODELVIEW);
        if (is3D) {
            glLoadMatrixf(state.transform3D.m);
        } else {
            mat4 modelView(state.transform2D);
            glLoadMatrixf(modelView.m);
        }
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        applyDrawMode(node->flags);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, defaults.colors);
        glTexCoordPointer(2, GL_FLOAT, 0, defaults.texcoords);
        Shaders::texture_shader_fixed->bind();
        Shaders::texture_shader_fixed->setUniform("texture", 0);
        node->draw(state);
        state = pop(stateStack);
        node = next;
    }
}

template <typename Root> mat2 rootWorldToScreenMatrix(const Root& root) {
    vec2 c = wrappedCamera(root);
    mat2 m;
    m.translate((float)(root.screenWidth / 2), (float)(root.screenHeight / 2))
        .rotate(Math::toRadian(-root.camera->rotation))
        .translate(-c.x, -c.y)
        .scale(root.camera->zoom);
    return m;
}

template <typename Root> mat2 rootScreenToWorldMatrix(const Root& root) {
    vec2 c = wrappedCamera(root);
    mat2 m;
    m.translate(c.x, c.y)
        .rotate(Math::toRadian(root.camera->rotation))
        .scale(inverseZoom(root.camera->zoom))
        .translate(-(float)(root.screenWidth / 2), -(float)(root.screenHeight / 2));
    return m;
}

template <typename Root> vec2 rootWorldToScreen(const Root& root, const vec2& p) {
    vec2 c = wrappedCamera(root);
    mat2 m;
    m.translate((float)(root.screenWidth / 2), (float)(root.screenHeight / 2))
        .rotate(Math::toRadian(root.camera->rotation))
        .translate(-c.x, -c.y)
        .scale(root.camera->zoom);
    return m * p;
}

template void drawSceneTree<Scene2D>(Scene2D&);
template void drawSceneTree<DirectScene2D>(DirectScene2D&);
template mat2 rootWorldToScreenMatrix<Scene2D>(const Scene2D&);
template mat2 rootWorldToScreenMatrix<DirectScene2D>(const DirectScene2D&);
template mat2 rootScreenToWorldMatrix<Scene2D>(const Scene2D&);
template mat2 rootScreenToWorldMatrix<DirectScene2D>(const DirectScene2D&);
template vec2 rootWorldToScreen<Scene2D>(const Scene2D&, const vec2&);
template vec2 rootWorldToScreen<DirectScene2D>(const DirectScene2D&, const vec2&);

Scene2D::Scene2D(int width, int height)
    : framebuffer(nullptr), color0(nullptr), color1(nullptr), color2(nullptr), color3(nullptr),
      previousCamera(vec2(0, 0), 1.0f, 0.0f), camera(&defaultCamera), tuning{80.0f, 2.0f, 10.0f, 0.5f},
      tuningColor(WHITE), tuningFactor(0.1f), enabled(true), debugDraw(true), wrap(true),
      skipTransparent(true) {
    screenWidth = width == -1 ? Orvel::getScreenWidth() : width;
    screenHeight = height == -1 ? Orvel::getScreenHeight() : height;
    defaultCamera = Camera2D(vec2((float)(screenWidth / 2), (float)(screenHeight / 2)), 1.0f, 0.0f);
    worldWidth = (float)screenWidth;
    worldHeight = (float)screenHeight;

    Shaders::init();
    framebuffer = new Framebuffer(screenWidth, screenHeight, FRAMEBUFFER_FLAGS);
    color0 = framebuffer->color0;
    color1 = framebuffer->color1;
    color2 = framebuffer->color2;
    color3 = framebuffer->color3;
}

Scene2D::~Scene2D() {
    clear();
    delete framebuffer;
}

void Scene2D::draw() {
    framebuffer->bind();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    drawSceneTree(*this);

    Framebuffer::unbindFB();
    color0->bind(GL_TEXTURE0);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // Whatever program the walk left bound, the copy samples the texture.
    Shaders::texture_shader_fixed->bind();
    Shaders::texture_shader_fixed->setUniform("texture", 0);
    Orvel::fillScreen();
}

void Scene2D::setCamera(Camera2D* c) {
    camera = c ? c : &defaultCamera;
}

mat2 Scene2D::worldToScreenMatrix() const {
    return rootWorldToScreenMatrix(*this);
}

mat2 Scene2D::screenToWorldMatrix() const {
    return rootScreenToWorldMatrix(*this);
}

vec2 Scene2D::worldToScreen(const vec2& p) const {
    return rootWorldToScreen(*this, p);
}

vec2 Scene2D::screenToWorld(const vec2& p) const {
    return rootScreenToWorldMatrix(*this) * p;
}

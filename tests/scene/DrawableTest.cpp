#include "scene/Drawable.h"

#include <gtest/gtest.h>

#include "tests/scene/TestNodes.h"

using orvel::vec2;
using scene_test::forwardWalk;
using scene_test::TestContainer;
using scene_test::expectUpdateSizeOnlyClearsTheDirtyBit;
using scene_test::TestNode;

namespace {

void expectBounds(const Bounds& b, float x, float y, float w, float h) {
    EXPECT_NEAR(b.x, x, 1e-4f);
    EXPECT_NEAR(b.y, y, 1e-4f);
    EXPECT_NEAR(b.width, w, 1e-4f);
    EXPECT_NEAR(b.height, h, 1e-4f);
}

void expectHotSpot(const Drawable& n, float x, float y) {
    EXPECT_EQ(n.hotSpot.x, x);
    EXPECT_EQ(n.hotSpot.y, y);
}

void expectColor(const Color4ub& c, int r, int g, int b, int a) {
    EXPECT_EQ(c.r, r);
    EXPECT_EQ(c.g, g);
    EXPECT_EQ(c.b, b);
    EXPECT_EQ(c.a, a);
}

} // namespace

TEST(Drawable, StartsDetachedVisibleWhiteAndUnscaled) {
    TestNode n;
    EXPECT_EQ(n.parent, nullptr);
    EXPECT_EQ(n.next, nullptr);
    EXPECT_EQ(n.prev, nullptr);
    EXPECT_EQ(n.flags, 0x101u);
    expectColor(n.blendColor, 255, 255, 255, 255);
    EXPECT_EQ(n.position.x, 0);
    EXPECT_EQ(n.position.y, 0);
    EXPECT_EQ(n.position.z, 0);
    EXPECT_EQ(n.hotSpot.x, 0);
    EXPECT_EQ(n.size.x, 0);
    EXPECT_EQ(n.rotation.z, 0);
    EXPECT_EQ(n.reserved.x, 0);
    EXPECT_EQ(n.reserved.y, 0);
    EXPECT_EQ(n.reserved.z, 0);
    EXPECT_EQ(n.scale, 1.0f);
}

TEST(Drawable, HotSpotLocationKeepsItsOwnNumbering) {
    EXPECT_EQ(TopLeft, 0);
    EXPECT_EQ(TopRight, 1);
    EXPECT_EQ(Left, 2);
    EXPECT_EQ(Top, 3);
    EXPECT_EQ(Center, 4);
    EXPECT_EQ(Right, 5);
    EXPECT_EQ(Bottom, 6);
    EXPECT_EQ(BottomLeft, 7);
    EXPECT_EQ(BottomRight, 8);
}

TEST(Drawable, SetHotSpotPutsEachNamedPointOfTheBoxAtTheOrigin) {
    struct Case {
        HotSpotLocation location;
        float x, y;
    };
    // A 100 x 50 box: half sizes 50 and 25.
    const Case cases[] = {
        {TopLeft, 50, 25}, {TopRight, -50, 25},   {Left, 50, 0},
        {Top, 0, 25},      {Center, 0, 0},        {Right, -50, 0},
        {Bottom, 0, -25},  {BottomLeft, 50, -25}, {BottomRight, -50, -25},
    };
    for (const Case& c : cases) {
        TestNode n;
        n.setSize(100, 50);
        n.hotSpot.z = 7;
        n.setHotSpot(c.location);
        EXPECT_EQ(n.hotSpot.x, c.x) << "location " << c.location;
        EXPECT_EQ(n.hotSpot.y, c.y) << "location " << c.location;
        EXPECT_EQ(n.hotSpot.z, 7) << "location " << c.location;
    }
}

TEST(Drawable, SetHotSpotWithAnUnknownLocationLeavesTheHotSpot) {
    TestNode n;
    n.setSize(100, 50);
    n.setHotSpot(3, 4);
    n.setHotSpot(static_cast<HotSpotLocation>(9));
    expectHotSpot(n, 3, 4);
}

TEST(Drawable, HotSpotDoesNotFollowALaterSizeChange) {
    TestNode n;
    n.setSize(100, 50);
    n.setHotSpot(TopLeft);
    n.setSize(20, 10);
    expectHotSpot(n, 50, 25);
}

TEST(Drawable, SetHotSpotFromNumbersAndCenterHotSpot) {
    TestNode n;
    n.setHotSpot(-3.5f, 8);
    expectHotSpot(n, -3.5f, 8);
    n.centerHotSpot();
    expectHotSpot(n, 0, 0);
}

TEST(Drawable, BoundsOfATopLeftAnchoredBoxStartAtItsPosition) {
    TestNode n;
    n.setSize(100, 50);
    n.setHotSpot(TopLeft);
    n.position = orvel::vec3(10, 20, 0);
    expectBounds(n.getBounds(), 10, 20, 100, 50);
}

TEST(Drawable, BoundsScaleAboutTheOriginBeforeTheOffset) {
    TestNode n;
    n.setSize(100, 50);
    n.setHotSpot(TopLeft);
    n.position = orvel::vec3(10, 20, 0);
    n.setScale(2);
    // Local x 0..100 and y 0..50, doubled, then moved by (10, 20).
    expectBounds(n.getBounds(), 10, 20, 200, 100);
}

TEST(Drawable, BoundsOfAQuarterTurnSwapWidthAndHeight) {
    TestNode n;
    n.setSize(100, 50);
    n.setRotation(90);
    // (x, y) turns to (-y, x): corners (+-50, +-25) become (-+25, +-50).
    expectBounds(n.getBounds(), -25, -50, 50, 100);
}

TEST(Drawable, BoundsTurnAboutTheOriginNotTheBoxCentre) {
    TestNode n;
    n.setSize(100, 50);
    n.setHotSpot(TopLeft);
    n.setRotation(90);
    n.position = orvel::vec3(1, 2, 0);
    // Local corners (0..100, 0..50) turn to x in [-50, 0], y in [0, 100].
    expectBounds(n.getBounds(), -49, 2, 50, 100);
}

TEST(Drawable, SetRotationWrapsIntoAFullTurn) {
    TestNode n;
    n.setRotation(370);
    EXPECT_FLOAT_EQ(n.rotation.z, 10);
    n.setRotation(-30);
    EXPECT_FLOAT_EQ(n.rotation.z, 330);
}

TEST(Drawable, RotateAddsAndWraps) {
    TestNode n;
    n.setRotation(20);
    n.rotate(350);
    EXPECT_FLOAT_EQ(n.rotation.z, 10);
    n.rotate(-20);
    EXPECT_FLOAT_EQ(n.rotation.z, 350);
}

TEST(Drawable, SetScaleStoresTheMagnitude) {
    TestNode n;
    n.setScale(-2);
    EXPECT_EQ(n.scale, 2);
    n.setScale(0.5f);
    EXPECT_EQ(n.scale, 0.5f);
}

TEST(Drawable, FloatBlendColorTruncatesWithoutScaling) {
    TestNode n;
    n.setBlendColor(0.5f, 0.5f, 0.5f, 1.0f);
    expectColor(n.blendColor, 0, 0, 0, 1);
}

TEST(Drawable, FloatBlendColorClampsBeforeTruncating) {
    TestNode n;
    n.setBlendColor(2.0f, -1.0f, 1.0f, 0.99f);
    expectColor(n.blendColor, 1, 0, 1, 0);
}

TEST(Drawable, PackedBlendColorTakesRedFromTheLowByte) {
    TestNode n;
    n.setBlendColor(0x80402010u);
    expectColor(n.blendColor, 0x10, 0x20, 0x40, 0x80);
}

TEST(Drawable, SetDrawModeKeepsTheVisibleBit) {
    TestNode n;
    n.setDrawMode(0x200 | 0x1);
    EXPECT_EQ(n.getDrawMode(), 0x200u);
    EXPECT_EQ(n.flags, 0x201u);

    n.setVisible(false);
    n.setDrawMode(0x200 | 0x1);
    EXPECT_EQ(n.getDrawMode(), 0x200u);
    EXPECT_FALSE(n.isVisible());
    EXPECT_EQ(n.flags, 0x200u);
}

TEST(Drawable, SetDrawModeTakesOnlyTheModeBits) {
    TestNode n;
    n.flags |= 0x8;
    n.setDrawMode(0x1634);
    // 0x1634 & 0xF00 = 0x600; visible and dirty stay.
    EXPECT_EQ(n.getDrawMode(), 0x600u);
    EXPECT_EQ(n.flags, 0x609u);
    n.setDrawMode(0);
    EXPECT_EQ(n.getDrawMode(), 0u);
    EXPECT_EQ(n.flags, 0x009u);
}

TEST(Drawable, ANodeIsDrawnWithTheFirstModeSetAndAlphaWhenNone) {
    EXPECT_EQ(blendOf(0), BlendAlpha);
    EXPECT_EQ(blendOf(BlendAdd), BlendAdd);
    EXPECT_EQ(blendOf(BlendColor), BlendColor);
    EXPECT_EQ(blendOf(BlendAlpha | BlendAdd | BlendColor), BlendAlpha);
    EXPECT_EQ(blendOf(BlendAdd | BlendColor), BlendAdd);
    EXPECT_EQ(blendOf(0x800 | 0x1), BlendAlpha);
}

TEST(Drawable, DrawModeNamesHaveTheirBits) {
    EXPECT_EQ(BlendAlpha, 0x100u);
    EXPECT_EQ(BlendAdd, 0x200u);
    EXPECT_EQ(BlendColor, 0x400u);
}

TEST(Drawable, SetVisibleTogglesOnlyTheVisibleBit) {
    TestNode n;
    n.setVisible(false);
    EXPECT_FALSE(n.isVisible());
    EXPECT_EQ(n.flags, 0x100u);
    n.setVisible(true);
    EXPECT_TRUE(n.isVisible());
    EXPECT_EQ(n.flags, 0x101u);
}

TEST(Drawable, SetSizeNeitherMarksDirtyNorMovesTheHotSpot) {
    TestContainer c;
    TestNode n;
    c.add(&n);
    n.setHotSpot(4, 5);
    n.setSize(30, 40);
    EXPECT_EQ(n.size.x, 30);
    EXPECT_EQ(n.size.y, 40);
    EXPECT_EQ(n.flags & Drawable::DIRTY, 0u);
    EXPECT_EQ(c.dirtyNotices, 0);
    expectHotSpot(n, 4, 5);
}

TEST(Drawable, MarkDirtySetsTheBitAndTellsTheParent) {
    TestContainer c;
    TestNode n;
    c.add(&n);
    n.markDirty();
    EXPECT_NE(n.flags & Drawable::DIRTY, 0u);
    EXPECT_EQ(c.dirtyNotices, 1);
}

TEST(Drawable, MarkDirtyOnADetachedNodeOnlySetsTheBit) {
    TestNode n;
    n.markDirty();
    EXPECT_EQ(n.flags, 0x109u);
}

TEST(Drawable, DefaultUpdateSizeOnlyClearsTheDirtyBit) {
    TestNode n;
    expectUpdateSizeOnlyClearsTheDirtyBit(n, 3, 4, 0x101u);
}

TEST(Drawable, RemoveGoesThroughItsOwnParent) {
    TestContainer c;
    TestNode a, b;
    c.add(&a);
    c.add(&b);
    a.remove();
    EXPECT_EQ(a.parent, nullptr);
    EXPECT_EQ(c.count, 1);
    EXPECT_EQ(c.first, &b);
    // Detached: nothing happens.
    a.remove();
    EXPECT_EQ(c.count, 1);
}

TEST(Drawable, InsertAfterAndBeforeMoveIntoTheOtherNodesContainer) {
    TestContainer c1, c2;
    TestNode a, b, x, y;
    c1.add(&a);
    c1.add(&b);
    c2.add(&x);
    c2.add(&y);
    x.insertAfter(&a);
    y.insertBefore(&a);
    EXPECT_EQ(forwardWalk(c1), (std::vector<Drawable*>{&y, &a, &x, &b}));
    EXPECT_EQ(c1.count, 4);
    EXPECT_EQ(c2.count, 0);
    EXPECT_EQ(x.parent, &c1);
}

TEST(Drawable, InsertNextToADetachedOrMissingNodeDoesNothing) {
    TestContainer c;
    TestNode a, loose;
    c.add(&a);
    a.insertAfter(&loose);
    a.insertBefore(nullptr);
    EXPECT_EQ(a.parent, &c);
    EXPECT_EQ(c.count, 1);
    EXPECT_EQ(loose.parent, nullptr);
}

TEST(Drawable, BringToFrontAndSendToBackGoThroughTheParent) {
    TestContainer c;
    TestNode a, b, d;
    c.add(&a);
    c.add(&b);
    c.add(&d);
    a.bringToFront();
    EXPECT_EQ(forwardWalk(c), (std::vector<Drawable*>{&b, &d, &a}));
    d.sendToBack();
    EXPECT_EQ(forwardWalk(c), (std::vector<Drawable*>{&d, &b, &a}));
}

TEST(Drawable, DeletingANodeUnlinksIt) {
    TestContainer c;
    TestNode a, b;
    c.add(&a);
    TestNode* doomed = new TestNode;
    c.add(doomed);
    c.add(&b);
    delete doomed;
    EXPECT_EQ(c.count, 2);
    EXPECT_EQ(forwardWalk(c), (std::vector<Drawable*>{&a, &b}));
    EXPECT_EQ(b.prev, &a);
}

TEST(Drawable, LocalToGlobalAndGlobalToLocalAreZeroPlaceholders) {
    vec2 g = localToGlobal(vec2(3, 4));
    vec2 l = globalToLocal(vec2(-5, 6));
    EXPECT_EQ(g.x, 0);
    EXPECT_EQ(g.y, 0);
    EXPECT_EQ(l.x, 0);
    EXPECT_EQ(l.y, 0);
}

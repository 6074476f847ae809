#include "scene/Group.h"

#include <gtest/gtest.h>

#include "tests/scene/TestNodes.h"

using orvel::vec3;
using scene_test::forwardWalk;
using scene_test::TestContainer;
using scene_test::TestNode;

namespace {

void expectSize(const Drawable& d, float w, float h, float depth = 0) {
    EXPECT_NEAR(d.size.x, w, 1e-3f);
    EXPECT_NEAR(d.size.y, h, 1e-3f);
    EXPECT_NEAR(d.size.z, depth, 1e-3f);
}

} // namespace

TEST(Group, StartsAsADirtyVisibleContainer) {
    Group g;
    EXPECT_EQ(g.flags, 0x10Du);
    EXPECT_EQ(g.count, 0);
    EXPECT_EQ(g.first, nullptr);
    EXPECT_EQ(g.parent, nullptr);
}

TEST(Group, WithoutChildrenItsSizeIsZero) {
    Group g;
    g.size = vec3(5, 6, 7);
    g.updateSize();
    expectSize(g, 0, 0, 0);
    EXPECT_EQ(g.flags & Drawable::DIRTY, 0u);
}

TEST(Group, ItsBoxAlwaysHoldsItsOwnOrigin) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    box.position = vec3(100, 100, 0);
    g.add(&box);
    g.updateSize();
    // The box spans 95..105 on both axes; with the origin included, 0..105.
    expectSize(g, 105, 105);
    EXPECT_EQ(g.flags & Drawable::DIRTY, 0u);
}

TEST(Group, UpdateSizeKeepsPositionAndHotSpot) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    box.position = vec3(100, 100, 0);
    g.add(&box);
    g.position = vec3(1, 2, 3);
    g.setHotSpot(4, 5);
    g.updateSize();
    EXPECT_EQ(g.position.x, 1);
    EXPECT_EQ(g.position.y, 2);
    EXPECT_EQ(g.hotSpot.x, 4);
    EXPECT_EQ(g.hotSpot.y, 5);
}

TEST(Group, ChildrenOnBothSidesSpanTheirOuterEdges) {
    Group g;
    TestNode left, right;
    left.setSize(20, 10);
    left.position = vec3(-50, 0, 0);
    right.setSize(20, 10);
    right.position = vec3(30, 40, 0);
    g.add(&left);
    g.add(&right);
    g.updateSize();
    // x from -60 to 40, y from -5 to 45.
    expectSize(g, 100, 50);
}

TEST(Group, AChildsHotSpotShiftsItsBox) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    box.setHotSpot(TopLeft);
    g.add(&box);
    g.updateSize();
    // The box covers 0..10 on both axes.
    expectSize(g, 10, 10);
}

TEST(Group, AChildsScaleWidensItsBox) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    box.position = vec3(50, 0, 0);
    box.setScale(2);
    g.add(&box);
    g.updateSize();
    // Corners (+-5, +-5) doubled and moved: x 40..60 (and the origin), y -10..10.
    expectSize(g, 60, 20);
}

TEST(Group, AChildsQuarterTurnSwapsItsExtents) {
    Group g;
    TestNode box;
    box.setSize(20, 10);
    box.setRotation(90);
    g.add(&box);
    g.updateSize();
    expectSize(g, 10, 20);
}

TEST(Group, UpdateSizeRefreshesDirtyChildrenFirst) {
    Group outer;
    Group inner;
    TestNode box;
    box.setSize(10, 10);
    box.position = vec3(20, 0, 0);
    inner.add(&box);
    outer.add(&inner);
    // inner is dirty from its constructor; outer measures it after its own update.
    outer.updateSize();
    EXPECT_EQ(inner.flags & Drawable::DIRTY, 0u);
    // box: x 15..25 and y -5..5, widened to the origin.
    expectSize(inner, 25, 10);
    // inner's box is centred on its origin: x -12.5..12.5, y -5..5.
    expectSize(outer, 25, 10);
}

TEST(Group, ThreeDimensionalChildrenWidenDepthToo) {
    Group g;
    TestNode cube;
    cube.flags |= Drawable::NODE_3D;
    cube.size = vec3(10, 10, 10);
    cube.position = vec3(0, 0, 5);
    g.add(&cube);
    g.updateSize();
    // x and y -5..5; z 0..10.
    expectSize(g, 10, 10, 10);
}

TEST(Group, ThreeDimensionalChildrenTurnAboutZ) {
    Group g;
    TestNode slab;
    slab.flags |= Drawable::NODE_3D;
    slab.size = vec3(20, 10, 4);
    slab.rotation = vec3(0, 0, 90);
    g.add(&slab);
    g.updateSize();
    expectSize(g, 10, 20, 4);
}

TEST(Group, MarkDirtyRunsUpThroughNestedGroupsToTheRootContainer) {
    TestContainer root;
    Group outer;
    Group inner;
    TestNode leaf;
    root.add(&outer);
    outer.add(&inner);
    inner.add(&leaf);
    outer.updateSize();
    inner.updateSize();
    ASSERT_EQ(outer.flags & Drawable::DIRTY, 0u);

    leaf.markDirty();
    EXPECT_NE(inner.flags & Drawable::DIRTY, 0u);
    EXPECT_NE(outer.flags & Drawable::DIRTY, 0u);
    EXPECT_EQ(root.dirtyNotices, 1);
    root.clear();
}

TEST(Group, MarkDirtyRecomputesNothing) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    g.add(&box);
    g.updateSize();
    box.setSize(40, 40);
    box.markDirty();
    expectSize(g, 10, 10);
    g.updateSize();
    expectSize(g, 40, 40);
}

TEST(Group, UpdateSizeThroughTheDrawableSideIsTheGroups) {
    Group g;
    TestNode box;
    box.setSize(10, 10);
    box.position = vec3(10, 0, 0);
    g.add(&box);
    Drawable* asNode = &g;
    asNode->updateSize();
    // x 5..15 widened to the origin, y -5..5.
    expectSize(g, 15, 10);
}

TEST(Group, GroupsNestInsideGroups) {
    Group outer;
    Group inner;
    outer.add(&inner);
    EXPECT_EQ(inner.parent, &outer);
    EXPECT_EQ(outer.first, static_cast<Drawable*>(&inner));
    // The Drawable and Container forms of the list operations both reach the right list.
    inner.remove();
    EXPECT_EQ(outer.count, 0);
    EXPECT_EQ(inner.parent, nullptr);
}

TEST(Group, DeletingAGroupUnlinksItsChildrenAndLeavesItsParent) {
    TestContainer root;
    TestNode before, after, child1, child2;
    root.add(&before);
    Group* g = new Group;
    root.add(g);
    root.add(&after);
    g->add(&child1);
    g->add(&child2);
    delete g;
    EXPECT_EQ(root.count, 2);
    EXPECT_EQ(forwardWalk(root), (std::vector<Drawable*>{&before, &after}));
    EXPECT_EQ(child1.parent, nullptr);
    EXPECT_EQ(child1.next, nullptr);
    EXPECT_EQ(child2.parent, nullptr);
    EXPECT_EQ(child2.prev, nullptr);
}

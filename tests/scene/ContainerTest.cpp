#include "scene/Container.h"

#include <vector>

#include <gtest/gtest.h>

#include "scene/Group.h"
#include "tests/scene/TestNodes.h"

using scene_test::backwardWalk;
using scene_test::expectDeletingUnlinksBoth;
using scene_test::forwardWalk;
using scene_test::TestContainer;
using scene_test::TestNode;

namespace {

using Nodes = std::vector<Drawable*>;

// A container holding a, b and c, back to front.
struct ContainerTest : ::testing::Test {
    TestContainer c;
    TestNode a, b, d;
    void SetUp() override {
        c.add(&a);
        c.add(&b);
        c.add(&d);
    }
};

} // namespace

TEST(Container, StartsEmpty) {
    TestContainer c;
    EXPECT_EQ(c.first, nullptr);
    EXPECT_EQ(c.last, nullptr);
    EXPECT_EQ(c.count, 0);
    EXPECT_EQ(c.getNumDrawables(), 0);
}

TEST(Container, AddAppendsAtTheFrontEnd) {
    TestContainer c;
    TestNode a, b;
    c.add(&a);
    EXPECT_EQ(c.first, &a);
    EXPECT_EQ(c.last, &a);
    c.add(&b);
    EXPECT_EQ(c.first, &a);
    EXPECT_EQ(c.last, &b);
    EXPECT_EQ(a.next, &b);
    EXPECT_EQ(b.prev, &a);
    EXPECT_EQ(a.prev, nullptr);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(a.parent, &c);
    EXPECT_EQ(b.parent, &c);
    EXPECT_EQ(c.getNumDrawables(), 2);
}

TEST(Container, AddIgnoresNull) {
    TestContainer c;
    c.add(nullptr);
    EXPECT_EQ(c.count, 0);
    EXPECT_EQ(c.first, nullptr);
}

TEST(Container, AddOfAGroupToItselfIsIgnored) {
    Group g;
    g.add(static_cast<Drawable*>(&g));
    EXPECT_EQ(g.count, 0);
    EXPECT_EQ(g.first, nullptr);
    EXPECT_EQ(g.parent, nullptr);
}

TEST_F(ContainerTest, AddOfTheLastNodeAgainKeepsOrderAndCount) {
    c.add(&d);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b, &d}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &b, &a}));
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, AddOfAnEarlierNodeMovesItToTheFront) {
    c.add(&a);
    EXPECT_EQ(forwardWalk(c), (Nodes{&b, &d, &a}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&a, &d, &b}));
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, AddTakesANodeOutOfItsOldContainer) {
    TestContainer other;
    other.add(&b);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &d}));
    EXPECT_EQ(c.count, 2);
    EXPECT_EQ(other.count, 1);
    EXPECT_EQ(b.parent, &other);
    EXPECT_EQ(b.prev, nullptr);
    EXPECT_EQ(b.next, nullptr);
}

TEST_F(ContainerTest, RemoveOfTheMiddleJoinsItsNeighbours) {
    c.remove(&b);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &d}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &a}));
    EXPECT_EQ(c.count, 2);
    EXPECT_EQ(b.parent, nullptr);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(b.prev, nullptr);
}

TEST_F(ContainerTest, RemoveOfTheEndsMovesFirstAndLast) {
    c.remove(&a);
    EXPECT_EQ(c.first, &b);
    EXPECT_EQ(b.prev, nullptr);
    c.remove(&d);
    EXPECT_EQ(c.last, &b);
    EXPECT_EQ(b.next, nullptr);
    c.remove(&b);
    EXPECT_EQ(c.first, nullptr);
    EXPECT_EQ(c.last, nullptr);
    EXPECT_EQ(c.count, 0);
}

TEST_F(ContainerTest, RemoveThroughAForeignContainerOnlyClearsTheNodesLinks) {
    TestContainer other;
    other.remove(&b);
    EXPECT_EQ(b.parent, nullptr);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(b.prev, nullptr);
    // The real container still holds it.
    EXPECT_EQ(c.count, 3);
    EXPECT_EQ(a.next, &b);
    EXPECT_EQ(d.prev, &b);
    EXPECT_EQ(c.first, &a);
    EXPECT_EQ(c.last, &d);
    EXPECT_EQ(other.count, 0);
    EXPECT_EQ(other.first, nullptr);
    // clear() walks back from the last node and would stop at b, whose links are gone; with them
    // back every node leaves the container before the fixture destroys them.
    b.prev = &a;
    c.clear();
}

TEST_F(ContainerTest, RemoveOfNullIsIgnored) {
    c.remove(nullptr);
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, InsertAfterPlacesTheNodeBehindTheReference) {
    TestNode x;
    c.insertAfter(&x, &a);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &x, &b, &d}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &b, &x, &a}));
    EXPECT_EQ(c.count, 4);
    EXPECT_EQ(x.parent, &c);
}

TEST_F(ContainerTest, InsertAfterTheLastNodeBecomesLast) {
    TestNode x;
    c.insertAfter(&x, &d);
    EXPECT_EQ(c.last, &x);
    EXPECT_EQ(x.next, nullptr);
    EXPECT_EQ(backwardWalk(c), (Nodes{&x, &d, &b, &a}));
}

TEST_F(ContainerTest, InsertBeforePlacesTheNodeInFrontOfTheReference) {
    TestNode x;
    c.insertBefore(&x, &d);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b, &x, &d}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &x, &b, &a}));
    EXPECT_EQ(c.count, 4);
}

TEST_F(ContainerTest, InsertBeforeTheFirstNodeBecomesFirst) {
    TestNode x;
    c.insertBefore(&x, &a);
    EXPECT_EQ(c.first, &x);
    EXPECT_EQ(x.prev, nullptr);
    EXPECT_EQ(forwardWalk(c), (Nodes{&x, &a, &b, &d}));
}

TEST_F(ContainerTest, InsertMovesANodeWithinTheSameContainer) {
    c.insertAfter(&b, &d);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &d, &b}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&b, &d, &a}));
    EXPECT_EQ(c.count, 3);
    c.insertBefore(&b, &a);
    EXPECT_EQ(forwardWalk(c), (Nodes{&b, &a, &d}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &a, &b}));
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, InsertTakesANodeOutOfItsOldContainer) {
    TestContainer other;
    TestNode x;
    other.add(&x);
    c.insertAfter(&x, &b);
    EXPECT_EQ(other.count, 0);
    EXPECT_EQ(other.first, nullptr);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b, &x, &d}));
}

TEST_F(ContainerTest, InsertAfterAReferenceInAnotherContainerDoesNothing) {
    TestContainer other;
    TestNode ref;
    other.add(&ref);
    c.insertAfter(&b, &ref);
    c.insertBefore(&b, &ref);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b, &d}));
    EXPECT_EQ(c.count, 3);
    EXPECT_EQ(b.parent, &c);
    EXPECT_EQ(other.count, 1);
    EXPECT_EQ(ref.next, nullptr);
    EXPECT_EQ(ref.prev, nullptr);
}

TEST_F(ContainerTest, InsertWithNullArgumentsDoesNothing) {
    TestNode x;
    c.insertAfter(nullptr, &a);
    c.insertAfter(&x, nullptr);
    c.insertBefore(nullptr, &a);
    c.insertBefore(&x, nullptr);
    EXPECT_EQ(c.count, 3);
    EXPECT_EQ(x.parent, nullptr);
}

TEST_F(ContainerTest, BringToFrontMovesANodeToTheEnd) {
    c.bringToFront(&a);
    EXPECT_EQ(forwardWalk(c), (Nodes{&b, &d, &a}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&a, &d, &b}));
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, BringToFrontOfTheLastNodeDropsItFromTheForwardWalk) {
    c.bringToFront(&d);
    EXPECT_EQ(b.next, nullptr);
    EXPECT_EQ(d.prev, &d);
    EXPECT_EQ(d.next, nullptr);
    EXPECT_EQ(c.last, &d);
    EXPECT_EQ(c.count, 3);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b}));
    c.clear();
}

TEST(Container, BringToFrontOfASoleChildLeavesFirstNull) {
    TestContainer c;
    TestNode a;
    c.add(&a);
    c.bringToFront(&a);
    EXPECT_EQ(c.first, nullptr);
    EXPECT_EQ(c.last, &a);
    EXPECT_EQ(c.count, 1);
    EXPECT_EQ(a.prev, &a);
    EXPECT_EQ(a.next, nullptr);
    c.clear();
}

TEST_F(ContainerTest, BringToFrontOfAForeignNodeDoesNothing) {
    TestContainer other;
    TestNode x;
    other.add(&x);
    c.bringToFront(&x);
    c.sendToBack(&x);
    c.bringToFront(nullptr);
    c.sendToBack(nullptr);
    EXPECT_EQ(forwardWalk(c), (Nodes{&a, &b, &d}));
    EXPECT_EQ(x.parent, &other);
    EXPECT_EQ(other.first, &x);
}

TEST_F(ContainerTest, SendToBackMovesANodeToTheStart) {
    c.sendToBack(&d);
    EXPECT_EQ(forwardWalk(c), (Nodes{&d, &a, &b}));
    EXPECT_EQ(backwardWalk(c), (Nodes{&b, &a, &d}));
    EXPECT_EQ(c.count, 3);
}

TEST_F(ContainerTest, SendToBackOfTheFirstNodeDropsItFromTheBackwardWalk) {
    c.sendToBack(&a);
    EXPECT_EQ(a.next, &a);
    EXPECT_EQ(a.prev, nullptr);
    EXPECT_EQ(b.prev, nullptr);
    EXPECT_EQ(c.first, &a);
    EXPECT_EQ(c.count, 3);
    EXPECT_EQ(backwardWalk(c), (Nodes{&d, &b}));
    c.clear();
}

TEST_F(ContainerTest, ClearUnlinksEveryChild) {
    c.clear();
    EXPECT_EQ(c.first, nullptr);
    EXPECT_EQ(c.last, nullptr);
    EXPECT_EQ(c.count, 0);
    for (TestNode* n : {&a, &b, &d}) {
        EXPECT_EQ(n->parent, nullptr);
        EXPECT_EQ(n->next, nullptr);
        EXPECT_EQ(n->prev, nullptr);
    }
}

TEST(Container, DeletingAContainerUnlinksButKeepsItsChildren) {
    TestNode a, b;
    expectDeletingUnlinksBoth(new TestContainer, a, b);
}

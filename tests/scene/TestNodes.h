#pragma once
// Plain scene nodes for tests that need no display: a leaf, a container, list walkers, and the
// checks every kind of container shares.

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "scene/Container.h"
#include "scene/Drawable.h"

namespace scene_test {

// A leaf that draws nothing and counts how often it was asked to.
class TestNode : public Drawable {
public:
    void draw(SceneState&) override { ++drawCount; }
    int drawCount = 0;
};

// A concrete container that counts the dirty notices of its children.
class TestContainer : public Container {
public:
    ~TestContainer() override {}
    void markContainerDirty() override { ++dirtyNotices; }
    int dirtyNotices = 0;
};

// The children reached from first along next, at most `limit` of them (broken lists may loop).
inline std::vector<Drawable*> forwardWalk(const Container& c, int limit = 16) {
    std::vector<Drawable*> out;
    for (Drawable* d = c.first; d && (int)out.size() < limit; d = d->next)
        out.push_back(d);
    return out;
}

// The children reached from last along prev, at most `limit` of them.
inline std::vector<Drawable*> backwardWalk(const Container& c, int limit = 16) {
    std::vector<Drawable*> out;
    for (Drawable* d = c.last; d && (int)out.size() < limit; d = d->prev)
        out.push_back(d);
    return out;
}

// Adds a and b to `parent`, deletes it, and checks that both were unlinked and survive.
inline void expectDeletingUnlinksBoth(Container* parent, Drawable& a, Drawable& b) {
    parent->add(&a);
    parent->add(&b);
    delete parent;
    EXPECT_EQ(a.parent, nullptr);
    EXPECT_EQ(a.next, nullptr);
    EXPECT_EQ(b.parent, nullptr);
    EXPECT_EQ(b.prev, nullptr);
}

// Gives `n` a size of w x h, marks it dirty and updates its size: the dirty bit goes, leaving
// `cleanFlags`, and the size stays.
inline void expectUpdateSizeOnlyClearsTheDirtyBit(Drawable& n, float w, float h, uint32_t cleanFlags) {
    n.setSize(w, h);
    n.markDirty();
    n.updateSize();
    EXPECT_EQ(n.flags, cleanFlags);
    EXPECT_EQ(n.size.x, w);
    EXPECT_EQ(n.size.y, h);
}

} // namespace scene_test

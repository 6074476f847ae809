#pragma once
// A node that holds other nodes: a Drawable whose content is its child list.

#include "scene/Container.h"
#include "scene/Drawable.h"

// Composite HUD items and nested parts derive from it. The renderer descends into the
// children (flag CONTAINER); the group itself draws nothing. Its size is the box around its
// children and its own origin, recomputed lazily when DIRTY is set.
class Group : public Container, public Drawable {
public:
    // Both bases default-constructed, then CONTAINER and DIRTY set.
    Group();
    // Unlinks the children (not deleted), then leaves its own parent.
    ~Group() override;

    // A child's size changed: marks this group dirty, which goes on to its own parent.
    void markContainerDirty() override;
    // The box of the children, each transformed into the group's space, widened to hold the
    // group's origin; clears DIRTY. Position and hot spot are not changed.
    void updateSize() override;
    // Nothing: the renderer visits the children instead.
    void draw(SceneState& state) override;

    // Both bases name these; a group answers to either form.
    using Container::bringToFront;
    using Container::insertAfter;
    using Container::insertBefore;
    using Container::remove;
    using Container::sendToBack;
    using Drawable::bringToFront;
    using Drawable::insertAfter;
    using Drawable::insertBefore;
    using Drawable::remove;
    using Drawable::sendToBack;
};

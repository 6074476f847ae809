#pragma once
// The child list of a scene node: an intrusive doubly linked list of Drawables, back to front.

#include <cstdint>

class Drawable;

// The links live in the children (parent, next, prev). A container does not own its children:
// clearing or deleting it only unlinks them; whoever created a node deletes it.
// Operations that take a node ignore null and the container itself.
class Container {
public:
    // Empty.
    Container();
    // Unlinks every child. Pure here: every concrete container defines its own.
    virtual ~Container() = 0;
    // Links would be shared by two lists.
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    // A child's size changed. Nothing here; a Group marks itself dirty in turn.
    virtual void markContainerDirty();
    virtual int getNumDrawables() const;
    // Unlinks every child, last to first; the list is empty afterwards.
    virtual void clear();
    // Appends d at the front end (drawn last), taking it out of its old container first.
    virtual void add(Drawable* d);
    // Unlinks d if it is a child here; either way d's own parent and links become null.
    virtual void remove(Drawable* d);
    // Moves d right before / after ref; nothing unless ref is a child of this container.
    virtual void insertBefore(Drawable* d, Drawable* ref);
    virtual void insertAfter(Drawable* d, Drawable* ref);
    // Makes child d front-most / back-most. There is no test for d already being there, which
    // breaks the links (see the .cpp); callers only move nodes that are not already there.
    virtual void bringToFront(Drawable* d);
    virtual void sendToBack(Drawable* d);

    Drawable* first; // back-most child, drawn first; null when empty
    Drawable* last;  // front-most child, drawn last; null when empty
    int32_t count;

private:
    // Whether d is this very object (a Group is both a Container and a Drawable).
    bool isSelf(const Drawable* d) const;
};

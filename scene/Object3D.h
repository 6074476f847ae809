#pragma once
// A 3D object node: a place kept for 3D content; it has no fields and draws nothing.

class Object3D {
public:
    Object3D();
    virtual ~Object3D();
};

#pragma once
// A 3D model node: a place kept for 3D content; it has no fields and draws nothing.

class Model3D {
public:
    Model3D();
    virtual ~Model3D();
};

#include "scene/Model3D.h"

Model3D::Model3D() {}

Model3D::~Model3D() {}

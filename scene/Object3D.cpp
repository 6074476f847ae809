#include "scene/Object3D.h"

Object3D::Object3D() {}

Object3D::~Object3D() {}

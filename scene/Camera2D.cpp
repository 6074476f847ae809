#include "scene/Camera2D.h"

Camera2D::Camera2D() : position(0, 0), zoom(1.0f), rotation(0.0f) {}

Camera2D::Camera2D(const orvel::vec2& p, float z, float r) : position(p), zoom(z), rotation(r) {}

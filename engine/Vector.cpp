#include "engine/Vector.h"

namespace orvel {

namespace {

// The upper bound is tested first, so with min > max every component ends at max.
float clampComponent(float c, float min, float max) {
    if (c > max) {
        return max;
    }
    if (min > c) {
        return min;
    }
    return c;
}

// Divides v by its length; a zero-length v is left as it is.
template <typename V> V& normalizeByLength(V& v) {
    float l = v.length();
    if (l != 0.0f) {
        v /= l;
    }
    return v;
}

} // namespace

vec1& vec1::clamp(float min, float max) {
    x = clampComponent(x, min, max);
    return *this;
}

vec2& vec2::normalize() {
    return normalizeByLength(*this);
}

vec2& vec2::clamp(float min, float max) {
    x = clampComponent(x, min, max);
    y = clampComponent(y, min, max);
    return *this;
}

vec3& vec3::normalize() {
    return normalizeByLength(*this);
}

vec3& vec3::clamp(float min, float max) {
    x = clampComponent(x, min, max);
    y = clampComponent(y, min, max);
    z = clampComponent(z, min, max);
    return *this;
}

float& vec3::operator[](unsigned i) {
    if (i & 2) {
        return z;
    }
    if (i & 1) {
        return y;
    }
    return x;
}

float vec3::operator[](unsigned i) const {
    return const_cast<vec3&>(*this)[i];
}

vec4& vec4::normalize() {
    return normalizeByLength(*this);
}

vec4& vec4::clamp(float min, float max) {
    x = clampComponent(x, min, max);
    y = clampComponent(y, min, max);
    z = clampComponent(z, min, max);
    w = clampComponent(w, min, max);
    return *this;
}

float& vec4::operator[](unsigned i) {
    if ((i & 3) == 3) {
        return w;
    }
    if (i & 2) {
        return z;
    }
    if (i & 1) {
        return y;
    }
    return x;
}

float vec4::operator[](unsigned i) const {
    return const_cast<vec4&>(*this)[i];
}

vec2 operator/(const vec2& v, float s) {
    if (s == 0.0f) {
        return vec2();
    }
    return v * (1.0f / s);
}

vec3 operator/(const vec3& v, float s) {
    if (s == 0.0f) {
        return vec3();
    }
    return v * (1.0f / s);
}

vec4 operator/(const vec4& v, float s) {
    if (s == 0.0f) {
        return vec4();
    }
    return v * (1.0f / s);
}

} // namespace orvel

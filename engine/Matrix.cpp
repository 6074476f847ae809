#include "engine/Matrix.h"

#include <cmath>
#include <utility>

#include "engine/Math.h"

namespace orvel {

namespace {

// Scales the pair (a, b) to unit length unless both are zero.
void normalizePair(float& a, float& b) {
    float l = std::sqrt(a * a + b * b);
    if (l != 0.0f) {
        a /= l;
        b /= l;
    }
}

// a[i] += b[i] for every element.
template <unsigned N> void addElements(float (&a)[N], const float (&b)[N]) {
    for (unsigned i = 0; i < N; ++i) {
        a[i] += b[i];
    }
}

// Replaces columns 0..2 (all four rows) of m by m * r, where r[3 * j + k] is row k of column
// j of a 3x3 rotation; column 3 stays.
void multiplyColumns(float* m, const float* r) {
    float out[12];
    for (int j = 0; j < 3; ++j) {
        for (int row = 0; row < 4; ++row) {
            out[4 * j + row] = m[row] * r[3 * j] + m[4 + row] * r[3 * j + 1] + m[8 + row] * r[3 * j + 2];
        }
    }
    for (int i = 0; i < 12; ++i) {
        m[i] = out[i];
    }
}

// 2x2 minors of rows 0, 1 (s) and rows 2, 3 (c) of a column-major matrix; both the
// determinant and the inverse are built from them.
struct Minors {
    float s[6];
    float c[6];

    explicit Minors(const float* m) {
        // a(r, col) = m[4 * col + r]
        auto a = [m](int r, int col) { return m[4 * col + r]; };
        s[0] = a(0, 0) * a(1, 1) - a(1, 0) * a(0, 1);
        s[1] = a(0, 0) * a(1, 2) - a(1, 0) * a(0, 2);
        s[2] = a(0, 0) * a(1, 3) - a(1, 0) * a(0, 3);
        s[3] = a(0, 1) * a(1, 2) - a(1, 1) * a(0, 2);
        s[4] = a(0, 1) * a(1, 3) - a(1, 1) * a(0, 3);
        s[5] = a(0, 2) * a(1, 3) - a(1, 2) * a(0, 3);
        c[0] = a(2, 0) * a(3, 1) - a(3, 0) * a(2, 1);
        c[1] = a(2, 0) * a(3, 2) - a(3, 0) * a(2, 2);
        c[2] = a(2, 0) * a(3, 3) - a(3, 0) * a(2, 3);
        c[3] = a(2, 1) * a(3, 2) - a(3, 1) * a(2, 2);
        c[4] = a(2, 1) * a(3, 3) - a(3, 1) * a(2, 3);
        c[5] = a(2, 2) * a(3, 3) - a(3, 2) * a(2, 3);
    }

    float determinant() const {
        return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] - s[4] * c[1] + s[5] * c[0];
    }
};

} // namespace

// ---- mat2 ----

mat2::mat2() : m{1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f} {}

mat2::mat2(float m0, float m1, float m2, float m3, float m4, float m5) : m{m0, m1, m2, m3, m4, m5} {}

mat2& mat2::identity() {
    *this = mat2();
    return *this;
}

mat2& mat2::translate(float tx, float ty) {
    m[4] += m[0] * tx + m[2] * ty;
    m[5] += m[1] * tx + m[3] * ty;
    return *this;
}

mat2& mat2::translate(const vec2& t) {
    return translate(t.x, t.y);
}

mat2& mat2::rotate(float a) {
    float c = std::cos(a);
    float s = std::sin(a);
    float m0 = c * m[0] - s * m[2];
    float m1 = c * m[1] - s * m[3];
    float m2 = s * m[0] + c * m[2];
    float m3 = s * m[1] + c * m[3];
    m[0] = m0;
    m[1] = m1;
    m[2] = m2;
    m[3] = m3;
    return *this;
}

mat2& mat2::scale(float s) {
    m[0] *= s;
    m[1] *= s;
    m[2] *= s;
    m[3] *= s;
    return *this;
}

mat2& mat2::scale(const vec2& s) {
    m[0] *= s.x;
    m[1] *= s.x;
    m[2] *= s.y;
    m[3] *= s.y;
    return *this;
}

float mat2::determinant() const {
    return m[0] * m[3] - m[1] * m[2];
}

mat2& mat2::transpose() {
    m[0] = m[3];
    std::swap(m[1], m[2]);
    return *this;
}

mat2& mat2::invert() {
    float d = determinant();
    if (d == 0.0f) {
        return *this;
    }
    float k = 1.0f / d;
    float m0 = m[3] * k;
    float m1 = -m[2] * k;
    float m2 = -m[1] * k;
    float m3 = m[0] * k;
    m[0] = m0;
    m[1] = m1;
    m[2] = m2;
    m[3] = m3;
    m[4] = -m[4];
    m[5] = -m[5];
    return *this;
}

mat2& mat2::normalize() {
    normalizePair(m[0], m[1]);
    normalizePair(m[2], m[3]);
    normalizePair(m[4], m[5]);
    return *this;
}

mat2& mat2::operator+=(const mat2& b) {
    addElements(m, b.m);
    return *this;
}

mat2& mat2::operator*=(const mat2& b) {
    *this = *this * b;
    return *this;
}

mat2 mat2::operator*(const mat2& b) const {
    const float* a = m;
    return mat2(a[0] * b.m[0] + a[2] * b.m[1], a[1] * b.m[0] + a[3] * b.m[1], a[0] * b.m[2] + a[2] * b.m[3],
                a[1] * b.m[2] + a[3] * b.m[3], a[0] * b.m[4] + a[2] * b.m[5], a[1] * b.m[4] + a[2] * b.m[5]);
}

mat2::operator mat4() const {
    mat4 r;
    for (float& e : r.m) {
        e = 0.0f;
    }
    r.m[0] = m[0];
    r.m[1] = m[1];
    r.m[4] = m[2];
    r.m[5] = m[3];
    r.m[10] = 1.0f;
    r.m[12] = m[4];
    r.m[13] = m[5];
    r.m[15] = 1.0f;
    return r;
}

// ---- mat4 ----

mat4::mat4()
    : m{1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f} {}

mat4::mat4(const float* values) {
    for (int i = 0; i < 16; ++i) {
        m[i] = values[i];
    }
}

mat4& mat4::identity() {
    *this = mat4();
    return *this;
}

mat4& mat4::transpose() {
    for (int c = 0; c < 4; ++c) {
        for (int r = c + 1; r < 4; ++r) {
            std::swap(m[4 * c + r], m[4 * r + c]);
        }
    }
    return *this;
}

float mat4::determinant() const {
    return Minors(m).determinant();
}

mat4& mat4::invert() {
    Minors minors(m);
    float d = minors.determinant();
    if (d == 0.0f) {
        return *this;
    }
    const float* s = minors.s;
    const float* c = minors.c;
    auto a = [this](int r, int col) { return m[4 * col + r]; };

    // Adjugate, element (r, col) at 4 * col + r.
    float adj[16];
    adj[0] = a(1, 1) * c[5] - a(1, 2) * c[4] + a(1, 3) * c[3];
    adj[4] = -a(0, 1) * c[5] + a(0, 2) * c[4] - a(0, 3) * c[3];
    adj[8] = a(3, 1) * s[5] - a(3, 2) * s[4] + a(3, 3) * s[3];
    adj[12] = -a(2, 1) * s[5] + a(2, 2) * s[4] - a(2, 3) * s[3];

    adj[1] = -a(1, 0) * c[5] + a(1, 2) * c[2] - a(1, 3) * c[1];
    adj[5] = a(0, 0) * c[5] - a(0, 2) * c[2] + a(0, 3) * c[1];
    adj[9] = -a(3, 0) * s[5] + a(3, 2) * s[2] - a(3, 3) * s[1];
    adj[13] = a(2, 0) * s[5] - a(2, 2) * s[2] + a(2, 3) * s[1];

    adj[2] = a(1, 0) * c[4] - a(1, 1) * c[2] + a(1, 3) * c[0];
    adj[6] = -a(0, 0) * c[4] + a(0, 1) * c[2] - a(0, 3) * c[0];
    adj[10] = a(3, 0) * s[4] - a(3, 1) * s[2] + a(3, 3) * s[0];
    adj[14] = -a(2, 0) * s[4] + a(2, 1) * s[2] - a(2, 3) * s[0];

    adj[3] = -a(1, 0) * c[3] + a(1, 1) * c[1] - a(1, 2) * c[0];
    adj[7] = a(0, 0) * c[3] - a(0, 1) * c[1] + a(0, 2) * c[0];
    adj[11] = -a(3, 0) * s[3] + a(3, 1) * s[1] - a(3, 2) * s[0];
    adj[15] = a(2, 0) * s[3] - a(2, 1) * s[1] + a(2, 2) * s[0];

    for (int i = 0; i < 16; ++i) {
        m[i] = adj[i] / d;
    }
    return *this;
}

mat4& mat4::operator+=(const mat4& b) {
    addElements(m, b.m);
    return *this;
}

mat4& mat4::operator*=(const mat4& b) {
    *this = *this * b;
    return *this;
}

mat4 mat4::operator*(const mat4& b) const {
    mat4 r;
    for (int c = 0; c < 4; ++c) {
        for (int row = 0; row < 4; ++row) {
            r.m[4 * c + row] = m[row] * b.m[4 * c] + m[4 + row] * b.m[4 * c + 1] +
                               m[8 + row] * b.m[4 * c + 2] + m[12 + row] * b.m[4 * c + 3];
        }
    }
    return r;
}

mat4& mat4::translate(const vec3& t) {
    m[12] += m[0] * t.x + m[4] * t.y + m[8] * t.z;
    m[13] += m[1] * t.x + m[5] * t.y + m[9] * t.z;
    m[14] += m[2] * t.x + m[6] * t.y + m[10] * t.z;
    return *this;
}

mat4& mat4::scale(float s) {
    for (float& e : m) {
        e *= s;
    }
    return *this;
}

mat4& mat4::scale(const vec3& s) {
    for (int r = 0; r < 3; ++r) {
        m[r] *= s.x;
        m[4 + r] *= s.y;
        m[8 + r] *= s.z;
    }
    return *this;
}

mat4& mat4::scale(const vec4& s) {
    for (int r = 0; r < 4; ++r) {
        m[r] *= s.x;
        m[4 + r] *= s.y;
        m[8 + r] *= s.z;
        m[12 + r] *= s.w;
    }
    return *this;
}

mat4& mat4::rotate(const vec4& r) {
    float ax = r.x;
    float ay = r.y;
    float az = r.z;
    float c = std::cos(r.w);
    float s = std::sin(r.w);
    float t = 1.0f - c;
    // Column by column; rows (0, 1) and (1, 0) carry ay*az*t, see the header.
    const float rot[9] = {
        c + ax * ax * t,      ay * az * t + az * s, ax * az * t - ay * s,
        ay * az * t - az * s, c + ay * ay * t,      ay * az * t + ax * s,
        ax * az * t + ay * s, ay * az * t - ax * s, c + az * az * t,
    };
    multiplyColumns(m, rot);
    return *this;
}

mat4& mat4::rotate(const vec3& angles) {
    float sx = std::sin(angles.x);
    float cx = std::cos(angles.x);
    float sy = std::sin(angles.y);
    float cy = std::cos(angles.y);
    float sz = std::sin(angles.z);
    float cz = std::cos(angles.z);
    // Column by column. The rotation has no local offset of its own: columns 0..2 get nothing
    // added to rows 0..2.
    const float rot[9] = {
        cy * cz,
        sx * sy * cz - cx * sz,
        cx * sy * cz + sx * sz,
        cy * sz,
        sx * sy * sz + cx * cz,
        cx * sy * sz - sx * cz,
        -sy,
        sx * cy,
        cx * cy,
    };
    multiplyColumns(m, rot);
    return *this;
}

mat4& mat4::normalize() {
    for (int col = 0; col < 3; ++col) {
        float* v = m + 4 * col;
        float l = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2] + v[3] * v[3]);
        if (l != 0.0f) {
            for (int r = 0; r < 4; ++r) {
                v[r] /= l;
            }
        }
    }
    return *this;
}

mat4 mat4::createProjectionMatrix(float left, float right, float top, float bottom, float near, float far) {
    mat4 r;
    for (float& e : r.m) {
        e = 0.0f;
    }
    r.m[0] = 2.0f * near / (right - left);
    r.m[5] = 2.0f * near / (top - bottom);
    r.m[8] = (left + right) / (right - left);
    r.m[9] = (top + bottom) / (top - bottom);
    r.m[10] = (-far - near) / (far - near);
    r.m[11] = -1.0f;
    r.m[14] = -2.0f * near * far / (far - near);
    return r;
}

mat4 mat4::createOrthoMatrix(float left, float right, float top, float bottom, float near, float far) {
    if (right == left) {
        right = left + 1.0f;
    }
    if (top == bottom) {
        bottom = bottom + 1.0f;
    }
    if (far == near) {
        far = far + 1.0f;
    }
    mat4 r;
    for (float& e : r.m) {
        e = 0.0f;
    }
    r.m[0] = 2.0f / (right - left);
    r.m[5] = 2.0f / (top - bottom);
    r.m[10] = -2.0f / (far - near);
    r.m[12] = -(left + right) / (right - left);
    r.m[13] = -(top + bottom) / (top - bottom);
    r.m[14] = -(near + far) / (far - near);
    r.m[15] = 1.0f;
    return r;
}

mat4 mat4::createLookAtMatrix(vec3 eye, vec3 center, vec3 up) {
    vec3 f = (center - eye).normalize();
    vec3 s = Math::cross(f, up.normalize()).normalize();
    vec3 u = Math::cross(s, f).normalize();
    mat4 r;
    // Rows 0..2 are s, u and -f.
    r.m[0] = s.x;
    r.m[4] = s.y;
    r.m[8] = s.z;
    r.m[1] = u.x;
    r.m[5] = u.y;
    r.m[9] = u.z;
    r.m[2] = -f.x;
    r.m[6] = -f.y;
    r.m[10] = -f.z;
    r.m[3] = 0.0f;
    r.m[7] = 0.0f;
    r.m[11] = 0.0f;
    r.m[12] = -Math::dot(s, eye);
    r.m[13] = -Math::dot(u, eye);
    r.m[14] = Math::dot(f, eye);
    r.m[15] = 1.0f;
    return r;
}

// ---- matrix times vector ----

vec2 operator*(const mat2& a, const vec2& v) {
    return vec2(a.m[0] * v.x + a.m[2] * v.y + a.m[4], a.m[1] * v.x + a.m[3] * v.y + a.m[5]);
}

vec2 operator*(const vec2& v, const mat2& a) {
    return a * v;
}

vec2 operator*(const mat4& a, const vec2& v) {
    return vec2(a.m[0] * v.x + a.m[4] * v.y + a.m[12], a.m[1] * v.x + a.m[5] * v.y + a.m[13]);
}

vec2 operator*(const vec2& v, const mat4& a) {
    return a * v;
}

vec3 operator*(const mat4& a, const vec3& v) {
    const float* m = a.m;
    return vec3(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12], m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13],
                m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14]);
}

vec3 operator*(const vec3& v, const mat4& a) {
    return a * v;
}

vec4 operator*(const mat4& a, const vec4& v) {
    const float* m = a.m;
    return vec4(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12] * v.w,
                m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13] * v.w,
                m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14] * v.w,
                m[3] * v.x + m[7] * v.y + m[11] * v.z + m[15] * v.w);
}

vec4 operator*(const vec4& v, const mat4& a) {
    return a * v;
}

} // namespace orvel

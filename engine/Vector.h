#pragma once
// Float vectors of one to four components for positions, speeds, sizes, colours and shader uniforms.

#include <cmath>
#include <type_traits>

namespace orvel {

// Plain values, copied freely. The components sit next to each other with no padding, so a
// vector (or an array of them) can go straight to glUniform*fv. Default construction gives zero.

struct vec1 {
    float x;

    vec1() : x(0.0f) {}
    explicit vec1(float xv) : x(xv) {}

    // If x > max then max, else if min > x then min; the upper bound wins when min > max.
    vec1& clamp(float min, float max);
};

struct vec2 {
    float x;
    float y;

    vec2() : x(0.0f), y(0.0f) {}
    vec2(float xv, float yv) : x(xv), y(yv) {}

    float length() const { return std::sqrt(x * x + y * y); }
    // Divides by length(); a zero-length vector is left as it is.
    vec2& normalize();
    // Per component: if c > max then max, else if min > c then min.
    vec2& clamp(float min, float max);

    vec2& operator+=(const vec2& v) { x += v.x; y += v.y; return *this; }
    vec2& operator-=(const vec2& v) { x -= v.x; y -= v.y; return *this; }
    vec2& operator*=(const vec2& v) { x *= v.x; y *= v.y; return *this; }
    vec2& operator*=(float s) { x *= s; y *= s; return *this; }
    // Divides without a zero test (s == 0 gives infinities or NaN); only the free / guards.
    vec2& operator/=(float s) { x /= s; y /= s; return *this; }
};

struct vec3 {
    float x;
    float y;
    float z;

    vec3() : x(0.0f), y(0.0f), z(0.0f) {}
    vec3(float xv, float yv, float zv) : x(xv), y(yv), z(zv) {}
    vec3(const vec2& xy, float zv) : x(xy.x), y(xy.y), z(zv) {}

    float length() const { return std::sqrt(x * x + y * y + z * z); }
    // Divides by length(); a zero-length vector is left as it is.
    vec3& normalize();
    // Per component: if c > max then max, else if min > c then min.
    vec3& clamp(float min, float max);

    // Component by the low bits of i: bit 1 set gives z, else bit 0 set gives y, else x.
    // No range check; any index lands on one of the three, so 3 is z and 4 is x.
    float& operator[](unsigned i);
    float operator[](unsigned i) const;

    vec3& operator+=(const vec3& v) { x += v.x; y += v.y; z += v.z; return *this; }
    vec3& operator-=(const vec3& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
    vec3& operator*=(const vec3& v) { x *= v.x; y *= v.y; z *= v.z; return *this; }
    vec3& operator*=(float s) { x *= s; y *= s; z *= s; return *this; }
    // Divides without a zero test (s == 0 gives infinities or NaN); only the free / guards.
    vec3& operator/=(float s) { x /= s; y /= s; z /= s; return *this; }
};

struct vec4 {
    float x;
    float y;
    float z;
    float w;

    vec4() : x(0.0f), y(0.0f), z(0.0f), w(0.0f) {}
    vec4(float xv, float yv, float zv, float wv) : x(xv), y(yv), z(zv), w(wv) {}
    vec4(const vec3& xyz, float wv) : x(xyz.x), y(xyz.y), z(xyz.z), w(wv) {}

    float length() const { return std::sqrt(x * x + y * y + z * z + w * w); }
    // Divides by length(); a zero-length vector is left as it is.
    vec4& normalize();
    // Per component: if c > max then max, else if min > c then min.
    vec4& clamp(float min, float max);

    // (i & 3) == 3 gives w, otherwise as vec3: bit 1 set gives z, bit 0 set gives y, else x.
    // No range check; 7 is w and 6 is z.
    float& operator[](unsigned i);
    float operator[](unsigned i) const;

    vec4& operator+=(const vec4& v) { x += v.x; y += v.y; z += v.z; w += v.w; return *this; }
    vec4& operator-=(const vec4& v) { x -= v.x; y -= v.y; z -= v.z; w -= v.w; return *this; }
    vec4& operator*=(const vec4& v) { x *= v.x; y *= v.y; z *= v.z; w *= v.w; return *this; }
    vec4& operator*=(float s) { x *= s; y *= s; z *= s; w *= s; return *this; }
    // Divides without a zero test (s == 0 gives infinities or NaN); only the free / guards.
    vec4& operator/=(float s) { x /= s; y /= s; z /= s; w /= s; return *this; }
};

// Componentwise sums, differences and products; a vector times a scalar from either side.
inline vec2 operator+(const vec2& a, const vec2& b) { return vec2(a.x + b.x, a.y + b.y); }
inline vec2 operator-(const vec2& a, const vec2& b) { return vec2(a.x - b.x, a.y - b.y); }
inline vec2 operator*(const vec2& a, const vec2& b) { return vec2(a.x * b.x, a.y * b.y); }
inline vec2 operator*(const vec2& v, float s) { return vec2(v.x * s, v.y * s); }
inline vec2 operator*(float s, const vec2& v) { return vec2(v.x * s, v.y * s); }

inline vec3 operator+(const vec3& a, const vec3& b) { return vec3(a.x + b.x, a.y + b.y, a.z + b.z); }
inline vec3 operator-(const vec3& a, const vec3& b) { return vec3(a.x - b.x, a.y - b.y, a.z - b.z); }
inline vec3 operator*(const vec3& a, const vec3& b) { return vec3(a.x * b.x, a.y * b.y, a.z * b.z); }
inline vec3 operator*(const vec3& v, float s) { return vec3(v.x * s, v.y * s, v.z * s); }
inline vec3 operator*(float s, const vec3& v) { return vec3(v.x * s, v.y * s, v.z * s); }

inline vec4 operator+(const vec4& a, const vec4& b) { return vec4(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w); }
inline vec4 operator-(const vec4& a, const vec4& b) { return vec4(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w); }
inline vec4 operator*(const vec4& a, const vec4& b) { return vec4(a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w); }
inline vec4 operator*(const vec4& v, float s) { return vec4(v.x * s, v.y * s, v.z * s, v.w * s); }
inline vec4 operator*(float s, const vec4& v) { return vec4(v.x * s, v.y * s, v.z * s, v.w * s); }

// v multiplied by 1/s, or the zero vector when s == 0 (unlike the member /=).
vec2 operator/(const vec2& v, float s);
vec3 operator/(const vec3& v, float s);
vec4 operator/(const vec4& v, float s);

static_assert(sizeof(vec2) == 2 * sizeof(float), "vec2 must be two packed floats");
static_assert(sizeof(vec3) == 3 * sizeof(float), "vec3 must be three packed floats");
static_assert(sizeof(vec4) == 4 * sizeof(float), "vec4 must be four packed floats");
static_assert(std::is_trivially_copyable<vec4>::value, "vectors are copied as raw memory");

} // namespace orvel

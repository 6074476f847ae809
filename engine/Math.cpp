#include "engine/Math.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "engine/Matrix.h"

namespace orvel {

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr float HALF_PI_F = 1.57079632679489661923f;

// v[0], replaced by every later element that `beats` it. v[0] is read even when n is 0.
template <typename T, typename Beats> T extremeOf(const T* v, unsigned n, Beats beats) {
    T r = v[0];
    for (unsigned i = 1; i < n; ++i) {
        if (beats(v[i], r)) {
            r = v[i];
        }
    }
    return r;
}

// out[0] = the minimum and out[1] = the maximum of v, both starting from v[0], which is read
// even when n is 0.
template <typename T> void minMaxOf(T* out, const T* v, unsigned n) {
    out[0] = v[0];
    out[1] = v[0];
    for (unsigned i = 1; i < n; ++i) {
        if (v[i] < out[0]) {
            out[0] = v[i];
        }
        if (v[i] > out[1]) {
            out[1] = v[i];
        }
    }
}

// Where the ray from `from` towards `to` meets the circle (sphere): the nearer of the two
// points, or the farther with `isFar`; the zero vector when it misses. Points behind `from` count.
template <typename V> V intersectPoint(const V& from, const V& to, const V& center, float radius, bool isFar) {
    V d = to - from;
    d.normalize();
    V m = from - center;
    float a = Math::dot(d, d);
    float b = 2.0f * Math::dot(m, d);
    float c = Math::dot(m, m) - radius * radius;
    float disc = b * b - 4.0f * a * c;
    if (disc < 0.0f) {
        return V();
    }
    float root = std::sqrt(disc);
    float t1 = (root - b) / (2.0f * a);
    float t2 = (-b - root) / (2.0f * a);
    return from + d * (isFar ? std::max(t1, t2) : std::min(t1, t2));
}

} // namespace

// ---- Absolute value, minimum and maximum ----

int Math::abs(int v) {
    return v < 0 ? -v : v;
}

float Math::abs(float v) {
    return std::fabs(v);
}

int Math::mini(int a, int b) {
    return a < b ? a : b;
}

int Math::maxi(int a, int b) {
    return a > b ? a : b;
}

int Math::miniv(int* v, unsigned n) {
    return extremeOf(v, n, std::less<int>());
}

int Math::maxiv(int* v, unsigned n) {
    return extremeOf(v, n, std::greater<int>());
}

float Math::minfv(float* v, unsigned n) {
    return extremeOf(v, n, std::less<float>());
}

float Math::maxfv(float* v, unsigned n) {
    return extremeOf(v, n, std::greater<float>());
}

void Math::minmaxiv(int* out, int* v, unsigned n) {
    minMaxOf(out, v, n);
}

void Math::minmaxfv(float* out, float* v, unsigned n) {
    minMaxOf(out, v, n);
}

// ---- Clamping and wrapping ----

int Math::clampi(int v, int lo, int hi) {
    if (v > hi) {
        return hi;
    }
    if (lo < v) {
        return v;
    }
    return lo;
}

float Math::clampf(float v, float lo, float hi) {
    if (v > hi) {
        return hi;
    }
    if (lo > v) {
        return lo;
    }
    return v;
}

int Math::wrapi(int v, int a, int b) {
    if (a == b) {
        return a;
    }
    int lo = mini(a, b);
    int range = abs(b - a);
    int m = (v - lo) % range;
    if (m < 0) {
        return lo + m + range;
    }
    return lo + m;
}

float Math::wrapf(float v, float a, float b) {
    if (a == b) {
        return a;
    }
    float lo = std::min(a, b);
    float range = std::max(a, b) - lo;
    // Inside the range the remainder is v - lo itself: the common case, without the division.
    const float d = v - lo;
    if (d > 0.0f && d < range) {
        return lo + d;
    }
    // The truncating remainder (v - lo) - trunc((v - lo) / range) * range, taken exactly; it
    // keeps the sign of v - lo, zero included, which the sign-bit test below looks at.
    float r = std::fmod(d, range);
    if (std::signbit(r)) {
        return lo + r + range;
    }
    return lo + r;
}

int Math::bounce(int v, int a, int b) {
    int w = wrapi(v, a, 2 * b - a);
    if (w - b > 0) {
        return 2 * b - w;
    }
    return w;
}

float Math::bounce(float v, float a, float b) {
    float w = wrapf(v, a, 2.0f * b - a);
    if (w - b > 0.0f) {
        return b - (w - b);
    }
    return w;
}

// ---- Interpolation ----

float Math::lerp(float t, float a, float b) {
    return (b - a) * t + a;
}

float Math::sin_lerp(float t, float a, float b) {
    if (t < 0.0f || t > 1.0f) {
        return lerp(t, a, b);
    }
    // sin runs from -1 at 3pi/2 up to 1 at 5pi/2: slow at both ends.
    double s = (std::sin(PI * t + 3.0 * PI / 2.0) + 1.0) * 0.5;
    return lerp(static_cast<float>(s), a, b);
}

float Math::sinh_lerp(float t, float a, float b) {
    if (t < 0.0f || t > 1.0f) {
        return lerp(t, a, b);
    }
    return lerp(std::sin(t * HALF_PI_F), a, b);
}

float Math::sinl_lerp(float t, float a, float b) {
    if (t < 0.0f || t > 1.0f) {
        return lerp(t, a, b);
    }
    return lerp(1.0f - std::cos(t * HALF_PI_F), a, b);
}

vec2 Math::lerp(float t, const vec2& a, const vec2& b) {
    return vec2(lerp(t, a.x, b.x), lerp(t, a.y, b.y));
}

vec3 Math::lerp(float t, const vec3& a, const vec3& b) {
    return vec3(lerp(t, a.x, b.x), lerp(t, a.y, b.y), lerp(t, a.z, b.z));
}

vec2 Math::sin_lerp(float t, const vec2& a, const vec2& b) {
    return vec2(sin_lerp(t, a.x, b.x), sin_lerp(t, a.y, b.y));
}

vec3 Math::sin_lerp(float t, const vec3& a, const vec3& b) {
    return vec3(sin_lerp(t, a.x, b.x), sin_lerp(t, a.y, b.y), sin_lerp(t, a.z, b.z));
}

vec2 Math::sinh_lerp(float t, const vec2& a, const vec2& b) {
    return vec2(sinh_lerp(t, a.x, b.x), sinh_lerp(t, a.y, b.y));
}

vec3 Math::sinh_lerp(float t, const vec3& a, const vec3& b) {
    return vec3(sinh_lerp(t, a.x, b.x), sinh_lerp(t, a.y, b.y), sinh_lerp(t, a.z, b.z));
}

vec2 Math::sinl_lerp(float t, const vec2& a, const vec2& b) {
    return vec2(sinl_lerp(t, a.x, b.x), sinl_lerp(t, a.y, b.y));
}

vec3 Math::sinl_lerp(float t, const vec3& a, const vec3& b) {
    return vec3(sinl_lerp(t, a.x, b.x), sinl_lerp(t, a.y, b.y), sinl_lerp(t, a.z, b.z));
}

float Math::scurve3(float t) {
    double d = t;
    return static_cast<float>(d * d * (3.0 - 2.0 * d));
}

float Math::scurve5(float t) {
    double d = t;
    double d3 = d * d * d;
    double d4 = d3 * d;
    double d5 = d4 * d;
    return static_cast<float>(6.0 * d5 - 15.0 * d4 + 10.0 * d3);
}

// ---- Angles ----

float Math::toRadian(float d) {
    return d * 0.017453292f;
}

float Math::toDegree(float r) {
    return r * 57.29578f;
}

float Math::angle(const vec2& from, const vec2& to) {
    float dx = to.x - from.x;
    float dy = to.y - from.y;
    // Negated because y grows down the screen; the 360 lifts the lower half (and 0) into range.
    double a = -std::atan2(static_cast<double>(dy), static_cast<double>(dx)) * 57.29578;
    if (dy >= 0.0f) {
        a += 360.0;
    }
    return static_cast<float>(a);
}

// ---- Powers of two ----

unsigned Math::getNextPow2(unsigned n) {
    if (n < 2) {
        return 1;
    }
    unsigned p = 1;
    while (p < n && p != 0) {
        p <<= 1;
    }
    return p;
}

unsigned Math::getClosestPow2(unsigned n) {
    if (n < 2) {
        return n;
    }
    unsigned p = 1;
    while (static_cast<int>(p) >= 0 && n > p) {
        p *= 2;
    }
    return p == n ? p : p / 2;
}

unsigned Math::getShiftPow2(unsigned n) {
    for (unsigned s = 0; s < 32; ++s) {
        if ((1u << s) >= n) {
            return s;
        }
    }
    return 31;
}

bool Math::isPowerOf2(unsigned n) {
    if (n < 2) {
        return n == 1;
    }
    unsigned p = 1;
    while (p < n && p != 0) {
        p <<= 1;
    }
    return p == n;
}

// ---- Fixed point ----

int Math::toFixed(float f, unsigned char bits) {
    if (f == 0.0f) {
        return 0;
    }
    // Shifted as unsigned so a negative integer part shifts its two's-complement bits.
    int i = static_cast<int>(static_cast<unsigned>(static_cast<int>(f)) << bits);
    float one = static_cast<float>(1u << bits);
    return i + static_cast<int>(one * f - static_cast<float>(i));
}

float Math::toFloat(int v, unsigned char bits) {
    if (v == 0) {
        return 0.0f;
    }
    int one = static_cast<int>(1u << bits);
    float fraction = static_cast<float>(v & (one - 1));
    return static_cast<float>(one) / fraction + static_cast<float>(v >> bits);
}

float Math::gauss(float x, float sigma) {
    double xd = x;
    double sd = sigma;
    return static_cast<float>(std::exp(-xd * xd / (2.0 * sd * sd)) / std::sqrt(2.0 * PI * sd));
}

// ---- Vector algebra ----

float Math::dot(vec2 a, vec2 b) {
    return a.x * b.x + a.y * b.y;
}

float Math::dot(vec3 a, vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

vec3 Math::cross(vec3 a, vec3 b) {
    return vec3(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

vec2 Math::rotate(const vec2& v, float a) {
    float c = std::cos(a);
    float s = std::sin(a);
    return vec2(v.x * c - v.y * s, v.y * c + v.x * s);
}

vec3 Math::rotate(const vec3& v, float a, float b, float c) {
    float ca = std::cos(a);
    float sa = std::sin(a);
    float cb = std::cos(b);
    float sb = std::sin(b);
    float cc = std::cos(c);
    float sc = std::sin(c);
    return vec3(cb * cc * v.x + cb * sc * v.y - sb * v.z,
                (sa * sb * cc - ca * sc) * v.x + (sa * sb * sc + ca * cc) * v.y + sa * cb * v.z,
                (ca * sb * cc + sa * sc) * v.x + (ca * sb * sc - sa * cc) * v.y + ca * cb * v.y);
}

vec3 Math::rotate(const vec3& v, const vec3& axis, float a) {
    // One matrix for every axis rotation, so this and mat4::rotate cannot drift apart; its
    // translation is zero, so mat4 * vec3 is R * v.
    mat4 r;
    r.rotate(vec4(axis, a));
    return r * v;
}

float Math::distanceTo(const vec2& a, const vec2& b, const vec2& p) {
    vec2 ap = p - a;
    vec2 ab = b - a;
    float cross = ap.x * ab.y - ap.y * ab.x;
    return static_cast<float>(static_cast<double>(std::fabs(cross)) / static_cast<double>(ab.length()));
}

float Math::distanceTo(vec3, vec3, vec3) {
    return 0.0f;
}

// ---- Ray against circle (sphere) ----

vec2 Math::getNearIntersectPoint(const vec2& from, const vec2& to, const vec2& center, float radius) {
    return intersectPoint(from, to, center, radius, false);
}

vec2 Math::getFarIntersectPoint(const vec2& from, const vec2& to, const vec2& center, float radius) {
    return intersectPoint(from, to, center, radius, true);
}

vec3 Math::getNearIntersectPoint(const vec3& from, const vec3& to, const vec3& center, float radius) {
    return intersectPoint(from, to, center, radius, false);
}

vec3 Math::getFarIntersectPoint(const vec3& from, const vec3& to, const vec3& center, float radius) {
    return intersectPoint(from, to, center, radius, true);
}

} // namespace orvel

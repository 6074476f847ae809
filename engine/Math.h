#pragma once
// Scalar and vector helpers: min/max, clamping, wrapping on the world torus, easing curves,
// powers of two, fixed point, angles, rotations and ray-circle intersections.

#include "engine/Vector.h"

namespace orvel {

// Static functions only, no state. Angles taken are radians; angle() returns degrees.
// Nothing reports errors: the only guards are the ones stated.
class Math {
public:
    Math() = delete;

    // ---- Absolute value, minimum and maximum ----
    static int abs(int v);
    static float abs(float v);
    static int mini(int a, int b);
    static int maxi(int a, int b);
    // Of v[0..n-1]. v[0] is always read, so n == 0 gives v[0] and v must hold one element.
    static int miniv(int* v, unsigned n);
    static int maxiv(int* v, unsigned n);
    static float minfv(float* v, unsigned n);
    static float maxfv(float* v, unsigned n);
    // out[0] = minimum, out[1] = maximum of v[0..n-1]; both start at v[0].
    static void minmaxiv(int* out, int* v, unsigned n);
    static void minmaxfv(float* out, float* v, unsigned n);

    // ---- Clamping and wrapping ----
    // hi when v > hi, else v when lo < v, else lo; the upper bound wins when lo > hi.
    static int clampi(int v, int lo, int hi);
    // hi when v > hi, else lo when lo > v, else v; the upper bound wins when lo > hi.
    static float clampf(float v, float lo, float hi);
    // v wrapped into [min(a, b), max(a, b)); the bounds may come in either order. a == b gives a.
    static int wrapi(int v, int a, int b);
    // As wrapi in float. A remainder whose sign bit is set gets the range added, so a remainder
    // of -0 gives the upper bound (wrapf(-0.0, 0, 10) is 10); kept as the defined boundary case.
    // a == b gives a.
    static float wrapf(float v, float a, float b);
    // Ping-pong between a and b: a, a+1, ..., b, b-1, ..., a, ...
    static int bounce(int v, int a, int b);
    static float bounce(float v, float a, float b);

    // ---- Interpolation; t in [0, 1] runs from a to b ----
    // (b - a) * t + a; t outside [0, 1] extrapolates.
    static float lerp(float t, float a, float b);
    // Eases in and out along half a sine wave; t outside [0, 1] falls back to lerp.
    static float sin_lerp(float t, float a, float b);
    // Eases out (fast start) along sin(t * pi / 2); t outside [0, 1] falls back to lerp.
    static float sinh_lerp(float t, float a, float b);
    // Eases in (slow start) along 1 - cos(t * pi / 2); t outside [0, 1] falls back to lerp.
    static float sinl_lerp(float t, float a, float b);
    // The scalar curves per component.
    static vec2 lerp(float t, const vec2& a, const vec2& b);
    static vec3 lerp(float t, const vec3& a, const vec3& b);
    static vec2 sin_lerp(float t, const vec2& a, const vec2& b);
    static vec3 sin_lerp(float t, const vec3& a, const vec3& b);
    static vec2 sinh_lerp(float t, const vec2& a, const vec2& b);
    static vec3 sinh_lerp(float t, const vec3& a, const vec3& b);
    static vec2 sinl_lerp(float t, const vec2& a, const vec2& b);
    static vec3 sinl_lerp(float t, const vec3& a, const vec3& b);
    // t^2 (3 - 2t) and 6t^5 - 15t^4 + 10t^3: 0 at 0, 1 at 1, flat at both ends.
    static float scurve3(float t);
    static float scurve5(float t);

    // ---- Angles ----
    // Degrees to radians and back.
    static float toRadian(float d);
    static float toDegree(float r);
    // Direction from one point to another in degrees, in (0, 360]; with y down the screen,
    // 90 is straight up, 270 straight down and 360 (never 0) to the right.
    static float angle(const vec2& from, const vec2& to);

    // ---- Powers of two ----
    // 1 for n < 2, else the smallest power of two >= n; 0 when n > 2^31 (none fits).
    static unsigned getNextPow2(unsigned n);
    // Rounds down to the largest power of two <= n (7 gives 4) despite its name; n itself for
    // n < 2. Kept as it is: rounding down is what callers get from it. Above 2^31 it gives 2^30.
    static unsigned getClosestPow2(unsigned n);
    // The smallest s in 0..31 with 2^s >= n; 31 when none.
    static unsigned getShiftPow2(unsigned n);
    static bool isPowerOf2(unsigned n);

    // ---- Fixed point; bits is the number of fraction bits, 0..30 ----
    // trunc(f) shifted left by bits, plus the truncated rest of f * 2^bits; 0 for f == 0.
    static int toFixed(float f, unsigned char bits);
    // 0 for v == 0, else 2^bits / fraction + integer part (an arithmetic shift). The fraction
    // divides the other way round from a true conversion and a zero fraction gives infinity;
    // kept because values are read back with exactly this rule.
    static float toFloat(int v, unsigned char bits);

    // exp(-x^2 / (2 sigma^2)) / sqrt(2 pi sigma), in double. The root takes sigma, not
    // sigma^2, so the curve is not a unit-area normal; kept as the engine's weighting curve.
    static float gauss(float x, float sigma);

    // ---- Vector algebra ----
    static float dot(vec2 a, vec2 b);
    static float dot(vec3 a, vec3 b);
    static vec3 cross(vec3 a, vec3 b);
    // v turned by a radians: (x cos a - y sin a, y cos a + x sin a).
    static vec2 rotate(const vec2& v, float a);
    // Euler rotation by a, b, c radians. The last term of z' multiplies the input's y, not z;
    // kept exactly, as results built on it expect it.
    static vec3 rotate(const vec3& v, float a, float b, float c);
    // v turned by a radians about axis with mat4::rotate's matrix (same ay*az cross terms).
    static vec3 rotate(const vec3& v, const vec3& axis, float a);
    // Distance of p from the infinite line through a and b; a == b is not guarded.
    static float distanceTo(const vec2& a, const vec2& b, const vec2& p);
    // Not implemented for 3D; always 0.
    static float distanceTo(vec3 a, vec3 b, vec3 p);

    // ---- Ray against circle (sphere) ----
    // Where the line from `from` through `to` meets the circle, at the smaller (near) or larger
    // (far) ray parameter. Points behind `from` count too (no t >= 0 test). The zero vector
    // when the line misses.
    static vec2 getNearIntersectPoint(const vec2& from, const vec2& to, const vec2& center, float radius);
    static vec2 getFarIntersectPoint(const vec2& from, const vec2& to, const vec2& center, float radius);
    static vec3 getNearIntersectPoint(const vec3& from, const vec3& to, const vec3& center, float radius);
    static vec3 getFarIntersectPoint(const vec3& from, const vec3& to, const vec3& center, float radius);
};

} // namespace orvel
